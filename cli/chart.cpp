#include "cli/chart.h"

#include <algorithm>

#include "cli/text.h"

namespace ko::cli {

double drawHead(Svg& svg, const PageHead& head) {
    double y = kMargin + 20;
    svg.text({kMargin, y}, cutTo(head.title, 80), R"(class="title")");
    y += 26;
    for (const std::string& line : head.lines) {
        svg.text({kMargin, y}, cutTo(line, 170), R"(class="soft")");
        y += 20;
    }
    return headHeight(head.lines.size());
}

void drawLegend(Svg& svg, Point at, std::span<const std::pair<std::string, std::string>> entries) {
    for (const auto& [name, colour] : entries) {
        const std::string style = colour.empty() ? R"(class="same")"
                                                 : R"(class="curve")" + Svg::attribute("stroke", colour);
        svg.line({at.x, at.y - 4}, {at.x + 22, at.y - 4}, style);
        svg.text({at.x + 28, at.y}, name, "");
        at.x += 52 + 7.0 * static_cast<double>(name.size());
    }
}

Chart::Chart(Svg& svg, double x, double y, double width, double height, Labels labels,
             std::string_view xTitle, std::string_view yTitle)
    : svg_(svg), x_(x), y_(y), width_(width), height_(height) {
    svg.rect(x, y, width, height, R"(fill="#fff")");
    for (int quarter = 0; quarter <= 4; ++quarter) {
        const double part = quarter / 4.0;
        if (quarter % 4 != 0) {
            svg.line(at(part, 0), at(part, 1), R"(class="grid")");
            svg.line(at(0, part), at(1, part), R"(class="grid")");
        }
        if (labels == Labels::sparse && quarter % 2 != 0) continue;
        const std::string text = std::to_string(quarter * 25);
        const char* anchor = quarter == 0   ? R"(class="tick" text-anchor="start")"
                             : quarter == 4 ? R"(class="tick" text-anchor="end")"
                                            : R"(class="tick" text-anchor="middle")";
        svg.text({at(part, 0).x, y + height + 12}, text, anchor);
        svg.text({x - 5, at(0, part).y + (quarter == 4 ? 8 : quarter == 0 ? 0 : 3.5)}, text,
                 R"(class="tick" text-anchor="end")");
    }
    svg.rect(x, y, width, height, R"(class="frame")");
    if (!xTitle.empty())
        svg.text({x + width / 2, y + height + 26}, xTitle, R"(class="tick" text-anchor="middle")");
    if (!yTitle.empty()) {
        const std::string turn = "rotate(-90 " + number(x - 28) + ' ' + number(y + height / 2) + ')';
        svg.text({x - 28, y + height / 2}, yTitle,
                 R"(class="tick" text-anchor="middle")" + Svg::attribute("transform", turn));
    }
}

void Chart::diagonal() { svg_.line(at(0, 0), at(1, 1), R"(class="same")"); }

void Chart::curve(std::span<const double> values, std::string_view colour) {
    std::vector<Point> points;
    const double last = static_cast<double>(std::max<size_t>(2, values.size()) - 1);
    for (size_t i = 0; i < values.size(); ++i)
        points.push_back(at(static_cast<double>(i) / last, std::clamp(values[i], 0.0, 1.0)));
    svg_.polyline(points, R"(class="curve")" + Svg::attribute("stroke", colour));
}

void Chart::dot(double x, double y, std::string_view colour) {
    svg_.circle(at(x, std::clamp(y, 0.0, 1.0)), 3, R"(fill="#fff" stroke-width="1.5")" + Svg::attribute("stroke", colour));
}

void drawStrip(Svg& svg, double x, double y, double width, double height, std::span<const Rgb> colours) {
    const double step = width / static_cast<double>(colours.size());
    for (size_t i = 0; i < colours.size(); ++i)
        svg.rect(x + static_cast<double>(i) * step, y, step, height, R"(class="strip")" + Svg::attribute("fill", hexColour(colours[i])));
    svg.rect(x, y, width, height, R"(class="frame")");
}

}  // namespace ko::cli
