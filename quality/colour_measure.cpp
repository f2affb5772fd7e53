#include "quality/colour_measure.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "precise/solve.h"
#include "quality/difference.h"

namespace ko::quality {
namespace {

using precise::Answer;
using precise::Wish;

// What black short of the preferred one costs while a colour is all that counts: as little as the
// other inks.
constexpr double kFreeBlack = 0.01;
constexpr double kNoInk = 1e-9;
constexpr double kFar = 1000;  // damaged tables may lead anywhere; no difference is larger

double bounded(double difference) noexcept { return difference < kFar ? difference : kFar; }

class ColourJudge {
public:
    explicit ColourJudge(const Subject& subject) : subject_(subject) {
        total_ = subject.toInk() ? subject.nodes().mostInk : 4;
        levels_ = subject.facts().bits == 8 ? 255 : 65535;
    }

    struct Prices {
        double bare, pure, black, limited, rounded;
    };

    JudgedColour judge(const Colour& in, Prices& prices) const {
        JudgedColour colour;
        colour.in = in;
        colour.out = subject_.through(in);
        colour.wanted = subject_.wanted(in);
        colour.printed = subject_.printed(colour.out);
        colour.difference = bounded(difference2000(colour.wanted, colour.printed));
        colour.difference76 = bounded(quality::difference76(colour.wanted, colour.printed));
        colour.kinds = kindsOf(subject_.facts().sourceSpace, in, colour.wanted);
        price(colour, prices);
        return colour;
    }

private:
    double off(const Triple& wanted, const Colour& inks) const noexcept {
        return bounded(difference2000(wanted, subject_.printed(inks)));
    }
    Wish wishFor(const Triple& lab, const Colour& start) const noexcept {
        Wish wish;
        wish.lab = lab;
        wish.start = wish.reference = start;
        wish.black = start[3];
        wish.blackWeight = kFreeBlack;
        if (!subject_.toInk()) wish.high[3] = 0;
        return wish;
    }
    // The nearest mix; where it is not met at once other blacks are tried, for steps on the border
    // of the gamut may end beside it.
    double nearest(const Triple& lab, Colour& inks) const noexcept {
        const Colour start = subject_.byTables(lab);
        inks = precise::solve(subject_.press(), wishFor(lab, start)).inks;
        double best = off(lab, inks);
        if (!subject_.toInk()) return best;
        for (const double black : {0.0, 0.5, 1.0}) {
            if (best <= kReachable) break;
            Colour other = start;
            other[3] = black;
            const Colour found = precise::solve(subject_.press(), wishFor(lab, other)).inks;
            const double here = off(lab, found);
            if (here < best) {
                best = here;
                inks = found;
            }
        }
        return best;
    }
    void price(JudgedColour& colour, Prices& prices) const noexcept {
        Colour inks;
        const double bare = nearest(colour.wanted, inks);
        // What the link prints can be printed.
        prices.bare = colour.best = std::min(bare, colour.difference);
        if (bare > colour.difference) inks = colour.out;

        Wish wish = wishFor(colour.wanted, inks);
        const auto bound = [&](double before) noexcept {
            inks = precise::solve(subject_.press(), wish).inks;
            wish.start = wish.reference = inks;
            return std::max(before, off(colour.wanted, inks));
        };
        bool changed = false;
        const size_t channels = static_cast<size_t>(subject_.facts().outputs);
        for (size_t ch = 0; ch < channels && subject_.toInk(); ++ch)
            if (colour.out[ch] < kNoInk) {
                wish.high[ch] = 0;
                changed |= inks[ch] > kNoInk;
            }
        prices.pure = changed ? bound(prices.bare) : prices.bare;
        prices.black = prices.pure;
        if (subject_.toInk()) {
            wish.low[3] = wish.high[3] = wish.black = colour.out[3];
            wish.start[3] = wish.reference[3] = colour.out[3];
            prices.black = bound(prices.pure);
        }
        wish.total = total_;
        prices.limited = inks[0] + inks[1] + inks[2] + inks[3] > total_ + kNoInk && subject_.toInk()
                             ? bound(prices.black)
                             : prices.black;
        for (double& ink : inks) ink = static_cast<double>(static_cast<int>(ink * levels_ + 0.5)) / levels_;
        prices.rounded = std::max(prices.limited, off(colour.wanted, inks));
    }

    const Subject& subject_;
    double total_ = 4;
    double levels_ = 255;
};

template <class Value, class Which>
Spread spreadWhere(const std::vector<JudgedColour>& colours, Which&& which, Value&& value) {
    std::vector<double> values;
    for (const JudgedColour& colour : colours)
        if (which(colour)) values.push_back(value(colour));
    return spreadOf(values);
}

}  // namespace

const ColourGroup& ColourReport::group(const char* name) const noexcept {
    for (const ColourGroup& one : groups)
        if (std::strcmp(one.name, name) == 0) return one;
    return groups.front();
}

ColourReport measureColours(const Subject& subject) {
    ColourReport report;
    std::vector<Colour> set = chart(subject.facts().sourceSpace);
    const std::vector<Colour> random = randomColours(subject.facts().sourceSpace);
    set.insert(set.end(), random.begin(), random.end());
    const ColourJudge judge(subject);
    std::vector<ColourJudge::Prices> prices(set.size());
    report.colours.reserve(set.size());
    for (size_t at = 0; at < set.size(); ++at)
        report.colours.push_back(judge.judge(set[at], prices[at]));

    const auto addGroup = [&](const char* name, auto&& which) {
        report.groups.push_back(
            {name, spreadWhere(report.colours, which, [](const auto& c) { return c.difference; }),
             spreadWhere(report.colours, which, [](const auto& c) { return c.difference76; }),
             spreadWhere(report.colours, which, [](const auto& c) { return c.best; })});
    };
    addGroup("all", [](const auto&) { return true; });
    addGroup("reachable", [](const auto& c) { return c.reachable(); });
    addGroup("unreachable", [](const auto& c) { return !c.reachable(); });
    constexpr std::pair<const char*, Kind> kNamed[] = {
        {"primaries", kPrimary}, {"secondaries", kSecondary}, {"greys", kGrey},
        {"skin", kSkin}, {"highlights", kHighlight}, {"shadows", kShadow}};
    for (const auto& [name, kind] : kNamed)
        addGroup(name, [kind = kind](const auto& c) { return (c.kinds & kind) != 0; });

    using Prices = ColourJudge::Prices;
    const auto addPrice = [&](const char* name, double Prices::*member) {
        std::vector<double> values;
        for (const Prices& one : prices) values.push_back(one.*member);
        report.prices.push_back({name, spreadOf(values)});
    };
    addPrice("best", &Prices::bare);
    if (subject.toInk()) {
        addPrice("purity", &Prices::pure);
        addPrice("black", &Prices::black);
        addPrice("inkLimit", &Prices::limited);
    }
    addPrice("levels", &Prices::rounded);
    report.prices.push_back({"link", report.groups.front().difference});

    report.worst.resize(report.colours.size());
    std::iota(report.worst.begin(), report.worst.end(), size_t{0});
    const size_t count = std::min(kWorstColours, report.worst.size());
    std::partial_sort(report.worst.begin(), report.worst.begin() + static_cast<ptrdiff_t>(count),
                      report.worst.end(), [&](size_t a, size_t b) {
                          const double x = report.colours[a].difference, y = report.colours[b].difference;
                          return x > y || (x == y && a < b);
                      });
    report.worst.resize(count);
    return report;
}

}  // namespace ko::quality
