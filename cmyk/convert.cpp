// One colour through a CMYK profile.
#include "cmyk/convert.h"

#include <span>

#include "frame/arithmetic.h"
#include "tone/tone.h"

namespace ko::cmyk {

void cmykToCmyk16(const CmykProfile& profile, Cmyk& cmyk) noexcept {
    int32_t cell[4], upper[4], width[4];
    for (int32_t i = 0; i < 4; ++i) {
        const int32_t level = clampTo(cmyk[i], 0, 255);
        cell[i] = level / 8;
        upper[i] = level % 8;
        width[i] = cell[i] == 31 ? 7 : 8;  // the last cell runs from 248 to 255
    }
    int32_t sums[4] = {};  // of a byte times weights that add up to 4096: no overflow
    for (int32_t corner = 0; corner < 16; ++corner) {
        int32_t node = 0, weight = 1;
        for (int32_t i = 0; i < 4; ++i) {
            const int32_t step = corner >> (3 - i) & 1;
            node = node * kGridPoints + cell[i] + step;
            weight *= step ? upper[i] : width[i] - upper[i];
        }
        const uint32_t word = profile.grid[node];
        for (int32_t i = 0; i < 4; ++i)
            sums[i] += weight * static_cast<int32_t>(word >> (24 - 8 * i) & 255);
    }
    const int32_t volume = width[0] * width[1] * width[2] * width[3];
    for (int32_t i = 0; i < 4; ++i) cmyk[i] = sums[i] * 16 / volume;
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
