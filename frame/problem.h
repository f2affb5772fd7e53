// Why a file or a setting cannot be used, said to a person.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ko {

struct Problem {
    const char* sentence;  // Japanese, one of resources/texts.h; the language tables translate it
    std::vector<std::string> details{};  // fill its %s, in their order; ASCII
    bool operator==(const Problem&) const = default;
};

// What the system said when it could not read or write a file.
Problem fileProblem(uint32_t systemError);
// Nothing when the file can be read.
std::optional<Problem> whyUnreadable(const char* path);

}  // namespace ko
