#include "quality/colour_set.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "frame/bytes.h"

namespace ko::test {
namespace {

using namespace quality;

constexpr uint32_t kSpaces[] = {fourcc("CMYK"), fourcc("RGB "), fourcc("GRAY")};

TEST(ColourSet, HasAChartOfAsManyPatchesInEverySpace) {
    for (const uint32_t space : kSpaces) {
        const auto colours = chart(space);
        EXPECT_EQ(colours.size(), kChartPatches);
        for (const Colour& colour : colours)
            for (const double value : colour) EXPECT_TRUE(value >= 0 && value <= 1);
    }
}

TEST(ColourSet, HasSolidsAndBlackInTheChart) {
    const auto colours = chart(fourcc("CMYK"));
    const auto has = [&](const Colour& colour) {
        return std::find(colours.begin(), colours.end(), colour) != colours.end();
    };
    EXPECT_TRUE(has({0, 0, 0, 0}));
    EXPECT_TRUE(has({1, 0, 0, 0}));
    EXPECT_TRUE(has({1, 1, 1, 1}));
    EXPECT_TRUE(has({0, 0, 0, .05}));
}

TEST(ColourSet, KeepsRandomColoursWithinThreeHundredPercent) {
    const auto colours = randomColours(fourcc("CMYK"));
    EXPECT_EQ(colours.size(), kRandomColours);
    double most = 0;
    size_t withoutBlack = 0;
    for (const Colour& colour : colours) {
        most = std::max(most, colour[0] + colour[1] + colour[2] + colour[3]);
        withoutBlack += colour[3] == 0;
    }
    EXPECT_LE(most, 3 + 1e-12);
    EXPECT_GT(most, 2.99);
    EXPECT_EQ(withoutBlack, kRandomColours / 4);
}

// What a report says today it says tomorrow, wherever it runs.
TEST(ColourSet, DrawsTheSameColoursEverywhere) {
    const auto colours = randomColours(fourcc("CMYK"));
    EXPECT_EQ(colours[0][0], 2896768699 / 4294967296.0);
    EXPECT_EQ(colours, randomColours(fourcc("CMYK")));
}

TEST(ColourSet, KnowsTheKindsOfAColour) {
    const uint32_t press = fourcc("CMYK");
    EXPECT_EQ(kindsOf(press, {0.5, 0, 0, 0}, {70, -20, -30}), kPrimary);
    EXPECT_EQ(kindsOf(press, {0, 0, 0, 1}, {15, 0, 0}), kPrimary | kGrey | kShadow);
    EXPECT_EQ(kindsOf(press, {1, 1, 0, 0}, {25, 20, -45}), kSecondary | kShadow);
    EXPECT_EQ(kindsOf(press, {1, 0, 0, 1}, {35, -20, -45}), 0);
    EXPECT_EQ(kindsOf(press, {.1, .4, .5, 0}, {65, 20, 22}), kSkin);
    EXPECT_EQ(kindsOf(press, {.1, .4, .5, 0}, {65, 22, 11}), 0);
    EXPECT_EQ(kindsOf(press, {0, 0, 0, 0}, {100, 0, 0}), kGrey | kHighlight);
    EXPECT_EQ(kindsOf(fourcc("RGB "), {1, 0, 0, 0}, {54, 80, 70}), kPrimary);
    EXPECT_EQ(kindsOf(fourcc("RGB "), {1, 1, 0, 0}, {97, -20, 90}), kSecondary | kHighlight);
    EXPECT_EQ(kindsOf(fourcc("GRAY"), {1, 0, 0, 0}, {50, 0, 0}), kGrey);
}

}  // namespace
}  // namespace ko::test
