#include "frame/boundary.h"
#include "link/device_profile.h"

static_assert(sizeof(DeviceProfile) == 71300);

extern "C" DeviceProfile* jKoDevsCreateProfile(void) {
    return ko::link::createDeviceProfile().release();
}

extern "C" int32_t jKoDevsReleaseProfile(DeviceProfile* profile) {
    if (!profile) return 0;
    jMemFree(profile);
    return 1;
}

extern "C" int32_t jKoDevsInitProfile(DeviceProfile* profile) {
    if (!profile) return 0;
    ko::link::initDeviceProfile(*profile);
    return 1;
}

extern "C" int32_t jKoDevsSaveProfile(DeviceProfile* profile, const char* path) {
    if (!ko::isGiven(profile)) return 0;
    return ko::atBoundary<int32_t>(0, [&] { return ko::link::saveDeviceProfile(*profile, path); });
}
