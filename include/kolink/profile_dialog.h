/* The CMYK profile editor. Windows only. */
#ifndef KOLINK_PROFILE_DIALOG_H
#define KOLINK_PROFILE_DIALOG_H

#include "kolink/api.h"

#ifdef _WIN32
#include <windows.h>

KOLINK_BEGIN

/* A modal editor of a CMYK profile, in the user's language: its name, its comment, its eight tone
 * curves and its colours. One may be open at a time, on the calling thread. Colours are shown through the
 * current CMYK link of jColorSetupProfile or, without one, the built-in table.
 *   owner  the window that waits for the dialog; may be null
 *   path   char[260], in the system's code page: what jKoCmykLoadProfile reads; empty, or a
 *          folder that ends in a backslash, for a new profile. Takes the path last saved under,
 *          also after Cancel; empty when a new profile was not saved.
 * Points of the curves are hit strictly within 3 pixels across and 4 down; a right click takes a
 * drag back or removes a point, never an end. A percentage is taken over only after someone has
 * typed in its field. Name and comment are stored in Shift-JIS, cut at a whole character to 63 and
 * 499 bytes; a character that Shift-JIS lacks becomes '?'.
 * The colour correction changes nodes of the grid, and nothing else, in a range of hue, saturation,
 * lightness and black around a colour; docs/colour-correction.md says which, and by how much. Its
 * current-value fields hold the colour picked and pick another when they are typed in.
 * OK saves first; a profile without a file asks for one, and the editor stays open over a profile
 * that was not saved, unless the person discards it. Cancel over changes asks. Files that are not
 * named .icc get ".icc" appended to their name.
 * Returns 1 for OK and 0 for Cancel. A file that cannot be read, or a profile whose A2B0 does not
 * lead from four channels to four, is told to the user; the result is then 0 and path stays as it
 * was. */
KOLINK_API int32_t jKoCmykProfileDlg(HWND owner, char *path);

KOLINK_END

#endif
#endif
