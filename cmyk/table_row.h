// Quadrilinear interpolation of packed CMYK words for rows of pixels, in SSE2, which every
// target has. One kernel serves the 33-point profile and the 17-point table.
//
// It gives the bits of the plain kernels. Weights and sums are whole numbers there and here, so
// the order of summing does not matter. Two inner axes are summed in 32 bits (weights add up to
// at most 256: a sum is below 2^16), the outer two likewise from 16-bit halves. The quotient of
// sum * 16 and the cell's volume is truncated: (sum * 16 + 1/2) / volume has the same floor, and
// lies at least 1/2 of 1/volume from any whole number, far more than doubles are off.
#pragma once

#include <emmintrin.h>

#include <array>
#include <cstdint>

namespace ko::cmyk {

template <int32_t GridPoints>
class QuadrilinearRow {
public:
    // Pixels of 4 bytes C, M, Y, K in, 4 words on the 16-scale out.
    static void convert(const uint32_t* grid, const uint8_t* input, int32_t pixels,
                        uint16_t* output) noexcept {
        for (; pixels > 0; --pixels, input += 4, output += 4) convertOne(grid, input, output);
    }

private:
    static constexpr int32_t kWidth = 256 / (GridPoints - 1);  // of every cell but the last
    static constexpr int32_t kStrideY = GridPoints;
    static constexpr int32_t kStrideM = kStrideY * GridPoints;
    static constexpr int32_t kStrideC = kStrideM * GridPoints;

    struct Level {
        uint16_t index;
        uint16_t narrow;   // 1 in the last cell, which is one level narrower
        uint32_t weights;  // lower corner's, upper corner's << 16
    };
    static constexpr std::array<Level, 256> makeLevels() {
        std::array<Level, 256> levels{};
        for (uint32_t value = 0; value < 256; ++value) {
            const uint32_t index = value / kWidth, distance = value % kWidth;
            const bool narrow = index == GridPoints - 2;
            const uint32_t width = narrow ? kWidth - 1 : kWidth;
            levels[value] = {static_cast<uint16_t>(index), narrow, (width - distance) | distance << 16};
        }
        return levels;
    }
    static constexpr std::array<Level, 256> kLevels = makeLevels();

    // 16 / volume by the number of narrow axes.
    static constexpr std::array<double, 5> makeScales() {
        std::array<double, 5> scales{};
        for (int32_t narrow = 0; narrow <= 4; ++narrow) {
            double volume = 1;
            for (int32_t axis = 0; axis < 4; ++axis) volume *= axis < narrow ? kWidth - 1 : kWidth;
            scales[static_cast<size_t>(narrow)] = 16.0 / volume;
        }
        return scales;
    }
    static constexpr std::array<double, 5> kScales = makeScales();

    static __m128i pair(const uint32_t* node) noexcept {  // a node and the next along K
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(node));
    }
    static __m128i everywhere(uint32_t weights) noexcept {
        return _mm_set1_epi32(static_cast<int32_t>(weights));
    }

    // The four corners of the Y and K axes: bytes of a node in the even, of its neighbour along
    // Y in the odd places, so that one multiply-add weighs both.
    static __m128i plane(const uint32_t* node, __m128i lowerK, __m128i upperK) noexcept {
        const __m128i zero = _mm_setzero_si128();
        const __m128i bytes = _mm_unpacklo_epi8(pair(node), pair(node + kStrideY));
        return _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(bytes, zero), lowerK),
                             _mm_madd_epi16(_mm_unpackhi_epi8(bytes, zero), upperK));
    }

    static void convertOne(const uint32_t* grid, const uint8_t* input, uint16_t* output) noexcept {
        const Level c = kLevels[input[0]], m = kLevels[input[1]];
        const Level y = kLevels[input[2]], k = kLevels[input[3]];
        const uint32_t* node =
            grid + c.index * kStrideC + m.index * kStrideM + y.index * kStrideY + k.index;

        const __m128i lowerK = everywhere(y.weights * (k.weights & 0xffff));
        const __m128i upperK = everywhere(y.weights * (k.weights >> 16));
        const __m128i p00 = plane(node, lowerK, upperK);
        const __m128i p01 = plane(node + kStrideM, lowerK, upperK);
        const __m128i p10 = plane(node + kStrideC, lowerK, upperK);
        const __m128i p11 = plane(node + kStrideC + kStrideM, lowerK, upperK);

        // Two planes in the halves of a lane, moved down by 2^15 to fit signed words; what that
        // takes away from the sum is added back.
        const __m128i half = everywhere(0x80008000);
        const __m128i lower = _mm_xor_si128(_mm_or_si128(p00, _mm_slli_epi32(p01, 16)), half);
        const __m128i upper = _mm_xor_si128(_mm_or_si128(p10, _mm_slli_epi32(p11, 16)), half);
        const uint32_t lowerC = c.weights & 0xffff, upperC = c.weights >> 16;
        const uint32_t area = (lowerC + upperC) * ((m.weights & 0xffff) + (m.weights >> 16));
        const __m128i products =
            _mm_add_epi32(_mm_madd_epi16(lower, everywhere(m.weights * lowerC)),
                          _mm_madd_epi16(upper, everywhere(m.weights * upperC)));
        const __m128i sums = _mm_add_epi32(products, everywhere(area << 15));

        const __m128d scale =
            _mm_set1_pd(kScales[static_cast<size_t>(c.narrow + m.narrow + y.narrow + k.narrow)]);
        const __m128d half16 = _mm_set1_pd(1.0 / 32);  // 1/2 before the factor of 16
        const __m128i ky = _mm_cvttpd_epi32(_mm_mul_pd(_mm_add_pd(_mm_cvtepi32_pd(sums), half16), scale));
        const __m128i mc = _mm_cvttpd_epi32(_mm_mul_pd(
            _mm_add_pd(_mm_cvtepi32_pd(_mm_unpackhi_epi64(sums, sums)), half16), scale));
        // A word's lowest byte is K: the order turns round.
        const __m128i kymc = _mm_unpacklo_epi64(ky, mc);
        const __m128i cmyk = _mm_shuffle_epi32(kymc, _MM_SHUFFLE(0, 1, 2, 3));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(output), _mm_packs_epi32(cmyk, cmyk));
    }
};

}  // namespace ko::cmyk
