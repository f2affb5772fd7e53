// The CMYK profile record and its defaults.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "tests/cmyk/support.h"

namespace ko::test {
namespace {

OwnedProfile newProfile() { return OwnedProfile(jKoCmykCreateProfile()); }

TEST(CmykProfile, IsOneFlatBlockOfTheSameLayoutEverywhere) {
    EXPECT_EQ(sizeof(CmykProfile), 4745548u);
    EXPECT_EQ(offsetof(CmykProfile, path), 64u);
    EXPECT_EQ(offsetof(CmykProfile, comment), 324u);
    EXPECT_EQ(offsetof(CmykProfile, curveValues), 824u);
    EXPECT_EQ(offsetof(CmykProfile, curveFlags), 1344u);
    EXPECT_EQ(offsetof(CmykProfile, grid), 1864u);
}

TEST(CmykProfile, IsCalledUntitledInJapaneseWhenFresh) {
    EXPECT_STREQ(newProfile()->name, "\x96\xB3\x91\xE8");
}

TEST(CmykProfile, HasEmptyPathAndCommentWhenFresh) {
    const auto profile = newProfile();
    EXPECT_STREQ(profile->path, "");
    EXPECT_STREQ(profile->comment, "");
}

TEST(CmykProfile, HasIdentityCurvesWhenFresh) {
    const auto profile = newProfile();
    for (int curve = 0; curve < 8; ++curve)
        for (int point = 0; point < 65; ++point)
            ASSERT_EQ(profile->curveValues[curve][point], curveLevelOf(point)) << curve << ' ' << point;
}

TEST(CmykProfile, HasControlPointsAtTheEndsOfEveryCurveWhenFresh) {
    const auto profile = newProfile();
    for (int curve = 0; curve < 8; ++curve)
        for (int point = 0; point < 65; ++point)
            ASSERT_EQ(profile->curveFlags[curve][point], point == 0 || point == 64) << curve << ' ' << point;
}

TEST(CmykProfile, HoldsItsOwnLevelsAtEveryNodeWhenFresh) {
    const auto profile = newProfile();
    for (uint32_t c = 0; c < 33; ++c)
        for (uint32_t m = 0; m < 33; ++m)
            for (uint32_t y = 0; y < 33; ++y)
                for (uint32_t k = 0; k < 33; ++k)
                    ASSERT_EQ(profile->grid[nodeAt(c, m, y, k)],
                              gridLevel(c) << 24 | gridLevel(m) << 16 | gridLevel(y) << 8 | gridLevel(k));
}

TEST(CmykProfile, PacksNode32And0And16And1As255And0And128And8) {
    EXPECT_EQ(newProfile()->grid[nodeAt(32, 0, 16, 1)], 0xFF008008u);
}

TEST(CmykProfile, InitResetsEveryByte) {
    const auto fresh = newProfile(), used = newProfile();
    std::memset(used.get(), 0x5a, sizeof(CmykProfile));
    EXPECT_EQ(jKoCmykInitProfile(used.get()), 1);
    EXPECT_EQ(std::memcmp(used.get(), fresh.get(), sizeof(CmykProfile)), 0);
}

TEST(CmykProfile, InitOfNullGivesZero) { EXPECT_EQ(jKoCmykInitProfile(nullptr), 0); }

TEST(CmykProfile, ReleaseOfNullGivesZero) { EXPECT_EQ(jKoCmykReleaseProfile(nullptr), 0); }

TEST(CmykProfile, ReleaseGivesOne) { EXPECT_EQ(jKoCmykReleaseProfile(jKoCmykCreateProfile()), 1); }

}  // namespace
}  // namespace ko::test
