// Reads .clb files: the keyed form, which the library writes, and the older plain one.
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>

#include "calib/calib.h"
#include "calib/keys.h"
#include "calib/number_format.h"
#include "frame/ascii.h"
#include "frame/file.h"
#include "frame/lines.h"
#include "frame/scan.h"
#include "frame/settings.h"
#include "frame/text.h"

namespace ko::calib {
namespace {

constexpr size_t kLineSize = 256;
constexpr std::string_view kValueSeparators = "= ";
constexpr std::string_view kListSeparators = "= ,";

CalibTone toneIn(Scanner text, std::string_view separators) noexcept {
    const auto number = [&] {  // the nearest that single precision holds
        constexpr double kMax = std::numeric_limits<float>::max();
        return static_cast<float>(std::clamp(text.real(), -kMax, kMax));
    };
    CalibTone tone;
    tone.x = number();
    text.advanceTo(separators);
    text.skip(separators);
    text.skip(", ");
    tone.y = number();
    return tone;
}

uint32_t colourIn(Scanner text) noexcept {
    uint32_t lrgb = 0;
    for (int shift = 0; shift < 24; shift += 8) {  // red is the low byte
        lrgb |= static_cast<uint32_t>(std::clamp(text.integer(), 0, 255)) << shift;
        text.advanceTo(kListSeparators);
        text.skip(kListSeparators);
    }
    return lrgb;
}

void copyFormat(std::span<char> field, std::string_view text) noexcept {
    const bool usable = text.size() < field.size() && NumberFormat::parse(text);
    copyText(field, usable ? text : kDefaultFormat);
}

// Sizes that the file leaves out or gives as 0.
struct Sizes {
    int32_t channelCount = 0, range = 0, limit = 0;
};

// A set as the sizes say, without tones.
Block<CalibCurveSet> emptySet(const Sizes& sizes, const Path& path) {
    const int32_t range = sizes.range != 0 ? sizes.range : 255;
    const int32_t limit = sizes.limit != 0 ? sizes.limit : range;
    if (sizes.channelCount < 1 || sizes.channelCount > KOLINK_CALIB_MAX_CHANNELS) {
        platform::setLastError(platform::Cause::damaged);
        return nullptr;
    }
    auto set = createCurve(sizes.channelCount, range, limit);
    if (!set) return nullptr;
    path.copyTo(set->path);
    for (CalibChannel& channel : channelsOf(*set)) {
        std::fill(std::begin(channel.tones), std::end(channel.tones), CalibTone{0.0f, 0.0f});
        channel.toneCount = 0;
    }
    return set;
}

// The plain form: lines of a key and a value.
bool hasKey(const char* line, std::string_view key) noexcept {
    return startsIgnoringCase(line, key);
}

Scanner valueFrom(const char* line, size_t start, std::string_view separators) noexcept {
    const std::string_view text(line);
    Scanner value(text.substr(std::min(start, text.size())));
    value.skip(separators);
    return value;
}

// Calls read with every line that is not empty, cut at its first ';'.
template <class Read>
void readLines(std::string_view text, Read&& read) {
    LineReader lines(text);
    for (char line[kLineSize]; lines.next(line);) {
        if (char* semicolon = std::strchr(line, ';')) *semicolon = '\0';
        if (line[0] != '\0') read(line);
    }
}

void readSizes(const char* line, Sizes& sizes) noexcept {
    const int32_t value = valueFrom(line, 8, kValueSeparators).integer();
    if (hasKey(line, "CHANNEL ")) sizes.channelCount = value;
    if (hasKey(line, "RANGE   ")) sizes.range = value;
    if (hasKey(line, "LIMIT   ")) sizes.limit = value;
}

void readChannelLine(const char* line, CalibCurveSet& set) noexcept {
    const int32_t number = Scanner(line + 5).integer();
    const auto channels = channelsOf(set);
    if (number < 0 || static_cast<size_t>(number) >= channels.size()) return;
    CalibChannel& channel = channels[static_cast<size_t>(number)];
    if (hasKey(line, "NAME ")) copyText(channel.name, valueFrom(line, 8, kValueSeparators).rest());
    if (channel.toneCount >= KOLINK_CALIB_MAX_TONES) return;  // colours no more than tones
    const Scanner numbers = valueFrom(line, 8, kListSeparators);
    if (hasKey(line, "LRGB ")) channel.lrgb = colourIn(numbers);
    if (hasKey(line, "TONE "))
        channel.tones[channel.toneCount++] = toneIn(numbers, kListSeparators);
}

void readPlainLine(const char* line, CalibCurveSet& set) noexcept {
    const Scanner value = valueFrom(line, 8, kValueSeparators);
    if (hasKey(line, "TITLE   ")) copyText(set.title, value.rest());
    if (hasKey(line, "DESC    ")) copyText(set.desc, value.rest());
    if (hasKey(line, "CTYPE   ")) set.ctype = value.integer();
    if (hasKey(line, "FORMAT_X")) copyFormat(set.formatX, value.rest());
    if (hasKey(line, "FORMAT_Y")) copyFormat(set.formatY, value.rest());
    if (hasKey(line, "NAME ") || hasKey(line, "LRGB ") || hasKey(line, "TONE "))
        readChannelLine(line, set);
}

Block<CalibCurveSet> loadPlainCurve(std::string_view text, const Path& path) {
    Sizes sizes;
    readLines(text, [&](const char* line) { readSizes(line, sizes); });
    auto set = emptySet(sizes, path);
    if (set) readLines(text, [&](const char* line) { readPlainLine(line, *set); });
    return set;
}

// The keyed form.
class KeyedReader {
public:
    explicit KeyedReader(SettingsFile& file) noexcept : file_(file) {}

    void select(const std::string& directory) { file_.select(directory); }
    // The value of a key in the selected directory; null when it is not there.
    const char* find(std::string_view key) noexcept {
        const std::string* const value = file_.value(key);
        if (!value) return nullptr;
        copyText(value_, *value);
        return value_;
    }
    int32_t integer(std::string_view key, int32_t absent) noexcept {
        const char* text = find(key);
        return text ? integerIn(text) : absent;
    }
    void text(std::string_view key, std::span<char> field) noexcept {
        if (const char* found = find(key)) copyText(field, found);
    }
    void format(std::string_view key, std::span<char> field) noexcept {
        if (const char* found = find(key)) copyFormat(field, found);
    }

private:
    SettingsFile& file_;
    char value_[512];
};

// Among the tones sorted so far; a second one of the same x takes the place of the first.
void insertTone(CalibChannel& channel, const CalibTone& tone) noexcept {
    CalibTone* const end = channel.tones + channel.toneCount;
    const auto same =
        std::find_if(channel.tones, end, [&](const CalibTone& other) { return other.x == tone.x; });
    if (same != end) {
        *same = tone;
        return;
    }
    CalibTone* place = end;
    for (; place != channel.tones && place[-1].x > tone.x; --place) *place = place[-1];
    *place = tone;
    ++channel.toneCount;
}

void readChannel(KeyedReader& keys, CalibChannel& channel) {
    keys.text(kNameKey, channel.name);
    if (const char* colour = keys.find(kColourKey)) channel.lrgb = colourIn(Scanner(colour));
    for (int index = 0; index < KOLINK_CALIB_MAX_TONES; ++index)
        if (const char* text = keys.find(toneKey(index)))
            insertTone(channel, toneIn(Scanner(text), ","));
}

Block<CalibCurveSet> loadKeyedCurve(std::string_view text, const Path& path) {
    auto file = SettingsFile::fromText(path.c_str(), text);
    if (!file) return nullptr;
    KeyedReader keys(*file);
    keys.select(kSetDirectory);
    const Sizes sizes{keys.integer("CHANNEL", 0), keys.integer("RANGE", 0), keys.integer("LIMIT", 0)};
    auto set = emptySet(sizes, path);
    if (!set) return nullptr;
    keys.text("TITLE", set->title);
    keys.text("DESC", set->desc);
    set->ctype = keys.integer("CTYPE", set->ctype);
    keys.format("FORMAT_X", set->formatX);
    keys.format("FORMAT_Y", set->formatY);
    int index = 0;
    for (CalibChannel& channel : channelsOf(*set)) {
        keys.select(channelDirectory(index++));
        readChannel(keys, channel);
    }
    return set;
}

}  // namespace

Block<CalibCurveSet> loadCurve(const Path& path) {
    const FileReading reading = readWhole(path, kCalibrationFiles);
    return reading ? readCurve(reading.file.text(), path) : nullptr;
}

Block<CalibCurveSet> readCurve(std::string_view text, const Path& path) {
    // Editors that save in UTF-8 may put their mark in front.
    const bool keyed = text.starts_with('<') || text.starts_with("\xef\xbb\xbf<");
    return keyed ? loadKeyedCurve(text, path) : loadPlainCurve(text, path);
}

}  // namespace ko::calib
