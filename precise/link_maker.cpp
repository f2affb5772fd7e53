// Makes the table of a link, node by node.
#include <algorithm>
#include <cmath>
#include <utility>

#include "precise/link.h"
#include "precise/solve.h"
#include "precise/trail.h"
#include "precise/transform.h"

namespace ko::precise {
namespace {

constexpr uint32_t kCmyk = fourcc("CMYK"), kRgb = fourcc("RGB "), kGray = fourcc("GRAY");

constexpr int32_t kNoPart = 0, kSourcePart = 1, kDestinationPart = 2, kBasePart = 3;

// Near pure black the colour that is looked for moves to what pure black alone gives, so that a
// tint of colour in it does not ring; from this share of colour on it is the source's own.
constexpr double kNearBlack = 0.06;
constexpr double kNearBlackGrowth = 0.015;  // for each unit that pure black is off
constexpr double kFarthestFromBlack = 0.25;
// Black's curve leaves the source's look here, for its top to be full black.
constexpr double kBlackTop = 0.94;
// Outside the gamut the projection gives way to the inverse table over these units.
constexpr double kBorder = 6;
// Ink is saved in full this many units of L* below the stated lightness.
constexpr double kSavingFade = 20;
// Units outside the gamut at which nothing is saved any more.
constexpr double kSavingReach = 1;
// How much faster than the source's an ink rises beside a mix that stays alone.
constexpr double kOnset = 4;
// What keeps inks near the source's where the press is far from a colour: the nearest mix leaps
// there between mixes that look alike.
constexpr double kFarPull = 1;
// Of black, from which on it counts as moved.
constexpr double kMoved = 0.004;

double smooth(double x) noexcept {  // 0..1 with level ends
    const double t = std::clamp(x, 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

Triple three(const Colour& colour) noexcept { return {colour[0], colour[1], colour[2]}; }

double sumOf(const Colour& inks) noexcept { return inks[0] + inks[1] + inks[2] + inks[3]; }

// K of the destination for K of the source, between samples linearly.
class BlackCurve {
public:
    static constexpr int kLast = 255;
    std::array<double, kLast + 1> values{};
    double at(double k) const noexcept {
        const double position = std::clamp(k, 0.0, 1.0) * kLast;
        const int index = std::min(static_cast<int>(position), kLast - 1);
        const auto low = static_cast<size_t>(index);
        return values[low] + (position - index) * (values[low + 1] - values[low]);
    }
};

// K that prints a lightness alone; full black where even that is lighter.
double blackForLightness(const Evaluator& forward, double lightness) noexcept {
    double low = 0, high = 1;
    if (forward.at({0, 0, 0, 1})[0] >= lightness) return 1;
    for (int round = 0; round < 40; ++round) {
        const double middle = (low + high) / 2;
        (forward.at({0, 0, 0, middle})[0] > lightness ? low : high) = middle;
    }
    return (low + high) / 2;
}

class LinkMaker {
public:
    LinkMaker(const Profile& source, const Profile& destination, const Profile* base,
              const LinkOptions& options)
        : source_(source), destination_(destination), baseProfile_(base), o_(options),
          fromCmyk_(source.header().space == kCmyk), toCmyk_(destination.header().space == kCmyk) {}

    std::unique_ptr<Link> make(Problem& problem, int32_t& part) {
        part = kNoPart;
        if (!check(problem) || !prepare(problem, part)) return nullptr;
        link_->table.resize(nodeCount() * static_cast<size_t>(link_->outputs * link_->bits / 8));
        for (const Profile* profile : {&source_, &destination_}) {
            const ProfileHeader& header = profile->header();
            link_->origins.push_back({header.manufacturer, header.model, header.attributes,
                                      profile->description(), profileId(profile->bytes())});
        }
        prepareLevels();
        makeNodes();
        link_->report.nodes = nodeCount();
        if (toCmyk()) compareInk();
        link_->report.savedInk /= static_cast<double>(nodeCount());
        return std::move(link_);
    }

private:
    bool toCmyk() const noexcept { return toCmyk_; }
    bool fromCmyk() const noexcept { return fromCmyk_; }
    size_t nodeCount() const noexcept {
        size_t count = 1;
        for (int axis = 0; axis < link_->inputs; ++axis)
            count *= static_cast<size_t>(link_->gridPoints);
        return count;
    }

    bool check(Problem& problem) {
        const auto refuse = [&](const char* sentence) {
            problem.set(Trouble::argument, sentence);
            return false;
        };
        const int most = fromCmyk() ? 33 : 65;
        const int points = o_.gridPoints == 0 ? 33 : o_.gridPoints;
        if (points < 9 || points > most)
            return refuse(fromCmyk() ? "a grid from CMYK has 9 to 33 points an axis"
                                     : "a grid has 9 to 65 points an axis");
        if (o_.bits != 8 && o_.bits != 16) return refuse("a link has 8 or 16 bits");
        if (o_.nodes == Nodes::library && points != 33)
            return refuse("nodes for the library stand on a grid of 33 points");
        if (!(o_.clip >= 0 && o_.clip <= 10)) return refuse("the clip is not 0 to 10 percent");
        if (!(o_.saveInk >= 0 && o_.saveInk <= 100))
            return refuse("the ink saving is not 0 to 100 percent");
        if (o_.inkLimit != kLimitOfProfile && o_.inkLimit != kNoLimit) {
            if (!(o_.inkLimit <= 400)) return refuse("the ink limit is not at most 400 percent");
            if (!(o_.inkLimit >= 100)) return refuse("the ink limit is below what black needs, 100 percent");
        }
        if (!toCmyk() && (o_.saveInk > 0 || o_.preserve != Preserve::none || o_.inkLimit > 0))
            return refuse("inks are preserved, saved and limited in links to CMYK only");
        link_ = std::make_unique<Link>();
        link_->gridPoints = points;
        return true;
    }

    bool prepare(Problem& problem, int32_t& part) {
        Link& link = *link_;
        link.options = o_;
        link.bits = o_.bits;
        link.nodes = o_.nodes;
        link.intent = o_.intent;
        link.inputs = source_.channels();
        link.outputs = destination_.channels();
        link.sourceSpace = source_.header().space;
        link.destinationSpace = destination_.header().space;

        const auto refuse = [&](int32_t where, Trouble trouble, std::string sentence) {
            part = where;
            problem.set(trouble, std::move(sentence));
            return false;
        };
        const uint32_t from = link.sourceSpace, to = link.destinationSpace;
        if (source_.isLink()) return refuse(kSourcePart, Trouble::unsupported, "is a device link");
        if (destination_.isLink())
            return refuse(kDestinationPart, Trouble::unsupported, "is a device link");
        for (const int32_t where : {kSourcePart, kDestinationPart})
            if ((where == kSourcePart ? source_ : destination_).header().deviceClass == fourcc("nmcl"))
                return refuse(where, Trouble::unsupported, "is a list of named colours");
        if (from != kCmyk && from != kRgb && from != kGray)
            return refuse(kSourcePart, Trouble::unsupported,
                          "is a profile for " + signatureText(from) +
                              " where CMYK, RGB or grey is needed");
        if (to != kCmyk && to != kRgb)
            return refuse(kDestinationPart, Trouble::unsupported,
                          "is a profile for " + signatureText(to) + " where CMYK or RGB is needed");
        if (baseProfile_) {
            const ProfileHeader& base = baseProfile_->header();
            if (from != kCmyk || !baseProfile_->isLink() || base.space != kCmyk ||
                base.connection != kCmyk)
                return refuse(kBasePart, Trouble::unsupported,
                              "is not a device link from CMYK to CMYK, before a CMYK source");
            auto pipeline = baseProfile_->toConnection(Intent::perceptual, problem);
            part = kBasePart;
            if (!pipeline) return false;
            base_.emplace(std::move(*pipeline));
        }

        part = kSourcePart;
        auto seen = source_.toConnection(o_.intent, problem);
        if (!seen) return false;
        const Bridge bridge = bridgeBetween(source_, destination_, o_.intent, o_.compensateBlack);
        bridge.addTo(*seen, source_.connectsInLab(), true);
        wanted_.emplace(std::move(*seen));

        part = kDestinationPart;
        // Absolute colours are looked for relative to the destination's white, which the bridge
        // has seen to.
        auto back = destination_.fromConnection(o_.intent, problem);
        if (!back) return false;
        Pipeline inverse;
        Bridge().addTo(inverse, true, destination_.connectsInLab());
        inverse.inputs = 3;
        inverse.outputs = back->outputs;
        for (Stage& stage : back->stages) inverse.add(std::move(stage));
        inverse_.emplace(std::move(inverse));

        const bool colorimetric = o_.intent == Intent::relative || o_.intent == Intent::absolute;
        const bool tablesBothWays = destination_.hasTable(Intent::perceptual, true) ||
                                    destination_.hasTable(Intent::relative, true);
        if (toCmyk() && tablesBothWays) {
            auto forward = makeToLab(destination_, Intent::relative, problem);
            if (!forward) return false;
            forward_.emplace(std::move(*forward));
        }
        inverted_ = o_.method == Method::inverted && colorimetric && forward_;
        if (inverted_) plain_.emplace(*forward_);
        link.report.inverted = inverted_;
        part = kNoPart;

        black_ = o_.black;
        if (black_ == Black::automatic)
            black_ = fromCmyk() && toCmyk() && forward_ ? Black::plane : Black::none;
        if (!toCmyk() || !forward_) {
            if (black_ == Black::plane || black_ == Black::match)
                return refuse(kDestinationPart, Trouble::tables,
                              toCmyk() ? "lacks the table A2B1, without which its black is unknown"
                                       : "has no black ink");
        }
        if (!fromCmyk() && (black_ == Black::plane || black_ == Black::match ||
                            black_ == Black::curve))
            return refuse(kSourcePart, Trouble::argument, "has no black ink whose levels could be kept");
        // Where tables alone are asked for, black's plane cannot be solved for.
        if (black_ == Black::plane && !inverted_) black_ = Black::match;
        link.report.black = black_;

        limit_ = 4;
        if (toCmyk()) {
            if (o_.inkLimit == kLimitOfProfile) limit_ = totalOfTables(destination_, o_.intent);
            else if (o_.inkLimit > 0) limit_ = o_.inkLimit / 100;
        }
        // From a profile to itself colours stay as they are, unless a choice of inks is asked for.
        same_ = o_.method == Method::inverted && colorimetric && !base_ && o_.saveInk == 0 &&
                o_.inkLimit < 0 && (!toCmyk() || black_ == Black::plane) &&
                std::ranges::equal(source_.bytes(), destination_.bytes());
        if (same_) limit_ = 4;
        limit_ = std::max(limit_, 1.0);
        link.report.inkLimit = limit_;
        mostLevels_ = static_cast<int>(limit_ * (link.bits == 8 ? 255 : 65535) + 1e-9);
        if (toCmyk()) clipBelow_ = o_.clip / 100;
        if (fromCmyk() && toCmyk()) prepareBlack();
        return true;
    }

    void prepareBlack() {
        for (size_t at = 0; at < curve_.values.size(); ++at) {
            const double k = static_cast<double>(at) / BlackCurve::kLast;
            blackLab_[at] = three(wanted_->at({0, 0, 0, k}));
            double value = k;
            if (black_ == Black::curve) value = o_.blackCurve[at] / 255.0;
            if (black_ == Black::plane || black_ == Black::match)
                value = at == 0 ? 0 : blackForLightness(*forward_, blackLab_[at][0]);
            curve_.values[at] = value;
        }
        if (black_ != Black::plane && black_ != Black::match) return;
        // Full black stays full: the top of the curve bends there.
        const double top = curve_.values.back();
        for (size_t at = 0; at < curve_.values.size(); ++at) {
            const double k = static_cast<double>(at) / BlackCurve::kLast;
            if (k > kBlackTop) curve_.values[at] += (1 - top) * smooth((k - kBlackTop) / (1 - kBlackTop));
            if (at > 0) curve_.values[at] = std::clamp(curve_.values[at], curve_.values[at - 1], 1.0);
        }
        for (size_t at = 0; at < curve_.values.size(); ++at)
            blackShift_[at] = labDifference(three(forward_->at({0, 0, 0, curve_.values[at]})),
                                            blackLab_[at]);
    }
    static Triple labDifference(const Triple& a, const Triple& b) noexcept {
        return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
    }
    Triple blackShift(double k) const noexcept {
        const double position = std::clamp(k, 0.0, 1.0) * BlackCurve::kLast;
        const int index = std::min(static_cast<int>(position), BlackCurve::kLast - 1);
        const double rest = position - index;
        const Triple &a = blackShift_[static_cast<size_t>(index)],
                     &b = blackShift_[static_cast<size_t>(index) + 1];
        return {a[0] + rest * (b[0] - a[0]), a[1] + rest * (b[1] - a[1]),
                a[2] + rest * (b[2] - a[2])};
    }

    void makeNodes() {
        const int n = link_->gridPoints;
        std::array<int, kMostChannels> node{};
        const int inputs = link_->inputs;
        if (inputs < 4) {
            const size_t count = nodeCount();
            for (size_t at = 0; at < count; ++at) {
                size_t rest = at;
                for (int axis = inputs - 1; axis >= 0; --axis) {
                    node[static_cast<size_t>(axis)] = static_cast<int>(rest % static_cast<size_t>(n));
                    rest /= static_cast<size_t>(n);
                }
                store(at, makeNode(node));
            }
            return;
        }
        // Along Y, so that a node's neighbours before it say where its inks will be.
        trail_.emplace(n);
        for (node[0] = 0; node[0] < n; ++node[0]) {
            if (keepsPlaces_) wanted_->slabAt(places_[0][static_cast<size_t>(node[0])], slab_);
            for (node[1] = 0; node[1] < n; ++node[1])
                for (node[3] = 0; node[3] < n; ++node[3])
                    for (node[2] = 0; node[2] < n; ++node[2]) {
                        const auto at = static_cast<size_t>(
                            ((node[0] * n + node[1]) * n + node[2]) * n + node[3]);
                        trail_->goTo(node);
                        inside_ = false;
                        solved_.reset();
                        const Colour inks = makeNode(node);
                        trail_->follow(solved_ ? *solved_ : inks, inside_);
                        store(at, inks);
                    }
        }
        trail_.reset();
    }

    // What the link takes and what the tables would take, over about nine nodes of each axis.
    void compareInk() noexcept {
        const auto inputs = static_cast<size_t>(link_->inputs);
        const auto width = static_cast<size_t>(link_->bits / 8);
        std::array<int, kMostChannels> node{};
        const int step = std::max((link_->gridPoints - 1) / 8, 1);
        double here = 0, there = 0;
        uint64_t counted = 0;
        for (size_t turned = 0; turned < inputs;) {
            Colour in{};
            size_t at = 0;
            for (size_t axis = 0; axis < inputs; ++axis) {
                in[axis] = levels_[static_cast<size_t>(node[axis])];
                at = at * levels_.size() + static_cast<size_t>(node[axis]);
            }
            ++counted;
            const uint8_t* inks = &link_->table[at * 4 * width];
            for (size_t ch = 0; ch < 4; ++ch)
                here += width == 1 ? inks[ch] / 255.0
                                   : (inks[2 * ch] << 8 | inks[2 * ch + 1]) / 65535.0;
            for (const double ink : inverse_->at(wanted_->at(in)))
                there += std::clamp(ink, 0.0, 1.0);
            // The last axis turns fastest.
            for (turned = 0; turned < inputs; ++turned) {
                int& index = node[inputs - 1 - turned];
                index += step;
                if (index < link_->gridPoints) break;
                index = 0;
            }
        }
        link_->report.meanInk = here / static_cast<double>(counted);
        link_->report.tablesInk = there / static_cast<double>(counted);
    }

    // Whether the inks of a mix, bit 0 cyan to bit 3 black, are to stay alone.
    bool staysAlone(unsigned mix) const noexcept {
        const unsigned colours = (mix & 1) + (mix >> 1 & 1) + (mix >> 2 & 1);
        if (colours == 0 || colours == 3) return false;
        return colours + (mix & 8 ? 2 : 0) <= static_cast<unsigned>(o_.preserve);
    }

    // The bounds that inks which stay alone put on the others; true when they are alone here.
    // Beside such a mix the others rise with the source's, so that none sets in at once.
    bool keptAlone(const Colour& inks, Colour& high) const noexcept {
        if (o_.preserve == Preserve::none) return false;
        unsigned all = 0;
        for (size_t i = 0; i < 4; ++i) all |= (inks[i] > 0) << i;
        for (unsigned mix = all; mix > 0; mix = (mix - 1) & all) {
            if (!staysAlone(mix)) continue;
            double away = 0;
            for (size_t i = 0; i < 4; ++i)
                if (!(mix >> i & 1)) away = std::max(away, inks[i]);
            for (size_t i = 0; i < 4; ++i)
                if (!(mix >> i & 1)) high[i] = std::min(high[i], kOnset * away);
        }
        return staysAlone(all);
    }

    // Levels of the nodes, and where they stand in the source's table when that is quick.
    void prepareLevels() {
        for (int i = 0; i < link_->gridPoints; ++i) {
            levels_.push_back(link_->level(i));
            blacks_.push_back(curve_.at(levels_.back()));
            for (size_t axis = 0; axis < kMostChannels && wanted_->hasPlaces(); ++axis)
                places_[axis].push_back(wanted_->placeOf(axis, levels_.back()));
        }
        keepsPlaces_ = wanted_->hasPlaces() && !base_ && o_.white != White::paper;
    }
    Triple wantedAt(const std::array<int, kMostChannels>& node, const Colour& in) const noexcept {
        if (!keepsPlaces_) return three(wanted_->at(in));
        std::array<Evaluator::Place, kMostChannels> places;
        for (size_t axis = 0; axis < kMostChannels; ++axis)
            places[axis] = places_[axis][static_cast<size_t>(node[axis])];
        return three(wanted_->inSlab(slab_, places));
    }

    // Black's curve at a node, whose level a base or the paper's tint may have changed.
    double blackAt(const std::array<int, kMostChannels>& node, const Colour& in) const noexcept {
        const auto level = static_cast<size_t>(node[3]);
        return in[3] == levels_[level] ? blacks_[level] : curve_.at(in[3]);
    }

    Colour makeNode(const std::array<int, kMostChannels>& node) noexcept {
        Colour in{};
        for (size_t axis = 0; axis < static_cast<size_t>(link_->inputs); ++axis)
            in[axis] = levels_[static_cast<size_t>(node[axis])];
        if (keepsPlaces_ && black_ == Black::plane && o_.preserve == Preserve::none && !same_ &&
            !(in[0] == 0 && in[1] == 0 && in[2] == 0)) {
            // The way of most nodes, without what is for other cases.
            return onPlane(wantedAt(node, in), in, blacks_[static_cast<size_t>(node[3])],
                           {1, 1, 1, 1}, false);
        }
        const Colour original = in;
        if (fromCmyk() && o_.white == White::paper) addTint(in);
        const bool noColour = in[0] == 0 && in[1] == 0 && in[2] == 0;
        if (toCmyk() && o_.white == White::clean && isWhite(in)) {
            ++link_->report.reached;
            return {};
        }
        if (same_) {
            ++link_->report.reached;
            return in;
        }
        if (fromCmyk() && toCmyk() && noColour && black_ != Black::none) {
            ++link_->report.reached;
            inside_ = true;
            return {0, 0, 0, blackAt(node, in)};
        }
        if (base_) {
            in = base_->at(in);
            for (double& ink : in) ink = std::clamp(ink, 0.0, 1.0);
        }
        const Triple lab = wantedAt(node, in);
        if (!toCmyk()) {
            Colour out = inverse_->at({lab[0], lab[1], lab[2], 0});
            for (double& value : out) value = std::clamp(value, 0.0, 1.0);
            return out;
        }
        if (!fromCmyk() && black_ == Black::keep && isNeutral(in) && forward_)
            return {0, 0, 0, blackForLightness(*forward_, lab[0])};

        Colour inks = original;
        if (!fromCmyk()) inks = complement(original);
        Colour high = {1, 1, 1, 1};
        const bool alone = keptAlone(inks, high);
        Colour out = black_ == Black::plane ? onPlane(lab, in, blackAt(node, in), high, alone)
                                            : byTables(lab, high, alone);
        for (size_t i = 0; i < 4; ++i) out[i] = std::clamp(out[i], 0.0, high[i]);
        return out;
    }

    void addTint(Colour& in) const noexcept {
        const double coverage = sumOf(in);
        if (!(coverage < o_.paperFade)) return;
        for (size_t i = 0; i < 4; ++i)
            in[i] = std::clamp(in[i] + o_.paper[i] * (o_.paperFade - coverage) / o_.paperFade, 0.0, 1.0);
    }
    bool isWhite(const Colour& in) const noexcept {
        const double white = fromCmyk() ? 0 : 1;
        for (int axis = 0; axis < link_->inputs; ++axis)
            if (in[static_cast<size_t>(axis)] != white) return false;
        return true;
    }
    bool isNeutral(const Colour& in) const noexcept {
        return link_->inputs == 1 || (in[0] == in[1] && in[1] == in[2]);
    }
    static Colour complement(const Colour& in) noexcept {
        return {1 - in[0], 1 - in[1], 1 - in[2], 0};
    }

    // K from the source through the curve of pure black.
    Colour onPlane(Triple lab, const Colour& in, double black, const Colour& high,
                   bool alone) noexcept {
        const double colour = std::max({in[0], in[1], in[2]});
        if (colour < kFarthestFromBlack) {
            const Triple shift = blackShift(in[3]);
            const double size = std::sqrt(shift[0] * shift[0] + shift[1] * shift[1] +
                                          shift[2] * shift[2]);
            const double reach = std::min(kNearBlack + kNearBlackGrowth * size, kFarthestFromBlack);
            const double share = 1 - smooth(colour / reach);
            for (size_t i = 0; i < 3; ++i) lab[i] += share * shift[i];
        }
        Trail::Guess guess;
        const bool guessed = trail_->guess(guess);
        if (!guessed) guess.inks = in;
        if (!alone && (guess.inside || !guessed)) {
            Colour start = guess.inks;
            start[3] = black;
            if (const auto found = plainly(lab, start, high)) {
                inside_ = true;
                return *found;
            }
        }
        Wish wish;
        wish.lab = lab;
        wish.start = guess.inks;
        if (!guessed) wish.start[3] = black;
        wish.reference = in;
        wish.high = high;
        wish.black = std::min(black, high[3]);
        wish.total = limit_;
        wish.farPull = kFarPull;
        const Answer answer = solve(*forward_, wish);
        const double move = std::abs(answer.inks[3] - black);
        if (move > kMoved) ++link_->report.movedBlack;
        if (alone) return settled(answer);
        inside_ = move < kMoved && answer.reached && isWithin(answer.inks);
        return saving(lab, settled(answer), answer.distance);
    }

    // By plain steps, when that meets the colour within every bound.
    std::optional<Colour> plainly(const Triple& lab, const Colour& start,
                                  const Colour& high) noexcept {
        auto inside = plain_->solve(lab, start);
        if (!inside || sumOf(*inside) > limit_) return std::nullopt;
        for (size_t i = 0; i < 4; ++i)
            if ((*inside)[i] > high[i]) return std::nullopt;
        ++link_->report.reached;
        solved_ = *inside;
        return saving(lab, *inside, 0);
    }
    Colour settled(const Answer& answer) noexcept {
        if (answer.distance < 1) ++link_->report.reached;
        if (sumOf(answer.inks) > limit_ - 1e-6) ++link_->report.limited;
        solved_ = answer.inks;
        return answer.inks;
    }

    // No bound is met.
    bool isWithin(const Colour& inks) const noexcept {
        for (size_t i = 0; i < 3; ++i)
            if (!(inks[i] > 0 && inks[i] < 1)) return false;
        return sumOf(inks) < limit_;
    }

    // K from the destination's inverse table.
    Colour byTables(const Triple& lab, const Colour& high, bool alone) noexcept {
        Colour table = inverse_->at({lab[0], lab[1], lab[2], 0});
        for (double& ink : table) ink = std::clamp(ink, 0.0, 1.0);
        if (!inverted_) {
            ++link_->report.reached;
            return table;
        }
        Colour start = table;
        Trail::Guess guess;
        const bool guessed = trail_ && trail_->guess(guess);
        if (guessed) start = guess.inside ? plain_->withBlack(guess.inks, table[3]) : guess.inks;
        if (!alone && (guess.inside || !guessed)) {
            if (const auto found = plainly(lab, start, high)) {
                inside_ = true;
                return *found;
            }
        }
        Wish wish;
        wish.lab = lab;
        wish.start = start;
        wish.reference = table;
        wish.high = high;
        wish.black = std::min(table[3], high[3]);
        wish.blackWeight = 400;
        wish.total = limit_;
        const Answer answer = solve(*forward_, wish);
        if (alone) return settled(answer);
        inside_ = std::abs(answer.inks[3] - table[3]) < kMoved && answer.reached &&
                  isWithin(answer.inks);
        const Colour inks = saving(lab, settled(answer), answer.distance);
        const double weight = smooth(answer.distance / kBorder);
        Colour out;
        for (size_t i = 0; i < 4; ++i) out[i] = inks[i] + weight * (table[i] - inks[i]);
        return out;
    }

    // The same colour with more black: part of the way to the most with which the colours still
    // reach it. Light colours keep what they have, and so do those that are not reached.
    Colour saving(const Triple& lab, const Colour& inks, double distance) noexcept {
        if (!(o_.saveInk > 0)) return inks;
        const double share = o_.saveInk / 100 * (1 - smooth(distance / kSavingReach)) *
                             (1 - smooth((lab[0] - o_.saveInkAbove) / kSavingFade + 1));
        if (!(share > 0)) return inks;
        const Colour full = mostBlack(*forward_, seen(lab, inks, distance), inks);
        if (!(full[3] > inks[3])) return inks;
        Wish wish;
        wish.lab = seen(lab, inks, distance);
        for (size_t i = 0; i < 4; ++i) wish.start[i] = inks[i] + share * (full[i] - inks[i]);
        wish.low[3] = wish.high[3] = wish.black = wish.start[3];
        wish.reference = wish.start;
        wish.total = limit_;
        const auto inside = InsideSolver(*forward_).solve(wish.lab, wish.start);
        const Colour saved = inside ? *inside : solve(*forward_, wish).inks;
        link_->report.savedInk += sumOf(inks) - sumOf(saved);
        return saved;
    }
    // What inks look like that are next to a colour, or the colour.
    Triple seen(const Triple& lab, const Colour& inks, double distance) const noexcept {
        return distance > kReached ? three(forward_->at(inks)) : lab;
    }

    void store(size_t node, const Colour& out) noexcept {
        const auto outputs = static_cast<size_t>(link_->outputs);
        const bool wide = link_->bits == 16;
        const int top = wide ? 65535 : 255;
        std::array<int, kMostChannels> levels{};
        for (size_t ch = 0; ch < kMostChannels; ++ch) {
            double value = out[ch];
            if (clipBelow_ > 0) {
                if (value < clipBelow_) value = 0;
                if (value > 1 - 2 * clipBelow_) value = 1;
            }
            levels[ch] = static_cast<int>(value * top + 0.5);
        }
        if (toCmyk_) keepLimit(levels);
        uint8_t* to = &link_->table[node * outputs * (wide ? 2 : 1)];
        for (size_t ch = 0; ch < outputs; ++ch) {
            if (wide) *to++ = static_cast<uint8_t>(levels[ch] >> 8);
            *to++ = static_cast<uint8_t>(levels[ch]);
        }
    }

    // Rounding may pass the limit by a level or two; the strongest colour gives way.
    void keepLimit(std::array<int, kMostChannels>& levels) const noexcept {
        int excess = levels[0] + levels[1] + levels[2] + levels[3] - mostLevels_;
        while (excess > 0) {
            size_t strongest = 0;
            for (size_t ch = 1; ch < 3; ++ch)
                if (levels[ch] > levels[strongest]) strongest = ch;
            if (levels[strongest] == 0) strongest = 3;
            const int less = std::min(levels[strongest], std::max(1, excess / 4));
            levels[strongest] -= less;
            excess -= less;
        }
    }

    const Profile& source_;
    const Profile& destination_;
    const Profile* baseProfile_;
    const LinkOptions& o_;
    const bool fromCmyk_, toCmyk_;
    std::unique_ptr<Link> link_;
    std::optional<Evaluator> wanted_, inverse_, forward_, base_;
    bool inverted_ = false, same_ = false;
    Black black_ = Black::none;
    double limit_ = 4;
    int mostLevels_ = 0;      // the limit as a sum of levels
    double clipBelow_ = 0;    // 0..1, to CMYK only
    BlackCurve curve_;
    std::array<Triple, BlackCurve::kLast + 1> blackLab_{}, blackShift_{};
    std::vector<double> levels_, blacks_;
    std::array<std::vector<Evaluator::Place>, kMostChannels> places_;
    bool keepsPlaces_ = false;
    std::vector<float> slab_;  // of the source's table, at the first channel's level
    std::optional<InsideSolver> plain_;
    std::optional<Trail> trail_;
    // Of the node that is being made: what the trail goes on from when that is not the node's
    // own inks, and whether plain steps found it, or would have.
    std::optional<Colour> solved_;
    bool inside_ = false;
};

}  // namespace

double totalOfTables(const Profile& profile, Intent intent) {
    Problem ignored;
    const auto pipeline = profile.fromConnection(intent, ignored);
    if (!pipeline || profile.header().space != kCmyk) return 4;
    const Grid* grid = nullptr;
    std::vector<const Stage*> after;
    for (const Stage& stage : pipeline->stages) {
        if (grid) after.push_back(&stage);
        if (stage.step == Step::grid) grid = &stage.grid;
    }
    if (!grid) return 4;
    double most = 0;
    for (size_t node = 0; node < grid->nodeCount(); ++node) {
        double sum = 0;
        for (size_t ch = 0; ch < 4; ++ch) {
            double value = grid->nodes[node * 4 + ch] * grid->scale;
            for (const Stage* stage : after)
                if (stage->step == Step::curves) value = stage->curves[ch].at(value);
            sum += std::clamp(value, 0.0, 1.0);
        }
        most = std::max(most, sum);
    }
    return most;
}

std::unique_ptr<Link> makeLink(const Profile& source, const Profile& destination,
                               const Profile* base, const LinkOptions& options, Problem& problem,
                               int32_t& part) {
    return LinkMaker(source, destination, base, options).make(problem, part);
}

}  // namespace ko::precise
