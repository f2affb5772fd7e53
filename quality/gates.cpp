#include "quality/gates.h"

#include <algorithm>

#include "quality/quality.h"

namespace ko::quality {
namespace {

constexpr double kAllInk = 100;  // of a link that has no such ramp

// The most foreign ink, in percent, of the ramps that must be pure.
double mostForeign(const PurityReport& purity, std::initializer_list<const char*> ramps) noexcept {
    double most = 0;
    for (const char* inks : ramps) {
        const PureRamp* const ramp = purity.ramp(inks);
        if (!ramp) return kAllInk;
        most = std::max({most, ramp->foreign * 100, ramp->foreignByLevels * 100});
    }
    return most;
}

double foreignFor(Pure level, const PurityReport& purity) noexcept {
    if (level == Pure::black) return mostForeign(purity, {"K"});
    if (level == Pure::primaries) return mostForeign(purity, {"K", "C", "M", "Y"});
    return mostForeign(purity, {"K", "C", "M", "Y", "CM", "CY", "MY"});
}

}  // namespace

std::vector<GateResult> judge(const Gates& gates, const Subject& subject, const Findings& findings) {
    using Gate = GateResult::Gate;
    std::vector<GateResult> results;
    const auto atMost = [&](Gate gate, const std::optional<double>& limit, double found, bool known) {
        if (limit) results.push_back({gate, *limit, found, known && found <= *limit});
    };
    const Spread reachable = findings.colour ? findings.colour->group("reachable").difference : Spread{};
    atMost(Gate::deMean, gates.deMean, reachable.mean, reachable.count > 0);
    atMost(Gate::de95, gates.de95, reachable.p95, reachable.count > 0);
    // Sums of floats pass a total of 300 % by their last digits.
    if (gates.ink)
        results.push_back({Gate::ink, *gates.ink, findings.ink.most * 100,
                           subject.toInk() && findings.ink.most * 100 <= *gates.ink + 0.001});
    atMost(Gate::jump, gates.jump, subject.nodes().jump * 100, subject.nodes().nodes > 0);
    if (gates.pure != Pure::none) {
        const double foreign = foreignFor(gates.pure, findings.purity);
        results.push_back({Gate::pure, 0, foreign, foreign == 0});
    }
    if (gates.white) {
        const double foreign = mostForeign(findings.purity, {""});
        results.push_back({Gate::white, 0, foreign, foreign == 0});
    }
    if (gates.conformance) {
        const auto errors = static_cast<double>(findings.errors());
        results.push_back({Gate::conformance, 0, errors, errors == 0});
    }
    return results;
}

size_t Findings::errors() const noexcept {
    size_t count = 0;
    for (const Fault& fault : faults) count += fault.level == Level::error;
    return count;
}

Findings measure(const Subject& subject, std::span<const uint8_t> bytes) {
    Findings findings;
    if (subject.seesColours()) findings.colour = measureColours(subject);
    findings.purity = measurePurity(subject, bytes);
    findings.black = measureBlack(subject);
    findings.ink = measureInk(subject);
    findings.smoothness = measureSmoothness(subject);
    findings.faults = checkIcc(bytes);
    return findings;
}

}  // namespace ko::quality
