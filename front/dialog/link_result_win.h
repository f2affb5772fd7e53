// The page below in the device-link dialog that shows what a link does.
#pragma once

#include <memory>

#include "cmyk/link_result.h"
#include "frame/dialog/dialog_win.h"

namespace ko::front {

// Null when there is no place for it in memory. The window grows by it, and stays on its screen.
std::unique_ptr<dialog::ChildDialog> showLinkResult(HWND window, const cmyk::LinkResult& result);

}  // namespace ko::front
