#include "cmyk/dialog/colour_correction.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

#include "cmyk/dialog/correction_surfaces.h"
#include "frame/colour_words.h"
#include "frame/dialog/typed.h"
#include "frame/display.h"
#include "frame/scan.h"

namespace ko::cmyk {
namespace {

using dialog::Point;
using dialog::Size;

// A cyan of middle saturation and lightness: its range lies whole in the area.
constexpr Place kFirstAim = {180, kFullSaturation / 2, kFullInk / 2};
constexpr int32_t kFirstHueReach = 30;         // degrees
constexpr int32_t kFirstSaturationReach = 30;  // percent

constexpr int32_t lightnessPercent(int32_t position) noexcept {
    return (kFullInk - position) / kUnitsAPercent;
}

}  // namespace

ColourCorrection::ColourCorrection(CmykProfile& profile, dialog::History& history)
    : profile_(profile), history_(history) {
    places_.reserve(kGridPoints * kGridPoints * kGridPoints);
    grid::forEachNode<3>(kGridPoints, [&](const std::array<int32_t, 3>& at) {
        places_.push_back(placeOf({nodeValue(at[0]), nodeValue(at[1]), nodeValue(at[2])}));
    });
    reread();
}

void ColourCorrection::reread() {
    held_.reset();
    hueReach_ = kFirstHueReach;
    saturationReach_ = kFirstSaturationReach;
    lightnessSpan_.reset();
    blackSpan_.reset();
    picked_[3] = 0;
    setAim(kFirstAim);
}

void ColourCorrection::profileChanged() {
    readCurrent();
    changed_ = current_;
}

InfluenceRange ColourCorrection::range() const noexcept {
    InfluenceRange range{hueReach_, saturationReach_ * kUnitsAPercent, 0, kFullInk};
    if (lightnessSpan_) {
        range.lightest = kFullInk - lightnessSpan_->high * kUnitsAPercent;
        range.darkest = kFullInk - lightnessSpan_->low * kUnitsAPercent;
    }
    return range;
}

// The picked colour's position in units from the left or from the top.
int32_t ColourCorrection::positionOn(Surface surface) const noexcept {
    switch (surface) {
        case Surface::hueBar: return place_.hue == kNoHue ? aim_.hue : place_.hue;
        case Surface::saturationBar: return kFullSaturation - place_.saturation;
        case Surface::black:
        case Surface::blackBar: return picked_[3];
        default: return place_.lightness;
    }
}

bool ColourCorrection::press(Surface surface, Size size, Point at) {
    held_ = surface;
    // The end of a span that is taken hold of stays the one. On the picked colour itself it is the
    // end that is not there yet.
    const int32_t position = positionOn(surface), unit = unitOf(surface, size, at);
    if (surface == Surface::lightnessBar)
        holdsHigh_ = unit < position || (unit == position && range().lightest < position);
    if (surface == Surface::blackBar)
        holdsHigh_ = unit > position ||
                     (unit == position && (!blackSpan_ || blackSpan_->high > blackPercent()));
    apply(surface, size, at);
    return true;
}

bool ColourCorrection::move(Size size, Point at) {
    if (!held_) return false;
    apply(*held_, size, at);
    return true;
}

void ColourCorrection::apply(Surface surface, Size size, Point at) {
    const int32_t unit = unitOf(surface, size, at);
    const auto distance = [&] { return std::abs(unit - positionOn(surface)); };
    switch (surface) {
        case Surface::area:
            return setAim({unitAt(at.x, size.width, kHues - 1),
                           kFullSaturation - unitAt(at.y, size.height, kFullSaturation),
                           aim_.lightness});
        case Surface::lightness: return setAim({aim_.hue, aim_.saturation, unit});
        case Surface::black: {
            Cmyk levels = picked_;
            levels[3] = unit;
            return setPicked(levels);
        }
        case Surface::hueBar: hueReach_ = std::abs(hueFrom(positionOn(surface), unit)); break;
        case Surface::saturationBar:
            saturationReach_ = std::min(100, (distance() + 1) / kUnitsAPercent);
            break;
        case Surface::lightnessBar:
            setSpanEnd(lightnessSpan_, lightnessPercent(place_.lightness), lightnessPercent(unit),
                       holdsHigh_);
            break;
        case Surface::blackBar:
            setSpanEnd(blackSpan_, blackPercent(), value255to100(unit), holdsHigh_);
            break;
    }
    rangeHasMoved();
}

bool ColourCorrection::step(Surface surface, Key key, bool shift) {
    const bool more = key == Key::right || key == Key::up;
    const int32_t by = more ? 1 : -1;
    const bool across = key == Key::left || key == Key::right;
    const auto stepSpan = [&](std::optional<Span>& span, int32_t picked) {
        const Span from = span.value_or(Span{0, 100});
        if (key == Key::clear) span.reset();
        else setSpanEnd(span, picked, (shift ? from.low : from.high) + by, !shift);
    };
    if (key == Key::clear && surface != Surface::lightnessBar && surface != Surface::blackBar)
        return false;
    switch (surface) {
        case Surface::area:
            setAim({across ? (aim_.hue + by + kHues) % kHues : aim_.hue,
                    across ? aim_.saturation : clampTo(aim_.saturation + by, 0, kFullSaturation),
                    aim_.lightness});
            return true;
        case Surface::lightness:  // up is lighter
            setAim({aim_.hue, aim_.saturation, clampTo(aim_.lightness - by, 0, kFullInk)});
            return true;
        case Surface::black: {
            Cmyk levels = picked_;
            levels[3] = clampTo(levels[3] + by, 0, 255);
            setPicked(levels);
            return true;
        }
        case Surface::hueBar: hueReach_ = clampTo(hueReach_ + by, 0, kWholeHue); break;
        case Surface::saturationBar:
            saturationReach_ = clampTo(saturationReach_ + by, 0, 100);
            break;
        case Surface::lightnessBar:
            stepSpan(lightnessSpan_, lightnessPercent(place_.lightness));
            break;
        case Surface::blackBar: stepSpan(blackSpan_, blackPercent()); break;
    }
    rangeHasMoved();
    return true;
}

// An end of a span; the picked colour stays between the two.
void ColourCorrection::setSpanEnd(std::optional<Span>& span, int32_t picked, int32_t percent,
                                  bool high) {
    if (!span) span = Span{0, 100};
    if (high) span->high = clampTo(percent, picked, 100);
    else span->low = clampTo(percent, 0, picked);
    pickedHasMoved();
}

void ColourCorrection::setAim(const Place& aim) {
    const Levels cmy = levelsAt(aim);
    setPicked({cmy[0], cmy[1], cmy[2], picked_[3]});
    aim_ = aim;
}

void ColourCorrection::setPicked(const Cmyk& levels) {
    picked_ = levels;
    place_ = placeOf({levels[0], levels[1], levels[2]});
    // A colour that was typed is aimed at itself; a grey keeps the hue that was aimed at before.
    aim_ = place_.hue == kNoHue ? Place{aim_.hue, 0, place_.lightness} : place_;
    readCurrent();
    changed_ = current_;
    pickedHasMoved();
    rangeHasMoved();
}

int32_t ColourCorrection::blackPercent() const noexcept { return value255to100(picked_[3]); }

// A span that the picked colour has left follows it: the whole change applies to that colour.
void ColourCorrection::pickedHasMoved() {
    if (lightnessSpan_) {
        lightnessSpan_->low = std::min(lightnessSpan_->low, lightnessPercent(place_.lightness));
        lightnessSpan_->high =
            std::max(lightnessSpan_->high, lightnessPercent(place_.lightness - 1));
    }
    if (blackSpan_) {
        blackSpan_->low = std::min(blackSpan_->low, blackPercent());
        blackSpan_->high = std::max(blackSpan_->high, blackPercent());
    }
}

namespace {
bool isInSpan(const std::optional<Span>& span, int32_t index) noexcept {
    const int32_t percent = value255to100(nodeValue(index));
    return !span || (percent >= span->low && percent <= span->high);
}
}  // namespace

void ColourCorrection::rangeHasMoved() {
    const InfluenceRange reach = range();
    int32_t blacks = 0;
    for (int32_t k = 0; k < kGridPoints; ++k) blacks += isInSpan(blackSpan_, k);
    const auto touched = [&](const Place& place) {
        const auto fade = fadeAt(place_, place, reach);
        return fade && fade->edge > 0;
    };
    nodesInRange_ =
        blacks * static_cast<int32_t>(std::count_if(places_.begin(), places_.end(), touched));
}

void ColourCorrection::readCurrent() {
    current_ = picked_;
    cmykToCmyk16(profile_, current_);
    for (int32_t& level : current_) level = fromScale16(level);
}

// The level of a number as fields show it. A percentage stands for two or three levels: where it is
// that of a level already there, that one is meant.
int32_t ColourCorrection::levelOf(int32_t value,
                                  std::initializer_list<int32_t> there) const noexcept {
    for (const int32_t level : there)
        if (value == valueToDisplay(levels256_, level)) return level;
    return valueFromDisplay(levels256_, value);
}

int32_t ColourCorrection::stepped(int32_t level, int32_t by) const noexcept {
    const int32_t from = valueToDisplay(levels256_, level), last = levels256_ ? 255 : 100;
    return from + clampTo(by, -from, last - from);
}

void ColourCorrection::pickLevel(int32_t ink, int32_t value) {
    Cmyk levels = picked_;
    int32_t& level = levels[static_cast<size_t>(ink)];
    level = levelOf(value, {level});
    if (levels != picked_) setPicked(levels);
}

void ColourCorrection::changeLevel(int32_t ink, int32_t value) {
    const auto at = static_cast<size_t>(ink);
    changed_[at] = levelOf(value, {changed_[at], current_[at]});
}

int32_t ColourCorrection::typedValue(std::string_view number, int32_t most) {
    notice_ = dialog::numberNotice(number, 0, most, "0", std::to_string(most));
    return typedIntegerIn(number);
}

void ColourCorrection::pick(int32_t ink, std::string_view number) {
    pickLevel(ink, typedValue(number, levels256_ ? 255 : 100));
}

void ColourCorrection::stepPicked(int32_t ink, int32_t by) {
    pickLevel(ink, stepped(picked_[static_cast<size_t>(ink)], by));
}

void ColourCorrection::setChanged(int32_t ink, std::string_view number) {
    changeLevel(ink, typedValue(number, levels256_ ? 255 : 100));
}

void ColourCorrection::stepChanged(int32_t ink, int32_t by) {
    changeLevel(ink, stepped(changed_[static_cast<size_t>(ink)], by));
}

void ColourCorrection::setHueReach(std::string_view degrees) {
    hueReach_ = clampTo(typedValue(degrees, kWholeHue), 0, kWholeHue);
    rangeHasMoved();
}

void ColourCorrection::setSaturationReach(std::string_view percent) {
    saturationReach_ = clampTo(typedValue(percent, 100), 0, 100);
    rangeHasMoved();
}

// The rows of nodes that a correction changes, and how much of it each gets.
template <class Visit>
void ColourCorrection::visitTouched(const Correction& correction, Visit visit) const {
    for (size_t at = 0; at < places_.size(); ++at) {
        const auto fade = fadeAt(correction.place, places_[at], correction.range);
        if (!fade || fade->edge <= 0) continue;
        for (int32_t k = 0; k < kGridPoints; ++k)
            if (isInSpan(correction.black, k))
                visit(static_cast<int32_t>(at) * kGridPoints + k, *fade);
    }
}

// The ink's change, less what has faded; truncates toward zero.
uint32_t ColourCorrection::corrected(const Correction& correction, const Fade& fade,
                                     uint32_t old) noexcept {
    const auto channel = [&](size_t ink) {
        const int32_t delta = correction.delta[ink];
        return static_cast<int32_t>(old >> (24 - 8 * ink) & 255) + delta -
               delta * fade.distance / fade.edge;
    };
    const int32_t c = channel(0), m = channel(1), y = channel(2), k = channel(3);
    return limitedCmyk(c, m, y, k);
}

void ColourCorrection::exchange(GridStep& step) {
    size_t at = 0;
    for (const Run& run : step.runs)
        for (int32_t node = 0; node < run.count; ++node)
            std::swap(profile_.grid[run.first + node], step.words[at++]);
    step.isDone = !step.isDone;
    made_ = step.isDone ? step.after : step.before;
}

void ColourCorrection::GridStep::add(int32_t node, uint32_t word) {
    if (!runs.empty() && runs.back().first + runs.back().count == node) ++runs.back().count;
    else runs.push_back({node, 1});
    words.push_back(word);
}

int32_t ColourCorrection::change() {
    Correction correction{picked_, {}, place_, range(), blackSpan_};
    for (size_t ink = 0; ink < 4; ++ink) correction.delta[ink] = changed_[ink] - current_[ink];
    // Memory for taking it back comes first: when there is none, nothing has happened.
    const auto step = std::make_shared<GridStep>();
    step->before = step->after = made_;
    if (step->after.list.empty())
        step->after.base = std::make_shared<const Grid>(std::begin(profile_.grid),
                                                       std::end(profile_.grid));
    step->after.list.push_back(correction);
    step->words.reserve(static_cast<size_t>(nodesInRange_));
    bool changes = false;
    visitTouched(correction, [&](int32_t node, const Fade& fade) {
        const uint32_t old = profile_.grid[node], word = corrected(correction, fade, old);
        step->add(node, word);
        changes = changes || word != old;
    });
    notice_.reset();
    // A change that changes nothing is no step to take back.
    if (!changes) return nodesInRange_;
    history_.add([this, step] { exchange(*step); });
    exchange(*step);
    instead_.reset();
    readCurrent();
    return static_cast<int32_t>(step->words.size());
}

void ColourCorrection::takeOut(size_t which) {
    if (which >= made_.list.size()) return;
    const auto step = std::make_shared<GridStep>();
    step->before = step->after = made_;
    step->after.list.erase(step->after.list.begin() + static_cast<std::ptrdiff_t>(which));
    Grid grid = *made_.base;
    for (const Correction& correction : step->after.list)
        visitTouched(correction, [&](int32_t node, const Fade& fade) {
            uint32_t& word = grid[static_cast<size_t>(node)];
            word = corrected(correction, fade, word);
        });
    for (size_t node = 0; node < grid.size(); ++node)
        if (grid[node] != profile_.grid[node]) step->add(static_cast<int32_t>(node), grid[node]);
    history_.add([this, step] { exchange(*step); });
    exchange(*step);
    instead_.reset();
    notice_.reset();
    profileChanged();
}

}  // namespace ko::cmyk
