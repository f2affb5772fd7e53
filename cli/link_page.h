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

struct Ramp {
    const char* name;
    Cmyk inks;  // at full strength
};
inline constexpr Ramp kCmykRamps[8] = {
    {"C", {1, 0, 0, 0}},     {"M", {0, 1, 0, 0}},     {"Y", {0, 0, 1, 0}},     {"K", {0, 0, 0, 1}},
    {"C + M", {1, 1, 0, 0}}, {"C + Y", {1, 0, 1, 0}}, {"M + Y", {0, 1, 1, 0}}, {"Grey of C + M + Y", {1, 1, 1, 0}},
};
constexpr size_t kRampLevels = 256;  // every 8-bit level
inline Cmyk levelOf(const Ramp& ramp, size_t level) {
    Cmyk colour = ramp.inks;
    for (double& ink : colour) ink *= static_cast<double>(level) / (kRampLevels - 1);
    return colour;
}

}  // namespace ko::cli
