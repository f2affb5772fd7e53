// Numbers in the lines of text files.
#include "frame/scan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using ko::integerIn;
using ko::realIn;

TEST(IntegerInText, EndsAtTheFirstCharacterThatIsNoDigit) {
    EXPECT_EQ(integerIn("42"), 42);
    EXPECT_EQ(integerIn(" \t\n\v\f\r42x7"), 42);
    EXPECT_EQ(integerIn("+7"), 7);
    EXPECT_EQ(integerIn("-7"), -7);
    EXPECT_EQ(integerIn("007"), 7);
    EXPECT_EQ(integerIn("1.9"), 1);
}

TEST(IntegerInText, IsZeroWhenThereIsNone) {
    for (const char* text : {"", " ", "x1", "+", "-", "+-1", "--1", "- 1", ",1"})
        EXPECT_EQ(integerIn(text), 0) << text;
}

TEST(IntegerInText, IsTheNearestThatFits) {
    EXPECT_EQ(integerIn("2147483647"), 2147483647);
    EXPECT_EQ(integerIn("2147483648"), 2147483647);
    EXPECT_EQ(integerIn("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(integerIn("-2147483649"), -2147483647 - 1);
    EXPECT_EQ(integerIn(std::string(10000, '9')), 2147483647);
    EXPECT_EQ(integerIn('-' + std::string(10000, '9')), -2147483647 - 1);
}

TEST(RealInText, HasFractionAndExponent) {
    EXPECT_EQ(realIn("1.5"), 1.5);
    EXPECT_EQ(realIn(" \t+1.5e2x"), 150.0);
    EXPECT_EQ(realIn("-.5"), -0.5);
    EXPECT_EQ(realIn("5."), 5.0);
    EXPECT_EQ(realIn("1E-3"), 0.001);
    EXPECT_EQ(realIn("1,5"), 1.0);
    EXPECT_EQ(realIn("2e"), 2.0);
    EXPECT_EQ(realIn("0x10"), 0.0);
    EXPECT_EQ(realIn("0.1"), 0.1);
}

TEST(RealInText, IsZeroWhenThereIsNone) {
    for (const char* text : {"", " ", "x", "+", "-", ".", "-.", "e5", "+-1", "inf", "nan", "-infinity", "NAN"})
        EXPECT_EQ(realIn(text), 0.0) << text;
}

TEST(RealInText, IsNeverInfinite) {
    constexpr double kMax = std::numeric_limits<double>::max();
    EXPECT_EQ(realIn("1e400"), kMax);
    EXPECT_EQ(realIn("-1e99999"), -kMax);
    EXPECT_EQ(realIn(std::string(400, '9')), kMax);
    EXPECT_EQ(realIn("1e-400"), 0.0);
    EXPECT_EQ(realIn("0e999"), 0.0);
}
