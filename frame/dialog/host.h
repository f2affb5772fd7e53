// What an editor model asks of the person in front of it. The Win32 views answer with message
// boxes and the system's file dialog; tests answer themselves.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ko::dialog {

class EditorHost {
public:
    virtual ~EditorHost() = default;
    // A Yes/No question with the question icon; texts are Shift-JIS. True for Yes.
    virtual bool ask(std::string_view caption, std::string_view question) = 0;
    // The name to save under, or nothing when the person cancels. initial is the name that the
    // file dialog starts from, filter its "description|pattern|" pairs.
    virtual std::optional<std::string> chooseSavePath(std::string_view initial,
                                                      std::string_view filter) = 0;
};

}  // namespace ko::dialog
