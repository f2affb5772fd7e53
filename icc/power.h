// Powers whose result is the nearest double, from basic arithmetic alone: the runtimes' own
// differ in the last place. No table of the library may depend on which one it runs with.
#pragma once

namespace ko::icc {

// base^exponent with the special cases of IEEE 754 pow. The error before the final rounding is
// below 2^-90 of the result; ties, which only exact powers are, go to even.
double power(double base, double exponent) noexcept;

// power(t, 0.3333333333333333) and power(f, 3.0), faster and equal to the last bit.
double powerOfThird(double t) noexcept;
double cube(double f) noexcept;

}  // namespace ko::icc
