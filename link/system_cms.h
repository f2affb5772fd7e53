// The system's colour management in six operations: system_cms_win.cpp over mscms,
// system_cms_lcms.cpp over lcms2.
#pragma once

#include <cstdint>
#include <memory>

namespace ko::link::system {

struct Profile;
Profile* openProfile(const char* path);     // the file stays open; null: it cannot be opened
bool isValid(const Profile& profile);       // what was opened is a profile
void closeProfile(Profile* profile) noexcept;

enum class Colours { rgb, cmyk };

// Source to destination in the best quality there is. Null: the two do not make a transform, or
// memory is short.
struct Transform;
Transform* createTransform(Profile& source, Profile& destination, uint32_t intent);
// One colour, 16 bits a channel; what a failing call leaves in the output is undefined but
// initialised.
void translate(Transform& transform, const uint16_t (&input)[4], Colours inputs,
               uint16_t (&output)[4], Colours outputs) noexcept;
void deleteTransform(Transform* transform) noexcept;

struct ProfileCloser {
    void operator()(Profile* profile) const noexcept { closeProfile(profile); }
};
struct TransformDeleter {
    void operator()(Transform* transform) const noexcept { deleteTransform(transform); }
};
using ProfileHandle = std::unique_ptr<Profile, ProfileCloser>;
using TransformHandle = std::unique_ptr<Transform, TransformDeleter>;

}  // namespace ko::link::system
