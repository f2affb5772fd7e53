/* A host program over lcms2: CMYK pixels of 8 bits from standard input through a device link, to
 * standard output.
 *   host-lcms2 LINK.icc < IN.raw > OUT.raw
 * cmsFLAGS_NOOPTIMIZE is what matters: without it lcms2 makes a coarser grid of its own out of the
 * link's, and colours near pure black mix with the black of the nodes beside them. */
#include <lcms2.h>
#include <stdio.h>

enum { kPixels = 4096 };

static void tell(cmsContext context, cmsUInt32Number code, const char *text) {
    (void)context;
    (void)code;
    fprintf(stderr, "host-lcms2: %s\n", text);
}

int main(int argc, char **argv) {
    static unsigned char in[kPixels * 4], out[kPixels * 4];
    cmsHPROFILE link;
    cmsHTRANSFORM transform;
    size_t count;

    if (argc != 2) {
        fprintf(stderr, "usage: host-lcms2 LINK.icc < IN.raw > OUT.raw\n");
        return 2;
    }
    cmsSetLogErrorHandler(tell);
    link = cmsOpenProfileFromFile(argv[1], "r");
    if (!link || cmsGetDeviceClass(link) != cmsSigLinkClass ||
        cmsGetColorSpace(link) != cmsSigCmykData || cmsGetPCS(link) != cmsSigCmykData) {
        fprintf(stderr, "host-lcms2: %s: is no device link from CMYK to CMYK\n", argv[1]);
        if (link) cmsCloseProfile(link);
        return 1;
    }
    /* A link is both profiles at once; its own table counts, so that the intent changes nothing. */
    transform = cmsCreateTransform(link, TYPE_CMYK_8, NULL, TYPE_CMYK_8, INTENT_PERCEPTUAL,
                                   cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE);
    cmsCloseProfile(link);
    if (!transform) return 1;
    while ((count = fread(in, 4, kPixels, stdin)) > 0) {
        cmsDoTransform(transform, in, out, (cmsUInt32Number)count);
        if (fwrite(out, 4, count, stdout) != count) break;
    }
    cmsDeleteTransform(transform);
    if (ferror(stdin) || ferror(stdout) || fflush(stdout) != 0) {
        perror("host-lcms2");
        return 1;
    }
    return 0;
}
