// Exported functions of the tone curves.
#include "tone/tone.h"

#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"

static_assert(sizeof(TonePoint) == 8);
static_assert(sizeof(ToneCurve) == (sizeof(void*) == 4 ? 332 : 336));
static_assert(sizeof(DccSettings) == (sizeof(void*) == 4 ? 20 : 24));

namespace {

std::span<const TonePoint> pointsOf(const TonePoint* points, int32_t count) noexcept {
    if (!points || count < 0) return {};
    return {points, static_cast<size_t>(count)};
}

}  // namespace

extern "C" ToneCurve* jKoToneCreateToneCurve(int32_t channelCount) {
    return ko::tone::createToneCurve(channelCount).release();
}

extern "C" int32_t jKoToneReleaseToneCurve(ToneCurve* curve) {
    if (!curve) return 0;
    ko::tone::CurveRelease()(curve);
    return 1;
}

extern "C" int32_t jKoToneInitToneCurve(ToneCurve* curve) {
    if (curve) ko::tone::initToneCurve(*curve);
    return 1;
}

extern "C" int32_t jKoToneGetSplineTone(const TonePoint* points, int32_t count, int32_t x) {
    const ko::ArithmeticMode arithmetic;
    return ko::tone::splineTone(pointsOf(points, count), x);
}

extern "C" int32_t jKoToneGetLinerTone(const TonePoint* points, int32_t count, int32_t x) {
    const ko::ArithmeticMode arithmetic;
    return ko::tone::linearTone(pointsOf(points, count), x);
}

extern "C" int32_t jKoToneEncodeToneCurve(ToneCurve* curve, int32_t mode, int32_t maxValue) {
    const ko::ArithmeticMode arithmetic;
    using ko::tone::Interpolation;
    if (curve)
        ko::tone::encode(*curve, mode == 1 ? Interpolation::spline : Interpolation::linear, maxValue);
    return 1;
}

extern "C" int32_t jKoToneCMYKtoCMYK(const ToneCurve* curve, int32_t* cmyk) {
    return curve && cmyk && ko::tone::cmykToCmyk(*curve, std::span<int32_t, 4>(cmyk, 4));
}

extern "C" int32_t jKoToneRGBtoCMYK16(const ToneCurve* curve, uint8_t r, uint8_t g, uint8_t b,
                                      int32_t* cmyk) {
    return curve && cmyk && ko::tone::rgbToCmyk16(*curve, r, g, b, std::span<int32_t, 4>(cmyk, 4));
}

extern "C" int32_t jKoToneLoadBkcCurve(ToneCurve* curve, const char* path) {
    return ko::atFile(curve, path, ko::tone::loadBkcCurve);
}

extern "C" int32_t jKoToneSaveBkcCurve(ToneCurve* curve, const char* path) {
    return ko::atFile(curve, path, ko::tone::saveBkcCurve);
}

extern "C" int32_t jKoToneLoadCmykToneCurve(ToneCurve* curve, const char* path) {
    return ko::atFile(curve, path, ko::tone::loadCmykToneCurve);
}

extern "C" int32_t jKoToneSaveCmykToneCurve(ToneCurve* curve, const char* path) {
    return ko::atFile(curve, path, ko::tone::saveCmykToneCurve);
}

extern "C" int32_t jKoToneLoadDccCurve(ToneCurve* curve, const char* path) {
    return ko::atFile(curve, path, ko::tone::loadDccCurve);
}

extern "C" int32_t jKoToneLoadDcc(DccSettings* settings, const char* path) {
    return ko::atFile(settings, path, ko::tone::loadDcc);
}

extern "C" int32_t jKoToneSaveDcc(DccSettings* settings, const char* path) {
    return ko::atFile(settings, path, ko::tone::saveDcc);
}
