// Tone curves: their points, the dense table made from them, and their files. See
// kolink/tone_curve.h and kolink/tone_file.h for the records and what each call promises.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "frame/path.h"
#include "frame/problem.h"
#include "kolink/tone_curve.h"
#include "kolink/tone_file.h"

namespace ko::tone {

constexpr int32_t kLevels = 256;                  // input levels of a channel
constexpr int32_t kChannelEntries = 2 * kLevels;  // flags, then values
constexpr int32_t kMaxChannels = 1024;

// The flags and the values of one channel; channel is below curve.channelCount.
inline std::span<int16_t, kLevels> flagsOf(const ToneCurve& curve, int32_t channel) noexcept {
    return std::span<int16_t, kLevels>(curve.table + channel * kChannelEntries, kLevels);
}
inline std::span<int16_t, kLevels> valuesOf(const ToneCurve& curve, int32_t channel) noexcept {
    return std::span<int16_t, kLevels>(curve.table + channel * kChannelEntries + kLevels, kLevels);
}

// False, with its reason, for a curve that has not that many channels.
inline bool hasChannels(const ToneCurve& curve, int32_t count) noexcept {
    if (curve.channelCount >= count && curve.table) return true;
    return platform::failFor(platform::Cause::wrongArgument);
}
inline bool hasChannels(const DccSettings& settings, int32_t count) noexcept {
    if (settings.curves) return hasChannels(*settings.curves, count);
    return platform::failFor(platform::Cause::wrongArgument);
}

struct CurveRelease {
    void operator()(ToneCurve* curve) const noexcept;
};
using OwnedCurve = std::unique_ptr<ToneCurve, CurveRelease>;

// Null for a count outside 0..kMaxChannels and when memory is short.
[[nodiscard]] OwnedCurve createToneCurve(int32_t channelCount) noexcept;
void initToneCurve(ToneCurve& curve) noexcept;

int32_t splineTone(std::span<const TonePoint> points, int32_t x) noexcept;
int32_t linearTone(std::span<const TonePoint> points, int32_t x) noexcept;

// splineTone for x that never fall: a segment's inner points are made once, and the scan goes on
// where the last one stopped. It holds the points, not a copy.
class SplineSweep {
public:
    explicit SplineSweep(std::span<const TonePoint> points) noexcept : points_(points) {}
    int32_t at(int32_t x) noexcept;  // x not below that of the call before

private:
    std::span<const TonePoint> points_;
    size_t segment_ = 0;  // none yet
    int32_t step_ = 0;    // 0..256, where the scan of the segment stands
    TonePoint inner_[2] = {};
};

enum class Interpolation { linear, spline };
void encode(ToneCurve& curve, Interpolation interpolation, int32_t maxValue) noexcept;

// False, changing nothing, unless the curve has exactly 4 (at least 6) channels.
bool cmykToCmyk(const ToneCurve& curve, std::span<int32_t, 4> cmyk) noexcept;
bool rgbToCmyk16(const ToneCurve& curve, uint8_t r, uint8_t g, uint8_t b,
                 std::span<int32_t, 4> cmyk) noexcept;

// Why a file is no curve file of that many channels, though every file loads as one: nothing in it
// is a curve.
std::optional<Problem> whyNoCurveFile(int32_t channels, const char* path);
bool loadBkcCurve(ToneCurve& curve, const Path& path);
bool loadCmykToneCurve(ToneCurve& curve, const Path& path);
bool loadDccCurve(ToneCurve& curve, const Path& path);
bool loadDcc(DccSettings& settings, const Path& path);
// The same from a file's text, into curves that have the channels.
void readBkcCurve(ToneCurve& curve, std::string_view text) noexcept;
void readCmykToneCurve(ToneCurve& curve, std::string_view text) noexcept;
void readDccCurve(ToneCurve& curve, std::string_view text) noexcept;
void readDcc(DccSettings& settings, std::string_view text) noexcept;
bool saveBkcCurve(ToneCurve& curve, const Path& path);
bool saveCmykToneCurve(ToneCurve& curve, const Path& path);
bool saveDcc(DccSettings& settings, const Path& path);

}  // namespace ko::tone
