// Printing numbers in the formats of a calibration file.
#include "calib/number_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "frame/scan.h"

namespace {

std::string printed(const char* format, double value) {
    const auto parsed = ko::calib::NumberFormat::parse(format);
    return parsed ? parsed->print(value) : "unusable";
}

}  // namespace

TEST(NumberFormat, PrintsFixedNotation) {
    EXPECT_EQ(printed("%f", 1.5), "1.500000");
    EXPECT_EQ(printed("%.0f", 254.5), "254");  // halves go to the even number
    EXPECT_EQ(printed("%.0f", 255.5), "256");
    EXPECT_EQ(printed("%.2f", 1.005), "1.00");  // the double lies below
    EXPECT_EQ(printed("%.1f", 0.25), "0.2");
    EXPECT_EQ(printed("%.f", 2.75), "3");
    EXPECT_EQ(printed("%lf", 2.0), "2.000000");
    EXPECT_EQ(printed("%F", 2.0), "2.000000");
    EXPECT_EQ(printed("%.0f", -0.25), "-0");
    EXPECT_EQ(printed("%.0f", 3.4028234663852886e38), "340282346638528859811704183484516925440");
    EXPECT_EQ(printed("%.60f", 1.0 / 3.0),
              "0.333333333333333314829616256247390992939472198486328125000000");
}

TEST(NumberFormat, PrintsScientificNotation) {
    EXPECT_EQ(printed("%e", 12345.678), "1.234568e+04");
    EXPECT_EQ(printed("%.2E", 0.00012), "1.20E-04");
    EXPECT_EQ(printed("%.0e", 250.0), "2e+02");
    EXPECT_EQ(printed("%.3e", 1e300), "1.000e+300");
    EXPECT_EQ(printed("%.1e", 0.0), "0.0e+00");
}

TEST(NumberFormat, PrintsTheShorterNotation) {
    EXPECT_EQ(printed("%g", 100.0), "100");
    EXPECT_EQ(printed("%g", 0.5), "0.5");
    EXPECT_EQ(printed("%g", 0.0001), "0.0001");
    EXPECT_EQ(printed("%g", 0.00001), "1e-05");
    EXPECT_EQ(printed("%g", 1234567.0), "1.23457e+06");
    EXPECT_EQ(printed("%G", 1e-10), "1E-10");
    EXPECT_EQ(printed("%.3g", 999.6), "1e+03");
    EXPECT_EQ(printed("%.0g", 7.7), "8");
    EXPECT_EQ(printed("%g", 0.0), "0");
}

TEST(NumberFormat, HeedsFlagsAndWidth) {
    EXPECT_EQ(printed("%8.2f", 1.5), "    1.50");
    EXPECT_EQ(printed("%-8.2f", 1.5), "1.50    ");
    EXPECT_EQ(printed("%08.2f", -1.5), "-0001.50");
    EXPECT_EQ(printed("%-08.2f", 1.5), "1.50    ");
    EXPECT_EQ(printed("%+.1f", 1.5), "+1.5");
    EXPECT_EQ(printed("% .1f", 1.5), " 1.5");
    EXPECT_EQ(printed("% +.1f", 1.5), "+1.5");
    EXPECT_EQ(printed("%+.1f", -1.5), "-1.5");
    EXPECT_EQ(printed("%#.0f", 2.0), "2.");
    EXPECT_EQ(printed("%#.0e", 2.0), "2.e+00");
    EXPECT_EQ(printed("%#g", 2.0), "2.00000");
    EXPECT_EQ(printed("%#.6g", 100000.0), "100000.");
    EXPECT_EQ(printed("%2.2f", 1234.5), "1234.50");
}

TEST(NumberFormat, PrintsWhatIsNoNumberAsZero) {
    EXPECT_EQ(printed("%.1f", std::numeric_limits<double>::quiet_NaN()), "0.0");
    EXPECT_EQ(printed("%.1f", -std::numeric_limits<double>::infinity()), "0.0");
}

TEST(NumberFormat, TakesOneConversionAndNothingElse) {
    for (const char* bad : {"", "%", "f", "%d", "%s", "%n", "%p", "%c", "%a", "%A", "%i", "%u", "%x",
                            "%%", "%f%f", "%f ", " %f", "x%f", "%*f", "%.*f", "%Lf", "%llf", "%hf",
                            "%1$f", "%'f", "%61f", "%.61f", "%99999f", "%5.5.5f", "%.-1f", "%f\n"})
        EXPECT_EQ(ko::calib::NumberFormat::parse(bad), std::nullopt) << bad;
    EXPECT_EQ(ko::calib::NumberFormat::parse(std::string_view("%f\0", 3)), std::nullopt);
    EXPECT_EQ(printed("%60.60f", 0.0).size(), 62u);
    EXPECT_EQ(printed("%0000005.1f", 1.0), "001.0");
}

TEST(NumberFormat, TakesTheDefaultInPlaceOfAnUnusableOne) {
    EXPECT_EQ(ko::calib::usableFormat("%s").print(2.7), "3");
    EXPECT_EQ(ko::calib::usableFormat("%.1f").print(2.7), "2.7");
}

TEST(NumberFormat, PrintsSinglesSoThatTheyAreReadBackExactly) {
    std::mt19937 random(29);
    const auto format = *ko::calib::NumberFormat::parse("%.9g");
    for (int round = 0; round < 20000; ++round) {
        const float value = std::ldexp(static_cast<float>(random()), static_cast<int>(random() % 200) - 120);
        ASSERT_EQ(static_cast<float>(ko::realIn(format.print(value))), value);
    }
}
