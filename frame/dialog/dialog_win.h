// A dialog as a window: an object with a table of its controls. The frame here routes messages to
// the table; a view says what its controls show and what they do.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "frame/dialog/control_win.h"
#include "frame/dialog/windows.h"

namespace ko::dialog {

// A control, and what happens when a person uses it. What is empty does not happen.
struct Control {
    int id;
    std::function<void()> show{};        // copies the model to the control
    std::function<void()> leave{};       // a field lost the focus: takes its text
    std::function<void()> type{};        // a field's text changes under the person's hands
    std::function<void()> press{};       // a button is pressed, an entry or a tab chosen
    std::function<void(int by)> step{};  // a spin button
    std::function<void()> order{};       // the number is that of a posted command, not a control's
};

// A dialog from WM_INITDIALOG on. Whatever a person does is followed by showing all controls anew.
class Dialog {
public:
    virtual ~Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    HWND window() const noexcept { return window_; }  // null before it is made and after it is gone
    HWND item(int control) const noexcept { return ::GetDlgItem(window_, control); }
    void show();  // all controls, as the model says

protected:
    Dialog() = default;
    virtual void opened() = 0;
    virtual void shown() {}  // all controls have been shown: the rest of the window
    virtual bool drawItem(const DRAWITEMSTRUCT&) { return false; }
    virtual INT_PTR message(UINT, WPARAM, LPARAM) { return FALSE; }

    void add(std::vector<Control> controls) {
        for (Control& control : controls) controls_.push_back(std::move(control));
    }
    void end(INT_PTR result);
    void attach(HWND window) noexcept { window_ = window; }
    bool isIdle() const noexcept { return !busy_ && !ended_; }
    INT_PTR receive(UINT message, WPARAM wParam, LPARAM lParam);
    // A default button or an access key presses a button while a field still has the focus, here
    // or on a page: the field is told that it is left.
    void leaveFocusedField() noexcept;

private:
    friend class ModalDialog;
    friend class ChildDialog;
    virtual INT_PTR started(bool complete) noexcept = 0;  // answers WM_INITDIALOG
    virtual void closing() {}
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    const Control* find(int id) const noexcept;
    bool command(int id, int notification);
    bool notified(const NMHDR& note);
    bool press(const Control& control);

    HWND window_ = nullptr;
    std::vector<Control> controls_;
    int typing_ = 0;  // the field that is being typed into: its text is the person's
    bool showing_ = false, busy_ = false, ended_ = false;
};

class ModalDialog : public Dialog {
public:
    // -1 when the template cannot be opened.
    INT_PTR run(HWND owner, const wchar_t* templateName);

protected:
    // Return in a field takes the value over; in a dialog with a default button it presses that.
    enum class Return { takesField, pressesDefault };
    explicit ModalDialog(Return onReturn = Return::takesField) noexcept : return_(onReturn) {}
    // A key goes down, before the system's dialogs look at it: whether it is one of the dialog's.
    virtual bool shortcut(const MSG& key);

private:
    static LRESULT CALLBACK filter(int code, WPARAM wParam, LPARAM lParam);
    INT_PTR started(bool complete) noexcept override;

    Return return_;
};

// A page within another dialog: a modeless child, made from a template with DS_CONTROL and
// WS_EX_CONTROLPARENT, so that tabs, arrows and access keys reach its controls while it is shown.
// Page and parent may go in any order. A page's own class ends its destructor with destroy() when
// its controls hold on to members of it, such as a surface to its events.
class ChildDialog : public Dialog {
public:
    ~ChildDialog() override { destroy(); }
    // Hidden at first. False when the template cannot be opened or the page could not fill itself.
    [[nodiscard]] bool create(HWND parent, const wchar_t* templateName);
    // In the parent's client area; its controls follow those of the sibling before it.
    void place(const RECT& area, HWND before) noexcept;
    void setVisible(bool on) noexcept;
    void destroy() noexcept;

private:
    INT_PTR started(bool complete) noexcept override;
    bool complete_ = false;
};

// Where a kind of dialog was closed last; it opens there again while the library is loaded.
struct RememberedPlace {
    bool known = false;
    RECT rectangle{};
    void remember(HWND window) noexcept;
    void apply(HWND window) const noexcept;  // as far as a screen still shows it
};

}  // namespace ko::dialog
