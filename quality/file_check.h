// What is wrong with a file, where, and how to mend it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace ko::quality {

enum class Level : uint8_t { error, warning, note };

struct Fault {
    Level level = Level::error;
    const char* rule = "";  // a word for programs, "tag-overlap"
    uint32_t tag = 0;       // 0: of the header or the directory
    uint64_t offset = 0;    // in the file
    std::string text;       // what is wrong, without a full stop
    const char* remedy = "";
};

// An ICC profile of any kind, held against ICC.1 of its version (2.0 to 2.4, 4.0 to 4.4). Faults
// come in the order of the file; of a file that is no profile at all the first one only.
// Every count is bounded by the bytes that are there.
std::vector<Fault> checkIcc(std::span<const uint8_t> bytes);

// A copy with what can be mended without a guess: the size, the order and places of the tags,
// padding, reserved bytes, the ID. Empty where the directory itself cannot be trusted. Tags keep
// their bytes; those that shared them go on doing so.
std::vector<uint8_t> mendIcc(std::span<const uint8_t> bytes);

}  // namespace ko::quality
