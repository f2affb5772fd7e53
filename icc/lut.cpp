// The plain evaluators of a LUT. Every step is as simple as it can be said; types and order of
// evaluation are part of the results, and faster versions are held to them bit by bit.
#include "icc/lut.h"

#include <algorithm>

#include "frame/arithmetic.h"

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

// The place of a colour in the grid. near and far weigh the two ends of each axis.
struct Place {
    size_t cell[kMaxLutChannels];
    double width[kMaxLutChannels], near[kMaxLutChannels], far[kMaxLutChannels];
    double volume = 1;
};

// Adds up the corners of the cell, channel 0 outermost and the last innermost; weight products
// run in the order of the channels. add(corner's first entry, weight) does the summing.
template <class Add>
void forEachCorner(const IccLut& lut, const Place& place, Add add) noexcept {
    const int32_t channels = lut.inputChannels;
    for (int32_t corner = 0; corner < 1 << channels; ++corner) {
        size_t node = 0;
        double weight = 1;
        for (int32_t i = 0; i < channels; ++i) {
            const bool upper = corner >> (channels - 1 - i) & 1;
            node = node * static_cast<size_t>(lut.gridPoints) + place.cell[i] + upper;
            weight *= upper ? place.far[i] : place.near[i];
        }
        add(node * static_cast<size_t>(lut.outputChannels), weight);
    }
}

// Multilinear on the table's own scale: integer distances, one division at the end.
void blendOwnScale(const IccLut& lut, int32_t* values) noexcept {
    const int32_t maximum = lutMaximum(lut.precision);
    Place place;
    for (int32_t i = 0; i < lut.inputChannels; ++i) {
        const LutCell cell = lutCell(values[i], lut.gridPoints, maximum);
        place.cell[i] = static_cast<size_t>(cell.index);
        place.near[i] = cell.width - cell.distance;
        place.far[i] = cell.distance;
        place.volume *= cell.width;
    }
    double sums[kMaxLutChannels] = {};
    forEachCorner(lut, place, [&](size_t entry, double weight) {
        for (int32_t k = 0; k < lut.outputChannels; ++k) {
            sums[k] += lutEntry(lut.clut, entry + k, lut.precision) * weight;
        }
    });
    for (int32_t k = 0; k < lut.outputChannels; ++k) {
        values[k] = std::min(truncateToInt32(sums[k] / place.volume), maximum);
    }
}

// Multilinear on the 16-bit scale: distances in sixteenths, every corner divided by the volume.
void blend16(const IccLut& lut, int32_t* values) noexcept {
    Place place;
    for (int32_t i = 0; i < lut.inputChannels; ++i) {
        const LutCell cell = lutCell(values[i], lut.gridPoints, 65535);
        const double width = cell.width * 0.0625, distance = cell.distance * 0.0625;
        place.cell[i] = static_cast<size_t>(cell.index);
        place.near[i] = width - distance;
        place.far[i] = distance;
        place.volume *= width;
    }
    const double scale = lut.precision == 2 ? 1.0 : 256.0;
    double sums[kMaxLutChannels] = {};
    forEachCorner(lut, place, [&](size_t entry, double weight) {
        for (int32_t k = 0; k < lut.outputChannels; ++k) {
            sums[k] += lutEntry(lut.clut, entry + k, lut.precision) * scale * weight / place.volume;
        }
    });
    for (int32_t k = 0; k < lut.outputChannels; ++k) {
        values[k] = std::min(truncateToInt32(sums[k]), 65535);
    }
}

// One of six tetrahedra around the cell's main diagonal. Fractions are float, the blend is
// double; comparisons are >= in this order, so that ties go to the earlier one.
void blendTetrahedron(const IccLut& lut, int32_t* values) noexcept {
    const int32_t maximum = lutMaximum(lut.precision);
    const auto grid = static_cast<size_t>(lut.gridPoints);
    const size_t step[3] = {grid * grid, grid, 1};
    size_t base = 0;
    float f[3];
    for (int32_t i = 0; i < 3; ++i) {
        const LutCell cell = lutCell(values[i], lut.gridPoints, maximum);
        base += static_cast<size_t>(cell.index) * step[i];
        f[i] = static_cast<float>(cell.distance) / static_cast<float>(cell.width);
    }
    int32_t first, second, third;  // axes by falling fraction
    if (f[0] >= f[1] && f[1] >= f[2]) {
        first = 0, second = 1, third = 2;
    } else if (f[0] >= f[2] && f[2] >= f[1]) {
        first = 0, second = 2, third = 1;
    } else if (f[1] >= f[0] && f[0] >= f[2]) {
        first = 1, second = 0, third = 2;
    } else if (f[1] >= f[2] && f[2] >= f[0]) {
        first = 1, second = 2, third = 0;
    } else if (f[2] >= f[0] && f[0] >= f[1]) {
        first = 2, second = 0, third = 1;
    } else {
        first = 2, second = 1, third = 0;
    }
    const double a = f[first], b = f[second], c = f[third];
    const auto outputs = static_cast<size_t>(lut.outputChannels);
    const size_t c000 = base * outputs;
    const size_t cA = c000 + step[first] * outputs;
    const size_t cB = cA + step[second] * outputs;
    const size_t c111 = cB + step[third] * outputs;
    const auto entry = [&lut](size_t index) { return lutEntry(lut.clut, index, lut.precision); };
    for (size_t k = 0; k < outputs; ++k) {
        const double sum = entry(c000 + k) * (1 - a) + entry(cA + k) * (a - b) +
                           entry(cB + k) * (b - c) + entry(c111 + k) * c;
        values[k] = std::min(truncateToInt32(sum), maximum);
    }
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
