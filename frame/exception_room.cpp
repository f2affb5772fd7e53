#include "frame/exception_room.h"

#include <cstring>

#include "frame/platform.h"

namespace ko {

ExceptionRoom* ExceptionRoom::current() noexcept {
    return static_cast<ExceptionRoom*>(platform::threadPointer());
}

ExceptionRoom::ExceptionRoom() noexcept
    : outer_(current()), entered_(platform::setThreadPointer(this)) {}

ExceptionRoom::~ExceptionRoom() {
    if (entered_) (void)platform::setThreadPointer(outer_);
}

void* ExceptionRoom::take(size_t size) noexcept {
    if (size > kPlaceSize) return nullptr;
    for (size_t at = 0; at < kPlaces; ++at) {
        if (taken_[at]) continue;
        taken_[at] = true;
        return std::memset(places_[at], 0, kPlaceSize);
    }
    return nullptr;
}

bool ExceptionRoom::giveBack(void* memory) noexcept {
    for (size_t at = 0; at < kPlaces; ++at) {
        if (places_[at] != memory) continue;
        taken_[at] = false;
        return true;
    }
    return outer_ && outer_->giveBack(memory);
}

}  // namespace ko
