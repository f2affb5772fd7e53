// The exported functions' last line: no exception crosses the C boundary.
#pragma once

#include <utility>

#include "frame/platform.h"

namespace ko {

// Runs work and returns its result; failure, with its reason, when memory runs out inside.
template <class Result, class Work>
Result atBoundary(Result failure, Work&& work) noexcept {
    try {
        return std::forward<Work>(work)();
    } catch (...) {
        platform::setLastError(platform::Cause::shortMemory);
        return failure;
    }
}

// False, with its reason, for a record that a host left out.
inline bool isGiven(const void* record) noexcept {
    return record || platform::failFor(platform::Cause::wrongArgument);
}

}  // namespace ko
