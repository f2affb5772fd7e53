// The locks of the C++ runtime, in place of those of its thread library: part of the DLL, which
// carries the runtime. That library allocates a lock when it is first taken, records of threads
// and more, and ends the process or goes on unlocked where memory is short. These are held for
// moments, when an exception is thrown or a table is made ready, so that waiting for them may spin.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <pthread.h>

namespace {

// Of the library's own type and the value that it is initialised with.
constexpr pthread_mutex_t kFree = PTHREAD_MUTEX_INITIALIZER, kTaken = 1;
static_assert(sizeof(pthread_mutex_t) == sizeof(void*));

enum : long { kNotRun = PTHREAD_ONCE_INIT, kHasRun = 1, kRuns = 2 };

bool exchange(pthread_mutex_t* mutex, pthread_mutex_t from, pthread_mutex_t to) noexcept {
    return ::InterlockedCompareExchangePointer(reinterpret_cast<void**>(mutex),
                                               reinterpret_cast<void*>(to),
                                               reinterpret_cast<void*>(from)) ==
           reinterpret_cast<void*>(from);
}

}  // namespace

extern "C" {

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t*) {
    *mutex = kFree;
    return 0;
}
int pthread_mutex_destroy(pthread_mutex_t*) { return 0; }
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    for (unsigned tries = 0; !exchange(mutex, kFree, kTaken); ++tries)
        ::Sleep(tries < 100 ? 0 : 1);  // who holds it may be of a lower priority
    return 0;
}
int pthread_mutex_unlock(pthread_mutex_t* mutex) {
    (void)exchange(mutex, kTaken, kFree);
    return 0;
}

int pthread_once(pthread_once_t* once, void (*run)(void)) {
    for (unsigned tries = 0; *const_cast<volatile pthread_once_t*>(once) != kHasRun; ++tries) {
        if (::InterlockedCompareExchange(once, kRuns, kNotRun) == kNotRun) {
            run();
            ::InterlockedExchange(once, kHasRun);
        } else if (*const_cast<volatile pthread_once_t*>(once) == kRuns) {
            ::Sleep(tries < 100 ? 0 : 1);
        }
    }
    return 0;
}

// A guard's first byte is what compiled code looks at; the second says that somebody initialises.
int __cxa_guard_acquire(long long* guard) {
    auto* const state = reinterpret_cast<volatile LONG*>(guard);
    for (unsigned tries = 0;; ++tries) {
        const LONG before = ::InterlockedCompareExchange(state, 0x100, 0);
        if (before == 0) return 1;
        if (before & 1) return 0;
        ::Sleep(tries < 100 ? 0 : 1);
    }
}
void __cxa_guard_release(long long* guard) {
    ::InterlockedExchange(reinterpret_cast<volatile LONG*>(guard), 1);
}
void __cxa_guard_abort(long long* guard) {
    ::InterlockedExchange(reinterpret_cast<volatile LONG*>(guard), 0);
}

}  // extern "C"
