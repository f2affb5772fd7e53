#include "frame/file.h"

#include <algorithm>
#include <atomic>
#include <new>

namespace ko {
namespace {

constinit std::atomic<GuardWait> guardWait = nullptr;

// Of a large file, portions that hold zeros alone are left to the memory that is zero already.
constexpr size_t kPortion = size_t{64} << 10;
constexpr uint64_t kLarge = uint64_t{16} << 20;

bool isZero(std::span<const uint8_t> bytes) noexcept {
    return bytes.empty() || (bytes[0] == 0 && std::equal(bytes.begin() + 1, bytes.end(),
                                                         bytes.begin()));
}

void copyThin(std::span<const uint8_t> from, uint8_t* to) noexcept {
    while (!from.empty()) {
        const auto portion = from.first(std::min(kPortion, from.size()));
        if (!isZero(portion)) std::copy(portion.begin(), portion.end(), to);
        from = from.subspan(portion.size());
        to += portion.size();
    }
}

bool readThin(platform::FileHandle file, std::span<uint8_t> bytes) noexcept {
    const FileBytes::Memory portion(static_cast<uint8_t*>(std::malloc(kPortion)));
    if (!portion) {
        platform::setLastError(platform::Cause::shortMemory);
        return false;
    }
    for (uint64_t at = 0; (at = platform::skipHole(file, at, bytes.size())) < bytes.size();) {
        const auto size = std::min(kPortion, bytes.size() - static_cast<size_t>(at));
        if (!platform::read(file, portion.get(), size)) return false;
        if (!isZero({portion.get(), size}))
            std::copy_n(portion.get(), size, bytes.begin() + static_cast<std::ptrdiff_t>(at));
        at += size;
    }
    return true;
}

FileReading failure(ReadResult result, platform::Cause cause) noexcept {
    platform::setLastError(cause);
    return {result, {}};
}

FileReading readOpened(platform::FileHandle file, uint64_t largest, uint64_t wanted) noexcept {
    uint64_t fileSize = 0;
    if (!platform::sizeOf(file, fileSize)) return {};
    if (fileSize > largest) return failure(ReadResult::failed, platform::Cause::tooLarge);
    const auto size = static_cast<size_t>(std::min(fileSize, wanted));
    FileBytes::Memory bytes(static_cast<uint8_t*>(std::calloc(std::max<size_t>(size, 1), 1)));
    if (!bytes) return failure(ReadResult::failed, platform::Cause::shortMemory);
    const std::span all(bytes.get(), size);
    const bool whole =
        size > kLarge ? readThin(file, all) : platform::read(file, all.data(), all.size());
    if (!whole) return {};
    return {ReadResult::read, FileBytes(std::move(bytes), size, fileSize)};
}

struct FileCloser {
    platform::FileHandle file;
    ~FileCloser() { platform::close(file); }
};

}  // namespace

FileBytes copyOf(std::span<const uint8_t> bytes) {
    FileBytes::Memory copy(static_cast<uint8_t*>(std::calloc(std::max<size_t>(bytes.size(), 1), 1)));
    if (!copy) throw std::bad_alloc();
    copyThin(bytes, copy.get());
    return FileBytes(std::move(copy), bytes.size(), bytes.size());
}

void setGuardWait(GuardWait wait) noexcept { guardWait = wait; }

FileGuard::FileGuard() noexcept {
    const platform::ErrorKeeper keeper;  // a guard that cannot be had is no failure
    mutex_ = platform::openNamedMutex("_KOLINK_MUTEX");
    if (!mutex_ || platform::lock(*mutex_, guardWait)) return;
    refused_ = true;
    platform::closeNamedMutex(std::exchange(mutex_, nullptr));
}

FileGuard::~FileGuard() {
    const platform::ErrorKeeper keeper;
    platform::unlockAndClose(mutex_);
}

FileReading readWhole(const char* path, const FileKind& kind, uint64_t wanted) noexcept {
    if (!path) return failure(ReadResult::notOpened, platform::Cause::wrongArgument);
    const uint32_t errorBefore = platform::lastError();
    std::optional<FileGuard> guard;
    if (kind.guarded) guard.emplace();
    if (guard && guard->refused()) return failure(ReadResult::failed, platform::Cause::interrupted);
    const platform::FileHandle file = platform::openForReading(path, kind.sharesReading);
    if (file == platform::kNoFile) return {ReadResult::notOpened, {}};
    const FileCloser closer{file};
    FileReading reading = readOpened(file, kind.largest, wanted);
    if (reading) platform::setLastError(errorBefore);
    return reading;
}

NewFile::NewFile(const char* path, bool guarded) noexcept {
    if (!path) {
        result_ = SaveResult::notCreated;
        platform::setLastError(platform::Cause::wrongArgument);
        return;
    }
    if (guarded) guard_.emplace();
    if (guard_ && guard_->refused()) {
        platform::setLastError(platform::Cause::interrupted);
        return;
    }
    try {
        file_ = platform::beginNewFile(path, result_);
    } catch (const std::bad_alloc&) {
        platform::setLastError(platform::Cause::shortMemory);
        result_ = SaveResult::failed;
    }
}

NewFile::~NewFile() {
    const platform::ErrorKeeper keeper;
    platform::closeNewFile(file_);
}

bool NewFile::write(std::span<const uint8_t> bytes) noexcept {
    failed_ = failed_ || !file_ || !platform::write(*file_, bytes.data(), bytes.size());
    if (failed_) return false;
    position_ += bytes.size();
    size_ = std::max(size_, position_);
    return true;
}

bool NewFile::write(std::string_view text) noexcept {
    return write({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

bool NewFile::seek(uint64_t position) noexcept {
    if (position == position_) return true;
    if (!file_ || !platform::seek(*file_, position)) return false;
    position_ = position;
    return true;
}

bool NewFile::read(std::span<uint8_t> bytes) noexcept {
    if (!file_ || position_ > size_ || bytes.size() > size_ - position_) return false;
    if (!platform::read(*file_, bytes.data(), bytes.size())) return false;
    position_ += bytes.size();
    return true;
}

SaveResult NewFile::finish() noexcept {
    if (!file_) return result_;
    if (!seek(size_)) return result_ = SaveResult::failed;  // the file ends where the writing stands
    result_ = platform::finish(*file_);
    {
        const platform::ErrorKeeper keeper;
        platform::closeNewFile(std::exchange(file_, nullptr));
        guard_.reset();
    }
    if (result_ == SaveResult::written) platform::setLastError(errorBefore_);
    return result_;
}

SaveResult replaceWhole(const char* path, const FileKind& kind,
                        std::span<const std::span<const uint8_t>> parts) noexcept {
    NewFile file(path, kind.guarded);
    for (const auto part : parts)
        if (!file.write(part)) break;
    return file.finish();
}

SaveResult replaceWhole(const char* path, const FileKind& kind, std::string_view text) noexcept {
    NewFile file(path, kind.guarded);
    (void)file.write(text);
    return file.finish();
}

}  // namespace ko
