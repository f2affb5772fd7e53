#include "cmyk/dialog/colour_place.h"

#include <cmath>
#include <cstdlib>

namespace ko::cmyk {
namespace {

// The root of a whole number below 2^52, truncated: the double one is correctly rounded, and that
// never passes a whole number.
int32_t rootOf(int64_t square) noexcept {
    return static_cast<int32_t>(std::sqrt(static_cast<double>(square)));
}

// One coordinate: how far the place is, and how much room the range leaves in that direction.
struct Way {
    int64_t length;
    int64_t room;
};

}  // namespace

std::optional<Fade> fadeAt(const Place& picked, const Place& place,
                           const InfluenceRange& range) noexcept {
    const int32_t hue = hueFrom(picked.hue, place.hue);
    const int32_t saturation = place.saturation - picked.saturation;
    const int32_t lightness = place.lightness - picked.lightness;
    const int32_t towardsGrey = std::min(range.saturation, picked.saturation);
    const int32_t towardsWhite = picked.lightness - range.lightest;
    const int32_t towardsInk = range.darkest - picked.lightness;
    const Way ways[] = {{std::abs(hue), range.hue},
                        {std::abs(saturation), saturation < 0 ? towardsGrey : range.saturation},
                        {std::abs(lightness), lightness < 0 ? towardsWhite : towardsInk}};

    int64_t square = 0;
    const Way* first = nullptr;  // the coordinate whose edge is met first on the way
    for (const Way& way : ways) {
        if (way.length > way.room) return std::nullopt;
        square += way.length * way.length;
        if (way.length > 0 && (!first || way.room * first->length < first->room * way.length))
            first = &way;
    }
    if (!first)
        return Fade{0, std::max({picked.hue == kNoHue ? 0 : range.hue, range.saturation,
                                 towardsWhite, towardsInk})};
    // The edge is room / length times as far away as the place. The square need not be whole: what
    // is behind its point never changes the truncated root.
    return Fade{rootOf(square),
                rootOf(first->room * first->room * square / (first->length * first->length))};
}

}  // namespace ko::cmyk
