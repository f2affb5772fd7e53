// Where a colour stands in the coordinates of the colour-correction page, and how far a correction
// reaches from a picked colour. Integers alone, in units that no screen changes: the area is 360
// wide and 200 high, each strip 200 high. Along the area one unit is a degree of hue, up the area
// half a percent of saturation, down the strip half a percent of lightness.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace ko::cmyk {

constexpr int32_t kHues = 360;            // red 0, yellow 60, green 120, cyan 180, blue 240
constexpr int32_t kFullSaturation = 200;  // grey is 0
constexpr int32_t kFullInk = 200;         // the lightness position of C = M = Y = 255; white is 0
constexpr int32_t kNoHue = -1;            // of a grey

struct Place {
    int32_t hue;         // 0..359, kNoHue for a grey
    int32_t saturation;  // 0..200
    int32_t lightness;   // 0..200, from the top of the strip
    bool operator==(const Place&) const = default;
};

using Levels = std::array<int32_t, 3>;  // C, M, Y, 0..255

// Every division truncates; none has a negative operand.
constexpr Place placeOf(const Levels& cmy) noexcept {
    const auto [c, m, y] = cmy;
    const int32_t smallest = std::min({c, m, y}), largest = std::max({c, m, y});
    const int32_t sum = smallest + largest, chroma = largest - smallest;
    const int32_t lightness = sum * kFullInk / 510;
    if (chroma == 0) return {kNoHue, 0, lightness};
    // As in a conversion to HLS: the chroma in parts of the most that this lightness allows.
    const int32_t saturation = chroma * kFullSaturation / (sum <= 255 ? sum : 510 - sum);
    const int32_t sextant = c <= m && m <= y  ? 0   // red to yellow
                            : m < c && c <= y ? 1   // to green
                            : m <= y && y < c ? 2   // to cyan
                            : y < m && m <= c ? 3   // to blue
                            : y <= c && c < m ? 4   // to magenta
                                              : 5;  // and back to red
    const int32_t middle = c + m + y - sum;
    const int32_t through = sextant % 2 == 0 ? largest - middle : middle - smallest;
    return {60 * sextant + 60 * through / chroma, saturation, lightness};
}
static_assert(placeOf({255, 0, 0}) == Place{180, 200, 100});    // cyan ink
static_assert(placeOf({0, 255, 255}) == Place{0, 200, 100});    // red
static_assert(placeOf({0, 254, 255}) == Place{0, 200, 100});    // a little towards yellow
static_assert(placeOf({0, 255, 254}) == Place{359, 200, 100});  // a little towards magenta
static_assert(placeOf({128, 128, 128}) == Place{kNoHue, 0, 100});

// A colour of that place; hue 0..359. Its own place has just this lightness; hue and saturation are
// as near as whole levels allow, never below, so that at most lightnesses they come out the same. A
// saturation of 0 gives a grey.
constexpr Levels levelsAt(const Place& place) noexcept {
    const auto up = [](int32_t a, int32_t b) { return (a + b - 1) / b; };
    const auto mostChroma = [](int32_t sum) { return sum <= 255 ? sum : 510 - sum; };
    const auto chromaOf = [&](int32_t sum) {
        return up(place.saturation * mostChroma(sum), kFullSaturation);
    };
    // Two or three sums of largest and smallest have this lightness. Sum and chroma have to be both
    // even or both odd: the first sum where they are is taken.
    int32_t sum = up(place.lightness * 510, kFullInk);
    for (int32_t other = sum; other * kFullInk / 510 == place.lightness && other <= 510; ++other) {
        if ((other + chromaOf(other)) % 2 != 0) continue;
        sum = other;
        break;
    }
    // Where there is none, the chroma becomes one more: the lightness holds.
    const int32_t smallest = (sum - chromaOf(sum)) / 2;
    const int32_t largest = sum - smallest, chroma = largest - smallest;
    const int32_t sextant = place.hue / 60, through = up(place.hue % 60 * chroma, 60);
    const int32_t middle = sextant % 2 == 0 ? largest - through : smallest + through;
    switch (sextant) {
        case 0: return {smallest, middle, largest};
        case 1: return {middle, smallest, largest};
        case 2: return {largest, smallest, middle};
        case 3: return {largest, middle, smallest};
        case 4: return {middle, largest, smallest};
        default: return {smallest, largest, middle};
    }
}
static_assert(levelsAt({180, 200, 100}) == Levels{255, 0, 0});
static_assert(levelsAt({0, 0, 100}) == Levels{128, 128, 128});
static_assert(levelsAt({90, 200, 200}) == Levels{255, 255, 255});

// The shortest way round from one hue to another, -180..179. A grey has every hue: 0 from any.
constexpr int32_t hueFrom(int32_t from, int32_t to) noexcept {
    if (from == kNoHue || to == kNoHue) return 0;
    return (to - from + kHues + kHues / 2) % kHues - kHues / 2;
}
static_assert(hueFrom(350, 10) == 20 && hueFrom(10, 350) == -20 && hueFrom(0, 180) == -180);

// How far a correction reaches. The picked colour lies within.
struct InfluenceRange {
    int32_t hue;         // 0..180 to either side
    int32_t saturation;  // 0..200 up and down
    int32_t lightest;    // lightness positions, lightest <= darkest
    int32_t darkest;
    bool operator==(const InfluenceRange&) const = default;
};

// The distances of a place within the range from the picked colour, and of the range's edge from
// there in the place's direction; truncated after the root.
struct Fade {
    int32_t distance;  // never beyond the edge
    int32_t edge;
    bool operator==(const Fade&) const = default;
};

// Nothing outside the range. Towards grey the range ends at grey at the latest: a correction that
// reaches it is 0 there, from whichever hue. Towards full saturation it may end beyond: what
// is printed there fades as gently as the rest. For the picked place itself, which lies in no
// direction, the edge is the one furthest away.
std::optional<Fade> fadeAt(const Place& picked, const Place& place,
                           const InfluenceRange& range) noexcept;

}  // namespace ko::cmyk
