// Numbers in the printf formats that a calibration file carries. The formats are checked before
// they are used, and the printing is the library's own: the same on every platform, whatever
// locale the host has set.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ko::calib {

// One floating-point conversion.
struct NumberFormat {
    bool left = false;       // -
    bool plus = false;       // +
    bool blank = false;      // a blank where the plus would stand
    bool zeros = false;      // 0
    bool alternate = false;  // #
    int width = 0;
    int precision = 6;
    char conversion = 'f';  // e, f or g
    bool upper = false;

    // Wider fields and longer fractions would let a small file ask for a large one.
    static constexpr int kMaxDigits = 60;

    // Empty unless text holds exactly one conversion (e, f, g, E, F, G; flags, width, precision,
    // the length l) and nothing else.
    static std::optional<NumberFormat> parse(std::string_view text) noexcept;
    std::string print(double value) const;  // NaN and infinity print as 0
};

constexpr char kDefaultFormat[] = "%.0f";

// The format in a field of a set; the default when it cannot be used.
NumberFormat usableFormat(std::string_view text) noexcept;

}  // namespace ko::calib
