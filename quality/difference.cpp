#include "quality/difference.h"

#include <algorithm>
#include <cmath>

namespace ko::quality {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180;

double seventhPower(double x) noexcept {
    const double cube = x * x * x;
    return cube * cube * x;
}

// e^-y for y from 0; the series of a 64th of it, raised again.
double decay(double y) noexcept {
    if (y > 40) return 0;
    const double x = -y / 64;
    double sum = 1, term = 1;
    for (int n = 1; n <= 12; ++n) {
        term *= x / n;
        sum += term;
    }
    for (int n = 0; n < 6; ++n) sum *= sum;
    return sum;
}

double sine(double x) noexcept {  // |x| up to 1.1
    double sum = x, term = x;
    for (int n = 2; n <= 20; n += 2) {
        term *= -x * x / (n * (n + 1));
        sum += term;
    }
    return sum;
}

// The angle of a direction, 0..2 pi. Halving it three times makes its tangent small.
double angle(double cosine, double sineOfIt) noexcept {
    const double length = std::sqrt(cosine * cosine + sineOfIt * sineOfIt);
    if (!(length > 0)) return 0;
    double x = cosine / length, y = std::abs(sineOfIt) / length;
    for (int n = 0; n < 3; ++n) {
        const double half = std::sqrt(std::max(0.0, (1 + x) / 2));
        // Where the cosine is near -1 its root loses digits that the sine still has.
        const double other = half > 0.1 ? y / (2 * half) : std::sqrt(std::max(0.0, (1 - x) / 2));
        x = half;
        y = other;
    }
    const double t = y / x;
    double sum = 0, power = t;
    for (int n = 1; n <= 31; n += 2) {
        sum += n % 4 == 1 ? power / n : -power / n;
        power *= t * t;
    }
    const double whole = 8 * sum;
    return sineOfIt < 0 ? 2 * kPi - whole : whole;
}

struct Direction {
    double cosine, sine;
    Direction times(const Direction& other) const noexcept {  // the sum of the angles
        return {cosine * other.cosine - sine * other.sine, sine * other.cosine + cosine * other.sine};
    }
};

// cos(angle + degrees) for the fixed turns of the formula.
constexpr Direction kMinus30 = {0.86602540378443864676, -0.5};
constexpr Direction kPlus6 = {0.99452189536827333692, 0.10452846326765347140};
constexpr Direction kMinus63 = {0.45399049973954679156, -0.89100652418836786236};

}  // namespace

double difference76(const Triple& a, const Triple& b) noexcept {
    const double l = a[0] - b[0], x = a[1] - b[1], y = a[2] - b[2];
    return std::sqrt(l * l + x * x + y * y);
}

double difference2000(const Triple& one, const Triple& two) noexcept {
    const double c1 = std::sqrt(one[1] * one[1] + one[2] * one[2]);
    const double c2 = std::sqrt(two[1] * two[1] + two[2] * two[2]);
    constexpr double kKnee = 6103515625.0;  // 25^7
    const double mean7 = seventhPower((c1 + c2) / 2);
    const double g = 0.5 * (1 - std::sqrt(mean7 / (mean7 + kKnee)));
    const double a1 = (1 + g) * one[1], a2 = (1 + g) * two[1];
    const double b1 = one[2], b2 = two[2];
    const double s1 = std::sqrt(a1 * a1 + b1 * b1), s2 = std::sqrt(a2 * a2 + b2 * b2);

    // 2 sqrt(s1 s2) sin(dh / 2): its square without an angle, its sign that of the turn.
    const double cross = a1 * b2 - a2 * b1;
    const double dot = a1 * a2 + b1 * b2;
    const double product = s1 * s2;
    // Of a small turn the difference of product and dot has few digits left; the turn itself has.
    const double square = dot > 0 ? 2 * cross * cross / (product + dot) : 2 * (product - dot);
    double dh = std::sqrt(std::max(0.0, square));
    if (cross < 0) dh = -dh;
    const double dl = two[0] - one[0], dc = s2 - s1;

    // The mean hue halves the shorter way between the two; a grey has none of its own.
    Direction hue = {1, 0};
    if (product > 0) {
        double x = a1 / s1 + a2 / s2, y = b1 / s1 + b2 / s2;
        double length = std::sqrt(x * x + y * y);
        if (length < 1e-12) {  // opposite: a right angle beyond the one with the lower hue
            const bool first = b1 > 0 || (b1 == 0 && a1 > 0);
            x = first ? -b1 : -b2;
            y = first ? a1 : a2;
            length = std::sqrt(x * x + y * y);
        }
        hue = {x / length, y / length};
    } else if (s1 + s2 > 0) {
        hue = {(a1 + a2) / (s1 + s2), (b1 + b2) / (s1 + s2)};
    }
    const Direction twice = hue.times(hue), thrice = twice.times(hue), fourfold = twice.times(twice);
    const double t = 1 - 0.17 * hue.times(kMinus30).cosine + 0.24 * twice.cosine +
                     0.32 * thrice.times(kPlus6).cosine - 0.20 * fourfold.times(kMinus63).cosine;
    const double meanL = (one[0] + two[0]) / 2 - 50;
    const double meanS = (s1 + s2) / 2;
    const double sl = 1 + 0.015 * meanL * meanL / std::sqrt(20 + meanL * meanL);
    const double sc = 1 + 0.045 * meanS;
    const double sh = 1 + 0.015 * meanS * t;
    const double away = (angle(hue.cosine, hue.sine) / kDegree - 275) / 25;
    const double turn = 30 * decay(away * away);
    const double s7 = seventhPower(meanS);
    const double rt = -sine(2 * turn * kDegree) * 2 * std::sqrt(s7 / (s7 + kKnee));
    const double l = dl / sl, c = dc / sc, h = dh / sh;
    return std::sqrt(std::max(0.0, l * l + c * c + h * h + rt * c * h));
}

}  // namespace ko::quality
