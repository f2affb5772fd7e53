// What every dialog's view needs of Win32: texts through the wide calls whatever the system's
// code page, drawing without flicker, the file dialog, the way a dialog is run. Views alone
// include this.
#pragma once

#define WIN32_LEAN_AND_MEAN
#undef NOMINMAX
#define NOMINMAX
#include <windows.h>

#include <commctrl.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "frame/dialog/graph_picture.h"
#include "frame/dialog/host.h"
#include "frame/text.h"

namespace ko::dialog {

// Texts of records and of the sources are Shift-JIS, paths are in the system's code page.
std::wstring wideText(std::string_view shiftJis);
std::wstring widePath(std::string_view path);
std::string shiftJisText(std::wstring_view wide);  // what cannot be written becomes '?'
std::optional<std::string> systemPath(std::wstring_view wide);  // nothing when it cannot be named
// A Shift-JIS pattern with one %s, filled with a wide text.
std::wstring filled(std::string_view pattern, std::wstring_view text);

// The same for dialogs in the user's language. A text of a record may be in the user's encoding
// or in Japanese; RecordText is written so that it reads back as it was typed.
std::wstring wideText(std::string_view text, Encoding encoding);
std::wstring wideTranslated(const char* japanese);
std::wstring wideRecordText(std::string_view text);
struct RecordText {
    std::string text;
    Encoding encoding;
};
RecordText recordText(std::wstring_view wide);
// A pattern with one %s or %d for each of the texts, in their order.
std::wstring filled(std::wstring_view pattern, std::initializer_list<std::wstring_view> texts);

HINSTANCE module() noexcept;  // the library's: templates and window classes belong to it

// Texts of a dialog's controls.
std::wstring textOf(HWND dialog, int control);
void setText(HWND dialog, int control, std::wstring_view text);
void setText(HWND dialog, int control, std::string_view shiftJis);
// A number as a person types it, of what the field holds: ASCII, the rest '?'.
std::string asciiOf(HWND dialog, int control);
bool isChecked(HWND dialog, int control) noexcept;

// A field's text stands at its top, more and more above its label the higher the resolution is:
// each field becomes as high as its text needs, in the middle of its place.
void centreFields(HWND dialog) noexcept;

// Message boxes and the file dialog on an owner.
int showMessage(HWND owner, std::wstring_view caption, std::wstring_view text, UINT style);
// mode 0 opens, 1 saves. path: a name to begin with, a folder when it ends in a separator; takes
// the chosen name. filter: "description|pattern|" pairs, in Shift-JIS or wide. -1 when nothing was
// chosen.
int jFilesOpen(HWND owner, int mode, char (&path)[MAX_PATH], std::string_view filter);
int jFilesOpen(HWND owner, int mode, char (&path)[MAX_PATH], std::wstring filter);
// The same, for a dialog that shows also a name which the system's code page does not have.
std::optional<std::wstring> chooseFile(HWND owner, int mode, std::string_view initial,
                                       std::wstring filter);

class WindowHost : public EditorHost {
public:
    explicit WindowHost(HWND owner) noexcept : owner_(owner) {}
    bool ask(std::string_view caption, std::string_view question) override;
    std::optional<std::string> chooseSavePath(std::string_view initial,
                                              std::string_view filter) override;

private:
    HWND owner_;
};

// The same for dialogs in the user's language: captions are a record's text, questions and filters
// Japanese texts that the language tables translate.
class TranslatingHost : public EditorHost {
public:
    explicit TranslatingHost(HWND owner) noexcept : owner_(owner) {}
    bool ask(std::string_view caption, std::string_view question) override;
    std::optional<std::string> chooseSavePath(std::string_view initial,
                                              std::string_view filter) override;

private:
    HWND owner_;
};

// A picture built off the screen and shown at once.
class Canvas {
public:
    Canvas(HDC target, RECT area);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    HDC dc() const noexcept { return memory_; }
    Size size() const noexcept { return {area_.right - area_.left, area_.bottom - area_.top}; }

private:
    HDC target_, memory_;
    HBITMAP bitmap_;
    HGDIOBJ previous_;
    RECT area_;
};

// The drawing services. Colours are COLORREFs; lines include neither end's width.
void jLine(HDC dc, int x1, int y1, int x2, int y2, COLORREF colour, int width);
enum RectangleMode { kRectangleFill = 1, kRectangleFrame = 2, kRectangleBoth = 3 };
void jRectangle(HDC dc, int mode, int left, int top, int right, int bottom, COLORREF fill,
                COLORREF frame);
int scaled(HDC dc, int pixels) noexcept;  // pixels at 96 dpi

void paintGraph(HDC dc, Size size, const GraphPicture& picture, bool hasFocus);
enum class StripDirection { upward, rightward };  // where the scale grows
void paintStrip(HDC dc, RECT area, StripDirection direction, COLORREF from, COLORREF to);
void paintColourMark(HDC dc, Point at);  // a ring that shows on every colour

// The window class of the graphs, "KoLinkGraph" in the templates. A graph tells its dialog what
// happens on it and asks for its picture.
class GraphEvents {
public:
    virtual GraphPicture graphPicture(HWND graph, Size size) = 0;
    virtual void graphPressed(HWND graph, Size size, Point at) = 0;
    virtual void graphMoved(HWND graph, Size size, Point at) = 0;
    virtual void graphReleased(HWND graph) = 0;
    virtual void graphPressedRight(HWND graph, Size size, Point at) = 0;
    virtual bool graphKey(HWND graph, WPARAM key) = 0;  // false: not one of its keys

protected:
    ~GraphEvents() = default;
};
void registerGraphClass();  // before a dialog with a graph is opened
void attachGraph(HWND dialog, int control, GraphEvents& events);
// A template's units are as wide and as high as the font makes them; the graph is square with any,
// its longer side cut to the shorter. Its strips and the label below follow.
void makeGraphSquare(HWND dialog);

// A dialog: an object that handles its window's messages from WM_INITDIALOG on.
class Dialog {
public:
    virtual ~Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    HWND window() const noexcept { return window_; }  // null before it is made and after it is gone
    HWND item(int control) const noexcept { return ::GetDlgItem(window_, control); }

protected:
    Dialog() = default;
    virtual void opened() = 0;
    virtual bool command(int control, int notification) = 0;
    virtual bool drawItem(const DRAWITEMSTRUCT&) { return false; }
    virtual INT_PTR message(UINT, WPARAM, LPARAM) { return FALSE; }
    // A default button or an access key presses a button while a field still has the focus, here
    // or on a page: the field is told that it is left.
    void leaveFocusedField() noexcept;

private:
    friend class ModalDialog;
    friend class ChildDialog;
    virtual INT_PTR started(bool complete) noexcept = 0;  // answers WM_INITDIALOG
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    HWND window_ = nullptr;
};

class ModalDialog : public Dialog {
public:
    // -1 when the template cannot be opened.
    INT_PTR run(HWND owner, const wchar_t* templateName);

protected:
    virtual void closing() {}
    void end(INT_PTR result);

private:
    INT_PTR started(bool complete) noexcept override;
};

// A page within another dialog: a modeless child, made from a template with DS_CONTROL and
// WS_EX_CONTROLPARENT, so that tabs, arrows and access keys reach its controls while it is shown.
// Page and parent may go in any order. A page's own class ends its destructor with destroy() when
// its controls hold on to members of it, such as a graph to its events.
class ChildDialog : public Dialog {
public:
    ~ChildDialog() override { destroy(); }
    // Hidden at first. False when the template cannot be opened or the page could not fill itself.
    [[nodiscard]] bool create(HWND parent, const wchar_t* templateName);
    // In the parent's client area; its controls follow those of the sibling before it.
    void place(const RECT& area, HWND before) noexcept;
    void show(bool on) noexcept;
    void destroy() noexcept;

private:
    INT_PTR started(bool complete) noexcept override;
    bool complete_ = false;
};

// The classes of tabs and spin buttons; before a dialog that has some is opened.
void registerTabsAndSpins() noexcept;
// A page looks like a part of the tabs that it stands on, where a theme paints those.
void takeTabBackground(HWND page) noexcept;

// Where a kind of dialog was closed last; it opens there again while the library is loaded.
struct RememberedPlace {
    bool known = false;
    RECT rectangle{};
    void remember(HWND window) noexcept;
    void apply(HWND window) const noexcept;  // as far as a screen still shows it
};

}  // namespace ko::dialog
