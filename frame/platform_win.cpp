// The Windows side of the seam: the ANSI calls, so that paths stay the bytes that the host gave.
#include "frame/platform.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <memory>
#include <utility>

extern "C" IMAGE_DOS_HEADER __ImageBase;  // set by the linker: the module that this is built into

namespace ko::platform {

const char kSeparator = '\\';
const char kPluginSuffix[] = ".dll";

namespace {

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

uint32_t lastError() noexcept { return ::GetLastError(); }

void setLastError(uint32_t error) noexcept { ::SetLastError(error); }

void setLastError(Cause cause) noexcept {
    switch (cause) {
        case Cause::shortMemory: ::SetLastError(ERROR_NOT_ENOUGH_MEMORY); break;
        case Cause::damaged: ::SetLastError(ERROR_INVALID_DATA); break;
        case Cause::tooLarge: ::SetLastError(ERROR_FILE_TOO_LARGE); break;
        case Cause::wrongArgument: ::SetLastError(ERROR_INVALID_PARAMETER); break;
        case Cause::nameTooLong: ::SetLastError(ERROR_FILENAME_EXCED_RANGE); break;
        case Cause::interrupted: ::SetLastError(ERROR_OPERATION_ABORTED); break;
    }
}

// Those who read together let the file be replaced meanwhile, and wait a moment for whoever is
// replacing it; a profile's reader wants it alone.
FileHandle openForReading(const char* path, bool shareReading) noexcept {
    const DWORD sharing = shareReading ? FILE_SHARE_READ | FILE_SHARE_DELETE : 0;
    HANDLE file = INVALID_HANDLE_VALUE;
    for (int attempt = 0; attempt < 20; ++attempt) {
        file = ::CreateFileA(path, GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE || !shareReading ||
            ::GetLastError() != ERROR_SHARING_VIOLATION)
            break;
        ::Sleep(5);
    }
    if (file == INVALID_HANDLE_VALUE) return kNoFile;
    ::SetLastError(NO_ERROR);
    const DWORD type = ::GetFileType(file);
    if (type == FILE_TYPE_DISK) return reinterpret_cast<FileHandle>(file);
    const DWORD error = type == FILE_TYPE_UNKNOWN ? ::GetLastError() : NO_ERROR;
    ::CloseHandle(file);
    ::SetLastError(error != NO_ERROR ? error : ERROR_BAD_FILE_TYPE);
    return kNoFile;
}

void close(FileHandle file) noexcept {
    const ErrorKeeper keeper;
    ::CloseHandle(handleOf(file));
}

bool sizeOf(FileHandle file, uint64_t& size) noexcept {
    LARGE_INTEGER found;
    if (!::GetFileSizeEx(handleOf(file), &found)) return false;
    size = static_cast<uint64_t>(found.QuadPart);
    return true;
}

bool read(FileHandle file, void* buffer, size_t size) noexcept {
    for (size_t done = 0; done < size;) {
        DWORD got = 0;
        if (!::ReadFile(handleOf(file), static_cast<char*>(buffer) + done, portion(size - done),
                        &got, nullptr))
            return false;
        if (got == 0) {  // the file had been longer
            ::SetLastError(ERROR_HANDLE_EOF);
            return false;
        }
        done += got;
    }
    return true;
}

// Holes read as zeros and cost the reading alone.
uint64_t skipHole(FileHandle, uint64_t position, uint64_t) noexcept { return position; }

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

FileFault faultOf(uint32_t error) noexcept {
    switch (error) {
        case ERROR_FILE_NOT_FOUND: return FileFault::missing;
        case ERROR_PATH_NOT_FOUND: return FileFault::noFolder;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_USER_MAPPED_FILE: return FileFault::inUse;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT: return FileFault::denied;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL: return FileFault::diskFull;
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_FILENAME_EXCED_RANGE: return FileFault::badName;
        default: return FileFault::other;
    }
}

namespace {
// The volume and the number on it of a file; false when it cannot be opened.
bool identityOf(const char* path, BY_HANDLE_FILE_INFORMATION& identity) noexcept {
    const HANDLE file = ::CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    const bool known = ::GetFileInformationByHandle(file, &identity) != FALSE;
    ::CloseHandle(file);
    return known;
}
}  // namespace

bool sameFile(const char* a, const char* b) noexcept {
    BY_HANDLE_FILE_INFORMATION first, second;
    return identityOf(a, first) && identityOf(b, second) &&
           first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
           first.nFileIndexHigh == second.nFileIndexHigh &&
           first.nFileIndexLow == second.nFileIndexLow;
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

bool isAbsolute(std::string_view path) noexcept {
    if (path.size() < 3) return false;
    if (isDriveMark(path[1])) return isSeparator(path[2]);
    return isSeparator(path[0]) && isSeparator(path[1]);
}

bool fullPath(const char* path, char (&absolute)[kPathSize]) noexcept {
    char whole[kPathSize];
    const DWORD length = ::GetFullPathNameA(path, kPathSize, whole, nullptr);
    if (length == 0 || length >= kPathSize) return false;
    std::copy_n(whole, length + 1, absolute);
    return true;
}

void adoptSeparators(std::string&) {}  // Windows takes both

namespace {
// The compiler's own thread-local variables are allocated when a thread first needs one, and end
// the process where memory is short.
constinit DWORD threadSlot = TLS_OUT_OF_INDEXES;  // reads as null until there is one
class ThreadSlot {
public:
    ThreadSlot() noexcept { threadSlot = ::TlsAlloc(); }
    ~ThreadSlot() {
        if (threadSlot != TLS_OUT_OF_INDEXES)
            ::TlsFree(std::exchange(threadSlot, TLS_OUT_OF_INDEXES));
    }
};
const ThreadSlot threadSlotOfThisModule;
}  // namespace

void* threadPointer() noexcept {
    const DWORD error = ::GetLastError();
    void* const pointer = ::TlsGetValue(threadSlot);
    ::SetLastError(error);
    return pointer;
}
bool setThreadPointer(void* pointer) noexcept { return ::TlsSetValue(threadSlot, pointer) != 0; }

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

void freeModule(void* module) noexcept {
    const ErrorKeeper keeper;
    ::FreeLibrary(static_cast<HMODULE>(module));
}

WaitCursor::WaitCursor(Source source) noexcept
    : previous_(::SetCursor(::LoadCursorA(source == Source::library ? thisModule() : nullptr,
                                          MAKEINTRESOURCEA(32514)))) {}  // IDC_WAIT

WaitCursor::~WaitCursor() { ::SetCursor(static_cast<HCURSOR>(previous_)); }

}  // namespace ko::platform
