#include "tests/support/profiles.h"

#include <cstring>

namespace ko::test {
namespace {

void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

size_t power(size_t base, int exponent) {
    size_t result = 1;
    while (exponent-- > 0) result *= base;
    return result;
}

}  // namespace

Bytes element(std::string_view type, const Bytes& contents) {
    Bytes bytes;
    test::append(bytes, type);
    append32(bytes, 0);
    append(bytes, contents);
    return bytes;
}

Bytes xyzElement(uint32_t x, uint32_t y, uint32_t z) {
    Bytes contents;
    for (const uint32_t value : {x, y, z}) append32(contents, value);
    return element("XYZ ", contents);
}

Bytes curveElement(const std::vector<uint16_t>& entries) {
    Bytes contents;
    append32(contents, static_cast<uint32_t>(entries.size()));
    for (const uint16_t entry : entries) append16(contents, entry);
    return element("curv", contents);
}

Bytes descriptionElement(std::string_view text) {
    Bytes contents;
    append32(contents, static_cast<uint32_t>(text.size() + 1));
    test::append(contents, text);
    contents.resize(contents.size() + 1 + 78);
    return element("desc", contents);
}

Bytes textElement(std::string_view text) {
    Bytes contents(text.begin(), text.end());
    contents.push_back(0);
    return element("text", contents);
}

Bytes LutElement::bytes() const {
    Bytes contents = {inputs, outputs, gridPoints, 0};
    for (int at = 0; at < 9; ++at) append32(contents, at % 4 == 0 ? 0x10000 : 0);
    const size_t entriesIn = wide ? inputEntries : 256, entriesOut = wide ? outputEntries : 256;
    if (wide) {
        append16(contents, inputEntries);
        append16(contents, outputEntries);
    }
    std::mt19937 random(seed.value_or(0));
    const auto put = [&](size_t step, size_t steps) {  // step / steps of the scale
        const size_t top = wide ? 65535 : 255;
        const auto value = static_cast<uint32_t>(
            seed ? random() & top : steps == 0 ? 0 : (step * top + steps / 2) / steps);
        if (wide) append16(contents, value);
        else contents.push_back(static_cast<uint8_t>(value));
    };
    for (int channel = 0; channel < inputs; ++channel)
        for (size_t at = 0; at < entriesIn; ++at) put(at, entriesIn - 1);
    for (size_t node = 0; node < power(gridPoints, inputs); ++node)
        for (int channel = 0; channel < outputs; ++channel) {
            const int from = inputs == 0 ? 0 : inputs - 1 - channel % inputs;
            put(node / power(gridPoints, from) % gridPoints, gridPoints - 1u);
        }
    for (int channel = 0; channel < outputs; ++channel)
        for (size_t at = 0; at < entriesOut; ++at) put(at, entriesOut - 1);
    return element(wide ? "mft2" : "mft1", contents);
}

Bytes profileHeader(std::string_view deviceClass, std::string_view colourSpace,
                    std::string_view connectionSpace) {
    Bytes bytes(128);
    const auto put = [&](size_t at, std::string_view text) {
        std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    };
    put(4, "test");
    put32(bytes, 8, 0x02100000);
    put(12, deviceClass);
    put(16, colourSpace);
    put(20, connectionSpace);
    const uint8_t dateTime[] = {0x07, 0xd1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6};  // 2001-02-03 04:05:06
    std::copy(std::begin(dateTime), std::end(dateTime), bytes.begin() + 24);
    put(36, "acspMSFT");
    put(48, "makrmodl");
    put32(bytes, 68, 0xf6d6);
    put32(bytes, 72, 0x10000);
    put32(bytes, 76, 0xd32d);
    put(80, "crea");
    return bytes;
}

Bytes profileBytes(const std::vector<Tag>& tags, const Bytes& header) {
    Bytes bytes = header;
    append32(bytes, static_cast<uint32_t>(tags.size()));
    auto offset = static_cast<uint32_t>(bytes.size() + tags.size() * 12);
    for (const Tag& tag : tags) {
        test::append(bytes, tag.signature);
        append32(bytes, offset);
        append32(bytes, static_cast<uint32_t>(tag.element.size()));
        offset += static_cast<uint32_t>((tag.element.size() + 3) / 4 * 4);
    }
    for (const Tag& tag : tags) {
        append(bytes, tag.element);
        bytes.resize((bytes.size() + 3) / 4 * 4);
    }
    put32(bytes, 0, static_cast<uint32_t>(bytes.size()));
    return bytes;
}

std::vector<DirectoryEntry> directoryOf(const Bytes& profile) {
    std::vector<DirectoryEntry> entries;
    for (uint32_t at = 0; at < get32(profile, 128); ++at) {
        const auto slot = profile.begin() + 132 + at * 12;
        entries.push_back({std::string(slot, slot + 4), get32(profile, 136 + at * 12),
                           get32(profile, 140 + at * 12)});
    }
    return entries;
}

Bytes elementOf(const Bytes& profile, std::string_view wanted) {
    for (const auto& [name, offset, size] : directoryOf(profile))
        if (name == wanted)
            return Bytes(profile.begin() + offset, profile.begin() + offset + size);
    return {};
}

uint16_t get16(const Bytes& bytes, size_t at) {
    return static_cast<uint16_t>(bytes.at(at) << 8 | bytes.at(at + 1));
}

uint32_t get32(const Bytes& bytes, size_t at) {
    return static_cast<uint32_t>(get16(bytes, at)) << 16 | get16(bytes, at + 2);
}

void* hostBlock(const void* bytes, size_t size) {
    void* block = jMemAlloc(static_cast<uint32_t>(size));
    if (size > 0) std::memcpy(block, bytes, size);
    return block;
}

void* hostText(std::string_view text) {
    return hostBlock(std::string(text).c_str(), text.size() + 1);
}

IccLut* hostLut(int32_t inputs, int32_t outputs, int32_t gridPoints, uint8_t precision,
                int32_t inputEntries, int32_t outputEntries) {
    const size_t inputSize = static_cast<size_t>(inputs * inputEntries) * precision;
    const size_t gridSize = power(static_cast<size_t>(gridPoints), inputs) *
                            static_cast<size_t>(outputs) * precision;
    const size_t outputSize = static_cast<size_t>(outputs * outputEntries) * precision;
    const Bytes zeros(sizeof(IccLut) + inputSize + gridSize + outputSize);
    auto* const lut = static_cast<IccLut*>(hostBlock(zeros.data(), zeros.size()));
    lut->inputChannels = inputs;
    lut->outputChannels = outputs;
    lut->gridPoints = gridPoints;
    lut->matrix[0] = lut->matrix[4] = lut->matrix[8] = 1;
    lut->precision = precision;
    lut->inputEntries = inputEntries;
    lut->outputEntries = outputEntries;
    auto* const tables = reinterpret_cast<uint8_t*>(lut) + sizeof(IccLut);
    lut->inputTables = tables;
    lut->clut = tables + inputSize;
    lut->outputTables = tables + inputSize + gridSize;
    return lut;
}

}  // namespace ko::test
