// Calibration files in the keyed form, and the formats that they carry.
#include "calib/calib.h"
#include "calib/number_format.h"
#include "frame/text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (!text.starts_with('<')) return 0;  // the plain form has a target of its own
    const auto set = ko::calib::readCurve(text, "fuzz.clb");
    if (set) {
        const auto format = ko::calib::usableFormat(ko::textIn(set->formatX));
        for (const CalibChannel& channel : ko::calib::channelsOf(*set))
            for (const CalibTone& tone : ko::calib::tonesOf(channel)) {
                (void)format.print(tone.x);
                (void)ko::calib::splineValue(ko::calib::tonesOf(channel), tone.y);
            }
    }
    return 0;
}
