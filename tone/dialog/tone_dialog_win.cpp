// The view of the three tone dialogs: turns messages into commands of the model and shows what it
// says. Which controls a dialog has stands in a table.
#include <array>
#include <span>

#include "frame/dialog/win32.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"
#include "tone/dialog/curve_controls.h"
#include "tone/dialog/tone_dialog.h"
#include "tone/dialog/tone_editor.h"

namespace ko::tone {
namespace {

using namespace dialog;

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

std::span<const ChannelControls> controlsOf(const ToneEditorKind& kind) {
    const auto all = channelControls();
    return kind.channels == 1 ? all.subspan(3, 1) : all.first(static_cast<size_t>(kind.channels));
}

class ToneDialog final : public ModalDialog {
public:
    explicit ToneDialog(ToneEditor& editor)
        : editor_(editor), curves_(editor, controlsOf(editor.kind()), FieldRule::whenLeft) {}

private:
    const ToneEditorKind& kind() const { return editor_.kind(); }

    void opened() override {
        placeOf(kind()).apply(window());
        ::SendMessageW(item(IDC_TITLE), EM_SETLIMITTEXT, KOLINK_NAME_SIZE - 1, 0);
        curves_.attach(*this);
        for (const SettingControl& setting : kSettings)
            if (item(setting.control)) ::SendMessageW(item(setting.control), EM_SETLIMITTEXT, 10, 0);
        showAll();
    }

    void closing() override { placeOf(kind()).remember(window()); }

    bool command(int control, int notification) override {
        if (notification == EN_KILLFOCUS) return leave(control);
        if (notification != BN_CLICKED) return false;
        leaveFocusedField();
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
            default: return curves_.press(button);
        }
        showAll();
        return true;
    }

    bool leave(int field) {
        if (field == IDC_TITLE) editor_.leaveTitle(shiftJisText(textOf(window(), field)));
        for (const SettingControl& setting : kSettings)
            if (setting.control == field) editor_.leaveSetting(setting.field, asciiOf(window(), field));
        (void)curves_.leave(field);
        showAll();
        return true;
    }

    void showAll() {
        ::SetWindowTextW(window(), filled(kind().caption, widePath(editor_.path())).c_str());
        setText(window(), IDC_TITLE, editor_.title());
        for (const SettingControl& setting : kSettings)
            if (item(setting.control)) setText(window(), setting.control, editor_.settingText(setting.field));
        curves_.show();
    }

    bool drawItem(const DRAWITEMSTRUCT& drawing) override { return curves_.draw(drawing); }

    ToneEditor& editor_;
    CurveControls curves_;
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
