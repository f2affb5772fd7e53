#include "cli/tiff_picture.h"

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <new>

#include "cli/errors.h"
#include "cli/system.h"
#include "frame/platform.h"

namespace ko::cli {
namespace {

// Rows and rows of tiles larger than this are taken for damage.
constexpr uint64_t kMostBuffer = uint64_t{256} << 20;

// Called by a library in C, through which no exception may go: a fixed field.
char gTiffError[300] = "";

// Short memory, and the way out of a call that must not go on with it.
bool gShortMemory = false, gMayLeave = false;
std::jmp_buf gWayOut;

void noteError(const char* module, const char* format, va_list arguments) {
    if (gMayLeave && errno == ENOMEM) std::longjmp(gWayOut, 1);
    if (gTiffError[0]) return;
    const int length = std::snprintf(gTiffError, sizeof gTiffError, "%s: ", module ? module : "TIFF");
    if (length < 0 || static_cast<size_t>(length) >= sizeof gTiffError) return;
    std::vsnprintf(gTiffError + length, sizeof gTiffError - static_cast<size_t>(length), format, arguments);
}
void ignoreWarning(const char*, const char*, va_list) {}

// The picture that is read goes through a stream of ours. The TIFF library takes a tag that could
// not be read for one that is not there, and a picture without the lengths of its strips would be
// another picture; so the first failed read is kept and ends the work.
uint32_t gReadFailure = 0;

// What is called from within the TIFF library leaves runInTiff the error that it looks for.
using platform::ErrorKeeper;

std::FILE* streamOf(thandle_t handle) { return static_cast<std::FILE*>(handle); }

tmsize_t readGiven(thandle_t handle, void* buffer, tmsize_t size) {
    const ErrorKeeper keeper;
    std::FILE* const stream = streamOf(handle);
    errno = 0;
    const size_t got = std::fread(buffer, 1, static_cast<size_t>(size), stream);
    if (got < static_cast<size_t>(size) && std::ferror(stream)) {
        if (gReadFailure == 0) gReadFailure = static_cast<uint32_t>(errno ? errno : EIO);
        return -1;
    }
    return static_cast<tmsize_t>(got);
}
tmsize_t writeNever(thandle_t, void*, tmsize_t) { return -1; }
toff_t seekGiven(thandle_t handle, toff_t offset, int from) {
    const ErrorKeeper keeper;
    std::FILE* const stream = streamOf(handle);
    if (offset > static_cast<toff_t>(INT64_MAX)) return static_cast<toff_t>(-1);
    if (std::fseek(stream, static_cast<long>(offset), from) != 0) return static_cast<toff_t>(-1);
    return static_cast<toff_t>(std::ftell(stream));
}
toff_t sizeGiven(thandle_t handle) {
    const ErrorKeeper keeper;
    std::FILE* const stream = streamOf(handle);
    const long here = std::ftell(stream);
    if (here < 0 || std::fseek(stream, 0, SEEK_END) != 0) return 0;
    const long size = std::ftell(stream);
    return std::fseek(stream, here, SEEK_SET) == 0 && size > 0 ? static_cast<toff_t>(size) : 0;
}
int closeGiven(thandle_t handle) { return std::fclose(streamOf(handle)); }

NewFile& fileOf(thandle_t handle) { return *static_cast<NewFile*>(handle); }

tmsize_t readMade(thandle_t handle, void* buffer, tmsize_t size) {
    const ErrorKeeper keeper;
    NewFile& file = fileOf(handle);
    const auto left = std::min<uint64_t>(static_cast<uint64_t>(size),
                                         file.size() - std::min(file.size(), file.position()));
    return file.read({static_cast<uint8_t*>(buffer), static_cast<size_t>(left)}) ? static_cast<tmsize_t>(left) : -1;
}
tmsize_t writeMade(thandle_t handle, void* bytes, tmsize_t size) {
    const ErrorKeeper keeper;
    return fileOf(handle).write({static_cast<const uint8_t*>(bytes), static_cast<size_t>(size)}) ? size : -1;
}
toff_t seekMade(thandle_t handle, toff_t offset, int from) {
    const ErrorKeeper keeper;
    NewFile& file = fileOf(handle);
    const uint64_t start = from == SEEK_CUR ? file.position() : from == SEEK_END ? file.size() : 0;
    return file.seek(start + offset) ? file.position() : static_cast<toff_t>(-1);
}
toff_t sizeMade(thandle_t handle) { return fileOf(handle).size(); }
int closeMade(thandle_t) { return 0; }  // the door is closed by who opened it

// Bytes that one byte of a file can stand for, at most. What claims more lies.
uint64_t mostFromOneByte(uint16_t compression) {
    switch (compression) {
        case COMPRESSION_NONE: return 1;
        case COMPRESSION_PACKBITS:
        case COMPRESSION_LZW:
        case COMPRESSION_DEFLATE:
        case COMPRESSION_ADOBE_DEFLATE:
        case COMPRESSION_JPEG: return 4096;
        default: return 65536;
    }
}

// A page takes memory as it has pixels, so it has to hold them.
void requirePixels(const InputFile& file, const Page& page) {
    const uint64_t bytes = page.bits / 8u * uint64_t{page.samples};  // a pixel; up to 64
    const uint64_t most = file.size * mostFromOneByte(page.compression);
    if (page.width > most / bytes / page.height)
        failOn(file.path, "cannot be read: it is too short for the " + grouped(page.width) + " x " +
                              grouped(page.height) + " pixels that it claims");
}

}  // namespace

// No object with a destructor is between the two: the library is C, and so is what it calls back.
void runInTiff(void (*call)(void*), void* data) {
    errno = 0;
    if (setjmp(gWayOut) == 0) {
        gMayLeave = true;
        call(data);
    }
    gMayLeave = false;
    gShortMemory = errno == ENOMEM;
    if (gShortMemory) throw std::bad_alloc();
}

void TiffCloser::operator()(TIFF* tiff) const {
    if (!gShortMemory) TIFFClose(tiff);
}

void forgetTiffError() { gTiffError[0] = 0; }
bool hasTiffError() { return gTiffError[0] != 0; }

void failWith(const std::string& path, const std::string& what) {
    failOn(path, gTiffError[0] == 0 ? what : what + " (" + printable(gTiffError) + ")");
}

void requireWholeReading(const std::string& path) {
    if (gReadFailure != 0) failOn(path, "cannot be read: " + system::errorText(gReadFailure));
}

TiffPtr openTiff(const std::string& path) {
    forgetTiffError();
    gReadFailure = 0;
    TIFFSetErrorHandler(noteError);
    TIFFSetWarningHandler(ignoreWarning);
    std::FILE* const stream = std::fopen(path.c_str(), "rbe");
    if (!stream) failOn(path, "cannot be read: " + system::errorText(static_cast<uint32_t>(errno)));
    // Without its first page, which would be closed there and then when it cannot be read.
    TiffPtr tiff(inTiff([&] {
        return TIFFClientOpen(path.c_str(), "rmh", stream, readGiven, writeNever, seekGiven, closeGiven,
                              sizeGiven, nullptr, nullptr);
    }));
    if (!tiff) std::fclose(stream);  // it is the TIFF library's only once that has opened it
    const bool hasPage = tiff && inTiff([&] { return TIFFSetDirectory(tiff.get(), 0); });
    requireWholeReading(path);
    if (!hasPage) failWith(path, "is not a TIFF picture");
    return tiff;
}

TiffPtr newTiff(NewFile& file, bool large) {
    return TiffPtr(inTiff([&] {
        return TIFFClientOpen("the new picture", large ? "w8" : "w", &file, readMade, writeMade, seekMade,
                              closeMade, sizeMade, nullptr, nullptr);
    }));
}

Page readPage(const InputFile& file, TIFF* tiff) {
    const std::string& path = file.path;
    requireWholeReading(path);
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
        inTiff([&] { return TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB); });
        photometric = PHOTOMETRIC_RGB;
    }
    if (photometric == PHOTOMETRIC_RGB && page.samples >= 3) page.space = ColourSpace::rgb;
    else if (photometric == PHOTOMETRIC_SEPARATED && page.samples >= 4 && inks == INKSET_CMYK) page.space = ColourSpace::cmyk;
    else if (photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE) {
        page.space = ColourSpace::grey;
        page.whiteIsZero = photometric == PHOTOMETRIC_MINISWHITE;
    } else failOn(path, "is neither an RGB, a CMYK nor a grey picture (photometric interpretation " +
                          std::to_string(photometric) + ", " + std::to_string(page.samples) + " samples)");
    if (page.samples > 32) failOn(path, "has " + std::to_string(page.samples) + " samples a pixel");
    requireWholeReading(path);
    requirePixels(file, page);
    return page;
}

std::vector<uint8_t> embeddedProfile(TIFF* tiff) {
    uint32_t size = 0;
    const void* data = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &data) || !data) return {};
    const auto* const bytes = static_cast<const uint8_t*>(data);
    return {bytes, bytes + size};
}

std::vector<TIFF*> channelHandles(const std::string& path, const Page& page, TIFF* tiff, int number,
                                  std::vector<TiffPtr>& more) {
    std::vector<TIFF*> handles{tiff};
    if (!page.planar || page.tiled) return handles;
    for (size_t channel = 1; channel < static_cast<size_t>(channelsOf(page.space)); ++channel) {
        if (more.size() < channel) more.push_back(openTiff(path));
        TIFF* const handle = more[channel - 1].get();
        // From the page before: libtiff finds a page by its number from the first one on.
        while (TIFFCurrentDirectory(handle) < static_cast<tdir_t>(number))
            if (!inTiff([&] { return TIFFReadDirectory(handle); })) failWith(path, "cannot be read");
        handles.push_back(handle);
    }
    requireWholeReading(path);
    return handles;
}

RowReader::RowReader(const std::string& path, const Page& page, std::vector<TIFF*> handles)
    : path_(path), page_(page), handles_(std::move(handles)),
      channels_(static_cast<size_t>(channelsOf(page.space))), sample_(page.bits / 8u) {
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

void RowReader::read(uint32_t row, uint8_t* pixels) {
    if (page_.tiled) return readTiled(row, pixels);
    const size_t plane = page_.planar ? buffer_.size() / channels_ : 0;
    for (size_t at = 0; at < (page_.planar ? channels_ : 1); ++at)
        if (inTiff([&] {
                return TIFFReadScanline(handles_[at], &buffer_[at * plane], row, static_cast<uint16_t>(at));
            }) < 0)
            failWith(path_, "cannot be read at row " + std::to_string(row + 1));
    requireWholeReading(path_);
    for (size_t channel = 0; channel < channels_; ++channel) {
        const size_t step = page_.planar ? 1 : page_.samples;
        const uint8_t* const from = &buffer_[page_.planar ? channel * plane : channel * (page_.bits / 8)];
        take(from, step, page_.width, pixels + channel * sample_);
    }
}

// Samples step apart, to every channels_-th sample.
void RowReader::take(const uint8_t* from, size_t step, uint32_t count, uint8_t* to) const {
    const auto flip = static_cast<uint8_t>(page_.whiteIsZero ? 0xff : 0);
    for (uint32_t x = 0; x < count; ++x, from += step * sample_, to += channels_ * sample_)
        for (size_t byte = 0; byte < sample_; ++byte) to[byte] = static_cast<uint8_t>(from[byte] ^ flip);
}

void RowReader::readTiled(uint32_t row, uint8_t* pixels) {
    const uint32_t across = (page_.width + tileWidth_ - 1) / tileWidth_;
    const size_t planes = page_.planar ? channels_ : 1;
    if (row % tileHeight_ == 0 || row == 0)
        for (size_t plane = 0; plane < planes; ++plane)
            for (uint32_t tile = 0; tile < across; ++tile)
                if (inTiff([&] {
                        return TIFFReadTile(handles_[0], &buffer_[(plane * across + tile) * tileBytes_],
                                            tile * tileWidth_, row, 0, static_cast<uint16_t>(plane));
                    }) < 0)
                    failWith(path_, "cannot be read at row " + std::to_string(row + 1));
    requireWholeReading(path_);
    const size_t step = page_.planar ? 1 : page_.samples;
    const size_t line = size_t{row % tileHeight_} * tileWidth_ * step * sample_;
    for (uint32_t tile = 0; tile < across; ++tile) {
        const uint32_t x = tile * tileWidth_, count = std::min(tileWidth_, page_.width - x);
        for (size_t channel = 0; channel < channels_; ++channel) {
            const size_t plane = page_.planar ? channel : 0;
            const size_t at = (plane * across + tile) * tileBytes_ + line + (page_.planar ? 0 : channel * sample_);
            take(&buffer_[at], step, count, pixels + (x * channels_ + channel) * sample_);
        }
    }
}

}  // namespace ko::cli
