// Reads .bkc, .tnc and .dcc files. No line is an error: what is not understood is skipped, and a
// number that is none is 0.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

#include "frame/ascii.h"
#include "frame/file.h"
#include "frame/lines.h"
#include "frame/scan.h"
#include "frame/text.h"
#include "resources/texts.h"
#include "tone/fields.h"
#include "tone/tone.h"

namespace ko::tone {
namespace {

constexpr size_t kLineSize = 256;
constexpr std::string_view kListSeparators = "= ,";  // of lists of numbers, and of titles
constexpr std::string_view kValueSeparators = "= ";  // of settings

// What follows a key of the given size.
Scanner valueAfter(const char* line, size_t keySize, std::string_view separators) noexcept {
    Scanner scanner(line + keySize);
    scanner.skip(separators);
    return scanner;
}

bool hasKey(const char* line, std::string_view key) noexcept {
    return startsIgnoringCase(line, key);
}

void cutAtSemicolon(char* line) noexcept {
    if (char* semicolon = std::strchr(line, ';')) *semicolon = '\0';
}

int16_t toneValue(int32_t number, int32_t scale) noexcept {
    const int64_t value = int64_t{number} * scale;
    return static_cast<int16_t>(std::clamp<int64_t>(value, std::numeric_limits<int16_t>::min(),
                                                    std::numeric_limits<int16_t>::max()));
}

// The fields of a curve line, in grid order. A line that ends early still fills every grid
// position: a missing field is a control point of value 0.
void readCurveFields(Scanner fields, ToneCurve& curve, int32_t channel, int32_t scale) noexcept {
    for (size_t field = 0; field < kGridFields; ++field) {
        fields.skip(kListSeparators);
        const bool computed = fields.take('+');
        flagsOf(curve, channel)[gridLevel(field)] = computed ? 0 : 1;
        valuesOf(curve, channel)[gridLevel(field)] = toneValue(fields.integer(), scale);
        fields.advanceTo(",");
    }
}

void readCurveLine(const char* line, ToneCurve& curve, size_t curves, int32_t scale) noexcept {
    for (const CurveKey& key : std::span(kCurveKeys).first(curves))
        if (hasKey(line, {key.prefix, kCurveKeySize}))
            readCurveFields(valueAfter(line, kCurveKeySize, kListSeparators), curve, key.channel,
                            scale);
}

void readBkcLine(char* line, ToneCurve& curve) noexcept {
    cutAtSemicolon(line);
    if (hasKey(line, "TITLE ")) {
        copyText(curve.title, valueAfter(line, 6, kListSeparators).rest());
    } else if (hasKey(line, "TONE  ")) {
        Scanner numbers = valueAfter(line, 6, kListSeparators);
        const int32_t x = numbers.integer();
        numbers.advanceTo(kListSeparators);
        numbers.skip(kListSeparators);
        if (x < 0 || x >= kLevels) return;
        flagsOf(curve, 0)[static_cast<size_t>(x)] = 1;
        valuesOf(curve, 0)[static_cast<size_t>(x)] = toneValue(numbers.integer(), 1);
    }
}

void readDccLine(char* line, DccSettings& settings) noexcept {
    cutAtSemicolon(line);
    const Scanner value = valueAfter(line, std::min<size_t>(5, std::strlen(line)), kValueSeparators);
    if (hasKey(line, "DEV  ")) copyText(settings.curves->title, value.rest());
    if (hasKey(line, "DPI  ")) settings.DPIX = settings.DPIY = value.integer();
    if (hasKey(line, "DPIX ")) settings.DPIX = value.integer();
    if (hasKey(line, "DPIY ")) settings.DPIY = value.integer();
    if (hasKey(line, "WINK ")) settings.WINK = value.integer();
    if (hasKey(line, "LCLM ")) settings.LCLM = value.integer();
    readCurveLine(line, *settings.curves, kDccCurves, 1);
}

// What all readers share: the curve is reset, each line goes to readLine, and the table is made at
// the end.
template <class ReadLine>
void read(ToneCurve& curve, std::string_view text, int32_t maxValue, ReadLine&& readLine) {
    initToneCurve(curve);
    LineReader lines(text);
    for (char line[kLineSize]; lines.next(line);) readLine(line);
    encode(curve, Interpolation::spline, maxValue);
}

// What all loaders share: the curve is reset when the file cannot be opened, and stays as it was
// when it cannot be read.
template <class Read>
bool load(ToneCurve& curve, const Path& path, Read&& readText) {
    const FileReading reading = readWhole(path, kCurveFiles);
    if (reading.result == ReadResult::failed) return false;
    if (!reading) {
        initToneCurve(curve);
        return false;
    }
    readText(reading.file.text());
    path.copyTo(curve.path);
    return true;
}

}  // namespace

void readBkcCurve(ToneCurve& curve, std::string_view text) noexcept {
    read(curve, text, 255, [&](char* line) { readBkcLine(line, curve); });
}

void readCmykToneCurve(ToneCurve& curve, std::string_view text) noexcept {
    read(curve, text, 255, [&](const char* line) { readCurveLine(line, curve, kCmykCurves, 1); });
}

void readDccCurve(ToneCurve& curve, std::string_view text) noexcept {
    read(curve, text, 255 * 16,
         [&](const char* line) { readCurveLine(line, curve, kDccCurves, 16); });
}

void readDcc(DccSettings& settings, std::string_view text) noexcept {
    read(*settings.curves, text, 255, [&](char* line) { readDccLine(line, settings); });
}

std::optional<Problem> whyNoCurveFile(int32_t channels, const char* path) {
    const auto isCurveLine = [&](const char* line) {
        if (channels == 1) return hasKey(line, "TONE  ");
        const auto keys = std::span(kCurveKeys).first(channels == 4 ? kCmykCurves : kDccCurves);
        return std::any_of(keys.begin(), keys.end(), [&](const CurveKey& key) {
            return hasKey(line, {key.prefix, kCurveKeySize});
        });
    };
    platform::setLastError(0);
    const FileReading reading = readWhole(path, kCurveFiles);
    if (!reading) return fileProblem(platform::lastError());
    LineReader lines(reading.file.text());
    for (char line[kLineSize]; lines.next(line);)
        if (isCurveLine(line)) return std::nullopt;
    return Problem{channels == 1   ? texts::kNoBlackCurve
                   : channels == 4 ? texts::kNoToneCurve
                                   : texts::kNoDcc};
}

bool loadBkcCurve(ToneCurve& curve, const Path& path) {
    if (!hasChannels(curve, 1)) return false;
    return load(curve, path, [&](std::string_view text) { readBkcCurve(curve, text); });
}

bool loadCmykToneCurve(ToneCurve& curve, const Path& path) {
    if (!hasChannels(curve, 4)) return false;
    if (curve.channelCount > 4) return platform::failFor(platform::Cause::wrongArgument);
    return load(curve, path, [&](std::string_view text) { readCmykToneCurve(curve, text); });
}

bool loadDccCurve(ToneCurve& curve, const Path& path) {
    if (!hasChannels(curve, 6)) return false;
    return load(curve, path, [&](std::string_view text) { readDccCurve(curve, text); });
}

bool loadDcc(DccSettings& settings, const Path& path) {
    if (!hasChannels(settings, 6)) return false;
    return load(*settings.curves, path, [&](std::string_view text) { readDcc(settings, text); });
}

}  // namespace ko::tone
