#include "quality/gamut.h"

#include "precise/solve.h"

namespace ko::quality {
namespace {

constexpr double kMostChroma = 140;
constexpr double kCosine5 = 0.99619469809174555, kSine5 = 0.08715574274765817;
constexpr int kHalvings = 9;  // of the most chroma: 0.3 units
constexpr double kNear = 0.3;

}  // namespace

std::vector<Triple> gamutBorder(const precise::Evaluator& forward, double lightness) {
    std::vector<Triple> border;
    double x = 1, y = 0;
    for (int hue = 0; hue < kBorderPoints; ++hue) {
        double low = 0, high = kMostChroma;
        precise::Wish wish;
        wish.blackWeight = 0.01;
        if (forward.inputs() < 4) wish.high[3] = 0;
        wish.start = wish.reference = {0.5, 0.5, 0.5, 0};
        for (int round = 0; round < kHalvings; ++round) {
            const double chroma = (low + high) / 2;
            wish.lab = {lightness, chroma * x, chroma * y};
            const precise::Answer answer = precise::solve(forward, wish);
            if (answer.distance < kNear) {
                low = chroma;
                wish.start = answer.inks;  // the next one is near
            } else {
                high = chroma;
            }
        }
        border.push_back({lightness, low * x, low * y});
        const double next = x * kCosine5 - y * kSine5;
        y = x * kSine5 + y * kCosine5;
        x = next;
    }
    return border;
}

}  // namespace ko::quality
