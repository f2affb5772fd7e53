/* What every header of the library shares: linkage and visibility.
 *
 * All functions are extern "C" with the cdecl convention and plain names. Records are laid
 * out with the compiler's natural alignment unless their header says otherwise. Text is
 * Shift-JIS, NUL-terminated, in char arrays; paths are the platform's own bytes (the ANSI
 * code page on Windows). Results are 1 for success and 0 for failure, or a record pointer
 * that is null on failure, unless a function says otherwise.
 *
 * Wherever a function takes a path, one of more than 259 bytes is refused and never cut: a cut
 * path names another file. Paths are split and compared character by character in the system's
 * code page, where the second byte of a character may look like a backslash. Only regular files
 * are read; folders, pipes and devices count as missing, so that no call waits for ever. Texts
 * are cut to their fields at a whole character. Numbers in text are read without regard to the
 * locale, and one too large for its field becomes the nearest that fits.
 *
 * A file is read once, whole, at one moment, into memory: text files up to 64 MiB, tables and
 * profiles up to 1 GiB. A read that fails is a failed load, never the end of the file. A file is
 * written beside its place ("~kolink-....tmp"), flushed to the disk and moved over the old one:
 * after a failure the old file is as it was. Mode, owner where possible and symbolic links are
 * kept; a write-protected file and one that another program holds are not replaced. A device, and
 * a file whose folder takes no second one, is written in place, as the last resort: a failure then
 * leaves what was written so far.
 *
 * "The reason" of a failure is where the system keeps it: errno, or GetLastError on Windows. Beside
 * the system's own errors it is ENOMEM (ERROR_NOT_ENOUGH_MEMORY) for short memory, EBADMSG
 * (ERROR_INVALID_DATA) for a file that is not what it should be, EFBIG (ERROR_FILE_TOO_LARGE) for
 * one that is too large, ENAMETOOLONG (ERROR_FILENAME_EXCED_RANGE) for a path, and EINVAL
 * (ERROR_INVALID_PARAMETER) for other arguments. Savers that count a file that cannot be created
 * as a success give its reason as well; after any other success of a loader or saver the reason is
 * what it was before the call. So a host that sets it to 0 first learns what happened. */
#ifndef KOLINK_API_H
#define KOLINK_API_H

#include <stdint.h>

#include "kolink/version.h"

#if defined(_WIN32) && (defined(__GNUC__) || defined(__clang__))
#  define KOLINK_API __cdecl /* also where the host makes another convention the usual one */
#elif defined(_WIN32)
#  define KOLINK_API /* other compilers take the convention before the name alone: it is theirs */
#elif defined(__GNUC__)
#  define KOLINK_API __attribute__((visibility("default")))
#else
#  define KOLINK_API
#endif

#ifdef __cplusplus
#  define KOLINK_BEGIN extern "C" {
#  define KOLINK_END }
#else
#  define KOLINK_BEGIN
#  define KOLINK_END
#endif

/* Sizes of the text fields of the records, terminating NUL included. */
#define KOLINK_NAME_SIZE 64
#define KOLINK_PATH_SIZE 260
#define KOLINK_COMMENT_SIZE 500

#endif
