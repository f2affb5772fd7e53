#include "frame/display.h"

#include <gtest/gtest.h>

namespace {
using namespace ko;

TEST(DisplayValue, ShowsLevelsAsTheyAreWhenTheModeIsNotZero) {
    for (const int32_t mode : {1, -1, 255}) {
        EXPECT_EQ(valueToDisplay(mode, 200), 200);
        EXPECT_EQ(valueFromDisplay(mode, 200), 200);
    }
}

TEST(DisplayValue, ShowsPercentWhenTheModeIsZero) {
    EXPECT_EQ(valueToDisplay(0, 128), 50);
    EXPECT_EQ(valueFromDisplay(0, 50), 128);
}

TEST(DisplayValue, ClampsFirst) {
    EXPECT_EQ(valueToDisplay(1, 300), 255);
    EXPECT_EQ(valueToDisplay(1, -1), 0);
    EXPECT_EQ(valueToDisplay(0, INT32_MAX), 100);
    EXPECT_EQ(valueFromDisplay(1, 300), 255);
    EXPECT_EQ(valueFromDisplay(0, 500), 255);
    EXPECT_EQ(valueFromDisplay(0, INT32_MIN), 0);
}

}  // namespace
