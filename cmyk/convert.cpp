// Colours through a CMYK profile.
#include "cmyk/convert.h"

#include <span>

#include "frame/arithmetic.h"
#include "grid/words.h"
#include "tone/tone.h"

namespace ko::cmyk {

void cmykToCmyk16(const CmykProfile& profile, Cmyk& cmyk) noexcept {
    grid::oneWordsOfFour<kGridPoints>(profile.grid, cmyk.data());
}

void cmykToCmyk16Row(const CmykProfile& profile, const uint8_t* input, int32_t pixels,
                     uint16_t* output) noexcept {
    grid::wordsOfFourRow<kGridPoints>(profile.grid, input, pixels, output);
}

WorkingCurves workingCurves(const CmykProfile& profile) noexcept {
    WorkingCurves curves;
    for (int32_t curve = 0; curve < kCurves; ++curve) {
        const ControlPoints control = controlPoints(profile, curve);
        tone::SplineSweep sweep(
            std::span(control.points.data(), static_cast<size_t>(control.count)));
        for (int32_t x = 0; x < 256; ++x)
            curves[curve][x] = static_cast<int16_t>(clampTo(sweep.at(x), 0, 255));
    }
    return curves;
}

}  // namespace ko::cmyk
