#include "frame/dialog/dialog_win.h"

#include <algorithm>
#include <utility>

#include "frame/boundary.h"
#include "frame/dialog/template.h"

namespace ko::dialog {
namespace {

constexpr wchar_t kModal[] = L"KoLinkModalDialog";

// A state that holds while something runs, however that ends.
class During {
public:
    explicit During(bool& flag) noexcept : flag_(flag), before_(std::exchange(flag, true)) {}
    ~During() { flag_ = before_; }
    During(const During&) = delete;
    During& operator=(const During&) = delete;

private:
    bool& flag_;
    bool before_;
};

}  // namespace

INT_PTR CALLBACK Dialog::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    // An exception must not pass through the system's frames: a dialog that cannot open ends, a
    // message that cannot be handled is left alone.
    if (message == WM_INITDIALOG) {
        auto* const dialog = reinterpret_cast<Dialog*>(lParam);
        dialog->attach(window);
        ::SetWindowLongPtrW(window, DWLP_USER, lParam);
        translateTexts(window);
        centreFields(window);
        return dialog->started(atBoundary(false, [&] {
            dialog->opened();
            dialog->show();
            return true;
        }));
    }
    auto* const dialog = reinterpret_cast<Dialog*>(::GetWindowLongPtrW(window, DWLP_USER));
    if (!dialog) return FALSE;
    if (message == WM_NCDESTROY) {
        ::RemovePropW(window, kModal);
        ::SetWindowLongPtrW(window, DWLP_USER, 0);
        dialog->attach(nullptr);
        return FALSE;
    }
    return atBoundary<INT_PTR>(FALSE, [&] { return dialog->receive(message, wParam, lParam); });
}

INT_PTR Dialog::receive(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND: {
            // The outermost dialog is told of a default button that stands on a page.
            const HWND parent = ::GetParent(reinterpret_cast<HWND>(lParam));
            if (parent && parent != window_ && ::IsChild(window_, parent))
                return ::SendMessageW(parent, message, wParam, lParam);
            return command(LOWORD(wParam), HIWORD(wParam));
        }
        case WM_NOTIFY: return notified(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_DRAWITEM: {
            const auto* const drawing = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
            return drawing && drawItem(*drawing);
        }
        default: return this->message(message, wParam, lParam);
    }
}

const Control* Dialog::find(int id) const noexcept {
    const auto found = std::find_if(controls_.begin(), controls_.end(),
                                    [&](const Control& control) { return control.id == id; });
    return found == controls_.end() ? nullptr : &*found;
}

bool Dialog::command(int id, int notification) {
    const Control* const control = ended_ ? nullptr : find(id);
    if (!control) return false;
    if (control->order) return control->order(), true;
    switch (notification) {
        case EN_KILLFOCUS:
            if (!control->leave) return false;
            control->leave();
            break;
        case EN_CHANGE: {
            if (!control->type || showing_) return false;
            control->type();
            const int before = std::exchange(typing_, id);
            show();
            typing_ = before;
            return true;
        }
        case BN_CLICKED:
        case BN_DOUBLECLICKED:
        case CBN_SELCHANGE: return press(*control);
        default: return false;
    }
    show();
    return true;
}

// One thing at a time: what a press opens runs a message loop, in which other commands of the
// dialog can arrive.
bool Dialog::press(const Control& control) {
    if (!control.press || busy_) return false;
    const During pressing(busy_);
    leaveFocusedField();
    control.press();
    show();
    return true;
}

bool Dialog::notified(const NMHDR& note) {
    const Control* const control = find(static_cast<int>(note.idFrom));
    if (!control) return false;
    if (note.code == static_cast<UINT>(TCN_SELCHANGE)) return press(*control);
    if (note.code != static_cast<UINT>(UDN_DELTAPOS) || !control->step) return false;
    control->step(reinterpret_cast<const NMUPDOWN&>(note).iDelta);
    show();
    ::SetWindowLongPtrW(window_, DWLP_MSGRESULT, TRUE);  // the position is set already
    return true;
}

void Dialog::show() {
    if (!window_ || ended_) return;
    const During showing(showing_);
    for (const Control& control : controls_)
        if (control.show && control.id != typing_) control.show();
    shown();
}

void Dialog::leaveFocusedField() noexcept {
    const HWND focus = ::GetFocus();
    if (!window_ || !::IsChild(window_, focus)) return;
    ::SendMessageW(::GetParent(focus), WM_COMMAND,
                   MAKEWPARAM(::GetDlgCtrlID(focus), EN_KILLFOCUS),
                   reinterpret_cast<LPARAM>(focus));
}

void Dialog::end(INT_PTR result) {
    closing();
    ended_ = true;
    ::EndDialog(window_, result);
}

INT_PTR ModalDialog::run(HWND owner, const wchar_t* templateName) {
    const Template shown(templateName);
    const HHOOK hook =
        ::SetWindowsHookExW(WH_MSGFILTER, filter, nullptr, ::GetCurrentThreadId());
    const INT_PTR result =
        ::DialogBoxIndirectParamW(module(), shown.get(), owner, procedure,
                                  reinterpret_cast<LPARAM>(static_cast<Dialog*>(this)));
    ::UnhookWindowsHookEx(hook);
    return result;
}

// Looks at a message before the dialog does. The dialog is the one that the key goes to, whichever
// others are open.
LRESULT CALLBACK ModalDialog::filter(int code, WPARAM wParam, LPARAM lParam) {
    const auto* const message = reinterpret_cast<const MSG*>(lParam);
    if (code == MSGF_DIALOGBOX && message->message == WM_KEYDOWN) {
        const HWND root = ::GetAncestor(message->hwnd, GA_ROOT);
        auto* const dialog = static_cast<ModalDialog*>(::GetPropW(root, kModal));
        if (dialog && atBoundary(false, [&] { return dialog->shortcut(*message); })) return 1;
    }
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

bool ModalDialog::shortcut(const MSG& key) {
    if (key.wParam != VK_RETURN || return_ == Return::pressesDefault || !isIdle()) return false;
    const auto code = ::SendMessageW(key.hwnd, WM_GETDLGCODE, key.wParam,
                                     reinterpret_cast<LPARAM>(&key));
    constexpr LRESULT kOwn = DLGC_WANTALLKEYS | DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON;
    if ((code & kOwn) || ::SendMessageW(key.hwnd, CB_GETDROPPEDSTATE, 0, 0)) return false;
    leaveFocusedField();
    ::SendMessageW(key.hwnd, EM_SETSEL, 0, -1);
    return true;
}

INT_PTR ModalDialog::started(bool complete) noexcept {
    ::SetPropW(window(), kModal, static_cast<HANDLE>(this));
    if (!complete) ::EndDialog(window(), -1);
    return TRUE;
}

bool ChildDialog::create(HWND parent, const wchar_t* templateName) {
    destroy();
    const Template shown(templateName);
    ::CreateDialogIndirectParamW(module(), shown.get(), parent, procedure,
                                 reinterpret_cast<LPARAM>(static_cast<Dialog*>(this)));
    if (window() && !complete_) destroy();
    return window() != nullptr;
}

INT_PTR ChildDialog::started(bool complete) noexcept {
    complete_ = complete;
    return FALSE;  // the focus stays where the parent puts it
}

void ChildDialog::place(const RECT& area, HWND before) noexcept {
    ::SetWindowPos(window(), before, area.left, area.top, area.right - area.left,
                   area.bottom - area.top, SWP_NOACTIVATE);
}

void ChildDialog::setVisible(bool on) noexcept { ::ShowWindow(window(), on ? SW_SHOWNA : SW_HIDE); }

void ChildDialog::destroy() noexcept {
    const HWND going = window();
    if (!going) return;
    attach(nullptr);
    // What the controls still tell on their way out no longer finds the page.
    ::SetWindowLongPtrW(going, DWLP_USER, 0);
    ::DestroyWindow(going);
}

void RememberedPlace::remember(HWND window) noexcept {
    known = ::GetWindowRect(window, &rectangle) != FALSE;
}

void RememberedPlace::apply(HWND window) const noexcept {
    if (!known || !::MonitorFromRect(&rectangle, MONITOR_DEFAULTTONULL)) return;
    ::SetWindowPos(window, nullptr, rectangle.left, rectangle.top, 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace ko::dialog
