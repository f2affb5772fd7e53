// Colours as the CMYK profile of the current links prints them.
#include "front/printed_lab.h"

#include <gtest/gtest.h>

#include "front/front.h"
#include "tests/link/source_profiles.h"

namespace {
using namespace ko;

struct Links {
    explicit Links(const test::Bytes& cmyk) {
        test::writeFile(press, cmyk);
        current =
            front::setupProfile(test::testData("sRGB-v2-magic.icc").c_str(), press.c_str(), 0);
    }
    ~Links() { front::endProfile(); }
    test::TempFolder folder;
    const std::string press = folder.path("press.icc");
    bool current = false;
};

TEST(PrintedLab, IsNotKnownWithoutCurrentLinks) {
    front::endProfile();
    EXPECT_FALSE(front::PrintedLab::ofCurrentLinks());
}

TEST(PrintedLab, OfInksIsWhatTheProfileSays) {
    const auto lab =
        front::PrintedLab::of(test::testData("CGATS001Compat-v2-micro.icc").c_str());
    ASSERT_TRUE(lab);
    const auto white = lab->at({0, 0, 0, 0}), black = lab->at({0, 0, 0, 255});
    EXPECT_GT(white[0], 95);
    EXPECT_LT(black[0], 25);
    EXPECT_LT(lab->at({255, 0, 0, 0})[2], -30);  // cyan is bluish
    EXPECT_GT(lab->at({0, 0, 255, 0})[2], 60);
}

TEST(PrintedLab, OfAProfileForLightIsNotKnown) {
    EXPECT_FALSE(front::PrintedLab::of(test::testData("sRGB-v2-magic.icc").c_str()));
    EXPECT_FALSE(front::PrintedLab::of("missing.icc"));
}

TEST(PrintedLab, ComesAndGoesWithTheLinks) {
    {
        const Links links(test::pressProfile());
        ASSERT_TRUE(links.current);
        EXPECT_TRUE(front::PrintedLab::ofCurrentLinks());
    }
    EXPECT_FALSE(front::PrintedLab::ofCurrentLinks());
}

}  // namespace
