#include "quality/text_faults.h"

#include "frame/ascii.h"

namespace ko::quality {
namespace {

size_t digitsOf(std::string_view text) noexcept {
    size_t count = 0;
    while (count < text.size() && text[count] >= '0' && text[count] <= '9') ++count;
    return count;
}

std::string_view unsignedPart(std::string_view text) noexcept {
    if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
    return text;
}

}  // namespace

std::string quoted(std::string_view text) {
    constexpr size_t kMost = 40;
    return '\'' + std::string(text.substr(0, kMost)) + (text.size() > kMost ? "...'" : "'");
}

bool isWholeNumber(std::string_view text) noexcept {
    constexpr size_t kMostDigits = 9;  // the largest that every reader holds
    text = unsignedPart(trimmed(text));
    return !text.empty() && digitsOf(text) == text.size() && text.size() <= kMostDigits;
}

bool isNumber(std::string_view text) noexcept {
    text = unsignedPart(trimmed(text));
    const size_t whole = digitsOf(text);
    text.remove_prefix(whole);
    size_t fraction = 0;
    if (text.starts_with('.')) {
        fraction = digitsOf(text.substr(1));
        text.remove_prefix(1 + fraction);
    }
    if (whole + fraction == 0) return false;
    if (text.starts_with('e') || text.starts_with('E')) {
        text = unsignedPart(text.substr(1));
        return !text.empty() && digitsOf(text) == text.size();
    }
    return text.empty();
}

}  // namespace ko::quality
