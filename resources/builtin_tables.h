// The conversions that serve while no profiles are set up. Made by generate_builtin_tables.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ko::builtin {

// Node i of an axis stands for level 32 i, the last one for 255; the first channel is slowest.
constexpr size_t kTablePoints = 9;
constexpr size_t kTableNodes = kTablePoints * kTablePoints * kTablePoints;

extern const uint8_t kRgbToCmyk[kTableNodes][4];
extern const uint8_t kCmyToRgb[kTableNodes][4];  // R, G, B, 0

}  // namespace ko::builtin
