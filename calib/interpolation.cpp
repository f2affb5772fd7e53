// The tone between measured ones. Tones out of order, which the plain files may hold, give some
// result too.
#include <cmath>
#include <limits>

#include "calib/calib.h"

namespace ko::calib {
namespace {

struct Point {
    double x, y;
};

// Rounds to single precision; beyond its range the nearest end.
float toSingle(double value) noexcept {
    constexpr double kMax = std::numeric_limits<float>::max();
    if (value > kMax) return std::numeric_limits<float>::max();
    if (value < -kMax) return -std::numeric_limits<float>::max();
    return static_cast<float>(value);
}

bool isOutside(std::span<const CalibTone> tones, float x) noexcept {
    return tones.size() < 2 || !std::isfinite(x) || x < tones.front().x || x > tones.back().x;
}

// The first tone, but the first of all, that x does not pass; there is one, since x is not outside.
size_t findSegment(std::span<const CalibTone> tones, float x) noexcept {
    size_t k = 1;
    while (k + 1 < tones.size() && !(tones[k].x >= x)) ++k;
    return k;
}

// From a to b, in double, rounded to single precision once.
float lineValue(float ax, float ay, float bx, float by, float x) noexcept {
    if (bx == ax) return by;
    const double rise = static_cast<double>(by) - ay;
    return toSingle(ay + rise * (static_cast<double>(x) - ax) / (static_cast<double>(bx) - ax));
}

// A quarter of what the slope of the chord between two tones rises over width, in double.
double quarterRise(const CalibTone& low, const CalibTone& high, double width) noexcept {
    const double rise = static_cast<double>(high.y) - low.y;
    return rise * width / (static_cast<double>(high.x) - low.x) * 0.25;
}

// The inner points of segment k, from tone k - 1 to tone k, of three tones or more, in double.
// The slope at a tone is the chord's between its neighbours; at the two ends of the list the free
// inner point is the midpoint. False when two neighbours share an x: there is no such slope.
bool innerPoints(std::span<const CalibTone> tones, size_t k, Point& c1, Point& c2) noexcept {
    const CalibTone& a = tones[k - 1];
    const CalibTone& b = tones[k];
    const double width = static_cast<double>(b.x) - a.x;
    const bool first = k == 1;
    const bool last = k == tones.size() - 1;
    if (!first) {
        const CalibTone& before = tones[k - 2];
        if (b.x == before.x) return false;
        c1 = {a.x + width * 0.25, a.y + quarterRise(before, b, width)};
    }
    if (first || !last) {
        const CalibTone& next = tones[k + 1];
        if (next.x == a.x) return false;
        c2 = {b.x - width * 0.25, b.y - quarterRise(a, next, width)};
    }
    if (first) {
        c1 = {(a.x + c2.x) * 0.5, (a.y + c2.y) * 0.5};
    } else if (last) {
        c2 = {(b.x + c1.x) * 0.5, (b.y + c1.y) * 0.5};
    }
    return true;
}

// The segment's cubic. t, u and w are float (and exact), the sum is double, left to right, and
// rounded to float at the end.
float cubicAt(double a, double c1, double c2, double b, float t) noexcept {
    const float u = 1.0f - t;
    const float w = 1.0f - 2.0f * t;
    return toSingle(a * u * u * w + 4.0 * c1 * u * u * t + 4.0 * c2 * u * t * t - b * t * t * w);
}

}  // namespace

float splineValue(std::span<const CalibTone> tones, float x) noexcept {
    if (isOutside(tones, x)) return 0.0f;
    if (tones.size() == 2) return lineValue(tones[0].x, tones[0].y, tones[1].x, tones[1].y, x);
    const size_t k = findSegment(tones, x);
    const CalibTone& a = tones[k - 1];
    const CalibTone& b = tones[k];
    Point c1{}, c2{};
    if (!innerPoints(tones, k, c1, c2)) return b.y;

    CalibTone previous = a;
    for (int i = 0;; ++i) {
        const float t = static_cast<float>(i) * 0.00390625f;
        const CalibTone sample{cubicAt(a.x, c1.x, c2.x, b.x, t), cubicAt(a.y, c1.y, c2.y, b.y, t)};
        if (sample.x >= x || i == 256)
            return lineValue(previous.x, previous.y, sample.x, sample.y, x);
        previous = sample;
    }
}

float linearValue(std::span<const CalibTone> tones, float x) noexcept {
    if (isOutside(tones, x)) return 0.0f;
    const size_t k = findSegment(tones, x);
    return lineValue(tones[k - 1].x, tones[k - 1].y, tones[k].x, tones[k].y, x);
}

}  // namespace ko::calib
