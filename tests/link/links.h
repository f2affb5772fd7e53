// Links for tests, made and filled through the exported functions.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "tests/support/owned.h"

namespace ko::test {

using LinkHolder = OwnedLink;

inline size_t gridSize(const LinkProfile& link) {
    size_t size = 4;
    for (int32_t axis = 0; axis < link.inputChannels; ++axis)
        size *= static_cast<size_t>(link.gridPoints);
    return size;
}

// Every grid value anything from 0 to highest.
inline LinkHolder randomLink(int32_t channels, int32_t gridPoints, uint32_t seed,
                             uint32_t highest) {
    LinkHolder link(jKoLinkCreateProfile(channels, gridPoints));
    std::mt19937 random(seed);
    for (size_t i = 0; i < gridSize(*link); ++i)
        link->grid[i] = static_cast<uint16_t>(random() % (highest + 1));
    return link;
}

// Random bytes in which the ends and the grid's own levels come up often.
inline std::vector<uint8_t> randomLevels(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> levels(count);
    for (uint8_t& level : levels) {
        const auto choice = random() % 8, value = random();
        level = static_cast<uint8_t>(choice == 0   ? 0
                                     : choice == 1 ? 255
                                     : choice == 2 ? value % 17 * 255 / 16
                                                   : value);
    }
    return levels;
}

}  // namespace ko::test
