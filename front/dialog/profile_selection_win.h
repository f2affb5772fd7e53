// The profile-setting dialog as a window.
#pragma once

#include "frame/dialog/windows.h"
#include "kolink/profile_selection_dialog.h"

namespace ko::front {

// True for OK; see kolink/profile_selection_dialog.h.
bool selectProfiles(HWND owner, ProfileSelection& selection);

}  // namespace ko::front
