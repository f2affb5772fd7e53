// What a person types into a field, as the models read it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/problem.h"

namespace ko::dialog {

// A number: full-width digits and signs, as Japanese and Chinese keyboards give them, are digits
// and signs. The rest that is not ASCII becomes '?'.
template <class Character>
std::string typedNumber(std::basic_string_view<Character> text) {
    std::string number;
    for (const Character typed : text) {
        auto character = static_cast<char32_t>(typed);
        if (character >= 0xff01 && character <= 0xff5e) character -= 0xff01 - 0x21;
        if (character == 0x3000) character = ' ';
        number += character < 0x80 ? static_cast<char>(character) : '?';
    }
    return number;
}

// What is to be said about a number that a field limits: that it was limited, or is none. An empty
// field says nothing.
std::optional<Problem> numberNotice(std::string_view typed, double least, double most,
                                    std::string_view leastText, std::string_view mostText);

}  // namespace ko::dialog
