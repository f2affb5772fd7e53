// Colour arithmetic through the exported functions.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "tests/support/profiles.h"

namespace ko::test {
namespace {

using Colour = std::array<double, 3>;
constexpr Colour kD50 = {0.9642, 1.0, 0.8249};
constexpr double kOffset = 0.13793103448275862;

template <class Function, class Argument>
Colour after(Function function, Colour colour, Argument argument) {
    function(colour.data(), argument);
    return colour;
}
Colour labOf(const Colour& xyz) { return after(jIccXYZtoLab, xyz, kD50.data()); }
Colour xyzOf(const Colour& lab) { return after(jIccLabtoXYZ, lab, kD50.data()); }

TEST(IccXyzToLab, OfTheWhitePointIsWhite) {
    const auto [L, a, b] = labOf(kD50);
    EXPECT_NEAR(L, 100, 1e-12);
    EXPECT_NEAR(a, 0, 1e-12);
    EXPECT_NEAR(b, 0, 1e-12);
}

TEST(IccXyzToLab, OfBlackIsBlack) {
    const auto [L, a, b] = labOf({0, 0, 0});
    EXPECT_NEAR(L, 0, 1e-14);
    EXPECT_EQ(a, 0);
    EXPECT_EQ(b, 0);
}

TEST(IccXyzToLab, TakesTheLineAtTheThresholdItself) {
    EXPECT_EQ(labOf({0, 0.008856, 0})[0], 116 * (7.787 * 0.008856 + kOffset) - 16);
    const double above = std::nextafter(0.008856, 1);
    EXPECT_NE(labOf({0, above, 0})[0], 116 * (7.787 * above + kOffset) - 16);
    EXPECT_NEAR(labOf({0, above, 0})[0], 116 * std::cbrt(above) - 16, 1e-11);
}

TEST(IccXyzToLab, FollowsTheFormula) {
    const auto [L, a, b] = labOf({0.3, 0.4, 0.1});
    const double fx = std::cbrt(0.3 / 0.9642), fy = std::cbrt(0.4), fz = std::cbrt(0.1 / 0.8249);
    EXPECT_NEAR(L, 116 * fy - 16, 1e-12);
    EXPECT_NEAR(a, 500 * (fx - fy), 1e-12);
    EXPECT_NEAR(b, 200 * (fy - fz), 1e-12);
}

TEST(IccXyzToLab, TakesNegativeValuesAlongTheLine) {
    EXPECT_EQ(labOf({0, -0.5, 0})[0], 116 * (7.787 * -0.5 + kOffset) - 16);
}

// Computed with roots and cubes of 113 bits, rounded once.
TEST(IccXyzToLab, GivesTheSameBitsEverywhere) {
    EXPECT_EQ(labOf({0.25, 0.5, 0.125}),
              (Colour{0x1.3046ec5bfabe7p+6, -0x1.3813682b6c60bp+6, 0x1.a0e81f08f314p+5}));
}

TEST(IccLabToXyz, GivesTheSameBitsEverywhere) {
    EXPECT_EQ(xyzOf({61.25, -30.5, 12.75}),
              (Colour{0x1.b52be549407cap-3, 0x1.2e6d7892de15fp-2, 0x1.70ef57ca4b29bp-3}));
}

TEST(IccLabToXyz, TakesTheCubeAboveItsThreshold) {
    const double L = 116 * 0.2070 - 16;
    const double f = (L + 16) / 116;
    EXPECT_NEAR(xyzOf({L, 0, 0})[1], f * f * f, 1e-17);
}

TEST(IccLabToXyz, TakesTheLineAtAndBelowItsThreshold) {
    const double L = 116 * 0.2068 - 16;
    const double f = (L + 16) / 116;
    EXPECT_EQ(xyzOf({L, 0, 0})[1], (f - kOffset) / 7.787);
}

TEST(IccLabToXyz, DoesNotMeetTheForwardDirectionAtTheKnee) {
    // Just above the forward threshold f is below 0.2069: out by the root, back by the line.
    const Colour xyz = {0.008856 * 1.0000001 * 0.9642, 0.008856 * 1.0000001,
                        0.008856 * 1.0000001 * 0.8249};
    const double root = std::cbrt(xyz[1]);
    ASSERT_LT(root, 0.2069);
    const double back = xyzOf(labOf(xyz))[1];
    EXPECT_NEAR(back, (root - kOffset) / 7.787, 1e-12);
    EXPECT_GT(std::abs(back - xyz[1]), 1e-9);
}

TEST(IccLabToXyz, ReturnsWhatTheForwardDirectionTook) {
    std::mt19937 random(11);
    const auto level = [&] { return 0.01 + static_cast<double>(random() % 100000) / 100000.0; };
    for (int at = 0; at < 10000; ++at) {
        const Colour xyz = {level(), level(), level()};
        const Colour back = xyzOf(labOf(xyz));
        for (int c = 0; c < 3; ++c) ASSERT_NEAR(back[c], xyz[c], 1e-14);
    }
}

TEST(IccLabToXyz, ScalesByTheWhitePoint) {
    const Colour xyz = xyzOf({100, 0, 0});
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(xyz[c], kD50[c], 1e-15);
}

TEST(IccLabEncode, GivesTheSixteenBitForm) {
    const auto [L, a, b] = after(jIccLabEncode, Colour{100, 127.99, -128}, 16);
    EXPECT_EQ(L, 65280);
    EXPECT_NEAR(a, 65533.44, 1e-9);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(after(jIccLabEncode, Colour{0, 0, 0}, 16), (Colour{0, 32768, 32768}));
}

TEST(IccLabEncode, GivesTheEightBitForm) {
    const auto [L, a, b] = after(jIccLabEncode, Colour{100, 127.99, -128}, 8);
    EXPECT_EQ(L, 255);
    EXPECT_NEAR(a, 65533.44 / 256, 1e-9);
    EXPECT_GT(a, 255.98);
    EXPECT_EQ(b, 0);
    EXPECT_EQ(after(jIccLabEncode, Colour{0, 0, 0}, 8), (Colour{0, 128, 128}));
}

TEST(IccLabEncode, ClampsBeforeTheEightBitScaling) {
    EXPECT_EQ(after(jIccLabEncode, Colour{0, 200, -200}, 8), (Colour{0, 255.99609375, 0}));
    EXPECT_EQ(after(jIccLabEncode, Colour{200, 200, -200}, 16), (Colour{65535, 65535, 0}));
    EXPECT_EQ(after(jIccLabEncode, Colour{-1, 0, 0}, 16)[0], 0);
}

TEST(IccLabEncode, TakesBytesPerEntryAsWellAsBits) {
    const Colour lab = {50, 10, -10};
    EXPECT_EQ(after(jIccLabEncode, lab, 1), after(jIccLabEncode, lab, 8));
    for (const int32_t bits : {2, 0, -1, 7, 9, 255})
        EXPECT_EQ(after(jIccLabEncode, lab, bits), after(jIccLabEncode, lab, 16)) << bits;
}

TEST(IccLabEncode, DoesNotRound) {
    EXPECT_EQ(after(jIccLabEncode, Colour{50.001, 0, 0}, 16)[0], 50.001 * 65280 / 100);
}

TEST(IccLabDecode, TurnsBothFormsBack) {
    EXPECT_EQ(after(jIccLabDecode, Colour{65280, 32768, 0}, 16), (Colour{100, 0, -128}));
    EXPECT_EQ(after(jIccLabDecode, Colour{255, 128, 0}, 8), (Colour{100, 0, -128}));
    EXPECT_EQ(after(jIccLabDecode, Colour{255, 128, 0}, 1), (Colour{100, 0, -128}));
}

TEST(IccLabDecode, DoesNotClamp) {
    const auto [L, a, b] = after(jIccLabDecode, Colour{130560, 131072, -65536}, 16);
    EXPECT_EQ(L, 200);
    EXPECT_EQ(a, 384);
    EXPECT_EQ(b, -384);
}

TEST(IccXyzEncode, GivesBothForms) {
    EXPECT_EQ(after(jIccXYZEncode, Colour{0.5, 1, 0}, 16), (Colour{16384, 32768, 0}));
    EXPECT_EQ(after(jIccXYZEncode, Colour{0.5, 1, 0}, 8), (Colour{64, 128, 0}));
    EXPECT_EQ(after(jIccXYZEncode, Colour{0.5, 1, 0}, 1), (Colour{64, 128, 0}));
}

TEST(IccXyzEncode, Clamps) {
    EXPECT_EQ(after(jIccXYZEncode, Colour{-1, 2.5, 1e300}, 16), (Colour{0, 65535, 65535}));
    EXPECT_EQ(after(jIccXYZEncode, Colour{-1, 2.5, 0}, 8), (Colour{0, 255.99609375, 0}));
}

TEST(IccXyzDecode, TurnsBothFormsBack) {
    EXPECT_EQ(after(jIccXYZDecode, Colour{16384, 32768, -32768}, 16), (Colour{0.5, 1, -1}));
    EXPECT_EQ(after(jIccXYZDecode, Colour{64, 128, 512}, 8), (Colour{0.5, 1, 4}));
}

TEST(IccColour, SurvivesWhatIsNoNumber) {
    constexpr double kInfinity = INFINITY, kNan = NAN;
    for (const double odd : {kNan, kInfinity, -kInfinity, 1e308, -1e308, 5e-324}) {
        const Colour colour = {odd, odd, odd};
        for (const Colour& white : {kD50, Colour{0, 0, 0}, colour}) {
            (void)after(jIccXYZtoLab, colour, white.data());
            (void)after(jIccLabtoXYZ, colour, white.data());
        }
        for (const int32_t bits : {8, 16}) {
            (void)after(jIccLabEncode, colour, bits);
            (void)after(jIccLabDecode, colour, bits);
            (void)after(jIccXYZEncode, colour, bits);
            (void)after(jIccXYZDecode, colour, bits);
        }
    }
    EXPECT_TRUE(std::isnan(labOf({NAN, 0.5, 0.5})[1]));
    EXPECT_EQ(labOf({0.5, INFINITY, 0.5})[0], INFINITY);
}

// Tone curves

Owned<IccCurve, jMemFree> curveOf(const std::vector<uint16_t>& entries) {
    std::vector<uint16_t> words = {static_cast<uint16_t>(entries.size()), 0};
    words.insert(words.end(), entries.begin(), entries.end());
    words.push_back(0);  // room for the record's one entry
    words.push_back(0);
    return Owned<IccCurve, jMemFree>(
        static_cast<IccCurve*>(hostBlock(words.data(), words.size() * 2)));
}
int32_t through(const std::vector<uint16_t>& entries, int32_t value) {
    jIccTrcColor(curveOf(entries).get(), &value);
    return value;
}

TEST(IccTrcColor, AnEmptyCurveLeavesTheValueUnchanged) {
    for (const int32_t value : {0, 1, 128, 255, -5, 1000}) EXPECT_EQ(through({}, value), value);
}

TEST(IccTrcColor, AOneEntryCurveGivesItsHighByteForEveryLevel) {
    for (const int32_t value : {0, 1, 128, 255}) EXPECT_EQ(through({0x0233}, value), 2);
}

TEST(IccTrcColor, InterpolatesATwoEntryCurve) {
    EXPECT_EQ(through({0, 65535}, 0), 0);
    EXPECT_EQ(through({0, 65535}, 128), 128);
    EXPECT_EQ(through({0, 65535}, 255), 255);
}

TEST(IccTrcColor, TruncatesTheBlendAndTheByte) {
    EXPECT_EQ(through({0, 256}, 254), 0);
    EXPECT_EQ(through({0, 256}, 255), 1);
    EXPECT_EQ(through({255, 255}, 100), 0);
}

double exactPosition(size_t count, int32_t value) {
    return static_cast<double>((count - 1) * static_cast<size_t>(value)) / 255.0;
}

TEST(IccTrcColor, RoundsThePositionToSinglePrecision) {
    int differences = 0;
    for (size_t count = 30000; count < 30020; ++count) {
        std::vector<uint16_t> entries(count);
        for (size_t at = 0; at < count; ++at) entries[at] = at % 2 ? 65535 : 0;
        for (int32_t value = 1; value < 255; ++value) {
            const double exact = exactPosition(count, value);
            const double single = static_cast<float>(exact);
            const auto index = static_cast<size_t>(exact);
            if (static_cast<size_t>(single) != index) continue;
            const auto blend = [&](double position) {
                const double above = position - static_cast<double>(index);
                const double below = static_cast<double>(index + 1) - position;
                const double sum = above * entries[index + 1] + below * entries[index];
                return static_cast<int32_t>(sum) / 256;
            };
            differences += blend(exact) != blend(single);
            ASSERT_EQ(through(entries, value), blend(single)) << count << ' ' << value;
        }
    }
    EXPECT_GT(differences, 0);  // so the comparison above can tell the two apart
}

TEST(IccTrcColor, FollowsTheFormulaForEveryLevelAndSize) {
    std::mt19937 random(5);
    for (const size_t count : {2u, 3u, 17u, 255u, 256u, 257u, 1024u, 4096u}) {
        std::vector<uint16_t> entries(count);
        for (uint16_t& entry : entries) entry = static_cast<uint16_t>(random());
        for (int32_t value = 0; value < 256; ++value) {
            const auto position = static_cast<float>(exactPosition(count, value));
            const auto index = static_cast<size_t>(position);
            int32_t expected = entries.back() >> 8;
            if (index < count - 1) {
                const double p = position, i = static_cast<double>(index);
                expected = static_cast<int32_t>((p - i) * entries[index + 1] +
                                                (i + 1 - p) * entries[index]) / 256;
            }
            ASSERT_EQ(through(entries, value), expected) << count << ' ' << value;
        }
    }
}

TEST(IccTrcColor, ClampsLevelsOutsideTheScale) {
    EXPECT_EQ(through({0x1000, 0x8000, 0xf000}, -1), 0x10);
    EXPECT_EQ(through({0x1000, 0x8000, 0xf000}, 256), 0xf0);
    EXPECT_EQ(through({0x1000, 0x8000, 0xf000}, INT32_MAX), 0xf0);
    EXPECT_EQ(through({0x1000, 0x8000, 0xf000}, INT32_MIN), 0x10);
}

}  // namespace
}  // namespace ko::test
