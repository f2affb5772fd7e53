#include "frame/dialog/win32.h"

#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <utility>

#include "frame/boundary.h"
#include "frame/dialog/template.h"
#include "frame/platform.h"
#include "frame/state.h"
#include "frame/text.h"

namespace ko::dialog {
namespace {

constexpr UINT kShiftJis = 932, kGbk = 936;

UINT codePageOf(Encoding encoding) noexcept {
    return encoding == Encoding::gb2312 ? kGbk : kShiftJis;
}

std::wstring toWide(std::string_view text, UINT codePage) {
    if (text.empty()) return {};
    const int size = static_cast<int>(text.size());
    const int length = ::MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<size_t>(std::max(length, 0)), L'\0');
    ::MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), length);
    return wide;
}

std::string fromWide(std::wstring_view wide, UINT codePage, BOOL* lost) {
    if (wide.empty()) return {};
    // UTF-8 as the system's code page has a place for everything, and takes neither of these.
    const bool utf8 = codePage == CP_UTF8 || (codePage == CP_ACP && ::GetACP() == CP_UTF8);
    const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    BOOL* const used = utf8 ? nullptr : lost;
    const int size = static_cast<int>(wide.size());
    const int length =
        ::WideCharToMultiByte(codePage, flags, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(std::max(length, 0)), '\0');
    ::WideCharToMultiByte(codePage, flags, wide.data(), size, text.data(), length, nullptr, used);
    return text;
}

// Of "description\0*.extension;..."; empty when the first pattern has another form.
std::wstring firstExtension(std::wstring_view patterns) {
    patterns.remove_prefix(std::min(patterns.find(L'\0'), patterns.size() - 1) + 1);
    if (!patterns.starts_with(L"*.")) return {};
    const size_t end = patterns.find_first_of(std::wstring_view(L";\0", 2));
    return std::wstring(patterns.substr(2, end - 2));
}

// The short form of a name that exists; empty when there is none.
std::wstring shortForm(const std::wstring& path) {
    wchar_t brief[MAX_PATH];
    const DWORD length = ::GetShortPathNameW(path.c_str(), brief, MAX_PATH);
    return length < MAX_PATH ? std::wstring(brief, length) : std::wstring();
}

}  // namespace

std::wstring wideText(std::string_view shiftJis) { return toWide(shiftJis, kShiftJis); }
std::wstring widePath(std::string_view path) { return toWide(path, CP_ACP); }
std::string shiftJisText(std::wstring_view wide) { return fromWide(wide, kShiftJis, nullptr); }

std::optional<std::string> systemPath(std::wstring_view wide) {
    BOOL lost = FALSE;
    std::string path = fromWide(wide, CP_ACP, &lost);
    if (!lost) return path;
    // A name with characters of another code page can still be reached by its short form, a file
    // that is not there yet by its folder's.
    const std::wstring whole(wide);
    std::wstring brief = shortForm(whole);
    if (const size_t end = whole.find_last_of(L"\\/"); brief.empty() && end != whole.npos) {
        brief = shortForm(whole.substr(0, end + 1));
        if (!brief.empty()) brief.append(whole, end + 1);
    }
    if (brief.empty()) return std::nullopt;
    lost = FALSE;
    path = fromWide(brief, CP_ACP, &lost);
    if (lost) return std::nullopt;
    return path;
}

std::wstring filled(std::string_view pattern, std::wstring_view text) {
    std::wstring wide = wideText(pattern);
    if (const size_t at = wide.find(L"%s"); at != std::wstring::npos) wide.replace(at, 2, text);
    return wide;
}

std::wstring wideText(std::string_view text, Encoding encoding) {
    return toWide(text, codePageOf(encoding));
}

std::wstring wideTranslated(const char* japanese) {
    const char* const text = translated(japanese);
    return wideText(text, text == japanese ? Encoding::shiftJis : userEncoding());
}

std::wstring wideRecordText(std::string_view text) {
    const bool gb2312 = userEncoding() == Encoding::gb2312 && couldBeGb2312(text);
    return wideText(text, gb2312 ? Encoding::gb2312 : Encoding::shiftJis);
}

RecordText recordText(std::wstring_view wide) {
    for (const Encoding encoding : {userEncoding(), Encoding::shiftJis}) {
        RecordText record{fromWide(wide, codePageOf(encoding), nullptr), encoding};
        if (wideRecordText(record.text) == wide) return record;
    }
    return {fromWide(wide, codePageOf(userEncoding()), nullptr), userEncoding()};
}

std::wstring filled(std::wstring_view pattern, std::initializer_list<std::wstring_view> texts) {
    std::wstring whole;
    for (const std::wstring_view text : texts) {
        const size_t at = std::min(pattern.find(L"%s"), pattern.find(L"%d"));
        if (at == pattern.npos) break;
        whole.append(pattern.substr(0, at)).append(text);
        pattern.remove_prefix(at + 2);
    }
    return whole.append(pattern);
}

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

std::string asciiOf(HWND dialog, int control) {
    std::string text;
    for (const wchar_t character : textOf(dialog, control))
        text += character < 0x80 ? static_cast<char>(character) : '?';
    return text;
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

void centreFields(HWND dialog) noexcept {
    for (HWND at = ::GetWindow(dialog, GW_CHILD); at; at = ::GetWindow(at, GW_HWNDNEXT)) {
        const bool oneLine = isOfClass(at, L"Edit") && !(::GetWindowLongW(at, GWL_STYLE) & ES_MULTILINE);
        const HWND next = ::GetWindow(at, GW_HWNDNEXT);
        const bool hasSpin = next && isOfClass(next, L"msctls_updown32");
        if (oneLine) centreField(dialog, at, hasSpin ? next : nullptr);
    }
}

int showMessage(HWND owner, std::wstring_view caption, std::wstring_view text, UINT style) {
    return ::MessageBoxW(owner, std::wstring(text).c_str(), std::wstring(caption).c_str(), style);
}

int jFilesOpen(HWND owner, int mode, char (&path)[MAX_PATH], std::string_view filter) {
    return jFilesOpen(owner, mode, path, wideText(filter));
}

int jFilesOpen(HWND owner, int mode, char (&path)[MAX_PATH], std::wstring filter) {
    const auto file = chooseFile(owner, mode, textIn(path), std::move(filter));
    const auto chosen = file ? systemPath(*file) : std::nullopt;
    return chosen && copyPath(path, chosen->c_str()) ? 0 : -1;
}

std::optional<std::wstring> chooseFile(HWND owner, int mode, std::string_view initial,
                                       std::wstring patterns) {
    std::replace(patterns.begin(), patterns.end(), L'|', L'\0');
    patterns += L'\0';
    std::wstring folder = widePath(folderOf(initial));
    wchar_t name[1024] = {};
    widePath(fileNameOf(initial)).copy(name, std::size(name) - 1);

    OPENFILENAMEW ask{};
    ask.lStructSize = sizeof ask;
    ask.hwndOwner = owner;
    ask.lpstrFilter = patterns.c_str();
    ask.nFilterIndex = 1;
    ask.lpstrFile = name;
    ask.nMaxFile = static_cast<DWORD>(std::size(name));
    ask.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    ask.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
    ask.Flags |= mode == 1 ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST;
    const std::wstring extension = firstExtension(patterns);
    if (mode == 1) ask.lpstrDefExt = extension.c_str();  // before it asks about replacing a file
    const auto open = mode == 1 ? ::GetSaveFileNameW : ::GetOpenFileNameW;
    BOOL chosen = open(&ask);
    if (!chosen && ::CommDlgExtendedError() == FNERR_INVALIDFILENAME) {
        name[0] = L'\0';  // what the field held is no name to begin with
        ask.lpstrInitialDir = nullptr;
        chosen = open(&ask);
    }
    if (!chosen) return std::nullopt;
    return std::wstring(name);
}

bool WindowHost::ask(std::string_view caption, std::string_view question) {
    return showMessage(owner_, wideText(caption), wideText(question),
                       MB_YESNO | MB_ICONQUESTION) == IDYES;
}

namespace {
std::optional<std::string> savePath(HWND owner, std::string_view initial, std::wstring filter) {
    char path[MAX_PATH] = {};
    if (!copyPath(path, std::string(initial).c_str())) path[0] = '\0';
    if (jFilesOpen(owner, 1, path, std::move(filter)) == -1) return std::nullopt;
    return std::string(textIn(path));
}
}  // namespace

std::optional<std::string> WindowHost::chooseSavePath(std::string_view initial,
                                                      std::string_view filter) {
    return savePath(owner_, initial, wideText(filter));
}

bool TranslatingHost::ask(std::string_view caption, std::string_view question) {
    return showMessage(owner_, wideRecordText(caption),
                       wideTranslated(std::string(question).c_str()),
                       MB_YESNO | MB_ICONQUESTION) == IDYES;
}

std::optional<std::string> TranslatingHost::chooseSavePath(std::string_view initial,
                                                           std::string_view filter) {
    return savePath(owner_, initial, wideTranslated(std::string(filter).c_str()));
}

INT_PTR CALLBACK Dialog::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    // An exception must not pass through the system's frames: a dialog that cannot open ends, a
    // message that cannot be handled is left alone.
    if (message == WM_INITDIALOG) {
        auto* const dialog = reinterpret_cast<Dialog*>(lParam);
        dialog->window_ = window;
        ::SetWindowLongPtrW(window, DWLP_USER, lParam);
        centreFields(window);
        return dialog->started(atBoundary(false, [&] { return dialog->opened(), true; }));
    }
    auto* const dialog = reinterpret_cast<Dialog*>(::GetWindowLongPtrW(window, DWLP_USER));
    if (!dialog) return FALSE;
    if (message == WM_NCDESTROY) {
        ::SetWindowLongPtrW(window, DWLP_USER, 0);
        dialog->window_ = nullptr;
        return FALSE;
    }
    return atBoundary<INT_PTR>(FALSE, [&]() -> INT_PTR {
        switch (message) {
            case WM_COMMAND: {
                // The outermost dialog is told of a default button that stands on a page.
                const HWND parent = ::GetParent(reinterpret_cast<HWND>(lParam));
                if (parent && parent != window && ::IsChild(window, parent))
                    return ::SendMessageW(parent, message, wParam, lParam);
                return dialog->command(LOWORD(wParam), HIWORD(wParam));
            }
            case WM_DRAWITEM: {
                const auto* const drawing = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
                return drawing && dialog->drawItem(*drawing);
            }
            default: return dialog->message(message, wParam, lParam);
        }
    });
}

void Dialog::leaveFocusedField() noexcept {
    const HWND focus = ::GetFocus();
    if (!window_ || !::IsChild(window_, focus)) return;
    ::SendMessageW(::GetParent(focus), WM_COMMAND,
                   MAKEWPARAM(::GetDlgCtrlID(focus), EN_KILLFOCUS),
                   reinterpret_cast<LPARAM>(focus));
}

INT_PTR ModalDialog::run(HWND owner, const wchar_t* templateName) {
    const Template shown(templateName);
    return ::DialogBoxIndirectParamW(module(), shown.get(), owner, procedure,
                                     reinterpret_cast<LPARAM>(static_cast<Dialog*>(this)));
}

INT_PTR ModalDialog::started(bool complete) noexcept {
    if (!complete) ::EndDialog(window(), -1);
    return TRUE;
}

void ModalDialog::end(INT_PTR result) {
    closing();
    ::EndDialog(window(), result);
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

void ChildDialog::show(bool on) noexcept { ::ShowWindow(window(), on ? SW_SHOWNA : SW_HIDE); }

void ChildDialog::destroy() noexcept {
    const HWND going = std::exchange(window_, nullptr);
    if (!going) return;
    // What the controls still tell on their way out no longer finds the page.
    ::SetWindowLongPtrW(going, DWLP_USER, 0);
    ::DestroyWindow(going);
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

void RememberedPlace::remember(HWND window) noexcept {
    known = ::GetWindowRect(window, &rectangle) != FALSE;
}

void RememberedPlace::apply(HWND window) const noexcept {
    if (!known || !::MonitorFromRect(&rectangle, MONITOR_DEFAULTTONULL)) return;
    ::SetWindowPos(window, nullptr, rectangle.left, rectangle.top, 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace ko::dialog
