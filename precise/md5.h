// MD5 (RFC 1321), for profile IDs.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace ko::precise {

class Md5 {
public:
    void add(std::span<const uint8_t> bytes) noexcept;
    std::array<uint8_t, 16> result() noexcept;  // once, at the end

private:
    void block(const uint8_t* bytes) noexcept;
    std::array<uint32_t, 4> state_ = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    std::array<uint8_t, 64> rest_{};
    uint64_t length_ = 0;
};

}  // namespace ko::precise
