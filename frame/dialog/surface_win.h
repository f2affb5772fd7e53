// A control that its dialog paints and that tells it of the mouse and the keyboard: the window
// class "KoLinkSurface" in the templates. Painted off the screen; views alone include this.
#pragma once

#include "frame/dialog/win32.h"

namespace ko::dialog {

class SurfaceEvents {
public:
    virtual void paintSurface(HWND surface, HDC dc, Size size, bool hasFocus) = 0;
    // The left button goes down, and the cursor moves while it is held: then also outside.
    virtual void surfacePressed(HWND surface, Size size, Point at) = 0;
    virtual void surfaceDragged(HWND surface, Size size, Point at) = 0;
    virtual bool surfaceKey(HWND surface, Size size, WPARAM key) = 0;  // false: not one of its keys

protected:
    ~SurfaceEvents() = default;
};

void registerSurfaceClass();  // before a dialog with a surface is opened
void attachSurface(HWND dialog, int control, SurfaceEvents& events);

}  // namespace ko::dialog
