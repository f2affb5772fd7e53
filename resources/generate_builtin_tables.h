// Makes the two built-in colour tables (builtin_tables.cpp) from a model of a coated press. Only
// + - * / on doubles in a fixed order: the same bytes on every platform.
#pragma once

#include <array>
#include <string>

#include "resources/builtin_tables.h"

namespace ko::builtin {

using Table = std::array<std::array<uint8_t, 4>, kTableNodes>;
struct Tables {
    Table rgbToCmyk, cmyToRgb;
};
Tables generateTables();

// builtin_tables.cpp, whole.
std::string sourceOf(const Tables& tables);

}  // namespace ko::builtin
