#include "precise/md5.h"

#include <bit>

namespace ko::precise {
namespace {

constexpr uint32_t kSines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};
constexpr int kTurns[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

}  // namespace

void Md5::block(const uint8_t* bytes) noexcept {
    uint32_t word[16];
    for (int at = 0; at < 16; ++at)
        word[at] = static_cast<uint32_t>(bytes[4 * at]) | static_cast<uint32_t>(bytes[4 * at + 1]) << 8 |
                   static_cast<uint32_t>(bytes[4 * at + 2]) << 16 |
                   static_cast<uint32_t>(bytes[4 * at + 3]) << 24;
    auto [a, b, c, d] = state_;
    for (int at = 0; at < 64; ++at) {
        uint32_t mix;
        int from;
        switch (at / 16) {
            case 0: mix = (b & c) | (~b & d); from = at; break;
            case 1: mix = (d & b) | (~d & c); from = (5 * at + 1) % 16; break;
            case 2: mix = b ^ c ^ d; from = (3 * at + 5) % 16; break;
            default: mix = c ^ (b | ~d); from = 7 * at % 16;
        }
        const uint32_t sum = a + mix + kSines[at] + word[from];
        a = d;
        d = c;
        c = b;
        b += std::rotl(sum, kTurns[at / 16][at % 4]);
    }
    state_ = {state_[0] + a, state_[1] + b, state_[2] + c, state_[3] + d};
}

void Md5::add(std::span<const uint8_t> bytes) noexcept {
    for (const uint8_t byte : bytes) {
        rest_[length_++ % 64] = byte;
        if (length_ % 64 == 0) block(rest_.data());
    }
}

std::array<uint8_t, 16> Md5::result() noexcept {
    const uint64_t bits = length_ * 8;
    const uint8_t mark = 0x80, zero = 0;
    add({&mark, 1});
    while (length_ % 64 != 56) add({&zero, 1});
    uint8_t size[8];
    for (int at = 0; at < 8; ++at) size[at] = static_cast<uint8_t>(bits >> (8 * at));
    add(size);
    std::array<uint8_t, 16> digest;
    for (size_t at = 0; at < 16; ++at)
        digest[at] = static_cast<uint8_t>(state_[at / 4] >> (8 * (at % 4)));
    return digest;
}

}  // namespace ko::precise
