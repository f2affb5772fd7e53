// The exported functions of profiles, their files and colour arithmetic.
#include <cstddef>

#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"
#include "icc/icc.h"

static_assert(sizeof(IccHeader) == 128);
static_assert(offsetof(IccHeader, dateTime) == 24 && offsetof(IccHeader, magic) == 36 &&
              offsetof(IccHeader, creator) == 80);
static_assert(sizeof(IccTagEntry) == (sizeof(void*) == 4 ? 16 : 24));
static_assert(sizeof(IccProfile) == (sizeof(void*) == 4 ? 400 : 408));

extern "C" IccProfile* jIccCreate(uint32_t flags) { return ko::icc::create(flags).release(); }

extern "C" int32_t jIccRelease(IccProfile* profile) { return ko::icc::release(profile); }

extern "C" int32_t jIccBindTag(IccProfile* profile, uint32_t signature, void* data) {
    return ko::icc::bindTag(profile, signature, data);
}

extern "C" int32_t jIccUnbindTag(IccProfile* profile, uint32_t signature) {
    return ko::icc::unbindTag(profile, signature);
}

extern "C" uint32_t jKoCmykIccRevLong(uint32_t value) { return ko::icc::revLong(value); }

extern "C" uint16_t jKoCmykIccRevShort(uint16_t value) { return ko::icc::revShort(value); }

extern "C" IccProfile* jIccLoadHeader(const char* path) {
    return ko::atBoundary<IccProfile*>(nullptr,
                                       [&] { return ko::icc::loadHeader(path).release(); });
}

extern "C" void* jIccLoadTag(IccProfile* profile, uint32_t signature) {
    return ko::atBoundary<void*>(nullptr, [&] {
        return profile ? ko::icc::loadTag(*profile, signature) : nullptr;
    });
}

extern "C" uint32_t jIccSaveProfile(IccProfile* profile, const char* path) {
    return ko::atBoundary(false, [&] { return ko::icc::saveProfile(profile, path); });
}

extern "C" uint32_t jIccSaveDeviceProfile(IccProfile* profile, const char* path) {
    return ko::atBoundary(false, [&] { return ko::icc::saveDeviceProfile(profile, path); });
}

extern "C" uint32_t jIccSaveLinkProfile(IccProfile* profile, const char* path) {
    return ko::atBoundary(false, [&] { return ko::icc::saveLinkProfile(profile, path); });
}

extern "C" void jIccXYZtoLab(double* colour, const double* white) {
    const ko::ArithmeticMode arithmetic;
    ko::icc::xyzToLab(colour, white);
}

extern "C" void jIccLabtoXYZ(double* colour, const double* white) {
    const ko::ArithmeticMode arithmetic;
    ko::icc::labToXyz(colour, white);
}

extern "C" void jIccLabEncode(double* colour, int32_t bits) {
    const ko::ArithmeticMode arithmetic;
    ko::icc::labEncode(colour, bits);
}

extern "C" void jIccLabDecode(double* colour, int32_t bits) {
    const ko::ArithmeticMode arithmetic;
    ko::icc::labDecode(colour, bits);
}

extern "C" void jIccXYZEncode(double* colour, int32_t bits) {
    const ko::ArithmeticMode arithmetic;
    ko::icc::xyzEncode(colour, bits);
}

extern "C" void jIccXYZDecode(double* colour, int32_t bits) {
    const ko::ArithmeticMode arithmetic;
    ko::icc::xyzDecode(colour, bits);
}

extern "C" void jIccTrcColor(const IccCurve* curve, int32_t* value) {
    const ko::ArithmeticMode arithmetic;
    ko::icc::trcColor(curve, value);
}
