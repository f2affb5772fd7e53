// Four floats at once.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "precise/pipeline.h"

namespace ko::precise {

// Each is an IEEE float by itself on every target.
using Four = float __attribute__((vector_size(16)));
using FourInt = int32_t __attribute__((vector_size(16)));

// What objects keep of them: memory from the heap is not everywhere aligned for the vectors.
using FourKept = std::array<float, 4>;
using FourIntKept = std::array<int32_t, 4>;
inline Four loaded(const FourKept& kept) noexcept {
    Four four;
    std::memcpy(&four, kept.data(), sizeof four);
    return four;
}
inline FourInt loaded(const FourIntKept& kept) noexcept {
    FourInt four;
    std::memcpy(&four, kept.data(), sizeof four);
    return four;
}

inline Four limited(Four x) noexcept {  // to 0..1; NaN gives 0
    x = x > 0 ? x : Four{};
    return x < 1 ? x : Four{1, 1, 1, 1};
}

inline Four narrowed(const Colour& colour) noexcept {
    return Four{static_cast<float>(colour[0]), static_cast<float>(colour[1]),
                static_cast<float>(colour[2]), static_cast<float>(colour[3])};
}
inline Colour widened(Four four) noexcept { return {four[0], four[1], four[2], four[3]}; }

}  // namespace ko::precise
