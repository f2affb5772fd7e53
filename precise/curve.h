// One-dimensional functions of profiles: sampled curves and the five parametric forms of ICC.1.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace ko::precise {

// Everything is double. A sampled curve takes its argument limited to 0..1 and blends the two
// entries around it; a parametric one takes any number.
class Curve {
public:
    Curve() = default;  // the identity
    static Curve sampled(std::vector<double> entries);  // at least two, on the scale 0..1
    // Form 0..4 as in ICC.1 parametricCurveType; unused parameters are 0: g, a, b, c, d, e, f.
    static Curve parametric(int form, const std::array<double, 7>& parameters);

    bool isIdentity() const noexcept { return kind_ == Kind::identity; }
    bool isSampled() const noexcept { return kind_ == Kind::sampled; }
    const std::vector<double>& entries() const noexcept { return entries_; }

    double at(double x) const noexcept;
    double slope(double x) const noexcept;  // to the right of x; at the upper end to the left
    // The argument that gives y: of a sampled curve that turns, the first one; beyond the ends of
    // a sampled curve its end.
    double inverse(double y) const noexcept;

private:
    enum class Kind : uint8_t { identity, sampled, parametric };
    double parametricAt(double x) const noexcept;
    double parametricInverse(double y) const noexcept;

    Kind kind_ = Kind::identity;
    int form_ = 0;
    std::array<double, 7> p_{};
    std::vector<double> entries_;
};

}  // namespace ko::precise
