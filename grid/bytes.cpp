// Grids of four bytes a node: the plain kernel, and rows in SSE2.
//
// The plain kernel's sums are whole numbers below 255 * 32^3. The row forms them in 32-bit integers
// over two axes and in double over the third, both exact; (sum + 1/2) * (1/volume) lies at least
// 1/2 of 1/volume away from any whole number, far more than its rounding error, and truncates to
// what the plain kernel's integer division gives.
#include "grid/bytes.h"

#include <emmintrin.h>

#include <cstring>

#include "frame/arithmetic.h"
#include "grid/blend.h"
#include "grid/level_table.h"

namespace ko::grid {
namespace {

constexpr int32_t kWidth = 256 / (kBytePoints - 1);
constexpr std::array<Level, 256> kLevels =
    makeLevels(kWidth, [](int32_t level) { return steppedCell(level, kBytePoints); });
constexpr std::array<double, 4> kInverseVolumes = makeInverseVolumes<3>(kWidth, 1);

// The sums over the four corners of the last two axes; a weights register holds a corner pair's
// two weights four times over.
__m128i blend4(const uint8_t (*node)[4], __m128i lowWeights, __m128i highWeights) noexcept {
    const auto pair = [](const uint8_t* both, __m128i weights) noexcept {
        const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(both));
        const __m128i words = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
        return _mm_madd_epi16(_mm_unpacklo_epi16(words, _mm_srli_si128(words, 8)), weights);
    };
    return _mm_add_epi32(pair(node[0], lowWeights), pair(node[kBytePoints], highWeights));
}

// The four outputs of a pixel, as 16-bit words in the lower half of a register.
__m128i outputsOf(const uint8_t (*nodes)[4], const uint8_t* input) noexcept {
    const Level& x = kLevels[input[0]];
    const Level& y = kLevels[input[1]];
    const Level& z = kLevels[input[2]];
    const uint8_t(*const node)[4] =
        nodes + ((x.index * kBytePoints + y.index) * kBytePoints + z.index);

    const __m128i zPair = _mm_set1_epi32(static_cast<int32_t>(z.weights));
    const __m128i lowWeights =
        _mm_mullo_epi16(_mm_set1_epi16(static_cast<int16_t>(y.lower())), zPair);
    const __m128i highWeights =
        _mm_mullo_epi16(_mm_set1_epi16(static_cast<int16_t>(y.upper())), zPair);
    const __m128i low = blend4(node, lowWeights, highWeights);
    const __m128i high = blend4(node + kBytePoints * kBytePoints, lowWeights, highWeights);

    const __m128d lowWeight = _mm_set1_pd(static_cast<double>(x.lower()));
    const __m128d highWeight = _mm_set1_pd(static_cast<double>(x.upper()));
    const __m128d inverse =
        _mm_set1_pd(kInverseVolumes[static_cast<size_t>(x.narrow + y.narrow + z.narrow)]);
    const auto results = [&](__m128i lowPair, __m128i highPair) noexcept {
        const __m128d sum = _mm_add_pd(_mm_mul_pd(_mm_cvtepi32_pd(lowPair), lowWeight),
                                       _mm_mul_pd(_mm_cvtepi32_pd(highPair), highWeight));
        return _mm_cvttpd_epi32(_mm_mul_pd(_mm_add_pd(sum, _mm_set1_pd(0.5)), inverse));
    };
    const __m128i words = _mm_unpacklo_epi64(
        results(low, high), results(_mm_unpackhi_epi64(low, low), _mm_unpackhi_epi64(high, high)));
    return _mm_packs_epi32(words, words);
}

// Words of 0..255 as bytes, the first one lowest.
uint32_t bytesIn(__m128i words) noexcept {
    return static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(words, words)));
}

}  // namespace

void bytesOfThree(const uint8_t (*nodes)[4], int32_t* values) noexcept {
    std::array<Cell, 3> cells;
    for (size_t axis = 0; axis < 3; ++axis)
        cells[axis] = steppedCell(clampTo(values[axis], 0, 255), kBytePoints);
    const auto byte = [nodes](size_t node, size_t k) { return nodes[node][k]; };
    multilinear<int32_t, int32_t, 3>(endsOf<int32_t>(cells), kBytePoints, byte, 1, {values, 4});
}

void bytesOfThreeRow(const uint8_t (*nodes)[4], const uint8_t* input, int32_t pixels,
                     uint8_t* output) noexcept {
    for (; pixels > 0; --pixels, input += 3, output += 4) {
        const uint32_t bytes = bytesIn(outputsOf(nodes, input));
        std::memcpy(output, &bytes, 4);
    }
}

void dimmedBytesOfThreeRow(const uint8_t (*nodes)[4], const uint8_t* input, int32_t pixels,
                           uint8_t* output) noexcept {
    for (; pixels > 0; --pixels, input += 4, output += 3) {
        // Products are at most 255 * 255; n / 255 is (n + 1 + n / 256) / 256 for all of them.
        const auto left = static_cast<int16_t>(255 - input[3]);
        const __m128i product = _mm_mullo_epi16(outputsOf(nodes, input), _mm_set1_epi16(left));
        const __m128i quotient = _mm_srli_epi16(
            _mm_add_epi16(_mm_add_epi16(product, _mm_set1_epi16(1)), _mm_srli_epi16(product, 8)),
            8);
        const uint32_t bytes = bytesIn(quotient);
        for (int k = 0; k < 3; ++k) output[k] = static_cast<uint8_t>(bytes >> 8 * k);
    }
}

}  // namespace ko::grid
