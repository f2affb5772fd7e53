#include "precise/curve.h"

#include <algorithm>

#include "icc/power.h"

namespace ko::precise {
namespace {

constexpr double kTiny = 1e-9;

double limited(double x) noexcept { return x > 0 ? x < 1 ? x : 1 : 0; }  // NaN gives 0

double powerOrZero(double base, double exponent) noexcept {
    return base > 0 ? icc::power(base, exponent) : 0;
}

}  // namespace

Curve Curve::sampled(std::vector<double> entries) {
    Curve curve;
    curve.kind_ = Kind::sampled;
    curve.entries_ = std::move(entries);
    return curve;
}

Curve Curve::parametric(int form, const std::array<double, 7>& parameters) {
    Curve curve;
    curve.form_ = form;
    curve.p_ = parameters;
    curve.kind_ = form == 0 && parameters[0] == 1 ? Kind::identity : Kind::parametric;
    return curve;
}

double Curve::at(double x) const noexcept {
    if (kind_ == Kind::identity) return x;
    if (kind_ == Kind::parametric) return parametricAt(x);
    const double position = limited(x) * static_cast<double>(entries_.size() - 1);
    auto index = static_cast<size_t>(position);
    if (index + 2 > entries_.size()) index = entries_.size() - 2;
    const double rest = position - static_cast<double>(index);
    return entries_[index] + rest * (entries_[index + 1] - entries_[index]);
}

double Curve::slope(double x) const noexcept {
    if (kind_ == Kind::identity) return 1;
    if (kind_ == Kind::parametric) {
        const double step = 1e-5;
        const double low = x + step > 1 ? x - step : x;
        return (parametricAt(low + step) - parametricAt(low)) / step;
    }
    const auto last = static_cast<double>(entries_.size() - 1);
    const double position = limited(x) * last;
    auto index = static_cast<size_t>(position);
    if (index + 2 > entries_.size()) index = entries_.size() - 2;
    return (entries_[index + 1] - entries_[index]) * last;
}

double Curve::parametricAt(double x) const noexcept {
    const auto [g, a, b, c, d, e, f] = p_;
    switch (form_) {
        case 0: return powerOrZero(x, g);
        case 1: return a * x + b >= 0 ? powerOrZero(a * x + b, g) : 0;
        case 2: return a * x + b >= 0 ? powerOrZero(a * x + b, g) + c : c;
        case 3: return x >= d ? powerOrZero(a * x + b, g) : c * x;
        default: return x >= d ? powerOrZero(a * x + b, g) + e : c * x + f;
    }
}

// The piece whose values hold y is taken; where the pieces do not meet, the upper one begins at
// its own first value.
double Curve::parametricInverse(double y) const noexcept {
    // Named one by one: not every compiler lets a lambda capture the names of a binding.
    const double g = p_[0], a = p_[1], b = p_[2], c = p_[3], d = p_[4], e = p_[5], f = p_[6];
    const double offset = form_ == 2 ? c : form_ == 4 ? e : 0;
    const auto upper = [&] {
        const double root = g > kTiny || g < -kTiny ? powerOrZero(y - offset, 1 / g) : 0;
        if (form_ == 0) return root;
        return a > kTiny || a < -kTiny ? (root - b) / a : 0.0;
    };
    if (form_ < 3) return upper();
    const double lower = form_ == 4 ? f : 0;
    if (y >= parametricAt(d)) return upper();
    return c > kTiny || c < -kTiny ? std::min((y - lower) / c, d) : d;
}

double Curve::inverse(double y) const noexcept {
    if (kind_ == Kind::identity) return y;
    if (kind_ == Kind::parametric) return parametricInverse(y);
    const size_t last = entries_.size() - 1;
    const bool rising = entries_[last] >= entries_[0];
    const auto reached = [&](double value) { return rising ? value >= y : value <= y; };
    if (reached(entries_[0])) {
        // The end of a level run: what lies below the first change is as dark as it gets.
        size_t same = 0;
        while (same < last && entries_[same + 1] == entries_[0]) ++same;
        return entries_[0] == y ? static_cast<double>(same) / static_cast<double>(last) : 0;
    }
    for (size_t at = 1; at <= last; ++at) {
        if (!reached(entries_[at])) continue;
        const double low = entries_[at - 1], high = entries_[at];
        const double rest = high == low ? 0 : (y - low) / (high - low);
        return (static_cast<double>(at - 1) + rest) / static_cast<double>(last);
    }
    return 1;
}

}  // namespace ko::precise
