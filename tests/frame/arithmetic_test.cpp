#include "frame/arithmetic.h"

#include <gtest/gtest.h>

#include <limits>

#include "frame/colour_words.h"

namespace ko {
namespace {

constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();

TEST(Arithmetic, TruncatesTowardZero) {
    EXPECT_EQ(truncateToInt32(2.9), 2);
    EXPECT_EQ(truncateToInt32(-2.9), -2);
}

TEST(Arithmetic, SaturatesWhatDoesNotFit) {
    EXPECT_EQ(truncateToInt32(2147483647.9), kMax);
    EXPECT_EQ(truncateToInt32(2147483648.0), kMax);
    EXPECT_EQ(truncateToInt32(-2147483648.9), kMin);
    EXPECT_EQ(truncateToInt32(-1e300), kMin);
    EXPECT_EQ(truncateToInt32(std::numeric_limits<double>::infinity()), kMax);
    EXPECT_EQ(truncateToInt32(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(Arithmetic, WrapsIntegers) {
    EXPECT_EQ(wrapAdd(kMax, 1), kMin);
    EXPECT_EQ(wrapSubtract(kMin, 1), kMax);
    EXPECT_EQ(wrapMultiply(65536, 65536), 0);
}

TEST(Arithmetic, DividesByAnything) {
    EXPECT_EQ(safeDivide(-7, 2), -3);
    EXPECT_EQ(safeDivide(7, 0), 0);
    EXPECT_EQ(safeDivide(kMin, -1), kMin);
}

TEST(ColourWords, RgbIsPackedWithRedLow) {
    const int32_t r = 1, g = 2, b = 3;
    EXPECT_EQ(limitedRgb(r, g, b), 0x030201u);
}

TEST(ColourWords, CmykIsPackedWithBlackLow) {
    const int32_t c = 1, m = 2, y = 3, k = 4;
    EXPECT_EQ(limitedCmyk(c, m, y, k), 0x01020304u);
}

TEST(ColourWords, LimitsEachChannel) {
    const int32_t below = -1, above = 256, least = kMin, most = kMax;
    EXPECT_EQ(limitedRgb(below, above, below), 0x00ff00u);
    EXPECT_EQ(limitedCmyk(most, least, above, below), 0xff00ff00u);
}

}  // namespace
}  // namespace ko
