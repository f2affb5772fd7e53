// The profile-setting dialog as a window.
#pragma once

#include "frame/dialog/windows.h"
#include "kolink/profile_selection_dialog.h"

namespace ko::front {

// 1 for OK, 0 otherwise; see kolink/profile_selection_dialog.h.
int32_t selectProfiles(HWND owner, ProfileSelection& selection);

}  // namespace ko::front
