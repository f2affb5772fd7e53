// The model of the colour pick dialog: ink values, the field of hues and the strips of lightness
// and black. Its geometry is pure functions of the controls' sizes: integers, every product is
// formed first and every division truncates toward zero, with negative operands too.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/arithmetic.h"
#include "frame/dialog/graph.h"
#include "frame/problem.h"

namespace ko::front {

constexpr int32_t kHueColumns = 120;
constexpr int32_t kSaturationRows = 64;
constexpr int32_t kGreySteps = 101;  // of the black strip, white and black among them

struct Light {
    int32_t r, g, b;
    bool operator==(const Light&) const = default;
};

struct Inks {
    int32_t c, m, y;
    bool operator==(const Inks&) const = default;
};

// One light channel around the circle of hues: up, full, down, none.
constexpr int32_t hueRamp(int32_t t) noexcept {
    if (t < 20) return 12 * t;
    if (t < 61) return 255;
    if (t < 81) return (80 - t) * 12;
    return 0;
}

// The full hue of a column 0..119.
constexpr Light hueOf(int32_t column) noexcept {
    return {hueRamp((column + 160) % kHueColumns), hueRamp((column + 120) % kHueColumns),
            hueRamp((column + 80) % kHueColumns)};
}

// A hue on its way from a flat grey 127 to itself: amount of whole.
constexpr Light fromGrey(Light hue, int32_t amount, int32_t whole) noexcept {
    const auto mix = [&](int32_t h) { return (h - 127) * amount / whole + 127; };
    return {mix(hue.r), mix(hue.g), mix(hue.b)};
}

// What the field shows in a cell; row 0 is the bottom.
constexpr Light fieldCell(int32_t column, int32_t row) noexcept {
    return fromGrey(hueOf(column), row, kSaturationRows);
}
static_assert(fieldCell(77, 0) == Light{127, 127, 127});
static_assert(fieldCell(0, 1) == Light{129, 126, 126});  // -127 / 64 is -1

// The base colour under a click on a field that has a size; a place outside counts as the nearest.
// One row below the last is the flat grey.
constexpr dialog::Point insideField(dialog::Size field, dialog::Point at) noexcept {
    return {clampTo(at.x, 0, field.width - 1), clampTo(at.y, 0, field.height)};
}
constexpr Inks fieldInks(dialog::Size field, dialog::Point at) noexcept {
    const dialog::Point place = insideField(field, at);
    const Light light = fromGrey(hueOf(place.x * kHueColumns / field.width),
                                 field.height - place.y, field.height);
    return {255 - light.r, 255 - light.g, 255 - light.b};
}

// One ink at a position of the lightness strip: none at its top, the base colour's in the middle,
// all of it below its last row. A strip of an odd height would pass 255 there.
constexpr int32_t inkAtLightness(int32_t base, int32_t position, int32_t height) noexcept {
    const int32_t middle = height / 2;
    if (position < middle) return position * base * 2 / height;
    return clampTo((255 - base) * (position - middle) * 2 / height + base, 0, 255);
}

// Black at a column of its strip; one beyond the last is 255.
constexpr int32_t blackAt(int32_t x, int32_t width) noexcept {
    return clampTo(x, 0, width) * 255 / width;
}
constexpr int32_t greyOfStep(int32_t step) noexcept {
    return 255 - step * 255 / (kGreySteps - 1);
}

// Where on the field a colour's hue and saturation stand; nothing for a grey, which has every hue.
struct FieldCell {
    int32_t column, row;  // row 0 is the grey at the bottom
};
std::optional<FieldCell> nearestCell(Inks inks) noexcept;

// The field as pixels 0x00RRGGBB, rows from the top: 120 x 64 cells scaled to the size.
std::vector<uint32_t> fieldPicture(dialog::Size size);

enum class Ink { c, m, y, k };
constexpr Ink kPickInks[] = {Ink::c, Ink::m, Ink::y, Ink::k};

class ColourPick {
public:
    explicit ColourPick(uint32_t cmyk) noexcept;

    uint32_t packed() const noexcept;  // C << 24 | M << 16 | Y << 8 | K
    int32_t level(Ink ink) const noexcept { return levels_[static_cast<size_t>(ink)]; }
    Inks base() const noexcept { return base_; }
    uint32_t swatch() const noexcept;  // a COLORREF, by the host's own conversion
    uint32_t lightnessColour(int32_t height, int32_t y) const noexcept;  // what a row would give

    // The fields and their spin controls, in percent or in 256 levels.
    bool shows256Levels() const noexcept { return levels256_; }
    int32_t shownValue(Ink ink) const noexcept;
    std::string fieldText(Ink ink) const { return std::to_string(shownValue(ink)); }
    int32_t greatestValue() const noexcept { return levels256_ ? 255 : 100; }
    // That what was typed last was limited, or is no number.
    const std::optional<Problem>& notice() const noexcept { return notice_; }

    // Where the markers stand on controls of any size. The field has none until something is
    // picked or typed.
    std::optional<dialog::Point> fieldMark(dialog::Size field) const noexcept;
    int32_t lightnessMark(int32_t height) const noexcept;
    int32_t blackMark(int32_t width) const noexcept;

    // Controls without a size change nothing.
    void clickField(dialog::Size field, dialog::Point at) noexcept;
    void clickLightness(int32_t height, int32_t y) noexcept;
    void clickBlack(int32_t width, int32_t x) noexcept;
    // From the keyboard: cells of the field, rows of the strip, units of a value.
    void stepField(dialog::Size field, int32_t columns, int32_t rows) noexcept;
    void stepLightness(int32_t height, int32_t rows) noexcept;
    void stepInk(Ink ink, int32_t by) noexcept;
    // A text that nobody has touched leaves the ink as it is, to the level: percentages are
    // coarser than levels.
    void leaveField(Ink ink, std::string_view text, bool touched);
    void show256Levels(bool on) noexcept { levels256_ = on; }

private:
    int32_t lightnessAt(int32_t height) const noexcept;
    void setInk(Ink ink, int32_t level) noexcept;
    void markBase() noexcept;
    void followLightness() noexcept;

    std::array<int32_t, 4> levels_;
    Inks base_;  // what the lightness strip runs through
    // Places with the sizes they were clicked at.
    std::optional<dialog::Point> picked_;
    dialog::Size field_{1, 1};
    int32_t lightness_ = 1, lightnessHeight_ = 2;  // the middle: the base colour itself
    bool levels256_ = false;
    std::optional<Problem> notice_;
};

}  // namespace ko::front
