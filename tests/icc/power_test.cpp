// The powers: the nearest double, whichever way it is computed.
#include "icc/power.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace ko::icc {
namespace {

constexpr double kNearThird = 0.3333333333333333;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The same numbers on every platform.
class Numbers {
public:
    explicit Numbers(uint64_t seed) : random_(seed) {}
    double unit() { return static_cast<double>(random_() >> 11) * 0x1p-53; }
    double any(int lowExponent, int highExponent) {  // of any size, log-uniform
        const auto range = static_cast<uint64_t>(highExponent - lowExponent);
        return std::ldexp(1 + unit(), lowExponent + static_cast<int>(random_() % range));
    }
    double few(int bits) {  // an odd mantissa of so many bits
        return static_cast<double>((random_() >> (64 - bits)) | 1 | uint64_t{1} << (bits - 1));
    }
    uint64_t below(uint64_t limit) { return random_() % limit; }

private:
    std::mt19937_64 random_;
};

constexpr int kMany = 1000000;

TEST(IccPower, OfAThirdEqualsTheGeneralPower) {
    Numbers numbers(1);
    for (int at = 0; at < kMany; ++at) {
        const double t = at % 2 ? 0.008856 + numbers.unit() * 2 : numbers.any(-1022, 1023);
        ASSERT_EQ(powerOfThird(t), power(t, kNearThird)) << t;
    }
}

TEST(IccPower, CubeEqualsTheGeneralPower) {
    Numbers numbers(2);
    for (int at = 0; at < kMany; ++at) {
        const double f = at % 3 == 0   ? 0.2069 + numbers.unit()
                         : at % 3 == 1 ? numbers.any(-360, 345)
                                       : std::ldexp(numbers.few(18), -18);
        ASSERT_EQ(cube(f), power(f, 3.0)) << f;
    }
}

#if defined(__SIZEOF_FLOAT128__)
using Wide = __float128;  // 113 bits

// Whether result is the double nearest to a number x, given a function that is monotonic and
// whether x lies at its target exactly: below(middle) says that middle < x.
template <class Below, class Same>
bool isNearest(double result, Below below, Same same) {
    const Wide value = result;
    const Wide up = (value + static_cast<Wide>(std::nextafter(result, kInfinity))) / 2;
    const Wide down = (value + static_cast<Wide>(std::nextafter(result, 0.0))) / 2;
    const bool even = (std::bit_cast<uint64_t>(result) & 1) == 0;
    if (same(up) || same(down)) return even;
    return !below(up) && below(down);
}

TEST(IccPower, OfAThirdIsTheNearestDouble) {
    Numbers numbers(3);
    for (int at = 0; at < kMany; ++at) {
        const double t = at % 2 ? 0.008856 + numbers.unit() * 2 : numbers.any(-1000, 1000);
        // y = t^((1 - 2^-54) / 3), so y^3 = t exp(-ln(t) 2^-54).
        const Wide small = static_cast<Wide>(std::log(t)) * 0x1p-54;
        const Wide target = static_cast<Wide>(t) * (1 - small + small * small / 2);
        ASSERT_TRUE(isNearest(
            powerOfThird(t), [&](Wide y) { return y * y * y < target; },
            [](Wide) { return false; }))
            << t;
    }
}

TEST(IccPower, CubeIsTheNearestDouble) {
    Numbers numbers(4);
    for (int at = 0; at < kMany; ++at) {
        const double f = at % 2 ? 0.2069 + numbers.unit() : numbers.any(-300, 300);
        const Wide wide = f;
        ASSERT_EQ(cube(f), static_cast<double>(wide * wide * wide)) << f;
        ASSERT_EQ(cube(-f), -cube(f));
    }
}

TEST(IccPower, IsTheNearestDoubleForRationalExponents) {
    Numbers numbers(5);
    const auto repeated = [](Wide base, int times) {
        Wide result = 1;
        while (times-- > 0) result *= base;
        return result;
    };
    for (int at = 0; at < 300000; ++at) {
        const int p = 1 + static_cast<int>(numbers.below(9));
        const int q = 1 << numbers.below(3);
        // Bases with few bits meet exact results and ties.
        const int bits = 1 + static_cast<int>(numbers.below(30));
        const double base = at % 3 ? numbers.any(-20, 20) : numbers.few(bits);
        const double result = power(base, static_cast<double>(p) / q);
        const Wide target = repeated(base, p);
        const Wide slack = target * 0x1p-100;  // within the error of these products
        ASSERT_TRUE(isNearest(
            result, [&](Wide y) { return repeated(y, q) < target; },
            [&](Wide y) {
                const Wide difference = repeated(y, q) - target;
                return difference < slack && difference > -slack;
            }))
            << base << ' ' << p << '/' << q;
    }
}
#endif

TEST(IccPower, RoundsTiesToEven) {
    int ties = 0;
    Numbers numbers(6);
    for (int at = 0; at < 20000; ++at) {
        const auto mantissa = static_cast<uint64_t>(numbers.few(18));
        const uint64_t exact = mantissa * mantissa * mantissa;
        if (exact < uint64_t{1} << 53) continue;  // 54 bits, the last one set
        ++ties;
        uint64_t rounded = exact >> 1;
        rounded += rounded & 1;
        const double expected = static_cast<double>(rounded) * 2;
        ASSERT_EQ(cube(static_cast<double>(mantissa)), expected) << mantissa;
        ASSERT_EQ(power(static_cast<double>(mantissa), 3.0), expected) << mantissa;
    }
    EXPECT_GT(ties, 1000);
}

TEST(IccPower, GivesTheSameBitsEverywhere) {
    struct Known {
        double base, exponent, result;
    };
    // Computed with 113 bits.
    for (const auto [base, exponent, result] :
         {Known{0x1.7ae147ae147aep-2, 0x1.199999999999ap+1, 0x1.cba006ccbe5b5p-4},
          Known{0x1.7ae147ae147aep-2, 0x1.d1745d1745d17p-2, 0x1.45d5d08d5cecep-1},
          Known{0x1.7ae147ae147aep-2, 0x1.ccccccccccccdp+0, 0x1.560d7f6fe0424p-3},
          Known{0x1.7ae147ae147aep-2, -0x1.d99999999999ap+1, 0x1.3cc509d8ec3d7p+5},
          Known{0x1.7ae147ae147aep-2, 0x1.92p+6, 0x1.cb0d81d93bbep-145},
          Known{0x1.7e43c8800759cp+996, 0x1.ccccccccccccdp-1, 0x1.e494034e79edfp+896},
          Known{0x0.0000000000018p-1022, 0x1.051eb851eb852p-1, 0x1.8393249a73a41p-546},
          Known{0x1.3333333333333p-2, 0x1.3126666666666p+9, 0x0.0000000003cf7p-1022},
          Known{0x1.000001ad7f29bp+0, 0x1.65a0bcp+32, 0x1.889e27e7e3459p+865}})
        EXPECT_EQ(power(base, exponent), result) << base << ' ' << exponent;
}

TEST(IccPower, IsExactWhereTheResultIs) {
    for (int n = 0; n <= 1000; ++n) {
        const double root = n;
        ASSERT_EQ(power(root * root, 0.5), root);
        ASSERT_EQ(power(root, 1.0), root);
        ASSERT_EQ(power(root, 2.0), root * root);
        ASSERT_EQ(power(root, 5.0), root * root * root * root * root);
        ASSERT_EQ(cube(root), root * root * root);
    }
    for (int exponent = -1074; exponent <= 1023; ++exponent)
        ASSERT_EQ(power(2.0, exponent), std::ldexp(1.0, exponent)) << exponent;
}

TEST(IccPower, ReachesTheEndsOfTheRange) {
    EXPECT_EQ(power(2.0, 1024.0), kInfinity);
    EXPECT_EQ(power(2.0, -1075.0), 0.0);  // a tie between nothing and the smallest
    EXPECT_EQ(power(0x1.8p0, 1e300), kInfinity);
    EXPECT_EQ(power(0x1.8p0, -1e300), 0.0);
    EXPECT_EQ(power(0.5, 1e300), 0.0);
    EXPECT_EQ(power(std::nextafter(1.0, 0.0), 1e300), 0.0);
    EXPECT_EQ(power(1e300, 1e-300), 1.0);
    EXPECT_EQ(power(5e-324, 1.0), 5e-324);
    EXPECT_EQ(power(std::numeric_limits<double>::max(), 1.0), std::numeric_limits<double>::max());
    EXPECT_EQ(cube(1e300), kInfinity);
    EXPECT_EQ(cube(-1e300), -kInfinity);
    EXPECT_EQ(cube(1e-300), 0.0);
    EXPECT_EQ(cube(1e-100), 1e-300);
    EXPECT_EQ(powerOfThird(5e-324), power(5e-324, kNearThird));
}

TEST(IccPower, HasTheSpecialCasesOfIeee754) {
    EXPECT_EQ(power(kNan, 0.0), 1.0);
    EXPECT_EQ(power(1.0, kNan), 1.0);
    EXPECT_TRUE(std::isnan(power(kNan, 1.0)));
    EXPECT_TRUE(std::isnan(power(2.0, kNan)));
    EXPECT_TRUE(std::isnan(power(-2.0, 0.5)));
    EXPECT_EQ(power(-2.0, 3.0), -8.0);
    EXPECT_EQ(power(-2.0, -2.0), 0.25);
    EXPECT_EQ(power(-1.0, kInfinity), 1.0);
    EXPECT_EQ(power(-1.0, 1e300), 1.0);
    EXPECT_EQ(power(-1.0, 3.0), -1.0);
    EXPECT_EQ(power(0.5, kInfinity), 0.0);
    EXPECT_EQ(power(0.5, -kInfinity), kInfinity);
    EXPECT_EQ(power(2.0, kInfinity), kInfinity);
    EXPECT_EQ(power(0.0, 2.0), 0.0);
    EXPECT_EQ(power(0.0, -2.0), kInfinity);
    EXPECT_EQ(power(-0.0, -3.0), -kInfinity);
    EXPECT_TRUE(std::signbit(power(-0.0, 3.0)));
    EXPECT_FALSE(std::signbit(power(-0.0, 2.0)));
    EXPECT_EQ(power(kInfinity, 0.5), kInfinity);
    EXPECT_EQ(power(kInfinity, -0.5), 0.0);
    EXPECT_EQ(power(-kInfinity, 3.0), -kInfinity);
    EXPECT_EQ(power(-kInfinity, 2.0), kInfinity);
    EXPECT_TRUE(std::isnan(cube(kNan)));
    EXPECT_EQ(cube(kInfinity), kInfinity);
    EXPECT_EQ(cube(0.0), 0.0);
    EXPECT_TRUE(std::isnan(powerOfThird(kNan)));
    EXPECT_TRUE(std::isnan(powerOfThird(-8.0)));
    EXPECT_EQ(powerOfThird(0.0), 0.0);
    EXPECT_EQ(powerOfThird(1.0), 1.0);
    EXPECT_EQ(powerOfThird(kInfinity), kInfinity);
}

}  // namespace
}  // namespace ko::icc
