// Grids of four 16-bit outputs a node: the plain kernels, and rows through any number of points.
#include "grid/shorts.h"

#include <algorithm>

#include "frame/arithmetic.h"
#include "grid/blend.h"
#include "grid/rows.h"

namespace ko::grid {
namespace {

constexpr int32_t kMaxResult = 4080;  // 255 * 16

// Any grid, a pixel at a time.
template <size_t kChannels, class Plain>
void plainRow(const uint16_t* nodes, int32_t gridPoints, const uint8_t* input, int32_t pixels,
              uint16_t* output, Plain plain) noexcept {
    for (; pixels > 0; --pixels, input += kChannels, output += 4) {
        int32_t values[4];
        std::copy_n(input, kChannels, values);
        plain(nodes, gridPoints, values);
        for (size_t k = 0; k < 4; ++k) output[k] = static_cast<uint16_t>(values[k]);
    }
}

template <size_t kAxes>
std::array<Cell, kAxes> cellsOf(const int32_t* values, int32_t gridPoints) noexcept {
    std::array<Cell, kAxes> cells;
    for (size_t axis = 0; axis < kAxes; ++axis)
        cells[axis] = evenCell(clampTo(values[axis], 0, 255), gridPoints, 255);
    return cells;
}

void limit(int32_t* values) noexcept {
    for (size_t k = 0; k < 4; ++k) values[k] = std::min(values[k], kMaxResult);
}

}  // namespace

void shortsOfThree(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept {
    const auto entry = [nodes](size_t node, size_t k) { return nodes[node * 4 + k]; };
    tetrahedral(cellsOf<3>(values, gridPoints), static_cast<size_t>(gridPoints), entry,
                {values, 4});
    limit(values);
}

// Weights are whole numbers of at most 255^4, sums below 2^48: doubles hold them exactly.
void shortsOfFour(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept {
    const auto entry = [nodes](size_t node, size_t k) { return nodes[node * 4 + k]; };
    multilinear<uint32_t, double, 4>(endsOf<uint32_t>(cellsOf<4>(values, gridPoints)),
                                     static_cast<size_t>(gridPoints), entry, 1, {values, 4});
    limit(values);
}

void oneShortsOfThree(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept {
    if (gridPoints == kRowPoints) throughOne<3, 4>(rows().shortsOfThree.one, nodes, values);
    else shortsOfThree(nodes, gridPoints, values);
}

void oneShortsOfFour(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept {
    if (gridPoints == kRowPoints) throughOne<4, 4>(rows().shortsOfFour.one, nodes, values);
    else shortsOfFour(nodes, gridPoints, values);
}

void shortsOfThreeRow(const uint16_t* nodes, int32_t gridPoints, const uint8_t* input,
                      int32_t pixels, uint16_t* output) noexcept {
    if (gridPoints == kRowPoints) rows().shortsOfThree.row(nodes, input, pixels, output);
    else plainRow<3>(nodes, gridPoints, input, pixels, output, shortsOfThree);
}

void shortsOfFourRow(const uint16_t* nodes, int32_t gridPoints, const uint8_t* input,
                     int32_t pixels, uint16_t* output) noexcept {
    if (gridPoints == kRowPoints) rows().shortsOfFour.row(nodes, input, pixels, output);
    else plainRow<4>(nodes, gridPoints, input, pixels, output, shortsOfFour);
}

}  // namespace ko::grid
