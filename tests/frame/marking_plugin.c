/* Stands for a plug-in that cannot open a table: it writes into the file that it is asked for, so
 * that a test sees that it was found, and refuses. */
#include <stdio.h>

#if defined(_WIN32)
#  define PLUGIN_API __declspec(dllexport)
#else
#  define PLUGIN_API
#endif

PLUGIN_API int LutOpen(char *path);
PLUGIN_API void GetLutInfo(void);
PLUGIN_API void ConvertToRgb(unsigned char *c, unsigned char *m, unsigned char *y,
                             unsigned char *k, unsigned char *rgb);
PLUGIN_API void LutClose(void);

int LutOpen(char *path)
{
    FILE *mark = fopen(path, "wb");
    if (mark) {
        fputs("asked", mark);
        fclose(mark);
    }
    return 1;
}

void GetLutInfo(void) {}

void ConvertToRgb(unsigned char *c, unsigned char *m, unsigned char *y, unsigned char *k,
                  unsigned char *rgb)
{
    (void)c, (void)m, (void)y, (void)k, (void)rgb;
}

void LutClose(void) {}
