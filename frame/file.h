// Files and the guard that keeps other threads and processes out while one is open.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "frame/platform.h"

namespace ko {

// Holds the system-wide file mutex for one file operation. Declared before the file, so that it
// is given back last.
class FileGuard {
public:
    FileGuard() noexcept : mutex_(platform::openNamedMutex("_KOLINK_MUTEX")) {
        if (mutex_) platform::lock(*mutex_);  // without it the work goes on unguarded
    }
    ~FileGuard() {
        if (mutex_) platform::unlockAndClose(mutex_);
    }
    FileGuard(const FileGuard&) = delete;
    FileGuard& operator=(const FileGuard&) = delete;

private:
    platform::NamedMutex* mutex_;
};

enum class Sharing { none, reading };

class File {
public:
    static File openForReading(const char* path, Sharing sharing) noexcept {
        return File(path ? platform::openForReading(path, sharing == Sharing::reading)
                         : platform::kNoFile);
    }
    static File create(const char* path) noexcept {
        return File(path ? platform::createForWriting(path) : platform::kNoFile);
    }
    static File createNew(const char* path) noexcept {
        return File(path ? platform::createNew(path) : platform::kNoFile);
    }
    File(File&& other) noexcept : handle_(std::exchange(other.handle_, platform::kNoFile)) {}
    File& operator=(File&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~File() {
        if (*this) platform::close(handle_);
    }

    explicit operator bool() const noexcept { return handle_ != platform::kNoFile; }
    uint64_t size() const noexcept { return platform::sizeOf(handle_); }
    bool seek(uint64_t position) noexcept { return platform::seek(handle_, position); }
    // The number of bytes read: less than asked for at the end of the file only.
    size_t read(std::span<uint8_t> buffer) noexcept {
        return platform::read(handle_, buffer.data(), buffer.size());
    }
    bool write(std::span<const uint8_t> bytes) noexcept {
        return platform::write(handle_, bytes.data(), bytes.size());
    }
    bool write(std::string_view text) noexcept {
        return platform::write(handle_, text.data(), text.size());
    }
    bool flush() noexcept { return platform::flush(handle_); }

private:
    explicit File(platform::FileHandle handle) noexcept : handle_(handle) {}
    platform::FileHandle handle_;
};

// Writes the bytes beside a file and then puts them in its place, so that a reader finds the old
// file or the new one, whole. After a failure the old file is there as it was.
[[nodiscard]] bool replaceWhole(const std::string& path, std::string_view bytes);

// What a file claims to hold may pass its end by this much and is then read as zeros; beyond it
// the claim is a lie and is refused before memory is taken.
constexpr uint64_t kClaimTolerance = uint64_t{64} << 20;

constexpr bool isBelievableClaim(uint64_t offset, uint64_t size, uint64_t fileSize,
                                 uint64_t tolerance = kClaimTolerance) noexcept {
    if (size > uint64_t{1} << 32 || fileSize > UINT64_MAX - tolerance) return false;
    const uint64_t end = fileSize + tolerance;
    return offset <= end && size <= end - offset;
}

}  // namespace ko
