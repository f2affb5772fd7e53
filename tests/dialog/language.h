// The texts of the dialogs in the language of the user, by their Japanese ones.
#pragma once

#include <string>
#include <string_view>

namespace ko::test {

// What is shown for a Japanese text of the library's language tables, its %s and %d filled or, at
// its end, about to be filled; any other text is itself.
std::wstring shown(std::wstring_view japanese);
// The same of a filter, as the file dialog lists it: its descriptions, each with a line end.
std::wstring shownKinds(std::wstring_view japaneseFilter);

}  // namespace ko::test
