#include "frame/dialog/ask_win.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"
#include "tone/dialog/curve_controls.h"

namespace ko::tone {
namespace {

using namespace dialog;

constexpr int32_t kBigStep = 10;  // Page Up and Down move by this many steps

constexpr ChannelControls kChannelControls[] = {
    {IDC_INK_C, IDC_PERCENT_C, IDC_INPUT_C, 0x8c8c00},
    {IDC_INK_M, IDC_PERCENT_M, IDC_INPUT_M, 0xdc00dc},
    {IDC_INK_Y, IDC_PERCENT_Y, IDC_INPUT_Y, 0x009696},
    {IDC_INK_K, IDC_PERCENT_K, IDC_INPUT_K, 0},
    {IDC_INK_GCR, IDC_PERCENT_GCR, IDC_INPUT_GCR, 0x606060},
    {IDC_INK_UCR, IDC_PERCENT_UCR, IDC_INPUT_UCR, 0x3264b4},
};

}  // namespace

std::span<const ChannelControls> channelControls() noexcept { return kChannelControls; }

void CurveControls::attach(Dialog& dialog) {
    dialog_ = &dialog;
    makeGraphSquare(window());
    attachSurface(window(), IDC_GRAPH, *this);
    editor_.setResolution(resolutionOf(window()));
    const bool choice = dialog.item(IDC_ALL_INKS) != nullptr;
    if (choice) ::CheckDlgButton(window(), IDC_ALL_INKS, BST_CHECKED);
    for (const ChannelControls& channel : channels_) {
        ::SendDlgItemMessageW(window(), channel.percent, EM_SETLIMITTEXT, 10, 0);
        // Takes the tab stop from all but the one that is checked.
        if (choice) ::CheckDlgButton(window(), channel.button, BST_UNCHECKED);
    }
}

std::vector<Control> CurveControls::controls() {
    std::vector<Control> all = {
        {.id = IDC_GRAPH, .show = [this] { showGraph(); }},
        {.id = IDC_STATUS, .show = [this] { showStatus(); }},
        {.id = IDC_CONTRAST,
         .press = [this] { editor_.setContrast(isChecked(window(), IDC_CONTRAST)); }},
        {.id = IDC_ALL_INKS, .press = [this] { editor_.selectAll(); }},
    };
    for (int32_t at = 0; at < editor_.channels(); ++at) {
        all.push_back({.id = channel(at).button, .press = [=, this] { editor_.select(1u << at); }});
        all.push_back({.id = channel(at).percent,
                       .show = [=, this] { showChannel(at); },
                       .leave = [=, this] { leave(at); }});
    }
    return all;
}

void CurveControls::leave(int32_t at) {
    const int field = channel(at).percent;
    const std::string text = numberOf(window(), field);
    const bool typed = ::SendDlgItemMessageW(window(), field, EM_GETMODIFY, 0, 0) ||
                       text != editor_.fieldText(at);
    if (typed || rule_ == FieldRule::whenLeft) editor_.leaveField(at, text);
    ::SendDlgItemMessageW(window(), field, EM_SETMODIFY, FALSE, 0);
}

void CurveControls::showChannel(int32_t at) {
    setText(window(), channel(at).percent, editor_.fieldText(at));
    setText(window(), channel(at).input, editor_.inputText());
}

// What was said about a number stands; else that a curve takes ink back as more comes in.
void CurveControls::showStatus() {
    if (editor_.notice() || !editor_.falls()) return showNotice(window(), editor_.notice());
    showNotice(window(), Problem{texts::kCurveFalls});
}

void CurveControls::paintSurface(HWND, HDC dc, Size size, bool hasFocus) {
    GraphPicture picture;
    picture.inputs = picture.outputs = {"0", "25", "50", "75", "100"};
    if (pointer_) picture.reading = editor_.readingAt(size, *pointer_);
    picture.selectedX = editor_.pointAt(size, 0, editor_.selectedIndex()).x;
    // Channels that are not selected lie below the ones that are.
    for (const bool selected : {false, true})
        for (int32_t at = 0; at < editor_.channels(); ++at)
            if (editor_.isSelected(at) == selected) {
                picture.opened.push_back(editor_.openedCurve(size, at, channel(at).colour));
                picture.curves.push_back(editor_.curveOf(size, at, channel(at).colour));
            }
    paintGraph(dc, size, picture, hasFocus);
}

void CurveControls::surfacePressed(HWND, Size size, Point at) { showIf(editor_.press(size, at)); }
void CurveControls::surfaceMoved(HWND, Size size, Point at, bool) {
    pointer_ = at;
    if (editor_.move(size, at)) dialog_->show();
    else showGraph();
}
void CurveControls::surfaceLeft(HWND) {
    pointer_.reset();
    showGraph();
}
void CurveControls::surfaceReleased(HWND) {
    const bool dragging = editor_.isDragging();
    editor_.release();
    showIf(dragging);
}
void CurveControls::surfacePressedRight(HWND, Size size, Point at) {
    showIf(editor_.pressRight(size, at));
}

const wchar_t* CurveControls::surfaceCursor(HWND, Size size, Point at) {
    return editor_.isOnPoint(size, at) ? kHandCursor : kCrossCursor;
}

bool CurveControls::surfaceKey(HWND, Size, WPARAM key) {
    switch (key) {
        case VK_LEFT: showIf(editor_.stepIndex(-1)); return true;
        case VK_RIGHT: showIf(editor_.stepIndex(1)); return true;
        case VK_UP: showIf(editor_.stepLevel(1)); return true;
        case VK_DOWN: showIf(editor_.stepLevel(-1)); return true;
        case VK_PRIOR: showIf(editor_.stepLevel(kBigStep)); return true;
        case VK_NEXT: showIf(editor_.stepLevel(-kBigStep)); return true;
        case VK_HOME: showIf(editor_.chooseEnd(false)); return true;
        case VK_END: showIf(editor_.chooseEnd(true)); return true;
        case VK_INSERT: showIf(editor_.markSelected()); return true;
        case VK_DELETE: showIf(editor_.unmark()); return true;
        default: return false;
    }
}

}  // namespace ko::tone
