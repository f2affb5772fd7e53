// Private to the folder: the vector dialect of SSE2, which every target has.
//
// A dialect is what row_kernels.h is written in. Its registers hold one half of 128 bits or two,
// and every operation works within halves, so that a kernel is written once: register j of a
// kernel holds pixel j of each half's four. Everything has internal linkage: the linker could keep
// a shared copy that was compiled for another processor.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

namespace ko::grid {
namespace {

struct Sse2 {
    using Int = __m128i;
    using Float = __m128;
    using Single = Sse2;  // for the pixels at a row's end
    static constexpr int32_t kHalves = 1;
    static constexpr int32_t kPixels = 4 * kHalves;  // of a group: one in each lane of 32 bits

    // at(half) gives each half; the first is the lower.
    template <class At>
    static Int gather(At at) noexcept { return at(0); }
    static Int of32(uint32_t value) noexcept { return _mm_set1_epi32(static_cast<int32_t>(value)); }
    static Float ofFloat(float value) noexcept { return _mm_set1_ps(value); }
    static Int zero() noexcept { return _mm_setzero_si128(); }

    static Int fourBytes(const uint8_t* input) noexcept {  // pixels of 4 bytes, one a lane
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(input));
    }
    static Int threeBytes(const uint8_t* input) noexcept {  // of 3; the fourth byte is 0
        const auto word = [input](size_t at) noexcept {
            uint32_t value;
            __builtin_memcpy(&value, input + at, sizeof value);
            return static_cast<int32_t>(value);
        };
        const Int all = _mm_set_epi32(static_cast<int32_t>(static_cast<uint32_t>(word(8)) >> 8),
                                      word(6), word(3), word(0));
        return _mm_and_si128(all, of32(0xffffff));
    }
    static Int first(uint32_t pixel) noexcept {  // in the first lane
        return _mm_cvtsi32_si128(static_cast<int32_t>(pixel));
    }
    static void store(uint32_t* values, Int a) noexcept {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(values), a);
    }
    static bool allAre(uint32_t value, Int a) noexcept {
        return _mm_movemask_epi8(_mm_cmpeq_epi32(a, of32(value))) == 0xffff;
    }

    static Int both(Int a, Int b) noexcept { return _mm_and_si128(a, b); }
    static Int either(Int a, Int b) noexcept { return _mm_or_si128(a, b); }
    static Int differ(Int a, Int b) noexcept { return _mm_xor_si128(a, b); }
    template <int kBits>
    static Int left32(Int a) noexcept { return _mm_slli_epi32(a, kBits); }
    template <int kBits>
    static Int right32(Int a) noexcept { return _mm_srli_epi32(a, kBits); }
    static Int signs32(Int a) noexcept { return _mm_srai_epi32(a, 31); }
    static Int add32(Int a, Int b) noexcept { return _mm_add_epi32(a, b); }
    static Int subtract32(Int a, Int b) noexcept { return _mm_sub_epi32(a, b); }
    static Int add8(Int a, Int b) noexcept { return _mm_add_epi8(a, b); }
    static Int subtract8(Int a, Int b) noexcept { return _mm_sub_epi8(a, b); }
    static Int equal32(Int a, Int b) noexcept { return _mm_cmpeq_epi32(a, b); }
    static Int equal8(Int a, Int b) noexcept { return _mm_cmpeq_epi8(a, b); }
    static Int multiply16(Int a, Int b) noexcept { return _mm_mullo_epi16(a, b); }
    static Int limit16(Int a, int16_t most) noexcept {
        return _mm_min_epi16(a, _mm_set1_epi16(most));
    }
    // The sums of neighbours' products: signed words, and bytes with bytes of weights below 128.
    static Int productSums16(Int a, Int b) noexcept { return _mm_madd_epi16(a, b); }
    static Int productSums8(Int bytes, Int weights) noexcept {
        const Int low = _mm_set1_epi16(0xff);
        return _mm_add_epi16(
            _mm_mullo_epi16(_mm_and_si128(bytes, low), _mm_and_si128(weights, low)),
            _mm_mullo_epi16(_mm_srli_epi16(bytes, 8), _mm_srli_epi16(weights, 8)));
    }
    static Int multiply32(Int a, Int b) noexcept {
        const Int even = _mm_mul_epu32(a, b);
        const Int odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
        return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, 0x08), _mm_shuffle_epi32(odd, 0x08));
    }
    static void sort32(Int& larger, Int& smaller) noexcept {
        const Int change = _mm_and_si128(_mm_xor_si128(larger, smaller),
                                         _mm_cmpgt_epi32(smaller, larger));
        larger = _mm_xor_si128(larger, change);
        smaller = _mm_xor_si128(smaller, change);
    }

    template <int kLane>
    static Int everywhere(Int a) noexcept { return _mm_shuffle_epi32(a, kLane * 0x55); }
    template <int kLane>
    static Float everywhere(Float a) noexcept { return _mm_shuffle_ps(a, a, kLane * 0x55); }
    static Int turned(Int a) noexcept { return _mm_shuffle_epi32(a, 0x1b); }
    static Int zipLow8(Int a, Int b) noexcept { return _mm_unpacklo_epi8(a, b); }
    static Int zipHigh8(Int a, Int b) noexcept { return _mm_unpackhi_epi8(a, b); }
    static Int zipLow16(Int a, Int b) noexcept { return _mm_unpacklo_epi16(a, b); }
    static Int zipHigh16(Int a, Int b) noexcept { return _mm_unpackhi_epi16(a, b); }
    static Int narrow32(Int a, Int b) noexcept { return _mm_packs_epi32(a, b); }
    static Int narrow16(Int a, Int b) noexcept { return _mm_packus_epi16(a, b); }

    static Float toFloat(Int a) noexcept { return _mm_cvtepi32_ps(a); }
    static Int toInt(Float a) noexcept { return _mm_cvttps_epi32(a); }  // truncated
    static Int bitsOf(Float a) noexcept { return _mm_castps_si128(a); }
    static Float fromBits(Int a) noexcept { return _mm_castsi128_ps(a); }
    static Float add(Float a, Float b) noexcept { return _mm_add_ps(a, b); }
    static Float multiply(Float a, Float b) noexcept { return _mm_mul_ps(a, b); }
    static Float divide(Float a, Float b) noexcept { return _mm_div_ps(a, b); }

    static __m128i half(Int a, int32_t) noexcept { return a; }
};

}  // namespace
}  // namespace ko::grid
