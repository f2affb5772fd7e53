#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kolink/memory.h"
#include "tests/link/links.h"

namespace {
using ko::test::LinkHolder;

TEST(LinkProfile, StartsUntitledWithEmptyPathAndComment) {
    const LinkHolder link(jKoLinkCreateProfile(3, 17));
    ASSERT_TRUE(link);
    EXPECT_EQ(std::string(link->name), "\x96\xb3\x91\xe8");  // in Shift-JIS
    EXPECT_STREQ(link->path, "");
    EXPECT_STREQ(link->comment, "");
    EXPECT_EQ(link->inputChannels, 3);
    EXPECT_EQ(link->gridPoints, 17);
}

TEST(LinkProfile, StartsWithIdentityCurvesWhoseEndsAreFixed) {
    const LinkHolder link(jKoLinkCreateProfile(4, 17));
    ASSERT_TRUE(link);
    for (int curve = 0; curve < 8; ++curve)
        for (int point = 0; point < 65; ++point) {
            EXPECT_EQ(link->curveValues[curve][point], point == 64 ? 255 : 4 * point);
            EXPECT_EQ(link->curveFlags[curve][point], point == 0 || point == 64 ? 1 : 0);
        }
}

TEST(LinkProfile, StartsWithAGridOfZeros) {
    const LinkHolder link(jKoLinkCreateProfile(4, 17));
    ASSERT_TRUE(link);
    for (size_t i = 0; i < ko::test::gridSize(*link); ++i) ASSERT_EQ(link->grid[i], 0);
}

TEST(LinkProfile, IsNotMadeForOtherThanThreeOrFourChannels) {
    for (const int32_t channels : {INT32_MIN, -1, 0, 1, 2, 5, 15, INT32_MAX})
        EXPECT_EQ(jKoLinkCreateProfile(channels, 17), nullptr) << channels;
}

TEST(LinkProfile, IsNotMadeForGridsThatCannotBeLookedUp) {
    for (const int32_t points : {INT32_MIN, -17, -1, 0, 1, 257, 65536, INT32_MAX})
        EXPECT_EQ(jKoLinkCreateProfile(3, points), nullptr) << points;
}

TEST(LinkProfile, IsNotMadeForAGridOverTheMemoryLimit) {
    EXPECT_EQ(jKoLinkCreateProfile(4, 256), nullptr);
    EXPECT_EQ(jKoLinkCreateProfile(4, 77), nullptr);
}

TEST(LinkProfile, IsMadeWithThreeAxesOf256Points) {
    const LinkHolder link(jKoLinkCreateProfile(3, 256));
    ASSERT_TRUE(link);
    EXPECT_EQ(link->grid[ko::test::gridSize(*link) - 1], 0);
}

TEST(LinkProfile, ReleaseOfNullReturns0) { EXPECT_EQ(jKoLinkReleaseProfile(nullptr), 0); }

TEST(LinkProfile, ReleaseReturns1) {
    EXPECT_EQ(jKoLinkReleaseProfile(jKoLinkCreateProfile(3, 17)), 1);
}

TEST(LinkProfile, ReleaseAcceptsARecordWhoseGridTheHostTook) {
    LinkProfile* link = jKoLinkCreateProfile(3, 2);
    jMemFree(link->grid);
    link->grid = nullptr;
    EXPECT_EQ(jKoLinkReleaseProfile(link), 1);
}

}  // namespace
