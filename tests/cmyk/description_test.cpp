// The editing data in a description text.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "cmyk/cmyk.h"
#include "cmyk/description.h"
#include "tests/cmyk/support.h"

namespace ko::test {
namespace {

struct CmykDescription : testing::Test {
    OwnedProfile profile{cmyk::createProfile().release()};

    void apply(std::string_view lines) { cmyk::applyDescription(*profile, "_KOLINK_10J\n" + std::string(lines)); }
    std::string flags(int curve) {
        std::string text;
        for (const uint8_t flag : profile->curveFlags[curve]) text += std::to_string(flag);
        return text;
    }
    void clearFlags() { std::memset(profile->curveFlags, 0, sizeof profile->curveFlags); }
};

const std::string kFourLines = "CTL2: 0\nCTL2: 0\nCTL2: 0\nCTL2: 0\n";

TEST_F(CmykDescription, ShortControlLineMarksThePointAfterItsLastDigit) {
    clearFlags();
    apply("CTRL: 10001\n");
    EXPECT_EQ(flags(0), "100011" + std::string(59, '0'));
}

TEST_F(CmykDescription, FlagsBehindAShortControlLineStay) {
    std::memset(profile->curveFlags[0], 1, 65);
    apply("CTRL: 00\n");
    EXPECT_EQ(flags(0), "001" + std::string(62, '1'));
}

TEST_F(CmykDescription, FullControlLineFillsSixtyFiveFlags) {
    apply("CTRL: " + std::string(64, '0') + "1\n");
    EXPECT_EQ(flags(0), std::string(64, '0') + "1");
    EXPECT_EQ(profile->curveFlags[1][0], 1);
}

TEST_F(CmykDescription, DigitsBeyondSixtyFiveAreIgnored) {
    clearFlags();
    apply("CTRL: " + std::string(10000, '1') + "\n");
    EXPECT_EQ(flags(0), std::string(65, '1'));
    EXPECT_EQ(flags(1), std::string(65, '0'));
}

TEST_F(CmykDescription, AnyCharacterButZeroMarksAPoint) {
    clearFlags();
    apply("CTRL: 0 x20\n");
    EXPECT_EQ(flags(0).substr(0, 7), "0111010");
}

TEST_F(CmykDescription, NthControlLineFillsCurveN) {
    clearFlags();
    apply("CTRL: 01\nCTRL: 001\nCTRL: 0001\nCTRL: 00001\n");
    EXPECT_EQ(flags(0).substr(0, 6), "011000");
    EXPECT_EQ(flags(1).substr(0, 6), "001100");
    EXPECT_EQ(flags(2).substr(0, 6), "000110");
    EXPECT_EQ(flags(3).substr(0, 6), "000011");
}

TEST_F(CmykDescription, NthSecondControlLineFillsCurveFourPlusN) {
    clearFlags();
    apply("CTL2: 01\nCTL2: 001\nCTL2: 0001\nCTL2: 00001\n");
    EXPECT_EQ(flags(4).substr(0, 6), "011000");
    EXPECT_EQ(flags(5).substr(0, 6), "001100");
    EXPECT_EQ(flags(6).substr(0, 6), "000110");
    EXPECT_EQ(flags(7).substr(0, 6), "000011");
}

TEST_F(CmykDescription, LinesBeyondTheLastCurveFillNothing) {
    std::string lines;
    for (int line = 0; line < 50; ++line) lines += "CTRL: 11111\nCTL2: 11111\n";
    std::strcpy(profile->comment, "kept");
    const auto grid = profile->grid[0];
    apply(lines);
    EXPECT_EQ(profile->grid[0], grid);
    EXPECT_STREQ(profile->comment, "kept");
}

TEST_F(CmykDescription, EmptyControlLineMarksTheFirstPoint) {
    clearFlags();
    apply("CTRL:\nCTRL: \n");
    EXPECT_EQ(flags(0), "1" + std::string(64, '0'));
    EXPECT_EQ(flags(1), "1" + std::string(64, '0'));
}

TEST_F(CmykDescription, ControlLineAtTheEndOfTheTextIsRead) {
    clearFlags();
    apply("CTRL: 01");
    EXPECT_EQ(flags(0).substr(0, 4), "0110");
}

TEST_F(CmykDescription, NameRunsToTheLineFeed) {
    apply("NAME: with blanks, and more \nx");
    EXPECT_STREQ(profile->name, "with blanks, and more ");
}

TEST_F(CmykDescription, NameMayEndTheText) {
    apply("NAME: last");
    EXPECT_STREQ(profile->name, "last");
}

TEST_F(CmykDescription, NameWithoutValueIsEmpty) {
    apply("NAME:\nCTRL: 1\n");
    EXPECT_STREQ(profile->name, "");
    apply("NAME:");
    EXPECT_STREQ(profile->name, "");
}

TEST_F(CmykDescription, LongNameIsCutAtAWholeCharacter) {
    std::string name;
    for (int at = 0; at < 40; ++at) name += "\x96\xB3";
    apply("NAME: " + name + "\n");
    EXPECT_EQ(profile->name, name.substr(0, 62));
    apply("NAME: " + std::string(10000, 'n') + "\n");
    EXPECT_EQ(profile->name, std::string(63, 'n'));
}

TEST_F(CmykDescription, MarkerLineItselfIsNotAValue) {
    std::strcpy(profile->name, "kept");
    cmyk::applyDescription(*profile, "_KOLINK_10JNAME: no");
    EXPECT_STREQ(profile->name, "kept");
}

TEST_F(CmykDescription, ShortTextIsNoMarker) {
    std::strcpy(profile->name, "kept");
    for (const char* text : {"", "_", "_KOLINK_10", "_NQCMS_IJP10", "\nNAME: x", "_KOLINK_10\nNAME: x"})
        cmyk::applyDescription(*profile, text);
    EXPECT_STREQ(profile->name, "kept");
}

TEST_F(CmykDescription, CommentIsEverythingAfterTheFourthSecondControlLine) {
    apply(kFourLines + "one\n\ntwo\n");
    EXPECT_STREQ(profile->comment, "one\n\ntwo\n");
}

TEST_F(CmykDescription, CommentNeedsExactlyFourSecondControlLines) {
    std::strcpy(profile->comment, "kept");
    apply("CTL2: 0\nCTL2: 0\nCTL2: 0\ncomment");
    EXPECT_STREQ(profile->comment, "kept");
    apply(kFourLines + "CTL2: 0\ncomment");
    EXPECT_STREQ(profile->comment, "kept");
}

TEST_F(CmykDescription, OtherLinesBeforeTheFourthSecondControlLineAreSkipped) {
    std::strcpy(profile->comment, "kept");
    apply("unknown\nNAME: n\n\nCTRL: 0\n");
    EXPECT_STREQ(profile->comment, "kept");
    EXPECT_STREQ(profile->name, "n");
}

TEST_F(CmykDescription, CommentIsTakenOnce) {
    apply(kFourLines + "one\ntwo");
    EXPECT_STREQ(profile->comment, "one\ntwo");
}

TEST_F(CmykDescription, KeywordLinesInsideTheCommentAreTextAndCountAllTheSame) {
    std::strcpy(profile->name, "old");
    apply(kFourLines + "one\nNAME: other\nCTRL: 0\ntwo");
    EXPECT_STREQ(profile->comment, "one\nNAME: other\nCTRL: 0\ntwo");
    EXPECT_STREQ(profile->name, "other");
}

TEST_F(CmykDescription, LongCommentIsCutToItsField) {
    apply(kFourLines + std::string(10000, 'c'));
    EXPECT_EQ(profile->comment, std::string(499, 'c'));
}

TEST_F(CmykDescription, EmptyCommentIsTakenToo) {
    std::strcpy(profile->comment, "old");
    apply(kFourLines);
    EXPECT_STREQ(profile->comment, "");
}

TEST_F(CmykDescription, BuiltTextGivesEverythingBack) {
    std::strcpy(profile->name, "name");
    std::strcpy(profile->comment, "a\nb\n");
    for (int curve = 0; curve < 8; ++curve)
        for (int point = 0; point < 65; ++point)
            profile->curveFlags[curve][point] = (point * (curve + 3)) % 5 == 0;
    const std::string text = cmyk::buildDescription(*profile);
    const OwnedProfile back(cmyk::createProfile().release());
    cmyk::applyDescription(*back, text);
    EXPECT_EQ(std::memcmp(back.get(), profile.get(), sizeof(CmykProfile)), 0);
}

TEST_F(CmykDescription, FlagsAreWrittenAsNumbers) {
    profile->curveFlags[0][0] = 12;
    EXPECT_NE(cmyk::buildDescription(*profile).find("CTRL: 120000"), std::string::npos);
}

TEST_F(CmykDescription, AnyDamagedTextStaysInsideTheRecord) {
    std::strcpy(profile->comment, "a\nNAME: b\n");
    const std::string good = cmyk::buildDescription(*profile);
    const Bytes seed(good.begin(), good.end());
    const OwnedProfile fresh(cmyk::createProfile().release());
    for (uint32_t variant = 0; variant < 20000; ++variant) {
        const Bytes bytes = mutated(seed, variant);
        std::string text = "_KOLINK_10J\n" + std::string(bytes.begin(), bytes.end());
        cmyk::applyDescription(*profile, text);
        ASSERT_EQ(profile->name[63], '\0');
        ASSERT_EQ(profile->comment[499], '\0');
        for (const auto& curve : profile->curveFlags)
            ASSERT_TRUE(std::ranges::all_of(curve, [](uint8_t flag) { return flag <= 1; }));
    }
    EXPECT_EQ(std::memcmp(profile->curveValues, fresh->curveValues, sizeof fresh->curveValues), 0);
    EXPECT_TRUE(sameGrid(*profile, *fresh));
}

}  // namespace
}  // namespace ko::test
