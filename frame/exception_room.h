// Room for exceptions on the stack of whoever catches them.
#pragma once

#include <cstddef>

namespace ko {

// While it lives, the exceptions that its thread throws, and what the C++ runtime notes about
// them, live in it. The runtime would allocate both, and an exception is thrown where memory has
// run out: it would end the host. Such rooms nest; no exception may outlive the one it is in.
class ExceptionRoom {
public:
    ExceptionRoom() noexcept;
    ~ExceptionRoom();
    ExceptionRoom(const ExceptionRoom&) = delete;
    ExceptionRoom& operator=(const ExceptionRoom&) = delete;

    // False when the system could not note it: nothing may be thrown then.
    bool entered() const noexcept { return entered_; }

    // The innermost one of this thread; null outside of them all.
    static ExceptionRoom* current() noexcept;

    // What the runtime calls __cxa_eh_globals.
    struct Globals {
        void* caught = nullptr;
        unsigned int uncaught = 0;
    };
    Globals& globals() noexcept { return globals_; }

    // Zeroed memory for an exception and what the runtime puts before it, and that back. Null, or
    // false, when it is not this room's.
    void* take(size_t size) noexcept;
    bool giveBack(void* memory) noexcept;

private:
    static constexpr size_t kPlaces = 2;  // one is thrown while another is handled
    static constexpr size_t kPlaceSize = 512;

    ExceptionRoom* const outer_;
    bool entered_;
    bool taken_[kPlaces] = {};
    Globals globals_;
    alignas(16) std::byte places_[kPlaces][kPlaceSize];
};

}  // namespace ko
