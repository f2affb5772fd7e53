/* The link settings record, which the combining functions and the link builders read. */
#ifndef KOLINK_LINK_SETTINGS_H
#define KOLINK_LINK_SETTINGS_H

#include "kolink/api.h"

/* 1332 bytes. Paths are empty when not used. Start from jCmsInitCms. */
typedef struct CmsLinkSettings {
    char basePath[KOLINK_PATH_SIZE];        /* base CMYK profile: ICC with A2B0, .lut or .amt */
    char sourcePath[KOLINK_PATH_SIZE];      /* source ICC profile (.icc) or foreign table */
    char destinationPath[KOLINK_PATH_SIZE]; /* destination ICC profile, or .dcc with a foreign table */
    char blackPath[KOLINK_PATH_SIZE];       /* black-correction file (.bkc) */
    char outputPath[KOLINK_PATH_SIZE];      /* the link a dialog writes; not read by the engine */
    int32_t intent;                         /* 0 perceptual, 1 relative, 2 saturation, 3 absolute */
    int32_t preservation;                   /* 0 none, 1 pure primaries, 2 two-ink secondaries too */
    int32_t whiteMode;                      /* 0 as converted, 1 white gets no ink, 2 paper colour */
    int32_t paperC;                         /* paper colour, 0..255 each, with whiteMode 2 */
    int32_t paperM;
    int32_t paperY;
    int32_t paperK;
    int32_t limit; /* coverage (sum of four 0..255 levels) at which the paper tint has faded out */
} CmsLinkSettings;

KOLINK_BEGIN

/* Sets all paths empty, all numbers 0 and limit 200. Returns 1; 0 for null. */
KOLINK_API int32_t jCmsInitCms(CmsLinkSettings *settings);

KOLINK_END

#endif
