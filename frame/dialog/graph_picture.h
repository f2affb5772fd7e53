// What a curve editor's graph shows, ready to be painted: positions are pixels of the control.
#pragma once

#include <cstdint>
#include <optional>
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

struct GraphPicture {
    std::vector<GraphCurve> curves;      // the first at the bottom
    std::optional<int32_t> selectedX;    // the column of the selected position
};

}  // namespace ko::dialog
