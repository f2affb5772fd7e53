// The graph of a curve editor: a surface that paints a picture of curves, and its strips.
#pragma once

#include "frame/dialog/drawing_win.h"
#include "frame/dialog/graph_picture.h"

namespace ko::dialog {

void paintGraph(HDC dc, Size size, const GraphPicture& picture, bool hasFocus);

// The strips of the two scales, from white to a colour; false: the control is none of them.
bool paintGraphStrip(const DRAWITEMSTRUCT& drawing, COLORREF full);

// A template's units are as wide and as high as the font makes them; the graph is square with any,
// its longer side cut to the shorter. Its strips and the label below follow.
void makeGraphSquare(HWND dialog);

}  // namespace ko::dialog
