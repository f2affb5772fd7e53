#include "cli/text.h"

#include <charconv>
#include <cmath>
#include <cstdint>

#include "cli/system.h"
#include "frame/text.h"

namespace ko::cli {
namespace {

// One UTF-8 character at text[at]: its length and code point; length 0 when it is broken.
struct Character {
    size_t length;
    uint32_t code;
};

Character characterAt(std::string_view text, size_t at) {
    const auto byte = [&](size_t i) -> uint32_t {
        return at + i < text.size() ? static_cast<uint8_t>(text[at + i]) : 0;
    };
    const uint32_t first = byte(0);
    if (first < 0x80) return {1, first};
    const size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4) return {0, first};
    uint32_t code = first & (0x7fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0) != 0x80) return {0, first};
        code = code << 6 | (byte(i) & 0x3f);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    if (overlong || (code >= 0xd800 && code < 0xe000) || code > 0x10ffff) return {0, first};
    return {length, code};
}

std::string escape(char kind, uint32_t value, int digits) {  // \x1b, \u202e
    std::string text{'\\', kind};
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += "0123456789abcdef"[value >> shift & 15];
    return text;
}

bool steersTheTerminal(uint32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x200e || code == 0x200f ||
           (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

}  // namespace

std::string printable(std::string_view text) {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        const auto [length, code] = characterAt(text, at);
        if (length == 0) out += escape('x', code, 2);
        else if (code == '\n') out += "\\n";
        else if (code == '\t') out += "\\t";
        else if (code == '\r') out += "\\r";
        else if (steersTheTerminal(code)) out += code < 0x100 ? escape('x', code, 2) : escape('u', code, 4);
        else out += text.substr(at, length);
        at += length ? length : 1;
    }
    return out;
}

std::string wellFormed(std::string_view text) {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        const size_t length = characterAt(text, at).length;
        if (length) out += text.substr(at, length);
        else out += "\xef\xbf\xbd";
        at += length ? length : 1;
    }
    return out;
}

bool isWellFormed(std::string_view text) {
    for (size_t at = 0; at < text.size();) {
        const size_t length = characterAt(text, at).length;
        if (!length) return false;
        at += length;
    }
    return true;
}

std::string fromForeignText(std::string_view bytes) {
    return isWellFormed(bytes) ? std::string(bytes) : system::fromShiftJis(bytes);
}

std::string fieldText(std::span<const char> field) { return system::fromShiftJis(textIn(field)); }

std::string cutTo(const std::string& text, size_t limit) {
    size_t at = 0;
    for (size_t count = 0; at < text.size(); ++count) {
        if (count == limit) return std::string(text, 0, at).append("…");
        const size_t length = characterAt(text, at).length;
        at += length ? length : 1;
    }
    return text;
}

std::filesystem::path toPath(std::string_view utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string fromPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

std::string number(double value, int decimals) {
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                   decimals).ptr;
    std::string text(buffer, end);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.pop_back();
    }
    if (text == "-0") text.erase(0, 1);
    return text;
}

std::string grouped(uint64_t value) {
    const std::string digits = std::to_string(value);
    std::string text;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) text += ',';
        text += digits[i];
    }
    return text;
}

}  // namespace ko::cli
