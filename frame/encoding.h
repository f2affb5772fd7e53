// The encodings of texts in records, and where their characters end.
#pragma once

#include <cstddef>
#include <string_view>

namespace ko {

// Texts of records are Shift-JIS, but where the user's language is Chinese: what the Chinese
// table gave, and what a Chinese user typed, is GB2312 (or GBK, which contains it).
enum class Encoding { shiftJis, gb2312 };

// Whether text is plain GB2312 throughout. Kana and kanji in Shift-JIS are not: their first bytes
// lie below GB2312's.
bool couldBeGb2312(std::string_view text) noexcept;

// Bytes of the first Shift-JIS character of a text that is not empty: 1 or 2.
size_t shiftJisLength(std::string_view text) noexcept;

// Length of the longest beginning of text that has at most limit bytes and ends at a whole
// character.
size_t wholeCharacters(std::string_view text, size_t limit,
                       Encoding encoding = Encoding::shiftJis) noexcept;

// The same for a text that was cut: without the half of a character that is left at its end.
size_t wholeCharacters(std::string_view text, Encoding encoding = Encoding::shiftJis) noexcept;

}  // namespace ko
