// The graph that every curve editor shows: where a value stands on the control, and which value
// stands under the cursor. Positions are pixels of the control's client area.
#pragma once

#include <cstdint>

#include "frame/arithmetic.h"

namespace ko::dialog {

struct Point {
    int32_t x;
    int32_t y;
    bool operator==(const Point&) const = default;
};

struct Size {
    int32_t width;
    int32_t height;
    bool operator==(const Size&) const = default;
};

// The plot begins 10 pixels inside the control and ends 13 before its far edges.
constexpr int32_t kGraphInset = 10;
constexpr int32_t kGraphMargins = 23;

constexpr Size plotSize(Size control) noexcept {
    return {control.width - kGraphMargins, control.height - kGraphMargins};
}

// A tolerance is counted in pixels of 96 dpi: at twice as many it is as easy to hit.
constexpr Size atResolution(Size tolerance, int32_t dpi) noexcept {
    return {tolerance.width * dpi / 96, tolerance.height * dpi / 96};
}

// Strictly nearer than the tolerance on both axes.
constexpr bool isNear(Point a, Point b, Size tolerance) noexcept {
    const int32_t dx = a.x < b.x ? b.x - a.x : a.x - b.x;
    const int32_t dy = a.y < b.y ? b.y - a.y : a.y - b.y;
    return dx < tolerance.width && dy < tolerance.height;
}

// Grid index i of a last index n, and a level 0..255; integers, every division truncates.
constexpr Point plotPoint(Size control, int32_t index, int32_t last, int32_t level) noexcept {
    const Size plot = plotSize(control);
    return {kGraphInset + plot.width * index / last,
            kGraphInset + plot.height - level * plot.height / 255};
}

// The level 0..255 under a row; 0 when the control is too small to have a plot.
constexpr int32_t levelAt(Size control, int32_t y) noexcept {
    const int32_t height = plotSize(control).height;
    if (height <= 0) return 0;
    return clampTo((height - y + kGraphInset) * 255 / height, 0, 255);
}

// Presses on the control's outermost pixels do not count.
constexpr bool isInsideGraph(Size control, Point at) noexcept {
    return at.x >= 1 && at.y >= 1 && at.x <= control.width - 2 && at.y <= control.height - 2;
}

static_assert(plotPoint({279, 279}, 0, 16, 0) == Point{10, 266});
static_assert(plotPoint({279, 279}, 16, 16, 255) == Point{266, 10});
static_assert(levelAt({279, 279}, 10) == 255);

}  // namespace ko::dialog
