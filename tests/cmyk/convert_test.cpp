// One colour through a CMYK profile's grid.
#include <gmock/gmock.h>

#include <array>
#include <limits>
#include <memory>
#include <random>

#include "tests/support/owned.h"

using testing::ElementsAre;

namespace {

using Profile = ko::test::OwnedCmykProfile;
using Colour = std::array<int32_t, 4>;

Profile make() { return Profile(jKoCmykCreateProfile()); }
Colour convert(const Profile& profile, Colour cmyk) {
    jKoCmykCMYKtoCMYK16(profile.get(), cmyk.data());
    return cmyk;
}
size_t node(int32_t c, int32_t m, int32_t y, int32_t k) {
    return static_cast<size_t>(((c * 33 + m) * 33 + y) * 33 + k);
}
int32_t anyLevel(std::mt19937& random) { return static_cast<int32_t>(random() & 255); }

}  // namespace

TEST(CmykConversion, GivesSixteenTimesEveryLevelOnTheIdentityGrid) {
    const Profile profile = make();
    for (int32_t v = 0; v < 256; ++v) {
        EXPECT_THAT(convert(profile, {v, v, v, v}), ElementsAre(16 * v, 16 * v, 16 * v, 16 * v));
        EXPECT_THAT(convert(profile, {v, 0, 255 - v, 255}),
                    ElementsAre(16 * v, 0, 16 * (255 - v), 4080));
    }
}

TEST(CmykConversion, ReadsTheBytesOfANodeAsCMYK) {
    const Profile profile = make();
    profile->grid[node(1, 2, 3, 4)] = 0x0a141e28;
    EXPECT_THAT(convert(profile, {8, 16, 24, 32}), ElementsAre(160, 320, 480, 640));
}

TEST(CmykConversion, TakesTheLastCellAsSevenWide) {
    const Profile profile = make();
    for (uint32_t& word : profile->grid) word = 0;
    profile->grid[node(32, 0, 0, 0)] = 0x46000000;  // 70 at level 255
    EXPECT_EQ(convert(profile, {249, 0, 0, 0})[0], 10 * 16);
    EXPECT_EQ(convert(profile, {255, 0, 0, 0})[0], 70 * 16);
    profile->grid[node(31, 0, 0, 0)] = 0x50000000;  // 80 at level 248
    EXPECT_EQ(convert(profile, {244, 0, 0, 0})[0], 40 * 16) << "other cells are 8 wide";
}

TEST(CmykConversion, TruncatesOnTheSixteenScale) {
    const Profile profile = make();
    for (uint32_t& word : profile->grid) word = 0;
    profile->grid[node(1, 1, 1, 1)] = 0x01000000;
    EXPECT_EQ(convert(profile, {7, 7, 7, 7})[0], 7 * 7 * 7 * 7 * 16 / 4096);
    EXPECT_EQ(convert(profile, {4, 4, 4, 4})[0], 1);
    EXPECT_EQ(convert(profile, {4, 4, 4, 3})[0], 0);
}

TEST(CmykConversion, WeighsAllSixteenCorners) {
    const Profile profile = make();
    std::mt19937 random(1);
    for (uint32_t& word : profile->grid) word = static_cast<uint32_t>(random());
    const auto weight = [](int32_t v, int32_t upper) {
        return upper ? v % 8 : (v >= 248 ? 7 : 8) - v % 8;
    };
    for (int32_t round = 0; round < 2000; ++round) {
        Colour in;
        for (int32_t& level : in) level = anyLevel(random);
        int64_t sum = 0, volume = 1;
        for (int32_t v : in) volume *= v >= 248 ? 7 : 8;
        for (int32_t corner = 0; corner < 16; ++corner) {
            const int32_t c = corner >> 3, m = corner >> 2 & 1, y = corner >> 1 & 1, k = corner & 1;
            const uint32_t word =
                profile->grid[node(in[0] / 8 + c, in[1] / 8 + m, in[2] / 8 + y, in[3] / 8 + k)];
            sum += int64_t{weight(in[0], c)} * weight(in[1], m) * weight(in[2], y) *
                   weight(in[3], k) * (word >> 8 & 255);
        }
        ASSERT_EQ(convert(profile, in)[2], sum * 16 / volume);
    }
}

TEST(CmykConversion, LimitsInputsToTheirRange) {
    const Profile profile = make();
    EXPECT_THAT(convert(profile, {-1, 256, std::numeric_limits<int32_t>::min(),
                                  std::numeric_limits<int32_t>::max()}),
                ElementsAre(0, 4080, 0, 4080));
}

TEST(CmykConversion, LeavesCurvesAlone) {
    const Profile profile = make();
    for (auto& curve : profile->curveValues)
        for (uint8_t& value : curve) value = 0;
    EXPECT_EQ(convert(profile, {100, 0, 0, 0})[0], 1600);
}

TEST(CmykConversion, IgnoresNull) {
    Colour values{1, 2, 3, 4};
    jKoCmykCMYKtoCMYK16(nullptr, values.data());
    EXPECT_THAT(values, ElementsAre(1, 2, 3, 4));
    jKoCmykCMYKtoCMYK16(make().get(), nullptr);
}
