// Grids of four 16-bit outputs a node: the plain kernels, and rows through 17 points in SSE2. Rows
// give the plain kernels' bits:
//
// Four axes. The plain kernel's sums are whole numbers: a node (16 bits) times a weight (at most
// 16^4) adds up to less than 2^33, so its doubles are exact and so is any other order of summing.
// The row forms them from three inner axes in 32-bit integers and the outer one in double. The
// plain kernel then divides and truncates. Its quotient, below 2^16, is rounded by less than
// 2^-37, while the next whole number above is at least 1/16^4 away: the result is the floor of
// the exact quotient. (sum + 1/2) * (1/volume) lies at least 1/2 of 1/volume away from any whole
// number and is off by less than 2^-35: the same floor.
//
// Three axes. A fraction is a float of at least 1/16 or 0, so it is a whole multiple of 2^-27, and
// so are 1 - a, a - b and b - c. Node times weight is then a whole number below 2^43 over 2^27,
// the plain kernel's products and sums are exact in double, and the same sums in 64-bit integers,
// shifted right by 27, truncate alike.
#include "grid/shorts.h"

#include <emmintrin.h>

#include <algorithm>

#include "frame/arithmetic.h"
#include "grid/blend.h"
#include "grid/level_table.h"

namespace ko::grid {
namespace {

constexpr int32_t kMaxResult = 4080;  // 255 * 16
constexpr int32_t kRowPoints = 17;    // of the grids with a row of their own
constexpr int32_t kWidth = 16;
constexpr int32_t kFractionBits = 27;
constexpr size_t kStride2 = 4;                       // along the last axis, in entries
constexpr size_t kStride1 = kStride2 * kRowPoints;
constexpr size_t kStride0 = kStride1 * kRowPoints;
constexpr size_t kStrideFirst = kStride0 * kRowPoints;  // the first of four axes

constexpr Cell rowCell(int32_t level) noexcept { return evenCell(level, kRowPoints, 255); }
constexpr std::array<Level, 256> kLevels = makeLevels(kWidth, rowCell);
constexpr std::array<double, 5> kInverseVolumes = makeInverseVolumes<4>(kWidth, 1);

constexpr double scaledFraction(int32_t level) noexcept {
    const Cell cell = rowCell(level);
    const float fraction = static_cast<float>(cell.distance) / static_cast<float>(cell.width);
    return static_cast<double>(fraction) * (1 << kFractionBits);
}
constexpr std::array<Fraction, 256> makeFractions() {
    std::array<Fraction, 256> fractions{};
    for (int32_t level = 0; level < 256; ++level)
        fractions[static_cast<size_t>(level)] = {static_cast<uint32_t>(rowCell(level).index),
                                                 static_cast<uint32_t>(scaledFraction(level))};
    return fractions;
}
constexpr std::array<Fraction, 256> kFractions = makeFractions();

constexpr bool fractionsAreWhole() {
    for (int32_t level = 0; level < 256; ++level)
        if (scaledFraction(level) != kFractions[static_cast<size_t>(level)].fraction ||
            kLevels[static_cast<size_t>(level)].narrow > 1)
            return false;
    return true;
}
static_assert(fractionsAreWhole());

__m128i load4(const uint16_t* node) noexcept {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(node));
}

// Four 32-bit results, below 2^16, to four 16-bit ones limited to 4080.
void storeLimited(__m128i results, uint16_t* output) noexcept {
    const __m128i narrow = _mm_packs_epi32(results, results);  // beyond 32767 saturates
    const __m128i limited = _mm_min_epi16(narrow, _mm_set1_epi16(kMaxResult));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(output), limited);
}

// Two of a corner's four products with a weight, as 64-bit numbers.
struct Products {
    __m128i outputs02, outputs13;
};
Products weighted(const uint16_t* node, uint32_t weight) noexcept {
    const __m128i wide = _mm_unpacklo_epi16(load4(node), _mm_setzero_si128());
    const __m128i factor = _mm_set1_epi32(static_cast<int32_t>(weight));
    return {_mm_mul_epu32(wide, factor), _mm_mul_epu32(_mm_srli_epi64(wide, 32), factor)};
}

void row3(const uint16_t* nodes, const uint8_t* input, int32_t pixels, uint16_t* output) noexcept {
    for (; pixels > 0; --pixels, input += 3, output += 4) {
        const Fraction& x = kFractions[input[0]];
        const Fraction& y = kFractions[input[1]];
        const Fraction& z = kFractions[input[2]];
        const uint16_t* base =
            nodes + (x.index * kStride0 + y.index * kStride1 + z.index * kStride2);

        uint64_t first = uint64_t{x.fraction} << 32 | kStride0;
        uint64_t second = uint64_t{y.fraction} << 32 | kStride1;
        uint64_t third = uint64_t{z.fraction} << 32 | kStride2;
        sortFalling(first, second, third);

        const auto fa = static_cast<uint32_t>(first >> 32),
                   fb = static_cast<uint32_t>(second >> 32),
                   fc = static_cast<uint32_t>(third >> 32);
        const uint16_t* cornerA = base + static_cast<uint32_t>(first);
        const uint16_t* cornerB = cornerA + static_cast<uint32_t>(second);
        const uint16_t* far = base + (kStride0 + kStride1 + kStride2);

        const Products p0 = weighted(base, (1u << kFractionBits) - fa);
        const Products p1 = weighted(cornerA, fa - fb);
        const Products p2 = weighted(cornerB, fb - fc);
        const Products p3 = weighted(far, fc);
        const __m128i even = _mm_srli_epi64(
            _mm_add_epi64(_mm_add_epi64(p0.outputs02, p1.outputs02),
                          _mm_add_epi64(p2.outputs02, p3.outputs02)), kFractionBits);
        const __m128i odd = _mm_srli_epi64(
            _mm_add_epi64(_mm_add_epi64(p0.outputs13, p1.outputs13),
                          _mm_add_epi64(p2.outputs13, p3.outputs13)), kFractionBits);
        storeLimited(_mm_or_si128(even, _mm_slli_epi64(odd, 32)), output);
    }
}

// The sum over the corners of three axes at one side of the first; weights[i] holds a corner
// pair's two weights four times over. Nodes are taken as signed, 32768 too small.
__m128i blend8(const uint16_t* node, const __m128i (&weights)[4]) noexcept {
    const __m128i bias = _mm_set1_epi16(static_cast<int16_t>(0x8000));
    const auto pair = [&](size_t offset, __m128i weight) noexcept {
        const __m128i both = _mm_loadu_si128(reinterpret_cast<const __m128i*>(node + offset));
        const __m128i interleaved = _mm_unpacklo_epi16(both, _mm_srli_si128(both, 8));
        return _mm_madd_epi16(_mm_xor_si128(interleaved, bias), weight);
    };
    return _mm_add_epi32(_mm_add_epi32(pair(0, weights[0]), pair(kStride1, weights[1])),
                         _mm_add_epi32(pair(kStride0, weights[2]),
                                       pair(kStride0 + kStride1, weights[3])));
}

void row4(const uint16_t* nodes, const uint8_t* input, int32_t pixels, uint16_t* output) noexcept {
    for (; pixels > 0; --pixels, input += 4, output += 4) {
        const Level& c = kLevels[input[0]];
        const Level& m = kLevels[input[1]];
        const Level& y = kLevels[input[2]];
        const Level& k = kLevels[input[3]];
        const uint16_t* base = nodes + (c.index * kStrideFirst + m.index * kStride0 +
                                       y.index * kStride1 + k.index * kStride2);

        const uint32_t products[4] = {m.lower() * y.lower(), m.lower() * y.upper(),
                                      m.upper() * y.lower(), m.upper() * y.upper()};
        const __m128i kPair = _mm_set1_epi32(static_cast<int32_t>(k.weights));
        __m128i weights[4];  // of three axes, at most 16^3
        for (size_t i = 0; i < 4; ++i)
            weights[i] = _mm_mullo_epi16(_mm_set1_epi16(static_cast<int16_t>(products[i])), kPair);

        const __m128i low = blend8(base, weights);
        const __m128i high = blend8(base + kStrideFirst, weights);

        const __m128d lowWeight = _mm_set1_pd(static_cast<double>(c.lower()));
        const __m128d highWeight = _mm_set1_pd(static_cast<double>(c.upper()));
        const double inverse =
            kInverseVolumes[static_cast<size_t>(c.narrow + m.narrow + y.narrow + k.narrow)];
        // Gives back what the signed nodes took away, 32768 * volume, and the half.
        const uint32_t volume = c.width() * m.width() * y.width() * k.width();
        const __m128d offset = _mm_set1_pd(static_cast<double>(volume) * 32768.0 + 0.5);
        const auto results = [&](__m128i lowPair, __m128i highPair) noexcept {
            const __m128d sum = _mm_add_pd(_mm_mul_pd(_mm_cvtepi32_pd(lowPair), lowWeight),
                                           _mm_mul_pd(_mm_cvtepi32_pd(highPair), highWeight));
            return _mm_cvttpd_epi32(_mm_mul_pd(_mm_add_pd(sum, offset), _mm_set1_pd(inverse)));
        };
        storeLimited(_mm_unpacklo_epi64(results(low, high),
                                        results(_mm_unpackhi_epi64(low, low),
                                                _mm_unpackhi_epi64(high, high))), output);
    }
}

// Any grid, a pixel at a time.
template <size_t kChannels, class Plain>
void plainRow(const uint16_t* nodes, int32_t gridPoints, const uint8_t* input, int32_t pixels,
              uint16_t* output, Plain plain) noexcept {
    for (; pixels > 0; --pixels, input += kChannels, output += 4) {
        int32_t values[4];
        std::copy_n(input, kChannels, values);
        plain(nodes, gridPoints, values);
        for (size_t k = 0; k < 4; ++k) output[k] = static_cast<uint16_t>(values[k]);
    }
}

template <size_t kAxes>
std::array<Cell, kAxes> cellsOf(const int32_t* values, int32_t gridPoints) noexcept {
    std::array<Cell, kAxes> cells;
    for (size_t axis = 0; axis < kAxes; ++axis)
        cells[axis] = evenCell(clampTo(values[axis], 0, 255), gridPoints, 255);
    return cells;
}

void limit(int32_t* values) noexcept {
    for (size_t k = 0; k < 4; ++k) values[k] = std::min(values[k], kMaxResult);
}

}  // namespace

void shortsOfThree(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept {
    const auto entry = [nodes](size_t node, size_t k) { return nodes[node * 4 + k]; };
    tetrahedral(cellsOf<3>(values, gridPoints), static_cast<size_t>(gridPoints), entry,
                {values, 4});
    limit(values);
}

// Weights are whole numbers of at most 255^4, sums below 2^48: doubles hold them exactly.
void shortsOfFour(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept {
    const auto entry = [nodes](size_t node, size_t k) { return nodes[node * 4 + k]; };
    multilinear<uint32_t, double, 4>(endsOf<uint32_t>(cellsOf<4>(values, gridPoints)),
                                     static_cast<size_t>(gridPoints), entry, 1, {values, 4});
    limit(values);
}

void shortsOfThreeRow(const uint16_t* nodes, int32_t gridPoints, const uint8_t* input,
                      int32_t pixels, uint16_t* output) noexcept {
    if (gridPoints == kRowPoints) row3(nodes, input, pixels, output);
    else plainRow<3>(nodes, gridPoints, input, pixels, output, shortsOfThree);
}

void shortsOfFourRow(const uint16_t* nodes, int32_t gridPoints, const uint8_t* input,
                     int32_t pixels, uint16_t* output) noexcept {
    if (gridPoints == kRowPoints) row4(nodes, input, pixels, output);
    else plainRow<4>(nodes, gridPoints, input, pixels, output, shortsOfFour);
}

}  // namespace ko::grid
