// Colour: how far what a link prints is from the source, and how near the destination could come.
#pragma once

#include <array>
#include <vector>

#include "quality/colour_set.h"
#include "quality/spread.h"
#include "quality/subject.h"

namespace ko::quality {

// Colours that the destination can print this near are reachable.
constexpr double kReachable = 0.2;  // CIEDE2000
constexpr size_t kWorstColours = 10;

struct JudgedColour {
    Colour in{}, out{};
    Triple wanted{}, printed{};
    double difference = 0, difference76 = 0;  // CIEDE2000, CIE 1976
    double best = 0;                          // CIEDE2000 of the nearest mix without any limit
    uint8_t kinds = 0;
    bool reachable() const noexcept { return best <= kReachable; }
};

struct ColourGroup {
    const char* name;  // "all", "reachable" and so on, for programs
    Spread difference, difference76, best;
};

// What each choice costs: the nearest mixes, with one more bond at each step, and at the end the
// link itself. Of all colours, CIEDE2000.
struct PriceStep {
    const char* name;
    Spread difference;
};

struct ColourReport {
    std::vector<JudgedColour> colours;  // the chart, then the random ones
    std::vector<ColourGroup> groups;    // nine
    std::vector<PriceStep> prices;
    std::vector<size_t> worst;          // of colours, the worst first
    const ColourGroup& group(const char* name) const noexcept;
};

// The subject sees colours.
ColourReport measureColours(const Subject& subject);

}  // namespace ko::quality
