/* The menu and the window of the host, by name. Read by the resource compiler as well. */
#ifndef HOST_IDS_H
#define HOST_IDS_H

#define IDR_HOST 1 /* the window, its menu and the manifest */

#define IDM_EXIT 40001
#define IDM_TNC_OPEN 40010
#define IDM_TNC_NEW 40011
#define IDM_BKC_OPEN 40012
#define IDM_BKC_NEW 40013
#define IDM_DCC_OPEN 40014
#define IDM_DCC_NEW 40015
#define IDM_CALIB_OPEN 40016
#define IDM_CALIB_NEW 40017
#define IDM_PROFILE_OPEN 40018
#define IDM_PROFILE_NEW 40019
#define IDM_PICK 40030
#define IDM_SELECT 40031
#define IDM_LINK 40032
#define IDM_LINK_RESET 40033 /* forgets the settings of the device-link dialog */
#define IDM_LINK_OPEN 40034  /* a link to convert through */

#define IDC_CALLS 1001    /* a line for every call: function, result, what came back */
#define IDC_SETTINGS 1002 /* of the device-link and the profile-setting dialogs */
#define IDC_SWATCH 1003
#define IDC_COLOUR 1004
#define IDC_LINK_PATH 1005
#define IDC_IN_C 1006 /* levels 0 to 255 */
#define IDC_IN_M 1007
#define IDC_IN_Y 1008
#define IDC_IN_K 1009
#define IDC_CONVERT 1010
#define IDC_OUT 1011 /* levels with one decimal, "C 0.0 M 12.5 Y 255.0 K 0.0" */

#endif
