// Calibration files, from either form, there and back.
#include "fuzz/round_trip.h"
#include "calib/calib.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    roundTrip(data, size, ko::calib::loadCurve, ko::calib::saveCurve);
    return 0;
}
