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

// The system-wide mutex behind the file guard. Opening one that was never created fails on
// Windows; on POSIX the name is a file in the user's runtime folder, locked with flock, so that
// the kernel releases it when a process dies.
struct NamedMutex;
NamedMutex* createNamedMutex(const char* name) noexcept;  // null: it cannot be created
void closeNamedMutex(NamedMutex* mutex) noexcept;
NamedMutex* openNamedMutex(const char* name) noexcept;  // null: it cannot be opened
void lock(NamedMutex& mutex) noexcept;                  // waits without a time limit
void unlockAndClose(NamedMutex* mutex) noexcept;

// Files. Only regular files are opened for reading, so that no read waits for ever.
using FileHandle = intptr_t;
constexpr FileHandle kNoFile = -1;
FileHandle openForReading(const char* path, bool shareReading) noexcept;
FileHandle createForWriting(const char* path) noexcept;  // truncates what is there
FileHandle createNew(const char* path) noexcept;         // fails when the name is taken
bool flush(FileHandle file) noexcept;                    // to the disk
void close(FileHandle file) noexcept;
uint64_t sizeOf(FileHandle file) noexcept;                             // 0 when unknown
size_t read(FileHandle file, void* buffer, size_t size) noexcept;      // less at the end of file
bool write(FileHandle file, const void* bytes, size_t size) noexcept;  // all or false
bool seek(FileHandle file, uint64_t position) noexcept;
bool deleteFile(const char* path) noexcept;
bool replaceFile(const char* from, const char* to) noexcept;  // takes the place of to, whole

// The names of the files, folders left out, that a path with * and ? in its last part stands for,
// in no order. ASCII case is ignored; "*.*" stands for every name. A name that the system's code
// page cannot say comes in its short form, or not at all.
std::vector<std::string> filesMatching(const char* pattern);

// Whether two paths differ at most in the case of letters, as the system sees them.
bool samePath(const char* a, const char* b) noexcept;

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
bool fullPath(const char* path, char (&absolute)[kPathSize]) noexcept;

// This library (or the program that it is built into).
void* moduleHandle() noexcept;
bool modulePath(char (&path)[kPathSize]) noexcept;  // false when it does not fit
std::span<const char> textResource(const char* name) noexcept;  // empty: there is none

// The language of the user's desktop: "japanese", "english", "chinese" (simplified), another
// lower-case name, or empty when unknown.
std::string userLanguage();

// Plug-ins.
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
