// Colours for the screen, computed so that a picture has the same bytes on every system.
#pragma once

#include <array>
#include <string>

#include "cmyk/link_ramps.h"

namespace ko::cli {

using Cmyk = cmyk::Inks;
using Rgb = cmyk::Display;
using cmyk::inkColour;

inline constexpr double kD50[3] = {0.9642, 1, 0.8249};  // XYZ of the connection space's white

// CIE Lab relative to D50 as sRGB, out-of-gamut values clipped.
Rgb labColour(double lightness, double a, double b);

std::string hexColour(const Rgb& colour);  // #rrggbb

}  // namespace ko::cli
