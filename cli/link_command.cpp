// kolink link: combines profiles, curves and settings into an ICC device link.
#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/system.h"

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
    if (space == signatureOf("CMYK")) return;
    failOn(profile.file().path,
           "is a profile for " + signatureText(space) + " where CMYK is needed (" + role + ")");
}

void requireConnectionSpace(const IccInput& profile, const char* role) {
    const uint32_t space = profile.header().connectionSpace;
    if (space == signatureOf("Lab ") || space == signatureOf("XYZ ")) return;
    const bool isLink = profile.header().deviceClass == signatureOf("link");
    failOn(profile.file().path, std::string(isLink ? "is a device link" : "connects to " + signatureText(space)) +
                                    "; the " + role + " must be a profile that connects to Lab or XYZ");
}

// The table of the intent, of the right shape.
void requireTable(const IccInput& profile, bool toConnectionSpace, int intent) {
    static constexpr uint32_t kTags[2][3] = {
        {signatureOf("B2A0"), signatureOf("B2A1"), signatureOf("B2A2")},
        {signatureOf("A2B0"), signatureOf("A2B1"), signatureOf("A2B2")},
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
    if (file.kind == FileKind::cmykTable || file.kind == FileKind::amatchTable) {
        const uint64_t wanted = tableHeaderBytes(file.kind) + kTableBytes;
        if (file.size < wanted)
            failOn(file.path, "is cut short: " + grouped(file.size) + " of " + grouped(wanted) + " bytes");
        return;
    }
    const IccInput profile(file);
    requireCmyk(profile, "base");
    const IccLut* lut = profile.lut(signatureOf("A2B0"));
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

    // The path is for a file of ours that may be needed meanwhile.
    CmykProfilePtr combine(const std::string& blackCurve) {
        if (options_.black == "keep") saveIdentityCurve(blackCurve);
        CmykProfilePtr result(isIcc_ ? jKoCmykCombineIccProfile(&settings_) : jKoCmykCombineProfile(&settings_));
        if (result) return result;
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
            std::string extension = fromPath(toPath(file.path).extension());
            for (char& c : extension) c = static_cast<char>(c | 0x20);
            return extension == ".icc" || extension == ".icm";
        };
        isIcc_ = source_->kind == FileKind::icc || namedIcc(*source_) ||
                 destination_->kind == FileKind::icc;
        isForeign_ = !isIcc_;
    }

    void checkConversion() {
        if (isForeign_) {
            if (source_->kind != FileKind::foreign)
                failOn(source_->path, "is neither an ICC profile nor a foreign table");
            if (destination_->kind != FileKind::dcc)
                failOn(destination_->path, "a foreign table as source needs a .dcc file as destination");
            if (!hasLineBeginning(*destination_, "TONE "))
                failOn(destination_->path, "holds no TONE line; it is not a DCC file");
            if (options_.intent)
                throw UsageFailure("--intent has no meaning with a foreign table as source");
            return;
        }
        if (!isIcc_) return;
        if (destination_->kind == FileKind::dcc)
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
        if (file.kind != FileKind::blackCurve)
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

    // Pure K through its own level: a curve with its two ends as control points is a straight line.
    void saveIdentityCurve(const std::string& path) {
        const std::string libraryPath = toLibraryPath(path);
        const ToneCurvePtr curve = newToneCurve(1);
        if (jKoToneSaveBkcCurve(curve.get(), libraryPath.c_str()) != 1)
            failOn(path, "cannot be written");
        copyToField(settings_.blackPath, libraryPath);
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
    for (const char* key : {"NAME:", "CTRL:", "CTL2:"})  // these begin the editing data's own lines
        if (options.comment->compare(0, 5, key) == 0)
            throw UsageFailure(std::string("--comment must not begin with ") + key);
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

void writeDate(const std::string& path, int64_t seconds, const std::string& output) {
    using namespace std::chrono;
    const sys_seconds moment{std::chrono::seconds(seconds)};
    const auto day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss time(moment - day);
    const long numbers[6] = {static_cast<int>(date.year()), static_cast<long>(static_cast<unsigned>(date.month())),
                             static_cast<long>(static_cast<unsigned>(date.day())), static_cast<long>(time.hours().count()),
                             static_cast<long>(time.minutes().count()), static_cast<long>(time.seconds().count())};
    char bytes[12];
    for (int i = 0; i < 6; ++i) {
        bytes[2 * i] = static_cast<char>(numbers[i] >> 8);
        bytes[2 * i + 1] = static_cast<char>(numbers[i]);
    }
    std::fstream file(toPath(path), std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(24);
    file.write(bytes, sizeof bytes);
    file.close();
    if (!file) failOn(output, "cannot be written");
}

// Opens what was written once more: the file a host will read is what was made.
void verify(const std::string& path, const std::string& libraryPath, const CmykProfile& made,
            const std::string& output) {
    const auto wrong = [&](const std::string& what) {
        failOn(output, "the written link does not read back as it was made (" + what +
                           "); nothing was left behind");
    };
    std::error_code error;
    if (!std::filesystem::exists(toPath(path), error)) failOn(output, "cannot be written");
    const uint64_t size = std::filesystem::file_size(toPath(path), error);
    if (error || size < KOLINK_CMYK_NODES * 4ull) failOn(output, "cannot be written whole; is the disk full?");

    const IccInput written(InputFile{path, libraryPath, size, FileKind::icc});
    const IccHeader& header = written.header();
    if (header.magic != signatureOf("acsp") || header.deviceClass != signatureOf("link") ||
        header.colourSpace != signatureOf("CMYK") || header.connectionSpace != signatureOf("CMYK"))
        wrong("header");
    if (header.profileSize != size) wrong("size field");
    for (const auto tag : {signatureOf("cprt"), signatureOf("desc"), signatureOf("pseq")})
        if (!written.find(tag)) wrong("tag " + signatureText(tag));
    const IccLut* lut = written.lut(signatureOf("A2B0"));
    if (lut->inputChannels != 4 || lut->outputChannels != 4 || lut->precision != 1 ||
        lut->gridPoints != KOLINK_CMYK_GRID_POINTS)
        wrong("shape of A2B0");
    const CmykProfilePtr read = newCmykProfile();
    if (jKoCmykLoadProfile(read.get(), libraryPath.c_str()) != 1) wrong("loading");
    if (std::memcmp(read->grid, made.grid, sizeof made.grid) != 0) wrong("grid");
    if (std::strncmp(read->name, made.name, sizeof made.name) != 0 ||
        std::strncmp(read->comment, made.comment, sizeof made.comment) != 0)
        wrong("name or comment");
    if (std::memcmp(read->curveFlags, made.curveFlags, sizeof made.curveFlags) != 0) wrong("control points");
}

void runLink(const Options& options) {
    const auto start = std::chrono::steady_clock::now();
    const auto date = reproducibleDate();
    checkTexts(options);
    const std::string extension = fromPath(toPath(options.output).extension());
    if (extension.size() == 4)
        for (const char* table : {".lut", ".amt"})
            if (std::equal(extension.begin(), extension.end(), table,
                           [](char a, char b) { return (a | 0x20) == (b | 0x20); }))
                throw UsageFailure(std::string("--output: an ICC link is not a ") + table +
                                   " table; give it the extension .icc");
    Request request(options);
    deferInterruption();
    OutputFile output(options.output, request.inputs());
    (void)toLibraryPath(options.output);  // a link that the library could not open is of no use
    const std::string libraryPath = toLibraryPath(output.temporary());

    const CmykProfilePtr profile = request.combine(output.beside("keep.bkc"));
    nameResult(*profile, options);
    if (jKoCmykSaveProfile(profile.get(), libraryPath.c_str()) != 1) failOn(options.output, "cannot be written");
    if (date) writeDate(output.temporary(), *date, options.output);
    verify(output.temporary(), libraryPath, *profile, options.output);
    output.commit();

    if (!options.verbose) return;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::fputs((printable(options.output) + ": " + grouped(KOLINK_CMYK_NODES) + " nodes (" +
                std::to_string(KOLINK_CMYK_GRID_POINTS) + " points an ink), written, opened again and checked in " +
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
