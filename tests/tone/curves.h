// Tone curves for tests, released with the test.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "tests/support/owned.h"

namespace ko::test {

using Curve = OwnedToneCurve;

inline Curve newCurve(int32_t channels) { return Curve(jKoToneCreateToneCurve(channels)); }
inline int16_t& flagOf(const Curve& curve, int32_t channel, int32_t x) {
    return curve->table[channel * 512 + x];
}
inline int16_t& valueOf(const Curve& curve, int32_t channel, int32_t x) {
    return curve->table[channel * 512 + 256 + x];
}
inline std::vector<int16_t> tableOf(const Curve& curve) {
    return {curve->table, curve->table + curve->channelCount * 512};
}
// Sets one control point, or a level without one.
inline void mark(const Curve& curve, int32_t channel, int32_t x, int value) {
    flagOf(curve, channel, x) = 1;
    valueOf(curve, channel, x) = static_cast<int16_t>(value);
}

// Six channels in a settings record.
struct Dcc {
    Curve curves = newCurve(6);
    DccSettings settings{0, 0, 0, 0, curves.get()};
};

}  // namespace ko::test
