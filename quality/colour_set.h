// The colours that links are judged by, and what kinds of colour they are.
#pragma once

#include <cstdint>
#include <vector>

#include "precise/lab.h"
#include "precise/pipeline.h"

namespace ko::quality {

using precise::Colour;

constexpr size_t kChartPatches = 1617;
constexpr size_t kRandomColours = 20000;
constexpr double kMostInk = 3;  // of a random colour; 1 is one full ink

// A chart in the manner of the characterisation charts of presses. CMYK: mixes of C, M and Y in
// nine to three steps at six levels of K, ramps of the inks, of two of them and of greys; RGB: 11
// steps a channel, ramps of six colours and of grey; grey: a ramp.
std::vector<Colour> chart(uint32_t space);

// Seeded, the same on every target. A quarter has no K, an eighth is pale; what passes 300 % has
// its colour reduced, not its black.
std::vector<Colour> randomColours(uint32_t space);

// Kinds that a colour belongs to, one bit each.
enum Kind : uint8_t {
    kPrimary = 1,    // one ink alone, or one light
    kSecondary = 2,  // two of C, M, Y alone, or two lights
    kGrey = 4,       // C* below 5
    kSkin = 8,       // L* 35 to 85, C* 10 to 45, hue 30 to 70 degrees
    kHighlight = 16, // L* from 85
    kShadow = 32,    // L* below 30
};
constexpr int kKinds = 6;
uint8_t kindsOf(uint32_t space, const Colour& in, const precise::Triple& lab) noexcept;

}  // namespace ko::quality
