// Colours between the nodes of a grid: the plain kernels, one for each rule of arithmetic. They
// define every result; what is faster stands in rows.h and is held to them bit by bit.
//
// A grid is what entry(node, output) reads: nodes in storage order, the last axis fastest.
#pragma once

#include <span>

#include "grid/cell.h"

namespace ko::grid {

// One axis of a cell, with what its lower and its upper end weigh.
template <class Weight>
struct Ends {
    size_t index;
    Weight lower, upper;
};
template <class Weight>
constexpr Ends<Weight> endsOf(const Cell& cell) noexcept {
    return {static_cast<size_t>(cell.index), static_cast<Weight>(cell.width - cell.distance),
            static_cast<Weight>(cell.distance)};
}

// The corners of a cell, the first axis outermost, lower corners first. A corner's weight is the
// product of its ends, in the order of the axes. add(node, weight) does the summing.
template <class Weight, class Add>
constexpr void forEachCorner(std::span<const Ends<Weight>> axes, size_t gridPoints, Add add) {
    for (uint32_t corner = 0; corner < 1u << axes.size(); ++corner) {
        size_t node = 0;
        Weight weight = 1;
        for (size_t axis = 0; axis < axes.size(); ++axis) {
            const bool upper = (corner >> (axes.size() - 1 - axis) & 1) != 0;
            node = node * gridPoints + axes[axis].index + (upper ? 1 : 0);
            weight *= upper ? axes[axis].upper : axes[axis].lower;
        }
        add(node, weight);
    }
}

// The same for a number of axes that the compiler knows: corners share what their first axes give.
// node and weight are those of the axes before.
template <class Weight, size_t kAxes, class Add>
    requires(kAxes != std::dynamic_extent)
constexpr void forEachCorner(std::span<const Ends<Weight>, kAxes> axes, size_t gridPoints,
                             const Add& add, size_t node = 0, Weight weight = 1) {
    if constexpr (kAxes == 0) {
        add(node, weight);
    } else {
        const Ends<Weight>& axis = axes.front();
        const auto rest = axes.template subspan<1>();
        const size_t lower = node * gridPoints + axis.index;
        forEachCorner(rest, gridPoints, add, lower, static_cast<Weight>(weight * axis.lower));
        forEachCorner(rest, gridPoints, add, lower + 1, static_cast<Weight>(weight * axis.upper));
    }
}

// Multilinear: the sum of weighted corners, times scale, divided by the cell's volume once and
// truncated. Weight holds the volume, Sum the sum of the weighted entries times scale; both are
// whole numbers, so that every order of summing gives the same, unless the caller says otherwise.
template <class Weight, class Sum, size_t kAxes, class Entry>
constexpr void multilinear(std::span<const Ends<Weight>, kAxes> axes, size_t gridPoints,
                           Entry entry, Sum scale, std::span<int32_t> outputs) {
    Sum sums[4] = {};
    forEachCorner(axes, gridPoints, [&](size_t node, Weight weight) {
        for (size_t k = 0; k < outputs.size(); ++k)
            sums[k] += static_cast<Sum>(entry(node, k)) * static_cast<Sum>(weight);
    });
    Sum volume = 1;
    for (const auto& axis : axes) volume *= static_cast<Sum>(axis.lower + axis.upper);
    for (size_t k = 0; k < outputs.size(); ++k)
        outputs[k] = static_cast<int32_t>(sums[k] * scale / volume);
}

// Weights of one kind for all axes of a cell.
template <class Weight, size_t kAxes>
constexpr std::array<Ends<Weight>, kAxes> endsOf(const std::array<Cell, kAxes>& cells) noexcept {
    std::array<Ends<Weight>, kAxes> ends{};
    for (size_t axis = 0; axis < kAxes; ++axis) ends[axis] = endsOf<Weight>(cells[axis]);
    return ends;
}

inline constexpr std::array<uint8_t, 3> kFallingOrders[] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2},
                                                            {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};

// The axes of three fractions, the largest first. The first ordering that holds counts.
template <class Fraction>
constexpr const std::array<uint8_t, 3>& fallingOrder(Fraction x, Fraction y, Fraction z) noexcept {
    if (x >= y && y >= z) return kFallingOrders[0];
    if (x >= z && z >= y) return kFallingOrders[1];
    if (y >= x && x >= z) return kFallingOrders[2];
    if (y >= z && z >= x) return kFallingOrders[3];
    if (z >= x && x >= y) return kFallingOrders[4];
    return kFallingOrders[5];
}

// Tetrahedral: from the cell's lower corner along the axes of falling fractions to the upper one.
// Fractions are float, the blend is double and truncated. Where two fractions are equal, the
// corner that depends on their order weighs nothing.
template <class Entry>
constexpr void tetrahedral(const std::array<Cell, 3>& cells, size_t gridPoints, Entry entry,
                           std::span<int32_t> outputs) {
    const size_t strides[3] = {gridPoints * gridPoints, gridPoints, 1};
    size_t lower = 0;
    float fractions[3] = {};
    for (size_t axis = 0; axis < 3; ++axis) {
        const Cell& cell = cells[axis];
        lower += static_cast<size_t>(cell.index) * strides[axis];
        fractions[axis] = static_cast<float>(cell.distance) / static_cast<float>(cell.width);
    }
    const auto& order = fallingOrder(fractions[0], fractions[1], fractions[2]);
    const double a = fractions[order[0]], b = fractions[order[1]], c = fractions[order[2]];
    const size_t nodeA = lower + strides[order[0]], nodeB = nodeA + strides[order[1]];
    const size_t upper = nodeB + strides[order[2]];
    for (size_t k = 0; k < outputs.size(); ++k)
        outputs[k] = static_cast<int32_t>(entry(lower, k) * (1 - a) + entry(nodeA, k) * (a - b) +
                                          entry(nodeB, k) * (b - c) + entry(upper, k) * c);
}

}  // namespace ko::grid
