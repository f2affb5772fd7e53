/* What every header of the library shares: linkage and visibility.
 *
 * All functions are extern "C" with the cdecl convention and plain names. Records are laid
 * out with the compiler's natural alignment unless their header says otherwise. Text is
 * Shift-JIS, NUL-terminated, in char arrays; paths are the platform's own bytes (the ANSI
 * code page on Windows). Results are 1 for success and 0 for failure, or a record pointer
 * that is null on failure, unless a function says otherwise. */
#ifndef KOLINK_API_H
#define KOLINK_API_H

#include <stdint.h>

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
