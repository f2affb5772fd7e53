/* Calibration curve sets: measured tone values of up to 16 named channels, and their files
 * (.clb). A set is one block and belongs to one thread at a time; no call takes the file guard.
 * Channels are counted from 0. NaN and infinite numbers are refused wherever a number is passed,
 * and none ever comes from a file. */
#ifndef KOLINK_CALIBRATION_H
#define KOLINK_CALIBRATION_H

#include "kolink/tone_curve.h"

#define KOLINK_CALIB_TEXT_SIZE 128
#define KOLINK_CALIB_NAME_SIZE 32
#define KOLINK_CALIB_FORMAT_SIZE 8
#define KOLINK_CALIB_MAX_CHANNELS 16
#define KOLINK_CALIB_MAX_TONES 256

/* A tone value: x the input tone, 0..range; y the output tone, 0..limit. */
typedef struct CalibTone {
    float x;
    float y;
} CalibTone;

/* 2088 bytes. */
typedef struct CalibChannel {
    char name[KOLINK_CALIB_NAME_SIZE]; /* Shift-JIS */
    uint32_t lrgb;                     /* display colour: red, green << 8, blue << 16 */
    int32_t toneCount;                 /* 0..256 */
    CalibTone tones[KOLINK_CALIB_MAX_TONES]; /* by rising x; zeros from toneCount on */
} CalibChannel;

/* 548 + channelCount * 2088 bytes: the array bound stands for channelCount. */
typedef struct CalibCurveSet {
    char title[KOLINK_CALIB_TEXT_SIZE]; /* Shift-JIS */
    char desc[KOLINK_CALIB_TEXT_SIZE];  /* Shift-JIS */
    char path[KOLINK_PATH_SIZE];        /* the file it was last loaded from or saved to */
    int32_t channelCount;               /* 1..16 */
    int32_t range;                      /* largest x */
    int32_t limit;                      /* largest y */
    int32_t ctype;                      /* KOLINK_TONE_SPLINE, otherwise straight lines */
    char formatX[KOLINK_CALIB_FORMAT_SIZE]; /* printf formats of x and y in a saved file: one */
    char formatY[KOLINK_CALIB_FORMAT_SIZE]; /* floating-point conversion and nothing else */
    CalibChannel channels[1];
} CalibCurveSet;

KOLINK_BEGIN

/* Makes a set of 1 to 16 channels: no title, description or path, spline, formats "%.0f",
 * channels named "channel n" in the user's language, black, with the tones (0, 0) and
 * (range, range). range and limit are taken as given.
 * Returns null, with the reason, for other counts and when memory is short. The caller releases it
 * with jKoCalibReleaseCurve. */
KOLINK_API CalibCurveSet *jKoCalibCreateCurve(int32_t channelCount, int32_t range, int32_t limit);

/* Frees a set. Returns 0 for null, else 1. */
KOLINK_API int32_t jKoCalibReleaseCurve(CalibCurveSet *set);

/* Resets the tones of every channel to (0, 0) and (range, range). Returns 0 for null, else 1. */
KOLINK_API int32_t jKoCalibInitCurve(CalibCurveSet *set);

/* Reads a .clb file, in its keyed form (first line "<...") or its plain form. Channel count 1..16;
 * a range of 0 becomes 255, a limit of 0 the range. In the keyed form tones are sorted and a
 * second tone of the same x replaces the first; in the plain form they keep the file's order. A
 * format that is not one floating-point conversion of width and precision up to 60 becomes "%.0f";
 * texts are cut to their fields at a whole character; colours are clamped to 0..255.
 * Returns a new set, which the caller releases; null, with the reason, when the file cannot be
 * read, names no channel or more than 16, and when memory is short. */
KOLINK_API CalibCurveSet *jKoCalibLoadCurve(const char *path);

/* Writes the keyed form. The file is written whole or the old one stays.
 *   path  null or empty: the set's own; else it becomes the set's, also when writing then fails
 * Formats that cannot be used (see above) count as "%.0f". Numbers are printed as in the C locale.
 * Returns 1; 0, with the reason, when the path is empty or longer than 259 bytes, when the file
 * cannot be created, replaced or written, and when memory is short. */
KOLINK_API int32_t jKoCalibSaveCurve(CalibCurveSet *set, const char *path);

/* Any of the pointers may be null. Returns 1; 0 for a null set. */
KOLINK_API int32_t jKoCalibGetCurveInfo(const CalibCurveSet *set, int32_t *channelCount,
                                        int32_t *range, int32_t *limit);

/* The output tone at x, clamped to 0..limit: a local cubic through the tones, straight between its
 * 257 samples, or straight lines between the tones (ctype). 0 outside the tones' span, with less
 * than two tones, for a null set and for a channel that is not there. Allocates nothing. */
KOLINK_API float jKoCalibGetToneValue(const CalibCurveSet *set, int32_t channel, float x);

/* Stores a tone: a tone of exactly that x gets the new y, else it is inserted before the first
 * tone of a greater x. y is clamped to 0..limit.
 * Returns 1; 0, changing nothing, for x outside 0..range, a full channel (256 tones), a null set,
 * a channel that is not there, and NaN. */
KOLINK_API int32_t jKoCalibSetToneValue(CalibCurveSet *set, int32_t channel, float x, float y);

/* Removes the tone of exactly that x. The first and the last tone always stay.
 * Returns 1; 0, changing nothing, when there is no such tone between them. */
KOLINK_API int32_t jKoCalibDeleteToneValue(CalibCurveSet *set, int32_t channel, float x);

/* Title and description, each left out when null; cut to 127 bytes at a whole character.
 *   title, desc  of Get: char[128]
 * Return 1; 0 for a null set. */
KOLINK_API int32_t jKoCalibSetTitle(CalibCurveSet *set, const char *title, const char *desc);
KOLINK_API int32_t jKoCalibGetTitle(const CalibCurveSet *set, char *title, char *desc);

/* A channel's name, left out when null, and its display colour; Set always stores the colour.
 *   name  cut to 31 bytes at a whole character; of Get: char[32]
 *   lrgb  of Get: left out when null
 * Return 1; 0 for a null set and a channel that is not there. */
KOLINK_API int32_t jKoCalibSetToneName(CalibCurveSet *set, int32_t channel, const char *name,
                                       uint32_t lrgb);
KOLINK_API int32_t jKoCalibGetToneName(const CalibCurveSet *set, int32_t channel, char *name,
                                       uint32_t *lrgb);

/* The set's path.
 *   path  char[260], left out when null
 * Returns 1; 0 for a null set. */
KOLINK_API int32_t jKoCalibGetPath(const CalibCurveSet *set, char *path);

KOLINK_END

#endif
