/* Tone curves: control points on 256 input levels and the dense table made from them. A curve that
 * nobody changes may be used by several threads. */
#ifndef KOLINK_TONE_CURVE_H
#define KOLINK_TONE_CURVE_H

#include "kolink/api.h"

/* A control point: x the input level, y the output value. */
typedef struct TonePoint {
    int32_t x;
    int32_t y;
} TonePoint;

/* 332 bytes with 32-bit pointers, 336 with 64-bit ones.
 * Channels: 1 K (black correction); 4 C, M, Y, K; 6 C, M, Y, K, GCR, UCR (DCC).
 * Of channel c, table[c * 512 + x] is the control flag of level x (non-zero: a control point)
 * and table[c * 512 + 256 + x] its value: 0..255, or 0..4080 after jKoToneLoadDccCurve. */
typedef struct ToneCurve {
    char title[KOLINK_NAME_SIZE]; /* Shift-JIS; the printer's name in DCC settings */
    char path[KOLINK_PATH_SIZE];  /* the file it was last loaded from or saved to */
    int32_t channelCount;
    int16_t *table; /* channelCount x 512 entries, owned by the record */
} ToneCurve;

/* How a curve runs between its control points: mode of jKoToneEncodeToneCurve. */
#define KOLINK_TONE_LINES 0
#define KOLINK_TONE_SPLINE 1

KOLINK_BEGIN

/* Makes a curve of 0 to 1024 channels, initialised. Returns null for other counts and, with the
 * reason, when memory is short. The caller releases it with jKoToneReleaseToneCurve. */
KOLINK_API ToneCurve *jKoToneCreateToneCurve(int32_t channelCount);

/* Frees table and record. Returns 0 for null, else 1. */
KOLINK_API int32_t jKoToneReleaseToneCurve(ToneCurve *curve);

/* Resets title (untitled), path (empty), flags (levels 0 and 255) and values (identity).
 * Returns 1 always; null is ignored. */
KOLINK_API int32_t jKoToneInitToneCurve(ToneCurve *curve);

/* The value at x of the local cubic through the points; rounded half up, not clamped.
 *   points  count entries, x strictly increasing; only read
 * Changing one point moves at most the four segments around it. Returns 0 when x lies outside
 * the points or count is below 2. Points that share an x divide nothing: such a slope is 0. */
KOLINK_API int32_t jKoToneGetSplineTone(const TonePoint *points, int32_t count, int32_t x);

/* The same with straight lines between the points. */
KOLINK_API int32_t jKoToneGetLinerTone(const TonePoint *points, int32_t count, int32_t x);

/* Rebuilds the 256 values of every channel from its control points.
 *   mode      KOLINK_TONE_SPLINE; any other number: straight lines
 *   maxValue  values are clamped to 0..maxValue (255, or 4080 for conversion; at most 32767)
 * Levels outside the outermost control points get 0. Returns 1 always. */
KOLINK_API int32_t jKoToneEncodeToneCurve(ToneCurve *curve, int32_t mode, int32_t maxValue);

/* Sends a colour through a 4-channel curve, in place.
 *   cmyk  int32[4], 0..255 in (clamped)
 * Returns 1; 0, changing nothing, unless the curve has exactly 4 channels. */
KOLINK_API int32_t jKoToneCMYKtoCMYK(const ToneCurve *curve, int32_t *cmyk);

/* Converts an 8-bit RGB colour through DCC curves: grey-component replacement by channel 4,
 * under-colour removal by channel 5, then the ink curves.
 *   cmyk  int32[4] out, on the scale of the table (0..4080 after jKoToneLoadDccCurve)
 * Levels that GCR or UCR drive out of 0..255 stop there.
 * Returns 1; 0, changing nothing, unless the curve has at least 6 channels. */
KOLINK_API int32_t jKoToneRGBtoCMYK16(const ToneCurve *curve, uint8_t r, uint8_t g, uint8_t b,
                                      int32_t *cmyk);

KOLINK_END

#endif
