// The plain kernels against sums that are formed another way.
#include "grid/blend.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "grid/shorts.h"

namespace {
using namespace ko::grid;

std::vector<uint16_t> randomNodes(int32_t gridPoints, int32_t axes, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint16_t> nodes(static_cast<size_t>(nodeCount(gridPoints, axes)) * 4);
    for (uint16_t& entry : nodes) entry = static_cast<uint16_t>(random() % 4081);
    return nodes;
}

// Along one axis after the other, the last first, in whole numbers of the cell's volume.
int64_t along(const std::vector<uint16_t>& nodes, const std::array<Cell, 4>& cells, size_t points,
              size_t axis, size_t node, size_t k) {
    if (axis == 4) return nodes[node * 4 + k];
    const Cell& cell = cells[axis];
    const size_t lower = node * points + static_cast<size_t>(cell.index);
    return along(nodes, cells, points, axis + 1, lower, k) * (cell.width - cell.distance) +
           along(nodes, cells, points, axis + 1, lower + 1, k) * cell.distance;
}

// Gives a quotient of whole numbers, whichever numbers it is formed in.
TEST(Multilinear, IsTheTruncatedQuotientOnEveryGridOfTwoToThirtyThreePoints) {
    std::mt19937 random(1);
    for (int32_t points = 2; points <= 33; ++points) {
        const auto nodes = randomNodes(points, 4, static_cast<uint32_t>(points));
        const auto entry = [&](size_t node, size_t k) { return nodes[node * 4 + k]; };
        for (int32_t colour = 0; colour < 2000; ++colour) {
            std::array<Cell, 4> cells;
            int32_t link[4];
            int64_t volume = 1;
            for (size_t axis = 0; axis < 4; ++axis) {
                link[axis] = static_cast<int32_t>(random() & 255);
                cells[axis] = evenCell(link[axis], points, 255);
                volume *= cells[axis].width;
            }
            int32_t whole[4], doubles[4];
            multilinear<uint32_t, uint64_t, 4>(endsOf<uint32_t>(cells), static_cast<size_t>(points),
                                               entry, 1, whole);
            multilinear<uint32_t, double, 4>(endsOf<uint32_t>(cells), static_cast<size_t>(points),
                                             entry, 1, doubles);
            shortsOfFour(nodes.data(), points, link);
            for (size_t k = 0; k < 4; ++k) {
                const int64_t sum = along(nodes, cells, static_cast<size_t>(points), 0, 0, k);
                ASSERT_EQ(whole[k], sum / volume) << points;
                ASSERT_EQ(doubles[k], whole[k]) << points;
                ASSERT_EQ(link[k], whole[k]) << points;
            }
        }
    }
}

TEST(Multilinear, TakesTheScaleBeforeItDivides) {
    const std::array<Cell, 1> cells{{{0, 16, 1}}};
    const auto entry = [](size_t node, size_t) { return static_cast<int32_t>(node); };
    int32_t output[1];
    multilinear<int32_t, int32_t, 1>(endsOf<int32_t>(cells), 2, entry, 1, output);
    EXPECT_EQ(output[0], 0);
    multilinear<int32_t, int32_t, 1>(endsOf<int32_t>(cells), 2, entry, 16, output);
    EXPECT_EQ(output[0], 1);
}

TEST(FallingOrder, PutsTheLargestFractionFirstAndEarlierAxesFirstAmongEquals) {
    for (int32_t x = 0; x < 4; ++x)
        for (int32_t y = 0; y < 4; ++y)
            for (int32_t z = 0; z < 4; ++z) {
                const int32_t fractions[3] = {x, y, z};
                std::array<uint8_t, 3> expected{0, 1, 2};
                std::stable_sort(expected.begin(), expected.end(), [&](uint8_t a, uint8_t b) {
                    return fractions[a] > fractions[b];
                });
                const auto& order = fallingOrder(x, y, z);
                for (size_t i = 0; i < 3; ++i)
                    EXPECT_EQ(fractions[order[i]], fractions[expected[i]]);
                EXPECT_EQ(order[0] + order[1] + order[2], 3);
                EXPECT_NE(order[0], order[1]);
            }
}

// On nodes that rise evenly along each axis every simplex gives the plane through them.
TEST(Tetrahedral, KeepsWhatIsStraight) {
    constexpr size_t kPoints = 5;
    const auto entry = [](size_t node, size_t k) {
        const size_t at[3] = {node / 25, node / 5 % 5, node % 5};
        return static_cast<int32_t>(1024 * at[k]);
    };
    std::mt19937 random(2);
    for (int32_t colour = 0; colour < 5000; ++colour) {
        std::array<Cell, 3> cells;
        for (Cell& cell : cells)
            cell = {static_cast<int32_t>(random() % 4), 64, static_cast<int32_t>(random() % 65)};
        int32_t outputs[3];
        tetrahedral(cells, kPoints, entry, outputs);
        for (size_t k = 0; k < 3; ++k)
            ASSERT_EQ(outputs[k], 1024 * cells[k].index + 16 * cells[k].distance);
    }
}

}  // namespace
