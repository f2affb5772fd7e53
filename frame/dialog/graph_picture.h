// What a curve editor's graph shows, ready to be painted: positions are pixels of the control.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frame/dialog/graph.h"

namespace ko::dialog {

// A colour as Windows has it: red in the low byte, then green, then blue.
using Colour = uint32_t;

struct GraphCurve {
    Colour colour;
    std::vector<Point> line;
    std::vector<Point> controlPoints;
    std::vector<Point> computedPoints;  // positions that could become control points
};

// What stands somewhere on the graph, in the numbers of its axes.
struct GraphReading {
    std::string input, output;
};

struct GraphPicture {
    std::vector<GraphCurve> opened{};          // as they were at first: faint, below all others
    std::vector<GraphCurve> curves{};          // the first at the bottom
    std::optional<int32_t> selectedX{};        // the column of the selected position
    std::array<std::string, 5> inputs{}, outputs{};  // at every quarter of the axes
    std::optional<GraphReading> reading{};     // under the cursor
};

// A curve keeps how it was on a graph of this size, which any other is a part of.
constexpr int32_t kKeptPlot = 4096;
constexpr Size kKeptGraph = {kKeptPlot + kGraphMargins, kKeptPlot + kGraphMargins};
std::vector<Point> keptLine(const std::vector<Point>& kept, Size graph);

}  // namespace ko::dialog
