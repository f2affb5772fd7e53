// From ink to light: the press itself, at every node.
#include "front/press.h"

#include "front/builtin_tables.h"
#include "grid/cell.h"

namespace ko::builtin {
namespace {

struct Lights {
    uint8_t nodes[kNodes][4] = {};
};

constexpr Lights makeLights() {
    Lights lights;
    size_t node = 0;
    grid::forEachNode<3>(grid::kBytePoints, [&](const std::array<int32_t, 3>& at) {
        Colour covered{};
        for (size_t ink = 0; ink < 3; ++ink)
            covered[ink] = coverage(grid::steppedLevel(at[ink], grid::kBytePoints), ink);
        const Colour light = patch(covered);
        for (size_t k = 0; k < 3; ++k) lights.nodes[node][k] = rounded(light[k]);
        ++node;
    });
    return lights;
}

constexpr Lights kLights = makeLights();

}  // namespace

constinit const uint8_t (&kCmyToRgb)[kNodes][4] = kLights.nodes;

}  // namespace ko::builtin
