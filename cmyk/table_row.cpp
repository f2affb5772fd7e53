// Rows of pixels through the small tables and through a profile's grid.
#include "cmyk/table_row.h"

#include <algorithm>
#include <cstring>

#include "cmyk/cmyk.h"

namespace ko::cmyk {
namespace {

constexpr uint32_t kStrideR = kTableGridPoints * kTableGridPoints, kStrideG = kTableGridPoints;

// A level's part of the base node along each axis is its index times the axis's stride; its
// fraction, in 1/240, stands above the stride, so that sorting fractions sorts strides along.
struct Level {
    uint16_t index;
    uint16_t unused;
    uint32_t fraction;  // << 16
};
constexpr std::array<Level, 256> makeLevels() {
    std::array<Level, 256> levels{};
    for (uint32_t value = 0; value < 256; ++value) {
        const uint32_t fraction = value % 16 * (value >= 240 ? 16 : 15);
        levels[value] = {static_cast<uint16_t>(value / 16), 0, fraction << 16};
    }
    return levels;
}
constexpr std::array<Level, 256> kLevels = makeLevels();

void order(uint32_t& larger, uint32_t& smaller) noexcept {
    const uint32_t low = std::min(larger, smaller);
    larger = std::max(larger, smaller);
    smaller = low;
}

// Two nodes' bytes side by side as words, for one multiply-add with both weights.
__m128i sideBySide(uint32_t a, uint32_t b) noexcept {
    const __m128i bytes = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int32_t>(a)),
                                            _mm_cvtsi32_si128(static_cast<int32_t>(b)));
    return _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
}

// The plain kernel's sum, at most 255 * 240, is exact in 32 bits; sum * 16 / 240 is sum / 15,
// truncated. (sum + 1/2) / 15 has the same floor and lies 1/30 from any whole number, where a
// float below 4096 is off by less than 1/2000.
__m128i convertOne(const uint32_t* grid, const uint8_t* input) noexcept {
    const Level r = kLevels[input[0]], g = kLevels[input[1]], b = kLevels[input[2]];
    uint32_t first = r.fraction | kStrideR, second = g.fraction | kStrideG, third = b.fraction | 1;
    order(first, second);
    order(second, third);
    order(first, second);
    const uint32_t* node = grid + r.index * kStrideR + g.index * kStrideG + b.index;
    const uint32_t* const node1 = node + (first & 0xffff);
    const uint32_t* const node2 = node1 + (second & 0xffff);
    const uint32_t* const node3 = node + kStrideR + kStrideG + 1;
    const uint32_t high = first >> 16, middle = second >> 16, low = third >> 16;
    const __m128i sums = _mm_add_epi32(
        _mm_madd_epi16(sideBySide(*node, *node1),
                       _mm_set1_epi32(static_cast<int32_t>((240 - high) | (high - middle) << 16))),
        _mm_madd_epi16(sideBySide(*node2, *node3),
                       _mm_set1_epi32(static_cast<int32_t>((middle - low) | low << 16))));
    const __m128 quotients = _mm_mul_ps(_mm_add_ps(_mm_cvtepi32_ps(sums), _mm_set1_ps(0.5f)),
                                        _mm_set1_ps(1.0f / 15));
    const __m128i results = _mm_cvttps_epi32(quotients);
    return _mm_packs_epi32(results, results);
}

}  // namespace

void cmykToCmyk16Row(const CmykProfile& profile, const uint8_t* input, int32_t pixels,
                     uint16_t* output) noexcept {
    QuadrilinearRow<kGridPoints>::convert(profile.grid, input, pixels, output);
}

void lutCmykToCmyk16Row(const CmykLut& table, const uint8_t* input, int32_t pixels,
                        uint16_t* output) noexcept {
    QuadrilinearRow<kTableGridPoints>::convert(table.nodes, input, pixels, output);
}

void rgbToRgb16Row(const RgbLut& table, const uint8_t* input, int32_t pixels,
                   uint16_t* output) noexcept {
    // Four words are stored a pixel; the next pixel takes the fourth back. The last has no next.
    for (; pixels > 1; --pixels, input += 3, output += 3)
        _mm_storel_epi64(reinterpret_cast<__m128i*>(output), convertOne(table.nodes, input));
    if (pixels < 1) return;
    uint16_t last[4];
    _mm_storel_epi64(reinterpret_cast<__m128i*>(last), convertOne(table.nodes, input));
    std::memcpy(output, last, 3 * sizeof *output);
}

}  // namespace ko::cmyk
