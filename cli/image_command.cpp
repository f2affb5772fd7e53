// kolink image: a TIFF picture converted row by row, in constant memory.
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
#include "cli/tiff_picture.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink image photo.tif print.tif --destination press.icc --embed\n"
    "  kolink image in.tif out.tif --source scanner.icc --destination press.icc --bpc\n"
    "  kolink image page.tif proof.tif --link proof.icc\n"
    "  kolink image photo.tif grey.tif --grey\n"
    "\n"
    "RGB, CMYK and grey pictures of 8 or 16 bits a sample, in strips or tiles, one page or several.\n"
    "Resolution and descriptions are kept. The profile in the picture is the source unless --source\n"
    "names one. 16-bit samples are converted in 16 bits, but for --table, --builtin, --grey and\n"
    "--method classic and system, which know 8.\n";

constexpr int kMostPages = 1000;

// Tags that say something about the picture and not about its samples.
void copyTags(TIFF* from, TIFF* to) {
    for (const uint32_t tag : {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION, TIFFTAG_XPOSITION, TIFFTAG_YPOSITION}) {
        float value = 0;
        if (TIFFGetField(from, tag, &value)) TIFFSetField(to, tag, static_cast<double>(value));
    }
    for (const uint32_t tag : {TIFFTAG_RESOLUTIONUNIT, TIFFTAG_ORIENTATION}) {
        uint16_t value = 0;
        if (TIFFGetField(from, tag, &value)) TIFFSetField(to, tag, value);
    }
    uint32_t subfile = 0;
    if (TIFFGetField(from, TIFFTAG_SUBFILETYPE, &subfile)) TIFFSetField(to, TIFFTAG_SUBFILETYPE, subfile);
    uint16_t first = 0, second = 0;
    if (TIFFGetField(from, TIFFTAG_PAGENUMBER, &first, &second)) TIFFSetField(to, TIFFTAG_PAGENUMBER, first, second);
    for (const uint32_t tag : {TIFFTAG_DOCUMENTNAME, TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE, TIFFTAG_MODEL,
                               TIFFTAG_PAGENAME, TIFFTAG_SOFTWARE, TIFFTAG_DATETIME, TIFFTAG_ARTIST,
                               TIFFTAG_HOSTCOMPUTER, TIFFTAG_COPYRIGHT}) {
        const char* text = nullptr;
        if (TIFFGetField(from, tag, &text) && text) TIFFSetField(to, tag, text);
    }
    for (const uint32_t tag : {TIFFTAG_XMLPACKET, TIFFTAG_RICHTIFFIPTC, TIFFTAG_PHOTOSHOP}) {
        uint32_t size = 0;
        const void* data = nullptr;
        if (TIFFGetField(from, tag, &size, &data) && data) TIFFSetField(to, tag, size, data);
    }
}

// False: the picture would lack something.
bool prepareOutput(TIFF* out, const Page& page, ColourSpace space, uint16_t bits,
                   std::span<const uint8_t> profile) {
    const uint16_t channels = static_cast<uint16_t>(channelsOf(space));
    bool isWhole = true;
    const auto set = [&](uint32_t tag, auto... values) {
        isWhole = TIFFSetField(out, tag, values...) && isWhole;
    };
    set(TIFFTAG_IMAGEWIDTH, page.width);
    set(TIFFTAG_IMAGELENGTH, page.height);
    set(TIFFTAG_BITSPERSAMPLE, bits);
    set(TIFFTAG_SAMPLESPERPIXEL, channels);
    set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    const bool lossless = page.compression == COMPRESSION_NONE || page.compression == COMPRESSION_LZW ||
                          page.compression == COMPRESSION_ADOBE_DEFLATE ||
                          page.compression == COMPRESSION_PACKBITS;
    const uint16_t compression = lossless ? page.compression : static_cast<uint16_t>(COMPRESSION_LZW);
    set(TIFFTAG_COMPRESSION, compression);
    if (compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE)
        set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    set(TIFFTAG_PHOTOMETRIC, space == ColourSpace::cmyk  ? PHOTOMETRIC_SEPARATED
                             : space == ColourSpace::rgb ? PHOTOMETRIC_RGB
                                                         : PHOTOMETRIC_MINISBLACK);
    if (space == ColourSpace::cmyk) set(TIFFTAG_INKSET, INKSET_CMYK);
    if (!profile.empty())
        set(TIFFTAG_ICCPROFILE, static_cast<uint32_t>(profile.size()), profile.data());
    set(TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(out, 0));
    return isWhole;
}

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

// With the system's reason, where the file has one: the picture's library does not know it. A file
// that took every byte is not finished either, since the picture in it is not whole.
[[noreturn]] void failToWrite(const std::string& path, NewFile& made) {
    if (made.hasFailed() && made.finish() != SaveResult::written) failWithReason(path, "cannot be written");
    failWith(path, "cannot be written");
}

struct Options {
    ConversionOptions conversion;
    std::string input, output;
    std::optional<std::string> embed;  // empty: the destination profile
    int bits = 0;
    bool quiet = false;
};

// The conversion of one page; the one before serves as long as the embedded profile is the same.
class PageConversion {
public:
    explicit PageConversion(const Options& options) : options_(options) {}

    Conversion& of(const InputFile& file, const Page& page, TIFF* tiff) {
        std::vector<uint8_t> embedded = embeddedProfile(tiff);
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

void convertImage(const Options& options) {
    const InputFile file = lookAt(options.input);
    TiffPtr in = openTiff(file.path);
    Page page = readPage(file, in.get());
    PageConversion conversions(options);
    Conversion* conversion = &conversions.of(file, page, in.get());
    const std::optional<InputFile> embedded = profileToEmbed(options, *conversion);
    const std::span<const uint8_t> profile = embedded ? embedded->bytes : std::span<const uint8_t>();

    std::vector<std::string> inputs = conversion->files;
    inputs.push_back(options.input);
    if (options.embed && !options.embed->empty()) inputs.push_back(*options.embed);
    checkOutput(options.output, inputs);
    const system::Making making;
    const system::Writing place(options.output);
    NewFile made(place.path().c_str(), false);
    forgetTiffError();
    // Beyond 4 GB only the larger form of TIFF has room.
    const uint64_t estimate = uint64_t{page.width} * page.height * 4 * (options.bits == 16 || page.bits == 16 ? 2 : 1);
    if (!made) failWithReason(options.output, "cannot be written");
    TiffPtr out = newTiff(made, estimate > 3900000000u);
    if (!out) failWith(options.output, "cannot be written");

    std::vector<TiffPtr> more;
    for (int number = 0;; ++number) {
        if (number > 0) conversion = &conversions.of(file, page, in.get());
        if (page.space != conversion->input)
            failOn(file.path, std::string("is ") + nameOf(page.space) + (number ? " on page " + std::to_string(number + 1) : "") +
                                  ", and the conversion takes " + nameOf(conversion->input));
        const auto bits = static_cast<uint16_t>(options.bits ? options.bits : page.bits);
        forgetTiffError();
        const bool isPrepared = inTiff([&] {
            if (!prepareOutput(out.get(), page, conversion->output, bits, profile)) return false;
            copyTags(in.get(), out.get());
            return true;
        });
        if (!isPrepared) failToWrite(options.output, made);
        requireWholeReading(file.path);

        RowReader reader(file.path, page, channelHandles(file.path, page, in.get(), number, more));
        RowConverter rows(*conversion, page, bits);
        Progress progress(fromPath(toPath(options.output).filename()), page.height, options.quiet);
        for (uint32_t y = 0; y < page.height; ++y) {
            reader.read(y, rows.input());
            uint8_t* const row = rows.convert();
            if (inTiff([&] { return TIFFWriteScanline(out.get(), row, y, 0); }) < 0) failToWrite(options.output, made);
            progress.advanceTo(y + 1);
            if (const int signal = system::interruption()) throw Interrupted{signal};
        }
        if (TIFFLastDirectory(in.get())) break;
        if (number + 1 == kMostPages) failOn(file.path, "has more than " + grouped(kMostPages) + " pages");
        forgetTiffError();
        if (!inTiff([&] { return TIFFReadDirectory(in.get()); })) {
            requireWholeReading(file.path);
            failWith(file.path, "cannot be read at page " + std::to_string(number + 2));
        }
        if (!inTiff([&] { return TIFFWriteDirectory(out.get()); })) failToWrite(options.output, made);
        page = readPage(file, in.get());
    }
    requireWholeReading(file.path);
    forgetTiffError();
    if (!inTiff([&] { return TIFFFlush(out.get()); })) failToWrite(options.output, made);
    out.reset();
    if (hasTiffError()) failToWrite(options.output, made);
    if (made.finish() != SaveResult::written) failWithReason(options.output, "cannot be written");
}

}  // namespace

void addImageCommand(Command& app) {
    const auto options = std::make_shared<Options>();
    Command command = app.command("image", "Convert a TIFF picture");
    command.examples(kExamples);
    command.option("input", options->input, "The picture").called("IN").required();
    command.option("output", options->output, "The picture to write").called("OUT").required();
    options->conversion.addTo(command);
    command.option("--bits", options->bits, "Bits a sample of the result, 8 or 16; those of the picture")
        .oneOf({8, 16});
    command.option("--embed", options->embed, "Embed the destination profile, or this one, which a link needs")
        .called("[FILE]")
        .valueMayLack();
    command.flag("-q,--quiet", options->quiet, "No progress bar");
    command.does([options] { convertImage(*options); });
}

}  // namespace ko::cli
