// The POSIX side of the seam.
#include "frame/platform.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>

#include "resources/texts.h"

namespace ko::platform {

const char kSeparator = '/';
const char kPluginSuffix[] = ".so";

struct NamedMutex {
    int file;
};

namespace {

int openRetrying(const char* path, int flags, mode_t mode) noexcept {
    int file;
    do file = ::open(path, flags | O_CLOEXEC, mode);
    while (file < 0 && errno == EINTR);
    if (file < 0 || file > STDERR_FILENO) return file;
    // A host may have its standard streams closed; what it then writes to one must not land in a
    // file of ours.
    const int other = ::fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ::close(file);
    return other;
}

bool ownFolder(const char* path) noexcept {
    struct stat status;
    return ::lstat(path, &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::getuid();
}

// The user's runtime folder; without one, a file in /tmp that carries the user's number. Every
// process of the user must arrive at the same file, so the usual place goes before what the
// environment of this one process says.
std::string lockPath(const char* name) {
    const std::string user = std::to_string(::getuid());
    const std::string folder = "/run/user/" + user;
    if (ownFolder(folder.c_str())) return folder + '/' + name;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime && runtime[0] == '/' && ownFolder(runtime)) return std::string(runtime) + '/' + name;
    return "/tmp/" + std::string(name) + '.' + user;
}

// As on Windows, a thread that holds the mutex gets it again at once. There is one mutex.
thread_local int depthOfThisThread = 0;

}  // namespace

NamedMutex* openNamedMutex(const char* name) noexcept try {
    // Each opening has a lock of its own, so threads of one process keep each other out too.
    // The file stays when it is closed: removing it would part those who have it open from
    // those who come later.
    const int file = openRetrying(lockPath(name).c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, 0600);
    if (file < 0) return nullptr;
    struct stat status;
    if (::fstat(file, &status) == 0 && status.st_uid == ::getuid())
        if (auto* mutex = new (std::nothrow) NamedMutex{file}) return mutex;
    ::close(file);
    return nullptr;
} catch (...) {
    return nullptr;
}

NamedMutex* createNamedMutex(const char* name) noexcept { return openNamedMutex(name); }

void lock(NamedMutex& mutex) noexcept {
    if (depthOfThisThread++ > 0) return;
    while (::flock(mutex.file, LOCK_EX) != 0 && errno == EINTR) {}
}

void closeNamedMutex(NamedMutex* mutex) noexcept {
    if (!mutex) return;
    ::close(mutex->file);
    delete mutex;
}

void unlockAndClose(NamedMutex* mutex) noexcept {
    if (!mutex) return;
    // A child forked meanwhile shares the opening; unlocking does not wait for it to close.
    if (--depthOfThisThread == 0) ::flock(mutex->file, LOCK_UN);
    closeNamedMutex(mutex);
}

FileHandle openForReading(const char* path, bool) noexcept {
    const int file = openRetrying(path, O_RDONLY | O_NONBLOCK, 0);
    if (file < 0) return kNoFile;
    struct stat status;
    if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode)) return file;
    ::close(file);
    return kNoFile;
}

FileHandle createForWriting(const char* path) noexcept {
    const int file = openRetrying(path, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK, 0666);
    return file < 0 ? kNoFile : file;
}

FileHandle createNew(const char* path) noexcept {
    const int file = openRetrying(path, O_WRONLY | O_CREAT | O_EXCL, 0666);
    return file < 0 ? kNoFile : file;
}

bool flush(FileHandle file) noexcept { return ::fsync(static_cast<int>(file)) == 0; }

void close(FileHandle file) noexcept { ::close(static_cast<int>(file)); }

uint64_t sizeOf(FileHandle file) noexcept {
    struct stat status;
    return ::fstat(static_cast<int>(file), &status) == 0 ? static_cast<uint64_t>(status.st_size) : 0;
}

size_t read(FileHandle file, void* buffer, size_t size) noexcept {
    size_t done = 0;
    while (done < size) {
        const ssize_t got = ::read(static_cast<int>(file), static_cast<char*>(buffer) + done, size - done);
        if (got > 0) done += static_cast<size_t>(got);
        else if (got == 0 || errno != EINTR) break;
    }
    return done;
}

bool write(FileHandle file, const void* bytes, size_t size) noexcept {
    size_t done = 0;
    while (done < size) {
        const ssize_t put =
            ::write(static_cast<int>(file), static_cast<const char*>(bytes) + done, size - done);
        if (put > 0) done += static_cast<size_t>(put);
        else if (put == 0 || errno != EINTR) return false;
    }
    return true;
}

bool seek(FileHandle file, uint64_t position) noexcept {
    return position <= static_cast<uint64_t>(LLONG_MAX) &&
           ::lseek(static_cast<int>(file), static_cast<off_t>(position), SEEK_SET) >= 0;
}

bool deleteFile(const char* path) noexcept { return ::unlink(path) == 0; }

bool replaceFile(const char* from, const char* to) noexcept {
    struct stat status;
    if (::stat(to, &status) == 0) {
        if (!S_ISREG(status.st_mode)) return false;  // a device is written to, never replaced
        ::chmod(from, status.st_mode & 0777);
    }
    return ::rename(from, to) == 0;
}

namespace {

char lowerCase(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
}

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
                   (pattern[at] == '?' || lowerCase(pattern[at]) == lowerCase(name[i]))) {
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
    while (const dirent* entry = ::readdir(entries.get())) {
        struct stat status;
        if (matches(name, entry->d_name) &&
            ::fstatat(::dirfd(entries.get()), entry->d_name, &status, 0) == 0 && S_ISREG(status.st_mode))
            names.emplace_back(entry->d_name);
    }
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

bool samePath(const char* a, const char* b) noexcept {
    for (; *a && lowerCase(*a) == lowerCase(*b); ++a) ++b;
    return lowerCase(*a) == lowerCase(*b);
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

void* loadModule(const char* path) noexcept { return ::dlopen(path, RTLD_NOW | RTLD_LOCAL); }
void* findSymbol(void* module, const char* name) noexcept { return ::dlsym(module, name); }
void freeModule(void* module) noexcept { ::dlclose(module); }

// A library without windows has no pointer to change.
WaitCursor::WaitCursor(Source) noexcept : previous_(nullptr) {}
WaitCursor::~WaitCursor() = default;

}  // namespace ko::platform
