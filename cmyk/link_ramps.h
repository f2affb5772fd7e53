// The eight ramps that a link is looked at by: each ink alone, two of C, M and Y, and their grey.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <vector>

namespace ko::cmyk {

using Inks = std::array<double, 4>;     // C, M, Y, K, 0..1 each
using Display = std::array<double, 3>;  // sRGB, 0..1 each

struct Ramp {
    const char* name;
    Inks inks;  // at full strength
};
inline constexpr Ramp kCmykRamps[8] = {
    {"C", {1, 0, 0, 0}},
    {"M", {0, 1, 0, 0}},
    {"Y", {0, 0, 1, 0}},
    {"K", {0, 0, 0, 1}},
    {"C + M", {1, 1, 0, 0}},
    {"C + Y", {1, 0, 1, 0}},
    {"M + Y", {0, 1, 1, 0}},
    {"Grey of C + M + Y", {1, 1, 1, 0}},
};
constexpr size_t kPrimaryRamps = 4, kPureRamps = 7;  // the first of them; the grey comes last
constexpr size_t kRampLevels = 256;                  // every 8-bit level
inline Inks levelOf(const Ramp& ramp, size_t level) {
    Inks colour = ramp.inks;
    for (double& ink : colour) ink *= static_cast<double>(level) / (kRampLevels - 1);
    return colour;
}

// The lines of the inks in charts.
inline constexpr const char* kInkLines[4] = {"#0a97d9", "#d81b7d", "#e0ac00", "#20242b"};

// What four inks look like on coated paper, near enough for a look: the sixteen overprints of a
// typical offset press, blended by the area that each covers.
Display inkColour(const Inks& inks);

// What becomes of a ramp, and how much of the inks that it has not.
struct RampResult {
    std::vector<Inks> out;               // every level
    std::vector<Display> before, after;  // every fourth level, and the last
    std::array<bool, 4> printed{};       // inks that go out anywhere
    std::array<bool, 4> foreign{};       // those of them that the ramp has not
    double most = 0;                     // of a foreign ink
    size_t pureFrom = 0;                 // the level from which on nothing foreign is printed
    bool isPure() const noexcept { return most == 0; }
};
RampResult resultOf(const Ramp& ramp, const std::function<Inks(const Inks&)>& convert);

}  // namespace ko::cmyk
