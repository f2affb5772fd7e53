// Rows through a saved link as a whole: input curves, grid, output curves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "tests/support/owned.h"

namespace {

using Profile = ko::test::OwnedCmykProfile;

constexpr int32_t kPixels = 3000;  // more than two portions, and a part of one

struct SavedLink : testing::Test {
    Profile profile{jKoCmykCreateProfile()};
    CmykCurveTables tables{};
    std::vector<uint8_t> input;
    std::mt19937 random{5};

    SavedLink() {
        for (int32_t at = 0; at < 4 * kPixels; ++at) input.push_back(static_cast<uint8_t>(random()));
        for (uint32_t& node : profile->grid) node = static_cast<uint32_t>(random());
    }
    void bend(int curve, uint8_t middle) {
        profile->curveFlags[curve][32] = 1;
        profile->curveValues[curve][32] = middle;
    }
    std::vector<uint16_t> row() {
        EXPECT_EQ(jKoCmykMakeCurveTables(profile.get(), &tables), 1);
        std::vector<uint16_t> output(input.size());
        jKoCmykLinkCMYKtoCMYK16Row(profile.get(), &tables, input.data(), kPixels, output.data());
        return output;
    }
    // The spline through the control points of a curve, as the library offers it to hosts.
    int32_t spline(int curve, int32_t level) {
        std::vector<TonePoint> points;
        for (int32_t j = 0; j < 65; ++j)
            if (profile->curveFlags[curve][j])
                points.push_back({4 * j - j / 64, profile->curveValues[curve][j]});
        const auto count = static_cast<int32_t>(points.size());
        return std::clamp(jKoToneGetSplineTone(points.data(), count, level), 0, 255);
    }
};

TEST_F(SavedLink, TakesTheCurvesAsTheSplinesHaveThem) {
    bend(1, 200);
    bend(6, 40);
    ASSERT_EQ(jKoCmykMakeCurveTables(profile.get(), &tables), 1);
    for (int curve = 0; curve < 8; ++curve)
        for (int32_t level = 0; level < 256; ++level)
            ASSERT_EQ(tables.levels[curve][level], spline(curve, level)) << curve << ' ' << level;
}

TEST_F(SavedLink, IsItsGridAloneWhereTheCurvesAreTheIdentity) {
    std::vector<uint16_t> grid(input.size());
    jKoCmykCMYKtoCMYK16Row(profile.get(), input.data(), kPixels, grid.data());
    EXPECT_EQ(row(), grid);
}

TEST_F(SavedLink, RoundsToAWholeLevelBeforeAnOutputCurveAndNowhereElse) {
    bend(0, 90);
    bend(3, 160);
    bend(5, 70);
    const auto output = row();
    for (size_t pixel = 0; pixel < kPixels; ++pixel) {
        int32_t colour[4];
        for (int ink = 0; ink < 4; ++ink) colour[ink] = spline(ink, input[4 * pixel + ink]);
        jKoCmykCMYKtoCMYK16(profile.get(), colour);
        colour[1] = 16 * spline(5, (colour[1] + 8) / 16);
        for (size_t ink = 0; ink < 4; ++ink)
            ASSERT_EQ(output[4 * pixel + ink], colour[ink]) << pixel << ' ' << ink;
    }
}

TEST_F(SavedLink, DoesNothingForNoPixelsAndRefusesNull) {
    uint16_t untouched = 7;
    jKoCmykLinkCMYKtoCMYK16Row(profile.get(), &tables, input.data(), 0, &untouched);
    jKoCmykLinkCMYKtoCMYK16Row(profile.get(), &tables, input.data(), -5, &untouched);
    EXPECT_EQ(untouched, 7);
    EXPECT_EQ(jKoCmykMakeCurveTables(nullptr, &tables), 0);
    EXPECT_EQ(jKoCmykMakeCurveTables(profile.get(), nullptr), 0);
}

}  // namespace
