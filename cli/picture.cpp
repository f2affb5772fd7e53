#include "cli/picture.h"

#include <algorithm>
#include <array>

#include "cli/errors.h"
#include "cli/text.h"
#include "frame/bytes.h"

namespace ko::cli {
namespace {

constexpr uint16_t kTexts[] = {TIFFTAG_DOCUMENTNAME, TIFFTAG_IMAGEDESCRIPTION, TIFFTAG_MAKE, TIFFTAG_MODEL,
                               TIFFTAG_PAGENAME, TIFFTAG_SOFTWARE, TIFFTAG_DATETIME, TIFFTAG_ARTIST,
                               TIFFTAG_HOSTCOMPUTER, TIFFTAG_COPYRIGHT};
constexpr uint16_t kAscii = 2, kShort = 3;

std::vector<uint8_t> blockOf(TIFF* tiff, uint32_t tag) {
    uint32_t size = 0;
    const void* data = nullptr;
    if (!TIFFGetField(tiff, tag, &size, &data) || !data) return {};
    const auto* const bytes = static_cast<const uint8_t*>(data);
    return {bytes, bytes + size};
}

class TiffReader final : public PictureReader {
public:
    explicit TiffReader(const InputFile& file) : file_(file), tiff_(openTiff(file.path)) { begin(); }
    std::vector<uint8_t> profile() const override { return embeddedProfile(tiff_.get()); }
    TIFF* tiff() const override { return tiff_.get(); }
    Metadata metadata() const override {
        Metadata data;
        TIFF* const tiff = tiff_.get();
        uint16_t unit = RESUNIT_INCH;
        float x = 0, y = 0;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
        if (unit != RESUNIT_NONE && TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x) &&
            TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y) && x > 0 && y > 0) {
            const double inch = unit == RESUNIT_CENTIMETER ? 2.54 : 1;
            data.xResolution = static_cast<double>(x) * inch;
            data.yResolution = static_cast<double>(y) * inch;
        }
        TIFFGetField(tiff, TIFFTAG_ORIENTATION, &data.orientation);
        for (const uint16_t tag : kTexts) {
            const char* text = nullptr;
            if (TIFFGetField(tiff, tag, &text) && text) data.texts.emplace_back(tag, text);
        }
        data.xmp = blockOf(tiff, TIFFTAG_XMLPACKET);
        data.resources = blockOf(tiff, TIFFTAG_PHOTOSHOP);
        return data;
    }
    void read(uint32_t row, uint8_t* pixels) override {
        if (!rows_) {
            requireWholeReading(file_.path);
            rows_.emplace(file_.path, page_, channelHandles(file_.path, page_, tiff_.get(), number_, more_));
        }
        rows_->read(row, pixels);
    }
    bool nextPage() override {
        constexpr int kMostPages = 1000;
        if (TIFFLastDirectory(tiff_.get())) return false;
        if (number_ + 1 == kMostPages) failOn(file_.path, "has more than " + grouped(kMostPages) + " pages");
        forgetTiffError();
        if (!inTiff([&] { return TIFFReadDirectory(tiff_.get()); })) {
            requireWholeReading(file_.path);
            failWith(file_.path, "cannot be read at page " + std::to_string(number_ + 2));
        }
        ++number_;
        begin();
        return true;
    }
    void finish() override { requireWholeReading(file_.path); }

private:
    void begin() {
        rows_.reset();
        page_ = readPage(file_, tiff_.get());
    }
    const InputFile& file_;
    TiffPtr tiff_;
    std::vector<TiffPtr> more_;
    std::optional<RowReader> rows_;
    int number_ = 0;
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
    for (const uint16_t tag : kTexts) {
        const char* text = nullptr;
        if (TIFFGetField(from, tag, &text) && text) TIFFSetField(to, tag, text);
    }
    for (const uint32_t tag : {TIFFTAG_XMLPACKET, TIFFTAG_RICHTIFFIPTC, TIFFTAG_PHOTOSHOP}) {
        uint32_t size = 0;
        const void* data = nullptr;
        if (TIFFGetField(from, tag, &size, &data) && data) TIFFSetField(to, tag, size, data);
    }
}

// The same from a picture of another format.
void putTags(const Metadata& data, TIFF* to) {
    if (data.xResolution > 0) {
        TIFFSetField(to, TIFFTAG_XRESOLUTION, data.xResolution);
        TIFFSetField(to, TIFFTAG_YRESOLUTION, data.yResolution);
        TIFFSetField(to, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    }
    if (data.orientation >= 1 && data.orientation <= 8) TIFFSetField(to, TIFFTAG_ORIENTATION, data.orientation);
    for (const auto& [tag, text] : data.texts) TIFFSetField(to, tag, text.c_str());
    if (!data.xmp.empty())
        TIFFSetField(to, TIFFTAG_XMLPACKET, static_cast<uint32_t>(data.xmp.size()), data.xmp.data());
    if (!data.resources.empty())
        TIFFSetField(to, TIFFTAG_PHOTOSHOP, static_cast<uint32_t>(data.resources.size()), data.resources.data());
}

class TiffWriter final : public PictureWriter {
public:
    TiffWriter(const std::string& path, NewFile& file, bool large) : path_(path), file_(file) {
        forgetTiffError();
        tiff_ = newTiff(file, large);
        if (!tiff_) failWith(path, "cannot be written");
    }
    bool hasPages() const override { return true; }
    void beginPage(const NewPage& page, const PictureReader& from) override {
        TIFF* const out = tiff_.get();
        if (hasBegun_ && !inTiff([&] { return TIFFWriteDirectory(out); })) fail();
        hasBegun_ = true;
        forgetTiffError();
        const Metadata metadata = from.tiff() ? Metadata() : from.metadata();
        const bool isPrepared = inTiff([&] {
            if (!prepare(page, from)) return false;
            if (from.tiff()) copyTags(from.tiff(), out);
            else putTags(metadata, out);
            return true;
        });
        if (!isPrepared) fail();
    }
    void write(uint32_t row, uint8_t* pixels) override {
        if (inTiff([&] { return TIFFWriteScanline(tiff_.get(), pixels, row, 0); }) < 0) fail();
    }
    void finish() override {
        forgetTiffError();
        if (!inTiff([&] { return TIFFFlush(tiff_.get()); })) fail();
        tiff_.reset();
        if (hasTiffError()) fail();
    }

private:
    // False: the picture would lack something.
    bool prepare(const NewPage& page, const PictureReader& from) {
        TIFF* const out = tiff_.get();
        bool isWhole = true;
        const auto set = [&](uint32_t tag, auto... values) {
            isWhole = TIFFSetField(out, tag, values...) && isWhole;
        };
        set(TIFFTAG_IMAGEWIDTH, page.width);
        set(TIFFTAG_IMAGELENGTH, page.height);
        set(TIFFTAG_BITSPERSAMPLE, page.bits);
        set(TIFFTAG_SAMPLESPERPIXEL, static_cast<uint16_t>(channelsOf(page.space)));
        set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        const uint16_t given = from.page().compression;
        const bool lossless = from.tiff() && (given == COMPRESSION_NONE || given == COMPRESSION_LZW ||
                                              given == COMPRESSION_ADOBE_DEFLATE || given == COMPRESSION_PACKBITS);
        const uint16_t compression = lossless ? given : static_cast<uint16_t>(COMPRESSION_LZW);
        set(TIFFTAG_COMPRESSION, compression);
        if (compression == COMPRESSION_LZW || compression == COMPRESSION_ADOBE_DEFLATE)
            set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        set(TIFFTAG_PHOTOMETRIC, page.space == ColourSpace::cmyk  ? PHOTOMETRIC_SEPARATED
                                 : page.space == ColourSpace::rgb ? PHOTOMETRIC_RGB
                                                                  : PHOTOMETRIC_MINISBLACK);
        if (page.space == ColourSpace::cmyk) set(TIFFTAG_INKSET, INKSET_CMYK);
        if (!page.profile.empty())
            set(TIFFTAG_ICCPROFILE, static_cast<uint32_t>(page.profile.size()), page.profile.data());
        set(TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(out, 0));
        return isWhole;
    }
    // With the system's reason, where the file has one: the picture's library does not know it. A file
    // that took every byte is not finished either, since the picture in it is not whole.
    [[noreturn]] void fail() {
        if (file_.hasFailed() && file_.finish() != SaveResult::written) failWithReason(path_, "cannot be written");
        failWith(path_, "cannot be written");
    }
    const std::string& path_;
    NewFile& file_;
    TiffPtr tiff_;
    bool hasBegun_ = false;
};

}  // namespace

const char* nameOf(PictureKind kind) {
    return kind == PictureKind::tiff ? "TIFF" : kind == PictureKind::jpeg ? "JPEG" : "PNG";
}

PictureKind pictureKind(const InputFile& file) {
    constexpr std::array<uint8_t, 3> kJpeg = {0xff, 0xd8, 0xff};
    constexpr std::array<uint8_t, 4> kPng = {0x89, 'P', 'N', 'G'};
    const auto begins = [&](const auto& mark) {
        return file.bytes.size() >= mark.size() && std::ranges::equal(mark, file.bytes.first(mark.size()));
    };
    return begins(kJpeg) ? PictureKind::jpeg : begins(kPng) ? PictureKind::png : PictureKind::tiff;
}

PictureKind kindByName(const std::string& path, PictureKind otherwise) {
    if (endsWith(path, ".tif") || endsWith(path, ".tiff")) return PictureKind::tiff;
    if (endsWith(path, ".jpg") || endsWith(path, ".jpeg")) return PictureKind::jpeg;
    if (endsWith(path, ".png")) return PictureKind::png;
    return otherwise;
}

std::unique_ptr<PictureReader> openPicture(const InputFile& file) {
    switch (pictureKind(file)) {
        case PictureKind::jpeg: return openJpeg(file);
        case PictureKind::png: return openPng(file);
        default: return std::make_unique<TiffReader>(file);
    }
}

std::unique_ptr<PictureWriter> newPicture(PictureKind kind, const std::string& path, NewFile& file,
                                          bool large, const JpegCoding& coding) {
    switch (kind) {
        case PictureKind::jpeg: return newJpeg(path, file, coding);
        case PictureKind::png: return newPng(path, file);
        default: return std::make_unique<TiffWriter>(path, file, large);
    }
}

void failToWrite(const std::string& path, NewFile& made, const std::string& reason) {
    if (made.hasFailed() && made.finish() != SaveResult::written) failWithReason(path, "cannot be written");
    failOn(path, "cannot be written (" + printable(reason) + ")");
}

void requirePixels(const InputFile& file, uint64_t width, uint64_t height, uint64_t bytesOfPixel,
                   uint64_t mostFromOneByte) {
    if (width > file.size * mostFromOneByte / bytesOfPixel / height)
        failOn(file.path, "cannot be read: it is too short for the " + grouped(width) + " x " + grouped(height) +
                              " pixels that it claims");
}

void readExif(Metadata& metadata) {
    const std::span<const uint8_t> exif = metadata.exif;
    if (exif.size() < 8 || exif[0] != exif[1] || (exif[0] != 'I' && exif[0] != 'M')) return;
    const ByteOrder order = exif[0] == 'I' ? ByteOrder::littleEndian : ByteOrder::bigEndian;
    ByteReader head(exif.subspan(4), order);
    const uint32_t at = head.u32();
    if (at > exif.size()) return;
    ByteReader entries(exif.subspan(at), order);
    for (int left = entries.u16(); left > 0 && entries.ok(); --left) {
        const uint16_t tag = entries.u16(), type = entries.u16();
        const uint32_t count = entries.u32();
        const auto value = entries.take(4);
        if (value.empty()) return;
        ByteReader number(value, order);
        if (tag == TIFFTAG_ORIENTATION && type == kShort && count == 1) metadata.orientation = number.u16();
        if (type != kAscii || std::ranges::find(kTexts, tag) == std::end(kTexts)) continue;
        const uint32_t offset = number.u32();
        std::span<const uint8_t> text = count <= 4 ? value.first(count) : std::span<const uint8_t>();
        if (count > 4 && offset <= exif.size() && count <= exif.size() - offset) text = exif.subspan(offset, count);
        const auto end = std::ranges::find(text, 0);
        if (end != text.begin()) metadata.texts.emplace_back(tag, std::string(text.begin(), end));
    }
}

std::vector<uint8_t> exifOf(const Metadata& metadata) {
    if (!metadata.exif.empty()) return metadata.exif;
    auto texts = metadata.texts;
    // Names of pages and documents belong to TIFF alone.
    std::erase_if(texts, [](const auto& one) {
        return one.first == TIFFTAG_DOCUMENTNAME || one.first == TIFFTAG_PAGENAME || one.first == TIFFTAG_HOSTCOMPUTER;
    });
    std::ranges::sort(texts);
    const bool isTurned = metadata.orientation > 1 && metadata.orientation <= 8;
    if (texts.empty() && !isTurned) return {};
    std::vector<uint8_t> block, data;
    ByteWriter out(block);
    const auto entries = static_cast<uint16_t>(texts.size() + (isTurned ? 1 : 0));
    const uint32_t after = 8 + 2 + 12u * entries + 4;
    out.append("MM");
    out.u16(42);
    out.u32(8);
    out.u16(entries);
    bool isDone = !isTurned;
    const auto orientation = [&] {
        isDone = true;
        out.u16(TIFFTAG_ORIENTATION);
        out.u16(kShort);
        out.u32(1);
        out.u16(metadata.orientation);
        out.u16(0);
    };
    for (const auto& [tag, text] : texts) {  // entries stand by rising tags
        if (!isDone && tag > TIFFTAG_ORIENTATION) orientation();
        const auto size = static_cast<uint32_t>(text.size() + 1);
        std::vector<uint8_t> bytes(std::max<size_t>((size + 1u) / 2 * 2, 4));  // with its zero
        std::ranges::copy(text, bytes.begin());
        out.u16(tag);
        out.u16(kAscii);
        out.u32(size);
        if (size <= 4) {
            out.append(bytes);
        } else {
            out.u32(after + static_cast<uint32_t>(data.size()));
            data.insert(data.end(), bytes.begin(), bytes.end());
        }
    }
    if (!isDone) orientation();
    out.u32(0);
    out.append(data);
    return block;
}

}  // namespace ko::cli
