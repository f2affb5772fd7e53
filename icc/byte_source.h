// Private to the folder: bytes at positions, of an open file or in memory.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

#include "frame/file.h"

namespace ko::icc {

class ByteSource {
public:
    virtual ~ByteSource() = default;

    uint64_t size() const noexcept { return size_; }
    bool mayHold(uint64_t position, uint64_t size) const noexcept {
        return isBelievableClaim(position, size, size_, claimTolerance_);
    }

    // Fills the buffer with the bytes from position on; zeros where there are none.
    void read(uint64_t position, std::span<uint8_t> buffer) noexcept {
        const size_t got = position < size_ ? readSome(position, buffer) : 0;
        const auto missing = buffer.subspan(got);
        if (!missing.empty()) std::memset(missing.data(), 0, missing.size());
    }

protected:
    explicit ByteSource(uint64_t size, uint64_t claimTolerance = kClaimTolerance) noexcept
        : size_(size), claimTolerance_(claimTolerance) {}
    virtual size_t readSome(uint64_t position, std::span<uint8_t> buffer) noexcept = 0;

private:
    uint64_t size_;
    uint64_t claimTolerance_;
};

class FileSource final : public ByteSource {
public:
    explicit FileSource(File& file) noexcept : ByteSource(file.size()), file_(file) {}

private:
    size_t readSome(uint64_t position, std::span<uint8_t> buffer) noexcept override {
        return file_.seek(position) ? file_.read(buffer) : 0;
    }
    File& file_;
};

class MemorySource final : public ByteSource {
public:
    MemorySource(std::span<const uint8_t> bytes, uint64_t claimTolerance) noexcept
        : ByteSource(bytes.size(), claimTolerance), bytes_(bytes) {}

private:
    size_t readSome(uint64_t position, std::span<uint8_t> buffer) noexcept override {
        const auto rest = bytes_.subspan(static_cast<size_t>(position));
        const size_t got = std::min(rest.size(), buffer.size());
        if (got > 0) std::memcpy(buffer.data(), rest.data(), got);
        return got;
    }
    std::span<const uint8_t> bytes_;
};

}  // namespace ko::icc
