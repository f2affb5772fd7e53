#include "front/dialog/colour_pick.h"

#include <algorithm>
#include <cstdlib>

#include "frame/colour_words.h"
#include "frame/dialog/typed.h"
#include "frame/display.h"
#include "frame/scan.h"
#include "front/front.h"

namespace ko::front {

using dialog::Point;
using dialog::Size;

namespace {

constexpr size_t kFieldCharacters = 4;

// As the host itself shows it, through its current link.
uint32_t colourOf(int32_t c, int32_t m, int32_t y, int32_t k) noexcept {
    const Rgb light = cmykToRgb(c, m, y, k);
    return packRgb(light.r, light.g, light.b);
}

// The place that lies so many cells further on, and at least one pixel.
int32_t stepped(int32_t at, int32_t length, int32_t cells, int32_t by) noexcept {
    if (by == 0) return at;
    const int32_t cell = clampTo(at * cells / length + by, 0, cells - 1);
    const int32_t first = (cell * length + cells - 1) / cells;
    return by < 0 ? std::min(at - 1, first) : std::max(at + 1, first);
}

}  // namespace

std::vector<uint32_t> fieldPicture(Size size) {
    if (size.width <= 0 || size.height <= 0) return {};
    const auto width = static_cast<size_t>(size.width);
    std::vector<uint32_t> pixels(width * static_cast<size_t>(size.height));
    for (int32_t row = 0; row < kSaturationRows; ++row) {
        const int32_t bottom = size.height - row * size.height / kSaturationRows;
        const int32_t top = size.height - (row + 1) * size.height / kSaturationRows;
        if (top == bottom) continue;
        const auto line = pixels.begin() + static_cast<ptrdiff_t>(width) * top;
        for (int32_t column = 0; column < kHueColumns; ++column) {
            const Light light = fieldCell(column, row);
            std::fill(line + column * size.width / kHueColumns,
                      line + (column + 1) * size.width / kHueColumns,
                      static_cast<uint32_t>(light.r << 16 | light.g << 8 | light.b));
        }
        for (int32_t y = top + 1; y < bottom; ++y)
            std::copy_n(line, width, pixels.begin() + static_cast<ptrdiff_t>(width) * y);
    }
    return pixels;
}

// The hue is what is left when the colour's grey is taken off and the rest drawn out to the full
// range; the saturation counts from its own lightness.
std::optional<FieldCell> nearestCell(Inks inks) noexcept {
    const int32_t light[] = {255 - inks.c, 255 - inks.m, 255 - inks.y};
    const auto [low, high] = std::minmax({light[0], light[1], light[2]});
    if (low == high) return std::nullopt;
    const auto full = [&](int32_t channel) { return (channel - low) * 255 / (high - low); };
    const auto apart = [&](int32_t column) {
        const Light hue = hueOf(column);
        return std::abs(hue.r - full(light[0])) + std::abs(hue.g - full(light[1])) +
               std::abs(hue.b - full(light[2]));
    };
    FieldCell nearest{0, (high - low) * kSaturationRows / (255 - std::abs(high + low - 255))};
    for (int32_t column = 1; column < kHueColumns; ++column)
        if (apart(column) < apart(nearest.column)) nearest.column = column;
    return nearest;
}

ColourPick::ColourPick(uint32_t cmyk) noexcept
    : levels_{static_cast<int32_t>(cmyk >> 24), static_cast<int32_t>(cmyk >> 16 & 255),
              static_cast<int32_t>(cmyk >> 8 & 255), static_cast<int32_t>(cmyk & 255)},
      base_{levels_[0], levels_[1], levels_[2]} {}

uint32_t ColourPick::packed() const noexcept {
    return limitedCmyk(levels_[0], levels_[1], levels_[2], levels_[3]);
}

uint32_t ColourPick::swatch() const noexcept {
    return colourOf(levels_[0], levels_[1], levels_[2], levels_[3]);
}

uint32_t ColourPick::lightnessColour(int32_t height, int32_t y) const noexcept {
    return colourOf(inkAtLightness(base_.c, y, height), inkAtLightness(base_.m, y, height),
                    inkAtLightness(base_.y, y, height), 0);
}

int32_t ColourPick::shownValue(Ink ink) const noexcept {
    return valueToDisplay(levels256_, level(ink));
}

std::optional<Point> ColourPick::fieldMark(Size field) const noexcept {
    if (!picked_) return std::nullopt;
    return Point{picked_->x * field.width / field_.width,
                 picked_->y * field.height / field_.height};
}

int32_t ColourPick::lightnessAt(int32_t height) const noexcept {
    return lightness_ * height / lightnessHeight_;
}

int32_t ColourPick::lightnessMark(int32_t height) const noexcept {
    return std::min(lightnessAt(height), height - 1);
}

int32_t ColourPick::blackMark(int32_t width) const noexcept {
    // Rounded up: the first column that gives this black.
    return std::min((level(Ink::k) * width + 254) / 255, width - 1);
}

void ColourPick::clickField(Size field, Point at) noexcept {
    if (field.width <= 0 || field.height <= 0) return;
    field_ = field;
    picked_ = insideField(field, at);
    base_ = fieldInks(field, at);
    followLightness();
}

void ColourPick::clickLightness(int32_t height, int32_t y) noexcept {
    if (height <= 0) return;
    lightnessHeight_ = height;
    lightness_ = clampTo(y, 0, height);
    followLightness();
}

void ColourPick::clickBlack(int32_t width, int32_t x) noexcept {
    if (width > 0) setInk(Ink::k, blackAt(x, width));
}

void ColourPick::stepField(Size field, int32_t columns, int32_t rows) noexcept {
    if (field.width <= 0 || field.height <= 0) return;
    const Point from = fieldMark(field).value_or(Point{field.width / 2, field.height / 2});
    clickField(field, {stepped(from.x, field.width, kHueColumns, columns),
                       stepped(from.y, field.height, kSaturationRows, rows)});
}

void ColourPick::stepLightness(int32_t height, int32_t rows) noexcept {
    if (height > 0) clickLightness(height, lightnessAt(height) + rows);
}

void ColourPick::stepInk(Ink ink, int32_t by) noexcept {
    const int32_t value = clampTo(by, -255, 255) + shownValue(ink);
    setInk(ink, valueFromDisplay(levels256_, value));
}

void ColourPick::leaveField(Ink ink, std::string_view text, bool touched) {
    if (!touched && text == fieldText(ink)) return;
    const std::string most = std::to_string(greatestValue());
    notice_ = dialog::numberNotice(text, 0, greatestValue(), "0", most);
    setInk(ink, valueFromDisplay(levels256_, typedIntegerIn(text.substr(0, kFieldCharacters))));
}

void ColourPick::setInk(Ink ink, int32_t level) noexcept {
    levels_[static_cast<size_t>(ink)] = level;
    if (ink == Ink::k) return;
    // The strip runs through the colour as it stands now, which is its middle.
    base_ = {levels_[0], levels_[1], levels_[2]};
    lightness_ = 1;
    lightnessHeight_ = 2;
    markBase();
}

// A grey has every hue: the mark goes down to it where it stands.
void ColourPick::markBase() noexcept {
    const std::optional<FieldCell> cell = nearestCell(base_);
    if (!cell && !picked_) return;
    const Size cells{kHueColumns, kSaturationRows};
    const int32_t column = cell ? cell->column : picked_->x * cells.width / field_.width;
    picked_ = Point{column, kSaturationRows - (cell ? cell->row : 0)};
    field_ = cells;
}

void ColourPick::followLightness() noexcept {
    levels_[0] = inkAtLightness(base_.c, lightness_, lightnessHeight_);
    levels_[1] = inkAtLightness(base_.m, lightness_, lightnessHeight_);
    levels_[2] = inkAtLightness(base_.y, lightness_, lightnessHeight_);
}

}  // namespace ko::front
