// The exported functions' last line: no exception crosses the C boundary, and what the host has
// set for its thread does not cross it either.
#pragma once

#include <utility>

#include "frame/arithmetic_mode.h"
#include "frame/exception_room.h"
#include "frame/platform.h"

namespace ko {

// Runs work and returns its result; failure, with its reason, when memory runs out inside.
template <class Result, class Work>
Result atBoundary(Result failure, Work&& work) noexcept {
    const ExceptionRoom room;
    if (!room.entered()) {
        platform::setLastError(platform::Cause::shortMemory);
        return failure;
    }
    const ArithmeticMode arithmetic;
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
