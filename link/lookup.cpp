// Colours through a link's grid.
#include <algorithm>

#include "grid/shorts.h"
#include "link/link.h"

namespace ko::link {

void convert3(const LinkProfile& link, int32_t* values) noexcept {
    if (nodeCount(link) == 0) std::fill_n(values, 4, 0);
    else grid::oneShortsOfThree(link.grid, link.gridPoints, values);
}

void convert(const LinkProfile& link, int32_t* values) noexcept {
    if (nodeCount(link) == 0) std::fill_n(values, 4, 0);
    else if (link.inputChannels == 3) convert3(link, values);
    else grid::oneShortsOfFour(link.grid, link.gridPoints, values);
}

void convertRow(const LinkProfile& link, const uint8_t* input, int32_t pixels,
                uint16_t* output) noexcept {
    if (nodeCount(link) == 0)
        std::fill_n(output, 4 * static_cast<size_t>(std::max(pixels, 0)), uint16_t{0});
    else if (link.inputChannels == 3)
        grid::shortsOfThreeRow(link.grid, link.gridPoints, input, pixels, output);
    else grid::shortsOfFourRow(link.grid, link.gridPoints, input, pixels, output);
}

}  // namespace ko::link
