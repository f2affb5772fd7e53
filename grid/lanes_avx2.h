// Private to the folder: the vector dialect of AVX2, two halves a register.
#pragma once

#include <immintrin.h>

#include "grid/lanes_sse41.h"

namespace ko::grid {
namespace {

struct Avx2 {
    using Int = __m256i;
    using Float = __m256;
    using Single = Sse41;
    static constexpr int32_t kHalves = 2;
    static constexpr int32_t kPixels = 4 * kHalves;

    template <class At>
    static Int gather(At at) noexcept { return _mm256_set_m128i(at(1), at(0)); }
    static Int of32(uint32_t value) noexcept {
        return _mm256_set1_epi32(static_cast<int32_t>(value));
    }
    static Float ofFloat(float value) noexcept { return _mm256_set1_ps(value); }
    static Int zero() noexcept { return _mm256_setzero_si256(); }

    static Int fourBytes(const uint8_t* input) noexcept {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(input));
    }
    // The halves overlap, so that no byte after the pixels is read.
    static Int threeBytes(const uint8_t* input) noexcept {
        const Int all = gather([input](int32_t half) noexcept {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(input + 8 * half));
        });
        return _mm256_shuffle_epi8(
            all, _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1,
                                  4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1));
    }
    static void store(uint32_t* values, Int a) noexcept {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(values), a);
    }
    static bool allAre(uint32_t value, Int a) noexcept {
        return _mm256_movemask_epi8(_mm256_cmpeq_epi32(a, of32(value))) == -1;
    }

    static Int both(Int a, Int b) noexcept { return _mm256_and_si256(a, b); }
    static Int either(Int a, Int b) noexcept { return _mm256_or_si256(a, b); }
    static Int differ(Int a, Int b) noexcept { return _mm256_xor_si256(a, b); }
    template <int kBits>
    static Int left32(Int a) noexcept { return _mm256_slli_epi32(a, kBits); }
    template <int kBits>
    static Int right32(Int a) noexcept { return _mm256_srli_epi32(a, kBits); }
    static Int signs32(Int a) noexcept { return _mm256_srai_epi32(a, 31); }
    static Int add32(Int a, Int b) noexcept { return _mm256_add_epi32(a, b); }
    static Int subtract32(Int a, Int b) noexcept { return _mm256_sub_epi32(a, b); }
    static Int add8(Int a, Int b) noexcept { return _mm256_add_epi8(a, b); }
    static Int subtract8(Int a, Int b) noexcept { return _mm256_sub_epi8(a, b); }
    static Int equal32(Int a, Int b) noexcept { return _mm256_cmpeq_epi32(a, b); }
    static Int equal8(Int a, Int b) noexcept { return _mm256_cmpeq_epi8(a, b); }
    static Int multiply16(Int a, Int b) noexcept { return _mm256_mullo_epi16(a, b); }
    static Int limit16(Int a, int16_t most) noexcept {
        return _mm256_min_epi16(a, _mm256_set1_epi16(most));
    }
    static Int productSums16(Int a, Int b) noexcept { return _mm256_madd_epi16(a, b); }
    static Int productSums8(Int bytes, Int weights) noexcept {
        return _mm256_maddubs_epi16(bytes, weights);
    }
    static Int multiply32(Int a, Int b) noexcept { return _mm256_mullo_epi32(a, b); }
    static void sort32(Int& larger, Int& smaller) noexcept {
        const Int low = _mm256_min_epi32(larger, smaller);
        larger = _mm256_max_epi32(larger, smaller);
        smaller = low;
    }

    template <int kLane>
    static Int everywhere(Int a) noexcept { return _mm256_shuffle_epi32(a, kLane * 0x55); }
    template <int kLane>
    static Float everywhere(Float a) noexcept { return _mm256_shuffle_ps(a, a, kLane * 0x55); }
    static Int turned(Int a) noexcept { return _mm256_shuffle_epi32(a, 0x1b); }
    static Int zipLow8(Int a, Int b) noexcept { return _mm256_unpacklo_epi8(a, b); }
    static Int zipHigh8(Int a, Int b) noexcept { return _mm256_unpackhi_epi8(a, b); }
    static Int zipLow16(Int a, Int b) noexcept { return _mm256_unpacklo_epi16(a, b); }
    static Int zipHigh16(Int a, Int b) noexcept { return _mm256_unpackhi_epi16(a, b); }
    static Int narrow32(Int a, Int b) noexcept { return _mm256_packs_epi32(a, b); }
    static Int narrow16(Int a, Int b) noexcept { return _mm256_packus_epi16(a, b); }

    static Float toFloat(Int a) noexcept { return _mm256_cvtepi32_ps(a); }
    static Int toInt(Float a) noexcept { return _mm256_cvttps_epi32(a); }
    static Int bitsOf(Float a) noexcept { return _mm256_castps_si256(a); }
    static Float fromBits(Int a) noexcept { return _mm256_castsi256_ps(a); }
    static Float add(Float a, Float b) noexcept { return _mm256_add_ps(a, b); }
    static Float multiply(Float a, Float b) noexcept { return _mm256_mul_ps(a, b); }
    static Float divide(Float a, Float b) noexcept { return _mm256_div_ps(a, b); }

    static __m128i half(Int a, int32_t which) noexcept {
        return which ? _mm256_extracti128_si256(a, 1) : _mm256_castsi256_si128(a);
    }
};

}  // namespace
}  // namespace ko::grid
