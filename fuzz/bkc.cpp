// Black-correction files.
#include "fuzz/temp_file.h"
#include "tone/tone.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile file;
    const auto curve = ko::tone::createToneCurve(1);
    if (curve) (void)ko::tone::loadBkcCurve(*curve, file.with(data, size));
    return 0;
}
