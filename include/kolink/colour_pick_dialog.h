/* The colour pick dialog. Windows only. */
#ifndef KOLINK_COLOUR_PICK_DIALOG_H
#define KOLINK_COLOUR_PICK_DIALOG_H

#include "kolink/api.h"

#ifdef _WIN32
#include <windows.h>

KOLINK_BEGIN

/* Lets the user choose a CMYK colour in a modal window: typed, or picked in a field
 * of hues, a strip of lightness and a strip of black.
 *   owner  the window that waits for the dialog; may be null
 *   cmyk   the colour to begin with: C in bits 24 to 31, M 16 to 23, Y 8 to 15, K 0 to 7
 * Returns the colour chosen, packed in the same way; after Cancel, and when the window cannot be
 * opened, cmyk as it was.
 * The fields begin in percent. One that the user enters and leaves without typing keeps its level
 * exactly. Until a hue is picked in the field, the middle of the lightness strip is the colour
 * given or typed; after that it is the hue. */
KOLINK_API uint32_t jColorPickDlg(HWND owner, uint32_t cmyk);

KOLINK_END

#endif
#endif
