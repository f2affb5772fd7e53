// Writes a picture as SVG 1.1 that a browser shows as it is.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace ko::cli {

struct Point {
    double x, y;
};

class Svg {
public:
    // The title is what a browser's tab and a screen reader say.
    Svg(double width, double height, std::string_view title);

    // Attributes are written as they are: R"(class="grid")".
    void rect(double x, double y, double width, double height, std::string_view attributes);
    void line(Point from, Point to, std::string_view attributes);
    void polyline(std::span<const Point> points, std::string_view attributes);
    void circle(Point centre, double radius, std::string_view attributes);
    // Text as it is: escaped for XML, control characters made visible.
    void text(Point at, std::string_view text, std::string_view attributes);
    std::string finish();

    static std::string attribute(std::string_view name, std::string_view value);
    static std::string escaped(std::string_view text);

private:
    std::string out_;
};

}  // namespace ko::cli
