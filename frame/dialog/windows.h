// The system's own header, without the names that get in the way. Views alone include it.
#pragma once

#define WIN32_LEAN_AND_MEAN
#undef NOMINMAX
#define NOMINMAX
#include <windows.h>

#include <commctrl.h>

namespace ko::dialog {

HINSTANCE module() noexcept;  // the library's: templates and window classes belong to it

}  // namespace ko::dialog
