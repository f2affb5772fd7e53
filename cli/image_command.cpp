// kolink image: a TIFF picture converted row by row, in constant memory.
#include <algorithm>
#include <memory>
#include <span>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/conversion.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/progress.h"
#include "cli/tiff_picture.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink image photo.tif print.tif --source srgb.icc --destination press.icc --embed\n"
    "  kolink image page.tif proof.tif --link proof.icc\n"
    "  kolink image photo.tif grey.tif --grey\n"
    "\n"
    "RGB and CMYK pictures of 8 or 16 bits a sample, in strips or tiles, one page or several.\n"
    "Resolution and descriptions are kept. 16-bit samples are converted with 8-bit precision in.\n";

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

void prepareOutput(TIFF* out, const Page& page, ColourSpace space, uint16_t bits,
                   std::span<const uint8_t> profile) {
    const uint16_t channels = static_cast<uint16_t>(channelsOf(space));
    TIFFSetField(out, TIFFTAG_IMAGEWIDTH, page.width);
    TIFFSetField(out, TIFFTAG_IMAGELENGTH, page.height);
    TIFFSetField(out, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(out, TIFFTAG_SAMPLESPERPIXEL, channels);
    TIFFSetField(out, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    const bool lossless = page.compression == COMPRESSION_NONE || page.compression == COMPRESSION_LZW ||
                          page.compression == COMPRESSION_ADOBE_DEFLATE ||
                          page.compression == COMPRESSION_PACKBITS;
    const uint16_t compression = lossless ? page.compression : static_cast<uint16_t>(COMPRESSION_LZW);
    TIFFSetField(out, TIFFTAG_COMPRESSION, compression);
    if (compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE)
        TIFFSetField(out, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(out, TIFFTAG_PHOTOMETRIC,
                 space == ColourSpace::cmyk ? PHOTOMETRIC_SEPARATED
                 : space == ColourSpace::rgb ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    if (space == ColourSpace::cmyk) TIFFSetField(out, TIFFTAG_INKSET, INKSET_CMYK);
    if (!profile.empty())
        TIFFSetField(out, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(profile.size()), profile.data());
    TIFFSetField(out, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(out, 0));
}

// The converter's 16-scale to samples. Grey ink becomes lightness, as pictures have it.
void toSamples(const uint16_t* from, size_t count, bool isGrey, uint16_t bits, uint8_t* to) {
    for (size_t at = 0; at < count; ++at) {
        uint32_t value = std::min<uint32_t>(from[at], 4080);
        if (isGrey) value = 4080 - value;
        if (bits == 8) {
            to[at] = static_cast<uint8_t>((value + 8) / 16);
        } else {
            const auto sample = static_cast<uint16_t>((value * 65535 + 2040) / 4080);
            std::copy_n(reinterpret_cast<const uint8_t*>(&sample), 2, to + 2 * at);
        }
    }
}

// With the system's reason, where the file has one: the picture's library does not know it.
[[noreturn]] void failToWrite(const std::string& path, NewFile& made) {
    if (made.finish() != SaveResult::written) failWithReason(path, "cannot be written");
    failWith(path, "cannot be written");
}

struct Options {
    ConversionOptions conversion;
    std::string input, output;
    int bits = 0;
    bool embed = false, quiet = false;
};

void convertImage(const Options& options) {
    const InputFile file = lookAt(options.input);
    TiffPtr in = openTiff(file.path);
    Page page = readPage(file, in.get());
    const auto conversion = options.conversion.make(page.space);
    std::span<const uint8_t> profile;
    if (options.embed) {
        if (!conversion->destinationProfile)
            throw UsageFailure("--embed needs --source and --destination: there is no profile of the result otherwise");
        profile = conversion->destinationProfile->bytes;
    }

    std::vector<std::string> inputs = conversion->files;
    inputs.push_back(options.input);
    checkOutput(options.output, inputs);
    const std::string libraryPath = toLibraryPath(options.output);
    const system::Making making;
    NewFile made(libraryPath.c_str(), false);
    forgetTiffError();
    // Beyond 4 GB only the larger form of TIFF has room.
    const uint64_t estimate = uint64_t{page.width} * page.height * 4 * (options.bits == 16 || page.bits == 16 ? 2 : 1);
    if (!made) failWithReason(options.output, "cannot be written");
    TiffPtr out = newTiff(made, estimate > 3900000000u);
    if (!out) failWith(options.output, "cannot be written");

    for (int number = 0;; ++number) {
        if (page.space != conversion->input)
            failOn(file.path, std::string("is ") + nameOf(page.space) + (number ? " on page " + std::to_string(number + 1) : "") +
                                  ", and the conversion takes " + nameOf(conversion->input));
        const auto bits = static_cast<uint16_t>(options.bits ? options.bits : page.bits);
        forgetTiffError();
        prepareOutput(out.get(), page, conversion->output, bits, profile);
        copyTags(in.get(), out.get());
        requireWholeReading(file.path);

        std::vector<TiffPtr> more;
        RowReader reader(file.path, page, channelHandles(file.path, page, in.get(), number, more));
        const size_t outputs = static_cast<size_t>(channelsOf(conversion->output));
        std::vector<uint8_t> row(size_t{page.width} * static_cast<size_t>(channelsOf(page.space)));
        std::vector<uint16_t> converted(page.width * outputs);
        std::vector<uint8_t> samples(page.width * outputs * (bits / 8u));
        Progress progress(fromPath(toPath(options.output).filename()), page.height, options.quiet);
        for (uint32_t y = 0; y < page.height; ++y) {
            reader.read(y, row.data());
            conversion->convert(row.data(), static_cast<int32_t>(page.width), converted.data());
            toSamples(converted.data(), converted.size(), conversion->output == ColourSpace::grey, bits, samples.data());
            if (TIFFWriteScanline(out.get(), samples.data(), y, 0) < 0) failToWrite(options.output, made);
            progress.advanceTo(y + 1);
            if (const int signal = system::interruption()) throw Interrupted{signal};
        }
        if (number + 1 == kMostPages || !TIFFReadDirectory(in.get())) break;
        if (!TIFFWriteDirectory(out.get())) failToWrite(options.output, made);
        page = readPage(file, in.get());
    }
    requireWholeReading(file.path);
    forgetTiffError();
    if (!TIFFFlush(out.get())) failToWrite(options.output, made);
    out.reset();
    if (hasTiffError() || made.finish() != SaveResult::written) failToWrite(options.output, made);
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
    command.flag("--embed", options->embed, "Embed the destination profile");
    command.flag("-q,--quiet", options->quiet, "No progress bar");
    command.does([options] { convertImage(*options); });
}

}  // namespace ko::cli
