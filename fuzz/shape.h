// Takes a fuzzer's bytes apart into the values that a structure is built from. Bytes that are not
// there are zeros.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

class Shape {
public:
    Shape(const uint8_t* data, size_t size) : rest_(data, size) {}

    uint8_t byte() {
        if (rest_.empty()) return 0;
        const uint8_t value = rest_.front();
        rest_ = rest_.subspan(1);
        return value;
    }
    int32_t between(int32_t low, int32_t high) { return low + byte() % (high - low + 1); }
    uint32_t word() {
        uint32_t value = 0;
        for (int at = 0; at < 4; ++at) value = value << 8 | byte();
        return value;
    }
    // One number of a table that is longer than the input: the rest of it, over and over, with a
    // change each time.
    uint8_t cell(size_t index) const {
        if (rest_.empty()) return static_cast<uint8_t>(index * 37);
        return static_cast<uint8_t>(rest_[index % rest_.size()] + index / rest_.size() * 29);
    }

private:
    std::span<const uint8_t> rest_;
};
