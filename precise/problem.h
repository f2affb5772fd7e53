// What went wrong, as a code for programs and a sentence for people. Engine functions that can
// fail take one and return an empty optional or a null pointer.
#pragma once

#include <cstdint>
#include <string>

namespace ko::precise {

// The numbers are the exported ones (kolink/precise.h).
enum class Trouble : int32_t {
    none = 0,
    argument = 1,     // a null pointer, an option out of its range, options that contradict
    file = 2,         // cannot be read or written
    profile = 3,      // not an ICC profile, or damaged
    unsupported = 4,  // sound, but of a kind that cannot be used so
    tables = 5,       // lacks the tables of the intent
    memory = 6,
};

struct Problem {
    Trouble code = Trouble::none;
    std::string text;  // UTF-8, one sentence without its full stop

    void set(Trouble trouble, std::string sentence) {
        if (code != Trouble::none) return;  // the first one is the cause
        code = trouble;
        text = std::move(sentence);
    }
};

}  // namespace ko::precise
