// The grammar of the tables' files: which of the two forms a file has, and the lines of the
// text form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "frame/lines.h"
#include "frame/scan.h"

namespace ko::table {

constexpr size_t kLineSize = 512;  // terminating NUL included; what is beyond does not count

enum class FileForm { neither, text, binary };
// Reads lines up to the one that decides; of a text, the next one is the first of its data.
FileForm formOf(LineReader& lines) noexcept;

bool isStart(std::string_view line) noexcept;  // "#begindata", case ignored

// What of a line counts: its beginning, up to a NUL.
std::string_view countedPart(std::string_view line) noexcept;

// The numbers of a line. Blanks before the first count for nothing; what follows a number up to a
// separator is skipped, and any run of separators is one.
class Numbers {
public:
    struct Number {
        int32_t value;          // 0 where there is none
        std::string_view text;  // all of it, up to the separator; empty at the line's end
    };
    explicit Numbers(std::string_view line) noexcept : scanner_(line) { scanner_.skip("\t "); }
    Number next() noexcept;

private:
    Scanner scanner_;
};

// The grid index of a level: 255 is the last, any other is that of its cell. Nothing for a level
// outside the grid.
std::optional<size_t> indexOf(int32_t level) noexcept;

}  // namespace ko::table
