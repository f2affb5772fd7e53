// The view of the calibration editor: turns messages into commands of the model and shows what it
// says, in the language of the user.
#include "calib/dialog/calib_dialog.h"
#include "calib/dialog/calib_editor.h"
#include "frame/dialog/editor_win.h"
#include "frame/dialog/graph_win.h"
#include "frame/dialog/surface_win.h"
#include "frame/dialog/text_win.h"
#include "frame/state.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::calib {
namespace {

using namespace dialog;

constexpr int32_t kBigStep = 10;  // Page Up and Down move by this many steps
RememberedPlace place;

class CalibDialog final : public EditorDialog, public SurfaceEvents {
public:
    explicit CalibDialog(CalibEditor& editor)
        : EditorDialog(editor, Return::pressesDefault), editor_(editor) {}

private:
    void opened() override {
        editor_.setResolution(resolutionOf(window()));
        place.apply(window());
        makeGraphSquare(window());
        attachSurface(window(), IDC_GRAPH, *this);
        ::SendMessageW(item(IDC_TITLE), EM_SETLIMITTEXT, KOLINK_CALIB_TEXT_SIZE - 1, 0);
        for (const int field : {IDC_VALUE_X, IDC_VALUE_Y})
            ::SendMessageW(item(field), EM_SETLIMITTEXT, CalibEditor::kFieldLength, 0);
        fillChannels();
        addControls();
    }

    void addControls() {
        add({
            {.id = IDC_TITLE,
             .show = [this] { setText(window(), IDC_TITLE, wideRecordText(editor_.title())); },
             .leave = [this] { leaveTitle(textOf(window(), IDC_TITLE)); }},
            {.id = IDC_VALUE_X,
             .show = [this] { setText(window(), IDC_VALUE_X, wideText(editor_.xText())); },
             .leave = [this] { editor_.leaveX(numberOf(window(), IDC_VALUE_X)); }},
            {.id = IDC_VALUE_Y,
             .show = [this] { setText(window(), IDC_VALUE_Y, wideText(editor_.yText())); },
             .leave = [this] { editor_.leaveY(numberOf(window(), IDC_VALUE_Y)); }},
            {.id = IDC_STATUS, .show = [this] { showStatus(); }},
            {.id = IDC_CHANNEL, .press = [this] { chooseChannel(); }},
            {.id = IDC_GRAPH, .show = [this] { showGraph(); }},
            {.id = IDC_DATE, .show = [this] { showDate(); }},
            {.id = IDC_USE,
             .show = [this] { showInfo(IDC_USE, wideRecordText(editor_.description())); }},
            {.id = IDC_CHANNEL_COUNT, .show = [this] { showChannelCount(); }},
            {.id = IDC_RESET, .press = [this] { editor_.initialise(); }},
            {.id = IDC_NEW, .press = [this] { editor_.startNew(host()); }},
            {.id = IDC_RELATIVE,
             .press = [this] { editor_.setRelative(isChecked(window(), IDC_RELATIVE)); }},
            {.id = IDC_ADD, .press = [this] { editor_.add(); }},
        });
        addFileButtons();
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
    void cancel() override {
        if (editor_.mayCancel(host())) end(0);
    }

    void leaveTitle(const std::wstring& title) {
        // One that was not touched keeps its bytes, whatever they are.
        if (title == wideRecordText(editor_.title())) return;
        const RecordText record = recordText(title);
        editor_.leaveTitle(record.text, record.encoding);
    }

    void chooseChannel() {
        const auto entry = ::SendMessageW(item(IDC_CHANNEL), CB_GETCURSEL, 0, 0);
        if (entry < 0) return;
        editor_.selectChannel(static_cast<int32_t>(entry) - 1);
        for (const int strip : {IDC_STRIP_OUTPUT, IDC_STRIP_INPUT})
            ::InvalidateRect(item(strip), nullptr, FALSE);
    }

    void shown() override {
        setCaption(filled(wideTranslated(texts::kCalibCaption),
                          {wideRecordText(editor_.description()), widePath(editor_.fileName())}));
    }
    void showInfo(int label, const std::wstring& text) {
        setText(window(), label, text.empty() ? std::wstring(L"-") : text);
    }
    void showDate() {
        const bool english = processState().languageTable &&
                             processState().languageTable->destinationLanguage() == "english";
        showInfo(IDC_DATE, wideText(editor_.dateText(english)));
    }
    void showChannelCount() {
        showInfo(IDC_CHANNEL_COUNT, filled(wideTranslated(texts::kChannelCount),
                                           {std::to_wstring(editor_.channelCount())}));
    }
    // What was said about a number stands; else that a curve takes ink back as more comes in.
    void showStatus() {
        if (editor_.notice() || !editor_.falls()) return showNotice(window(), editor_.notice());
        showNotice(window(), Problem{texts::kCurveFalls});
    }
    void showGraph() { ::InvalidateRect(item(IDC_GRAPH), nullptr, FALSE); }
    void showIf(bool changed) {
        if (changed) show();
    }

    bool drawItem(const DRAWITEMSTRUCT& drawing) override {
        const int32_t channel = editor_.selectedChannel();
        const bool one = channel >= 0 && channel < editor_.channelCount();
        return paintGraphStrip(drawing, one ? editor_.colour(channel) : RGB(0, 0, 0));
    }

    void paintSurface(HWND, HDC dc, Size size, bool hasFocus) override {
        GraphPicture picture = editor_.picture(size);
        if (pointer_) picture.reading = editor_.readingAt(size, *pointer_);
        paintGraph(dc, size, picture, hasFocus);
    }
    void surfacePressed(HWND, Size size, Point at) override { showIf(editor_.press(size, at)); }
    void surfaceMoved(HWND, Size size, Point at, bool) override {
        pointer_ = at;
        if (editor_.move(size, at)) show();
        else showGraph();
    }
    void surfaceLeft(HWND) override {
        pointer_.reset();
        showGraph();
    }
    void surfaceReleased(HWND) override {
        const bool dragging = editor_.isDragging();
        editor_.release();
        showIf(dragging);
    }
    void surfacePressedRight(HWND, Size size, Point at) override {
        showIf(editor_.pressRight(size, at));
    }
    const wchar_t* surfaceCursor(HWND, Size size, Point at) override {
        return editor_.isOnTone(size, at) ? kHandCursor : kCrossCursor;
    }
    bool surfaceKey(HWND, Size, WPARAM key) override {
        switch (key) {
            case VK_LEFT: showIf(editor_.stepTone(-1)); return true;
            case VK_RIGHT: showIf(editor_.stepTone(1)); return true;
            case VK_UP: showIf(editor_.stepValue(1)); return true;
            case VK_DOWN: showIf(editor_.stepValue(-1)); return true;
            case VK_PRIOR: showIf(editor_.stepValue(kBigStep)); return true;
            case VK_NEXT: showIf(editor_.stepValue(-kBigStep)); return true;
            case VK_HOME: showIf(editor_.chooseEnd(false)); return true;
            case VK_END: showIf(editor_.chooseEnd(true)); return true;
            case VK_INSERT: showIf(editor_.add()); return true;
            case VK_DELETE: showIf(editor_.removeTone()); return true;
            default: return false;
        }
    }

    CalibEditor& editor_;
    std::optional<Point> pointer_;  // while it is over the graph
};

}  // namespace

bool editCurve(HWND owner, CalibCurveSet& set) {
    registerSurfaceClass();
    CalibEditor editor(set);
    return CalibDialog(editor).run(owner, wideTranslated(texts::kCalibTemplate).c_str()) == 1;
}

}  // namespace ko::calib
