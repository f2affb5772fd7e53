#include "frame/dialog/control_win.h"

#include <algorithm>

#include "frame/dialog/text_win.h"
#include "frame/dialog/typed.h"
#include "frame/platform.h"
#include "frame/state.h"

namespace ko::dialog {

HINSTANCE module() noexcept { return static_cast<HINSTANCE>(platform::moduleHandle()); }

std::wstring textOf(HWND dialog, int control) {
    const HWND window = ::GetDlgItem(dialog, control);
    std::wstring text(static_cast<size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(
        ::GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

void setText(HWND dialog, int control, std::wstring_view text) {
    // A text that stays is not set again: it would flicker, and lose the caret.
    if (textOf(dialog, control) != text)
        ::SetDlgItemTextW(dialog, control, std::wstring(text).c_str());
}

void setText(HWND dialog, int control, std::string_view shiftJis) {
    setText(dialog, control, wideText(shiftJis));
}

std::string numberOf(HWND dialog, int control) {
    const std::wstring text = textOf(dialog, control);
    return typedNumber(std::wstring_view(text));
}

bool isChecked(HWND dialog, int control) noexcept {
    return ::IsDlgButtonChecked(dialog, control) == BST_CHECKED;
}

namespace {

bool isOfClass(HWND window, const wchar_t* name) noexcept {
    wchar_t found[32] = {};
    ::GetClassNameW(window, found, static_cast<int>(std::size(found)));
    return ::lstrcmpiW(found, name) == 0;
}

RECT placeIn(HWND dialog, HWND control) noexcept {
    RECT area{};
    ::GetWindowRect(control, &area);
    ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

void moveRows(HWND dialog, HWND control, int top, int height) noexcept {
    const RECT area = placeIn(dialog, control);
    ::SetWindowPos(control, nullptr, area.left, top, area.right - area.left, height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
}

void centreField(HWND dialog, HWND field, HWND spin) noexcept {
    const RECT area = placeIn(dialog, field);
    RECT client{};
    ::GetClientRect(field, &client);
    const HDC dc = ::GetDC(field);
    const auto font = reinterpret_cast<HGDIOBJ>(::SendMessageW(field, WM_GETFONT, 0, 0));
    const HGDIOBJ before = ::SelectObject(dc, font);
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(dc, &metrics);
    ::SelectObject(dc, before);
    ::ReleaseDC(field, dc);
    const int height = area.bottom - area.top, edges = height - client.bottom;
    const int less = height - (metrics.tmHeight + edges + 2);
    if (less <= 0) return;
    moveRows(dialog, field, area.top + less / 2, height - less);
    if (spin) moveRows(dialog, spin, area.top + less / 2, height - less);
}

}  // namespace

bool isFieldInUse(HWND control) noexcept {
    return isOfClass(control, L"Edit") && ::SendMessageW(control, EM_GETMODIFY, 0, 0) &&
           ::SendMessageW(control, EM_CANUNDO, 0, 0);
}

void translateTexts(HWND dialog) {
    if (!processState().languageTable) return;
    const auto translate = [](HWND window) {
        std::wstring text(static_cast<size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
        text.resize(static_cast<size_t>(
            ::GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
        // What no table translates stays: a template of the user's language has other letters.
        const std::string japanese = shiftJisText(text);
        const std::wstring shown = wideTranslated(japanese);
        if (shown != wideText(japanese)) ::SetWindowTextW(window, shown.c_str());
    };
    translate(dialog);
    for (HWND at = ::GetWindow(dialog, GW_CHILD); at; at = ::GetWindow(at, GW_HWNDNEXT))
        translate(at);
}

void centreFields(HWND dialog) noexcept {
    for (HWND at = ::GetWindow(dialog, GW_CHILD); at; at = ::GetWindow(at, GW_HWNDNEXT)) {
        const bool oneLine = isOfClass(at, L"Edit") && !(::GetWindowLongW(at, GWL_STYLE) & ES_MULTILINE);
        const HWND next = ::GetWindow(at, GW_HWNDNEXT);
        const bool hasSpin = next && isOfClass(next, L"msctls_updown32");
        if (oneLine) centreField(dialog, at, hasSpin ? next : nullptr);
    }
}

void registerTabsAndSpins() noexcept {
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_TAB_CLASSES | ICC_UPDOWN_CLASS};
    ::InitCommonControlsEx(&classes);
}

void takeTabBackground(HWND page) noexcept {
    // Controls with a theme have loaded it; without one there is nothing to do.
    using Enable = HRESULT(WINAPI*)(HWND, DWORD);
    constexpr DWORD kEnableTab = 6;
    const HMODULE themes = ::GetModuleHandleW(L"uxtheme.dll");
    if (!themes) return;
    const auto address = reinterpret_cast<void*>(::GetProcAddress(themes, "EnableThemeDialogTexture"));
    if (address) (void)reinterpret_cast<Enable>(address)(page, kEnableTab);
}

}  // namespace ko::dialog
