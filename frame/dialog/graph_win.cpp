#include "frame/dialog/graph_win.h"

#include <algorithm>
#include <cstddef>

#include "resources/dialog_ids.h"

namespace ko::dialog {
namespace {

constexpr COLORREF kGrid = RGB(226, 226, 226), kDiagonal = RGB(200, 200, 200),
                   kSelection = RGB(150, 180, 230);

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
    const auto paintPoint = [&](Point at, int reach, COLORREF colour) {
        const RECT area{at.x - reach, at.y - reach, at.x + reach + 1, at.y + reach + 1};
        fillArea(dc, area, colour);
        drawFrame(dc, area, edge);
    };
    for (const Point at : curve.computedPoints) paintPoint(at, small, kPaper);
    for (const Point at : curve.controlPoints) paintPoint(at, large, curve.colour);
}

}  // namespace

void paintGraph(HDC dc, Size size, const GraphPicture& picture, bool hasFocus) {
    const RECT whole{0, 0, size.width, size.height};
    fillArea(dc, whole, kPaper);
    const Size plot = plotSize(size);
    const int left = kGraphInset, top = kGraphInset;
    const int right = left + plot.width, bottom = top + plot.height;
    const int thin = scaled(dc, 1);
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const int x = left + plot.width * quarter / 4, y = top + plot.height * quarter / 4;
        drawLine(dc, {x, top}, {x, bottom + 1}, kGrid, thin);
        drawLine(dc, {left, y}, {right + 1, y}, kGrid, thin);
    }
    drawLine(dc, {left, bottom}, {right, top}, kDiagonal, thin);
    if (picture.selectedX)
        drawLine(dc, {*picture.selectedX, top}, {*picture.selectedX, bottom + 1}, kSelection, thin);
    for (const GraphCurve& curve : picture.curves) paintCurve(dc, curve);
    drawFrame(dc, whole, kBorder);
    if (hasFocus) drawFocus(dc, size, 2);
}

bool paintGraphStrip(const DRAWITEMSTRUCT& drawing, COLORREF full) {
    const bool output = drawing.CtlID == IDC_STRIP_OUTPUT;
    if (!output && drawing.CtlID != IDC_STRIP_INPUT) return false;
    const Canvas canvas(drawing.hDC, drawing.rcItem);
    paintStrip(canvas.dc(), {0, 0, canvas.size().width, canvas.size().height},
               output ? StripDirection::upward : StripDirection::rightward, kPaper, full);
    return true;
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
