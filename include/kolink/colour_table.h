/* Small colour tables with a text form that people can edit: CMYK to CMYK and RGB to RGB on a
 * 17-point grid. The level of grid index i is 16 i - i / 16 (0, 16, ... 240, 255).
 *
 * The text form is the line "#begindata", then one line a node of decimal numbers between tabs:
 * input levels, then outputs. The binary form is the record's words, little-endian. Table files
 * are read and written without the file guard. A table that nobody changes may be used by several
 * threads. */
#ifndef KOLINK_COLOUR_TABLE_H
#define KOLINK_COLOUR_TABLE_H

#include "kolink/api.h"

#define KOLINK_CMYK_LUT_NODES 83521 /* 17^4 */
#define KOLINK_RGB_LUT_NODES 4913   /* 17^3 */

/* 334084 bytes. Node (c, m, y, k) is word ((c * 17 + m) * 17 + y) * 17 + k and holds
 * C << 24 | M << 16 | Y << 8 | K. */
typedef struct CmykLut {
    uint32_t nodes[KOLINK_CMYK_LUT_NODES];
} CmykLut;

/* 19652 bytes. Node (r, g, b) is word (r * 17 + g) * 17 + b and holds R | G << 8 | B << 16: the
 * reverse of the CMYK word's order. */
typedef struct RgbLut {
    uint32_t nodes[KOLINK_RGB_LUT_NODES];
} RgbLut;

KOLINK_BEGIN

/* Make an initialised table; null, with the reason, when memory is short. */
KOLINK_API CmykLut *jKoCmykCreateCmykLut(void);
KOLINK_API RgbLut *jKoRgbCreateRgbLut(void);

/* Free a table. Return 0 for null, else 1. */
KOLINK_API int32_t jKoCmykReleaseCmykLut(CmykLut *table);
KOLINK_API int32_t jKoRgbReleaseRgbLut(RgbLut *table);

/* Make a table the identity: each node holds its own levels. Return 1; 0 for null. */
KOLINK_API int32_t jKoCmykInitCmykLut(CmykLut *table);
KOLINK_API int32_t jKoRgbInitRgbLut(RgbLut *table);

/* Load a table file in either form. The first line that is "#begindata" (in any case) makes a
 * file text, the first that holds a byte of 1..8 or 14..31 makes it binary.
 * Text: lines in any order; tab, blank and comma separate numbers, missing ones are 0, also on a
 * line without any digit; outputs are taken modulo 256; a level belongs to the grid index below
 * it, and a line with a level outside the grid is skipped. Nodes without a line keep what they
 * held. Lines count up to their 511th byte.
 * Binary: a file cut short leaves the rest of the table as it was.
 * Return 1, also when no data follows; 0, with the reason, when the table is null, or the file
 * cannot be read or is of neither form: the table is then as it was. */
KOLINK_API int32_t jKoCmykLoadCmykLut(CmykLut *table, const char *path);
KOLINK_API int32_t jKoRgbLoadRgbLut(RgbLut *table, const char *path);

/* Write a table in the text form. Return 1; 0, with the reason, when the table is null or the
 * file cannot be created, replaced or written. */
KOLINK_API int32_t jKoCmykSaveCmykLut(const CmykLut *table, const char *path);
KOLINK_API int32_t jKoRgbSaveRgbLut(const RgbLut *table, const char *path);

/* One colour through the table, in place, quadrilinear; every step in integers.
 *   cmyk  int32[4]: 0..255 in (clamped), 0..4080 out (16 x the 8-bit level)
 * Returns the last output. Checks no pointer; allocates nothing. */
KOLINK_API int32_t jKoCmykLutCMYKtoCMYK16(const CmykLut *table, int32_t *cmyk);

/* One colour through the table, in place, tetrahedral. The sum is exact and truncated, so that a
 * table's own levels come out exactly.
 *   rgb  int32[3]: 0..255 in (clamped), 0..4080 out (16 x the 8-bit level)
 * Returns the last output. Checks no pointer; allocates nothing. */
KOLINK_API int32_t jKoRgbRGBtoRGB16(const RgbLut *table, int32_t *rgb);

/* The same for a row of pixels, bit for bit.
 *   input   4 (3) bytes a pixel, interleaved: C, M, Y, K (R, G, B)
 *   output  4 (3) words a pixel, 0..4080; does not overlap input
 * pixels below 1 does nothing. Several threads may use one table. */
KOLINK_API void jKoCmykLutCMYKtoCMYK16Row(const CmykLut *table, const uint8_t *input,
                                          int32_t pixels, uint16_t *output);
KOLINK_API void jKoRgbRGBtoRGB16Row(const RgbLut *table, const uint8_t *input, int32_t pixels,
                                    uint16_t *output);

KOLINK_END

#endif
