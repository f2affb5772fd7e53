// The colour pick dialog as a window.
#pragma once

#include <cstdint>

#include "frame/dialog/windows.h"

namespace ko::front {

// The colour chosen, or the one given; see kolink/colour_pick_dialog.h.
uint32_t pickColour(HWND owner, uint32_t cmyk);

}  // namespace ko::front
