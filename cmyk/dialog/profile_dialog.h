// The CMYK profile dialog as a window, and the pages on its tabs.
#pragma once

#include <memory>

#include "cmyk/cmyk.h"
#include "cmyk/dialog/colour_display.h"
#include "frame/dialog/win32.h"

namespace ko::cmyk {

// Runs the dialog on the profile that path names; see kolink/profile_dialog.h.
int32_t editProfile(HWND owner, char* path, ColourDisplay display);

// A page edits the profile in place. The frame tells it of a new profile as a press on the button
// that stands for that: 1031 of the tone page, 1033 of the correction page.
using Page = std::unique_ptr<dialog::ChildDialog>;
Page makeTonePage(CmykProfile& profile);                          // for PROFILETONEDLG
Page makeCubePage(CmykProfile& profile, ColourDisplay display);  // for PROFILECUBEDLG

}  // namespace ko::cmyk
