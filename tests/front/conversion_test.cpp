// The host's conversions while no profiles are set up, and the values of fields.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <thread>
#include <vector>

#include "kolink/colour.h"

namespace {

constexpr uint32_t cmyk(uint32_t c, uint32_t m, uint32_t y, uint32_t k) {
    return c << 24 | m << 16 | y << 8 | k;
}
constexpr uint32_t rgb(uint32_t r, uint32_t g, uint32_t b) { return r | g << 8 | b << 16; }

TEST(BuiltinConversion, WhiteGetsNoInk) { EXPECT_EQ(jColorRGBtoCMYK(255, 255, 255), 0u); }

TEST(BuiltinConversion, BlackGetsAllInksInFull) {
    EXPECT_EQ(jColorRGBtoCMYK(0, 0, 0), cmyk(255, 255, 255, 255));
}

TEST(BuiltinConversion, PureLightsAndMidGreyGetTheirInks) {
    EXPECT_EQ(jColorRGBtoCMYK(255, 0, 0), cmyk(6, 255, 233, 0));
    EXPECT_EQ(jColorRGBtoCMYK(0, 255, 0), cmyk(236, 0, 255, 0));
    EXPECT_EQ(jColorRGBtoCMYK(0, 0, 255), cmyk(244, 237, 0, 0));
    EXPECT_EQ(jColorRGBtoCMYK(255, 255, 0), cmyk(8, 5, 233, 0));
    EXPECT_EQ(jColorRGBtoCMYK(128, 128, 128), cmyk(109, 79, 72, 32));
}

TEST(BuiltinConversion, FullBlackInkIsBlackAndNoInkIsWhite) {
    EXPECT_EQ(jColorCMYKtoRGB(0, 0, 0, 255), 0u);
    EXPECT_EQ(jColorCMYKtoRGB(0, 0, 0, 0), rgb(255, 255, 255));
}

TEST(BuiltinConversion, SolidInksAndTheirMidMixHaveTheirLight) {
    EXPECT_EQ(jColorCMYKtoRGB(255, 255, 255, 0), 0u);
    EXPECT_EQ(jColorCMYKtoRGB(255, 0, 0, 0), rgb(0, 160, 198));
    EXPECT_EQ(jColorCMYKtoRGB(0, 255, 0, 0), rgb(240, 2, 127));
    EXPECT_EQ(jColorCMYKtoRGB(0, 0, 255, 0), rgb(255, 255, 0));
    EXPECT_EQ(jColorCMYKtoRGB(128, 128, 128, 0), rgb(127, 101, 94));
}

TEST(BuiltinConversion, BlackInkDarkensEveryLightAlike) {
    EXPECT_EQ(jColorCMYKtoRGB(255, 0, 0, 100), rgb(0, 160 * 155 / 255, 198 * 155 / 255));
    for (int32_t k = 0; k < 256; ++k)
        EXPECT_EQ(jColorCMYKtoRGB(0, 0, 0, k), rgb(255u - k, 255u - k, 255u - k));
}

// The cell from 224 to 255 is 31 levels wide, the others 32.
TEST(BuiltinConversion, InterpolatesWithTheWidthOfTheCell) {
    // Along the yellow axis only blue changes, from 224's value to 0 at full ink.
    const uint32_t at224 = jColorCMYKtoRGB(0, 0, 224, 0) >> 16 & 255;
    for (uint32_t y = 224; y < 256; ++y)
        EXPECT_EQ(jColorCMYKtoRGB(0, 0, static_cast<int32_t>(y), 0) >> 16 & 255,
                  at224 * (255 - y) / 31);
    const uint32_t at32 = jColorCMYKtoRGB(0, 0, 32, 0) >> 16 & 255;
    for (uint32_t y = 0; y < 32; ++y)
        EXPECT_EQ(jColorCMYKtoRGB(0, 0, static_cast<int32_t>(y), 0) >> 16 & 255,
                  (255 * (32 - y) + at32 * y) / 32);
}

TEST(BuiltinConversion, ClampsItsInputs) {
    EXPECT_EQ(jColorRGBtoCMYK(-1, 256, INT32_MAX), jColorRGBtoCMYK(0, 255, 255));
    EXPECT_EQ(jColorRGBtoCMYK(INT32_MIN, 300, 255), jColorRGBtoCMYK(0, 255, 255));
    EXPECT_EQ(jColorCMYKtoRGB(-5, 1000, INT32_MIN, INT32_MAX), jColorCMYKtoRGB(0, 255, 0, 255));
    EXPECT_EQ(jColorRGBtoGRAY(-1, 256, INT32_MAX), jColorRGBtoGRAY(0, 255, 255));
    EXPECT_EQ(jColorCMYKtoGRAY(-1, 256, 300, INT32_MIN), jColorCMYKtoGRAY(0, 255, 255, 0));
}

TEST(GreyInk, IsNoneForWhiteAndFullForBlack) {
    EXPECT_EQ(jColorRGBtoGRAY(255, 255, 255), 0);
    EXPECT_EQ(jColorRGBtoGRAY(0, 0, 0), 255);
}

TEST(GreyInk, SumsInDoubleFromLeftToRight) {
    for (int32_t r = 0; r < 256; r += 3)
        for (int32_t g = 0; g < 256; g += 5)
            for (int32_t b = 0; b < 256; b += 7) {
                double sum = 0.299 * r;
                sum = sum + 0.587 * g;
                sum = sum + 0.114 * b;
                ASSERT_EQ(jColorRGBtoGRAY(r, g, b), 255 - static_cast<int32_t>(sum));
            }
}

TEST(GreyInk, OfCmykIsTheOneOfItsLight) {
    EXPECT_EQ(jColorCMYKtoGRAY(0, 0, 0, 0), 0);
    EXPECT_EQ(jColorCMYKtoGRAY(0, 0, 0, 255), 255);
    EXPECT_EQ(jColorCMYKtoGRAY(255, 0, 0, 0), jColorRGBtoGRAY(0, 160, 198));
}

TEST(FieldValues, RoundBetweenLevelsAndPercent) {
    EXPECT_EQ(Value255to100(128), 50);
    EXPECT_EQ(Value100to255(50), 128);
    EXPECT_EQ(Value255to100(127), 50);  // 49.8
    EXPECT_EQ(Value100to255(10), 26);   // 25.5
    for (int32_t percent = 0; percent <= 100; ++percent)
        EXPECT_EQ(Value255to100(Value100to255(percent)), percent);
}

TEST(FieldValues, AreClampedFirst) {
    EXPECT_EQ(Value255to100(256), 100);
    EXPECT_EQ(Value255to100(INT32_MAX), 100);
    EXPECT_EQ(Value255to100(-1), 0);
    EXPECT_EQ(Value100to255(101), 255);
    EXPECT_EQ(Value100to255(INT32_MAX), 255);
    EXPECT_EQ(Value100to255(INT32_MIN), 0);
}

// Rows.

std::vector<uint8_t> randomBytes(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(count);
    for (uint8_t& byte : bytes) {
        const auto choice = random() % 8, value = random();
        byte = static_cast<uint8_t>(choice == 0   ? 0
                                    : choice == 1 ? 255
                                    : choice == 2 ? value % 8 * 32
                                                  : value);
    }
    return bytes;
}

std::vector<uint8_t> rgbRow(const std::vector<uint8_t>& input) {
    std::vector<uint8_t> output(input.size() / 3 * 4, 0xaa);
    jColorRGBtoCMYKRow(input.data(), static_cast<int32_t>(input.size() / 3), output.data());
    return output;
}

std::vector<uint8_t> cmykRow(const std::vector<uint8_t>& input) {
    std::vector<uint8_t> output(input.size() / 4 * 3, 0xaa);
    jColorCMYKtoRGBRow(input.data(), static_cast<int32_t>(input.size() / 4), output.data());
    return output;
}

TEST(BuiltinRows, OfRgbEqualTheSingleColour) {
    const auto input = randomBytes(90000, 1);
    const auto output = rgbRow(input);
    for (size_t pixel = 0; pixel < input.size() / 3; ++pixel) {
        const uint8_t *in = &input[pixel * 3], *out = &output[pixel * 4];
        ASSERT_EQ(cmyk(out[0], out[1], out[2], out[3]), jColorRGBtoCMYK(in[0], in[1], in[2]))
            << pixel;
    }
}

TEST(BuiltinRows, OfCmykEqualTheSingleColour) {
    const auto input = randomBytes(120000, 2);
    const auto output = cmykRow(input);
    for (size_t pixel = 0; pixel < input.size() / 4; ++pixel) {
        const uint8_t *in = &input[pixel * 4], *out = &output[pixel * 3];
        ASSERT_EQ(rgb(out[0], out[1], out[2]), jColorCMYKtoRGB(in[0], in[1], in[2], in[3]))
            << pixel;
    }
}

TEST(BuiltinRows, WriteNothingForFewerThanOnePixel) {
    const uint8_t input[4] = {1, 2, 3, 4};
    for (const int32_t pixels : {0, -1, INT32_MIN}) {
        uint8_t output[4] = {9, 9, 9, 9};
        jColorRGBtoCMYKRow(input, pixels, output);
        jColorCMYKtoRGBRow(input, pixels, output);
        for (const uint8_t value : output) EXPECT_EQ(value, 9);
    }
}

TEST(FrontRowsFromSeveralThreads, ThroughTheBuiltinTablesEqualTheOnesOfOneThread) {
    const auto input = randomBytes(48000, 3);
    const auto inks = rgbRow(input), light = cmykRow(input);
    std::vector<std::vector<uint8_t>> inksOf(4), lightOf(4);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            inksOf[i] = rgbRow(input);
            lightOf[i] = cmykRow(input);
        });
    for (std::thread& thread : threads) thread.join();
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(inksOf[i], inks);
        EXPECT_EQ(lightOf[i], light);
    }
}

// What the conversions are worth, over the whole colour solid and its greys.

struct Light {
    int32_t r, g, b;
};
Light thereAndBack(int32_t r, int32_t g, int32_t b) {
    const uint32_t inks = jColorRGBtoCMYK(r, g, b);
    const uint32_t light =
        jColorCMYKtoRGB(inks >> 24, inks >> 16 & 255, inks >> 8 & 255, inks & 255);
    return {static_cast<int32_t>(light & 255), static_cast<int32_t>(light >> 8 & 255),
            static_cast<int32_t>(light >> 16)};
}
int32_t furthest(const Light& a, int32_t r, int32_t g, int32_t b) {
    return std::max({std::abs(a.r - r), std::abs(a.g - g), std::abs(a.b - b)});
}

TEST(BuiltinRoundTrip, KeepsGreysNeutralWithin7AndTheirLevelWithin10) {
    for (int32_t grey = 0; grey < 256; ++grey) {
        const Light back = thereAndBack(grey, grey, grey);
        EXPECT_LE(std::max({back.r, back.g, back.b}) - std::min({back.r, back.g, back.b}), 7)
            << grey;
        EXPECT_LE(furthest(back, grey, grey, grey), 10) << grey;
    }
}

// Most of the error is light that no ink can show; the worst is pure blue.
TEST(BuiltinRoundTrip, OfAllColoursStaysWithin13OnAverageAnd138AtMost) {
    double sum = 0;
    int32_t count = 0, worst = 0;
    for (int32_t r = 0; r < 256; r += 5)
        for (int32_t g = 0; g < 256; g += 5)
            for (int32_t b = 0; b < 256; b += 5) {
                const Light back = thereAndBack(r, g, b);
                sum += std::abs(back.r - r) + std::abs(back.g - g) + std::abs(back.b - b);
                worst = std::max(worst, furthest(back, r, g, b));
                count += 3;
            }
    EXPECT_LE(sum / count, 13.0);
    EXPECT_LE(worst, 138);
}

TEST(BuiltinRoundTrip, OfColoursThatInksCanShowStaysWithin6OnAverageAnd52AtMost) {
    double sum = 0;
    int32_t count = 0, worst = 0;
    for (int32_t c = 0; c < 256; c += 15)
        for (int32_t m = 0; m < 256; m += 15)
            for (int32_t y = 0; y < 256; y += 15) {
                const uint32_t light = jColorCMYKtoRGB(c, m, y, 0);
                const auto r = static_cast<int32_t>(light & 255),
                           g = static_cast<int32_t>(light >> 8 & 255),
                           b = static_cast<int32_t>(light >> 16);
                const Light back = thereAndBack(r, g, b);
                sum += std::abs(back.r - r) + std::abs(back.g - g) + std::abs(back.b - b);
                worst = std::max(worst, furthest(back, r, g, b));
                count += 3;
            }
    EXPECT_LE(sum / count, 6.0);
    EXPECT_LE(worst, 52);
}

}  // namespace
