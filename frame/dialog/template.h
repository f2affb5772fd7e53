// Dialog templates as the system can show them.
#pragma once

#include <cstddef>
#include <vector>

#include "frame/dialog/windows.h"

namespace ko::dialog {

// A dialog template of the library. Its font may be missing on a system of another language, and
// what is then taken for it may have no glyphs for its script: such a template gets a font that
// has them, when there is one.
class Template {
public:
    explicit Template(const wchar_t* name);
    // Null when there is no such template.
    const DLGTEMPLATE* get() const noexcept;

private:
    std::vector<std::byte> bytes_;
};

}  // namespace ko::dialog
