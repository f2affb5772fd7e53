// Evaluating a LUT tag: the shapes that are supported, the work table, and the plain evaluators.
// lut_fast.h holds the quicker ones, which give the same bits.
#pragma once

#include <cstdint>
#include <cstring>

#include "kolink/icc_lut.h"

namespace ko::icc {

constexpr int32_t kMaxLutChannels = 4;
constexpr int32_t kLutSlots = 8;  // of a work-table row: four input curves, four output curves

// The top of a table's own scale.
constexpr int32_t lutMaximum(int32_t precision) noexcept { return precision == 2 ? 65535 : 255; }

// Rows of the work table, without the extra one at the end (a copy of the last), which the
// 16-bit interpolation reads for the topmost inputs.
constexpr int32_t lutRows(int32_t precision) noexcept { return precision == 2 ? 16384 : 256; }

// Entries of any table: unsigned, and 16-bit ones at any address (the record is byte-packed).
inline int32_t lutEntry(const void* table, size_t index, int32_t precision) noexcept {
    const auto* bytes = static_cast<const uint8_t*>(table);
    if (precision == 1) return bytes[index];
    uint16_t entry;
    std::memcpy(&entry, bytes + index * 2, sizeof entry);
    return entry;
}

// 1 to 4 channels in and out, 8- or 16-bit entries, a grid of at least 2 points an axis and no
// more steps than the scale has, tables of 256 entries when 8-bit, and no null table.
bool isSupportedLut(const IccLut& lut) noexcept;

// jIccLutSetup and jIccLutClose.
bool lutSetup(IccLut* lut);
bool lutClose(IccLut* lut) noexcept;

// The plain evaluators: the reference of every other one.
int32_t lutColor(const IccLut& lut, int32_t* values) noexcept;
int32_t lutColor16(const IccLut& lut, int32_t* values) noexcept;

}  // namespace ko::icc
