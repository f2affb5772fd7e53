// One colour through a CMYK profile: its grid, and its curves as tables.
#pragma once

#include <array>
#include <cstdint>

#include "cmyk/cmyk.h"

namespace ko::cmyk {

// The grid alone, in place: 0..255 in (clamped), 0..4080 out. Quadrilinear, integers only.
void cmykToCmyk16(const CmykProfile& profile, Cmyk& cmyk) noexcept;

// The eight curves of a profile at every level, limited to 0..255: 0..3 input, 4..7 output.
using WorkingCurves = std::array<std::array<int16_t, 256>, kCurves>;
WorkingCurves workingCurves(const CmykProfile& profile) noexcept;

// A level of the 16-scale back on 8 bits.
constexpr int32_t fromScale16(int32_t value) noexcept { return (value + 8) / 16; }

}  // namespace ko::cmyk
