#include "quality/subject.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "cmyk/description.h"
#include "frame/bytes.h"
#include "precise/transform.h"

namespace ko::quality {
namespace {

using namespace precise;

constexpr uint32_t kProvenance = fourcc("kprv");
constexpr size_t kMostLines = 100;
constexpr int32_t kSourcePart = 1, kDestinationPart = 2;

bool isDevice(uint32_t space) noexcept {
    return space == fourcc("CMYK") || space == fourcc("RGB ") || space == fourcc("GRAY");
}

// Lines "key: value" of the text; its first line names the maker alone.
void readProvenance(const Profile& profile, LinkFacts& facts) {
    const auto element = profile.tag(kProvenance);
    if (element.size() < 8 || ByteReader(element).u32() != fourcc("text")) return;
    std::string_view text(reinterpret_cast<const char*>(element.data()) + 8, element.size() - 8);
    text = text.substr(0, text.find('\0'));
    for (size_t line = 0; !text.empty() && line < kMostLines; ++line) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view whole = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const size_t colon = whole.find(": ");
        if (colon == std::string_view::npos) continue;
        facts.provenance.emplace_back(whole.substr(0, colon), whole.substr(colon + 2));
    }
}

// The library's own links hold editing data and say nothing of their nodes.
bool wasMadeForLibrary(const Profile& link, const LinkFacts& facts) {
    if (!facts.provenance.empty()) return facts.from("nodes") == "library";
    const auto element = link.tag(fourcc("desc"));
    if (element.size() < 12) return false;
    const auto* const text = reinterpret_cast<const char*>(element.data());
    return cmyk::holdsEditingData({text + 12, element.size() - 12});
}

// How nodes for the library are read, as the link maker has it for links of 16 bits.
Link libraryReading() {
    Link link;
    link.nodes = Nodes::library;
    link.bits = 16;
    return link;
}

bool isStraight(const Stage& stage) noexcept {
    for (const Curve& curve : stage.curves) {
        if (curve.isIdentity()) continue;
        if (!curve.isSampled()) return false;
        const auto& entries = curve.entries();
        for (size_t at = 0; at < entries.size(); ++at) {
            const double off = entries[at] - static_cast<double>(at) / static_cast<double>(entries.size() - 1);
            if (off > 1e-9 || off < -1e-9) return false;
        }
    }
    return true;
}

// One look at every node and its next neighbours.
class NodeScan {
public:
    NodeScan(const Pipeline& pipeline, size_t grid, bool inks)
        : grid_(pipeline.stages[grid].grid), inks_(inks) {
        if (grid > 0 && pipeline.stages[grid - 1].step == Step::curves)
            before_ = &pipeline.stages[grid - 1];
        if (grid + 1 < pipeline.stages.size() && pipeline.stages[grid + 1].step == Step::curves &&
            !isStraight(pipeline.stages[grid + 1]))
            after_ = &pipeline.stages[grid + 1];
    }
    NodeFacts run(Nodes nodes) {
        facts_.nodes = grid_.nodeCount();
        std::vector<float> bent;
        const float* values = grid_.nodes.data();
        double scale = grid_.scale;  // in double: the whole range is 1 then, not a little more
        if (after_) {
            bent = bentNodes();
            values = bent.data();
            scale = 1;
        }
        size_t jumpAt = 0, jumpTo = 0, mostAt = 0;
        float jump = 0, most = -1;
        for (int axis = 0; axis < grid_.inputs; ++axis) {
            const auto points = static_cast<size_t>(grid_.points[static_cast<size_t>(axis)]);
            const size_t stride = grid_.strides[static_cast<size_t>(axis)];
            const size_t blocks = facts_.nodes * 4 / (stride * points);
            for (size_t block = 0; block < blocks; ++block) {
                const size_t start = block * stride * points, end = start + stride * (points - 1);
                // The largest of a run first: few runs hold a new one.
                float here = 0;
                for (size_t at = start; at < end; ++at)
                    here = std::max(here, std::abs(values[at + stride] - values[at]));
                if (!(here > jump)) continue;
                jump = here;
                for (size_t at = start; at < end; ++at)
                    if (std::abs(values[at + stride] - values[at]) == here) {
                        jumpAt = at;
                        jumpTo = at + stride;
                        break;
                    }
            }
        }
        if (inks_)
            for (size_t at = 0; at < facts_.nodes * 4; at += 4) {
                const float sum = values[at] + values[at + 1] + values[at + 2] + values[at + 3];
                if (sum > most) {
                    most = sum;
                    mostAt = at;
                }
            }
        facts_.jump = jump * scale;
        facts_.jumpChannel = static_cast<int>(jumpAt % 4);
        facts_.jumpFrom = inputOf(jumpAt / 4, nodes);
        facts_.jumpTo = inputOf(jumpTo / 4, nodes);
        facts_.mostInk = std::max(0.0, most * scale);
        facts_.mostAt = inputOf(mostAt / 4, nodes);
        return facts_;
    }

private:
    std::vector<float> bentNodes() const {
        std::vector<float> bent(grid_.nodes.size());
        for (size_t at = 0; at < bent.size(); ++at)
            if (at % 4 < after_->curves.size())
                bent[at] = static_cast<float>(after_->curves[at % 4].at(grid_.nodes[at] * grid_.scale));
        return bent;
    }
    Colour inputOf(size_t node, Nodes nodes) const noexcept {
        Colour in{};
        for (int axis = grid_.inputs - 1; axis >= 0; --axis) {
            const auto ch = static_cast<size_t>(axis);
            const auto points = static_cast<size_t>(grid_.points[ch]);
            const auto index = static_cast<double>(node % points);
            node /= points;
            double level = points > 1 ? index / static_cast<double>(points - 1) : 0;
            if (before_ && ch < before_->curves.size()) level = before_->curves[ch].inverse(level);
            if (nodes == Nodes::library) level = libraryReading().level(static_cast<int>(index));
            in[ch] = std::clamp(level, 0.0, 1.0);
        }
        return in;
    }

    const Grid& grid_;
    const Stage* before_ = nullptr;
    const Stage* after_ = nullptr;
    bool inks_;
    NodeFacts facts_;
};

}  // namespace

std::string LinkFacts::from(const std::string& key) const {
    for (const auto& [name, value] : provenance)
        if (name == key) return value;
    return {};
}

std::optional<Subject> Subject::open(const Profile& link, std::optional<Nodes> nodes,
                                     Problem& problem) {
    LinkFacts facts;
    const ProfileHeader& header = link.header();
    if (!link.isLink()) {
        problem.set(Trouble::unsupported, "is not a device link");
        return std::nullopt;
    }
    if (!isDevice(header.space) || !isDevice(header.connection)) {
        problem.set(Trouble::unsupported, "leads from " + signatureText(header.space) + " to " +
                                              signatureText(header.connection) +
                                              " where CMYK, RGB and grey are known");
        return std::nullopt;
    }
    facts.version = header.version;
    facts.sourceSpace = header.space;
    facts.destinationSpace = header.connection;
    facts.bytes = link.bytes().size();
    facts.inputs = link.channels();
    facts.outputs = channelsOf(header.connection);
    facts.intent = static_cast<Intent>(header.intent < 4 ? header.intent : 0);
    facts.description = link.description();
    readProvenance(link, facts);
    const auto element = link.tag(fourcc("A2B0"));
    facts.table = signatureText(ByteReader(element).u32());
    auto pipeline = link.toConnection(Intent::perceptual, problem);
    if (!pipeline) return std::nullopt;
    NodeFacts nodeFacts;
    for (size_t at = 0; at < pipeline->stages.size(); ++at) {
        const Stage& stage = pipeline->stages[at];
        if (stage.step != Step::grid) continue;
        facts.points = stage.grid.points;
        facts.bits = stage.grid.scale > 1.0 / 256 ? 8 : 16;
        // A table of 16 bits carries the way to its nodes in its curves.
        const bool mayBeLibrary = facts.bits == 8 && facts.points == std::array<int, 4>{33, 33, 33, 33};
        if (nodes) facts.nodes = *nodes;
        else if (mayBeLibrary && wasMadeForLibrary(link, facts)) facts.nodes = Nodes::library;
        nodeFacts = NodeScan(*pipeline, at, facts.destinationSpace == fourcc("CMYK")).run(facts.nodes);
        break;
    }
    Subject subject{Evaluator(std::move(*pipeline))};
    subject.reading_ = libraryReading();
    subject.facts_ = std::move(facts);
    subject.nodeFacts_ = nodeFacts;
    return subject;
}

bool Subject::judgeBy(const Profile& source, const Profile& destination, Intent intent,
                      bool compensateBlack, Problem& problem, int32_t& part) {
    const auto fits = [&](const Profile& profile, uint32_t space, const char* side) {
        if (profile.header().space == space && !profile.isLink()) return true;
        problem.set(Trouble::argument, "is a " + std::string(profile.isLink() ? "device link" : "profile for " +
                                           signatureText(profile.header().space)) +
                                           ", but the link leads " + side + " " + signatureText(space));
        return false;
    };
    part = kSourcePart;
    if (!fits(source, facts_.sourceSpace, "from")) return false;
    auto wanted = source.toConnection(intent, problem);
    if (!wanted) return false;
    bridgeBetween(source, destination, intent, compensateBlack)
        .addTo(*wanted, source.connectsInLab(), true);
    part = kDestinationPart;
    if (!fits(destination, facts_.destinationSpace, "to")) return false;
    auto press = makeToLab(destination, Intent::relative, problem);
    if (!press) return false;
    Problem none;  // inverse tables are a start only
    auto tables = makeFromLab(destination, Intent::relative, none);
    source_.emplace(std::move(*wanted));
    press_.emplace(std::move(*press));
    if (tables) tables_.emplace(std::move(*tables));
    part = 0;
    return true;
}

Colour Subject::through(const Colour& in) const noexcept {
    Colour level = in;
    if (facts_.nodes == Nodes::library)
        for (double& value : level) value = reading_.position(value);
    Colour out = link_.at(level);
    for (size_t ch = 0; ch < precise::kMostChannels; ++ch)
        out[ch] = ch < static_cast<size_t>(facts_.outputs) ? std::clamp(out[ch], 0.0, 1.0) : 0;
    return out;
}

Triple Subject::wanted(const Colour& in) const noexcept {
    const Colour lab = source_->at(in);
    return {lab[0], lab[1], lab[2]};
}

Triple Subject::printed(const Colour& out) const noexcept {
    const Colour lab = press_->at(out);
    return {lab[0], lab[1], lab[2]};
}

Colour Subject::byTables(const Triple& lab) const noexcept {
    if (!tables_) return {0.5, 0.5, 0.5, toInk() ? 0.2 : 0.0};
    Colour inks = tables_->at({lab[0], lab[1], lab[2], 0});
    for (double& ink : inks) ink = std::clamp(ink, 0.0, 1.0);
    return inks;
}

}  // namespace ko::quality
