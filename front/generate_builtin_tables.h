// Makes the built-in table from light to ink (builtin_tables.cpp) from the model of the press.
#pragma once

#include <array>
#include <string>

#include "front/builtin_tables.h"

namespace ko::builtin {

using Table = std::array<std::array<uint8_t, 4>, kNodes>;
Table generateRgbToCmyk();

// builtin_tables.cpp, whole.
std::string sourceOf(const Table& rgbToCmyk);

}  // namespace ko::builtin
