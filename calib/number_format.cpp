#include "calib/number_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace ko::calib {
namespace {

// Takes a number, 0 when there is none; empty when it is larger than a field may be.
std::optional<int> takeDigits(std::string_view& text) noexcept {
    int value = 0;
    while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
        value = value * 10 + (text.front() - '0');
        if (value > NumberFormat::kMaxDigits) return std::nullopt;
        text.remove_prefix(1);
    }
    return value;
}

// Digits of a number that is not negative.
std::string digits(double value, std::chars_format format, int precision) {
    char buffer[512];  // 309 digits, a point, kMaxDigits more
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, format, precision);
    return {buffer, result.ptr};
}

// The place where an exponent begins, or the end.
size_t mantissaEnd(const std::string& text) { return std::min(text.find('e'), text.size()); }

// "%#" keeps the point of a number without fraction.
void keepPoint(std::string& text) {
    if (text.find('.') == text.npos) text.insert(mantissaEnd(text), 1, '.');
}

void dropTrailingZeros(std::string& text) {
    if (text.find('.') == text.npos) return;
    const size_t end = mantissaEnd(text);
    size_t keep = text.find_last_not_of('0', end - 1);
    if (text[keep] != '.') ++keep;
    text.erase(keep, end - keep);
}

// Precision counts significant digits; the shorter of the two notations by the exponent that the
// rounded number has.
std::string generalDigits(double value, int precision, bool alternate) {
    if (precision == 0) precision = 1;
    std::string text = digits(value, std::chars_format::scientific, precision - 1);
    const char* exponentText = text.c_str() + text.find('e') + 1;
    if (*exponentText == '+') ++exponentText;
    int exponent = 0;
    std::from_chars(exponentText, text.c_str() + text.size(), exponent);
    if (exponent >= -4 && exponent < precision)
        text = digits(value, std::chars_format::fixed, precision - 1 - exponent);
    if (!alternate) dropTrailingZeros(text);
    return text;
}

}  // namespace

std::optional<NumberFormat> NumberFormat::parse(std::string_view text) noexcept {
    NumberFormat format;
    const auto take = [&](char character) {
        if (!text.starts_with(character)) return false;
        text.remove_prefix(1);
        return true;
    };
    if (!take('%')) return std::nullopt;
    for (bool more = true; more;) {
        more = false;
        if (take('-')) more = format.left = true;
        if (take('+')) more = format.plus = true;
        if (take(' ')) more = format.blank = true;
        if (take('0')) more = format.zeros = true;
        if (take('#')) more = format.alternate = true;
    }
    const auto width = takeDigits(text);
    if (!width) return std::nullopt;
    format.width = *width;
    if (take('.')) {
        const auto precision = takeDigits(text);
        if (!precision) return std::nullopt;
        format.precision = *precision;
    }
    take('l');  // means nothing for a double
    if (text.size() != 1) return std::nullopt;
    switch (text.front()) {
        case 'e': case 'f': case 'g': break;
        case 'E': case 'F': case 'G': format.upper = true; break;
        default: return std::nullopt;
    }
    format.conversion = static_cast<char>(text.front() | 0x20);
    return format;
}

std::string NumberFormat::print(double value) const {
    if (!std::isfinite(value)) value = 0.0;
    const bool negative = std::signbit(value);
    const double size = std::fabs(value);
    std::string text = conversion == 'g'   ? generalDigits(size, precision, alternate)
                       : conversion == 'e' ? digits(size, std::chars_format::scientific, precision)
                                           : digits(size, std::chars_format::fixed, precision);
    if (alternate) keepPoint(text);
    if (upper)
        if (const size_t at = text.find('e'); at != text.npos) text[at] = 'E';

    const std::string_view sign = negative ? "-" : plus ? "+" : blank ? " " : "";
    const size_t taken = sign.size() + text.size();
    const size_t padding = static_cast<size_t>(width) > taken ? static_cast<size_t>(width) - taken : 0;
    if (left) return std::string(sign) + text + std::string(padding, ' ');
    if (zeros) return std::string(sign) + std::string(padding, '0') + text;
    return std::string(padding, ' ').append(sign) + text;
}

NumberFormat usableFormat(std::string_view text) noexcept {
    if (const auto format = NumberFormat::parse(text)) return *format;
    return *NumberFormat::parse(kDefaultFormat);
}

}  // namespace ko::calib
