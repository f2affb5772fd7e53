/* KoLink: everything that the library exports on every platform. The dialogs, which need
 * <windows.h>, have headers of their own, kolink/..._dialog.h. */
#ifndef KOLINK_H
#define KOLINK_H

#include "kolink/calibration.h"
#include "kolink/cmyk_profile.h"
#include "kolink/cmyk_table.h"
#include "kolink/colour.h"
#include "kolink/device_profile.h"
#include "kolink/icc_colour.h"
#include "kolink/icc_file.h"
#include "kolink/icc_lut.h"
#include "kolink/icc_profile.h"
#include "kolink/link.h"
#include "kolink/link_settings.h"
#include "kolink/memory.h"
#include "kolink/tone_curve.h"
#include "kolink/tone_file.h"

#endif
