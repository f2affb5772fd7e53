// The exported functions of the small tables, and the rows of the profile.
#include "cmyk/cmyk.h"
#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"

static_assert(sizeof(CmykLut) == 334084 && sizeof(RgbLut) == 19652);

namespace {

int32_t release(void* table) noexcept {
    if (!table) return 0;
    jMemFree(table);
    return 1;
}

}  // namespace

extern "C" CmykLut* jKoCmykCreateCmykLut(void) { return ko::cmyk::createCmykLut().release(); }
extern "C" RgbLut* jKoRgbCreateRgbLut(void) { return ko::cmyk::createRgbLut().release(); }
extern "C" int32_t jKoCmykReleaseCmykLut(CmykLut* table) { return release(table); }
extern "C" int32_t jKoRgbReleaseRgbLut(RgbLut* table) { return release(table); }

extern "C" int32_t jKoCmykInitCmykLut(CmykLut* table) {
    if (!table) return 0;
    ko::cmyk::initCmykLut(*table);
    return 1;
}

extern "C" int32_t jKoRgbInitRgbLut(RgbLut* table) {
    if (!table) return 0;
    ko::cmyk::initRgbLut(*table);
    return 1;
}

extern "C" int32_t jKoCmykLoadCmykLut(CmykLut* table, const char* path) {
    if (!ko::isGiven(table)) return 0;
    return ko::atBoundary<int32_t>(0, [&] { return ko::cmyk::loadCmykLut(*table, path); });
}

extern "C" int32_t jKoRgbLoadRgbLut(RgbLut* table, const char* path) {
    if (!ko::isGiven(table)) return 0;
    return ko::atBoundary<int32_t>(0, [&] { return ko::cmyk::loadRgbLut(*table, path); });
}

extern "C" int32_t jKoCmykSaveCmykLut(const CmykLut* table, const char* path) {
    if (!ko::isGiven(table)) return 0;
    return ko::atBoundary<int32_t>(0, [&] { return ko::cmyk::saveCmykLut(*table, path); });
}

extern "C" int32_t jKoRgbSaveRgbLut(const RgbLut* table, const char* path) {
    if (!ko::isGiven(table)) return 0;
    return ko::atBoundary<int32_t>(0, [&] { return ko::cmyk::saveRgbLut(*table, path); });
}

extern "C" int32_t jKoCmykLutCMYKtoCMYK16(const CmykLut* table, int32_t* cmyk) {
    ko::cmyk::lutCmykToCmyk16(*table, cmyk);
    return cmyk[3];
}

extern "C" int32_t jKoRgbRGBtoRGB16(const RgbLut* table, int32_t* rgb) {
    ko::cmyk::rgbToRgb16(*table, rgb);
    return rgb[2];
}

extern "C" void jKoCmykLutCMYKtoCMYK16Row(const CmykLut* table, const uint8_t* input,
                                          int32_t pixels, uint16_t* output) {
    const ko::ArithmeticMode arithmetic;
    ko::cmyk::lutCmykToCmyk16Row(*table, input, pixels, output);
}

extern "C" void jKoRgbRGBtoRGB16Row(const RgbLut* table, const uint8_t* input, int32_t pixels,
                                    uint16_t* output) {
    const ko::ArithmeticMode arithmetic;
    ko::cmyk::rgbToRgb16Row(*table, input, pixels, output);
}

extern "C" void jKoCmykCMYKtoCMYK16Row(const CmykProfile* profile, const uint8_t* input,
                                       int32_t pixels, uint16_t* output) {
    const ko::ArithmeticMode arithmetic;
    ko::cmyk::cmykToCmyk16Row(*profile, input, pixels, output);
}
