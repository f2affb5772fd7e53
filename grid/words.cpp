// Grids of packed words: the plain kernels, and rows in SSE2, which every target has.
//
// Four axes. Weights and sums are whole numbers in both kernels, so the order of summing does not
// matter. Two inner axes are summed in 32 bits (their weights add up to at most 256: a sum is
// below 2^16), the outer two likewise from 16-bit halves. The quotient of sum * 16 and the cell's
// volume is truncated: (sum + 1/32) * (16 / volume) has the same floor, because the quotient with
// the half lies at least 1/2 of 1/volume from any whole number, far more than doubles are off.
//
// Three axes. The plain sum, at most 255 * 240, is exact in 32 bits; sum * 16 / 240 is sum / 15,
// truncated. (sum + 1/2) / 15 has the same floor and lies 1/30 from any whole number, where a
// float below 4096 is off by less than 1/2000.
#include "grid/words.h"

#include <emmintrin.h>

#include <cstring>

#include "frame/arithmetic.h"
#include "frame/colour_words.h"
#include "grid/blend.h"
#include "grid/level_table.h"

namespace ko::grid {
namespace {

constexpr int32_t kTablePoints = 17;

template <int32_t kPoints>
constexpr int32_t kWidth = 256 / (kPoints - 1);
template <int32_t kPoints>
constexpr std::array<Level, 256> kLevels =
    makeLevels(kWidth<kPoints>, [](int32_t level) { return steppedCell(level, kPoints); });
template <int32_t kPoints>
constexpr std::array<double, 5> kScales = makeInverseVolumes<4>(kWidth<kPoints>, 16);

__m128i everywhere(uint32_t weights) noexcept {
    return _mm_set1_epi32(static_cast<int32_t>(weights));
}

// The four corners of the last two axes: bytes of a node in the even, of its neighbour along the
// third axis in the odd places, so that one multiply-add weighs both.
__m128i plane(const uint32_t* node, size_t stride, __m128i lower, __m128i upper) noexcept {
    const auto pair = [](const uint32_t* at) noexcept {  // a node and the next along the last axis
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at));
    };
    const __m128i zero = _mm_setzero_si128();
    const __m128i bytes = _mm_unpacklo_epi8(pair(node), pair(node + stride));
    return _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(bytes, zero), lower),
                         _mm_madd_epi16(_mm_unpackhi_epi8(bytes, zero), upper));
}

// The fractions of the table of three axes: whole numbers of 1/240, which both widths divide,
// above room for a stride.
constexpr int32_t kWhole = 240;
constexpr int32_t fractionOf(const Cell& cell) noexcept {
    return cell.distance * (kWhole / cell.width);
}
constexpr std::array<Fraction, 256> makeFractions() {
    std::array<Fraction, 256> fractions{};
    for (int32_t level = 0; level < 256; ++level) {
        const Cell cell = steppedCell(level, kTablePoints);
        fractions[static_cast<size_t>(level)] = {static_cast<uint32_t>(cell.index),
                                                 static_cast<uint32_t>(fractionOf(cell)) << 16};
    }
    return fractions;
}
constexpr std::array<Fraction, 256> kFractions = makeFractions();
constexpr uint32_t kStride0 = kTablePoints * kTablePoints, kStride1 = kTablePoints;

// Two nodes' bytes side by side as words, for one multiply-add with both weights.
__m128i sideBySide(uint32_t a, uint32_t b) noexcept {
    const __m128i bytes = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int32_t>(a)),
                                            _mm_cvtsi32_si128(static_cast<int32_t>(b)));
    return _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
}

__m128i throughThree(const uint32_t* grid, const uint8_t* input) noexcept {
    const Fraction x = kFractions[input[0]], y = kFractions[input[1]], z = kFractions[input[2]];
    uint32_t first = x.fraction | kStride0, second = y.fraction | kStride1, third = z.fraction | 1;
    sortFalling(first, second, third);
    const uint32_t* node = grid + x.index * kStride0 + y.index * kStride1 + z.index;
    const uint32_t* const node1 = node + (first & 0xffff);
    const uint32_t* const node2 = node1 + (second & 0xffff);
    const uint32_t* const node3 = node + kStride0 + kStride1 + 1;
    const uint32_t high = first >> 16, middle = second >> 16, low = third >> 16;
    const __m128i sums = _mm_add_epi32(
        _mm_madd_epi16(sideBySide(*node, *node1), everywhere((240 - high) | (high - middle) << 16)),
        _mm_madd_epi16(sideBySide(*node2, *node3), everywhere((middle - low) | low << 16)));
    const __m128 quotients = _mm_mul_ps(_mm_add_ps(_mm_cvtepi32_ps(sums), _mm_set1_ps(0.5f)),
                                        _mm_set1_ps(1.0f / 15));
    const __m128i results = _mm_cvttps_epi32(quotients);
    return _mm_packs_epi32(results, results);
}

}  // namespace

// The weights add up to at most 16^4, so that no sum times 16 passes 2^28.
template <int32_t kPoints>
void wordsOfFour(const uint32_t* nodes, int32_t* values) noexcept {
    std::array<Cell, 4> cells;
    for (size_t axis = 0; axis < 4; ++axis)
        cells[axis] = steppedCell(clampTo(values[axis], 0, 255), kPoints);
    const auto byte = [nodes](size_t node, size_t k) { return inkIn(nodes[node], k); };
    multilinear<int32_t, int32_t, 4>(endsOf<int32_t>(cells), kPoints, byte, 16, {values, 4});
}

template <int32_t kPoints>
void wordsOfFourRow(const uint32_t* nodes, const uint8_t* input, int32_t pixels,
                    uint16_t* output) noexcept {
    constexpr size_t kStrideY = kPoints, kStrideM = kStrideY * kPoints,
                     kStrideC = kStrideM * kPoints;
    for (; pixels > 0; --pixels, input += 4, output += 4) {
        const Level c = kLevels<kPoints>[input[0]], m = kLevels<kPoints>[input[1]];
        const Level y = kLevels<kPoints>[input[2]], k = kLevels<kPoints>[input[3]];
        const uint32_t* node =
            nodes + (c.index * kStrideC + m.index * kStrideM + y.index * kStrideY + k.index);

        const __m128i lowerK = everywhere(y.weights * k.lower());
        const __m128i upperK = everywhere(y.weights * k.upper());
        const __m128i p00 = plane(node, kStrideY, lowerK, upperK);
        const __m128i p01 = plane(node + kStrideM, kStrideY, lowerK, upperK);
        const __m128i p10 = plane(node + kStrideC, kStrideY, lowerK, upperK);
        const __m128i p11 = plane(node + kStrideC + kStrideM, kStrideY, lowerK, upperK);

        // Two planes in the halves of a lane, moved down by 2^15 to fit signed words; what that
        // takes away from the sum is added back.
        const __m128i half = everywhere(0x80008000);
        const __m128i lower = _mm_xor_si128(_mm_or_si128(p00, _mm_slli_epi32(p01, 16)), half);
        const __m128i upper = _mm_xor_si128(_mm_or_si128(p10, _mm_slli_epi32(p11, 16)), half);
        const __m128i products =
            _mm_add_epi32(_mm_madd_epi16(lower, everywhere(m.weights * c.lower())),
                          _mm_madd_epi16(upper, everywhere(m.weights * c.upper())));
        const __m128i sums = _mm_add_epi32(products, everywhere(c.width() * m.width() << 15));

        const __m128d scale = _mm_set1_pd(
            kScales<kPoints>[static_cast<size_t>(c.narrow + m.narrow + y.narrow + k.narrow)]);
        const auto quotients = [scale](__m128i pair) noexcept {
            const __m128d half16 = _mm_set1_pd(1.0 / 32);  // 1/2 before the factor of 16
            return _mm_cvttpd_epi32(_mm_mul_pd(_mm_add_pd(_mm_cvtepi32_pd(pair), half16), scale));
        };
        // A word's lowest byte is the last output: the order turns round.
        const __m128i turned =
            _mm_unpacklo_epi64(quotients(sums), quotients(_mm_unpackhi_epi64(sums, sums)));
        const __m128i results = _mm_shuffle_epi32(turned, _MM_SHUFFLE(0, 1, 2, 3));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(output), _mm_packs_epi32(results, results));
    }
}

template void wordsOfFour<17>(const uint32_t*, int32_t*) noexcept;
template void wordsOfFour<33>(const uint32_t*, int32_t*) noexcept;
template void wordsOfFourRow<17>(const uint32_t*, const uint8_t*, int32_t, uint16_t*) noexcept;
template void wordsOfFourRow<33>(const uint32_t*, const uint8_t*, int32_t, uint16_t*) noexcept;

// The sum is exact and truncated once. The float fractions of the other tetrahedral rule would
// give other results: 1/15 is no float.
void wordsOfThree(const uint32_t* nodes, int32_t* values) noexcept {
    const int32_t strides[3] = {kStride0, kStride1, 1};
    int32_t fractions[3];
    const uint32_t* node = nodes;
    for (size_t axis = 0; axis < 3; ++axis) {
        const Cell cell = steppedCell(clampTo(values[axis], 0, 255), kTablePoints);
        fractions[axis] = fractionOf(cell);
        node += cell.index * strides[axis];
    }
    int32_t sums[3] = {}, left = kWhole;
    const auto weigh = [&](int32_t next) {
        for (size_t k = 0; k < 3; ++k)
            sums[k] += (left - next) * static_cast<int32_t>(lightIn(*node, k));
        left = next;
    };
    for (const uint8_t axis : fallingOrder(fractions[0], fractions[1], fractions[2])) {
        weigh(fractions[axis]);
        node += strides[axis];
    }
    weigh(0);
    for (size_t k = 0; k < 3; ++k) values[k] = sums[k] * 16 / kWhole;
}

void wordsOfThreeRow(const uint32_t* nodes, const uint8_t* input, int32_t pixels,
                     uint16_t* output) noexcept {
    // Four words are stored a pixel; the next pixel takes the fourth back. The last has no next.
    for (; pixels > 1; --pixels, input += 3, output += 3)
        _mm_storel_epi64(reinterpret_cast<__m128i*>(output), throughThree(nodes, input));
    if (pixels < 1) return;
    uint16_t last[4];
    _mm_storel_epi64(reinterpret_cast<__m128i*>(last), throughThree(nodes, input));
    std::memcpy(output, last, 3 * sizeof *output);
}

}  // namespace ko::grid
