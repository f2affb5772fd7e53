/* The calibration editor. Windows only. */
#ifndef KOLINK_CALIB_DIALOG_H
#define KOLINK_CALIB_DIALOG_H

#include "kolink/calibration.h"

#ifdef _WIN32
#include <windows.h>

KOLINK_BEGIN

/* Modal editor of a calibration set, in the user's language: Japanese, English or Chinese. One may
 * be open at a time, on the calling thread.
 *   owner  the window that waits for the dialog; may be null
 *   set    edited in place, each edit at once, also when the dialog is then cancelled, unless the
 *          person takes the edits back, which Cancel offers. Its path says where Save writes; one
 *          that is empty or ends in a backslash is cleared and Save asks for a name, in that
 *          folder. After Save As it is the file that was written. New keeps it, but asks for a name
 *          the next time.
 * Texts of the set are shown from Shift-JIS; on a Chinese system plain GB2312 is shown as such, and
 * a title that is typed there is stored in code page 936. The date is the file's last change:
 * year/month/day, month/day/year in English.
 * Relative editing leaves a curve whose last tone is 0 as it is, unless it was itself what took the
 * curve there. Any range, limit, count and tone may be given, however little sense it makes.
 * Returns 1 for OK and 0 for Cancel, for a null set, and when the owner is destroyed. */
KOLINK_API int32_t jKoCalibEditCurveDlg(HWND owner, CalibCurveSet *set);

KOLINK_END

#endif
#endif
