// What an editor model asks of the person in front of it. The Win32 views answer with message
// boxes and the system's file dialog; tests answer themselves. Texts are Japanese ones of
// resources/texts.h, or a record's.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/problem.h"

namespace ko::dialog {

// What becomes of changes that no file holds when an editor is to close.
enum class Unsaved { save, discard, stay };
// What to do about a file that could not be saved.
enum class NotSaved { again, saveAs, discard, stay };

class EditorHost {
public:
    virtual ~EditorHost() = default;
    // A Yes/No question with the question icon. True for Yes.
    virtual bool ask(std::string_view caption, std::string_view question) = 0;
    // The name to save under, or nothing when the person cancels. initial is the name that the
    // file dialog starts from, filter its "description|pattern|" pairs. The name has the pattern's
    // extension and fits into a record, and the person knows of a file that it replaces.
    virtual std::optional<std::string> chooseSavePath(std::string_view initial,
                                                      std::string_view filter) = 0;
    // Whether the file of that name, which is there already, may be replaced.
    virtual bool askReplace(std::string_view path) = 0;
    virtual Unsaved askUnsaved(std::string_view caption) = 0;
    // Discarding is offered when the editor is closing.
    virtual NotSaved tellNotSaved(std::string_view caption, std::string_view path,
                                  const Problem& why, bool closing) = 0;
    // Changes that stay in the record also when the dialog is cancelled: save stands for keeping
    // them, discard for taking them back.
    virtual Unsaved askTakeBack(std::string_view caption) = 0;
};

}  // namespace ko::dialog
