// One colour through the current links or the built-in tables: the plain kernels.
#include "frame/arithmetic.h"
#include "front/builtin_cell.h"
#include "front/current_links.h"
#include "front/front.h"
#include "link/link.h"
#include "resources/builtin_tables.h"

namespace ko::front {
namespace {

// Eight corners, integers only, one truncating division.
void interpolate(const uint8_t (&table)[builtin::kTableNodes][4], const int32_t (&levels)[3],
                 int32_t (&outputs)[4]) noexcept {
    BuiltinCell cells[3];
    for (int32_t axis = 0; axis < 3; ++axis) cells[axis] = locateBuiltinCell(levels[axis]);
    int32_t sums[4] = {};
    for (uint32_t corner = 0; corner < 8; ++corner) {
        size_t node = 0;
        int32_t weight = 1;
        for (uint32_t axis = 0; axis < 3; ++axis) {
            const bool upper = (corner >> (2 - axis) & 1) != 0;
            const BuiltinCell& cell = cells[axis];
            node = node * builtin::kTablePoints + static_cast<size_t>(cell.index + (upper ? 1 : 0));
            weight *= upper ? cell.distance : cell.width - cell.distance;
        }
        for (uint32_t k = 0; k < 4; ++k) sums[k] += table[node][k] * weight;
    }
    const int32_t volume = cells[0].width * cells[1].width * cells[2].width;
    for (uint32_t k = 0; k < 4; ++k) outputs[k] = sums[k] / volume;
}

int32_t level(int32_t value) noexcept { return clampTo(value, 0, 255); }
uint8_t byte(int32_t value) noexcept { return static_cast<uint8_t>(value); }

}  // namespace

Cmyk rgbToCmyk(int32_t r, int32_t g, int32_t b) noexcept {
    int32_t values[4] = {level(r), level(g), level(b), 0};
    if (const LinkProfile* current = rgbToCmykLink()) {
        link::convert(*current, values);
        for (int32_t& value : values) value /= 16;
    } else {
        interpolate(builtin::kRgbToCmyk, {values[0], values[1], values[2]}, values);
    }
    return {byte(values[0]), byte(values[1]), byte(values[2]), byte(values[3])};
}

Rgb cmykToRgb(int32_t c, int32_t m, int32_t y, int32_t k) noexcept {
    int32_t values[4] = {level(c), level(m), level(y), level(k)};
    if (const LinkProfile* current = cmykToRgbLink()) {
        link::convert(*current, values);
        for (int32_t& value : values) value /= 16;
    } else {
        const int32_t light = 255 - values[3];
        interpolate(builtin::kCmyToRgb, {values[0], values[1], values[2]}, values);
        for (int32_t& value : values) value = value * light / 255;
    }
    return {byte(values[0]), byte(values[1]), byte(values[2])};
}

int32_t rgbToGray(int32_t r, int32_t g, int32_t b) noexcept {
    // In double, left to right.
    return 255 - static_cast<int32_t>(0.299 * level(r) + 0.587 * level(g) + 0.114 * level(b));
}

}  // namespace ko::front
