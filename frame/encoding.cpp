#include "frame/encoding.h"

#include <cstdint>

namespace ko {
namespace {

constexpr bool isShiftJisLead(uint8_t byte) noexcept {
    return (byte >= 0x81 && byte <= 0x9f) || (byte >= 0xe0 && byte <= 0xfc);
}

constexpr bool isLead(char character, Encoding encoding) noexcept {
    const auto byte = static_cast<uint8_t>(character);
    return encoding == Encoding::shiftJis ? isShiftJisLead(byte) : byte >= 0x81 && byte <= 0xfe;
}

// Bytes of the first character of a text that is not empty: 1 or 2.
size_t lengthOfFirst(std::string_view text, Encoding encoding) noexcept {
    return text.size() > 1 && isLead(text[0], encoding) ? 2 : 1;
}

}  // namespace

bool couldBeGb2312(std::string_view text) noexcept {
    const auto isBetween = [](char character, int low, int high) {
        const auto byte = static_cast<uint8_t>(character);
        return byte >= low && byte <= high;
    };
    for (size_t at = 0; at < text.size(); ++at) {
        if (isBetween(text[at], 0, 0x7f)) continue;
        if (!isBetween(text[at], 0xa1, 0xf7) || ++at == text.size() ||
            !isBetween(text[at], 0xa1, 0xfe))
            return false;
    }
    return true;
}

size_t shiftJisLength(std::string_view text) noexcept {
    return lengthOfFirst(text, Encoding::shiftJis);
}

size_t wholeCharacters(std::string_view text, size_t limit, Encoding encoding) noexcept {
    size_t at = 0;
    while (at < text.size()) {
        const size_t length = lengthOfFirst(text.substr(at), encoding);
        if (at + length > limit) break;
        at += length;
    }
    return at;
}

size_t wholeCharacters(std::string_view text, Encoding encoding) noexcept {
    size_t at = 0;
    while (at < text.size()) {
        const size_t length = isLead(text[at], encoding) ? 2 : 1;
        if (at + length > text.size()) break;
        at += length;
    }
    return at;
}

}  // namespace ko
