// UTF-8 text on its way in and out. Inside the tool all text and all paths are UTF-8 (paths on
// POSIX systems are the system's bytes, whatever they are).
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace ko::cli {

// The text with control characters, directional overrides and broken UTF-8 written as escapes,
// so that what a file holds cannot steer a terminal.
std::string printable(std::string_view text);

// Well-formed UTF-8: broken bytes become U+FFFD, the rest stays.
std::string wellFormed(std::string_view text);
bool isWellFormed(std::string_view text);

// Texts of ICC files are ASCII by right; where they are not, they are UTF-8 or Shift-JIS.
std::string fromForeignText(std::string_view bytes);

// The text in a field of one of the library's records.
std::string fieldText(std::span<const char> field);

// Text and the number of its characters, cut to limit characters at most.
std::string cutTo(const std::string& text, size_t limit);

std::filesystem::path toPath(std::string_view utf8);
std::string fromPath(const std::filesystem::path& path);

// A number as C would print it in every locale: at most the given decimals, no trailing zeros.
std::string number(double value, int decimals = 2);

// A count with thin groups of three digits, for people: 1,185,921.
std::string grouped(uint64_t value);

}  // namespace ko::cli
