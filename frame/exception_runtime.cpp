// The C++ runtime's memory for exceptions, in place of its own: part of the shared library where
// that carries the runtime. The runtime's own allocates from a pool that it never gives back and
// keeps its notes in memory that it allocates for each thread, or ends the process.
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "frame/exception_room.h"

namespace {

// The runtime reaches its record of an exception by going back from the exception itself, by less
// than this on every target.
constexpr size_t kRecordSize = 256;

// Outside of every boundary, when the library is loaded or unloaded by one thread.
constinit ko::ExceptionRoom::Globals globalsOutside;

void* allocate(size_t size) noexcept {
    void* memory = nullptr;
    if (auto* room = ko::ExceptionRoom::current()) memory = room->take(size);
    if (!memory) memory = std::calloc(1, size);
    if (!memory) std::terminate();
    return memory;
}

void release(void* memory) noexcept {
    auto* room = ko::ExceptionRoom::current();
    if (!room || !room->giveBack(memory)) std::free(memory);
}

}  // namespace

extern "C" {

void* __cxa_get_globals() noexcept {
    auto* room = ko::ExceptionRoom::current();
    return room ? &room->globals() : &globalsOutside;
}
void* __cxa_get_globals_fast() noexcept { return __cxa_get_globals(); }

void* __cxa_allocate_exception(size_t size) noexcept {
    return static_cast<std::byte*>(allocate(size + kRecordSize)) + kRecordSize;
}
void __cxa_free_exception(void* exception) noexcept {
    release(static_cast<std::byte*>(exception) - kRecordSize);
}
void* __cxa_allocate_dependent_exception() noexcept { return allocate(kRecordSize); }
void __cxa_free_dependent_exception(void* exception) noexcept { release(exception); }

}  // extern "C"
