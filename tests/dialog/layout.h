// How a dialog looks, whichever it is: texts and controls have room, nothing covers anything, every
// control has a name. Pages within a dialog are looked through as well.
#pragma once

#include <string>
#include <vector>

#include "tests/dialog/driver.h"

namespace ko::test {

std::vector<HWND> controlsOf(HWND dialog);  // shown ones, in tab order, those of pages in place
RECT placeOf(HWND control, HWND dialog);    // in the dialog's client area
std::wstring classOf(HWND control);
std::wstring textOf(HWND control);

// Each adds failures that name the control. A number in a label or a field is taken as wide as it
// can get: "0 %" and "0" as three digits.
void expectTextFits(HWND control);
void expectTextsFit(const DialogWindow& dialog);
void expectNothingIsCovered(const DialogWindow& dialog);
void expectEveryControlHasAName(const DialogWindow& dialog);
void expectEveryLetterHasAGlyph(const DialogWindow& dialog);  // of labels and buttons
void expectALook(const DialogWindow& dialog);                 // the four of them

// The dialog as it stands on the screen: rows from the top, 0x00RRGGBB.
struct Picture {
    std::vector<uint32_t> pixels;
    int width = 0, height = 0;
    int count(uint32_t colour) const;  // of pixels that have just this colour
};
Picture pictureOf(const DialogWindow& dialog);
// Into the folder that KOLINK_PICTURES names, if it does, as NAME.bmp.
void keepPicture(const Picture& picture, const std::string& name);
// "ja", "en" or "zh", as the dialogs with several languages choose it.
std::string language();

}  // namespace ko::test
