// The CMYK profile dialog as a window, and the pages on its tabs.
#pragma once

#include <memory>

#include "cmyk/cmyk.h"
#include "cmyk/dialog/colour_display.h"
#include "frame/dialog/dialog_win.h"

namespace ko::cmyk {

// Runs the dialog on the profile that path names; see kolink/profile_dialog.h.
int32_t editProfile(HWND owner, char* path, ColourDisplay display);

// A page edits the profile in place.
class ProfilePage : public dialog::ChildDialog {
public:
    virtual void startAgain() = 0;  // the profile is a new one
};
using Page = std::unique_ptr<ProfilePage>;
Page makeTonePage(CmykProfile& profile);                          // for PROFILETONEDLG
Page makeCubePage(CmykProfile& profile, ColourDisplay display);  // for PROFILECUBEDLG

}  // namespace ko::cmyk
