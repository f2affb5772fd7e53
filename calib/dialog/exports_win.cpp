// The exported function of the calibration editor.
#include "kolink/calib_dialog.h"

#include "calib/dialog/calib_dialog.h"
#include "frame/boundary.h"

extern "C" int32_t jKoCalibEditCurveDlg(HWND owner, CalibCurveSet* set) {
    return set && ko::atBoundary(false, [&] { return ko::calib::editCurve(owner, *set); });
}
