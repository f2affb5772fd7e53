// Rows of 8-bit colours through an 8-bit grid with even nodes: what Link::at gives, rounded to the
// nearest level, in whole numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "precise/profile.h"

namespace ko::precise {

struct ByteGrid {
    const uint8_t* nodes;  // outputs bytes a node, the first input slowest
    int inputs, outputs, points;
};

constexpr bool hasRows(const ByteGrid& grid) noexcept {
    return grid.inputs >= 1 && grid.inputs <= 4 && (grid.outputs == 3 || grid.outputs == 4) &&
           grid.points >= 2;
}

// The grid of a device link that is 8-bit inks or light without curves, within the profile's bytes.
std::optional<ByteGrid> plainGrid(const Profile& link) noexcept;

// For a grid that hasRows. in and out do not overlap.
void convertRow8(const ByteGrid& grid, const uint8_t* in, uint8_t* out, size_t count) noexcept;

}  // namespace ko::precise
