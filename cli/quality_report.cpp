#include "cli/quality_report.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cli/text.h"

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

std::string faultsText(const Findings& findings) {
    const size_t errors = findings.errors();
    if (findings.faults.empty()) return "nothing is wrong with the file";
    return errors == 0 ? "the file has no error"
                       : "errors in the file: " + std::to_string(errors) + " (kolink check tells them)";
}

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

// ---- The summary ------------------------------------------------------------------------------

std::string percents(const Colour& colour, int channels) {  // "87, 20, 100, 3"
    std::string text;
    for (int ch = 0; ch < channels; ++ch)
        text += (ch ? ", " : "") + number(colour[static_cast<size_t>(ch)] * 100, 1);
    return text;
}
std::string de(double value) { return number(value, value < 1 ? 3 : 2); }
std::string percentText(double part) { return number(part * 100, 1) + " %"; }

std::string line(const char* label, const std::string& text) {
    std::string whole = label;
    whole.resize(std::max<size_t>(whole.size(), 12), ' ');
    return whole + text + '\n';
}

std::string fileLine(const LinkFacts& facts) {
    std::string text = spaceName(facts.sourceSpace) + " to " + spaceName(facts.destinationSpace);
    if (facts.bits > 0) {
        text += ", " + std::to_string(facts.points[0]);
        bool same = true;
        for (int axis = 1; axis < facts.inputs; ++axis)
            same = same && facts.points[static_cast<size_t>(axis)] == facts.points[0];
        for (int axis = 1; axis < facts.inputs && !same; ++axis)
            text += " x " + std::to_string(facts.points[static_cast<size_t>(axis)]);
        text += " points, " + std::to_string(facts.bits) + " bits";
    }
    return text + ", " + intentName(facts.intent) + ", ICC " + std::to_string(facts.version >> 24) + '.' +
           std::to_string(facts.version >> 20 & 15);
}

std::string purityLine(const PurityReport& report, bool toInk) {
    if (!toInk) return "no inks";
    std::string pure, impure;
    for (const PureRamp& ramp : report.ramps) {
        const std::string name = *ramp.inks ? ramp.inks : "white";
        std::string& list = ramp.pure() ? pure : impure;
        list += (list.empty() ? "" : ", ") + name;
        if (!ramp.pure()) list += " (" + number(std::max(ramp.foreign, ramp.foreignByLevels) * 100, 1) + " %)";
    }
    if (impure.empty()) return "pure: " + pure;
    return (pure.empty() ? "nothing is pure" : "pure: " + pure) + "; foreign ink in " + impure;
}

std::string blackLine(const BlackReport& report, bool seen) {
    if (!report.hasRamp) return "no ramp of black: not from CMYK to CMYK";
    const BlackPoint& full = report.ramp.back();
    std::string text = "100 K becomes " + percents(full.out, 4);
    if (seen)
        text += ", L* " + number(full.lightness, 1) + " (source " + number(full.wantedLightness, 1) +
                "), ramp ΔE00 mean " + de(report.difference.mean);
    return text + "; from pure to near black at most " + percentText(report.step);
}

std::string greyLine(const BlackReport& report, bool seen) {
    if (!seen) return "not known without profiles";
    if (report.greys.empty()) return "the source prints no greys of colour";
    std::string text = "a*, b* off by " + number(report.cast, 2) + " at most";
    if (report.blackStart >= 0) text += "; black from L* " + number(report.blackStart, 1) + " on";
    return text;
}

std::string inkLine(const InkReport& report, const Subject& subject) {
    if (!subject.toInk()) return "no inks";
    std::string text = "highest " + percentText(report.most) + " at " +
                       percents(report.mostAt, subject.facts().inputs) + "; mean " + percentText(report.mean);
    if (subject.fromInk()) {
        const double saving = report.saving();
        text += ", " + percentText(std::abs(saving)) + (saving < 0 ? " more" : " less") + " than the source";
    }
    return text;
}

std::string smoothLine(const SmoothReport& report) {
    std::string text = "second differences mean " + number(report.bends.mean, 3) + ", 95 % " +
                       number(report.bends.p95, 3) + (report.ofColours ? "" : " % of ink");
    if (report.ofColours)
        text += report.reversals == 0 ? "; L* never turns"
                                      : "; L* turns " + std::to_string(report.reversals) + " times, by " +
                                            number(report.worstReversal, 2) + " at most";
    return text;
}

std::string jumpLine(const Subject& subject) {
    const NodeFacts& nodes = subject.nodes();
    if (nodes.nodes == 0) return "no grid";
    return "at most " + percentText(nodes.jump) + " between neighbouring nodes, from " +
           percents(nodes.jumpFrom, subject.facts().inputs) + " to " + percents(nodes.jumpTo, subject.facts().inputs);
}

std::string missingText(const Origin& missing) {
    switch (missing.state) {
        case Origin::State::gone: return printable(missing.path) + " is not where it was";
        case Origin::State::changed: return printable(missing.path) + " is not the profile that the link was made from";
        default: return "the link does not name them";
    }
}

std::string judgedLine(const ReportedLink& link) {
    if (!link.judgedBy)
        return "no profiles, colours are not judged: " + missingText(link.missing) + " (--source, --destination)";
    const JudgedBy& by = *link.judgedBy;
    return printable(by.source) + " and " + printable(by.destination) + ", " + intentName(by.intent) +
           (by.compensateBlack ? " with black-point compensation" : "");
}

std::string spreadText(const Spread& of) {
    return "mean " + de(of.mean) + ", median " + de(of.median) + ", 95 % " + de(of.p95) + ", 99 % " + de(of.p99) +
           ", worst " + de(of.worst);
}

}  // namespace

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

std::string qualitySummary(const ReportedLink& link) {
    const Findings& findings = link.findings;
    const bool seen = findings.colour.has_value();
    std::string out = line("Link", printable(link.path) + ": " + fileLine(link.subject.facts()));
    out += line("Judged by", judgedLine(link));
    if (seen) {
        const ColourReport& colour = *findings.colour;
        const Spread &all = colour.group("all").difference, &near = colour.group("reachable").difference;
        const JudgedColour& worst = colour.colours[colour.worst.front()];
        out += line("Colour", "ΔE00 " + spreadText(all) + " over " + grouped(all.count) + " colours");
        out += line("Reachable", percentText(static_cast<double>(near.count) / static_cast<double>(all.count)) +
                                     " of them: " + spreadText(near));
        out += line("Best", "without any limit " + spreadText(colour.group("all").best));
        out += line("Worst", percents(worst.in, link.subject.facts().inputs) + " becomes " +
                                 percents(worst.out, link.subject.facts().outputs) + ": ΔE00 " +
                                 de(worst.difference) + " (best " + de(worst.best) + ")");
    } else {
        for (const char* label : {"Colour", "Reachable", "Best", "Worst"})
            out += line(label, "not known without profiles");
    }
    out += line("Purity", purityLine(findings.purity, link.subject.toInk()));
    out += line("Black", blackLine(findings.black, seen));
    out += line("Grey", greyLine(findings.black, seen));
    out += line("Ink", inkLine(findings.ink, link.subject));
    out += line("Smoothness", smoothLine(findings.smoothness));
    out += line("Jump", jumpLine(link.subject) + "; " + faultsText(findings));
    return out;
}

std::string gateLine(const GateResult& gate) {
    const std::string name = std::string("gate ") + gateName(gate.gate);
    switch (gate.gate) {
        case Gate::de95: return name + ": ΔE00 of reachable colours is " + de(gate.found) + " at 95 %, more than " + de(gate.limit);
        case Gate::deMean: return name + ": ΔE00 of reachable colours is " + de(gate.found) + " in the mean, more than " + de(gate.limit);
        case Gate::ink: return name + ": up to " + number(gate.found, 1) + " % of ink, more than " + number(gate.limit, 1) + " %";
        case Gate::jump: return name + ": an ink jumps by " + number(gate.found, 1) + " % between neighbouring nodes, more than " + number(gate.limit, 1) + " %";
        case Gate::pure: return name + ": up to " + number(gate.found, 2) + " % of foreign ink where there must be none";
        case Gate::white: return name + ": white has " + number(gate.found, 2) + " % of an ink";
        case Gate::conformance: return name + ": errors in the file: " + number(gate.found, 0) + " (kolink check tells them)";
    }
    return name;
}

}  // namespace ko::cli
