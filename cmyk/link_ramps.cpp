#include "cmyk/link_ramps.h"

#include <algorithm>
#include <cstdint>

namespace ko::cmyk {
namespace {

// Overprint colours in sRGB; bit 0 is C, 1 M, 2 Y, 3 K.
constexpr uint8_t kOverprints[16][3] = {
    {255, 255, 255},
    {0, 158, 224},
    {226, 0, 122},
    {49, 39, 130},
    {255, 236, 0},
    {0, 151, 64},
    {227, 6, 19},
    {60, 50, 48},
    {34, 32, 30},
    {18, 26, 32},
    {32, 16, 22},
    {14, 13, 22},
    {34, 32, 14},
    {14, 24, 16},
    {32, 14, 12},
    {8, 7, 7},
};

}  // namespace

Display inkColour(const Inks& inks) {
    Display colour{};
    for (unsigned overprint = 0; overprint < 16; ++overprint) {
        double area = 1;
        for (unsigned ink = 0; ink < 4; ++ink)
            area *= overprint >> ink & 1 ? inks[ink] : 1 - inks[ink];
        for (size_t i = 0; i < 3; ++i) colour[i] += area * kOverprints[overprint][i] / 255;
    }
    return colour;
}

RampResult resultOf(const Ramp& ramp, const std::function<Inks(const Inks&)>& convert) {
    RampResult result;
    for (size_t level = 0; level < kRampLevels; ++level) {
        const Inks in = levelOf(ramp, level), out = convert(in);
        result.out.push_back(out);
        for (size_t ink = 0; ink < 4; ++ink) {
            if (!(out[ink] > 0)) continue;
            result.printed[ink] = true;
            if (ramp.inks[ink] != 0) continue;
            result.foreign[ink] = true;
            result.most = std::max(result.most, out[ink]);
            result.pureFrom = level + 1;
        }
        if (level % 4 != 0 && level + 1 != kRampLevels) continue;
        result.before.push_back(inkColour(in));
        result.after.push_back(inkColour(out));
    }
    return result;
}

}  // namespace ko::cmyk
