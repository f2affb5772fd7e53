// Colours as the packed words that hosts and dialogs pass.
#pragma once

#include <cstdint>

#include "frame/arithmetic.h"

namespace ko {

constexpr uint32_t limitedLevel(int32_t level) noexcept {
    return static_cast<uint32_t>(clampTo(level, 0, 255));
}

// Computed colours, each channel limited to 0..255, as a COLORREF (R in the low byte) and as a
// CMYK word (K in the low byte). Nothing else is corrected.
constexpr uint32_t jRGBcorrect(const int32_t* r, const int32_t* g, const int32_t* b) noexcept {
    return limitedLevel(*r) | limitedLevel(*g) << 8 | limitedLevel(*b) << 16;
}
constexpr uint32_t jCMYKcorrect(const int32_t* c, const int32_t* m, const int32_t* y,
                                const int32_t* k) noexcept {
    return limitedLevel(*c) << 24 | limitedLevel(*m) << 16 | limitedLevel(*y) << 8 |
           limitedLevel(*k);
}

}  // namespace ko
