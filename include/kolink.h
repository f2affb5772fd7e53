/* KoLink: everything that the library exports on every platform. The dialogs, which need
 * <windows.h>, have headers of their own, kolink/..._dialog.h.
 *
 * The usual orders of calls, each line a life of one record:
 *
 *   a device link    jCmsInitCms, jKoCmykCombineProfile, jKoCmykSaveProfile, jKoCmykReleaseProfile
 *   colours by it    jKoCmykCreateProfile, jKoCmykLoadProfile, jKoCmykCMYKtoCMYK16Row,
 *                    jKoCmykReleaseProfile
 *   screen colours   jColorSetupProfile, jColorRGBtoCMYKRow or jColorCMYKtoRGBRow,
 *                    jColorEndProfile
 *   a link in memory jCmsInitCms, jKoLinkCombineRgbProfile or one of its three sisters,
 *                    jKoLinkCOLtoCMYK16Row, jKoLinkReleaseProfile
 *   an ICC file      jIccLoadHeader, jIccLoadTag, jIccRelease
 *   its LUT          jIccLoadTag, jIccLutSetup, jIccLutColor16, jIccLutClose, jIccRelease
 *   calibration      jKoCalibLoadCurve, jKoCalibGetToneValue, jKoCalibReleaseCurve
 *
 * A record that one function makes, another releases: each header names it. A host that lets two
 * threads use the library at once reads what the header of the family says of threads. */
#ifndef KOLINK_H
#define KOLINK_H

#include "kolink/calibration.h"
#include "kolink/cmyk_profile.h"
#include "kolink/colour.h"
#include "kolink/colour_table.h"
#include "kolink/device_profile.h"
#include "kolink/icc_colour.h"
#include "kolink/icc_file.h"
#include "kolink/icc_lut.h"
#include "kolink/icc_profile.h"
#include "kolink/link.h"
#include "kolink/link_settings.h"
#include "kolink/memory.h"
#include "kolink/saved_link.h"
#include "kolink/tone_curve.h"
#include "kolink/tone_file.h"

#endif
