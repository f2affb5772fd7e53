#include "frame/scan.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "frame/arithmetic.h"

namespace ko {
namespace {

bool isDigit(char character) noexcept { return character >= '0' && character <= '9'; }

// Takes the blanks and the sign off a number.
bool takeSign(std::string_view& text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    return negative;
}

}  // namespace

int32_t integerIn(std::string_view text) noexcept {
    constexpr int64_t kBeyond = int64_t{1} << 31;
    const bool negative = takeSign(text);
    int64_t value = 0;
    for (const char character : text) {
        if (!isDigit(character)) break;
        value = std::min(value * 10 + (character - '0'), kBeyond);
    }
    if (negative) value = -value;
    return static_cast<int32_t>(std::min<int64_t>(value, std::numeric_limits<int32_t>::max()));
}

double realIn(std::string_view text) noexcept {
    const bool negative = takeSign(text);
    const bool number = !text.empty() && (isDigit(text[0]) ||
                                          (text[0] == '.' && text.size() > 1 && isDigit(text[1])));
    if (!number) return 0.0;
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value, std::chars_format::general);
    if (error == std::errc::result_out_of_range) {
        // Too large, or too small to be told from 0: with a digit or two hundred before it, the
        // exponent's sign says which.
        const std::string_view taken(text.data(), static_cast<size_t>(rest - text.data()));
        const size_t exponent = taken.find_first_of("eE");
        const bool small = exponent != taken.npos && taken.substr(exponent + 1).starts_with('-');
        value = small ? 0.0 : std::numeric_limits<double>::max();
    }
    value = std::min(value, std::numeric_limits<double>::max());  // some say infinity instead
    return negative ? -value : value;
}

bool isTypedNumber(std::string_view text) noexcept {
    const auto take = [&](auto&& fits) {
        while (!text.empty() && fits(text.front())) text.remove_prefix(1);
    };
    const auto isBlank = [](char character) { return character == ' ' || character == '\t'; };
    take(isBlank);
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
    const size_t before = text.size();
    take(isDigit);
    size_t digits = before - text.size();
    if (!text.empty() && (text.front() == '.' || text.front() == ',')) {
        text.remove_prefix(1);
        const size_t decimals = text.size();
        take(isDigit);
        digits += decimals - text.size();
    }
    take(isBlank);
    if (!text.empty() && text.front() == '%') text.remove_prefix(1);
    take(isBlank);
    return digits > 0 && text.empty();
}

double typedRealIn(std::string_view text) {
    std::string plain(text);
    std::replace(plain.begin(), plain.end(), ',', '.');
    return realIn(plain);
}

int32_t typedIntegerIn(std::string_view text) {
    if (text.find(',') == text.npos) return integerIn(text);
    return truncateToInt32(std::floor(typedRealIn(text) + 0.5));
}

}  // namespace ko
