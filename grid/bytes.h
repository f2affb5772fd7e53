// Colours through stepped grids of three axes and 9 points whose node is four bytes, one for each
// output. Levels of 0..255 in and out. Multilinear in integers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ko::grid {

constexpr int32_t kBytePoints = 9;

// In place: three levels in (clamped), four out.
void bytesOfThree(const uint8_t (*nodes)[4], int32_t* values) noexcept;

// In place: four levels in, the last of which dims what the others give: output * (255 - last) /
// 255, truncated; the first 3 values out.
void dimmedBytesOfThree(const uint8_t (*nodes)[4], int32_t* values) noexcept;

// The same for pixels of 3 bytes, 4 bytes out, and of 4 bytes, 3 bytes out.
void bytesOfThreeRow(const uint8_t (*nodes)[4], const uint8_t* input, int32_t pixels,
                     uint8_t* output) noexcept;
void dimmedBytesOfThreeRow(const uint8_t (*nodes)[4], const uint8_t* input, int32_t pixels,
                           uint8_t* output) noexcept;

}  // namespace ko::grid
