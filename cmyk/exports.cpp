// The exported functions of the CMYK profile record, its loading and saving.
#include <cstddef>

#include "cmyk/cmyk.h"
#include "frame/boundary.h"

static_assert(sizeof(CmykProfile) == 4745548);
static_assert(offsetof(CmykProfile, curveValues) == 824 && offsetof(CmykProfile, grid) == 1864);

extern "C" CmykProfile* jKoCmykCreateProfile(void) { return ko::cmyk::createProfile().release(); }

extern "C" int32_t jKoCmykReleaseProfile(CmykProfile* profile) {
    return ko::releaseRecord(profile);
}

extern "C" int32_t jKoCmykInitProfile(CmykProfile* profile) {
    if (!profile) return 0;
    ko::cmyk::initProfile(*profile);
    return 1;
}

extern "C" int32_t jKoCmykLoadProfile(CmykProfile* profile, const char* path) {
    return ko::atFile(profile, path, ko::cmyk::loadProfile);
}

extern "C" int32_t jKoCmykLoadLutable(CmykProfile* profile, const char* path) {
    return ko::atFile(profile, path, ko::cmyk::loadLutable);
}

extern "C" int32_t jKoCmykLoadLutableAmatch(CmykProfile* profile, const char* path) {
    return ko::atFile(profile, path, ko::cmyk::loadLutableAmatch);
}

extern "C" int32_t jKoCmykSaveProfile(CmykProfile* profile, const char* path) {
    return ko::atFile(profile, path, ko::cmyk::saveProfile);
}
