#include "link/cell.h"

#include <gtest/gtest.h>

namespace {
using ko::link::Cell;
using ko::link::locateCell;

TEST(LinkCell, HoldsItsLevelOnEveryGrid) {
    for (int32_t points = 2; points <= 256; ++points)
        for (int32_t level = 0; level < 256; ++level) {
            const Cell cell = locateCell(level, points);
            ASSERT_GE(cell.index, 0);
            ASSERT_LE(cell.index, points - 2);
            ASSERT_GE(cell.width, 1);
            ASSERT_GE(cell.distance, 0);
            ASSERT_LE(cell.distance, cell.width) << level << " of " << points;
        }
}

TEST(LinkCell, IsFifteenOrSixteenLevelsWideWithSeventeenPoints) {
    for (int32_t level = 0; level < 256; ++level) {
        const int32_t width = locateCell(level, 17).width;
        EXPECT_TRUE(width == 15 || width == 16) << level;
    }
}

}  // namespace
