// Calibration files as they come: either form, by the first byte.
#include "calib/calib.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile file;
    const auto set = ko::calib::loadCurve(file.with(data, size));
    if (set) {
        (void)ko::calib::toneValue(*set, 0, 100.0f);
        (void)ko::calib::setToneValue(*set, 0, 50.0f, 60.0f);
        (void)ko::calib::deleteToneValue(*set, 0, 50.0f);
    }
    return 0;
}
