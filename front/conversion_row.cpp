// Rows of bytes through the current links or the built-in tables, four outputs at a time.
//
// The table kernel's sums are whole numbers below 255 * 32^3. They are formed in 32-bit integers
// over two axes and in double over the third, both exact; (sum + 1/2) * (1/volume) lies at least
// 1/2 of 1/volume away from any whole number, far more than its rounding error, and truncates to
// what the plain kernel's integer division gives.
#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "front/builtin_cell.h"
#include "front/current_links.h"
#include "front/front.h"
#include "resources/builtin_tables.h"

namespace ko::front {
namespace {

using builtin::kTablePoints;

struct Level {
    uint16_t index;
    uint16_t narrow;   // 1 when the cell is 31 levels wide, 0 for 32
    uint32_t weights;  // lower corner's weight, upper corner's weight << 16
};

constexpr std::array<Level, 256> makeLevels() {
    std::array<Level, 256> levels{};
    for (int32_t value = 0; value < 256; ++value) {
        const BuiltinCell cell = locateBuiltinCell(value);
        levels[static_cast<size_t>(value)] = {
            static_cast<uint16_t>(cell.index), static_cast<uint16_t>(cell.width == 31),
            static_cast<uint32_t>(cell.width - cell.distance) |
                static_cast<uint32_t>(cell.distance) << 16};
    }
    return levels;
}
constexpr std::array<Level, 256> kLevels = makeLevels();

constexpr double kInverseVolumes[4] = {1.0 / 32768, 1.0 / 31744, 1.0 / 30752, 1.0 / 29791};

// The sums over the four corners of the last two axes; weights[i] holds a corner pair's two
// weights four times over.
__m128i blend4(const uint8_t (*node)[4], __m128i lowWeights, __m128i highWeights) noexcept {
    const auto pair = [](const uint8_t* both, __m128i weights) noexcept {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(both));
        const __m128i words = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
        return _mm_madd_epi16(_mm_unpacklo_epi16(words, _mm_srli_si128(words, 8)), weights);
    };
    return _mm_add_epi32(pair(node[0], lowWeights), pair(node[kTablePoints], highWeights));
}

// The four outputs of a colour, one to a byte, the first lowest.
uint32_t interpolate(const uint8_t (&table)[builtin::kTableNodes][4],
                     const uint8_t* levels) noexcept {
    const Level& x = kLevels[levels[0]];
    const Level& y = kLevels[levels[1]];
    const Level& z = kLevels[levels[2]];
    const size_t base = (x.index * kTablePoints + y.index) * kTablePoints + z.index;

    const __m128i zPair = _mm_set1_epi32(static_cast<int32_t>(z.weights));
    const __m128i lowWeights =
        _mm_mullo_epi16(_mm_set1_epi16(static_cast<int16_t>(y.weights)), zPair);
    const __m128i highWeights =
        _mm_mullo_epi16(_mm_set1_epi16(static_cast<int16_t>(y.weights >> 16)), zPair);
    const __m128i low = blend4(table + base, lowWeights, highWeights);
    const __m128i high =
        blend4(table + base + kTablePoints * kTablePoints, lowWeights, highWeights);

    const __m128d lowWeight = _mm_set1_pd(static_cast<double>(x.weights & 0xffff));
    const __m128d highWeight = _mm_set1_pd(static_cast<double>(x.weights >> 16));
    const __m128d inverse = _mm_set1_pd(kInverseVolumes[x.narrow + y.narrow + z.narrow]);
    const auto results = [&](__m128i lowPair, __m128i highPair) noexcept {
        const __m128d sum = _mm_add_pd(_mm_mul_pd(_mm_cvtepi32_pd(lowPair), lowWeight),
                                       _mm_mul_pd(_mm_cvtepi32_pd(highPair), highWeight));
        return _mm_cvttpd_epi32(_mm_mul_pd(_mm_add_pd(sum, _mm_set1_pd(0.5)), inverse));
    };
    const __m128i words = _mm_unpacklo_epi64(
        results(low, high), results(_mm_unpackhi_epi64(low, low), _mm_unpackhi_epi64(high, high)));
    const __m128i packed = _mm_packs_epi32(words, words);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(packed, packed)));
}

// Row by row of a small buffer through a link; store takes a pixel's four values.
template <class Store>
void throughLink(const LinkProfile& link, const uint8_t* input, int32_t pixels,
                 Store store) noexcept {
    constexpr int32_t kPixels = 512;
    uint16_t values[kPixels * 4];
    const int32_t channels = link.inputChannels == 3 ? 3 : 4;
    while (pixels > 0) {
        const int32_t count = std::min(pixels, kPixels);
        link::convertRow(link, input, count, values);
        for (int32_t pixel = 0; pixel < count; ++pixel) store(values + pixel * 4);
        input += static_cast<ptrdiff_t>(count) * channels;
        pixels -= count;
    }
}

}  // namespace

void rgbToCmykRow(const uint8_t* rgb, int32_t pixels, uint8_t* cmyk) noexcept {
    if (const LinkProfile* current = rgbToCmykLink()) {
        throughLink(*current, rgb, pixels, [&](const uint16_t* values) {
            for (int k = 0; k < 4; ++k) *cmyk++ = static_cast<uint8_t>(values[k] / 16);
        });
        return;
    }
    for (; pixels > 0; --pixels, rgb += 3, cmyk += 4) {
        const uint32_t inks = interpolate(builtin::kRgbToCmyk, rgb);
        std::memcpy(cmyk, &inks, 4);
    }
}

void cmykToRgbRow(const uint8_t* cmyk, int32_t pixels, uint8_t* rgb) noexcept {
    if (const LinkProfile* current = cmykToRgbLink()) {
        throughLink(*current, cmyk, pixels, [&](const uint16_t* values) {
            for (int k = 0; k < 3; ++k) *rgb++ = static_cast<uint8_t>(values[k] / 16);
        });
        return;
    }
    for (; pixels > 0; --pixels, cmyk += 4, rgb += 3) {
        const uint32_t light = interpolate(builtin::kCmyToRgb, cmyk);
        const uint32_t left = 255u - cmyk[3];
        for (uint32_t k = 0; k < 3; ++k)
            rgb[k] = static_cast<uint8_t>((light >> 8 * k & 255) * left / 255);
    }
}

}  // namespace ko::front
