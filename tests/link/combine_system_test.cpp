// Links through the system's colour management: mscms or lcms2, whichever this platform has.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/link/source_profiles.h"

namespace {
using namespace ko::test;

LinkHolder rgbLink(const CmsLinkSettings& settings) {
    return LinkHolder(jKoLinkCombineIcmRgbProfile(&settings));
}
LinkHolder cmykLink(const CmsLinkSettings& settings) {
    return LinkHolder(jKoLinkCombineIcmCmykProfile(&settings));
}

class SystemLink : public testing::Test {
protected:
    SystemLink() {
        writeFile(press, pressProfile("Lab ", true,
                                      {{"wtpt", xyzElement(0xf6d6, 0x10000, 0xd32d)},
                                       {"desc", descriptionElement("press")},
                                       {"cprt", textElement("free")}}));
    }
    std::string copy(const char* name) const {  // with the platform's own separators
        writeFile(folder.path(name), readFile(testData(name)));
        return folder.path(name);
    }
    TempFolder folder;
    const std::string press = folder.path("press.icc");
    const std::string monitor = copy("sRGB-v2-magic.icc"), wide = copy("AdobeCompat-v2.icc"),
                      grey = copy("sGrey-v2-micro.icc");
};

TEST_F(SystemLink, HasSeventeenPointsAndTheChannelsOfItsSource) {
    for (const int32_t channels : {3, 4}) {
        const LinkHolder link = channels == 3 ? rgbLink(settingsFor(monitor, press))
                                              : cmykLink(settingsFor(press, press));
        ASSERT_TRUE(link);
        const LinkHolder fresh(jKoLinkCreateProfile(channels, 17));
        EXPECT_EQ(std::memcmp(link.get(), fresh.get(), offsetof(LinkProfile, grid)), 0);
    }
}

TEST_F(SystemLink, OfAProfileWithItselfKeepsTheLightThatGoesIn) {
    CmsLinkSettings settings = settingsFor(monitor, monitor);
    settings.intent = 1;
    const LinkHolder link = rgbLink(settings);
    ASSERT_TRUE(link);
    for (size_t node = 0; node < 4913; ++node) {
        const Colour input = inputOf(*link, node), output = nodeOf(*link, node);
        for (size_t k = 0; k < 3; ++k) ASSERT_NEAR(output[k] * 16, input[k], 300) << node;
    }
}

TEST_F(SystemLink, WithAnRgbDestinationHasAFourthOutputOf0OnEveryNode) {
    for (const LinkHolder& link :
         {rgbLink(settingsFor(monitor, wide)), cmykLink(settingsFor(press, monitor))}) {
        ASSERT_TRUE(link);
        for (size_t i = 3; i < gridSize(*link); i += 4) ASSERT_EQ(link->grid[i], 0);
    }
}

TEST_F(SystemLink, WithACmykDestinationHasBlack) {
    const LinkHolder link = rgbLink(settingsFor(monitor, press));
    ASSERT_TRUE(link);
    int32_t most = 0;
    for (size_t node = 0; node < 4913; ++node) most = std::max(most, nodeOf(*link, node)[3]);
    EXPECT_GT(most, 1000);
    EXPECT_LE(most, 4095);
}

TEST_F(SystemLink, TakesTheIntentsFrom0To3) {
    CmsLinkSettings settings = settingsFor(press, press);
    std::vector<std::vector<uint16_t>> grids;
    for (settings.intent = 0; settings.intent < 4; ++settings.intent) {
        const LinkHolder link = cmykLink(settings);
        ASSERT_TRUE(link) << settings.intent;
        grids.emplace_back(link->grid, link->grid + gridSize(*link));
    }
    EXPECT_NE(grids[0], grids[1]);  // each intent has tables of its own
    EXPECT_NE(grids[1], grids[2]);
    EXPECT_NE(grids[0], grids[2]);
}

TEST_F(SystemLink, RefusesIntentsOutside0To3) {
    CmsLinkSettings settings = settingsFor(monitor, press);
    for (const int32_t intent : {-1, 4, 10, INT32_MAX, INT32_MIN}) {
        settings.intent = intent;
        EXPECT_FALSE(rgbLink(settings)) << intent;
    }
}

TEST_F(SystemLink, IgnoresWhiteModeAndPreservation) {
    CmsLinkSettings settings = settingsFor(press, press);
    const LinkHolder plain = cmykLink(settings);
    settings.whiteMode = 1;
    settings.preservation = 2;
    const LinkHolder link = cmykLink(settings);
    ASSERT_TRUE(plain && link);
    EXPECT_EQ(std::memcmp(plain->grid, link->grid, gridSize(*link) * 2), 0);
}

TEST_F(SystemLink, FailsWhenTheDestinationIsNoValidProfileEvenIfTheSourceIs) {
    const std::string text = folder.path("text.icc"), empty = folder.path("empty.icc");
    writeFile(text, "this is no profile, whatever its name may say");
    writeFile(empty, "");
    for (const std::string& bad : {text, empty, folder.path("none.icc"), folder.path("")}) {
        EXPECT_FALSE(rgbLink(settingsFor(monitor, bad))) << bad;
        EXPECT_FALSE(cmykLink(settingsFor(press, bad))) << bad;
        EXPECT_FALSE(rgbLink(settingsFor(bad, press))) << bad;
        EXPECT_FALSE(cmykLink(settingsFor(bad, press))) << bad;
    }
}

TEST_F(SystemLink, FailsForEmptyAndUnterminatedPathsAndANullRecord) {
    EXPECT_EQ(jKoLinkCombineIcmRgbProfile(nullptr), nullptr);
    EXPECT_EQ(jKoLinkCombineIcmCmykProfile(nullptr), nullptr);
    EXPECT_FALSE(rgbLink(settingsFor("", press)));
    EXPECT_FALSE(rgbLink(settingsFor(monitor, "")));
    CmsLinkSettings settings = settingsFor(monitor, press);
    std::memset(settings.destinationPath, 'x', sizeof settings.destinationPath);
    EXPECT_FALSE(rgbLink(settings));
}

TEST_F(SystemLink, TakesWhateverTheSystemOpens) {
    for (const LinkHolder& link :
         {rgbLink(settingsFor(press, press)), cmykLink(settingsFor(monitor, press)),
          rgbLink(settingsFor(grey, press)), rgbLink(settingsFor(monitor, grey))}) {
        ASSERT_TRUE(link);
        EXPECT_GT(*std::max_element(link->grid, link->grid + gridSize(*link)), 1000);
    }
}

TEST_F(SystemLink, FindsAProfileByAPathFromTheCurrentFolder) {
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(folder.folder());
    const LinkHolder link = rgbLink(settingsFor("sRGB-v2-magic.icc", "press.icc"));
    std::filesystem::current_path(previous);
    EXPECT_TRUE(link);
}

}  // namespace
