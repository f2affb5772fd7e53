// The view of the calibration editor: turns messages into commands of the model and shows what it
// says, in the language of the user.
#include "calib/dialog/calib_dialog.h"
#include "calib/dialog/calib_editor.h"
#include "frame/dialog/win32.h"
#include "frame/state.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::calib {
namespace {

using namespace dialog;

RememberedPlace place;

class CalibDialog final : public ModalDialog, public GraphEvents {
public:
    explicit CalibDialog(CalibEditor& editor) : editor_(editor) {}

private:
    void opened() override {
        place.apply(window());
        makeGraphSquare(window());
        attachGraph(window(), IDC_GRAPH, *this);
        ::SendMessageW(item(IDC_TITLE), EM_SETLIMITTEXT, KOLINK_CALIB_TEXT_SIZE - 1, 0);
        for (const int field : {IDC_VALUE_X, IDC_VALUE_Y})
            ::SendMessageW(item(field), EM_SETLIMITTEXT, CalibEditor::kFieldLength, 0);
        fillChannels();
        showAll();
    }

    void fillChannels() {
        addChannel(wideTranslated(texts::kAllChannels));
        for (int32_t channel = 0; channel < editor_.channelCount(); ++channel)
            addChannel(wideRecordText(editor_.channelName(channel)));
        ::SendMessageW(item(IDC_CHANNEL), CB_SETCURSEL, 0, 0);
    }
    void addChannel(const std::wstring& name) {
        ::SendMessageW(item(IDC_CHANNEL), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    }

    void closing() override { place.remember(window()); }

    bool command(int control, int notification) override {
        if (notification == EN_KILLFOCUS) return leave(control);
        if (control == IDC_CHANNEL && notification == CBN_SELCHANGE) return chooseChannel();
        if (notification != BN_CLICKED) return false;
        leaveFocusedField();
        return press(control);
    }

    bool press(int button) {
        TranslatingHost host(window());
        switch (button) {
            case IDOK: end(1); return true;
            case IDCANCEL: end(0); return true;
            case IDC_RESET: editor_.initialise(); break;
            case IDC_NEW: editor_.startNew(host); break;
            case IDC_SAVE: editor_.save(host); break;
            case IDC_SAVE_AS: editor_.saveAs(host); break;
            case IDC_RELATIVE: editor_.setRelative(isChecked(window(), IDC_RELATIVE)); break;
            case IDC_ADD: editor_.add(); break;
            default: return false;
        }
        showAll();
        return true;
    }

    bool leave(int field) {
        switch (field) {
            case IDC_TITLE: leaveTitle(textOf(window(), field)); break;
            case IDC_VALUE_X: editor_.leaveX(asciiOf(window(), field)); break;
            case IDC_VALUE_Y: editor_.leaveY(asciiOf(window(), field)); break;
            default: return false;
        }
        showAll();
        return true;
    }
    void leaveTitle(const std::wstring& title) {
        // One that was not touched keeps its bytes, whatever they are.
        if (title == wideRecordText(editor_.title())) return;
        const RecordText record = recordText(title);
        editor_.leaveTitle(record.text, record.encoding);
    }

    bool chooseChannel() {
        const auto entry = ::SendMessageW(item(IDC_CHANNEL), CB_GETCURSEL, 0, 0);
        if (entry < 0) return true;
        editor_.selectChannel(static_cast<int32_t>(entry) - 1);
        for (const int strip : {IDC_STRIP_OUTPUT, IDC_STRIP_INPUT})
            ::InvalidateRect(item(strip), nullptr, FALSE);
        showCurves();
        return true;
    }

    void showAll() {
        const bool english = processState().languageTable &&
                             processState().languageTable->destinationLanguage() == "english";
        ::SetWindowTextW(window(), filled(wideTranslated(texts::kCalibCaption),
                                          {wideRecordText(editor_.description()),
                                           widePath(editor_.fileName())}).c_str());
        setText(window(), IDC_TITLE, wideRecordText(editor_.title()));
        showInfo(IDC_DATE, wideText(editor_.dateText(english)));
        showInfo(IDC_USE, wideRecordText(editor_.description()));
        showInfo(IDC_CHANNEL_COUNT, filled(wideTranslated(texts::kChannelCount),
                                           {std::to_wstring(editor_.channelCount())}));
        showCurves();
    }
    void showInfo(int label, const std::wstring& text) {
        setText(window(), label, text.empty() ? std::wstring(L"-") : text);
    }

    void showCurves() {
        setText(window(), IDC_VALUE_X, editor_.xText());
        setText(window(), IDC_VALUE_Y, editor_.yText());
        ::InvalidateRect(item(IDC_GRAPH), nullptr, FALSE);
    }
    void showCurvesIf(bool changed) {
        if (changed) showCurves();
    }

    bool drawItem(const DRAWITEMSTRUCT& drawing) override {
        if (drawing.CtlID != IDC_STRIP_INPUT && drawing.CtlID != IDC_STRIP_OUTPUT) return false;
        const bool output = drawing.CtlID == IDC_STRIP_OUTPUT;
        const int32_t channel = editor_.selectedChannel();
        const bool one = channel >= 0 && channel < editor_.channelCount();
        const Canvas canvas(drawing.hDC, drawing.rcItem);
        paintStrip(canvas.dc(), {0, 0, canvas.size().width, canvas.size().height},
                   output ? StripDirection::upward : StripDirection::rightward, RGB(255, 255, 255),
                   one ? editor_.colour(channel) : RGB(0, 0, 0));
        return true;
    }

    GraphPicture graphPicture(HWND, Size size) override { return editor_.picture(size); }
    void graphPressed(HWND, Size size, Point at) override { showCurvesIf(editor_.press(size, at)); }
    void graphMoved(HWND, Size size, Point at) override { showCurvesIf(editor_.move(size, at)); }
    void graphReleased(HWND) override { editor_.release(); }
    void graphPressedRight(HWND, Size size, Point at) override {
        showCurvesIf(editor_.pressRight(size, at));
    }
    bool graphKey(HWND, WPARAM key) override {
        switch (key) {
            case VK_LEFT: showCurvesIf(editor_.stepTone(-1)); return true;
            case VK_RIGHT: showCurvesIf(editor_.stepTone(1)); return true;
            case VK_UP: showCurvesIf(editor_.stepValue(1)); return true;
            case VK_DOWN: showCurvesIf(editor_.stepValue(-1)); return true;
            case VK_DELETE: showCurvesIf(editor_.removeTone()); return true;
            default: return false;
        }
    }

    CalibEditor& editor_;
};

}  // namespace

int32_t editCurve(HWND owner, CalibCurveSet& set) {
    registerGraphClass();
    CalibEditor editor(set);
    return CalibDialog(editor).run(owner, wideTranslated(texts::kCalibTemplate).c_str()) == 1;
}

}  // namespace ko::calib
