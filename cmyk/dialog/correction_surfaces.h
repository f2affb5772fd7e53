// The surfaces of the colour-correction page in pixels and in units.
#pragma once

#include "cmyk/dialog/colour_correction.h"

namespace ko::cmyk {

constexpr int32_t kWholeHue = kHues / 2;
constexpr int32_t kUnitsAPercent = 2;  // of saturation and of lightness

// A pixel of a length as a unit 0..last; what is beyond the ends counts as the end.
constexpr int32_t unitAt(int32_t pixel, int32_t length, int32_t last) noexcept {
    if (length < 2) return 0;
    return clampTo(pixel, 0, length - 1) * last / (length - 1);
}
// The first pixel of a unit: unitAt gives that unit again while no unit is narrower than a pixel.
constexpr int32_t pixelAt(int32_t unit, int32_t length, int32_t last) noexcept {
    return length < 2 ? 0 : (unit * (length - 1) + last - 1) / last;
}
static_assert(unitAt(pixelAt(359, 720, 359), 720, 359) == 359);

// The last unit of what a surface shows from its left or from its top.
constexpr int32_t lastUnit(Surface surface) noexcept {
    switch (surface) {
        case Surface::hueBar: return kHues - 1;
        case Surface::black:
        case Surface::blackBar: return 255;
        default: return kFullSaturation;
    }
}
static_assert(kFullSaturation == kFullInk);

constexpr int32_t unitOf(Surface surface, dialog::Size size, dialog::Point at) noexcept {
    const bool across = surface == Surface::black || surface == Surface::blackBar ||
                        surface == Surface::hueBar;
    return across ? unitAt(at.x, size.width, lastUnit(surface))
                  : unitAt(at.y, size.height, lastUnit(surface));
}

}  // namespace ko::cmyk
