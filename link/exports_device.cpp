#include "frame/boundary.h"
#include "link/device_profile.h"

static_assert(sizeof(DeviceProfile) == 71300);

extern "C" DeviceProfile* jKoDevsCreateProfile(void) {
    return ko::link::createDeviceProfile().release();
}

extern "C" int32_t jKoDevsReleaseProfile(DeviceProfile* profile) {
    return ko::releaseRecord(profile);
}

extern "C" int32_t jKoDevsInitProfile(DeviceProfile* profile) {
    if (!profile) return 0;
    ko::link::initDeviceProfile(*profile);
    return 1;
}

extern "C" int32_t jKoDevsSaveProfile(DeviceProfile* profile, const char* path) {
    return ko::atFile(profile, path, ko::link::saveDeviceProfile);
}
