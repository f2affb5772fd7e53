#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>

#include "precise/link.h"
#include "precise/link_file.h"
#include "precise/transform.h"
#include "tests/precise/press.h"

namespace ko::test {
namespace {

using namespace precise;

const Profile& pressA() {
    static const auto profile = parsed(pressProfileBytes({}, "Press A"));
    return *profile;
}
const Profile& pressB() {
    static const auto profile = parsed(pressProfileBytes(
        {.gain = 0.2, .blackLightness = 18, .magentaHue = 5}, "Press B"));
    return *profile;
}

LinkOptions small() {
    LinkOptions options;
    options.gridPoints = 9;
    options.bits = 16;
    return options;
}

std::unique_ptr<Link> made(const LinkOptions& options, const Profile& from = pressA(),
                           const Profile& to = pressB()) {
    Problem problem;
    int32_t part = 0;
    auto link = makeLink(from, to, nullptr, options, problem, part);
    EXPECT_TRUE(link) << problem.text;
    return link;
}

Triple looks(const Profile& press, const Colour& inks) {
    Problem problem;
    static const Evaluator a(*makeToLab(pressA(), Intent::relative, problem));
    static const Evaluator b(*makeToLab(pressB(), Intent::relative, problem));
    const Colour lab = (&press == &pressA() ? a : b).at(inks);
    return {lab[0], lab[1], lab[2]};
}

double distance(const Triple& a, const Triple& b) {
    const double l = a[0] - b[0], x = a[1] - b[1], y = a[2] - b[2];
    return std::sqrt(l * l + x * x + y * y);
}

// The inks of node i0, i1, i2, i3.
Colour nodeOf(const Link& link, const std::array<int, 4>& at) {
    Colour in{};
    for (size_t i = 0; i < 4; ++i) in[i] = link.level(at[i]);
    return link.at(in);
}

TEST(PreciseLink, MeetsTheSourcesColoursAtItsNodes) {
    for (const Black black : {Black::plane, Black::none, Black::match}) {
        LinkOptions options = small();
        options.black = black;
        const auto link = made(options);
        int counted = 0;
        for (int c = 2; c < 6; ++c)
            for (int m = 2; m < 6; ++m)
                for (int y = 2; y < 6; ++y) {
                    const Colour in = {c / 8.0, m / 8.0, y / 8.0, 0.125};
                    EXPECT_LT(distance(looks(pressB(), link->at(in)), looks(pressA(), in)), 0.06);
                    ++counted;
                }
        EXPECT_EQ(counted, 64);
    }
}

TEST(PreciseLink, KeepsPureBlackPureThroughACurveFromWhiteToFullBlack) {
    for (const Black black : {Black::plane, Black::match, Black::keep}) {
        LinkOptions options = small();
        options.black = black;
        const auto link = made(options);
        double before = -1;
        for (int level = 0; level <= 255; ++level) {
            const Colour out = link->at({0, 0, 0, level / 255.0});
            EXPECT_EQ(std::max({out[0], out[1], out[2]}), 0);
            EXPECT_GT(out[3], before);
            if (black == Black::keep) {
                EXPECT_NEAR(out[3], level / 255.0, 1e-5);
            }
            before = out[3];
        }
        EXPECT_EQ(link->at({0, 0, 0, 0})[3], 0);
        EXPECT_EQ(link->at({0, 0, 0, 1})[3], 1);
    }
}

TEST(PreciseLink, ThePlaneHasNoStepBetweenPureBlackAndBlackWithALittleColour) {
    LinkOptions options = small();
    options.gridPoints = 33;
    const auto link = made(options);
    for (int k = 4; k <= 30; ++k)
        for (size_t ink = 0; ink < 3; ++ink) {
            std::array<int, 4> node = {0, 0, 0, k};
            const Colour pure = nodeOf(*link, node);
            node[ink] = 1;
            const Colour tinted = nodeOf(*link, node);
            for (size_t i = 0; i < 4; ++i) {
                const double source = i == ink ? 8 : 0;
                EXPECT_LE(std::abs(tinted[i] - pure[i]) * 255 - source, 3.0) << k << " " << ink;
            }
        }
}

TEST(PreciseLink, PreservedInksAreAloneAtEveryLevel) {
    for (int preserve = 1; preserve <= 4; ++preserve) {
        LinkOptions options = small();
        options.preserve = static_cast<Preserve>(preserve);
        const auto link = made(options);
        for (unsigned mix = 1; mix < 16; ++mix) {
            const int colours = (mix & 1) + (mix >> 1 & 1) + (mix >> 2 & 1);
            const bool black = mix & 8;
            if (colours == 0 || colours == 3) continue;
            const int needed = black ? colours + 2 : colours;
            if (needed > preserve) continue;
            for (int level = 0; level < 256; ++level) {
                Colour in{};
                for (size_t i = 0; i < 4; ++i)
                    in[i] = mix >> i & 1 ? (i % 2 ? level : 255 - level) / 255.0 : 0;
                const Colour out = link->at(in);
                for (size_t i = 0; i < 4; ++i)
                    if (!(mix >> i & 1)) {
                        EXPECT_EQ(out[i], 0) << preserve << " " << mix;
                    }
            }
        }
    }
}

// The farthest that an ink goes between two nodes that are neighbours, of those for which counts
// holds.
template <class Counts>
double farthestStep(const Link& link, Counts counts) {
    const int n = link.gridPoints;
    const size_t strides[4] = {4u * static_cast<size_t>(n * n * n), 4u * static_cast<size_t>(n * n),
                               4u * static_cast<size_t>(n), 4u};
    double farthest = 0;
    for (int at = 0; at < n * n * n * n; ++at) {
        const std::array<int, 4> node = {at / (n * n * n), at / (n * n) % n, at / n % n, at % n};
        for (size_t axis = 0; axis < 4; ++axis) {
            if (node[axis] == n - 1) continue;
            auto next = node;
            ++next[axis];
            if (!counts(node, next)) continue;
            const uint8_t* const inks = &link.table[static_cast<size_t>(at) * 4];
            for (size_t i = 0; i < 4; ++i)
                farthest = std::max(farthest, std::abs(double{1} * inks[i] - inks[i + strides[axis]]));
        }
    }
    return farthest;
}

const Profile& darkPress() {
    static const auto profile = parsed(pressProfileBytes({.blackLightness = 4}));
    return *profile;
}
const Profile& palePress() {
    static const auto profile =
        parsed(pressProfileBytes({.gain = 0.1, .blackLightness = 20, .magentaHue = 8}));
    return *profile;
}

TEST(PreciseLink, PreservedInksMeetTheOthersWithoutALeap) {
    for (int preserve = 1; preserve <= 4; ++preserve) {
        LinkOptions options = small();
        options.bits = 8;
        options.gridPoints = 17;
        options.preserve = static_cast<Preserve>(preserve);
        const auto link = made(options, darkPress(), palePress());
        const auto stays = [&](const std::array<int, 4>& node) {
            const int colours = (node[0] > 0) + (node[1] > 0) + (node[2] > 0);
            return colours > 0 && colours < 3 && colours + (node[3] > 0 ? 2 : 0) <= preserve;
        };
        const double farthest = farthestStep(
            *link, [&](const auto& a, const auto& b) { return stays(a) != stays(b); });
        EXPECT_LE(farthest, 112) << preserve;  // of 16 levels that the source has
    }
}

// Colours darker than the press is.
TEST(PreciseLink, ColoursThatThePressIsFarFromLieNextToEachOther) {
    Problem problem;
    const Evaluator press(*makeToLab(palePress(), Intent::relative, problem));
    std::mt19937 random(7);
    const auto part = [&] { return static_cast<double>(random() >> 8) / 0x1000000; };
    double farthest = 0;
    for (int path = 0; path < 300; ++path) {
        Wish wish;
        wish.reference = {part(), part(), part(), 0.8 + 0.2 * part()};
        wish.start = wish.reference;
        wish.black = wish.reference[3];
        wish.total = 3.1;
        wish.farPull = 1;
        const Triple from = {8 * part(), 30 * part() - 15, 30 * part() - 15};
        const Triple to = {8 * part(), 30 * part() - 15, 30 * part() - 15};
        std::optional<Colour> before;
        for (int at = 0; at <= 50; ++at) {
            for (size_t i = 0; i < 3; ++i) wish.lab[i] = from[i] + (to[i] - from[i]) * at / 50;
            const Answer answer = solve(press, wish);
            EXPECT_GT(answer.distance, 5);
            for (size_t i = 0; before && i < 4; ++i)
                farthest = std::max(farthest, std::abs(answer.inks[i] - (*before)[i]));
            before = answer.inks;
        }
    }
    EXPECT_LE(farthest, 0.5);
}

TEST(PreciseLink, EveryNodeKeepsTheInkLimit) {
    for (const double limit : {180.0, 240.0, 300.0})
        for (const int bits : {8, 16}) {
            LinkOptions options = small();
            options.inkLimit = limit;
            options.bits = bits;
            const auto link = made(options);
            const int most = static_cast<int>(limit / 100 * (bits == 8 ? 255 : 65535) + 1e-9);
            const size_t step = bits == 8 ? 4 : 8;
            for (size_t at = 0; at < link->table.size(); at += step) {
                int sum = 0;
                for (size_t i = 0; i < 4; ++i)
                    sum += bits == 8 ? link->table[at + i]
                                     : link->table[at + 2 * i] << 8 | link->table[at + 2 * i + 1];
                ASSERT_LE(sum, most);
            }
            for (const double x : {0.25, 0.5, 1.0}) {  // pure ramps stay
                EXPECT_GT(link->at({x, 0, 0, 0})[0], 0.5 * x);
                EXPECT_GT(link->at({0, 0, 0, x})[3], 0.5 * x);
            }
        }
}

TEST(PreciseLink, SavesInkByBlackWithoutChangingTheLookAndSparesHighlights) {
    LinkOptions options = small();
    const auto plain = made(options);
    double before = 0;
    for (const double saving : {50.0, 100.0}) {
        options.saveInk = saving;
        const auto link = made(options);
        EXPECT_GT(link->report.savedInk, before + 0.01);
        EXPECT_LT(link->report.meanInk, plain->report.meanInk - 0.01);
        before = link->report.savedInk;
        for (const Colour in : {Colour{0.75, 0.75, 0.75, 0.125}, Colour{0.75, 0.875, 0.75, 0}}) {
            EXPECT_LT(distance(looks(pressB(), link->at(in)), looks(pressA(), in)), 0.2);
        }
        const Colour light = {0.125, 0.125, 0.25, 0};
        EXPECT_EQ(link->at(light), plain->at(light));
    }
}

TEST(PreciseLink, SavingInkMovesEveryColoursBlackEvenlyTowardsItsMost) {
    LinkOptions options = small();
    std::vector<std::unique_ptr<Link>> links;
    for (const double saving : {0.0, 25.0, 50.0, 75.0, 100.0}) {
        options.saveInk = saving;
        links.push_back(made(options));
    }
    int rising = 0;
    for (int at = 0; at < 9 * 9 * 9 * 5; ++at) {
        const std::array<int, 4> node = {at / 405, at / 45 % 9, at / 5 % 9, at % 5};
        double black[5];
        for (size_t i = 0; i < 5; ++i) black[i] = nodeOf(*links[i], node)[3];
        const double whole = black[4] - black[0];
        EXPECT_GE(whole, -2e-5) << at;
        for (size_t i = 1; i < 4; ++i)
            EXPECT_NEAR(black[i], black[0] + whole * static_cast<double>(i) / 4, 2e-4) << at;
        rising += whole > 0.05;
        const Colour plain = nodeOf(*links[0], node), saved = nodeOf(*links[4], node);
        Colour in{};
        for (size_t i = 0; i < 4; ++i) in[i] = links[0]->level(node[i]);
        const Triple wanted = looks(pressA(), in);
        EXPECT_LT(distance(looks(pressB(), saved), wanted),
                  distance(looks(pressB(), plain), wanted) + 0.1) << at;
    }
    EXPECT_GT(rising, 500);
}

TEST(PreciseLink, ClipsTintsThatSpecksComeFrom) {
    LinkOptions options = small();
    options.clip = 1;
    options.inkLimit = kNoLimit;  // which is held after the clip
    const auto link = made(options);
    for (size_t at = 0; at < link->table.size(); at += 2) {
        const int level = link->table[at] << 8 | link->table[at + 1];
        EXPECT_TRUE(level == 0 || level == 65535 || (level >= 655 && level <= 64225)) << level;
    }
}

TEST(PreciseLink, TheSameProfileTwiceIsAnIdentityWithinALevel) {
    LinkOptions options = small();
    options.bits = 8;
    options.inkLimit = kNoLimit;
    const auto link = made(options, pressA(), pressA());
    int worst = 0;
    for (int c = 0; c < 9; ++c)
        for (int m = 0; m < 9; ++m)
            for (int y = 0; y < 9; ++y)
                for (int k = 0; k < 6; ++k) {
                    const std::array<int, 4> at = {c, m, y, k};
                    const Colour out = nodeOf(*link, at);
                    for (size_t i = 0; i < 4; ++i)
                        worst = std::max(worst, static_cast<int>(std::abs(
                                                    out[i] * 255 - link->level(at[i]) * 255) + 0.51));
                }
    EXPECT_LE(worst, 1);
}

TEST(PreciseLink, WhiteIsNoInk) {
    const auto link = made(small());
    EXPECT_EQ(link->at({0, 0, 0, 0}), Colour{});
}

TEST(PreciseLink, NodesForTheLibraryAreMetThroughTheInputTables) {
    LinkOptions options = small();
    options.gridPoints = 33;
    options.nodes = Nodes::library;
    const auto link = made(options);
    for (const int level : {0, 8, 128, 248, 255})
        EXPECT_NEAR(link->position(level / 255.0), (level == 255 ? 32 : level / 8) / 32.0, 1e-12);
    const Colour in = {128 / 255.0, 64 / 255.0, 40 / 255.0, 8 / 255.0};
    EXPECT_LT(distance(looks(pressB(), link->at(in)), looks(pressA(), in)), 0.03);
}

TEST(PreciseLink, RefusesListsOfNamedColours) {
    Bytes bytes = pressProfileBytes({});
    std::ranges::copy(std::string_view("nmcl"), bytes.begin() + 12);
    const auto named = parsed(bytes);
    ASSERT_TRUE(named);
    for (const bool asSource : {true, false}) {
        Problem problem;
        int32_t part = 0;
        EXPECT_EQ(makeLink(asSource ? *named : pressA(), asSource ? pressA() : *named, nullptr,
                           small(), problem, part), nullptr);
        EXPECT_EQ(problem.text, "is a list of named colours");
        EXPECT_EQ(part, asSource ? 1 : 2);
    }
    Problem problem;
    EXPECT_FALSE(named->toConnection(Intent::relative, problem));
    EXPECT_EQ(problem.text, "is a list of named colours");
}

TEST(PreciseLink, RefusesOptionsThatContradict) {
    const auto refused = [](LinkOptions options) {
        Problem problem;
        int32_t part = 0;
        EXPECT_EQ(makeLink(pressA(), pressB(), nullptr, options, problem, part), nullptr);
        EXPECT_EQ(problem.code, Trouble::argument);
        return problem.text;
    };
    LinkOptions options = small();
    options.gridPoints = 34;
    EXPECT_EQ(refused(options), "a grid from CMYK has 9 to 33 points an axis");
    options = small();
    options.inkLimit = 90;
    EXPECT_EQ(refused(options), "the ink limit is below what black needs, 100 percent");
    options = small();
    options.nodes = Nodes::library;
    EXPECT_EQ(refused(options), "nodes for the library stand on a grid of 33 points");
}

TEST(PreciseLinkFile, ReadsBackAsTheLinkThatItIs) {
    for (const int bits : {8, 16}) {
        LinkOptions options = small();
        options.bits = bits;
        const auto link = made(options);
        Problem problem;
        const auto bytes = linkFile(*link, {}, problem);
        const auto read = Profile::parse(bytes, problem);
        ASSERT_TRUE(read) << problem.text;
        EXPECT_TRUE(read->isLink());
        EXPECT_EQ(read->description(), "Press A to Press B");
        EXPECT_EQ(read->header().intent, 1u);
        EXPECT_EQ(read->header().size, bytes.size());
        const auto pipeline = read->toConnection(Intent::relative, problem);
        ASSERT_TRUE(pipeline);
        for (const Colour in : {Colour{0.1, 0.2, 0.7, 0.3}, Colour{0.9, 0.15, 0.35, 0}}) {
            const Colour a = pipeline->at(in), b = link->at(in);
            for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(a[i], b[i], 1e-4);
        }
    }
}

}  // namespace
}  // namespace ko::test
