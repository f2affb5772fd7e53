// The value between control points: a local cubic, or a straight line. Points out of order and
// numbers of any size give some result and never undefined behaviour.
#include "frame/arithmetic.h"
#include "tone/tone.h"

namespace ko::tone {
namespace {

constexpr int32_t kSteps = 256;  // of the parameter of a segment

// Rounds a float half up; what is negative goes toward zero. The sum is exact in double.
constexpr int32_t roundTone(float value) noexcept {
    return truncateToInt32(static_cast<double>(value) + 0.5);
}
static_assert(roundTone(113.5f) == 114 && roundTone(-0.75f) == 0 && roundTone(-1.5f) == -1);

// The straight line from a to b, in double, rounded to single precision once.
int32_t lineTone(const TonePoint& a, const TonePoint& b, int32_t x) noexcept {
    const double width = static_cast<double>(b.x) - a.x;
    double y = a.y;
    if (width != 0.0) y = (static_cast<double>(b.y) - a.y) * (static_cast<double>(x) - a.x) / width + y;
    return roundTone(static_cast<float>(y));
}

bool isOutside(std::span<const TonePoint> points, int32_t x) noexcept {
    return points.size() < 2 || x < points.front().x || x > points.back().x;
}

// The first point from `from` on that x does not pass; there is one, since x is not outside.
size_t findSegment(std::span<const TonePoint> points, int32_t x, size_t from) noexcept {
    while (x > points[from].x) ++from;
    return from;
}

// A quarter of what a chord's slope rises over width: 32-bit integers that wrap, each division
// truncates. Points that share an x give 0.
constexpr int32_t quarterRise(int32_t rise, int32_t run, int32_t width) noexcept {
    return safeDivide(wrapMultiply(rise, width), run) / 4;
}

// The inner points of segment k, from point k - 1 to point k, of three points or more. The slope
// at a point is the chord's between its neighbours; at the curve's two ends the free inner point
// is the midpoint. In integers, every division truncates.
void innerPoints(std::span<const TonePoint> points, size_t k, TonePoint (&inner)[2]) noexcept {
    const TonePoint& a = points[k - 1];
    const TonePoint& b = points[k];
    TonePoint& c1 = inner[0];
    TonePoint& c2 = inner[1];
    const int32_t width = wrapSubtract(b.x, a.x);
    const auto fromA = [&] {
        const TonePoint& before = points[k - 2];
        c1.x = wrapAdd(a.x, width / 4);
        c1.y = wrapAdd(a.y, quarterRise(wrapSubtract(b.y, before.y), wrapSubtract(b.x, before.x), width));
    };
    const auto fromB = [&] {
        const TonePoint& next = points[k + 1];
        c2.x = wrapAdd(b.x, wrapSubtract(a.x, b.x) / 4);
        c2.y = wrapAdd(b.y, quarterRise(wrapSubtract(a.y, next.y), wrapSubtract(next.x, a.x), width));
    };
    if (k == 1) {
        fromB();
        c1.x = wrapAdd(a.x, c2.x) / 2;
        c1.y = wrapAdd(a.y, c2.y) / 2;
    } else if (k == points.size() - 1) {
        fromA();
        c2.x = wrapAdd(b.x, c1.x) / 2;
        c2.y = wrapAdd(b.y, c1.y) / 2;
    } else {
        fromA();
        fromB();
    }
}

// The segment's cubic at step / 256. t, u and w are float (and exact), the sum is double, left to
// right, and rounded to float at the end; 4 c1 and 4 c2 are formed in integers.
float cubicAt(int32_t a, int32_t c1, int32_t c2, int32_t b, int32_t step) noexcept {
    const float t = static_cast<float>(step) * 0.00390625f;
    const float u = 1.0f - t;
    const float w = 1.0f - 2.0f * t;
    const double sum = static_cast<double>(a) * u * u * w +
                       static_cast<double>(wrapMultiply(4, c1)) * u * u * t +
                       static_cast<double>(wrapMultiply(4, c2)) * u * t * t -
                       static_cast<double>(b) * t * t * w;
    return static_cast<float>(sum);
}

// The first step from `step` on whose x reaches x; the last one when none does.
int32_t findStep(const TonePoint& a, const TonePoint (&inner)[2], const TonePoint& b, int32_t x,
                 int32_t step) noexcept {
    while (step < kSteps && static_cast<double>(cubicAt(a.x, inner[0].x, inner[1].x, b.x, step)) < x)
        ++step;
    return step;
}

int32_t toneAtStep(const TonePoint& a, const TonePoint (&inner)[2], const TonePoint& b,
                   int32_t step) noexcept {
    return roundTone(cubicAt(a.y, inner[0].y, inner[1].y, b.y, step));
}

}  // namespace

int32_t splineTone(std::span<const TonePoint> points, int32_t x) noexcept {
    if (isOutside(points, x)) return 0;
    if (points.size() == 2) return lineTone(points[0], points[1], x);
    const size_t k = findSegment(points, x, 1);
    TonePoint inner[2];
    innerPoints(points, k, inner);
    const int32_t step = findStep(points[k - 1], inner, points[k], x, 0);
    return toneAtStep(points[k - 1], inner, points[k], step);
}

// The first step that reaches a higher x never lies before the one that reaches a lower x, whatever
// the cubic does between, so that going on gives what a scan from the start would.
int32_t SplineSweep::at(int32_t x) noexcept {
    if (isOutside(points_, x)) return 0;
    if (points_.size() == 2) return lineTone(points_[0], points_[1], x);
    const size_t k = findSegment(points_, x, segment_ == 0 ? 1 : segment_);
    if (k != segment_) {
        segment_ = k;
        step_ = 0;
        innerPoints(points_, k, inner_);
    }
    step_ = findStep(points_[k - 1], inner_, points_[k], x, step_);
    return toneAtStep(points_[k - 1], inner_, points_[k], step_);
}

int32_t linearTone(std::span<const TonePoint> points, int32_t x) noexcept {
    if (isOutside(points, x)) return 0;
    const size_t k = findSegment(points, x, 1);
    return lineTone(points[k - 1], points[k], x);
}

}  // namespace ko::tone
