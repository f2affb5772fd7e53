/* The plug-in that the tests put into the product folder. It converts with a formula, watches
 * how it is called, and writes what it saw beside the table file when it is closed. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#if defined(_WIN32)
#  include <windows.h>
#  define ENTRY __declspec(dllexport)
#else
#  define ENTRY __attribute__((visibility("default")))
#endif

static const char *table; /* as it was given: it must be there until the plug-in is closed */
static long opened, converted, scattered, asked;

#ifndef WITHOUT_LutOpen
ENTRY int LutOpen(char *path) {
    ++opened;
    table = path;
    return strstr(path, "refused") ? -1 : 0;
}
#endif

#ifndef WITHOUT_GetLutInfo
ENTRY int GetLutInfo(void) { return (int)++asked; }
#endif

#ifndef WITHOUT_ConvertToRgb
ENTRY int ConvertToRgb(uint8_t *c, uint8_t *m, uint8_t *y, uint8_t *k, uint8_t *rgb) {
    ++converted;
    if (m != c + 1 || y != c + 2 || k != c + 3) ++scattered;
    rgb[0] = (uint8_t)((255 - *c) * (255 - *k) / 255);
    rgb[1] = (uint8_t)((255 - *m) * (255 - *k) / 255);
    rgb[2] = (uint8_t)((255 - *y) * (255 - *k) / 255);
    return 0;
}
#endif

#ifndef WITHOUT_LutClose
/* Whether the system shows one while the plug-in is closed. */
static int pointer(void) {
#if defined(_WIN32)
    return GetCursor() != NULL;
#else
    return 0;
#endif
}

ENTRY int LutClose(void) {
    char logPath[512];
    FILE *log;
    snprintf(logPath, sizeof logPath, "%s.log", table);
    log = fopen(logPath, "ab");
    if (!log) return -1;
    fprintf(log, "opened %ld converted %ld scattered %ld asked %ld pointer %d\n", opened, converted,
            scattered, asked, pointer());
    return fclose(log);
}
#endif

/* Keeps every variant a translation unit of some content. */
ENTRY const char *describePlugin(void) { return "test plug-in"; }
