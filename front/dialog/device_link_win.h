// The device-link dialog as a window.
#pragma once

#include "frame/dialog/windows.h"

namespace ko::front {

// The dialog's procedure; see kolink/device_link_dialog.h.
INT_PTR deviceLinkMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

}  // namespace ko::front
