// The system's colour management on Windows: mscms.
#include <cstring>
#include <new>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#include <icm.h>

#include "frame/block.h"
#include "frame/platform.h"
#include "link/system_cms.h"

namespace ko::link::system {

struct Profile {
    HPROFILE handle;
};
struct Transform {
    HTRANSFORM handle;
};

namespace {

HPROFILE open(const char* path) {
    const size_t length = std::strlen(path) + 1;
    const auto block = allocateBlock<PROFILE>(sizeof(PROFILE) + length);
    if (!block) throw std::bad_alloc();  // no other name is tried then
    char* const name = reinterpret_cast<char*>(block.get() + 1);
    std::memcpy(name, path, length);
    *block = {PROFILE_FILENAME, name, static_cast<DWORD>(length)};
    return ::OpenColorProfileA(block.get(), PROFILE_READ, FILE_SHARE_READ, OPEN_EXISTING);
}

}  // namespace

Profile* openProfile(const char* path) {
    // The system takes a path that is not absolute to be in its own colour folder; everything
    // else here takes it from the current folder, so that comes first.
    char absolute[platform::kPathSize];
    HPROFILE handle = platform::fullPath(path, absolute) ? open(absolute) : nullptr;
    if (!handle) handle = open(path);
    if (!handle) return nullptr;
    if (auto* profile = new (std::nothrow) Profile{handle}) return profile;
    ::CloseColorProfile(handle);
    platform::setLastError(platform::Cause::shortMemory);
    return nullptr;
}

bool isValid(const Profile& profile) {
    BOOL valid = FALSE;
    return ::IsColorProfileValid(profile.handle, &valid) && valid;
}

void closeProfile(Profile* profile) noexcept {
    const platform::ErrorKeeper keeper;
    ::CloseColorProfile(profile->handle);
    delete profile;
}

Transform* createTransform(Profile& source, Profile& destination, uint32_t intent) {
    HPROFILE profiles[2] = {source.handle, destination.handle};
    DWORD intents[1] = {intent};  // the system's numbers are the settings' own
    static_assert(INTENT_PERCEPTUAL == 0 && INTENT_RELATIVE_COLORIMETRIC == 1 &&
                  INTENT_SATURATION == 2 && INTENT_ABSOLUTE_COLORIMETRIC == 3);
    const HTRANSFORM handle =
        ::CreateMultiProfileTransform(profiles, 2, intents, 1, BEST_MODE, INDEX_DONT_CARE);
    if (!handle) return nullptr;
    if (auto* transform = new (std::nothrow) Transform{handle}) return transform;
    ::DeleteColorTransform(handle);
    platform::setLastError(platform::Cause::shortMemory);
    return nullptr;
}

void translate(Transform& transform, const uint16_t (&input)[4], Colours inputs,
               uint16_t (&output)[4], Colours outputs) noexcept {
    COLOR from{}, to{};  // the channels are the union's first words, in their order
    static_assert(sizeof from >= sizeof input);
    std::memcpy(&from, input, sizeof input);
    const auto type = [](Colours colours) {
        return colours == Colours::rgb ? COLOR_RGB : COLOR_CMYK;
    };
    ::TranslateColors(transform.handle, &from, 1, type(inputs), &to, type(outputs));
    std::memcpy(output, &to, sizeof output);
}

void deleteTransform(Transform* transform) noexcept {
    const platform::ErrorKeeper keeper;
    ::DeleteColorTransform(transform->handle);
    delete transform;
}

}  // namespace ko::link::system
