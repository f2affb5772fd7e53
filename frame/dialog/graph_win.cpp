#include "frame/dialog/graph_win.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "resources/dialog_ids.h"

namespace ko::dialog {
namespace {

constexpr COLORREF kGrid = RGB(226, 226, 226), kDiagonal = RGB(200, 200, 200),
                   kSelection = RGB(150, 180, 230), kNumber = RGB(120, 120, 120);
constexpr size_t kDense = 40;  // points beyond which larger marks would run together

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
    const int small = scaled(dc, curve.computedPoints.size() > kDense ? 1 : 2);
    const int large = scaled(dc, 3);
    const auto paintPoint = [&](Point at, int reach, COLORREF colour) {
        const RECT area{at.x - reach, at.y - reach, at.x + reach + 1, at.y + reach + 1};
        fillArea(dc, area, colour);
        drawFrame(dc, area, edge);
    };
    for (const Point at : curve.computedPoints) paintPoint(at, small, kPaper);
    for (const Point at : curve.controlPoints) paintPoint(at, large, curve.colour);
}

// Half way to the paper.
COLORREF faint(COLORREF colour) noexcept {
    const auto half = [](int level) { return static_cast<BYTE>((level + 2 * 255) / 3); };
    return RGB(half(GetRValue(colour)), half(GetGValue(colour)), half(GetBValue(colour)));
}

// Inside the plot, along its lower and its left edge; the first of both would be one corner.
void paintNumbers(HDC dc, const GraphPicture& picture, const RECT& plot) {
    const Selected font(dc, smallFont(dc));
    ::SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, kNumber);
    const int gap = scaled(dc, 2);
    const auto put = [&](const std::wstring& text, int x, int y, UINT align) {
        ::SetTextAlign(dc, align);
        ::TextOutW(dc, x, y, text.c_str(), static_cast<int>(text.size()));
    };
    const auto widened = [](const std::string& text) {
        return std::wstring(text.begin(), text.end());  // ASCII
    };
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(dc, &metrics);
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const int x = plot.left + (plot.right - plot.left) * quarter / 4;
        const int y = plot.bottom - (plot.bottom - plot.top) * quarter / 4;
        const auto at = static_cast<size_t>(quarter);
        if (quarter == 4)
            put(widened(picture.inputs[at]), x - gap, plot.bottom - gap, TA_RIGHT | TA_BOTTOM);
        else if (quarter > 0)
            put(widened(picture.inputs[at]), x, plot.bottom - gap, TA_CENTER | TA_BOTTOM);
        if (quarter == 4)
            put(widened(picture.outputs[at]), plot.left + gap, plot.top + gap, TA_LEFT | TA_TOP);
        else if (quarter > 0)
            put(widened(picture.outputs[at]), plot.left + gap, y - metrics.tmHeight / 2,
                TA_LEFT | TA_TOP);
    }
    if (!picture.reading) return;
    ::SetTextColor(dc, ::GetSysColor(COLOR_WINDOWTEXT));
    put(widened(picture.reading->input) + L" \x2192 " + widened(picture.reading->output),
        plot.left + (plot.right - plot.left) / 4, plot.top + gap, TA_CENTER | TA_TOP);
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
    paintNumbers(dc, picture, {left, top, right, bottom});
    for (const GraphCurve& curve : picture.opened)
        if (!curve.line.empty()) paintLine(dc, curve, faint(curve.colour), thin);
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
