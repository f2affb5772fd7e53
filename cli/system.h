// What differs between the systems: arguments, streams, code pages. system_posix.cpp and
// system_win.cpp implement it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ko::cli::system {

// The command line in UTF-8, the program's name left out.
std::vector<std::string> arguments(int argc, char** argv);

// Standard streams that carry bytes as they are. A stream that the caller closed stays unusable,
// so that no file opened later is taken for it.
void prepareStreams();

// A path in the form that the library takes: the system's bytes, the ANSI code page on Windows.
// Empty when that code page cannot express it.
std::optional<std::string> libraryPath(const std::string& path);
// The way back.
std::string fromLibraryPath(std::string_view bytes);

bool isTerminal(std::FILE* stream);

// Shift-JIS (code page 932), the library's text. Empty when a character has no place in it.
std::optional<std::string> toShiftJis(const std::string& utf8);
// Bytes that are no Shift-JIS become U+FFFD.
std::string fromShiftJis(std::string_view bytes);

// The system's words for an error number, without a line end.
std::string errorText(int number);

}  // namespace ko::cli::system
