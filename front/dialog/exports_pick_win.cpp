// The exported function of the colour pick dialog.
#include "kolink/colour_pick_dialog.h"

#include "frame/boundary.h"
#include "front/dialog/colour_pick_win.h"

extern "C" uint32_t jColorPickDlg(HWND owner, uint32_t cmyk) {
    return ko::atBoundary<uint32_t>(cmyk, [&] { return ko::front::pickColour(owner, cmyk); });
}
