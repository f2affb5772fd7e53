/* Tone curve files: black correction (.bkc), CMYK tone curves (.tnc), DCC settings (.dcc).
 * Every call takes the system-wide file guard. Lines end with LF or CR LF; what goes beyond 255
 * bytes of a line is dropped. A record belongs to one thread at a time. */
#ifndef KOLINK_TONE_FILE_H
#define KOLINK_TONE_FILE_H

#include "kolink/tone_curve.h"

/* 20 bytes with 32-bit pointers, 24 with 64-bit ones. Fields that a file does not mention keep
 * their values when it is loaded. */
typedef struct DccSettings {
    int32_t DPIX; /* resolution in dots per inch */
    int32_t DPIY;
    int32_t WINK;      /* total ink, out of 255 */
    int32_t LCLM;      /* density of light cyan and light magenta in percent */
    ToneCurve *curves; /* 6 channels; its title is the printer's name */
} DccSettings;

KOLINK_BEGIN

/* The loaders reset the curve first, also when the file cannot be opened, and rebuild its table
 * with the spline at the end. A file that was opened and cannot be read leaves it as it was.
 * Malformed lines are skipped, unreadable numbers are 0, a number too large for its field is the
 * nearest that fits; a title is cut to its field at a whole character. The path may be the
 * curve's own.
 * Return 1; 0, with the reason, when the record or its table is null, has too few channels (then
 * nothing is touched) or the file cannot be opened or read. */

/* At least 1 channel; values 0..255. Points outside 0..255 are ignored. */
KOLINK_API int32_t jKoToneLoadBkcCurve(ToneCurve *curve, const char *path);

/* Exactly 4 channels; values 0..255. */
KOLINK_API int32_t jKoToneLoadCmykToneCurve(ToneCurve *curve, const char *path);

/* At least 6 channels; for conversion: every value times 16, 0..4080. */
KOLINK_API int32_t jKoToneLoadDccCurve(ToneCurve *curve, const char *path);

/* For editing: settings and curves, values 0..255; settings->curves has at least 6 channels. */
KOLINK_API int32_t jKoToneLoadDcc(DccSettings *settings, const char *path);

/* The savers write the channels that the form needs (1, 4, 6) and store path in the curve.
 * Return 1; 0 with the reason, changing nothing, when the record has too few channels, the path is
 * longer than 259 bytes, or the file cannot be created, replaced or written. */
KOLINK_API int32_t jKoToneSaveBkcCurve(ToneCurve *curve, const char *path);
KOLINK_API int32_t jKoToneSaveCmykToneCurve(ToneCurve *curve, const char *path);
KOLINK_API int32_t jKoToneSaveDcc(DccSettings *settings, const char *path);

KOLINK_END

#endif
