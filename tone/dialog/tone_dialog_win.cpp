// The view of the three tone dialogs: turns messages into commands of the model and shows what it
// says. Which controls a dialog has stands in a table.
#include <algorithm>
#include <array>
#include <span>

#include "frame/dialog/win32.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"
#include "tone/dialog/tone_dialog.h"
#include "tone/dialog/tone_editor.h"

namespace ko::tone {
namespace {

using namespace dialog;

struct ChannelControls {
    int button, percent, input;
    COLORREF colour;
};

constexpr ChannelControls kInks[] = {
    {IDC_INK_C, IDC_PERCENT_C, IDC_INPUT_C, 0x8c8c00},
    {IDC_INK_M, IDC_PERCENT_M, IDC_INPUT_M, 0xdc00dc},
    {IDC_INK_Y, IDC_PERCENT_Y, IDC_INPUT_Y, 0x009696},
    {IDC_INK_K, IDC_PERCENT_K, IDC_INPUT_K, 0},
    {IDC_INK_GCR, IDC_PERCENT_GCR, IDC_INPUT_GCR, 0x606060},
    {IDC_INK_UCR, IDC_PERCENT_UCR, IDC_INPUT_UCR, 0x3264b4},
};

struct SettingControl {
    int control;
    DccField field;
};
constexpr SettingControl kSettings[] = {{IDC_DPI_X, DccField::dpiX},
                                        {IDC_DPI_Y, DccField::dpiY},
                                        {IDC_TOTAL_INK, DccField::totalInk},
                                        {IDC_LIGHT_INK, DccField::lightInk}};

RememberedPlace& placeOf(const ToneEditorKind& kind) {
    static std::array<RememberedPlace, 3> places;
    return places[kind.channels == 1 ? 0 : kind.channels == 4 ? 1 : 2];
}

class ToneDialog final : public ModalDialog, public GraphEvents {
public:
    explicit ToneDialog(ToneEditor& editor)
        : editor_(editor),
          channels_(kind().channels == 1 ? std::span(kInks).subspan(3, 1)
                                         : std::span(kInks).first(static_cast<size_t>(kind().channels))) {}

private:
    const ToneEditorKind& kind() const { return editor_.kind(); }

    void opened() override {
        placeOf(kind()).apply(window());
        makeGraphSquare(window());
        attachGraph(window(), IDC_GRAPH, *this);
        ::SendMessageW(item(IDC_TITLE), EM_SETLIMITTEXT, KOLINK_NAME_SIZE - 1, 0);
        for (const ChannelControls& channel : channels_)
            ::SendMessageW(item(channel.percent), EM_SETLIMITTEXT, 10, 0);
        for (const SettingControl& setting : kSettings)
            if (item(setting.control)) ::SendMessageW(item(setting.control), EM_SETLIMITTEXT, 10, 0);
        if (item(IDC_ALL_INKS)) ::CheckDlgButton(window(), IDC_ALL_INKS, BST_CHECKED);
        showAll();
    }

    void closing() override { placeOf(kind()).remember(window()); }

    bool command(int control, int notification) override {
        if (notification == EN_KILLFOCUS) return leave(control);
        if (notification != BN_CLICKED) return false;
        // A default or an access key presses a button while a field still has the focus.
        if (const HWND focus = ::GetFocus(); ::GetParent(focus) == window())
            leave(::GetDlgCtrlID(focus));
        return press(control);
    }

    bool press(int button) {
        WindowHost host(window());
        switch (button) {
            case IDOK: end(1); return true;
            case IDCANCEL: end(0); return true;
            case IDC_RESET: editor_.reset(); break;
            case IDC_NEW: editor_.startNew(host); break;
            case IDC_SAVE: editor_.save(host); break;
            case IDC_SAVE_AS: editor_.saveAs(host); break;
            case IDC_CONTRAST: editor_.setContrast(isChecked(window(), IDC_CONTRAST)); break;
            case IDC_ALL_INKS: editor_.select(kind().allChannels); break;
            default:
                for (size_t at = 0; at < channels_.size(); ++at)
                    if (channels_[at].button == button) editor_.select(1u << at);
                break;
        }
        showAll();
        return true;
    }

    bool leave(int field) {
        if (field == IDC_TITLE) editor_.leaveTitle(shiftJisText(textOf(window(), field)));
        for (const SettingControl& setting : kSettings)
            if (setting.control == field) editor_.leaveSetting(setting.field, asciiOf(window(), field));
        for (size_t at = 0; at < channels_.size(); ++at)
            if (channels_[at].percent == field)
                editor_.leaveField(static_cast<int32_t>(at), asciiOf(window(), field));
        showAll();
        return true;
    }

    void showAll() {
        ::SetWindowTextW(window(), filled(kind().caption, widePath(editor_.path())).c_str());
        setText(window(), IDC_TITLE, editor_.title());
        for (const SettingControl& setting : kSettings)
            if (item(setting.control)) setText(window(), setting.control, editor_.settingText(setting.field));
        showCurves();
    }

    void showCurves() {
        for (size_t at = 0; at < channels_.size(); ++at) {
            setText(window(), channels_[at].percent, editor_.fieldText(static_cast<int32_t>(at)));
            setText(window(), channels_[at].input, editor_.inputText());
        }
        ::InvalidateRect(item(IDC_GRAPH), nullptr, FALSE);
    }
    void showCurvesIf(bool changed) {
        if (changed) showCurves();
    }

    bool drawItem(const DRAWITEMSTRUCT& drawing) override {
        if (drawing.CtlID != IDC_STRIP_INPUT && drawing.CtlID != IDC_STRIP_OUTPUT) return false;
        const bool output = drawing.CtlID == IDC_STRIP_OUTPUT;
        const Canvas canvas(drawing.hDC, drawing.rcItem);
        paintStrip(canvas.dc(), {0, 0, canvas.size().width, canvas.size().height},
                   output ? StripDirection::upward : StripDirection::rightward, RGB(255, 255, 255),
                   RGB(0, 0, 0));
        return true;
    }

    GraphPicture graphPicture(HWND, Size size) override {
        GraphPicture picture;
        picture.selectedX = editor_.pointAt(size, 0, editor_.selectedIndex()).x;
        // Channels that are not selected lie below the ones that are.
        for (const bool selected : {false, true})
            for (int32_t channel = 0; channel < kind().channels; ++channel)
                if (editor_.isSelected(channel) == selected)
                    picture.curves.push_back(editor_.curveOf(
                        size, channel, channels_[static_cast<size_t>(channel)].colour));
        return picture;
    }
    void graphPressed(HWND, Size size, Point at) override { showCurvesIf(editor_.press(size, at)); }
    void graphMoved(HWND, Size size, Point at) override { showCurvesIf(editor_.move(size, at)); }
    void graphReleased(HWND) override { editor_.release(); }
    void graphPressedRight(HWND, Size size, Point at) override {
        showCurvesIf(editor_.pressRight(size, at));
    }
    bool graphKey(HWND, WPARAM key) override {
        switch (key) {
            case VK_LEFT: showCurvesIf(editor_.stepIndex(-1)); return true;
            case VK_RIGHT: showCurvesIf(editor_.stepIndex(1)); return true;
            case VK_UP: showCurvesIf(editor_.stepLevel(1)); return true;
            case VK_DOWN: showCurvesIf(editor_.stepLevel(-1)); return true;
            case VK_DELETE: showCurvesIf(editor_.unmark()); return true;
            default: return false;
        }
    }

    ToneEditor& editor_;
    std::span<const ChannelControls> channels_;
};

const wchar_t* templateOf(const ToneEditorKind& kind) {
    return kind.channels == 1 ? L"BKCCURVEDLG" : kind.channels == 4 ? L"TONEDLG" : L"DCCDLG";
}

}  // namespace

int32_t editFile(HWND owner, const ToneEditorKind& kind, char* path) {
    if (!path) return 0;
    const OwnedCurve curve = createToneCurve(kind.channels);
    if (!curve) return 0;
    DccSettings settings{};
    settings.curves = curve.get();
    const bool dcc = kind.channels == 6;
    if (!fileNameOf(path).empty() && !kind.load(*curve, &settings, path)) {
        showMessage(owner, wideText(texts::kProfileErrorCaption),
                    filled(dcc ? texts::kDccFileMissing : texts::kToneFileMissing, widePath(path)),
                    MB_OK | MB_ICONEXCLAMATION);
        return 0;
    }
    if (!copyPath(curve->path, path)) return 0;
    registerGraphClass();
    ToneEditor editor(kind, *curve, dcc ? &settings : nullptr);
    const INT_PTR result = ToneDialog(editor).run(owner, templateOf(kind));
    (void)copyPath(std::span(path, KOLINK_PATH_SIZE), curve->path);
    return result == 1;
}

}  // namespace ko::tone
