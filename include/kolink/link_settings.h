/* The link settings record, which the combining functions and the link builders read. It is the
 * host's own memory and is only read: several threads may use one that nobody changes. */
#ifndef KOLINK_LINK_SETTINGS_H
#define KOLINK_LINK_SETTINGS_H

#include "kolink/api.h"

/* intent: which tables of the profiles are used. */
#define KOLINK_INTENT_PERCEPTUAL 0
#define KOLINK_INTENT_RELATIVE 1   /* relative colorimetric */
#define KOLINK_INTENT_SATURATION 2
#define KOLINK_INTENT_ABSOLUTE 3   /* through the system's colour management only */

/* preservation: which inks stay pure. */
#define KOLINK_PRESERVE_NONE 0
#define KOLINK_PRESERVE_PRIMARIES 1   /* a pure C, M or Y keeps its one ink */
#define KOLINK_PRESERVE_SECONDARIES 2 /* and a mix of two of C, M, Y keeps its two */

/* whiteMode: what becomes of no ink at all. */
#define KOLINK_WHITE_CONVERTED 0 /* what the profiles make of it */
#define KOLINK_WHITE_NO_INK 1    /* no ink */
#define KOLINK_WHITE_PAPER 2     /* the paper colour paperC ... paperK */

/* 1332 bytes. Paths are empty when not used. Start from jCmsInitCms. */
typedef struct CmsLinkSettings {
    char basePath[KOLINK_PATH_SIZE];        /* base CMYK profile: ICC with A2B0, .lut or .amt */
    char sourcePath[KOLINK_PATH_SIZE];      /* source ICC profile (.icc) or foreign table */
    char destinationPath[KOLINK_PATH_SIZE]; /* destination ICC profile; with a table .dcc */
    char blackPath[KOLINK_PATH_SIZE];       /* black-correction file (.bkc) */
    char outputPath[KOLINK_PATH_SIZE];      /* the link a dialog writes; not read by the engine */
    int32_t intent;                         /* KOLINK_INTENT_... */
    int32_t preservation;                   /* KOLINK_PRESERVE_... */
    int32_t whiteMode;                      /* KOLINK_WHITE_... */
    int32_t paperC;                         /* 0..255 each, with KOLINK_WHITE_PAPER */
    int32_t paperM;
    int32_t paperY;
    int32_t paperK;
    int32_t limit; /* coverage (sum of four 0..255 levels) where the paper tint has faded out; 0 or
                    * less: no tint */
} CmsLinkSettings;

KOLINK_BEGIN

/* Sets all paths empty, all numbers 0 and limit 200. Returns 1; 0 for null. */
KOLINK_API int32_t jCmsInitCms(CmsLinkSettings *settings);

KOLINK_END

#endif
