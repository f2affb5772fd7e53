// The model of the colour pick dialog: the geometry of its controls and what its fields do.
#include "front/dialog/colour_pick.h"

#include <gtest/gtest.h>

#include "frame/colour_words.h"
#include "front/front.h"

namespace ko::front {
namespace {

using dialog::Point;
using dialog::Size;

constexpr Size kSizes[] = {{120, 64}, {242, 130}, {273, 181}, {547, 362}, {61, 33}, {1, 1}};

TEST(ColourPickGeometry, TheRampRisesStaysFallsAndEnds) {
    EXPECT_EQ(hueRamp(0), 0);
    EXPECT_EQ(hueRamp(19), 228);
    EXPECT_EQ(hueRamp(20), 255);
    EXPECT_EQ(hueRamp(60), 255);
    EXPECT_EQ(hueRamp(61), 228);
    EXPECT_EQ(hueRamp(80), 0);
    EXPECT_EQ(hueRamp(119), 0);
}

TEST(ColourPickGeometry, TheHuesGoFromRedThroughGreenAndBlue) {
    EXPECT_EQ(hueOf(0), (Light{255, 0, 0}));
    EXPECT_EQ(hueOf(10), (Light{255, 120, 0}));
    EXPECT_EQ(hueOf(40), (Light{0, 255, 0}));
    EXPECT_EQ(hueOf(80), (Light{0, 0, 255}));
    EXPECT_EQ(hueOf(119), (Light{255, 0, 12}));
}

TEST(ColourPickGeometry, TheBottomRowIsAFlatGrey) {
    for (int32_t column = 0; column < kHueColumns; ++column)
        EXPECT_EQ(fieldCell(column, 0), (Light{127, 127, 127}));
}

TEST(ColourPickGeometry, DarkChannelsTruncateTowardsTheGrey) {
    EXPECT_EQ(fieldCell(0, 63), (Light{253, 2, 2}));  // -127 * 63 / 64 is -125, not -126
    EXPECT_EQ(fieldCell(0, 32), (Light{191, 64, 64}));
    EXPECT_EQ(fieldInks({120, 64}, {0, 1}), (Inks{2, 253, 253}));
}

TEST(ColourPickGeometry, AClickOnTheTopRowGivesTheFullHue) {
    for (const Size size : kSizes) {
        EXPECT_EQ(fieldInks(size, {0, 0}), (Inks{0, 255, 255})) << size.width;
        const Light last = hueOf((size.width - 1) * 120 / size.width);
        EXPECT_EQ(fieldInks(size, {size.width - 1, 0}),
                  (Inks{255 - last.r, 255 - last.g, 255 - last.b}));
    }
}

TEST(ColourPickGeometry, AClickInTheMiddleOfTheFieldFollowsItsSize) {
    // Column 60 of 120: hues 100, 60 and 20.
    EXPECT_EQ(hueOf(60), (Light{0, 255, 255}));
    EXPECT_EQ(fieldInks({240, 128}, {120, 64}), (Inks{191, 64, 64}));
    EXPECT_EQ(fieldInks({273, 181}, {136, 90}), (Inks{191, 64, 78}));  // column 59, 91 of 181
}

TEST(ColourPickGeometry, PlacesOutsideTheFieldCountAsTheNearest) {
    for (const Size size : kSizes) {
        EXPECT_EQ(fieldInks(size, {-5000, -5000}), fieldInks(size, {0, 0}));
        EXPECT_EQ(fieldInks(size, {32767, 0}), fieldInks(size, {size.width - 1, 0}));
        EXPECT_EQ(fieldInks(size, {3, 32767}), (Inks{128, 128, 128}));
    }
}

TEST(ColourPickGeometry, TheMiddleOfTheLightnessStripIsTheBaseColour) {
    for (const int32_t height : {1, 2, 3, 64, 101, 168, 181, 362})
        for (int32_t base = 0; base <= 255; ++base)
            EXPECT_EQ(inkAtLightness(base, height / 2, height), base) << height;
}

TEST(ColourPickGeometry, TheLightnessStripRunsFromNoInkToFullInk) {
    for (const int32_t height : {2, 3, 64, 101, 168, 181, 362})
        for (const int32_t base : {0, 1, 90, 254, 255}) {
            EXPECT_EQ(inkAtLightness(base, 0, height), 0);
            EXPECT_EQ(inkAtLightness(base, height, height), 255) << height << ' ' << base;
            for (int32_t at = 1; at <= height; ++at)
                EXPECT_LE(inkAtLightness(base, at - 1, height), inkAtLightness(base, at, height));
        }
}

TEST(ColourPickGeometry, LightnessTruncatesItsProducts) {
    EXPECT_EQ(inkAtLightness(100, 33, 168), 39);   // 33 * 100 * 2 / 168
    EXPECT_EQ(inkAtLightness(100, 99, 168), 127);  // 155 * 15 * 2 / 168 is 27
    EXPECT_EQ(inkAtLightness(200, 49, 101), 194);  // an odd height: the middle is 50
}

TEST(ColourPickGeometry, BlackGrowsAlongItsStrip) {
    EXPECT_EQ(blackAt(0, 256), 0);
    EXPECT_EQ(blackAt(128, 256), 127);
    EXPECT_EQ(blackAt(100, 170), 150);
    EXPECT_EQ(blackAt(169, 170), 253);
    EXPECT_EQ(blackAt(-7, 170), 0);
    EXPECT_EQ(blackAt(9999, 170), 255);
}

TEST(ColourPickGeometry, TheBlackStripHasAHundredAndOneGreys) {
    EXPECT_EQ(greyOfStep(0), 255);
    EXPECT_EQ(greyOfStep(50), 128);
    EXPECT_EQ(greyOfStep(100), 0);
}

uint32_t rgbOf(Light light) { return static_cast<uint32_t>(light.r << 16 | light.g << 8 | light.b); }

TEST(ColourPickGeometry, ThePictureOfTheFieldScalesItsCells) {
    for (const Size size : kSizes) {
        const auto picture = fieldPicture(size);
        ASSERT_EQ(picture.size(), static_cast<size_t>(size.width * size.height));
        const auto at = [&](int32_t x, int32_t y) {
            return picture[static_cast<size_t>(y * size.width + x)];
        };
        for (int32_t column = 0; column < kHueColumns; ++column)
            for (int32_t row = 0; row < kSaturationRows; ++row) {
                const int32_t left = column * size.width / 120, right = (column + 1) * size.width / 120;
                const int32_t bottom = size.height - 1 - row * size.height / 64;
                const int32_t above = size.height - 1 - (row + 1) * size.height / 64;
                if (left == right || bottom == above) continue;  // a cell without a pixel
                EXPECT_EQ(at(left, bottom), rgbOf(fieldCell(column, row)));
                EXPECT_EQ(at(right - 1, above + 1), rgbOf(fieldCell(column, row)));
            }
    }
    EXPECT_TRUE(fieldPicture({-2, -2}).empty());
}

constexpr uint32_t kColour = 0x0a14c8ff;

TEST(ColourPick, BeginsWithTheColourGivenAndPacksItAgain) {
    const ColourPick pick(kColour);
    EXPECT_EQ(pick.level(Ink::c), 0x0a);
    EXPECT_EQ(pick.level(Ink::m), 0x14);
    EXPECT_EQ(pick.level(Ink::y), 0xc8);
    EXPECT_EQ(pick.level(Ink::k), 0xff);
    EXPECT_EQ(pick.packed(), kColour);
}

TEST(ColourPick, ShowsPercentUntilLevelsAreAskedFor) {
    ColourPick pick(0x80ff0033);
    EXPECT_EQ(pick.fieldText(Ink::c), "50");
    EXPECT_EQ(pick.fieldText(Ink::m), "100");
    EXPECT_EQ(pick.greatestValue(), 100);
    pick.show256Levels(true);
    EXPECT_EQ(pick.fieldText(Ink::c), "128");
    EXPECT_EQ(pick.fieldText(Ink::k), "51");
    EXPECT_EQ(pick.greatestValue(), 255);
    EXPECT_EQ(pick.packed(), 0x80ff0033u);
}

TEST(ColourPick, ATypedHundredPercentIsFullInk) {
    ColourPick pick(0);
    pick.leaveField(Ink::m, "100", true);
    EXPECT_EQ(pick.level(Ink::m), 255);
}

TEST(ColourPick, ATypedThreeHundredOf256LevelsIsFullInk) {
    ColourPick pick(0);
    pick.show256Levels(true);
    pick.leaveField(Ink::m, "300", true);
    EXPECT_EQ(pick.level(Ink::m), 255);
    EXPECT_EQ(pick.fieldText(Ink::m), "255");
}

TEST(ColourPick, AnyTextInAFieldIsANumberWithinItsRange) {
    for (const auto& [text, level] :
         {std::pair{"", 0}, {"-5", 0}, {"abc", 0}, {" 50", 128}, {"+10", 26}, {"12.9", 31},
          {"9999", 255}, {"??", 0}, {"00100", 26}}) {  // four characters count
        ColourPick pick(0xff000000);
        pick.leaveField(Ink::c, text, true);
        EXPECT_EQ(pick.level(Ink::c), level) << text;
    }
    ColourPick pick(0);
    pick.leaveField(Ink::c, std::string(10000, '9'), true);
    EXPECT_EQ(pick.level(Ink::c), 255);
}

TEST(ColourPick, AFieldThatNobodyTouchedKeepsItsLevel) {
    ColourPick pick(0x7f000000);  // shown as 50 %, which would be 128
    pick.leaveField(Ink::c, "50", false);
    EXPECT_EQ(pick.level(Ink::c), 127);
    pick.leaveField(Ink::c, "50", true);
    EXPECT_EQ(pick.level(Ink::c), 128);
}

TEST(ColourPick, APickInTheFieldGoesThroughTheLightness) {
    ColourPick pick(0);
    pick.clickLightness(168, 42);
    pick.clickField({240, 128}, {120, 64});
    EXPECT_EQ(pick.base(), (Inks{191, 64, 64}));
    EXPECT_EQ(pick.packed(), 0x5f202000u);  // a quarter of the strip: half the base
}

TEST(ColourPick, AClickInTheMiddleOfTheLightnessStripGivesTheBaseColour) {
    for (const int32_t height : {64, 101, 168, 337}) {
        ColourPick pick(0x12345678);
        pick.clickField({273, 181}, {200, 17});
        const Inks base = fieldInks({273, 181}, {200, 17});
        pick.clickLightness(height, height - 1);
        EXPECT_NE(pick.level(Ink::c), base.c);
        pick.clickLightness(height, height / 2);
        EXPECT_EQ((Inks{pick.level(Ink::c), pick.level(Ink::m), pick.level(Ink::y)}), base);
        EXPECT_EQ(pick.level(Ink::k), 0x78);  // black has a strip of its own
    }
}

TEST(ColourPick, LightnessRunsThroughTheColourGivenUntilAHueIsPicked) {
    ColourPick pick(0x20406000);
    EXPECT_EQ(pick.lightnessMark(168), 84);
    pick.clickLightness(168, 42);
    EXPECT_EQ(pick.packed(), 0x10203000u);
    pick.leaveField(Ink::c, "100", true);
    EXPECT_EQ(pick.packed(), 0xff203000u);
    EXPECT_EQ(pick.lightnessMark(168), 84);  // the typed colour is the middle now
    pick.clickLightness(168, 84);
    EXPECT_EQ(pick.packed(), 0xff203000u);
}

TEST(ColourPick, LightnessRunsThroughTheColourThatWasTypedLast) {
    ColourPick pick(0);
    pick.clickField({240, 128}, {120, 64});
    pick.leaveField(Ink::c, "3", true);
    EXPECT_EQ(pick.level(Ink::c), 8);
    EXPECT_EQ(pick.lightnessMark(168), 84);
    pick.clickLightness(168, 84);
    EXPECT_EQ(pick.level(Ink::c), 8);
}

TEST(ColourPick, TheMarkFollowsWhatIsTyped) {
    for (int32_t column = 0; column < kHueColumns; column += 7) {
        const Size cells{kHueColumns, kSaturationRows};
        ColourPick picked(0), typed(0);
        picked.clickField(cells, {column, 10});
        typed.show256Levels(true);
        for (const Ink ink : {Ink::c, Ink::m, Ink::y})
            typed.leaveField(ink, std::to_string(picked.level(ink)), true);
        ASSERT_TRUE(typed.fieldMark(cells).has_value());
        EXPECT_NEAR(typed.fieldMark(cells)->x, column, 2);
        EXPECT_NEAR(typed.fieldMark(cells)->y, 10, 2);
    }
}

TEST(ColourPick, AGreyKeepsTheHueOfTheMark) {
    ColourPick pick(0);
    pick.leaveField(Ink::k, "50", true);
    EXPECT_EQ(pick.fieldMark({240, 128}), std::nullopt);
    for (const Ink ink : {Ink::c, Ink::m}) pick.leaveField(ink, "40", true);
    const auto blue = pick.fieldMark({240, 128});
    ASSERT_TRUE(blue.has_value());
    EXPECT_LT(blue->y, 128);
    pick.leaveField(Ink::y, "40", true);  // grey now
    EXPECT_EQ(pick.fieldMark({240, 128}), (Point{blue->x, 128}));
}

TEST(ColourPick, BlackLeavesTheOtherInksAndTheLightnessAlone) {
    ColourPick pick(0x20406000);
    pick.clickLightness(168, 42);
    pick.clickBlack(170, 100);
    EXPECT_EQ(pick.packed(), 0x10203096u);
    EXPECT_EQ(pick.lightnessMark(168), 42);
}

TEST(ColourPick, MarksStandWhereTheClicksWere) {
    for (int32_t at = 0; at < 273; ++at) {
        ColourPick pick(0);
        pick.clickField({273, 181}, {at, at * 2 / 3});
        EXPECT_EQ(pick.fieldMark({273, 181}), (Point{at, at * 2 / 3}));
        pick.clickLightness(273, at);
        EXPECT_EQ(pick.lightnessMark(273), at);
        pick.clickBlack(273, at);
        EXPECT_LE(pick.blackMark(273), at);
        EXPECT_EQ(blackAt(pick.blackMark(273), 273), pick.level(Ink::k));
    }
}

TEST(ColourPick, TheFieldHasNoMarkUntilSomethingIsPickedThere) {
    ColourPick pick(kColour);
    EXPECT_FALSE(pick.fieldMark({273, 181}).has_value());
    EXPECT_EQ(pick.blackMark(170), 169);
    pick.clickLightness(168, 5);
    EXPECT_FALSE(pick.fieldMark({273, 181}).has_value());
}

TEST(ColourPick, MarksFollowAnotherSize) {
    ColourPick pick(0);
    pick.clickField({240, 128}, {60, 32});
    pick.clickLightness(168, 42);
    EXPECT_EQ(pick.fieldMark({480, 256}), (Point{120, 64}));
    EXPECT_EQ(pick.lightnessMark(336), 84);
}

TEST(ColourPick, ArrowKeysMoveByCellsToTheEndsOfTheField) {
    for (const Size size : {Size{273, 181}, {120, 64}, {547, 362}, {61, 33}}) {
        ColourPick pick(0);
        pick.clickField(size, {0, 0});
        int32_t steps = 0;
        for (Point last{-1, 0}; last != *pick.fieldMark(size) && steps < 2000; ++steps) {
            last = *pick.fieldMark(size);
            pick.stepField(size, 1, 0);
            if (steps < 119 && size.width >= 120) {
                EXPECT_EQ(pick.fieldMark(size)->x * 120 / size.width, steps + 1);
            }
        }
        EXPECT_EQ(pick.fieldMark(size)->x, size.width - 1);
        for (Point last{0, -1}; last != *pick.fieldMark(size) && steps < 2000; ++steps) {
            last = *pick.fieldMark(size);
            pick.stepField(size, 0, 1);
        }
        EXPECT_EQ(pick.fieldMark(size)->y, size.height);
        for (int32_t step = 0; step < 2000; ++step) pick.stepField(size, -1, -1);
        EXPECT_EQ(pick.fieldMark(size), (Point{0, 0}));
        EXPECT_LT(steps, 2000);
    }
}

TEST(ColourPick, TheFirstArrowKeyBeginsInTheMiddleOfTheField) {
    ColourPick pick(0);
    pick.stepField({240, 128}, 1, 0);
    EXPECT_EQ(pick.fieldMark({240, 128}), (Point{122, 64}));
}

TEST(ColourPick, ArrowKeysReachBothEndsOfTheLightnessStrip) {
    ColourPick pick(0x20406000);
    for (int32_t step = 0; step < 400; ++step) pick.stepLightness(168, 1);
    EXPECT_EQ(pick.packed(), 0xffffff00u);
    EXPECT_EQ(pick.lightnessMark(168), 167);
    for (int32_t step = 0; step < 400; ++step) pick.stepLightness(168, -1);
    EXPECT_EQ(pick.packed(), 0u);
}

TEST(ColourPick, AStepOfAnInkIsOneUnitOfWhatIsShown) {
    ColourPick pick(0);
    pick.stepInk(Ink::k, 1);
    EXPECT_EQ(pick.level(Ink::k), 3);  // one percent
    pick.show256Levels(true);
    pick.stepInk(Ink::k, 1);
    EXPECT_EQ(pick.level(Ink::k), 4);
    pick.stepInk(Ink::k, INT32_MIN);
    EXPECT_EQ(pick.level(Ink::k), 0);
    pick.stepInk(Ink::k, INT32_MAX);
    EXPECT_EQ(pick.level(Ink::k), 255);
}

TEST(ColourPick, TheSwatchIsWhatTheHostsOwnConversionShows) {
    for (const uint32_t cmyk : {0x00000000u, 0x0a141e05u, 0xff000080u, 0xffffffffu}) {
        const Rgb light = cmykToRgb(static_cast<int32_t>(cmyk >> 24), cmyk >> 16 & 255,
                                    cmyk >> 8 & 255, cmyk & 255);
        EXPECT_EQ(ColourPick(cmyk).swatch(), packRgb(light.r, light.g, light.b));
    }
    EXPECT_EQ(ColourPick(0).swatch(), 0xffffffu);
    EXPECT_EQ(ColourPick(0xff000000).swatch() & 255, 0u);  // a COLORREF: red lowest
}

TEST(ColourPick, TheLightnessStripShowsWhatAClickThereGives) {
    ColourPick pick(0x20406000);
    for (const int32_t y : {0, 20, 84, 100, 167}) {
        ColourPick clicked(0x20406000);
        clicked.clickLightness(168, y);
        EXPECT_EQ(pick.lightnessColour(168, y), clicked.swatch()) << y;
    }
}

TEST(ColourPick, ControlsWithoutASizeChangeNothing) {
    ColourPick pick(kColour);
    pick.clickField({0, 10}, {0, 0});
    pick.clickField({10, 0}, {0, 0});
    pick.stepField({0, 0}, 1, 1);
    pick.clickLightness(0, 0);
    pick.stepLightness(-3, 1);
    pick.clickBlack(0, 0);
    EXPECT_EQ(pick.packed(), kColour);
}

}  // namespace
}  // namespace ko::front
