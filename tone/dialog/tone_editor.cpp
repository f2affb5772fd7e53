#include "tone/dialog/tone_editor.h"

#include <algorithm>
#include <utility>

#include "frame/path.h"
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

}  // namespace

const ToneEditorKind kBkcEditor = {
    1, 65, {3, 4}, true, 0x01, ".bkc", texts::kBkcFilter, texts::kBkcCaption, loadBkc, saveBkc};
const ToneEditorKind kCmykEditor = {
    4, 17, {4, 4}, false, 0x0f, ".tnc", texts::kTncFilter, texts::kTncCaption, loadTnc, saveTnc};
const ToneEditorKind kDccEditor = {
    6, 17, {4, 4}, false, 0x0f, ".dcc", texts::kDccFilter, texts::kDccCaption, loadDccSettings, saveDccSettings};

ToneEditor::ToneEditor(const ToneEditorKind& kind, ToneCurve& curve, DccSettings* settings)
    : CurveEditor(kind.channels, kind.gridPoints, kind.tolerance, kind.allChannels), kind_(kind),
      curve_(curve), settings_(settings) {
    const std::string path(textIn(curve.path));
    startFolder_ = folderOf(path);
    setHasFile(!fileNameOf(path).empty());
    if (!hasFile()) copyText(curve_.path, "");
    keepOpened();
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

std::vector<Point> ToneEditor::lineOf(Size graph, int32_t channel) const {
    std::vector<Point> line;
    // Level 16 i stands where grid index i does, so that the line meets the points.
    for (int32_t x = 0; x < kLevels; ++x)
        line.push_back(dialog::plotPoint(graph, x == 255 ? 256 : x, 256, level(channel, x)));
    return line;
}

void ToneEditor::setLevel(int32_t channel, int32_t index, int32_t level) {
    valuesOf(curve_, channel)[static_cast<size_t>(gridLevel(index))] = static_cast<int16_t>(level);
}

void ToneEditor::mark(int32_t channel, int32_t index, bool on) {
    flagsOf(curve_, channel)[static_cast<size_t>(gridLevel(index))] = on;
}

ToneEditor::State ToneEditor::capture() const {
    State state{{curve_.table, curve_.table + kind_.channels * kChannelEntries},
                std::string(title()), {}};
    if (settings_)
        state.settings = {settings_->DPIX, settings_->DPIY, settings_->WINK, settings_->LCLM};
    return state;
}

void ToneEditor::restore(const State& state) {
    std::copy(state.table.begin(), state.table.end(), curve_.table);
    copyText(curve_.title, state.title);
    if (!settings_) return;
    const auto& [dpiX, dpiY, totalInk, lightInk] = state.settings;
    settings_->DPIX = dpiX;
    settings_->DPIY = dpiY;
    settings_->WINK = totalInk;
    settings_->LCLM = lightInk;
}

void ToneEditor::keepCurves() { kept_ = capture(); }

void ToneEditor::curvesEdited() { dialog::addStep(history(), *this, std::move(kept_)); }

void ToneEditor::restore(int32_t channel) {
    const auto from = kept_.table.begin() + channel * kChannelEntries;
    std::copy(from, from + kChannelEntries, curve_.table + channel * kChannelEntries);
}

void ToneEditor::scaleToEnd(int32_t channel, int32_t level) {
    const int16_t* const saved = kept_.table.data() + channel * kChannelEntries + kLevels;
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

// The whole record: channels that did not change come out as they were.
void ToneEditor::evaluate(uint32_t) { encode(curve_, Interpolation::spline, 255); }

void ToneEditor::leaveTitle(std::string_view title) {
    if (title != this->title() && kind_.channels == 4) setNotice(Problem{texts::kNoTitleKept});
    editAll([&] {
        copyText(curve_.title, title);
        correctTyped(curve_.title);
    });
}

void ToneEditor::leaveSetting(DccField field, std::string_view number) {
    if (!settings_) return;
    setNotice(std::nullopt);
    const int32_t typed = typedIntegerIn(number);
    const int32_t most = field == DccField::totalInk ? 255 : field == DccField::lightInk ? 100 : 0;
    if (!number.empty() && !isTypedNumber(number))
        setNotice(Problem{texts::kNoNumber});
    else if (typed < 0 || (most > 0 && typed > most))  // kept as it is typed
        setNotice(most > 0 ? Problem{texts::kOutside, {"0", std::to_string(most)}}
                           : Problem{texts::kBelow, {"0"}});
    editAll([&] { fieldOf(*settings_, field) = typed; });
}

namespace {
void makeStraight(ToneCurve& curve, int32_t channels) {
    for (int32_t channel = 0; channel < channels; ++channel) {
        const auto flags = flagsOf(curve, channel);
        const auto values = valuesOf(curve, channel);
        std::fill(flags.begin(), flags.end(), int16_t{0});
        flags.front() = flags.back() = 1;
        for (size_t x = 0; x < values.size(); ++x) values[x] = static_cast<int16_t>(x);
    }
}
}  // namespace

void ToneEditor::reset() {
    editAll([&] { makeStraight(curve_, kind_.channels); });
}

bool ToneEditor::startNew(dialog::EditorHost& host) {
    if (!host.ask(texts::kProfileCaption, texts::kResetQuestion)) return false;
    release();
    State before = capture();
    File file{std::string(path()), hasFile()};
    initToneCurve(curve_);
    setHasFile(false);
    makeStraight(curve_, kind_.channels);
    addFileStep(std::move(before), std::move(file));
    return true;
}

std::optional<Problem> ToneEditor::open(const std::string& path, dialog::EditorHost& host) {
    if (auto problem = whyNoCurveFile(kind_.channels, path.c_str())) return problem;
    if (!mayClose(host)) return std::nullopt;
    release();
    State before = capture();
    File file{std::string(this->path()), hasFile()};
    if (!kind_.load(curve_, settings_, path.c_str())) {
        restore(before);
        (void)copyPath(curve_.path, file.path.c_str());
        return fileProblem(platform::lastError());
    }
    (void)copyPath(curve_.path, path.c_str());
    startFolder_ = folderOf(path);
    setHasFile(true);
    addFileStep(std::move(before), std::move(file));
    history().markSaved();
    keepOpened();
    return std::nullopt;
}

void ToneEditor::addFileStep(State before, File file) {
    history().add([this, other = std::move(before), file = std::move(file)]() mutable {
        State now = capture();
        File left{std::string(path()), hasFile()};
        restore(other);
        copyText(curve_.path, file.path);
        setHasFile(file.has);
        other = std::move(now);
        file = std::move(left);
    });
}

std::string_view ToneEditor::questionCaption() const noexcept { return texts::kProfileCaption; }

std::optional<Problem> ToneEditor::write(const std::string& path) {
    release();
    platform::setLastError(0);
    if (kind_.save(curve_, settings_, path.c_str())) return std::nullopt;
    return fileProblem(platform::lastError());
}

}  // namespace ko::tone
