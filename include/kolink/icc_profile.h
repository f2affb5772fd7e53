/* ICC version 2 profiles in memory: header, tag directory, decoded tag data. A profile belongs to
 * one thread at a time. */
#ifndef KOLINK_ICC_PROFILE_H
#define KOLINK_ICC_PROFILE_H

#include "kolink/api.h"

/* The 128-byte ICC header in file order, numbers in host order. Signatures hold their first
 * character in the most significant byte: 'acsp' is 0x61637370. */
typedef struct IccHeader {
    uint32_t profileSize;
    uint32_t cmmType;
    uint32_t version; /* 0x02100000 is 2.1.0 */
    uint32_t deviceClass;
    uint32_t colourSpace;
    uint32_t connectionSpace;
    uint16_t dateTime[6]; /* year, month, day, hour, minute, second */
    uint32_t magic;       /* 'acsp' */
    uint32_t platform;
    uint32_t profileFlags;
    uint32_t manufacturer;
    uint32_t model;
    uint32_t attributes[2];
    uint32_t renderingIntent;
    int32_t illuminant[3]; /* X, Y, Z as s15Fixed16 */
    uint32_t creator;
    uint8_t reserved[44];
} IccHeader;

/* One entry of the tag directory; 16 bytes with 32-bit pointers, 24 with 64-bit ones. */
typedef struct IccTagEntry {
    uint32_t signature;
    uint32_t offset; /* of the element in the file; 0 for a bound tag */
    uint32_t size;   /* of the element in the file; 0 for a bound tag */
    void *data;      /* decoded data, owned by the profile; null while not loaded or bound */
} IccTagEntry;

/* A profile; 400 bytes with 32-bit pointers, 408 with 64-bit ones. */
typedef struct IccProfile {
    char path[KOLINK_PATH_SIZE]; /* the file it was read from or last saved to */
    IccHeader header;
    uint32_t swapBytes; /* 1: the file form is big-endian; 0: it was found in host order */
    int32_t tagCount;
    IccTagEntry *tags; /* tagCount entries; null when there are none */
} IccProfile;

/* Decoded "curv": n = 0 identity, n = 1 a gamma in u8Fixed8, n >= 2 a sampled curve. The block
 * holds as many entries as count says; the array bound stands for that. */
typedef struct IccCurve {
    uint32_t count;
    uint16_t entries[1];
} IccCurve;

/* Decoded "mft1" or "mft2"; byte-packed, 74 bytes with 32-bit pointers, 90 with 64-bit ones.
 * Entries are unsigned, precision bytes wide, in host order. The record and its tables are one
 * block: the record, the input tables, the grid, the output tables. */
#pragma pack(push, 1)
typedef struct IccLut {
    int32_t inputChannels;
    int32_t outputChannels;
    int32_t gridPoints;    /* per input axis */
    float matrix[9];       /* e00, e01, e02, e10, ... row by row; used with 3 inputs only */
    uint8_t precision;     /* bytes per entry: 1 for "mft1", 2 for "mft2" */
    uint8_t reserved;
    int32_t inputEntries;  /* per input table; 256 for "mft1" */
    int32_t outputEntries; /* per output table; 256 for "mft1" */
    void *inputTables;     /* inputChannels tables, one after the other */
    void *clut;            /* gridPoints^inputChannels nodes, first channel slowest */
    void *outputTables;    /* outputChannels tables, one after the other */
    void *workTable;       /* made by jIccLutSetup, freed by jIccLutClose */
} IccLut;
#pragma pack(pop)

/* Flags of jIccCreate. */
#define KOLINK_ICC_PRINTER 2      /* class 'prtr' with PCS 'Lab ' */
#define KOLINK_ICC_OTHER_MAKER 16 /* CMM 'ZVQR'; manufacturer, model and creator 'ZEVO' */

KOLINK_BEGIN

/* Makes a tagless profile: CMM 'Lino', version 2.1.0, class 'link', CMYK to CMYK, the local
 * date and time, D50 illuminant, manufacturer and model 'none', swapBytes 1.
 *   flags  0 or a sum of KOLINK_ICC_...; other bits are ignored
 * Returns null, with the reason, when memory is short. The caller releases it with jIccRelease. */
KOLINK_API IccProfile *jIccCreate(uint32_t flags);

/* Frees the tag data, the directory and the profile. Work tables of LUTs are not freed: close
 * them with jIccLutClose first. Returns 0 for null, else 1. */
KOLINK_API int32_t jIccRelease(IccProfile *profile);

/* Gives a block from jMemAlloc to the profile under a signature. What an existing entry held
 * is freed, its offset and size stay; a new entry has offset and size 0. A block that is
 * already bound there is left bound.
 * Returns 1; 0 when profile is null or, with the reason, memory is short (the caller still owns
 * data). */
KOLINK_API int32_t jIccBindTag(IccProfile *profile, uint32_t signature, void *data);

/* Frees a tag's data and removes its entry. Returns 1 when done or when there is no such tag;
 * 0 when profile is null or memory is short: the entry then stays without data. */
KOLINK_API int32_t jIccUnbindTag(IccProfile *profile, uint32_t signature);

/* The value with its four bytes in reverse order. */
KOLINK_API uint32_t jKoCmykIccRevLong(uint32_t value);

/* The value with its two bytes swapped. */
KOLINK_API uint16_t jKoCmykIccRevShort(uint16_t value);

KOLINK_END

#endif
