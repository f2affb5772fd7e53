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

namespace {

void initAllButGrid(CmykProfile& profile) noexcept {
    std::memset(&profile, 0, offsetof(CmykProfile, grid));
    copyText(profile.name, texts::kUntitled);
    for (int32_t curve = 0; curve < kCurves; ++curve) resetCurve(profile, curve);
}

}  // namespace

void initGrid(CmykProfile& profile) noexcept {
    uint32_t* node = profile.grid;
    grid::forEachNode<4>(kGridPoints, [&](const Cmyk& at) { *node++ = identityWord(at); });
}

void initProfile(CmykProfile& profile) noexcept {
    initAllButGrid(profile);
    initGrid(profile);
}

Block<CmykProfile> createProfileWithoutGrid() noexcept {
    auto profile = allocateBlock<CmykProfile>(sizeof(CmykProfile));
    if (profile) initAllButGrid(*profile);
    return profile;
}

Block<CmykProfile> createProfile() noexcept {
    auto profile = createProfileWithoutGrid();
    if (profile) initGrid(*profile);
    return profile;
}

}  // namespace ko::cmyk
