// Colours through the current links or the built-in tables, one by one and in rows.
#include <algorithm>

#include "frame/arithmetic.h"
#include "frame/arithmetic_mode.h"
#include "front/builtin_tables.h"
#include "front/current_links.h"
#include "front/front.h"
#include "grid/bytes.h"
#include "link/link.h"

namespace ko::front {
namespace {

int32_t level(int32_t value) noexcept { return clampTo(value, 0, 255); }
uint8_t byte(int32_t value) noexcept { return static_cast<uint8_t>(value); }

// In portions that fit a small buffer; store takes the four values of a pixel.
template <class Store>
void throughLink(const LinkProfile& link, const uint8_t* input, int32_t pixels,
                 Store store) noexcept {
    constexpr int32_t kPixels = 512;
    uint16_t values[kPixels * 4];
    const int32_t channels = link.inputChannels == 3 ? 3 : 4;
    while (pixels > 0) {
        const int32_t count = std::min(pixels, kPixels);
        link::convertRow(link, input, count, values);
        for (int32_t pixel = 0; pixel < count; ++pixel) store(values + pixel * 4);
        input += static_cast<ptrdiff_t>(count) * channels;
        pixels -= count;
    }
}

}  // namespace

Cmyk rgbToCmyk(int32_t r, int32_t g, int32_t b) noexcept {
    int32_t values[4] = {level(r), level(g), level(b), 0};
    if (const LinkProfile* current = rgbToCmykLink()) {
        const ArithmeticMode arithmetic;  // the tables need none: they are integers alone
        link::convert(*current, values);
        for (int32_t& value : values) value /= 16;
    } else {
        grid::bytesOfThree(builtin::kRgbToCmyk, values);
    }
    return {byte(values[0]), byte(values[1]), byte(values[2]), byte(values[3])};
}

Rgb cmykToRgb(int32_t c, int32_t m, int32_t y, int32_t k) noexcept {
    int32_t values[4] = {level(c), level(m), level(y), level(k)};
    if (const LinkProfile* current = cmykToRgbLink()) {
        const ArithmeticMode arithmetic;  // the tables need none: they are integers alone
        link::convert(*current, values);
        for (int32_t& value : values) value /= 16;
    } else {
        grid::dimmedBytesOfThree(builtin::kCmyToRgb, values);
    }
    return {byte(values[0]), byte(values[1]), byte(values[2])};
}

void rgbToCmykRow(const uint8_t* rgb, int32_t pixels, uint8_t* cmyk) noexcept {
    const LinkProfile* const current = rgbToCmykLink();
    if (!current) return grid::bytesOfThreeRow(builtin::kRgbToCmyk, rgb, pixels, cmyk);
    throughLink(*current, rgb, pixels, [&](const uint16_t* values) {
        for (int k = 0; k < 4; ++k) cmyk[k] = static_cast<uint8_t>(values[k] / 16);
        cmyk += 4;
    });
}

void cmykToRgbRow(const uint8_t* cmyk, int32_t pixels, uint8_t* rgb) noexcept {
    const LinkProfile* const current = cmykToRgbLink();
    if (!current) return grid::dimmedBytesOfThreeRow(builtin::kCmyToRgb, cmyk, pixels, rgb);
    throughLink(*current, cmyk, pixels, [&](const uint16_t* values) {
        for (int k = 0; k < 3; ++k) rgb[k] = static_cast<uint8_t>(values[k] / 16);
        rgb += 3;
    });
}

int32_t rgbToGray(int32_t r, int32_t g, int32_t b) noexcept {
    // In double, left to right.
    return 255 - static_cast<int32_t>(0.299 * level(r) + 0.587 * level(g) + 0.114 * level(b));
}

}  // namespace ko::front
