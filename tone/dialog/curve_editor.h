// What every graph of tone curves has in common: taking hold of a point, dragging and unmarking it,
// the fields of the selected position. Whose curves they are, and how a curve follows from its
// control points, the heirs know. It has no window.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/dialog/graph_picture.h"
#include "frame/problem.h"

namespace ko::tone {

class CurveEditor {
public:
    virtual ~CurveEditor() = default;

    // What to show.
    int32_t channels() const noexcept { return channels_; }
    uint32_t selection() const noexcept { return selection_; }  // a bit a channel
    bool isSelected(int32_t channel) const noexcept { return selection_ >> channel & 1; }
    int32_t selectedIndex() const noexcept { return index_; }
    bool isDragging() const noexcept { return dragging_; }
    bool contrast() const noexcept { return contrast_; }
    // What is to be said about what was typed last: that it was limited, or is no number.
    const std::optional<Problem>& notice() const noexcept { return notice_; }
    std::string inputText() const;                 // of the selected position: "50 %"
    std::string fieldText(int32_t channel) const;  // the channel's percentage there
    int32_t gridLevel(int32_t index) const noexcept;  // the input level of a grid index
    dialog::Point pointAt(dialog::Size graph, int32_t channel, int32_t index) const noexcept;
    dialog::GraphCurve curveOf(dialog::Size graph, int32_t channel, dialog::Colour colour) const;
    // The curve as it was opened, without points.
    dialog::GraphCurve openedCurve(dialog::Size graph, int32_t channel, dialog::Colour colour) const;
    // Whether a point can be taken hold of there; and what stands there, of a point its own values.
    bool isOnPoint(dialog::Size graph, dialog::Point at) const noexcept {
        return findPoint(graph, at).has_value();
    }
    std::optional<dialog::GraphReading> readingAt(dialog::Size graph, dialog::Point at) const;
    // Whether a selected curve goes down anywhere: more ink in, less ink out.
    bool falls() const noexcept;

    // What the person does. Each says whether anything shown has changed.
    bool press(dialog::Size graph, dialog::Point at);
    bool move(dialog::Size graph, dialog::Point at);
    void release();
    bool pressRight(dialog::Size graph, dialog::Point at);
    bool stepIndex(int32_t by);  // keyboard: the next or the previous position
    bool chooseEnd(bool last) { return stepIndex(last ? lastIndex_ : -lastIndex_); }
    bool stepLevel(int32_t by);  // keyboard: the selected position up or down
    bool unmark();               // keyboard: the selected position is no control point any more
    bool markSelected();         // keyboard: it becomes one as it is
    // The screen's, which says how near a hit has to be.
    void setResolution(int32_t dpi) noexcept { dpi_ = dpi; }
    void setContrast(bool on) noexcept { contrast_ = on; }
    void select(uint32_t channels) noexcept { selection_ = channels; }
    void selectAll() noexcept { selection_ = allChannels_; }
    void leaveField(int32_t channel, std::string_view percent);

protected:
    // gridPoints: positions that can carry a control point, 17 or 65; a point is hit strictly
    // within the tolerance; allChannels: what is selected at first.
    CurveEditor(int32_t channels, int32_t gridPoints, dialog::Size tolerance, uint32_t allChannels)
        : channels_(channels), lastIndex_(gridPoints - 1), tolerance_(tolerance),
          allChannels_(allChannels), selection_(allChannels) {}

    int32_t lastIndex() const noexcept { return lastIndex_; }
    void setNotice(std::optional<Problem> notice) { notice_ = std::move(notice); }
    // The curves as they are are the opened ones from now on: of a further set of channels.
    void keepOpened();

private:
    virtual int32_t levelOf(int32_t channel, int32_t index) const noexcept = 0;
    virtual bool isMarked(int32_t channel, int32_t index) const noexcept = 0;
    virtual void setLevel(int32_t channel, int32_t index, int32_t level) = 0;  // 0..255
    virtual void mark(int32_t channel, int32_t index, bool on) = 0;
    virtual void keepCurves() = 0;  // as they are when an edit begins
    virtual void restore(int32_t channel) = 0;
    virtual void curvesEdited() = 0;  // the edit has ended: the way back to what was kept
    // Contrast: the curve as it was kept, scaled so that its end is at level.
    virtual void scaleToEnd(int32_t channel, int32_t level) = 0;
    virtual void evaluate(uint32_t channels) = 0;  // anew from the control points
    virtual std::vector<dialog::Point> lineOf(dialog::Size graph, int32_t channel) const = 0;

    // Among the curves that were opened.
    virtual int32_t openedIndex(int32_t channel) const noexcept { return channel; }

    struct Hit {
        int32_t channel, index;
    };
    std::optional<Hit> findPoint(dialog::Size graph, dialog::Point at) const noexcept;
    bool isHit(dialog::Size graph, dialog::Point at, int32_t channel, int32_t index) const noexcept {
        return dialog::isNear(pointAt(graph, channel, index), at,
                              dialog::atResolution(tolerance_, dpi_));
    }

    template <class Edit>
    void edit(Edit&& change) {
        keepCurves();
        change();
        curvesEdited();
    }
    bool isEnd(int32_t index) const noexcept { return index == 0 || index == lastIndex_; }
    void setPoint(int32_t channel, int32_t index, int32_t level);

    std::optional<Problem> notice_;
    int32_t channels_;
    int32_t lastIndex_;
    dialog::Size tolerance_;  // at 96 dpi
    int32_t dpi_ = 96;
    std::vector<std::vector<dialog::Point>> opened_;  // on a graph of dialog::kKeptGraph
    uint32_t allChannels_;
    uint32_t selection_;
    int32_t index_ = 0;
    bool dragging_ = false;
    bool contrast_ = false;
};

}  // namespace ko::tone
