// Colours as the packed words that hosts, dialogs and tables pass: RGB with R in the low byte, CMYK
// with K there.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/arithmetic.h"

namespace ko {

// Of each number its lowest byte.
constexpr uint32_t packRgb(uint32_t r, uint32_t g, uint32_t b) noexcept {
    return (r & 255) | (g & 255) << 8 | (b & 255) << 16;
}
constexpr uint32_t packCmyk(uint32_t c, uint32_t m, uint32_t y, uint32_t k) noexcept {
    return (c & 255) << 24 | (m & 255) << 16 | (y & 255) << 8 | (k & 255);
}

// Of computed colours each channel limited to 0..255.
constexpr uint32_t limitedLevel(int32_t level) noexcept {
    return static_cast<uint32_t>(clampTo(level, 0, 255));
}
constexpr uint32_t limitedRgb(int32_t r, int32_t g, int32_t b) noexcept {
    return packRgb(limitedLevel(r), limitedLevel(g), limitedLevel(b));
}
constexpr uint32_t limitedCmyk(int32_t c, int32_t m, int32_t y, int32_t k) noexcept {
    return packCmyk(limitedLevel(c), limitedLevel(m), limitedLevel(y), limitedLevel(k));
}

constexpr uint32_t lightIn(uint32_t rgb, size_t channel) noexcept {
    return rgb >> (8 * channel) & 255;
}
constexpr uint32_t inkIn(uint32_t cmyk, size_t channel) noexcept {
    return cmyk >> (24 - 8 * channel) & 255;
}

}  // namespace ko
