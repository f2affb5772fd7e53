/* The colour front end: 8-bit conversions for display and editing. Conversions may run on several
 * threads at once, but none while the current links are set up or ended. */
#ifndef KOLINK_COLOUR_H
#define KOLINK_COLOUR_H

#include "kolink/link_settings.h"

KOLINK_BEGIN

/* Builds the two current links, RGB to CMYK and CMYK to RGB, from two ICC profiles through the
 * system's colour management, in place of those that were current.
 *   intent  KOLINK_INTENT_..., all four
 * Returns 1 when both were built; otherwise 0, and no link is current; the reason is there when a
 * file or memory was it. The current links belong
 * to the process and carry no lock: set up and end while no conversion runs. */
KOLINK_API int32_t jColorSetupProfile(const char *rgbProfilePath, const char *cmykProfilePath,
                                      int32_t intent);

/* Releases the current links. Call it before the library is unloaded. */
KOLINK_API void jColorEndProfile(void);

/* Conversions of one colour, channels 0..255 (clamped), through the current links; without them
 * through built-in tables, which come from a smooth model of a coated press.
 *   CMYK  C << 24 | M << 16 | Y << 8 | K
 *   RGB   R | G << 8 | B << 16 */
KOLINK_API uint32_t jColorRGBtoCMYK(int32_t r, int32_t g, int32_t b);
KOLINK_API uint32_t jColorCMYKtoRGB(int32_t c, int32_t m, int32_t y, int32_t k);

/* The amount of grey ink, 0 for white to 255 for black: 255 less 0.299 R + 0.587 G + 0.114 B,
 * summed in double from the left and truncated; CMYK goes through jColorCMYKtoRGB first. Inputs
 * are clamped to 0..255. */
KOLINK_API int32_t jColorRGBtoGRAY(int32_t r, int32_t g, int32_t b);
KOLINK_API int32_t jColorCMYKtoGRAY(int32_t c, int32_t m, int32_t y, int32_t k);

/* Rows of interleaved pixels, one byte a channel; every result is the one of the single colour.
 *   pixels  below 1: nothing happens
 * Input and output do not overlap. Allocate nothing; several threads may convert at once. */
KOLINK_API void jColorRGBtoCMYKRow(const uint8_t *rgb, int32_t pixels, uint8_t *cmyk);
KOLINK_API void jColorCMYKtoRGBRow(const uint8_t *cmyk, int32_t pixels, uint8_t *rgb);

/* Levels 0..255 to percent and back, rounded half up; inputs are clamped first. */
KOLINK_API int32_t Value255to100(int32_t v);
KOLINK_API int32_t Value100to255(int32_t v);

/* Lists the files of a folder, for choosing an ICC profile.
 *   list         in: a path whose last part holds wild cards (* and ?), at most 259 bytes; out: the
 *                paths found, one to a slot of 260 bytes, sorted by name without regard to ASCII
 *                case
 *   maxCount     number of slots; below 1 nothing is written
 *   colourSpace  null: all files; else four characters ("RGB ", "CMYK"; a shorter text is filled
 *                with blanks): files whose ICC header names another space are left out, files
 *                without a readable header are listed all the same
 * Folders are not listed, nor are paths over 259 bytes. Where more files match than there are
 * slots, the first ones are listed. Returns the number of paths; 0, with the reason, when memory was
 * short or the folder could not be read to its end. */
KOLINK_API int32_t jColorLoadIccFileList(char *list, int32_t maxCount, const char *colourSpace);

KOLINK_END

#endif
