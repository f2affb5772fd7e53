// LUTs of any supported shape from a fuzzer's bytes.
#pragma once

#include <cstring>

#include "fuzz/shape.h"
#include "icc/icc.h"

inline ko::Block<IccLut> lutFrom(Shape& shape, int32_t inputs, int32_t outputs) {
    constexpr int32_t kLargest[] = {0, 255, 40, 12, 6};  // grid points, by the number of inputs
    ko::icc::LutShape wanted{inputs, outputs, shape.between(2, kLargest[inputs]),
                             shape.between(1, 2)};
    if (wanted.precision == 2) {
        wanted.inputEntries = shape.between(2, 255) * shape.between(1, 16);
        wanted.outputEntries = shape.between(2, 255) * shape.between(1, 16);
    }
    auto lut = ko::icc::makeLut(wanted);
    if (!lut) return lut;
    for (int at = 0; at < 9; ++at) {
        // Every bit pattern, and often the identity.
        const uint32_t bits = shape.byte() % 4 == 0 ? shape.word() : 0;
        float element = at % 4 == 0 ? 1.0f : 0.0f;
        if (bits) std::memcpy(&element, &bits, sizeof element);
        lut->matrix[at] = element;
    }
    auto* tables = static_cast<uint8_t*>(lut->inputTables);
    const uint64_t size = ko::icc::sizesOf(wanted).tables();
    for (uint64_t at = 0; at < size; ++at) tables[at] = shape.cell(static_cast<size_t>(at));
    return lut;
}
