#include "calib/dialog/calib_editor.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <span>
#include <utility>

#include "calib/number_format.h"
#include "frame/arithmetic.h"
#include "frame/dialog/typed.h"
#include "frame/path.h"
#include "frame/scan.h"
#include "frame/text.h"
#include "resources/texts.h"

namespace ko::calib {
namespace {

using dialog::Point;
using dialog::Size;

constexpr char kExtension[] = ".clb";
constexpr Size kTolerance = {4, 4};

// The nearest that single precision holds; never NaN or infinite.
float toSingle(double value) noexcept {
    constexpr double kMax = std::numeric_limits<float>::max();
    return static_cast<float>(value >= -kMax ? std::min(value, kMax) : -kMax);
}

// Above top becomes top, then below 0 becomes 0, whatever top is.
double limited(double value, int32_t top) noexcept {
    return std::max(std::min(value, static_cast<double>(top)), 0.0);
}

// A pixel position, truncated; one far outside the control stays where it can still be drawn.
int32_t pixel(double position) noexcept { return clampTo(truncateToInt32(position), -16000, 16000); }

// Where amount stands on a length that stands for whole, in double.
double part(float amount, int32_t length, int32_t whole) noexcept {
    return whole == 0 ? 0.0 : static_cast<double>(amount) * length / whole;
}

// Presses and moves near the control's edges do not count.
bool isOnPlot(Size graph, Point at) noexcept {
    return at.x >= 9 && at.y >= 9 && at.x <= graph.width - 11 && at.y <= graph.height - 11;
}

bool isSameCurveAtZero(std::span<const CalibTone> now, std::span<const CalibTone> before) noexcept {
    return std::equal(now.begin(), now.end(), before.begin(), before.end(),
                      [&](const CalibTone& a, const CalibTone& b) {
                          return a.x == b.x && (&a == &now.front() || a.y == 0.0f);
                      });
}

}  // namespace

CalibEditor::CalibEditor(CalibCurveSet& set) : set_(set) {
    const std::string_view path = textIn(set_.path);
    folder_ = folderOf(path);
    const bool named = !fileNameOf(path).empty();
    setHasFile(named && path.size() < std::size(set_.path));  // without its end it names nothing
    if (!named) copyText(set_.path, "");
    opened_ = capture();
    for (int32_t channel = 0; channel < channelCount(); ++channel)
        openedLines_.push_back(line(dialog::kKeptGraph, channel));
    chooseNearest(0.0f);
}

std::string_view CalibEditor::fileName() const noexcept {
    return hasFile() ? fileNameOf(textIn(set_.path)) : std::string_view();
}

std::string CalibEditor::dateText(bool yearLast) const {
    platform::DateTime time;
    if (!hasFile() || !platform::fileTime(set_.path, time)) return {};
    char text[32];
    if (yearLast)
        std::snprintf(text, sizeof text, "%02d/%02d/%04d", time.month, time.day, time.year);
    else
        std::snprintf(text, sizeof text, "%04d/%02d/%02d", time.year, time.month, time.day);
    return text;
}

std::string_view CalibEditor::channelName(int32_t channel) const noexcept {
    return textIn(channels()[static_cast<size_t>(channel)].name);
}

dialog::Colour CalibEditor::colour(int32_t channel) const noexcept {
    return channels()[static_cast<size_t>(channel)].lrgb & 0xffffff;
}

std::vector<int32_t> CalibEditor::covered() const {
    std::vector<int32_t> all;
    for (int32_t channel = 0; channel < channelCount(); ++channel)
        if (covers(channel)) all.push_back(channel);
    return all;
}

// Integers: on a set of whole numbers the sample's place and its value are whole too.
CalibTone CalibEditor::sample(int32_t channel, int32_t index) const noexcept {
    const auto x = static_cast<float>(int64_t{set_.range} * index / lastSample());
    return {x, static_cast<float>(truncateToInt32(toneValue(set_, channel, x)))};
}

// Truncated as a whole, in double.
Point CalibEditor::place(Size graph, const CalibTone& tone) const noexcept {
    const Size plot = dialog::plotSize(graph);
    return {pixel(dialog::kGraphInset + part(tone.x, plot.width, set_.range)),
            pixel(dialog::kGraphInset + plot.height - part(tone.y, plot.height, set_.limit))};
}

// What the set reads between the first tone and the last, at every column.
std::vector<Point> CalibEditor::line(Size graph, int32_t channel) const {
    const int32_t width = dialog::plotSize(graph).width;
    const auto all = tones(channel);
    std::vector<Point> points;
    if (set_.range <= 0 || width <= 0 || all.size() < 2) return points;
    for (int32_t column = 0; column <= width; ++column) {
        const float x = toSingle(static_cast<double>(set_.range) * column / width);
        if (x < all.front().x || x > all.back().x) continue;
        points.push_back({dialog::kGraphInset + column,
                          place(graph, {x, toneValue(set_, channel, x)}).y});
    }
    return points;
}

dialog::GraphPicture CalibEditor::picture(Size graph) const {
    dialog::GraphPicture picture;
    picture.selectedX = place(graph, point_).x;
    for (size_t quarter = 0; quarter <= 4; ++quarter) {
        const auto part = static_cast<int64_t>(quarter);
        picture.inputs[quarter] = std::to_string((part * set_.range + 2) / 4);
        picture.outputs[quarter] = std::to_string((part * set_.limit + 2) / 4);
    }
    for (int32_t channel = 0; channel < channelCount(); ++channel)
        if (covers(channel))
            picture.opened.push_back(
                {colour(channel),
                 dialog::keptLine(openedLines_[static_cast<size_t>(channel)], graph), {}, {}});
    // What cannot be taken hold of lies below, without points.
    for (const bool top : {false, true})
        for (int32_t channel = 0; channel < channelCount(); ++channel) {
            if (covers(channel) != top) continue;
            dialog::GraphCurve curve{colour(channel), line(graph, channel), {}, {}};
            if (top) {
                for (const CalibTone& tone : tones(channel))
                    curve.controlPoints.push_back(place(graph, tone));
                for (int32_t index = 0; index <= lastSample(); ++index)
                    curve.computedPoints.push_back(place(graph, sample(channel, index)));
            }
            picture.curves.push_back(std::move(curve));
        }
    return picture;
}

const CalibTone* CalibEditor::findNear(Size graph, Point at, int32_t channel) const noexcept {
    for (const CalibTone& tone : tones(channel))
        if (dialog::isNear(place(graph, tone), at, dialog::atResolution(kTolerance, dpi_)))
            return &tone;
    return nullptr;
}

bool CalibEditor::isOnTone(Size graph, Point at) const noexcept {
    if (!isOnPlot(graph, at)) return false;
    const auto all = covered();
    return std::any_of(all.begin(), all.end(), [&](int32_t channel) {
        return findNear(graph, at, channel) != nullptr;
    });
}

std::optional<dialog::GraphReading> CalibEditor::readingAt(Size graph, Point at) const {
    const Size plot = dialog::plotSize(graph);
    if (!isOnPlot(graph, at) || plot.width <= 0 || plot.height <= 0) return std::nullopt;
    const auto reading = [&](double x, double y) {
        return dialog::GraphReading{usableFormat(textIn(set_.formatX)).print(x),
                                    usableFormat(textIn(set_.formatY)).print(y)};
    };
    for (const int32_t channel : covered())
        if (const CalibTone* const tone = findNear(graph, at, channel))
            return reading(tone->x, tone->y);
    return reading(
        limited(static_cast<double>(set_.range) * (at.x - dialog::kGraphInset) / plot.width,
                set_.range),
        limited(static_cast<double>(set_.limit) * (plot.height - at.y + dialog::kGraphInset) /
                    plot.height, set_.limit));
}

bool CalibEditor::falls() const noexcept {
    for (int32_t channel = 0; channel < channelCount(); ++channel) {
        const auto all = tones(channel);
        const auto isLower = [](const CalibTone& a, const CalibTone& b) { return b.y < a.y; };
        if (covers(channel) && std::adjacent_find(all.begin(), all.end(), isLower) != all.end())
            return true;
    }
    return false;
}

bool CalibEditor::chooseEnd(bool last) {
    if (dragging_) return false;
    const CalibTone* end = nullptr;
    for (const int32_t channel : covered())
        for (const CalibTone& tone : tones(channel))
            if (!end || (last ? tone.x > end->x : tone.x < end->x)) end = &tone;
    if (end) choose(*end);
    return end != nullptr;
}

// Every covered channel in turn, so that of tones on top of each other the uppermost is taken.
bool CalibEditor::pickTone(Size graph, Point at) {
    bool hit = false;
    for (const int32_t channel : covered())
        if (const CalibTone* const tone = findNear(graph, at, channel)) {
            choose(*tone);
            hit = true;
        }
    return hit;
}

bool CalibEditor::pickSample(Size graph, Point at) {
    for (const int32_t channel : covered())
        for (int32_t index = 0; index <= lastSample(); ++index) {
            const CalibTone tone = sample(channel, index);
            if (!dialog::isNear(place(graph, tone), at, dialog::atResolution(kTolerance, dpi_)))
                continue;
            choose(tone);
            return true;
        }
    return false;
}

bool CalibEditor::press(Size graph, Point at) {
    if (dragging_ || !isOnPlot(graph, at)) return false;
    if (!pickTone(graph, at) && !pickSample(graph, at)) return false;
    kept_ = capture();
    dragging_ = true;
    store(point_);
    return true;
}

void CalibEditor::release() {
    if (std::exchange(dragging_, false)) dialog::addStep(history(), *this, std::move(kept_));
}

bool CalibEditor::move(Size graph, Point at) {
    const int32_t height = dialog::plotSize(graph).height;
    if (!dragging_ || !isOnPlot(graph, at) || height <= 0) return false;
    // In double; rounded to single precision when it is stored.
    setValue(toSingle(limited(
        static_cast<double>(set_.limit) * (height - at.y + dialog::kGraphInset) / height, set_.limit)));
    return true;
}

bool CalibEditor::store(const CalibTone& tone) {
    bool stored = false;
    for (const int32_t channel : covered())
        stored |= setToneValue(set_, channel, tone.x, tone.y);
    return stored;
}

void CalibEditor::setValue(float y) {
    const bool atEnd = relative_ && truncateToInt32(point_.x) == set_.range;
    if (atEnd) {
        const int32_t end = truncateToInt32(y);
        for (const int32_t channel : covered()) scale(channel, end);
        y = static_cast<float>(end);
    } else {
        store({point_.x, y});
    }
    choose({point_.x, y});
}

// Relative editing: all tones but the first times end / the last one's value, in double, rounded
// to single precision once and not clamped. A curve at 0 has no such factor; when this editing
// took it there, it comes back as it was.
void CalibEditor::scale(int32_t channel, int32_t end) {
    CalibChannel& edited = channelsOf(set_)[static_cast<size_t>(channel)];
    auto& before = beforeZero_[static_cast<size_t>(channel)];
    const auto now = tonesOf(std::as_const(edited));
    if (now.size() < 2 || !std::isfinite(now.back().y)) return;
    if (now.back().y == 0.0f) {
        if (!before || !isSameCurveAtZero(now, tonesOf(*before))) return;
        const CalibTone first = now.front();
        std::copy_n(before->tones, now.size(), edited.tones);
        edited.tones[0] = first;
    } else if (end == 0) {
        before = edited;
    }
    const double factor = end / static_cast<double>(now.back().y);
    for (size_t index = 1; index < now.size(); ++index)
        edited.tones[index].y = toSingle(edited.tones[index].y * factor);
}

bool CalibEditor::pressRight(Size graph, Point at) {
    if (dragging_ || !isOnPlot(graph, at)) return false;
    const bool changed = edit([&] {
        bool deleted = false;
        for (const int32_t channel : covered())
            if (const CalibTone* const tone = findNear(graph, at, channel))
                deleted |= deleteToneValue(set_, channel, tone->x);
        return deleted;
    });
    if (changed) chooseNearest(point_.x);
    return changed;
}

void CalibEditor::choose(const CalibTone& tone) {
    point_ = tone;
    xText_ = usableFormat(textIn(set_.formatX)).print(tone.x);
    yText_ = usableFormat(textIn(set_.formatY)).print(tone.y);
}

void CalibEditor::chooseNearest(float x) {
    const CalibTone* nearest = nullptr;
    const auto distance = [&](const CalibTone& tone) { return std::fabs(double{tone.x} - x); };
    for (const int32_t channel : covered())
        for (const CalibTone& tone : tones(channel))
            if (std::isfinite(tone.x) && (!nearest || distance(tone) < distance(*nearest)))
                nearest = &tone;
    choose(nearest ? *nearest : CalibTone{});
}

bool CalibEditor::stepTone(int32_t by) {
    if (dragging_) return false;
    const CalibTone* next = nullptr;
    for (const int32_t channel : covered())
        for (const CalibTone& tone : tones(channel)) {
            const bool further = by > 0 ? tone.x > point_.x : tone.x < point_.x;
            const bool nearer = !next || (by > 0 ? tone.x < next->x : tone.x > next->x);
            if (further && nearer) next = &tone;
        }
    if (next) choose(*next);
    return next != nullptr;
}

bool CalibEditor::stepValue(int32_t by) {
    if (dragging_ || channelCount() == 0) return false;
    // Some hundred steps across the graph, whole ones where the scale has them.
    const bool fine = set_.limit < 100 && !relative_;
    const double step = fine ? set_.limit / 100.0 : std::max(1, set_.limit / 255);
    return edit([&] {
        setValue(toSingle(limited(point_.y + by * step, set_.limit)));
        return true;
    });
}

bool CalibEditor::removeTone() {
    if (dragging_) return false;
    const bool changed = edit([&] {
        bool deleted = false;
        for (const int32_t channel : covered()) deleted |= deleteToneValue(set_, channel, point_.x);
        return deleted;
    });
    if (changed) chooseNearest(point_.x);
    return changed;
}

void CalibEditor::selectChannel(int32_t channel) {
    if (channel < kAllChannels || channel >= channelCount()) return;
    release();
    selected_ = channel;
    chooseNearest(point_.x);
}

namespace {
// What a field shows after it was left: the number within 0..top, in the set's format. A text that
// was shown is left alone, however long the format makes it.
void correctField(std::string& field, std::optional<Problem>& notice, std::string_view text,
                  int32_t top, std::string_view format) {
    if (text == field) return;
    const std::string_view typed = text.substr(0, CalibEditor::kFieldLength);
    const auto shown = [&](double number) { return usableFormat(format).print(number); };
    const std::string least = shown(0), most = shown(top);
    notice = dialog::numberNotice(typed, 0, top, least, most);
    field = shown(std::min(std::max(typedRealIn(typed), 0.0), static_cast<double>(top)));
}
}  // namespace

void CalibEditor::leaveX(std::string_view text) {
    correctField(xText_, notice_, text, set_.range, textIn(set_.formatX));
}
void CalibEditor::leaveY(std::string_view text) {
    correctField(yText_, notice_, text, set_.limit, textIn(set_.formatY));
}

bool CalibEditor::add() {
    const CalibTone tone{toSingle(realIn(xText_)), toSingle(realIn(yText_))};
    release();
    if (!edit([&] { return store(tone); })) return false;
    point_ = tone;
    return true;
}

void CalibEditor::leaveTitle(std::string_view title, Encoding encoding) {
    release();
    edit([&] {
        copyText(set_.title, title, encoding);
        correctTyped(set_.title, encoding);
        return true;
    });
}

void CalibEditor::initialise() {
    release();
    edit([&] { return initCurve(set_), true; });
    chooseNearest(point_.x);
}

bool CalibEditor::startNew(dialog::EditorHost& host) {
    if (!host.ask(description(), texts::kResetQuestion)) return false;
    release();
    State before = capture();
    const bool had = hasFile();
    setHasFile(false);
    initCurve(set_);
    copyText(set_.title, "");
    history().add([this, other = std::move(before), has = had]() mutable {
        State now = capture();
        restore(other);
        other = std::move(now);
        const bool left = hasFile();  // the file comes back with the step, and goes with it
        setHasFile(has);
        has = left;
    });
    chooseNearest(point_.x);
    return true;
}

bool CalibEditor::mayCancel(dialog::EditorHost& host) {
    release();
    if (!isChanged()) return true;
    switch (host.askTakeBack(description())) {
        case dialog::Unsaved::save: return true;
        case dialog::Unsaved::discard: return restore(opened_), true;
        case dialog::Unsaved::stay: break;
    }
    return false;
}

bool CalibEditor::State::operator==(const State& other) const noexcept {
    const size_t size = channels.size() * sizeof(CalibChannel);
    return title == other.title && channels.size() == other.channels.size() &&
           (size == 0 || std::memcmp(channels.data(), other.channels.data(), size) == 0);
}

CalibEditor::State CalibEditor::capture() const {
    const auto all = channels();
    return {std::string(std::begin(set_.title), std::end(set_.title)), {all.begin(), all.end()}};
}

void CalibEditor::restore(const State& state) {
    std::copy(state.title.begin(), state.title.end(), set_.title);
    std::copy(state.channels.begin(), state.channels.end(), channelsOf(set_).begin());
    for (auto& before : beforeZero_) before.reset();
    chooseNearest(point_.x);
}

const char* CalibEditor::fileFilter() const noexcept { return texts::kClbFilter; }
const char* CalibEditor::fileExtension() const noexcept { return kExtension; }

std::optional<Problem> CalibEditor::write(const std::string& path) {
    release();
    if (path.size() >= std::size(set_.path)) return Problem{texts::kPathTooLong};
    const std::string before(textIn(set_.path));
    platform::setLastError(0);
    const bool saved = saveCurve(set_, path.c_str());
    const uint32_t error = platform::lastError();
    if (!saved) {
        (void)copyPath(set_.path, before.c_str());
        return fileProblem(error);
    }
    folder_ = folderOf(path);
    return std::nullopt;
}

}  // namespace ko::calib
