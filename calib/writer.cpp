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

void writeSet(const RegsHandle& file, const CalibCurveSet& set) {
    jRegsOpenDirectory(file, kSetDirectory);
    jRegsSetKey(file, "TITLE", textIn(set.title));
    jRegsSetKey(file, "DESC", textIn(set.desc));
    jRegsSetKey(file, "CHANNEL", std::to_string(channelsOf(set).size()));
    jRegsSetKey(file, "RANGE", std::to_string(set.range));
    jRegsSetKey(file, "LIMIT", std::to_string(set.limit));
    jRegsSetKey(file, "CTYPE", std::to_string(set.ctype));
    jRegsSetKey(file, "FORMAT_X", textIn(set.formatX));
    jRegsSetKey(file, "FORMAT_Y", textIn(set.formatY));
}

std::string colourText(uint32_t lrgb) {
    const auto part = [&](int shift) { return std::to_string(lrgb >> shift & 0xff); };
    return part(0) + ',' + part(8) + ',' + part(16);
}

void writeChannel(const RegsHandle& file, const CalibChannel& channel, const NumberFormat& formatX,
                  const NumberFormat& formatY) {
    jRegsSetKey(file, kNameKey, textIn(channel.name));
    jRegsSetKey(file, kColourKey, colourText(channel.lrgb));
    int index = 0;
    for (const CalibTone& tone : tonesOf(channel))
        jRegsSetKey(file, toneKey(index++), formatX.print(tone.x) + ',' + formatY.print(tone.y));
}

}  // namespace

bool saveCurve(CalibCurveSet& set, const char* path) {
    if (path && *path && !copyPath(set.path, path)) return false;
    if (textIn(set.path).size() == std::size(set.path))  // it lacks its terminator
        return platform::failFor(platform::Cause::wrongArgument);
    // What a file at that path holds is not kept: the settings are written afresh.
    const RegsHandle file = jRegsOpen(set.path, RegsOpen::afresh);
    if (!file) return false;
    writeSet(file, set);
    const NumberFormat formatX = usableFormat(textIn(set.formatX));
    const NumberFormat formatY = usableFormat(textIn(set.formatY));
    int index = 0;
    for (const CalibChannel& channel : channelsOf(set)) {
        jRegsOpenDirectory(file, channelDirectory(index++));
        writeChannel(file, channel, formatX, formatY);
    }
    return jRegsFlash(file);
}

}  // namespace ko::calib
