// Private to the POSIX side of the seam: descriptors.
#pragma once

#include <sys/types.h>

#include <utility>

#include "frame/platform.h"

namespace ko::platform {

// openat, again after a signal, and never as one of the standard streams: a host may have those
// closed, and what it then writes to one must not land in a file of ours. -1: see errno.
int openAt(int folder, const char* path, int flags, mode_t mode = 0) noexcept;

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int file) noexcept : file_(file) {}
    Descriptor(Descriptor&& other) noexcept : file_(std::exchange(other.file_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(file_, other.file_);
        return *this;
    }
    ~Descriptor() {
        if (file_ >= 0) close(file_);
    }
    explicit operator bool() const noexcept { return file_ >= 0; }
    int get() const noexcept { return file_; }

private:
    int file_ = -1;
};

}  // namespace ko::platform
