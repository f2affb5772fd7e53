// Where grids have their points, and which cell of an axis holds a level. There are two laws.
//
// Stepped: the points are a whole step apart, and the last cell is one level narrower, so that the
// last point is 255. So do the profile's grid, the small tables, the built-in tables and the
// points of a curve.
// Even: the points are spread over 0..maximum as evenly as whole numbers allow. So do links and
// the LUTs of ICC profiles.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace ko::grid {

// The cell of one axis that holds a level.
struct Cell {
    int32_t index;     // of the lower point
    int32_t width;     // in levels, at least 1
    int32_t distance;  // of the level from the lower point, 0..width
    constexpr bool operator==(const Cell&) const = default;
};

// The level of a stepped grid's point. The number of cells divides 256.
constexpr int32_t steppedLevel(int32_t index, int32_t gridPoints) noexcept {
    const int32_t cells = gridPoints - 1;
    return 256 / cells * index - index / cells;
}
static_assert(steppedLevel(31, 33) == 248 && steppedLevel(32, 33) == 255);
static_assert(steppedLevel(7, 9) == 224 && steppedLevel(8, 9) == 255);

// The cell of a level of 0..255; 255 is the top of the last cell.
constexpr Cell steppedCell(int32_t level, int32_t gridPoints) noexcept {
    const int32_t cells = gridPoints - 1, step = 256 / cells, index = level / step;
    return {index, index == cells - 1 ? step - 1 : step, level % step};
}
static_assert(steppedCell(255, 17) == Cell{15, 15, 15});

// The level of an even grid's point, truncated. There are at most maximum cells, and maximum is at
// most 65535: the products need all 32 bits.
constexpr int32_t evenLevel(int32_t index, int32_t gridPoints, int32_t maximum) noexcept {
    return static_cast<int32_t>(static_cast<uint32_t>(index) * static_cast<uint32_t>(maximum) /
                                static_cast<uint32_t>(gridPoints - 1));
}

// The index of the cell that holds a level of 0..maximum, truncated; the maximum itself is the top
// of the last cell.
constexpr int32_t evenIndex(int32_t level, int32_t gridPoints, int32_t maximum) noexcept {
    const auto cells = static_cast<uint32_t>(gridPoints - 1);
    const auto index = static_cast<uint32_t>(level) * cells / static_cast<uint32_t>(maximum);
    return static_cast<int32_t>(index == cells ? index - 1 : index);
}

constexpr Cell evenCell(int32_t level, int32_t gridPoints, int32_t maximum) noexcept {
    const int32_t index = evenIndex(level, gridPoints, maximum);
    const int32_t low = evenLevel(index, gridPoints, maximum);
    return {index, evenLevel(index + 1, gridPoints, maximum) - low, level - low};
}
static_assert(evenCell(255, 17, 255) == Cell{15, 16, 16});
static_assert(evenCell(14, 17, 255).index == 0 && evenCell(15, 17, 255).index == 0);
static_assert(evenCell(65535, 65536, 65535) == Cell{65534, 1, 1});

// evenCell for many levels of one axis, without a division by a number known at run time.
class EvenAxis {
public:
    EvenAxis(int32_t gridPoints, int32_t maximum)
        : last_(gridPoints - 1), maximum_(maximum), levels_(static_cast<size_t>(gridPoints)) {
        for (int32_t index = 0; index <= last_; ++index)
            levels_[static_cast<size_t>(index)] = evenLevel(index, gridPoints, maximum);
    }
    Cell cellOf(int32_t level) const noexcept {
        const int32_t index = maximum_ == 255     ? evenIndex(level, last_ + 1, 255)
                              : maximum_ == 65535 ? evenIndex(level, last_ + 1, 65535)
                                                  : evenIndex(level, last_ + 1, maximum_);
        const int32_t* const low = &levels_[static_cast<size_t>(index)];
        return {index, low[1] - low[0], level - low[0]};
    }

private:
    int32_t last_, maximum_;
    std::vector<int32_t> levels_;
};

// points^axes, or UINT64_MAX where that is more.
constexpr uint64_t nodeCount(uint64_t gridPoints, int32_t axes) noexcept {
    uint64_t nodes = 1;
    for (int32_t axis = 0; axis < axes && nodes != 0 && gridPoints != 1; ++axis) {
        if (gridPoints != 0 && nodes > UINT64_MAX / gridPoints) return UINT64_MAX;
        nodes *= gridPoints;
    }
    return nodes;
}
static_assert(nodeCount(33, 4) == 1185921 && nodeCount(65536, 4) == UINT64_MAX);

// Calls visit(indices) for every node in storage order, the last axis fastest.
template <size_t kAxes, class Visit>
constexpr void forEachNode(int32_t gridPoints, Visit visit) {
    std::array<int32_t, kAxes> indices{};
    for (;;) {
        visit(indices);
        size_t axis = kAxes;
        while (axis > 0 && ++indices[axis - 1] == gridPoints) indices[--axis] = 0;
        if (axis == 0) return;
    }
}

}  // namespace ko::grid
