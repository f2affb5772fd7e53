// Texts for the wide calls, whatever the system's code page. Texts of records and of the sources
// are Shift-JIS, paths are in the system's code page.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

#include "frame/encoding.h"


namespace ko::dialog {

std::wstring wideText(std::string_view shiftJis);
std::wstring widePath(std::string_view path);
std::string shiftJisText(std::wstring_view wide);  // what cannot be written becomes '?'
std::optional<std::string> systemPath(std::wstring_view wide);  // nothing when it cannot be named
// A Shift-JIS pattern with one %s, filled with a wide text.
std::wstring filled(std::string_view pattern, std::wstring_view text);

// The same for dialogs in the user's language. A text of a record may be in the user's encoding
// or in Japanese; RecordText is written so that it reads back as it was typed.
std::wstring wideText(std::string_view text, Encoding encoding);
std::wstring wideTranslated(std::string_view japanese);
std::wstring wideRecordText(std::string_view text);
std::wstring wideTranslatedRecord(std::string_view text);  // one of ours, or else a record's
struct RecordText {
    std::string text;
    Encoding encoding;
};
RecordText recordText(std::wstring_view wide);
// A pattern with one %s or %d for each of the texts, in their order.
std::wstring filled(std::wstring_view pattern, std::initializer_list<std::wstring_view> texts);

}  // namespace ko::dialog
