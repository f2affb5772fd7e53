// Where colours stand on the colour-correction page, and the way from one to the edge of a range.
#include "cmyk/dialog/colour_place.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/cmyk/correction_reference.h"

namespace ko::cmyk {
namespace {

constexpr InfluenceRange kWide = {180, 200, 0, 200};

TEST(ColourPlace, EveryNodeStandsWhereTheRulesSay) {
    for (int c = 0; c < 33; ++c)
        for (int m = 0; m < 33; ++m)
            for (int y = 0; y < 33; ++y) {
                const int levels[] = {test::referenceLevel(c), test::referenceLevel(m),
                                      test::referenceLevel(y)};
                const Place place = placeOf({levels[0], levels[1], levels[2]});
                const auto expected = test::referencePlace(levels[0], levels[1], levels[2]);
                SCOPED_TRACE(testing::Message() << c << ' ' << m << ' ' << y);
                ASSERT_EQ(place.hue, expected.grey ? kNoHue : expected.hue);
                ASSERT_EQ(place.saturation, expected.saturation);
                ASSERT_EQ(place.lightness, expected.lightness);
            }
}

TEST(ColourPlace, PureInksAndTheirOverprintsStandAtTheSextantsBorders) {
    const Levels colours[] = {{0, 255, 255}, {0, 0, 255}, {255, 0, 255},
                              {255, 0, 0},   {255, 255, 0}, {0, 255, 0}};
    for (int32_t sextant = 0; sextant < 6; ++sextant)
        EXPECT_EQ(placeOf(colours[sextant]), (Place{60 * sextant, 200, 100}));
}

TEST(ColourPlace, OneLevelBesideASextantsBorderLiesInTheSextantOfThatSide) {
    EXPECT_EQ(placeOf({0, 240, 255}).hue, 3);     // red, towards yellow
    EXPECT_EQ(placeOf({0, 255, 240}).hue, 356);   // red, towards magenta
    EXPECT_EQ(placeOf({0, 1, 255}).hue, 59);      // yellow, from red
    EXPECT_EQ(placeOf({1, 0, 255}).hue, 60);      // yellow, towards green
    EXPECT_EQ(placeOf({255, 0, 1}).hue, 179);     // cyan, from green
    EXPECT_EQ(placeOf({255, 1, 0}).hue, 180);     // cyan, towards blue
    EXPECT_EQ(placeOf({1, 255, 0}).hue, 299);     // magenta, from blue
    EXPECT_EQ(placeOf({0, 255, 1}).hue, 300);     // magenta, towards red
}

TEST(ColourPlace, GreysHaveNoHueAndNoSaturation) {
    for (int32_t level = 0; level < 256; ++level)
        EXPECT_EQ(placeOf({level, level, level}), (Place{kNoHue, 0, level * 2 * 200 / 510}));
}

TEST(ColourPlace, WhiteIsAtTheTopOfTheStripAndFullInkAtItsBottom) {
    EXPECT_EQ(placeOf({0, 0, 0}).lightness, 0);
    EXPECT_EQ(placeOf({255, 255, 255}).lightness, 200);
}

TEST(ColourPlace, AColourOfAPlaceHasItsLightnessExactly) {
    for (int32_t lightness = 0; lightness <= 200; ++lightness)
        for (int32_t saturation = 0; saturation <= 200; saturation += 7)
            for (int32_t hue = 0; hue < 360; hue += 11) {
                const Levels levels = levelsAt({hue, saturation, lightness});
                for (const int32_t level : levels) ASSERT_TRUE(level >= 0 && level <= 255);
                ASSERT_EQ(placeOf(levels).lightness, lightness) << hue << ' ' << saturation;
            }
}

TEST(ColourPlace, ASaturationOf0IsAGreyAtEveryLightness) {
    for (int32_t lightness = 0; lightness <= 200; ++lightness)
        for (int32_t hue = 0; hue < 360; hue += 59)
            ASSERT_EQ(placeOf(levelsAt({hue, 0, lightness})), (Place{kNoHue, 0, lightness}));
}

TEST(ColourPlace, InTheMiddleOfTheStripAPlacesColourStandsThereAgain) {
    for (int32_t hue = 0; hue < 360; ++hue)
        for (int32_t saturation = 48; saturation <= 200; ++saturation) {
            const Place place = placeOf(levelsAt({hue, saturation, 100}));
            ASSERT_EQ(place.hue, hue) << saturation;
            ASSERT_GE(place.saturation, saturation);
            ASSERT_LE(place.saturation, std::min(saturation + 1, 200));
        }
}

// What a whole level more of chroma makes of saturation and hue is all that may be missing.
TEST(ColourPlace, APlacesColourIsAsNearAsWholeLevelsAllow) {
    for (int32_t lightness = 1; lightness < 200; ++lightness)
        for (int32_t saturation = 1; saturation <= 200; saturation += 3)
            for (int32_t hue = 0; hue < 360; hue += 7) {
                const Levels levels = levelsAt({hue, saturation, lightness});
                const Place place = placeOf(levels);
                const int32_t sum = *std::max_element(levels.begin(), levels.end()) +
                                    *std::min_element(levels.begin(), levels.end());
                const int32_t most = sum <= 255 ? sum : 510 - sum;
                ASSERT_NE(place.hue, kNoHue);
                ASSERT_GE(place.saturation, saturation);
                ASSERT_LE(place.saturation, saturation + 400 / most + 1);
                const int32_t chroma = *std::max_element(levels.begin(), levels.end()) -
                                       *std::min_element(levels.begin(), levels.end());
                ASSERT_LE(std::abs(hueFrom(hue, place.hue)), 60 / chroma) << hue << ' ' << chroma;
            }
}

TEST(ColourPlace, AColoursOwnPlaceGivesAColourNotFarFromIt) {
    std::mt19937 random(5);
    for (int time = 0; time < 20000; ++time) {
        Levels levels;
        for (int32_t& level : levels) level = static_cast<int32_t>(random() & 255);
        Place place = placeOf(levels);
        if (place.hue == kNoHue) place.hue = 0;
        const Levels again = levelsAt(place);
        // A step of lightness is 3 of largest + smallest, one of saturation under 2 of chroma.
        for (size_t ink = 0; ink < 3; ++ink) ASSERT_LE(std::abs(levels[ink] - again[ink]), 5);
    }
}

TEST(ColourPlace, TheShortWayBetweenHuesCrossesTheAreasEdge) {
    for (int32_t from = 0; from < 360; ++from)
        for (int32_t by = -180; by < 180; ++by)
            ASSERT_EQ(hueFrom(from, (from + by + 360) % 360), by);
}

TEST(InfluenceFade, EveryNodeFadesAsTheRulesSay) {
    std::mt19937 random(11);
    const auto upTo = [&](int32_t last) { return static_cast<int32_t>(random() % (last + 1)); };
    for (int time = 0; time < 8; ++time) {
        Levels levels = {upTo(255), upTo(255), upTo(255)};
        if (time == 3) levels = {90, 90, 90};
        if (time == 4) levels = {10, 250, 245};  // beside red, so that the range wraps
        if (time == 5) levels = {10, 245, 250};
        const Place picked = placeOf(levels);
        const InfluenceRange range{time == 4 || time == 5 ? 40 : upTo(180), upTo(200),
                                   upTo(picked.lightness),
                                   picked.lightness + upTo(200 - picked.lightness)};
        const test::ReferenceRange same{range.hue, range.saturation, range.lightest, range.darkest,
                                        0, 100};
        const auto pickedAgain = test::referencePlace(levels[0], levels[1], levels[2]);
        int inside = 0;
        for (int node = 0; node < 33 * 33 * 33; node += 3) {
            const int c = test::referenceLevel(node / 1089);
            const int m = test::referenceLevel(node / 33 % 33), y = test::referenceLevel(node % 33);
            const auto fade = fadeAt(picked, placeOf({c, m, y}), range);
            const auto expected =
                test::referenceFade(pickedAgain, test::referencePlace(c, m, y), same);
            ASSERT_EQ(fade.has_value(), expected.has_value()) << time << ' ' << node;
            if (!fade) continue;
            ++inside;
            ASSERT_EQ(fade->distance, expected->first) << time << ' ' << node;
            ASSERT_EQ(fade->edge, expected->second) << time << ' ' << node;
            ASSERT_LE(fade->distance, fade->edge);
        }
        EXPECT_GT(inside, 0) << time;
    }
}

TEST(InfluenceFade, DistancesAreTruncatedAfterTheRoot) {
    const Place picked{100, 100, 100};
    // 3, 1 and 1 away: the root of 11; the edge is 30 along the hue, ten times as far: of 1100.
    EXPECT_EQ(fadeAt(picked, {103, 101, 101}, {30, 60, 0, 200}), (Fade{3, 33}));
    // A root that is whole stays whole.
    EXPECT_EQ(fadeAt(picked, {103, 104, 100}, {30, 60, 0, 200}), (Fade{5, 50}));
}

TEST(InfluenceFade, ThePlaceAtTheEdgeIsAsFarAsTheEdge) {
    const Place picked{100, 100, 100};
    EXPECT_EQ(fadeAt(picked, {130, 100, 100}, {30, 60, 0, 200}), (Fade{30, 30}));
    EXPECT_FALSE(fadeAt(picked, {131, 100, 100}, {30, 60, 0, 200}));
    EXPECT_EQ(fadeAt(picked, {100, 160, 100}, {30, 60, 0, 200}), (Fade{60, 60}));
    EXPECT_FALSE(fadeAt(picked, {100, 161, 100}, {30, 60, 0, 200}));
    EXPECT_EQ(fadeAt(picked, {100, 100, 90}, {30, 60, 90, 200}), (Fade{10, 10}));
    EXPECT_FALSE(fadeAt(picked, {100, 100, 89}, {30, 60, 90, 200}));
    EXPECT_EQ(fadeAt(picked, {100, 100, 115}, {30, 60, 90, 115}), (Fade{15, 15}));
    EXPECT_FALSE(fadeAt(picked, {100, 100, 116}, {30, 60, 90, 115}));
}

TEST(InfluenceFade, AHueRangeOverTheLeftOrTheRightEdgeGoesOnAtTheOther) {
    const InfluenceRange range{30, 60, 0, 200};
    EXPECT_EQ(fadeAt({10, 100, 100}, {340, 100, 100}, range), (Fade{30, 30}));
    EXPECT_FALSE(fadeAt({10, 100, 100}, {339, 100, 100}, range));
    EXPECT_EQ(fadeAt({350, 100, 100}, {20, 100, 100}, range), (Fade{30, 30}));
    EXPECT_FALSE(fadeAt({350, 100, 100}, {21, 100, 100}, range));
    EXPECT_EQ(fadeAt({0, 100, 100}, {180, 100, 100}, kWide), (Fade{180, 180}));
}

TEST(InfluenceFade, AGreyLiesAtEveryHue) {
    const Place cyan{180, 60, 100}, grey{kNoHue, 0, 100};
    EXPECT_EQ(fadeAt(cyan, grey, {5, 60, 0, 200}), (Fade{60, 60}));
    EXPECT_EQ(fadeAt(grey, cyan, {0, 100, 0, 200}), (Fade{60, 100}));
    EXPECT_EQ(fadeAt(grey, {0, 60, 100}, {0, 100, 0, 200}), (Fade{60, 100}));
}

TEST(InfluenceFade, TheRangeEndsAtGreyAndGoesOnBeyondFullSaturation) {
    EXPECT_EQ(fadeAt({100, 40, 100}, {100, 10, 100}, {30, 60, 0, 200}), (Fade{30, 40}));
    EXPECT_EQ(fadeAt({100, 180, 100}, {100, 200, 100}, {30, 60, 0, 200}), (Fade{20, 60}));
}

TEST(InfluenceFade, ThePickedPlaceItselfHasTheFurthestEdge) {
    const Place picked{100, 100, 90};
    EXPECT_EQ(fadeAt(picked, picked, {30, 60, 0, 200}), (Fade{0, 110}));
    EXPECT_EQ(fadeAt(picked, picked, {30, 60, 90, 90}), (Fade{0, 60}));
    EXPECT_EQ(fadeAt(picked, picked, {30, 0, 90, 90}), (Fade{0, 30}));
    EXPECT_EQ(fadeAt(picked, picked, {0, 0, 90, 90}), (Fade{0, 0}));
    // Every hue is the grey's own: how far hues reach says nothing about it.
    EXPECT_EQ(fadeAt({kNoHue, 0, 90}, {kNoHue, 0, 90}, {30, 0, 90, 90}), (Fade{0, 0}));
}

}  // namespace
}  // namespace ko::cmyk
