#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"
#include "frame/colour_words.h"
#include "frame/display.h"
#include "front/front.h"

static_assert(sizeof(CmsLinkSettings) == 1332);

extern "C" int32_t jCmsInitCms(CmsLinkSettings* settings) {
    if (!settings) return 0;
    ko::front::initSettings(*settings);
    return 1;
}

extern "C" int32_t jColorSetupProfile(const char* rgbProfilePath, const char* cmykProfilePath,
                                      int32_t intent) {
    return ko::atBoundary(
        false, [&] { return ko::front::setupProfile(rgbProfilePath, cmykProfilePath, intent); });
}

extern "C" void jColorEndProfile(void) { ko::front::endProfile(); }

extern "C" uint32_t jColorRGBtoCMYK(int32_t r, int32_t g, int32_t b) {
    const ko::front::Cmyk inks = ko::front::rgbToCmyk(r, g, b);
    return ko::packCmyk(inks.c, inks.m, inks.y, inks.k);
}

extern "C" uint32_t jColorCMYKtoRGB(int32_t c, int32_t m, int32_t y, int32_t k) {
    const ko::front::Rgb light = ko::front::cmykToRgb(c, m, y, k);
    return ko::packRgb(light.r, light.g, light.b);
}

extern "C" int32_t jColorRGBtoGRAY(int32_t r, int32_t g, int32_t b) {
    const ko::ArithmeticMode arithmetic;
    return ko::front::rgbToGray(r, g, b);
}

extern "C" int32_t jColorCMYKtoGRAY(int32_t c, int32_t m, int32_t y, int32_t k) {
    const ko::ArithmeticMode arithmetic;
    const ko::front::Rgb light = ko::front::cmykToRgb(c, m, y, k);
    return ko::front::rgbToGray(light.r, light.g, light.b);
}

extern "C" void jColorRGBtoCMYKRow(const uint8_t* rgb, int32_t pixels, uint8_t* cmyk) {
    const ko::ArithmeticMode arithmetic;
    ko::front::rgbToCmykRow(rgb, pixels, cmyk);
}

extern "C" void jColorCMYKtoRGBRow(const uint8_t* cmyk, int32_t pixels, uint8_t* rgb) {
    const ko::ArithmeticMode arithmetic;
    ko::front::cmykToRgbRow(cmyk, pixels, rgb);
}

extern "C" int32_t Value255to100(int32_t v) {
    const ko::ArithmeticMode arithmetic;
    return ko::value255to100(v);
}
extern "C" int32_t Value100to255(int32_t v) {
    const ko::ArithmeticMode arithmetic;
    return ko::value100to255(v);
}

extern "C" int32_t jColorLoadIccFileList(char* list, int32_t maxCount, const char* colourSpace) {
    return ko::atBoundary<int32_t>(
        0, [&] { return ko::front::loadIccFileList(list, maxCount, colourSpace); });
}
