// What the colour-correction page shows of its model: texts, colours, marks and the range.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "cmyk/dialog/colour_correction.h"
#include "cmyk/dialog/correction_surfaces.h"
#include "frame/display.h"
#include "frame/state.h"
#include "resources/texts.h"

namespace ko::cmyk {
namespace {

using dialog::Point;
using dialog::Size;

constexpr int32_t kHueCells = kHues / 2, kSaturationCells = 100, kScaleCells = 101;

std::string filled(const char* pattern, int32_t a, int32_t b) {
    char text[100];
    const int length = std::snprintf(text, sizeof text, translated(pattern), a, b);
    return {text, static_cast<size_t>(clampTo(length, 0, sizeof text - 1))};
}

void appendPixel(std::vector<uint8_t>& row, const Levels& cmy, int32_t k) {
    for (const int32_t level : cmy) row.push_back(static_cast<uint8_t>(level));
    row.push_back(static_cast<uint8_t>(k));
}

// As bitmaps have it: red and blue change places.
constexpr uint32_t bitmapPixel(uint32_t rgb) noexcept {
    return (rgb & 255) << 16 | (rgb & 0xff00) | (rgb >> 16 & 255);
}

constexpr uint32_t throughOutput(const WorkingCurves& curves, const Cmyk& levels) noexcept {
    std::array<int32_t, 4> inks;
    for (size_t ink = 0; ink < 4; ++ink)
        inks[ink] = curves[4 + ink][static_cast<size_t>(clampTo(levels[ink], 0, 255))];
    return packCmyk(inks[0], inks[1], inks[2], inks[3]);
}

// A row of colours as the profile prints them, for the screen. A place is that of a node, which the
// input curves lead to: where a correction reaches is where its colours change. What the grid makes
// of them goes through the output curves.
std::vector<uint32_t> printed(const CmykProfile& profile, const std::vector<uint8_t>& cmyk,
                              ColourDisplay display) {
    const size_t pixels = cmyk.size() / 4;
    std::vector<uint16_t> levels(cmyk.size());
    cmykToCmyk16Row(profile, cmyk.data(), static_cast<int32_t>(pixels), levels.data());
    std::vector<uint32_t> words(pixels), shown(pixels);
    const WorkingCurves curves = workingCurves(profile);
    for (size_t at = 0; at < pixels; ++at) {
        const uint16_t* const ink = levels.data() + 4 * at;
        words[at] = throughOutput(curves, {fromScale16(ink[0]), fromScale16(ink[1]),
                                           fromScale16(ink[2]), fromScale16(ink[3])});
    }
    display(words, shown);
    std::transform(shown.begin(), shown.end(), shown.begin(), bitmapPixel);
    return shown;
}

}  // namespace

int32_t ColourCorrection::shownValue(int32_t level) const noexcept {
    return valueToDisplay(levels256_, level);
}

std::string ColourCorrection::lightnessText() const {
    if (!lightnessSpan_) return translated(texts::kNotSpecified);
    return filled(texts::kLightnessSpan, lightnessSpan_->low, lightnessSpan_->high);
}

std::string ColourCorrection::blackText() const {
    if (!blackSpan_) return translated(texts::kNotSpecified);
    return filled(texts::kBlackSpan, blackSpan_->low, blackSpan_->high);
}

std::string ColourCorrection::rangeText() const {
    const int32_t saturation = place_.saturation / kUnitsAPercent;
    const std::string text = filled(texts::kSaturationRange,
                                    std::max(0, saturation - saturationReach_),
                                    std::min(100, saturation + saturationReach_));
    if (place_.hue == kNoHue || hueReach_ == kWholeHue) return text + translated(texts::kEveryHue);
    return text + filled(texts::kHueRange, (place_.hue - hueReach_ + kHues) % kHues,
                         (place_.hue + hueReach_) % kHues);
}

std::string ColourCorrection::countText() const {
    return filled(texts::kNodesInRange, nodesInRange_, 0);
}

std::string ColourCorrection::changedText(int32_t count) {
    return filled(texts::kNodesChanged, count, 0);
}

Cells ColourCorrection::areaCells(ColourDisplay display) const {
    std::vector<uint8_t> row;
    row.reserve(4 * kHueCells * kSaturationCells);
    for (int32_t fromTop = 0; fromTop < kSaturationCells; ++fromTop)
        for (int32_t column = 0; column < kHueCells; ++column)
            appendPixel(row, levelsAt({2 * column + 1, kFullSaturation - 2 * fromTop - 1,
                                       place_.lightness}), picked_[3]);
    return {kHueCells, kSaturationCells, printed(pictured(), row, display)};
}

Cells ColourCorrection::scaleCells(Surface scale, ColourDisplay display) const {
    std::vector<uint8_t> row;
    for (int32_t percent = 0; percent < kScaleCells; ++percent)
        if (scale == Surface::black)
            appendPixel(row, {picked_[0], picked_[1], picked_[2]}, value100to255(percent));
        else
            appendPixel(row, levelsAt({aim_.hue, aim_.saturation, percent * kUnitsAPercent}),
                        picked_[3]);
    auto pixels = printed(pictured(), row, display);
    if (scale == Surface::black) return {kScaleCells, 1, std::move(pixels)};
    return {1, kScaleCells, std::move(pixels)};
}

uint32_t ColourCorrection::onPaper(const Cmyk& levels) const {
    return throughOutput(workingCurves(profile_), levels);
}

// For the list: the colour picked and what its inks were given, in what the fields count in.
std::string ColourCorrection::madeText(size_t which) const {
    const Correction& correction = made_.list.at(which);
    std::string text = std::to_string(which + 1) + ":";
    for (size_t ink = 0; ink < 4; ++ink)
        text += std::string(" ") + "CMYK"[ink] + " " + shown(correction.picked[ink]);
    text += " :";
    for (size_t ink = 0; ink < 4; ++ink) {
        const int32_t delta = correction.delta[ink];
        if (delta == 0) continue;
        text += std::string(" ") + "CMYK"[ink] + (delta > 0 ? " +" : " -") + shown(std::abs(delta));
    }
    return text;
}

uint32_t ColourCorrection::displayed(const Cmyk& levels, ColourDisplay display) const {
    const uint32_t word = onPaper(levels);
    uint32_t rgb = 0;
    display({&word, 1}, {&rgb, 1});
    return rgb;
}

Point ColourCorrection::marker(Size area) const noexcept {
    return {markerOn(Surface::hueBar, area.width), markerOn(Surface::saturationBar, area.height)};
}

int32_t ColourCorrection::markerOn(Surface surface, int32_t length) const noexcept {
    return pixelAt(positionOn(surface), length, lastUnit(surface));
}

std::vector<Line> ColourCorrection::outline(Size area, bool half) const {
    const InfluenceRange reach = range();
    const int32_t part = half ? 2 : 1;
    const bool everyHue = place_.hue == kNoHue || reach.hue / part == kWholeHue;
    const int32_t top = place_.saturation + reach.saturation / part;
    const int32_t bottom = place_.saturation - std::min(reach.saturation, place_.saturation) / part;
    const auto column = [&](int32_t hue) {
        return pixelAt((hue + kHues) % kHues, area.width, kHues - 1);
    };
    const auto row = [&](int32_t saturation) {
        return pixelAt(kFullSaturation - saturation, area.height, kFullSaturation);
    };
    const int32_t right = std::max(0, area.width - 1);
    const int32_t high = row(std::min(top, kFullSaturation)), low = row(bottom);
    const int32_t first = place_.hue - reach.hue / part, last = place_.hue + reach.hue / part;
    std::vector<Line> lines;
    const auto across = [&](int32_t y) {
        if (everyHue) {
            lines.push_back({{0, y}, {right, y}});
        } else if (first >= 0 && last < kHues) {
            lines.push_back({{column(first), y}, {column(last), y}});
        } else {  // over the edge and on at the other
            lines.push_back({{column(first), y}, {right, y}});
            lines.push_back({{0, y}, {column(last), y}});
        }
    };
    if (top <= kFullSaturation) across(high);  // otherwise the range goes on beyond the area
    across(low);
    if (!everyHue)
        for (const int32_t hue : {first, last})
            lines.push_back({{column(hue), high}, {column(hue), low}});
    return lines;
}

int32_t ColourCorrection::strengthOn(Surface bar, int32_t length, int32_t at) const noexcept {
    const int32_t unit = unitAt(at, length, lastUnit(bar));
    if (bar == Surface::blackBar) {
        const int32_t percent = value255to100(unit);
        return !blackSpan_ || (percent >= blackSpan_->low && percent <= blackSpan_->high) ? 255 : 0;
    }
    // Along one scale, from the picked colour: the fade of a place that differs in it alone.
    Place other = place_;
    switch (bar) {
        case Surface::hueBar: other.hue = unit; break;
        case Surface::saturationBar: other.saturation = kFullSaturation - unit; break;
        default: other.lightness = unit; break;
    }
    const auto fade = fadeAt(place_, other, range());
    return fade && fade->edge > 0 ? 255 - 255 * fade->distance / fade->edge : 0;
}

}  // namespace ko::cmyk
