// What a CMYK profile takes from an ICC profile: editing data, curves, and a grid that is copied.
// A grid that is evaluated costs a million lookups; the evaluator has a target of its own.
#include "cmyk/cmyk.h"
#include "cmyk/description.h"
#include "cmyk/load.h"
#include "icc/icc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const auto profile = ko::cmyk::createProfile();
    const std::span bytes(data, size);
    const auto source = ko::icc::parseHeader(bytes);
    if (!profile || !source) return 0;
    if (const auto text = ko::icc::decodeTag(*source, bytes, ko::fourcc("desc")))
        ko::cmyk::applyDescription(*profile, static_cast<const char*>(text.get()));
    if (const auto data0 = ko::icc::decodeTag(*source, bytes, ko::fourcc("A2B0"))) {
        auto& lut = *static_cast<IccLut*>(data0.get());
        ko::cmyk::takeCurves(*profile, lut);
        if (lut.precision == 1 && lut.gridPoints == ko::cmyk::kGridPoints)
            ko::cmyk::takeGrid(*profile, lut);
    }
    return 0;
}
