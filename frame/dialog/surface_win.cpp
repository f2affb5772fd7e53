#include "frame/dialog/surface_win.h"

#include <windowsx.h>

#include "frame/boundary.h"

namespace ko::dialog {
namespace {

constexpr wchar_t kSurfaceClass[] = L"KoLinkSurface";

void paint(SurfaceEvents& events, HWND surface, const RECT& client, Size size) {
    PAINTSTRUCT painting;
    const HDC dc = ::BeginPaint(surface, &painting);
    atBoundary(false, [&] {  // whatever happens, the painting has to be ended
        const Canvas canvas(dc, client);
        events.paintSurface(surface, canvas.dc(), size, ::GetFocus() == surface);
        return true;
    });
    ::EndPaint(surface, &painting);
}

bool setCursor(SurfaceEvents& events, HWND surface, Size size) {
    POINT at;
    if (!::GetCursorPos(&at) || !::ScreenToClient(surface, &at)) return false;
    ::SetCursor(::LoadCursorW(nullptr, events.surfaceCursor(surface, size, {at.x, at.y})));
    return true;
}

void awaitLeaving(HWND surface) noexcept {
    TRACKMOUSEEVENT leaving{sizeof leaving, TME_LEAVE, surface, 0};
    ::TrackMouseEvent(&leaving);
}

LRESULT surfaceMessage(SurfaceEvents& events, HWND surface, UINT message, WPARAM wParam,
                       LPARAM lParam) {
    RECT client;
    ::GetClientRect(surface, &client);
    const Size size{client.right, client.bottom};
    const Point at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    const bool tabStop = (::GetWindowLongW(surface, GWL_STYLE) & WS_TABSTOP) != 0;
    switch (message) {
        case WM_ERASEBKGND: return 1;  // the canvas covers everything
        case WM_PAINT: paint(events, surface, client, size); return 0;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (tabStop) ::SetFocus(surface);
            ::SetCapture(surface);
            events.surfacePressed(surface, size, at);
            return 0;
        case WM_MOUSELEAVE: events.surfaceLeft(surface); return 0;
        case WM_MOUSEMOVE:
            awaitLeaving(surface);
            events.surfaceMoved(surface, size, at, ::GetCapture() == surface);
            return 0;
        case WM_LBUTTONUP:
            events.surfaceReleased(surface);
            if (::GetCapture() == surface) ::ReleaseCapture();
            return 0;
        case WM_CAPTURECHANGED: events.surfaceReleased(surface); return 0;
        case WM_RBUTTONDOWN: events.surfacePressedRight(surface, size, at); return 0;
        case WM_SETCURSOR:
            if (LOWORD(lParam) == HTCLIENT && setCursor(events, surface, size)) return TRUE;
            break;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: ::InvalidateRect(surface, nullptr, FALSE); return 0;
        // A letter typed here is no access key of another control.
        case WM_GETDLGCODE: return tabStop ? DLGC_WANTARROWS | DLGC_WANTCHARS : DLGC_STATIC;
        case WM_KEYDOWN:
            if (events.surfaceKey(surface, size, wParam)) return 0;
            break;
        default: break;
    }
    return ::DefWindowProcW(surface, message, wParam, lParam);
}

LRESULT CALLBACK surfaceProcedure(HWND surface, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const events = reinterpret_cast<SurfaceEvents*>(::GetWindowLongPtrW(surface, 0));
    if (!events) return ::DefWindowProcW(surface, message, wParam, lParam);
    return atBoundary<LRESULT>(
        0, [&] { return surfaceMessage(*events, surface, message, wParam, lParam); });
}

// The class goes with the library: DLL unloading unregisters it.
struct SurfaceClass {
    SurfaceClass() {
        WNDCLASSW description{};
        description.style = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
        description.lpfnWndProc = surfaceProcedure;
        description.cbWndExtra = sizeof(void*);
        description.hInstance = module();
        description.hCursor = ::LoadCursorW(nullptr, kArrowCursor);
        description.lpszClassName = kSurfaceClass;
        ::RegisterClassW(&description);
    }
    ~SurfaceClass() { ::UnregisterClassW(kSurfaceClass, module()); }
};

}  // namespace

void registerSurfaceClass() { static const SurfaceClass once; }

void attachSurface(HWND dialog, int control, SurfaceEvents& events) {
    ::SetWindowLongPtrW(::GetDlgItem(dialog, control), 0, reinterpret_cast<LONG_PTR>(&events));
}

}  // namespace ko::dialog
