// Gates: what a link must keep to be let through.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace ko::quality {

struct Findings;
class Subject;

enum class Pure : uint8_t { none, black, primaries, secondaries };  // each includes those before it

struct Gates {
    std::optional<double> de95 = {}, deMean = {};  // CIEDE2000 of the colours that the destination reaches
    std::optional<double> ink = {};    // percent of total ink
    std::optional<double> jump = {};   // percent of an ink between neighbouring nodes
    Pure pure = Pure::none;
    bool white = false;                // white without ink
    bool conformance = false;          // no error against the rules of its format
    bool needColours() const noexcept { return de95 || deMean; }
    bool none() const noexcept { return !de95 && !deMean && !ink && !jump && pure == Pure::none && !white && !conformance; }
};

struct GateResult {
    enum class Gate { de95, deMean, ink, jump, pure, white, conformance };
    Gate gate;
    double limit = 0, found = 0;  // of purity the most foreign ink in percent, of
                                  // conformance the errors, limit 0
    bool holds = false;
};

// One result for each gate that is set. A gate that the link has no measure for, such as purity
// of a link from RGB, does not hold.
std::vector<GateResult> judge(const Gates& gates, const Subject& subject, const Findings& findings);

}  // namespace ko::quality
