// Pictures as the tool reads and writes them, whatever their format: pages of rows, and what is
// known of them besides.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "cli/tiff_picture.h"

namespace ko::cli {

enum class PictureKind { tiff, jpeg, png };
const char* nameOf(PictureKind kind);

// By its first bytes; TIFF where they tell nothing, whose reader then says so.
PictureKind pictureKind(const InputFile& file);
// By the ending of its name; otherwise that kind.
PictureKind kindByName(const std::string& path, PictureKind otherwise);

// What is known of a picture besides its samples, as far as another format can hold it.
struct Metadata {
    double xResolution = 0, yResolution = 0;  // dots an inch; 0: not known
    uint16_t orientation = 0;                 // as TIFF has it; 0: not known
    std::vector<std::pair<uint16_t, std::string>> texts;  // TIFF tags: description, author, ...
    std::vector<uint8_t> exif;       // the whole block, from its byte order on
    std::vector<uint8_t> xmp;        // the packet
    std::vector<uint8_t> resources;  // Photoshop's, IPTC among them
};

// How a JPEG picture is coded.
struct JpegCoding {
    int quality = 90;                      // 1 to 100, as libjpeg counts
    int horizontal = 2, vertical = 2;      // pixels of lightness for one of colour
};

class PictureReader {
public:
    virtual ~PictureReader() = default;
    const Page& page() const { return page_; }
    virtual std::vector<uint8_t> profile() const = 0;
    virtual Metadata metadata() const = 0;
    // Interleaved samples of the colour channels, rows in rising order; white is the top of grey.
    virtual void read(uint32_t row, uint8_t* pixels) = 0;
    virtual bool nextPage() { return false; }
    virtual void finish() {}  // behind the last row: fails when something was wrong all the same
    virtual TIFF* tiff() const { return nullptr; }
    virtual std::optional<JpegCoding> coding() const { return std::nullopt; }

protected:
    Page page_;
};

// Fails with a clear line when the file is no picture, or none that can be converted.
std::unique_ptr<PictureReader> openPicture(const InputFile& file);
std::unique_ptr<PictureReader> openJpeg(const InputFile& file);
std::unique_ptr<PictureReader> openPng(const InputFile& file);

// What a page of the result is.
struct NewPage {
    uint32_t width = 0, height = 0;
    ColourSpace space = ColourSpace::rgb;
    uint16_t bits = 8;
    std::span<const uint8_t> profile;
};

// Writes through the door, which outlives it. Failures name the path.
class PictureWriter {
public:
    virtual ~PictureWriter() = default;
    virtual void beginPage(const NewPage& page, const PictureReader& from) = 0;
    virtual void write(uint32_t row, uint8_t* pixels) = 0;  // may change them
    virtual void finish() = 0;                              // before the door is closed
    virtual bool hasPages() const { return false; }
};

std::unique_ptr<PictureWriter> newPicture(PictureKind kind, const std::string& path, NewFile& file,
                                          bool large, const JpegCoding& coding);
std::unique_ptr<PictureWriter> newJpeg(const std::string& path, NewFile& file, const JpegCoding& coding);
std::unique_ptr<PictureWriter> newPng(const std::string& path, NewFile& file);

// With the system's reason, where the file has one: the picture's library does not know it.
[[noreturn]] void failToWrite(const std::string& path, NewFile& made, const std::string& reason);

// Fails when the file is too short for the pixels that it claims: a page takes memory as it has
// pixels, so it has to hold them.
void requirePixels(const InputFile& file, uint64_t width, uint64_t height, uint64_t bytesOfPixel,
                   uint64_t mostFromOneByte);

// The first directory of an EXIF block: orientation and texts; and a block of its own for a picture
// that has none, empty when there is nothing to say.
void readExif(Metadata& metadata);
std::vector<uint8_t> exifOf(const Metadata& metadata);

}  // namespace ko::cli
