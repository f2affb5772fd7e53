// CIE L*a*b* and XYZ under D50, in double, with the standard's exact knee.
#pragma once

#include <array>

namespace ko::precise {

using Triple = std::array<double, 3>;

constexpr Triple kD50 = {0.9642, 1.0, 0.8249};

Triple toLab(const Triple& xyz) noexcept;
Triple toXyz(const Triple& lab) noexcept;
double labCurve(double t) noexcept;        // f of CIE 15
double labCurveSlope(double t) noexcept;
double labCurveInverse(double f) noexcept;

}  // namespace ko::precise
