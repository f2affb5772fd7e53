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
 * locale, and one too large for its field becomes the nearest that fits. */
#ifndef KOLINK_API_H
#define KOLINK_API_H

#include <stdint.h>

#include "kolink/version.h"

#if defined(_WIN32)
#  define KOLINK_API
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
