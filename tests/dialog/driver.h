// Drives a dialog of the library as a person would: the exported function runs on the test's own
// thread, and a second thread sends mouse and keyboard messages to the real controls.
#pragma once

#define WIN32_LEAN_AND_MEAN
#undef NOMINMAX
#define NOMINMAX
#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "resources/dialog_ids.h"
#include "tests/support/files.h"

namespace ko::test {

// One of the dialogs, as the tests need to know it.
struct ToneDialogKind {
    const char* name;
    int32_t (*edit)(HWND, char*);
    int32_t channels;
    int32_t last;                // the last grid index
    const char* extension;
    const wchar_t* caption;      // before the path
    const wchar_t* filter;       // what the file dialog calls it
    const wchar_t* missingFile;  // the message before the path
};
extern const ToneDialogKind kBkc, kTnc, kDcc;
inline const ToneDialogKind* const kToneDialogs[] = {&kBkc, &kTnc, &kDcc};

// Waits until it holds; false after some seconds.
bool eventually(const std::function<bool()>& holds);

// A window of the library's thread: a dialog, a message box or the file dialog.
class DialogWindow {
public:
    explicit DialogWindow(HWND window) : window_(window) {}
    HWND handle() const { return window_; }
    bool isOpen() const { return ::IsWindow(window_) != FALSE; }
    HWND item(int id) const { return ::GetDlgItem(window_, id); }
    std::wstring caption() const;
    std::wstring text(int id) const;
    bool isChecked(int id) const;

    void focus(int id) const;
    HWND focusedWindow() const;  // wherever in its thread
    int focused() const { return ::GetDlgCtrlID(focusedWindow()); }
    void type(int id, std::wstring_view text) const;  // in place of what the field holds
    void enter(int id, std::wstring_view text, int leaveFor = IDC_GRAPH) const;  // types and leaves
    void key(int id, WPARAM key) const;                // handled by the control itself
    void pressKey(int id, WPARAM key) const;           // queued, as from the keyboard
    void pressControlAnd(int id, BYTE key) const;      // on the keyboard itself
    void click(int id) const;                          // waits until it is handled
    void press(int id) const;  // does not wait: what it opens holds the thread
    // OK or Cancel; what no file holds is discarded when that is asked.
    void leave(int id) const;
    DialogWindow asked() const;  // the window that this one has opened
    void waitForQuiet() const;   // until no window of its own is open and all is handled

    void chooseFile(std::string_view name) const;  // this is the system's file dialog

    // The graph of a curve editor. Rows follow from the control's own size.
    POINT point(int32_t index, int32_t last, int32_t level) const;
    int32_t levelAt(int y) const;  // what a drag to that row gives
    void mouse(UINT message, POINT at, int control = IDC_GRAPH) const;
    void drag(POINT from, POINT to, int control = IDC_GRAPH) const;  // without letting go
    void drop(POINT at, int control = IDC_GRAPH) const { mouse(WM_LBUTTONUP, at, control); }

private:
    HWND window_;
};

struct Outcome {
    int32_t result;
    std::string path;  // of the caller's buffer
};

// Runs call, which opens a dialog and returns when that is closed, and drive beside it. A dialog
// that drive leaves open is cancelled.
void openDialog(const std::function<void()>& call,
                const std::function<void(const DialogWindow&)>& drive);

// The same for a function that edits a file.
Outcome openDialog(int32_t (*edit)(HWND, char*), std::string_view path,
                   const std::function<void(const DialogWindow&)>& drive, HWND owner = nullptr);

std::wstring wide(std::string_view systemText);

// A curve file as the library writes it, and its content again.
std::string freshFile(const ToneDialogKind& kind, const TempFolder& folder, std::string_view name);
struct CurveFile {
    std::string title;
    std::vector<int16_t> table;  // a channel: 256 flags, 256 values
    int32_t dpiX = 0, dpiY = 0, totalInk = 0, lightInk = 0;
    int32_t value(int32_t channel, int32_t x) const { return table[at(channel, x) + 256]; }
    bool marked(int32_t channel, int32_t x) const { return table[at(channel, x)] != 0; }

private:
    static size_t at(int32_t channel, int32_t x) { return static_cast<size_t>(channel * 512 + x); }
};
CurveFile loaded(const ToneDialogKind& kind, const std::string& path);

}  // namespace ko::test
