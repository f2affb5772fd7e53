// The calibration curve set: making it, and editing and reading its tones.
#include "calib/calib.h"

#include <cmath>
#include <cstddef>
#include <string>

#include "calib/number_format.h"
#include "frame/state.h"
#include "frame/text.h"
#include "resources/texts.h"

namespace ko::calib {
namespace {

constexpr size_t setSize(size_t channels) noexcept {
    return offsetof(CalibCurveSet, channels) + channels * sizeof(CalibChannel);
}

CalibChannel* findChannel(CalibCurveSet& set, int32_t channel) noexcept {
    const auto channels = channelsOf(set);
    if (channel < 0 || static_cast<size_t>(channel) >= channels.size()) return nullptr;
    return &channels[static_cast<size_t>(channel)];
}

// The text with its number, whatever language it is in.
std::string channelName(size_t number) {
    std::string name = translated(texts::kChannelNumber);
    if (const size_t at = name.find("%d"); at != name.npos) name.replace(at, 2, std::to_string(number));
    return name;
}

float clampedTone(float y, float limit) noexcept {
    if (y > limit) y = limit;
    return y >= 0.0f ? y : 0.0f;  // and 0 for what is no number
}

}  // namespace

Block<CalibCurveSet> createCurve(int32_t channelCount, int32_t range, int32_t limit) {
    if (channelCount < 1 || channelCount > KOLINK_CALIB_MAX_CHANNELS) {
        platform::setLastError(platform::Cause::wrongArgument);
        return nullptr;
    }
    const size_t size = setSize(static_cast<size_t>(channelCount));
    auto set = allocateBlock<CalibCurveSet>(size);
    if (!set) return nullptr;
    std::fill_n(reinterpret_cast<std::byte*>(set.get()), size, std::byte{0});
    set->channelCount = channelCount;
    set->range = range;
    set->limit = limit;
    set->ctype = 1;
    copyText(set->formatX, kDefaultFormat);
    copyText(set->formatY, kDefaultFormat);
    size_t number = 0;
    for (CalibChannel& channel : channelsOf(*set)) copyText(channel.name, channelName(++number));
    initCurve(*set);
    return set;
}

void initCurve(CalibCurveSet& set) noexcept {
    const auto top = static_cast<float>(set.range);
    for (CalibChannel& channel : channelsOf(set)) {
        std::fill(std::begin(channel.tones), std::end(channel.tones), CalibTone{0.0f, 0.0f});
        channel.tones[1] = {top, top};
        channel.toneCount = 2;
    }
}

float toneValue(const CalibCurveSet& set, int32_t channel, float x) noexcept {
    const CalibChannel* found = findChannel(const_cast<CalibCurveSet&>(set), channel);
    if (!found) return 0.0f;
    const float y = set.ctype == 1 ? splineValue(tonesOf(*found), x)
                                   : linearValue(tonesOf(*found), x);
    return clampedTone(y, static_cast<float>(set.limit));
}

bool setToneValue(CalibCurveSet& set, int32_t channel, float x, float y) noexcept {
    CalibChannel* found = findChannel(set, channel);
    if (!found || !std::isfinite(x) || std::isnan(y)) return false;
    if (x < 0.0f || x > static_cast<float>(set.range)) return false;
    y = clampedTone(y, static_cast<float>(set.limit));

    CalibTone* const begin = found->tones;
    CalibTone* const end = begin + tonesOf(*found).size();
    // In the whole list first: tones from a plain file need not be in order.
    const auto same = std::find_if(begin, end, [&](const CalibTone& tone) { return tone.x == x; });
    if (same != end) {
        same->y = y;
        return true;
    }
    if (end == std::end(found->tones)) return false;
    const auto place = std::find_if(begin, end, [&](const CalibTone& tone) { return tone.x > x; });
    std::move_backward(place, end, end + 1);
    *place = {x, y};
    found->toneCount = static_cast<int32_t>(end - begin) + 1;
    return true;
}

bool deleteToneValue(CalibCurveSet& set, int32_t channel, float x) noexcept {
    CalibChannel* found = findChannel(set, channel);
    if (!found || tonesOf(*found).size() < 3) return false;
    CalibTone* const last = found->tones + tonesOf(*found).size() - 1;
    // The two end tones stay, so that a channel always spans its range.
    const auto same = std::find_if(found->tones + 1, last,
                                   [&](const CalibTone& tone) { return tone.x == x; });
    if (same == last) return false;
    std::move(same + 1, last + 1, same);
    *last = {0.0f, 0.0f};
    found->toneCount = static_cast<int32_t>(last - found->tones);
    return true;
}

}  // namespace ko::calib
