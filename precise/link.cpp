#include "precise/link.h"

namespace ko::precise {
namespace {

// The last step of the library's nodes is 7 levels, the others 8.
constexpr int libraryLevel(int node) noexcept { return 8 * node - node / 32; }
static_assert(libraryLevel(31) == 248 && libraryLevel(32) == 255);

}  // namespace

double Link::level(int i) const noexcept {
    if (nodes == Nodes::library) return libraryLevel(i) / 255.0;
    return static_cast<double>(i) / (gridPoints - 1);
}

double Link::position(double level) const noexcept {
    if (nodes == Nodes::even || bits == 8) return level;
    const double at = level * 255;
    return at <= 248 ? at / 256 : (31 + (at - 248) / 7) / 32;
}

Colour Link::at(const Colour& in) const noexcept {
    const auto last = gridPoints - 1;
    size_t strides[kMostChannels] = {};
    const auto width = static_cast<size_t>(bits / 8);
    size_t stride = static_cast<size_t>(outputs) * width;
    for (int axis = inputs - 1; axis >= 0; --axis) {
        strides[axis] = stride;
        stride *= static_cast<size_t>(gridPoints);
    }
    const uint8_t* low = table.data();
    double rests[kMostChannels] = {};
    for (int axis = 0; axis < inputs; ++axis) {
        const double x = in[static_cast<size_t>(axis)];
        const double at = position(x > 0 ? x < 1 ? x : 1 : 0) * last;
        int cell = static_cast<int>(at);
        if (cell > last - 1) cell = last - 1;
        rests[axis] = at - cell;
        low += static_cast<size_t>(cell) * strides[axis];
    }
    const auto value = [&](const uint8_t* node, size_t channel) -> double {
        return width == 1 ? node[channel] : node[2 * channel] << 8 | node[2 * channel + 1];
    };
    const int first = inputs == 4 ? 1 : 0, axes = inputs - first;
    int order[3] = {first, first + 1, first + 2};
    for (int i = 0; i < axes; ++i)
        for (int j = i + 1; j < axes; ++j)
            if (rests[order[j]] > rests[order[i]]) std::swap(order[i], order[j]);
    Colour out{};
    const auto outs = static_cast<size_t>(outputs);
    for (int half = 0; half <= first; ++half) {
        const double weight = first == 0 ? 1 : half == 1 ? rests[0] : 1 - rests[0];
        const uint8_t* corner = low + (half == 1 ? strides[0] : 0);
        double before = 1;
        for (int at = 0; at <= axes; ++at) {
            // Barycentric weights: the fractions' differences in their order.
            const double next = at < axes ? rests[order[at]] : 0;
            const double share = weight * (before - next);
            for (size_t ch = 0; ch < outs; ++ch) out[ch] += share * value(corner, ch);
            before = next;
            if (at < axes) corner += strides[order[at]];
        }
    }
    const double scale = width == 1 ? 1.0 / 255 : 1.0 / 65535;
    for (double& v : out) v *= scale;
    return out;
}

}  // namespace ko::precise
