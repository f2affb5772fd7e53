#include "cli/quality_report.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cli/quality_summary.h"

namespace ko::cli {
namespace {

using namespace quality;
using Gate = GateResult::Gate;

constexpr const char* kIntents[] = {"perceptual", "relative", "saturation", "absolute"};

const char* intentName(precise::Intent intent) { return kIntents[static_cast<size_t>(intent)]; }

// Four decimals, and the same digits on every target: floor is exact.
Json rounded(double value) {
    const double scaled = std::floor(value * 10000 + 0.5) / 10000;
    return scaled == 0 ? 0.0 : scaled;  // never -0
}
Json percent(double part) { return rounded(part * 100); }

std::string spaceName(uint32_t space) {
    return space == fourcc("GRAY") ? "grey" : precise::signatureText(space);
}

Json inks(const Colour& colour, int channels) {
    Json list = Json::array();
    for (int ch = 0; ch < channels; ++ch) list.push_back(percent(colour[static_cast<size_t>(ch)]));
    return list;
}
Json lab(const Triple& colour) {
    Json list = Json::array();
    for (const double value : colour) list.push_back(rounded(value));
    return list;
}
Json spread(const Spread& of) {
    Json json;
    json["mean"] = rounded(of.mean);
    json["median"] = rounded(of.median);
    json["p90"] = rounded(of.p90);
    json["p95"] = rounded(of.p95);
    json["p99"] = rounded(of.p99);
    json["worst"] = rounded(of.worst);
    return json;
}

Json linkJson(const LinkFacts& facts) {
    Json json;
    json["description"] = facts.description;
    json["from"] = spaceName(facts.sourceSpace);
    json["to"] = spaceName(facts.destinationSpace);
    json["version"] = std::to_string(facts.version >> 24) + '.' + std::to_string(facts.version >> 20 & 15);
    json["intent"] = intentName(facts.intent);
    json["bytes"] = facts.bytes;
    json["table"] = facts.table;
    json["bits"] = facts.bits;
    json["gridPoints"] = Json::array();
    for (int axis = 0; axis < facts.inputs && facts.bits > 0; ++axis)
        json["gridPoints"].push_back(facts.points[static_cast<size_t>(axis)]);
    json["nodes"] = facts.nodes == precise::Nodes::library ? "library" : "even";
    json["provenance"] = Json::array();
    for (const auto& [key, value] : facts.provenance)
        json["provenance"].push_back({{"key", key}, {"value", value}});
    return json;
}

// What goes in and comes out of the link, and the two colours that are to be the same.
template <class Point>
void addColour(Json& one, const Point& point, const LinkFacts& facts) {
    one["in"] = inks(point.in, facts.inputs);
    one["out"] = inks(point.out, facts.outputs);
    one["wanted"] = lab(point.wanted);
    one["printed"] = lab(point.printed);
}

Json colourJson(const ColourReport& report, const LinkFacts& facts) {
    Json json;
    json["groups"] = Json::array();
    for (const ColourGroup& group : report.groups) {
        Json one;
        one["name"] = group.name;
        one["colours"] = group.difference.count;
        one["de00"] = spread(group.difference);
        one["de76"] = spread(group.difference76);
        one["best"] = spread(group.best);
        json["groups"].push_back(std::move(one));
    }
    json["prices"] = Json::array();
    for (const PriceStep& step : report.prices) {
        Json one;
        one["with"] = step.name;
        one.update(spread(step.difference));
        json["prices"].push_back(std::move(one));
    }
    json["worst"] = Json::array();
    for (const size_t at : report.worst) {
        const JudgedColour& colour = report.colours[at];
        Json one;
        one["de00"] = rounded(colour.difference);
        one["de76"] = rounded(colour.difference76);
        one["best"] = rounded(colour.best);
        addColour(one, colour, facts);
        json["worst"].push_back(std::move(one));
    }
    return json;
}

Json purityJson(const PurityReport& report) {
    Json list = Json::array();
    for (const PureRamp& ramp : report.ramps) {
        Json one;
        one["inks"] = *ramp.inks ? ramp.inks : "white";
        one["pure"] = ramp.pure();
        one["foreign"] = percent(ramp.foreign);
        one["impureLevels"] = ramp.impureLevels;
        one["asTheLibrary"] = ramp.readByLevels ? percent(ramp.foreignByLevels) : Json(nullptr);
        list.push_back(std::move(one));
    }
    return list;
}

Json blackJson(const BlackReport& report, const Subject& subject) {
    Json json;
    const bool seen = subject.seesColours();
    if (report.hasRamp) {
        json["ramp"] = Json::array();
        for (const BlackPoint& point : report.ramp) {
            Json one;
            one["level"] = percent(point.level);
            one["out"] = inks(point.out, 4);
            one["wantedL"] = seen ? rounded(point.wantedLightness) : Json(nullptr);
            one["printedL"] = seen ? rounded(point.lightness) : Json(nullptr);
            one["de00"] = seen ? rounded(point.difference) : Json(nullptr);
            json["ramp"].push_back(std::move(one));
        }
        json["de00"] = seen ? spread(report.difference) : Json(nullptr);
        json["stepFromPure"] = percent(report.step);
        json["stepAt"] = percent(report.stepAt);
    }
    return json;
}

Json greyJson(const BlackReport& report, const LinkFacts& facts) {
    Json json;
    json["cast"] = rounded(report.cast);
    json["blackStartL"] = report.blackStart < 0 ? Json(nullptr) : rounded(report.blackStart);
    json["axis"] = Json::array();
    for (const GreyPoint& grey : report.greys) {
        Json one;
        addColour(one, grey, facts);
        json["axis"].push_back(std::move(one));
    }
    return json;
}

Json inkJson(const InkReport& report, const Subject& subject) {
    Json json;
    json["highest"] = percent(report.most);
    json["highestAt"] = inks(report.mostAt, subject.facts().inputs);
    json["mean"] = percent(report.mean);
    json["means"] = inks(report.means, 4);
    json["peaks"] = inks(report.peaks, 4);
    json["sourceMean"] = subject.fromInk() ? percent(report.sourceMean) : Json(nullptr);
    json["sourceMeans"] = subject.fromInk() ? inks(report.sourceMeans, 4) : Json(nullptr);
    json["saving"] = subject.fromInk() ? percent(report.saving()) : Json(nullptr);
    return json;
}

Json smoothJson(const SmoothReport& report, const Subject& subject) {
    const LinkFacts& facts = subject.facts();
    Json json;
    json["ramps"] = report.ramps;
    json["of"] = report.ofColours ? "Lab" : "percent";
    json["bends"] = spread(report.bends);
    json["reversals"] = report.ofColours ? Json(report.reversals) : Json(nullptr);
    json["worstReversal"] = report.ofColours ? rounded(report.worstReversal) : Json(nullptr);
    json["stillSteps"] = report.ofColours ? percent(report.stillSteps) : Json(nullptr);
    json["largestStep"] = report.ofColours ? rounded(report.largestStep) : Json(nullptr);
    const NodeFacts& nodes = subject.nodes();
    if (nodes.nodes == 0) {
        json["jump"] = nullptr;
        return json;
    }
    Json jump;
    jump["percent"] = percent(nodes.jump);
    jump["channel"] = nodes.jumpChannel;
    jump["from"] = inks(nodes.jumpFrom, facts.inputs);
    jump["to"] = inks(nodes.jumpTo, facts.inputs);
    json["jump"] = std::move(jump);
    return json;
}

}  // namespace

const char* gateName(Gate gate) {
    switch (gate) {
        case Gate::de95: return "max-de95";
        case Gate::deMean: return "max-de-mean";
        case Gate::ink: return "max-ink";
        case Gate::jump: return "max-jump";
        case Gate::pure: return "require-pure";
        case Gate::white: return "require-white";
        case Gate::conformance: return "require-conformance";
    }
    return "";
}

const char* levelName(Level level) {
    constexpr const char* kLevels[] = {"error", "warning", "note"};
    return kLevels[static_cast<size_t>(level)];
}

Json faultJson(const Fault& fault) {
    return {{"level", levelName(fault.level)},
            {"rule", fault.rule},
            {"tag", fault.tag ? Json(precise::signatureText(fault.tag)) : Json(nullptr)},
            {"offset", fault.offset},
            {"line", fault.line ? Json(fault.line) : Json(nullptr)},
            {"text", fault.text},
            {"remedy", fault.remedy}};
}

Json qualityJson(const ReportedLink& link) {
    const LinkFacts& facts = link.subject.facts();
    Json json;
    json["report"] = "kolink-report-1";
    json["file"] = link.path;
    json["link"] = linkJson(facts);
    if (link.judgedBy) {
        const JudgedBy& by = *link.judgedBy;
        json["judgedBy"] = {{"source", by.source}, {"destination", by.destination},
                            {"from", by.found ? "provenance" : "arguments"},
                            {"intent", intentName(by.intent)}, {"blackPointCompensation", by.compensateBlack}};
    } else {
        json["judgedBy"] = nullptr;
    }
    json["notJudged"] = link.judgedBy ? Json(nullptr) : Json(missingText(link.missing));
    const bool ink = link.subject.toInk();
    json["colour"] = link.findings.colour ? colourJson(*link.findings.colour, facts) : Json(nullptr);
    json["purity"] = purityJson(link.findings.purity);
    json["black"] = link.findings.black.hasRamp ? blackJson(link.findings.black, link.subject) : Json(nullptr);
    json["grey"] = link.judgedBy ? greyJson(link.findings.black, facts) : Json(nullptr);
    json["ink"] = ink ? inkJson(link.findings.ink, link.subject) : Json(nullptr);
    json["smoothness"] = smoothJson(link.findings.smoothness, link.subject);
    json["conformance"] = {{"errors", link.findings.errors()}, {"faults", Json::array()}};
    for (const Fault& fault : link.findings.faults) json["conformance"]["faults"].push_back(faultJson(fault));
    json["gates"] = Json::array();
    for (const GateResult& gate : link.gates)
        json["gates"].push_back({{"gate", gateName(gate.gate)}, {"limit", rounded(gate.limit)},
                                 {"found", rounded(gate.found)}, {"holds", gate.holds}});
    return json;
}

}  // namespace ko::cli
