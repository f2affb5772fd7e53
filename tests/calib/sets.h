// Calibration sets for tests, released with the test.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "tests/support/owned.h"

namespace ko::test {

using CalibSet = OwnedCalibSet;
using Tones = std::vector<std::pair<float, float>>;

inline CalibSet newSet(int32_t channels, int32_t range = 255, int32_t limit = 255) {
    return CalibSet(jKoCalibCreateCurve(channels, range, limit));
}
inline CalibChannel& channelOf(const CalibSet& set, int32_t channel) {
    return (&set->channels[0])[channel];
}
inline Tones tonesOf(const CalibSet& set, int32_t channel) {
    Tones tones;
    const CalibChannel& found = channelOf(set, channel);
    for (int32_t j = 0; j < found.toneCount; ++j) tones.emplace_back(found.tones[j].x, found.tones[j].y);
    return tones;
}
// Puts tones into a channel as they stand, in any order.
inline void give(const CalibSet& set, int32_t channel, const Tones& tones) {
    CalibChannel& found = channelOf(set, channel);
    found.toneCount = 0;
    for (const auto& [x, y] : tones) found.tones[found.toneCount++] = {x, y};
}

}  // namespace ko::test
