// The tags that the engine knows: how each is decoded, encoded, and who writes it.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "icc/byte_source.h"
#include "icc/icc.h"

namespace ko::icc {

// A tag's element in a profile file. Positions count from the element's start.
class Element {
public:
    Element(ByteSource& source, const IccTagEntry& tag, bool bigEndian) noexcept
        : source_(source), offset_(tag.offset), size_(tag.size), bigEndian_(bigEndian) {}

    uint32_t size() const noexcept { return size_; }  // as the directory has it
    bool bigEndian() const noexcept { return bigEndian_; }
    ByteOrder order() const noexcept {
        return bigEndian_ ? ByteOrder::bigEndian : ByteOrder::littleEndian;
    }
    bool hasType(const char (&type)[5]) const noexcept {
        uint8_t bytes[4];
        read(0, bytes);
        return std::memcmp(bytes, type, 4) == 0;
    }
    void read(uint64_t at, std::span<uint8_t> buffer) const noexcept {
        source_.read(offset_ + at, buffer);
    }
    bool mayHold(uint64_t at, uint64_t size) const noexcept {
        return source_.mayHold(offset_ + at, size);
    }

private:
    ByteSource& source_;
    uint64_t offset_;
    uint32_t size_;
    bool bigEndian_;
};

// Null when the element has another type, claims too much, or memory is short.
using DecodeTag = Block<void> (*)(const Element& element) noexcept;

// Appends the element and returns the length that the directory gets; empty, what was appended
// to be dropped, when the data cannot be written.
using EncodeTag = std::optional<uint64_t> (*)(const void* data, bool bigEndian,
                                              std::vector<uint8_t>& bytes);

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
    DecodeTag decode;  // null: never read
    EncodeTag encode;  // null: never written
    Writers writers;
    uint8_t deviceAliases;  // the device writer lists the element under this many signatures more
};

std::span<const TagCodec> tagCodecs() noexcept;
const TagCodec* findCodec(uint32_t signature) noexcept;  // null: an unknown tag

}  // namespace ko::icc
