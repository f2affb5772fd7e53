// Memory blocks that the host may take over: a unique_ptr over jMemAlloc and jMemFree.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

#include "frame/platform.h"
#include "kolink/memory.h"

namespace ko {

struct BlockDeleter {
    void operator()(void* block) const noexcept { jMemFree(block); }
};

// For plain records only: nothing is constructed or destroyed.
template <class T>
using Block = std::unique_ptr<T, BlockDeleter>;

// A block of size bytes, or null, platform::lastError set, when memory is short. Larger requests than jMemAlloc takes are
// refused, never cut.
template <class T = void>
[[nodiscard]] Block<T> allocateBlock(uint64_t size) noexcept {
    if (size > std::numeric_limits<uint32_t>::max()) {
        platform::setLastError(platform::Cause::shortMemory);
        return nullptr;
    }
    return Block<T>(static_cast<T*>(jMemAlloc(static_cast<uint32_t>(size))));
}

// The same filled with zeros. What of a large block stays zero takes no memory.
void* allocateZeros(uint64_t size) noexcept;
template <class T = void>
[[nodiscard]] Block<T> allocateZeroBlock(uint64_t size) noexcept {
    return Block<T>(static_cast<T*>(allocateZeros(size)));
}

}  // namespace ko
