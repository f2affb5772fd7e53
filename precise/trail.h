// The inks that nodes of a link before this one got, and where they lead to.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

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
          nodes_(2 * slab_) {}

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
        const Node& a = nodes_[place_ - steps_[axes[0]]];
        guess.inside = a.inside;
        if (count == 2) {
            const Node& b = nodes_[place_ - steps_[axes[1]]];
            const Node& both = nodes_[place_ - steps_[axes[0]] - steps_[axes[1]]];
            guess.inside = guess.inside && b.inside && both.inside;
            for (size_t i = 0; i < 4; ++i)
                guess.inks[i] = limited(static_cast<double>(a.inks[i]) + b.inks[i] - both.inks[i]);
        } else if (axes[0] != 0 && node_[axes[0]] > 1) {
            const Node& before = nodes_[place_ - 2 * steps_[axes[0]]];
            for (size_t i = 0; i < 4; ++i)
                guess.inks[i] = limited(2.0 * a.inks[i] - before.inks[i]);
        } else {
            for (size_t i = 0; i < 4; ++i) guess.inks[i] = a.inks[i];
        }
        return true;
    }

    void follow(const Colour& inks, bool inside) noexcept {
        Node& node = nodes_[place_];
        for (size_t i = 0; i < 4; ++i) node.inks[i] = static_cast<float>(inks[i]);
        node.inside = inside;
    }

private:
    struct Node {
        std::array<float, kMostChannels> inks{};
        bool inside = false;
    };
    static double limited(double value) noexcept { return std::clamp(value, 0.0, 1.0); }

    size_t points_, slab_;
    std::vector<Node> nodes_;
    std::array<int, kMostChannels> node_{};
    size_t place_ = 0;
    std::array<size_t, kMostChannels> steps_{};
};

}  // namespace ko::precise
