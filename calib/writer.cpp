// Writes .clb files, in the keyed form.
#include <iterator>
#include <string>

#include "calib/calib.h"
#include "calib/keys.h"
#include "calib/number_format.h"
#include "frame/settings.h"
#include "frame/text.h"

namespace ko::calib {
namespace {

// The keys are names that every file holds, and a set is far below a file's limits.
void put(SettingsFile& file, std::string_view key, std::string_view value) {
    (void)file.set(key, value);
}

void writeSet(SettingsFile& file, const CalibCurveSet& set) {
    file.select(kSetDirectory);
    put(file, "TITLE", textIn(set.title));
    put(file, "DESC", textIn(set.desc));
    put(file, "CHANNEL", std::to_string(channelsOf(set).size()));
    put(file, "RANGE", std::to_string(set.range));
    put(file, "LIMIT", std::to_string(set.limit));
    put(file, "CTYPE", std::to_string(set.ctype));
    put(file, "FORMAT_X", textIn(set.formatX));
    put(file, "FORMAT_Y", textIn(set.formatY));
}

std::string colourText(uint32_t lrgb) {
    const auto part = [&](int shift) { return std::to_string(lrgb >> shift & 0xff); };
    return part(0) + ',' + part(8) + ',' + part(16);
}

void writeChannel(SettingsFile& file, const CalibChannel& channel, const NumberFormat& formatX,
                  const NumberFormat& formatY) {
    put(file, kNameKey, textIn(channel.name));
    put(file, kColourKey, colourText(channel.lrgb));
    int index = 0;
    for (const CalibTone& tone : tonesOf(channel))
        put(file, toneKey(index++), formatX.print(tone.x) + ',' + formatY.print(tone.y));
}

}  // namespace

bool saveCurve(CalibCurveSet& set, const char* path) {
    if (path && *path && !copyPath(set.path, path)) return false;
    if (textIn(set.path).size() == std::size(set.path))  // it lacks its terminator
        return platform::failFor(platform::Cause::wrongArgument);
    // What a file at that path holds is not kept: the settings are written afresh.
    auto file = SettingsFile::startAfresh(set.path);
    if (!file) return false;
    writeSet(*file, set);
    const NumberFormat formatX = usableFormat(textIn(set.formatX));
    const NumberFormat formatY = usableFormat(textIn(set.formatY));
    int index = 0;
    for (const CalibChannel& channel : channelsOf(set)) {
        file->select(channelDirectory(index++));
        writeChannel(*file, channel, formatX, formatY);
    }
    return file->save();
}

}  // namespace ko::calib
