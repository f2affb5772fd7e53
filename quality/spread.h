// Many numbers in a few.
#pragma once

#include <cstddef>
#include <vector>

namespace ko::quality {

struct Spread {
    size_t count = 0;
    double mean = 0, median = 0, p90 = 0, p95 = 0, p99 = 0, worst = 0;
};

// Percentiles are values that occur: the one at that share of the sorted list. All zeros for none.
// The values come back sorted; none is NaN.
Spread spreadOf(std::vector<double>& values);

}  // namespace ko::quality
