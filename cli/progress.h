// A bar on standard error while something takes its time; nothing at all when that is no terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

#include "cli/system.h"
#include "cli/text.h"

namespace ko::cli {

class Progress {
public:
    Progress(std::string name, uint64_t whole, bool quiet)
        : name_(printable(name)), whole_(whole), shown_(!quiet && system::isTerminal(stderr)) {}
    ~Progress() {
        if (drawn_) std::fputs("\r\033[K", stderr);
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void advanceTo(uint64_t part) {
        if (!shown_ || (part & 31)) return;
        const auto now = std::chrono::steady_clock::now();
        if (now - last_ < std::chrono::milliseconds(100)) return;
        last_ = now;
        drawn_ = true;
        const int done = static_cast<int>(part * 30 / whole_);
        std::fprintf(stderr, "\r%s [%s%s] %3d %%", name_.c_str(), std::string(static_cast<size_t>(done), '#').c_str(),
                     std::string(static_cast<size_t>(30 - done), ' ').c_str(), static_cast<int>(part * 100 / whole_));
        std::fflush(stderr);
    }

private:
    std::string name_;
    uint64_t whole_;
    bool shown_, drawn_ = false;
    std::chrono::steady_clock::time_point last_{};
};

}  // namespace ko::cli
