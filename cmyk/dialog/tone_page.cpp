#include "cmyk/dialog/tone_page.h"

#include <algorithm>
#include <cstring>

#include "frame/arithmetic.h"
#include "tone/tone.h"

namespace ko::cmyk {

TonePage::TonePage(CmykProfile& profile, dialog::History& history, CurveSet& remembered)
    : CurveEditor(kChannels, kCurvePoints, {3, 4}, 0x0f), profile_(profile), history_(history),
      set_(CurveSet::input), remembered_(remembered) {
    keepOpened();
    set_ = CurveSet::output;
    keepOpened();
    set_ = remembered;
}

TonePage::State TonePage::capture() const {
    State state;
    std::memcpy(state.data(), profile_.curveValues, sizeof profile_.curveValues);
    std::memcpy(state.data() + sizeof profile_.curveValues, profile_.curveFlags,
                sizeof profile_.curveFlags);
    return state;
}

void TonePage::restore(const State& state) {
    std::memcpy(profile_.curveValues, state.data(), sizeof profile_.curveValues);
    std::memcpy(profile_.curveFlags, state.data() + sizeof profile_.curveValues,
                sizeof profile_.curveFlags);
}

void TonePage::chooseSet(CurveSet set) {
    release();
    set_ = remembered_ = set;
}

void TonePage::reset() {
    release();
    before_ = capture();
    for (int32_t channel = 0; channel < kChannels; ++channel)
        resetCurve(profile_, curveIndex(channel));
    curvesEdited();
}

int32_t TonePage::levelOf(int32_t channel, int32_t point) const noexcept {
    return profile_.curveValues[curveIndex(channel)][point];
}

bool TonePage::isMarked(int32_t channel, int32_t point) const noexcept {
    return profile_.curveFlags[curveIndex(channel)][point] == 1;
}

void TonePage::setLevel(int32_t channel, int32_t point, int32_t level) {
    profile_.curveValues[curveIndex(channel)][point] = static_cast<uint8_t>(level);
}

void TonePage::mark(int32_t channel, int32_t point, bool on) {
    profile_.curveFlags[curveIndex(channel)][point] = on;
}

void TonePage::curvesEdited() { dialog::addStep(history_, *this, before_); }

void TonePage::keepCurves() {
    before_ = capture();
    for (int32_t channel = 0; channel < kChannels; ++channel) {
        Curve& kept = kept_[static_cast<size_t>(channel)];
        std::copy_n(profile_.curveValues[curveIndex(channel)], kCurvePoints, kept.values.begin());
        std::copy_n(profile_.curveFlags[curveIndex(channel)], kCurvePoints, kept.flags.begin());
    }
}

void TonePage::restore(int32_t channel) {
    const Curve& kept = kept_[static_cast<size_t>(channel)];
    std::copy(kept.values.begin(), kept.values.end(), profile_.curveValues[curveIndex(channel)]);
    std::copy(kept.flags.begin(), kept.flags.end(), profile_.curveFlags[curveIndex(channel)]);
}

void TonePage::scaleToEnd(int32_t channel, int32_t level) {
    const auto& kept = kept_[static_cast<size_t>(channel)].values;
    const int32_t end = kept.back();
    if (end == 0) return;
    for (int32_t point = 0; point < kCurvePoints; ++point)
        setLevel(channel, point, clampTo(kept[static_cast<size_t>(point)] * level / end, 0, 255));
}

// Control points keep their values; the others follow.
void TonePage::evaluate(uint32_t channels) {
    for (int32_t channel = 0; channel < kChannels; ++channel) {
        if (!(channels >> channel & 1)) continue;
        const ControlPoints control = controlPoints(profile_, curveIndex(channel));
        tone::SplineSweep spline({control.points.data(), static_cast<size_t>(control.count)});
        for (int32_t point = 0; point < kCurvePoints; ++point)
            if (!isMarked(channel, point))
                setLevel(channel, point, clampTo(spline.at(curveLevel(point)), 0, 255));
    }
}

std::vector<dialog::Point> TonePage::lineOf(dialog::Size graph, int32_t channel) const {
    std::vector<dialog::Point> line;
    for (int32_t point = 0; point < kCurvePoints; ++point)
        line.push_back(pointAt(graph, channel, point));
    return line;
}

}  // namespace ko::cmyk
