// Profiles and files for the tests of CMYK profiles: owners, levels, and ICC files in bytes.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/profiles.h"

namespace ko::test {

// Where the profile comes from says which of the two programs it is: the exported functions or
// the engine behind them. Both free with jMemFree.
using OwnedProfile = Owned<CmykProfile, jMemFree>;

inline uint32_t gridLevel(uint32_t index) { return index == 32 ? 255 : 8 * index; }
inline uint32_t curveLevelOf(int point) { return point == 64 ? 255u : 4u * static_cast<uint32_t>(point); }

inline uint32_t nodeAt(uint32_t c, uint32_t m, uint32_t y, uint32_t k) {
    return ((c * 33 + m) * 33 + y) * 33 + k;
}

inline bool sameGrid(const CmykProfile& a, const CmykProfile& b) {
    return std::equal(a.grid, a.grid + KOLINK_CMYK_NODES, b.grid);
}

// A .lut or .amt file with the texts and the beginning of a grid; words in grid order.
inline Bytes tableFile(size_t headerSize, size_t commentOffset, std::string_view name,
                       std::string_view comment, const std::vector<uint32_t>& words) {
    Bytes bytes(headerSize, 0);
    std::copy(name.begin(), name.end(), bytes.begin());
    std::copy(comment.begin(), comment.end(), bytes.begin() + static_cast<std::ptrdiff_t>(commentOffset));
    for (const uint32_t word : words)
        for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<uint8_t>(word >> shift));
    return bytes;
}
inline Bytes lutFile(std::string_view name, std::string_view comment, const std::vector<uint32_t>& words) {
    return tableFile(972, 472, name, comment, words);
}
inline Bytes amtFile(std::string_view name, std::string_view comment, const std::vector<uint32_t>& words) {
    return tableFile(256, 64, name, comment, words);
}

// An ICC file whose header says nothing but what it is.
inline Bytes iccFile(const std::vector<Tag>& tags) {
    Bytes header(128);
    std::ranges::copy(std::string_view("acsp"), header.begin() + 36);
    return profileBytes(tags, header);
}

// The beginning of a LUT element, up to where the input tables start.
inline Bytes lutHeader(int precision, int inputs, int outputs, int gridPoints, int inputEntries = 256,
                       int outputEntries = 256) {
    Bytes bytes;
    append(bytes, std::string_view(precision == 1 ? "mft1\0\0\0\0" : "mft2\0\0\0\0", 8));
    for (const int count : {inputs, outputs, gridPoints, 0}) bytes.push_back(static_cast<uint8_t>(count));
    for (int at = 0; at < 9; ++at) append32(bytes, at % 4 == 0 ? 0x10000 : 0);
    if (precision == 2) {
        append16(bytes, static_cast<uint32_t>(inputEntries));
        append16(bytes, static_cast<uint32_t>(outputEntries));
    }
    return bytes;
}
inline void appendRamp8(Bytes& bytes) {
    for (int level = 0; level < 256; ++level) bytes.push_back(static_cast<uint8_t>(level));
}

// A 2-point 8-bit LUT from CMYK to CMYK: identity curves, and a grid that passes every ink on.
inline Bytes smallLut8() { return LutElement{.inputs = 4, .outputs = 4, .gridPoints = 2}.bytes(); }

// The same in 16 bits; entries(channel, e) makes the input tables, output tables are ramps.
template <class Entries>
Bytes smallLut16(int inputEntries, int outputEntries, Entries entries) {
    Bytes bytes = lutHeader(2, 4, 4, 2, inputEntries, outputEntries);
    for (int channel = 0; channel < 4; ++channel)
        for (int e = 0; e < inputEntries; ++e) append16(bytes, entries(channel, e));
    for (int node = 0; node < 16; ++node)
        for (int bit = 3; bit >= 0; --bit) append16(bytes, (node >> bit & 1) ? 65535 : 0);
    for (int channel = 0; channel < 4; ++channel)
        for (int e = 0; e < outputEntries; ++e)
            append16(bytes, static_cast<uint32_t>(outputEntries > 1 ? e * 65535 / (outputEntries - 1) : 0));
    return bytes;
}

}  // namespace ko::test
