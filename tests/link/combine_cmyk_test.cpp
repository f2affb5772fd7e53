// Links from CMYK to CMYK by the library's own evaluator.
#include <gtest/gtest.h>

#include "tests/link/source_profiles.h"

namespace {
using namespace ko::test;

LinkHolder build(const CmsLinkSettings& settings) {
    return LinkHolder(jKoLinkCombineCmykProfile(&settings));
}

class CmykLink : public testing::Test {
protected:
    std::string add(const char* name, const Bytes& bytes) const {
        writeFile(folder.path(name), bytes);
        return folder.path(name);
    }
    // Compares every 7th node, the ends among them, with a conversion of the test's own.
    template <class Convert>
    static void expectNodes(const LinkProfile& link, Convert convert) {
        for (size_t node = 0; node < 83521; node += 7) {
            ASSERT_EQ(nodeOf(link, node), convert(inputOf(link, node))) << node;
        }
        ASSERT_EQ(nodeOf(link, 83520), convert(inputOf(link, 83520)));
    }
    TempFolder folder;
    const std::string lab = add("lab.icc", pressProfile("Lab "));
    const std::string xyz =
        add("xyz.icc", pressProfile("XYZ ", true, {{"wtpt", xyzElement(0xe000, 0xf000, 0xa000)}}));
};

TEST_F(CmykLink, HasSeventeenPointsFourChannelsAndOtherwiseTheFieldsOfANewOne) {
    const LinkHolder link = build(settingsFor(lab, lab));
    ASSERT_TRUE(link);
    const LinkHolder fresh(jKoLinkCreateProfile(4, 17));
    EXPECT_EQ(std::memcmp(link.get(), fresh.get(), offsetof(LinkProfile, grid)), 0);
}

TEST_F(CmykLink, OfProfilesWithOneConnectionSpaceGoesThroughTheirTablesAlone) {
    const FileLut source(lab, "A2B0"), destination(lab, "B2A0");
    const LinkHolder link = build(settingsFor(lab, lab));
    ASSERT_TRUE(link);
    expectNodes(*link, [&](const Colour& input) { return printed(destination, source(input)); });
}

TEST_F(CmykLink, TakesTablesOfEightBitsOnTheSixteenBitScaleToo) {
    const std::string narrow = add("narrow.icc", pressProfile("Lab ", false));
    const FileLut source(narrow, "A2B0"), destination(lab, "B2A0");
    const LinkHolder link = build(settingsFor(narrow, lab));
    ASSERT_TRUE(link);
    expectNodes(*link, [&](const Colour& input) { return printed(destination, source(input)); });
}

TEST_F(CmykLink, TakesTheTablesOfItsIntent) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    const FileLut source1(lab, "A2B1"), destination1(lab, "B2A1"), source2(lab, "A2B2"),
        destination2(lab, "B2A2");
    settings.intent = 1;
    expectNodes(*build(settings),
                [&](const Colour& input) { return printed(destination1, source1(input)); });
    settings.intent = 2;
    expectNodes(*build(settings),
                [&](const Colour& input) { return printed(destination2, source2(input)); });
}

TEST_F(CmykLink, FailsForAnIntentOf3AndMore) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    for (const int32_t intent : {3, 4, 100, INT32_MAX, -1, INT32_MIN}) {
        settings.intent = intent;
        EXPECT_FALSE(build(settings)) << intent;
    }
}

void expectXyzToLab(const std::string& xyz, const std::string& lab, const double (&white)[3]) {
    const FileLut source(xyz, "A2B0"), destination(lab, "B2A0");
    const LinkHolder link = build(settingsFor(xyz, lab));
    ASSERT_TRUE(link);
    for (size_t node = 0; node < 83521; node += 11) {
        Colour pcs = source(inputOf(*link, node));
        double colour[3];
        for (size_t i = 0; i < 3; ++i) colour[i] = pcs[i] * 100.0 / 32768;
        jIccXYZtoLab(colour, white);
        pcs[0] = static_cast<int32_t>(colour[0] * 65280 / 100);
        pcs[1] = static_cast<int32_t>(colour[1] + 128) * 256;  // cut to a whole level first
        pcs[2] = static_cast<int32_t>(colour[2] + 128) * 256;
        ASSERT_EQ(nodeOf(*link, node), printed(destination, pcs)) << node;
    }
}

TEST_F(CmykLink, BridgesXyzToLabByHandAgainstTheSourcesMediaWhite) {
    expectXyzToLab(xyz, lab, {0.875 * 100, 0.9375 * 100, 0.625 * 100});
}

TEST_F(CmykLink, TakesD50ForAMediaWhiteThatIsMissing) {
    const std::string bare = add("bare.icc", pressProfile("XYZ "));
    expectXyzToLab(bare, lab, {0.9642 * 100, 1.0 * 100, 0.8249 * 100});
}

TEST_F(CmykLink, DoesNotTakeTheHeadersIlluminantForWhite) {
    Bytes bytes = pressProfile("XYZ ", true, {{"wtpt", xyzElement(0xe000, 0xf000, 0xa000)}});
    put32(bytes, 68, 0x4000);  // half as bright as the medium
    expectXyzToLab(add("dark.icc", bytes), lab, {0.875 * 100, 0.9375 * 100, 0.625 * 100});
}

TEST_F(CmykLink, BridgesLabToXyzByHandAgainstTheSourcesMediaWhite) {
    const std::string white = add(
        "white.icc", pressProfile("Lab ", true, {{"wtpt", xyzElement(0xe000, 0xf000, 0xa000)}}));
    const double point[3] = {0.875 * 100, 0.9375 * 100, 0.625 * 100};
    const FileLut source(white, "A2B0"), destination(xyz, "B2A0");
    const LinkHolder link = build(settingsFor(white, xyz));
    ASSERT_TRUE(link);
    expectNodes(*link, [&](const Colour& input) {
        Colour pcs = source(input);
        double colour[3] = {100.0 * pcs[0] / 65280, pcs[1] / 256.0 - 128, pcs[2] / 256.0 - 128};
        jIccLabtoXYZ(colour, point);
        for (size_t i = 0; i < 3; ++i)
            pcs[i] = static_cast<int32_t>(std::clamp(colour[i] * 32768 / 100, -1.0, 70000.0));
        return printed(destination, pcs);
    });
}

TEST_F(CmykLink, StaysWholeWithAMediaWhiteOfZeros) {
    const std::string black =
        add("black.icc", pressProfile("XYZ ", true, {{"wtpt", xyzElement(0, 0, 0)}}));
    EXPECT_TRUE(build(settingsFor(black, lab)));
    const std::string blackLab =
        add("blacklab.icc",
            pressProfile("Lab ", true, {{"wtpt", xyzElement(0, 0x80000000, 0x7fffffff)}}));
    EXPECT_TRUE(build(settingsFor(blackLab, xyz)));
}

TEST_F(CmykLink, GivesWhiteNoInkWithWhiteMode1) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    const LinkHolder converted = build(settings);
    ASSERT_NE(nodeOf(*converted, 0), Colour{});
    settings.whiteMode = 1;
    const LinkHolder clean = build(settings);
    EXPECT_EQ(nodeOf(*clean, 0), Colour{});
    for (size_t node = 1; node < 83521; ++node)
        ASSERT_EQ(nodeOf(*clean, node), nodeOf(*converted, node));
}

TEST_F(CmykLink, ConvertsWhiteLikeAnyNodeWithOtherWhiteModes) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    const Colour white = nodeOf(*build(settings), 0);
    for (const int32_t mode : {2, 3, -1}) {
        settings.whiteMode = mode;
        EXPECT_EQ(nodeOf(*build(settings), 0), white);
    }
}

// The same colours with some outputs forced to 0; kept lists the others.
Colour only(Colour colour, std::string_view kept) {
    for (size_t k = 0; k < 4; ++k)
        if (kept.find("CMYK"[k]) == std::string_view::npos) colour[k] = 0;
    return colour;
}

TEST_F(CmykLink, KeepsPurePrimariesSingleInkWithPreservation1) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    const LinkHolder plain = build(settings);
    settings.preservation = 1;
    const LinkHolder link = build(settings);
    for (int i = 1; i <= 16; ++i) {
        for (const auto& [node, inks] : {std::pair{cmykNode(i, 0, 0, 0), "C"},
                                         {cmykNode(0, i, 0, 0), "M"},
                                         {cmykNode(0, 0, i, 0), "Y"}})
            EXPECT_EQ(nodeOf(*link, node), only(nodeOf(*plain, node), inks)) << inks << i;
        for (const size_t node : {cmykNode(i, 17 - i, 0, 0), cmykNode(0, i, 1, 0),
                                  cmykNode(i, 0, i, 0), cmykNode(i, i, i, 0), cmykNode(i, 0, 0, 1),
                                  cmykNode(0, 0, 0, i), cmykNode(i, i, i, i)})
            EXPECT_EQ(nodeOf(*link, node), nodeOf(*plain, node)) << node;
    }
    EXPECT_EQ(nodeOf(*link, 0), nodeOf(*plain, 0));
}

TEST_F(CmykLink, KeepsTwoInkSecondariesToTheirInksWithPreservation2) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    const LinkHolder plain = build(settings);
    settings.preservation = 2;
    const LinkHolder link = build(settings);
    for (int i = 1; i <= 16; ++i) {
        const int j = 17 - i;
        for (const auto& [node, inks] : {std::pair{cmykNode(i, 0, 0, 0), "C"},
                                         {cmykNode(0, i, 0, 0), "M"},
                                         {cmykNode(0, 0, i, 0), "Y"},
                                         {cmykNode(0, i, j, 0), "MY"},
                                         {cmykNode(i, j, 0, 0), "CM"},
                                         {cmykNode(i, 0, j, 0), "CY"}})
            EXPECT_EQ(nodeOf(*link, node), only(nodeOf(*plain, node), inks)) << inks << i;
        for (const size_t node : {cmykNode(i, i, i, 0), cmykNode(i, 0, 0, 1), cmykNode(i, j, 0, 1),
                                  cmykNode(0, 0, 0, i), cmykNode(i, i, i, i)})
            EXPECT_EQ(nodeOf(*link, node), nodeOf(*plain, node)) << node;
    }
}

TEST_F(CmykLink, NeverAltersSolidBlackByPreservation) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    const Colour black = nodeOf(*build(settings), cmykNode(0, 0, 0, 16));
    for (const int32_t mode : {1, 2}) {
        settings.preservation = mode;
        EXPECT_EQ(nodeOf(*build(settings), cmykNode(0, 0, 0, 16)), black);
    }
}

TEST_F(CmykLink, PreservesNothingWithOtherModes) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    const Colour cyan = nodeOf(*build(settings), cmykNode(16, 0, 0, 0));
    for (const int32_t mode : {-1, 3, 100}) {
        settings.preservation = mode;
        EXPECT_EQ(nodeOf(*build(settings), cmykNode(16, 0, 0, 0)), cyan);
    }
}

TEST_F(CmykLink, FailsForAnEmptyPathANullRecordAndFilesThatAreNotThere) {
    EXPECT_EQ(jKoLinkCombineCmykProfile(nullptr), nullptr);
    EXPECT_FALSE(build(settingsFor("", lab)));
    EXPECT_FALSE(build(settingsFor(lab, "")));
    EXPECT_FALSE(build(settingsFor(folder.path("none.icc"), lab)));
    EXPECT_FALSE(build(settingsFor(lab, folder.path("none.icc"))));
    EXPECT_FALSE(build(settingsFor(folder.path(""), lab)));
    CmsLinkSettings unterminated = settingsFor(lab, lab);
    std::memset(unterminated.sourcePath, 'x', KOLINK_PATH_SIZE);
    EXPECT_FALSE(build(unterminated));
}

TEST_F(CmykLink, FailsForASourceOrDestinationThatIsNotCmyk) {
    const std::string rgb =
        add("rgb.icc", profileBytes({{"A2B0", randomLut(3, 3, 1)}, {"B2A0", randomLut(3, 3, 2)}},
                                    profileHeader("prtr", "RGB ", "Lab ")));
    EXPECT_FALSE(build(settingsFor(rgb, lab)));
    EXPECT_FALSE(build(settingsFor(lab, rgb)));
}

TEST_F(CmykLink, FailsForASourceWhoseConnectionSpaceIsNeitherLabNorXyz) {
    EXPECT_FALSE(build(settingsFor(add("odd.icc", pressProfile("CMYK")), lab)));
}

TEST_F(CmykLink, AcceptsADestinationWhoseConnectionSpaceIsNeitherLabNorXyz) {
    const std::string odd = add("odd.icc", pressProfile("Luv "));
    const FileLut source(lab, "A2B0"), destination(odd, "B2A0");
    const LinkHolder link = build(settingsFor(lab, odd));
    ASSERT_TRUE(link);
    // What is not Lab is taken to be XYZ, against D50.
    Colour pcs = source(inputOf(*link, 5000));
    double colour[3] = {100.0 * pcs[0] / 65280, pcs[1] / 256.0 - 128, pcs[2] / 256.0 - 128};
    const double white[3] = {96.42, 100, 82.49};
    jIccLabtoXYZ(colour, white);
    for (size_t i = 0; i < 3; ++i) pcs[i] = static_cast<int32_t>(colour[i] * 32768 / 100);
    EXPECT_EQ(nodeOf(*link, 5000), printed(destination, pcs));
}

TEST_F(CmykLink, FailsWithoutTheTablesOfTheIntent) {
    const std::string only1 = add(
        "only1.icc", profileBytes({{"A2B1", randomLut(4, 3, 1)}, {"B2A1", randomLut(3, 4, 2)}}));
    CmsLinkSettings settings = settingsFor(only1, lab);
    EXPECT_FALSE(build(settings));
    settings.intent = 1;
    EXPECT_TRUE(build(settings));
    settings = settingsFor(lab, only1);
    EXPECT_FALSE(build(settings));
}

TEST_F(CmykLink, FailsForTablesThatCannotBeEvaluatedOrDoNotFit) {
    const auto with = [&](const Bytes& a2b, const Bytes& b2a) {
        return add("bad.icc", profileBytes({{"A2B0", a2b}, {"B2A0", b2a}}));
    };
    const Bytes good4 = randomLut(4, 3, 1), good3 = randomLut(3, 4, 2);
    EXPECT_FALSE(build(settingsFor(with(randomLut(3, 3, 1), good3), lab)));  // three channels in
    EXPECT_FALSE(build(settingsFor(with(randomLut(4, 2, 1), good3), lab)));
    EXPECT_FALSE(
        build(settingsFor(with(randomLut(4, 3, 1, true, 1), good3), lab)));  // one grid point
    EXPECT_FALSE(build(settingsFor(lab, with(good4, randomLut(4, 4, 1)))));
    EXPECT_FALSE(build(settingsFor(lab, with(good4, randomLut(3, 3, 1)))));
    EXPECT_FALSE(build(settingsFor(lab, with(good4, randomLut(3, 4, 1, true, 1)))));
}

TEST_F(CmykLink, TakesTheFirstOfTablesThatAreThereTwice) {
    const Bytes twice = profileBytes(
        {{"A2B0", randomLut(4, 3, 1)}, {"A2B0", randomLut(4, 3, 9)}, {"B2A0", randomLut(3, 4, 4)}});
    const LinkHolder once = build(settingsFor(lab, lab)),
                     link = build(settingsFor(add("twice.icc", twice), lab));
    ASSERT_TRUE(link);
    EXPECT_EQ(std::memcmp(once->grid, link->grid, 83521 * 8), 0);
}

TEST_F(CmykLink, DoesNotReadBasePathBlackPathPaperAndLimit) {
    CmsLinkSettings settings = settingsFor(lab, lab);
    const LinkHolder expected = build(settings);
    std::strcpy(settings.basePath, "nowhere");
    std::strcpy(settings.blackPath, "nowhere");
    std::strcpy(settings.outputPath, "nowhere");
    settings.paperC = settings.limit = -7;
    const LinkHolder link = build(settings);
    ASSERT_TRUE(link);
    EXPECT_EQ(std::memcmp(expected->grid, link->grid, 83521 * 8), 0);
}

}  // namespace
