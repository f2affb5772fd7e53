// The model behind the three tone dialogs: black correction, CMYK tone curve and DCC settings. It
// holds the state of one editing, says what to show and carries out what the person does; it has
// no window. What differs between the dialogs stands in ToneEditorKind.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/dialog/document.h"
#include "frame/text.h"
#include "tone/dialog/curve_editor.h"
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

class ToneEditor final : public CurveEditor, public dialog::Document {
public:
    // All that a person edits.
    struct State {
        std::vector<int16_t> table;
        std::string title;
        std::array<int32_t, 4> settings;
        bool operator==(const State&) const = default;
    };

    // Edits the curve in place; settings are the DCC's, null otherwise. An empty path, or one that
    // ends in a separator, means a new file in that folder.
    ToneEditor(const ToneEditorKind& kind, ToneCurve& curve, DccSettings* settings);

    const ToneEditorKind& kind() const noexcept { return kind_; }

    std::string_view path() const noexcept { return textIn(curve_.path); }  // for the caption
    std::string_view title() const noexcept { return textIn(curve_.title); }
    std::string settingText(DccField field) const;
    int32_t level(int32_t channel, int32_t x) const noexcept { return valuesOf(curve_, channel)[static_cast<size_t>(x)]; }
    bool isControlPoint(int32_t channel, int32_t x) const noexcept { return flagsOf(curve_, channel)[static_cast<size_t>(x)] != 0; }

    void leaveTitle(std::string_view title);
    void leaveSetting(DccField field, std::string_view number);

    void reset();
    bool startNew(dialog::EditorHost& host);
    // Another file in place of this one, once the person agrees to leave its changes: a step like
    // any other. Why it cannot be opened.
    std::optional<Problem> open(const std::string& path, dialog::EditorHost& host);

    State capture() const;
    void restore(const State& state);

private:
    template <class Edit>
    void editAll(Edit&& change) {
        release();
        State before = capture();
        change();
        dialog::addStep(history(), *this, std::move(before));
    }
    // What a step to another file takes along.
    struct File {
        std::string path;
        bool has;
    };
    void addFileStep(State before, File file);
    bool isBusy() const noexcept override { return isDragging(); }
    std::string_view questionCaption() const noexcept override;
    std::string currentPath() const override { return std::string(path()); }
    const char* fileFilter() const noexcept override { return kind_.filter; }
    const char* fileExtension() const noexcept override { return kind_.extension; }
    std::string startOfSave() const override { return startOfSaveAs(); }
    std::string startOfSaveAs() const override { return startFolder_ + platform::kSeparator; }
    std::optional<Problem> write(const std::string& path) override;
    int32_t levelOf(int32_t channel, int32_t index) const noexcept override {
        return level(channel, gridLevel(index));
    }
    bool isMarked(int32_t channel, int32_t index) const noexcept override {
        return isControlPoint(channel, gridLevel(index));
    }
    void setLevel(int32_t channel, int32_t index, int32_t level) override;
    void mark(int32_t channel, int32_t index, bool on) override;
    void keepCurves() override;
    void restore(int32_t channel) override;
    void curvesEdited() override;
    void scaleToEnd(int32_t channel, int32_t level) override;
    void evaluate(uint32_t channels) override;
    std::vector<dialog::Point> lineOf(dialog::Size graph, int32_t channel) const override;

    const ToneEditorKind& kind_;
    ToneCurve& curve_;
    DccSettings* settings_;
    std::string startFolder_;
    State kept_;  // from when the edit of the curves began
};

}  // namespace ko::tone
