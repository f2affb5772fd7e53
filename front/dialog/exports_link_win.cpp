// The exported functions of the device-link dialog.
#include "kolink/device_link_dialog.h"

#include "frame/boundary.h"
#include "frame/dialog/template.h"
#include "front/dialog/device_link_win.h"

extern "C" INT_PTR CALLBACK jCmsDeviceLinkDlgProc(HWND dialog, UINT message, WPARAM wParam,
                                                  LPARAM lParam) {
    return ko::front::deviceLinkMessage(dialog, message, wParam, lParam);
}

extern "C" int32_t jCmsDeviceLinkDlg(HWND owner, CmsLinkSettings* settings) {
    if (!settings) return 0;
    CmsLinkSettings copy = *settings;
    const INT_PTR result = ko::atBoundary<INT_PTR>(-1, [&] {
        const ko::dialog::Template shown(L"CMSLINKDLG");
        return ::DialogBoxIndirectParamW(ko::dialog::module(), shown.get(), owner,
                                         jCmsDeviceLinkDlgProc, reinterpret_cast<LPARAM>(&copy));
    });
    if (result != 1) return 0;
    *settings = copy;
    return 1;
}
