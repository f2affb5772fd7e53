// Private to the folder: the vector dialect of SSE4.1, where it is better than that of SSE2.
#pragma once

#include <smmintrin.h>

#include "grid/lanes_sse2.h"

namespace ko::grid {
namespace {

struct Sse41 : Sse2 {
    using Single = Sse41;
    static Int threeBytes(const uint8_t* input) noexcept {
        int32_t last;
        __builtin_memcpy(&last, input + 8, sizeof last);
        const Int all = _mm_insert_epi32(
            _mm_loadl_epi64(reinterpret_cast<const __m128i*>(input)), last, 2);
        return _mm_shuffle_epi8(
            all, _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
    }
    static Int productSums8(Int bytes, Int weights) noexcept {
        return _mm_maddubs_epi16(bytes, weights);
    }
    static Int multiply32(Int a, Int b) noexcept { return _mm_mullo_epi32(a, b); }
    static void sort32(Int& larger, Int& smaller) noexcept {
        const Int low = _mm_min_epi32(larger, smaller);
        larger = _mm_max_epi32(larger, smaller);
        smaller = low;
    }
};

}  // namespace
}  // namespace ko::grid
