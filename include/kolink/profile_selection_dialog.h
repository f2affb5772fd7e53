/* The profile-setting dialog. Its function is there on Windows only. */
#ifndef KOLINK_PROFILE_SELECTION_DIALOG_H
#define KOLINK_PROFILE_SELECTION_DIALOG_H

#include "kolink/link_settings.h"

/* 524 bytes. Paths are empty when nothing is set. */
typedef struct ProfileSelection {
    char rgbPath[KOLINK_PATH_SIZE];
    char cmykPath[KOLINK_PATH_SIZE];
    int32_t intent; /* KOLINK_INTENT_... */
} ProfileSelection;

#ifdef _WIN32
#include <windows.h>

KOLINK_BEGIN

/* Lets the user choose an RGB profile, a CMYK profile and an intent in a modal window, in
 * Japanese, English or Chinese.
 *   owner      the window that waits for the dialog; may be null
 *   selection  what is chosen at first; takes the choice after OK
 * Returns 1 for OK; 0, the record as it was, for Cancel, for null, and when the window cannot be
 * opened.
 * Offered are the profiles of the product folder, at most 500 for each list, .icc before .icm; a
 * file whose header cannot be read is in both lists. A path that is not offered counts as not
 * set, an intent beyond 0 to 3 as perceptual: OK then returns them so. */
KOLINK_API int32_t jColorProfileSelectDlg(HWND owner, ProfileSelection *selection);

KOLINK_END

#endif
#endif
