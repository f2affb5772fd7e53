/* The tone curve dialogs. Windows only. */
#ifndef KOLINK_TONE_DIALOG_H
#define KOLINK_TONE_DIALOG_H

#include "kolink/api.h"

#ifdef _WIN32
#include <windows.h>

KOLINK_BEGIN

/* Modal editors of a black correction file (.bkc), a CMYK tone curve (.tnc) and DCC settings
 * (.dcc), in the user's language: Japanese, simplified Chinese, or else English. One of each may be
 * open at a time, on the calling thread.
 *   owner  the window that waits for the dialog; may be null
 *   path   char[260], in the system's code page: the file to edit; empty, or a folder that ends
 *          in a backslash, for a new one. Takes the path last used, also after Cancel.
 * Closing over changes asks whether to save them; a save that fails is told with its reason.
 * Return 1 for OK and 0 for Cancel. A file that cannot be read, or that holds no curve, is told to
 * the user; the result is then 0 and path stays as it was. */
KOLINK_API int32_t jKoToneBkcCurveDlg(HWND owner, char *path);
KOLINK_API int32_t jKoToneCmykToneCurveDlg(HWND owner, char *path);
KOLINK_API int32_t jKoToneDccDlg(HWND owner, char *path);

KOLINK_END

#endif
#endif
