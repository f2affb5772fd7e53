#include "frame/dialog/ask_win.h"

#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "frame/dialog/text_win.h"
#include "frame/path.h"

namespace ko::dialog {
namespace {

// Of "description\0*.extension;..."; empty when the first pattern has another form.
std::wstring firstExtension(std::wstring_view patterns) {
    patterns.remove_prefix(std::min(patterns.find(L'\0'), patterns.size() - 1) + 1);
    if (!patterns.starts_with(L"*.")) return {};
    const size_t end = patterns.find_first_of(std::wstring_view(L";\0", 2));
    return std::wstring(patterns.substr(2, end - 2));
}

}  // namespace

int showMessage(HWND owner, std::wstring_view caption, std::wstring_view text, UINT style) {
    return ::MessageBoxW(owner, std::wstring(text).c_str(), std::wstring(caption).c_str(), style);
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
    ask.nFilterIndex = 1;
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

std::optional<std::string> WindowHost::chooseSavePath(std::string_view initial,
                                                      std::string_view filter) {
    const auto chosen =
        chooseFile(dialog_.window(), FileChoice::save, initial, wideTranslated(filter));
    auto path = chosen ? systemPath(*chosen) : std::nullopt;
    if (path && path->size() >= MAX_PATH) return std::nullopt;  // were it cut, another file
    return path;
}

}  // namespace ko::dialog
