#include "resources/dialog_ids.h"
#include "tone/dialog/curve_controls.h"

namespace ko::tone {
namespace {

using namespace dialog;

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

void CurveControls::attach(const Dialog& dialog) {
    dialog_ = &dialog;
    makeGraphSquare(window());
    attachGraph(window(), IDC_GRAPH, *this);
    const bool choice = dialog.item(IDC_ALL_INKS) != nullptr;
    if (choice) ::CheckDlgButton(window(), IDC_ALL_INKS, BST_CHECKED);
    for (const ChannelControls& channel : channels_) {
        ::SendDlgItemMessageW(window(), channel.percent, EM_SETLIMITTEXT, 10, 0);
        // Takes the tab stop from all but the one that is checked.
        if (choice) ::CheckDlgButton(window(), channel.button, BST_UNCHECKED);
    }
}

bool CurveControls::press(int button) {
    if (button == IDC_CONTRAST) return editor_.setContrast(isChecked(window(), button)), true;
    if (button == IDC_ALL_INKS) return editor_.selectAll(), show(), true;
    for (size_t at = 0; at < channels_.size(); ++at)
        if (channels_[at].button == button) return editor_.select(1u << at), show(), true;
    return false;
}

bool CurveControls::leave(int field) {
    for (size_t at = 0; at < channels_.size(); ++at) {
        if (channels_[at].percent != field) continue;
        const auto channel = static_cast<int32_t>(at);
        const std::string text = asciiOf(window(), field);
        const bool typed = ::SendDlgItemMessageW(window(), field, EM_GETMODIFY, 0, 0) ||
                           text != editor_.fieldText(channel);
        if (typed || rule_ == FieldRule::whenLeft) editor_.leaveField(channel, text);
        ::SendDlgItemMessageW(window(), field, EM_SETMODIFY, FALSE, 0);
        show();
        return true;
    }
    return false;
}

bool CurveControls::draw(const DRAWITEMSTRUCT& drawing) const {
    if (drawing.CtlID != IDC_STRIP_INPUT && drawing.CtlID != IDC_STRIP_OUTPUT) return false;
    const bool output = drawing.CtlID == IDC_STRIP_OUTPUT;
    const Canvas canvas(drawing.hDC, drawing.rcItem);
    paintStrip(canvas.dc(), {0, 0, canvas.size().width, canvas.size().height},
               output ? StripDirection::upward : StripDirection::rightward, RGB(255, 255, 255),
               RGB(0, 0, 0));
    return true;
}

void CurveControls::show() {
    for (size_t at = 0; at < channels_.size(); ++at) {
        setText(window(), channels_[at].percent, editor_.fieldText(static_cast<int32_t>(at)));
        setText(window(), channels_[at].input, editor_.inputText());
    }
    ::InvalidateRect(::GetDlgItem(window(), IDC_GRAPH), nullptr, FALSE);
}

GraphPicture CurveControls::graphPicture(HWND, Size size) {
    GraphPicture picture;
    picture.selectedX = editor_.pointAt(size, 0, editor_.selectedIndex()).x;
    // Channels that are not selected lie below the ones that are.
    for (const bool selected : {false, true})
        for (int32_t channel = 0; channel < editor_.channels(); ++channel)
            if (editor_.isSelected(channel) == selected)
                picture.curves.push_back(
                    editor_.curveOf(size, channel, channels_[static_cast<size_t>(channel)].colour));
    return picture;
}

void CurveControls::graphPressed(HWND, Size size, Point at) { showIf(editor_.press(size, at)); }
void CurveControls::graphMoved(HWND, Size size, Point at) { showIf(editor_.move(size, at)); }
void CurveControls::graphReleased(HWND) { editor_.release(); }
void CurveControls::graphPressedRight(HWND, Size size, Point at) {
    showIf(editor_.pressRight(size, at));
}

bool CurveControls::graphKey(HWND, WPARAM key) {
    switch (key) {
        case VK_LEFT: showIf(editor_.stepIndex(-1)); return true;
        case VK_RIGHT: showIf(editor_.stepIndex(1)); return true;
        case VK_UP: showIf(editor_.stepLevel(1)); return true;
        case VK_DOWN: showIf(editor_.stepLevel(-1)); return true;
        case VK_DELETE: showIf(editor_.unmark()); return true;
        default: return false;
    }
}

}  // namespace ko::tone
