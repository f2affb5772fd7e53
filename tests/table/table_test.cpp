// The small tables: records, one colour, rows.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <thread>

#include "tests/support/files.h"
#include "tests/support/owned.h"

namespace ko::test {
namespace {

uint32_t tableLevelAt(uint32_t index) { return index == 16 ? 255 : 16 * index; }

std::vector<uint8_t> randomLevels(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> levels(count);
    // Cell ends and the last cell come up often.
    for (uint8_t& level : levels) {
        const auto value = static_cast<uint32_t>(random());
        level = static_cast<uint8_t>(value % 3 == 0 ? value >> 8 : value % 3 == 1 ? value >> 8 & 0xf0 : 240 + (value >> 8) % 16);
    }
    return levels;
}

void randomise(uint32_t* nodes, size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    for (size_t at = 0; at < count; ++at) nodes[at] = static_cast<uint32_t>(random());
    // Corners of the range, where a rounding would pass it.
    for (size_t at = 0; at < count; at += 5) nodes[at] = at % 2 ? 0xffffffff : 0;
}

TEST(CmykTables, RecordsAreNothingButWords) {
    EXPECT_EQ(sizeof(CmykLut), 334084u);
    EXPECT_EQ(sizeof(RgbLut), 19652u);
}

TEST(CmykTables, FreshCmykTableHoldsEveryNodesOwnLevels) {
    const auto table = newCmykLut();
    for (uint32_t c = 0; c < 17; ++c)
        for (uint32_t m = 0; m < 17; ++m)
            for (uint32_t y = 0; y < 17; ++y)
                for (uint32_t k = 0; k < 17; ++k)
                    ASSERT_EQ(table->nodes[((c * 17 + m) * 17 + y) * 17 + k],
                              tableLevelAt(c) << 24 | tableLevelAt(m) << 16 | tableLevelAt(y) << 8 | tableLevelAt(k));
}

TEST(CmykTables, FreshRgbTableHoldsItsLevelsInTheReverseOrderOfACmykWord) {
    const auto table = newRgbLut();
    for (uint32_t r = 0; r < 17; ++r)
        for (uint32_t g = 0; g < 17; ++g)
            for (uint32_t b = 0; b < 17; ++b)
                ASSERT_EQ(table->nodes[(r * 17 + g) * 17 + b],
                          tableLevelAt(r) | tableLevelAt(g) << 8 | tableLevelAt(b) << 16);
}

TEST(CmykTables, InitMakesAUsedTableFresh) {
    const auto cmyk = newCmykLut();
    const auto rgb = newRgbLut();
    std::memset(cmyk.get(), 1, sizeof(CmykLut));
    std::memset(rgb.get(), 1, sizeof(RgbLut));
    EXPECT_EQ(jKoCmykInitCmykLut(cmyk.get()), 1);
    EXPECT_EQ(jKoRgbInitRgbLut(rgb.get()), 1);
    EXPECT_EQ(std::memcmp(cmyk.get(), newCmykLut().get(), sizeof(CmykLut)), 0);
    EXPECT_EQ(std::memcmp(rgb.get(), newRgbLut().get(), sizeof(RgbLut)), 0);
}

TEST(CmykTables, NullGivesZero) {
    EXPECT_EQ(jKoCmykInitCmykLut(nullptr), 0);
    EXPECT_EQ(jKoRgbInitRgbLut(nullptr), 0);
    EXPECT_EQ(jKoCmykReleaseCmykLut(nullptr), 0);
    EXPECT_EQ(jKoRgbReleaseRgbLut(nullptr), 0);
}

TEST(CmykTables, ReleaseGivesOne) {
    EXPECT_EQ(jKoCmykReleaseCmykLut(jKoCmykCreateCmykLut()), 1);
    EXPECT_EQ(jKoRgbReleaseRgbLut(jKoRgbCreateRgbLut()), 1);
}

TEST(CmykTableLookup, IdentityGivesSixteenTimesTheLevel) {
    const auto table = newCmykLut();
    for (int32_t v = 0; v < 256; ++v) {
        int32_t cmyk[4] = {v, 255 - v, v / 2, v ^ 85};
        const int32_t expected[4] = {16 * cmyk[0], 16 * cmyk[1], 16 * cmyk[2], 16 * cmyk[3]};
        EXPECT_EQ(jKoCmykLutCMYKtoCMYK16(table.get(), cmyk), expected[3]);
        ASSERT_TRUE(std::equal(cmyk, cmyk + 4, expected)) << v;
    }
}

TEST(RgbTableLookup, IdentityGivesSixteenTimesTheLevel) {
    const auto table = newRgbLut();
    for (int32_t v = 0; v < 256; ++v) {
        int32_t rgb[3] = {v, 255 - v, v ^ 85};
        const int32_t expected[3] = {16 * rgb[0], 16 * rgb[1], 16 * rgb[2]};
        EXPECT_EQ(jKoRgbRGBtoRGB16(table.get(), rgb), expected[2]);
        ASSERT_TRUE(std::equal(rgb, rgb + 3, expected)) << v;
    }
}

TEST(CmykTableLookup, IsTheTruncatedQuadrilinearSum) {
    const auto table = newCmykLut();
    randomise(table->nodes, KOLINK_CMYK_LUT_NODES, 1);
    const auto levels = randomLevels(4 * 20000, 2);
    for (size_t at = 0; at < levels.size(); at += 4) {
        // Corner by corner in 64 bits.
        int64_t sums[4] = {}, volume = 1;
        for (int axis = 0; axis < 4; ++axis) volume *= levels[at + axis] / 16 == 15 ? 15 : 16;
        for (int corner = 0; corner < 16; ++corner) {
            int64_t weight = 1;
            size_t node = 0;
            for (int axis = 0; axis < 4; ++axis) {
                const int v = levels[at + axis], i = v / 16, f = v % 16, w = i == 15 ? 15 : 16;
                const bool up = corner >> axis & 1;
                weight *= up ? f : w - f;
                node = node * 17 + static_cast<size_t>(i + up);
            }
            for (int ink = 0; ink < 4; ++ink) sums[ink] += weight * (table->nodes[node] >> (24 - 8 * ink) & 255);
        }
        int32_t cmyk[4] = {levels[at], levels[at + 1], levels[at + 2], levels[at + 3]};
        jKoCmykLutCMYKtoCMYK16(table.get(), cmyk);
        for (int ink = 0; ink < 4; ++ink) ASSERT_EQ(cmyk[ink], sums[ink] * 16 / volume) << at;
    }
}

// The single-precision sum as it is usually written; the library's is exact.
void singlePrecision(const RgbLut& table, int32_t* rgb) {
    float f[3];
    size_t base = 0;
    const size_t strides[3] = {289, 17, 1};
    for (int axis = 0; axis < 3; ++axis) {
        const int i = rgb[axis] / 16;
        f[axis] = static_cast<float>(rgb[axis] % 16) / static_cast<float>(i == 15 ? 15 : 16);
        base += static_cast<size_t>(i) * strides[axis];
    }
    int order[3] = {0, 1, 2};
    std::sort(order, order + 3, [&](int a, int b) { return f[a] > f[b]; });
    const size_t p1 = base + strides[order[0]], p2 = p1 + strides[order[1]], p3 = p2 + strides[order[2]];
    for (int channel = 0; channel < 3; ++channel) {
        const auto value = [&](size_t node) { return static_cast<float>(table.nodes[node] >> (8 * channel) & 255); };
        rgb[channel] = static_cast<int32_t>(
            16 * (value(base) * (1 - f[order[0]]) + value(p1) * (f[order[0]] - f[order[1]]) +
                  value(p2) * (f[order[1]] - f[order[2]]) + value(p3) * f[order[2]]));
    }
}

TEST(RgbTableLookup, IsWithinOneOfTheSinglePrecisionSum) {
    const auto table = newRgbLut();
    randomise(table->nodes, KOLINK_RGB_LUT_NODES, 3);
    const auto levels = randomLevels(3 * 50000, 4);
    for (size_t at = 0; at < levels.size(); at += 3) {
        int32_t rgb[3] = {levels[at], levels[at + 1], levels[at + 2]};
        int32_t expected[3] = {rgb[0], rgb[1], rgb[2]};
        jKoRgbRGBtoRGB16(table.get(), rgb);
        singlePrecision(*table, expected);
        for (int channel = 0; channel < 3; ++channel) ASSERT_LE(std::abs(rgb[channel] - expected[channel]), 1) << at;
    }
}

TEST(RgbTableLookup, StepsAlongTheLargestFractionFirst) {
    const auto table = newRgbLut();
    std::memset(table.get(), 0, sizeof(RgbLut));
    table->nodes[17] = 240;  // one step along G from the origin
    int32_t rgb[3] = {4, 12, 8};
    jKoRgbRGBtoRGB16(table.get(), rgb);
    EXPECT_EQ(rgb[0], 16 * 240 * (12 - 8) / 16);
    int32_t other[3] = {12, 4, 8};
    jKoRgbRGBtoRGB16(table.get(), other);
    EXPECT_EQ(other[0], 0);
}

TEST(RgbTableLookup, LastCellIsFifteenWide) {
    const auto table = newRgbLut();
    std::memset(table.get(), 0, sizeof(RgbLut));
    for (uint32_t node = 0; node < KOLINK_RGB_LUT_NODES; ++node)
        if (node % 17 == 16) table->nodes[node] = 150;
    for (int32_t f = 0; f < 16; ++f) {
        int32_t rgb[3] = {0, 0, 240 + f};
        jKoRgbRGBtoRGB16(table.get(), rgb);
        ASSERT_EQ(rgb[0], 160 * f);
    }
}

TEST(CmykTableLookup, InputsOutsideTheRangeAreClamped) {
    const auto table = newCmykLut();
    for (const int32_t value : {256, 1000, INT32_MAX}) {
        int32_t cmyk[4] = {value, -value, value, -1};
        jKoCmykLutCMYKtoCMYK16(table.get(), cmyk);
        EXPECT_EQ(cmyk[0], 4080);
        EXPECT_EQ(cmyk[1], 0);
        EXPECT_EQ(cmyk[3], 0);
    }
    int32_t lowest[4] = {INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN};
    EXPECT_EQ(jKoCmykLutCMYKtoCMYK16(table.get(), lowest), 0);
}

TEST(RgbTableLookup, InputsOutsideTheRangeAreClamped) {
    const auto table = newRgbLut();
    for (const int32_t value : {256, 1000, INT32_MAX}) {
        int32_t rgb[3] = {value, -value, value};
        EXPECT_EQ(jKoRgbRGBtoRGB16(table.get(), rgb), 4080);
        EXPECT_EQ(rgb[0], 4080);
        EXPECT_EQ(rgb[1], 0);
    }
    int32_t lowest[3] = {INT32_MIN, INT32_MIN, INT32_MIN};
    EXPECT_EQ(jKoRgbRGBtoRGB16(table.get(), lowest), 0);
}

TEST(CmykTableRow, GivesTheBitsOfTheOneColourFunction) {
    const auto table = newCmykLut();
    for (const uint32_t seed : {5u, 6u}) {
        if (seed == 6) std::fill_n(table->nodes, KOLINK_CMYK_LUT_NODES, 0xffffffffu);
        else randomise(table->nodes, KOLINK_CMYK_LUT_NODES, seed);
        const auto levels = randomLevels(4 * 200000, seed);
        std::vector<uint16_t> row(levels.size());
        jKoCmykLutCMYKtoCMYK16Row(table.get(), levels.data(), 200000, row.data());
        for (size_t at = 0; at < levels.size(); at += 4) {
            int32_t cmyk[4] = {levels[at], levels[at + 1], levels[at + 2], levels[at + 3]};
            jKoCmykLutCMYKtoCMYK16(table.get(), cmyk);
            ASSERT_TRUE(std::equal(cmyk, cmyk + 4, row.begin() + static_cast<std::ptrdiff_t>(at))) << at;
        }
    }
}

TEST(RgbTableRow, GivesTheBitsOfTheOneColourFunction) {
    const auto table = newRgbLut();
    for (const uint32_t seed : {7u, 8u}) {
        if (seed == 8) std::fill_n(table->nodes, KOLINK_RGB_LUT_NODES, 0xffffffffu);
        else randomise(table->nodes, KOLINK_RGB_LUT_NODES, seed);
        const auto levels = randomLevels(3 * 300000, seed);
        std::vector<uint16_t> row(levels.size());
        jKoRgbRGBtoRGB16Row(table.get(), levels.data(), 300000, row.data());
        for (size_t at = 0; at < levels.size(); at += 3) {
            int32_t rgb[3] = {levels[at], levels[at + 1], levels[at + 2]};
            jKoRgbRGBtoRGB16(table.get(), rgb);
            ASSERT_TRUE(std::equal(rgb, rgb + 3, row.begin() + static_cast<std::ptrdiff_t>(at))) << at;
        }
    }
}

TEST(CmykProfileRow, GivesTheBitsOfTheOneColourFunction) {
    const OwnedCmykProfile profile(jKoCmykCreateProfile());
    randomise(profile->grid, KOLINK_CMYK_NODES, 9);
    auto levels = randomLevels(4 * 200000, 10);
    for (size_t at = 0; at < levels.size(); at += 7) levels[at] |= 0xf8;
    std::vector<uint16_t> row(levels.size());
    jKoCmykCMYKtoCMYK16Row(profile.get(), levels.data(), 200000, row.data());
    for (size_t at = 0; at < levels.size(); at += 4) {
        int32_t cmyk[4] = {levels[at], levels[at + 1], levels[at + 2], levels[at + 3]};
        jKoCmykCMYKtoCMYK16(profile.get(), cmyk);
        ASSERT_TRUE(std::equal(cmyk, cmyk + 4, row.begin() + static_cast<std::ptrdiff_t>(at))) << at;
    }
}

TEST(CmykTableRow, WritesNothingBehindTheLastPixel) {
    const auto cmyk = newCmykLut();
    const auto rgb = newRgbLut();
    const std::vector<uint8_t> input(4 * 9, 200);
    for (int32_t pixels = 0; pixels < 9; ++pixels) {
        std::vector<uint16_t> output(4 * 9 + 4, 0xabcd);
        jKoCmykLutCMYKtoCMYK16Row(cmyk.get(), input.data(), pixels, output.data());
        ASSERT_EQ(output[static_cast<size_t>(4 * pixels)], 0xabcd);
        std::fill(output.begin(), output.end(), uint16_t{0xabcd});
        jKoRgbRGBtoRGB16Row(rgb.get(), input.data(), pixels, output.data());
        ASSERT_EQ(output[static_cast<size_t>(3 * pixels)], 0xabcd);
        if (pixels > 0) {
            ASSERT_EQ(output[static_cast<size_t>(3 * pixels - 1)], 3200);
        }
    }
}

TEST(CmykTableRow, FewerThanOnePixelDoesNothing) {
    const OwnedCmykProfile profile(jKoCmykCreateProfile());
    const auto cmyk = newCmykLut();
    const auto rgb = newRgbLut();
    for (const int32_t pixels : {0, -1, INT32_MIN}) {
        jKoCmykCMYKtoCMYK16Row(profile.get(), nullptr, pixels, nullptr);
        jKoCmykLutCMYKtoCMYK16Row(cmyk.get(), nullptr, pixels, nullptr);
        jKoRgbRGBtoRGB16Row(rgb.get(), nullptr, pixels, nullptr);
    }
    SUCCEED();
}

TEST(CmykTableRow, SeveralThreadsMayUseOneTable) {
    const auto cmyk = newCmykLut();
    const auto rgb = newRgbLut();
    const OwnedCmykProfile profile(jKoCmykCreateProfile());
    randomise(cmyk->nodes, KOLINK_CMYK_LUT_NODES, 11);
    randomise(rgb->nodes, KOLINK_RGB_LUT_NODES, 12);
    const auto levels = randomLevels(4 * 3000, 13);
    using Rows = std::array<std::vector<uint16_t>, 3>;
    const auto convert = [&](Rows& rows) {
        for (auto& row : rows) row.assign(levels.size(), 0);
        jKoCmykLutCMYKtoCMYK16Row(cmyk.get(), levels.data(), 3000, rows[0].data());
        jKoRgbRGBtoRGB16Row(rgb.get(), levels.data(), 4000, rows[1].data());
        jKoCmykCMYKtoCMYK16Row(profile.get(), levels.data(), 3000, rows[2].data());
    };
    Rows expected;
    convert(expected);
    std::array<Rows, 4> results;
    std::vector<std::thread> threads;
    for (auto& rows : results) threads.emplace_back([&] { convert(rows); });
    for (auto& thread : threads) thread.join();
    for (const auto& rows : results) EXPECT_EQ(rows, expected);
}

}  // namespace
}  // namespace ko::test
