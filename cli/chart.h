// The parts that every picture is made of: a page with title and legend, square charts with
// quarter lines, strips of colour.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/svg.h"
#include "cli/swatch.h"

namespace ko::cli {

using cmyk::kInkLines;
constexpr const char* kInkNames[4] = {"C", "M", "Y", "K"};
constexpr const char* kLightLines[3] = {"#d92d20", "#039855", "#1570ef"};  // R, G, B
constexpr double kMargin = 32;

// What stands at the head of a page.
struct PageHead {
    std::string title;
    std::vector<std::string> lines;
};
// Draws it; returns where the page goes on.
double drawHead(Svg& svg, const PageHead& head);
constexpr double headHeight(size_t lines) { return 74 + 20 * static_cast<double>(lines); }

// Line samples with names, from left to right; a dashed one for an empty colour.
void drawLegend(Svg& svg, Point at, std::span<const std::pair<std::string, std::string>> entries);

enum class Labels { full, sparse };

// One chart; both axes run from 0 to 1 and are labelled in percent unless told otherwise.
class Chart {
public:
    Chart(Svg& svg, double x, double y, double width, double height, Labels labels,
          std::string_view xTitle = {}, std::string_view yTitle = {});
    void diagonal();
    // Values at even steps over the whole width.
    void curve(std::span<const double> values, std::string_view colour);
    void dot(double x, double y, std::string_view colour);

private:
    Point at(double x, double y) const { return {x_ + x * width_, y_ + (1 - y) * height_}; }
    Svg& svg_;
    double x_, y_, width_, height_;
};

void drawStrip(Svg& svg, double x, double y, double width, double height, std::span<const Rgb> colours);

}  // namespace ko::cli
