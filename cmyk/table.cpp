// The small colour tables and one colour through them. The kernels here are plain: the rows are
// held to them bit by bit.
#include <algorithm>

#include "cmyk/cmyk.h"
#include "frame/arithmetic.h"

namespace ko::cmyk {
namespace {

// The cell of one axis that holds a level; the last one, from 240 to 255, is 15 wide.
struct Cell {
    int32_t index, distance, width;
};
Cell locate(int32_t value) noexcept {
    const int32_t level = clampTo(value, 0, 255);
    return {level / 16, level % 16, level >= 240 ? 15 : 16};
}

}  // namespace

void initCmykLut(CmykLut& table) noexcept {
    uint32_t* node = table.nodes;
    for (int32_t c = 0; c < kTableGridPoints; ++c)
        for (int32_t m = 0; m < kTableGridPoints; ++m)
            for (int32_t y = 0; y < kTableGridPoints; ++y)
                for (int32_t k = 0; k < kTableGridPoints; ++k)
                    *node++ = packCmyk(tableLevel(c), tableLevel(m), tableLevel(y), tableLevel(k));
}

void initRgbLut(RgbLut& table) noexcept {
    uint32_t* node = table.nodes;
    for (int32_t r = 0; r < kTableGridPoints; ++r)
        for (int32_t g = 0; g < kTableGridPoints; ++g)
            for (int32_t b = 0; b < kTableGridPoints; ++b)
                *node++ = packRgb(tableLevel(r), tableLevel(g), tableLevel(b));
}

Block<CmykLut> createCmykLut() noexcept {
    auto table = allocateBlock<CmykLut>(sizeof(CmykLut));
    if (table) initCmykLut(*table);
    return table;
}

Block<RgbLut> createRgbLut() noexcept {
    auto table = allocateBlock<RgbLut>(sizeof(RgbLut));
    if (table) initRgbLut(*table);
    return table;
}

// Quadrilinear. Integer weights that add up to at most 16^4, so no sum passes 2^28; one
// division, truncated.
void lutCmykToCmyk16(const CmykLut& table, int32_t* cmyk) noexcept {
    Cell cells[4];
    for (int32_t axis = 0; axis < 4; ++axis) cells[axis] = locate(cmyk[axis]);
    int32_t sums[4] = {};
    for (int32_t corner = 0; corner < 16; ++corner) {
        int32_t node = 0, weight = 1;
        for (int32_t axis = 0; axis < 4; ++axis) {
            const Cell& cell = cells[axis];
            const int32_t upper = corner >> (3 - axis) & 1;
            node = node * kTableGridPoints + cell.index + upper;
            weight *= upper ? cell.distance : cell.width - cell.distance;
        }
        const uint32_t word = table.nodes[node];
        for (int32_t ink = 0; ink < 4; ++ink)
            sums[ink] += weight * static_cast<int32_t>(word >> (24 - 8 * ink) & 255);
    }
    const int32_t volume = cells[0].width * cells[1].width * cells[2].width * cells[3].width;
    for (int32_t ink = 0; ink < 4; ++ink) cmyk[ink] = sums[ink] * 16 / volume;
}

// Tetrahedral, from the cell's base along the axes of falling fractions. Fractions are whole
// numbers of 1/240, which both widths divide, so the sum is exact and truncated once; of equal
// fractions either may come first, because the corner between them weighs nothing.
void rgbToRgb16(const RgbLut& table, int32_t* rgb) noexcept {
    struct Axis {
        int32_t fraction, stride;
    };
    Axis axes[3] = {{0, kTableGridPoints * kTableGridPoints}, {0, kTableGridPoints}, {0, 1}};
    int32_t base = 0;
    for (int32_t axis = 0; axis < 3; ++axis) {
        const Cell cell = locate(rgb[axis]);
        axes[axis].fraction = cell.distance * (240 / cell.width);
        base += cell.index * axes[axis].stride;
    }
    std::sort(axes, axes + 3, [](const Axis& a, const Axis& b) { return a.fraction > b.fraction; });
    const uint32_t* node = table.nodes + base;
    int32_t sums[3] = {};
    for (int32_t corner = 0, left = 240; corner < 4; ++corner) {
        const int32_t next = corner < 3 ? axes[corner].fraction : 0;
        for (int32_t channel = 0; channel < 3; ++channel)
            sums[channel] += (left - next) * static_cast<int32_t>(*node >> (8 * channel) & 255);
        if (corner < 3) node += axes[corner].stride;
        left = next;
    }
    for (int32_t channel = 0; channel < 3; ++channel) rgb[channel] = sums[channel] * 16 / 240;
}

}  // namespace ko::cmyk
