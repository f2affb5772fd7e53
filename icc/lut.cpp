// The plain evaluators of a LUT. Every step is as simple as it can be said; types and order of
// evaluation are part of the results, and faster versions are held to them bit by bit.
#include "icc/lut.h"

#include <algorithm>

#include "frame/arithmetic.h"
#include "grid/blend.h"

namespace ko::icc {
namespace {

const int32_t* rowOf(const IccLut& lut, int32_t row) noexcept {
    return static_cast<const int32_t*>(lut.workTable) + size_t{kLutSlots} * row;
}

// In double from the int32 values, truncated toward zero, saturating, not clamped.
void applyMatrix(const IccLut& lut, int32_t* values) noexcept {
    const double c0 = values[0], c1 = values[1], c2 = values[2];
    for (int32_t i = 0; i < 3; ++i) {
        const double e0 = lut.matrix[3 * i], e1 = lut.matrix[3 * i + 1], e2 = lut.matrix[3 * i + 2];
        values[i] = truncateToInt32(e0 * c0 + e1 * c1 + e2 * c2);
    }
}

// The curve of a slot at a value of the table's own scale, without interpolation.
int32_t lookUp(const IccLut& lut, int32_t slot, int32_t value) noexcept {
    const int32_t level = clampTo(value, 0, lutMaximum(lut.precision));
    return rowOf(lut, lut.precision == 2 ? level / 4 : level)[slot];
}

// The curve of a slot at a value of the 16-bit scale, on that scale. A value a little below 0
// extends the first step downward; further out the range ends.
int32_t interpolate(const IccLut& lut, int32_t slot, int32_t value) noexcept {
    const int32_t step = lut.precision == 2 ? 4 : 256;
    const int32_t level = clampTo(value, 1 - step, 65535);
    const int32_t* const row = rowOf(lut, level / step) + slot;
    const int32_t rest = level % step;
    const int32_t rise = row[kLutSlots] - row[0];
    if (lut.precision == 2) return static_cast<int32_t>(rise * rest * 0.25 + row[0]);
    return static_cast<int32_t>(rise * rest + row[0] * 256.0);
}

grid::Cell cellOf(const IccLut& lut, int32_t value, int32_t maximum) noexcept {
    return grid::evenCell(value, lut.gridPoints, maximum);
}

// Reads the grid of an output, in entries.
struct Entries {
    const IccLut& lut;
    int32_t operator()(size_t node, size_t k) const noexcept {
        return lutEntry(lut.clut, node * static_cast<size_t>(lut.outputChannels) + k,
                        lut.precision);
    }
};

// Multilinear on the table's own scale. Weights and sums are doubles that need not hold whole
// numbers: the order of the axes and of the corners is part of the result.
void blendOwnScale(const IccLut& lut, int32_t* values) noexcept {
    const int32_t maximum = lutMaximum(lut.precision);
    grid::Ends<double> axes[kMaxLutChannels];
    for (int32_t i = 0; i < lut.inputChannels; ++i)
        axes[i] = grid::endsOf<double>(cellOf(lut, values[i], maximum));
    const std::span<const grid::Ends<double>> used(axes, static_cast<size_t>(lut.inputChannels));
    const std::span<int32_t> outputs(values, static_cast<size_t>(lut.outputChannels));
    grid::multilinear(used, static_cast<size_t>(lut.gridPoints), Entries{lut}, 1.0, outputs);
    for (int32_t& value : outputs) value = std::min(value, maximum);
}

// Multilinear on the 16-bit scale: a rule of its own, with distances in sixteenths and every corner
// divided by the volume.
void blend16(const IccLut& lut, int32_t* values) noexcept {
    grid::Ends<double> axes[kMaxLutChannels];
    double volume = 1;
    for (int32_t i = 0; i < lut.inputChannels; ++i) {
        const grid::Cell cell = cellOf(lut, values[i], 65535);
        const double width = cell.width * 0.0625, distance = cell.distance * 0.0625;
        axes[i] = {static_cast<size_t>(cell.index), width - distance, distance};
        volume *= width;
    }
    const std::span<const grid::Ends<double>> used(axes, static_cast<size_t>(lut.inputChannels));
    const double scale = lut.precision == 2 ? 1.0 : 256.0;
    double sums[kMaxLutChannels] = {};
    grid::forEachCorner(used, static_cast<size_t>(lut.gridPoints), [&](size_t node, double weight) {
        for (int32_t k = 0; k < lut.outputChannels; ++k)
            sums[k] += Entries{lut}(node, static_cast<size_t>(k)) * scale * weight / volume;
    });
    for (int32_t k = 0; k < lut.outputChannels; ++k)
        values[k] = std::min(truncateToInt32(sums[k]), 65535);
}

void blendTetrahedron(const IccLut& lut, int32_t* values) noexcept {
    const int32_t maximum = lutMaximum(lut.precision);
    const std::span<int32_t> outputs(values, static_cast<size_t>(lut.outputChannels));
    grid::tetrahedral({cellOf(lut, values[0], maximum), cellOf(lut, values[1], maximum),
                       cellOf(lut, values[2], maximum)},
                      static_cast<size_t>(lut.gridPoints), Entries{lut}, outputs);
    for (int32_t& value : outputs) value = std::min(value, maximum);
}

}  // namespace

int32_t lutColor(const IccLut& lut, int32_t* values) noexcept {
    if (!lut.workTable) return 0;
    int32_t colour[kMaxLutChannels];
    std::copy_n(values, lut.inputChannels, colour);
    if (lut.inputChannels == 3) applyMatrix(lut, colour);
    for (int32_t i = 0; i < lut.inputChannels; ++i) colour[i] = lookUp(lut, i, colour[i]);
    if (lut.inputChannels == 3) {
        blendTetrahedron(lut, colour);
    } else {
        blendOwnScale(lut, colour);
    }
    for (int32_t k = 0; k < lut.outputChannels; ++k) {
        values[k] = lookUp(lut, kMaxLutChannels + k, colour[k]);
    }
    return lut.outputChannels;
}

int32_t lutColor16(const IccLut& lut, int32_t* values) noexcept {
    if (!lut.workTable) return 0;
    int32_t colour[kMaxLutChannels];
    std::copy_n(values, lut.inputChannels, colour);
    if (lut.inputChannels == 3) applyMatrix(lut, colour);
    for (int32_t i = 0; i < lut.inputChannels; ++i) {
        colour[i] = clampTo(interpolate(lut, i, colour[i]), 0, 65535);
    }
    blend16(lut, colour);
    for (int32_t k = 0; k < lut.outputChannels; ++k) {
        values[k] = interpolate(lut, kMaxLutChannels + k, colour[k]);
    }
    return lut.outputChannels;
}

}  // namespace ko::icc
