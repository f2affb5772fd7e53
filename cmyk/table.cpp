// The small colour tables and colours through them.
#include "cmyk/cmyk.h"
#include "grid/words.h"

namespace ko::cmyk {
void initCmykLut(CmykLut& table) noexcept {
    uint32_t* node = table.nodes;
    grid::forEachNode<4>(kTableGridPoints, [&](const std::array<int32_t, 4>& at) {
        *node++ = packCmyk(tableLevel(at[0]), tableLevel(at[1]), tableLevel(at[2]),
                           tableLevel(at[3]));
    });
}

void initRgbLut(RgbLut& table) noexcept {
    uint32_t* node = table.nodes;
    grid::forEachNode<3>(kTableGridPoints, [&](const std::array<int32_t, 3>& at) {
        *node++ = packRgb(tableLevel(at[0]), tableLevel(at[1]), tableLevel(at[2]));
    });
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

void lutCmykToCmyk16(const CmykLut& table, int32_t* cmyk) noexcept {
    grid::wordsOfFour<kTableGridPoints>(table.nodes, cmyk);
}

void rgbToRgb16(const RgbLut& table, int32_t* rgb) noexcept {
    grid::wordsOfThree(table.nodes, rgb);
}

void lutCmykToCmyk16Row(const CmykLut& table, const uint8_t* input, int32_t pixels,
                        uint16_t* output) noexcept {
    grid::wordsOfFourRow<kTableGridPoints>(table.nodes, input, pixels, output);
}

void rgbToRgb16Row(const RgbLut& table, const uint8_t* input, int32_t pixels,
                   uint16_t* output) noexcept {
    grid::wordsOfThreeRow(table.nodes, input, pixels, output);
}

}  // namespace ko::cmyk
