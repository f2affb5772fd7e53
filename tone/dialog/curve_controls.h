// The controls of a curve editor on its dialog or page: the graph and its strips, and for each
// channel a button, a field and the input's percentage. A view has one beside what is its own.
#pragma once

#include <span>
#include <vector>

#include "frame/dialog/dialog_win.h"
#include "frame/dialog/graph_win.h"
#include "frame/dialog/surface_win.h"
#include "resources/dialog_ids.h"
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

class CurveControls final : public dialog::SurfaceEvents {
public:
    CurveControls(CurveEditor& editor, std::span<const ChannelControls> channels, FieldRule rule)
        : editor_(editor), channels_(channels), rule_(rule) {}

    void attach(dialog::Dialog& dialog);  // when it has opened
    std::vector<dialog::Control> controls();    // for the dialog's table
    static bool draw(const DRAWITEMSTRUCT& drawing) {  // the strips
        return dialog::paintGraphStrip(drawing, RGB(0, 0, 0));
    }

private:
    HWND window() const noexcept { return dialog_ ? dialog_->window() : nullptr; }
    void leave(int32_t channel);
    void showGraph() { ::InvalidateRect(::GetDlgItem(window(), IDC_GRAPH), nullptr, FALSE); }
    void showIf(bool changed) {  // after what happens on the graph
        if (changed) dialog_->show();
    }
    void showChannel(int32_t channel);
    void paintSurface(HWND graph, HDC dc, dialog::Size size, bool hasFocus) override;
    void surfacePressed(HWND graph, dialog::Size size, dialog::Point at) override;
    void surfaceMoved(HWND graph, dialog::Size size, dialog::Point at, bool held) override;
    void surfaceReleased(HWND graph) override;
    void surfacePressedRight(HWND graph, dialog::Size size, dialog::Point at) override;
    bool surfaceKey(HWND graph, dialog::Size size, WPARAM key) override;
    void surfaceLeft(HWND graph) override;
    void showStatus();
    const wchar_t* surfaceCursor(HWND graph, dialog::Size size, dialog::Point at) override;

    const ChannelControls& channel(int32_t at) const { return channels_[static_cast<size_t>(at)]; }

    CurveEditor& editor_;
    std::span<const ChannelControls> channels_;
    FieldRule rule_;
    dialog::Dialog* dialog_ = nullptr;
    std::optional<dialog::Point> pointer_;  // while it is over the graph
};

}  // namespace ko::tone
