// CMYK tone curve files, there and back.
#include "fuzz/round_trip.h"
#include "tone/tone.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::tone;
    roundTrip(data, size, [](const char* path) {
        auto curve = createToneCurve(4);
        return curve && loadCmykToneCurve(*curve, path) ? std::move(curve) : nullptr;
    }, saveCmykToneCurve);
    return 0;
}
