/* A host program: makes a device link from a printer's and a press's profile.
 *   host PRINTER.icc SOURCE.icc OUTPUT.icc [BLACK.bkc]
 * The source's colours are matched on the printer with perceptual intent; pure inks stay pure,
 * and the paper gets no ink. */
#include <stdio.h>
#include <string.h>

#include <kolink.h>

static int setPath(char field[KOLINK_PATH_SIZE], const char *path) {
    const size_t length = strlen(path);
    if (length >= KOLINK_PATH_SIZE) {
        fprintf(stderr, "host: this path is too long: %s\n", path);
        return 0;
    }
    memcpy(field, path, length + 1);
    return 1;
}

int main(int argc, char **argv) {
    CmsLinkSettings settings;
    CmykProfile *link;
    int32_t black[4] = {0, 0, 0, 255}; /* C, M, Y, K */
    IccProfile *written;

    if (argc < 4 || argc > 5) {
        fprintf(stderr, "usage: host PRINTER.icc SOURCE.icc OUTPUT.icc [BLACK.bkc]\n");
        return 2;
    }
    jCmsInitCms(&settings);
    if (!setPath(settings.destinationPath, argv[1])) return 1;
    if (!setPath(settings.sourcePath, argv[2])) return 1;
    if (argc == 5 && !setPath(settings.blackPath, argv[4])) return 1;
    settings.intent = KOLINK_INTENT_PERCEPTUAL;
    settings.preservation = KOLINK_PRESERVE_SECONDARIES;
    settings.whiteMode = KOLINK_WHITE_NO_INK;

    link = jKoCmykCombineIccProfile(&settings);
    if (!link) {
        fprintf(stderr, "host: these profiles cannot be combined\n");
        return 1;
    }
    strcpy(link->name, "Made by a host");
    jKoCmykCMYKtoCMYK16(link, black);
    printf("solid K becomes C %.1f M %.1f Y %.1f K %.1f of 255\n", black[0] / 16.0,
           black[1] / 16.0, black[2] / 16.0, black[3] / 16.0);

    jKoCmykSaveProfile(link, argv[3]);
    jKoCmykReleaseProfile(link);
    written = jIccLoadHeader(argv[3]); /* a file that cannot be created shows here */
    if (!written || written->header.deviceClass != 0x6c696e6b) { /* 'link' */
        fprintf(stderr, "host: %s cannot be written\n", argv[3]);
        return 1;
    }
    jIccRelease(written);
    return 0;
}
