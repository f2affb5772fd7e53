// The calibration editor as a window.
#pragma once

#define WIN32_LEAN_AND_MEAN
#undef NOMINMAX
#define NOMINMAX
#include <windows.h>

#include "calib/calib.h"

namespace ko::calib {

// Runs the dialog on the set; see kolink/calib_dialog.h.
bool editCurve(HWND owner, CalibCurveSet& set);

}  // namespace ko::calib
