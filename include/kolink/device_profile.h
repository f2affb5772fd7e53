/* Device profiles: a CMYK printer as a host measured it, written as an ICC profile. A record
 * belongs to one thread at a time. */
#ifndef KOLINK_DEVICE_PROFILE_H
#define KOLINK_DEVICE_PROFILE_H

#include "kolink/api.h"

#define KOLINK_DEVICE_NODES 6561 /* 9^4 */
#define KOLINK_LAB_NODES 4913    /* 17^3 */

/* 71300 bytes, one flat block; the host fills every table. */
typedef struct DeviceProfile {
    char name[KOLINK_NAME_SIZE];           /* Shift-JIS; not written */
    char path[KOLINK_PATH_SIZE];           /* the file it was last saved to */
    char description[KOLINK_COMMENT_SIZE]; /* goes into the profile's description */
    float whitePoint[3];                   /* media white X, Y, Z; 1.0 is the Y of the illuminant */
    /* Measured colours, node ((c * 9 + m) * 9 + y) * 9 + k: L in bits 0..7, a in 8..15, b in
     * 16..23, in the 8-bit ICC encoding (L* 100 is 255, a* and b* 0 are 128). The last one, all
     * inks full, is the black point too. */
    uint32_t labGrid[KOLINK_DEVICE_NODES];
    /* Inks for node (L * 17 + a) * 17 + b of the encoding's range:
     * C << 24 | M << 16 | Y << 8 | K. */
    uint32_t toCmyk0[KOLINK_LAB_NODES];  /* perceptual, B2A0 */
    uint32_t toCmyk1[KOLINK_LAB_NODES];  /* colorimetric, B2A1 */
    uint8_t gamut[KOLINK_LAB_NODES];     /* 0 in gamut, others out of it */
    uint8_t spare;                       /* 0 */
} DeviceProfile;

KOLINK_BEGIN

/* Makes an initialised record; null, with the reason, when memory is short. */
KOLINK_API DeviceProfile *jKoDevsCreateProfile(void);

/* Frees a record. Returns 0 for null, else 1. */
KOLINK_API int32_t jKoDevsReleaseProfile(DeviceProfile *profile);

/* Zeroes everything and sets the name to "untitled" in Japanese. Returns 1; 0 for null. */
KOLINK_API int32_t jKoDevsInitProfile(DeviceProfile *profile);

/* Writes an ICC printer profile (version 2, CMYK, Lab, 8-bit tables: A2B0 serves A2B1 and A2B2
 * too, B2A1 serves B2A2; its copyright text is "No copyright, use freely"), and stores path in the
 * record, also after a failure. A description without terminator ends with its field.
 * Returns 1 when written, also when the file may not be created or replaced and when there was no
 * memory for the profile at all; 0 when memory was short for a tag (nothing is written then), a
 * write or flush failed, memory, handles or room on the disk were short for the file, profile is
 * null, or path is null or longer than 259 bytes (the record's path is then left as it was). The
 * reason is there in every case but the first: the 1 without a file too has one. */
KOLINK_API int32_t jKoDevsSaveProfile(DeviceProfile *profile, const char *path);

KOLINK_END

#endif
