// The CMYK profile dialog as a window, and the pages on its tabs.
#pragma once

#include <memory>

#include "cmyk/cmyk.h"
#include "cmyk/dialog/colour_display.h"
#include "frame/dialog/dialog_win.h"
#include "frame/dialog/history.h"

namespace ko::cmyk {

// Runs the dialog on the profile that path names; see kolink/profile_dialog.h.
bool editProfile(HWND owner, char* path, ColourDisplay display, ColourLab lab);

// What a page tells the dialog that it stands on.
class PageFrame {
public:
    virtual void pageHasEdited() = 0;  // the caption says so
    virtual void undo() = 0;

protected:
    ~PageFrame() = default;
};

// A page edits the profile in place; what it does can be taken back from the profile's history.
class ProfilePage : public dialog::ChildDialog {
public:
    virtual void startAgain() = 0;      // the profile is a new one
    virtual void profileChanged() = 0;  // a step was taken back, or carried out anew
};
using Page = std::unique_ptr<ProfilePage>;
// For PROFILETONEDLG and PROFILECUBEDLG.
Page makeTonePage(CmykProfile& profile, dialog::History& history, PageFrame& frame);
Page makeCubePage(CmykProfile& profile, dialog::History& history, PageFrame& frame,
                  ColourDisplay display, ColourLab lab);

}  // namespace ko::cmyk
