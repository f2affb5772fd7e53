#include "cli/link_page.h"

#include <algorithm>
#include <cmath>

#include "cli/text.h"

namespace ko::cli {
namespace {

constexpr double kWidth = 1280;
constexpr double kContent = kWidth - 2 * kMargin;
constexpr double kCurveCards = 8, kCurveGap = 12;
constexpr double kCurveCard = (kContent - (kCurveCards - 1) * kCurveGap) / kCurveCards;
constexpr double kRampColumns = 4, kRampGap = 16;
constexpr double kRampCard = (kContent - (kRampColumns - 1) * kRampGap) / kRampColumns;
constexpr double kCurveCardHeight = kCurveCard + 8, kRampCardHeight = 340;

void card(Svg& svg, double x, double y, double width, double height) {
    svg.rect(x, y, width, height, R"(class="card" rx="6")");
}

void drawCurveCard(Svg& svg, double x, double y, size_t index, const InkCurve& curve) {
    card(svg, x, y, kCurveCard, kCurveCardHeight);
    svg.text({x + 12, y + 20}, std::string(index < 4 ? "Input " : "Output ") + kInkNames[index % 4], R"(class="name")");
    Chart chart(svg, x + 28, y + 30, kCurveCard - 40, kCurveCard - 40, Labels::sparse);
    chart.diagonal();
    chart.curve(curve.values, kInkLines[index % 4]);
    for (const auto& [at, value] : curve.dots) chart.dot(at, value, kInkLines[index % 4]);
}

// What a technician asks of a ramp: do the inks that were not in it stay out, and from where on?
void drawVerdict(Svg& svg, Point at, const cmyk::RampResult& result) {
    std::string inks;
    for (size_t ink = 0; ink < 4; ++ink)
        if (result.foreign[ink]) inks += (inks.empty() ? "" : ", ") + std::string(kInkNames[ink]);
    const std::string amount = number(result.most * 100, result.most < 0.1 ? 1 : 0) + " %";
    if (result.isPure()) svg.text(at, "no other ink", R"(class="good" text-anchor="end")");
    else if (result.pureFrom <= result.out.size() / 2)
        svg.text(at, "pure from " + number(std::ceil(static_cast<double>(result.pureFrom) / 2.55), 0) + " %, " + inks +
                         " below", R"(class="warn" text-anchor="end")");
    else svg.text(at, "+ " + inks + ", up to " + amount, R"(class="warn" text-anchor="end")");
}

void drawRampCard(Svg& svg, double x, double y, const Ramp& ramp, const std::function<Cmyk(const Cmyk&)>& convert) {
    const cmyk::RampResult result = resultOf(ramp, convert);
    card(svg, x, y, kRampCard, kRampCardHeight);
    svg.text({x + 16, y + 24}, ramp.name, R"(class="name")");
    drawVerdict(svg, {x + kRampCard - 16, y + 24}, result);

    const double left = x + 46, width = kRampCard - 62;
    Chart chart(svg, left, y + 38, width, 200, Labels::full, "ink in, %", "ink out, %");
    chart.diagonal();
    for (size_t ink = 0; ink < 4; ++ink) {
        if (!result.printed[ink]) continue;  // it stays out
        std::vector<double> values;
        for (const Cmyk& colour : result.out) values.push_back(colour[ink]);
        chart.curve(values, kInkLines[ink]);
    }
    svg.text({left - 6, y + 288}, "in", R"(class="tick" text-anchor="end")");
    drawStrip(svg, left, y + 275, width, 20, result.before);
    svg.text({left - 6, y + 314}, "out", R"(class="tick" text-anchor="end")");
    drawStrip(svg, left, y + 301, width, 20, result.after);
}

std::string inPercent(const Cmyk& colour) {
    std::string text;
    for (size_t ink = 0; ink < 4; ++ink)
        text += std::string(ink ? "  " : "") + kInkNames[ink] + ' ' + number(colour[ink] * 100, 0);
    return text;
}

}  // namespace

std::string drawLinkPage(const LinkPage& page) {
    PageHead head = page.head;
    head.lines.push_back("White becomes " + inPercent(page.convert({0, 0, 0, 0})) + "     ·     Black K 100 becomes " +
                         inPercent(page.convert({0, 0, 0, 1})) + "     ·     All four inks at 100 become " +
                         inPercent(page.convert({1, 1, 1, 1})) + "   (percent)");
    const double curvesTop = headHeight(head.lines.size()) + 30;
    const double rampsTop = curvesTop + kCurveCardHeight + 48;
    const double height = rampsTop + 2 * kRampCardHeight + kRampGap + 46;

    Svg svg(kWidth, height, head.title);
    drawHead(svg, head);
    svg.text({kMargin, curvesTop - 12}, "Curves before and after the grid", R"(class="section")");
    for (size_t i = 0; i < 8; ++i)
        drawCurveCard(svg, kMargin + static_cast<double>(i) * (kCurveCard + kCurveGap), curvesTop, i, page.curves[i]);

    svg.text({kMargin, rampsTop - 12}, "Ramps: the inks that go out for the inks that come in", R"(class="section")");
    const std::pair<std::string, std::string> legend[] = {{"C", kInkLines[0]}, {"M", kInkLines[1]},
        {"Y", kInkLines[2]}, {"K", kInkLines[3]}, {"out = in", ""}};
    drawLegend(svg, {kWidth - kMargin - 342, rampsTop - 12}, legend);
    for (size_t i = 0; i < 8; ++i)
        drawRampCard(svg, kMargin + static_cast<double>(i % 4) * (kRampCard + kRampGap),
                     rampsTop + static_cast<double>(i / 4) * (kRampCardHeight + kRampGap), kCmykRamps[i], page.convert);
    svg.text({kMargin, height - 18},
             "Every ramp has all 256 levels. The strips show what the inks look like on coated paper, near enough for a look.",
             R"(class="tick")");
    return svg.finish();
}

}  // namespace ko::cli
