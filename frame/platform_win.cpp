// The Windows side of the seam: the ANSI calls, so that paths stay the bytes that the host gave.
#include "frame/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <new>

extern "C" IMAGE_DOS_HEADER __ImageBase;  // set by the linker: the module that this is built into

namespace ko::platform {

const char kSeparator = '\\';
const char kPluginSuffix[] = ".dll";

struct NamedMutex {
    HANDLE handle;
};

namespace {

NamedMutex* owned(HANDLE handle) noexcept {
    if (!handle) return nullptr;
    if (auto* mutex = new (std::nothrow) NamedMutex{handle}) return mutex;
    ::CloseHandle(handle);
    return nullptr;
}

HANDLE handleOf(FileHandle file) noexcept { return reinterpret_cast<HANDLE>(file); }
static_assert(sizeof(FileHandle) == sizeof(HANDLE));

HMODULE thisModule() noexcept { return reinterpret_cast<HMODULE>(&__ImageBase); }

// ReadFile and WriteFile count in 32 bits.
DWORD portion(size_t size) noexcept {
    return static_cast<DWORD>(std::min<size_t>(size, size_t{1} << 30));
}

DateTime toDateTime(const SYSTEMTIME& time) noexcept {
    return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond};
}

}  // namespace

NamedMutex* createNamedMutex(const char* name) noexcept {
    return owned(::CreateMutexA(nullptr, FALSE, name));
}

void closeNamedMutex(NamedMutex* mutex) noexcept {
    if (!mutex) return;
    ::CloseHandle(mutex->handle);
    delete mutex;
}

NamedMutex* openNamedMutex(const char* name) noexcept {
    return owned(::OpenMutexA(MUTEX_ALL_ACCESS, FALSE, name));
}

// A mutex whose owner died is taken like one that was given back.
void lock(NamedMutex& mutex) noexcept { ::WaitForSingleObject(mutex.handle, INFINITE); }

void unlockAndClose(NamedMutex* mutex) noexcept {
    if (!mutex) return;
    ::ReleaseMutex(mutex->handle);
    closeNamedMutex(mutex);
}

FileHandle openForReading(const char* path, bool shareReading) noexcept {
    const HANDLE file = ::CreateFileA(path, GENERIC_READ, shareReading ? FILE_SHARE_READ : 0,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return kNoFile;
    if (::GetFileType(file) == FILE_TYPE_DISK) return reinterpret_cast<FileHandle>(file);
    ::CloseHandle(file);
    return kNoFile;
}

FileHandle createForWriting(const char* path) noexcept {
    const HANDLE file = ::CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    return file == INVALID_HANDLE_VALUE ? kNoFile : reinterpret_cast<FileHandle>(file);
}

FileHandle createNew(const char* path) noexcept {
    const HANDLE file = ::CreateFileA(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    return file == INVALID_HANDLE_VALUE ? kNoFile : reinterpret_cast<FileHandle>(file);
}

bool flush(FileHandle file) noexcept { return ::FlushFileBuffers(handleOf(file)) != 0; }

void close(FileHandle file) noexcept { ::CloseHandle(handleOf(file)); }

uint64_t sizeOf(FileHandle file) noexcept {
    LARGE_INTEGER size;
    return ::GetFileSizeEx(handleOf(file), &size) ? static_cast<uint64_t>(size.QuadPart) : 0;
}

size_t read(FileHandle file, void* buffer, size_t size) noexcept {
    size_t done = 0;
    while (done < size) {
        DWORD got = 0;
        if (!::ReadFile(handleOf(file), static_cast<char*>(buffer) + done, portion(size - done),
                        &got, nullptr) || got == 0)
            break;
        done += got;
    }
    return done;
}

bool write(FileHandle file, const void* bytes, size_t size) noexcept {
    size_t done = 0;
    while (done < size) {
        DWORD put = 0;
        if (!::WriteFile(handleOf(file), static_cast<const char*>(bytes) + done,
                         portion(size - done), &put, nullptr) || put == 0)
            return false;
        done += put;
    }
    return true;
}

bool seek(FileHandle file, uint64_t position) noexcept {
    if (position > static_cast<uint64_t>(LLONG_MAX)) return false;
    LARGE_INTEGER distance;
    distance.QuadPart = static_cast<LONGLONG>(position);
    return ::SetFilePointerEx(handleOf(file), distance, nullptr, FILE_BEGIN) != 0;
}

bool deleteFile(const char* path) noexcept { return ::DeleteFileA(path) != 0; }

bool replaceFile(const char* from, const char* to) noexcept {
    return ::MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

namespace {
// Nothing when the code page cannot say the name: one that says something else is no file's.
std::string systemName(const wchar_t* name) {
    char text[2 * MAX_PATH];
    BOOL lost = FALSE;
    const int size = ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name, -1, text,
                                           static_cast<int>(sizeof text), nullptr, &lost);
    return size > 0 && !lost ? text : "";
}
}  // namespace

std::vector<std::string> filesMatching(const char* pattern) {
    std::vector<std::string> names;
    wchar_t widePattern[kPathSize];
    if (::MultiByteToWideChar(CP_ACP, 0, pattern, -1, widePattern, kPathSize) == 0) return names;
    WIN32_FIND_DATAW found;
    const HANDLE search = ::FindFirstFileW(widePattern, &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    const std::unique_ptr<void, decltype(&::FindClose)> closer(search, &::FindClose);
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
        std::string name = systemName(found.cFileName);
        if (name.empty()) name = systemName(found.cAlternateFileName);  // the short form
        if (!name.empty()) names.push_back(std::move(name));
    } while (::FindNextFileW(search, &found));
    return names;
}

bool samePath(const char* a, const char* b) noexcept { return ::lstrcmpiA(a, b) == 0; }

DateTime localTime() noexcept {
    SYSTEMTIME now;
    ::GetLocalTime(&now);
    return toDateTime(now);
}

bool fileTime(const char* path, DateTime& time) noexcept {
    WIN32_FILE_ATTRIBUTE_DATA data;
    SYSTEMTIME utc, local;
    if (!::GetFileAttributesExA(path, GetFileExInfoStandard, &data) ||
        !::FileTimeToSystemTime(&data.ftLastWriteTime, &utc) ||
        !::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local))
        return false;
    time = toDateTime(local);
    return true;
}

size_t characterLength(std::string_view text) noexcept {
    return text.size() > 1 && ::IsDBCSLeadByte(static_cast<BYTE>(text[0])) ? 2 : 1;
}

bool isSeparator(char character) noexcept { return character == '\\' || character == '/'; }

bool isDriveMark(char character) noexcept { return character == ':'; }

bool fullPath(const char* path, char (&absolute)[kPathSize]) noexcept {
    char whole[kPathSize];
    const DWORD length = ::GetFullPathNameA(path, kPathSize, whole, nullptr);
    if (length == 0 || length >= kPathSize) return false;
    std::copy_n(whole, length + 1, absolute);
    return true;
}

void adoptSeparators(std::string&) {}  // Windows takes both

void* moduleHandle() noexcept { return thisModule(); }

bool modulePath(char (&path)[kPathSize]) noexcept {
    char whole[kPathSize];
    const DWORD length = ::GetModuleFileNameA(thisModule(), whole, kPathSize);
    if (length == 0 || length >= kPathSize) return false;  // a name cut short is another's
    std::copy_n(whole, length + 1, path);
    return true;
}

std::span<const char> textResource(const char* name) noexcept {
    constexpr WORD kHtml = 23;  // RT_HTML
    const HRSRC found = ::FindResourceA(thisModule(), name, MAKEINTRESOURCEA(kHtml));
    if (!found) return {};
    const HGLOBAL loaded = ::LoadResource(thisModule(), found);
    const void* bytes = loaded ? ::LockResource(loaded) : nullptr;
    if (!bytes) return {};
    return {static_cast<const char*>(bytes), ::SizeofResource(thisModule(), found)};
}

std::string userLanguage() {
    const LANGID language = ::GetUserDefaultUILanguage();
    switch (PRIMARYLANGID(language)) {
        case LANG_JAPANESE: return "japanese";
        case LANG_ENGLISH: return "english";
        case LANG_CHINESE: {
            // The Chinese table is in the simplified code page; where another is in use, its
            // bytes would show as other characters, and the English texts serve better.
            const WORD variant = SUBLANGID(language);
            const bool simplified =
                variant == SUBLANG_CHINESE_SIMPLIFIED || variant == SUBLANG_CHINESE_SINGAPORE;
            return simplified ? "chinese" : "chinese-traditional";
        }
        default: break;
    }
    char name[80];
    const int size = ::GetLocaleInfoA(MAKELCID(language, SORT_DEFAULT), LOCALE_SISO639LANGNAME,
                                      name, sizeof name);
    return size > 0 ? std::string(name) : "other";
}

void* loadModule(const char* path) noexcept {
    DWORD before = 0;  // a damaged plug-in is an error of the call, not a box on the screen
    const BOOL changed = ::SetThreadErrorMode(SEM_FAILCRITICALERRORS, &before);
    void* const module = ::LoadLibraryA(path);
    if (changed) ::SetThreadErrorMode(before, nullptr);
    return module;
}

void* findSymbol(void* module, const char* name) noexcept {
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(module), name));
}

void freeModule(void* module) noexcept { ::FreeLibrary(static_cast<HMODULE>(module)); }

WaitCursor::WaitCursor(Source source) noexcept
    : previous_(::SetCursor(::LoadCursorA(source == Source::library ? thisModule() : nullptr,
                                          MAKEINTRESOURCEA(32514)))) {}  // IDC_WAIT

WaitCursor::~WaitCursor() { ::SetCursor(static_cast<HCURSOR>(previous_)); }

}  // namespace ko::platform
