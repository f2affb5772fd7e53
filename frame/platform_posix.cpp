// The POSIX side of the seam.
#include "frame/platform.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#include "frame/ascii.h"
#include "frame/posix_file.h"
#include "resources/texts.h"

namespace ko::platform {

const char kSeparator = '/';
const char kPluginSuffix[] = ".so";

uint32_t lastError() noexcept { return static_cast<uint32_t>(errno); }

void setLastError(uint32_t error) noexcept { errno = static_cast<int>(error); }

void setLastError(Cause cause) noexcept {
    switch (cause) {
        case Cause::shortMemory: errno = ENOMEM; break;
        case Cause::damaged: errno = EBADMSG; break;
        case Cause::tooLarge: errno = EFBIG; break;
        case Cause::wrongArgument: errno = EINVAL; break;
        case Cause::nameTooLong: errno = ENAMETOOLONG; break;
        case Cause::interrupted: errno = EINTR; break;
    }
}

int openAt(int folder, const char* path, int flags, mode_t mode) noexcept {
    int file;
    do file = ::openat(folder, path, flags | O_CLOEXEC, mode);
    while (file < 0 && errno == EINTR);
    if (file < 0 || file > STDERR_FILENO) return file;
    const int other = ::fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(file);
    return other;
}

FileHandle openForReading(const char* path, bool) noexcept {
    const int file = openAt(AT_FDCWD, path, O_RDONLY | O_NONBLOCK);
    if (file < 0) return kNoFile;
    struct stat status;
    if (::fstat(file, &status) == 0) {
        if (S_ISREG(status.st_mode)) return file;
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    }
    close(file);
    return kNoFile;
}

void close(FileHandle file) noexcept {
    const ErrorKeeper keeper;
    ::close(static_cast<int>(file));
}

bool sizeOf(FileHandle file, uint64_t& size) noexcept {
    struct stat status;
    if (::fstat(static_cast<int>(file), &status) != 0) return false;
    size = static_cast<uint64_t>(status.st_size);
    return true;
}

bool read(FileHandle file, void* buffer, size_t size) noexcept {
    size_t done = 0;
    while (done < size) {
        const ssize_t got =
            ::read(static_cast<int>(file), static_cast<char*>(buffer) + done, size - done);
        if (got > 0) {
            done += static_cast<size_t>(got);
        } else if (got == 0) {
            errno = EIO;  // the file had been longer
            return false;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

uint64_t skipHole(FileHandle file, uint64_t position, uint64_t size) noexcept {
    const ErrorKeeper keeper;
    const off_t found = ::lseek(static_cast<int>(file), static_cast<off_t>(position), SEEK_DATA);
    if (found < 0) return errno == ENXIO ? size : position;  // a file system may not say
    return std::min(static_cast<uint64_t>(found), size);
}

namespace {

// After a mismatch only the last star may take one character more, so the work is bounded by the
// product of the lengths.
bool matches(std::string_view pattern, std::string_view name) noexcept {
    if (pattern == "*.*") return true;  // as hosts of the other platform mean it
    size_t at = 0, star = std::string_view::npos, resume = 0;
    for (size_t i = 0; i < name.size();) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            resume = i;
        } else if (at < pattern.size() &&
                   (pattern[at] == '?' || lowerAscii(pattern[at]) == lowerAscii(name[i]))) {
            ++at;
            ++i;
        } else if (star != std::string_view::npos) {
            at = star + 1;
            i = ++resume;
        } else {
            return false;
        }
    }
    while (at < pattern.size() && pattern[at] == '*') ++at;
    return at == pattern.size();
}

}  // namespace

std::vector<std::string> filesMatching(const char* pattern) {
    const std::string_view path(pattern);
    const size_t slash = path.rfind('/');
    const bool here = slash == std::string_view::npos;
    const std::string folder = here ? "." : std::string(path.substr(0, slash + 1));
    const std::string_view name = here ? path : path.substr(slash + 1);
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), &::closedir);
    if (!entries) return names;
    const ErrorKeeper keeper;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(entries.get());
        if (!entry) break;
        if (!matches(name, entry->d_name)) continue;
        // The folder itself says what most entries are; the others are looked at.
        bool isFile = entry->d_type == DT_REG;
        if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
            struct stat status;
            isFile = ::fstatat(::dirfd(entries.get()), entry->d_name, &status, 0) == 0 &&
                     S_ISREG(status.st_mode);
        }
        if (isFile) names.emplace_back(entry->d_name);
    }
    if (errno != 0) names.clear();
    return names;
}

namespace {

DateTime toDateTime(time_t moment) noexcept {
    struct tm parts {};
    ::localtime_r(&moment, &parts);
    return {static_cast<uint16_t>(parts.tm_year + 1900), static_cast<uint16_t>(parts.tm_mon + 1),
            static_cast<uint16_t>(parts.tm_mday),        static_cast<uint16_t>(parts.tm_hour),
            static_cast<uint16_t>(parts.tm_min),         static_cast<uint16_t>(parts.tm_sec)};
}

}  // namespace

FileFault faultOf(uint32_t error) noexcept {
    switch (static_cast<int>(error)) {
        case ENOENT: return FileFault::missing;
        case ENOTDIR: return FileFault::noFolder;
        case EBUSY:
        case ETXTBSY: return FileFault::inUse;
        case EACCES:
        case EPERM:
        case EROFS: return FileFault::denied;
        case ENOSPC:
        case EDQUOT: return FileFault::diskFull;
        case ENAMETOOLONG:
        case EILSEQ: return FileFault::badName;
        default: return FileFault::other;
    }
}

bool sameFile(const char* a, const char* b) noexcept {
    struct stat first, second;
    return ::stat(a, &first) == 0 && ::stat(b, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

bool samePath(const char* a, const char* b) noexcept {
    for (; *a && lowerAscii(*a) == lowerAscii(*b); ++a) ++b;
    return lowerAscii(*a) == lowerAscii(*b);
}

DateTime localTime() noexcept { return toDateTime(::time(nullptr)); }

bool fileTime(const char* path, DateTime& time) noexcept {
    struct stat status;
    if (::stat(path, &status) != 0) return false;
    time = toDateTime(status.st_mtime);
    return true;
}

// Paths are bytes here; '/' never occurs inside a character of any encoding in use.
size_t characterLength(std::string_view) noexcept { return 1; }

bool isSeparator(char character) noexcept { return character == '/'; }

bool isDriveMark(char) noexcept { return false; }

bool isAbsolute(std::string_view path) noexcept { return path.starts_with('/'); }

// "..\\data" in a settings file that came from Windows can only be meant as a relative folder.
void adoptSeparators(std::string& path) {
    const size_t dots = path.find_first_not_of('.');
    if (dots == 1 || dots == 2)
        if (path[dots] == '\\') std::replace(path.begin(), path.end(), '\\', '/');
}

bool fullPath(const char* path, char (&absolute)[kPathSize]) noexcept try {
    // Like its Windows twin this works on the text: the file need not exist.
    std::string whole;
    if (path[0] != '/') {
        char here[PATH_MAX];
        if (!::getcwd(here, sizeof here)) return false;
        whole = std::string(here) + '/';
    }
    whole += path;
    std::string clean;
    for (size_t at = 0; at < whole.size();) {
        const size_t end = std::min(whole.find('/', at), whole.size());
        const std::string part = whole.substr(at, end - at);
        if (part == "..") clean.erase(clean.rfind('/') == std::string::npos ? 0 : clean.rfind('/'));
        else if (!part.empty() && part != ".") clean += '/' + part;
        at = end + 1;
    }
    if (clean.empty()) clean.push_back('/');
    if (clean.size() >= kPathSize) return false;
    std::memcpy(absolute, clean.c_str(), clean.size() + 1);
    return true;
} catch (...) {
    return false;
}

namespace {
// In memory that every thread has from its start. Otherwise it would be allocated when a thread
// first asks for it, and the process would end where memory is short.
[[gnu::tls_model("initial-exec")]] constinit thread_local void* pointerOfThisThread = nullptr;
}  // namespace

void* threadPointer() noexcept { return pointerOfThisThread; }
bool setThreadPointer(void* pointer) noexcept {
    pointerOfThisThread = pointer;
    return true;
}

void* moduleHandle() noexcept {
    Dl_info info;
    return ::dladdr(reinterpret_cast<void*>(&moduleHandle), &info) ? info.dli_fbase : nullptr;
}

bool modulePath(char (&path)[kPathSize]) noexcept {
    Dl_info info;
    void* found = nullptr;
    if (!::dladdr1(reinterpret_cast<void*>(&moduleHandle), &info, &found, RTLD_DL_LINKMAP))
        return false;
    const char* name = found ? static_cast<const link_map*>(found)->l_name : nullptr;
    if (name && *name) return fullPath(name, path);
    // Part of the program itself, whose entry has no name.
    char program[kPathSize + 1];
    const ssize_t length = ::readlink("/proc/self/exe", program, kPathSize);
    if (length <= 0 || static_cast<size_t>(length) >= kPathSize) return false;
    program[length] = '\0';
    return fullPath(program, path);
}

std::span<const char> textResource(const char* name) noexcept { return texts::table(name); }

std::string userLanguage() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (!value || !*value) continue;
        const std::string language(value, std::strcspn(value, "_.@"));
        if (language == "ja") return "japanese";
        if (language == "en") return "english";
        if (language == "zh") {
            // The Chinese table is in the simplified code page.
            const std::string_view locale(value);
            for (const char* traditional : {"_TW", "_HK", "_MO"})
                if (locale.find(traditional) != locale.npos) return "chinese-traditional";
            return "chinese";
        }
        return language == "C" || language == "POSIX" ? std::string() : language;
    }
    return {};
}

// The loader keeps its reasons to itself: what stands in the way of opening the file is asked for
// again, and of one that can be opened it is said that it is no library to load.
void* loadModule(const char* path) noexcept {
    const uint32_t before = lastError();
    void* const module = ::dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (module) {
        setLastError(before);
    } else if (const Descriptor file(openAt(AT_FDCWD, path, O_RDONLY | O_NONBLOCK)); file) {
        errno = ELIBACC;
    }
    return module;
}

void* findSymbol(void* module, const char* name) noexcept {
    void* const symbol = ::dlsym(module, name);
    if (!symbol) errno = ELIBBAD;
    return symbol;
}

void freeModule(void* module) noexcept {
    const ErrorKeeper keeper;
    ::dlclose(module);
}

// A library without windows has no pointer to change.
WaitCursor::WaitCursor(Source) noexcept : previous_(nullptr) {}
WaitCursor::~WaitCursor() = default;

}  // namespace ko::platform
