// kolink image: a picture converted row by row, in constant memory.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <span>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/conversion.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/progress.h"
#include "cli/picture.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink image photo.tif print.tif --destination press.icc --embed\n"
    "  kolink image in.tif out.tif --source scanner.icc --destination press.icc --bpc\n"
    "  kolink image page.tif proof.tif --link proof.icc\n"
    "  kolink image photo.tif grey.tif --grey\n"
    "  kolink image photo.jpg print.tif --source srgb.icc --destination press.icc\n"
    "\n"
    "TIFF pictures of RGB, CMYK or grey of 8 or 16 bits a sample, in strips or tiles, one page or\n"
    "several; JPEG pictures of the same colours; PNG pictures without CMYK. What comes in is told by the\n"
    "file itself, what goes out by the ending of its name. Resolution and descriptions are kept. The profile in the picture is the source unless --source\n"
    "names one. 16-bit samples are converted in 16 bits, but for --table, --builtin, --grey and\n"
    "--method classic and system, which know 8.\n";

// Rows of one page through a conversion, of 8 or 16 bits on either side.
class RowConverter {
public:
    RowConverter(Conversion& conversion, const Page& page, uint16_t bits)
        : conversion_(conversion), width_(page.width), bitsIn_(page.bits), bitsOut_(bits),
          in_(width_ * static_cast<size_t>(channelsOf(conversion.input)) * (page.bits / 8u)),
          out_(width_ * static_cast<size_t>(channelsOf(conversion.output)) * (bits / 8u)) {
        if (bitsIn_ == 8 && bitsOut_ == 8) return;
        wideIn_.resize(width_ * static_cast<size_t>(channelsOf(conversion.input)));
        wideOut_.resize(width_ * static_cast<size_t>(channelsOf(conversion.output)));
    }
    uint8_t* input() { return in_.data(); }
    uint8_t* convert() {
        if (wideIn_.empty()) {
            conversion_.convert8(in_.data(), width_, out_.data());
        } else {
            if (bitsIn_ == 8) std::transform(in_.begin(), in_.end(), wideIn_.begin(), [](uint8_t level) { return static_cast<uint16_t>(level * 257); });
            else std::memcpy(wideIn_.data(), in_.data(), in_.size());
            conversion_.convert16(wideIn_.data(), width_, wideOut_.data());
            if (bitsOut_ == 8) std::transform(wideOut_.begin(), wideOut_.end(), out_.begin(), [](uint16_t level) { return static_cast<uint8_t>((level + 128u) / 257); });
            else std::memcpy(out_.data(), wideOut_.data(), out_.size());
        }
        // Grey ink becomes lightness, as pictures have it.
        if (conversion_.givesInk)
            for (uint8_t& byte : out_) byte = static_cast<uint8_t>(~byte);
        return out_.data();
    }

private:
    Conversion& conversion_;
    size_t width_;
    uint16_t bitsIn_, bitsOut_;
    std::vector<uint8_t> in_, out_;
    std::vector<uint16_t> wideIn_, wideOut_;
};

struct Options {
    ConversionOptions conversion;
    std::string input, output;
    std::optional<std::string> embed;  // empty: the destination profile
    int bits = 0;
    std::optional<int> quality;
    std::optional<std::string> subsampling;
    bool quiet = false;
};

// The conversion of one page; the one before serves as long as the embedded profile is the same.
class PageConversion {
public:
    explicit PageConversion(const Options& options) : options_(options) {}

    Conversion& of(const InputFile& file, const PictureReader& picture) {
        const Page& page = picture.page();
        std::vector<uint8_t> embedded = picture.profile();
        const bool isFine = options_.bits == 16 || page.bits == 16;
        const bool isSource = !options_.conversion.hasSource() && !embedded.empty();
        if (conversion_ && (!isSource || embedded == embedded_) && isFine == isFine_) return *conversion_;
        ConversionNeeds needs{page.space, std::nullopt, isFine, true};
        if (isSource) needs.embedded = inMemory(file.path, embedded);
        std::unique_ptr<Conversion> made = options_.conversion.make(needs);
        if (conversion_ && made->output != conversion_->output)
            failOn(file.path, "has pages that become different colours");
        if (!conversion_ && !embedded.empty() && options_.conversion.hasSource() && made->sourceProfile &&
            !std::ranges::equal(embedded, made->sourceProfile->bytes))
            std::fputs(("kolink: " + printable(file.path) + ": the profile in the picture is not used, since --source names another\n").c_str(), stderr);
        conversion_ = std::move(made);
        embedded_ = std::move(embedded);
        isFine_ = isFine;
        return *conversion_;
    }

private:
    const Options& options_;
    std::unique_ptr<Conversion> conversion_;
    std::vector<uint8_t> embedded_;
    bool isFine_ = false;
};

// The profile that the result gets.
std::optional<InputFile> profileToEmbed(const Options& options, const Conversion& conversion) {
    if (!options.embed) return std::nullopt;
    if (options.embed->empty()) {
        if (!conversion.destinationProfile)
            throw UsageFailure("--embed needs --source and --destination, or the name of a profile: there is no profile of the result otherwise");
        return conversion.destinationProfile;
    }
    const IccInput profile(openInput(*options.embed));
    static constexpr uint32_t kSpaces[] = {fourcc("RGB "), fourcc("CMYK"), fourcc("GRAY")};
    const uint32_t space = profile.header().colourSpace;
    const auto wanted = static_cast<size_t>(conversion.output);
    if (wanted >= std::size(kSpaces) || space != kSpaces[wanted] || profile.header().deviceClass == fourcc("link"))
        failOn(*options.embed, "is " + std::string(profile.header().deviceClass == fourcc("link") ? "a link" : "a profile for " + signatureText(space)) +
                                   ", and the result is " + nameOf(conversion.output));
    return profile.file();
}

// How the result is coded where it is a JPEG picture: as asked for, else as the picture is.
JpegCoding codingOf(const Options& options, const PictureReader& picture) {
    JpegCoding coding = picture.coding().value_or(JpegCoding());
    if (options.quality) coding.quality = *options.quality;
    if (options.subsampling) {
        coding.horizontal = *options.subsampling == "444" ? 1 : 2;
        coding.vertical = *options.subsampling == "420" ? 2 : 1;
    }
    return coding;
}

// What the format of the result cannot hold.
void requireHeld(const Options& options, PictureKind kind, ColourSpace space) {
    if (kind == PictureKind::png && space == ColourSpace::cmyk)
        throw UsageFailure(printable(options.output) + ": a PNG picture holds no CMYK; name the result .tif or .jpg");
    if (kind == PictureKind::jpeg && options.bits == 16)
        throw UsageFailure(printable(options.output) + ": a JPEG picture has 8 bits a sample; name the result .tif or .png");
    if (kind != PictureKind::jpeg && (options.quality || options.subsampling))
        throw UsageFailure("--quality and --subsampling are of JPEG pictures, and " + printable(options.output) + " becomes a " + nameOf(kind) + " picture");
}

void convertImage(const Options& options) {
    const InputFile file = lookAt(options.input);
    const PictureKind kind = kindByName(options.output, pictureKind(file));
    const std::unique_ptr<PictureReader> in = openPicture(file);
    PageConversion conversions(options);
    Conversion* conversion = &conversions.of(file, *in);
    requireHeld(options, kind, conversion->output);
    const std::optional<InputFile> embedded = profileToEmbed(options, *conversion);

    std::vector<std::string> inputs = conversion->files;
    inputs.push_back(options.input);
    if (options.embed && !options.embed->empty()) inputs.push_back(*options.embed);
    checkOutput(options.output, inputs);
    const system::Making making;
    const system::Writing place(options.output);
    NewFile made(place.path().c_str(), false);
    if (!made) failWithReason(options.output, "cannot be written");
    // Beyond 4 GB only the larger form of TIFF has room.
    const uint64_t estimate = uint64_t{in->page().width} * in->page().height * 4 *
                              (options.bits == 16 || in->page().bits == 16 ? 2 : 1);
    const std::unique_ptr<PictureWriter> out =
        newPicture(kind, options.output, made, estimate > 3900000000u, codingOf(options, *in));

    for (int number = 0;; ++number) {
        const Page& page = in->page();
        if (number > 0) conversion = &conversions.of(file, *in);
        if (page.space != conversion->input)
            failOn(file.path, std::string("is ") + nameOf(page.space) + (number ? " on page " + std::to_string(number + 1) : "") +
                                  ", and the conversion takes " + nameOf(conversion->input));
        NewPage result{page.width, page.height, conversion->output,
                       static_cast<uint16_t>(kind == PictureKind::jpeg ? 8 : options.bits ? options.bits : page.bits), {}};
        if (embedded) result.profile = embedded->bytes;
        out->beginPage(result, *in);
        RowConverter rows(*conversion, page, result.bits);
        Progress progress(fromPath(toPath(options.output).filename()), page.height, options.quiet);
        for (uint32_t y = 0; y < page.height; ++y) {
            in->read(y, rows.input());
            out->write(y, rows.convert());
            progress.advanceTo(y + 1);
            if (const int signal = system::interruption()) throw Interrupted{signal};
        }
        if (!in->nextPage()) break;
        if (!out->hasPages())
            failOn(file.path, std::string("has several pages, and a ") + nameOf(kind) + " picture holds one");
    }
    in->finish();
    out->finish();
    if (made.finish() != SaveResult::written) failWithReason(options.output, "cannot be written");
}

}  // namespace

void addImageCommand(Command& app) {
    const auto options = std::make_shared<Options>();
    Command command = app.command("image", "Convert a TIFF, JPEG or PNG picture");
    command.examples(kExamples);
    command.option("input", options->input, "The picture").called("IN").required();
    command.option("output", options->output, "The picture to write").called("OUT").required();
    options->conversion.addTo(command);
    command.option("--bits", options->bits, "Bits a sample of the result, 8 or 16; those of the picture")
        .oneOf({8, 16});
    command.option("--embed", options->embed, "Embed the destination profile, or this one, which a link needs")
        .called("[FILE]")
        .valueMayLack();
    command.option("--quality", options->quality, "Quality of a JPEG result, 1 to 100; as the picture's, else 90")
        .between(1, 100);
    command.option("--subsampling", options->subsampling, "Of the colour of an RGB JPEG result; as the picture's, else 420")
        .oneOf({"444", "422", "420"});
    command.flag("-q,--quiet", options->quiet, "No progress bar");
    command.does([options] { convertImage(*options); });
}

}  // namespace ko::cli
