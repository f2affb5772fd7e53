// The model behind the three tone dialogs: black correction, CMYK tone curve and DCC settings. It
// holds the state of one editing, says what to show and carries out what the person does; it has
// no window. What differs between the dialogs stands in ToneEditorKind.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/dialog/graph_picture.h"
#include "frame/dialog/host.h"
#include "frame/text.h"
#include "tone/tone.h"

namespace ko::tone {

struct ToneEditorKind {
    int32_t channels;         // 1, 4 or 6
    int32_t gridPoints;       // positions of the graph that can carry a control point
    dialog::Size tolerance;   // a point is hit strictly within it
    bool contrastScalesAll;   // the contrast drag scales all 256 values, not the grid's alone
    uint32_t allChannels;     // the selection after opening: a bit a channel
    const char* extension;    // ".bkc"
    const char* filter;       // of the file dialog
    const char* caption;      // with %s for the path
    bool (*load)(ToneCurve& curve, DccSettings* settings, const char* path);
    bool (*save)(ToneCurve& curve, DccSettings* settings, const char* path);
};

extern const ToneEditorKind kBkcEditor;
extern const ToneEditorKind kCmykEditor;
extern const ToneEditorKind kDccEditor;

enum class DccField { dpiX, dpiY, totalInk, lightInk };

class ToneEditor {
public:
    // Edits the curve in place; settings are the DCC's, null otherwise. An empty path, or one that
    // ends in a separator, means a new file in that folder.
    ToneEditor(const ToneEditorKind& kind, ToneCurve& curve, DccSettings* settings);

    const ToneEditorKind& kind() const noexcept { return kind_; }

    // What to show.
    std::string_view path() const noexcept { return textIn(curve_.path); }  // for the caption
    std::string_view title() const noexcept { return textIn(curve_.title); }
    uint32_t selection() const noexcept { return selection_; }
    bool isSelected(int32_t channel) const noexcept { return selection_ >> channel & 1; }
    int32_t selectedIndex() const noexcept { return index_; }
    bool isDragging() const noexcept { return dragging_; }
    bool contrast() const noexcept { return contrast_; }
    std::string inputText() const;                   // of the selected position: "50 %"
    std::string fieldText(int32_t channel) const;    // the channel's percentage there
    std::string settingText(DccField field) const;
    int32_t level(int32_t channel, int32_t x) const noexcept { return valuesOf(curve_, channel)[static_cast<size_t>(x)]; }
    bool isControlPoint(int32_t channel, int32_t x) const noexcept { return flagsOf(curve_, channel)[static_cast<size_t>(x)] != 0; }
    int32_t gridLevel(int32_t index) const noexcept;  // the input level of a grid index
    dialog::Point pointAt(dialog::Size graph, int32_t channel, int32_t index) const noexcept;
    dialog::GraphCurve curveOf(dialog::Size graph, int32_t channel, dialog::Colour colour) const;

    // What the person does. Each says whether anything shown has changed.
    bool press(dialog::Size graph, dialog::Point at);
    bool move(dialog::Size graph, dialog::Point at);
    void release() noexcept { dragging_ = false; }
    bool pressRight(dialog::Size graph, dialog::Point at);
    bool stepIndex(int32_t by);  // keyboard: the next or the previous position
    bool stepLevel(int32_t by);  // keyboard: the selected position up or down
    bool unmark();               // keyboard: the selected position is no control point any more
    void setContrast(bool on) noexcept { contrast_ = on; }
    void select(uint32_t channels) noexcept { selection_ = channels; }
    void leaveField(int32_t channel, std::string_view percent);
    void leaveTitle(std::string_view title);
    void leaveSetting(DccField field, std::string_view number);

    void reset();
    bool startNew(dialog::EditorHost& host);
    void save(dialog::EditorHost& host);
    void saveAs(dialog::EditorHost& host);

private:
    int32_t lastIndex() const noexcept { return kind_.gridPoints - 1; }
    bool isEnd(int32_t index) const noexcept { return index == 0 || index == lastIndex(); }
    void setLevel(int32_t channel, int32_t index, int32_t level);
    void scaleToEnd(int32_t channel, int32_t level);
    void restore(int32_t channel);
    void encodeAgain() { encode(curve_, Interpolation::spline, 255); }
    bool saveTo(const char* path);

    const ToneEditorKind& kind_;
    ToneCurve& curve_;
    DccSettings* settings_;
    std::string startFolder_;
    bool hasFile_ = false;
    uint32_t selection_;
    int32_t index_ = 0;
    bool dragging_ = false;
    bool contrast_ = false;
    std::vector<int16_t> undo_;  // flags and values of every channel, from when the drag began
};

}  // namespace ko::tone
