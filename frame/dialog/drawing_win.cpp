#include "frame/dialog/drawing_win.h"

#include <algorithm>

namespace ko::dialog {

Canvas::Canvas(HDC target, RECT area)
    : target_(target), memory_(::CreateCompatibleDC(target)),
      bitmap_(::CreateCompatibleBitmap(target, std::max<LONG>(1, area.right - area.left),
                                       std::max<LONG>(1, area.bottom - area.top))),
      previous_(::SelectObject(memory_, bitmap_)), area_(area) {}

Canvas::~Canvas() {
    ::BitBlt(target_, area_.left, area_.top, area_.right - area_.left, area_.bottom - area_.top,
             memory_, 0, 0, SRCCOPY);
    ::SelectObject(memory_, previous_);
    ::DeleteObject(bitmap_);
    ::DeleteDC(memory_);
}

int resolutionOf(HWND window) noexcept {
    const HDC dc = ::GetDC(window);
    const int dpi = ::GetDeviceCaps(dc, LOGPIXELSX);
    ::ReleaseDC(window, dc);
    return dpi > 0 ? dpi : 96;
}

int scaled(HDC dc, int pixels) noexcept {
    return std::max(1, ::MulDiv(pixels, ::GetDeviceCaps(dc, LOGPIXELSX), 96));
}

HFONT smallFont(HDC dc) noexcept {
    return ::CreateFontW(-scaled(dc, 10), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                         OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                         VARIABLE_PITCH | FF_SWISS, L"MS Shell Dlg");
}

void drawLine(HDC dc, Point from, Point to, COLORREF colour, int width) {
    const Selected pen(dc, ::CreatePen(PS_SOLID, width, colour));
    ::MoveToEx(dc, from.x, from.y, nullptr);
    ::LineTo(dc, to.x, to.y);
}

void fillArea(HDC dc, const RECT& area, COLORREF colour) {
    const HBRUSH brush = ::CreateSolidBrush(colour);
    ::FillRect(dc, &area, brush);
    ::DeleteObject(brush);
}

void drawFrame(HDC dc, const RECT& area, COLORREF colour) {
    const HBRUSH brush = ::CreateSolidBrush(colour);
    ::FrameRect(dc, &area, brush);
    ::DeleteObject(brush);
}

void drawFocus(HDC dc, Size size, int inset) {
    const RECT inside{inset, inset, size.width - inset, size.height - inset};
    ::DrawFocusRect(dc, &inside);
}

namespace {
void paintRing(HDC dc, Point at, int radius, COLORREF colour) {
    const HGDIOBJ pen = ::SelectObject(dc, ::CreatePen(PS_SOLID, scaled(dc, 1), colour));
    const HGDIOBJ brush = ::SelectObject(dc, ::GetStockObject(NULL_BRUSH));
    ::Ellipse(dc, at.x - radius, at.y - radius, at.x + radius + 1, at.y + radius + 1);
    ::SelectObject(dc, brush);
    ::DeleteObject(::SelectObject(dc, pen));
}
}  // namespace

void paintColourMark(HDC dc, Point at) {
    paintRing(dc, at, scaled(dc, 5), RGB(0, 0, 0));
    paintRing(dc, at, scaled(dc, 4), RGB(255, 255, 255));
}

void paintStrip(HDC dc, RECT area, StripDirection direction, COLORREF from, COLORREF to) {
    const bool upward = direction == StripDirection::upward;
    const int length = upward ? area.bottom - area.top : area.right - area.left;
    const auto mix = [&](int a, int b, int at) { return a + (b - a) * at / std::max(1, length - 1); };
    for (int at = 0; at < length; ++at) {
        const COLORREF colour = RGB(mix(GetRValue(from), GetRValue(to), at),
                                    mix(GetGValue(from), GetGValue(to), at),
                                    mix(GetBValue(from), GetBValue(to), at));
        const RECT line = upward ? RECT{area.left, area.bottom - 1 - at, area.right, area.bottom - at}
                                 : RECT{area.left + at, area.top, area.left + at + 1, area.bottom};
        fillArea(dc, line, colour);
    }
    drawFrame(dc, area, kBorder);
}

}  // namespace ko::dialog
