// The exported functions of a saved link as a whole.
#include "cmyk/cmyk.h"
#include "frame/arithmetic_mode.h"

static_assert(sizeof(CmykCurveTables) == 2048);

extern "C" int32_t jKoCmykMakeCurveTables(const CmykProfile* profile, CmykCurveTables* tables) {
    const ko::ArithmeticMode arithmetic;
    if (!profile || !tables) return 0;
    ko::cmyk::makeCurveTables(*profile, *tables);
    return 1;
}

extern "C" void jKoCmykLinkCMYKtoCMYK16Row(const CmykProfile* profile,
                                           const CmykCurveTables* tables, const uint8_t* input,
                                           int32_t pixels, uint16_t* output) {
    const ko::ArithmeticMode arithmetic;
    ko::cmyk::linkCmykToCmyk16Row(*profile, *tables, input, pixels, output);
}
