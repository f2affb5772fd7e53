// Replacing files on Windows: made beside the old one, flushed, and put in its place by the
// system's replacing calls, which keep its attributes and who may use it.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "frame/path.h"

#include "frame/platform.h"

namespace ko::platform {

struct NewFile {
    std::wstring target;  // whole, in the form that takes names of any length
    std::wstring beside;  // empty: the target is written in place
    HANDLE file = INVALID_HANDLE_VALUE;
    bool replaces = false;  // there is an old file
    DWORD error = 0;        // of the first write that failed
};

namespace {

constexpr std::wstring_view kPrefix = L"~kolink-", kSuffix = L".tmp";

// Whether the target, rather than the moment, is what stands in the way.
SaveResult resultOf(DWORD error) noexcept {
    switch (error) {
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
        case ERROR_TOO_MANY_OPEN_FILES:
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
        case ERROR_NO_SYSTEM_RESOURCES:
        case ERROR_WRITE_FAULT:
        case ERROR_IO_DEVICE:
        case ERROR_CRC: return SaveResult::failed;
        default: return SaveResult::notCreated;
    }
}

std::wstring wide(const char* text) {
    const UINT page = ::AreFileApisANSI() ? CP_ACP : CP_OEMCP;
    const int size = ::MultiByteToWideChar(page, 0, text, -1, nullptr, 0);
    if (size <= 1) return {};
    std::wstring result(static_cast<size_t>(size), L'\0');
    ::MultiByteToWideChar(page, 0, text, -1, result.data(), size);
    result.pop_back();
    return result;
}

// Empty: see GetLastError.
std::wstring fullPath(const std::wstring& path) {
    const DWORD size = ::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring result(size, L'\0');
    const DWORD length = ::GetFullPathNameW(path.c_str(), size, result.data(), nullptr);
    if (length == 0 || length >= size) return {};
    result.resize(length);
    return result;
}

constexpr std::wstring_view kDevicePrefix = L"\\\\.\\", kLongPrefix = L"\\\\?\\";

std::wstring longForm(std::wstring full) {
    if (full.starts_with(kDevicePrefix) || full.starts_with(kLongPrefix)) return full;
    if (full.starts_with(L"\\\\")) return L"\\\\?\\UNC" + full.substr(1);
    return std::wstring(kLongPrefix) + full;
}

// Where a file that is there really is: the end of its symbolic links.
std::wstring behindLinks(const std::wstring& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), 0,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return path;
    wchar_t found[1024];
    const DWORD length = ::GetFinalPathNameByHandleW(file, found, 1024, FILE_NAME_NORMALIZED);
    ::CloseHandle(file);
    return length > 0 && length < 1024 ? std::wstring(found, length) : path;
}

std::wstring folderOf(const std::wstring& path) { return path.substr(0, path.rfind(L'\\') + 1); }

bool isOurName(std::wstring_view name, DWORD& process) {
    if (!name.starts_with(kPrefix) || !name.ends_with(kSuffix)) return false;
    name = name.substr(kPrefix.size(), name.size() - kPrefix.size() - kSuffix.size());
    if (name.empty() || name.find_first_not_of(L"0123456789abcdef-") != name.npos) return false;
    process = std::wcstoul(std::wstring(name).c_str(), nullptr, 16);
    return true;
}

bool isAlive(DWORD process) noexcept {
    const HANDLE handle = ::OpenProcess(SYNCHRONIZE, FALSE, process);
    if (!handle) return ::GetLastError() != ERROR_INVALID_PARAMETER;
    const bool alive = ::WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
    ::CloseHandle(handle);
    return alive;
}

// Removes what killed processes left: files of such a name that nobody has open and whose process
// is gone.
void removeLeftOvers(const std::wstring& folder) {
    WIN32_FIND_DATAW found;
    const std::wstring pattern = folder + std::wstring(kPrefix) + L"*" + std::wstring(kSuffix);
    const HANDLE search = ::FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    const std::unique_ptr<void, decltype(&::FindClose)> closer(search, &::FindClose);
    do {
        DWORD process = 0;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
            isOurName(found.cFileName, process) && !isAlive(process))
            ::DeleteFileW((folder + found.cFileName).c_str());
    } while (::FindNextFileW(search, &found));
}

bool makeBeside(NewFile& file, const std::wstring& folder) {
    static std::atomic<unsigned> count = 0;
    for (int attempt = 0; attempt < 100; ++attempt) {
        LARGE_INTEGER now;
        ::QueryPerformanceCounter(&now);
        wchar_t name[64];
        std::swprintf(name, 64, L"%lx-%lx-%x", ::GetCurrentProcessId(),
                      static_cast<unsigned long>(now.LowPart), count++);
        file.beside = folder + std::wstring(kPrefix) + name + std::wstring(kSuffix);
        file.file = ::CreateFileW(file.beside.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file.file != INVALID_HANDLE_VALUE) return true;
        if (::GetLastError() != ERROR_FILE_EXISTS) break;
    }
    file.beside.clear();
    return false;
}

// A device, or a file in a folder that takes no second one.
bool openInPlace(NewFile& file) noexcept {
    file.file = ::CreateFileW(file.target.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    return file.file != INVALID_HANDLE_VALUE;
}

bool begin(NewFile& file, const char* path, SaveResult& failure) {
    failure = SaveResult::notCreated;
    const std::wstring full = fullPath(wide(path));
    if (full.empty()) return false;
    if (full.starts_with(kDevicePrefix)) {
        file.target = full;
        return openInPlace(file);
    }
    file.target = behindLinks(longForm(full));
    const DWORD attributes = ::GetFileAttributesW(file.target.c_str());
    file.replaces = attributes != INVALID_FILE_ATTRIBUTES;
    if (file.replaces && (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }
    const std::wstring folder = folderOf(file.target);
    removeLeftOvers(folder);
    if (makeBeside(file, folder)) return true;
    if (file.replaces && ::GetLastError() == ERROR_ACCESS_DENIED) return openInPlace(file);
    failure = resultOf(::GetLastError());
    return false;
}

bool closeHandle(NewFile& file) noexcept {
    return ::CloseHandle(std::exchange(file.file, INVALID_HANDLE_VALUE)) != 0;
}

// Whether nobody keeps a file in its place.
bool mayBeMoved(const wchar_t* path) noexcept {
    const HANDLE file = ::CreateFileW(path, DELETE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    ::CloseHandle(file);
    return true;
}

// Asked first whether it may, the system is not made to begin what it cannot end: for a file that
// is held it may leave one of its own in the folder.
bool putInPlace(const NewFile& file) noexcept {
    const wchar_t *const from = file.beside.c_str(), *const to = file.target.c_str();
    if (file.replaces) {
        constexpr DWORD kFlags = REPLACEFILE_IGNORE_MERGE_ERRORS | REPLACEFILE_WRITE_THROUGH;
        if (mayBeMoved(to) && ::ReplaceFileW(to, from, nullptr, kFlags, nullptr, nullptr)) return true;
        const DWORD error = ::GetLastError();
        if (error != ERROR_FILE_NOT_FOUND && error != ERROR_NOT_SUPPORTED &&
            error != ERROR_INVALID_FUNCTION && error != ERROR_CALL_NOT_IMPLEMENTED)
            return false;
    }
    return ::MoveFileExW(from, to, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

// A reader may have the old file open for a moment; who keeps it open keeps it as it is.
bool putInPlacePatiently(const NewFile& file) noexcept {
    for (int attempt = 0;; ++attempt) {
        if (putInPlace(file)) return true;
        const DWORD error = ::GetLastError();
        const bool held = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
                          error == ERROR_LOCK_VIOLATION || error == ERROR_UNABLE_TO_REMOVE_REPLACED;
        if (!held || attempt == 20) return false;
        ::Sleep(10);
    }
}

}  // namespace

NewFile* beginNewFile(const char* path, SaveResult& failure) {
    auto file = std::make_unique<NewFile>();
    return begin(*file, path, failure) ? file.release() : nullptr;
}

bool write(NewFile& file, const void* bytes, size_t size) noexcept {
    if (file.error != 0) return false;
    for (size_t done = 0; done < size;) {
        DWORD put = 0;
        const auto portion = static_cast<DWORD>(std::min<size_t>(size - done, size_t{1} << 30));
        if (!::WriteFile(file.file, static_cast<const char*>(bytes) + done, portion, &put,
                         nullptr) || put == 0) {
            const DWORD error = ::GetLastError();
            file.error = error != 0 ? error : ERROR_WRITE_FAULT;
            return false;
        }
        done += put;
    }
    return true;
}

bool seek(NewFile& file, uint64_t position) noexcept {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(position);
    return ::SetFilePointerEx(file.file, place, nullptr, FILE_BEGIN) != 0;
}

bool read(NewFile& file, void* buffer, size_t size) noexcept {
    return read(reinterpret_cast<FileHandle>(file.file), buffer, size);
}

SaveResult finish(NewFile& file) noexcept {
    if (file.error != 0) {
        ::SetLastError(file.error);
        return SaveResult::failed;
    }
    if (file.beside.empty()) {
        if (::GetFileType(file.file) == FILE_TYPE_DISK &&
            (!::SetEndOfFile(file.file) || !::FlushFileBuffers(file.file)))
            return SaveResult::failed;
        return closeHandle(file) ? SaveResult::written : SaveResult::failed;
    }
    if (!::FlushFileBuffers(file.file) || !closeHandle(file)) return SaveResult::failed;
    if (!putInPlacePatiently(file)) return resultOf(::GetLastError());
    file.beside.clear();
    return SaveResult::written;
}

void closeNewFile(NewFile* file) noexcept {
    if (!file) return;
    if (file->file != INVALID_HANDLE_VALUE) closeHandle(*file);
    if (!file->beside.empty()) ::DeleteFileW(file->beside.c_str());
    delete file;
}

}  // namespace ko::platform
