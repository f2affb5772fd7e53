// What a dialog asks and tells beside itself: message boxes and the system's file dialog.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/dialog/dialog_win.h"
#include "frame/dialog/host.h"
#include "frame/problem.h"

namespace ko::dialog {

int showMessage(HWND owner, std::wstring_view caption, std::wstring_view text, UINT style);

// The same at the top of the owner, so that what stands below in it can be read meanwhile.
int showMessageAbove(HWND owner, std::wstring_view caption, std::wstring_view text, UINT style);

// A problem in the user's language; with the file that it is with before it.
std::wstring wideProblem(const Problem& problem);
std::wstring wideProblem(std::wstring_view path, const Problem& problem);
// In the line of the dialog that says such things.
void showNotice(HWND dialog, const std::optional<Problem>& notice);

// A path as a record holds it: nothing, with the reason, for one that the system's code page cannot
// name or that does not fit.
struct NamedPath {
    std::optional<std::string> path;
    std::optional<Problem> problem;
};
NamedPath namedPath(std::wstring_view wide);

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
    bool askReplace(std::string_view path) override;
    Unsaved askUnsaved(std::string_view caption) override;
    NotSaved tellNotSaved(std::string_view caption, std::string_view path, const Problem& why,
                          bool closing) override;
    Unsaved askTakeBack(std::string_view caption) override;

private:
    Unsaved askThree(std::string_view caption, const char* question, const char* save,
                     const char* discard);
    const Dialog& dialog_;
};

}  // namespace ko::dialog
