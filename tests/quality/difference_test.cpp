#include "quality/difference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

namespace ko::test {
namespace {

using quality::difference2000;
using quality::difference76;
using precise::Triple;

struct Published {
    Triple a, b;
    double difference;
};

// Sharma, Wu, Dalal: The CIEDE2000 color-difference formula, 2005, table 1.
constexpr Published kPublished[] = {
    {{50, 2.6772, -79.7751}, {50, 0, -82.7485}, 2.0425},
    {{50, 3.1571, -77.2803}, {50, 0, -82.7485}, 2.8615},
    {{50, 2.8361, -74.0200}, {50, 0, -82.7485}, 3.4412},
    {{50, -1.3802, -84.2814}, {50, 0, -82.7485}, 1.0000},
    {{50, -1.1848, -84.8006}, {50, 0, -82.7485}, 1.0000},
    {{50, -0.9009, -85.5211}, {50, 0, -82.7485}, 1.0000},
    {{50, 0, 0}, {50, -1, 2}, 2.3669},
    {{50, -1, 2}, {50, 0, 0}, 2.3669},
    {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0009}, 7.1792},
    {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0010}, 7.1792},
    {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0011}, 7.2195},
    {{50, 2.4900, -0.0010}, {50, -2.4900, 0.0012}, 7.2195},
    {{50, -0.0010, 2.4900}, {50, 0.0009, -2.4900}, 4.8045},
    {{50, -0.0010, 2.4900}, {50, 0.0010, -2.4900}, 4.8045},
    {{50, -0.0010, 2.4900}, {50, 0.0011, -2.4900}, 4.7461},
    {{50, 2.5, 0}, {50, 0, -2.5}, 4.3065},
    {{50, 2.5, 0}, {73, 25, -18}, 27.1492},
    {{50, 2.5, 0}, {61, -5, 29}, 22.8977},
    {{50, 2.5, 0}, {56, -27, -3}, 31.9030},
    {{50, 2.5, 0}, {58, 24, 15}, 19.4535},
    {{50, 2.5, 0}, {50, 3.1736, 0.5854}, 1.0000},
    {{50, 2.5, 0}, {50, 3.2972, 0}, 1.0000},
    {{50, 2.5, 0}, {50, 1.8634, 0.5757}, 1.0000},
    {{50, 2.5, 0}, {50, 3.2592, 0.3350}, 1.0000},
    {{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
    {{63.0109, -31.0961, -5.8663}, {62.8187, -29.7946, -4.0864}, 1.2630},
    {{61.2901, 3.7196, -5.3901}, {61.4292, 2.2480, -4.9620}, 1.8731},
    {{35.0831, -44.1164, 3.7933}, {35.0232, -40.0716, 1.5901}, 1.8645},
    {{22.7233, 20.0904, -46.6940}, {23.0331, 14.9730, -42.5619}, 2.0373},
    {{36.4612, 47.8580, 18.3852}, {36.2715, 50.5065, 21.2231}, 1.4146},
    {{90.8027, -2.0831, 1.4410}, {91.1528, -1.6435, 0.0447}, 1.4441},
    {{90.9257, -0.5406, -0.9208}, {88.6381, -0.8985, -0.7239}, 1.5381},
    {{6.7747, -0.2908, -2.4247}, {5.8714, -0.0985, -2.2286}, 0.6377},
    {{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
};

TEST(ColourDifference, IsThatOfThePublishedPairsEitherWay) {
    for (const auto& [a, b, difference] : kPublished) {
        EXPECT_NEAR(difference2000(a, b), difference, 0.00005);
        EXPECT_NEAR(difference2000(b, a), difference, 0.00005);
    }
}

// The formula with the runtime's angles and powers.
double byTheBook(const Triple& one, const Triple& two) {
    const double pi = std::acos(-1.0), c7 = std::pow((std::hypot(one[1], one[2]) + std::hypot(two[1], two[2])) / 2, 7);
    const double g = 0.5 * (1 - std::sqrt(c7 / (c7 + std::pow(25, 7))));
    const double a1 = (1 + g) * one[1], a2 = (1 + g) * two[1];
    const double s1 = std::hypot(a1, one[2]), s2 = std::hypot(a2, two[2]);
    const auto hue = [&](double a, double b) {
        const double h = std::atan2(b, a) * 180 / pi;
        return h < 0 ? h + 360 : h;
    };
    const double h1 = hue(a1, one[2]), h2 = hue(a2, two[2]);
    double dh = h2 - h1, mean = (h1 + h2) / 2;
    if (dh > 180) dh -= 360, mean += 180;
    else if (dh < -180) dh += 360, mean += 180;
    if (mean >= 360) mean -= 360;
    const auto cosine = [&](double degrees) { return std::cos(degrees * pi / 180); };
    const double turn = 2 * std::sqrt(s1 * s2) * std::sin(dh / 2 * pi / 180);
    const double l = (one[0] + two[0]) / 2 - 50, s = (s1 + s2) / 2;
    const double t = 1 - 0.17 * cosine(mean - 30) + 0.24 * cosine(2 * mean) + 0.32 * cosine(3 * mean + 6) - 0.2 * cosine(4 * mean - 63);
    const double angle = 30 * std::exp(-std::pow((mean - 275) / 25, 2)), s7 = std::pow(s, 7);
    const double rt = -std::sin(2 * angle * pi / 180) * 2 * std::sqrt(s7 / (s7 + std::pow(25, 7)));
    const double x = (two[0] - one[0]) / (1 + 0.015 * l * l / std::sqrt(20 + l * l));
    const double y = (s2 - s1) / (1 + 0.045 * s), z = turn / (1 + 0.015 * s * t);
    return std::sqrt(x * x + y * y + z * z + rt * y * z);
}

TEST(ColourDifference, IsTheFormulaEverywhere) {
    std::mt19937 random(7);
    const auto part = [&] { return static_cast<double>(random()) / 4294967296.0; };
    for (int n = 0; n < 20000; ++n) {
        const Triple a = {100 * part(), 200 * part() - 100, 200 * part() - 100};
        const double near = n % 2 ? 200 : 1;
        const Triple b = {100 * part(), a[1] + near * (part() - 0.5), a[2] + near * (part() - 0.5)};
        ASSERT_NEAR(difference2000(a, b), byTheBook(a, b), 1e-8) << n;
    }
}

// Reports of two machines can be compared to the last digit.
TEST(ColourDifference, HasTheSameBitsOnEveryTarget) {
    std::mt19937 random(8);
    const auto part = [&] { return static_cast<double>(random()) / 4294967296.0; };
    uint64_t hash = 14695981039346656037u;
    for (int n = 0; n < 20000; ++n) {
        // One by one: the order of arguments and elements is not every compiler's.
        Triple a, b;
        for (size_t i = 0; i < 3; ++i) a[i] = 100 * part() - (i > 0 ? 50 : 0);
        for (size_t i = 0; i < 3; ++i) b[i] = a[i] + 40 * part() - 20;
        const double difference = difference2000(a, b);
        uint64_t bits;
        std::memcpy(&bits, &difference, sizeof bits);
        for (int at = 0; at < 8; ++at) hash = (hash ^ (bits >> 8 * at & 255)) * 1099511628211u;
    }
    EXPECT_EQ(hash, 5848585090105921923u);
}

TEST(ColourDifference, IsNoneBetweenAColourAndItself) {
    for (const Triple& lab : {Triple{0, 0, 0}, Triple{50, 12, -40}, Triple{100, -0.0, 0}}) {
        EXPECT_EQ(difference2000(lab, lab), 0);
        EXPECT_EQ(difference76(lab, lab), 0);
    }
}

TEST(ColourDifference, Of1976IsTheDistance) {
    EXPECT_EQ(difference76({50, 3, -4}, {50, 0, 0}), 5);
    EXPECT_EQ(difference76({53, 0, 0}, {50, 0, 4}), 5);
}

}  // namespace
}  // namespace ko::test
