// Text and paths in the fixed fields of records.
#pragma once

#include <span>
#include <string_view>

#include "frame/encoding.h"

namespace ko {

// Copies text into a field: up to the first NUL, cut at a whole character, the rest of the field
// zeroed.
void copyText(std::span<char> field, std::string_view text,
              Encoding encoding = Encoding::shiftJis) noexcept;

// The text in a field of a record that may lack its terminator.
std::string_view textIn(std::span<const char> field) noexcept;

// Copies a path whole into a field; false, the field untouched and platform::lastError set, when
// path is null or too long. A path that were cut would name another file.
[[nodiscard]] bool copyPath(std::span<char> field, const char* path) noexcept;

// Corrects what was typed into a dialog's field: blanks at both ends go, and half a character that
// the field's size left at its end.
void correctTyped(std::span<char> text, Encoding encoding = Encoding::shiftJis) noexcept;
// The same for a path of any length, whose characters are those of the system's code page, into
// its field. Quotation marks around one that was copied from elsewhere go as well.
void copyTypedPath(std::span<char> field, std::string_view typed) noexcept;

}  // namespace ko
