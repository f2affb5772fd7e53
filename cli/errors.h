// What ends a command: one line on standard error, and the exit status.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "cli/text.h"

namespace ko::cli {

enum ExitStatus { kDone = 0, kFailed = 1, kWrongUsage = 2, kStoppedByGate = 3 };  // 128 + the signal that ended it

// Something is wrong with a file or the machine: exit status 1.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Something is wrong with the arguments: exit status 2.
struct UsageFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A check found something and has said so: the exit status, no further line.
struct Found {
    ExitStatus status = kFailed;
};

// A signal came while a file was being made: exit status 128 + its number.
struct Interrupted {
    int signal;
};

[[noreturn]] inline void failOn(std::string_view path, const std::string& what) {
    throw Failure(printable(path) + ": " + what);
}

}  // namespace ko::cli
