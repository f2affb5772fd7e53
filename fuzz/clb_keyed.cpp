// Calibration files in the keyed form, and the formats that they carry.
#include "calib/calib.h"
#include "calib/number_format.h"
#include "frame/text.h"
#include "fuzz/temp_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static TempFile file;
    const auto set = ko::calib::CalibLoadKeyedCurve(file.with(data, size));
    if (set) {
        const auto format = ko::calib::usableFormat(ko::textIn(set->formatX));
        for (const CalibChannel& channel : ko::calib::channelsOf(*set))
            for (const CalibTone& tone : ko::calib::tonesOf(channel)) {
                (void)format.print(tone.x);
                (void)ko::calib::CalibSplineValue(ko::calib::tonesOf(channel), tone.y);
            }
    }
    return 0;
}
