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
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/system.h"
#include "cmyk/cmyk.h"
#include "cmyk/description.h"
#include "cmyk/save.h"
#include "frame/path.h"
#include "frame/text.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "The simplest link: colours of a press, printed on a printer. Pure black stays pure\n"
    "black and white paper stays white, unless told otherwise:\n"
    "  kolink link --source press.icc --destination printer.icc --output proof.icc\n"
    "\n"
    "Pure inks and two-ink mixes kept clean, black through a curve of its own:\n"
    "  kolink link --source press.icc --destination printer.icc --output proof.icc \\\n"
    "      --intent relative --preserve secondaries --black press.bkc\n"
    "\n"
    "The paper of a newspaper shown by a tint that fades out at 25 % total coverage:\n"
    "  kolink link --source news.icc --destination printer.icc --output news-proof.icc \\\n"
    "      --paper 0,2,6,3 --fade 25\n"
    "\n"
    "A correction link alone, and a foreign table read by the plug-in LutRead:\n"
    "  kolink link --base correction.icc --output corrected.icc\n"
    "  kolink link --source target.nqp --destination printer.dcc --output proof.icc\n"
    "\n"
    "With SOURCE_DATE_EPOCH set, the same input gives the same bytes.\n";

struct Options {
    std::optional<std::string> base, source, destination, name, comment, intent, white, paper, fade;
    std::string black = "keep", preserve = "none", output;
    bool verbose = false;
};

int indexOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return static_cast<int>(std::find(words.begin(), words.end(), word) - words.begin());
}

// A number in percent; a sign % may follow.
double percent(std::string_view text, double limit, const std::string& option) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '%')) text.remove_suffix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !(value >= 0) || value > limit)
        throw UsageFailure(option + ": '" + std::string(text) + "' is not a percentage from 0 to " +
                           number(limit));
    return value;
}

int32_t levelOf(double percentage) { return static_cast<int32_t>(std::floor(percentage * 2.55 + 0.5)); }

std::array<int32_t, 4> paperLevels(const std::string& text) {
    std::array<int32_t, 4> levels{};
    size_t at = 0;
    for (size_t ink = 0; ink < 4; ++ink) {
        const size_t comma = text.find(',', at);
        if ((comma == std::string::npos) != (ink == 3))
            throw UsageFailure("--paper: '" + text + "' is not four percentages C,M,Y,K");
        levels[ink] = levelOf(percent(std::string_view(text).substr(at, comma - at), 100, "--paper"));
        at = comma + 1;
    }
    return levels;
}

void requireCmyk(const IccInput& profile, const char* role) {
    const uint32_t space = profile.header().colourSpace;
    if (space == fourcc("CMYK")) return;
    failOn(profile.file().path,
           "is a profile for " + signatureText(space) + " where CMYK is needed (" + role + ")");
}

void requireConnectionSpace(const IccInput& profile, const char* role) {
    const uint32_t space = profile.header().connectionSpace;
    if (space == fourcc("Lab ") || space == fourcc("XYZ ")) return;
    const bool isLink = profile.header().deviceClass == fourcc("link");
    failOn(profile.file().path, std::string(isLink ? "is a device link" : "connects to " + signatureText(space)) +
                                    "; the " + role + " must be a profile that connects to Lab or XYZ");
}

// The table of the intent, of the right shape.
void requireTable(const IccInput& profile, bool toConnectionSpace, int intent) {
    static constexpr uint32_t kTags[2][3] = {
        {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")},
        {fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")},
    };
    static constexpr const char* kIntents[] = {"perceptual", "relative", "saturation"};
    const auto& tags = kTags[toConnectionSpace];
    const std::string wanted = signatureText(tags[intent]);
    if (!profile.find(tags[intent])) {
        std::string others;
        for (int other = 0; other < 3; ++other)
            if (profile.find(tags[other])) {
                others += others.empty() ? "; it has " : ", ";
                others += signatureText(tags[other]);
                others += std::string(" (--intent ") + kIntents[other] + ")";
            }
        if (others.empty() && !toConnectionSpace)
            others = "; the profile cannot be printed with, only be a source";
        failOn(profile.file().path, "tag " + wanted + " is missing" + others);
    }
    const IccLut* lut = profile.lut(tags[intent]);
    const int32_t in = toConnectionSpace ? 4 : 3;
    const int32_t out = toConnectionSpace ? 3 : 4;
    if (lut->inputChannels != in || lut->outputChannels != out)
        failOn(profile.file().path, "tag " + wanted + " converts " + std::to_string(lut->inputChannels) + " to " +
                                        std::to_string(lut->outputChannels) + " channels where " +
                                        std::to_string(in) + " to " + std::to_string(out) + " are needed");
}

void checkBase(const InputFile& file) {
    if (file.type == FileType::cmykTable || file.type == FileType::amatchTable) {
        const uint64_t wanted = wholeTableBytes(file.type);
        if (file.size < wanted)
            failOn(file.path, "is cut short: " + grouped(file.size) + " of " + grouped(wanted) + " bytes");
        return;
    }
    const IccInput profile(file);
    requireCmyk(profile, "base");
    const IccLut* lut = profile.lut(fourcc("A2B0"));
    if (lut->inputChannels != 4 || lut->outputChannels != 4)
        failOn(file.path, "tag A2B0 converts " + std::to_string(lut->inputChannels) + " to " +
                              std::to_string(lut->outputChannels) +
                              " channels; the base must be a link from CMYK to CMYK");
}

// The request, with the files it names; everything that can be said against it is said here.
class Request {
public:
    explicit Request(const Options& options) : options_(options) {
        settings_.limit = 200;
        chooseConversion();
        chooseBlack();
        choosePaper();
        if (options_.base) {
            const InputFile& file = add(*options_.base, settings_.basePath);
            checkBase(file);
        }
        settings_.intent = indexOf(options_.intent.value_or("perceptual"), {"perceptual", "relative", "saturation"});
        settings_.preservation = indexOf(options_.preserve, {"none", "primaries", "secondaries"});
        checkConversion();
    }

    const std::vector<std::string>& inputs() const { return inputs_; }
    const CmsLinkSettings& settings() const { return settings_; }

    CmykProfilePtr combine() {
        const auto black = options_.black == "keep" ? cmyk::Black::kept : cmyk::Black::asSettingsSay;
        auto result = reasoned([&] {
            return isIcc_ ? cmyk::combineIccProfile(settings_, black) : cmyk::combineProfile(settings_, black);
        });
        if (result) return result;
        throwIfNotItsFault(options_.source ? *options_.source : options_.output);
        if (isForeign_)
            failOn(*options_.source,
                   "the table cannot be read: it is no ICC profile, and the plug-in LutRead is "
                   "missing from the product folder or refuses it");
        throw Failure("the profiles cannot be combined: a file changed meanwhile, or memory is short");
    }

private:
    InputFile& add(const std::string& path, char (&field)[KOLINK_PATH_SIZE]) {
        files_.push_back(std::make_unique<InputFile>(openInput(path)));
        inputs_.push_back(path);
        copyToField(field, files_.back()->libraryPath);
        return *files_.back();
    }

    void chooseConversion() {
        if (options_.source.has_value() != options_.destination.has_value())
            throw UsageFailure(options_.source ? "--source needs --destination as well"
                                               : "--destination needs --source as well");
        if (!options_.base && !options_.source && !options_.paper && options_.black == "keep")
            throw UsageFailure("nothing to link: give --source and --destination, --base, --paper or --black");
        if (!options_.source) {
            if (options_.intent) throw UsageFailure("--intent needs --source and --destination");
            return;
        }
        source_ = &add(*options_.source, settings_.sourcePath);
        destination_ = &add(*options_.destination, settings_.destinationPath);
        const auto namedIcc = [](const InputFile& file) {
            const char* const path = file.libraryPath.c_str();
            return hasExtension(path, ".icc") || hasExtension(path, ".icm");
        };
        isIcc_ = source_->type == FileType::icc || namedIcc(*source_) ||
                 destination_->type == FileType::icc;
        isForeign_ = !isIcc_;
    }

    void checkConversion() {
        if (isForeign_) {
            if (source_->type != FileType::foreign)
                failOn(source_->path, "is neither an ICC profile nor a foreign table");
            if (destination_->type != FileType::dcc)
                failOn(destination_->path, "a foreign table as source needs a .dcc file as destination");
            if (!hasLineBeginning(*destination_, "TONE "))
                failOn(destination_->path, "holds no TONE line; it is not a DCC file");
            if (options_.intent)
                throw UsageFailure("--intent has no meaning with a foreign table as source");
            return;
        }
        if (!isIcc_) return;
        if (destination_->type == FileType::dcc)
            failOn(destination_->path, "a .dcc file is the destination for a foreign table; an ICC "
                                       "source needs an ICC profile");
        const IccInput source(*source_);
        requireCmyk(source, "source");
        requireConnectionSpace(source, "source");
        requireTable(source, true, settings_.intent);
        const IccInput destination(*destination_);
        requireCmyk(destination, "destination");
        requireConnectionSpace(destination, "destination");
        requireTable(destination, false, settings_.intent);
    }

    void chooseBlack() {
        if (options_.black == "keep" || options_.black == "none") return;
        const InputFile& file = add(options_.black, settings_.blackPath);
        if (file.type != FileType::blackCurve)
            failOn(file.path, "is not a black-correction file (.bkc)");
        if (!hasLineBeginning(file, "TONE  "))
            failOn(file.path, "holds no TONE line; it is not a black-correction file");
    }

    void choosePaper() {
        const bool givenPaper = options_.paper.has_value();
        const std::string white = options_.white.value_or(givenPaper ? "paper" : "clean");
        if (white == "paper" && !givenPaper) throw UsageFailure("--white paper needs --paper C,M,Y,K");
        if (white != "paper" && givenPaper)
            throw UsageFailure("--paper contradicts --white " + white);
        if (options_.fade && !givenPaper) throw UsageFailure("--fade needs --paper C,M,Y,K");
        settings_.whiteMode = indexOf(white, {"profile", "clean", "paper"});
        if (!givenPaper) return;
        const auto paper = paperLevels(*options_.paper);
        settings_.paperC = paper[0];
        settings_.paperM = paper[1];
        settings_.paperY = paper[2];
        settings_.paperK = paper[3];
        if (options_.fade) settings_.limit = levelOf(percent(*options_.fade, 400, "--fade"));
    }

    const Options& options_;
    CmsLinkSettings settings_{};
    std::vector<std::unique_ptr<InputFile>> files_;
    std::vector<std::string> inputs_;
    const InputFile* source_ = nullptr;
    const InputFile* destination_ = nullptr;
    bool isIcc_ = false;
    bool isForeign_ = false;
};

template <size_t size>
void setText(char (&field)[size], const std::string& text, const char* option) {
    const auto bytes = system::toShiftJis(text);
    if (!bytes)
        throw UsageFailure(std::string(option) + ": '" + text + "' has characters that Shift-JIS lacks");
    if (bytes->size() >= size)
        throw UsageFailure(std::string(option) + " is longer than " + std::to_string(size - 1) +
                           " bytes of Shift-JIS");
    std::memset(field, 0, size);
    std::memcpy(field, bytes->data(), bytes->size());
}

void checkTexts(const Options& options) {
    char field[KOLINK_COMMENT_SIZE];
    char name[KOLINK_NAME_SIZE];
    if (options.name) {
        setText(name, *options.name, "--name");
        if (options.name->find_first_of("\r\n") != std::string::npos)
            throw UsageFailure("--name has to be one line");
    }
    if (!options.comment) return;
    setText(field, *options.comment, "--comment");
    const std::string plain = cmyk::asPlainText(*options.comment);
    const auto first = std::ranges::mismatch(plain, *options.comment).in2;
    if (first != options.comment->end())
        throw UsageFailure("--comment must have no line that begins with " +
                           std::string(first, first + 5) + ", as lines of the editing data do");
}

void nameResult(CmykProfile& profile, const Options& options) {
    if (options.comment) setText(profile.comment, *options.comment, "--comment");
    if (options.name) return setText(profile.name, *options.name, "--name");
    // The file's name serves, as far as it can be written.
    std::string bytes = system::toShiftJis(fromPath(toPath(options.output).stem())).value_or("");
    if (bytes.empty() || bytes.size() >= sizeof profile.name ||
        bytes.find_first_of("\r\n") != std::string::npos)
        bytes = "KoLink";
    std::memset(profile.name, 0, sizeof profile.name);
    std::memcpy(profile.name, bytes.data(), bytes.size());
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

void runLink(const Options& options) {
    const auto start = std::chrono::steady_clock::now();
    const auto date = reproducibleDate();
    checkTexts(options);
    const std::string libraryPath = toLibraryPath(options.output);
    for (const char* table : {".lut", ".amt"})
        if (hasExtension(libraryPath.c_str(), table))
            throw UsageFailure(std::string("--output: an ICC link is not a ") + table +
                               " table; give it the extension .icc");
    Request request(options);
    checkOutput(options.output, request.inputs());

    const CmykProfilePtr profile = request.combine();
    nameResult(*profile, options);
    const std::vector<uint8_t> bytes = encode(*profile, date);
    verify(inMemory(options.output, bytes), *profile);
    writeFile(options.output, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});

    if (!options.verbose) return;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::fputs((printable(options.output) + ": " + grouped(KOLINK_CMYK_NODES) + " nodes (" +
                std::to_string(KOLINK_CMYK_GRID_POINTS) + " points an ink), read back, checked and written in " +
                number(taken.count()) + " s\n").c_str(), stderr);
}

}  // namespace

void addLinkCommand(Command& app) {
    const auto options = std::make_shared<Options>();
    Command command = app.command("link", "Make an ICC device link from CMYK profiles");
    command.examples(kExamples);
    command.option("--source", options->source,
                        "Profile of the colours that come in: an ICC CMYK profile, or a foreign table for the plug-in")
        .called("FILE");
    command.option("--destination", options->destination,
                        "Profile of the printer: an ICC CMYK profile, or a .dcc file with a foreign source")
        .called("FILE");
    command.option("--base", options->base,
                        "Correction applied first: an ICC link from CMYK to CMYK, a .lut or an .amt table")
        .called("FILE");
    command.option("--black", options->black,
                        "Pure black: a .bkc file, keep (stays pure K, level for level) or none (as converted) [keep]")
        .called("FILE|keep|none");
    command.option("--intent", options->intent, "Rendering intent: perceptual, relative or saturation [perceptual]")
        .called("INTENT")
        .oneOf({"perceptual", "relative", "saturation"}, false);
    command.option("--preserve", options->preserve,
                        "Keep pure C, M, Y clean (primaries), and two-ink mixes as well (secondaries) [none]")
        .called("none|primaries|secondaries")
        .oneOf({"none", "primaries", "secondaries"}, false);
    command.option("--white", options->white,
                        "White: as the profiles have it, clean (no ink) or paper (see --paper) [clean]")
        .called("profile|clean|paper")
        .oneOf({"profile", "clean", "paper"}, false);
    command.option("--paper", options->paper, "Tint of the paper in percent, added to light colours; means --white paper")
        .called("C,M,Y,K");
    command.option("--fade", options->fade,
                        "Total coverage (sum of the four inks) at which the paper tint has faded out, 0 to 400 [78.4]")
        .called("PERCENT");
    command.option("-o,--output", options->output, "The link to write").called("FILE").required();
    command.option("--name", options->name, "Name of the link [the output file's name]").called("TEXT");
    command.option("--comment", options->comment, "Comment kept in the link").called("TEXT");
    command.flag("-v,--verbose", options->verbose, "Say on standard error what was written");
    command.does([options] { runLink(*options); });
}

}  // namespace ko::cli
