#include "frame/dialog/ask_win.h"

#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "frame/dialog/choice_win.h"
#include "frame/dialog/text_win.h"
#include "frame/path.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::dialog {
namespace {

// Of "description\0*.extension;..."; empty when the first pattern has another form.
std::wstring firstExtension(std::wstring_view patterns) {
    patterns.remove_prefix(std::min(patterns.find(L'\0'), patterns.size() - 1) + 1);
    if (!patterns.starts_with(L"*.")) return {};
    const size_t end = patterns.find_first_of(std::wstring_view(L";\0", 2));
    return std::wstring(patterns.substr(2, end - 2));
}
// The same of "description|*.extension|".
std::wstring extensionOf(std::wstring patterns) {
    std::replace(patterns.begin(), patterns.end(), L'|', L'\0');
    return firstExtension(patterns);
}

// The pair of patterns, from 1 on, that a file of this name belongs to; else the first.
DWORD filterFor(const std::wstring& patterns, const std::wstring& name) {
    const size_t dot = name.rfind(L'.');
    if (dot == name.npos) return 1;
    const std::wstring wanted = L"*" + name.substr(dot);
    DWORD number = 0;
    for (size_t at = 0; at < patterns.size() && patterns[at];) {
        const size_t kinds = patterns.find(L'\0', at) + 1;
        const size_t end = patterns.find(L'\0', kinds);
        ++number;
        for (size_t from = kinds; from < end;) {
            const size_t stop = std::min(patterns.find(L';', from), end);
            if (::lstrcmpiW(patterns.substr(from, stop - from).c_str(), wanted.c_str()) == 0)
                return number;
            from = stop + 1;
        }
        at = end + 1;
    }
    return 1;
}

bool endsWith(const std::wstring& path, const std::wstring& extension) noexcept {
    return path.size() >= extension.size() &&
           ::lstrcmpiW(path.c_str() + path.size() - extension.size(), extension.c_str()) == 0;
}

}  // namespace

int showMessage(HWND owner, std::wstring_view caption, std::wstring_view text, UINT style) {
    return ::MessageBoxW(owner, std::wstring(text).c_str(), std::wstring(caption).c_str(), style);
}

namespace {
constexpr wchar_t kMessageAbove[] = L"KoLinkMessageAbove";

// A message box of an owner that has the property goes to that owner's top.
LRESULT CALLBACK placeMessage(int code, WPARAM wParam, LPARAM lParam) {
    const auto message = reinterpret_cast<HWND>(wParam);
    const HWND owner = code == HCBT_ACTIVATE ? ::GetWindow(message, GW_OWNER) : nullptr;
    if (owner && ::RemovePropW(owner, kMessageAbove)) {
        RECT area{}, own{};
        POINT top{};
        ::GetWindowRect(owner, &area);
        ::GetWindowRect(message, &own);
        ::ClientToScreen(owner, &top);
        const LONG left = area.left + (area.right - area.left - (own.right - own.left)) / 2;
        ::SetWindowPos(message, nullptr, left, top.y, 0, 0,
                       SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}
}  // namespace

int showMessageAbove(HWND owner, std::wstring_view caption, std::wstring_view text, UINT style) {
    ::SetPropW(owner, kMessageAbove, reinterpret_cast<HANDLE>(1));
    const HHOOK hook = ::SetWindowsHookExW(WH_CBT, placeMessage, nullptr, ::GetCurrentThreadId());
    const int answer = showMessage(owner, caption, text, style);
    ::UnhookWindowsHookEx(hook);
    ::RemovePropW(owner, kMessageAbove);
    return answer;
}

std::optional<std::wstring> chooseFile(HWND owner, FileChoice choice, std::string_view initial,
                                       std::wstring patterns) {
    const bool saves = choice == FileChoice::save;
    std::replace(patterns.begin(), patterns.end(), L'|', L'\0');
    patterns += L'\0';
    std::wstring folder = widePath(folderOf(initial));
    wchar_t name[1024] = {};
    widePath(fileNameOf(initial)).copy(name, std::size(name) - 1);

    OPENFILENAMEW ask{};
    ask.lStructSize = sizeof ask;
    ask.hwndOwner = owner;
    ask.lpstrFilter = patterns.c_str();
    ask.nFilterIndex = saves ? 1 : filterFor(patterns, name);
    ask.lpstrFile = name;
    ask.nMaxFile = static_cast<DWORD>(std::size(name));
    ask.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
    ask.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_PATHMUSTEXIST;
    ask.Flags |= saves ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST;
    const std::wstring extension = firstExtension(patterns);
    if (saves) ask.lpstrDefExt = extension.c_str();  // before it asks about replacing a file
    const auto open = saves ? ::GetSaveFileNameW : ::GetOpenFileNameW;
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
    return showMessage(dialog_.window(), wideTranslatedRecord(caption), wideTranslated(question),
                       MB_YESNO | MB_ICONQUESTION) == IDYES;
}

namespace {
bool exists(const std::wstring& path) noexcept {
    return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool mayReplace(HWND owner, const std::wstring& path) {
    return showMessage(owner, wideTranslated(texts::kProfileCaption),
                       filled(wideTranslated(texts::kReplaceQuestion), {path}),
                       MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
}
}  // namespace

std::wstring wideProblem(const Problem& problem) {
    std::wstring text = wideTranslated(problem.sentence);
    for (const std::string& detail : problem.details) text = filled(text, {widePath(detail)});
    return text;
}

std::wstring wideProblem(std::wstring_view path, const Problem& problem) {
    return L"[" + std::wstring(path) + L"]\n" + wideProblem(problem);
}

void showNotice(HWND dialog, const std::optional<Problem>& notice) {
    setText(dialog, IDC_STATUS, notice ? wideProblem(*notice) : std::wstring());
}

NamedPath namedPath(std::wstring_view wide) {
    auto path = systemPath(wide);
    if (!path) return {std::nullopt, Problem{texts::kPathUnnameable}};
    if (path->size() >= MAX_PATH) return {std::nullopt, Problem{texts::kPathTooLong}};
    return {std::move(path), std::nullopt};
}

std::optional<std::string> WindowHost::chooseSavePath(std::string_view initial,
                                                      std::string_view filter) {
    const std::wstring patterns = wideTranslated(filter);
    for (;;) {
        auto chosen = chooseFile(dialog_.window(), FileChoice::save, initial, patterns);
        if (!chosen) return std::nullopt;
        const std::wstring extension = L"." + extensionOf(patterns);
        if (!endsWith(*chosen, extension)) {
            *chosen += extension;
            // The file dialog has asked about the name without it.
            if (exists(*chosen) && !mayReplace(dialog_.window(), *chosen)) continue;
        }
        NamedPath named = namedPath(*chosen);
        if (named.path) return std::move(named.path);
        showMessage(dialog_.window(), wideTranslated(texts::kProfileErrorCaption),
                    wideProblem(*chosen, *named.problem), MB_OK | MB_ICONEXCLAMATION);
    }
}

bool WindowHost::askReplace(std::string_view path) {
    return mayReplace(dialog_.window(), widePath(path));
}

Unsaved WindowHost::askThree(std::string_view caption, const char* question, const char* save,
                             const char* discard) {
    switch (askChoice(dialog_.window(), wideTranslatedRecord(caption), wideTranslated(question),
                      {{IDYES, wideTranslated(save)},
                       {IDNO, wideTranslated(discard)},
                       {IDCANCEL, wideTranslated(texts::kStayButton)}})) {
        case IDYES: return Unsaved::save;
        case IDNO: return Unsaved::discard;
        default: return Unsaved::stay;
    }
}

Unsaved WindowHost::askUnsaved(std::string_view caption) {
    return askThree(caption, texts::kUnsavedQuestion, texts::kSaveButton, texts::kDiscardButton);
}

Unsaved WindowHost::askTakeBack(std::string_view caption) {
    return askThree(caption, texts::kTakeBackQuestion, texts::kKeepButton,
                    texts::kTakeBackButton);
}

NotSaved WindowHost::tellNotSaved(std::string_view caption, std::string_view path,
                                  const Problem& why, bool closing) {
    std::vector<Answer> answers = {{IDRETRY, wideTranslated(texts::kAgainButton)},
                                   {IDC_SAVE_AS, wideTranslated(texts::kSaveAsButton)}};
    if (closing) answers.push_back({IDNO, wideTranslated(texts::kDiscardButton)});
    answers.push_back({IDCANCEL, wideTranslated(texts::kStayButton)});
    const std::wstring text =
        wideTranslated(texts::kNotSaved) + L"\n\n" + wideProblem(widePath(path), why);
    switch (askChoice(dialog_.window(), wideTranslatedRecord(caption), text, answers)) {
        case IDRETRY: return NotSaved::again;
        case IDC_SAVE_AS: return NotSaved::saveAs;
        case IDNO: return NotSaved::discard;
        default: return NotSaved::stay;
    }
}

}  // namespace ko::dialog
