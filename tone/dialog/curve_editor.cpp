#include "tone/dialog/curve_editor.h"

#include <algorithm>
#include <utility>

#include "frame/dialog/typed.h"
#include "frame/scan.h"

namespace ko::tone {
namespace {

using dialog::Point;
using dialog::Size;

// Percent of 0..255 to the nearest, halves up; operands are never negative.
int32_t percentOf(int32_t level) noexcept { return truncateToInt32(level * 100 / 255.0 + 0.5); }

}  // namespace

std::string CurveEditor::inputText() const {
    return std::to_string(percentOf(gridLevel(index_))) + " %";
}

std::string CurveEditor::fieldText(int32_t channel) const {
    return std::to_string(percentOf(levelOf(channel, index_)));
}

int32_t CurveEditor::gridLevel(int32_t index) const noexcept {
    return std::min(256 / lastIndex_ * index, 255);
}

Point CurveEditor::pointAt(Size graph, int32_t channel, int32_t index) const noexcept {
    return dialog::plotPoint(graph, index, lastIndex_, levelOf(channel, index));
}

dialog::GraphCurve CurveEditor::curveOf(Size graph, int32_t channel, dialog::Colour colour) const {
    dialog::GraphCurve curve{colour, lineOf(graph, channel), {}, {}};
    if (!isSelected(channel)) return curve;  // only what can be taken hold of has points
    for (int32_t index = 0; index <= lastIndex_; ++index) {
        auto& points = isMarked(channel, index) ? curve.controlPoints : curve.computedPoints;
        points.push_back(pointAt(graph, channel, index));
    }
    return curve;
}

dialog::GraphCurve CurveEditor::openedCurve(Size graph, int32_t channel,
                                            dialog::Colour colour) const {
    const auto at = static_cast<size_t>(openedIndex(channel));
    if (at >= opened_.size()) return {colour, {}, {}, {}};
    return {colour, dialog::keptLine(opened_[at], graph), {}, {}};
}

void CurveEditor::keepOpened() {
    for (int32_t channel = 0; channel < channels_; ++channel)
        opened_.push_back(lineOf(dialog::kKeptGraph, channel));
}

std::optional<CurveEditor::Hit> CurveEditor::findPoint(Size graph, Point at) const noexcept {
    if (!dialog::isInsideGraph(graph, at)) return std::nullopt;
    for (int32_t channel = 0; channel < channels_; ++channel)
        for (int32_t index = 0; isSelected(channel) && index <= lastIndex_; ++index)
            if (isHit(graph, at, channel, index)) return Hit{channel, index};
    return std::nullopt;
}

std::optional<dialog::GraphReading> CurveEditor::readingAt(Size graph, Point at) const {
    const Size plot = dialog::plotSize(graph);
    if (!dialog::isInsideGraph(graph, at) || plot.width <= 0) return std::nullopt;
    const auto percent = [](int32_t level) { return std::to_string(percentOf(level)) + " %"; };
    if (const auto hit = findPoint(graph, at))
        return dialog::GraphReading{percent(gridLevel(hit->index)),
                                    percent(levelOf(hit->channel, hit->index))};
    const int32_t input = clampTo((at.x - dialog::kGraphInset) * 255 / plot.width, 0, 255);
    return dialog::GraphReading{percent(input), percent(dialog::levelAt(graph, at.y))};
}

bool CurveEditor::falls() const noexcept {
    for (int32_t channel = 0; channel < channels_; ++channel)
        for (int32_t index = 0; isSelected(channel) && index < lastIndex_; ++index)
            if (levelOf(channel, index + 1) < levelOf(channel, index)) return true;
    return false;
}

bool CurveEditor::press(Size graph, Point at) {
    const auto hit = dragging_ ? std::nullopt : findPoint(graph, at);
    if (!hit) return false;
    index_ = hit->index;
    notice_.reset();
    keepCurves();
    dragging_ = true;
    return true;
}

bool CurveEditor::move(Size graph, Point at) {
    if (!dragging_) return false;
    const int32_t level = dialog::levelAt(graph, at.y);
    for (int32_t channel = 0; channel < channels_; ++channel) {
        if (!isSelected(channel)) continue;
        if (contrast_ && index_ == lastIndex_) scaleToEnd(channel, level);
        else setPoint(channel, index_, level);
    }
    evaluate(selection_);
    return true;
}

void CurveEditor::release() {
    if (!std::exchange(dragging_, false)) return;
    curvesEdited();
}

void CurveEditor::setPoint(int32_t channel, int32_t index, int32_t level) {
    setLevel(channel, index, clampTo(level, 0, 255));
    mark(channel, index, true);
}

bool CurveEditor::pressRight(Size graph, Point at) {
    if (dragging_) {
        for (int32_t channel = 0; channel < channels_; ++channel)
            if (isSelected(channel)) restore(channel);
        evaluate(selection_);
        release();
        return true;
    }
    if (!dialog::isInsideGraph(graph, at)) return false;
    uint32_t changed = 0;
    keepCurves();
    for (int32_t channel = 0; channel < channels_; ++channel) {
        if (!isSelected(channel)) continue;
        for (int32_t index = 1; index < lastIndex_; ++index) {
            if (!isHit(graph, at, channel, index)) continue;
            if (isMarked(channel, index)) changed |= 1u << channel;
            mark(channel, index, false);
            break;
        }
    }
    if (changed) evaluate(changed);
    curvesEdited();
    return changed != 0;
}

bool CurveEditor::stepIndex(int32_t by) {
    if (dragging_) return false;
    const int32_t to = clampTo(index_ + by, 0, lastIndex_);
    return std::exchange(index_, to) != to;
}

bool CurveEditor::stepLevel(int32_t by) {
    if (dragging_) return false;
    edit([&] {
        for (int32_t channel = 0; channel < channels_; ++channel) {
            if (!isSelected(channel)) continue;
            const int32_t level = levelOf(channel, index_) + by;
            if (contrast_ && index_ == lastIndex_) scaleToEnd(channel, clampTo(level, 0, 255));
            else setPoint(channel, index_, level);
        }
        evaluate(selection_);
    });
    return selection_ != 0;
}

bool CurveEditor::markSelected() {
    if (dragging_) return false;
    edit([&] {
        for (int32_t channel = 0; channel < channels_; ++channel)
            if (isSelected(channel)) mark(channel, index_, true);
        evaluate(selection_);
    });
    return selection_ != 0;
}

bool CurveEditor::unmark() {
    if (dragging_ || isEnd(index_)) return false;
    uint32_t changed = 0;
    keepCurves();
    for (int32_t channel = 0; channel < channels_; ++channel) {
        if (!isSelected(channel) || !isMarked(channel, index_)) continue;
        mark(channel, index_, false);
        changed |= 1u << channel;
    }
    if (changed) evaluate(changed);
    curvesEdited();
    return changed != 0;
}

void CurveEditor::leaveField(int32_t channel, std::string_view percent) {
    release();
    notice_ = dialog::numberNotice(percent, 0, 100, "0 %", "100 %");
    const double typed = typedRealIn(percent);
    edit([&] {
        if (!percent.empty())
            setPoint(channel, index_, truncateToInt32(typed * 255 / 100 + 0.5));
        else if (!isEnd(index_))
            mark(channel, index_, false);
        evaluate(1u << channel);
    });
}

}  // namespace ko::tone
