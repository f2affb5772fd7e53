// Colours through even grids of links: three or four axes, four 16-bit outputs a node. Levels of
// 0..255 in (clamped where they come as numbers), 0..4080 out.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ko::grid {

constexpr int32_t kRowPoints = 17;  // of the grids with a row of their own

// In place, on grids of 2 to 256 points. Three axes: tetrahedral. Four: multilinear.
void shortsOfThree(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept;
void shortsOfFour(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept;

// The same as the chosen row does it (grid/rows.h). Grids of 17 points are quicker.
void oneShortsOfThree(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept;
void oneShortsOfFour(const uint16_t* nodes, int32_t gridPoints, int32_t* values) noexcept;

// The same for pixels of 3 or 4 bytes; 4 values out.
void shortsOfThreeRow(const uint16_t* nodes, int32_t gridPoints, const uint8_t* input,
                      int32_t pixels, uint16_t* output) noexcept;
void shortsOfFourRow(const uint16_t* nodes, int32_t gridPoints, const uint8_t* input,
                     int32_t pixels, uint16_t* output) noexcept;

}  // namespace ko::grid
