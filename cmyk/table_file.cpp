// Table files: text that people edit, or the raw words.
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <optional>
#include <span>
#include <string_view>

#include "cmyk/cmyk.h"
#include "frame/scan.h"
#include "frame/text.h"

namespace ko::cmyk {
namespace {

static_assert(std::endian::native == std::endian::little);  // raw words are read as they are

constexpr std::string_view kBeginData = "#begindata";
constexpr size_t kLineSize = 512;  // terminating NUL included

// What a file's nodes are: how many colours in and out, and how outputs are packed.
struct CmykForm {
    static constexpr size_t kInputs = 4, kOutputs = 4;
    static uint32_t pack(const int32_t* outputs) noexcept {
        return packCmyk(outputs[0], outputs[1], outputs[2], outputs[3]);
    }
    static uint32_t output(uint32_t word, size_t channel) noexcept {
        return word >> (24 - 8 * channel) & 255;
    }
};
struct RgbForm {
    static constexpr size_t kInputs = 3, kOutputs = 3;
    static uint32_t pack(const int32_t* outputs) noexcept {
        return packRgb(outputs[0], outputs[1], outputs[2]);
    }
    static uint32_t output(uint32_t word, size_t channel) noexcept { return word >> (8 * channel) & 255; }
};

// Lines of a file that may be binary: a line ends with LF, CR LF or CR, and tells whether any of
// its bytes is one that no text holds.
class TableLines {
public:
    explicit TableLines(File& file) noexcept : file_(file) {}

    bool next() noexcept {
        length_ = 0;
        control_ = false;
        if (begin_ == end_ && !fill()) return false;
        do {
            const uint8_t byte = buffer_[begin_++];
            if (byte == '\n') return true;
            if (byte == '\r') {
                if ((begin_ < end_ || fill()) && buffer_[begin_] == '\n') ++begin_;
                return true;
            }
            control_ |= (byte >= 1 && byte <= 8) || (byte >= 14 && byte <= 31);
            if (length_ < kLineSize - 1) line_[length_++] = static_cast<char>(byte);
        } while (begin_ < end_ || fill());
        return true;
    }
    bool holdsControl() const noexcept { return control_; }
    std::string_view text() const noexcept {  // up to a NUL: the line is a string
        const std::string_view line(line_, length_);
        return line.substr(0, line.find('\0'));
    }

private:
    bool fill() noexcept {
        begin_ = 0;
        end_ = file_.read(buffer_);
        return end_ > 0;
    }
    File& file_;
    size_t begin_ = 0, end_ = 0, length_ = 0;
    bool control_ = false;
    char line_[kLineSize];
    uint8_t buffer_[16384];
};

bool isBeginData(std::string_view line) noexcept {
    return std::ranges::equal(line, kBeginData, [](char a, char b) {
        return (a >= 'A' && a <= 'Z' ? static_cast<char>(a + 32) : a) == b;
    });
}

// A line's numbers, 0 where there is none. Blanks before the first count for nothing; what follows
// a number up to a separator is skipped, and any run of separators is one.
template <size_t Count>
std::array<int32_t, Count> numbersOf(std::string_view line) noexcept {
    constexpr std::string_view kSeparators = "\t ,";
    Scanner scanner(line);
    scanner.skip("\t ");
    std::array<int32_t, Count> numbers;
    for (int32_t& number : numbers) {
        number = scanner.integer();
        scanner.advanceTo(kSeparators);
        scanner.skip(kSeparators);
    }
    return numbers;
}

// The grid index of a level: 255 is the last, any other is that of its cell. Nothing for a level
// outside the grid.
std::optional<size_t> indexOf(int32_t level) noexcept {
    if (level < 0 || level > 255 + 15) return std::nullopt;
    return static_cast<size_t>(level + level / 255) / 16;
}
static_assert((255 + 15 + 1) / 16 == 16);

template <class Form>
void takeLine(std::span<uint32_t> nodes, std::string_view line) noexcept {
    const auto numbers = numbersOf<Form::kInputs + Form::kOutputs>(line);
    size_t node = 0;
    for (size_t axis = 0; axis < Form::kInputs; ++axis) {
        const auto index = indexOf(numbers[axis]);
        if (!index) return;
        node = node * kTableGridPoints + *index;
    }
    nodes[node] = Form::pack(numbers.data() + Form::kInputs);
}

template <class Form>
int32_t load(std::span<uint32_t> nodes, const char* path) {
    File file = File::openForReading(path, Sharing::reading);
    if (!file) return 0;
    TableLines lines(file);
    for (;;) {
        if (!lines.next()) return 0;  // of neither form
        if (lines.holdsControl()) {
            const std::span bytes(reinterpret_cast<uint8_t*>(nodes.data()), nodes.size_bytes());
            if (!file.seek(0)) return 0;
            const size_t filled = file.read(bytes);
            std::ranges::fill(bytes.subspan(filled), uint8_t{0});
            return 1;
        }
        if (isBeginData(lines.text())) break;
    }
    while (lines.next()) takeLine<Form>(nodes, lines.text());
    return 1;
}

template <class Form>
int32_t save(std::span<const uint32_t> nodes, const char* path) {
    File file = File::create(path);
    if (!file) return 0;
    LineWriter lines;
    lines.put(kBeginData);
    const uint32_t* node = nodes.data();
    grid::forEachNode<Form::kInputs>(kTableGridPoints, [&](const auto& indices) {
        const uint32_t word = *node++;
        char text[64];
        char* end = text;
        const auto add = [&](uint32_t number) {
            if (end != text) *end++ = '\t';
            end = std::to_chars(end, text + sizeof text, number).ptr;
        };
        for (const int32_t index : indices) add(static_cast<uint32_t>(tableLevel(index)));
        for (size_t channel = 0; channel < Form::kOutputs; ++channel) add(Form::output(word, channel));
        lines.put({text, end});
    });
    return lines.writeTo(file) ? 1 : 0;
}

}  // namespace

int32_t loadCmykLut(CmykLut& table, const char* path) { return load<CmykForm>(table.nodes, path); }
int32_t loadRgbLut(RgbLut& table, const char* path) { return load<RgbForm>(table.nodes, path); }
int32_t saveCmykLut(const CmykLut& table, const char* path) { return save<CmykForm>(table.nodes, path); }
int32_t saveRgbLut(const RgbLut& table, const char* path) { return save<RgbForm>(table.nodes, path); }

}  // namespace ko::cmyk
