// The built-in tables as data: exact entries, monotony, smoothness, and where they come from.
#include "front/builtin_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

#include "front/generate_builtin_tables.h"

namespace {
using namespace ko::builtin;

constexpr int kLast = ko::grid::kBytePoints - 1;
constexpr size_t kSteps[3] = {81, 9, 1};

size_t nodeOf(int x, int y, int z) { return static_cast<size_t>((x * 9 + y) * 9 + z); }

using Entry = std::array<int, 4>;
Entry entryOf(const uint8_t (&values)[4]) { return {values[0], values[1], values[2], values[3]}; }

// Calls use(node, axis, place on that axis) for every node and axis.
template <class Use>
void alongGridLines(Use use) {
    for (int x = 0; x <= kLast; ++x)
        for (int y = 0; y <= kLast; ++y)
            for (int z = 0; z <= kLast; ++z) {
                const int places[3] = {x, y, z};
                for (size_t axis = 0; axis < 3; ++axis) use(nodeOf(x, y, z), axis, places[axis]);
            }
}

int largestSecondDifference(const uint8_t (&table)[kNodes][4], size_t output) {
    int largest = 0;
    alongGridLines([&](size_t node, size_t axis, int place) {
        if (place == 0 || place == kLast) return;
        const size_t step = kSteps[axis];
        largest = std::max(largest, std::abs(table[node - step][output] - 2 * table[node][output] +
                                             table[node + step][output]));
    });
    return largest;
}

TEST(BuiltinTables, AreWhatTheirGeneratorMakes) {
    const Table made = generateRgbToCmyk();
    for (size_t node = 0; node < kNodes; ++node)
        ASSERT_EQ(std::memcmp(made[node].data(), kRgbToCmyk[node], 4), 0) << node;
}

TEST(BuiltinTables, GiveTheExactInksOfBlackWhitePureLightsAndMidGrey) {
    EXPECT_EQ(entryOf(kRgbToCmyk[nodeOf(0, 0, 0)]), (Entry{255, 255, 255, 255}));
    EXPECT_EQ(entryOf(kRgbToCmyk[nodeOf(8, 8, 8)]), (Entry{0, 0, 0, 0}));
    EXPECT_EQ(entryOf(kRgbToCmyk[nodeOf(8, 0, 0)]), (Entry{6, 255, 233, 0}));
    EXPECT_EQ(entryOf(kRgbToCmyk[nodeOf(0, 8, 0)]), (Entry{236, 0, 255, 0}));
    EXPECT_EQ(entryOf(kRgbToCmyk[nodeOf(0, 0, 8)]), (Entry{244, 237, 0, 0}));
    EXPECT_EQ(entryOf(kRgbToCmyk[nodeOf(8, 8, 0)]), (Entry{8, 5, 233, 0}));
    EXPECT_EQ(entryOf(kRgbToCmyk[nodeOf(4, 4, 4)]), (Entry{109, 79, 72, 32}));
}

TEST(BuiltinTables, GiveTheExactLightOfPaperSolidsAndMidMix) {
    EXPECT_EQ(entryOf(kCmyToRgb[nodeOf(0, 0, 0)]), (Entry{255, 255, 255, 0}));
    EXPECT_EQ(entryOf(kCmyToRgb[nodeOf(8, 8, 8)]), (Entry{0, 0, 0, 0}));
    EXPECT_EQ(entryOf(kCmyToRgb[nodeOf(8, 0, 0)]), (Entry{0, 160, 198, 0}));
    EXPECT_EQ(entryOf(kCmyToRgb[nodeOf(0, 8, 0)]), (Entry{240, 2, 127, 0}));
    EXPECT_EQ(entryOf(kCmyToRgb[nodeOf(0, 0, 8)]), (Entry{255, 255, 0, 0}));
    EXPECT_EQ(entryOf(kCmyToRgb[nodeOf(4, 4, 4)]), (Entry{127, 101, 94, 0}));
}

TEST(BuiltinTables, LetNoInkRiseWithItsOwnLight) {
    alongGridLines([](size_t node, size_t axis, int place) {
        if (place < kLast) {
            EXPECT_LE(kRgbToCmyk[node + kSteps[axis]][axis], kRgbToCmyk[node][axis]) << node;
        }
    });
}

TEST(BuiltinTables, LetBlackRiseWithNoLight) {
    alongGridLines([](size_t node, size_t axis, int place) {
        if (place < kLast) {
            EXPECT_LE(kRgbToCmyk[node + kSteps[axis]][3], kRgbToCmyk[node][3]) << node;
        }
    });
}

TEST(BuiltinTables, LetNoLightRiseWithAnyInk) {
    alongGridLines([](size_t node, size_t axis, int place) {
        for (size_t k = 0; k < 3 && place < kLast; ++k) {
            EXPECT_LE(kCmyToRgb[node + kSteps[axis]][k], kCmyToRgb[node][k]) << node;
        }
    });
}

TEST(BuiltinTables, KeepTheSecondDifferencesOfInksWithin36) {
    EXPECT_LE(largestSecondDifference(kRgbToCmyk, 0), 27);
    EXPECT_LE(largestSecondDifference(kRgbToCmyk, 1), 36);
    EXPECT_LE(largestSecondDifference(kRgbToCmyk, 2), 34);
    EXPECT_LE(largestSecondDifference(kRgbToCmyk, 3), 1);
}

TEST(BuiltinTables, KeepTheSecondDifferencesOfLightWithin3) {
    for (size_t k = 0; k < 3; ++k) EXPECT_LE(largestSecondDifference(kCmyToRgb, k), 3);
}

// From white to black: nothing at first, then each step a little larger than the one before.
TEST(BuiltinTables, StartBlackGently) {
    int previous = 0, step = 0;
    for (int place = kLast; place >= 0; --place) {
        const int black = kRgbToCmyk[nodeOf(place, place, place)][3];
        if (place >= 6) {
            EXPECT_LE(black, 4);
        }
        EXPECT_GE(black - previous, step - 1) << place;
        step = black - previous;
        previous = black;
    }
    EXPECT_EQ(previous, 255);
}

TEST(BuiltinTables, PutNoBlackWhereAnyLightIsFull) {
    for (int x = 0; x <= kLast; ++x)
        for (int y = 0; y <= kLast; ++y) {
            EXPECT_EQ(kRgbToCmyk[nodeOf(kLast, x, y)][3], 0);
            EXPECT_EQ(kRgbToCmyk[nodeOf(x, kLast, y)][3], 0);
            EXPECT_EQ(kRgbToCmyk[nodeOf(x, y, kLast)][3], 0);
        }
}

}  // namespace
