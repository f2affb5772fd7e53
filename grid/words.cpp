// Grids of packed words: the plain kernels.
#include "grid/words.h"

#include "frame/arithmetic.h"
#include "frame/colour_words.h"
#include "grid/blend.h"
#include "grid/rows.h"

namespace ko::grid {
namespace {

constexpr int32_t kTablePoints = 17;
constexpr int32_t kStride0 = kTablePoints * kTablePoints, kStride1 = kTablePoints;

// The fractions of the table of three axes: whole numbers of 1/240, which both widths
// divide.
constexpr int32_t kWhole = 240;
constexpr int32_t fractionOf(const Cell& cell) noexcept {
    return cell.distance * (kWhole / cell.width);
}

template <int32_t kPoints>
const Kernel<uint32_t, uint16_t>& kernelOfFour() noexcept {
    if constexpr (kPoints == 17) return rows().wordsOfFour17;
    else return rows().wordsOfFour33;
}

}  // namespace

// The weights add up to at most 16^4, so that no sum times 16 passes 2^28.
template <int32_t kPoints>
void wordsOfFour(const uint32_t* nodes, int32_t* values) noexcept {
    std::array<Cell, 4> cells;
    for (size_t axis = 0; axis < 4; ++axis)
        cells[axis] = steppedCell(clampTo(values[axis], 0, 255), kPoints);
    const auto byte = [nodes](size_t node, size_t k) { return inkIn(nodes[node], k); };
    multilinear<int32_t, int32_t, 4>(endsOf<int32_t>(cells), kPoints, byte, 16, {values, 4});
}

template <int32_t kPoints>
void oneWordsOfFour(const uint32_t* nodes, int32_t* values) noexcept {
    throughOne<4, 4>(kernelOfFour<kPoints>().one, nodes, values);
}

template <int32_t kPoints>
void wordsOfFourRow(const uint32_t* nodes, const uint8_t* input, int32_t pixels,
                    uint16_t* output) noexcept {
    kernelOfFour<kPoints>().row(nodes, input, pixels, output);
}

template void wordsOfFour<17>(const uint32_t*, int32_t*) noexcept;
template void wordsOfFour<33>(const uint32_t*, int32_t*) noexcept;
template void oneWordsOfFour<17>(const uint32_t*, int32_t*) noexcept;
template void oneWordsOfFour<33>(const uint32_t*, int32_t*) noexcept;
template void wordsOfFourRow<17>(const uint32_t*, const uint8_t*, int32_t, uint16_t*) noexcept;
template void wordsOfFourRow<33>(const uint32_t*, const uint8_t*, int32_t, uint16_t*) noexcept;

// The sum is exact and truncated once. The float fractions of the other tetrahedral rule would
// give other results: 1/15 is no float.
void wordsOfThree(const uint32_t* nodes, int32_t* values) noexcept {
    const int32_t strides[3] = {kStride0, kStride1, 1};
    int32_t fractions[3];
    const uint32_t* node = nodes;
    for (size_t axis = 0; axis < 3; ++axis) {
        const Cell cell = steppedCell(clampTo(values[axis], 0, 255), kTablePoints);
        fractions[axis] = fractionOf(cell);
        node += cell.index * strides[axis];
    }
    int32_t sums[3] = {}, left = kWhole;
    const auto weigh = [&](int32_t next) {
        for (size_t k = 0; k < 3; ++k)
            sums[k] += (left - next) * static_cast<int32_t>(lightIn(*node, k));
        left = next;
    };
    for (const uint8_t axis : fallingOrder(fractions[0], fractions[1], fractions[2])) {
        weigh(fractions[axis]);
        node += strides[axis];
    }
    weigh(0);
    for (size_t k = 0; k < 3; ++k) values[k] = sums[k] * 16 / kWhole;
}

void oneWordsOfThree(const uint32_t* nodes, int32_t* values) noexcept {
    throughOne<3, 3>(rows().wordsOfThree.one, nodes, values);
}

void wordsOfThreeRow(const uint32_t* nodes, const uint8_t* input, int32_t pixels,
                     uint16_t* output) noexcept {
    rows().wordsOfThree.row(nodes, input, pixels, output);
}

}  // namespace ko::grid
