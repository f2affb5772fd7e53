// DCC settings files, as they are edited and as they convert.
#include "fuzz/temp_file.h"
#include "tone/tone.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile file;
    const auto curve = ko::tone::createToneCurve(6);
    if (!curve) return 0;
    const char* path = file.with(data, size);
    DccSettings settings{600, 600, 255, 100, curve.get()};
    (void)ko::tone::loadDcc(settings, path);
    if (ko::tone::loadDccCurve(*curve, path)) {
        int32_t cmyk[4];
        (void)ko::tone::rgbToCmyk16(*curve, 0, 128, 255, cmyk);
    }
    return 0;
}
