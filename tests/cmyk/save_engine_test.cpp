// Saving: what only the steps behind the exported function show.
#include <gtest/gtest.h>

#include "cmyk/save.h"
#include "tests/cmyk/support.h"

namespace ko::test {
namespace {

TEST(CmykSaveSteps, SaveWithoutALinkObjectCountsAsDoneAndWritesNothing) {
    const TempFolder folder;
    const auto profile = cmyk::createProfile();
    EXPECT_TRUE(cmyk::saveInto(nullptr, *profile, folder.path("link.icc").c_str()));
    EXPECT_FALSE(exists(folder.path("link.icc")));
}

TEST(CmykSaveSteps, OnlyFlagsOfOneAreControlPoints) {
    const auto profile = cmyk::createProfile();
    profile->curveFlags[3][8] = 2;
    profile->curveFlags[3][16] = 1;
    const auto control = cmyk::controlPoints(*profile, 3);
    ASSERT_EQ(control.count, 3);
    EXPECT_EQ(control.points[1].x, 64);
}

TEST(CmykSaveSteps, ControlPointsStandAtTheirLevelsInOrder) {
    const auto profile = cmyk::createProfile();
    profile->curveFlags[0][63] = 1;
    profile->curveValues[0][63] = 7;
    const auto control = cmyk::controlPoints(*profile, 0);
    ASSERT_EQ(control.count, 3);
    EXPECT_EQ(control.points[0].x, 0);
    EXPECT_EQ(control.points[1].x, 252);
    EXPECT_EQ(control.points[1].y, 7);
    EXPECT_EQ(control.points[2].x, 255);
}

}  // namespace
}  // namespace ko::test
