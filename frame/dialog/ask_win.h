// What a dialog asks and tells beside itself: message boxes and the system's file dialog.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/dialog/dialog_win.h"
#include "frame/dialog/host.h"

namespace ko::dialog {

int showMessage(HWND owner, std::wstring_view caption, std::wstring_view text, UINT style);

enum class FileChoice { open, save };
// initial: a name to begin with, a folder when it ends in a separator. filter:
// "description|pattern|" pairs. Nothing when nothing was chosen. The name may be one that the
// system's code page does not have.
std::optional<std::wstring> chooseFile(HWND owner, FileChoice choice, std::string_view initial,
                                       std::wstring filter);

// The person in front of a dialog. Captions are Japanese texts or a record's, questions and filters
// Japanese texts; what the language tables translate is shown in the user's language.
class WindowHost : public EditorHost {
public:
    explicit WindowHost(const Dialog& dialog) noexcept : dialog_(dialog) {}
    bool ask(std::string_view caption, std::string_view question) override;
    std::optional<std::string> chooseSavePath(std::string_view initial,
                                              std::string_view filter) override;

private:
    const Dialog& dialog_;
};

}  // namespace ko::dialog
