// What the tone curve files share: the grid positions of a curve line and the lines' keys.
#pragma once

#include "grid/cell.h"

namespace ko::tone {

constexpr size_t kGridFields = 17;

// Levels 0, 16, 32 ... 240 and 255: only these can carry control points in .tnc and .dcc files.
constexpr size_t gridLevel(size_t field) noexcept {
    return static_cast<size_t>(grid::steppedLevel(static_cast<int32_t>(field), kGridFields));
}

// One curve line: what it begins with, and the channel it holds. A reader matches the key alone,
// its first six characters.
struct CurveKey {
    const char* prefix;
    int channel;
};
constexpr CurveKey kCurveKeys[] = {
    {"TONE c = ", 0}, {"TONE m = ", 1}, {"TONE y = ", 2},
    {"TONE k = ", 3}, {"GCR    = ", 4}, {"UCR    = ", 5},
};
constexpr size_t kCurveKeySize = 6;

// The first channels of a CMYK tone curve, all of a DCC file.
constexpr size_t kCmykCurves = 4;
constexpr size_t kDccCurves = 6;

}  // namespace ko::tone
