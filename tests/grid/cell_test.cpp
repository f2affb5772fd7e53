#include "grid/cell.h"

#include <gtest/gtest.h>

namespace {
using namespace ko::grid;

TEST(EvenCell, HoldsItsLevelOnEveryGrid) {
    for (int32_t points = 2; points <= 256; ++points)
        for (int32_t level = 0; level < 256; ++level) {
            const Cell cell = evenCell(level, points, 255);
            ASSERT_GE(cell.index, 0);
            ASSERT_LE(cell.index, points - 2);
            ASSERT_GE(cell.width, 1);
            ASSERT_GE(cell.distance, 0);
            ASSERT_LE(cell.distance, cell.width) << level << " of " << points;
            ASSERT_EQ(evenLevel(cell.index, points, 255) + cell.distance, level);
            ASSERT_EQ(evenLevel(cell.index + 1, points, 255),
                      evenLevel(cell.index, points, 255) + cell.width);
        }
}

TEST(EvenCell, HoldsEveryLevelOfSixteenBitsWithoutWrapping) {
    for (const int32_t points : {2, 3, 17, 33, 4096, 65535, 65536})
        for (int32_t level = 0; level < 65536; ++level) {
            const Cell cell = evenCell(level, points, 65535);
            const int64_t cells = points - 1;
            const int64_t index = std::min(level * cells / 65535, cells - 1);
            ASSERT_EQ(cell.index, index) << level << " of " << points;
            ASSERT_EQ(cell.distance, level - index * 65535 / cells);
            ASSERT_EQ(cell.width, (index + 1) * 65535 / cells - index * 65535 / cells);
        }
}

TEST(EvenCell, IsFifteenOrSixteenLevelsWideWithSeventeenPoints) {
    for (int32_t level = 0; level < 256; ++level) {
        const int32_t width = evenCell(level, 17, 255).width;
        EXPECT_TRUE(width == 15 || width == 16) << level;
    }
}

TEST(EvenAxis, FindsTheCellsOfEvenCell) {
    for (const int32_t maximum : {255, 65535, 4080})
        for (const int32_t points : {2, 9, 17, 33, 256}) {
            const EvenAxis axis(points, maximum);
            for (int32_t level = 0; level <= maximum; ++level)
                ASSERT_EQ(axis.cellOf(level), evenCell(level, points, maximum))
                    << level << " of " << points << " on " << maximum;
        }
}

TEST(SteppedCell, HoldsItsLevelBetweenTwoPointsOfTheSameLaw) {
    for (const int32_t points : {2, 3, 5, 9, 17, 33, 65})
        for (int32_t level = 0; level < 256; ++level) {
            const Cell cell = steppedCell(level, points);
            const int32_t low = steppedLevel(cell.index, points);
            ASSERT_LE(cell.index, points - 2);
            ASSERT_EQ(low + cell.distance, level) << level << " of " << points;
            ASSERT_EQ(steppedLevel(cell.index + 1, points), low + cell.width);
            ASSERT_LE(cell.distance, cell.width);
        }
}

TEST(NodeCount, MultipliesThePointsOfEveryAxisAndStopsAtTheLargestNumber) {
    EXPECT_EQ(nodeCount(33, 4), 1185921u);
    EXPECT_EQ(nodeCount(17, 0), 1u);
    EXPECT_EQ(nodeCount(17, -3), 1u);
    EXPECT_EQ(nodeCount(0, 5), 0u);
    EXPECT_EQ(nodeCount(255, 8), 17878103347812890625u);
    EXPECT_EQ(nodeCount(256, 8), UINT64_MAX);
    EXPECT_EQ(nodeCount(2, INT32_MAX), UINT64_MAX);
    EXPECT_EQ(nodeCount(1, INT32_MAX), 1u);
}

TEST(Nodes, AreVisitedInStorageOrderTheLastAxisFastest) {
    int32_t visited = 0;
    forEachNode<3>(5, [&](const std::array<int32_t, 3>& node) {
        EXPECT_EQ((node[0] * 5 + node[1]) * 5 + node[2], visited);
        ++visited;
    });
    EXPECT_EQ(visited, 125);
}

}  // namespace
