#include "tone/dialog/tone_editor.h"

#include <algorithm>
#include <utility>

#include "frame/scan.h"
#include "frame/text.h"
#include "resources/texts.h"

namespace ko::tone {
namespace {

using dialog::Point;
using dialog::Size;

bool loadBkc(ToneCurve& curve, DccSettings*, const char* path) { return loadBkcCurve(curve, path); }
bool loadTnc(ToneCurve& curve, DccSettings*, const char* path) {
    return loadCmykToneCurve(curve, path);
}
bool loadDccSettings(ToneCurve&, DccSettings* settings, const char* path) {
    return settings && loadDcc(*settings, path);
}
bool saveBkc(ToneCurve& curve, DccSettings*, const char* path) { return saveBkcCurve(curve, path); }
bool saveTnc(ToneCurve& curve, DccSettings*, const char* path) {
    return saveCmykToneCurve(curve, path);
}
bool saveDccSettings(ToneCurve&, DccSettings* settings, const char* path) {
    return settings && saveDcc(*settings, path);
}

// Percent of 0..255 to the nearest, halves up; operands are never negative.
int32_t percentOf(int32_t level) noexcept { return truncateToInt32(level * 100 / 255.0 + 0.5); }

}  // namespace

const ToneEditorKind kBkcEditor = {
    1, 65, {3, 4}, true, 0x01, ".bkc", texts::kBkcFilter, texts::kBkcCaption, loadBkc, saveBkc};
const ToneEditorKind kCmykEditor = {
    4, 17, {4, 4}, false, 0x0f, ".tnc", texts::kTncFilter, texts::kTncCaption, loadTnc, saveTnc};
const ToneEditorKind kDccEditor = {
    6, 17, {4, 4}, false, 0x0f, ".dcc", texts::kDccFilter, texts::kDccCaption, loadDccSettings, saveDccSettings};

ToneEditor::ToneEditor(const ToneEditorKind& kind, ToneCurve& curve, DccSettings* settings)
    : kind_(kind), curve_(curve), settings_(settings), selection_(kind.allChannels) {
    const std::string path(textIn(curve.path));
    startFolder_ = folderOf(path);
    hasFile_ = !fileNameOf(path).empty();
    if (!hasFile_) copyText(curve_.path, "");
}

std::string ToneEditor::inputText() const {
    return std::to_string(percentOf(gridLevel(index_))) + " %";
}

std::string ToneEditor::fieldText(int32_t channel) const {
    return std::to_string(percentOf(level(channel, gridLevel(index_))));
}

namespace {
int32_t& fieldOf(DccSettings& settings, DccField field) noexcept {
    switch (field) {
        case DccField::dpiX: return settings.DPIX;
        case DccField::dpiY: return settings.DPIY;
        case DccField::totalInk: return settings.WINK;
        case DccField::lightInk: break;
    }
    return settings.LCLM;
}
}  // namespace

std::string ToneEditor::settingText(DccField field) const {
    return settings_ ? std::to_string(fieldOf(*settings_, field)) : std::string();
}

int32_t ToneEditor::gridLevel(int32_t index) const noexcept {
    return std::min(256 / lastIndex() * index, 255);
}

Point ToneEditor::pointAt(Size graph, int32_t channel, int32_t index) const noexcept {
    return dialog::plotPoint(graph, index, lastIndex(), level(channel, gridLevel(index)));
}

dialog::GraphCurve ToneEditor::curveOf(Size graph, int32_t channel, dialog::Colour colour) const {
    dialog::GraphCurve curve{colour, {}, {}, {}};
    // Level 16 i stands where grid index i does, so that the line meets the points.
    for (int32_t x = 0; x < kLevels; ++x)
        curve.line.push_back(dialog::plotPoint(graph, x == 255 ? 256 : x, 256, level(channel, x)));
    if (!isSelected(channel)) return curve;  // only what can be taken hold of has points
    for (int32_t index = 0; index <= lastIndex(); ++index) {
        const bool marked = isControlPoint(channel, gridLevel(index));
        (marked ? curve.controlPoints : curve.computedPoints).push_back(pointAt(graph, channel, index));
    }
    return curve;
}

bool ToneEditor::press(Size graph, Point at) {
    if (dragging_ || !dialog::isInsideGraph(graph, at)) return false;
    for (int32_t channel = 0; channel < kind_.channels; ++channel) {
        if (!isSelected(channel)) continue;
        for (int32_t index = 0; index <= lastIndex(); ++index) {
            if (!dialog::isNear(pointAt(graph, channel, index), at, kind_.tolerance)) continue;
            index_ = index;
            undo_.assign(curve_.table, curve_.table + kind_.channels * kChannelEntries);
            dragging_ = true;
            return true;
        }
    }
    return false;
}

bool ToneEditor::move(Size graph, Point at) {
    if (!dragging_) return false;
    const int32_t level = dialog::levelAt(graph, at.y);
    for (int32_t channel = 0; channel < kind_.channels; ++channel) {
        if (!isSelected(channel)) continue;
        if (contrast_ && index_ == lastIndex()) scaleToEnd(channel, level);
        else setLevel(channel, index_, level);
    }
    encodeAgain();
    return true;
}

void ToneEditor::setLevel(int32_t channel, int32_t index, int32_t level) {
    const auto x = static_cast<size_t>(gridLevel(index));
    valuesOf(curve_, channel)[x] = static_cast<int16_t>(clampTo(level, 0, 255));
    flagsOf(curve_, channel)[x] = 1;
}

// Contrast: the whole curve as it was when the drag began, scaled so that its end is at level.
void ToneEditor::scaleToEnd(int32_t channel, int32_t level) {
    const int16_t* const saved = undo_.data() + channel * kChannelEntries + kLevels;
    const int32_t end = saved[255];
    if (end == 0) return;
    const auto values = valuesOf(curve_, channel);
    const auto scale = [&](int32_t x) {
        values[static_cast<size_t>(x)] =
            static_cast<int16_t>(clampTo(saved[x] * level / end, 0, 255));
    };
    if (kind_.contrastScalesAll)
        for (int32_t x = 0; x < kLevels; ++x) scale(x);
    else
        for (int32_t index = 0; index <= lastIndex(); ++index) scale(gridLevel(index));
}

void ToneEditor::restore(int32_t channel) {
    const auto from = undo_.begin() + channel * kChannelEntries;
    std::copy(from, from + kChannelEntries, curve_.table + channel * kChannelEntries);
}

bool ToneEditor::pressRight(Size graph, Point at) {
    if (dragging_) {
        for (int32_t channel = 0; channel < kind_.channels; ++channel)
            if (isSelected(channel)) restore(channel);
        encodeAgain();
        dragging_ = false;
        return true;
    }
    if (!dialog::isInsideGraph(graph, at)) return false;
    bool changed = false;
    for (int32_t channel = 0; channel < kind_.channels; ++channel) {
        if (!isSelected(channel)) continue;
        for (int32_t index = 1; index < lastIndex(); ++index) {
            if (!dialog::isNear(pointAt(graph, channel, index), at, kind_.tolerance)) continue;
            flagsOf(curve_, channel)[static_cast<size_t>(gridLevel(index))] = 0;
            changed = true;
            break;
        }
    }
    if (changed) encodeAgain();
    return changed;
}

bool ToneEditor::stepIndex(int32_t by) {
    if (dragging_) return false;
    const int32_t to = clampTo(index_ + by, 0, lastIndex());
    return std::exchange(index_, to) != to;
}

bool ToneEditor::stepLevel(int32_t by) {
    if (dragging_) return false;
    for (int32_t channel = 0; channel < kind_.channels; ++channel)
        if (isSelected(channel)) setLevel(channel, index_, level(channel, gridLevel(index_)) + by);
    encodeAgain();
    return selection_ != 0;
}

bool ToneEditor::unmark() {
    if (dragging_ || isEnd(index_)) return false;
    for (int32_t channel = 0; channel < kind_.channels; ++channel)
        if (isSelected(channel))
            flagsOf(curve_, channel)[static_cast<size_t>(gridLevel(index_))] = 0;
    encodeAgain();
    return true;
}

void ToneEditor::leaveField(int32_t channel, std::string_view percent) {
    if (!percent.empty())
        setLevel(channel, index_, truncateToInt32(realIn(percent) * 255 / 100 + 0.5));
    else if (!isEnd(index_))
        flagsOf(curve_, channel)[static_cast<size_t>(gridLevel(index_))] = 0;
    encodeAgain();
}

void ToneEditor::leaveTitle(std::string_view title) {
    copyText(curve_.title, title);
    jStrCorrect(curve_.title);
}

void ToneEditor::leaveSetting(DccField field, std::string_view number) {
    if (settings_) fieldOf(*settings_, field) = integerIn(number);
}

void ToneEditor::reset() {
    dragging_ = false;
    for (int32_t channel = 0; channel < kind_.channels; ++channel) {
        const auto flags = flagsOf(curve_, channel);
        const auto values = valuesOf(curve_, channel);
        std::fill(flags.begin(), flags.end(), int16_t{0});
        flags.front() = flags.back() = 1;
        for (size_t x = 0; x < values.size(); ++x) values[x] = static_cast<int16_t>(x);
    }
}

bool ToneEditor::startNew(dialog::EditorHost& host) {
    if (!host.ask(texts::kProfileCaption, texts::kResetQuestion)) return false;
    initToneCurve(curve_);
    hasFile_ = false;
    reset();
    return true;
}

void ToneEditor::save(dialog::EditorHost& host) {
    if (!hasFile_) return saveAs(host);
    const std::string path(textIn(curve_.path));
    (void)saveTo(path.c_str());  // a failed save is silent: the file keeps its old content
}

void ToneEditor::saveAs(dialog::EditorHost& host) {
    auto path = host.chooseSavePath(startFolder_ + platform::kSeparator, kind_.filter);
    if (!path) return;
    if (!hasExtension(path->c_str(), kind_.extension)) path->append(kind_.extension);
    if (saveTo(path->c_str())) hasFile_ = true;
}

bool ToneEditor::saveTo(const char* path) { return kind_.save(curve_, settings_, path); }

}  // namespace ko::tone
