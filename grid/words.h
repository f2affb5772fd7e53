// Colours through stepped grids whose node is one word: a byte for each output. Levels of 0..255 in
// (clamped where they come as numbers), 0..4080 out.
#pragma once

#include <cstdint>

namespace ko::grid {

// Four axes of 17 or 33 points, four outputs, the first in a word's highest byte. Multilinear in
// integers. The others give the plain kernel's bits as the chosen row does it (grid/rows.h): one
// colour, and pixels of 4 bytes in, 4 values out.
template <int32_t kPoints>
void wordsOfFour(const uint32_t* nodes, int32_t* values) noexcept;
template <int32_t kPoints>
void oneWordsOfFour(const uint32_t* nodes, int32_t* values) noexcept;
template <int32_t kPoints>
void wordsOfFourRow(const uint32_t* nodes, const uint8_t* input, int32_t pixels,
                    uint16_t* output) noexcept;

// Three axes of 17 points, three outputs, the first in a word's lowest byte. Tetrahedral, but in
// integers: a rule of its own. Pixels of 3 bytes in, 3 values out.
void wordsOfThree(const uint32_t* nodes, int32_t* values) noexcept;
void oneWordsOfThree(const uint32_t* nodes, int32_t* values) noexcept;
void wordsOfThreeRow(const uint32_t* nodes, const uint8_t* input, int32_t pixels,
                     uint16_t* output) noexcept;

}  // namespace ko::grid
