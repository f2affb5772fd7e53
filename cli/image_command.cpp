// kolink image: a TIFF picture converted row by row, in constant memory.
#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>

#include "cli/command.h"
#include "cli/conversion.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/progress.h"

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

// Strips and tiles larger than this are taken for damage.
constexpr uint64_t kMostBuffer = uint64_t{256} << 20;
constexpr int kMostPages = 1000;

// The library reports through a function without context; one picture is open at a time.
std::string gTiffError;

void noteError(const char* module, const char* format, va_list arguments) {
    char text[300];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (gTiffError.empty()) gTiffError = std::string(module ? module : "TIFF") + ": " + text;
}
void ignoreWarning(const char*, const char*, va_list) {}

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffPtr = std::unique_ptr<TIFF, TiffCloser>;

[[noreturn]] void failWith(const std::string& path, const std::string& what) {
    failOn(path, gTiffError.empty() ? what : what + " (" + printable(gTiffError) + ")");
}

TiffPtr openTiff(const std::string& path) {
    gTiffError.clear();
    TiffPtr tiff(TIFFOpen(path.c_str(), "rm"));  // not mapped: a picture does not fill the memory
    if (!tiff) failWith(path, "is not a TIFF picture");
    return tiff;
}

// What a page is, as far as it matters here.
struct Page {
    uint32_t width = 0, height = 0;
    uint16_t bits = 0, samples = 0, compression = COMPRESSION_NONE;
    bool planar = false, tiled = false;
    ColourSpace space = ColourSpace::rgb;
};

Page readPage(const std::string& path, TIFF* tiff) {
    Page page;
    uint16_t photometric = 0xffff, layout = PLANARCONFIG_CONTIG, format = SAMPLEFORMAT_UINT, inks = INKSET_CMYK;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &page.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &page.height);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &page.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &page.samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &layout);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &format);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_INKSET, &inks);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
    TIFFGetField(tiff, TIFFTAG_COMPRESSION, &page.compression);
    page.planar = layout == PLANARCONFIG_SEPARATE;
    page.tiled = TIFFIsTiled(tiff) != 0;
    if (page.width == 0 || page.height == 0) failOn(path, "holds a page without pixels");
    if ((page.bits != 8 && page.bits != 16) || format != SAMPLEFORMAT_UINT)
        failOn(path, "has samples of " + std::to_string(page.bits) +
                         (format == SAMPLEFORMAT_UINT ? " bits" : " bits that are not plain numbers") +
                         "; 8 or 16 bits are needed");
    if (photometric == PHOTOMETRIC_YCBCR && page.compression == COMPRESSION_JPEG) {
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        photometric = PHOTOMETRIC_RGB;
    }
    if (photometric == PHOTOMETRIC_RGB && page.samples >= 3) page.space = ColourSpace::rgb;
    else if (photometric == PHOTOMETRIC_SEPARATED && page.samples >= 4 && inks == INKSET_CMYK) page.space = ColourSpace::cmyk;
    else failOn(path, "is neither an RGB nor a CMYK picture (photometric interpretation " +
                          std::to_string(photometric) + ", " + std::to_string(page.samples) + " samples)");
    if (page.samples > 32) failOn(path, "has " + std::to_string(page.samples) + " samples a pixel");
    return page;
}

// The rows of a page, one after the other, as interleaved 8-bit samples of its colour channels.
class RowReader {
public:
    // A planar page is read through a handle a channel, so that each goes through its own strips
    // in order.
    RowReader(const std::string& path, const Page& page, std::vector<TIFF*> handles)
        : path_(path), page_(page), handles_(std::move(handles)),
          channels_(static_cast<size_t>(channelsOf(page.space))) {
        uint64_t size = 0;
        if (page.tiled) {
            TIFFGetField(handles_[0], TIFFTAG_TILEWIDTH, &tileWidth_);
            TIFFGetField(handles_[0], TIFFTAG_TILELENGTH, &tileHeight_);
            tileBytes_ = TIFFTileSize64(handles_[0]);
            if (tileWidth_ == 0 || tileHeight_ == 0) failWith(path, "has tiles without pixels");
            size = (uint64_t{page.width} + tileWidth_ - 1) / tileWidth_ * tileBytes_ * (page.planar ? channels_ : 1);
        } else {
            size = TIFFScanlineSize64(handles_[0]) * (page.planar ? channels_ : 1);
        }
        if (size == 0 || size > kMostBuffer || uint64_t{page.width} * 4 > kMostBuffer)
            failWith(path, "has rows or tiles of impossible size");
        buffer_.resize(static_cast<size_t>(size));
    }

    void read(uint32_t row, uint8_t* pixels) {
        if (page_.tiled) return readTiled(row, pixels);
        const size_t plane = page_.planar ? buffer_.size() / channels_ : 0;
        for (size_t at = 0; at < (page_.planar ? channels_ : 1); ++at)
            if (TIFFReadScanline(handles_[at], &buffer_[at * plane], row, static_cast<uint16_t>(at)) < 0)
                failWith(path_, "cannot be read at row " + std::to_string(row + 1));
        for (size_t channel = 0; channel < channels_; ++channel) {
            const size_t step = page_.planar ? 1 : page_.samples;
            const uint8_t* const from = &buffer_[page_.planar ? channel * plane : channel * (page_.bits / 8)];
            take(from, step, page_.width, pixels + channel);
        }
    }

private:
    // Samples step apart, reduced to 8 bits, to every channels_-th byte.
    void take(const uint8_t* from, size_t step, uint32_t count, uint8_t* to) const {
        if (page_.bits == 8) {
            for (uint32_t x = 0; x < count; ++x, to += channels_) *to = from[x * step];
            return;
        }
        for (uint32_t x = 0; x < count; ++x, to += channels_) {
            uint16_t sample;
            std::copy_n(from + 2 * x * step, 2, reinterpret_cast<uint8_t*>(&sample));
            *to = static_cast<uint8_t>((sample + 128u) / 257);
        }
    }

    void readTiled(uint32_t row, uint8_t* pixels) {
        const uint32_t across = (page_.width + tileWidth_ - 1) / tileWidth_;
        const size_t planes = page_.planar ? channels_ : 1;
        if (row % tileHeight_ == 0 || row == 0)
            for (size_t plane = 0; plane < planes; ++plane)
                for (uint32_t tile = 0; tile < across; ++tile)
                    if (TIFFReadTile(handles_[0], &buffer_[(plane * across + tile) * tileBytes_], tile * tileWidth_,
                                     row, 0, static_cast<uint16_t>(plane)) < 0)
                        failWith(path_, "cannot be read at row " + std::to_string(row + 1));
        const size_t sample = page_.bits / 8u;
        const size_t step = page_.planar ? 1 : page_.samples;
        const size_t line = size_t{row % tileHeight_} * tileWidth_ * step * sample;
        for (uint32_t tile = 0; tile < across; ++tile) {
            const uint32_t x = tile * tileWidth_, count = std::min(tileWidth_, page_.width - x);
            for (size_t channel = 0; channel < channels_; ++channel) {
                const size_t plane = page_.planar ? channel : 0;
                const size_t at = (plane * across + tile) * tileBytes_ + line + (page_.planar ? 0 : channel * sample);
                take(&buffer_[at], step, count, pixels + x * channels_ + channel);
            }
        }
    }

    const std::string& path_;
    const Page& page_;
    std::vector<TIFF*> handles_;
    size_t channels_;
    std::vector<uint8_t> buffer_;
    uint32_t tileWidth_ = 0, tileHeight_ = 0;
    uint64_t tileBytes_ = 0;
};

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
                   const std::vector<char>& profile) {
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

struct Options {
    ConversionOptions conversion;
    std::string input, output;
    int bits = 0;
    bool embed = false, quiet = false;
};

void convertImage(const Options& options) {
    TIFFSetErrorHandler(noteError);
    TIFFSetWarningHandler(ignoreWarning);
    const InputFile file = openInput(options.input);
    TiffPtr in = openTiff(file.path);
    Page page = readPage(file.path, in.get());
    const auto conversion = options.conversion.make(page.space);
    std::vector<char> profile;
    if (options.embed) {
        if (conversion->destinationProfile.empty())
            throw UsageFailure("--embed needs --source and --destination: there is no profile of the result otherwise");
        std::ifstream stream(toPath(conversion->destinationProfile), std::ios::binary);
        profile.assign(std::istreambuf_iterator<char>(stream), {});
    }

    std::vector<std::string> inputs = conversion->files;
    inputs.push_back(options.input);
    deferInterruption();
    OutputFile output(options.output, inputs);
    gTiffError.clear();
    // Beyond 4 GB only the larger form of TIFF has room.
    const uint64_t estimate = uint64_t{page.width} * page.height * 4 * (options.bits == 16 || page.bits == 16 ? 2 : 1);
    TiffPtr out(TIFFOpen(output.temporary().c_str(), estimate > 3900000000u ? "w8" : "w"));
    if (!out) failWith(options.output, "cannot be written");

    for (int number = 0;; ++number) {
        if (page.space != conversion->input)
            failOn(file.path, std::string("is ") + nameOf(page.space) + (number ? " on page " + std::to_string(number + 1) : "") +
                                  ", and the conversion takes " + nameOf(conversion->input));
        const auto bits = static_cast<uint16_t>(options.bits ? options.bits : page.bits);
        gTiffError.clear();
        prepareOutput(out.get(), page, conversion->output, bits, profile);
        copyTags(in.get(), out.get());

        std::vector<TiffPtr> more;
        std::vector<TIFF*> handles{in.get()};
        if (page.planar && !page.tiled)
            for (int channel = 1; channel < channelsOf(page.space); ++channel) {
                more.push_back(openTiff(file.path));
                if (!TIFFSetDirectory(more.back().get(), static_cast<tdir_t>(number))) failWith(file.path, "cannot be read");
                handles.push_back(more.back().get());
            }
        RowReader reader(file.path, page, std::move(handles));
        const size_t outputs = static_cast<size_t>(channelsOf(conversion->output));
        std::vector<uint8_t> row(size_t{page.width} * static_cast<size_t>(channelsOf(page.space)));
        std::vector<uint16_t> converted(page.width * outputs);
        std::vector<uint8_t> samples(page.width * outputs * (bits / 8u));
        Progress progress(fromPath(toPath(options.output).filename()), page.height, options.quiet);
        for (uint32_t y = 0; y < page.height; ++y) {
            reader.read(y, row.data());
            conversion->convert(row.data(), static_cast<int32_t>(page.width), converted.data());
            toSamples(converted.data(), converted.size(), conversion->output == ColourSpace::grey, bits, samples.data());
            if (TIFFWriteScanline(out.get(), samples.data(), y, 0) < 0) failWith(options.output, "cannot be written");
            progress.advanceTo(y + 1);
        }
        if (number + 1 == kMostPages || !TIFFReadDirectory(in.get())) break;
        if (!TIFFWriteDirectory(out.get())) failWith(options.output, "cannot be written");
        page = readPage(file.path, in.get());
    }
    gTiffError.clear();
    if (!TIFFFlush(out.get())) failWith(options.output, "cannot be written whole; is the disk full?");
    out.reset();
    if (!gTiffError.empty()) failWith(options.output, "cannot be written whole");
    output.commit();
}

}  // namespace

void addImageCommand(CLI::App& app) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("image", "Convert a TIFF picture");
    command->footer(kExamples);
    command->add_option("input", options->input, "The picture")->type_name("IN")->required();
    command->add_option("output", options->output, "The picture to write")->type_name("OUT")->required();
    options->conversion.addTo(*command);
    command->add_option("--bits", options->bits, "Bits a sample of the result, 8 or 16; those of the picture")
        ->check(CLI::IsMember({8, 16}));
    command->add_flag("--embed", options->embed, "Embed the destination profile");
    command->add_flag("-q,--quiet", options->quiet, "No progress bar");
    command->callback([options] { convertImage(*options); });
}

}  // namespace ko::cli
