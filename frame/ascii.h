// The letters A to Z and blanks, whatever the locale.
#pragma once

#include <algorithm>
#include <string_view>

namespace ko {

constexpr char lowerAscii(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
}

// Compares as bytes; below 0, 0 or above it.
constexpr int compareIgnoringCase(std::string_view a, std::string_view b) noexcept {
    const size_t shared = std::min(a.size(), b.size());
    for (size_t at = 0; at < shared; ++at) {
        const auto x = static_cast<unsigned char>(lowerAscii(a[at]));
        const auto y = static_cast<unsigned char>(lowerAscii(b[at]));
        if (x != y) return x < y ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}
constexpr bool sameIgnoringCase(std::string_view a, std::string_view b) noexcept {
    return compareIgnoringCase(a, b) == 0;
}
constexpr bool startsIgnoringCase(std::string_view text, std::string_view beginning) noexcept {
    return sameIgnoringCase(text.substr(0, beginning.size()), beginning);
}

constexpr std::string_view kBlanks = " \t", kBlanksAndLineEnds = " \t\r\n";

constexpr std::string_view trimmed(std::string_view text,
                                   std::string_view blanks = kBlanks) noexcept {
    const size_t first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

}  // namespace ko
