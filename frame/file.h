// The two doors between the library and the disk, and the guard that keeps other threads and
// processes out while one of them is open. Nobody else opens files.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "frame/path.h"

namespace ko {

// Holds the system-wide file mutex for one file operation; a thread that holds it may take it
// again. Without a mutex to hold the work goes on unguarded: files are replaced whole, so that
// readers find the old one or the new one anyway.
class FileGuard {
public:
    FileGuard() noexcept;
    ~FileGuard();
    FileGuard(const FileGuard&) = delete;
    FileGuard& operator=(const FileGuard&) = delete;

    // The program's wait callback gave up; the operation must not go on.
    bool refused() const noexcept { return refused_; }

private:
    platform::NamedMutex* mutex_;
    bool refused_ = false;
};

// A program, not the library, may want to know that it waits for the guard, and to end the wait.
// Called while waiting, in every thread: how long it has been and the process that holds the
// guard (0: unknown). When it returns false, what was to be read or written fails as interrupted.
// Null, the default: waits without a time limit. Set before threads are started.
using GuardWait = platform::MutexWait;
void setGuardWait(GuardWait wait) noexcept;

// What kind of file a path leads to: how large it may be, and whether the guard is taken.
struct FileKind {
    uint64_t largest;       // a larger file is not read
    bool guarded;
    bool sharesReading;     // opened beside other readers, where the system asks
};
constexpr FileKind kProfileFiles = {uint64_t{1} << 30, true, false};
constexpr FileKind kTableFiles = {uint64_t{1} << 30, true, true};          // .lut, .amt
constexpr FileKind kColourTableFiles = {uint64_t{1} << 30, false, true};   // CMYK and RGB tables
constexpr FileKind kCurveFiles = {uint64_t{64} << 20, true, true};         // .bkc, .tnc, .dcc
constexpr FileKind kCalibrationFiles = {uint64_t{64} << 20, false, true};  // .clb, plain form
constexpr FileKind kSettingsFiles = {uint64_t{4} << 20, false, true};

// The contents of a file in memory. Runs of zeros in large files take no memory of their own.
class FileBytes {
public:
    struct Free {
        void operator()(uint8_t* bytes) const noexcept { std::free(bytes); }
    };
    using Memory = std::unique_ptr<uint8_t, Free>;
    FileBytes() = default;
    FileBytes(Memory bytes, size_t size, uint64_t fileSize) noexcept
        : bytes_(std::move(bytes)), size_(size), fileSize_(fileSize) {}
    std::span<const uint8_t> bytes() const noexcept { return {bytes_.get(), size_}; }
    std::string_view text() const noexcept {
        return {reinterpret_cast<const char*>(bytes_.get()), size_};
    }
    uint64_t fileSize() const noexcept { return fileSize_; }  // also when only its start was read

private:
    Memory bytes_;
    size_t size_ = 0;
    uint64_t fileSize_ = 0;
};

[[nodiscard]] FileBytes copyOf(std::span<const uint8_t> bytes);  // zeros taking none again; throws

enum class ReadResult {
    read,
    notOpened,  // there is no such regular file, or it may not be read
    failed,     // a read failed, the file is too large for its kind, or memory is short
};
struct FileReading {
    ReadResult result = ReadResult::failed;
    FileBytes file;
    explicit operator bool() const noexcept { return result == ReadResult::read; }
};

// The door in. Opens the file once, under one hold of the guard when its kind has one, looks at
// its size once, reads it into memory (or its first bytes, when no more are wanted) and closes it.
// A read that fails, or that ends before the size does, fails the whole. The reason of a failure
// is in platform::lastError; a success leaves that as it was.
[[nodiscard]] FileReading readWhole(const char* path, const FileKind& kind,
                                    uint64_t wanted = UINT64_MAX) noexcept;
[[nodiscard]] inline FileReading readWhole(const Path& path, const FileKind& kind,
                                           uint64_t wanted = UINT64_MAX) noexcept {
    return path ? readWhole(path.c_str(), kind, wanted) : FileReading{ReadResult::notOpened, {}};
}

using platform::SaveResult;

// The door out, for a file that comes in pieces. It is made beside its place under the name
// "~kolink-....tmp", flushed to the disk and moved over the old one, and the folder is flushed: a
// reader finds the old file or the new one, whole, and so does who comes after a crash. Until
// finish returns written, the old file is as it was; without finish nothing changes and nothing
// stays. The old file's mode, its owner where possible, and a symbolic link that leads to it are
// kept; a write-protected file (on POSIX also one that nobody may write, whoever asks) is not
// replaced. What killed processes left in the folder is removed first.
// Last resort: a device, and a file that may be written although its folder takes no second one,
// is written in place, so that a failure then leaves what was written so far.
// The guard, when asked for, is held from before the file is made until finish or the end.
class NewFile {
public:
    NewFile(const char* path, bool guarded) noexcept;
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    explicit operator bool() const noexcept { return file_ != nullptr; }
    bool write(std::span<const uint8_t> bytes) noexcept;  // false: finish will fail
    bool write(std::string_view text) noexcept;
    bool hasFailed() const noexcept { return failed_; }
    // For a file that is not written from front to back: goes elsewhere and reads what is written
    // already. A place that is passed over and never written is zeros.
    bool seek(uint64_t position) noexcept;
    uint64_t position() const noexcept { return position_; }
    uint64_t size() const noexcept { return size_; }
    bool read(std::span<uint8_t> bytes) noexcept;  // all of it, or false
    // How it went. Success leaves platform::lastError as it was; else it has the reason.
    [[nodiscard]] SaveResult finish() noexcept;

private:
    uint32_t errorBefore_ = platform::lastError();
    std::optional<FileGuard> guard_;
    platform::NewFile* file_ = nullptr;
    uint64_t position_ = 0, size_ = 0;
    SaveResult result_ = SaveResult::failed;
    bool failed_ = false;  // a write
};

// The same for a file whose parts are in memory.
[[nodiscard]] SaveResult replaceWhole(const char* path, const FileKind& kind,
                                      std::span<const std::span<const uint8_t>> parts) noexcept;
[[nodiscard]] SaveResult replaceWhole(const char* path, const FileKind& kind,
                                      std::string_view text) noexcept;

// What a file claims to hold may pass its end by this much, all claims together, and is then read
// as zeros; beyond it the claim is a lie and is refused before memory is taken.
constexpr uint64_t kClaimTolerance = uint64_t{64} << 20;

constexpr bool isBelievableClaim(uint64_t offset, uint64_t size, uint64_t fileSize,
                                 uint64_t tolerance = kClaimTolerance) noexcept {
    if (size > uint64_t{1} << 32 || fileSize > UINT64_MAX - tolerance) return false;
    const uint64_t end = fileSize + tolerance;
    return offset <= end && size <= end - offset;
}

}  // namespace ko
