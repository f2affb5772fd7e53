// Calls into the system that fail on purpose: the k-th allocation, read, write and so on. On
// Linux the program's own definitions stand before the C library's; on Windows the table of
// imports of KoLink.dll is changed.
#pragma once

#include <cstdint>

namespace ko::fault {

enum class Kind : uint8_t {
    memory, open, read, write, flush, rename, status, attribute, close, map, lock,
    space  // no call, but a limit to the address space
};
inline constexpr int kKinds = 12;
inline constexpr const char* kKindNames[kKinds] = {
    "memory", "open", "read", "write", "flush", "rename", "status", "attribute", "close", "map",
    "lock", "space"};

// once: that call alone fails; onwards: all later ones too. part: the call does half of what it is
// asked for, which is no failure. full: so does the first, and nothing more is written then.
// interrupted: a signal came first, which is no failure either.
enum class Way : uint8_t { once, onwards, part, full, interrupted };
inline constexpr int kWays = 5;
inline constexpr const char* kWayNames[kWays] = {"once", "onwards", "part", "full", "interrupted"};

constexpr bool applies(Kind kind, Way way) {
    switch (way) {
        case Way::once:        return true;
        case Way::onwards:     return kind == Kind::memory || kind == Kind::open ||
                                      kind == Kind::read || kind == Kind::write;
        case Way::full:        return kind == Kind::write;
#if defined(_WIN32)
        default:               return false;
#else
        case Way::part:        return kind == Kind::read || kind == Kind::write;
        case Way::interrupted: return kind == Kind::open || kind == Kind::read ||
                                      kind == Kind::write || kind == Kind::lock;
#endif
    }
    return false;
}
// What a program must get over without a trace.
constexpr bool isLegal(Way way) { return way == Way::part || way == Way::interrupted; }

struct Plan {
    Kind kind = Kind::memory;
    Way way = Way::once;
    uint64_t at = 0;  // the first call is 1; 0: every call is counted, none fails
};

struct Calls {
    uint64_t of[kKinds] = {};
    bool struck = false;  // a call failed as planned
};

// Between the two, calls are counted and the planned ones fail.
void begin(const Plan& plan) noexcept;
Calls end() noexcept;

// What is allocated and not freed, of the whole program on Linux, of the library on Windows.
struct Held {
    int64_t blocks, bytes;
    bool operator==(const Held&) const = default;
};
Held held() noexcept;

// What new memory is filled with while calls are counted.
void fillWith(uint8_t byte) noexcept;

// The reason that the platform keeps for the calling thread, and the one of the planned failure.
int reason() noexcept;
void forgetReason() noexcept;
bool isReasonOf(Kind kind, int reason) noexcept;
// The one of a library that the system's loader could not map: it does not say why.
bool isReasonOfLoader(Kind kind, int reason) noexcept;

int openFiles() noexcept;  // of this process; only their difference says something

}  // namespace ko::fault
