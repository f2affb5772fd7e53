#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "precise/link.h"
#include "precise/link_file.h"
#include "quality/difference.h"
#include "quality/quality.h"
#include "tests/precise/press.h"

namespace ko::test {
namespace {

using namespace quality;
using precise::Intent;
using precise::Nodes;
using precise::Problem;
using precise::Profile;

const Profile& pressA() {
    static const auto profile = parsed(pressProfileBytes({}, "Press A"));
    return *profile;
}
const Profile& pressB() {
    static const auto profile = parsed(pressProfileBytes(
        {.gain = 0.2, .blackLightness = 18, .magentaHue = 5}, "Press B"));
    return *profile;
}

// A link from CMYK to CMYK whose node i, j, k, l is what node says of the level there.
Bytes linkOf(int points, const std::function<Colour(Colour)>& node) {
    std::vector<Colour> nodes;
    const int count = points * points * points * points;
    for (int at = 0; at < count; ++at) {
        Colour in{};
        for (int rest = at, ink = 3; ink >= 0; --ink, rest /= points)
            in[static_cast<size_t>(ink)] = rest % points / double(points - 1);
        nodes.push_back(node(in));
    }
    return profileBytes({{"desc", descriptionElement("A link")}, {"A2B0", lut16(4, 4, points, nodes)}},
                        profileHeader("link", "CMYK", "CMYK"));
}

Bytes madeLink(const precise::LinkOptions& options, std::string provenance = {}) {
    Problem problem;
    int32_t part = 0;
    const auto link = precise::makeLink(pressA(), pressB(), nullptr, options, problem, part);
    precise::LinkFileOptions file;
    file.provenance = std::move(provenance);
    return precise::linkFile(*link, file, problem);
}

precise::LinkOptions small() {
    precise::LinkOptions options;
    options.gridPoints = 9;
    return options;
}

struct Measured {
    explicit Measured(const Bytes& bytes, const Profile* from = nullptr, const Profile* to = nullptr)
        : link(parsed(bytes)) {
        Problem problem;
        int32_t part = 0;
        subject = Subject::open(*link, std::nullopt, problem);
        if (subject && from && !subject->judgeBy(*from, *to, Intent::relative, false, problem, part))
            ADD_FAILURE() << problem.text;
        if (subject) findings = measure(*subject, bytes);
    }
    std::unique_ptr<Profile> link;
    std::optional<Subject> subject;
    Findings findings;
};

const Measured& aToB() {
    static const Measured measured(madeLink(small()), &pressA(), &pressB());
    return measured;
}

const auto kSame = [](const Colour& in) { return in; };

TEST(LinkMeasures, FindNoDifferenceInALinkThatChangesNothing) {
    const Measured same(linkOf(5, kSame), &pressA(), &pressA());
    const Spread& all = same.findings.colour->group("all").difference;
    EXPECT_EQ(all.count, kChartPatches + kRandomColours);
    EXPECT_LT(all.worst, 0.05);
    EXPECT_EQ(same.findings.colour->group("unreachable").difference.count, 0u);
    EXPECT_EQ(same.findings.smoothness.reversals, 0);
    EXPECT_NEAR(same.findings.ink.saving(), 0, 1e-4);
}

TEST(LinkMeasures, JudgeEachColourByTheTwoProfiles) {
    const Measured& measured = aToB();
    for (const size_t at : {size_t{5}, size_t{1600}, size_t{9000}}) {
        const JudgedColour& colour = measured.findings.colour->colours[at];
        const auto out = measured.subject->through(colour.in);
        EXPECT_EQ(colour.out, out);
        EXPECT_EQ(colour.difference, difference2000(measured.subject->wanted(colour.in),
                                                    measured.subject->printed(out)));
    }
}

TEST(LinkMeasures, PartTheColoursInReachableAndOthers) {
    const ColourReport& colour = *aToB().findings.colour;
    const size_t reachable = colour.group("reachable").difference.count;
    EXPECT_GT(reachable, 15000u);
    EXPECT_GT(colour.group("unreachable").difference.count, 100u);
    EXPECT_EQ(reachable + colour.group("unreachable").difference.count, colour.colours.size());
    EXPECT_LE(colour.group("reachable").best.worst, kReachable);
    for (const char* name : {"primaries", "secondaries", "greys", "skin", "highlights", "shadows"})
        EXPECT_GT(colour.group(name).difference.count, 50u) << name;
}

TEST(LinkMeasures, AskNoMoreOfALinkThanIsPossible) {
    for (const JudgedColour& colour : aToB().findings.colour->colours)
        EXPECT_LE(colour.best, colour.difference);
}

TEST(LinkMeasures, PriceOneBondAfterTheOther) {
    const auto& prices = aToB().findings.colour->prices;
    ASSERT_EQ(prices.size(), 6u);
    EXPECT_STREQ(prices.front().name, "best");
    EXPECT_STREQ(prices.back().name, "link");
    for (size_t at = 1; at + 1 < prices.size(); ++at)
        EXPECT_GE(prices[at].difference.mean, prices[at - 1].difference.mean);
}

TEST(LinkMeasures, SeeWhatAnInkLimitCosts) {
    precise::LinkOptions options = small();
    options.inkLimit = 180;
    const Measured limited(madeLink(options), &pressA(), &pressB());
    EXPECT_LE(limited.findings.ink.most, 1.8 + 1e-6);
    const auto step = [](const Measured& measured) {
        const auto& prices = measured.findings.colour->prices;
        return prices[3].difference.mean - prices[2].difference.mean;
    };
    EXPECT_STREQ(limited.findings.colour->prices[3].name, "inkLimit");
    EXPECT_GT(step(limited), step(aToB()) + 0.1);
}

TEST(LinkMeasures, NameTheWorstColoursFirst) {
    const ColourReport& colour = *aToB().findings.colour;
    ASSERT_EQ(colour.worst.size(), kWorstColours);
    EXPECT_EQ(colour.colours[colour.worst[0]].difference, colour.group("all").difference.worst);
    for (size_t at = 1; at < kWorstColours; ++at)
        EXPECT_GE(colour.colours[colour.worst[at - 1]].difference, colour.colours[colour.worst[at]].difference);
}

TEST(LinkMeasures, FindForeignInkOnItsRamp) {
    const Measured tinted(linkOf(2, [](Colour in) {
        if (in == Colour{1, 0, 0, 0}) in[1] = 0.1;
        return in;
    }));
    const PurityReport& purity = tinted.findings.purity;
    EXPECT_NEAR(purity.ramp("C")->foreign, 0.1, 1e-4);
    EXPECT_NEAR(purity.ramp("C")->foreignByLevels, 0.1, 1e-3);
    EXPECT_EQ(purity.ramp("C")->impureLevels, 255);
    EXPECT_TRUE(purity.white());
    EXPECT_TRUE(purity.black());
    EXPECT_FALSE(purity.primaries());
    EXPECT_TRUE(purity.ramp("CM")->pure());
    EXPECT_FALSE(purity.secondaries());
}

TEST(LinkMeasures, FindInkInWhite) {
    const Measured tinted(linkOf(2, [](Colour in) {
        if (in == Colour{}) in[2] = 0.02;
        return in;
    }));
    EXPECT_NEAR(tinted.findings.purity.ramp("")->foreign, 0.02, 1e-4);
    EXPECT_FALSE(tinted.findings.purity.white());
}

TEST(LinkMeasures, FindTheLargestJumpOfTheGrid) {
    const Measured jumping(linkOf(5, [](Colour in) {
        if (in == Colour{0, 0.5, 0, 0.75}) in[0] = 0.6;
        return in;
    }));
    const NodeFacts& nodes = jumping.subject->nodes();
    EXPECT_EQ(nodes.nodes, 625u);
    EXPECT_NEAR(nodes.jump, 0.6, 1e-4);
    EXPECT_EQ(nodes.jumpChannel, 0);
    const Colour at = {0, 0.5, 0, 0.75};
    EXPECT_TRUE(nodes.jumpFrom == at || nodes.jumpTo == at);
}

TEST(LinkMeasures, FindAJumpAlongEachInkAlone) {
    for (size_t ink = 0; ink < 4; ++ink) {
        const Measured jumping(
            linkOf(5, [ink](Colour in) { return Colour{0, in[ink] >= 0.5 ? 1.0 : 0.0, 0, 0}; }));
        const NodeFacts& nodes = jumping.subject->nodes();
        EXPECT_EQ(nodes.jump, 1) << ink;
        EXPECT_EQ(nodes.jumpChannel, 1) << ink;
        Colour from{}, to{};
        from[ink] = 0.25, to[ink] = 0.5;
        EXPECT_EQ(nodes.jumpFrom, from) << ink;
        EXPECT_EQ(nodes.jumpTo, to) << ink;
    }
}

TEST(LinkMeasures, FindWhereTheMostInkIs) {
    const Measured heavy(linkOf(3, [](Colour in) {
        if (in == Colour{0.5, 1, 0, 0}) return Colour{1, 1, 1, 0.5};
        for (double& ink : in) ink *= 0.5;
        return in;
    }));
    EXPECT_NEAR(heavy.findings.ink.most, 3.5, 1e-4);
    EXPECT_EQ(heavy.findings.ink.mostAt, (Colour{0.5, 1, 0, 0}));
    EXPECT_GT(heavy.findings.ink.saving(), 0.3);
}

TEST(LinkMeasures, FindAStepBesidePureBlack) {
    const Measured fringed(linkOf(33, [](Colour in) {
        if (in[0] + in[1] + in[2] > 0 && in[3] > 0.5) return Colour{0.7, 0.6, 0.6, in[3] / 2};
        return in;
    }));
    EXPECT_GT(fringed.findings.black.step, 0.5);
    EXPECT_LT(Measured(linkOf(5, kSame)).findings.black.step, 1e-6);
}

TEST(LinkMeasures, FindLightnessThatTurns) {
    const Measured turning(linkOf(9, [](Colour in) {
        if (in == Colour{0, 0, 0, 0.75}) in[3] = 0.5;
        return in;
    }), &pressA(), &pressA());
    EXPECT_GT(turning.findings.smoothness.reversals, 10);
    EXPECT_GT(turning.findings.smoothness.worstReversal, 3);
}

TEST(LinkMeasures, JudgeInksWhereThereAreNoProfiles) {
    const Measured measured(linkOf(3, kSame));
    EXPECT_FALSE(measured.findings.colour);
    EXPECT_TRUE(measured.findings.purity.secondaries());
    EXPECT_NEAR(measured.findings.ink.most, 4, 1e-6);
    EXPECT_EQ(measured.findings.smoothness.bends.count, 2540u);
    EXPECT_LT(measured.findings.smoothness.bends.worst, 0.01);  // a straight line has no bend
}

TEST(LinkMeasures, SpreadValuesByTheirPlaces) {
    std::vector<double> values;
    for (int value = 100; value > 0; --value) values.push_back(value);
    const Spread spread = spreadOf(values);
    EXPECT_EQ(spread.count, 100u);
    EXPECT_EQ(spread.mean, 50.5);
    EXPECT_EQ(spread.median, 51);
    EXPECT_EQ(spread.p90, 91);
    EXPECT_EQ(spread.p95, 96);
    EXPECT_EQ(spread.p99, 100);
    EXPECT_EQ(spread.worst, 100);
}

TEST(LinkMeasures, FollowBlackFromTenthToTenth) {
    const Measured thin(linkOf(2, [](Colour in) {
        in[3] *= 0.5;
        return in;
    }), &pressA(), &pressA());
    const BlackReport& black = thin.findings.black;
    ASSERT_EQ(black.ramp.size(), 11u);
    for (size_t at = 0; at < black.ramp.size(); ++at) {
        const BlackPoint& point = black.ramp[at];
        EXPECT_NEAR(point.level, static_cast<double>(at) / 10, 0.004);
        EXPECT_NEAR(point.out[3], point.level / 2, 1e-4);
        EXPECT_EQ(point.lightness, thin.subject->printed(point.out)[0]);
    }
    EXPECT_GT(black.ramp.back().lightness, black.ramp.back().wantedLightness + 10);
    EXPECT_EQ(black.difference.count, 256u);
    EXPECT_NEAR(black.difference.worst, black.ramp.back().difference, 1e-9);
}

TEST(LinkMeasures, FindTheCastOfGreysAndWhereTheirBlackStarts) {
    const Measured same(linkOf(5, kSame), &pressA(), &pressA());
    EXPECT_LT(same.findings.black.cast, 0.1);
    EXPECT_LT(same.findings.black.blackStart, 0);
    const Measured cold(linkOf(5, [](Colour in) {
        in[0] = std::min(1.0, in[0] * 1.25);
        if (in[1] > 0.4 && in[2] > 0.4) in[3] = std::max(in[3], 0.2);
        return in;
    }), &pressA(), &pressA());
    const BlackReport& black = cold.findings.black;
    EXPECT_GT(black.cast, 3);
    EXPECT_GT(black.blackStart, 20);
    EXPECT_LT(black.blackStart, 90);
    for (const GreyPoint& grey : black.greys) EXPECT_EQ(grey.out[3] > 0.005, grey.wanted[0] <= black.blackStart);
}

TEST(LinkMeasures, CountEveryInk) {
    const Measured thin(linkOf(2, [](const Colour& in) { return Colour{in[0] * 0.5, in[1] * 0.25, in[2], in[3]}; }));
    const InkReport& ink = thin.findings.ink;
    EXPECT_NEAR(ink.means[0], ink.sourceMeans[0] * 0.5, 1e-4);
    EXPECT_NEAR(ink.means[1], ink.sourceMeans[1] * 0.25, 1e-4);
    EXPECT_NEAR(ink.means[3], ink.sourceMeans[3], 1e-4);
    EXPECT_NEAR(ink.peaks[0], 0.5, 1e-4);
    EXPECT_NEAR(ink.peaks[2], 1, 1e-4);
    EXPECT_NEAR(ink.mean, ink.means[0] + ink.means[1] + ink.means[2] + ink.means[3], 1e-9);
    EXPECT_NEAR(ink.saving(), 1 - ink.mean / ink.sourceMean, 1e-9);
    EXPECT_GT(ink.saving(), 0.2);
}

TEST(LinkMeasures, SeeStepsThatStandStillOrAreLarge) {
    const auto rough = [](int steps) {  // black in so many steps
        return Measured(linkOf(33, [steps](Colour in) {
            in[3] = std::floor(in[3] * steps) / steps;
            return in;
        }), &pressA(), &pressA());
    };
    const SmoothReport fine = rough(32).findings.smoothness, coarse = rough(4).findings.smoothness;
    EXPECT_LT(fine.stillSteps, 0.01);
    EXPECT_GT(coarse.stillSteps, fine.stillSteps + 0.05);
    EXPECT_LT(fine.largestStep, 3);
    EXPECT_GT(coarse.largestStep, fine.largestStep + 1);
    EXPECT_GT(coarse.bends.worst, fine.bends.worst + 1);
}

TEST(LinkMeasures, ReadALinksProvenance) {
    const Measured measured(madeLink(small(), "source-file: a.icc\nodd line\n"));
    const LinkFacts& facts = measured.subject->facts();
    EXPECT_EQ(facts.from("source"), "Press A");
    EXPECT_EQ(facts.from("source-file"), "a.icc");
    EXPECT_EQ(facts.from("black"), "plane");
    EXPECT_EQ(facts.from("missing"), "");
    EXPECT_EQ(facts.intent, Intent::relative);
    EXPECT_EQ(facts.bits, 8);
    EXPECT_EQ(facts.points, (std::array<int, 4>{9, 9, 9, 9}));
}

TEST(LinkMeasures, ReadNodesWhereTheLinkHasThem) {
    precise::LinkOptions options;
    options.nodes = Nodes::library;
    const Bytes bytes = madeLink(options);
    const Measured measured(bytes, &pressA(), &pressB());
    EXPECT_EQ(measured.subject->facts().nodes, Nodes::library);
    Problem problem;
    const auto evenly = Subject::open(*measured.link, Nodes::even, problem);
    // Node 25 of K stands at level 200 for the library, at 25/32 for others.
    const Colour level = {0, 0, 0, 200 / 255.0}, even = {0, 0, 0, 25 / 32.0};
    EXPECT_NEAR(measured.subject->through(level)[3], evenly->through(even)[3], 1e-9);
    EXPECT_GT(std::abs(measured.subject->through(level)[3] - evenly->through(level)[3]), 0.001);
}

TEST(LinkMeasures, RefuseWhatIsNoLink) {
    Problem problem;
    EXPECT_FALSE(Subject::open(pressA(), std::nullopt, problem));
    EXPECT_EQ(problem.text, "is not a device link");
}

TEST(LinkMeasures, RefuseProfilesOfOtherSpaces) {
    const auto link = parsed(linkOf(2, kSame));
    Problem problem;
    int32_t part = 0;
    auto subject = Subject::open(*link, std::nullopt, problem);
    const auto rgb = parsed(readFile(testData("sRGB-v2-magic.icc")));
    EXPECT_FALSE(subject->judgeBy(*rgb, pressA(), Intent::relative, false, problem, part));
    EXPECT_EQ(part, 1);
    EXPECT_EQ(problem.text, "is a profile for RGB, but the link leads from CMYK");
    EXPECT_FALSE(subject->seesColours());
}

// Links from light and of one channel go the same ways.
TEST(LinkMeasures, TakeLinksFromLight) {
    for (const auto& [name, channels] : {std::pair{"sRGB-v2-magic.icc", 3}, {"sGrey-v2-micro.icc", 1}}) {
        const auto source = parsed(readFile(testData(name)));
        Problem problem;
        int32_t part = 0;
        const auto link = precise::makeLink(*source, pressB(), nullptr, small(), problem, part);
        ASSERT_TRUE(link) << problem.text;
        const Measured measured(precise::linkFile(*link, {}, problem), source.get(), &pressB());
        EXPECT_EQ(measured.subject->facts().inputs, channels);
        const Spread& near = measured.findings.colour->group("reachable").difference;
        EXPECT_GT(near.count, 500u);
        EXPECT_LT(near.median, 2);
        EXPECT_TRUE(measured.findings.purity.white());
        EXPECT_EQ(measured.findings.black.greys.size(), 51u);
        EXPECT_GE(measured.findings.black.blackStart, 0);
    }
}

// ---- Gates ------------------------------------------------------------------------------------

bool holds(const Gates& gates, const Measured& measured) {
    const auto results = judge(gates, *measured.subject, measured.findings);
    EXPECT_EQ(results.size(), 1u);
    return results.size() == 1 && results[0].holds;
}

TEST(LinkGates, HoldUpToTheirLimit) {
    const Measured& measured = aToB();
    const Spread& near = measured.findings.colour->group("reachable").difference;
    EXPECT_TRUE(holds({.de95 = near.p95}, measured));
    EXPECT_FALSE(holds({.de95 = near.p95 - 0.01}, measured));
    EXPECT_TRUE(holds({.deMean = near.mean}, measured));
    EXPECT_FALSE(holds({.deMean = near.mean - 0.01}, measured));
    const double ink = measured.findings.ink.most * 100, jump = measured.subject->nodes().jump * 100;
    EXPECT_TRUE(holds({.ink = ink}, measured));
    EXPECT_FALSE(holds({.ink = ink - 0.1}, measured));
    EXPECT_TRUE(holds({.jump = jump}, measured));
    EXPECT_FALSE(holds({.jump = jump - 0.1}, measured));
}

TEST(LinkGates, IncludeTheLesserPurities) {
    const Measured pureBlack(linkOf(2, [](Colour in) {
        if (in == Colour{0, 0, 1, 0}) in[0] = 0.01;
        return in;
    }));
    EXPECT_TRUE(holds({.pure = Pure::black}, pureBlack));
    EXPECT_FALSE(holds({.pure = Pure::primaries}, pureBlack));
    EXPECT_FALSE(holds({.pure = Pure::secondaries}, pureBlack));
    const Measured fourInks(linkOf(2, [](Colour in) {
        if (in == Colour{0, 0, 0, 1}) return Colour{0.6, 0.5, 0.5, 1};
        return in;
    }));
    EXPECT_FALSE(holds({.pure = Pure::black}, fourInks));
    EXPECT_TRUE(holds({.white = true}, fourInks));
}

TEST(LinkGates, OfColoursDoNotHoldWithoutProfiles) {
    EXPECT_FALSE(holds({.de95 = 100}, Measured(linkOf(2, kSame))));
}

TEST(LinkGates, OfConformanceCountErrors) {
    // The made link has no pseq and no copyright.
    EXPECT_FALSE(holds({.conformance = true}, Measured(linkOf(2, kSame))));
    EXPECT_TRUE(holds({.conformance = true}, aToB()));
}

TEST(LinkGates, ThatAreNotSetSayNothing) {
    EXPECT_TRUE(judge({}, *aToB().subject, aToB().findings).empty());
}

}  // namespace
}  // namespace ko::test
