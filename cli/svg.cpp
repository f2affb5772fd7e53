#include "cli/svg.h"

#include <cmath>
#include <vector>

#include "cli/text.h"

namespace ko::cli {
namespace {

constexpr char kStyle[] = R"(<style>
text{font-family:"Segoe UI","Helvetica Neue",Helvetica,Arial,"DejaVu Sans",sans-serif;fill:#1d2733;font-size:12px}
.title{font-size:24px;font-weight:600}
.section{font-size:15px;font-weight:600}
.name{font-size:13px;font-weight:600}
.soft{fill:#667085}
.tick{fill:#667085;font-size:10px}
.good{fill:#067647;font-weight:600}
.warn{fill:#b54708;font-weight:600}
.card{fill:#fff;stroke:#e3e8ef}
.frame{fill:none;stroke:#98a2b3}
.grid{stroke:#e3e8ef;stroke-width:1}
.same{stroke:#98a2b3;stroke-width:1;stroke-dasharray:3 3}
.curve{fill:none;stroke-width:2;stroke-linejoin:round;stroke-linecap:round}
.strip{shape-rendering:crispEdges}
</style>
)";

std::string pair(const char* x, double xValue, const char* y, double yValue) {
    return std::string(x) + "=\"" + number(xValue) + "\" " + y + "=\"" + number(yValue) + '"';
}

// Leaves out points that a straight line between their neighbours meets anyway.
std::vector<Point> withoutNeedless(std::span<const Point> points) {
    std::vector<Point> kept;
    for (size_t i = 0; i < points.size(); ++i) {
        bool needed = i == 0 || i + 1 == points.size();
        if (!needed) {
            const Point a = kept.back(), b = points[i + 1], p = points[i];
            const double span = b.x - a.x;
            needed = span == 0 || std::abs(a.y + (b.y - a.y) * (p.x - a.x) / span - p.y) > 0.02;
        }
        if (needed) kept.push_back(points[i]);
    }
    return kept;
}

}  // namespace

Svg::Svg(double width, double height, std::string_view title) {
    out_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" " +
           pair("width", width, "height", height) + " viewBox=\"0 0 " + number(width) + ' ' +
           number(height) + "\">\n<title>" + escaped(title) + "</title>\n" + kStyle;
    rect(0, 0, width, height, R"(fill="#f6f7f9")");
}

std::string Svg::escaped(std::string_view text) {
    std::string out;
    for (const char c : printable(text)) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            default: out += c;
        }
    }
    return out;
}

std::string Svg::attribute(std::string_view name, std::string_view value) {
    return ' ' + std::string(name) + "=\"" + escaped(value) + '"';
}

void Svg::rect(double x, double y, double width, double height, std::string_view attributes) {
    out_ += "<rect " + pair("x", x, "y", y) + ' ' + pair("width", width, "height", height) + ' ';
    (out_ += attributes) += "/>\n";
}

void Svg::line(Point from, Point to, std::string_view attributes) {
    out_ += "<line " + pair("x1", from.x, "y1", from.y) + ' ' + pair("x2", to.x, "y2", to.y) + ' ';
    (out_ += attributes) += "/>\n";
}

void Svg::polyline(std::span<const Point> points, std::string_view attributes) {
    out_ += "<polyline points=\"";
    for (const Point& point : withoutNeedless(points)) out_ += number(point.x) + ',' + number(point.y) + ' ';
    if (out_.back() == ' ') out_.pop_back();
    ((out_ += "\" ") += attributes) += "/>\n";
}

void Svg::circle(Point centre, double radius, std::string_view attributes) {
    out_ += "<circle " + pair("cx", centre.x, "cy", centre.y) + " r=\"" + number(radius) + "\" ";
    (out_ += attributes) += "/>\n";
}

void Svg::text(Point at, std::string_view text, std::string_view attributes) {
    out_ += "<text " + pair("x", at.x, "y", at.y) + ' ';
    (out_ += attributes) += '>' + escaped(text) + "</text>\n";
}

std::string Svg::finish() { return out_ + "</svg>\n"; }

}  // namespace ko::cli
