/* The precise engine: ICC profiles of versions 2.0 to 4.4, precise evaluation, inversion of press
 * profiles, and device links. A library of its own, KoLinkPrecise.dll or libkolink-precise.so.
 *
 * Functions are extern "C" with the cdecl convention. Texts are UTF-8; paths are the platform's
 * own bytes (the ANSI code page on Windows). Ink and light are 0..1 as floats, 0..255 or 0..65535
 * as integers (the nearest one); L*a*b* is L* 0..100 and a*, b* as they are.
 * Objects are read only once they are made: several threads may use one. Nothing is shared
 * between objects, so that each may be released at any time. A released pointer, or one that is
 * none of this library's, is the caller's error; null is answered with a failure. */
#ifndef KOLINK_PRECISE_H
#define KOLINK_PRECISE_H

#include <stddef.h>

#include "kolink/api.h"

typedef struct KoPreciseProfile KoPreciseProfile;
typedef struct KoPreciseTransform KoPreciseTransform;
typedef struct KoPreciseLink KoPreciseLink;

/* Codes of failures. */
enum {
    KO_PRECISE_OK = 0,
    KO_PRECISE_ARGUMENT = 1,    /* an option out of its range, options that contradict, null */
    KO_PRECISE_FILE = 2,        /* cannot be read or written */
    KO_PRECISE_PROFILE = 3,     /* not an ICC profile, or damaged */
    KO_PRECISE_UNSUPPORTED = 4, /* sound, but of a kind that cannot be used so */
    KO_PRECISE_TABLES = 5,      /* lacks the tables of the intent; the text says which are there */
    KO_PRECISE_MEMORY = 6
};

/* 1016 bytes. Functions that can fail fill one when they are given one; text has no full stop and
 * goes with the file that `part` names. */
typedef struct KoPreciseError {
    int32_t code; /* KO_PRECISE_... */
    int32_t part; /* 0 none, 1 source, 2 destination, 3 base, 4 output */
    char text[1008];
} KoPreciseError;

enum { /* rendering intents, numbered like ICC.1's */
    KO_PRECISE_PERCEPTUAL = 0,
    KO_PRECISE_RELATIVE = 1,
    KO_PRECISE_SATURATION = 2,
    KO_PRECISE_ABSOLUTE = 3
};

enum { /* how inks are found */
    KO_PRECISE_INVERTED = 0, /* Newton steps on the forward table (relative and absolute) */
    KO_PRECISE_TABLES_ALONE = 1
};

enum { /* black */
    KO_PRECISE_BLACK_DEFAULT = 0, /* plane from CMYK to CMYK, none otherwise */
    KO_PRECISE_BLACK_PLANE = 1,   /* the source's separation, through the curve of pure black */
    KO_PRECISE_BLACK_MATCH = 2,   /* pure K through that curve, other colours by the destination */
    KO_PRECISE_BLACK_KEEP = 3,    /* pure K at its own level; from RGB: neutrals to K alone */
    KO_PRECISE_BLACK_NONE = 4,    /* as the destination's tables choose */
    KO_PRECISE_BLACK_CURVE = 5    /* pure K through blackCurve */
};

enum { /* inks that stay alone; each includes the ones before it */
    KO_PRECISE_PRESERVE_NONE = 0,
    KO_PRECISE_PRESERVE_PRIMARIES = 1,   /* C, M or Y alone */
    KO_PRECISE_PRESERVE_SECONDARIES = 2, /* two of them */
    KO_PRECISE_PRESERVE_DUPLEX = 3,      /* one of them with K */
    KO_PRECISE_PRESERVE_TRIPLEX = 4      /* two of them with K */
};

enum { /* what white gets */
    KO_PRECISE_WHITE_CLEAN = 0, /* no ink */
    KO_PRECISE_WHITE_PROFILE = 1,
    KO_PRECISE_WHITE_PAPER = 2 /* the tint of paper[] is added to light colours */
};

enum { /* where nodes stand */
    KO_PRECISE_NODES_EVEN = 0,   /* at i / (n - 1), where ICC readers meet them */
    KO_PRECISE_NODES_LIBRARY = 1 /* at 0, 8 ... 248, 255 of 255; 33 points only */
};

#define KO_PRECISE_LIMIT_PROFILE (-1.0)
#define KO_PRECISE_LIMIT_NONE (-2.0)

/* 368 bytes. Start from koPreciseInitOptions. */
typedef struct KoPreciseOptions {
    int32_t size;   /* sizeof(KoPreciseOptions), set by koPreciseInitOptions */
    int32_t method; /* KO_PRECISE_INVERTED */
    int32_t intent; /* KO_PRECISE_RELATIVE */
    int32_t blackPointCompensation; /* 0 */
    int32_t black;                  /* KO_PRECISE_BLACK_DEFAULT */
    int32_t preserve;               /* KO_PRECISE_PRESERVE_NONE */
    int32_t white;                  /* KO_PRECISE_WHITE_CLEAN */
    int32_t bits;                   /* 8 or 16; 8 */
    int32_t gridPoints;             /* 9..33 for four inputs, 9..65 for fewer; 0: 33 */
    int32_t nodes;                  /* KO_PRECISE_NODES_EVEN */
    double clip;                    /* percent, 0..10: levels below it become 0, above 100 % - 2 clip
                                       100; 0 */
    double inkLimit;                /* percent of total ink, or KO_PRECISE_LIMIT_...; _PROFILE */
    double saveInk;                 /* 0..100; 0 */
    double saveInkAbove;            /* L* above which no ink is saved, fading over 20 units; 70 */
    double paper[4];                /* percent of C, M, Y, K, with KO_PRECISE_WHITE_PAPER */
    double paperFade;               /* percent of total ink at which the tint has gone; 78.4 */
    uint8_t blackCurve[256];        /* level of each pure K level, with KO_PRECISE_BLACK_CURVE */
} KoPreciseOptions;

/* What a profile is. */
typedef struct KoPreciseProfileInfo {
    uint32_t version;     /* 0x04400000 is 4.4 */
    uint32_t deviceClass; /* signatures, 'prtr' as 0x70727472 */
    uint32_t space;
    uint32_t connection;
    int32_t inputs;       /* channels of space */
    int32_t outputs;      /* of a link: its other channels; else 3 */
    int32_t tablesTo;     /* bits 0, 1, 2: A2B0, A2B1, A2B2 are there */
    int32_t tablesFrom;   /* the same for B2A0, B2A1, B2A2 */
    int32_t matrix;       /* 1: matrix and curves, or a grey curve */
    uint8_t id[16];       /* MD5 of the profile, computed */
    double white[3];      /* media white, XYZ */
    double totalInk;      /* CMYK: the most that its inverse tables ask for, in percent; else 0 */
    char name[512];       /* description */
} KoPreciseProfileInfo;

/* What a link is and how it was made. */
typedef struct KoPreciseLinkInfo {
    int32_t inputs, outputs, gridPoints, bits, nodes, intent;
    int32_t black;      /* the KO_PRECISE_BLACK_... that was taken */
    int32_t inverted;   /* 1: by Newton steps, 0: by the tables alone */
    uint32_t sourceSpace, destinationSpace;
    double inkLimit;    /* percent that every node keeps; 400 without one */
    double meanInk;     /* percent, mean of about nine nodes of each axis */
    double tablesInk;   /* what the destination's tables alone would take there */
    double savedInk;    /* percent that saveInk took away, mean of all nodes */
    double reached;     /* percent of the nodes whose colour is met within 1 unit */
    double movedBlack;  /* percent of the nodes where black had to move */
    double limited;     /* percent of the nodes that the ink limit changed */
} KoPreciseLinkInfo;

KOLINK_BEGIN

/* The version of the library, "1.0.0". */
KOLINK_API const char *koPreciseVersion(void);

/* Profiles. The bytes are copied. Null on failure. */
KOLINK_API KoPreciseProfile *koPreciseOpenProfile(const char *path, KoPreciseError *error);
KOLINK_API KoPreciseProfile *koPreciseParseProfile(const void *bytes, size_t size,
                                                   KoPreciseError *error);
KOLINK_API void koPreciseReleaseProfile(KoPreciseProfile *profile);
/* Returns 1; 0 for null and when memory is short, the record as it was. */
KOLINK_API int32_t koPreciseDescribeProfile(const KoPreciseProfile *profile,
                                            KoPreciseProfileInfo *info);

/* Conversion of colours without a link. Destination null: to L*a*b*, relative to the source's
 * white (absolute: to D50); source null: from L*a*b*. A device link as source needs no
 * destination. */
KOLINK_API KoPreciseTransform *koPreciseMakeTransform(const KoPreciseProfile *source,
                                                      const KoPreciseProfile *destination,
                                                      int32_t intent, int32_t blackPointCompensation,
                                                      KoPreciseError *error);
KOLINK_API void koPreciseReleaseTransform(KoPreciseTransform *transform);
KOLINK_API int32_t koPreciseTransformInputs(const KoPreciseTransform *transform);
KOLINK_API int32_t koPreciseTransformOutputs(const KoPreciseTransform *transform);
/* count colours of as many values as the transform has channels, close together; in and out do not
 * overlap. Double arithmetic. Device results are limited to 0..1. Allocates nothing. */
KOLINK_API void koPreciseTransformFloats(const KoPreciseTransform *transform, const float *in,
                                         float *out, size_t count);
/* The same in 8 and 16 bits, rounded to the nearest level: of transforms between device colours,
 * a device link that was opened among them. Allocate nothing. */
KOLINK_API void koPreciseTransformRow16(const KoPreciseTransform *transform, const uint16_t *in,
                                        uint16_t *out, size_t count);
KOLINK_API void koPreciseTransformRow8(const KoPreciseTransform *transform, const uint8_t *in,
                                       uint8_t *out, size_t count);

/* The inks with which a CMYK profile prints a colour, by Newton steps on its forward table.
 *   lab    the colour, relative to the profile's white
 *   black  0..1: K is that; below 0: K as the inverse table chooses
 *   total  the most ink, 0..4
 *   inks   C, M, Y, K
 * Returns the distance that is left, in units like CIE94's: below 0.05 it is reached; outside
 * the gamut the inks are of the nearest colour. Below 0 on failure (no CMYK tables). */
KOLINK_API double koPreciseInvert(const KoPreciseProfile *profile, const double lab[3],
                                  double black, double total, double inks[4],
                                  KoPreciseError *error);

/* Links. */
KOLINK_API int32_t koPreciseInitOptions(KoPreciseOptions *options); /* 1; 0 for null */
/* From RGB, CMYK or grey to CMYK or RGB. From a profile to itself, inverted, with plane where there
 * is black, and without a base, a limit in percent or saveInk, colours stay as they are; no limit is
 * kept then.
 *   base  null, or a device link from CMYK to CMYK that colours go through first
 * Null on failure. */
KOLINK_API KoPreciseLink *koPreciseMakeLink(const KoPreciseProfile *source,
                                            const KoPreciseProfile *destination,
                                            const KoPreciseProfile *base,
                                            const KoPreciseOptions *options,
                                            KoPreciseError *error);
KOLINK_API void koPreciseReleaseLink(KoPreciseLink *link);
KOLINK_API int32_t koPreciseDescribeLink(const KoPreciseLink *link, KoPreciseLinkInfo *info);

/* Rows of colours through a link, by the tetrahedra of ICC readers (a fourth channel, the first,
 * linearly). 8 and 16 bits are rounded to the nearest level. Allocates nothing. */
KOLINK_API void koPreciseLinkFloats(const KoPreciseLink *link, const float *in, float *out,
                                    size_t count);
KOLINK_API void koPreciseLinkRow16(const KoPreciseLink *link, const uint16_t *in, uint16_t *out,
                                   size_t count);
KOLINK_API void koPreciseLinkRow8(const KoPreciseLink *link, const uint8_t *in, uint8_t *out,
                                  size_t count);

/* What a file of a link says besides its table. */
typedef struct KoPreciseFileOptions {
    int32_t size;            /* sizeof(KoPreciseFileOptions) */
    int32_t editable;        /* 1: the description begins with the editing data that
                                jKoCmykLoadProfile reads (33 points, 8 bits, CMYK to CMYK only) */
    int64_t date;            /* seconds since 1970 UTC */
    const char *name;        /* UTF-8; null: made from the profiles' names */
    const char *editName;    /* Shift-JIS, the name in the editing data; null: none */
    const char *editComment; /* Shift-JIS, the comment there; null: none */
    const char *provenance;  /* UTF-8 lines put behind what the library writes itself; null: none */
} KoPreciseFileOptions;

/* The bytes of the link as an ICC device link of version 2.4: valid pseq with both profiles, the
 * intent in the header, provenance (tag 'kprv', text). Null when memory is short or options do
 * not fit; released with koPreciseReleaseBytes. */
KOLINK_API uint8_t *koPreciseLinkBytes(const KoPreciseLink *link, const KoPreciseFileOptions *file,
                                       size_t *size, KoPreciseError *error);
KOLINK_API void koPreciseReleaseBytes(uint8_t *bytes);
/* Writes them beside the path and then in its place. Returns 1; 0 on failure. */
KOLINK_API int32_t koPreciseSaveLink(const KoPreciseLink *link, const char *path,
                                     const KoPreciseFileOptions *file, KoPreciseError *error);

KOLINK_END

#endif
