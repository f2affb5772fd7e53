// What the tool does while another process holds the guard of the files.
#pragma once

#include <cstdint>

namespace ko::cli {

// Says once, after two seconds, who holds it, and gives up after Ctrl-C; see setGuardWait.
bool waitForGuard(uint32_t waitedMilliseconds, uint32_t holder) noexcept;

}  // namespace ko::cli
