// The rules of the colour correction once more, written down without regard to speed and apart from
// the code that the tests hold against them: light instead of ink, corners of the hue circle in
// place of comparisons, fractions compared by multiplying.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include "kolink/cmyk_profile.h"

namespace ko::test {

struct ReferencePlace {
    bool grey;
    int hue, saturation, lightness;
};

inline ReferencePlace referencePlace(int c, int m, int y) {
    const int light[3] = {255 - c, 255 - m, 255 - y};
    const int high = *std::max_element(light, light + 3), low = *std::min_element(light, light + 3);
    const int lightness = (510 - (high + low)) * 200 / 510;
    if (high == low) return {true, 0, 0, lightness};
    const int spread = high - low;
    const int saturation =
        2 * high + 2 * low <= 510 ? 200 * spread / (high + low) : 200 * spread / (510 - high - low);
    // Red, yellow, green, cyan, blue, magenta, red: between two neighbours one light moves.
    const int corners[7][3] = {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 1, 1},
                               {0, 0, 1}, {1, 0, 1}, {1, 0, 0}};
    for (int sextant = 0; sextant < 6; ++sextant) {
        int moved = -1;  // light - low of the moving channel, from the first corner's side
        bool fits = true;
        for (int i = 0; i < 3; ++i) {
            const int from = corners[sextant][i], to = corners[sextant + 1][i];
            if (from == to) fits = fits && light[i] - low == from * spread;
            else moved = to == 1 ? light[i] - low : high - light[i];
        }
        if (fits && moved < spread)
            return {false, 60 * sextant + 60 * moved / spread, saturation, lightness};
    }
    std::abort();  // every colour lies in one of the six
}

struct ReferenceRange {
    int hue, saturation;            // to either side, in places' units
    int lightest, darkest;          // positions
    int lowestBlack, highestBlack;  // percent
};

// dn and de; nothing outside the range.
inline std::optional<std::pair<int, int>> referenceFade(const ReferencePlace& picked,
                                                        const ReferencePlace& node,
                                                        const ReferenceRange& range) {
    long long dh = 0;
    if (!picked.grey && !node.grey) {
        dh = 1000;
        for (const int turn : {-360, 0, 360})  // over either edge of the area, or not
            if (std::llabs(node.hue + turn - picked.hue) < std::llabs(dh))
                dh = node.hue + turn - picked.hue;
    }
    const long long ds = node.saturation - picked.saturation;
    const long long dl = node.lightness - picked.lightness;
    const int greyer = std::max(picked.saturation - range.saturation, 0);
    const int purer = picked.saturation + range.saturation;
    if (std::llabs(dh) > range.hue) return std::nullopt;
    if (node.saturation < greyer || node.saturation > purer) return std::nullopt;
    if (node.lightness < range.lightest || node.lightness > range.darkest) return std::nullopt;

    const long long square = dh * dh + ds * ds + dl * dl;
    const int dn = static_cast<int>(std::floor(std::sqrt(static_cast<long double>(square))));
    if (square == 0) {
        const int rooms[] = {picked.grey ? 0 : range.hue, range.saturation,
                             picked.lightness - range.lightest, range.darkest - picked.lightness};
        return std::pair(dn, *std::max_element(rooms, rooms + 4));
    }
    // The edge in the node's direction: room / way of the coordinate that gives out first.
    long long edge = -1;
    const auto limit = [&](long long way, long long room) {
        if (way == 0) return;
        // The largest whole number that is not beyond room / way * sqrt(square).
        long long distance = 0;
        while ((distance + 1) * (distance + 1) * way * way <= room * room * square) ++distance;
        if (edge < 0 || distance < edge) edge = distance;
    };
    limit(dh, range.hue);
    limit(ds, ds > 0 ? purer - picked.saturation : picked.saturation - greyer);
    limit(dl, dl > 0 ? range.darkest - picked.lightness : picked.lightness - range.lightest);
    return std::pair(dn, static_cast<int>(edge));
}

inline int referenceLevel(int index) { return index == 32 ? 255 : 8 * index; }

// Carries the change out on a grid; the number of nodes changed.
inline int referenceChange(uint32_t* grid, const std::array<int, 4>& pickedLevels,
                           const std::array<int, 4>& delta, const ReferenceRange& range) {
    const ReferencePlace picked = referencePlace(pickedLevels[0], pickedLevels[1], pickedLevels[2]);
    int changed = 0;
    for (int k = 0; k < 33; ++k) {
        const int percent = static_cast<int>(referenceLevel(k) * 100 / 255.0 + 0.5);
        if (percent < range.lowestBlack || percent > range.highestBlack) continue;
        for (int c = 0; c < 33; ++c)
            for (int m = 0; m < 33; ++m)
                for (int y = 0; y < 33; ++y) {
                    const ReferencePlace node =
                        referencePlace(referenceLevel(c), referenceLevel(m), referenceLevel(y));
                    const auto fade = referenceFade(picked, node, range);
                    if (!fade || fade->second <= 0) continue;
                    const auto [dn, de] = *fade;
                    uint32_t& word = grid[((c * 33 + m) * 33 + y) * 33 + k];
                    uint32_t result = 0;
                    for (size_t ink = 0; ink < 4; ++ink) {
                        const int old = static_cast<int>(word >> (24 - 8 * ink) & 255);
                        const int level = old + delta[ink] - delta[ink] * dn / de;
                        const int limited = std::min(std::max(level, 0), 255);
                        result = result << 8 | static_cast<uint32_t>(limited);
                    }
                    word = result;
                    ++changed;
                }
    }
    return changed;
}

}  // namespace ko::test
