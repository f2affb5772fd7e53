// The library's one allocator, for everything that crosses its boundary.
#include "kolink/memory.h"

#include <cstdlib>

extern "C" void* jMemAlloc(uint32_t size) {
    return std::malloc(size == 0 ? 1 : size);  // a block of nothing must be freeable too
}

extern "C" void jMemFree(void* block) { std::free(block); }
