// Memory that ends where nothing may be read or written any more.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace ko::test {

// The last byte is followed by a page that nobody may touch.
class GuardedBytes {
public:
    explicit GuardedBytes(size_t size);
    ~GuardedBytes();
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;
    uint8_t* data() const noexcept { return data_; }

private:
    uint8_t* pages_;
    size_t size_;  // of the pages before the guard
    uint8_t* data_;
};

// A copy of values at such an end.
template <class Value>
class Guarded {
public:
    explicit Guarded(std::span<const Value> values) : bytes_(values.size_bytes()) {
        if (!values.empty()) std::memcpy(bytes_.data(), values.data(), values.size_bytes());
    }
    Value* data() const noexcept { return reinterpret_cast<Value*>(bytes_.data()); }

private:
    GuardedBytes bytes_;
};

}  // namespace ko::test
