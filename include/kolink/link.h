/* Device links: a small grid that converts RGB or CMYK to CMYK or RGB. A link that nobody changes
 * may be used by several threads; each may build one of its own. */
#ifndef KOLINK_LINK_H
#define KOLINK_LINK_H

#include "kolink/link_settings.h"

/* 1876 bytes with 32-bit pointers, 1880 with 64-bit ones. The grid holds
 * gridPoints^inputChannels nodes of four values on the scale 0..4095 (16 bits / 16), the first
 * input channel slowest: node (i0, i1, i2) begins at grid[((i0 * N + i1) * N + i2) * 4]. The
 * values are C, M, Y, K, or R, G, B, 0. Node i of an axis stands for level i * 255 / (N - 1).
 * The library reads neither name, path and comment nor the curves: they are the host's. */
typedef struct LinkProfile {
    char name[KOLINK_NAME_SIZE];       /* Shift-JIS */
    char path[KOLINK_PATH_SIZE];
    int32_t inputChannels;             /* 3 R, G, B; 4 C, M, Y, K */
    int32_t gridPoints;                /* of each axis; 17 in every link that a builder makes */
    char comment[KOLINK_COMMENT_SIZE]; /* Shift-JIS */
    uint8_t curveValues[8][65];        /* point i of an identity: 4 i - i / 64 */
    uint8_t curveFlags[8][65];         /* non-zero: a fixed point of the curve */
    uint16_t *grid;                    /* owned by the record */
} LinkProfile;

KOLINK_BEGIN

/* Makes a link with an untitled name, empty path and comment, identity curves with both ends
 * fixed, and a grid of zeros.
 *   inputChannels  3 or 4
 *   gridPoints     2 to 256
 * Returns null for other arguments, for a grid over 256 MiB, and, with the reason, when memory is
 * short. The caller releases it with jKoLinkReleaseProfile. */
KOLINK_API LinkProfile *jKoLinkCreateProfile(int32_t inputChannels, int32_t gridPoints);

/* Frees grid and record. Returns 0 for null, else 1. */
KOLINK_API int32_t jKoLinkReleaseProfile(LinkProfile *link);

/* Converts one colour, in place: tetrahedra for 3 input channels, a blend of all 16 corners of
 * the cell for any other number, which is read as 4.
 *   values  int32[4]: 0..255 in (clamped), the fourth not read with 3 channels; 0..4080 out
 * A record without a grid or with gridPoints outside 2..256 gives zeros. Allocates nothing;
 * several threads may use one link. */
KOLINK_API void jKoLinkCOLtoCMYK16(const LinkProfile *link, int32_t *values);

/* The same for a link that is known to have 3 input channels. */
KOLINK_API void jKoLinkCOLtoCMYK16_3(const LinkProfile *link, int32_t *values);

/* Converts a row of pixels; every result is the one of jKoLinkCOLtoCMYK16.
 *   input   inputChannels bytes a pixel, 3 or 4 (any other number is read as 4)
 *   pixels  below 1: nothing happens
 *   output  4 values a pixel, 0..4080; does not overlap input
 * Allocates nothing; several threads may use one link. */
KOLINK_API void jKoLinkCOLtoCMYK16Row(const LinkProfile *link, const uint8_t *input, int32_t pixels,
                                      uint16_t *output);

/* The builders make a 17-point link from the source and destination profile of the settings; all
 * other paths are not read. They return null when a file does not load, a profile does not fit,
 * the intent is not supported, or memory is short; the reason is there when a file or memory was
 * it. The caller releases the link. */

/* With the library's own evaluator, CMYK or RGB to CMYK: A2Bn of the source, B2An of the
 * destination; an RGB source without A2Bn may have rTRC, gTRC, bTRC and rXYZ, gXYZ, bXYZ.
 *   intent        0, 1, 2: n of the tables; others are refused
 *   whiteMode     1: white (no ink; full light) becomes no ink at all; others: as converted
 *   preservation  1: pure C, M, Y (or one light below full) keep one ink; 2: two-ink mixes keep
 *                 their two inks as well
 * Source: connection space Lab or XYZ; the destination's is not looked at, and what differs from
 * the source's is taken to be the other one. Between Lab and XYZ a CMYK source is relative to its
 * media white (wtpt; D50 when it has none), an RGB source to the illuminant of its header.
 * Refused as well: a table whose channels do not fit, an RGB source that lacks a colorant. */
KOLINK_API LinkProfile *jKoLinkCombineCmykProfile(const CmsLinkSettings *settings);
KOLINK_API LinkProfile *jKoLinkCombineRgbProfile(const CmsLinkSettings *settings);

/* Through the system's colour management (mscms on Windows, lcms2 elsewhere), RGB or CMYK to RGB
 * or CMYK. White mode and preservation are not read.
 *   intent  0 perceptual, 1 relative colorimetric, 2 saturation, 3 absolute colorimetric; others
 *           are refused
 * The link's outputs are R, G, B when the destination's header says so, and C, M, Y, K for every
 * other and for one that cannot be read. What else can be opened and made a transform of is the
 * system's to say: a source of other colours is fed with the channels of the builder. */
KOLINK_API LinkProfile *jKoLinkCombineIcmRgbProfile(const CmsLinkSettings *settings);
KOLINK_API LinkProfile *jKoLinkCombineIcmCmykProfile(const CmsLinkSettings *settings);

KOLINK_END

#endif
