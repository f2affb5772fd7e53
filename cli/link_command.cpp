// kolink link: combines profiles, curves and settings into an ICC device link.
#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "cli/arguments.h"
#include "cli/classic_link.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/finish.h"
#include "cli/gate_options.h"
#include "cli/icc_input.h"
#include "cli/link_choices.h"
#include "cli/measured_link.h"
#include "cli/origin.h"
#include "cli/precise.h"
#include "cli/system.h"
#include "cmyk/cmyk.h"
#include "cmyk/description.h"
#include "cmyk/save.h"
#include "frame/bytes.h"
#include "frame/path.h"
#include "frame/text.h"
#include "kolink/version.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "The simplest link: colours of a press, printed on a printer, as near as its inks come.\n"
    "Black keeps its place, and white paper stays white, unless told otherwise:\n"
    "  kolink link --source press.icc --destination printer.icc --output proof.icc\n"
    "\n"
    "Pure inks and two-ink mixes kept clean, black through a curve of its own, less ink:\n"
    "  kolink link --source press.icc --destination printer.icc --output proof.icc \\\n"
    "      --preserve secondaries --black press.bkc --ink-limit 280\n"
    "\n"
    "Pictures of a screen on a press, in 16 bits:\n"
    "  kolink link --source srgb.icc --destination press.icc --bits 16 -o out.icc\n"
    "\n"
    "The paper of a newspaper shown by a tint that fades out at 25 % total coverage:\n"
    "  kolink link --source news.icc --destination printer.icc --output news.icc \\\n"
    "      --paper 0,2,6,3 --fade 25\n"
    "\n"
    "A correction link alone, and a foreign table read by the plug-in LutRead:\n"
    "  kolink link --base correction.icc --output corrected.icc\n"
    "  kolink link --source target.nqp --destination printer.dcc --output proof.icc\n"
    "\n"
    "A house standard that the link must keep, or it is not written (status 3):\n"
    "  kolink link --source press.icc --destination printer.icc --output proof.icc \\\n"
    "      --gates coated.json --report\n"
    "\n"
    "With SOURCE_DATE_EPOCH set, the same input gives the same bytes.\n";

struct Options {
    LinkChoices choices;
    std::optional<std::string> name, comment;
    std::string output;
    GateOptions gates;
    bool verbose = false, reports = false, leavesOutPaths = false;
};

void say(const std::string& line) { std::fputs(("kolink: " + line + "\n").c_str(), stderr); }

// As much of the text as Shift-JIS has and as fits; what is left out goes to dropped.
std::string whatFits(const std::string& text, size_t most, std::string& dropped) {
    std::string bytes;
    for (size_t at = 0; at < text.size();) {
        size_t end = at + 1;
        while (end < text.size() && (static_cast<uint8_t>(text[end]) & 0xc0) == 0x80) ++end;
        const std::string character = text.substr(at, end - at);
        const auto converted = system::toShiftJis(character);
        if (converted && bytes.size() + converted->size() <= most) bytes += *converted;
        else dropped += character;
        at = end;
    }
    return bytes;
}

// Name and comment as the editing data has them, in Shift-JIS.
struct Texts {
    std::string name, comment;
};

Texts textsOf(const Options& options) {
    Texts texts;
    if (options.comment) {
        const auto bytes = system::toShiftJis(*options.comment);
        if (!bytes)
            throw UsageFailure("--comment: '" + *options.comment + "' has characters that Shift-JIS lacks");
        if (bytes->size() >= KOLINK_COMMENT_SIZE)
            throw UsageFailure("--comment is longer than " + std::to_string(KOLINK_COMMENT_SIZE - 1) +
                               " bytes of Shift-JIS");
        const std::string plain = cmyk::asPlainText(*options.comment);
        const auto first = std::ranges::mismatch(plain, *options.comment).in2;
        if (first != options.comment->end())
            throw UsageFailure("--comment must have no line that begins with " +
                               std::string(first, first + 5) + ", as lines of the editing data do");
        texts.comment = *bytes;
    }
    if (options.name) {
        if (options.name->find_first_of("\r\n") != std::string::npos)
            throw UsageFailure("--name has to be one line");
        std::string dropped;
        texts.name = whatFits(*options.name, KOLINK_NAME_SIZE - 1, dropped);
        if (!dropped.empty())
            say("--name: the editing data, 63 bytes of Shift-JIS, has no room or no characters for '" +
                printable(dropped) + "', which is left out there");
        return texts;
    }
    // The file's name serves, as far as it can be written.
    texts.name = isStandardOutput(options.output)
                     ? "" : system::toShiftJis(fromPath(toPath(options.output).stem())).value_or("");
    if (texts.name.empty() || texts.name.size() >= KOLINK_NAME_SIZE ||
        texts.name.find_first_of("\r\n") != std::string::npos)
        texts.name = "KoLink";
    return texts;
}

template <size_t size>
void setText(char (&field)[size], const std::string& bytes) {
    std::memset(field, 0, size);
    std::memcpy(field, bytes.data(), bytes.size());
}

// Seconds since 1970 that the header's date is made from instead of the clock.
std::optional<int64_t> reproducibleDate() {
    const char* text = std::getenv("SOURCE_DATE_EPOCH");
    if (!text || !*text) return std::nullopt;
    int64_t seconds = -1;
    const char* end = text + std::strlen(text);
    const auto [stop, error] = std::from_chars(text, end, seconds);
    if (error != std::errc() || stop != end || seconds < 0 || seconds > 253402300799)  // year 9999
        throw Failure("SOURCE_DATE_EPOCH is not a number of seconds since 1970: " + printable(text));
    return seconds;
}

void setDate(IccHeader& header, int64_t seconds) {
    using namespace std::chrono;
    const sys_seconds moment{std::chrono::seconds(seconds)};
    const auto day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss time(moment - day);
    const unsigned parts[6] = {static_cast<unsigned>(static_cast<int>(date.year())),
                               static_cast<unsigned>(date.month()),
                               static_cast<unsigned>(date.day()),
                               static_cast<unsigned>(time.hours().count()),
                               static_cast<unsigned>(time.minutes().count()),
                               static_cast<unsigned>(time.seconds().count())};
    for (size_t i = 0; i < 6; ++i) header.dateTime[i] = static_cast<uint16_t>(parts[i]);
}

// The link as a file, in memory.
std::vector<uint8_t> encode(const CmykProfile& profile, std::optional<int64_t> date) {
    const icc::ProfilePtr link = orShortOfMemory(icc::create(icc::kCreateLink));
    if (date) setDate(link->header, *date);
    if (!cmyk::fillLink(*link, profile)) throw std::bad_alloc();
    auto bytes = icc::encodeLinkProfile(*link);
    if (!bytes) throw Failure("the link cannot be put into the form of a file");
    return *std::move(bytes);
}

// Reads what will be written as a host will read it: that is what was made.
void verify(InputFile written, const CmykProfile& made) {
    const std::string output = written.path;
    const auto wrong = [&](const std::string& what) {
        failOn(output, "the link does not read back as it was made (" + what + "); nothing was written");
    };
    const IccInput link(std::move(written));
    const IccHeader& header = link.header();
    if (header.magic != fourcc("acsp") || header.deviceClass != fourcc("link") ||
        header.colourSpace != fourcc("CMYK") || header.connectionSpace != fourcc("CMYK"))
        wrong("header");
    if (header.profileSize != link.file().size) wrong("size field");
    for (const auto tag : {fourcc("cprt"), fourcc("desc"), fourcc("pseq")})
        if (!link.find(tag)) wrong("tag " + signatureText(tag));
    const IccLut* lut = link.lut(fourcc("A2B0"));
    if (lut->inputChannels != 4 || lut->outputChannels != 4 || lut->precision != 1 ||
        lut->gridPoints != cmyk::kGridPoints)
        wrong("shape of A2B0");
    const CmykProfilePtr read = cmykProfile(link);
    if (std::memcmp(read->grid, made.grid, sizeof made.grid) != 0) wrong("grid");
    if (textIn(read->name) != textIn(made.name) || textIn(read->comment) != textIn(made.comment))
        wrong("name or comment");
    if (std::memcmp(read->curveFlags, made.curveFlags, sizeof made.curveFlags) != 0) wrong("control points");
}

// The same for a link of any form: its table is what was made, at every fourth node of each axis.
// What can be edited is read by the library as well, and wholly.
void verifyPrecise(InputFile written, const KoPreciseLink* made, bool isEditable, const Texts& texts) {
    const std::string output = written.path;
    const auto wrong = [&](const std::string& what) {
        failOn(output, "the link does not read back as it was made (" + what + "); nothing was written");
    };
    KoPreciseLinkInfo info;
    koPreciseDescribeLink(made, &info);
    const IccInput link(std::move(written));
    const IccHeader& header = link.header();
    if (header.magic != fourcc("acsp") || header.deviceClass != fourcc("link") ||
        header.colourSpace != info.sourceSpace || header.connectionSpace != info.destinationSpace ||
        header.renderingIntent != static_cast<uint32_t>(info.intent))
        wrong("header");
    if (header.profileSize != link.file().size) wrong("size field");
    for (const auto tag : {fourcc("cprt"), fourcc("desc"), fourcc("pseq"), fourcc("kprv")})
        if (!link.find(tag)) wrong("tag " + signatureText(tag));
    CmykProfilePtr record;
    if (isEditable) {
        record = cmykProfile(link);
        if (textIn(record->name) != texts.name || textIn(record->comment) != texts.comment)
            wrong("name or comment");
    }
    const IccTagEntry* const entry = link.find(fourcc("A2B0"));
    if (!entry || entry->offset > link.file().size) wrong("tag A2B0");
    ByteReader element(link.file().bytes.subspan(entry->offset));
    const size_t width = static_cast<size_t>(info.bits) / 8;
    if (element.u32() != (width == 1 ? fourcc("mft1") : fourcc("mft2"))) wrong("type of A2B0");
    element.skip(4);
    if (element.u8() != info.inputs || element.u8() != info.outputs || element.u8() != info.gridPoints)
        wrong("shape of A2B0");
    element.skip(1 + 9 * 4);
    const size_t entries = width == 1 ? 256 : element.u16();
    if (width == 2) element.skip(2);
    element.skip(static_cast<size_t>(info.inputs) * entries * width);
    size_t size = static_cast<size_t>(info.outputs) * width;
    for (int axis = 0; axis < info.inputs; ++axis) size *= static_cast<size_t>(info.gridPoints);
    const std::span<const uint8_t> levels = element.take(size);
    if (!element.ok()) wrong("size of A2B0");
    const auto outputs = static_cast<size_t>(info.outputs);
    const bool isLibrarys = info.nodes == KO_PRECISE_NODES_LIBRARY && info.bits == 16;
    const double top = info.bits == 8 ? 255 : 65535;
    const int apart = info.inputs < 4 ? 1 : 4;
    std::array<int, 4> place{};
    for (bool isLast = false; !isLast;) {
        float in[4], out[4];
        size_t node = 0;
        for (size_t axis = 0; axis < static_cast<size_t>(info.inputs); ++axis) {
            node = node * static_cast<size_t>(info.gridPoints) + static_cast<size_t>(place[axis]);
            in[axis] = isLibrarys ? static_cast<float>(cmyk::nodeValue(place[axis])) / 255
                                  : static_cast<float>(place[axis]) / static_cast<float>(info.gridPoints - 1);
        }
        koPreciseLinkFloats(made, in, out, 1);
        for (size_t ch = 0; ch < outputs; ++ch) {
            const size_t at = (node * outputs + ch) * width;
            const int level = width == 1 ? levels[at] : levels[at] << 8 | levels[at + 1];
            // Floats beside a node are a little off where the node stands at no level of theirs.
            if (std::abs(out[ch] * top - level) > (info.bits == 8 ? 0.01 : 1.0)) wrong("grid");
        }
        isLast = true;
        for (size_t axis = static_cast<size_t>(info.inputs); axis-- > 0 && isLast;) {
            place[axis] += apart;
            if (place[axis] < info.gridPoints) isLast = false;
            else place[axis] = 0;
        }
    }
    if (!record) return;
    ByteReader nodes(levels);
    for (const uint32_t word : record->grid)
        if (nodes.u32() != word) wrong("grid, as the library reads it");
}

constexpr const char* kBlackWords[] = {"", "plane", "match", "keep", "none", "curve"};
constexpr const char* kIntentWords[] = {"perceptual", "relative", "saturation", "absolute"};

void report(const Options& options, const KoPreciseLinkInfo& info, double seconds) {
    uint64_t nodes = 1;
    for (int axis = 0; axis < info.inputs; ++axis) nodes *= static_cast<uint64_t>(info.gridPoints);
    const bool toInk = info.destinationSpace == fourcc("CMYK");
    std::string text = printable(options.output) + ": " + grouped(nodes) + " nodes (" +
                       std::to_string(info.gridPoints) + " points a channel, " + std::to_string(info.bits) +
                       " bits), " + kIntentWords[info.intent] + ", " +
                       (info.inverted ? "solved for on the forward table" : "by the profiles' tables");
    if (toInk) text += std::string(", black: ") + kBlackWords[info.black];
    say(text + "; read back, checked and written in " + number(seconds) + " s");
    if (!toInk) return;
    const auto with = [](double value) { return number(value, 1) + " %"; };
    text = printable(options.output) + ": mean ink " + with(info.meanInk) + ", by the tables " + with(info.tablesInk) +
           ", limit " + with(info.inkLimit);
    if (options.choices.saveInk) text += ", saved " + with(info.savedInk);
    if (info.inverted)
        text += "; of the nodes " + with(info.reached) + " meet their colour within 1 unit, black moved for " +
                with(info.movedBlack) + ", the limit changed " + with(info.limited);
    say(text);
}

// Whether colours come out as they went in, within a level of 255.
bool changesNothing(const KoPreciseLink* link, const KoPreciseLinkInfo& info) {
    if (info.inputs != info.outputs) return false;
    for (int colour = 0; colour < 5 * 5 * 5 * 5; ++colour) {
        float in[4], out[4];
        for (int axis = 0, rest = colour; axis < 4; ++axis, rest /= 5) in[axis] = static_cast<float>(rest % 5) / 4;
        koPreciseLinkFloats(link, in, out, 1);
        for (int axis = 0; axis < info.inputs; ++axis)
            if (std::abs(out[axis] - in[axis]) > 1.0f / 255) return false;
    }
    return true;
}

int64_t now() {
    using namespace std::chrono;
    return duration_cast<seconds>(system_clock::now().time_since_epoch()).count();
}

// Why there is nothing to be precise about; empty when there is.
const char* whyClassic(const LinkChoices& choices) {
    if (!choices.source) return "there is no pair of profiles";
    const InputFile source = lookAt(*choices.source), destination = lookAt(*choices.destination);
    if (destination.type == FileType::dcc) return "the destination is a .dcc file";
    return isForeignPair(&source, &destination) ? "the source is a foreign table" : "";
}

// Measures what will be written, where that is asked for, and lets it pass or not.
class Inspection {
public:
    Inspection(const Options& options, const quality::Gates& gates, std::span<const uint8_t> bytes)
        : options_(options) {
        if (!options.reports && gates.none()) return;
        file_ = inMemory(options.output, bytes);
        link_.emplace(file_, std::nullopt);
        const LinkChoices& choices = options.choices;
        if (choices.source && !*whyClassic(choices)) {
            JudgedBy by{*choices.source, *choices.destination, false, static_cast<precise::Intent>(choices.intentNumber()),
                        choices.compensatesBlack};
            link_->judgeBy(by, openInput(by.source), openInput(by.destination));
        }
        link_->measure(gates);
        if (!link_->passes()) throw Found{kStoppedByGate};
    }
    void report() const {
        if (options_.reports) writeOut(link_->summary());
    }

private:
    const Options& options_;
    InputFile file_;
    std::optional<MeasuredLink> link_;
};

// A whole path would make other bytes in another folder.
bool tellsPlaces(const Options& options, std::optional<int64_t> reproducible) {
    return !options.leavesOutPaths && !reproducible;
}

void runPrecise(const Options& options, const Texts& texts, std::optional<int64_t> date,
                const quality::Gates& gates) {
    const auto start = std::chrono::steady_clock::now();
    const LinkChoices& choices = options.choices;
    const PrecisePair pair(choices, openInput(*choices.source), openInput(*choices.destination));
    checkOutput(options.output, pair.files());

    const PreciseLink link = pair.make(choices.bits.value_or(8), 0);
    KoPreciseLinkInfo info;
    koPreciseDescribeLink(link.get(), &info);
    KoPreciseFileOptions file{};
    file.size = sizeof file;
    file.editable = info.inputs == 4 && info.outputs == 4 && info.bits == 8 && info.gridPoints == cmyk::kGridPoints;
    file.date = date.value_or(now());
    const std::string name = options.name.value_or(""), provenance = pair.provenance(tellsPlaces(options, date)) +
        (options.comment && !file.editable ? "comment: " + printable(*options.comment) + '\n' : "");
    if (!name.empty()) file.name = name.c_str();
    file.editName = texts.name.c_str();
    file.editComment = texts.comment.c_str();
    file.provenance = provenance.c_str();
    KoPreciseError error;
    size_t size = 0;
    const std::unique_ptr<uint8_t, decltype(&koPreciseReleaseBytes)> bytes(
        koPreciseLinkBytes(link.get(), &file, &size, &error), &koPreciseReleaseBytes);
    if (!bytes) failFor(error, nullptr, nullptr, nullptr);
    verifyPrecise(inMemory(options.output, {bytes.get(), size}), link.get(), file.editable, texts);
    const Inspection inspection(options, gates, {bytes.get(), size});
    writeFile(options.output, {reinterpret_cast<const char*>(bytes.get()), size});
    inspection.report();
    if (pair.sameFile())
        say(printable(options.output) + ": source and destination are the same profile" +
            (changesNothing(link.get(), info) ? "; the link changes no colour" : ""));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    if (options.verbose) report(options, info, taken.count());
}

// What is said of a link that the library made.
Finish finishOf(const Options& options, bool withPlaces) {
    const LinkChoices& choices = options.choices;
    Finish finish;
    std::string& text = finish.provenance;
    const auto line = [&](const std::string& key, const std::string& value) { text += key + ": " + printable(value) + '\n'; };
    const auto take = [&](const char* role, const std::optional<std::string>& path) {
        if (!path) return;
        finish.sequence.push_back(sequenceEntry(openInput(*path)));
        line(role, finish.sequence.back().name);
        if (finish.sequence.back().id.empty()) return;
        line(std::string(role) + "-id", finish.sequence.back().id);
        text += originLines(role, *path, withPlaces);
    };
    take("base", choices.base);
    take("source", choices.source);
    take("destination", choices.destination);
    if (finish.sequence.empty()) finish.sequence.emplace_back().name = "settings";
    if (choices.source) finish.intent = static_cast<uint32_t>(choices.intentNumber());
    const std::string stem = isStandardOutput(options.output) ? "KoLink" : fromPath(toPath(options.output).stem());
    finish.name = options.name.value_or(choices.source ? finish.sequence[finish.sequence.size() - 2].name + " to " +
                                                             finish.sequence.back().name : stem);
    line("method", "classic");
    if (choices.source) line("intent", kIntentWords[finish.intent]);
    line("black", choices.blackIsFile() ? "curve" : choices.black.value_or("keep"));
    if (choices.blackIsFile()) line("black-file", fromPath(toPath(*choices.black).filename()));
    line("preserve", choices.preserve.value_or("none"));
    line("white", choices.whiteMode());
    if (choices.paper) line("paper", *choices.paper);
    if (choices.fade) line("fade", *choices.fade);
    line("bits", "8");
    line("grid", "33");
    line("nodes", "library");
    line("version", KOLINK_VERSION);
    return finish;
}

void runClassic(const Options& options, const Texts& texts, std::optional<int64_t> date,
                const quality::Gates& gates, const char* why) {
    const auto start = std::chrono::steady_clock::now();
    ClassicLink request(options.choices);
    checkOutput(options.output, request.inputs());

    const CmykProfilePtr profile = request.combine(options.output);
    setText(profile->comment, texts.comment);
    setText(profile->name, texts.name);
    const std::vector<uint8_t> bytes = finished(encode(*profile, date), *profile, finishOf(options, tellsPlaces(options, date)));
    verify(inMemory(options.output, bytes), *profile);
    const Inspection inspection(options, gates, bytes);
    writeFile(options.output, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    inspection.report();

    if (!options.verbose) return;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    if (*why) say(printable(options.output) + ": made the classic way, since " + why);
    say(printable(options.output) + ": " + grouped(KOLINK_CMYK_NODES) + " nodes (" +
        std::to_string(KOLINK_CMYK_GRID_POINTS) + " points an ink), read back, checked and written in " +
        number(taken.count()) + " s");
}

void runLink(const Options& options) {
    const auto date = reproducibleDate();
    const LinkChoices& choices = options.choices;
    if (choices.source.has_value() != choices.destination.has_value())
        throw UsageFailure(choices.source ? "--source needs --destination as well"
                                          : "--destination needs --source as well");
    if (!choices.base && !choices.source && !choices.paper && choices.black.value_or("keep") == "keep")
        throw UsageFailure("nothing to link: give --source and --destination, --base, --paper or --black");
    choices.check();
    for (const char* table : {".lut", ".amt"})
        if (endsWith(options.output, table))
            throw UsageFailure(std::string("--output: an ICC link is not a ") + table +
                               " table; give it the extension .icc");
    const char* const why = choices.isClassic() ? "" : whyClassic(choices);
    if (*why)
        if (const std::string option = choices.onlyPrecise(); !option.empty())
            throw UsageFailure(option + " has no meaning here, since " + why);
    const Texts texts = textsOf(options);
    const quality::Gates gates = options.gates.gates();
    if (choices.isClassic() || *why) runClassic(options, texts, date, gates, why);
    else runPrecise(options, texts, date, gates);
}

}  // namespace

void addLinkCommand(Command& app) {
    const auto options = std::make_shared<Options>();
    LinkChoices& choices = options->choices;
    Command command = app.command("link", "Make an ICC device link from profiles");
    command.examples(kExamples);
    command.option("--source", choices.source,
                        "Profile of the colours that come in: ICC, for CMYK, RGB or grey, or a foreign table for the plug-in")
        .called("FILE");
    command.option("--destination", choices.destination,
                        "Profile of the printer: ICC, for CMYK or RGB, or a .dcc file with a foreign source")
        .called("FILE");
    choices.addTo(command, true);
    command.option("-o,--output", options->output, "The link to write").called("FILE").required();
    command.option("--name", options->name, "Name of the link [the output file's name]").called("TEXT");
    command.option("--comment", options->comment, "Comment kept in the link").called("TEXT");
    command.flag("--report", options->reports, "Print what the link costs, as kolink report does");
    options->gates.addFileTo(command);
    command.flag("--no-paths", options->leavesOutPaths, "Keep the names of the profiles in the link, not their folders");
    command.flag("-v,--verbose", options->verbose, "Say on standard error how it was made and what was written");
    command.does([options] { runLink(*options); });
}

}  // namespace ko::cli
