// The exported functions of the device-link dialog.
#include "kolink/device_link_dialog.h"

#include "front/dialog/device_link_win.h"

static_assert(sizeof(CmsLinkSettings) == 1332);

extern "C" INT_PTR CALLBACK jCmsDeviceLinkDlgProc(HWND dialog, UINT message, WPARAM wParam,
                                                  LPARAM lParam) {
    return ko::front::deviceLinkMessage(dialog, message, wParam, lParam);
}

extern "C" int32_t jCmsDeviceLinkDlg(HWND owner, CmsLinkSettings* settings) {
    if (!settings) return 0;
    CmsLinkSettings copy = *settings;
    if (::DialogBoxParamW(ko::dialog::module(), L"CMSLINKDLG", owner, jCmsDeviceLinkDlgProc,
                          reinterpret_cast<LPARAM>(&copy)) != 1)
        return 0;
    *settings = copy;
    return 1;
}
