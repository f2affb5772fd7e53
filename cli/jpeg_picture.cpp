// JPEG pictures by libjpeg, in rows. It leaves a call that fails by longjmp, so that every call goes
// through a function without anything to destroy, and what it says is kept in a fixed field.
#include <csetjmp>
#include <cstdio>  // jpeglib.h needs it

#include <jpeglib.h>

#include <jerror.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "cli/errors.h"
#include "cli/picture.h"
#include "cli/text.h"
#include "frame/bytes.h"

namespace ko::cli {
namespace {

constexpr size_t kBuffer = 65536;
constexpr size_t kMostOfMarker = 65533;
constexpr int kMostScans = 500;
// What a progressive picture's coefficients may take: they are kept whole.
constexpr uint64_t kMostCoefficients = uint64_t{1} << 31;
constexpr std::string_view kExifMark("Exif\0\0", 6), kXmpMark("http://ns.adobe.com/xap/1.0/\0", 29),
    kResourceMark("Photoshop 3.0\0", 14);
constexpr uint16_t kResolutionResource = 0x3ed;

struct Errors {
    jpeg_error_mgr manager;  // first: the library hands back its address
    std::jmp_buf jump;
    char said[JMSG_LENGTH_MAX];
};

Errors& errorsOf(j_common_ptr info) { return *reinterpret_cast<Errors*>(info->err); }

[[noreturn]] void leave(j_common_ptr info) {
    Errors& errors = errorsOf(info);
    if (errors.said[0] == 0) errors.manager.format_message(info, errors.said);
    std::longjmp(errors.jump, 1);
}

// What the library would go over with grey pixels is damage.
void look(j_common_ptr info, int level) {
    if (level >= 0) return;
    switch (info->err->msg_code) {
        case JWRN_HIT_MARKER: case JWRN_HUFF_BAD_CODE: case JWRN_JPEG_EOF: case JWRN_MUST_RESYNC:
        case JWRN_ARITH_BAD_CODE: leave(info);
        default: ++info->err->num_warnings;
    }
}
void sayNothing(j_common_ptr) {}

jpeg_error_mgr* prepared(Errors& errors) {
    jpeg_std_error(&errors.manager);
    errors.manager.error_exit = leave;
    errors.manager.emit_message = look;
    errors.manager.output_message = sayNothing;
    errors.said[0] = 0;
    return &errors.manager;
}

struct Source {
    jpeg_source_mgr manager;  // first, as above
    std::FILE* file;
    uint32_t failure;  // of reading, as errno has it
    std::array<JOCTET, kBuffer> buffer;
};
Source& sourceOf(j_decompress_ptr info) { return *reinterpret_cast<Source*>(info->src); }

void doNothing(j_decompress_ptr) {}
boolean fill(j_decompress_ptr info) {
    Source& source = sourceOf(info);
    errno = 0;
    const size_t got = std::fread(source.buffer.data(), 1, source.buffer.size(), source.file);
    if (got == 0) {
        if (std::ferror(source.file)) source.failure = static_cast<uint32_t>(errno ? errno : EIO);
        std::snprintf(errorsOf(reinterpret_cast<j_common_ptr>(info)).said, JMSG_LENGTH_MAX, "it ends early");
        leave(reinterpret_cast<j_common_ptr>(info));
    }
    source.manager.next_input_byte = source.buffer.data();
    source.manager.bytes_in_buffer = got;
    return TRUE;
}
void skip(j_decompress_ptr info, long count) {
    jpeg_source_mgr& source = *info->src;
    while (count > static_cast<long>(source.bytes_in_buffer)) {
        count -= static_cast<long>(source.bytes_in_buffer);
        fill(info);
    }
    if (count <= 0) return;
    source.next_input_byte += count;
    source.bytes_in_buffer -= static_cast<size_t>(count);
}

// A small file can hold scan after scan over all pixels.
void countScans(j_common_ptr info) {
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number <= kMostScans) return;
    std::snprintf(errorsOf(info).said, JMSG_LENGTH_MAX, "it has too many scans");
    leave(info);
}

template <class Work>
bool isDone(Errors& errors, Work&& work) {
    if (setjmp(errors.jump) != 0) return false;
    work();
    return true;
}

int estimatedQuality(const jpeg_decompress_struct& info) {
    const int number = info.comp_info[0].quant_tbl_no;  // as the file has it
    const JQUANT_TBL* const table = number >= 0 && number < NUM_QUANT_TBLS ? info.quant_tbl_ptrs[number] : nullptr;
    if (!table) return JpegCoding().quality;
    jpeg_compress_struct scale;
    Errors errors;
    scale.err = prepared(errors);
    int best = JpegCoding().quality;
    const bool isMade = isDone(errors, [&] { jpeg_create_compress(&scale); });
    int64_t least = INT64_MAX;
    for (int quality = 1; isMade && quality <= 100; ++quality) {
        if (!isDone(errors, [&] { jpeg_set_quality(&scale, quality, TRUE); })) break;
        int64_t off = 0;
        for (int at = 0; at < DCTSIZE2; ++at)
            off += std::abs(int64_t{table->quantval[at]} - int64_t{scale.quant_tbl_ptrs[0]->quantval[at]});
        if (off < least) {
            least = off;
            best = quality;
        }
    }
    if (isMade) jpeg_destroy_compress(&scale);
    return best;
}

// CMYK pictures have no JFIF mark, and their resolution among Photoshop's resources.
std::optional<std::pair<double, double>> resolutionIn(std::span<const uint8_t> resources) {
    ByteReader in(resources);
    while (in.remaining() >= 12 && in.u32() == fourcc("8BIM")) {
        const uint16_t number = in.u16();
        const uint8_t length = in.u8();
        in.skip(length | 1u);  // the name, whose length counts and is even with its own byte
        const uint32_t size = in.u32();
        if (number != kResolutionResource || size < 16) {
            in.skip(size_t{size} + (size & 1));
            continue;
        }
        const uint32_t x = in.u32();
        in.skip(4);
        const uint32_t y = in.u32();
        if (!in.ok() || x == 0 || y == 0) return std::nullopt;
        return std::pair(x / 65536.0, y / 65536.0);
    }
    return std::nullopt;
}

class JpegReader final : public PictureReader {
public:
    explicit JpegReader(const InputFile& file) : file_(file) {
        std::memset(&info_, 0, sizeof info_);
        info_.err = prepared(errors_);
        source_.file = std::fopen(file.path.c_str(), "rbe");
        if (!source_.file) failOn(file.path, "cannot be read: " + system::errorText(static_cast<uint32_t>(errno)));
        try {
            start();
        } catch (...) {
            end();
            throw;
        }
    }
    ~JpegReader() override { end(); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    std::vector<uint8_t> profile() const override { return profile_; }
    Metadata metadata() const override { return metadata_; }
    std::optional<JpegCoding> coding() const override { return coding_; }
    void read(uint32_t, uint8_t* pixels) override {
        JDIMENSION got = 0;
        JSAMPROW row = pixels;
        call([&] { got = jpeg_read_scanlines(&info_, &row, 1); });
        if (got != 1) failOn(file_.path, "cannot be read: it ends early");
        if (isInverted_)
            for (size_t at = 0; at < size_t{page_.width} * 4; ++at) pixels[at] = static_cast<uint8_t>(~pixels[at]);
    }
    void finish() override {
        call([&] { jpeg_finish_decompress(&info_); });
    }

private:
    template <class Work>
    void call(Work&& work) {
        if (isDone(errors_, work)) return;
        if (source_.failure != 0) failOn(file_.path, "cannot be read: " + system::errorText(source_.failure));
        failOn(file_.path, "cannot be read: " + printable(errors_.said));
    }
    void end() noexcept {
        jpeg_destroy_decompress(&info_);
        if (source_.file) std::fclose(source_.file);
        source_.file = nullptr;
    }
    void start() {
        call([&] { jpeg_create_decompress(&info_); });
        source_.failure = 0;
        source_.manager = {nullptr, 0, doNothing, fill, skip, jpeg_resync_to_restart, doNothing};
        info_.src = &source_.manager;
        progress_ = {};
        progress_.progress_monitor = countScans;
        info_.progress = &progress_;
        call([&] {
            for (const int number : {1, 2, 13}) jpeg_save_markers(&info_, JPEG_APP0 + number, 0xffff);
            jpeg_read_header(&info_, TRUE);
        });
        page_.width = info_.image_width;
        page_.height = info_.image_height;
        page_.bits = 8;
        page_.compression = COMPRESSION_JPEG;
        switch (info_.jpeg_color_space) {
            case JCS_GRAYSCALE: page_.space = ColourSpace::grey; info_.out_color_space = JCS_GRAYSCALE; break;
            case JCS_YCbCr:
            case JCS_RGB: page_.space = ColourSpace::rgb; info_.out_color_space = JCS_RGB; break;
            case JCS_CMYK:
            case JCS_YCCK: page_.space = ColourSpace::cmyk; info_.out_color_space = JCS_CMYK; break;
            default: failOn(file_.path, "is neither an RGB, a CMYK nor a grey picture");
        }
        page_.samples = static_cast<uint16_t>(channelsOf(page_.space));
        // Whoever leaves Adobe's mark writes 0 for full ink.
        isInverted_ = page_.space == ColourSpace::cmyk && info_.saw_Adobe_marker;
        const uint64_t pixels = uint64_t{page_.width} * page_.height;
        requirePixels(file_, page_.width, page_.height, page_.samples, 4096);
        if (jpeg_has_multiple_scans(&info_) && pixels * page_.samples * sizeof(JCOEF) > kMostCoefficients)
            failOn(file_.path, "is progressive, and too large to be held in memory");
        coding_.quality = estimatedQuality(info_);
        if (info_.num_components == 3) {
            coding_.horizontal = info_.comp_info[0].h_samp_factor / std::max(info_.comp_info[1].h_samp_factor, 1);
            coding_.vertical = info_.comp_info[0].v_samp_factor / std::max(info_.comp_info[1].v_samp_factor, 1);
        }
        takeMarkers();
        call([&] { jpeg_start_decompress(&info_); });
    }
    void takeMarkers() {
        for (const jpeg_marker_struct* marker = info_.marker_list; marker; marker = marker->next) {
            const std::span<const uint8_t> data(marker->data, marker->data_length);
            const auto takes = [&](int number, std::string_view mark, std::vector<uint8_t>& to) {
                if (marker->marker != JPEG_APP0 + number || data.size() < mark.size() ||
                    std::memcmp(data.data(), mark.data(), mark.size()) != 0)
                    return;
                to.insert(to.end(), data.begin() + static_cast<ptrdiff_t>(mark.size()), data.end());
            };
            if (metadata_.exif.empty()) takes(1, kExifMark, metadata_.exif);
            if (metadata_.xmp.empty()) takes(1, kXmpMark, metadata_.xmp);
            takes(13, kResourceMark, metadata_.resources);
        }
        JOCTET* icc = nullptr;
        unsigned size = 0;
        boolean has = FALSE;
        call([&] { has = jpeg_read_icc_profile(&info_, &icc, &size); });
        const std::unique_ptr<JOCTET, decltype(&std::free)> owner(icc, std::free);
        if (has) profile_.assign(icc, icc + size);
        readExif(metadata_);
        if (info_.saw_JFIF_marker && info_.density_unit != 0 && info_.X_density > 0 && info_.Y_density > 0) {
            const double inch = info_.density_unit == 2 ? 2.54 : 1;
            metadata_.xResolution = info_.X_density * inch;
            metadata_.yResolution = info_.Y_density * inch;
        } else if (const auto found = resolutionIn(metadata_.resources)) {
            metadata_.xResolution = found->first;
            metadata_.yResolution = found->second;
        }
    }
    const InputFile& file_;
    Errors errors_;
    Source source_{};
    jpeg_progress_mgr progress_;
    jpeg_decompress_struct info_;
    Metadata metadata_;
    std::vector<uint8_t> profile_;
    JpegCoding coding_;
    bool isInverted_ = false;
};

struct Target {
    jpeg_destination_mgr manager;  // first, as above
    NewFile* file;
    std::array<JOCTET, kBuffer> buffer;
};
Target& targetOf(j_compress_ptr info) { return *reinterpret_cast<Target*>(info->dest); }

void rewind(j_compress_ptr info) {
    Target& target = targetOf(info);
    target.manager.next_output_byte = target.buffer.data();
    target.manager.free_in_buffer = target.buffer.size();
}
boolean empty(j_compress_ptr info) {
    Target& target = targetOf(info);
    if (!target.file->write(std::span<const uint8_t>(target.buffer))) leave(reinterpret_cast<j_common_ptr>(info));
    rewind(info);
    return TRUE;
}
void flush(j_compress_ptr info) {
    Target& target = targetOf(info);
    const size_t size = target.buffer.size() - target.manager.free_in_buffer;
    if (!target.file->write(std::span<const uint8_t>(target.buffer).first(size)))
        leave(reinterpret_cast<j_common_ptr>(info));
}

class JpegWriter final : public PictureWriter {
public:
    JpegWriter(const std::string& path, NewFile& file, const JpegCoding& coding)
        : path_(path), file_(file), coding_(coding) {
        std::memset(&info_, 0, sizeof info_);
        info_.err = prepared(errors_);
        target_.manager = {nullptr, 0, rewind, empty, flush};
        target_.file = &file;
    }
    ~JpegWriter() override { jpeg_destroy_compress(&info_); }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

    void beginPage(const NewPage& page, const PictureReader& from) override {
        const Metadata metadata = from.metadata();
        isInk_ = page.space == ColourSpace::cmyk;
        values_ = size_t{page.width} * static_cast<size_t>(channelsOf(page.space));
        call([&] {
            jpeg_create_compress(&info_);
            info_.dest = &target_.manager;
            info_.image_width = page.width;
            info_.image_height = page.height;
            info_.input_components = channelsOf(page.space);
            info_.in_color_space = isInk_ ? JCS_CMYK : page.space == ColourSpace::rgb ? JCS_RGB : JCS_GRAYSCALE;
            jpeg_set_defaults(&info_);
            jpeg_set_quality(&info_, coding_.quality, TRUE);
            if (page.space == ColourSpace::rgb) {
                info_.comp_info[0].h_samp_factor = coding_.horizontal;
                info_.comp_info[0].v_samp_factor = coding_.vertical;
            }
            if (metadata.xResolution > 0) {
                info_.density_unit = 1;
                info_.X_density = density(metadata.xResolution);
                info_.Y_density = density(metadata.yResolution);
            }
            jpeg_start_compress(&info_, TRUE);
        });
        put(1, kExifMark, exifOf(metadata));
        put(1, kXmpMark, metadata.xmp);
        put(13, kResourceMark, resourcesOf(metadata));
        if (page.profile.empty()) return;
        call([&] { jpeg_write_icc_profile(&info_, page.profile.data(), static_cast<unsigned>(page.profile.size())); });
    }
    void write(uint32_t, uint8_t* pixels) override {
        if (isInk_)  // as its mark says, which the library leaves
            for (size_t at = 0; at < values_; ++at) pixels[at] = static_cast<uint8_t>(~pixels[at]);
        JSAMPROW row = pixels;
        call([&] { jpeg_write_scanlines(&info_, &row, 1); });
    }
    void finish() override {
        call([&] { jpeg_finish_compress(&info_); });
    }

private:
    template <class Work>
    void call(Work&& work) {
        if (!isDone(errors_, work)) failToWrite(path_, file_, errors_.said);
    }
    static uint16_t density(double value) { return static_cast<uint16_t>(std::clamp(value + 0.5, 1.0, 65535.0)); }
    void put(int number, std::string_view mark, std::span<const uint8_t> data) {
        // A block that no marker holds is left out: there is no other place for it.
        if (data.empty() || data.size() > kMostOfMarker - mark.size()) return;
        std::vector<uint8_t> block(mark.begin(), mark.end());
        block.insert(block.end(), data.begin(), data.end());
        call([&] { jpeg_write_marker(&info_, JPEG_APP0 + number, block.data(), static_cast<unsigned>(block.size())); });
    }
    std::vector<uint8_t> resourcesOf(const Metadata& metadata) const {
        std::vector<uint8_t> block = metadata.resources;
        if (!isInk_ || metadata.xResolution <= 0 || resolutionIn(block)) return block;
        ByteWriter out(block);
        out.append("8BIM");
        out.u16(kResolutionResource);
        out.u16(0);
        out.u32(16);
        for (const double value : {metadata.xResolution, metadata.yResolution}) {
            out.u32(static_cast<uint32_t>(std::clamp(value, 1.0, 65535.0) * 65536 + 0.5));
            out.u16(1);
            out.u16(1);
        }
        return block;
    }

    const std::string& path_;
    NewFile& file_;
    JpegCoding coding_;
    Errors errors_;
    Target target_;
    jpeg_compress_struct info_;
    bool isInk_ = false;
    size_t values_ = 0;
};

}  // namespace

std::unique_ptr<PictureReader> openJpeg(const InputFile& file) { return std::make_unique<JpegReader>(file); }

std::unique_ptr<PictureWriter> newJpeg(const std::string& path, NewFile& file, const JpegCoding& coding) {
    return std::make_unique<JpegWriter>(path, file, coding);
}

}  // namespace ko::cli
