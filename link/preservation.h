// Which inks a grid node asks for, and keeping pure colours pure.
#pragma once

#include "grid/cell.h"
#include "link/link.h"

namespace ko::link {

template <size_t kAxes>
using Indices = std::array<int32_t, kAxes>;  // of a node

constexpr uint32_t kC = 1, kM = 2, kY = 4, kK = 8;

// CMYK: an ink is there at any index but 0.
constexpr uint32_t inksOf(const Indices<4>& indices) noexcept {
    return (indices[0] != 0 ? kC : 0) | (indices[1] != 0 ? kM : 0) | (indices[2] != 0 ? kY : 0) |
           (indices[3] != 0 ? kK : 0);
}
// RGB: red, green and blue light below the full stand for cyan, magenta and yellow ink.
constexpr uint32_t inksOf(const Indices<3>& indices) noexcept {
    return (indices[0] != kGridPoints - 1 ? kC : 0) | (indices[1] != kGridPoints - 1 ? kM : 0) |
           (indices[2] != kGridPoints - 1 ? kY : 0);
}

// Mode 1 keeps a pure C, M or Y single; mode 2 keeps a mix of two of them to these two as well.
// Black, greys and mixes of three are never touched.
constexpr void preserve(int32_t mode, uint32_t inks, int32_t (&values)[4]) noexcept {
    const bool primary = inks == kC || inks == kM || inks == kY;
    const bool secondary = inks == (kC | kM) || inks == (kC | kY) || inks == (kM | kY);
    if (!(primary && (mode == 1 || mode == 2)) && !(secondary && mode == 2)) return;
    for (uint32_t k = 0; k < 4; ++k)
        if ((inks >> k & 1) == 0) values[k] = 0;
}

}  // namespace ko::link
