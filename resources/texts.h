// Japanese user texts of the engine, Shift-JIS at run time, and the language tables. They stand
// here alone, so that no other source depends on the execution character set.
#pragma once

#include <span>
#include <string_view>

namespace ko::texts {

extern const char kUntitled[];       // the title of a new curve, profile or link
extern const char kChannelNumber[];  // the name of a calibration channel, with "%d"

// A language table by the name of its resource, such as "TEXT_ENGLISH"; empty when there is none.
// Windows modules carry them as resources instead.
std::span<const char> table(std::string_view name) noexcept;

}  // namespace ko::texts
