// Settings files, and the calibration sets that are written in their grammar or in the plain form.
#include <algorithm>
#include <array>
#include <set>

#include "calib/calib.h"
#include "calib/keys.h"
#include "calib/number_format.h"
#include "frame/ascii.h"
#include "frame/scan.h"
#include "frame/settings.h"
#include "quality/text_check.h"
#include "quality/text_faults.h"

namespace ko::quality {
namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
constexpr size_t kLongestLine = 255;
constexpr size_t kMostNames = 4096;  // whose second use is looked for

std::string lowered(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), lowerAscii);
    return lower;
}

// The lines of the grammar. What the tree leaves out is told; that there is a tree is not.
void checkGrammar(TextFaults& faults) {
    std::vector<std::string> open;
    std::vector<uint64_t> openedAt;
    std::set<std::string> keys;
    size_t tooDeep = 0;
    for (std::string_view raw; faults.next(raw);) {
        if (faults.number() == 1 && raw.starts_with(kByteOrderMark)) raw.remove_prefix(kByteOrderMark.size());
        const std::string_view line = trimmed(raw);
        if (line.empty()) continue;
        if (raw.find('\0') != raw.npos) {
            faults.add(Level::warning, "nul", "the line holds a zero byte, so it is skipped", "take the byte out");
            continue;
        }
        if (line.size() > 2 && line.front() == '<' && line.back() == '>') {
            const bool closes = line[1] == '/';
            const std::string_view name = line.substr(closes ? 2 : 1, line.size() - (closes ? 3 : 2));
            if (name.empty() || name != trimmed(name) || name.find_first_of("<>") != name.npos) {
                faults.add(Level::warning, "line-unknown", quoted(line) + " names no directory, so it is skipped",
                           "correct the name");
            } else if (!closes && (tooDeep > 0 || open.size() >= SettingsTree::kMaxDepth)) {
                if (tooDeep++ == 0)
                    faults.add(Level::error, "too-deep", "directories nest deeper than " +
                                   std::to_string(SettingsTree::kMaxDepth) + "; this one and its keys are left out",
                               "nest them less deeply");
            } else if (!closes) {
                open.push_back(lowered(name));
                openedAt.push_back(faults.number());
            } else if (tooDeep > 0) {
                --tooDeep;
            } else {
                size_t at = open.size();
                while (at > 0 && open[at - 1] != lowered(name)) --at;
                if (at == 0) {
                    faults.add(Level::warning, "directory-end", quoted(name) + " ends, though it is not open",
                               "take the line out (--fix)");
                    continue;
                }
                for (size_t left = at; left < open.size(); ++left)
                    faults.add(Level::warning, "directory-open", "the directory of line " + std::to_string(openedAt[left]) +
                                   " is still open where the one around it ends",
                               "end it there (--fix)");
                open.resize(at - 1);
                openedAt.resize(at - 1);
            }
            continue;
        }
        const size_t equals = raw.find('=');
        const std::string_view key = trimmed(raw.substr(0, equals));
        if (equals == raw.npos || key.empty() || key.front() == '<') {
            faults.add(Level::warning, "line-unknown", quoted(line) + " is neither a key nor a directory, so it is skipped",
                       "correct the line, or take it out (--fix)");
            continue;
        }
        if (keys.size() >= kMostNames) continue;
        std::string whole;
        for (const std::string& directory : open) whole += directory + '\\';
        if (!keys.insert(whole + lowered(key)).second)
            faults.add(Level::warning, "key-twice", "the key " + quoted(key) + " is set again; the later value counts",
                       "take one of them out (--fix)");
    }
    for (size_t left = 0; left < open.size(); ++left)
        faults.addWhole(Level::warning, "directory-open", "the directory of line " + std::to_string(openedAt[left]) +
                            " is open at the end of the file", "end it (--fix)");
}

bool isKeyed(std::string_view text) {
    return text.starts_with('<') || text.starts_with(std::string(kByteOrderMark) + '<');
}

// Lines of the older form, whose keys have eight characters.
void checkPlainLines(TextFaults& faults, int channels) {
    constexpr std::string_view kKeys[] = {"TITLE   ", "DESC    ", "CHANNEL ", "RANGE   ", "LIMIT   ",
                                          "CTYPE   ", "FORMAT_X", "FORMAT_Y"};
    constexpr std::string_view kChannelKeys[] = {"NAME ", "LRGB ", "TONE "};
    const auto begins = [](std::string_view line) {
        return [line](std::string_view key) { return startsIgnoringCase(line, key); };
    };
    std::array<int, KOLINK_CALIB_MAX_CHANNELS> tones{};
    for (std::string_view line; faults.next(line);) {
        if (line.size() > kLongestLine) {
            faults.add(Level::warning, "line-length", "the line has " + std::to_string(line.size()) +
                           " bytes; what is beyond 255 is not read", "shorten it");
            line = line.substr(0, kLongestLine);
        }
        line = line.substr(0, std::min(line.find(';'), line.find('\0')));
        if (trimmed(line).empty() || std::ranges::any_of(kKeys, begins(line))) continue;
        if (std::ranges::none_of(kChannelKeys, begins(line))) {
            faults.add(Level::warning, "line-unknown", quoted(line) + " begins with no key, so it is skipped",
                       "correct the key, eight characters and a sign");
            continue;
        }
        const int channel = integerIn(line.substr(5));
        if (channel < 0 || channel >= channels) {
            faults.add(Level::warning, "channel", "there is no channel " + std::to_string(channel) + ", so the line is skipped",
                       "correct its number, from 0");
            continue;
        }
        if (!startsIgnoringCase(line, "TONE ")) continue;
        Scanner numbers(line.substr(std::min<size_t>(8, line.size())));
        numbers.skip("= ,");
        for (const char* what : {"the input", "the output"}) {
            const std::string_view rest = numbers.rest();
            numbers.advanceTo("= ,");
            const std::string_view number = rest.substr(0, rest.size() - numbers.rest().size());
            numbers.skip("= ,");
            if (!isNumber(number))
                faults.add(Level::error, "number", std::string(what) + (number.empty() ? " is missing" : ' ' + quoted(number) + " is no number") +
                               ", so it counts as what its beginning says or 0", "write a number");
        }
        if (++tones[static_cast<size_t>(channel)] == KOLINK_CALIB_MAX_TONES + 1)
            faults.add(Level::warning, "tones", "channel " + std::to_string(channel) + " has more than 256 tones; the others are not read",
                       "take some out");
    }
}

void checkKeyedValues(TextFaults& faults, const SettingsTree& tree, int channels) {
    const auto* const set = tree.find(calib::kSetDirectory);
    if (!set) return;
    for (const char* key : {"FORMAT_X", "FORMAT_Y"})
        if (const auto* const format = set->findKey(key))
            if (format->value.size() >= KOLINK_CALIB_FORMAT_SIZE || !calib::NumberFormat::parse(format->value))
                faults.addWhole(Level::warning, "format", std::string(key) + ' ' + quoted(format->value) +
                                    " is no format of a number, so it counts as %.0f",
                                "write one conversion e, f or g");
    for (const char* key : {"CHANNEL", "RANGE", "LIMIT", "CTYPE"})
        if (const auto* const number = set->findKey(key))
            if (!isWholeNumber(number->value))
                faults.addWhole(Level::error, "number", std::string(key) + ' ' + quoted(number->value) + " is no whole number",
                                "write a whole number");
    for (int channel = 0; channel < KOLINK_CALIB_MAX_CHANNELS; ++channel) {
        const auto* const curve = tree.find(calib::channelDirectory(channel));
        const std::string name = "CURVE_" + std::to_string(channel);
        if (!curve) {
            if (channel < channels)
                faults.addWhole(Level::warning, "channel", "the channel " + std::to_string(channel) + " has no directory, so it has no tones",
                                "write it, or count fewer channels");
            continue;
        }
        if (channel >= channels)
            faults.addWhole(Level::warning, "channel", "the directory of channel " + std::to_string(channel) +
                                " is not read: the file counts " + std::to_string(channels),
                            "count more channels, or take it out");
        for (const auto& [key, value] : curve->keys) {
            if (!startsIgnoringCase(key, "TONE_")) continue;
            const size_t comma = value.find(',');
            const std::string_view x = std::string_view(value).substr(0, comma),
                                   y = comma == value.npos ? std::string_view() : std::string_view(value).substr(comma + 1);
            if (!isNumber(x) || !isNumber(y))
                faults.addWhole(Level::error, "number", key + ' ' + quoted(value) + " of channel " + std::to_string(channel) +
                                    " is not two numbers with a comma between them",
                                "write them so");
            if (!isWholeNumber(std::string_view(key).substr(5)) || integerIn(std::string_view(key).substr(5)) >= KOLINK_CALIB_MAX_TONES)
                faults.addWhole(Level::warning, "tones", key + " of channel " + std::to_string(channel) + " is no tone, so it is not read",
                                "number tones from TONE_000 to TONE_255");
        }
    }
}

std::string shown(float value) {  // whole where it is; a fault needs no more than thousandths
    const bool low = value < 0;
    const auto thousandths = static_cast<int64_t>(std::min(low ? -double{value} : double{value}, 1e9) * 1000 + 0.5);
    std::string text = (low ? "-" : "") + std::to_string(thousandths / 1000);
    if (thousandths % 1000 != 0) text += '.' + std::to_string(1000 + thousandths % 1000).substr(1);
    return text.substr(0, text.find('.') == text.npos ? text.npos : text.find_last_not_of('0') + 1);
}

// What the reader made of the file, whichever form it has.
void checkSet(TextFaults& faults, const CalibCurveSet& set) {
    if (set.range < 1 || set.limit < 1)
        return faults.addWhole(Level::error, "range", "the range is " + std::to_string(set.range) + " and the limit " +
                                   std::to_string(set.limit) + ", of which none may be below 1",
                               "write the largest input and output");
    int number = -1;
    for (const CalibChannel& channel : calib::channelsOf(set)) {
        const std::string name = "channel " + std::to_string(++number);
        const auto tones = calib::tonesOf(channel);
        if (tones.size() < 2) {
            faults.addWhole(Level::warning, "tones", name + " has " + std::to_string(tones.size()) +
                                (tones.size() == 1 ? " tone" : " tones") + ", fewer than a curve needs, so it gives 0",
                            "give it a tone at both ends");
            continue;
        }
        for (const CalibTone& tone : tones)
            if (tone.x < 0 || tone.x > static_cast<float>(set.range) || tone.y < 0 || tone.y > static_cast<float>(set.limit)) {
                faults.addWhole(Level::warning, "value", name + " has the tone " + shown(tone.x) + ", " + shown(tone.y) +
                                    " outside its range and limit", "write tones that are inside");
                break;
            }
        for (size_t at = 1; at < tones.size(); ++at) {
            if (tones[at].x <= tones[at - 1].x) {
                faults.addWhole(Level::error, "tone-order", name + " has the input " + shown(tones[at].x) + " behind " +
                                    shown(tones[at - 1].x), "sort the tones, one an input");
                break;
            }
            if (tones[at].y < tones[at - 1].y) {
                faults.addWhole(Level::warning, "curve-turns", name + " falls at the input " + shown(tones[at].x),
                                "measure that tone again");
                break;
            }
        }
        if (tones.front().x > 0 || tones.back().x < static_cast<float>(set.range))
            faults.addWhole(Level::warning, "curve-ends", name + " goes from " + shown(tones.front().x) + " to " +
                                shown(tones.back().x) + ", so it gives 0 outside that",
                            "give it a tone at both ends");
    }
}

}  // namespace

std::vector<Fault> checkSettings(std::string_view text) {
    TextFaults faults(text);
    if (text.size() > SettingsTree::kMaxFileSize) {
        faults.addWhole(Level::error, "length", "the file has more than 4 MiB and is refused", "shorten it");
        return faults.take();
    }
    checkGrammar(faults);
    const SettingsTree tree = SettingsTree::parse(text);
    if (const auto* const own = tree.find("\\INI")) {
        const auto* const folder = own->findKey("KO_FOLDER");
        if (!folder || trimmed(folder->value).empty())
            faults.addWhole(Level::note, "folder", "there is no KO_FOLDER, so the product folder is the library's own",
                            "write the folder, unless that is meant");
        else if (folder->value.size() >= KOLINK_PATH_SIZE)
            faults.addWhole(Level::warning, "folder", "KO_FOLDER is longer than 259 bytes, so the library's own folder counts",
                            "shorten it");
    }
    if (tree.root().keys.empty() && tree.root().directories.empty())
        faults.addWhole(Level::error, "no-settings", "there is neither a key nor a directory", "get the file again");
    return faults.take();
}

std::vector<Fault> checkCalibration(std::string_view text) {
    TextFaults faults(text);
    const bool keyed = isKeyed(text);
    if (keyed && text.size() > SettingsTree::kMaxFileSize) {
        faults.addWhole(Level::error, "length", "the file has more than 4 MiB and is refused", "shorten it");
        return faults.take();
    }
    const auto set = calib::readCurve(text, "");
    if (!set) {
        faults.addWhole(Level::error, "channels", "the file does not count 1 to 16 channels, so it is refused",
                        keyed ? "write CHANNEL into the directory CALIB" : "write a line CHANNEL");
        return faults.take();
    }
    if (keyed) {
        checkGrammar(faults);
        checkKeyedValues(faults, SettingsTree::parse(text), set->channelCount);
    } else {
        checkPlainLines(faults, set->channelCount);
    }
    checkSet(faults, *set);
    return faults.take();
}

}  // namespace ko::quality
