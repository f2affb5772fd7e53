/* The printer's CMYK profile: eight editable curves around a 33^4 grid. A profile that nobody
 * changes may be used by several threads; loading, combining and saving may run on any thread, each
 * on a record of its own. */
#ifndef KOLINK_CMYK_PROFILE_H
#define KOLINK_CMYK_PROFILE_H

#include "kolink/link_settings.h"

#define KOLINK_CMYK_GRID_POINTS 33
#define KOLINK_CMYK_NODES 1185921 /* 33^4 */

/* 4745548 bytes, one flat block. Curves 0..3 are the C, M, Y, K input curves, 4..7 the output
 * curves; point j stands at level 4 j - j / 64 (0, 4, ... 252, 255). Grid node (c, m, y, k) is
 * word ((c * 33 + m) * 33 + y) * 33 + k, its levels are 8 i - i / 32 (0, 8, ... 248, 255), and
 * a word holds C << 24 | M << 16 | Y << 8 | K. */
typedef struct CmykProfile {
    char name[KOLINK_NAME_SIZE];       /* Shift-JIS */
    char path[KOLINK_PATH_SIZE];       /* the file it was last loaded from or saved to */
    char comment[KOLINK_COMMENT_SIZE]; /* Shift-JIS, may hold several lines */
    uint8_t curveValues[8][65];
    uint8_t curveFlags[8][65]; /* 1: a control point of the curve's spline, else 0 */
    uint32_t grid[KOLINK_CMYK_NODES];
} CmykProfile;

KOLINK_BEGIN

/* Makes an initialised profile; null, with the reason, when memory is short. */
KOLINK_API CmykProfile *jKoCmykCreateProfile(void);

/* Frees a profile. Returns 0 for null, else 1. */
KOLINK_API int32_t jKoCmykReleaseProfile(CmykProfile *profile);

/* Resets everything: name "untitled" in Japanese, identity curves with control points at both
 * ends, identity grid. Returns 1; 0 for null. */
KOLINK_API int32_t jKoCmykInitProfile(CmykProfile *profile);

/* Loads a .lut or .amt table (by extension) or an ICC profile with A2B0. Does not initialise
 * first: what the file does not supply stays. An ICC profile that this library wrote also
 * brings name, control points and comment; the comment runs to the end of the description, and
 * a line in it that begins with a keyword ("NAME:", "CTRL:", "CTL2:") counts as one too.
 * 16-bit A2B0 tables are sampled on the 0..255 scale. A curve whose table the LUT lacks stays, one
 * of a single entry is flat, and a LUT that cannot be evaluated leaves every node its own levels;
 * an 8-bit 33-point grid is copied byte for byte as far as it goes, zeros behind it.
 * Texts are cut to their fields at a whole character.
 *   path  at most 259 bytes
 * Returns 1; 0 with the reason, touching nothing, when the path is too long, the file cannot be
 * read or has no ICC header, or memory is short. */
KOLINK_API int32_t jKoCmykLoadProfile(CmykProfile *profile, const char *path);

/* Load a table file: name, comment, grid; input curves become the identity, output curves stay.
 * A table cut short by the end of the file leaves the rest of the grid as it was.
 * Return 1 when the file could be read, however short it is; else 0 with the reason, and the
 * profile is as it was. */
KOLINK_API int32_t jKoCmykLoadLutable(CmykProfile *profile, const char *path);       /* .lut */
KOLINK_API int32_t jKoCmykLoadLutableAmatch(CmykProfile *profile, const char *path); /* .amt */

/* One colour through the grid, curves not applied, in place; quadrilinear.
 *   cmyk  int32[4]: 0..255 in (clamped), 0..4080 out (16 x the 8-bit level) */
KOLINK_API void jKoCmykCMYKtoCMYK16(const CmykProfile *profile, int32_t *cmyk);

/* The same for a row of pixels, bit for bit.
 *   input   4 bytes a pixel: C, M, Y, K
 *   output  4 words a pixel, 0..4080; does not overlap input
 * pixels below 1 does nothing. Several threads may use one profile. */
KOLINK_API void jKoCmykCMYKtoCMYK16Row(const CmykProfile *profile, const uint8_t *input,
                                       int32_t pixels, uint16_t *output);

/* Makes a profile whose grid holds the whole chain of the settings. Each node of the grid, that is
 * each colour that the link will be asked for, goes from the left to the right:
 *
 *   whiteMode PAPER   whiteMode NO_INK  blackPath         basePath    sourcePath,    preservation
 *                                                                     destinationPath
 *   + paper tint,     no ink at all     pure black        the base    source to      pure inks and
 *   faded out at  ->  stays so and   -> through the K  -> profile's -> connection -> mixes of two
 *   limit             is done           curve is done     curves      space to       lose the
 *                                                         and grid    destination    other inks
 *
 * A step whose field is empty or off is left out. With a source path that ends in .icc this is
 * jKoCmykCombineIccProfile; otherwise a non-empty source is read by the plug-in "LutRead" in the
 * product folder, and the destination is a .dcc file.
 * Returns a new profile, which the caller releases, or null when a file does not load, the
 * plug-in refuses, or memory is short; the reason is there when a file or memory was it. */
KOLINK_API CmykProfile *jKoCmykCombineProfile(const CmsLinkSettings *settings);

/* The same with a pair of ICC profiles, both CMYK, through A2Bn and B2An of the intent. With an
 * empty source or destination path the chain runs without the conversion, and the intent is not
 * looked at. A source without wtpt is taken to be relative to D50. A destination whose connection
 * space differs from the source's is taken to be the other of Lab and XYZ. */
KOLINK_API CmykProfile *jKoCmykCombineIccProfile(const CmsLinkSettings *settings);

/* Writes the profile as an ICC device link (A2B0 in 8 bits, 33 points; name, control points and
 * comment in the description; its copyright text is "The owner of the profile holds the
 * copyright.") and stores path in the record, also after a failure.
 * Returns 1 when written, also when the file may not be created or replaced and when there was no
 * memory for the link at all; 0 when memory was short for a tag (nothing is written then), a write
 * or flush failed, memory, handles or room on the disk were short for the file, profile is null, or
 * path is null or longer than 259 bytes (the record's path is then left as it was). The reason is
 * there in every case but the first: the 1 without a file too has one. */
KOLINK_API int32_t jKoCmykSaveProfile(CmykProfile *profile, const char *path);

KOLINK_END

#endif
