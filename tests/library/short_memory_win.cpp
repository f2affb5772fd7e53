// The library's entries for malloc and its kin, in the table of what it imports, are replaced.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <malloc.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "tests/library/short_memory.h"

namespace {

DWORD thread = 0;
long left = 0;
bool failed = false;

bool fails() noexcept {
    if (thread != ::GetCurrentThreadId()) return false;
    if (left > 0) return --left, false;
    failed = true;
    return true;
}

void* __cdecl failingMalloc(size_t size) { return fails() ? nullptr : std::malloc(size); }
void* __cdecl failingCalloc(size_t count, size_t size) {
    return fails() ? nullptr : std::calloc(count, size);
}
void* __cdecl failingRealloc(void* block, size_t size) {
    return fails() ? nullptr : std::realloc(block, size);
}

void replaceImports() {
    auto* const base = reinterpret_cast<uint8_t*>(::GetModuleHandleA("KoLink.dll"));
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* module =
        reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; module->Name != 0; ++module) {
        auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + module->OriginalFirstThunk);
        auto* entry = reinterpret_cast<IMAGE_THUNK_DATA*>(base + module->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++entry) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto* const import =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            const char* const text = reinterpret_cast<const char*>(import->Name);
            void* other = nullptr;
            if (std::strcmp(text, "malloc") == 0) other = reinterpret_cast<void*>(&failingMalloc);
            if (std::strcmp(text, "calloc") == 0) other = reinterpret_cast<void*>(&failingCalloc);
            if (std::strcmp(text, "realloc") == 0) other = reinterpret_cast<void*>(&failingRealloc);
            if (!other) continue;
            DWORD before = 0;
            ::VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &before);
            std::memcpy(entry, &other, sizeof other);
            ::VirtualProtect(entry, sizeof *entry, before, &before);
        }
    }
}

}  // namespace

namespace ko::test {

ShortMemory::ShortMemory(long successes) {
    static const bool replaced = (replaceImports(), true);
    (void)replaced;
    failed = false;
    left = successes;
    thread = ::GetCurrentThreadId();
}
ShortMemory::~ShortMemory() { thread = 0; }
bool ShortMemory::wasShort() const { return failed; }

long long allocatedBytes() {
    long long bytes = 0;
    std::vector<HANDLE> heaps(::GetProcessHeaps(0, nullptr) + 8);
    heaps.resize(::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    for (const HANDLE heap : heaps) {
        PROCESS_HEAP_ENTRY entry{};
        while (::HeapWalk(heap, &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
    }
    return bytes;
}

const int kLoads = 200;  // Wine needs a while for each
const bool kLoadingIsShort = false;
void* loadLibrary(const char* path) { return ::LoadLibraryA(path); }
void* findFunction(void* library, const char* name) {
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}
void unloadLibrary(void* library) { ::FreeLibrary(static_cast<HMODULE>(library)); }

}  // namespace ko::test
