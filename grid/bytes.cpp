// Grids of four bytes a node: the plain kernels.
#include "grid/bytes.h"

#include "frame/arithmetic.h"
#include "grid/blend.h"
#include "grid/rows.h"

namespace ko::grid {

void bytesOfThree(const uint8_t (*nodes)[4], int32_t* values) noexcept {
    std::array<Cell, 3> cells;
    for (size_t axis = 0; axis < 3; ++axis)
        cells[axis] = steppedCell(clampTo(values[axis], 0, 255), kBytePoints);
    const auto byte = [nodes](size_t node, size_t k) { return nodes[node][k]; };
    multilinear<int32_t, int32_t, 3>(endsOf<int32_t>(cells), kBytePoints, byte, 1, {values, 4});
}

void dimmedBytesOfThree(const uint8_t (*nodes)[4], int32_t* values) noexcept {
    const int32_t left = 255 - clampTo(values[3], 0, 255);
    bytesOfThree(nodes, values);
    for (size_t k = 0; k < 3; ++k) values[k] = values[k] * left / 255;
}

void bytesOfThreeRow(const uint8_t (*nodes)[4], const uint8_t* input, int32_t pixels,
                     uint8_t* output) noexcept {
    rows().bytesOfThree.row(nodes, input, pixels, output);
}

void dimmedBytesOfThreeRow(const uint8_t (*nodes)[4], const uint8_t* input, int32_t pixels,
                           uint8_t* output) noexcept {
    rows().dimmedBytesOfThree.row(nodes, input, pixels, output);
}

}  // namespace ko::grid
