// Calibration curve sets: making, editing and reading them, and their files. See
// kolink/calibration.h for the record and what each call promises.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

#include "frame/block.h"
#include "frame/path.h"
#include "kolink/calibration.h"

namespace ko::calib {

// The channels and their tones. What a record claims beyond what it can hold does not count.
inline std::span<CalibChannel> channelsOf(CalibCurveSet& set) noexcept {
    return {set.channels,
            static_cast<size_t>(std::clamp(set.channelCount, 0, KOLINK_CALIB_MAX_CHANNELS))};
}
inline std::span<const CalibChannel> channelsOf(const CalibCurveSet& set) noexcept {
    return channelsOf(const_cast<CalibCurveSet&>(set));
}
inline std::span<const CalibTone> tonesOf(const CalibChannel& channel) noexcept {
    return {channel.tones,
            static_cast<size_t>(std::clamp(channel.toneCount, 0, KOLINK_CALIB_MAX_TONES))};
}

[[nodiscard]] Block<CalibCurveSet> createCurve(int32_t channelCount, int32_t range, int32_t limit);
void initCurve(CalibCurveSet& set) noexcept;

float toneValue(const CalibCurveSet& set, int32_t channel, float x) noexcept;
bool setToneValue(CalibCurveSet& set, int32_t channel, float x, float y) noexcept;
bool deleteToneValue(CalibCurveSet& set, int32_t channel, float x) noexcept;

// The two interpolators, not clamped. 0 outside the tones and for less than two of them.
float splineValue(std::span<const CalibTone> tones, float x) noexcept;
float linearValue(std::span<const CalibTone> tones, float x) noexcept;

[[nodiscard]] Block<CalibCurveSet> loadCurve(const Path& path);
// The same from a file's text; the path is the set's.
[[nodiscard]] Block<CalibCurveSet> readCurve(std::string_view text, const Path& path);
bool saveCurve(CalibCurveSet& set, const char* path);

}  // namespace ko::calib
