// The coated press behind the built-in tables: three inks on white paper. What the eye sees of a
// patch is the mean of the eight possible overprints, each as large as chance lets it be. Only
// + - * / on doubles in a fixed order: the same bytes on every platform.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace ko::builtin {

using Colour = std::array<double, 3>;

constexpr Colour kOverprints[8] = {  // bit 2 cyan, bit 1 magenta, bit 0 yellow
    {255, 255, 255}, {255, 255, 0}, {240, 2, 127}, {236, 0, 0},
    {0, 160, 198},   {0, 130, 0},   {0, 0, 110},   {0, 0, 0},
};
constexpr double kLosses[3] = {0.0171, -0.0002, 0.0459};  // at half coverage

// How much paper a level of an ink covers; the losses make the mid grey come out as measured.
constexpr double coverage(double level, size_t ink) noexcept {
    const double a = level / 255;
    return a - 4 * kLosses[ink] * a * (1 - a);
}

// The light of a patch.
constexpr Colour patch(const Colour& covered) noexcept {
    Colour light{};
    for (size_t print = 0; print < 8; ++print) {
        double share = 1;
        for (size_t ink = 0; ink < 3; ++ink)
            share *= (print >> (2 - ink) & 1) != 0 ? covered[ink] : 1 - covered[ink];
        for (size_t k = 0; k < 3; ++k) light[k] += share * kOverprints[print][k];
    }
    return light;
}

constexpr uint8_t rounded(double value) noexcept {
    return static_cast<uint8_t>(std::clamp(value, 0.0, 255.0) + 0.5);
}

}  // namespace ko::builtin
