#include "cli/waiting.h"

#include <cstdio>
#include <string>

#include "cli/system.h"
#include "cli/text.h"

namespace ko::cli {

bool waitForGuard(uint32_t waitedMilliseconds, uint32_t holder) noexcept {
    constexpr uint32_t kPatience = 2000;
    static bool hasSpoken = false;
    if (waitedMilliseconds >= kPatience && !hasSpoken) {
        hasSpoken = true;
        try {
            std::string who = "another process";
            if (holder != 0) {
                char buffer[300];
                const std::string_view program = system::programOf(holder, buffer);
                who = "process " + std::to_string(holder);
                if (!program.empty()) who += " (" + printable(program) + ')';
            }
            std::fputs(("kolink: waiting for " + who + ", which holds the lock on KoLink's files\n").c_str(), stderr);
        } catch (const std::bad_alloc&) {
            std::fputs("kolink: waiting for another process, which holds the lock on KoLink's files\n", stderr);
        }
        std::fflush(stderr);
    }
    return system::interruption() == 0;
}

}  // namespace ko::cli
