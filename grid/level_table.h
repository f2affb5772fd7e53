// Private to the folder: what the fast kernels know of each of the 256 levels.
#pragma once

#include "grid/cell.h"

namespace ko::grid {

// For multilinear kernels on grids whose cells have one of two widths, one level apart.
struct Level {
    uint16_t index;
    uint16_t narrow;   // 1 in a cell that is one level narrower
    uint32_t weights;  // the lower corner's weight, the upper corner's << 16

    constexpr uint32_t lower() const noexcept { return weights & 0xffff; }
    constexpr uint32_t upper() const noexcept { return weights >> 16; }
    constexpr uint32_t width() const noexcept { return lower() + upper(); }
};

// width is the wider cell's; cellOf(level) finds the cell.
template <class CellOf>
constexpr std::array<Level, 256> makeLevels(int32_t width, CellOf cellOf) {
    std::array<Level, 256> levels{};
    for (int32_t level = 0; level < 256; ++level) {
        const Cell cell = cellOf(level);
        levels[static_cast<size_t>(level)] = {
            static_cast<uint16_t>(cell.index), static_cast<uint16_t>(width - cell.width),
            static_cast<uint32_t>(cell.width - cell.distance) |
                static_cast<uint32_t>(cell.distance) << 16};
    }
    return levels;
}

// scale / volume by the number of axes on which the cell is narrow.
template <size_t kAxes>
constexpr std::array<double, kAxes + 1> makeInverseVolumes(int32_t width, double scale) {
    std::array<double, kAxes + 1> inverse{};
    for (size_t narrow = 0; narrow <= kAxes; ++narrow) {
        double volume = 1;
        for (size_t axis = 0; axis < kAxes; ++axis) volume *= axis < narrow ? width - 1 : width;
        inverse[narrow] = scale / volume;
    }
    return inverse;
}

// For tetrahedral kernels: the fraction as a whole number of some unit.
struct Fraction {
    uint32_t index;
    uint32_t fraction;
};

// Three fractions with a stride in the bits below them, put in falling order without a branch that
// depends on the colour. Of equal fractions either may come first: the corner between them weighs
// nothing.
template <class Packed>
constexpr void sortFalling(Packed& first, Packed& second, Packed& third) noexcept {
    const auto order = [](Packed& larger, Packed& smaller) {
        const Packed low = larger < smaller ? larger : smaller;
        larger = larger < smaller ? smaller : larger;
        smaller = low;
    };
    order(first, second);
    order(second, third);
    order(first, second);
}

}  // namespace ko::grid
