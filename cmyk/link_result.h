// What a link that was just made does to the colours that are looked at first.
#pragma once

#include <array>

#include "cmyk/cmyk.h"
#include "cmyk/link_ramps.h"

namespace ko::cmyk {

struct LinkResult {
    Inks white{};                  // what no ink becomes
    std::array<Inks, 4> solids{};  // what full C, M, Y and K become
    Inks full{};                   // what all four become
    // Of the grid's colours the one that asks for most ink, and that much; 1 is one full ink.
    Inks mostIn{};
    double mostInk = 0;
    std::array<RampResult, 8> ramps{};  // of kCmykRamps
    // The most of an ink that is not theirs.
    double foreignInPrimaries = 0, foreignInSecondaries = 0;
};

// The profile as a host converts through it, its curves included. The total ink is greatest at a
// node, since what lies between nodes is blended from them.
LinkResult resultOf(const CmykProfile& profile);

}  // namespace ko::cmyk
