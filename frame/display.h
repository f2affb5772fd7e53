// Levels as fields show them: 0..255 or percent.
#pragma once

#include <cstdint>

#include "frame/arithmetic.h"

namespace ko {

// Rounded half up in double.
constexpr int32_t value255to100(int32_t value) noexcept {
    return static_cast<int32_t>(clampTo(value, 0, 255) * 100 / 255.0 + 0.5);
}
constexpr int32_t value100to255(int32_t value) noexcept {
    return static_cast<int32_t>(clampTo(value, 0, 100) * 255 / 100.0 + 0.5);
}
static_assert(value255to100(128) == 50 && value100to255(50) == 128);
static_assert(value255to100(255) == 100 && value100to255(100) == 255);

// mode non-zero: levels as they are; zero: percent.
constexpr int32_t valueToDisplay(int32_t mode, int32_t value) noexcept {
    return mode != 0 ? clampTo(value, 0, 255) : value255to100(value);
}
constexpr int32_t valueFromDisplay(int32_t mode, int32_t value) noexcept {
    return mode != 0 ? clampTo(value, 0, 255) : value100to255(value);
}

}  // namespace ko
