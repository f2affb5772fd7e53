// Integer arithmetic that is defined for every operand, so that no caller's number is undefined
// behaviour: 32-bit products wrap, conversions saturate, a division by zero gives 0.
#pragma once

#include <cstdint>
#include <limits>

namespace ko {

constexpr int32_t wrapAdd(int32_t a, int32_t b) noexcept {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t wrapSubtract(int32_t a, int32_t b) noexcept {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
constexpr int32_t wrapMultiply(int32_t a, int32_t b) noexcept {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
// Truncates toward zero; 0 for a divisor of 0; INT32_MIN / -1 wraps.
constexpr int32_t safeDivide(int32_t a, int32_t b) noexcept {
    if (b == 0) return 0;
    if (b == -1) return wrapSubtract(0, a);
    return a / b;
}
// Truncates toward zero; saturates, NaN gives 0.
constexpr int32_t truncateToInt32(double value) noexcept {
    if (!(value > -2147483649.0)) return value != value ? 0 : std::numeric_limits<int32_t>::min();
    if (value >= 2147483648.0) return std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(value);
}
constexpr int32_t clampTo(int32_t value, int32_t low, int32_t high) noexcept {
    return value < low ? low : value > high ? high : value;
}

}  // namespace ko
