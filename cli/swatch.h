// Colours for the screen, computed so that a picture has the same bytes on every system.
#pragma once

#include <array>
#include <string>

namespace ko::cli {

using Cmyk = std::array<double, 4>;  // 0..1 each
using Rgb = std::array<double, 3>;   // sRGB, 0..1 each

inline constexpr double kD50[3] = {0.9642, 1, 0.8249};  // XYZ of the connection space's white

// What four inks look like on coated paper, near enough for a look: the sixteen overprints of a
// typical offset press, blended by the area that each covers.
Rgb inkColour(const Cmyk& inks);

// CIE Lab relative to D50 as sRGB, out-of-gamut values clipped.
Rgb labColour(double lightness, double a, double b);

std::string hexColour(const Rgb& colour);  // #rrggbb

}  // namespace ko::cli
