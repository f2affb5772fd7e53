// ICC profiles for tests, built as bytes.
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "tests/support/files.h"
#include "tests/support/owned.h"

namespace ko::test {

// A signature as a number whose most significant byte is the first character.
constexpr uint32_t signature(const char (&text)[5]) {
    uint32_t value = 0;
    for (int at = 0; at < 4; ++at) value = value << 8 | static_cast<uint8_t>(text[at]);
    return value;
}

// The seventeen tags that can be loaded.
inline constexpr uint32_t kLoadableTags[] = {
    signature("A2B0"), signature("A2B1"), signature("A2B2"), signature("B2A0"), signature("B2A1"),
    signature("B2A2"), signature("gamt"), signature("cprt"), signature("desc"), signature("wtpt"),
    signature("bkpt"), signature("rXYZ"), signature("gXYZ"), signature("bXYZ"), signature("rTRC"),
    signature("gTRC"), signature("bTRC")};

// Elements: type, 4 reserved bytes, contents; big-endian.
Bytes element(std::string_view type, const Bytes& contents = {});
Bytes xyzElement(uint32_t x, uint32_t y, uint32_t z);  // s15Fixed16
Bytes curveElement(const std::vector<uint16_t>& entries);
Bytes descriptionElement(std::string_view text);  // with its NUL and the empty other parts
Bytes textElement(std::string_view text);         // with its NUL

// A LUT element with the identity matrix.
struct LutElement {
    uint8_t inputs = 3, outputs = 3, gridPoints = 2;
    bool wide = false;                               // "mft2"
    uint16_t inputEntries = 256, outputEntries = 256;  // "mft1" does not store them
    // Entries from a seeded sequence instead of ramps and a grid that carries each channel's level
    // through.
    std::optional<uint32_t> seed = {};

    Bytes bytes() const;
};

struct Tag {
    std::string_view signature;
    Bytes element;
};

// The 128 bytes of a header; the profile size is 0.
Bytes profileHeader(std::string_view deviceClass = "prtr", std::string_view colourSpace = "CMYK",
                    std::string_view connectionSpace = "Lab ");

// Header, directory, elements on multiples of 4, and the size in the header.
Bytes profileBytes(const std::vector<Tag>& tags, const Bytes& header = profileHeader());

// The directory of a profile in bytes.
struct DirectoryEntry {
    std::string signature;
    uint32_t offset, size;
    bool operator==(const DirectoryEntry&) const = default;
};
std::vector<DirectoryEntry> directoryOf(const Bytes& profile);
Bytes elementOf(const Bytes& profile, std::string_view signature);  // empty: not there

uint16_t get16(const Bytes& bytes, size_t at);  // big-endian
uint32_t get32(const Bytes& bytes, size_t at);

// A profile from the library, released with the test.
using ProfileHandle = OwnedIccProfile;

// Blocks to bind, from the library's allocator.
void* hostBlock(const void* bytes, size_t size);
void* hostText(std::string_view text);  // NUL-terminated
IccLut* hostLut(int32_t inputs, int32_t outputs, int32_t gridPoints, uint8_t precision,
                int32_t inputEntries = 256, int32_t outputEntries = 256);  // tables all zero

}  // namespace ko::test
