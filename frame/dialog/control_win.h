// Texts, states and looks of a dialog's controls.
#pragma once

#include <string>
#include <string_view>

#include "frame/dialog/windows.h"

namespace ko::dialog {

std::wstring textOf(HWND dialog, int control);
void setText(HWND dialog, int control, std::wstring_view text);
void setText(HWND dialog, int control, std::string_view shiftJis);
// A number as a person types it, of what the field holds: ASCII, the rest '?'.
std::string asciiOf(HWND dialog, int control);
bool isChecked(HWND dialog, int control) noexcept;

// A field's text stands at its top, more and more above its label the higher the resolution is:
// each field becomes as high as its text needs, in the middle of its place.
void centreFields(HWND dialog) noexcept;

// The classes of tabs and spin buttons; before a dialog that has some is opened.
void registerTabsAndSpins() noexcept;
// A page looks like a part of the tabs that it stands on, where a theme paints those.
void takeTabBackground(HWND page) noexcept;

}  // namespace ko::dialog
