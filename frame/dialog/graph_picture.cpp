#include "frame/dialog/graph_picture.h"

namespace ko::dialog {

std::vector<Point> keptLine(const std::vector<Point>& kept, Size graph) {
    const Size plot = plotSize(graph);
    std::vector<Point> line;
    line.reserve(kept.size());
    for (const Point at : kept)
        line.push_back({kGraphInset + (at.x - kGraphInset) * plot.width / kKeptPlot,
                        kGraphInset + (at.y - kGraphInset) * plot.height / kKeptPlot});
    return line;
}

}  // namespace ko::dialog
