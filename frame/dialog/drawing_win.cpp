// Drawing: the services, the graph and its strips, and the graph's window.
#include <windowsx.h>

#include <algorithm>

#include "frame/boundary.h"
#include "frame/dialog/win32.h"
#include "resources/dialog_ids.h"

namespace ko::dialog {
namespace {

constexpr COLORREF kPaper = RGB(255, 255, 255), kGrid = RGB(226, 226, 226),
                   kDiagonal = RGB(200, 200, 200), kBorder = RGB(128, 128, 128),
                   kSelection = RGB(150, 180, 230);
constexpr wchar_t kGraphClass[] = L"KoLinkGraph";

// A pen or brush while it is selected.
class Selected {
public:
    Selected(HDC dc, HGDIOBJ object) : dc_(dc), object_(object), previous_(::SelectObject(dc, object)) {}
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

void fill(HDC dc, const RECT& area, COLORREF colour) {
    const HBRUSH brush = ::CreateSolidBrush(colour);
    ::FillRect(dc, &area, brush);
    ::DeleteObject(brush);
}

void paintLine(HDC dc, const GraphCurve& curve, COLORREF colour, int width) {
    static_assert(sizeof(Point) == sizeof(POINT) && offsetof(Point, y) == offsetof(POINT, y));
    const Selected pen(dc, ::CreatePen(PS_SOLID, width, colour));
    ::Polyline(dc, reinterpret_cast<const POINT*>(curve.line.data()),
               static_cast<int>(curve.line.size()));
}

// A colour that hardly stands out from the paper, such as a pure yellow, gets a darker edge.
bool isPale(COLORREF colour) noexcept {
    return 2 * GetRValue(colour) + 5 * GetGValue(colour) + GetBValue(colour) > 8 * 150;
}
COLORREF edgeOf(COLORREF colour) noexcept {
    return RGB(GetRValue(colour) / 2, GetGValue(colour) / 2, GetBValue(colour) / 2);
}

void paintCurve(HDC dc, const GraphCurve& curve) {
    const int width = scaled(dc, 2);
    const COLORREF edge = isPale(curve.colour) ? edgeOf(curve.colour) : curve.colour;
    if (!curve.line.empty()) {
        if (edge != curve.colour) paintLine(dc, curve, edge, width + 2 * scaled(dc, 1));
        paintLine(dc, curve, curve.colour, width);
    }
    const int small = scaled(dc, 1), large = scaled(dc, 3);
    for (const Point at : curve.computedPoints)
        jRectangle(dc, kRectangleBoth, at.x - small, at.y - small, at.x + small + 1,
                   at.y + small + 1, kPaper, edge);
    for (const Point at : curve.controlPoints)
        jRectangle(dc, kRectangleBoth, at.x - large, at.y - large, at.x + large + 1,
                   at.y + large + 1, curve.colour, edge);
}

}  // namespace

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

int scaled(HDC dc, int pixels) noexcept {
    return std::max(1, ::MulDiv(pixels, ::GetDeviceCaps(dc, LOGPIXELSX), 96));
}

void jLine(HDC dc, int x1, int y1, int x2, int y2, COLORREF colour, int width) {
    const Selected pen(dc, ::CreatePen(PS_SOLID, width, colour));
    ::MoveToEx(dc, x1, y1, nullptr);
    ::LineTo(dc, x2, y2);
}

void jRectangle(HDC dc, int mode, int left, int top, int right, int bottom, COLORREF fillColour,
                COLORREF frame) {
    const RECT area{left, top, right, bottom};
    if (mode & kRectangleFill) fill(dc, area, fillColour);
    if (mode & kRectangleFrame) {
        const HBRUSH brush = ::CreateSolidBrush(frame);
        ::FrameRect(dc, &area, brush);
        ::DeleteObject(brush);
    }
}

void paintGraph(HDC dc, Size size, const GraphPicture& picture, bool hasFocus) {
    fill(dc, {0, 0, size.width, size.height}, kPaper);
    const Size plot = plotSize(size);
    const int left = kGraphInset, top = kGraphInset;
    const int right = left + plot.width, bottom = top + plot.height;
    const int thin = scaled(dc, 1);
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const int x = left + plot.width * quarter / 4, y = top + plot.height * quarter / 4;
        jLine(dc, x, top, x, bottom + 1, kGrid, thin);
        jLine(dc, left, y, right + 1, y, kGrid, thin);
    }
    jLine(dc, left, bottom, right, top, kDiagonal, thin);
    if (picture.selectedX)
        jLine(dc, *picture.selectedX, top, *picture.selectedX, bottom + 1, kSelection, thin);
    for (const GraphCurve& curve : picture.curves) paintCurve(dc, curve);
    jRectangle(dc, kRectangleFrame, 0, 0, size.width, size.height, 0, kBorder);
    if (hasFocus) {
        const RECT inside{2, 2, size.width - 2, size.height - 2};
        ::DrawFocusRect(dc, &inside);
    }
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
        fill(dc, line, colour);
    }
    jRectangle(dc, kRectangleFrame, area.left, area.top, area.right, area.bottom, 0, kBorder);
}

namespace {

LRESULT graphMessage(GraphEvents* events, HWND graph, UINT message, WPARAM wParam,
                     LPARAM lParam) {
    RECT client;
    ::GetClientRect(graph, &client);
    const Size size{client.right, client.bottom};
    const Point at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (message) {
        case WM_ERASEBKGND: return 1;  // the canvas covers everything
        case WM_PAINT: {
            PAINTSTRUCT paint;
            const HDC dc = ::BeginPaint(graph, &paint);
            atBoundary(false, [&] {  // whatever happens, the painting has to be ended
                const Canvas canvas(dc, client);
                paintGraph(canvas.dc(), size, events->graphPicture(graph, size),
                           ::GetFocus() == graph);
                return true;
            });
            ::EndPaint(graph, &paint);
            return 0;
        }
        case WM_LBUTTONDOWN:
            ::SetFocus(graph);
            ::SetCapture(graph);
            events->graphPressed(graph, size, at);
            return 0;
        case WM_MOUSEMOVE: events->graphMoved(graph, size, at); return 0;
        case WM_LBUTTONUP:
            events->graphReleased(graph);
            if (::GetCapture() == graph) ::ReleaseCapture();
            return 0;
        case WM_CAPTURECHANGED: events->graphReleased(graph); return 0;
        case WM_RBUTTONDOWN: events->graphPressedRight(graph, size, at); return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: ::InvalidateRect(graph, nullptr, FALSE); return 0;
        case WM_GETDLGCODE: return DLGC_WANTARROWS;
        case WM_KEYDOWN:
            if (events->graphKey(graph, wParam)) return 0;
            break;
        default: break;
    }
    return ::DefWindowProcW(graph, message, wParam, lParam);
}

LRESULT CALLBACK graphProcedure(HWND graph, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const events = reinterpret_cast<GraphEvents*>(::GetWindowLongPtrW(graph, 0));
    if (!events) return ::DefWindowProcW(graph, message, wParam, lParam);
    return atBoundary<LRESULT>(
        0, [&] { return graphMessage(events, graph, message, wParam, lParam); });
}

// The class goes with the library: DLL unloading unregisters it.
struct GraphClass {
    GraphClass() {
        WNDCLASSW description{};
        description.style = CS_HREDRAW | CS_VREDRAW;
        description.lpfnWndProc = graphProcedure;
        description.cbWndExtra = sizeof(void*);
        description.hInstance = module();
        description.hCursor = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32515));  // a cross
        description.lpszClassName = kGraphClass;
        ::RegisterClassW(&description);
    }
    ~GraphClass() { ::UnregisterClassW(kGraphClass, module()); }
};

}  // namespace

void registerGraphClass() { static const GraphClass once; }

void attachGraph(HWND dialog, int control, GraphEvents& events) {
    ::SetWindowLongPtrW(::GetDlgItem(dialog, control), 0, reinterpret_cast<LONG_PTR>(&events));
}

void makeGraphSquare(HWND dialog) {
    const auto rectangleOf = [&](int control) {
        RECT area{};
        ::GetWindowRect(::GetDlgItem(dialog, control), &area);
        ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
        return area;
    };
    const RECT graph = rectangleOf(IDC_GRAPH);
    const int width = graph.right - graph.left, height = graph.bottom - graph.top;
    const int narrower = std::max(0, width - height), lower = std::max(0, height - width);
    const auto change = [&](int control, int left, int top, int wider, int higher) {
        const RECT area = rectangleOf(control);
        ::MoveWindow(::GetDlgItem(dialog, control), area.left + left, area.top + top,
                     area.right - area.left + wider, area.bottom - area.top + higher, FALSE);
    };
    change(IDC_GRAPH, 0, 0, -narrower, -lower);
    change(IDC_STRIP_OUTPUT, 0, 0, 0, -lower);
    change(IDC_STRIP_INPUT, 0, -lower, -narrower, 0);
    change(IDC_INPUT_LABEL, -narrower, -lower, 0, 0);
}

}  // namespace ko::dialog
