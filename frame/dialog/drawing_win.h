// Drawing without flicker. Colours are COLORREFs.
#pragma once

#include "frame/dialog/graph.h"
#include "frame/dialog/windows.h"

namespace ko::dialog {

// A picture built off the screen and shown at once.
class Canvas {
public:
    Canvas(HDC target, RECT area);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    HDC dc() const noexcept { return memory_; }
    Size size() const noexcept { return {area_.right - area_.left, area_.bottom - area_.top}; }

private:
    HDC target_, memory_;
    HBITMAP bitmap_;
    HGDIOBJ previous_;
    RECT area_;
};

// A pen or brush while it is selected.
class Selected {
public:
    Selected(HDC dc, HGDIOBJ object)
        : dc_(dc), object_(object), previous_(::SelectObject(dc, object)) {}
    ~Selected() {
        ::SelectObject(dc_, previous_);
        ::DeleteObject(object_);
    }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

private:
    HDC dc_;
    HGDIOBJ object_, previous_;
};

constexpr COLORREF kPaper = RGB(255, 255, 255), kBorder = RGB(128, 128, 128);

int scaled(HDC dc, int pixels) noexcept;  // pixels at 96 dpi
int resolutionOf(HWND window) noexcept;   // in dpi

HFONT smallFont(HDC dc) noexcept;         // for numbers in pictures; the caller's

void drawLine(HDC dc, Point from, Point to, COLORREF colour, int width);  // without its end
void fillArea(HDC dc, const RECT& area, COLORREF colour);
void drawFrame(HDC dc, const RECT& area, COLORREF colour);
void drawFocus(HDC dc, Size size, int inset);
enum class StripDirection { upward, rightward };  // where the scale grows
void paintStrip(HDC dc, RECT area, StripDirection direction, COLORREF from, COLORREF to);
void paintColourMark(HDC dc, Point at);  // a ring that shows on every colour

}  // namespace ko::dialog
