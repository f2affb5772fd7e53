/* Pins the size of every record and the place of every field, on each target by the target's
 * own compiler: a host in another language declares them from the documented layout alone. */
#include <stddef.h>

#include "kolink.h"

#define WIDE (sizeof(void *) == 8)
#define HOLDS(name, condition) typedef char name[(condition) ? 1 : -1]
#define SIZE(record, at32, at64) \
    HOLDS(record##_has_its_size, sizeof(record) == (WIDE ? (at64) : (at32)))
#define FIELD(record, field, at32, at64) \
    HOLDS(record##_##field##_is_in_place, offsetof(record, field) == (WIDE ? (at64) : (at32)))
#define ARRAY(record, field, bytes) \
    HOLDS(record##_##field##_has_its_size, sizeof(((record *)0)->field) == (bytes))

HOLDS(name_fields_hold_64_bytes, KOLINK_NAME_SIZE == 64);
HOLDS(path_fields_hold_260_bytes, KOLINK_PATH_SIZE == 260);
HOLDS(comment_fields_hold_500_bytes, KOLINK_COMMENT_SIZE == 500);

/* The numbers behind the names: settings files and hosts in other languages hold them. */
HOLDS(intents_count_from_0, KOLINK_INTENT_PERCEPTUAL == 0 && KOLINK_INTENT_RELATIVE == 1 &&
                                KOLINK_INTENT_SATURATION == 2 && KOLINK_INTENT_ABSOLUTE == 3);
HOLDS(preservations_count_from_0, KOLINK_PRESERVE_NONE == 0 && KOLINK_PRESERVE_PRIMARIES == 1 &&
                                      KOLINK_PRESERVE_SECONDARIES == 2);
HOLDS(white_modes_count_from_0, KOLINK_WHITE_CONVERTED == 0 && KOLINK_WHITE_NO_INK == 1 &&
                                    KOLINK_WHITE_PAPER == 2);
HOLDS(profile_flags_are_bits, KOLINK_ICC_PRINTER == 2 && KOLINK_ICC_OTHER_MAKER == 16);
HOLDS(curve_modes_count_from_0, KOLINK_TONE_LINES == 0 && KOLINK_TONE_SPLINE == 1);

SIZE(IccHeader, 128, 128);
FIELD(IccHeader, profileSize, 0, 0);
FIELD(IccHeader, cmmType, 4, 4);
FIELD(IccHeader, version, 8, 8);
FIELD(IccHeader, deviceClass, 12, 12);
FIELD(IccHeader, colourSpace, 16, 16);
FIELD(IccHeader, connectionSpace, 20, 20);
FIELD(IccHeader, dateTime, 24, 24);
FIELD(IccHeader, magic, 36, 36);
FIELD(IccHeader, platform, 40, 40);
FIELD(IccHeader, profileFlags, 44, 44);
FIELD(IccHeader, manufacturer, 48, 48);
FIELD(IccHeader, model, 52, 52);
FIELD(IccHeader, attributes, 56, 56);
FIELD(IccHeader, renderingIntent, 64, 64);
FIELD(IccHeader, illuminant, 68, 68);
FIELD(IccHeader, creator, 80, 80);
FIELD(IccHeader, reserved, 84, 84);
ARRAY(IccHeader, dateTime, 12);
ARRAY(IccHeader, reserved, 44);

SIZE(IccTagEntry, 16, 24);
FIELD(IccTagEntry, signature, 0, 0);
FIELD(IccTagEntry, offset, 4, 4);
FIELD(IccTagEntry, size, 8, 8);
FIELD(IccTagEntry, data, 12, 16);

SIZE(IccProfile, 400, 408);
FIELD(IccProfile, path, 0, 0);
FIELD(IccProfile, header, 260, 260);
FIELD(IccProfile, swapBytes, 388, 388);
FIELD(IccProfile, tagCount, 392, 392);
FIELD(IccProfile, tags, 396, 400);
ARRAY(IccProfile, path, 260);

FIELD(IccCurve, count, 0, 0);
FIELD(IccCurve, entries, 4, 4);

SIZE(IccLut, 74, 90);
FIELD(IccLut, inputChannels, 0, 0);
FIELD(IccLut, outputChannels, 4, 4);
FIELD(IccLut, gridPoints, 8, 8);
FIELD(IccLut, matrix, 12, 12);
FIELD(IccLut, precision, 48, 48);
FIELD(IccLut, reserved, 49, 49);
FIELD(IccLut, inputEntries, 50, 50);
FIELD(IccLut, outputEntries, 54, 54);
FIELD(IccLut, inputTables, 58, 58);
FIELD(IccLut, clut, 62, 66);
FIELD(IccLut, outputTables, 66, 74);
FIELD(IccLut, workTable, 70, 82);
ARRAY(IccLut, matrix, 36);

SIZE(TonePoint, 8, 8);
FIELD(TonePoint, x, 0, 0);
FIELD(TonePoint, y, 4, 4);

SIZE(ToneCurve, 332, 336);
FIELD(ToneCurve, title, 0, 0);
FIELD(ToneCurve, path, 64, 64);
FIELD(ToneCurve, channelCount, 324, 324);
FIELD(ToneCurve, table, 328, 328);
ARRAY(ToneCurve, title, 64);
ARRAY(ToneCurve, path, 260);

SIZE(DccSettings, 20, 24);
FIELD(DccSettings, DPIX, 0, 0);
FIELD(DccSettings, DPIY, 4, 4);
FIELD(DccSettings, WINK, 8, 8);
FIELD(DccSettings, LCLM, 12, 12);
FIELD(DccSettings, curves, 16, 16);

SIZE(CmykProfile, 4745548, 4745548);
FIELD(CmykProfile, name, 0, 0);
FIELD(CmykProfile, path, 64, 64);
FIELD(CmykProfile, comment, 324, 324);
FIELD(CmykProfile, curveValues, 824, 824);
FIELD(CmykProfile, curveFlags, 1344, 1344);
FIELD(CmykProfile, grid, 1864, 1864);
ARRAY(CmykProfile, comment, 500);
ARRAY(CmykProfile, curveValues, 520);
ARRAY(CmykProfile, curveFlags, 520);

SIZE(CmsLinkSettings, 1332, 1332);
FIELD(CmsLinkSettings, basePath, 0, 0);
FIELD(CmsLinkSettings, sourcePath, 260, 260);
FIELD(CmsLinkSettings, destinationPath, 520, 520);
FIELD(CmsLinkSettings, blackPath, 780, 780);
FIELD(CmsLinkSettings, outputPath, 1040, 1040);
FIELD(CmsLinkSettings, intent, 1300, 1300);
FIELD(CmsLinkSettings, preservation, 1304, 1304);
FIELD(CmsLinkSettings, whiteMode, 1308, 1308);
FIELD(CmsLinkSettings, paperC, 1312, 1312);
FIELD(CmsLinkSettings, paperM, 1316, 1316);
FIELD(CmsLinkSettings, paperY, 1320, 1320);
FIELD(CmsLinkSettings, paperK, 1324, 1324);
FIELD(CmsLinkSettings, limit, 1328, 1328);

SIZE(CmykLut, 334084, 334084);
FIELD(CmykLut, nodes, 0, 0);
SIZE(RgbLut, 19652, 19652);
FIELD(RgbLut, nodes, 0, 0);
SIZE(LinkProfile, 1876, 1880);
FIELD(LinkProfile, name, 0, 0);
FIELD(LinkProfile, path, 64, 64);
FIELD(LinkProfile, inputChannels, 324, 324);
FIELD(LinkProfile, gridPoints, 328, 328);
FIELD(LinkProfile, comment, 332, 332);
FIELD(LinkProfile, curveValues, 832, 832);
FIELD(LinkProfile, curveFlags, 1352, 1352);
FIELD(LinkProfile, grid, 1872, 1872);
ARRAY(LinkProfile, comment, 500);
ARRAY(LinkProfile, curveValues, 520);
ARRAY(LinkProfile, curveFlags, 520);

SIZE(DeviceProfile, 71300, 71300);
FIELD(DeviceProfile, name, 0, 0);
FIELD(DeviceProfile, path, 64, 64);
FIELD(DeviceProfile, description, 324, 324);
FIELD(DeviceProfile, whitePoint, 824, 824);
FIELD(DeviceProfile, labGrid, 836, 836);
FIELD(DeviceProfile, toCmyk0, 27080, 27080);
FIELD(DeviceProfile, toCmyk1, 46732, 46732);
FIELD(DeviceProfile, gamut, 66384, 66384);
ARRAY(DeviceProfile, description, 500);
ARRAY(DeviceProfile, gamut, 4913);

SIZE(CalibTone, 8, 8);
SIZE(CalibChannel, 2088, 2088);
FIELD(CalibChannel, name, 0, 0);
FIELD(CalibChannel, lrgb, 32, 32);
FIELD(CalibChannel, toneCount, 36, 36);
FIELD(CalibChannel, tones, 40, 40);
ARRAY(CalibChannel, tones, 2048);
SIZE(CalibCurveSet, 548 + 2088, 548 + 2088);
FIELD(CalibCurveSet, title, 0, 0);
FIELD(CalibCurveSet, desc, 128, 128);
FIELD(CalibCurveSet, path, 256, 256);
FIELD(CalibCurveSet, channelCount, 516, 516);
FIELD(CalibCurveSet, range, 520, 520);
FIELD(CalibCurveSet, limit, 524, 524);
FIELD(CalibCurveSet, ctype, 528, 528);
FIELD(CalibCurveSet, formatX, 532, 532);
FIELD(CalibCurveSet, formatY, 540, 540);
FIELD(CalibCurveSet, channels, 548, 548);
