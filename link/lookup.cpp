// One colour through a link's grid: the plain kernels, which define every result.
#include <algorithm>

#include "frame/arithmetic.h"
#include "link/cell.h"
#include "link/link.h"

namespace ko::link {
namespace {

bool refuse(const LinkProfile& link, int32_t* values) noexcept {
    if (nodeCount(link) != 0) return false;
    std::fill(values, values + 4, 0);
    return true;
}

int32_t limited(double value) noexcept {
    return std::min(static_cast<int32_t>(value), kMaxResult);  // truncates; never negative
}

// The two middle corners of a tetrahedron as steps along the axes.
struct Tetrahedron {
    bool middleA[3];
    bool middleB[3];
    int32_t order[3];  // the channels, largest fraction first
};

constexpr Tetrahedron kTetrahedra[] = {
    {{true, false, false}, {true, true, false}, {0, 1, 2}},
    {{true, false, false}, {true, false, true}, {0, 2, 1}},
    {{false, true, false}, {true, true, false}, {1, 0, 2}},
    {{false, true, false}, {false, true, true}, {1, 2, 0}},
    {{false, false, true}, {true, false, true}, {2, 0, 1}},
    {{false, false, true}, {false, true, true}, {2, 1, 0}},
};

// The first ordering that holds counts; where two fractions are equal the weight of the corner
// that depends on the choice is 0.
constexpr const Tetrahedron& tetrahedronOf(float x, float y, float z) noexcept {
    if (x >= y && y >= z) return kTetrahedra[0];
    if (x >= z && z >= y) return kTetrahedra[1];
    if (y >= x && x >= z) return kTetrahedra[2];
    if (y >= z && z >= x) return kTetrahedra[3];
    if (z >= x && x >= y) return kTetrahedra[4];
    return kTetrahedra[5];
}

}  // namespace

// Fractions are float, the blend is double, truncated, then limited to 4080.
void convert3(const LinkProfile& link, int32_t* values) noexcept {
    if (refuse(link, values)) return;
    const size_t points = static_cast<size_t>(link.gridPoints);
    const size_t strides[3] = {points * points * 4, points * 4, 4};
    const uint16_t* base = link.grid;
    float fractions[3];
    for (int32_t axis = 0; axis < 3; ++axis) {
        const Cell cell = locateCell(clampTo(values[axis], 0, 255), link.gridPoints);
        fractions[axis] = static_cast<float>(cell.distance) / static_cast<float>(cell.width);
        base += static_cast<size_t>(cell.index) * strides[axis];
    }

    const Tetrahedron& shape = tetrahedronOf(fractions[0], fractions[1], fractions[2]);
    const uint16_t* cornerA = base;
    const uint16_t* cornerB = base;
    for (int32_t axis = 0; axis < 3; ++axis) {
        if (shape.middleA[axis]) cornerA += strides[axis];
        if (shape.middleB[axis]) cornerB += strides[axis];
    }
    const uint16_t* far = base + strides[0] + strides[1] + strides[2];

    const double a = fractions[shape.order[0]];
    const double b = fractions[shape.order[1]];
    const double c = fractions[shape.order[2]];
    for (int32_t k = 0; k < 4; ++k)
        values[k] =
            limited(base[k] * (1 - a) + cornerA[k] * (a - b) + cornerB[k] * (b - c) + far[k] * c);
}

// Integer weights, sums in double, one division, truncated, then limited to 4080.
void convert4(const LinkProfile& link, int32_t* values) noexcept {
    if (refuse(link, values)) return;
    Cell cells[4];
    for (int32_t axis = 0; axis < 4; ++axis)
        cells[axis] = locateCell(clampTo(values[axis], 0, 255), link.gridPoints);

    double sums[4] = {};
    for (uint32_t corner = 0; corner < 16; ++corner) {  // channel 0 outermost, lower corner first
        size_t node = 0;
        uint32_t weight = 1;  // at most 255^4, which needs the sign bit
        for (uint32_t axis = 0; axis < 4; ++axis) {
            const bool upper = (corner >> (3 - axis) & 1) != 0;
            const Cell& cell = cells[axis];
            node = node * static_cast<size_t>(link.gridPoints) +
                   static_cast<size_t>(cell.index + (upper ? 1 : 0));
            weight *= static_cast<uint32_t>(upper ? cell.distance : cell.width - cell.distance);
        }
        for (uint32_t k = 0; k < 4; ++k)
            sums[k] += static_cast<double>(link.grid[node * 4 + k]) * static_cast<double>(weight);
    }
    double volume = 1;
    for (const Cell& cell : cells) volume *= cell.width;
    for (int32_t k = 0; k < 4; ++k) values[k] = limited(sums[k] / volume);
}

void convert(const LinkProfile& link, int32_t* values) noexcept {
    if (link.inputChannels == 3) convert3(link, values);
    else convert4(link, values);
}

}  // namespace ko::link
