// The view of the three tone dialogs: turns messages into commands of the model and shows what it
// says. Which controls a dialog has stands in a table.
#include <array>
#include <span>

#include "frame/dialog/editor_win.h"
#include "frame/dialog/text_win.h"
#include "frame/path.h"
#include "frame/text.h"
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

class ToneDialog final : public EditorDialog {
public:
    explicit ToneDialog(ToneEditor& editor)
        : EditorDialog(editor), editor_(editor),
          curves_(editor, controlsOf(editor.kind()), FieldRule::whenLeft) {}

private:
    const ToneEditorKind& kind() const { return editor_.kind(); }

    void opened() override {
        placeOf(kind()).apply(window());
        ::SendMessageW(item(IDC_TITLE), EM_SETLIMITTEXT, KOLINK_NAME_SIZE - 1, 0);
        curves_.attach(*this);
        add({
            {.id = IDC_TITLE,
             .show = [this] { setText(window(), IDC_TITLE, editor_.title()); },
             .leave = [this] { editor_.leaveTitle(shiftJisText(textOf(window(), IDC_TITLE))); }},
            {.id = IDC_RESET, .press = [this] { editor_.reset(); }},
            {.id = IDC_NEW, .press = [this] { editor_.startNew(host()); }},
        });
        addFileButtons();
        acceptDroppedFiles();
        for (const SettingControl& setting : kSettings)
            if (item(setting.control)) addSetting(setting);
        add(curves_.controls());
    }

    void addSetting(const SettingControl& setting) {
        ::SendMessageW(item(setting.control), EM_SETLIMITTEXT, 10, 0);
        add({{.id = setting.control,
              .show =
                  [=, this] {
                      setText(window(), setting.control, editor_.settingText(setting.field));
                  },
              .leave =
                  [=, this] {
                      editor_.leaveSetting(setting.field, numberOf(window(), setting.control));
                  }}});
    }

    void shown() override {
        setCaption(filled(wideTranslated(kind().caption), {widePath(editor_.path())}));
    }

    std::optional<Problem> openFile(const std::string& path) override {
        return editor_.open(path, host());
    }

    void closing() override { placeOf(kind()).remember(window()); }
    bool drawItem(const DRAWITEMSTRUCT& drawing) override { return CurveControls::draw(drawing); }

    ToneEditor& editor_;
    CurveControls curves_;
};

const wchar_t* templateOf(const ToneEditorKind& kind) {
    return kind.channels == 1 ? L"BKCCURVEDLG" : kind.channels == 4 ? L"TONEDLG" : L"DCCDLG";
}

}  // namespace

bool editFile(HWND owner, const ToneEditorKind& kind, char* path) {
    if (!path) return false;
    const OwnedCurve curve = createToneCurve(kind.channels);
    if (!curve) return false;
    DccSettings settings{};
    settings.curves = curve.get();
    const bool dcc = kind.channels == 6;
    if (!fileNameOf(path).empty()) {
        const auto problem = whyNoCurveFile(kind.channels, path);
        if (problem || !kind.load(*curve, &settings, path)) {
            const bool missing = !problem || *problem == Problem{texts::kFileMissing} ||
                                 *problem == Problem{texts::kFolderMissing};
            showMessage(owner, wideTranslated(texts::kProfileErrorCaption),
                        missing ? filled(wideTranslated(dcc ? texts::kDccFileMissing
                                                            : texts::kToneFileMissing),
                                         {widePath(path)})
                                : wideProblem(widePath(path), *problem),
                        MB_OK | MB_ICONEXCLAMATION);
            return false;
        }
    }
    if (!copyPath(curve->path, path)) return false;
    registerSurfaceClass();
    ToneEditor editor(kind, *curve, dcc ? &settings : nullptr);
    const INT_PTR result = ToneDialog(editor).run(owner, templateOf(kind));
    (void)copyPath(std::span(path, KOLINK_PATH_SIZE), curve->path);
    return result == 1;
}

}  // namespace ko::tone
