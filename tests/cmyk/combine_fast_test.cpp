// The row loop gives the grid of the plain loop, bit by bit.
#include <gtest/gtest.h>

#include "cmyk/combine_fast.h"
#include "tests/icc/lut_builder.h"

using namespace ko::cmyk;
using ko::icc::Bridge;
using ko::test::LutSpec;
using ko::test::MadeLut;

namespace {

struct Case {
    CmsLinkSettings settings{};
    LutSpec source{4, 3, 9, 2}, destination{3, 4, 33, 1};
    Bridge bridge = Bridge::none;
    bool smooth = true;  // straight curves; otherwise anything
    bool converts = true, black = false, bentBase = false, otherGrid = false;
};

// Looks at every node of a step; the plain chain is slow.
int32_t firstDifference(const Case& c, int32_t step = 7) {
    MadeLut source(c.source, ko::icc::lutClose), destination(c.destination, ko::icc::lutClose);
    for (MadeLut* lut : {&source, &destination}) {
        lut->wild(1);
        if (c.smooth) lut->identityCurves();
        EXPECT_TRUE(ko::icc::lutSetup(lut->get()));
    }
    Conversion conversion = kNoConversion;
    if (c.converts) conversion.emplace(*source.get(), *destination.get(), c.bridge);
    const auto base = createProfile();
    if (c.bentBase) {
        for (int32_t curve : {1, 3, 6}) {
            base->curveFlags[curve][20] = 1;
            base->curveValues[curve][20] = static_cast<uint8_t>(100 + curve);
        }
    }
    if (c.otherGrid) {
        std::mt19937 random(2);
        for (uint32_t& word : base->grid) word = word / 2 ^ (random() & 0x03030303);
    }
    int16_t black[256];
    for (int32_t x = 0; x < 256; ++x) black[x] = static_cast<int16_t>(255 - x);

    const NodeChain chain(c.settings, base.get(), c.black ? black : nullptr);
    const NodeChain bare(c.settings, nullptr, c.black ? black : nullptr);
    const auto fast = createProfile();
    combineNodesFast(chain, conversion, *fast);
    const auto convert = [&](Cmyk& cmyk) {
        if (conversion) convertThroughIcc(*conversion, cmyk);
    };
    for (int32_t n = 0; n < KOLINK_CMYK_NODES; n += step) {
        const Cmyk node{n / 35937, n / 1089 % 33, n / 33 % 33, n % 33};
        if (combineNode(chain, node, convert) != fast->grid[n]) return n;
    }
    if (c.bentBase || c.otherGrid || step != 1) return -1;
    // No base is the one that changes nothing.
    const auto without = createProfileWithoutGrid();
    combineNodesFast(bare, conversion, *without);
    for (int32_t n = 0; n < KOLINK_CMYK_NODES; ++n)
        if (without->grid[n] != fast->grid[n]) return n;
    return -1;
}

}  // namespace

TEST(FastCombination, EqualsThePlainOneForAPressPair) { EXPECT_EQ(firstDifference({}, 1), -1); }

TEST(FastCombination, EqualsThePlainOneForWildCurvesInEveryPrecision) {
    for (int32_t source : {1, 2})
        for (int32_t destination : {1, 2}) {
            Case c;
            c.source = {4, 3, 5, source};
            c.destination = {3, 4, 9, destination};
            c.smooth = false;
            EXPECT_EQ(firstDifference(c), -1) << source << ' ' << destination;
        }
}

TEST(FastCombination, EqualsThePlainOneBetweenConnectionSpaces) {
    for (const Bridge bridge : {Bridge::xyzToLab, Bridge::labToXyz}) {
        Case c;
        c.bridge = bridge;
        c.destination = {3, 4, 9, 2};
        EXPECT_EQ(firstDifference(c), -1);
    }
}

TEST(FastCombination, EqualsThePlainOneWithTintBlackAndPreservation) {
    Case c;
    c.settings.whiteMode = 2;
    c.settings.limit = 300;
    c.settings.paperY = 9, c.settings.paperK = 3;
    c.settings.preservation = 2;
    c.black = true;
    EXPECT_EQ(firstDifference(c), -1);
    c.settings.paperY = 0;
    EXPECT_EQ(firstDifference(c), -1);
    c.settings.limit = 5000;  // tinted to the last node
    EXPECT_EQ(firstDifference(c), -1);
}

TEST(FastCombination, EqualsThePlainOneWithWhiteKept) {
    Case c;
    c.settings.whiteMode = 1;
    c.settings.preservation = 1;
    EXPECT_EQ(firstDifference(c), -1);
}

TEST(FastCombination, EqualsThePlainOneThroughABaseProfile) {
    Case c;
    c.bentBase = true;
    EXPECT_EQ(firstDifference(c), -1) << "curves alone";
    c.otherGrid = true;
    EXPECT_EQ(firstDifference(c), -1) << "curves and grid";
    c.settings.whiteMode = 2;
    c.settings.limit = 500;
    c.settings.paperC = 11;
    EXPECT_EQ(firstDifference(c), -1) << "and a tint";
    c.converts = false;
    EXPECT_EQ(firstDifference(c), -1) << "and no conversion";
}

TEST(FastCombination, EqualsThePlainOneForOtherChannelCounts) {
    Case c;
    c.source = {3, 2, 5, 2};
    c.destination = {4, 3, 5, 1};
    EXPECT_EQ(firstDifference(c), -1);
    c.source = {2, 4, 5, 1};
    c.destination = {1, 4, 5, 2};
    EXPECT_EQ(firstDifference(c), -1);
}
