// Loading from ICC profiles: description, curves, grid.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "tests/cmyk/support.h"

namespace ko::test {
namespace {

struct CmykIcc : testing::Test {
    TempFolder folder;
    OwnedProfile profile{jKoCmykCreateProfile()};

    int32_t load(const Bytes& bytes) {
        writeFile(folder.path("p.icc"), bytes);
        return jKoCmykLoadProfile(profile.get(), folder.path("p.icc").c_str());
    }
    int32_t load(const std::vector<Tag>& elements) { return load(iccFile(elements)); }
    std::vector<int> flags(int curve) {
        return {profile->curveFlags[curve], profile->curveFlags[curve] + 65};
    }
};

// The slots of a work table by another way: positions of the entries, then whole-number lines.
std::vector<int> slotsOf(int count, const std::function<int(int)>& entry) {
    std::vector<std::pair<int, int>> filled;
    for (int e = 0; e < count; ++e) {
        const int slot = e * 255 / (count - 1);
        if (!filled.empty() && filled.back().first == slot) filled.pop_back();
        filled.emplace_back(slot, entry(e) >> 8);
    }
    std::vector<int> slots(256);
    for (size_t at = 0; at + 1 < filled.size(); ++at) {
        const auto [lo, from] = filled[at];
        const auto [hi, to] = filled[at + 1];
        for (int slot = lo; slot <= hi; ++slot) slots[slot] = from + (to - from) * (slot - lo) / (hi - lo);
    }
    return slots;
}

TEST_F(CmykIcc, MarkedDescriptionGivesNameAndFlags) {
    std::ranges::fill(profile->curveFlags[0], uint8_t{0});
    ASSERT_EQ(load({{"desc", descriptionElement("_KOLINK_10J\nNAME: Test\nCTRL: 10001")}}), 1);
    EXPECT_STREQ(profile->name, "Test");
    std::vector<int> expected(65, 0);
    expected[0] = expected[4] = expected[5] = 1;
    EXPECT_EQ(flags(0), expected);
}

TEST_F(CmykIcc, SiblingMarkerIsKnownToo) {
    ASSERT_EQ(load({{"desc", descriptionElement("_NQCMS_IJP10J\nNAME: Sibling\n")}}), 1);
    EXPECT_STREQ(profile->name, "Sibling");
}

TEST_F(CmykIcc, MarkerIsComparedOverItsLengthOnly) {
    ASSERT_EQ(load({{"desc", descriptionElement("_KOLINK_10J and more\nNAME: Longer\n")}}), 1);
    EXPECT_STREQ(profile->name, "Longer");
}

TEST_F(CmykIcc, DescriptionWithoutMarkerKeepsNameFlagsAndComment) {
    std::strcpy(profile->name, "kept");
    std::strcpy(profile->comment, "kept too");
    const auto before = flags(0);
    std::string text = " _KOLINK_10J\nNAME: Test\nCTRL: 10001\n";
    for (int line = 0; line < 4; ++line) text += "CTL2: 1\n";
    ASSERT_EQ(load({{"desc", descriptionElement(text + "comment")}}), 1);
    EXPECT_STREQ(profile->name, "kept");
    EXPECT_STREQ(profile->comment, "kept too");
    EXPECT_EQ(flags(0), before);
}

TEST_F(CmykIcc, FirstDescriptionThatLoadsCounts) {
    Bytes broken = descriptionElement("_KOLINK_10J\nNAME: Broken\n");
    broken[0] = 'x';
    ASSERT_EQ(load({{"desc", descriptionElement("_KOLINK_10J\nNAME: First\n")},
                    {"desc", descriptionElement("_KOLINK_10J\nNAME: Second\n")}}), 1);
    EXPECT_STREQ(profile->name, "First");
    ASSERT_EQ(load({{"desc", broken}}), 1);
    EXPECT_STREQ(profile->name, "First");
}

TEST_F(CmykIcc, DescriptionNeverChangesCurveValues) {
    std::memset(profile->curveValues, 77, sizeof profile->curveValues);
    ASSERT_EQ(load({{"desc", descriptionElement("_KOLINK_10J\nNAME: n\nCTRL: 111\n")}}), 1);
    EXPECT_EQ(profile->curveValues[0][1], 77);
}

TEST_F(CmykIcc, ProfileWithoutA2B0SucceedsWithNothingButThePath) {
    const OwnedProfile before(jKoCmykCreateProfile());
    ASSERT_EQ(load({{"cprt", Bytes{'t', 'e', 'x', 't', 0, 0, 0, 0, 'c', 0}}}), 1);
    EXPECT_EQ(profile->path, folder.path("p.icc"));
    std::strcpy(before->path, profile->path);
    EXPECT_EQ(std::memcmp(profile.get(), before.get(), sizeof(CmykProfile)), 0);
}

TEST_F(CmykIcc, FileTooShortForAHeaderGivesZeroAndTouchesNothing) {
    const OwnedProfile before(jKoCmykCreateProfile());
    Bytes bytes = iccFile({});
    bytes.resize(127);
    EXPECT_EQ(load(bytes), 0);
    EXPECT_EQ(load(Bytes{}), 0);
    EXPECT_EQ(std::memcmp(profile.get(), before.get(), sizeof(CmykProfile)), 0);
}

TEST_F(CmykIcc, MissingFileAndFolderGiveZero) {
    EXPECT_EQ(jKoCmykLoadProfile(profile.get(), folder.path("none.icc").c_str()), 0);
    EXPECT_EQ(jKoCmykLoadProfile(profile.get(), folder.folder().string().c_str()), 0);
}

TEST_F(CmykIcc, PathLongerThanItsFieldGivesZero) {
    writeFile(folder.path("p.icc"), iccFile({{"A2B0", smallLut8()}}));
    std::string path = folder.path("");
    while (path.size() < 260) path += "./";
    EXPECT_EQ(jKoCmykLoadProfile(profile.get(), (path + "p.icc").c_str()), 0);
}

TEST_F(CmykIcc, EightBitCurvesAreTheEntriesAtThePointsLevels) {
    Bytes lut = smallLut8();
    for (size_t channel = 0; channel < 4; ++channel)
        for (size_t level = 0; level < 256; ++level) {
            lut[48 + 256 * channel + level] = static_cast<uint8_t>(level * 3 + channel);
            lut[48 + 1024 + 64 + 256 * channel + level] = static_cast<uint8_t>(level * 5 + channel);
        }
    ASSERT_EQ(load({{"A2B0", lut}}), 1);
    for (int channel = 0; channel < 4; ++channel)
        for (int point = 0; point < 65; ++point) {
            ASSERT_EQ(profile->curveValues[channel][point],
                      static_cast<uint8_t>(curveLevelOf(point) * 3 + static_cast<uint32_t>(channel)));
            ASSERT_EQ(profile->curveValues[4 + channel][point],
                      static_cast<uint8_t>(curveLevelOf(point) * 5 + static_cast<uint32_t>(channel)));
        }
}

TEST_F(CmykIcc, EightBitGridIsEvaluatedAtEveryNode) {
    ASSERT_EQ(load({{"A2B0", smallLut8()}}), 1);
    const OwnedProfile identity(jKoCmykCreateProfile());
    EXPECT_TRUE(sameGrid(*profile, *identity));
}

TEST_F(CmykIcc, EvaluatedGridIsTheEvaluatorsResultNodeForNode) {
    Bytes lut = smallLut8();
    std::mt19937 random(5);
    for (size_t at = 48; at < lut.size(); ++at) lut[at] = static_cast<uint8_t>(random());
    ASSERT_EQ(load({{"A2B0", lut}}), 1);
    IccProfile* source = jIccLoadHeader(folder.path("p.icc").c_str());
    auto* table = static_cast<IccLut*>(jIccLoadTag(source, 0x41324230));
    ASSERT_EQ(jIccLutSetup(table), 1);
    for (uint32_t node = 0; node < KOLINK_CMYK_NODES; node += static_cast<uint32_t>(1 + random() % 200)) {
        int32_t values[4];
        for (int channel = 3, rest = static_cast<int>(node); channel >= 0; --channel, rest /= 33)
            values[channel] = static_cast<int32_t>(gridLevel(static_cast<uint32_t>(rest % 33)));
        jIccLutColor(table, values);
        uint32_t word = 0;
        for (const int32_t value : values) word = word << 8 | static_cast<uint32_t>(value);
        ASSERT_EQ(profile->grid[node], word) << node;
    }
    jIccLutClose(table);
    jIccRelease(source);
}

TEST_F(CmykIcc, SixteenBitGridSeesLevelsTimes256AndGivesResultsBy256) {
    ASSERT_EQ(load({{"A2B0", smallLut16(256, 256, [](int, int e) { return e * 257u; })}}), 1);
    IccProfile* source = jIccLoadHeader(folder.path("p.icc").c_str());
    auto* table = static_cast<IccLut*>(jIccLoadTag(source, 0x41324230));
    ASSERT_EQ(jIccLutSetup(table), 1);
    std::mt19937 random(6);
    for (uint32_t node = 0; node < KOLINK_CMYK_NODES; node += static_cast<uint32_t>(1 + random() % 300)) {
        int32_t values[4];
        for (int channel = 3, rest = static_cast<int>(node); channel >= 0; --channel, rest /= 33)
            values[channel] = static_cast<int32_t>(gridLevel(static_cast<uint32_t>(rest % 33)) * 256);
        jIccLutColor(table, values);
        uint32_t word = 0;
        for (const int32_t value : values) word = word << 8 | static_cast<uint32_t>(value / 256);
        ASSERT_EQ(profile->grid[node], word) << node;
    }
    jIccLutClose(table);
    jIccRelease(source);
}

TEST_F(CmykIcc, SixteenBitGridIsOnTheScaleOf255) {
    ASSERT_EQ(load({{"A2B0", smallLut16(256, 256, [](int, int e) { return e * 257u; })}}), 1);
    EXPECT_EQ(profile->grid[nodeAt(0, 0, 0, 0)], 0u);
    EXPECT_EQ(profile->grid[nodeAt(32, 32, 32, 32)] >> 24, 255u);
    EXPECT_NEAR(static_cast<int>(profile->grid[nodeAt(16, 0, 0, 0)] >> 24), 128, 1);
}

TEST_F(CmykIcc, SixteenBitCurvesOf4096EntriesFillEverySlotDirectly) {
    const auto entry = [](int channel, int e) { return static_cast<uint32_t>(e * (16 - channel)) & 0xffff; };
    ASSERT_EQ(load({{"A2B0", smallLut16(4096, 4096, entry)}}), 1);
    for (int channel = 0; channel < 4; ++channel) {
        const auto slots = slotsOf(4096, [&](int e) { return static_cast<int>(entry(channel, e)); });
        for (int point = 0; point < 65; ++point)
            ASSERT_EQ(profile->curveValues[channel][point], slots[curveLevelOf(point)]) << channel << ' ' << point;
    }
}

TEST_F(CmykIcc, SixteenBitCurvesOf2EntriesAreStraightLines) {
    const auto entry = [](int channel, int e) { return e == 0 ? 0x1000u : 0xf000u - 0x1000u * channel; };
    ASSERT_EQ(load({{"A2B0", smallLut16(2, 2, entry)}}), 1);
    for (int channel = 0; channel < 4; ++channel)
        for (int point = 0; point < 65; ++point) {
            const int to = 0xf0 - 0x10 * channel, slot = static_cast<int>(curveLevelOf(point));
            ASSERT_EQ(profile->curveValues[channel][point], 0x10 + (to - 0x10) * slot / 255);
        }
}

TEST_F(CmykIcc, SlotsBetweenEntriesLieOnTheStraightLineOfTheNearestEntries) {
    // Falling and uneven: lines between slots that were filled on the way would differ.
    const auto entry = [](int channel, int e) {
        return static_cast<uint32_t>((e * e * 7919 + channel * 12345) % 65536);
    };
    ASSERT_EQ(load({{"A2B0", smallLut16(9, 9, entry)}}), 1);
    for (int channel = 0; channel < 4; ++channel) {
        const auto slots = slotsOf(9, [&](int e) { return static_cast<int>(entry(channel, e)); });
        for (int point = 0; point < 65; ++point)
            ASSERT_EQ(profile->curveValues[channel][point], slots[curveLevelOf(point)]);
    }
}

TEST_F(CmykIcc, EveryChannelIsSampledInItsOwnTable) {
    const auto entry = [](int channel, int) { return 0x1000u * static_cast<uint32_t>(channel + 1); };
    ASSERT_EQ(load({{"A2B0", smallLut16(256, 256, entry)}}), 1);
    for (int channel = 0; channel < 4; ++channel)
        for (int point = 0; point < 65; ++point)
            ASSERT_EQ(profile->curveValues[channel][point], 0x10 * (channel + 1));
}

TEST_F(CmykIcc, SixteenBitOutputCurvesCountTheOutputEntriesButReadTheInputTable) {
    const auto entry = [](int channel, int e) { return static_cast<uint32_t>(e * (250 - channel)); };
    ASSERT_EQ(load({{"A2B0", smallLut16(256, 17, entry)}}), 1);
    for (int channel = 0; channel < 4; ++channel) {
        const auto slots = slotsOf(17, [&](int e) { return static_cast<int>(entry(channel, e)); });
        for (int point = 0; point < 65; ++point)
            ASSERT_EQ(profile->curveValues[4 + channel][point], slots[curveLevelOf(point)]);
    }
}

TEST_F(CmykIcc, OutputEntriesBeyondTheInputTableRepeatItsLast) {
    const auto entry = [](int channel, int e) { return static_cast<uint32_t>(e * 0x1000 + channel * 0x100); };
    ASSERT_EQ(load({{"A2B0", smallLut16(3, 256, entry)}}), 1);
    for (int channel = 0; channel < 4; ++channel) {
        EXPECT_EQ(profile->curveValues[4 + channel][0], channel);
        for (int point = 1; point < 65; ++point)
            ASSERT_EQ(profile->curveValues[4 + channel][point], 0x20 + channel);
    }
}

TEST_F(CmykIcc, OneEntryIsThatValueEverywhere) {
    ASSERT_EQ(load({{"A2B0", smallLut16(1, 1, [](int channel, int) { return 0x4200u + 0x100u * channel; })}}), 1);
    for (int channel = 0; channel < 4; ++channel)
        for (int point = 0; point < 65; ++point) {
            ASSERT_EQ(profile->curveValues[channel][point], 0x42 + channel);
            ASSERT_EQ(profile->curveValues[4 + channel][point], 0x42 + channel);
        }
}

TEST_F(CmykIcc, TablesWithoutEntriesLeaveTheCurves) {
    std::memset(profile->curveValues, 77, sizeof profile->curveValues);
    ASSERT_EQ(load({{"A2B0", smallLut16(0, 0, [](int, int) { return 0u; })}}), 1);
    EXPECT_EQ(profile->curveValues[0][64], 77);
    EXPECT_EQ(profile->curveValues[7][64], 77);
}

// A 33-point 8-bit LUT whose grid bytes follow a pattern.
Bytes lut33(int inputs, int outputs, size_t gridBytes) {
    Bytes lut = lutHeader(1, inputs, outputs, 33);
    for (int channel = 0; channel < inputs; ++channel) appendRamp8(lut);
    for (size_t at = 0; at < gridBytes; ++at) lut.push_back(static_cast<uint8_t>(at * 31 + at / 256 + 1));
    for (int channel = 0; channel < outputs; ++channel) appendRamp8(lut);
    return lut;
}

TEST_F(CmykIcc, EightBit33PointGridIsCopiedByteForByte) {
    const Bytes lut = lut33(4, 4, sizeof profile->grid);
    ASSERT_EQ(load({{"A2B0", lut}}), 1);
    for (size_t node = 0; node < KOLINK_CMYK_NODES; ++node) {
        const uint8_t* bytes = lut.data() + 48 + 1024 + 4 * node;
        const uint32_t word = static_cast<uint32_t>(bytes[0]) << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
        ASSERT_EQ(profile->grid[node], word) << node;
    }
}

TEST_F(CmykIcc, SmallerGridOf33PointsIsCopiedAsFarAsItGoes) {
    constexpr size_t kSize = 33 * 33 * 33 * 3;
    const Bytes lut = lut33(3, 3, kSize);
    ASSERT_EQ(load({{"A2B0", lut}}), 1);
    const uint8_t* bytes = lut.data() + 48 + 768;
    EXPECT_EQ(profile->grid[0], static_cast<uint32_t>(bytes[0]) << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3]);
    static_assert(kSize % 4 == 3);
    EXPECT_EQ(profile->grid[kSize / 4 - 1] & 0xff, bytes[kSize - 4]);
    EXPECT_EQ(profile->grid[kSize / 4], static_cast<uint32_t>(bytes[kSize - 3]) << 24 |
                                            bytes[kSize - 2] << 16 | bytes[kSize - 1] << 8);
    for (size_t node = kSize / 4 + 1; node < KOLINK_CMYK_NODES; ++node) ASSERT_EQ(profile->grid[node], 0u);
}

TEST_F(CmykIcc, CurvesThatALutWithFewerChannelsLacksStay) {
    std::memset(profile->curveValues, 77, sizeof profile->curveValues);
    ASSERT_EQ(load({{"A2B0", lut33(3, 3, 33 * 33 * 33 * 3)}}), 1);
    EXPECT_EQ(profile->curveValues[2][64], 255);
    EXPECT_EQ(profile->curveValues[6][64], 255);
    EXPECT_EQ(profile->curveValues[3][64], 77);
    EXPECT_EQ(profile->curveValues[7][64], 77);
}

TEST_F(CmykIcc, OneInputChannelOf33PointsStaysInsideItsBlock) {
    ASSERT_EQ(load({{"A2B0", lut33(1, 1, 33)}}), 1);
    EXPECT_EQ(profile->grid[9], 0u);
}

TEST_F(CmykIcc, ThreeOutputsLeaveTheFourthLevelOfTheNode) {
    Bytes lut = lutHeader(1, 4, 3, 2);
    for (int channel = 0; channel < 4; ++channel) appendRamp8(lut);
    lut.resize(lut.size() + 16 * 3, 200);
    for (int channel = 0; channel < 3; ++channel) appendRamp8(lut);
    ASSERT_EQ(load({{"A2B0", lut}}), 1);
    EXPECT_EQ(profile->grid[nodeAt(1, 2, 3, 4)], 0xC8C8C820u);
}

TEST_F(CmykIcc, LutThatCannotBeEvaluatedLeavesEveryNodeItsOwnLevels) {
    const OwnedProfile identity(jKoCmykCreateProfile());
    for (const auto& [inputs, outputs, points] :
         {std::tuple{4, 4, 1}, {4, 4, 0}, {0, 4, 2}, {4, 0, 2}, {5, 4, 2}, {4, 5, 2}, {15, 15, 1}, {255, 255, 0}}) {
        profile->grid[5] = 1;
        Bytes lut = lutHeader(1, inputs, outputs, points);
        lut.resize(lut.size() + 8192, 9);
        ASSERT_EQ(load({{"A2B0", lut}}), 1);
        EXPECT_TRUE(sameGrid(*profile, *identity)) << inputs << ' ' << outputs << ' ' << points;
    }
}

TEST_F(CmykIcc, GridOfAClaimThatNoFileHoldsIsNotLoaded) {
    profile->grid[5] = 1;
    Bytes lut = lutHeader(1, 15, 15, 255);
    lut.resize(lut.size() + 4096, 9);
    ASSERT_EQ(load({{"A2B0", lut}}), 1);
    EXPECT_EQ(profile->grid[5], 1u);
}

TEST_F(CmykIcc, ManyDirectoryEntriesForOneTableAreLoadedInNoTime) {
    std::vector<Tag> elements(2000, {"A2B0", {}});
    elements[0].element = smallLut8();
    ASSERT_EQ(load(elements), 1);
    EXPECT_EQ(profile->grid[nodeAt(32, 32, 32, 32)], 0xFFFFFFFFu);
}

}  // namespace
}  // namespace ko::test
