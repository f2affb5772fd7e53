// Table files: text that people edit, or the raw words.
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>

#include "cmyk/cmyk.h"
#include "frame/file.h"
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

// Whether any of a line's bytes is one that no text holds.
bool holdsControl(std::string_view line) noexcept {
    return std::ranges::any_of(line, [](char character) {
        const auto byte = static_cast<uint8_t>(character);
        return (byte >= 1 && byte <= 8) || (byte >= 14 && byte <= 31);
    });
}

// A line as a string: up to a NUL, and no longer than the line buffer was.
std::string_view textOf(std::string_view line) noexcept {
    line = line.substr(0, kLineSize - 1);
    return line.substr(0, line.find('\0'));
}

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
    const FileReading reading = readWhole(path, kColourTableFiles);
    if (!reading) return 0;
    LineReader lines(reading.file.text());
    std::string_view line;
    for (;;) {
        if (!lines.next(line)) return platform::failFor(platform::Cause::damaged);  // of neither form
        if (holdsControl(line)) {
            const auto bytes = reading.file.bytes();  // of a cut file, the rest stays as it was
            std::memcpy(nodes.data(), bytes.data(), std::min(bytes.size(), nodes.size_bytes()));
            return 1;
        }
        if (isBeginData(textOf(line))) break;
    }
    while (lines.next(line)) takeLine<Form>(nodes, textOf(line));
    return 1;
}

template <class Form>
int32_t save(std::span<const uint32_t> nodes, const char* path) {
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
    return replaceWhole(path, kColourTableFiles, lines.text()) == SaveResult::written ? 1 : 0;
}

}  // namespace

int32_t loadCmykLut(CmykLut& table, const char* path) { return load<CmykForm>(table.nodes, path); }
int32_t loadRgbLut(RgbLut& table, const char* path) { return load<RgbForm>(table.nodes, path); }
int32_t saveCmykLut(const CmykLut& table, const char* path) { return save<CmykForm>(table.nodes, path); }
int32_t saveRgbLut(const RgbLut& table, const char* path) { return save<RgbForm>(table.nodes, path); }

}  // namespace ko::cmyk
