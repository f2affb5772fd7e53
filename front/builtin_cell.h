// Where an 8-bit level lies in a built-in table.
#pragma once

#include <cstdint>

namespace ko::front {

struct BuiltinCell {
    int32_t index;
    int32_t width;
    int32_t distance;
};

// Cells are 32 levels wide, the last one 31: level 255 is its top.
constexpr BuiltinCell locateBuiltinCell(int32_t level) noexcept {
    const int32_t index = level / 32;
    return {index, index == 7 ? 31 : 32, level % 32};
}
static_assert(locateBuiltinCell(255).distance == locateBuiltinCell(255).width);

}  // namespace ko::front
