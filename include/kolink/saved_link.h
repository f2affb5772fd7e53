/* A saved link as a whole: its input curves, its grid, its output curves. kolink/cmyk_profile.h
 * converts through the grid alone.
 *
 *   jKoCmykLoadProfile -> jKoCmykMakeCurveTables -> jKoCmykLinkCMYKtoCMYK16Row, row by row
 *
 * Several threads may use one profile with its tables while none of them changes either. */
#ifndef KOLINK_SAVED_LINK_H
#define KOLINK_SAVED_LINK_H

#include "kolink/cmyk_profile.h"

/* 2048 bytes: the eight curves of a profile at every level, as their splines have them. 0..3 are
 * the C, M, Y, K input curves, 4..7 the output curves. */
typedef struct CmykCurveTables {
    uint8_t levels[8][256];
} CmykCurveTables;

KOLINK_BEGIN

/* Fills the tables from the profile's control points. To be called again when these change.
 * Returns 1; 0 when a pointer is null. */
KOLINK_API int32_t jKoCmykMakeCurveTables(const CmykProfile *profile, CmykCurveTables *tables);

/* A row of pixels through input curves, grid and output curves. An output curve is a table of
 * whole levels, so its input is rounded to one; an ink whose output curve is the identity keeps
 * the finer steps of the grid.
 *   input   4 bytes a pixel: C, M, Y, K
 *   output  4 words a pixel, 0..4080 (16 x the 8-bit level); does not overlap input
 * pixels below 1 does nothing. Checks no pointer; allocates nothing. */
KOLINK_API void jKoCmykLinkCMYKtoCMYK16Row(const CmykProfile *profile,
                                           const CmykCurveTables *tables, const uint8_t *input,
                                           int32_t pixels, uint16_t *output);

KOLINK_END

#endif
