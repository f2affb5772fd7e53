// The exported functions of LUT evaluation.
#include "frame/arithmetic_mode.h"
#include "frame/boundary.h"
#include "icc/lut.h"

static_assert(sizeof(IccLut) == (sizeof(void*) == 8 ? 90 : 74));

namespace {

// A host may have changed the record since its set-up: a grid without cells cannot be divided.
bool isReady(const IccLut* lut) noexcept { return lut && lut->gridPoints >= 2; }

}  // namespace

extern "C" int32_t jIccLutSetup(IccLut* lut) {
    return ko::atBoundary(false, [&] { return ko::icc::lutSetup(lut); });
}

extern "C" int32_t jIccLutClose(IccLut* lut) { return ko::icc::lutClose(lut); }

extern "C" int32_t jIccLutColor(const IccLut* lut, int32_t* values) {
    const ko::ArithmeticMode arithmetic;
    return isReady(lut) && values ? ko::icc::lutColor(*lut, values) : 0;
}

extern "C" int32_t jIccLutColor16(const IccLut* lut, int32_t* values) {
    const ko::ArithmeticMode arithmetic;
    return isReady(lut) && values ? ko::icc::lutColor16(*lut, values) : 0;
}
