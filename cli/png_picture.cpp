// PNG pictures by libpng, in rows; it leaves a call that fails by longjmp, as libjpeg does.
#include <png.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>

#include "cli/errors.h"
#include "cli/picture.h"
#include "cli/text.h"

namespace ko::cli {
namespace {

constexpr char kXmpKey[] = "XML:com.adobe.xmp";
constexpr double kInch = 0.0254;
// What an interlaced picture may take: its rows come in seven passes, and are kept whole.
constexpr uint64_t kMostInterlaced = uint64_t{1} << 30;

struct State {
    std::jmp_buf jump;
    char said[200];
    std::FILE* input;
    uint32_t failure;  // of reading, as errno has it
    NewFile* output;
};

[[noreturn]] void leave(png_structp png, png_const_charp text) {
    State& state = *static_cast<State*>(png_get_error_ptr(png));
    if (state.said[0] == 0) std::snprintf(state.said, sizeof state.said, "%s", text);
    std::longjmp(state.jump, 1);
}
void sayNothing(png_structp, png_const_charp) {}

void take(png_structp png, png_bytep to, size_t size) {
    State& state = *static_cast<State*>(png_get_io_ptr(png));
    errno = 0;
    if (std::fread(to, 1, size, state.input) == size) return;
    if (std::ferror(state.input)) state.failure = static_cast<uint32_t>(errno ? errno : EIO);
    png_error(png, "it ends early");
}
void give(png_structp png, png_bytep from, size_t size) {
    if (!static_cast<State*>(png_get_io_ptr(png))->output->write(std::span<const uint8_t>(from, size)))
        png_error(png, "it cannot be written");
}
void flush(png_structp) {}

template <class Work>
bool isDone(State& state, Work&& work) {
    if (setjmp(state.jump) != 0) return false;
    work();
    return true;
}

class PngReader final : public PictureReader {
public:
    explicit PngReader(const InputFile& file) : file_(file) {
        state_.input = std::fopen(file.path.c_str(), "rbe");
        if (!state_.input) failOn(file.path, "cannot be read: " + system::errorText(static_cast<uint32_t>(errno)));
        try {
            start();
        } catch (...) {
            end();
            throw;
        }
    }
    ~PngReader() override { end(); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    std::vector<uint8_t> profile() const override { return profile_; }
    Metadata metadata() const override { return metadata_; }
    void read(uint32_t row, uint8_t* pixels) override {
        if (whole_.empty()) return call([&] { png_read_row(png_, pixels, nullptr); });
        std::memcpy(pixels, &whole_[row * rowBytes_], rowBytes_);
    }
    void finish() override {
        call([&] { png_read_end(png_, nullptr); });
    }

private:
    template <class Work>
    void call(Work&& work) {
        if (isDone(state_, work)) return;
        if (state_.failure != 0) failOn(file_.path, "cannot be read: " + system::errorText(state_.failure));
        failOn(file_.path, "cannot be read: " + printable(state_.said));
    }
    void end() noexcept {
        png_destroy_read_struct(&png_, &info_, nullptr);
        if (state_.input) std::fclose(state_.input);
        state_.input = nullptr;
    }
    void start() {
        call([&] {
            png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &state_, leave, sayNothing);
            if (png_) info_ = png_create_info_struct(png_);
        });
        if (!png_ || !info_) throw std::bad_alloc();
        call([&] {
            png_set_read_fn(png_, &state_, take);
            // A profile that is damaged is no missing one.
            png_set_crc_action(png_, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
            png_set_user_limits(png_, 0x7fffffff, 0x7fffffff);
            png_read_info(png_, info_);
        });
        page_.width = png_get_image_width(png_, info_);
        page_.height = png_get_image_height(png_, info_);
        page_.bits = png_get_bit_depth(png_, info_) == 16 ? 16 : 8;
        const int type = png_get_color_type(png_, info_);
        page_.space = type & PNG_COLOR_MASK_COLOR ? ColourSpace::rgb : ColourSpace::grey;
        page_.samples = static_cast<uint16_t>(channelsOf(page_.space));
        // Samples of one bit and more, packed eight to a byte, and alpha while it is decoded.
        requirePixels(file_, page_.width, page_.height, 1, 8 * 1032);
        takeMetadata();
        int passes = 1;
        call([&] {
            png_set_expand(png_);
            png_set_strip_alpha(png_);
            if (page_.bits == 16 && std::endian::native == std::endian::little) png_set_swap(png_);
            passes = png_set_interlace_handling(png_);
            png_read_update_info(png_, info_);
            rowBytes_ = png_get_rowbytes(png_, info_);
        });
        if (rowBytes_ != size_t{page_.width} * page_.samples * (page_.bits / 8u))
            failOn(file_.path, "cannot be read: its rows are not what its header says");
        if (passes == 1) return;
        if (uint64_t{rowBytes_} * page_.height > kMostInterlaced)
            failOn(file_.path, "is interlaced, and too large to be held in memory");
        whole_.resize(rowBytes_ * page_.height);
        for (int pass = 0; pass < passes; ++pass)
            for (uint32_t row = 0; row < page_.height; ++row) {
                uint8_t* const to = &whole_[row * rowBytes_];
                call([&] { png_read_row(png_, to, nullptr); });
            }
    }
    void takeMetadata() {
        png_uint_32 x = 0, y = 0, size = 0;
        int unit = 0, compression = 0, texts = 0;
        png_charp name = nullptr;
        png_bytep icc = nullptr, exif = nullptr;
        png_textp text = nullptr;
        call([&] {
            png_get_iCCP(png_, info_, &name, &compression, &icc, &size);
            png_get_pHYs(png_, info_, &x, &y, &unit);
            png_get_text(png_, info_, &text, &texts);
        });
        if (icc) profile_.assign(icc, icc + size);
        if (unit == PNG_RESOLUTION_METER && x > 0 && y > 0) {
            // Whole dots a metre: what is all but whole dots an inch was those.
            const auto inches = [](png_uint_32 value) {
                const double dots = value * kInch, whole = static_cast<double>(static_cast<int64_t>(dots + 0.5));
                return dots - whole < 0.02 && whole - dots < 0.02 ? whole : dots;
            };
            metadata_.xResolution = inches(x);
            metadata_.yResolution = inches(y);
        }
        for (int at = 0; at < texts; ++at) {
            const std::string_view key(text[at].key);
            const size_t length = std::max(text[at].text_length, text[at].itxt_length);
            const auto* const bytes = reinterpret_cast<const uint8_t*>(text[at].text);
            if (key == kXmpKey && bytes && metadata_.xmp.empty()) metadata_.xmp.assign(bytes, bytes + length);
        }
        size = 0;
        call([&] { png_get_eXIf_1(png_, info_, &size, &exif); });
        if (exif) metadata_.exif.assign(exif, exif + size);
        readExif(metadata_);
    }

    const InputFile& file_;
    State state_{};
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    size_t rowBytes_ = 0;
    std::vector<uint8_t> whole_;  // of an interlaced picture
    Metadata metadata_;
    std::vector<uint8_t> profile_;
};

class PngWriter final : public PictureWriter {
public:
    PngWriter(const std::string& path, NewFile& file) : path_(path), file_(file) { state_.output = &file; }
    ~PngWriter() override { png_destroy_write_struct(&png_, &info_); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void beginPage(const NewPage& page, const PictureReader& from) override {
        const Metadata metadata = from.metadata();
        std::vector<uint8_t> exif = exifOf(metadata);
        std::string xmp(metadata.xmp.begin(), metadata.xmp.end()), key = kXmpKey;
        std::array<char, 1> none = {};
        png_text text = {};
        text.compression = PNG_ITXT_COMPRESSION_NONE;
        text.key = key.data();
        text.text = xmp.data();
        text.itxt_length = xmp.size();
        text.lang = text.lang_key = none.data();
        call([&] {
            png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &state_, leave, sayNothing);
            if (png_) info_ = png_create_info_struct(png_);
        });
        if (!png_ || !info_) throw std::bad_alloc();
        call([&] {
            png_set_write_fn(png_, &state_, give, flush);
            png_set_user_limits(png_, 0x7fffffff, 0x7fffffff);
            png_set_IHDR(png_, info_, page.width, page.height, page.bits,
                         page.space == ColourSpace::rgb ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY,
                         PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            if (!page.profile.empty())
                png_set_iCCP(png_, info_, "ICC", PNG_COMPRESSION_TYPE_BASE, page.profile.data(),
                             static_cast<png_uint_32>(page.profile.size()));
            if (metadata.xResolution > 0)
                png_set_pHYs(png_, info_, metres(metadata.xResolution), metres(metadata.yResolution), PNG_RESOLUTION_METER);
            if (!exif.empty()) png_set_eXIf_1(png_, info_, static_cast<png_uint_32>(exif.size()), exif.data());
            if (!xmp.empty()) png_set_text(png_, info_, &text, 1);
            png_write_info(png_, info_);
            if (page.bits == 16 && std::endian::native == std::endian::little) png_set_swap(png_);
        });
    }
    void write(uint32_t, uint8_t* pixels) override {
        call([&] { png_write_row(png_, pixels); });
    }
    void finish() override {
        call([&] { png_write_end(png_, nullptr); });
    }

private:
    template <class Work>
    void call(Work&& work) {
        if (!isDone(state_, work)) failToWrite(path_, file_, state_.said);
    }
    static png_uint_32 metres(double inch) {
        return static_cast<png_uint_32>(std::clamp(inch / kInch + 0.5, 1.0, 2147483647.0));
    }

    const std::string& path_;
    NewFile& file_;
    State state_{};
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

}  // namespace

std::unique_ptr<PictureReader> openPng(const InputFile& file) { return std::make_unique<PngReader>(file); }

std::unique_ptr<PictureWriter> newPng(const std::string& path, NewFile& file) {
    return std::make_unique<PngWriter>(path, file);
}

}  // namespace ko::cli
