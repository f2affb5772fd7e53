#include "quality/smooth_measure.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "quality/difference.h"

namespace ko::quality {
namespace {

constexpr Colour kInkRamps[] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1},
                                {1, 1, 0, 0}, {1, 0, 1, 0}, {0, 1, 1, 0}, {.75, .68, .68, 0},
                                {.6, .5, .5, .4}, {.3, .9, .6, .1}};
constexpr Colour kLightRamps[] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 1, 1, 0},
                                  {1, 0, 1, 0}, {1, 1, 0, 0}, {1, 1, 1, 0}, {1, .8, .7, 0},
                                  {.4, .7, 1, 0}, {.7, .1, .4, 0}};
constexpr Colour kGreyRamps[] = {{1, 0, 0, 0}};

constexpr double kReversal = 0.02;  // units of L* that an eye cannot see
constexpr double kFar = 1000;

double bend(const Colour& a, const Colour& b, const Colour& c) noexcept {
    double square = 0;
    for (size_t ch = 0; ch < a.size(); ++ch) {
        const double off = c[ch] - 2 * b[ch] + a[ch];
        square += off * off;
    }
    const double length = std::sqrt(square);
    return length < kFar ? length : kFar;
}

Colour inPlace(const Triple& lab) noexcept { return {lab[0], lab[1], lab[2], 0}; }

}  // namespace

std::span<const Colour> rampsOf(uint32_t space) noexcept {
    if (space == fourcc("CMYK")) return kInkRamps;
    if (space == fourcc("GRAY")) return kGreyRamps;
    return kLightRamps;
}

SmoothReport measureSmoothness(const Subject& subject) {
    SmoothReport report;
    report.ofColours = subject.seesColours();
    std::vector<double> bends;
    int still = 0, moved = 0;
    for (const Colour& ramp : rampsOf(subject.facts().sourceSpace)) {
        ++report.ramps;
        std::array<Colour, kRampSteps> seen;
        // From light to dark, so that L* may fall only.
        const bool light = subject.fromInk();
        double lowest = 1000, own = 1000;
        Triple wantedBefore{}, printedBefore{};
        Colour levelsBefore{};
        for (int step = 0; step < kRampSteps; ++step) {
            Colour in = ramp;
            const double part = (light ? step : kRampSteps - 1 - step) / 255.0;
            for (double& value : in) value *= part;
            const Colour out = subject.through(in);
            auto& here = seen[static_cast<size_t>(step)];
            if (!report.ofColours) {
                here = out;
                for (double& value : here) value *= 100;
                continue;
            }
            const Triple wanted = subject.wanted(in), printed = subject.printed(out);
            here = inPlace(printed);
            // What the source itself rises is the source's.
            const double rise = printed[0] - lowest - std::max(0.0, wanted[0] - own);
            if (rise > kReversal) ++report.reversals;
            report.worstReversal = std::max(report.worstReversal, std::min(rise, kFar));
            lowest = std::min(lowest, printed[0]);
            own = std::min(own, wanted[0]);

            Colour levels = out;
            for (double& value : levels)
                value = static_cast<double>(static_cast<int>(value * 255 + 0.5)) / 255;
            const Triple byLevels = subject.printed(levels);
            if (step > 0 && difference2000(wanted, wantedBefore) > kReversal) {
                ++moved;
                still += levels == levelsBefore;
                report.largestStep = std::max(
                    report.largestStep, std::min(difference2000(byLevels, printedBefore), kFar));
            }
            wantedBefore = wanted;
            printedBefore = byLevels;
            levelsBefore = levels;
        }
        for (size_t at = 1; at + 1 < seen.size(); ++at)
            bends.push_back(bend(seen[at - 1], seen[at], seen[at + 1]));
    }
    report.stillSteps = moved > 0 ? static_cast<double>(still) / moved : 0;
    report.bends = spreadOf(bends);
    return report;
}

}  // namespace ko::quality
