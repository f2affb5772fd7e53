// What a made link is said to do to the colours that are looked at first.
#include "cmyk/link_result.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ko::cmyk {
namespace {

constexpr size_t kCyan = 0, kBlack = 3, kCyanMagenta = 4, kGrey = 7;

size_t nodeAt(int32_t c, int32_t m, int32_t y, int32_t k) {
    return static_cast<size_t>(((c * kGridPoints + m) * kGridPoints + y) * kGridPoints + k);
}

TEST(LinkResult, AProfileThatChangesNothingKeepsEveryInkAndAllOfThem) {
    const auto profile = createProfile();
    const LinkResult result = resultOf(*profile);
    EXPECT_EQ(result.white, (Inks{0, 0, 0, 0}));
    EXPECT_EQ(result.solids[kCyan], (Inks{1, 0, 0, 0}));
    EXPECT_EQ(result.solids[kBlack], (Inks{0, 0, 0, 1}));
    EXPECT_EQ(result.full, (Inks{1, 1, 1, 1}));
    EXPECT_EQ(result.mostIn, (Inks{1, 1, 1, 1}));
    EXPECT_DOUBLE_EQ(result.mostInk, 4);
    EXPECT_EQ(result.foreignInPrimaries, 0);
    EXPECT_EQ(result.foreignInSecondaries, 0);
    for (const RampResult& ramp : result.ramps) EXPECT_TRUE(ramp.isPure());
}

TEST(LinkResult, TheMostInkIsThatOfTheNodeWithMost) {
    const auto profile = createProfile();
    for (uint32_t& word : profile->grid) word = packCmyk(10, 20, 30, 40);
    profile->grid[nodeAt(32, 0, 16, 1)] = packCmyk(255, 51, 0, 0);
    const LinkResult result = resultOf(*profile);
    EXPECT_DOUBLE_EQ(result.mostInk, 1.2);
    EXPECT_EQ(result.mostIn, (Inks{1, 0, 128 / 255.0, 8 / 255.0}));
}

TEST(LinkResult, InkThatDoesNotBelongIsFoundOnItsRampAlone) {
    const auto profile = createProfile();
    profile->grid[nodeAt(16, 0, 0, 0)] = packCmyk(128, 0, 51, 0);
    profile->grid[nodeAt(32, 32, 0, 0)] = packCmyk(255, 255, 0, 102);
    const LinkResult result = resultOf(*profile);
    EXPECT_DOUBLE_EQ(result.foreignInPrimaries, 0.2);
    EXPECT_DOUBLE_EQ(result.foreignInSecondaries, 0.4);
    const RampResult& cyan = result.ramps[kCyan];
    EXPECT_EQ(cyan.foreign, (std::array<bool, 4>{false, false, true, false}));
    EXPECT_DOUBLE_EQ(cyan.most, 0.2);
    EXPECT_EQ(cyan.pureFrom, 136u);  // the next node, and nothing of it there
    EXPECT_TRUE(result.ramps[kBlack].isPure());
    EXPECT_FALSE(result.ramps[kCyanMagenta].isPure());
}

TEST(LinkResult, TheCurvesBelongToWhatIsPrinted) {
    const auto profile = createProfile();
    std::ranges::fill(profile->curveValues[7], uint8_t{51});
    const LinkResult result = resultOf(*profile);
    EXPECT_EQ(result.white, (Inks{0, 0, 0, 0.2}));
    EXPECT_FALSE(result.ramps[kCyan].isPure());
}

TEST(LinkResult, EachRampHasAllLevelsAndItsColoursBeforeAndAfter) {
    const auto profile = createProfile();
    const LinkResult result = resultOf(*profile);
    for (const RampResult& ramp : result.ramps) {
        EXPECT_EQ(ramp.out.size(), kRampLevels);
        EXPECT_EQ(ramp.before, ramp.after);
        EXPECT_EQ(ramp.before.front(), (Display{1, 1, 1}));
    }
    EXPECT_EQ(result.ramps[kGrey].out[255], (Inks{1, 1, 1, 0}));
}

}  // namespace
}  // namespace ko::cmyk
