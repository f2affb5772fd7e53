// The conversions that serve while no profiles are set up.
#pragma once

#include <cstdint>

#include "grid/bytes.h"

namespace ko::builtin {

constexpr size_t kNodes = grid::kBytePoints * grid::kBytePoints * grid::kBytePoints;

extern const uint8_t kRgbToCmyk[kNodes][4];     // made by generate_builtin_tables
extern const uint8_t (&kCmyToRgb)[kNodes][4];  // R, G, B, 0

}  // namespace ko::builtin
