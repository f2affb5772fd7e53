// A link that is judged, as ICC readers evaluate it, with the profiles that it leads from and to.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "precise/forward.h"
#include "precise/link.h"
#include "precise/profile.h"

namespace ko::quality {

using precise::Colour;
using precise::Triple;

// Where the nodes of the grid disagree most with their neighbours, and which asks for most ink.
struct NodeFacts {
    size_t nodes = 0;
    double jump = 0;           // 0..1, of one output channel between neighbours
    int jumpChannel = 0;
    Colour jumpFrom{}, jumpTo{};  // inputs
    double mostInk = 0;        // of a node, 1 is one full ink
    Colour mostAt{};           // its input
};

// What the link's own file says.
struct LinkFacts {
    uint32_t version = 0, sourceSpace = 0, destinationSpace = 0;
    uint64_t bytes = 0;
    int inputs = 0, outputs = 0, bits = 0;  // bits 0: no grid
    std::array<int, precise::kMostChannels> points{};
    precise::Intent intent = precise::Intent::relative;
    precise::Nodes nodes = precise::Nodes::even;
    std::string description;
    std::string table;  // the type of its table, "mft1"
    std::vector<std::pair<std::string, std::string>> provenance;  // key and value, in the file's order
    std::string from(const std::string& key) const;  // of the provenance; empty when it lacks that
};

class Subject {
public:
    // Nothing, with the problem set, when the profile is no link that can be evaluated. nodes: how
    // its grid is read; without a word as the link was made.
    static std::optional<Subject> open(const precise::Profile& link,
                                       std::optional<precise::Nodes> nodes,
                                       precise::Problem& problem);
    // The profiles that colours are judged by. False, with the problem set and part as in
    // KoPreciseError, when they do not fit the link or lack their tables.
    bool judgeBy(const precise::Profile& source, const precise::Profile& destination,
                 precise::Intent intent, bool compensateBlack, precise::Problem& problem,
                 int32_t& part);

    const LinkFacts& facts() const noexcept { return facts_; }
    const NodeFacts& nodes() const noexcept { return nodeFacts_; }
    bool toInk() const noexcept { return facts_.destinationSpace == fourcc("CMYK"); }
    bool fromInk() const noexcept { return facts_.sourceSpace == fourcc("CMYK"); }
    bool seesColours() const noexcept { return source_.has_value(); }

    // Device values 0..1 in and out.
    Colour through(const Colour& in) const noexcept;
    // What the source's colour is, and what a mix looks like in print: L*a*b* relative to the
    // destination's white.
    Triple wanted(const Colour& in) const noexcept;
    Triple printed(const Colour& out) const noexcept;
    const precise::Evaluator& source() const noexcept { return *source_; }
    const precise::Evaluator& press() const noexcept { return *press_; }
    // The destination's own answer to a colour; without inverse tables a middle mix.
    Colour byTables(const Triple& lab) const noexcept;

private:
    explicit Subject(precise::Evaluator link) : link_(std::move(link)) {}
    LinkFacts facts_;
    NodeFacts nodeFacts_;
    precise::Evaluator link_;
    precise::Link reading_;  // without nodes, for their places
    std::optional<precise::Evaluator> source_, press_, tables_;
};

}  // namespace ko::quality
