// The model behind the tone-curve page of the CMYK profile dialog: two sets of four curves of 65
// points, edited in the record. Points are hit, dragged and unmarked by the rules of the tone
// dialogs with 65 positions: strictly within 3 pixels across and 4 down, a channel's first point
// counts, the two ends stay. It has no window.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "cmyk/cmyk.h"
#include "frame/dialog/history.h"
#include "tone/dialog/curve_editor.h"

namespace ko::cmyk {

enum class CurveSet { input, output };

class TonePage final : public tone::CurveEditor {
public:
    // Edits the profile's curves in place; history is the profile's. remembered is the choice of the set that the next page
    // begins with; it outlives this one.
    TonePage(CmykProfile& profile, dialog::History& history, CurveSet& remembered);

    CurveSet curveSet() const noexcept { return set_; }
    void chooseSet(CurveSet set);  // ends a drag as it stands
    int32_t level(int32_t channel, int32_t point) const noexcept { return levelOf(channel, point); }
    bool isControlPoint(int32_t channel, int32_t point) const noexcept {
        return isMarked(channel, point);
    }

    void reset();  // the set's four curves become straight lines

    // All that a person edits here: both sets.
    using State = std::array<uint8_t, 2 * kCurves * kCurvePoints>;
    State capture() const;
    void restore(const State& state);

private:
    static constexpr int32_t kChannels = 4;

    // Of the record's eight curves.
    int32_t curveIndex(int32_t channel) const noexcept {
        return channel + (set_ == CurveSet::output ? kChannels : 0);
    }
    int32_t openedIndex(int32_t channel) const noexcept override { return curveIndex(channel); }
    int32_t levelOf(int32_t channel, int32_t point) const noexcept override;
    bool isMarked(int32_t channel, int32_t point) const noexcept override;
    void setLevel(int32_t channel, int32_t point, int32_t level) override;
    void mark(int32_t channel, int32_t point, bool on) override;
    void keepCurves() override;
    void restore(int32_t channel) override;
    void curvesEdited() override;
    void scaleToEnd(int32_t channel, int32_t level) override;
    void evaluate(uint32_t channels) override;
    std::vector<dialog::Point> lineOf(dialog::Size graph, int32_t channel) const override;

    struct Curve {
        std::array<uint8_t, kCurvePoints> values, flags;
    };
    CmykProfile& profile_;
    dialog::History& history_;
    State before_{};
    CurveSet set_;
    CurveSet& remembered_;
    std::array<Curve, kChannels> kept_{};  // of the set, from when the drag began
};

}  // namespace ko::cmyk
