#include "frame/text.h"

#include <algorithm>
#include <cstring>

#include "frame/ascii.h"
#include "frame/platform.h"

namespace ko {
namespace {

// The part may lie in the field itself.
void copyPart(std::span<char> field, std::string_view part) noexcept {
    if (!part.empty()) std::memmove(field.data(), part.data(), part.size());  // null is not copied
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(part.size()), field.end(), '\0');
}

std::string_view trimmedTyped(std::string_view text) noexcept {
    return trimmed(text, kBlanksAndLineEnds);
}

}  // namespace

void copyText(std::span<char> field, std::string_view text, Encoding encoding) noexcept {
    if (field.empty()) return;
    text = text.substr(0, text.find('\0'));
    text = text.substr(0, wholeCharacters(text, field.size() - 1, encoding));
    copyPart(field, text);
}

std::string_view textIn(std::span<const char> field) noexcept {
    const auto end = std::find(field.begin(), field.end(), '\0');
    return {field.data(), static_cast<size_t>(end - field.begin())};
}

bool copyPath(std::span<char> field, const char* path) noexcept {
    if (!path) return platform::failFor(platform::Cause::wrongArgument);
    const size_t length = strnlen(path, field.size());
    if (length >= field.size()) return platform::failFor(platform::Cause::nameTooLong);
    std::memmove(field.data(), path, length);
    field[length] = '\0';
    return true;
}

void correctTyped(std::span<char> text, Encoding encoding) noexcept {
    if (text.empty()) return;
    std::string_view kept = textIn(text);
    if (kept.size() == text.size()) kept.remove_suffix(1);  // room for the terminator
    kept = kept.substr(0, wholeCharacters(kept, encoding));
    copyPart(text, trimmedTyped(kept));
}

void copyTypedPath(std::span<char> field, std::string_view typed) noexcept {
    if (field.empty()) return;
    typed = trimmedTyped(typed.substr(0, typed.find('\0')));
    if (typed.size() >= 2 && typed.front() == '"' && typed.back() == '"')
        typed = trimmedTyped(typed.substr(1, typed.size() - 2));
    size_t end = 0;
    while (end < typed.size()) {
        const size_t length = platform::characterLength(typed.substr(end));
        if (end + length >= field.size()) break;
        end += length;
    }
    copyPart(field, trimmedTyped(typed.substr(0, end)));
}

}  // namespace ko
