// Table files: text that people edit, or the raw words.
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <span>
#include <string_view>

#include "frame/ascii.h"
#include "frame/colour_words.h"
#include "frame/file.h"
#include "table/table.h"
#include "table/text.h"

namespace ko::table {
namespace {

static_assert(std::endian::native == std::endian::little);  // raw words are read as they are

constexpr std::string_view kBeginData = "#begindata";

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
    static uint32_t output(uint32_t word, size_t channel) noexcept {
        return word >> (8 * channel) & 255;
    }
};

// Whether any of a line's bytes is one that no text holds.
bool holdsControl(std::string_view line) noexcept {
    return std::ranges::any_of(line, [](char character) {
        const auto byte = static_cast<uint8_t>(character);
        return (byte >= 1 && byte <= 8) || (byte >= 14 && byte <= 31);
    });
}

}  // namespace

std::string_view countedPart(std::string_view line) noexcept {
    line = line.substr(0, kLineSize - 1);
    return line.substr(0, line.find('\0'));
}

bool isStart(std::string_view line) noexcept {
    return sameIgnoringCase(countedPart(line), kBeginData);
}

FileForm formOf(LineReader& lines) noexcept {
    for (std::string_view line; lines.next(line);) {
        if (holdsControl(line)) return FileForm::binary;
        if (isStart(line)) return FileForm::text;
    }
    return FileForm::neither;
}

Numbers::Number Numbers::next() noexcept {
    constexpr std::string_view kSeparators = "\t ,";
    const std::string_view rest = scanner_.rest();
    const int32_t value = scanner_.integer();
    scanner_.advanceTo(kSeparators);
    const std::string_view text = rest.substr(0, rest.size() - scanner_.rest().size());
    scanner_.skip(kSeparators);
    return {value, text};
}

std::optional<size_t> indexOf(int32_t level) noexcept {
    if (level < 0 || level > 255 + 15) return std::nullopt;
    return static_cast<size_t>(level + level / 255) / 16;
}
static_assert((255 + 15 + 1) / 16 == 16);

namespace {

template <class Form>
void takeLine(std::span<uint32_t> nodes, std::string_view line) noexcept {
    Numbers numbers(line);
    size_t node = 0;
    for (size_t axis = 0; axis < Form::kInputs; ++axis) {
        const auto index = indexOf(numbers.next().value);
        if (!index) return;
        node = node * kGridPoints + *index;
    }
    int32_t outputs[Form::kOutputs];
    for (int32_t& output : outputs) output = numbers.next().value;
    nodes[node] = Form::pack(outputs);
}

template <class Form>
bool readNodes(std::span<uint32_t> nodes, std::string_view file) noexcept {
    LineReader lines(file);
    switch (formOf(lines)) {
        case FileForm::neither: return platform::failFor(platform::Cause::damaged);
        case FileForm::binary:  // of a cut file, the rest stays as it was
            std::memcpy(nodes.data(), file.data(), std::min(file.size(), nodes.size_bytes()));
            return true;
        case FileForm::text: break;
    }
    for (std::string_view line; lines.next(line);) takeLine<Form>(nodes, countedPart(line));
    return true;
}

template <class Table>
bool loadFrom(Table& table, const char* path) {
    const FileReading reading = readWhole(path, kColourTableFiles);
    return reading && read(table, reading.file.text());
}

template <class Form>
std::string textOfNodes(std::span<const uint32_t> nodes) {
    LineWriter lines;
    lines.put(kBeginData);
    const uint32_t* node = nodes.data();
    grid::forEachNode<Form::kInputs>(kGridPoints, [&](const auto& indices) {
        const uint32_t word = *node++;
        char text[64];
        char* end = text;
        const auto add = [&](uint32_t number) {
            if (end != text) *end++ = '\t';
            end = std::to_chars(end, text + sizeof text, number).ptr;
        };
        for (const int32_t index : indices) add(static_cast<uint32_t>(levelOf(index)));
        for (size_t channel = 0; channel < Form::kOutputs; ++channel)
            add(Form::output(word, channel));
        lines.put({text, end});
    });
    return std::string(lines.text());
}

template <class Table>
bool saveText(const Table& table, const char* path) {
    return replaceWhole(path, kColourTableFiles, text(table)) == SaveResult::written;
}

}  // namespace

bool read(CmykLut& table, std::string_view file) noexcept {
    return readNodes<CmykForm>(table.nodes, file);
}
bool read(RgbLut& table, std::string_view file) noexcept {
    return readNodes<RgbForm>(table.nodes, file);
}
bool load(CmykLut& table, const char* path) { return loadFrom(table, path); }
bool load(RgbLut& table, const char* path) { return loadFrom(table, path); }
std::string text(const CmykLut& table) { return textOfNodes<CmykForm>(table.nodes); }
std::string text(const RgbLut& table) { return textOfNodes<RgbForm>(table.nodes); }
bool save(const CmykLut& table, const char* path) { return saveText(table, path); }
bool save(const RgbLut& table, const char* path) { return saveText(table, path); }

}  // namespace ko::table
