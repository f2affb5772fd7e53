// The picture of a CMYK to CMYK conversion: eight curves, and ramps before and after.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "cli/chart.h"

namespace ko::cli {

struct InkCurve {
    std::vector<double> values;                  // at even steps, 0..1
    std::vector<std::pair<double, double>> dots; // control points
};

struct LinkPage {
    PageHead head;
    std::array<InkCurve, 8> curves;  // C, M, Y, K before the grid, then after it
    std::function<Cmyk(const Cmyk&)> convert;
};

std::string drawLinkPage(const LinkPage& page);

using cmyk::kCmykRamps;
using cmyk::kRampLevels;
using cmyk::levelOf;
using cmyk::Ramp;

}  // namespace ko::cli
