// The tags that the engine knows: how each is decoded, encoded, and who writes it.
#pragma once

#include <algorithm>
#include <cstring>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "icc/icc.h"

namespace ko::icc {

// A tag's element in the bytes of a profile file. Positions count from the element's start; where
// the file has no bytes there are zeros.
class Element {
public:
    Element(std::span<const uint8_t> file, const IccTagEntry& tag, bool bigEndian) noexcept
        : bytes_(tag.offset < file.size() ? file.subspan(tag.offset) : std::span<const uint8_t>()),
          size_(tag.size), bigEndian_(bigEndian) {}

    uint32_t size() const noexcept { return size_; }  // as the directory has it
    bool bigEndian() const noexcept { return bigEndian_; }
    bool hasType(const char (&type)[5]) const noexcept {
        return ByteReader(bytes_).u32() == fourcc(type);
    }
    // What the file has of these bytes.
    std::span<const uint8_t> held(uint64_t at, uint64_t size) const noexcept {
        if (at >= bytes_.size()) return {};
        const auto rest = bytes_.subspan(static_cast<size_t>(at));
        return rest.first(static_cast<size_t>(std::min<uint64_t>(size, rest.size())));
    }
    ByteReader numbersAt(uint64_t at) const noexcept {
        return ByteReader(held(at, UINT64_MAX),
                          bigEndian_ ? ByteOrder::bigEndian : ByteOrder::littleEndian);
    }

private:
    std::span<const uint8_t> bytes_;
    uint32_t size_;
    bool bigEndian_;
};

// How many bytes from its start an element takes by what it says itself; nothing when it has
// another type or nothing to load.
using ClaimOfTag = std::optional<uint64_t> (*)(const Element& element) noexcept;

// The data of an element whose claim can be believed; null when memory is short.
using DecodeTag = Block<void> (*)(const Element& element) noexcept;

// A file in parts: bytes of its own between tables that stay where they are.
class FileParts {
public:
    // The last part of its own, to be appended to.
    std::vector<uint8_t>& bytes() noexcept { return own_.back(); }
    // The next bytes are the caller's, who keeps them until the file is written.
    void borrow(std::span<const uint8_t> part);
    uint64_t size() const noexcept { return before_ + own_.back().size(); }
    void alignTo4() { bytes().resize(bytes().size() + (4 - size() % 4) % 4); }
    std::vector<uint8_t>& head() noexcept { return own_.front(); }  // begins the file
    std::vector<std::span<const uint8_t>> parts() const;

private:
    std::deque<std::vector<uint8_t>> own_{1};
    std::vector<std::span<const uint8_t>> borrowed_;  // one behind each part but the last
    uint64_t before_ = 0;                             // bytes before the last part
};

// Appends the element and returns the length that the directory gets; empty, what was appended
// to be dropped, when the data cannot be written.
using EncodeTag = std::optional<uint64_t> (*)(const void* data, bool bigEndian, FileParts& file);

enum Writers : uint8_t {
    kNoWriter = 0,
    kProfileWriter = 1,
    kDeviceWriter = 2,
    kLinkWriter = 4,
    kFullWriters = kProfileWriter | kDeviceWriter,
    kAllWriters = kFullWriters | kLinkWriter
};

struct TagCodec {
    uint32_t signature;
    ClaimOfTag claim;
    DecodeTag decode;  // null: never read
    EncodeTag encode;  // null: never written
    Writers writers;
    uint8_t deviceAliases;  // the device writer lists the element under this many signatures more
};

std::span<const TagCodec> tagCodecs() noexcept;
const TagCodec* findCodec(uint32_t signature) noexcept;  // null: an unknown tag

}  // namespace ko::icc
