// KoLink.dll's table of imports, changed: what the library calls comes by here first. What the
// system calls on its behalf does not.
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "tests/fault/planned.h"

namespace ko::fault {
namespace {

struct State {
    Planned planned;
    int64_t blocks;
    uint8_t fill;
    HANDLE files[64];  // open ones of the library
    int fileCount;
};
constinit State state = {};

constexpr DWORD kReasons[kKinds] = {
    ERROR_NOT_ENOUGH_MEMORY, ERROR_TOO_MANY_OPEN_FILES, ERROR_CRC,      ERROR_DISK_FULL,
    ERROR_IO_DEVICE,         ERROR_IO_DEVICE,           ERROR_IO_DEVICE, ERROR_NOT_SUPPORTED,
    ERROR_IO_DEVICE,         ERROR_NOT_ENOUGH_MEMORY,   ERROR_INVALID_HANDLE, 0};

// The C library's allocator tells nobody why; everything else says it here.
Fate next(Kind kind) noexcept {
    const Fate fate = state.planned.fate(kind, state.planned.number(kind));
    if (fate == Fate::failure && kind != Kind::memory)
        ::SetLastError(kReasons[static_cast<int>(kind)]);
    return fate;
}
bool fails(Kind kind) noexcept { return next(kind) == Fate::failure; }

// ---- What the library gets in place of the system's functions ----

void* __cdecl plannedMalloc(size_t size) {
    if (fails(Kind::memory)) return nullptr;
    void* block = std::malloc(size);
    if (!block) return nullptr;
    ++state.blocks;
    if (state.planned.counting()) std::memset(block, state.fill, size);
    return block;
}
void* __cdecl plannedCalloc(size_t count, size_t size) {
    if (fails(Kind::memory)) return nullptr;
    void* block = std::calloc(count, size);
    if (block) ++state.blocks;
    return block;
}
void* __cdecl plannedRealloc(void* block, size_t size) {
    if (fails(Kind::memory)) return nullptr;
    void* moved = std::realloc(block, size);
    if (!block && moved) ++state.blocks;
    if (block && !moved && size == 0) --state.blocks;
    return moved;
}
void __cdecl plannedFree(void* block) {
    if (block) --state.blocks;
    std::free(block);
}

HANDLE noted(HANDLE file) {
    if (file != INVALID_HANDLE_VALUE && state.fileCount < 64) state.files[state.fileCount++] = file;
    return file;
}
HANDLE WINAPI plannedCreateFileA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES who,
                                 DWORD how, DWORD flags, HANDLE like) {
    if (fails(Kind::open)) return INVALID_HANDLE_VALUE;
    return noted(::CreateFileA(path, access, share, who, how, flags, like));
}
HANDLE WINAPI plannedCreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES who,
                                 DWORD how, DWORD flags, HANDLE like) {
    if (fails(Kind::open)) return INVALID_HANDLE_VALUE;
    return noted(::CreateFileW(path, access, share, who, how, flags, like));
}
BOOL WINAPI plannedCloseHandle(HANDLE handle) {
    HANDLE* const end = state.files + state.fileCount;
    HANDLE* const found = std::find(state.files, end, handle);
    if (found != end) {
        *found = end[-1];
        --state.fileCount;
    }
    return ::CloseHandle(handle);
}
BOOL WINAPI plannedReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD got, LPOVERLAPPED when) {
    if (fails(Kind::read)) return FALSE;
    return ::ReadFile(file, buffer, size, got, when);
}
BOOL WINAPI plannedWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD put, LPOVERLAPPED when) {
    switch (next(Kind::write)) {
        case Fate::failure: return FALSE;
        case Fate::part:    return ::WriteFile(file, bytes, size / 2, put, when);
        default:            break;
    }
    return ::WriteFile(file, bytes, size, put, when);
}
BOOL WINAPI plannedFlushFileBuffers(HANDLE file) {
    return fails(Kind::flush) ? FALSE : ::FlushFileBuffers(file);
}
BOOL WINAPI plannedMoveFileExA(LPCSTR from, LPCSTR to, DWORD flags) {
    return fails(Kind::rename) ? FALSE : ::MoveFileExA(from, to, flags);
}
BOOL WINAPI plannedMoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags) {
    return fails(Kind::rename) ? FALSE : ::MoveFileExW(from, to, flags);
}
BOOL WINAPI plannedReplaceFileA(LPCSTR to, LPCSTR from, LPCSTR backup, DWORD flags, LPVOID a, LPVOID b) {
    return fails(Kind::rename) ? FALSE : ::ReplaceFileA(to, from, backup, flags, a, b);
}
BOOL WINAPI plannedReplaceFileW(LPCWSTR to, LPCWSTR from, LPCWSTR backup, DWORD flags, LPVOID a,
                                LPVOID b) {
    return fails(Kind::rename) ? FALSE : ::ReplaceFileW(to, from, backup, flags, a, b);
}
BOOL WINAPI plannedGetFileSizeEx(HANDLE file, PLARGE_INTEGER size) {
    return fails(Kind::status) ? FALSE : ::GetFileSizeEx(file, size);
}
DWORD WINAPI plannedGetFileSize(HANDLE file, LPDWORD high) {
    return fails(Kind::status) ? INVALID_FILE_SIZE : ::GetFileSize(file, high);
}
DWORD WINAPI plannedGetFileType(HANDLE file) {
    return fails(Kind::status) ? FILE_TYPE_UNKNOWN : ::GetFileType(file);
}
BOOL WINAPI plannedGetFileInformationByHandle(HANDLE file, LPBY_HANDLE_FILE_INFORMATION about) {
    return fails(Kind::status) ? FALSE : ::GetFileInformationByHandle(file, about);
}
DWORD WINAPI plannedGetFileAttributesA(LPCSTR path) {
    return fails(Kind::status) ? INVALID_FILE_ATTRIBUTES : ::GetFileAttributesA(path);
}
BOOL WINAPI plannedSetFileAttributesA(LPCSTR path, DWORD attributes) {
    return fails(Kind::attribute) ? FALSE : ::SetFileAttributesA(path, attributes);
}
HANDLE WINAPI plannedFindFirstFileA(LPCSTR pattern, LPWIN32_FIND_DATAA found) {
    return fails(Kind::open) ? INVALID_HANDLE_VALUE : ::FindFirstFileA(pattern, found);
}
HANDLE WINAPI plannedFindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
    return fails(Kind::open) ? INVALID_HANDLE_VALUE : ::FindFirstFileW(pattern, found);
}
HANDLE WINAPI plannedOpenMutexA(DWORD access, BOOL inherit, LPCSTR name) {
    return fails(Kind::lock) ? nullptr : ::OpenMutexA(access, inherit, name);
}
HMODULE WINAPI plannedLoadLibraryA(LPCSTR path) {
    return fails(Kind::map) ? nullptr : ::LoadLibraryA(path);
}
// So that two runs write the same.
void WINAPI plannedGetLocalTime(LPSYSTEMTIME now) { *now = {2001, 9, 0, 9, 1, 46, 40, 0}; }

struct Replacement {
    const char* name;
    void* function;
};
#define REPLACED(function) {#function, reinterpret_cast<void*>(&planned##function)}
const Replacement kReplacements[] = {
    {"malloc", reinterpret_cast<void*>(&plannedMalloc)},
    {"calloc", reinterpret_cast<void*>(&plannedCalloc)},
    {"realloc", reinterpret_cast<void*>(&plannedRealloc)},
    {"free", reinterpret_cast<void*>(&plannedFree)},
    REPLACED(CreateFileA), REPLACED(CreateFileW), REPLACED(CloseHandle), REPLACED(ReadFile),
    REPLACED(WriteFile), REPLACED(FlushFileBuffers), REPLACED(MoveFileExA), REPLACED(MoveFileExW),
    REPLACED(ReplaceFileA), REPLACED(ReplaceFileW), REPLACED(GetFileSizeEx), REPLACED(GetFileSize),
    REPLACED(GetFileType), REPLACED(GetFileInformationByHandle), REPLACED(GetFileAttributesA),
    REPLACED(SetFileAttributesA), REPLACED(FindFirstFileA), REPLACED(FindFirstFileW),
    REPLACED(OpenMutexA), REPLACED(LoadLibraryA), REPLACED(GetLocalTime)};

// Which of them the library imports differs with the library; the allocator is the least.
bool replaceImports() noexcept {
    auto* const base = reinterpret_cast<uint8_t*>(::GetModuleHandleA("KoLink.dll"));
    if (!base) return false;
    const auto& dos = *reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    const auto& headers = *reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos.e_lfanew);
    const auto& directory =
        headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* module = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    int replaced = 0;
    for (; module->Name != 0; ++module) {
        const auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + module->OriginalFirstThunk);
        auto* functions = reinterpret_cast<IMAGE_THUNK_DATA*>(base + module->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++functions) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* import = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            const char* name = reinterpret_cast<const char*>(import->Name);
            for (const Replacement& one : kReplacements) {
                if (std::strcmp(one.name, name) != 0) continue;
                DWORD before;
                ::VirtualProtect(&functions->u1.Function, sizeof(void*), PAGE_READWRITE, &before);
                functions->u1.Function = reinterpret_cast<uintptr_t>(one.function);
                ::VirtualProtect(&functions->u1.Function, sizeof(void*), before, &before);
                ++replaced;
            }
        }
    }
    return replaced > 8;
}
const struct Replaced {
    Replaced() {
        if (!replaceImports()) std::exit(2);
    }
} replaced;

}  // namespace

void begin(const Plan& plan) noexcept { state.planned.begin(plan); }
Calls end() noexcept { return state.planned.end(); }
Held held() noexcept { return {state.blocks, state.blocks}; }
void fillWith(uint8_t byte) noexcept { state.fill = byte; }
int reason() noexcept { return static_cast<int>(::GetLastError()); }
void forgetReason() noexcept { ::SetLastError(0); }
bool isReasonOf(Kind kind, int given) noexcept {
    if (kind == Kind::memory && given == ERROR_OUTOFMEMORY) return true;
    return static_cast<DWORD>(given) == kReasons[static_cast<int>(kind)];
}
bool isReasonOfLoader(Kind, int) noexcept { return false; }
int openFiles() noexcept { return state.fileCount; }

}  // namespace ko::fault
