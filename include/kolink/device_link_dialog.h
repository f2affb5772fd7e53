/* The device-link dialog. Windows only. */
#ifndef KOLINK_DEVICE_LINK_DIALOG_H
#define KOLINK_DEVICE_LINK_DIALOG_H

#include "kolink/link_settings.h"

#ifdef _WIN32
#include <windows.h>

KOLINK_BEGIN

/* A modal editor of link settings, in the user's language, whose Create button makes the CMYK
 * device link with jKoCmykCombineProfile and writes it with jKoCmykSaveProfile. A link counts as
 * written when it can be read back from its file; otherwise the user is told, and the dialog stays
 * open. One may be open at a time, on the calling thread; it opens where it was closed last.
 *   owner     the window that waits for the dialog; may be null
 *   settings  edited in a copy. An intent or a mode that the dialog does not offer is kept until
 *             another one is chosen. A path that the system's code page cannot name, or that is
 *             too long for its field, is refused: it turns red, and no link is made before it is
 *             put right. Files are looked at before the work, and what is wrong with one is told;
 *             outputPath gets ".icc" when it has neither that nor ".icm". A limit is shown in
 *             percent of 255, at most 100, and kept as it is unless that field is edited.
 * Returns 1 when a link was made, settings then holding what it was made with; 0 after Cancel and
 * for null, settings untouched. */
KOLINK_API int32_t jCmsDeviceLinkDlg(HWND owner, CmsLinkSettings *settings);

/* The procedure of that dialog, for a host that opens the template "CMSLINKDLG" of this library
 * itself:
 *     DialogBoxParamW(library, L"CMSLINKDLG", owner, jCmsDeviceLinkDlgProc, (LPARAM)settings)
 * DialogBoxParamA works as well, but shows Japanese on Japanese systems alone.
 *   lParam of WM_INITDIALOG  the CmsLinkSettings to edit, written only when a link was made, just
 *             before the dialog ends with 1; must live until then. Null begins with the settings of
 *             jCmsInitCms, which are lost at the end.
 * Exported under its plain name on 32 bits as well, although it is stdcall there: an import library
 * that does not come with this one may lack it, GetProcAddress finds it.
 * The dialog keeps what it needs with its window: windows that are not this dialog, null and
 * messages before WM_INITDIALOG are answered with FALSE. */
INT_PTR CALLBACK jCmsDeviceLinkDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

KOLINK_END

#endif
#endif
