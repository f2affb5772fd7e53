// A saved link as a whole: what a host converts pixels through.
#include <algorithm>
#include <array>

#include "cmyk/cmyk.h"
#include "cmyk/convert.h"

namespace ko::cmyk {
namespace {

constexpr int32_t kPortion = 1024;  // pixels, so that their inks stay in the cache

bool isIdentity(const uint8_t (&levels)[256]) noexcept {
    for (int32_t level = 0; level < 256; ++level)
        if (levels[level] != level) return false;
    return true;
}

}  // namespace

void makeCurveTables(const CmykProfile& profile, CmykCurveTables& tables) noexcept {
    const WorkingCurves curves = workingCurves(profile);
    for (int32_t curve = 0; curve < kCurves; ++curve)
        std::ranges::transform(curves[curve], tables.levels[curve],
                               [](int16_t level) { return static_cast<uint8_t>(level); });
}

void linkCmykToCmyk16Row(const CmykProfile& profile, const CmykCurveTables& tables,
                         const uint8_t* input, int32_t pixels, uint16_t* output) noexcept {
    std::array<bool, 4> isPlain;
    for (size_t ink = 0; ink < 4; ++ink) isPlain[ink] = isIdentity(tables.levels[4 + ink]);
    std::array<uint8_t, 4 * kPortion> inks;
    for (; pixels > 0; pixels -= kPortion) {
        const int32_t count = std::min(pixels, kPortion);
        const size_t values = static_cast<size_t>(count) * 4;
        for (size_t at = 0; at < values; ++at) inks[at] = tables.levels[at % 4][input[at]];
        cmykToCmyk16Row(profile, inks.data(), count, output);
        for (size_t ink = 0; ink < 4; ++ink) {
            if (isPlain[ink]) continue;
            for (size_t at = ink; at < values; at += 4)
                output[at] = static_cast<uint16_t>(
                    16 * tables.levels[4 + ink][fromScale16(output[at])]);
        }
        input += values;
        output += values;
    }
}

}  // namespace ko::cmyk
