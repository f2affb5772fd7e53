// kolink calib: calibration sets shown, read, edited and drawn.
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>

#include "cli/arguments.h"
#include "cli/calib.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/plot.h"
#include "cli/report.h"
#include "cli/system.h"
#include "calib/calib.h"
#include "frame/platform.h"

namespace ko::cli {

CalibPtr loadCalib(const InputFile& file) {
    CalibPtr set = reasoned([&] { return calib::readCurve(file.text(), toLibraryPath(file.path).c_str()); });
    if (set) return set;
    throwIfNotItsFault(file.path);
    failOn(file.path, "is no calibration set: it names no channel count from 1 to 16");
}

Json calibReport(const CalibCurveSet& set) {
    Json report;
    report["title"] = fieldText(set.title);
    report["description"] = fieldText(set.desc);
    report["range"] = set.range;
    report["limit"] = set.limit;
    report["interpolation"] = set.ctype == 1 ? "spline" : "straight lines";
    report["channels"] = Json::array();
    for (int32_t at = 0; at < set.channelCount; ++at) {
        const CalibChannel& channel = set.channels[at];
        Json entry;
        entry["channel"] = at + 1;
        entry["name"] = fieldText(channel.name);
        entry["colour"] = {channel.lrgb & 255, channel.lrgb >> 8 & 255, channel.lrgb >> 16 & 255};
        entry["tones"] = Json::array();
        for (int32_t tone = 0; tone < channel.toneCount; ++tone)
            entry["tones"].push_back({channel.tones[tone].x, channel.tones[tone].y});
        report["channels"].push_back(entry);
    }
    return report;
}

namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink calib new press.clb --channels 4 --range 100 --title \"Press 3\"\n"
    "  kolink calib set press.clb 1 50 47.5\n"
    "  kolink calib value press.clb 1 33\n"
    "  kolink calib show press.clb\n"
    "  kolink calib plot press.clb -o press.svg\n"
    "\n"
    "Channels count from 1.\n";

float finite(const std::string& text, const char* what) {
    float value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size() || !std::isfinite(value))
        throw UsageFailure(std::string(what) + ": '" + text + "' is not a number");
    return value;
}

struct Options {
    std::string file, output, x, y, title, description;
    std::vector<std::string> names;
    int32_t channel = 1, channels = 4, range = 255, limit = 0;
    bool json = false, straight = false;
};

int32_t channelOf(const Options& options, const CalibCurveSet& set) {
    if (options.channel > set.channelCount)
        failOn(options.file, "has " + std::to_string(set.channelCount) + " channels, no channel " +
                                 std::to_string(options.channel));
    return options.channel - 1;
}

void save(CalibCurveSet& set, const std::string& path) {
    const std::string libraryPath = toLibraryPath(path);
    writeThrough(path, [&] { return jKoCalibSaveCurve(&set, libraryPath.c_str()) == 1; });
}

// Reads a set, changes it and writes it, while nobody else does the same.
template <class Change>
void edit(const std::string& path, Change&& change) {
    const FileGuard guard;
    const CalibPtr set = loadCalib(openInput(path));
    change(*set);
    checkOutput(path, {});
    save(*set, path);
}

void keepDecimals(char (&format)[8]) {
    if (std::strcmp(format, "%.0f") == 0) std::strcpy(format, "%g");
}

template <size_t size>
std::string checkedText(const std::string& text, const char (&)[size], const char* what) {
    const auto bytes = system::toShiftJis(text);
    if (!bytes) throw UsageFailure(std::string(what) + ": '" + text + "' has characters that Shift-JIS lacks");
    if (bytes->size() >= size || bytes->find_first_of("\r\n") != std::string::npos)
        throw UsageFailure(std::string(what) + " has to be one line of at most " + std::to_string(size - 1) + " bytes");
    return *bytes;
}

// In the user's language, English where that is not one of the library's. Shift-JIS has them all.
std::string channelName(size_t number) {
    const std::string language = platform::userLanguage();
    const char* const word = language == "japanese" ? "チャンネル" : language == "chinese" ? "通道" : "Channel";
    return std::string(word) + ' ' + std::to_string(number);
}

// The colours that channels are drawn in: red, green, blue of three, the four inks, then hues that
// stand apart from those. One byte a part, red in the lowest.
uint32_t channelColour(int32_t channel, int32_t channels) {
    constexpr uint32_t kLights[] = {0x2d2dd9, 0x55a003, 0xef7015};
    constexpr uint32_t kInks[KOLINK_CALIB_MAX_CHANNELS] = {
        0xd9970a, 0x7d1bd8, 0x00ace0, 0x2b2420, 0x1a70e8, 0x4a9a2e, 0xb0387a, 0x2020b8,
        0xa85a1c, 0xe8c47a, 0xb98cf0, 0x8a8a8a, 0x2e5a8c, 0x7a8c1e, 0x5a2e8c, 0x404858};
    if (channels == 3) return kLights[channel];
    return channels < 3 ? kInks[(channel + 3) % 16] : kInks[channel];
}

void makeNew(const Options& options) {
    const FileGuard guard;  // so that two cannot make it both
    std::error_code error;
    if (std::filesystem::exists(toPath(options.file), error)) failOn(options.file, "exists already");
    const CalibPtr set = orShortOfMemory(calib::createCurve(
        options.channels, options.range, options.limit > 0 ? options.limit : options.range));
    const std::string title = checkedText(options.title, set->title, "--title");
    const std::string description = checkedText(options.description, set->desc, "--description");
    jKoCalibSetTitle(set.get(), title.c_str(), description.c_str());
    set->ctype = options.straight ? 2 : 1;
    if (options.names.size() > static_cast<size_t>(set->channelCount))
        throw UsageFailure("--names has more names than there are channels");
    for (int32_t at = 0; at < options.channels; ++at) {
        const auto place = static_cast<size_t>(at);
        const std::string name = checkedText(place < options.names.size() ? options.names[place] : channelName(place + 1),
                                             set->channels[0].name, "--names");
        jKoCalibSetToneName(set.get(), at, name.c_str(), channelColour(at, options.channels));
    }
    // Tones of a percent scale are given with decimals.
    for (char* format : {set->formatX, set->formatY}) std::strcpy(format, "%g");
    checkOutput(options.file, {});
    save(*set, options.file);
}

}  // namespace

void addCalibCommand(Command& app) {
    const auto options = std::make_shared<Options>();
    Command command = app.command("calib", "Show, read and edit calibration sets (.clb)");
    command.examples(kExamples);
    command.needsCommand();
    const auto add = [&](const char* name, const char* description) {
        Command sub = command.command(name, description);
        sub.option("file", options->file, "A calibration set").called("FILE").required();
        return sub;
    };
    const auto addChannel = [&](Command& sub) {
        sub.option("channel", options->channel, "The channel, from 1").between(1, 16).required();
    };

    Command show = add("show", "Say what a set holds");
    show.flag("--json", options->json, "For programs");
    show.does([options] {
        const CalibPtr set = loadCalib(openInput(options->file));
        writeOut(options->json ? toJson(calibReport(*set)) : toLines(calibReport(*set)));
    });

    Command value = add("value", "The output tone at an input tone");
    addChannel(value);
    value.option("x", options->x, "The input tone").required();
    value.does([options] {
        const float x = finite(options->x, "x");
        const CalibPtr set = loadCalib(openInput(options->file));
        const int32_t channel = channelOf(*options, *set);
        if (x < 0 || x > static_cast<float>(set->range))
            failOn(options->file, "input tones go from 0 to " + std::to_string(set->range));
        writeOut(number(jKoCalibGetToneValue(set.get(), channel, x), 4) + '\n');
    });

    Command setting = add("set", "Set the output tone at an input tone");
    addChannel(setting);
    setting.option("x", options->x, "The input tone").required();
    setting.option("y", options->y, "The output tone").required();
    setting.does([options] {
        const float x = finite(options->x, "x"), y = finite(options->y, "y");
        edit(options->file, [&](CalibCurveSet& set) {
            const int32_t channel = channelOf(*options, set);
            if (y < 0 || y > static_cast<float>(set.limit))
                failOn(options->file, "output tones go from 0 to " + std::to_string(set.limit));
            if (jKoCalibSetToneValue(&set, channel, x, y) != 1)
                failOn(options->file, x < 0 || x > static_cast<float>(set.range)
                                          ? "input tones go from 0 to " + std::to_string(set.range)
                                          : "the channel already has its 256 tones");
            // A format for whole numbers would round the tone away when the file is written.
            if (std::floor(x) != x) keepDecimals(set.formatX);
            if (std::floor(y) != y) keepDecimals(set.formatY);
        });
    });

    Command deleting = add("delete", "Remove the tone at an input tone; the two ends stay");
    addChannel(deleting);
    deleting.option("x", options->x, "The input tone").required();
    deleting.does([options] {
        const float x = finite(options->x, "x");
        edit(options->file, [&](CalibCurveSet& set) {
            if (jKoCalibDeleteToneValue(&set, channelOf(*options, set), x) != 1)
                failOn(options->file, "there is no tone at " + number(x, 4) + " between the two ends of the channel");
        });
    });

    Command making = add("new", "Make a set of identity curves; an existing file stays as it is");
    making.option("--channels", options->channels, "How many, 1 to 16 (4)").between(1, 16);
    making.option("--range", options->range, "The largest input tone (255)").between(1, 65535);
    making.option("--limit", options->limit, "The largest output tone (that of --range)").between(1, 65535);
    making.option("--title", options->title, "Title");
    making.option("--description", options->description, "Description");
    making.option("--names", options->names, "Names of the channels, commas between them").separatedBy(',');
    making.flag("--straight", options->straight, "Straight lines between the tones instead of the spline");
    making.does([options] { makeNew(*options); });

    Command plotting = add("plot", "Draw the curves as an SVG picture");
    plotting.option("-o,--output", options->output, "The picture to write, - for standard output")
        .called("FILE").required();
    plotting.does([options] {
        const std::string inputs[] = {options->file};
        writeText(options->output, plotCalib(openInput(options->file)), inputs);
    });
}

}  // namespace ko::cli
