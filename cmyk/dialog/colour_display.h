// How output colours look on the screen. The conversions stand above this folder: whoever opens
// the dialog hands one in.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace ko::cmyk {

// Packed CMYK words (C in the highest byte) into packed RGB words (R in the lowest), one each; rgb
// is as long as cmyk.
using ColourDisplay = void (*)(std::span<const uint32_t> cmyk, std::span<uint32_t> rgb);

// L*a*b* of a packed CMYK word as it is printed; nothing when that is not known.
using Lab = std::array<double, 3>;
using ColourLab = std::function<std::optional<Lab>(uint32_t cmyk)>;

}  // namespace ko::cmyk
