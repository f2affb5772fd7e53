// A slice through what can be printed.
#pragma once

#include <vector>

#include "quality/subject.h"

namespace ko::quality {

constexpr int kBorderPoints = 72;  // every five degrees of hue

// The border of a gamut at one lightness: L*, a*, b* around the neutral axis, in the order of
// their hues. A hue whose border cannot be reached from the axis stands on it.
std::vector<Triple> gamutBorder(const precise::Evaluator& forward, double lightness);

}  // namespace ko::quality
