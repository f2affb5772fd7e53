// What a test needs to know of the system's code page.
#pragma once

#include <string>

#include "frame/platform.h"

namespace ko::test {

inline bool onWindows() { return platform::kSeparator == '\\'; }

// Whether Shift-JIS bytes in paths are read as the characters they stand for.
inline bool onCodePage932() { return platform::characterLength("\x95\x5c") == 2; }

// Characters whose second Shift-JIS byte is a backslash: a table, "so" in katakana, ability. On
// code page 1252 the first byte is a character of its own and the second a separator.
struct Awkward {
    const char8_t* name;
    const char* shiftJis;
    const char8_t* firstOn1252;
};
constexpr Awkward kAwkward[] = {{u8"\u8868", "\x95\x5c", u8"\u2022"},
                                {u8"\u30bd", "\x83\x5c", u8"\u0192"},
                                {u8"\u80fd", "\x94\x5c", u8"\u201d"}};

// A path in the platform's own form, from one with slashes.
inline std::string native(std::string path) {
    for (char& character : path)
        if (character == '/') character = platform::kSeparator;
    return path;
}

}  // namespace ko::test
