#include "tests/support/guarded.h"

#include <windows.h>

#include <new>

namespace ko::test {

GuardedBytes::GuardedBytes(size_t size) {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const size_t page = system.dwPageSize;
    size_ = (size + page - 1) / page * page;
    // The page after those that are taken is reserved alone.
    pages_ = static_cast<uint8_t*>(
        VirtualAlloc(nullptr, size_ + page, MEM_RESERVE, PAGE_NOACCESS));
    if (!pages_ || (size_ && !VirtualAlloc(pages_, size_, MEM_COMMIT, PAGE_READWRITE)))
        throw std::bad_alloc();
    data_ = pages_ + size_ - size;
}

GuardedBytes::~GuardedBytes() { VirtualFree(pages_, 0, MEM_RELEASE); }

}  // namespace ko::test
