// The exported functions' last line: no exception crosses the C boundary.
#pragma once

#include <utility>

namespace ko {

// Runs work and returns its result; failure when memory runs out inside.
template <class Result, class Work>
Result atBoundary(Result failure, Work&& work) noexcept {
    try {
        return std::forward<Work>(work)();
    } catch (...) {
        return failure;
    }
}

}  // namespace ko
