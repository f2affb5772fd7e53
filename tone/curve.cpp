// The tone curve record: making and resetting it, its dense table, and colours through it.
#include <algorithm>
#include <array>

#include "frame/arithmetic.h"
#include "frame/block.h"
#include "frame/text.h"
#include "resources/texts.h"
#include "tone/tone.h"

namespace ko::tone {
namespace {

int32_t valueAt(const ToneCurve& curve, int32_t channel, int32_t level) noexcept {
    return valuesOf(curve, channel)[static_cast<size_t>(clampTo(level, 0, kLevels - 1))];
}

}  // namespace

void CurveRelease::operator()(ToneCurve* curve) const noexcept {
    jMemFree(curve->table);
    jMemFree(curve);
}

OwnedCurve createToneCurve(int32_t channelCount) noexcept {
    if (channelCount < 0 || channelCount > kMaxChannels) return nullptr;
    Block<ToneCurve> curve = allocateBlock<ToneCurve>(sizeof(ToneCurve));
    if (!curve) return nullptr;
    auto table = allocateBlock<int16_t>(uint64_t{sizeof(int16_t)} * kChannelEntries *
                                        static_cast<uint64_t>(channelCount));
    if (!table) return nullptr;
    curve->channelCount = channelCount;
    curve->table = table.release();
    initToneCurve(*curve);
    return OwnedCurve(curve.release());
}

void initToneCurve(ToneCurve& curve) noexcept {
    copyText(curve.title, texts::kUntitled);
    copyText(curve.path, {});
    if (!curve.table) return;
    for (int32_t channel = 0; channel < curve.channelCount; ++channel) {
        const auto flags = flagsOf(curve, channel);
        const auto values = valuesOf(curve, channel);
        for (int32_t x = 0; x < kLevels; ++x) {
            flags[static_cast<size_t>(x)] = x == 0 || x == kLevels - 1;
            values[static_cast<size_t>(x)] = static_cast<int16_t>(x);
        }
    }
}

void encode(ToneCurve& curve, Interpolation interpolation, int32_t maxValue) noexcept {
    if (!curve.table) return;
    for (int32_t channel = 0; channel < curve.channelCount; ++channel) {
        const auto flags = flagsOf(curve, channel);
        const auto values = valuesOf(curve, channel);
        std::array<TonePoint, kLevels> gathered;  // before any value is rewritten
        size_t count = 0;
        for (size_t x = 0; x < kLevels; ++x)
            if (flags[x] != 0) gathered[count++] = {static_cast<int32_t>(x), values[x]};

        const std::span<const TonePoint> points(gathered.data(), count);
        SplineSweep sweep(points);
        for (size_t x = 0; x < kLevels; ++x) {
            const auto level = static_cast<int32_t>(x);
            int32_t value = interpolation == Interpolation::spline ? sweep.at(level)
                                                                   : linearTone(points, level);
            if (value < 0) value = 0;
            if (value > maxValue) value = maxValue;
            values[x] = static_cast<int16_t>(value);
        }
    }
}

bool cmykToCmyk(const ToneCurve& curve, std::span<int32_t, 4> cmyk) noexcept {
    if (curve.channelCount != 4 || !curve.table) return false;
    for (int32_t channel = 0; channel < 4; ++channel) {
        int32_t& level = cmyk[static_cast<size_t>(channel)];
        level = valueAt(curve, channel, level);
    }
    return true;
}

// GCR is the black made from the grey component, UCR what is taken out of C, M and Y for it; both
// tables hold 16 times a level. Levels that they drive out of 0..255 stop there.
bool rgbToCmyk16(const ToneCurve& curve, uint8_t r, uint8_t g, uint8_t b,
                 std::span<int32_t, 4> cmyk) noexcept {
    if (curve.channelCount < 6 || !curve.table) return false;
    const int32_t c = 255 - r, m = 255 - g, y = 255 - b;
    const int32_t grey = std::min({c, m, y});
    const int32_t gcr = valueAt(curve, 4, grey) / 16;
    const int32_t ucr = valueAt(curve, 5, grey) / 16;
    cmyk[0] = valueAt(curve, 0, c - ucr);
    cmyk[1] = valueAt(curve, 1, m - ucr);
    cmyk[2] = valueAt(curve, 2, y - ucr);
    cmyk[3] = valueAt(curve, 3, gcr);
    return true;
}

}  // namespace ko::tone
