// The CMYK profile record and its defaults.
#include <cstring>

#include "cmyk/cmyk.h"
#include "frame/text.h"
#include "resources/texts.h"

namespace ko::cmyk {

ControlPoints controlPoints(const CmykProfile& profile, int32_t curve) noexcept {
    ControlPoints control;
    for (int32_t point = 0; point < kCurvePoints; ++point)
        if (profile.curveFlags[curve][point] == 1)
            control.points[control.count++] = {curveLevel(point), profile.curveValues[curve][point]};
    return control;
}

void resetCurve(CmykProfile& profile, int32_t curve) noexcept {
    for (int32_t point = 0; point < kCurvePoints; ++point) {
        profile.curveValues[curve][point] = static_cast<uint8_t>(curveLevel(point));
        profile.curveFlags[curve][point] = point == 0 || point == kCurvePoints - 1;
    }
}

void initProfile(CmykProfile& profile) noexcept {
    std::memset(&profile, 0, offsetof(CmykProfile, grid));  // the grid is written whole below
    copyText(profile.name, texts::kUntitled);
    for (int32_t curve = 0; curve < kCurves; ++curve) resetCurve(profile, curve);
    uint32_t* node = profile.grid;
    for (int32_t c = 0; c < kGridPoints; ++c)
        for (int32_t m = 0; m < kGridPoints; ++m)
            for (int32_t y = 0; y < kGridPoints; ++y)
                for (int32_t k = 0; k < kGridPoints; ++k)
                    *node++ = packCmyk(nodeValue(c), nodeValue(m), nodeValue(y), nodeValue(k));
}

Block<CmykProfile> createProfile() noexcept {
    auto profile = allocateBlock<CmykProfile>(sizeof(CmykProfile));
    if (profile) initProfile(*profile);
    return profile;
}

}  // namespace ko::cmyk
