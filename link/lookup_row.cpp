// Rows of pixels through a 17-point grid, four outputs at a time in SSE2, which every target has.
// Other grids go through the plain kernels. Both ways give the same bits:
//
// CMYK. The plain kernel's sums are whole numbers: a node (16 bits) times a weight (at most 16^4)
// adds up to less than 2^33, so its doubles are exact and so is any other order of summing. Here
// they are formed from three inner axes in 32-bit integers and the outer one in double. The
// plain kernel then divides and truncates. Its quotient, below 2^16, is rounded by less than
// 2^-37, while the next whole number above is at least 1/16^4 away: the result is the floor of
// the exact quotient. (sum + 1/2) * (1/volume) lies at least 1/2 of 1/volume away from any whole
// number and is off by less than 2^-35: the same floor.
//
// RGB. A fraction is a float of at least 1/16 or 0, so it is a whole multiple of 2^-27, and so
// are 1 - a, a - b and b - c. Node times weight is then a whole number below 2^43 over 2^27, the
// plain kernel's products and sums are exact in double, and the same sums in 64-bit integers,
// shifted right by 27, truncate alike. Fractions that are equal give a corner the weight 0, so
// they may be sorted either way.
#include <emmintrin.h>

#include <algorithm>
#include <array>

#include "link/cell.h"
#include "link/link.h"

namespace ko::link {
namespace {

constexpr int32_t kFractionBits = 27;
constexpr size_t kStride2 = 4;                    // along the last axis, in grid entries
constexpr size_t kStride1 = kStride2 * kGridPoints;
constexpr size_t kStride0 = kStride1 * kGridPoints;
constexpr size_t kStrideC = kStride0 * kGridPoints;  // the first of four axes

struct Level {
    uint16_t index;
    uint16_t fifteen;   // 1 when the cell is 15 levels wide, 0 for 16
    uint32_t weights;   // lower corner's weight, upper corner's weight << 16
    uint32_t fraction;  // the float fraction * 2^27
};

constexpr std::array<Level, 256> makeLevels() {
    std::array<Level, 256> levels{};
    for (int32_t value = 0; value < 256; ++value) {
        const Cell cell = locateCell(value, kGridPoints);
        const float fraction = static_cast<float>(cell.distance) / static_cast<float>(cell.width);
        levels[static_cast<size_t>(value)] = {
            static_cast<uint16_t>(cell.index), static_cast<uint16_t>(cell.width == 15),
            static_cast<uint32_t>(cell.width - cell.distance) |
                static_cast<uint32_t>(cell.distance) << 16,
            static_cast<uint32_t>(static_cast<double>(fraction) * (1 << kFractionBits))};
    }
    return levels;
}
constexpr std::array<Level, 256> kLevels = makeLevels();

constexpr bool fractionsAreWhole() {
    for (int32_t value = 0; value < 256; ++value) {
        const Cell cell = locateCell(value, kGridPoints);
        const float fraction = static_cast<float>(cell.distance) / static_cast<float>(cell.width);
        const double scaled = static_cast<double>(fraction) * (1 << kFractionBits);
        if (scaled != static_cast<double>(kLevels[static_cast<size_t>(value)].fraction))
            return false;
        if (cell.width != 15 && cell.width != 16) return false;
    }
    return true;
}
static_assert(fractionsAreWhole());

// 1 / (15^n * 16^(4 - n))
constexpr double kInverseVolumes[5] = {1.0 / 65536, 1.0 / 61440, 1.0 / 57600, 1.0 / 54000,
                                       1.0 / 50625};

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

void row3(const uint16_t* grid, const uint8_t* input, int32_t pixels, uint16_t* output) noexcept {
    for (; pixels > 0; --pixels, input += 3, output += 4) {
        const Level& r = kLevels[input[0]];
        const Level& g = kLevels[input[1]];
        const Level& b = kLevels[input[2]];
        const uint16_t* base =
            grid + (r.index * kStride0 + g.index * kStride1 + b.index * kStride2);

        // Sorted with their strides beside them, without a branch that depends on the colour.
        const uint64_t x = static_cast<uint64_t>(r.fraction) << 32 | kStride0;
        const uint64_t y = static_cast<uint64_t>(g.fraction) << 32 | kStride1;
        const uint64_t z = static_cast<uint64_t>(b.fraction) << 32 | kStride2;
        const uint64_t larger = std::max(x, y), smaller = std::min(x, y);
        const uint64_t first = std::max(larger, z), other = std::min(larger, z);
        const uint64_t second = std::max(smaller, other), third = std::min(smaller, other);

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

void row4(const uint16_t* grid, const uint8_t* input, int32_t pixels, uint16_t* output) noexcept {
    for (; pixels > 0; --pixels, input += 4, output += 4) {
        const Level& c = kLevels[input[0]];
        const Level& m = kLevels[input[1]];
        const Level& y = kLevels[input[2]];
        const Level& k = kLevels[input[3]];
        const uint16_t* base = grid + (c.index * kStrideC + m.index * kStride0 +
                                       y.index * kStride1 + k.index * kStride2);

        const uint32_t mLow = m.weights & 0xffff, mHigh = m.weights >> 16;
        const uint32_t yLow = y.weights & 0xffff, yHigh = y.weights >> 16;
        const uint32_t products[4] = {mLow * yLow, mLow * yHigh, mHigh * yLow, mHigh * yHigh};
        const __m128i kPair = _mm_set1_epi32(static_cast<int32_t>(k.weights));
        __m128i weights[4];  // of three axes, at most 16^3
        for (size_t i = 0; i < 4; ++i)
            weights[i] = _mm_mullo_epi16(_mm_set1_epi16(static_cast<int16_t>(products[i])), kPair);

        const __m128i low = blend8(base, weights);
        const __m128i high = blend8(base + kStrideC, weights);

        const uint32_t cLow = c.weights & 0xffff, cHigh = c.weights >> 16;
        const __m128d lowWeight = _mm_set1_pd(static_cast<double>(cLow));
        const __m128d highWeight = _mm_set1_pd(static_cast<double>(cHigh));
        const double inverse = kInverseVolumes[c.fifteen + m.fifteen + y.fifteen + k.fifteen];
        // Gives back what the signed nodes took away, 32768 * volume, and the half.
        const uint32_t inner =
            (mLow + mHigh) * (yLow + yHigh) * ((k.weights & 0xffff) + (k.weights >> 16));
        const __m128d offset =
            _mm_set1_pd(static_cast<double>(inner * (cLow + cHigh)) * 32768.0 + 0.5);
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

}  // namespace

void convertRow(const LinkProfile& link, const uint8_t* input, int32_t pixels,
                uint16_t* output) noexcept {
    const size_t channels = link.inputChannels == 3 ? 3 : 4;
    if (link.gridPoints == kGridPoints && link.grid) {
        if (channels == 3) row3(link.grid, input, pixels, output);
        else row4(link.grid, input, pixels, output);
        return;
    }
    for (; pixels > 0; --pixels, input += channels, output += 4) {
        int32_t values[4] = {input[0], input[1], input[2], channels == 4 ? input[3] : 0};
        convert(link, values);
        for (size_t k = 0; k < 4; ++k) output[k] = static_cast<uint16_t>(values[k]);
    }
}

}  // namespace ko::link
