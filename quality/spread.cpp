#include "quality/spread.h"

#include <algorithm>

namespace ko::quality {

Spread spreadOf(std::vector<double>& values) {
    Spread spread;
    spread.count = values.size();
    if (values.empty()) return spread;
    std::sort(values.begin(), values.end());
    for (const double value : values) spread.mean += value;
    spread.mean /= static_cast<double>(values.size());
    // In integers, so that no target rounds a place up that another rounds down.
    const auto at = [&](size_t percent) {
        return values[std::min(values.size() - 1, values.size() * percent / 100)];
    };
    spread.median = at(50);
    spread.p90 = at(90);
    spread.p95 = at(95);
    spread.p99 = at(99);
    spread.worst = values.back();
    return spread;
}

}  // namespace ko::quality
