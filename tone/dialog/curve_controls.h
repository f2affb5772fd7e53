// The controls of a curve editor on its dialog or page: the graph and its strips, and for each
// channel a button, a field and the input's percentage. A view has one beside what is its own.
#pragma once

#include <span>

#include "frame/dialog/win32.h"
#include "tone/dialog/curve_editor.h"

namespace ko::tone {

struct ChannelControls {
    int button, percent, input;
    COLORREF colour;
};
// C, M, Y, K, GCR and UCR, in the order of the channels.
std::span<const ChannelControls> channelControls() noexcept;

// Whether a field is taken over each time it is left, or only after someone has typed in it.
enum class FieldRule { whenLeft, whenTyped };

class CurveControls final : public dialog::GraphEvents {
public:
    CurveControls(CurveEditor& editor, std::span<const ChannelControls> channels, FieldRule rule)
        : editor_(editor), channels_(channels), rule_(rule) {}

    void attach(const dialog::Dialog& dialog);  // when it has opened
    bool press(int button);  // false: none of these controls'
    bool leave(int field);   // false: none of these controls'
    bool draw(const DRAWITEMSTRUCT& drawing) const;  // the strips
    void show();

private:
    HWND window() const noexcept { return dialog_ ? dialog_->window() : nullptr; }
    void showIf(bool changed) {
        if (changed) show();
    }
    dialog::GraphPicture graphPicture(HWND graph, dialog::Size size) override;
    void graphPressed(HWND graph, dialog::Size size, dialog::Point at) override;
    void graphMoved(HWND graph, dialog::Size size, dialog::Point at) override;
    void graphReleased(HWND graph) override;
    void graphPressedRight(HWND graph, dialog::Size size, dialog::Point at) override;
    bool graphKey(HWND graph, WPARAM key) override;

    CurveEditor& editor_;
    std::span<const ChannelControls> channels_;
    FieldRule rule_;
    const dialog::Dialog* dialog_ = nullptr;
};

}  // namespace ko::tone
