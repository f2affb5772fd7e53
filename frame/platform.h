// The one seam to the operating system. platform_win.cpp and platform_posix.cpp implement it;
// nothing else of the engine includes a system header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ko::platform {

constexpr size_t kPathSize = 260;  // of every path field, terminating NUL included

// Why a call failed, where the system keeps it: errno, or GetLastError. What cleans up keeps it.
uint32_t lastError() noexcept;
void setLastError(uint32_t error) noexcept;
enum class Cause { shortMemory, damaged, tooLarge, wrongArgument, nameTooLong, interrupted };
void setLastError(Cause cause) noexcept;
inline bool lastErrorIs(Cause cause) noexcept {
    const uint32_t error = lastError();
    setLastError(cause);
    const bool same = lastError() == error;
    setLastError(error);
    return same;
}
inline bool failFor(Cause cause) noexcept {  // a false with its reason
    setLastError(cause);
    return false;
}

class ErrorKeeper {  // gives back at its end what it found at its start
public:
    ErrorKeeper() noexcept : error_(lastError()) {}
    ~ErrorKeeper() { setLastError(error_); }
    ErrorKeeper(const ErrorKeeper&) = delete;
    ErrorKeeper& operator=(const ErrorKeeper&) = delete;

private:
    uint32_t error_;
};

// The system-wide mutex behind the file guard. Opening one that was never created fails on
// Windows. On POSIX the name is a file in a folder that belongs to the user and lies at one place,
// whatever the environment says; it is locked with flock, so that the kernel releases it when a
// process dies, and closed in a forked child, so that a child holds nothing. Where that folder
// cannot be had, opening fails.
struct NamedMutex;
NamedMutex* createNamedMutex(const char* name) noexcept;  // null: it cannot be created
void closeNamedMutex(NamedMutex* mutex) noexcept;
NamedMutex* openNamedMutex(const char* name) noexcept;  // null: it cannot be opened
// Asked some fifty times a second while another process or thread holds the mutex, with its
// process number (0: unknown). False gives up.
using MutexWait = bool (*)(uint32_t waitedMilliseconds, uint32_t holder) noexcept;
// Without wait it waits without a time limit. False, the mutex not held, when wait gave up.
bool lock(NamedMutex& mutex, MutexWait wait) noexcept;
void unlock(NamedMutex& mutex) noexcept;  // what lock took
inline void unlockAndClose(NamedMutex* mutex) noexcept {
    if (!mutex) return;
    unlock(*mutex);
    closeNamedMutex(mutex);
}

// What an error means for somebody who wanted to read or write a file.
enum class FileFault { missing, noFolder, inUse, denied, diskFull, badName, other };
FileFault faultOf(uint32_t error) noexcept;

// Files that are read. Only regular ones are opened, so that no read waits for ever.
using FileHandle = intptr_t;
constexpr FileHandle kNoFile = -1;
FileHandle openForReading(const char* path, bool shareReading) noexcept;  // kNoFile: it cannot be
void close(FileHandle file) noexcept;
bool sizeOf(FileHandle file, uint64_t& size) noexcept;
bool read(FileHandle file, void* buffer, size_t size) noexcept;  // all of it, or false
// The next place, from position on, that may hold anything but zeros; at most size. The file is
// then read from there.
uint64_t skipHole(FileHandle file, uint64_t position, uint64_t size) noexcept;

// A file that is made beside its place and then takes the place of the old one; see
// frame/file.h. In its name other processes see that it is one, and whether anybody makes it.
enum class SaveResult {
    written,     // the new file is in its place, and on the disk
    notCreated,  // the target may not be created or replaced
    failed,      // a write or flush failed, or memory or another resource was short
};
struct NewFile;
NewFile* beginNewFile(const char* path, SaveResult& failure);  // null: see failure; std::bad_alloc
bool write(NewFile& file, const void* bytes, size_t size) noexcept;     // all or false
bool seek(NewFile& file, uint64_t position) noexcept;                   // also past the end
bool read(NewFile& file, void* buffer, size_t size) noexcept;           // all of it, or false
SaveResult finish(NewFile& file) noexcept;                              // once, after the last write
void closeNewFile(NewFile* file) noexcept;  // one that is not finished leaves nothing behind

// The names of the files, folders left out, that a path with * and ? in its last part stands for,
// in no order. ASCII case is ignored; "*.*" stands for every name. A name that the system's code
// page cannot say comes in its short form, or not at all.
std::vector<std::string> filesMatching(const char* pattern);

// Whether two paths differ at most in the case of letters, as the system sees them.
bool samePath(const char* a, const char* b) noexcept;
// Whether two paths lead to one file that is there.
bool sameFile(const char* a, const char* b) noexcept;

struct DateTime {
    uint16_t year, month, day, hour, minute, second;
};
DateTime localTime() noexcept;
bool fileTime(const char* path, DateTime& time) noexcept;  // last change, local time

// Paths are in the system's code page, where a second byte may look like a separator.
size_t characterLength(std::string_view text) noexcept;  // bytes of the first character, 1 or 2
bool isSeparator(char character) noexcept;
bool isDriveMark(char character) noexcept;  // the colon of C:
extern const char kSeparator;
void adoptSeparators(std::string& path);  // a relative path as the other platform writes it
bool isAbsolute(std::string_view path) noexcept;  // leads to one place whatever is current
bool fullPath(const char* path, char (&absolute)[kPathSize]) noexcept;

// One pointer of each thread's own; null until it is set. Reading it does not touch the thread's
// last error. Setting it fails where the system has no room for it.
void* threadPointer() noexcept;
[[nodiscard]] bool setThreadPointer(void* pointer) noexcept;

// This library (or the program that it is built into).
void* moduleHandle() noexcept;
bool modulePath(char (&path)[kPathSize]) noexcept;  // false when it does not fit
std::span<const char> textResource(const char* name) noexcept;  // empty: there is none

// The language of the user's desktop: "japanese", "english", "chinese" (simplified), another
// lower-case name, or empty when unknown.
std::string userLanguage();

// Plug-ins. What is not loaded or found leaves a reason.
extern const char kPluginSuffix[];  // ".dll" or ".so"
void* loadModule(const char* path) noexcept;
void* findSymbol(void* module, const char* name) noexcept;
void freeModule(void* module) noexcept;

// Shows a cursor while work goes on and restores the previous one. The library carries no cursor
// of its own, so the one looked up in it is none at all: the pointer disappears.
class WaitCursor {
public:
    enum class Source { library, system };
    explicit WaitCursor(Source source) noexcept;
    ~WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    [[maybe_unused]] void* previous_;
};

}  // namespace ko::platform
