// The model of the colour-correction page: picking, the range of influence, and the change itself,
// node by node against the rules written down apart from it.
#include "cmyk/dialog/colour_correction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

#include "tests/cmyk/correction_reference.h"

namespace ko::cmyk {
namespace {

using dialog::Point;
using dialog::Size;

// A unit a pixel: hue, saturation and positions can be given as pixels.
constexpr Size kArea = {360, 201};
constexpr Size kStrip = {10, 201};
constexpr Size kBlackStrip = {256, 10};

Block<CmykProfile> randomProfile(uint32_t seed) {
    auto profile = createProfile();
    std::mt19937 random(seed);
    for (uint32_t& word : profile->grid) word = static_cast<uint32_t>(random());
    return profile;
}

struct Correcting {
    explicit Correcting(Block<CmykProfile> edited = createProfile())
        : profile(std::move(edited)), model(*profile, history) {
        model.setLevels256(true);
    }
    void pick(const Cmyk& levels) {
        for (int32_t ink = 0; ink < 4; ++ink) model.pick(ink, std::to_string(levels[ink]));
    }
    void reach(int32_t hue, int32_t saturation) {
        model.setHueReach(std::to_string(hue));
        model.setSaturationReach(std::to_string(saturation));
    }
    // Positions from the white end; levels of black.
    void lightness(int32_t lightest, int32_t darkest) {
        press(Surface::lightnessBar, kStrip, {0, lightest});
        press(Surface::lightnessBar, kStrip, {0, darkest});
    }
    void black(int32_t low, int32_t high) {
        press(Surface::blackBar, kBlackStrip, {low, 0});
        press(Surface::blackBar, kBlackStrip, {high, 0});
    }
    void press(Surface surface, Size size, Point at) { model.press(surface, size, at); }
    // Changed values as differences from the current ones; those that do not fit are limited.
    void change(const std::array<int, 4>& by) {
        for (int32_t ink = 0; ink < 4; ++ink)
            model.setChanged(ink, std::to_string(model.current()[ink] + by[ink]));
    }
    Cmyk delta() const {
        Cmyk result;
        for (size_t ink = 0; ink < 4; ++ink)
            result[ink] = model.changed()[ink] - model.current()[ink];
        return result;
    }
    test::ReferenceRange referenceRange() const {
        const InfluenceRange range = model.range();
        const Span black = model.blackSpan().value_or(Span{0, 100});
        return {range.hue, range.saturation, range.lightest, range.darkest, black.low, black.high};
    }
    uint32_t node(int32_t c, int32_t m, int32_t y, int32_t k) const {
        return profile->grid[((c * 33 + m) * 33 + y) * 33 + k];
    }

    bool undo() {
        const bool done = history.undo();
        model.profileChanged();
        return done;
    }

    Block<CmykProfile> profile;
    dialog::History history;
    ColourCorrection model;
};

// Changes, and holds the whole grid and the count against the rules.
void expectChangeByTheRules(Correcting& page) {
    std::vector<uint32_t> expected(page.profile->grid, page.profile->grid + KOLINK_CMYK_NODES);
    const int count = test::referenceChange(expected.data(), page.model.picked(), page.delta(),
                                            page.referenceRange());
    EXPECT_EQ(page.model.nodesInRange(), count);
    EXPECT_EQ(page.model.change(), count);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), page.profile->grid));
}

uint32_t differing(const CmykProfile& a, const CmykProfile& b) {
    uint32_t count = 0;
    for (int32_t node = 0; node < KOLINK_CMYK_NODES; ++node) count += a.grid[node] != b.grid[node];
    return count;
}

TEST(ColourCorrectionChange, TakesEveryNodeOfAnOrdinaryRangeByTheRules) {
    Correcting page;
    page.pick({200, 80, 60, 0});
    page.reach(40, 35);
    page.lightness(40, 160);
    page.black(0, 64);
    page.change({20, -15, 9, 3});
    expectChangeByTheRules(page);
}

TEST(ColourCorrectionChange, TakesInksThatLeaveTheScaleByTheRules) {
    Correcting page(randomProfile(1));
    page.pick({120, 180, 90, 100});
    page.reach(120, 100);
    page.black(80, 120);
    page.change({255, -255, 200, -200});
    expectChangeByTheRules(page);
    bool empty = false, full = false;
    for (const uint32_t word : page.profile->grid) {
        empty = empty || (word >> 16 & 255) == 0;
        full = full || word >> 24 == 255;
    }
    EXPECT_TRUE(empty && full);
}

TEST(ColourCorrectionChange, TakesARangeOverTheLeftEdgeByTheRules) {
    Correcting page(randomProfile(2));
    page.pick({20, 220, 200, 0});  // a little beside red
    ASSERT_GT(page.model.place().hue, 340);
    page.reach(30, 40);
    page.black(0, 16);
    page.change({10, -60, 30, 5});
    expectChangeByTheRules(page);
}

TEST(ColourCorrectionChange, TakesARangeOverTheRightEdgeByTheRules) {
    Correcting page(randomProfile(3));
    page.pick({20, 200, 220, 0});
    ASSERT_LT(page.model.place().hue, 20);
    page.reach(30, 40);
    page.black(0, 16);
    page.change({10, -60, 30, 5});
    expectChangeByTheRules(page);
}

TEST(ColourCorrectionChange, TakesAPickedGreyByTheRules) {
    Correcting page(randomProfile(4));
    page.pick({128, 128, 128, 30});
    ASSERT_EQ(page.model.place().hue, kNoHue);
    page.reach(3, 25);
    page.black(0, 64);
    page.change({40, 0, -7, 90});
    expectChangeByTheRules(page);
}

TEST(ColourCorrectionChange, TakesThePickedColoursOnWhiteAndOnFullInkByTheRules) {
    for (const int32_t level : {0, 255}) {
        Correcting page(randomProfile(5));
        page.pick({level, level, level, 0});
        page.reach(180, 100);
        page.black(0, 8);
        page.change({9, 9, -9, 9});
        expectChangeByTheRules(page);
    }
}

TEST(ColourCorrectionChange, TakesTheWholeGridByTheRules) {
    Correcting page(randomProfile(6));
    page.reach(180, 100);
    page.change({-90, 70, -50, 30});
    EXPECT_GT(page.model.nodesInRange(), 1000000);
    expectChangeByTheRules(page);
}

TEST(ColourCorrectionChange, TakesPickedSextantBordersByTheRules) {
    for (const Levels cmy : {Levels{0, 255, 255}, {0, 0, 255}, {255, 0, 255},
                             {255, 0, 0}, {255, 255, 0}, {0, 255, 0}}) {
        Correcting page(randomProfile(7));
        page.pick({cmy[0], cmy[1], cmy[2], 0});
        page.reach(59, 50);
        page.black(0, 0);
        page.change({-33, 21, 77, 1});
        expectChangeByTheRules(page);
    }
}

TEST(ColourCorrectionChange, TakesRandomRangesByTheRules) {
    std::mt19937 random(8);
    const auto upTo = [&](int32_t last) { return static_cast<int32_t>(random() % (last + 1)); };
    for (int time = 0; time < 12; ++time) {
        Correcting page(randomProfile(100 + time));
        page.pick({upTo(255), upTo(255), upTo(255), upTo(255)});
        page.reach(upTo(180), upTo(100));
        const Place place = page.model.place();
        page.lightness(upTo(place.lightness), place.lightness + upTo(200 - place.lightness));
        const int32_t black = page.model.picked()[3];
        page.black(std::max(0, black - upTo(20)), std::min(255, black + upTo(20)));
        page.change({upTo(200) - 100, upTo(200) - 100, upTo(200) - 100, upTo(200) - 100});
        SCOPED_TRACE(time);
        expectChangeByTheRules(page);
    }
}

TEST(ColourCorrectionChange, ThePickedNodeGetsTheWholeChange) {
    Correcting page;
    page.pick({64, 128, 192, 48});
    page.change({11, -22, 33, -44});
    EXPECT_GT(page.model.change(), 0);
    EXPECT_EQ(page.node(8, 16, 24, 6), packCmyk(75, 106, 225, 4));
    EXPECT_EQ(page.model.current(), (Cmyk{75, 106, 225, 4}));
}

TEST(ColourCorrectionChange, TheChangeFadesAlongTheWayToTheEdge) {
    Correcting page;
    page.pick({64, 128, 192, 0});  // hue 29, saturation 100, lightness 100
    ASSERT_EQ(page.model.place(), (Place{30, 100, 100}));
    page.reach(30, 100);
    page.lightness(100, 100);
    page.change({0, 0, 0, 60});
    page.model.change();
    // Hue 15 more: half of the way.
    ASSERT_EQ(placeOf({64, 96, 192}), (Place{45, 100, 100}));
    EXPECT_EQ(page.node(8, 12, 24, 0) & 255, 30u);
}

TEST(ColourCorrectionChange, ADivisionOfANegativeChangeTruncatesTowardZero) {
    Correcting page;
    page.pick({64, 128, 192, 0});
    page.reach(30, 100);
    page.lightness(100, 100);
    page.change({-7, 0, 0, 0});
    page.model.change();
    // -7 less -7 * 15 / 30, which is -3: 4 are left.
    EXPECT_EQ(page.node(8, 12, 24, 0) >> 24, 64u - 4);
}

TEST(ColourCorrectionChange, ANodeWhoseEdgeIsAtNoDistanceIsLeftAndNotCounted) {
    Correcting page;
    page.pick({64, 128, 192, 0});
    page.reach(0, 0);
    page.lightness(100, 100);
    page.change({50, 50, 50, 50});
    EXPECT_EQ(page.model.nodesInRange(), 0);
    EXPECT_EQ(page.model.change(), 0);
    EXPECT_EQ(differing(*page.profile, *createProfile()), 0u);
    EXPECT_FALSE(page.model.canUndo());
}

TEST(ColourCorrectionChange, ANodeWhoseEdgeIsOneUnitAwayIsChanged) {
    Correcting page;
    page.pick({64, 128, 192, 0});
    page.reach(1, 0);
    page.lightness(100, 100);
    page.black(0, 0);
    page.change({50, 0, 0, 0});
    EXPECT_GT(page.model.nodesInRange(), 0);
    expectChangeByTheRules(page);
    EXPECT_EQ(page.node(8, 16, 24, 0) >> 24, 114u);
}

TEST(ColourCorrectionChange, EveryBlackOfTheSpanIsTakenAndNoOther) {
    Correcting page;
    page.pick({64, 128, 192, 96});
    page.black(64, 128);
    page.change({10, 0, 0, 0});
    page.model.change();
    for (int32_t k = 0; k < 33; ++k)
        EXPECT_EQ(page.node(8, 16, 24, k) >> 24, k >= 8 && k <= 16 ? 74u : 64u) << k;
}

TEST(ColourCorrectionChange, ABlackSpanHoldsTheNodesThatAreShownWithItsPercentages) {
    Correcting page;
    page.pick({64, 128, 192, 192});
    page.black(192, 192);  // 75 %, which typed is level 191
    EXPECT_EQ(page.model.blackSpan(), (Span{75, 75}));
    page.change({10, 0, 0, 0});
    page.model.change();
    EXPECT_EQ(page.node(8, 16, 24, 24) >> 24, 74u);
    EXPECT_EQ(page.node(8, 16, 24, 25) >> 24, 64u);
}

TEST(ColourCorrectionChange, OnlyTheGridChanges) {
    Correcting page;
    page.reach(180, 100);
    page.change({10, 20, 30, 40});
    page.model.change();
    const auto fresh = createProfile();
    EXPECT_GT(differing(*page.profile, *fresh), 0u);
    std::copy(fresh->grid, fresh->grid + KOLINK_CMYK_NODES, page.profile->grid);
    const auto* const bytes = reinterpret_cast<const uint8_t*>(page.profile.get());
    const auto* const others = reinterpret_cast<const uint8_t*>(fresh.get());
    EXPECT_TRUE(std::equal(bytes, bytes + sizeof(CmykProfile), others));
}

TEST(ColourCorrectionUndo, TakesTheChangeBackOnce) {
    Correcting page(randomProfile(9));
    const auto before = randomProfile(9);
    page.reach(90, 60);
    page.change({100, -100, 50, 50});
    EXPECT_FALSE(page.model.canUndo());
    page.model.change();
    EXPECT_GT(differing(*page.profile, *before), 0u);
    EXPECT_TRUE(page.model.canUndo());
    EXPECT_TRUE(page.undo());
    EXPECT_EQ(differing(*page.profile, *before), 0u);
    EXPECT_FALSE(page.model.canUndo());
    EXPECT_FALSE(page.undo());
}

TEST(ColourCorrectionUndo, TakesBackTheLastOfTwoChanges) {
    Correcting page, once;
    for (Correcting* each : {&page, &once}) {
        each->change({10, 0, 0, 0});
        each->model.change();
    }
    page.pick({200, 10, 10, 0});
    page.change({-40, 0, 0, 0});
    page.model.change();
    page.undo();
    EXPECT_EQ(differing(*page.profile, *once.profile), 0u);
}

TEST(ColourCorrectionUndo, AChangeOfNoInkLeavesTheOneBeforeToUndo) {
    Correcting page;
    page.change({10, 10, 10, 10});
    page.model.change();
    page.pick({200, 10, 10, 0});
    EXPECT_GT(page.model.change(), 0);
    EXPECT_TRUE(page.undo());
    EXPECT_EQ(differing(*page.profile, *createProfile()), 0u);
}

TEST(ColourCorrectionUndo, ShowsTheCurrentValuesAgain) {
    Correcting page;
    const Cmyk before = page.model.current();
    page.change({10, 10, 10, 10});
    page.model.change();
    EXPECT_NE(page.model.current(), before);
    page.undo();
    EXPECT_EQ(page.model.current(), before);
}

TEST(ColourCorrectionUndo, OutlivesInitialise) {
    Correcting page;
    page.change({10, 10, 10, 10});
    page.model.change();
    page.model.reread();
    EXPECT_TRUE(page.model.canUndo());
    page.undo();
    EXPECT_EQ(differing(*page.profile, *createProfile()), 0u);
}

TEST(ColourCorrectionUndo, TakesBackEveryOneOfAHundredChanges) {
    Correcting page(randomProfile(3));
    const auto before = randomProfile(3);
    page.reach(20, 20);
    for (int step = 0; step < 100; ++step) {
        page.change({step % 2 ? 9 : -9, 4, -4, 2});
        page.model.change();
    }
    const std::vector<uint32_t> after(page.profile->grid, page.profile->grid + KOLINK_CMYK_NODES);
    for (int step = 0; step < 100; ++step) EXPECT_TRUE(page.undo());
    EXPECT_EQ(differing(*page.profile, *before), 0u);
    while (page.history.redo()) {}
    EXPECT_TRUE(std::equal(after.begin(), after.end(), page.profile->grid));
}

TEST(ColourCorrectionPick, BeginsInTheMiddleOfTheAreaWithNoSpanSpecified) {
    const Correcting page;
    EXPECT_EQ(page.model.picked(), (Cmyk{192, 65, 65, 0}));
    EXPECT_EQ(page.model.place(), (Place{180, 100, 100}));
    EXPECT_FALSE(page.model.lightnessSpan() || page.model.blackSpan());
    EXPECT_EQ(page.model.hueReach(), 30);
    EXPECT_EQ(page.model.saturationReach(), 30);
    EXPECT_EQ(page.model.changed(), page.model.current());
}

TEST(ColourCorrectionPick, APressInTheAreaPicksTheHueAndSaturationThere) {
    Correcting page;
    page.press(Surface::area, kArea, {90, 40});
    EXPECT_EQ(page.model.place(), (Place{90, 160, 100}));
    EXPECT_EQ(page.model.marker(kArea), (Point{90, 40}));
}

TEST(ColourCorrectionPick, ADragPicksAlongTheWayAndBeyondTheEdgesTheNearestColour) {
    Correcting page;
    page.model.press(Surface::area, kArea, {90, 40});
    EXPECT_TRUE(page.model.move(kArea, {5000, -5000}));
    EXPECT_EQ(page.model.place(), (Place{359, 200, 100}));
    EXPECT_TRUE(page.model.move(kArea, {-5000, 5000}));
    EXPECT_EQ(page.model.place(), (Place{kNoHue, 0, 100}));
    page.model.reread();
    EXPECT_FALSE(page.model.move(kArea, {90, 40}));
    EXPECT_EQ(page.model.place(), (Place{180, 100, 100}));
}

TEST(ColourCorrectionPick, AnotherScreenGivesTheSameColoursAtTheSamePlaces) {
    Correcting page, finer;
    for (int32_t x = 0; x < 360; x += 17)
        for (int32_t y = 0; y < 201; y += 13) {
            page.press(Surface::area, kArea, {x, y});
            finer.press(Surface::area, {719, 401}, {2 * x, 2 * y});
            ASSERT_EQ(page.model.picked(), finer.model.picked()) << x << ' ' << y;
            ASSERT_EQ(page.model.nodesInRange(), finer.model.nodesInRange());
        }
}

TEST(ColourCorrectionPick, APressOnTheNodesOwnPlacePicksAColourAtNoDistanceFromIt) {
    Correcting page;
    for (int32_t m = 2; m < 15; ++m) {
        const Place place = placeOf({nodeValue(24), nodeValue(m), nodeValue(8)});
        page.press(Surface::lightness, kStrip, {0, place.lightness});
        page.press(Surface::area, kArea, {place.hue, 200 - place.saturation});
        const auto fade = fadeAt(page.model.place(), place, page.model.range());
        ASSERT_TRUE(fade);
        EXPECT_LE(fade->distance, 1) << m;
    }
}

TEST(ColourCorrectionPick, TheLightnessScalePicksFromWhiteToFullInk) {
    Correcting page;
    page.press(Surface::lightness, kStrip, {0, 0});
    EXPECT_EQ(page.model.picked(), (Cmyk{0, 0, 0, 0}));
    page.press(Surface::lightness, kStrip, {0, 200});
    EXPECT_EQ(page.model.picked(), (Cmyk{255, 255, 255, 0}));
    page.press(Surface::lightness, kStrip, {0, 100});  // hue and saturation are remembered
    EXPECT_EQ(page.model.place(), (Place{180, 100, 100}));
}

TEST(ColourCorrectionPick, TheBlackScalePicksBlack) {
    Correcting page;
    page.press(Surface::black, kBlackStrip, {255, 0});
    EXPECT_EQ(page.model.picked()[3], 255);
    page.press(Surface::black, kBlackStrip, {64, 0});
    EXPECT_EQ(page.model.picked()[3], 64);
}

TEST(ColourCorrectionPick, TypedLevelsArePickedExactlyAndLimited) {
    Correcting page;
    page.pick({8, 300, -5, 77});
    EXPECT_EQ(page.model.picked(), (Cmyk{8, 255, 0, 77}));
    EXPECT_EQ(page.model.place(), placeOf({8, 255, 0}));
    page.model.pick(0, "99999999999999999999");
    page.model.pick(1, "junk");
    page.model.pick(2, "-99999999999999999999");
    EXPECT_EQ(page.model.picked(), (Cmyk{255, 0, 0, 77}));
}

TEST(ColourCorrectionPick, PercentagesArePickedInPercent) {
    Correcting page;
    page.model.setLevels256(false);
    page.model.pick(0, "50");
    page.model.pick(1, "100");
    page.model.pick(2, "101");
    page.model.pick(3, "1");
    EXPECT_EQ(page.model.picked(), (Cmyk{128, 255, 255, 3}));
    EXPECT_EQ(page.model.shown(128), "50");
}

TEST(ColourCorrectionPick, APercentageThatStandsThereKeepsTheLevel) {
    Correcting page;
    page.pick({129, 64, 64, 0});
    page.model.setLevels256(false);
    EXPECT_EQ(page.model.shown(129), "51");
    page.model.pick(0, "51");
    EXPECT_EQ(page.model.picked()[0], 129);
    page.model.pick(0, "52");
    page.model.pick(0, "51");
    EXPECT_EQ(page.model.picked()[0], 130);
}

TEST(ColourCorrectionPick, TheCurrentValuesAreTheGridsOutputToTheNearestLevel) {
    Correcting page(randomProfile(12));
    page.pick({33, 7, 250, 129});
    Cmyk expected = {33, 7, 250, 129};
    cmykToCmyk16(*page.profile, expected);
    for (int32_t& level : expected) level = (level + 8) / 16;
    EXPECT_EQ(page.model.current(), expected);
    EXPECT_EQ(page.model.changed(), expected);
}

TEST(ColourCorrectionPick, SpinsStepWhatTheFieldShowsAndStopAtTheEnds) {
    Correcting page;
    page.pick({128, 0, 255, 0});
    page.model.stepPicked(0, 1);
    EXPECT_EQ(page.model.picked()[0], 129);
    page.model.setLevels256(false);
    page.model.stepPicked(0, 1);
    EXPECT_EQ(page.model.picked()[0], 133);  // 51 to 52 percent
    page.model.stepPicked(1, -1);
    page.model.stepPicked(2, 2147483647);
    EXPECT_EQ(page.model.picked(), (Cmyk{133, 0, 255, 0}));
    page.model.stepPicked(2, -2147483647 - 1);
    EXPECT_EQ(page.model.picked()[2], 0);
}

TEST(ColourCorrectionChanged, AnUntouchedInkDoesNotChangeAlsoInPercent) {
    Correcting page(randomProfile(13));
    page.model.setLevels256(false);
    for (int32_t ink = 0; ink < 4; ++ink) {
        const int32_t current = page.model.current()[ink];
        page.model.setChanged(ink, "0");
        page.model.setChanged(ink, page.model.shown(current));
        EXPECT_EQ(page.model.changed()[ink], current);
    }
}

TEST(ColourCorrectionChanged, TypedValuesAreLimited) {
    Correcting page;
    page.model.setChanged(0, "256");
    page.model.setChanged(1, "-1");
    EXPECT_EQ(page.model.changed()[0], 255);
    EXPECT_EQ(page.model.changed()[1], 0);
    page.model.setLevels256(false);
    page.model.setChanged(0, "101");
    page.model.setChanged(1, "50 %");
    EXPECT_EQ(page.model.changed()[0], 255);
    EXPECT_EQ(page.model.changed()[1], 128);
}

TEST(ColourCorrectionChanged, ANewPickStartsFromItsCurrentValues) {
    Correcting page;
    page.model.setChanged(0, "1");
    page.pick({100, 100, 100, 100});
    EXPECT_EQ(page.model.changed(), (Cmyk{100, 100, 100, 100}));
}

TEST(ColourCorrectionRange, TypedReachesAreLimited) {
    Correcting page;
    page.reach(181, 101);
    EXPECT_EQ(page.model.range(), (InfluenceRange{180, 200, 0, 200}));
    page.reach(-1, -1);
    EXPECT_EQ(page.model.range(), (InfluenceRange{0, 0, 0, 200}));
    page.model.setHueReach("");
    page.model.setSaturationReach("12x");
    EXPECT_EQ(page.model.range(), (InfluenceRange{0, 24, 0, 200}));
}

TEST(ColourCorrectionRange, TheHueBarSetsTheReachToEitherSide) {
    Correcting page;
    page.press(Surface::hueBar, kArea, {200, 0});
    EXPECT_EQ(page.model.hueReach(), 20);
    page.press(Surface::hueBar, kArea, {150, 0});
    EXPECT_EQ(page.model.hueReach(), 30);
    page.press(Surface::area, kArea, {10, 100});
    page.press(Surface::hueBar, kArea, {350, 0});  // the short way over the edge
    EXPECT_EQ(page.model.hueReach(), 20);
}

TEST(ColourCorrectionRange, TheSaturationBarSetsTheReachUpAndDown) {
    Correcting page;
    page.press(Surface::saturationBar, kStrip, {0, 60});  // 40 positions above: 20 percent
    EXPECT_EQ(page.model.saturationReach(), 20);
    page.press(Surface::saturationBar, kStrip, {0, 200});
    EXPECT_EQ(page.model.saturationReach(), 50);
}

TEST(ColourCorrectionRange, TheLightnessBarSetsTheEndOnItsSideOfThePickedColour) {
    Correcting page;
    page.press(Surface::lightnessBar, kStrip, {0, 60});
    EXPECT_EQ(page.model.lightnessSpan(), (Span{0, 70}));
    page.press(Surface::lightnessBar, kStrip, {0, 140});
    EXPECT_EQ(page.model.lightnessSpan(), (Span{30, 70}));
    EXPECT_EQ(page.model.range().lightest, 60);
    EXPECT_EQ(page.model.range().darkest, 140);
}

TEST(ColourCorrectionRange, AnEndThatIsDraggedStopsAtThePickedColour) {
    Correcting page;
    page.lightness(60, 140);
    page.model.press(Surface::lightnessBar, kStrip, {0, 70});
    page.model.move(kStrip, {0, 190});
    EXPECT_EQ(page.model.lightnessSpan(), (Span{30, 50}));
    page.press(Surface::black, kBlackStrip, {128, 0});
    page.model.press(Surface::blackBar, kBlackStrip, {200, 0});
    page.model.move(kBlackStrip, {0, 0});
    EXPECT_EQ(page.model.blackSpan(), (Span{0, 50}));
}

TEST(ColourCorrectionRange, PressesOnThePickedColourItselfSetOneEndAndThenTheOther) {
    Correcting page;
    page.press(Surface::lightnessBar, kStrip, {0, 100});
    EXPECT_EQ(page.model.lightnessSpan(), (Span{0, 50}));
    page.press(Surface::lightnessBar, kStrip, {0, 100});
    EXPECT_EQ(page.model.lightnessSpan(), (Span{50, 50}));
}

TEST(ColourCorrectionRange, ASpanFollowsAPickedColourThatLeavesIt) {
    Correcting page;
    page.lightness(80, 120);
    page.black(0, 26);
    EXPECT_EQ(page.model.lightnessSpan(), (Span{40, 60}));
    page.press(Surface::lightness, kStrip, {0, 31});
    EXPECT_EQ(page.model.lightnessSpan(), (Span{40, 85}));
    page.press(Surface::lightness, kStrip, {0, 171});
    EXPECT_EQ(page.model.lightnessSpan(), (Span{14, 85}));
    EXPECT_EQ(page.model.blackSpan(), (Span{0, 10}));
    page.press(Surface::black, kBlackStrip, {128, 0});
    EXPECT_EQ(page.model.blackSpan(), (Span{0, 50}));
}

TEST(ColourCorrectionRange, ThePickedColourNeverLeavesTheSpans) {
    std::mt19937 random(14);
    Correcting page;
    constexpr Surface kSurfaces[] = {Surface::area,         Surface::lightness,    Surface::black,
                                     Surface::lightnessBar, Surface::blackBar,     Surface::hueBar,
                                     Surface::saturationBar};
    constexpr Key kKeys[] = {Key::left, Key::right, Key::up, Key::down, Key::clear};
    for (int time = 0; time < 3000; ++time) {
        const Surface surface = kSurfaces[random() % 7];
        const Size size{static_cast<int32_t>(random() % 400), static_cast<int32_t>(random() % 300)};
        const Point at{static_cast<int32_t>(random() % 600) - 100,
                       static_cast<int32_t>(random() % 500) - 100};
        if (time % 3 == 0) page.model.step(surface, kKeys[random() % 5], random() % 2 == 0);
        else page.press(surface, size, at);
        const InfluenceRange range = page.model.range();
        const Place place = page.model.place();
        ASSERT_LE(range.lightest, place.lightness);
        ASSERT_GE(range.darkest, place.lightness);
        ASSERT_TRUE(range.hue >= 0 && range.hue <= 180);
        ASSERT_TRUE(range.saturation >= 0 && range.saturation <= 200);
        for (const int32_t level : page.model.picked()) ASSERT_TRUE(level >= 0 && level <= 255);
        if (const auto span = page.model.blackSpan()) {
            const int32_t percent = (page.model.picked()[3] * 200 + 255) / 510;
            ASSERT_TRUE(span->low <= percent && percent <= span->high);
        }
        ASSERT_EQ(page.model.strengthOn(Surface::blackBar, 256, page.model.picked()[3]), 255);
        // What is shown stays on the surface, whatever its size.
        const int32_t right = std::max(0, size.width - 1), bottom = std::max(0, size.height - 1);
        for (const bool half : {false, true})
            for (const Line& line : page.model.outline(size, half))
                for (const Point end : {line.from, line.to}) {
                    ASSERT_TRUE(end.x >= 0 && end.x <= right) << end.x;
                    ASSERT_TRUE(end.y >= 0 && end.y <= bottom) << end.y;
                }
        const Point marker = page.model.marker(size);
        ASSERT_TRUE(marker.x >= 0 && marker.x <= right && marker.y >= 0 && marker.y <= bottom);
        for (const Surface bar : {Surface::hueBar, Surface::saturationBar, Surface::lightnessBar}) {
            const int32_t strength = page.model.strengthOn(bar, size.height, at.y);
            ASSERT_TRUE(strength >= 0 && strength <= 255);
        }
    }
}

TEST(ColourCorrectionRange, TheCountFollowsEveryEdit) {
    Correcting page;
    const auto expectCount = [&] {
        std::vector<uint32_t> grid(page.profile->grid, page.profile->grid + KOLINK_CMYK_NODES);
        const int count = test::referenceChange(grid.data(), page.model.picked(), {},
                                                page.referenceRange());
        EXPECT_EQ(page.model.nodesInRange(), count);
    };
    expectCount();
    page.model.setHueReach("77");
    expectCount();
    page.model.setSaturationReach("60");
    expectCount();
    page.press(Surface::lightnessBar, kStrip, {0, 31});
    expectCount();
    page.press(Surface::blackBar, kBlackStrip, {16, 0});
    expectCount();
    page.press(Surface::area, kArea, {300, 20});
    expectCount();
    page.press(Surface::lightness, kStrip, {0, 20});
    expectCount();
    page.model.step(Surface::lightnessBar, Key::clear, false);
    expectCount();
}

TEST(ColourCorrectionTexts, ShowTheSpansOnceTheyAreSpecified) {
    Correcting page;
    EXPECT_EQ(page.model.lightnessText(), "\x8e\x77\x92\xe8\x82\xc8\x82\xb5");  // none specified
    EXPECT_EQ(page.model.blackText(), page.model.lightnessText());
    page.lightness(60, 140);
    page.black(0, 128);
    EXPECT_EQ(page.model.lightnessText(), "L: 30 % \x81\x60 70 %");
    EXPECT_EQ(page.model.blackText(), "K: 0 % \x81\x60 50 %");
    page.model.step(Surface::blackBar, Key::clear, false);
    EXPECT_EQ(page.model.blackText(), "\x8e\x77\x92\xe8\x82\xc8\x82\xb5");
}

TEST(ColourCorrectionTexts, ShowTheRangeAndTheCount) {
    Correcting page;
    page.press(Surface::area, kArea, {10, 20});
    EXPECT_EQ(page.model.rangeText(),
              "\x8d\xca\x93\x78 60 \x81\x60 100 %\x81\x41"
              "\x90\x46\x91\x8a 340 \x81\x60 40 \x93\x78");
    EXPECT_NE(page.model.countText().find(std::to_string(page.model.nodesInRange())),
              std::string::npos);
}

TEST(ColourCorrectionKeys, StepThePickedColour) {
    Correcting page;
    page.model.step(Surface::area, Key::right, false);
    page.model.step(Surface::area, Key::up, false);
    EXPECT_EQ(page.model.place().hue, 181);
    EXPECT_EQ(page.model.place().saturation, 101);
    page.model.step(Surface::lightness, Key::up, false);
    EXPECT_EQ(page.model.place().lightness, 99);
    page.model.step(Surface::black, Key::right, false);
    EXPECT_EQ(page.model.picked()[3], 1);
    page.model.step(Surface::black, Key::left, false);
    page.model.step(Surface::black, Key::left, false);
    EXPECT_EQ(page.model.picked()[3], 0);
}

TEST(ColourCorrectionKeys, GoRoundTheHuesAndThroughTheGreys) {
    Correcting page;
    page.press(Surface::area, kArea, {0, 100});
    page.model.step(Surface::area, Key::left, false);
    EXPECT_EQ(page.model.place().hue, 359);
    page.press(Surface::area, kArea, {77, 200});
    EXPECT_EQ(page.model.place().hue, kNoHue);
    for (int time = 0; time < 100; ++time) page.model.step(Surface::area, Key::up, false);
    EXPECT_EQ(page.model.place(), (Place{77, 100, 100}));
}

TEST(ColourCorrectionKeys, StepTheReachesAndTheSpans) {
    Correcting page;
    page.model.step(Surface::hueBar, Key::right, false);
    page.model.step(Surface::saturationBar, Key::down, false);
    EXPECT_EQ(page.model.hueReach(), 31);
    EXPECT_EQ(page.model.saturationReach(), 29);
    page.model.step(Surface::lightnessBar, Key::down, false);
    page.model.step(Surface::lightnessBar, Key::up, true);
    EXPECT_EQ(page.model.lightnessSpan(), (Span{1, 99}));
    page.model.step(Surface::blackBar, Key::left, false);
    EXPECT_EQ(page.model.blackSpan(), (Span{0, 99}));
}

TEST(ColourCorrectionPicture, TheAreaShowsWhatTheProfilePrints) {
    Correcting page(randomProfile(15));
    const auto asRgb = [](std::span<const uint32_t> cmyk, std::span<uint32_t> rgb) {
        for (size_t at = 0; at < cmyk.size(); ++at) rgb[at] = cmyk[at] >> 8;  // C, M, Y
    };
    page.pick({191, 64, 64, 90});
    const Cells cells = page.model.areaCells(asRgb);
    ASSERT_EQ(cells.pixels.size(), static_cast<size_t>(cells.width * cells.height));
    for (const auto& [x, y] : {std::pair{0, 0}, {60, 20}, {179, 99}, {90, 50}}) {
        const Levels cmy = levelsAt({2 * x + 1, 200 - 2 * y - 1, 100});
        Cmyk levels = {cmy[0], cmy[1], cmy[2], 90};
        cmykToCmyk16(*page.profile, levels);
        uint32_t inks[3];
        for (size_t ink = 0; ink < 3; ++ink) inks[ink] = fromScale16(levels[ink]);
        // Y came out as the red of a Windows colour, C as its blue; a bitmap has blue lowest.
        EXPECT_EQ(cells.pixels[y * cells.width + x], inks[2] << 16 | inks[1] << 8 | inks[0])
            << x << ' ' << y;
    }
}

TEST(ColourCorrectionPicture, TheOutputCurvesBelongToWhatIsPrinted) {
    Correcting page;
    std::ranges::fill(page.profile->curveValues[4], uint8_t{77});
    const auto cyan = [](std::span<const uint32_t> cmyk, std::span<uint32_t> rgb) {
        for (size_t at = 0; at < cmyk.size(); ++at) rgb[at] = cmyk[at] >> 24;
    };
    for (const uint32_t pixel : page.model.areaCells(cyan).pixels) ASSERT_EQ(pixel, 77u << 16);
    EXPECT_EQ(page.model.displayed({200, 0, 0, 0}, cyan), 77u);
    EXPECT_EQ(page.model.onPaper({200, 11, 12, 13}), 77u << 24 | 11 << 16 | 12 << 8 | 13);
}

TEST(ColourCorrectionPicture, OfTheFileStandsInPlaceOfTheEditedProfileUntilTheNextChange) {
    Correcting page;
    const auto inks = [](std::span<const uint32_t> cmyk, std::span<uint32_t> rgb) {
        std::ranges::copy(cmyk, rgb.begin());
    };
    const auto before = page.model.areaCells(inks).pixels;
    page.change({0, 60, 0, 0});
    page.model.change();
    const auto after = page.model.areaCells(inks).pixels;
    EXPECT_NE(after, before);
    page.model.showInstead(std::shared_ptr<const CmykProfile>(createProfile().release(),
                                                              BlockDeleter()));
    EXPECT_TRUE(page.model.showsFile());
    EXPECT_EQ(page.model.areaCells(inks).pixels, before);
    page.model.showInstead(nullptr);
    EXPECT_EQ(page.model.areaCells(inks).pixels, after);
}

TEST(ColourCorrectionMade, EveryChangeStandsInTheListAndGoesFromItWhenTakenBack) {
    Correcting page;
    EXPECT_TRUE(page.model.made().empty());
    page.pick({200, 80, 60, 24});
    page.change({20, 0, -7, 0});
    page.model.change();
    page.pick({10, 200, 60, 24});
    page.change({0, 5, 0, 0});
    page.model.change();
    ASSERT_EQ(page.model.made().size(), 2u);
    EXPECT_EQ(page.model.madeText(0), "1: C 200 M 80 Y 60 K 24 : C +20 Y -7");
    page.model.setLevels256(false);
    EXPECT_EQ(page.model.madeText(1), "2: C 4 M 78 Y 24 K 9 : M +2");
    page.undo();
    EXPECT_EQ(page.model.made().size(), 1u);
    page.history.redo();
    EXPECT_EQ(page.model.made().size(), 2u);
}

TEST(ColourCorrectionMade, OneThatIsTakenOutLeavesTheGridAsIfOnlyTheOthersHadBeenMade) {
    Correcting page(randomProfile(21));
    std::vector<uint32_t> expected(page.profile->grid, page.profile->grid + KOLINK_CMYK_NODES);
    const std::array<Cmyk, 3> picks = {{{200, 80, 60, 24}, {180, 90, 50, 60}, {190, 100, 80, 0}}};
    page.reach(60, 50);
    for (const Cmyk& picked : picks) {
        page.pick(picked);
        page.change({30, -30, 25, -25});
        const auto reach = page.referenceRange();
        if (picked != picks[1])  // with the inks that it was given on the page
            test::referenceChange(expected.data(), picked, page.delta(), reach);
        page.model.change();
    }
    page.model.takeOut(1);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), page.profile->grid));
    ASSERT_EQ(page.model.made().size(), 2u);
    EXPECT_EQ(page.model.made()[1].picked, picks[2]);
    EXPECT_TRUE(page.undo());
    EXPECT_EQ(page.model.made().size(), 3u);
}

TEST(ColourCorrectionMade, TakingOutTheOnlyOneGivesTheGridFromBeforeAndIsTakenBack) {
    Correcting page(randomProfile(22));
    const auto before = randomProfile(22);
    page.reach(90, 60);
    page.change({100, -100, 50, 50});
    page.model.change();
    const std::vector<uint32_t> after(page.profile->grid, page.profile->grid + KOLINK_CMYK_NODES);
    page.model.takeOut(0);
    EXPECT_EQ(differing(*page.profile, *before), 0u);
    EXPECT_TRUE(page.model.made().empty());
    EXPECT_TRUE(page.undo());
    EXPECT_TRUE(std::equal(after.begin(), after.end(), page.profile->grid));
    EXPECT_EQ(page.model.made().size(), 1u);
    page.model.takeOut(7);  // there is none
    EXPECT_EQ(page.model.made().size(), 1u);
}

TEST(ColourCorrectionMade, AListFromBeforeANewProfileComesBackWithItsOwnGrid) {
    Correcting page(randomProfile(23));
    const auto before = randomProfile(23);
    page.change({40, 0, 0, 0});
    page.model.change();
    // Another profile in its place, as New makes one, with a change of its own.
    const auto other = std::make_shared<std::vector<uint32_t>>(KOLINK_CMYK_NODES, 0x11223344u);
    const auto exchange = [&] {
        std::swap_ranges(other->begin(), other->end(), page.profile->grid);
    };
    exchange();
    page.history.add(exchange);
    page.model.forgetMade();
    page.change({0, 40, 0, 0});
    page.model.change();
    EXPECT_EQ(page.model.made().size(), 1u);
    page.undo();
    page.undo();
    page.undo();
    EXPECT_EQ(differing(*page.profile, *before), 0u);
    page.history.redo();
    ASSERT_EQ(page.model.made().size(), 1u);
    page.model.takeOut(0);
    EXPECT_EQ(differing(*page.profile, *before), 0u);
}

TEST(ColourCorrectionPicture, TheScalesRunFromWhiteToInkAndFromNoBlackToBlack) {
    Correcting page;
    const auto blackAlone = [](std::span<const uint32_t> cmyk, std::span<uint32_t> rgb) {
        for (size_t at = 0; at < cmyk.size(); ++at) rgb[at] = cmyk[at] & 255;
    };
    const auto inks = [](std::span<const uint32_t> cmyk, std::span<uint32_t> rgb) {
        for (size_t at = 0; at < cmyk.size(); ++at) rgb[at] = cmyk[at] >> 24;
    };
    const Cells black = page.model.scaleCells(Surface::black, blackAlone);
    EXPECT_EQ(black.pixels.front(), 0u);
    EXPECT_EQ(black.pixels.back(), 255u << 16);
    const Cells lightness = page.model.scaleCells(Surface::lightness, inks);
    EXPECT_EQ(lightness.pixels.front(), 0u);
    EXPECT_EQ(lightness.pixels.back(), 255u << 16);
    EXPECT_EQ(lightness.height, static_cast<int32_t>(lightness.pixels.size()));
}

TEST(ColourCorrectionPicture, TheOutlineOfARangeThatWrapsIsDrawnAtBothEdges) {
    Correcting page;
    page.press(Surface::area, kArea, {10, 100});
    page.reach(30, 20);
    const std::vector<Line> lines = page.model.outline(kArea, false);
    const std::vector<Line> expected = {{{340, 60}, {359, 60}},   {{0, 60}, {40, 60}},
                                        {{340, 140}, {359, 140}}, {{0, 140}, {40, 140}},
                                        {{340, 60}, {340, 140}},  {{40, 60}, {40, 140}}};
    EXPECT_EQ(lines, expected);
}

TEST(ColourCorrectionPicture, TheOutlineGoesOnAtTheLeftEdgeAsWell) {
    Correcting page;
    page.press(Surface::area, kArea, {350, 100});
    page.reach(30, 20);
    const std::vector<Line> expected = {{{320, 60}, {359, 60}},   {{0, 60}, {20, 60}},
                                        {{320, 140}, {359, 140}}, {{0, 140}, {20, 140}},
                                        {{320, 60}, {320, 140}},  {{20, 60}, {20, 140}}};
    EXPECT_EQ(page.model.outline(kArea, false), expected);
}

TEST(ColourCorrectionPicture, AnOutlineOfEveryHueHasNoSides) {
    Correcting page;
    page.reach(180, 20);
    const std::vector<Line> expected = {{{0, 60}, {359, 60}}, {{0, 140}, {359, 140}}};
    EXPECT_EQ(page.model.outline(kArea, false), expected);
    page.reach(20, 20);
    page.press(Surface::area, kArea, {90, 200});  // a grey has every hue
    EXPECT_EQ(page.model.outline(kArea, false),
              (std::vector<Line>{{{0, 160}, {359, 160}}, {{0, 200}, {359, 200}}}));
}

TEST(ColourCorrectionPicture, TheOutlineIsOpenWhereTheRangeGoesOnBeyondTheArea) {
    Correcting page;
    page.press(Surface::area, kArea, {180, 10});
    page.reach(30, 20);
    const std::vector<Line> expected = {{{150, 50}, {210, 50}}, {{150, 0}, {150, 50}},
                                        {{210, 0}, {210, 50}}};
    EXPECT_EQ(page.model.outline(kArea, false), expected);
}

TEST(ColourCorrectionPicture, TheHalfOutlineIsHalfAsFarFromThePickedColour) {
    Correcting page;
    page.reach(30, 20);
    const std::vector<Line> expected = {{{165, 80}, {195, 80}}, {{165, 120}, {195, 120}},
                                        {{165, 80}, {165, 120}}, {{195, 80}, {195, 120}}};
    EXPECT_EQ(page.model.outline(kArea, true), expected);
}

TEST(ColourCorrectionPicture, BarsShowTheFadeFromThePickedColourToTheEdges) {
    Correcting page;
    page.reach(30, 20);
    page.lightness(80, 140);
    EXPECT_EQ(page.model.strengthOn(Surface::hueBar, 360, 180), 255);
    EXPECT_EQ(page.model.strengthOn(Surface::hueBar, 360, 165), 128);
    EXPECT_EQ(page.model.strengthOn(Surface::hueBar, 360, 210), 0);
    EXPECT_EQ(page.model.strengthOn(Surface::saturationBar, 201, 80), 128);
    EXPECT_EQ(page.model.strengthOn(Surface::lightnessBar, 201, 90), 128);
    EXPECT_EQ(page.model.strengthOn(Surface::lightnessBar, 201, 120), 128);
    EXPECT_EQ(page.model.strengthOn(Surface::lightnessBar, 201, 79), 0);
    page.black(0, 100);
    EXPECT_EQ(page.model.strengthOn(Surface::blackBar, 256, 60), 255);
    EXPECT_EQ(page.model.strengthOn(Surface::blackBar, 256, 120), 0);
}

}  // namespace
}  // namespace ko::cmyk
