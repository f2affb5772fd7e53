// LUT records and the sizes of their tables.
#include "icc/lut_block.h"

#include <algorithm>

#include "grid/cell.h"

namespace ko::icc {
namespace {

constexpr uint64_t kTooLarge = UINT64_MAX;

constexpr uint64_t timesOrTooLarge(uint64_t a, uint64_t b) noexcept {
    return a != 0 && b > kTooLarge / a ? kTooLarge : a * b;
}

constexpr uint64_t plusOrTooLarge(uint64_t a, uint64_t b) noexcept {
    return b > kTooLarge - a ? kTooLarge : a + b;
}

constexpr uint64_t countOf(int32_t field) noexcept {
    return field > 0 ? static_cast<uint64_t>(field) : 0;
}

}  // namespace

uint64_t LutSizes::tables() const noexcept {
    return plusOrTooLarge(plusOrTooLarge(inputTables, clut), outputTables);
}

LutShape shapeOf(const IccLut& lut) noexcept {
    return {lut.inputChannels, lut.outputChannels, lut.gridPoints,
            lut.precision,     lut.inputEntries,   lut.outputEntries};
}

LutSizes sizesOf(const LutShape& shape) noexcept {
    const uint64_t precision = countOf(shape.precision);
    const uint64_t inputs = countOf(shape.inputChannels), outputs = countOf(shape.outputChannels);
    const uint64_t nodes = grid::nodeCount(countOf(shape.gridPoints), shape.inputChannels);
    return {timesOrTooLarge(inputs * countOf(shape.inputEntries), precision),
            timesOrTooLarge(timesOrTooLarge(nodes, outputs), precision),
            timesOrTooLarge(outputs * countOf(shape.outputEntries), precision)};
}

Block<IccLut> layOutLut(const LutShape& shape) noexcept {
    if (std::min({shape.inputChannels, shape.outputChannels, shape.gridPoints,
                  shape.inputEntries, shape.outputEntries}) < 0 ||
        shape.precision < 0 || shape.precision > 255)
        return nullptr;
    const LutSizes sizes = sizesOf(shape);
    Block<IccLut> lut =
        allocateZeroBlock<IccLut>(plusOrTooLarge(sizeof(IccLut), sizes.tables()));
    if (!lut) return nullptr;

    lut->inputChannels = shape.inputChannels;
    lut->outputChannels = shape.outputChannels;
    lut->gridPoints = shape.gridPoints;
    lut->precision = static_cast<uint8_t>(shape.precision);
    lut->inputEntries = shape.inputEntries;
    lut->outputEntries = shape.outputEntries;
    auto* const tables = reinterpret_cast<uint8_t*>(lut.get()) + sizeof(IccLut);
    lut->inputTables = tables;
    lut->clut = tables + sizes.inputTables;
    lut->outputTables = tables + sizes.inputTables + sizes.clut;
    return lut;
}

Block<IccLut> makeLut(const LutShape& shape) noexcept {
    Block<IccLut> lut = layOutLut(shape);
    if (!lut) return nullptr;
    lut->matrix[0] = lut->matrix[4] = lut->matrix[8] = 1;
    return lut;
}

}  // namespace ko::icc
