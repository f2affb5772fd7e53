// Replacing files on POSIX: made beside the old one, flushed, moved, and the folder flushed.
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "frame/posix_file.h"

namespace ko::platform {

struct NewFile {
    Descriptor folder;
    std::string name;       // in the folder: the file that is replaced
    std::string beside;     // and the one that is made; empty: the old one is written in place
    Descriptor file;        // of the one that is made; locked, so that others see it is in use
    struct stat old = {};   // of what is there; st_nlink 0: nothing
    int error = 0;          // of the first write that failed
};

namespace {

constexpr std::string_view kPrefix = "~kolink-";
constexpr std::string_view kSuffix = ".tmp";

// Whether the target, rather than the moment, is what stands in the way.
SaveResult resultOf(int error) noexcept {
    switch (error) {
        case EMFILE:
        case ENFILE:
        case ENOMEM:
        case ENOSPC:
        case EDQUOT:
        case EIO:
        case EFBIG:
        case EINTR:
        case EAGAIN: return SaveResult::failed;
        default: return SaveResult::notCreated;
    }
}

// A file system without such an operation has nothing to flush or lock.
bool isUnsupported(int error) noexcept {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == ENOTTY;
}

bool flush(int file) noexcept {
    int result;
    do result = ::fsync(file);
    while (result != 0 && errno == EINTR);
    return result == 0 || isUnsupported(errno);
}

struct Place {
    std::string folder, name;  // the folder with its slash, or empty for the current one
};

Place placeOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == path.npos) return {"", path};
    return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

// Where a path leads after symbolic links, also when nothing is there yet. Empty: see errno.
std::optional<Place> follow(std::string path) {
    for (int links = 0; links < 40; ++links) {
        Place place = placeOf(path);
        if (place.name.empty() || place.name == "." || place.name == "..") {
            errno = path.empty() ? ENOENT : EISDIR;
            return std::nullopt;
        }
        char target[1024];
        const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
        if (length < 0) return place;  // no link; what else it is shows when it is opened
        if (length == sizeof target) {
            errno = ENAMETOOLONG;
            return std::nullopt;
        }
        const std::string_view to(target, static_cast<size_t>(length));
        path = to.starts_with('/') ? std::string(to) : place.folder.append(to);
    }
    errno = ELOOP;
    return std::nullopt;
}

Descriptor openFolder(const std::string& path) noexcept {
    const char* const name = path.empty() ? "." : path.c_str();
    Descriptor folder(openAt(AT_FDCWD, name, O_RDONLY | O_DIRECTORY));
    // One that may be passed but not listed will do; it cannot be flushed.
    if (!folder && errno == EACCES) folder = Descriptor(openAt(AT_FDCWD, name, O_PATH | O_DIRECTORY));
    return folder;
}

bool isOurName(std::string_view name) noexcept {
    if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) return false;
    name = name.substr(kPrefix.size(), name.size() - kPrefix.size() - kSuffix.size());
    return !name.empty() && name.find_first_not_of("0123456789abcdef-") == name.npos;
}

// Removes what killed processes left: files of such a name whose lock nobody holds.
void removeLeftOvers(int folder) noexcept {
    const int listed = openAt(folder, ".", O_RDONLY | O_DIRECTORY);
    if (listed < 0) return;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(listed), &::closedir);
    if (!entries) return close(listed);
    while (const dirent* entry = ::readdir(entries.get())) {
        if (!isOurName(entry->d_name)) continue;
        const Descriptor file(openAt(folder, entry->d_name, O_RDWR | O_NOFOLLOW | O_NONBLOCK));
        struct stat status;
        if (file && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
            ::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
            ::unlinkat(folder, entry->d_name, 0);
    }
}

std::string nameBeside() {
    static std::atomic<uint32_t> count = 0;
    timespec now;
    ::clock_gettime(CLOCK_REALTIME, &now);
    char text[64];
    std::snprintf(text, sizeof text, "%lx-%lx-%x", static_cast<unsigned long>(::getpid()),
                  static_cast<unsigned long>(now.tv_nsec), static_cast<unsigned>(count++));
    return std::string(kPrefix).append(text).append(kSuffix);
}

// Makes the file beside, locked. Somebody who takes it for a left-over before it is locked may
// remove it, so that another has to be made.
bool makeBeside(NewFile& made, mode_t mode) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        made.beside = nameBeside();
        Descriptor file(openAt(made.folder.get(), made.beside.c_str(),
                               O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mode));
        if (!file) {
            if (errno == EEXIST) continue;
            break;
        }
        int locked;
        do locked = ::flock(file.get(), LOCK_EX);
        while (locked != 0 && errno == EINTR);
        struct stat status;
        if (::fstat(file.get(), &status) == 0 && status.st_nlink == 0) continue;
        made.file = std::move(file);
        return true;
    }
    made.beside.clear();
    return false;
}

bool writeAll(int file, const char* bytes, size_t size) noexcept {
    while (size > 0) {
        const ssize_t put = ::write(file, bytes, size);
        if (put > 0) {
            bytes += put;
            size -= static_cast<size_t>(put);
        } else if (put == 0) {
            errno = EIO;
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

// Ends the file where the writing stopped; a device has no end.
bool endHere(int file) noexcept {
    struct stat status;
    if (::fstat(file, &status) != 0) return false;
    if (!S_ISREG(status.st_mode)) return true;
    const off_t end = ::lseek(file, 0, SEEK_CUR);
    return end >= 0 && ::ftruncate(file, end) == 0;
}

bool finishInPlace(int file) noexcept { return endHere(file) && flush(file); }

// The file cannot be moved over the old one: its folder keeps what belongs to others, or something
// is mounted on it. It may still be written to.
bool copyInPlace(const NewFile& file) noexcept {
    const ErrorKeeper keeper;
    const Descriptor old(openAt(file.folder.get(), file.name.c_str(), O_WRONLY | O_NOFOLLOW));
    if (!old || ::lseek(file.file.get(), 0, SEEK_SET) != 0) return false;
    char buffer[4096];
    for (;;) {
        const ssize_t got = ::read(file.file.get(), buffer, sizeof buffer);
        if (got == 0) return finishInPlace(old.get());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 || !writeAll(old.get(), buffer, static_cast<size_t>(got))) return false;
    }
}

// Gives the new file what the old one had. Where its group cannot be kept, the group's rights go
// to nobody.
bool adoptOwnerAndMode(int file, const struct stat& old) noexcept {
    struct stat made;
    if (::fstat(file, &made) != 0) return false;
    mode_t mode = old.st_mode & 07777;
    if (made.st_uid != old.st_uid && ::fchown(file, old.st_uid, static_cast<gid_t>(-1)) != 0)
        mode &= ~static_cast<mode_t>(S_ISUID);
    if (made.st_gid != old.st_gid && ::fchown(file, static_cast<uid_t>(-1), old.st_gid) != 0)
        mode &= ~static_cast<mode_t>(S_ISGID | S_IRWXG);
    return ::fchmod(file, mode) == 0 || errno == EPERM || isUnsupported(errno);
}

enum class Moved { over, exchanged, no };

// Exchanging keeps the old file until the folder is flushed.
Moved move(const NewFile& file) noexcept {
    const int folder = file.folder.get();
    const char *const from = file.beside.c_str(), *const to = file.name.c_str();
    if (file.old.st_nlink > 0) {
        if (::renameat2(folder, from, folder, to, RENAME_EXCHANGE) == 0) return Moved::exchanged;
        if (errno != ENOENT && !isUnsupported(errno)) return Moved::no;
    }
    return ::renameat(folder, from, folder, to) == 0 ? Moved::over : Moved::no;
}

void moveBack(const NewFile& file, Moved moved) noexcept {
    const ErrorKeeper keeper;
    const int folder = file.folder.get();
    if (moved == Moved::exchanged)
        ::renameat2(folder, file.beside.c_str(), folder, file.name.c_str(), RENAME_EXCHANGE);
    else if (file.old.st_nlink == 0) ::unlinkat(folder, file.name.c_str(), 0);
}

bool flushFolder(const Descriptor& folder) noexcept {
    if ((::fcntl(folder.get(), F_GETFL) & O_PATH) != 0) return true;
    return flush(folder.get());
}

// Whether the old file is one to replace; sets old.
SaveResult examine(NewFile& file, Descriptor& target) noexcept {
    target = Descriptor(openAt(file.folder.get(), file.name.c_str(),
                               O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY));
    if (!target) {
        if (errno == ENOENT) return SaveResult::written;
        return resultOf(errno);
    }
    if (::fstat(target.get(), &file.old) != 0) return resultOf(errno);
    // Root may write to everything; what nobody may write to is protected from root's programs too.
    if (S_ISREG(file.old.st_mode) && (file.old.st_mode & 0222) == 0) {
        errno = EACCES;
        return SaveResult::notCreated;
    }
    return SaveResult::written;
}

bool begin(NewFile& file, const char* path, SaveResult& failure) {
    failure = SaveResult::notCreated;
    std::optional<Place> place = follow(path);
    if (!place) return false;
    file.name = std::move(place->name);
    file.folder = openFolder(place->folder);
    if (!file.folder) {
        failure = resultOf(errno);
        return false;
    }
    Descriptor target;
    failure = examine(file, target);
    if (failure != SaveResult::written) return false;
    if (target && !S_ISREG(file.old.st_mode)) {
        ::fcntl(target.get(), F_SETFL, ::fcntl(target.get(), F_GETFL) & ~O_NONBLOCK);
        file.file = std::move(target);
        return true;
    }
    removeLeftOvers(file.folder.get());
    if (makeBeside(file, target ? 0600 : 0666)) return true;
    if (target && (errno == EACCES || errno == EPERM || errno == EROFS)) {
        file.file = std::move(target);
        return true;
    }
    failure = resultOf(errno);
    return false;
}

}  // namespace

NewFile* beginNewFile(const char* path, SaveResult& failure) {
    auto file = std::make_unique<NewFile>();
    return begin(*file, path, failure) ? file.release() : nullptr;
}

bool write(NewFile& file, const void* bytes, size_t size) noexcept {
    if (file.error != 0) return false;
    if (writeAll(file.file.get(), static_cast<const char*>(bytes), size)) return true;
    file.error = errno;
    return false;
}

bool seek(NewFile& file, uint64_t position) noexcept {
    return ::lseek(file.file.get(), static_cast<off_t>(position), SEEK_SET) >= 0;
}

bool read(NewFile& file, void* buffer, size_t size) noexcept {
    return read(FileHandle{file.file.get()}, buffer, size);
}

SaveResult finish(NewFile& file) noexcept {
    if (file.error != 0) {
        errno = file.error;
        return SaveResult::failed;
    }
    if (file.beside.empty())
        return finishInPlace(file.file.get()) ? SaveResult::written : SaveResult::failed;
    if (file.old.st_nlink > 0 && !adoptOwnerAndMode(file.file.get(), file.old))
        return SaveResult::failed;
    if (!flush(file.file.get())) return SaveResult::failed;
    const Moved moved = move(file);
    if (moved == Moved::no) {
        const bool kept = errno == EBUSY || errno == EPERM || errno == EACCES;
        if (kept && copyInPlace(file)) return SaveResult::written;
        return resultOf(errno);
    }
    if (!flushFolder(file.folder)) {
        moveBack(file, moved);
        return SaveResult::failed;
    }
    if (moved == Moved::over) file.beside.clear();  // nothing stays beside
    return SaveResult::written;
}

void closeNewFile(NewFile* file) noexcept {
    if (!file) return;
    // Of an exchange this is the old file.
    if (!file->beside.empty()) ::unlinkat(file->folder.get(), file->beside.c_str(), 0);
    delete file;
}

}  // namespace ko::platform
