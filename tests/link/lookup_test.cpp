// One colour through a link.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <utility>

#include "tests/link/links.h"

namespace {
using ko::test::LinkHolder;
using ko::test::randomLink;
using Colour = std::array<int32_t, 4>;

Colour converted(const LinkProfile& link, Colour colour) {
    jKoLinkCOLtoCMYK16(&link, colour.data());
    return colour;
}

Colour nodeOf(const LinkProfile& link, size_t node) {
    const uint16_t* values = link.grid + node * 4;
    return {values[0], values[1], values[2], values[3]};
}

// A grid whose first output is a number of the host's choice at each node.
template <class Value>
LinkHolder gridOf(int32_t channels, int32_t points, Value value) {
    LinkHolder link(jKoLinkCreateProfile(channels, points));
    for (size_t node = 0; node < ko::test::gridSize(*link) / 4; ++node)
        link->grid[node * 4] = static_cast<uint16_t>(value(node));
    return link;
}

TEST(LinkLookup, GivesTheLastNodeForFullInputOnEveryAxis) {
    for (const int32_t channels : {3, 4}) {
        const LinkHolder link = randomLink(channels, 17, 1, 4080);
        EXPECT_EQ(converted(*link, {255, 255, 255, 255}),
                  nodeOf(*link, ko::test::gridSize(*link) / 4 - 1));
    }
}

TEST(LinkLookup, GivesTheFirstNodeForZeroInputOnEveryAxis) {
    for (const int32_t channels : {3, 4}) {
        const LinkHolder link = randomLink(channels, 17, 2, 4080);
        EXPECT_EQ(converted(*link, {0, 0, 0, 0}), nodeOf(*link, 0));
    }
}

TEST(LinkLookup, LimitsNodesAbove4080) {
    for (const int32_t channels : {3, 4})
        for (const uint16_t value : {uint16_t{4081}, uint16_t{4095}, uint16_t{65535}}) {
            const LinkHolder link = gridOf(channels, 17, [&](size_t) { return value; });
            EXPECT_EQ(converted(*link, {100, 50, 200, 3})[0], 4080);
            EXPECT_EQ(converted(*link, {255, 255, 255, 255})[0], 4080);
        }
}

TEST(LinkLookup, GivesEveryNodeAtItsOwnLevel) {
    const LinkHolder link = randomLink(3, 17, 3, 4080);
    for (int32_t r = 0; r < 17; ++r)
        for (int32_t g = 0; g < 17; ++g)
            for (int32_t b = 0; b < 17; ++b)
                ASSERT_EQ(converted(*link, {r * 255 / 16, g * 255 / 16, b * 255 / 16, 0}),
                          nodeOf(*link, static_cast<size_t>((r * 17 + g) * 17 + b)))
                    << r << ' ' << g << ' ' << b;
}

TEST(LinkLookup, GivesEveryCmykNodeAtItsOwnLevel) {
    const LinkHolder link = randomLink(4, 5, 3, 4080);
    for (int32_t node = 0; node < 625; ++node)
        ASSERT_EQ(converted(*link, {node / 125 * 255 / 4, node / 25 % 5 * 255 / 4,
                                    node / 5 % 5 * 255 / 4, node % 5 * 255 / 4}),
                  nodeOf(*link, static_cast<size_t>(node)));
}

TEST(LinkLookup, DoesNotReadTheFourthValueOfAThreeChannelLink) {
    const LinkHolder link = randomLink(3, 17, 4, 4095);
    EXPECT_EQ(converted(*link, {12, 34, 56, 0}), converted(*link, {12, 34, 56, INT32_MAX}));
}

TEST(LinkLookup, TheThreeChannelWorkerGivesTheSame) {
    const LinkHolder link = randomLink(3, 17, 5, 4095);
    std::mt19937 random(6);
    for (int i = 0; i < 1000; ++i) {
        Colour colour{};
        for (int32_t& value : colour) value = static_cast<int32_t>(random() % 256);
        Colour worker = colour;
        jKoLinkCOLtoCMYK16_3(link.get(), worker.data());
        ASSERT_EQ(worker, converted(*link, colour));
    }
}

// With two points a cell spans 0..255: fractions are level / 255 in single precision.
TEST(LinkLookup, BlendsRgbInTheTetrahedronOfTheFractionsOrder) {
    const auto corner = [](size_t node) { return node == 0b100 ? 1000 : node == 0b110 ? 100 : 0; };
    const LinkHolder link = gridOf(3, 2, corner);  // (1,0,0) and (1,1,0)
    const double a = static_cast<double>(200.0f / 255.0f), b = static_cast<double>(150.0f / 255.0f),
                 c = static_cast<double>(50.0f / 255.0f);
    // r >= g >= b runs through both corners, r >= b >= g through the first only.
    EXPECT_EQ(converted(*link, {200, 150, 50, 0})[0],
              static_cast<int32_t>(1000 * (a - b) + 100 * (b - c)));
    EXPECT_EQ(converted(*link, {200, 50, 150, 0})[0], static_cast<int32_t>(1000 * (a - b)));
    EXPECT_EQ(converted(*link, {150, 200, 50, 0})[0], static_cast<int32_t>(100 * (b - c)));
    EXPECT_EQ(converted(*link, {50, 200, 150, 0})[0], 0);
}

TEST(LinkLookup, GivesTheSameInWhicheverTetrahedronWhenFractionsAreEqual) {
    const LinkHolder link = randomLink(3, 17, 7, 4080);
    // The neighbours of an equal pair, one step in either channel, come from both tetrahedra.
    const auto blended = [&](int32_t r, int32_t g, int32_t b, bool rFirst) {
        const uint16_t* grid = link->grid;
        const auto at = [&](int i, int j, int k) { return grid[((i * 17 + j) * 17 + k) * 4]; };
        const double f = static_cast<double>(static_cast<float>(r) / 15.0f);
        const double low = static_cast<double>(static_cast<float>(b) / 15.0f);
        EXPECT_EQ(r, g);
        const uint16_t middle = rFirst ? at(1, 0, 0) : at(0, 1, 0);
        return static_cast<int32_t>(at(0, 0, 0) * (1 - f) + middle * (f - f) +
                                    at(1, 1, 0) * (f - low) + at(1, 1, 1) * low);
    };
    for (int32_t level = 0; level < 15; ++level) {
        EXPECT_EQ(converted(*link, {level, level, level / 2, 0})[0],
                  blended(level, level, level / 2, true));
        EXPECT_EQ(converted(*link, {level, level, level / 2, 0})[0],
                  blended(level, level, level / 2, false));
    }
}

// The float nearest n/15 lies above it, so what falls towards the next node falls a little early:
// a blend that is a whole number in exact fractions is one lower.
TEST(LinkLookup, KeepsRgbFractionsInSinglePrecision) {
    const LinkHolder link = gridOf(3, 17, [](size_t node) { return node / 289 == 0 ? 3000 : 0; });
    int32_t lower = 0;
    for (int32_t level = 1; level < 15; ++level) {
        const double f = static_cast<double>(static_cast<float>(level) / 15.0f);
        EXPECT_EQ(converted(*link, {level, 0, 0, 0})[0], static_cast<int32_t>(3000 * (1 - f)));
        if (static_cast<int32_t>(3000 * (1 - f)) != 3000 - 200 * level) ++lower;
    }
    EXPECT_GT(lower, 0);
}

TEST(LinkLookup, BlendsCmykOverAllSixteenCornersWithOneDivision) {
    const LinkHolder link = randomLink(4, 2, 8, 4095);
    std::mt19937 random(9);
    for (int i = 0; i < 2000; ++i) {
        Colour colour{};
        for (int32_t& value : colour) value = static_cast<int32_t>(random() % 256);
        uint64_t sum = 0;
        for (size_t corner = 0; corner < 16; ++corner) {
            uint64_t weight = 1;
            for (size_t axis = 0; axis < 4; ++axis) {
                const auto distance = static_cast<uint64_t>(colour[axis]);
                weight *= corner >> (3 - axis) & 1 ? distance : 255 - distance;
            }
            sum += weight * link->grid[corner * 4];
        }
        const auto expected = std::min<uint64_t>(4080, sum / (uint64_t{255} * 255 * 255 * 255));
        ASSERT_EQ(converted(*link, colour)[0], static_cast<int32_t>(expected));
    }
}

// The two ways differ on purpose: the diagonal of a cell whose corners are alternately 0 and 4080
// stays at the ends in a tetrahedron and passes through all corners in the full blend.
TEST(LinkLookup, InterpolatesRgbAndCmykDifferently) {
    const LinkHolder rgb =
        gridOf(3, 2, [](size_t node) { return node == 0 || node == 7 ? 0 : 4080; });
    EXPECT_EQ(converted(*rgb, {128, 128, 128, 0})[0], 0);
    const LinkHolder cmyk =
        gridOf(4, 2, [](size_t node) { return node == 0 || node == 15 ? 0 : 4080; });
    EXPECT_GT(converted(*cmyk, {128, 128, 128, 128})[0], 3000);
}

TEST(LinkLookup, ClampsInputsToTheLevelsThereAre) {
    for (const int32_t channels : {3, 4}) {
        const LinkHolder link = randomLink(channels, 17, 10, 4095);
        EXPECT_EQ(converted(*link, {-1, 256, INT32_MIN, INT32_MAX}),
                  converted(*link, {0, 255, 0, 255}));
    }
}

TEST(LinkLookup, ReadsAnyOtherNumberOfChannelsAsFour) {
    const LinkHolder link = randomLink(4, 3, 11, 4095);
    const Colour four = converted(*link, {10, 100, 200, 250});
    for (const int32_t channels : {INT32_MIN, -1, 0, 1, 2, 5, INT32_MAX}) {
        link->inputChannels = channels;
        EXPECT_EQ(converted(*link, {10, 100, 200, 250}), four) << channels;
    }
    link->inputChannels = 4;
}

TEST(LinkLookup, GivesZerosForARecordThatCannotBeLookedUp) {
    const LinkHolder link = randomLink(3, 17, 12, 4095);
    for (const int32_t points : {INT32_MIN, -1, 0, 1, 257, INT32_MAX}) {
        link->gridPoints = points;
        EXPECT_EQ(converted(*link, {1, 2, 3, 4}), Colour{}) << points;
    }
    link->gridPoints = 17;
    uint16_t* grid = std::exchange(link->grid, nullptr);
    EXPECT_EQ(converted(*link, {1, 2, 3, 4}), Colour{});
    link->grid = grid;
}

TEST(LinkLookup, WorksAtTheLargestGrid) {
    const LinkHolder link = gridOf(3, 256, [](size_t node) { return node / 65536 * 16; });
    for (int32_t level = 0; level < 256; ++level)
        EXPECT_EQ(converted(*link, {level, 255 - level, 7, 0})[0], level * 16);
}

}  // namespace
