// Numbers in and out of byte sequences, bounds-checked. What is written is big-endian; a reader is
// told the order.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace ko {

enum class ByteOrder { bigEndian, littleEndian };

constexpr uint16_t reverse16(uint16_t value) noexcept {
    return static_cast<uint16_t>(value << 8 | value >> 8);
}
constexpr uint32_t reverse32(uint32_t value) noexcept {
    return value << 24 | (value & 0xff00u) << 8 | (value >> 8 & 0xff00u) | value >> 24;
}

// A signature as a number whose most significant byte is the first character.
constexpr uint32_t fourcc(const char (&text)[5]) noexcept {
    return static_cast<uint32_t>(static_cast<uint8_t>(text[0])) << 24 |
           static_cast<uint32_t>(static_cast<uint8_t>(text[1])) << 16 |
           static_cast<uint32_t>(static_cast<uint8_t>(text[2])) << 8 |
           static_cast<uint32_t>(static_cast<uint8_t>(text[3]));
}
static_assert(fourcc("acsp") == 0x61637370);

// Reads straight down a layout. Where the bytes end there are zeros, and ok() is false from then on.
class ByteReader {
public:
    explicit ByteReader(std::span<const uint8_t> bytes,
                        ByteOrder order = ByteOrder::bigEndian) noexcept
        : rest_(bytes), order_(order) {}

    bool ok() const noexcept { return ok_; }
    size_t remaining() const noexcept { return rest_.size(); }

    uint8_t u8() noexcept {
        const auto byte = take(1);
        return byte.empty() ? 0 : byte[0];
    }
    uint16_t u16() noexcept {
        const int high = u8();
        const auto value = static_cast<uint16_t>(high << 8 | u8());
        return order_ == ByteOrder::bigEndian ? value : reverse16(value);
    }
    uint32_t u32() noexcept {
        uint32_t value = 0;
        for (int at = 0; at < 4; ++at) value = value << 8 | u8();
        return order_ == ByteOrder::bigEndian ? value : reverse32(value);
    }
    int32_t s32() noexcept { return static_cast<int32_t>(u32()); }
    void skip(size_t count) noexcept { (void)take(count); }

    // The next count bytes; empty, with ok() false, when there are fewer.
    std::span<const uint8_t> take(size_t count) noexcept {
        if (count > rest_.size()) {
            ok_ = false;
            rest_ = {};
            return {};
        }
        const auto bytes = rest_.first(count);
        rest_ = rest_.subspan(count);
        return bytes;
    }

private:
    std::span<const uint8_t> rest_;
    ByteOrder order_;
    bool ok_ = true;
};

// Appends to a byte sequence, most significant byte first.
class ByteWriter {
public:
    explicit ByteWriter(std::vector<uint8_t>& bytes) noexcept : bytes_(bytes) {}

    void u8(uint8_t value) { bytes_.push_back(value); }
    void u16(uint16_t value) {
        u8(static_cast<uint8_t>(value >> 8));
        u8(static_cast<uint8_t>(value));
    }
    void u32(uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) u8(static_cast<uint8_t>(value >> shift));
    }
    void s32(int32_t value) { u32(static_cast<uint32_t>(value)); }
    void zeros(size_t count) { bytes_.resize(bytes_.size() + count); }
    void append(std::span<const uint8_t> bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    void append(std::string_view text) { bytes_.insert(bytes_.end(), text.begin(), text.end()); }
    void alignTo4() { zeros((4 - bytes_.size() % 4) % 4); }

private:
    std::vector<uint8_t>& bytes_;
};

}  // namespace ko
