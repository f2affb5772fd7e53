// The system's colour management where the system has none of its own: lcms2.
#include <lcms2.h>

#include <new>
#include <vector>

#include "frame/file.h"
#include "link/system_cms.h"

namespace ko::link::system {
namespace {

// 0 for what a colour of three or four channels cannot hold.
cmsUInt32Number formatOf(cmsHPROFILE profile) {
    switch (cmsGetColorSpace(profile)) {
        case cmsSigRgbData: return TYPE_RGB_16;
        case cmsSigCmykData: return TYPE_CMYK_16;
        default: return 0;
    }
}

}  // namespace

struct Profile {
    FileBytes bytes;  // tags are read from here when they are needed
    cmsHPROFILE handle = nullptr;
};
struct Transform {
    cmsHTRANSFORM handle;
};

Profile* openProfile(const char* path) {
    auto profile = std::make_unique<Profile>();
    FileReading reading = readWhole(path, kTableFiles);  // beside others who read it
    if (!reading) return nullptr;
    profile->bytes = std::move(reading.file);
    const auto bytes = profile->bytes.bytes();
    profile->handle = cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
    return profile.release();
}

bool isValid(const Profile& profile) { return profile.handle && formatOf(profile.handle) != 0; }

void closeProfile(Profile* profile) noexcept {
    if (profile->handle) cmsCloseProfile(profile->handle);
    delete profile;
}

// Best quality: every colour goes through the profiles' own curves and tables, none through a
// grid sampled in advance; and nothing is cached, since no colour comes twice.
Transform* createTransform(const Profile& source, const Profile& destination, uint32_t intent) {
    cmsHTRANSFORM handle = cmsCreateTransform(source.handle, formatOf(source.handle),
                                              destination.handle, formatOf(destination.handle),
                                              intent, cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE);
    if (!handle) return nullptr;
    if (auto* transform = new (std::nothrow) Transform{handle}) return transform;
    cmsDeleteTransform(handle);
    return nullptr;
}

void translate(Transform& transform, const uint16_t (&input)[4], Colours, uint16_t (&output)[4],
               Colours) noexcept {
    cmsDoTransform(transform.handle, input, output, 1);
}

void deleteTransform(Transform* transform) noexcept {
    cmsDeleteTransform(transform->handle);
    delete transform;
}

}  // namespace ko::link::system
