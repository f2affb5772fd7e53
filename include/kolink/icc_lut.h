/* Evaluating a LUT tag. Order: jIccLoadTag, jIccLutSetup, any number of colours, jIccLutClose,
 * jIccRelease. Set-up and closing belong to one thread; between them any may convert. */
#ifndef KOLINK_ICC_LUT_H
#define KOLINK_ICC_LUT_H

#include "kolink/icc_profile.h"

KOLINK_BEGIN

/* Resamples the curves of a loaded LUT into its work table (8 KiB for 8-bit tables, 512 KiB
 * for 16-bit ones, and one row more). Supports 1 to 4 channels in and out, a grid of 2 or more
 * points that has no more steps than the scale (256 points in 8 bits, 65536 in 16), and in
 * 8-bit tables 256 entries a curve. A 16-bit curve of one entry is that value everywhere, one
 * without entries the identity.
 * A second set-up of a record frees the table of the first. What else a record holds in
 * workTable is never read or freed, so a record built by hand need not clear it.
 * Returns 1; 0 when lut is null, its shape is not supported, or memory is short (then with the
 * reason): the work table is then null, and the colour functions leave their values as they are. */
KOLINK_API int32_t jIccLutSetup(IccLut *lut);

/* Frees the work table, which jIccLutSetup made. Returns 1; 0 when it is null. */
KOLINK_API int32_t jIccLutClose(IccLut *lut);

/* Converts one colour on the table's own scale, in place, curves looked up directly; three
 * inputs by tetrahedra, others by multilinear interpolation.
 *   lut     made ready by jIccLutSetup
 *   values  int32[max(in, out)]; 0..255 for 8-bit tables, 0..65535 for 16-bit ones; values
 *           outside are taken as the nearest that the tables hold; inputs beyond the number of
 *           outputs stay as they are
 * Returns the number of output channels; 0 when lut is not ready, or has less than 2 grid points
 * by now. Allocates nothing; several threads may use one lut. */
KOLINK_API int32_t jIccLutColor(const IccLut *lut, int32_t *values);

/* Converts one colour on the 16-bit scale, in place, linear interpolation everywhere.
 *   values  int32[max(in, out)]; 0..65535 in and out; a value less than one curve step below 0
 *           (256 in 8-bit tables, 4 in 16-bit ones) goes on along the first step of its curve,
 *           others outside are taken as the nearest of these
 * Returns the number of output channels; 0 when lut is not ready, or has less than 2 grid points
 * by now. Allocates nothing; several threads may use one lut. */
KOLINK_API int32_t jIccLutColor16(const IccLut *lut, int32_t *values);

KOLINK_END

#endif
