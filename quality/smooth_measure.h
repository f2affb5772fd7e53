// Smoothness: how ramps run, and what a table of few levels does to them.
#pragma once

#include "quality/spread.h"
#include "quality/subject.h"

namespace ko::quality {

constexpr int kRampSteps = 256;

struct SmoothReport {
    int ramps = 0;
    bool ofColours = false;  // L*a*b* of ramps; without profiles inks, in percent
    Spread bends;            // second differences along the ramps
    int reversals = 0;       // of L*, where the source's has none; with profiles
    double worstReversal = 0;
    // Read in 8 bits: steps of a ramp that change nothing, as a share of those that the source
    // changes, and the largest step, CIEDE2000. With profiles.
    double stillSteps = 0, largestStep = 0;
};
SmoothReport measureSmoothness(const Subject& subject);

// The ramps: directions from white (CMYK) or black.
std::span<const Colour> rampsOf(uint32_t space) noexcept;

}  // namespace ko::quality
