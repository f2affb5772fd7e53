#include "frame/dialog/choice_win.h"

#include <algorithm>

#include "frame/boundary.h"
#include "frame/dialog/drawing_win.h"

namespace ko::dialog {
namespace {

constexpr int kText = 0xffff;  // as the system's message boxes have it

// The system's font of messages, for as long as the question is open.
class MessageFont {
public:
    MessageFont() {
        NONCLIENTMETRICSW metrics{};
        metrics.cbSize = sizeof metrics;
        ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
        font_ = ::CreateFontIndirectW(&metrics.lfMessageFont);
    }
    ~MessageFont() { ::DeleteObject(font_); }
    MessageFont(const MessageFont&) = delete;
    MessageFont& operator=(const MessageFont&) = delete;
    HFONT get() const noexcept { return font_; }

private:
    HFONT font_;
};

// Builds its controls itself: how large they are follows from their texts.
class Choice {
public:
    Choice(const std::wstring& caption, const std::wstring& text, const std::vector<Answer>& answers)
        : caption_(caption), text_(text), answers_(answers) {}

    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_INITDIALOG)
            return atBoundary<INT_PTR>(FALSE, [&] {
                reinterpret_cast<Choice*>(lParam)->build(window);
                return FALSE;  // the first answer has the focus
            });
        if (message != WM_COMMAND) return FALSE;
        ::EndDialog(window, LOWORD(wParam));
        return TRUE;
    }

private:
    SIZE sizeOf(HDC dc, const std::wstring& text, int width, UINT format) const {
        RECT area{0, 0, width, 0};
        ::DrawTextW(dc, text.c_str(), -1, &area, format | DT_CALCRECT);
        return {area.right, area.bottom};
    }

    HWND make(HWND window, const wchar_t* type, const std::wstring& text, DWORD style, int id,
              const RECT& area) const {
        const HWND control = ::CreateWindowExW(
            0, type, text.c_str(), WS_CHILD | WS_VISIBLE | style, area.left, area.top,
            area.right - area.left, area.bottom - area.top, window,
            reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), module(), nullptr);
        ::SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
        return control;
    }

    void build(HWND window) {
        ::SetWindowTextW(window, caption_.c_str());
        const HDC dc = ::GetDC(window);
        const HGDIOBJ before = ::SelectObject(dc, font_.get());
        const auto px = [&](int pixels) { return scaled(dc, pixels); };
        const SIZE text = sizeOf(dc, text_, px(440), DT_WORDBREAK | DT_NOPREFIX);
        LONG widest = px(72);
        for (const Answer& answer : answers_)
            widest = std::max(widest, sizeOf(dc, answer.label, 0, DT_SINGLELINE).cx + px(20));
        const LONG buttonHeight = sizeOf(dc, L"X", 0, DT_SINGLELINE).cy + px(12);
        const LONG margin = px(14), gap = px(8), icon = ::GetSystemMetrics(SM_CXICON);
        const auto count = static_cast<LONG>(answers_.size());
        const LONG buttons = count * widest + (count - 1) * gap;
        const LONG width = std::max<LONG>(2 * margin + icon + margin + text.cx, 2 * margin + buttons);
        const LONG row = margin + std::max<LONG>(icon, text.cy) + margin;
        const LONG height = row + buttonHeight + margin;
        ::SelectObject(dc, before);
        ::ReleaseDC(window, dc);

        const HWND picture = make(window, L"STATIC", L"", SS_ICON, 0,
                                  {margin, margin, margin + icon, margin + icon});
        ::SendMessageW(picture, STM_SETICON,
                       reinterpret_cast<WPARAM>(::LoadIconW(nullptr, MAKEINTRESOURCEW(32515))), 0);
        make(window, L"STATIC", text_, SS_NOPREFIX, kText,
             {margin + icon + margin, margin, width - margin, margin + text.cy});
        LONG left = (width - buttons) / 2;
        DWORD style = BS_DEFPUSHBUTTON | WS_GROUP;
        for (const Answer& answer : answers_) {
            const HWND button = make(window, L"BUTTON", answer.label, WS_TABSTOP | style, answer.id,
                                     {left, row, left + widest, row + buttonHeight});
            if (style & BS_DEFPUSHBUTTON) ::SetFocus(button);
            style = BS_PUSHBUTTON;
            left += widest + gap;
        }
        place(window, width, height);
    }

    static void place(HWND window, LONG width, LONG height) {
        RECT area{0, 0, width, height};
        ::AdjustWindowRectEx(&area, static_cast<DWORD>(::GetWindowLongW(window, GWL_STYLE)), FALSE,
                             static_cast<DWORD>(::GetWindowLongW(window, GWL_EXSTYLE)));
        width = area.right - area.left;
        height = area.bottom - area.top;
        // In the middle of its owner, on the screen.
        RECT around{};
        if (const HWND owner = ::GetWindow(window, GW_OWNER)) ::GetWindowRect(owner, &around);
        else ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &around, 0);
        ::SetWindowPos(window, nullptr,
                       std::max<LONG>(0, (around.left + around.right - width) / 2),
                       std::max<LONG>(0, (around.top + around.bottom - height) / 2), width, height,
                       SWP_NOZORDER | SWP_NOACTIVATE);
    }

    const std::wstring& caption_;
    const std::wstring& text_;
    const std::vector<Answer>& answers_;
    MessageFont font_;
};

}  // namespace

int askChoice(HWND owner, const std::wstring& caption, const std::wstring& text,
              const std::vector<Answer>& answers) {
    // A template without controls: menu, class and caption are empty texts behind it.
    alignas(4) struct {
        DLGTEMPLATE head;
        WORD menu, windowClass, title;
    } empty{{DS_MODALFRAME | WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, 100, 50}, 0, 0, 0};
    Choice choice(caption, text, answers);
    const INT_PTR answer = ::DialogBoxIndirectParamW(module(), &empty.head, owner, Choice::procedure,
                                                     reinterpret_cast<LPARAM>(&choice));
    return answer > 0 ? static_cast<int>(answer) : IDCANCEL;
}

}  // namespace ko::dialog
