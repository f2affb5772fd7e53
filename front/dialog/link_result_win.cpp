#include "front/dialog/link_result_win.h"

#include <algorithm>
#include <string>
#include <vector>

#include "frame/dialog/ask_win.h"
#include "frame/dialog/surface_win.h"
#include "frame/dialog/text_win.h"
#include "front/dialog/device_link.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::front {
namespace {

using namespace dialog;

constexpr int kColumns = 4, kRows = 2;
constexpr COLORREF kGrid = RGB(226, 226, 226), kDiagonal = RGB(200, 200, 200),
                   kPure = RGB(0, 110, 0), kMixed = RGB(165, 80, 0);

// "#rrggbb"
constexpr COLORREF colourOf(const char* text) noexcept {
    const auto digit = [&](int at) {
        const char c = text[at];
        return c <= '9' ? c - '0' : c - 'a' + 10;
    };
    const auto part = [&](int at) { return static_cast<BYTE>(16 * digit(at) + digit(at + 1)); };
    return RGB(part(1), part(3), part(5));
}
static_assert(colourOf("#0a97d9") == RGB(10, 151, 217));

COLORREF colourOf(const cmyk::Display& colour) noexcept {
    const auto part = [](double level) {
        return static_cast<BYTE>(std::clamp(level, 0.0, 1.0) * 255 + 0.5);
    };
    return RGB(part(colour[0]), part(colour[1]), part(colour[2]));
}

class LinkResultPage final : public ChildDialog, public SurfaceEvents {
public:
    explicit LinkResultPage(const cmyk::LinkResult& result) : result_(result) {}
    ~LinkResultPage() override { destroy(); }

private:
    void opened() override {
        attachSurface(window(), IDC_LINK_RAMPS, *this);
        const LinkResultText text = wordsOf(result_);
        const auto lines = [](auto first, auto last) {
            std::wstring whole;
            for (; first != last; ++first)
                whole += (whole.empty() ? L"" : L"\n") + wideProblem(*first);
            return whole;
        };
        const auto middle = text.colours.begin() + 3;
        setText(window(), IDC_LINK_COLOURS, lines(text.colours.begin(), middle));
        setText(window(), IDC_LINK_MORE_COLOURS, lines(middle, text.colours.end()));
        setText(window(), IDC_LINK_TOTALS, lines(text.totals.begin(), text.totals.end()));
    }

    void paintSurface(HWND, HDC dc, Size size, bool) override {
        fillArea(dc, {0, 0, size.width, size.height}, kPaper);
        const Selected font(dc, smallFont(dc));
        ::SetBkMode(dc, TRANSPARENT);
        for (int at = 0; at < kColumns * kRows; ++at) {
            const int column = at % kColumns, row = at / kColumns;
            const RECT card{size.width * column / kColumns, size.height * row / kRows,
                            size.width * (column + 1) / kColumns, size.height * (row + 1) / kRows};
            paintCard(dc, card, static_cast<size_t>(at));
        }
        drawFrame(dc, {0, 0, size.width, size.height}, kBorder);
    }

    void paintCard(HDC dc, const RECT& card, size_t at) const {
        const cmyk::RampResult& ramp = result_.ramps[at];
        const int gap = scaled(dc, 4);
        TEXTMETRICW metrics{};
        ::GetTextMetricsW(dc, &metrics);
        const RECT head{card.left + gap, card.top + gap / 2, card.right - gap,
                        card.top + gap / 2 + metrics.tmHeight};
        paintHead(dc, head, at);
        const int strip = scaled(dc, 7);
        const RECT plot{head.left, head.bottom + gap / 2, head.right,
                        card.bottom - 2 * strip - gap};
        paintChart(dc, plot, ramp);
        const LONG below = plot.bottom + 1;
        paintStripOf(dc, {plot.left, below, plot.right, below + strip}, ramp.before);
        paintStripOf(dc, {plot.left, below + strip, plot.right, below + 2 * strip}, ramp.after);
    }

    void paintHead(HDC dc, RECT area, size_t at) const {
        const cmyk::RampResult& ramp = result_.ramps[at];
        const bool isGrey = at >= cmyk::kPureRamps;
        std::wstring name = wideText(cmyk::kCmykRamps[at].name);
        if (isGrey) name = wideTranslated(texts::kGreyRamp);
        ::SetTextColor(dc, RGB(0, 0, 0));
        ::DrawTextW(dc, name.c_str(), -1, &area, DT_LEFT | DT_SINGLELINE | DT_NOPREFIX);
        if (isGrey) return;  // black belongs to it
        std::wstring verdict = wideTranslated(texts::kPureRamp);
        if (!ramp.isPure()) {
            verdict = L"+";
            for (size_t ink = 0; ink < 4; ++ink)
                if (ramp.foreign[ink]) verdict += std::wstring(L" ") + L"CMYK"[ink];
            const int tenths = static_cast<int>(ramp.most * 1000 + 0.5);
            verdict += L"  \x2264 " + std::to_wstring(tenths / 10) + L"." +
                       std::to_wstring(tenths % 10) + L" %";
        }
        ::SetTextColor(dc, ramp.isPure() ? kPure : kMixed);
        ::DrawTextW(dc, verdict.c_str(), -1, &area, DT_RIGHT | DT_SINGLELINE | DT_NOPREFIX);
    }

    static void paintChart(HDC dc, const RECT& plot, const cmyk::RampResult& ramp) {
        const int thin = scaled(dc, 1), width = plot.right - plot.left - 1,
                  height = plot.bottom - plot.top - 1;
        for (int quarter = 0; quarter <= 4; ++quarter) {
            const int x = plot.left + width * quarter / 4, y = plot.top + height * quarter / 4;
            drawLine(dc, {x, plot.top}, {x, plot.bottom}, kGrid, thin);
            drawLine(dc, {plot.left, y}, {plot.right, y}, kGrid, thin);
        }
        drawLine(dc, {plot.left, plot.bottom - 1}, {plot.right, plot.top}, kDiagonal, thin);
        std::vector<POINT> line(ramp.out.size());
        for (size_t ink = 0; ink < 4; ++ink) {
            if (!ramp.printed[ink]) continue;
            for (size_t level = 0; level < line.size(); ++level)
                line[level] = {plot.left + static_cast<LONG>(level) * width /
                                               static_cast<LONG>(line.size() - 1),
                               plot.top + height -
                                   static_cast<LONG>(ramp.out[level][ink] * height + 0.5)};
            const Selected pen(
                dc, ::CreatePen(PS_SOLID, scaled(dc, 2), colourOf(cmyk::kInkLines[ink])));
            ::Polyline(dc, line.data(), static_cast<int>(line.size()));
        }
    }

    static void paintStripOf(HDC dc, const RECT& area, const std::vector<cmyk::Display>& colours) {
        const auto count = static_cast<LONG>(colours.size());
        const LONG width = area.right - area.left;
        const auto edge = [&](LONG at) { return area.left + width * at / count; };
        for (LONG at = 0; at < count; ++at)
            fillArea(dc, {edge(at), area.top, edge(at + 1), area.bottom},
                     colourOf(colours[static_cast<size_t>(at)]));
    }

    cmyk::LinkResult result_;
};

}  // namespace

std::unique_ptr<ChildDialog> showLinkResult(HWND window, const cmyk::LinkResult& result) {
    registerSurfaceClass();
    auto page = std::make_unique<LinkResultPage>(result);
    if (!page->create(window, L"LINKRESULTDLG")) return nullptr;
    RECT client{}, whole{}, own{};
    ::GetClientRect(window, &client);
    ::GetWindowRect(window, &whole);
    ::GetWindowRect(page->window(), &own);
    const int height = own.bottom - own.top;
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    ::GetMonitorInfoW(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &screen);
    whole.bottom += height;
    const LONG above = std::clamp<LONG>(whole.bottom - screen.rcWork.bottom, 0,
                                        std::max<LONG>(0, whole.top - screen.rcWork.top));
    ::SetWindowPos(window, nullptr, whole.left, whole.top - above, whole.right - whole.left,
                   whole.bottom - whole.top, SWP_NOZORDER | SWP_NOACTIVATE);
    page->place({0, client.bottom, client.right, client.bottom + height}, HWND_BOTTOM);
    page->setVisible(true);
    return page;
}

}  // namespace ko::front
