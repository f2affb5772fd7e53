// The exported functions' last line: no exception crosses the C boundary, and what the host has
// set for its thread does not cross it either.
#pragma once

#include <utility>

#include "frame/arithmetic_mode.h"
#include "frame/exception_room.h"
#include "frame/path.h"
#include "kolink/memory.h"

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

// Loads a record from a file or saves it: work takes the record and the path.
template <class Record, class Work>
bool atFile(Record* record, const char* path, Work&& work) noexcept {
    return isGiven(record) && atBoundary(false, [&] { return work(*record, Path(path)); });
}

// What the release functions of records in one block do; false for null.
inline bool releaseRecord(void* record) noexcept {
    jMemFree(record);
    return record != nullptr;
}

}  // namespace ko
