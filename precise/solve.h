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
    double blackWeight = 10;           // what moving black by 1 costs, in squared units
    double total = 4;                  // the most ink
    double farPull = 0;  // what moving an ink by 1 costs more, for each squared unit outside
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

// A colour's inks with the most black that leaves it as it is: black rises, the others follow on
// the slopes' word and are set right, until one of them has gone.
Colour mostBlack(const Evaluator& forward, const Triple& lab, const Colour& inks) noexcept;

// Three inks for colours that are most likely inside, each from a near start: plain Newton steps.
// The fourth ink stays as it is. Slopes are kept from colour to colour while they serve.
class InsideSolver {
public:
    explicit InsideSolver(const Evaluator& forward) noexcept : forward_(forward) {}
    // Nothing when a bound is met or it does not settle.
    std::optional<Colour> solve(const Triple& lab, const Colour& start) noexcept;
    // Inks of about the same look with another black, on the word of the slopes before.
    Colour withBlack(const Colour& inks, double black) const noexcept;

private:
    const Evaluator& forward_;
    std::array<Triple, 3> inverse_{};  // inks by L*a*b*
    Triple trade_{};                   // inks by black, for the same look
    int uses_ = 0;                     // that the slopes are still good for
};

}  // namespace ko::precise
