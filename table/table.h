// Small colour tables, CMYK to CMYK and RGB to RGB: what the engine offers to the exported
// functions and to the tool. Each function serves both kinds.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "frame/block.h"
#include "grid/cell.h"
#include "kolink/colour_table.h"

namespace ko::table {

constexpr int32_t kGridPoints = 17;

// The level of a grid index: 16 apart, the last cell is 15 wide.
constexpr int32_t levelOf(int32_t index) noexcept {
    return grid::steppedLevel(index, kGridPoints);
}

void init(CmykLut& table) noexcept;
void init(RgbLut& table) noexcept;
template <class Table>
[[nodiscard]] Block<Table> create() noexcept {
    auto table = allocateBlock<Table>(sizeof(Table));
    if (table) init(*table);
    return table;
}

bool load(CmykLut& table, const char* path);
bool load(RgbLut& table, const char* path);
std::string text(const CmykLut& table);  // of the file that save writes
std::string text(const RgbLut& table);
bool save(const CmykLut& table, const char* path);
bool save(const RgbLut& table, const char* path);
// Loads what a file holds; false, the table as it was, when that is of neither form.
bool read(CmykLut& table, std::string_view file) noexcept;
bool read(RgbLut& table, std::string_view file) noexcept;

// One colour in place: 0..255 in (clamped), 0..4080 out.
void convert(const CmykLut& table, int32_t* cmyk) noexcept;
void convert(const RgbLut& table, int32_t* rgb) noexcept;

// The same for rows of pixels, bit for bit.
void convertRow(const CmykLut& table, const uint8_t* input, int32_t pixels,
                uint16_t* output) noexcept;
void convertRow(const RgbLut& table, const uint8_t* input, int32_t pixels,
                uint16_t* output) noexcept;

}  // namespace ko::table
