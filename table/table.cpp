// The identity, and colours through the tables.
#include "table/table.h"

#include "frame/colour_words.h"
#include "grid/words.h"

namespace ko::table {

void init(CmykLut& table) noexcept {
    uint32_t* node = table.nodes;
    grid::forEachNode<4>(kGridPoints, [&](const std::array<int32_t, 4>& at) {
        *node++ = packCmyk(levelOf(at[0]), levelOf(at[1]), levelOf(at[2]), levelOf(at[3]));
    });
}

void init(RgbLut& table) noexcept {
    uint32_t* node = table.nodes;
    grid::forEachNode<3>(kGridPoints, [&](const std::array<int32_t, 3>& at) {
        *node++ = packRgb(levelOf(at[0]), levelOf(at[1]), levelOf(at[2]));
    });
}

void convert(const CmykLut& table, int32_t* cmyk) noexcept {
    grid::oneWordsOfFour<kGridPoints>(table.nodes, cmyk);
}

void convert(const RgbLut& table, int32_t* rgb) noexcept { grid::oneWordsOfThree(table.nodes, rgb); }

void convertRow(const CmykLut& table, const uint8_t* input, int32_t pixels,
                uint16_t* output) noexcept {
    grid::wordsOfFourRow<kGridPoints>(table.nodes, input, pixels, output);
}

void convertRow(const RgbLut& table, const uint8_t* input, int32_t pixels,
                uint16_t* output) noexcept {
    grid::wordsOfThreeRow(table.nodes, input, pixels, output);
}

}  // namespace ko::table
