// The files of tone curves: .bkc, .tnc and .dcc.
#include <algorithm>
#include <array>
#include <bitset>

#include "frame/ascii.h"
#include "frame/scan.h"
#include "quality/text_check.h"
#include "quality/text_faults.h"
#include "tone/fields.h"
#include "tone/tone.h"

namespace ko::quality {
namespace {

constexpr size_t kLongestLine = 255;
constexpr size_t kLongestTitle = 63;
constexpr std::string_view kListSeparators = "= ,";

std::string listed(int value) { return std::to_string(value); }

// The beginning of a line that readers see; what they drop is told.
std::string_view seenPart(std::string_view line, TextFaults& faults) {
    if (line.size() > kLongestLine) {
        faults.add(Level::warning, "line-length",
                   "the line has " + std::to_string(line.size()) + " bytes; what is beyond 255 is not read",
                   "shorten it");
        line = line.substr(0, kLongestLine);
    }
    if (const size_t nul = line.find('\0'); nul != line.npos) {
        faults.add(Level::warning, "nul", "a zero byte ends the line before its end", "take it out");
        line = line.substr(0, nul);
    }
    return line;
}

bool isRemark(std::string_view line) {
    const std::string_view text = trimmed(line);
    return text.empty() || text.find_first_not_of('-') == text.npos || startsIgnoringCase(text, "TONE CURVE file");
}

void addUnknown(TextFaults& faults, std::string_view line) {
    if (!isRemark(line))
        faults.add(Level::warning, "line-unknown", quoted(line) + " begins with no key, so it is skipped",
                   "correct the key, six characters and a sign");
}

// A curve is made of what the reader took, so it is the reader's curve that is looked at.
void checkFall(TextFaults& faults, const ToneCurve& curve, int channel, const std::string& name) {
    const auto values = tone::valuesOf(curve, channel);
    for (size_t level = 1; level < values.size(); ++level) {
        if (values[level] >= values[level - 1]) continue;
        faults.addWhole(Level::warning, "curve-turns", name + " falls from " + listed(values[level - 1]) + " to " +
                            listed(values[level]) + " at level " + std::to_string(level),
                        "raise its control points in order");
        return;
    }
}

// A number of a field; false, with the fault, when it is none.
bool checkWhole(TextFaults& faults, std::string_view text, const std::string& what) {
    if (isWholeNumber(text)) return true;
    faults.add(Level::error, "number", what + (trimmed(text).empty() ? " is missing" : ' ' + quoted(text) + " is no whole number") +
                   ", so it counts as " + std::to_string(integerIn(text)),
               "write a whole number");
    return false;
}

void checkRange(TextFaults& faults, int value, int most, const std::string& what) {
    if (value < 0 || value > most)
        faults.add(Level::warning, "value", what + ' ' + listed(value) + " is outside 0 to " + listed(most),
                   "write a number that is inside");
}

void checkTitle(TextFaults& faults, std::string_view title) {
    if (title.size() > kLongestTitle)
        faults.add(Level::warning, "text-length", "the title has " + std::to_string(title.size()) +
                       " bytes; it is cut to 63", "shorten it");
}

// Seventeen fields; what the line is about stands before them.
void checkGridLine(TextFaults& faults, std::string_view line, int channel, const ToneCurve* curve,
                   const std::string& name) {
    Scanner fields(line.substr(tone::kCurveKeySize));
    fields.skip(kListSeparators);
    for (size_t field = 0; field < tone::kGridFields; ++field) {
        fields.skip(kListSeparators);
        if (trimmed(fields.rest()).empty() || trimmed(fields.rest()) == ";") {
            faults.add(Level::error, "fields", name + " has " + std::to_string(field) +
                           " values of 17; those that are missing become control points of value 0",
                       "write all of them");
            return;
        }
        const bool computed = fields.take('+');
        const std::string_view rest = fields.rest();
        std::string_view text = rest.substr(0, rest.find(','));
        text = trimmed(text.substr(0, text.find(';')));
        const int value = integerIn(text);
        if (checkWhole(faults, text, name + ", value " + std::to_string(field + 1))) checkRange(faults, value, 255, name);
        if (computed && curve) {
            const int found = tone::valuesOf(*curve, channel)[tone::gridLevel(field)];
            if (found != value)
                faults.add(Level::note, "computed", name + " tells " + listed(value) + " at level " +
                               std::to_string(tone::gridLevel(field)) + ", its control points give " + listed(found),
                           "nothing: a value with + is computed anew (--fix)");
        }
        fields.advanceTo(",");
    }
    fields.skip(kListSeparators);
    if (!trimmed(fields.rest()).empty() && !trimmed(fields.rest()).starts_with(';'))
        faults.add(Level::warning, "fields", name + " has more than 17 values; the others are not read",
                   "take them out");
}

struct Setting {
    std::string_view key;
    const char* what;
    int least, most;
};
constexpr Setting kPrinterSettings[] = {{"DPI  ", "the resolution", 1, 100000},
                                        {"DPIX ", "the resolution across", 1, 100000},
                                        {"DPIY ", "the resolution along", 1, 100000},
                                        {"WINK ", "the total ink", 0, 4 * 255},
                                        {"LCLM ", "the density of light inks", 0, 100}};

}  // namespace

std::vector<Fault> checkBlackCurve(std::string_view text) {
    TextFaults faults(text);
    std::bitset<256> given;
    bool hasTone = false;
    for (std::string_view line; faults.next(line);) {
        line = seenPart(line, faults);
        const std::string_view whole = line;
        line = line.substr(0, line.find(';'));
        if (startsIgnoringCase(line, "TITLE ")) {
            Scanner title(line.substr(6));
            title.skip(kListSeparators);
            checkTitle(faults, title.rest());
            continue;
        }
        if (!startsIgnoringCase(line, "TONE  ")) {
            addUnknown(faults, whole);
            continue;
        }
        hasTone = true;
        Scanner numbers(line.substr(6));
        numbers.skip(kListSeparators);
        const auto take = [&] {
            const std::string_view rest = numbers.rest();
            numbers.advanceTo(kListSeparators);
            const std::string_view number = rest.substr(0, rest.size() - numbers.rest().size());
            numbers.skip(kListSeparators);
            return number;
        };
        const std::string_view x = take(), y = take();
        const bool isLevel = checkWhole(faults, x, "the level");
        const int level = integerIn(x);
        if (isLevel && (level < 0 || level > 255)) {
            faults.add(Level::warning, "level", "the level " + listed(level) + " is outside 0 to 255, so the line is skipped",
                       "write a level that is inside");
            continue;
        }
        if (checkWhole(faults, y, "the value")) checkRange(faults, integerIn(y), 255, "the value");
        if (level < 0 || level > 255) continue;
        if (given[static_cast<size_t>(level)])
            faults.add(Level::warning, "level-twice", "the level " + listed(level) + " is given again; the last line counts",
                       "take one of them out");
        given.set(static_cast<size_t>(level));
    }
    if (!hasTone) {
        faults.addWhole(Level::error, "no-curve", "there is no line TONE, so the curve changes nothing",
                        "save the curve again");
        return faults.take();
    }
    if (!given[0] || !given[255])
        faults.addWhole(Level::note, "curve-ends", std::string("there is no control point at ") + (given[0] ? "255" : "0") +
                            "; the curve has one all the same", "write it (--fix)");
    if (const auto curve = tone::createToneCurve(1)) {
        tone::readBkcCurve(*curve, text);
        checkFall(faults, *curve, 0, "the curve");
    }
    return faults.take();
}

std::vector<Fault> checkGridCurves(std::string_view text, bool printer) {
    TextFaults faults(text);
    const size_t count = printer ? tone::kDccCurves : tone::kCmykCurves;
    const auto curve = tone::createToneCurve(static_cast<int32_t>(count));
    if (curve && printer) {
        DccSettings settings{};
        settings.curves = curve.get();
        tone::readDcc(settings, text);
    } else if (curve) {
        tone::readCmykToneCurve(*curve, text);
    }
    std::array<bool, tone::kDccCurves> given{};
    std::array<bool, std::size(kPrinterSettings)> set{};
    for (std::string_view line; faults.next(line);) {
        line = seenPart(line, faults);
        bool known = false;
        for (const tone::CurveKey& key : std::span(tone::kCurveKeys).first(count)) {
            if (!startsIgnoringCase(line, {key.prefix, tone::kCurveKeySize})) continue;
            known = true;
            const std::string name = "the curve " + std::string(trimmed({key.prefix, tone::kCurveKeySize}));
            bool& before = given[static_cast<size_t>(key.channel)];
            if (before) faults.add(Level::warning, "curve-twice", name + " is given again; the last line counts",
                                   "take one of them out");
            before = true;
            checkGridLine(faults, line, key.channel, curve.get(), name);
        }
        if (!known && printer) {
            const std::string_view setting = line.substr(0, line.find(';'));
            for (size_t at = 0; at < std::size(kPrinterSettings); ++at) {
                const Setting& of = kPrinterSettings[at];
                if (!startsIgnoringCase(setting, of.key)) continue;
                known = set[at] = true;
                Scanner value(setting.substr(of.key.size()));
                value.skip("= ");
                const std::string what = of.what;
                if (!checkWhole(faults, value.rest(), what)) continue;
                const int number = integerIn(value.rest());
                if (number < of.least || number > of.most)
                    faults.add(Level::warning, "value", what + ' ' + listed(number) + " is outside " + listed(of.least) +
                                   " to " + listed(of.most), "write a number that is inside");
            }
            if (startsIgnoringCase(setting, "DEV  ")) {
                known = true;
                Scanner value(setting.substr(5));
                value.skip("= ");
                checkTitle(faults, value.rest());
            }
        }
        if (!known) addUnknown(faults, line);
    }
    const auto end = given.begin() + static_cast<std::ptrdiff_t>(count);
    if (std::none_of(given.begin(), end, [](bool one) { return one; })) {
        faults.addWhole(Level::error, "no-curve", "no line is a curve, so the file changes nothing", "save the curves again");
        return faults.take();
    }
    for (const tone::CurveKey& key : std::span(tone::kCurveKeys).first(count)) {
        const std::string name = "the curve " + std::string(trimmed({key.prefix, tone::kCurveKeySize}));
        if (!given[static_cast<size_t>(key.channel)])
            faults.addWhole(Level::warning, "curve-missing", name + " is missing, so it changes nothing", "write it (--fix)");
        else if (curve && key.channel < 4) checkFall(faults, *curve, key.channel, name);
    }
    if (printer) {
        const bool resolution = set[0] || (set[1] && set[2]);
        if (!resolution || !set[3] || !set[4])
            faults.addWhole(Level::note, "setting-missing",
                            std::string(!resolution ? "the resolution" : !set[3] ? "the total ink" : "the density of light inks") +
                                " is missing; whoever loads the file keeps what was there",
                            "write it");
    }
    return faults.take();
}

}  // namespace ko::quality
