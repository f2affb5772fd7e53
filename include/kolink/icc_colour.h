/* Colour-space arithmetic, in place. The results are the same to the last bit on every
 * platform: cube roots and cubes are the library's own. Any thread may call them. */
#ifndef KOLINK_ICC_COLOUR_H
#define KOLINK_ICC_COLOUR_H

#include "kolink/icc_profile.h"

KOLINK_BEGIN

/* colour  double[3]: X, Y, Z in; L*, a*, b* out (L* 0..100)
 * white   double[3]: X, Y, Z of the white point on the same scale
 * CIE 1976: f(t) = t^(1/3) above 0.008856, else 7.787 t + 16/116. */
KOLINK_API void jIccXYZtoLab(double *colour, const double *white);

/* The way back: f^3 when f is above 0.2069, else (f - 16/116) / 7.787. The threshold lies a
 * little above the forward one's, so the two are not exact inverses at the knee. */
KOLINK_API void jIccLabtoXYZ(double *colour, const double *white);

/* L*, a*, b* to and from the ICC version 2 Lab encoding (L* 100 is 0xFF00 in 16 bits).
 *   colour  double[3], stays double: encoding clamps to 0..65535 but does not round
 *   bits    8 or 1: the 8-bit form (the 16-bit value / 256); any other value: 16 bits
 * Decoding does not clamp. */
KOLINK_API void jIccLabEncode(double *colour, int32_t bits);
KOLINK_API void jIccLabDecode(double *colour, int32_t bits);

/* X, Y, Z to and from the ICC u1Fixed15 encoding (1.0 is 0x8000); bits as above. */
KOLINK_API void jIccXYZEncode(double *colour, int32_t bits);
KOLINK_API void jIccXYZDecode(double *colour, int32_t bits);

/* Sends an 8-bit level through a sampled tone reproduction curve.
 *   value  int32[1], 0..255 in (clamped), 0..255 out
 * An empty curve changes nothing; a one-entry curve gives its high byte for every level. */
KOLINK_API void jIccTrcColor(const IccCurve *curve, int32_t *value);

KOLINK_END

#endif
