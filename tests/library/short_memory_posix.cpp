// The program's own malloc comes before that of the C library, for the shared libraries as well.
#include <dlfcn.h>
#include <malloc.h>

#include <cerrno>
#include <cstddef>

#include "tests/library/short_memory.h"

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
}

namespace {

constexpr long kNever = -1;
thread_local long left = kNever;
thread_local bool failed = false;

bool fails() noexcept {
    if (left == kNever) return false;
    if (left > 0) return --left, false;
    failed = true;
    errno = ENOMEM;
    return true;
}

}  // namespace

extern "C" void* malloc(size_t size) { return fails() ? nullptr : __libc_malloc(size); }
extern "C" void* calloc(size_t count, size_t size) {
    return fails() ? nullptr : __libc_calloc(count, size);
}
extern "C" void* realloc(void* block, size_t size) {
    return fails() ? nullptr : __libc_realloc(block, size);
}

namespace ko::test {

ShortMemory::ShortMemory(long successes) {
    failed = false;
    left = successes;
}
ShortMemory::~ShortMemory() { left = kNever; }
bool ShortMemory::wasShort() const { return failed; }

long long allocatedBytes() {
    const auto info = ::mallinfo2();
    return static_cast<long long>(info.uordblks + info.hblkhd);
}

const int kLoads = 1000;
const bool kLoadingIsShort = true;
void* loadLibrary(const char* path) { return ::dlopen(path, RTLD_NOW | RTLD_LOCAL); }
void* findFunction(void* library, const char* name) { return ::dlsym(library, name); }
void unloadLibrary(void* library) { ::dlclose(library); }

}  // namespace ko::test
