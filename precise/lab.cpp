#include "precise/lab.h"

#include "icc/power.h"

namespace ko::precise {
namespace {

constexpr double kKnee = 24.0 / 116;
constexpr double kSlope = 841.0 / 108;
constexpr double kOffset = 16.0 / 116;

}  // namespace

double labCurve(double t) noexcept {
    return t > kKnee * kKnee * kKnee ? icc::powerOfThird(t) : kSlope * t + kOffset;
}

double labCurveSlope(double t) noexcept {
    if (!(t > kKnee * kKnee * kKnee)) return kSlope;
    const double root = icc::powerOfThird(t);
    return 1 / (3 * root * root);
}

double labCurveInverse(double f) noexcept {
    return f > kKnee ? f * f * f : (f - kOffset) / kSlope;
}

Triple toLab(const Triple& xyz) noexcept {
    const double fx = labCurve(xyz[0] / kD50[0]);
    const double fy = labCurve(xyz[1] / kD50[1]);
    const double fz = labCurve(xyz[2] / kD50[2]);
    return {116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz)};
}

Triple toXyz(const Triple& lab) noexcept {
    const double fy = (lab[0] + 16) / 116;
    return {kD50[0] * labCurveInverse(fy + lab[1] / 500), kD50[1] * labCurveInverse(fy),
            kD50[2] * labCurveInverse(fy - lab[2] / 200)};
}

}  // namespace ko::precise
