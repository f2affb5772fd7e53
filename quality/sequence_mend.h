// The sequence of a link's profiles, put right.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace ko::quality {

// The element "pseq" with the profiles that can be told apart, their texts in the form of the
// version (2 or 4). Empty when none can.
std::vector<uint8_t> mendSequence(std::span<const uint8_t> element, uint32_t version);

}  // namespace ko::quality
