#include "cli/swatch.h"

#include <algorithm>
#include <cstdint>

#include "icc/power.h"
#include "kolink.h"

namespace ko::cli {
namespace {

// Linear light of each 8-bit sRGB level.
std::array<double, 256> lightTable() {
    std::array<double, 256> light{};
    for (size_t level = 0; level < 256; ++level) {
        const double value = static_cast<double>(level) / 255;
        const double base = (value + 0.055) / 1.055;
        light[level] = value <= 0.04045 ? value / 12.92 : icc::power(base, 2.4);
    }
    return light;
}

double displayLevel(double light) {  // the nearest 8-bit level, 0..1
    static const std::array<double, 256> kLight = lightTable();
    const auto above = std::lower_bound(kLight.begin(), kLight.end(), light);
    if (above == kLight.end()) return 1;
    auto level = above - kLight.begin();
    if (level > 0 && light - kLight[static_cast<size_t>(level - 1)] < *above - light) --level;
    return static_cast<double>(level) / 255;
}

}  // namespace

Rgb labColour(double lightness, double a, double b) {
    double colour[3] = {lightness, a, b};
    jIccLabtoXYZ(colour, kD50);
    const auto [x, y, z] = colour;  // relative to D50; the matrix is sRGB's, adapted to D50
    return {displayLevel(3.1338561 * x - 1.6168667 * y - 0.4906146 * z),
            displayLevel(-0.9787684 * x + 1.9161415 * y + 0.0334540 * z),
            displayLevel(0.0719453 * x - 0.2289914 * y + 1.4052427 * z)};
}

std::string hexColour(const Rgb& colour) {
    std::string text = "#";
    for (const double part : colour) {
        const auto level = static_cast<unsigned>(std::clamp(part, 0.0, 1.0) * 255 + 0.5);
        text += "0123456789abcdef"[level >> 4];
        text += "0123456789abcdef"[level & 15];
    }
    return text;
}

}  // namespace ko::cli
