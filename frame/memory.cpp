// The library's one allocator, for everything that crosses its boundary.
#include "kolink/memory.h"

#include <cstdlib>

#include "frame/block.h"
#include "frame/platform.h"

extern "C" void* jMemAlloc(uint32_t size) {
    void* const block = std::malloc(size == 0 ? 1 : size);  // one of nothing must be freeable too
    if (!block) ko::platform::setLastError(ko::platform::Cause::shortMemory);
    return block;
}

void* ko::allocateZeros(uint64_t size) noexcept {
    void* const block =
        size <= UINT32_MAX ? std::calloc(size == 0 ? 1 : static_cast<size_t>(size), 1) : nullptr;
    if (!block) platform::setLastError(platform::Cause::shortMemory);
    return block;
}

extern "C" void jMemFree(void* block) { std::free(block); }
