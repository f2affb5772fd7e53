// The exported functions of CMYK conversion and combination.
#include <algorithm>

#include "cmyk/cmyk.h"
#include "cmyk/convert.h"
#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"

extern "C" void jKoCmykCMYKtoCMYK16(const CmykProfile* profile, int32_t* cmyk) {
    const ko::ArithmeticMode arithmetic;
    if (!profile || !cmyk) return;
    ko::cmyk::Cmyk values;
    std::copy_n(cmyk, 4, values.begin());
    ko::cmyk::cmykToCmyk16(*profile, values);
    std::copy_n(values.begin(), 4, cmyk);
}

extern "C" void jKoCmykCMYKtoCMYK16Row(const CmykProfile* profile, const uint8_t* input,
                                       int32_t pixels, uint16_t* output) {
    const ko::ArithmeticMode arithmetic;
    ko::cmyk::cmykToCmyk16Row(*profile, input, pixels, output);
}

extern "C" CmykProfile* jKoCmykCombineProfile(const CmsLinkSettings* settings) {
    if (!settings) return nullptr;
    return ko::atBoundary<CmykProfile*>(
        nullptr, [&] { return ko::cmyk::combineProfile(*settings).release(); });
}

extern "C" CmykProfile* jKoCmykCombineIccProfile(const CmsLinkSettings* settings) {
    if (!settings) return nullptr;
    return ko::atBoundary<CmykProfile*>(
        nullptr, [&] { return ko::cmyk::combineIccProfile(*settings).release(); });
}
