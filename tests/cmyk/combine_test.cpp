// Combining profiles: the node chain, and what loads and what fails.
#include <gmock/gmock.h>

#include "tests/cmyk/combine_support.h"

using namespace ko::test;
using testing::ElementsAre;

namespace {

// A pair that turns every colour into the same inks: what is not that colour was not converted.
constexpr int32_t kInk[4] = {11, 22, 33, 44};
struct ConstantPair {
    TempFolder folder;
    MadeLut a2b{{4, 3, 2, 1}}, b2a{{3, 4, 2, 1}};
    CmsLinkSettings settings = emptySettings();
    ConstantPair() {
        a2b.identity(), b2a.identityCurves();
        for (size_t node = 0; node < b2a.nodes(); ++node)
            for (int32_t k = 0; k < 4; ++k) b2a.setNode(node, k, kInk[k]);
        IccFile{.luts = {{signature("A2B0"), &a2b}}}.write(folder.path("source.icc"));
        IccFile{.luts = {{signature("B2A0"), &b2a}}}.write(folder.path("printer.icc"));
        setPath(settings.sourcePath, folder.path("source.icc"));
        setPath(settings.destinationPath, folder.path("printer.icc"));
    }
};

// A black curve that is three levels above the straight line in the middle.
std::string blackFile(const TempFolder& folder) {
    ToneCurve* curve = jKoToneCreateToneCurve(1);
    curve->table[128] = 1;
    curve->table[256 + 128] = 131;
    const std::string path = folder.path("black.bkc");
    jKoToneSaveBkcCurve(curve, path.c_str());
    jKoToneReleaseToneCurve(curve);
    return path;
}
std::array<int32_t, 256> blackValues(const std::string& path) {
    ToneCurve* curve = jKoToneCreateToneCurve(1);
    jKoToneLoadBkcCurve(curve, path.c_str());
    std::array<int32_t, 256> values;
    for (size_t x = 0; x < 256; ++x) values[x] = curve->table[256 + x];
    jKoToneReleaseToneCurve(curve);
    return values;
}

// A base profile: bent curves around a grid with another value in every node, as a .lut file
// (identity curves) or through a saved link (bent ones).
std::string baseLink(const TempFolder& folder) {
    const Combined base(jKoCmykCreateProfile());
    for (int32_t curve = 0; curve < 8; ++curve) {
        base->curveFlags[curve][30] = 1;
        base->curveValues[curve][30] = static_cast<uint8_t>(100 + 10 * curve);
    }
    for (size_t i = 0; i < KOLINK_CMYK_NODES; ++i)
        base->grid[i] = base->grid[i] / 16 * 15 & 0x7f7f7f7f;
    const std::string path = folder.path("base.icc");
    jKoCmykSaveProfile(base.get(), path.c_str());
    return path;
}

}  // namespace

TEST(CmykCombination, ReproducesTheIdentityGridFromEmptyPaths) {
    const Combined identity(jKoCmykCreateProfile());
    const Combined result = combine(emptySettings());
    ASSERT_TRUE(result);
    EXPECT_EQ(std::memcmp(result.get(), identity.get(), sizeof(CmykProfile)), 0);
}

TEST(CmykCombination, SendsNodesThroughCurvesGridAndCurvesOfTheBaseProfile) {
    const TempFolder folder;
    const Combined base(jKoCmykCreateProfile());
    ASSERT_EQ(jKoCmykLoadProfile(base.get(), baseLink(folder).c_str()), 1);
    CmsLinkSettings settings = emptySettings();
    setPath(settings.basePath, folder.path("base.icc"));
    const Combined result = combine(settings);
    ASSERT_TRUE(result);
    int32_t curves[8][256];
    for (int32_t curve = 0; curve < 8; ++curve) {
        std::vector<TonePoint> points;
        for (int32_t j = 0; j < 65; ++j)
            if (base->curveFlags[curve][j])
                points.push_back({j == 64 ? 255 : 4 * j, base->curveValues[curve][j]});
        for (int32_t x = 0; x < 256; ++x) {
            const int32_t tone =
                jKoToneGetSplineTone(points.data(), static_cast<int32_t>(points.size()), x);
            curves[curve][x] = tone < 0 ? 0 : tone > 255 ? 255 : tone;
        }
    }
    for (int32_t n = 0; n < KOLINK_CMYK_NODES; n += 97) {
        int32_t v[4] = {levelOf(n / 35937), levelOf(n / 1089 % 33), levelOf(n / 33 % 33),
                        levelOf(n % 33)};
        for (int32_t i = 0; i < 4; ++i) v[i] = curves[i][v[i]];
        jKoCmykCMYKtoCMYK16(base.get(), v);
        for (int32_t i = 0; i < 4; ++i) v[i] = curves[4 + i][(v[i] + 8) / 16];
        ASSERT_THAT(unpack(result->grid[n]), ElementsAre(v[0], v[1], v[2], v[3])) << n;
    }
}

TEST(CmykCombination, LimitsCurvesOfTheBaseProfileToTheirRange) {
    const TempFolder folder;
    const Combined base(jKoCmykCreateProfile());
    for (int32_t j : {1, 30}) base->curveFlags[0][j] = 1;  // the spline dips below 0 between
    base->curveValues[0][1] = 0, base->curveValues[0][30] = 250;
    std::vector<TonePoint> points{{0, 0}, {4, 0}, {120, 250}, {255, 255}};
    bool leaves = false;
    for (int32_t x = 0; x < 256; ++x) {
        const int32_t tone = jKoToneGetSplineTone(points.data(), 4, x);
        leaves |= tone < 0 || tone > 255;
    }
    ASSERT_TRUE(leaves) << "the case needs a spline that leaves the range";
    jKoCmykSaveProfile(base.get(), folder.path("base.icc").c_str());
    CmsLinkSettings settings = emptySettings();
    setPath(settings.basePath, folder.path("base.icc"));
    const Combined result = combine(settings);
    ASSERT_TRUE(result);
    for (int32_t c = 0; c < 33; ++c) {
        int32_t tone = jKoToneGetSplineTone(points.data(), 4, levelOf(c));
        tone = tone < 0 ? 0 : tone > 255 ? 255 : tone;
        EXPECT_THAT(at(result, c, 1, 2, 3), ElementsAre(tone, 8, 16, 24));
    }
}

TEST(CmykCombination, StartsFromDefaultNameCurvesAndComment) {
    const ConstantPair pair;
    const Combined fresh(jKoCmykCreateProfile());
    const Combined result = combine(pair.settings);
    ASSERT_TRUE(result);
    EXPECT_EQ(std::memcmp(result.get(), fresh.get(), offsetof(CmykProfile, grid)), 0);
}

TEST(CmykCombination, KeepsWhiteWithWhiteMode1WhateverTheProfilesDo) {
    ConstantPair pair;
    pair.settings.whiteMode = 1;
    const Combined result = combine(pair.settings);
    ASSERT_TRUE(result);
    EXPECT_THAT(at(result, 0, 0, 0, 0), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(at(result, 0, 0, 0, 1), ElementsAre(11, 22, 33, 44));
    EXPECT_THAT(at(result, 1, 0, 0, 0), ElementsAre(11, 22, 33, 44));
    pair.settings.whiteMode = 0;
    EXPECT_THAT(at(combine(pair.settings), 0, 0, 0, 0), ElementsAre(11, 22, 33, 44));
}

TEST(CmykCombination, TakesTheBlackCurveForPureBlackAndSkipsTheProfiles) {
    ConstantPair pair;
    const std::string black = blackFile(pair.folder);
    setPath(pair.settings.blackPath, black);
    const Combined result = combine(pair.settings);
    ASSERT_TRUE(result);
    const auto values = blackValues(black);
    for (int32_t k = 0; k < 33; ++k)
        EXPECT_THAT(at(result, 0, 0, 0, k), ElementsAre(0, 0, 0, values[levelOf(k)]));
    EXPECT_EQ(values[128], 131);
    EXPECT_THAT(at(result, 0, 0, 1, 16), ElementsAre(11, 22, 33, 44));
}

TEST(CmykCombination, AsksWhiteBeforeBlack) {
    ConstantPair pair;
    const std::string path = pair.folder.path("raised.bkc");
    writeFile(path, "TONE   =   0, 50\r\nTONE   = 255,255\r\n");
    setPath(pair.settings.blackPath, path);
    EXPECT_THAT(at(combine(pair.settings), 0, 0, 0, 0), ElementsAre(0, 0, 0, 50));
    pair.settings.whiteMode = 1;
    EXPECT_THAT(at(combine(pair.settings), 0, 0, 0, 0), ElementsAre(0, 0, 0, 0));
}

TEST(CmykCombination, AddsThePaperTintUntilItsLimit) {
    CmsLinkSettings settings = emptySettings();
    settings.whiteMode = 2;
    settings.paperC = 10, settings.paperM = 7, settings.paperY = 30, settings.paperK = 1;
    settings.limit = 200;
    const Combined result = combine(settings);
    ASSERT_TRUE(result);
    EXPECT_THAT(at(result, 0, 0, 0, 0), ElementsAre(10, 7, 30, 1));
    // 8 + 16 + 24 + 32 = 80: three fifths remain, truncated.
    EXPECT_THAT(at(result, 1, 2, 3, 4), ElementsAre(8 + 6, 16 + 4, 24 + 18, 32 + 0));
    EXPECT_THAT(at(result, 24, 0, 0, 0), ElementsAre(192, 0, 1, 0)) << "1/25 of 30";
    EXPECT_THAT(at(result, 25, 0, 0, 0), ElementsAre(200, 0, 0, 0)) << "the limit itself";
    EXPECT_THAT(at(result, 32, 32, 32, 32), ElementsAre(255, 255, 255, 255));
}

TEST(CmykCombination, CapsTintedLevelsAt255) {
    CmsLinkSettings settings = emptySettings();
    settings.whiteMode = 2;
    settings.paperC = 255, settings.limit = 1020;
    const Combined result = combine(settings);
    ASSERT_TRUE(result);
    EXPECT_EQ(at(result, 32, 0, 0, 0)[0], 255);
    EXPECT_EQ(at(result, 16, 0, 0, 0)[0], 255);
    EXPECT_EQ(at(result, 0, 32, 32, 0)[0], 255 * 510 / 1020);
}

TEST(CmykCombination, AddsNoTintWithoutAPositiveLimitOrInOtherModes) {
    const Combined identity(jKoCmykCreateProfile());
    for (const auto& [mode, limit] : {std::pair{2, 0}, {2, -5}, {2, -2147483647 - 1}, {1, 200},
                                     {0, 200}, {3, 200}}) {
        CmsLinkSettings settings = emptySettings();
        settings.whiteMode = mode, settings.limit = limit;
        settings.paperC = settings.paperM = settings.paperY = settings.paperK = 99;
        const Combined result = combine(settings);
        ASSERT_TRUE(result);
        EXPECT_EQ(std::memcmp(result->grid, identity->grid, sizeof identity->grid), 0) << mode;
    }
}

TEST(CmykCombination, SurvivesAnyPaperAndLimit) {
    const int32_t lowest = -2147483647 - 1, highest = 2147483647;
    for (int32_t paper : {lowest, -1, 256, highest}) {
        CmsLinkSettings settings = emptySettings();
        settings.whiteMode = 2, settings.limit = highest;
        settings.paperC = settings.paperM = settings.paperY = settings.paperK = paper;
        const Combined result = combine(settings);
        ASSERT_TRUE(result);
        const int32_t expected = paper < 0 ? 0 : 255;
        EXPECT_THAT(at(result, 0, 0, 0, 0), ElementsAre(expected, expected, expected, expected));
    }
}

TEST(CmykCombination, DoesNotTakeTintedBlackForPureBlack) {
    ConstantPair pair;
    const std::string black = blackFile(pair.folder);
    setPath(pair.settings.blackPath, black);
    pair.settings.whiteMode = 2;
    pair.settings.paperY = 40, pair.settings.paperK = 6;
    const Combined tinted = combine(pair.settings);
    ASSERT_TRUE(tinted);
    EXPECT_THAT(at(tinted, 0, 0, 0, 8), ElementsAre(11, 22, 33, 44));
    EXPECT_THAT(at(tinted, 0, 0, 0, 30), ElementsAre(0, 0, 0, blackValues(black)[240]));
    pair.settings.paperY = 0;  // a tint of black alone: still pure, at the tinted level
    const Combined grey = combine(pair.settings);
    ASSERT_TRUE(grey);
    EXPECT_THAT(at(grey, 0, 0, 0, 0), ElementsAre(0, 0, 0, blackValues(black)[6]));
}

TEST(CmykCombination, KeepsPrimariesPureWithPreservation1) {
    ConstantPair pair;
    pair.settings.preservation = 1;
    const Combined result = combine(pair.settings);
    ASSERT_TRUE(result);
    for (int32_t i = 1; i < 33; ++i) {
        EXPECT_THAT(at(result, i, 0, 0, 0), ElementsAre(11, 0, 0, 0));
        EXPECT_THAT(at(result, 0, i, 0, 0), ElementsAre(0, 22, 0, 0));
        EXPECT_THAT(at(result, 0, 0, i, 0), ElementsAre(0, 0, 33, 0));
        EXPECT_THAT(at(result, 0, 0, 0, i), ElementsAre(11, 22, 33, 44)) << "K is not treated";
        EXPECT_THAT(at(result, i, 5, 0, 0), ElementsAre(11, 22, 33, 44));
        EXPECT_THAT(at(result, i, 0, 0, 5), ElementsAre(11, 22, 33, 44));
    }
    EXPECT_THAT(at(result, 0, 0, 0, 0), ElementsAre(11, 22, 33, 44));
}

TEST(CmykCombination, KeepsSecondariesFreeOfOtherInksWithPreservation2) {
    ConstantPair pair;
    pair.settings.preservation = 2;
    const Combined result = combine(pair.settings);
    ASSERT_TRUE(result);
    for (int32_t i = 1; i < 33; ++i) {
        EXPECT_THAT(at(result, i, 33 - i, 0, 0), ElementsAre(11, 22, 0, 0));
        EXPECT_THAT(at(result, i, 0, 33 - i, 0), ElementsAre(11, 0, 33, 0));
        EXPECT_THAT(at(result, 0, i, 33 - i, 0), ElementsAre(0, 22, 33, 0));
        EXPECT_THAT(at(result, i, 0, 0, 0), ElementsAre(11, 0, 0, 0));
        EXPECT_THAT(at(result, i, 1, 1, 0), ElementsAre(11, 22, 33, 44));
        EXPECT_THAT(at(result, i, 1, 0, 1), ElementsAre(11, 22, 33, 44));
    }
}

TEST(CmykCombination, PreservesByTheNodeNotByItsTintedLevels) {
    ConstantPair pair;
    pair.settings.preservation = 1;
    pair.settings.whiteMode = 2;
    pair.settings.paperM = 50, pair.settings.paperY = 50;
    const Combined result = combine(pair.settings);
    ASSERT_TRUE(result);
    EXPECT_THAT(at(result, 3, 0, 0, 0), ElementsAre(11, 0, 0, 0));
}

TEST(CmykCombination, TreatsSecondariesOnlyWithPreservation2Itself) {
    ConstantPair pair;
    pair.settings.preservation = 3;
    const Combined result = combine(pair.settings);
    ASSERT_TRUE(result);
    EXPECT_THAT(at(result, 3, 0, 0, 0), ElementsAre(11, 0, 0, 0));
    EXPECT_THAT(at(result, 3, 3, 0, 0), ElementsAre(11, 22, 33, 44));
}

TEST(CmykCombination, TakesACapitalExtensionForAnIccProfile) {
    ConstantPair pair;
    std::filesystem::copy(pair.folder.path("source.icc"), pair.folder.path("SOURCE2.ICC"));
    setPath(pair.settings.sourcePath, pair.folder.path("SOURCE2.ICC"));
    const Combined result = combine(pair.settings);
    ASSERT_TRUE(result);
    EXPECT_THAT(at(result, 5, 5, 5, 5), ElementsAre(11, 22, 33, 44));
}

TEST(CmykCombination, RunsWithoutTheConversionWhenASidesPathIsEmpty) {
    ConstantPair pair;
    const Combined identity(jKoCmykCreateProfile());
    CmsLinkSettings settings = pair.settings;
    settings.destinationPath[0] = '\0';
    settings.intent = 77;  // not looked at
    const Combined noDestination = combine(settings);
    settings = pair.settings;
    settings.sourcePath[0] = '\0';
    const Combined noSource = combineIcc(settings);
    ASSERT_TRUE(noDestination && noSource);
    EXPECT_EQ(std::memcmp(noDestination->grid, identity->grid, sizeof identity->grid), 0);
    EXPECT_EQ(std::memcmp(noSource->grid, identity->grid, sizeof identity->grid), 0);
}

TEST(CmykCombination, FailsWhenAFileDoesNotLoad) {
    ConstantPair pair;
    const std::string missing = pair.folder.path("missing.icc");
    for (const auto field : {&CmsLinkSettings::basePath, &CmsLinkSettings::sourcePath,
                             &CmsLinkSettings::destinationPath, &CmsLinkSettings::blackPath}) {
        CmsLinkSettings settings = pair.settings;
        setPath(settings.*field, missing);
        EXPECT_FALSE(combine(settings));
    }
    EXPECT_FALSE(combine([] {
        CmsLinkSettings settings = emptySettings();  // here the destination is a .dcc file
        setPath(settings.destinationPath, "missing.dcc");
        return settings;
    }()));
}

TEST(CmykCombination, FailsWithoutSettings) {
    EXPECT_EQ(jKoCmykCombineProfile(nullptr), nullptr);
    EXPECT_EQ(jKoCmykCombineIccProfile(nullptr), nullptr);
}

TEST(CmykCombination, ReadsPathsThatFillTheirFieldWithoutTerminator) {
    CmsLinkSettings settings = emptySettings();
    std::memset(settings.basePath, 'x', sizeof settings.basePath);
    std::memset(settings.sourcePath, 'x', sizeof settings.sourcePath);
    EXPECT_FALSE(combine(settings));
    EXPECT_FALSE(combineIcc(settings));
}

TEST(CmykCombination, NeedsCmykProfilesWithAKnownSourceConnectionSpace) {
    ConstantPair pair;
    const auto combines = [&](IccFile source, IccFile destination) {
        source.luts = {{signature("A2B0"), &pair.a2b}};
        destination.luts = {{signature("B2A0"), &pair.b2a}};
        source.write(pair.folder.path("source.icc"));
        destination.write(pair.folder.path("printer.icc"));
        return combine(pair.settings) != nullptr;
    };
    EXPECT_FALSE(combines({.space = signature("RGB ")}, {}));
    EXPECT_FALSE(combines({}, {.space = signature("RGB ")}));
    EXPECT_FALSE(combines({.connection = signature("CMYK")}, {}));
    EXPECT_TRUE(combines({.connection = signature("XYZ ")}, {.connection = signature("XYZ ")}));
    EXPECT_TRUE(combines({}, {.connection = signature("CMYK")})) << "the destination's goes untested";
}

TEST(CmykCombination, ChoosesTablesByTheIntent) {
    ConstantPair pair;
    for (int32_t intent = 0; intent < 3; ++intent) {
        MadeLut b2a({3, 4, 2, 1});
        b2a.identityCurves();
        for (size_t node = 0; node < b2a.nodes(); ++node) b2a.setNode(node, 0, 50 + intent);
        const uint32_t a2bTag = signature("A2B0") + static_cast<uint32_t>(intent);
        const uint32_t b2aTag = signature("B2A0") + static_cast<uint32_t>(intent);
        IccFile{.luts = {{a2bTag, &pair.a2b}}}.write(pair.folder.path("source.icc"));
        IccFile{.luts = {{b2aTag, &b2a}}}.write(pair.folder.path("printer.icc"));
        for (int32_t wanted = 0; wanted < 3; ++wanted) {
            pair.settings.intent = wanted;
            const Combined result = combine(pair.settings);
            EXPECT_EQ(result != nullptr, wanted == intent);
            EXPECT_TRUE(!result || at(result, 1, 2, 3, 4)[0] == 50 + intent);
        }
    }
}

TEST(CmykCombination, FailsForIntentsBeyond2) {
    ConstantPair pair;
    for (int32_t intent : {-1, 3, 1000000}) {
        pair.settings.intent = intent;
        EXPECT_FALSE(combine(pair.settings)) << intent;
    }
}

TEST(CmykCombination, GivesTheDefaultGridWhenATableCannotBeSetUp) {
    ConstantPair pair;
    const Combined identity(jKoCmykCreateProfile());
    // One grid point is a shape that loads but has no cells.
    MadeLut flatSource({4, 3, 1, 1}), flatPrinter({3, 4, 1, 1});
    for (const bool sourceFails : {true, false}) {
        IccFile{.luts = {{signature("A2B0"), sourceFails ? &flatSource : &pair.a2b}}}.write(
            pair.folder.path("source.icc"));
        IccFile{.luts = {{signature("B2A0"), sourceFails ? &pair.b2a : &flatPrinter}}}.write(
            pair.folder.path("printer.icc"));
        const Combined result = combine(pair.settings);
        ASSERT_TRUE(result);
        EXPECT_EQ(std::memcmp(result->grid, identity->grid, sizeof identity->grid), 0);
    }
}
