// A control that its dialog paints and that tells it of the mouse and the keyboard: the window
// class "KoLinkSurface" in the templates. Painted off the screen.
#pragma once

#include "frame/dialog/drawing_win.h"

namespace ko::dialog {

// Cursors by their numbers in the system.
inline const wchar_t* const kArrowCursor = MAKEINTRESOURCEW(32512);
inline const wchar_t* const kCrossCursor = MAKEINTRESOURCEW(32515);
inline const wchar_t* const kHandCursor = MAKEINTRESOURCEW(32649);

class SurfaceEvents {
public:
    virtual void paintSurface(HWND surface, HDC dc, Size size, bool hasFocus) = 0;
    virtual void surfacePressed(HWND, Size, Point) {}
    // held: the left button went down here and still is; then also outside.
    virtual void surfaceMoved(HWND, Size, Point, [[maybe_unused]] bool held) {}
    virtual void surfaceLeft(HWND) {}  // the pointer is elsewhere now
    virtual void surfaceReleased(HWND) {}
    virtual void surfacePressedRight(HWND, Size, Point) {}
    virtual bool surfaceKey(HWND, Size, [[maybe_unused]] WPARAM key) { return false; }  // not its
    virtual const wchar_t* surfaceCursor(HWND, Size, Point) { return kArrowCursor; }

protected:
    ~SurfaceEvents() = default;
};

void registerSurfaceClass();  // before a dialog with a surface is opened
void attachSurface(HWND dialog, int control, SurfaceEvents& events);

}  // namespace ko::dialog
