// The exported function of the profile-setting dialog.
#include "frame/boundary.h"
#include "front/dialog/profile_selection_win.h"

static_assert(sizeof(ProfileSelection) == 524);

extern "C" int32_t jColorProfileSelectDlg(HWND owner, ProfileSelection* selection) {
    if (!selection) return 0;
    return ko::atBoundary(false, [&] { return ko::front::selectProfiles(owner, *selection); });
}
