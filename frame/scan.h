// Takes apart what follows a key in a line of a text file: separators and numbers. Numbers are
// read as in the C locale, whatever the host has set, and any text gives one.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace ko {

// The number at the front of a text: blanks, a sign, digits. 0 when there is none; one that does
// not fit is the nearest that does.
int32_t integerIn(std::string_view text) noexcept;

// The same for a decimal number with fraction and exponent. Never infinite and never NaN: these
// words are no numbers.
double realIn(std::string_view text) noexcept;

// Numbers as people type them, with a comma as the decimal mark too: a number with its fraction; a
// whole number, rounded, halves up, when there is a comma; whether all of a text is a number,
// blanks around it and a % behind it aside.
double typedRealIn(std::string_view text);
int32_t typedIntegerIn(std::string_view text);
bool isTypedNumber(std::string_view text) noexcept;

// What is left of a line.
class Scanner {
public:
    explicit Scanner(std::string_view text) noexcept : rest_(text) {}

    std::string_view rest() const noexcept { return rest_; }
    int32_t integer() const noexcept { return integerIn(rest_); }  // stays in front
    double real() const noexcept { return realIn(rest_); }

    // Past the characters of this set, or up to the first of them.
    void skip(std::string_view characters) noexcept {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(characters), rest_.size()));
    }
    void advanceTo(std::string_view characters) noexcept {
        rest_.remove_prefix(std::min(rest_.find_first_of(characters), rest_.size()));
    }
    bool take(char character) noexcept {
        if (!rest_.starts_with(character)) return false;
        rest_.remove_prefix(1);
        return true;
    }

private:
    std::string_view rest_;
};

}  // namespace ko
