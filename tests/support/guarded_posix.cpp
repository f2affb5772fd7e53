#include "tests/support/guarded.h"

#include <sys/mman.h>
#include <unistd.h>

#include <new>

namespace ko::test {

GuardedBytes::GuardedBytes(size_t size) {
    const auto page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
    size_ = (size + page - 1) / page * page;
    void* const pages = ::mmap(nullptr, size_ + page, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    pages_ = static_cast<uint8_t*>(pages);
    if (::mprotect(pages_ + size_, page, PROT_NONE) != 0) throw std::bad_alloc();
    data_ = pages_ + size_ - size;
}

GuardedBytes::~GuardedBytes() {
    ::munmap(pages_, size_ + static_cast<size_t>(::sysconf(_SC_PAGESIZE)));
}

}  // namespace ko::test
