/* Reading and writing ICC profile files. Every call takes the system-wide file guard, opens the
 * file, works, closes it and gives the guard back. A profile belongs to one thread at a time. */
#ifndef KOLINK_ICC_FILE_H
#define KOLINK_ICC_FILE_H

#include "kolink/icc_profile.h"

KOLINK_BEGIN

/* Reads header and tag directory, no tag data. A file whose bytes 36..39 are not "acsp" is
 * accepted and read in host order (swapBytes 0). A directory cut short by the end of the file
 * has zeros in its missing entries; a count that claims over 64 MiB more than the file has is
 * refused.
 *   path  at most 259 bytes
 * Returns null, with the reason, when the file cannot be read, is shorter than 128 bytes, or
 * memory is short. */
KOLINK_API IccProfile *jIccLoadHeader(const char *path);

/* Reopens the profile's file, decodes one tag, binds it to the profile and returns its data,
 * which the profile owns until it is released, or the tag is loaded, bound or unbound again.
 *   signature  A2B0, A2B1, A2B2, B2A0, B2A1, B2A2, gamt: IccLut ("mft1" or "mft2")
 *              cprt, desc: NUL-terminated text
 *              wtpt, bkpt, rXYZ, gXYZ, bXYZ: float[3], X, Y, Z
 *              rTRC, gTRC, bTRC: IccCurve
 * The first entry with the signature counts. A LUT of any shape loads; jIccLutSetup says which
 * can be evaluated. Texts get a NUL behind their last byte. A table cut short by the end of the
 * file has zeros in its missing entries.
 * Returns null, with the reason, when the file cannot be read, for any other signature, a tag that
 * is absent, has another element type, an empty description or a text without its header, a claim
 * that, together with those of the tags before it in the directory, has over 64 MiB beyond the
 * file's end, and short memory. */
KOLINK_API void *jIccLoadTag(IccProfile *profile, uint32_t signature);

/* The three writers share their procedure: the profile's path becomes path; header, tag count
 * (entries with data), directory, then the elements in directory order, each on a multiple of
 * 4. The in-memory profile keeps its offsets and sizes. What a writer does not handle keeps an
 * empty directory slot at the end. The file is put together in memory before the old one is
 * replaced. A LUT whose precision is neither 1 nor 2 is written with four zero bytes for its
 * type; numbers beyond s15Fixed16 become its ends.
 *   jIccSaveProfile        LUT tags, cprt, desc, wtpt, bkpt
 *   jIccSaveDeviceProfile  the same; A2B0 also as A2B1 and A2B2, B2A1 also as B2A2
 *   jIccSaveLinkProfile    A2B0, cprt, desc, pseq
 *   path                   at most 259 bytes
 * Return 1 when written, and also when the file may not be created or replaced (nothing is written
 * then); 0 when profile is null, path is null or too long, no tag has data, a LUT lacks a table or
 * the file would pass 4 GiB, when a write or flush fails, and when memory, handles or room on the
 * disk are short. The reason says which, for the 1 without a file too. */
KOLINK_API uint32_t jIccSaveProfile(IccProfile *profile, const char *path);
KOLINK_API uint32_t jIccSaveDeviceProfile(IccProfile *profile, const char *path);
KOLINK_API uint32_t jIccSaveLinkProfile(IccProfile *profile, const char *path);

KOLINK_END

#endif
