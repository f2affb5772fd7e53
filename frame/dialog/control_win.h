// Texts, states and looks of a dialog's controls.
#pragma once

#include <string>
#include <string_view>

#include "frame/dialog/windows.h"

namespace ko::dialog {

std::wstring textOf(HWND dialog, int control);
void setText(HWND dialog, int control, std::wstring_view text);
void setText(HWND dialog, int control, std::string_view shiftJis);
// A number as a person types it, of what the field holds; see typedNumber.
std::string numberOf(HWND dialog, int control);
bool isChecked(HWND dialog, int control) noexcept;

// Whether somebody is typing in a field, and could take that back there.
bool isFieldInUse(HWND control) noexcept;

// The texts of a template, which are Japanese, in the language of the user.
void translateTexts(HWND dialog);

// A field's text stands at its top, more and more above its label the higher the resolution is:
// each field becomes as high as its text needs, in the middle of its place.
void centreFields(HWND dialog) noexcept;

// The classes of tabs and spin buttons; before a dialog that has some is opened.
void registerTabsAndSpins() noexcept;
// A page looks like a part of the tabs that it stands on, where a theme paints those.
void takeTabBackground(HWND page) noexcept;

}  // namespace ko::dialog
