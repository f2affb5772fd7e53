// Inversion: the inks with which a press prints a colour.
#pragma once

#include <optional>

#include "precise/forward.h"
#include "precise/lab.h"

namespace ko::precise {

// What is looked for. Inks are 0..1; an ink whose low and high are equal stays there.
struct Wish {
    Triple lab{};
    Colour start{};                    // where to begin
    Colour reference{};                // preferred where colours are alike, very weakly
    Colour low{}, high = {1, 1, 1, 1};
    double black = 0;                  // preferred black, where low and high leave it free
    double blackWeight = 4;            // what moving black by 1 costs, in squared units
    double total = 4;                  // the most ink
};

struct Answer {
    Colour inks{};
    double distance = 0;  // to the colour, in weighted units near CIEDE2000's
    bool reached = false;  // within kReached, by the forward table's word
};

constexpr double kReached = 0.05;

// Gauss-Newton with the forward table's own derivatives. Bounds and the total are kept at every
// step; outside the gamut the answer is the projection on its border: the nearest colour by
// L*, C* and h differences weighted like CIE94's. Double; a fixed number of steps at most.
Answer solve(const Evaluator& forward, const Wish& wish) noexcept;

// Three inks for a colour that is most likely inside, from a near start: plain Newton steps. The
// fourth ink stays as it is. Nothing when a bound is met or it does not settle.
std::optional<Colour> solveInside(const Evaluator& forward, const Triple& lab,
                                  const Colour& start) noexcept;

}  // namespace ko::precise
