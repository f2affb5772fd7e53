// The rows of every kind that this processor runs give the bits of the plain kernels.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "grid/rows.h"
#include "tests/support/guarded.h"

namespace {
using namespace ko::grid;
using ko::test::Guarded;

// What the tests ask of each kernel, whatever its nodes and values are.
template <class Node, class Value>
struct Case {
    const char* name;
    Kernel<Node, Value> Rows::*kernel;
    size_t channels, outputs;
    size_t nodeEntries;  // of its grid, in bytes or words or shorts
};
using Shorts = Case<uint16_t, uint16_t>;
using Words = Case<uint32_t, uint16_t>;
using Bytes = Case<uint8_t[4], uint8_t>;
constexpr size_t power(size_t base, size_t exponent) {
    return exponent == 0 ? 1 : base * power(base, exponent - 1);
}
constexpr Shorts kShorts[] = {
    {"shortsOfThree", &Rows::shortsOfThree, 3, 4, power(17, 3) * 4},
    {"shortsOfFour", &Rows::shortsOfFour, 4, 4, power(17, 4) * 4},
};
constexpr Words kWords[] = {
    {"wordsOfFour17", &Rows::wordsOfFour17, 4, 4, power(17, 4)},
    {"wordsOfFour33", &Rows::wordsOfFour33, 4, 4, power(33, 4)},
    {"wordsOfThree", &Rows::wordsOfThree, 3, 3, power(17, 3)},
};
constexpr Bytes kBytes[] = {
    {"bytesOfThree", &Rows::bytesOfThree, 3, 4, power(9, 3)},
    {"dimmedBytesOfThree", &Rows::dimmedBytesOfThree, 4, 3, power(9, 3)},
};
void forEachCase(auto check) {
    for (const Shorts& one : kShorts) check(one);
    for (const Words& one : kWords) check(one);
    for (const Bytes& one : kBytes) check(one);
}

const Rows& plainRows() { return *allRows().front(); }
std::vector<const Rows*> fastRows() { return {allRows().begin() + 1, allRows().end()}; }

// The bytes of a grid. Shorts of builders are at most 4095; hosts may use all 16 bits.
enum class Grid { random,
                  narrow,
                  extreme,
                  smooth };
constexpr Grid kGrids[] = {Grid::random, Grid::narrow, Grid::extreme, Grid::smooth};
template <class Node>
std::vector<uint8_t> gridBytes(size_t entries, Grid kind, uint32_t seed = 8) {
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(entries * sizeof(Node));
    constexpr size_t kEntry = std::is_same_v<Node, uint16_t> ? 2 : 1;
    for (size_t at = 0; at < bytes.size(); at += kEntry) {
        uint32_t value = 0;
        switch (kind) {
            case Grid::random: value = static_cast<uint32_t>(random()); break;
            case Grid::narrow: value = kEntry == 2 ? 2000 : 100; break;
            case Grid::extreme: value = random() % 2 ? 0xffff : 0; break;
            case Grid::smooth: value = static_cast<uint32_t>(at / kEntry / 4 % 17 * 15); break;
        }
        if (kind == Grid::narrow) value += static_cast<uint32_t>(random() % 4);
        for (size_t byte = 0; byte < kEntry; ++byte)
            bytes[at + byte] = static_cast<uint8_t>(value >> 8 * byte);
    }
    return bytes;
}

// Random levels, the last half of them within a few levels of a cell's ends.
std::vector<uint8_t> randomLevels(size_t count, uint32_t seed = 7) {
    std::mt19937 random(seed);
    std::vector<uint8_t> levels(count);
    for (uint8_t& level : levels) level = static_cast<uint8_t>(random());
    for (size_t at = levels.size() / 2; at < levels.size(); ++at)
        levels[at] = static_cast<uint8_t>((levels[at] & 0xf0) + random() % 5 - 2);
    return levels;
}

// Every level on each axis, the others at all combinations of levels about a cell's ends.
std::vector<uint8_t> axesAndEdges(size_t channels) {
    constexpr uint8_t kEnds[] = {0, 1, 14, 15, 16, 31, 32, 239, 240, 247, 248, 254, 255};
    std::vector<uint8_t> levels;
    const size_t others = power(std::size(kEnds), channels - 1);
    for (size_t axis = 0; axis < channels; ++axis)
        for (size_t other = 0; other < others; ++other)
            for (int level = 0; level < 256; level += channels == 3 ? 1 : 5) {
                size_t rest = other;
                for (size_t channel = 0; channel < channels; ++channel) {
                    if (channel == axis) {
                        levels.push_back(static_cast<uint8_t>(level));
                    } else {
                        levels.push_back(kEnds[rest % std::size(kEnds)]);
                        rest /= std::size(kEnds);
                    }
                }
            }
    return levels;
}

template <class Node, class Value>
std::vector<Value> results(const Case<Node, Value>& one, const Rows& rows, const void* grid,
                           const std::vector<uint8_t>& levels) {
    const size_t pixels = levels.size() / one.channels;
    std::vector<Value> output(pixels * one.outputs);
    const auto count = static_cast<int32_t>(pixels);
    (rows.*one.kernel).row(static_cast<const Node*>(grid), levels.data(), count, output.data());
    return output;
}
template <class Node, class Value>
void expectSame(const Case<Node, Value>& one, const std::vector<uint8_t>& grid,
                const std::vector<uint8_t>& levels) {
    const auto plain = results(one, plainRows(), grid.data(), levels);
    const auto outputs = static_cast<ptrdiff_t>(one.outputs);
    for (const Rows* const rows : fastRows()) {
        const auto fast = results(one, *rows, grid.data(), levels);
        const auto at = std::ranges::mismatch(plain, fast).in1 - plain.begin();
        ASSERT_TRUE(plain == fast)
            << one.name << " in " << rows->name << ", pixel " << at / outputs;
    }
}

TEST(GridRows, AreExactForAMillionPixelsOfEveryGrid) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        const auto levels = randomLevels(one.channels * 250000);
        for (const Grid kind : kGrids)
            expectSame(one, gridBytes<Node>(one.nodeEntries, kind), levels);
    });
}

TEST(GridRows, AreExactOnEveryAxisAndAtEveryEdgeOfCells) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        const auto levels = axesAndEdges(one.channels);
        expectSame(one, gridBytes<Node>(one.nodeEntries, Grid::random, 9), levels);
    });
}

// Whole quotients are where a sum that is off by a rounding would fall to the number below.
TEST(GridRows, AreExactWhereEveryBlendIsAWholeNumber) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        const auto levels = randomLevels(one.channels * 20000);
        for (const int level : {1, 3, 15, 16, 17, 127, 254, 255}) {
            std::vector<uint8_t> grid(one.nodeEntries * sizeof(Node), static_cast<uint8_t>(level));
            int32_t expected = std::is_same_v<Value, uint8_t> ? level : 16 * level;
            if constexpr (std::is_same_v<Node, uint16_t>) {
                const auto high = static_cast<uint8_t>(level / 16);
                for (size_t at = 1; at < grid.size(); at += 2) grid[at] = high;
                expected = std::min(level / 16 << 8 | level, 4080);
            }
            expectSame(one, grid, levels);
            if (one.outputs == 3 && one.channels == 4) continue;  // dimmed
            for (const Value value : results(one, *fastRows().back(), grid.data(), levels))
                ASSERT_EQ(value, expected) << one.name;
        }
    });
}

TEST(GridRows, OfEveryLengthTouchNothingBeforeOrAfter) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        const auto bytes = gridBytes<Node>(one.nodeEntries, Grid::random);
        const Guarded<uint8_t> grid{std::span(bytes)};
        for (size_t pixels = 0; pixels <= 40; ++pixels) {
            auto levels = randomLevels(one.channels * pixels, static_cast<uint32_t>(pixels));
            // The last pixels take the last nodes of the grid.
            for (uint8_t& level : std::span(levels).subspan(levels.size() / 2))
                level = static_cast<uint8_t>(level | 0xf8);
            const Guarded<uint8_t> input{std::span<const uint8_t>(levels)};
            const auto plain = results(one, plainRows(), bytes.data(), levels);
            for (const Rows* const rows : fastRows()) {
                const std::vector<Value> blank(one.outputs * (pixels + 1), Value{0xaa});
                const Guarded<Value> output{std::span(blank)};
                Value* const to = output.data() + one.outputs;  // to the end of the page
                (rows->*one.kernel)
                    .row(reinterpret_cast<const Node*>(grid.data()), input.data(),
                         static_cast<int32_t>(pixels), to);
                ASSERT_TRUE(std::equal(plain.begin(), plain.end(), to))
                    << one.name << " in " << rows->name << ", " << pixels << " pixels";
                ASSERT_TRUE(std::all_of(output.data(), to, [](Value v) { return v == 0xaa; }));
            }
        }
    });
}

TEST(GridRows, OfNoPixelsOrFewerWriteNothing) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        for (const Rows* const rows : allRows())
            for (const int32_t pixels : {0, -1, INT32_MIN})
                (rows->*one.kernel).row(nullptr, nullptr, pixels, nullptr);
    });
}

// Runs of all lengths that begin at all places of a group.
TEST(GridRows, GiveEqualPixelsTheSameResultsWhereverTheyBegin) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        const auto grid = gridBytes<Node>(one.nodeEntries, Grid::random);
        std::vector<uint8_t> levels;
        std::mt19937 random(10);
        for (size_t run = 1; run < 60; ++run) {
            uint8_t pixel[4];
            for (uint8_t& level : pixel) level = static_cast<uint8_t>(random());
            for (size_t at = 0; at < run; ++at)
                levels.insert(levels.end(), pixel, pixel + one.channels);
        }
        expectSame(one, grid, levels);
    });
}

TEST(GridRows, OfOnePixelAreWhatOneGives) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        const auto grid = gridBytes<Node>(one.nodeEntries, Grid::random);
        const auto* const nodes = reinterpret_cast<const Node*>(grid.data());
        const auto levels = randomLevels(one.channels * 20000, 11);
        const auto plain = results(one, plainRows(), nodes, levels);
        for (const Rows* const rows : allRows())
            for (size_t at = 0; at * one.channels < levels.size(); ++at) {
                uint32_t pixel = 0;
                for (size_t k = 0; k < one.channels; ++k)
                    pixel |= static_cast<uint32_t>(levels[at * one.channels + k]) << 8 * k;
                const uint64_t words = (rows->*one.kernel).one(nodes, pixel);
                for (size_t k = 0; k < one.outputs; ++k)
                    ASSERT_EQ(words >> 16 * k & 0xffff, plain[at * one.outputs + k])
                        << one.name << " in " << rows->name;
            }
    });
}

TEST(GridRows, SeeWhatIsWrittenIntoAGridBetweenTwoCalls) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        auto grid = gridBytes<Node>(one.nodeEntries, Grid::random);
        const std::vector<uint8_t> levels(one.channels * 40, 100);
        for (const Rows* const rows : fastRows()) {
            (void)results(one, *rows, grid.data(), levels);
            for (uint8_t& byte : grid) byte = static_cast<uint8_t>(byte * 5 + 1);
            ASSERT_TRUE(results(one, *rows, grid.data(), levels) ==
                        results(one, plainRows(), grid.data(), levels))
                << one.name << " in " << rows->name;
        }
    });
}

TEST(GridRows, AreChosenByNameWhereTheyRunAndTheBestOtherwise) {
    ASSERT_GE(allRows().size(), 2u);
    EXPECT_STREQ(allRows()[0]->name, "plain");
    EXPECT_STREQ(allRows()[1]->name, "sse2");
    for (const Rows* const rows : allRows()) EXPECT_EQ(&rowsFor(rows->name), rows);
    EXPECT_EQ(&rowsFor(""), allRows().back());
    EXPECT_EQ(&rowsFor("mmx"), allRows().back());
}

TEST(GridKernels, TakeLevelsOutsideTheScaleAsItsEnds) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        const auto grid = gridBytes<Node>(one.nodeEntries, Grid::random);
        const auto* const nodes = reinterpret_cast<const Node*>(grid.data());
        int32_t outside[4] = {INT32_MIN, 256, -1, INT32_MAX}, ends[4] = {0, 255, 0, 255};
        const auto kernel = (rows().*one.kernel).one;
        throughOne<4, 3>(kernel, nodes, outside);
        throughOne<4, 3>(kernel, nodes, ends);
        for (size_t k = 0; k < 3; ++k) EXPECT_EQ(outside[k], ends[k]) << one.name;
    });
}

// What takes minutes: every colour of three channels, and a hundred million pixels of four.
TEST(GridRows, DISABLED_AreExactForEveryColourAndAHundredMillionPixels) {
    forEachCase([]<class Node, class Value>(const Case<Node, Value>& one) {
        for (const Grid kind : kGrids) {
            const auto grid = gridBytes<Node>(one.nodeEntries, kind, 12);
            constexpr size_t kPortion = size_t{1} << 20;
            const bool all = one.channels == 3;
            std::vector<uint8_t> levels(one.channels * kPortion);
            for (uint32_t portion = 0; portion < (all ? 16u : 24u); ++portion) {
                if (all)
                    for (size_t at = 0; at < levels.size(); ++at)
                        levels[at] = static_cast<uint8_t>((portion << 20 | at / 3) >> 8 * (at % 3));
                else levels = randomLevels(levels.size(), 100 + portion);
                expectSame(one, grid, levels);
                if (testing::Test::HasFatalFailure()) return;
            }
        }
    });
}

}  // namespace
