// The named mutex on Windows, and beside it a number in shared memory that says who holds it.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <atomic>
#include <new>
#include <string>

#include "frame/platform.h"

namespace ko::platform {

struct NamedMutex {
    HANDLE handle;
    HANDLE holderMemory;  // null: of one that was opened, or it cannot be had
    uint32_t* holder;
};

namespace {

// Of the mutex that this process created; what opens it later finds the memory here.
constinit std::atomic<uint32_t*> sharedHolder = nullptr;

NamedMutex* owned(HANDLE handle) noexcept {
    if (!handle) return nullptr;
    if (auto* mutex = new (std::nothrow) NamedMutex{handle, nullptr, nullptr}) return mutex;
    ::CloseHandle(handle);
    return nullptr;
}

void openHolder(NamedMutex& mutex, const char* name) noexcept try {
    const std::string memory = std::string(name) + "_HOLDER";
    mutex.holderMemory = ::CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                              sizeof(uint32_t), memory.c_str());
    if (!mutex.holderMemory) return;
    mutex.holder = static_cast<uint32_t*>(
        ::MapViewOfFile(mutex.holderMemory, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(uint32_t)));
    if (mutex.holder) sharedHolder = mutex.holder;
} catch (...) {
}

uint32_t holderNow() noexcept {
    const uint32_t* const holder = sharedHolder;
    return holder ? *static_cast<const volatile uint32_t*>(holder) : 0;
}

}  // namespace

NamedMutex* createNamedMutex(const char* name) noexcept {
    NamedMutex* const mutex = owned(::CreateMutexA(nullptr, FALSE, name));
    if (mutex) openHolder(*mutex, name);
    return mutex;
}

void closeNamedMutex(NamedMutex* mutex) noexcept {
    if (!mutex) return;
    if (mutex->holder) {
        uint32_t* expected = mutex->holder;
        sharedHolder.compare_exchange_strong(expected, nullptr);
        ::UnmapViewOfFile(mutex->holder);
    }
    if (mutex->holderMemory) ::CloseHandle(mutex->holderMemory);
    ::CloseHandle(mutex->handle);
    delete mutex;
}

NamedMutex* openNamedMutex(const char* name) noexcept {
    return owned(::OpenMutexA(MUTEX_ALL_ACCESS, FALSE, name));
}

// A mutex whose owner died is taken like one that was given back; what the wait says otherwise
// does not count.
bool lock(NamedMutex& mutex, MutexWait wait) noexcept {
    constexpr DWORD kPause = 20;
    const ULONGLONG start = ::GetTickCount64();
    while (::WaitForSingleObject(mutex.handle, wait ? kPause : INFINITE) == WAIT_TIMEOUT)
        if (!wait(static_cast<uint32_t>(::GetTickCount64() - start), holderNow())) return false;
    if (uint32_t* const holder = sharedHolder)
        *static_cast<volatile uint32_t*>(holder) = ::GetCurrentProcessId();
    return true;
}

void unlock(NamedMutex& mutex) noexcept { ::ReleaseMutex(mutex.handle); }

}  // namespace ko::platform
