// The inks that nodes of a link before this one got, and where they lead to.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "precise/four.h"
#include "precise/pipeline.h"

namespace ko::precise {

// For grids of four inputs whose nodes are met in the order first, second, fourth, third channel,
// the third fastest. Two slabs of the first channel are kept, as floats.
class Trail {
public:
    struct Guess {
        Colour inks{};
        bool inside = false;  // all that it comes from were
    };

    explicit Trail(int points)
        : points_(static_cast<size_t>(points)), slab_(points_ * points_ * points_),
          inks_(2 * slab_), inside_(2 * slab_) {}

    void goTo(const std::array<int, kMostChannels>& node) noexcept {
        node_ = node;
        const auto at = [&](size_t axis) { return static_cast<size_t>(node[axis]); };
        place_ = (at(1) * points_ + at(3)) * points_ + at(2) + at(0) % 2 * slab_;
        const size_t across = at(0) % 2 ? slab_ : 0 - slab_;
        steps_ = {across, points_ * points_, 1, points_};
    }

    // The plane through three nodes before this one: over two axes what each step did is done
    // once more. The first channel comes first, as tables are linear along it.
    bool guess(Guess& guess) const noexcept {
        constexpr size_t kOrder[] = {0, 2, 1, 3};
        size_t axes[2], count = 0;
        for (const size_t axis : kOrder)
            if (count < 2 && node_[axis] > 0) axes[count++] = axis;
        if (count == 0) return false;
        const size_t a = place_ - steps_[axes[0]];
        guess.inside = inside_[a];
        Four inks = loaded(inks_[a]);
        if (count == 2) {
            const size_t b = place_ - steps_[axes[1]], both = a - steps_[axes[1]];
            guess.inside = guess.inside && inside_[b] && inside_[both];
            inks += loaded(inks_[b]) - loaded(inks_[both]);
        } else if (axes[0] != 0 && node_[axes[0]] > 1) {
            inks += inks - loaded(inks_[a - steps_[axes[0]]]);
        }
        guess.inks = widened(limited(inks));
        return true;
    }

    void follow(const Colour& inks, bool inside) noexcept {
        const Four narrow = narrowed(inks);
        std::memcpy(inks_[place_].data(), &narrow, sizeof narrow);
        inside_[place_] = inside;
    }

private:
    size_t points_, slab_;
    std::vector<FourKept> inks_;
    std::vector<uint8_t> inside_;
    std::array<int, kMostChannels> node_{};
    size_t place_ = 0;
    std::array<size_t, kMostChannels> steps_{};
};

}  // namespace ko::precise
