// Where an 8-bit level lies in a link's grid.
#pragma once

#include <cstdint>

namespace ko::link {

constexpr int32_t kMaxResult = 4080;  // 255 * 16

// The cell of one axis that holds a level: its lower node, its width in levels, and the level's
// distance from the lower node.
struct Cell {
    int32_t index;
    int32_t width;
    int32_t distance;
};

// Integers only, every division truncates; level 255 is the top of the last cell. With up to 256
// points no cell is empty.
constexpr Cell locateCell(int32_t level, int32_t gridPoints) noexcept {
    const int32_t last = gridPoints - 1;
    int32_t index = level * last / 255;
    if (index == last) --index;  // index + 1 must be on the grid
    const int32_t low = index * 255 / last;
    return {index, (index * 255 + 255) / last - low, level - low};
}
static_assert(locateCell(255, 17).index == 15 && locateCell(255, 17).distance == 16);
static_assert(locateCell(14, 17).index == 0 && locateCell(15, 17).index == 0);

}  // namespace ko::link
