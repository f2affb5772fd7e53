// Calibration files, both forms, through the exported functions.
#include "tests/calib/sets.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <limits>
#include <string>

#include "tests/support/files.h"

using namespace ko::test;

namespace {

class CalibFile : public ::testing::Test {
protected:
    std::string write(std::string_view text) {
        const std::string path = folder_.path("set.clb");
        writeFile(path, text);
        return path;
    }
    CalibSet load(std::string_view text) { return CalibSet(jKoCalibLoadCurve(write(text).c_str())); }
    std::string saved(const CalibSet& set) {
        const std::string path = folder_.path("saved.clb");
        EXPECT_EQ(jKoCalibSaveCurve(set.get(), path.c_str()), 1);
        return readText(path);
    }
    TempFolder folder_;
};

using KeyedCalibFile = CalibFile;
using PlainCalibFile = CalibFile;

// A keyed file of the given settings and tone keys of channel 0.
std::string keyed(const std::string& settings, const std::string& channel = "") {
    return "<CALIB>\n" + settings + "<CURVE_00>\n" + channel + "</CURVE_00>\n</CALIB>\n";
}

}  // namespace

// Saving

TEST_F(KeyedCalibFile, HoldsDirectoriesAndKeysInOrder) {
    const CalibSet set = newSet(2, 100, 200);
    jKoCalibSetTitle(set.get(), "Press 3", "after service");
    jKoCalibSetToneName(set.get(), 0, "Cyan", 0x00C08001);
    jKoCalibSetToneName(set.get(), 1, "Magenta", 0xFF000000);
    jKoCalibSetToneValue(set.get(), 0, 50, 61.75f);
    set->ctype = 2;
    std::strcpy(set->formatY, "%.2f");
    EXPECT_EQ(saved(set),
              "<CALIB>\r\n"
              "    TITLE = Press 3\r\n"
              "    DESC = after service\r\n"
              "    CHANNEL = 2\r\n"
              "    RANGE = 100\r\n"
              "    LIMIT = 200\r\n"
              "    CTYPE = 2\r\n"
              "    FORMAT_X = %.0f\r\n"
              "    FORMAT_Y = %.2f\r\n"
              "    <CURVE_00>\r\n"
              "        NAME = Cyan\r\n"
              "        LRGB = 1,128,192\r\n"
              "        TONE_000 = 0,0.00\r\n"
              "        TONE_001 = 50,61.75\r\n"
              "        TONE_002 = 100,100.00\r\n"
              "    </CURVE_00>\r\n"
              "    <CURVE_01>\r\n"
              "        NAME = Magenta\r\n"
              "        LRGB = 0,0,0\r\n"
              "        TONE_000 = 0,0.00\r\n"
              "        TONE_001 = 100,100.00\r\n"
              "    </CURVE_01>\r\n"
              "</CALIB>\r\n");
}

TEST_F(KeyedCalibFile, RoundTripsWithSixteenFullChannels) {
    const CalibSet set = newSet(16, 1000, 4000);
    std::strcpy(set->formatX, "%.9g");
    std::strcpy(set->formatY, "%.8e");
    jKoCalibSetTitle(set.get(), "  \x95\x5C = <x> ", "");
    for (int32_t channel = 0; channel < 16; ++channel) {
        jKoCalibSetToneName(set.get(), channel, "\x83\x5C\x94\x5C", static_cast<uint32_t>(channel));
        for (int j = 0; j < 254; ++j)
            ASSERT_EQ(jKoCalibSetToneValue(set.get(), channel, static_cast<float>(j + 1) * 3.7f,
                                           static_cast<float>(j * channel) / 3.0f), 1);
    }
    const std::string path = folder_.path("full.clb");
    ASSERT_EQ(jKoCalibSaveCurve(set.get(), path.c_str()), 1);
    const CalibSet loaded(jKoCalibLoadCurve(path.c_str()));
    ASSERT_NE(loaded, nullptr);
    EXPECT_STREQ(loaded->title, set->title);
    EXPECT_STREQ(loaded->desc, "");
    EXPECT_STREQ(loaded->formatX, "%.9g");
    EXPECT_STREQ(loaded->formatY, "%.8e");
    EXPECT_EQ(loaded->path, path);
    EXPECT_EQ(loaded->limit, 4000);
    for (int32_t channel = 0; channel < 16; ++channel) {
        EXPECT_EQ(tonesOf(loaded, channel), tonesOf(set, channel));
        EXPECT_STREQ(channelOf(loaded, channel).name, channelOf(set, channel).name);
        EXPECT_EQ(channelOf(loaded, channel).lrgb, channelOf(set, channel).lrgb);
    }
}

TEST_F(KeyedCalibFile, IsWrittenAfresh) {
    const std::string path = write(keyed("    CHANNEL = 1\n    OTHER = kept?\n", "TONE_200 = 1,1\n"));
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), path.c_str()), 1);
    const std::string text = readText(path);
    EXPECT_EQ(text.find("OTHER"), text.npos);
    EXPECT_EQ(text.find("TONE_200"), text.npos);
}

TEST_F(CalibFile, IsSavedToTheSetsOwnPathWithoutAnother) {
    const CalibSet set = newSet(1);
    const std::string path = folder_.path("own.clb");
    std::strcpy(set->path, path.c_str());
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), nullptr), 1);
    EXPECT_TRUE(exists(path));
    std::filesystem::remove(path);
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), ""), 1);
    EXPECT_TRUE(exists(path));
}

TEST_F(CalibFile, SavingKeepsThePath) {
    const CalibSet set = newSet(1);
    const std::string path = folder_.path("kept.clb");
    jKoCalibSaveCurve(set.get(), path.c_str());
    EXPECT_EQ(set->path, path);
}

TEST_F(CalibFile, SavingWithoutAnyPathFails) {
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), nullptr), 0);
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), ""), 0);
    std::memset(set->path, 'x', sizeof set->path);
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), nullptr), 0);
}

TEST_F(CalibFile, SavingWhereNoFileCanBeFails) {
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), folder_.path("missing/set.clb").c_str()), 0);
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), folder_.folder().string().c_str()), 0);
}

TEST_F(CalibFile, SavingToAPathTooLongFailsAndLeavesThePath) {
    const CalibSet set = newSet(1);
    std::strcpy(set->path, "before");
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), std::string(260, 'x').c_str()), 0);
    EXPECT_STREQ(set->path, "before");
}

TEST_F(CalibFile, UnusableFormatsPrintWholeNumbers) {
    for (const char* format : {"", "%n", "%s", "%d", "%f%f", "%*f", "x%f", "%f x", "%99f", "%.61f",
                               "%Lf", "%a", "%%", "%", "%.", "%5", "%hf", "%1$f"}) {
        const CalibSet set = newSet(1);
        std::strcpy(set->formatX, format);
        std::strcpy(set->formatY, format);
        EXPECT_NE(saved(set).find("TONE_001 = 255,255\r\n"), std::string::npos) << format;
    }
}

TEST_F(CalibFile, ANonTerminatedFormatIsNotReadBeyondItsField) {
    const CalibSet set = newSet(1);
    std::memcpy(set->formatX, "%0000005", 8);
    std::memcpy(set->formatY, ".1f\0\0\0\0", 8);
    EXPECT_NE(saved(set).find("TONE_001 = 255,255\r\n"), std::string::npos);
}

TEST_F(CalibFile, NumbersHaveAPointWhateverTheLocale) {
    const char* const before = std::setlocale(LC_ALL, nullptr);
    const std::string restored = before ? before : "C";
    bool comma = false;
    for (const char* name : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "German", "German_Germany.1252"})
        if (std::setlocale(LC_ALL, name) && *std::localeconv()->decimal_point == ',') {
            comma = true;
            break;
        }
    if (!comma) {
        std::setlocale(LC_ALL, restored.c_str());
        GTEST_SKIP() << "no locale with a decimal comma here";
    }
    const CalibSet set = newSet(1);
    std::strcpy(set->formatY, "%.2f");
    jKoCalibSetToneValue(set.get(), 0, 128, 1.25f);
    const std::string text = saved(set);
    const CalibSet loaded(jKoCalibLoadCurve(set->path));
    std::setlocale(LC_ALL, restored.c_str());
    EXPECT_NE(text.find("TONE_001 = 128,1.25\r\n"), text.npos);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(tonesOf(loaded, 0)[1].second, 1.25f);
}

// Loading: both forms

TEST_F(CalibFile, AMissingFileAFolderAndABadPathGiveNull) {
    EXPECT_EQ(jKoCalibLoadCurve(folder_.path("missing").c_str()), nullptr);
    EXPECT_EQ(jKoCalibLoadCurve(folder_.folder().string().c_str()), nullptr);
    EXPECT_EQ(jKoCalibLoadCurve(nullptr), nullptr);
    EXPECT_EQ(jKoCalibLoadCurve(""), nullptr);
    EXPECT_EQ(jKoCalibLoadCurve(std::string(260, 'x').c_str()), nullptr);
}

TEST_F(CalibFile, AnEmptyFileGivesNull) { EXPECT_EQ(load(""), nullptr); }

TEST_F(CalibFile, NoChannelOrMoreThanSixteenGiveNull) {
    for (const char* count : {"0", "17", "-1", "99999999999", "x", ""}) {
        EXPECT_EQ(load(std::string("CHANNEL = ") + count + "\n"), nullptr) << count;
        EXPECT_EQ(load(keyed(std::string("CHANNEL = ") + count + "\n")), nullptr) << count;
    }
    EXPECT_EQ(load("TITLE   = x\n"), nullptr);
    EXPECT_EQ(load(keyed("TITLE = x\n")), nullptr);
    EXPECT_NE(load("CHANNEL = 16\n"), nullptr);
    EXPECT_NE(load(keyed("CHANNEL = 16\n")), nullptr);
}

// Loading the keyed form

TEST_F(KeyedCalibFile, WithoutRangeHasRangeAndLimit255) {
    const CalibSet set = load(keyed("CHANNEL = 2\n"));
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->channelCount, 2);
    EXPECT_EQ(set->range, 255);
    EXPECT_EQ(set->limit, 255);
}

TEST_F(KeyedCalibFile, ZeroRangeAndLimitAreAsAbsent) {
    const CalibSet zero = load(keyed("CHANNEL = 1\nRANGE = 0\nLIMIT = 0\n"));
    EXPECT_EQ(zero->range, 255);
    EXPECT_EQ(zero->limit, 255);
    const CalibSet range = load(keyed("CHANNEL = 1\nRANGE = 100\n"));
    EXPECT_EQ(range->range, 100);
    EXPECT_EQ(range->limit, 100);
    EXPECT_EQ(load(keyed("CHANNEL = 1\nLIMIT = 40\n"))->limit, 40);
}

TEST_F(KeyedCalibFile, KeepsTheDefaultsOfWhatItLeavesOut) {
    const CalibSet set = load(keyed("CHANNEL = 1\n"));
    const CalibSet fresh = newSet(1);
    EXPECT_STREQ(set->title, "");
    EXPECT_EQ(set->ctype, 1);
    EXPECT_STREQ(set->formatX, "%.0f");
    EXPECT_STREQ(channelOf(set, 0).name, channelOf(fresh, 0).name);
    EXPECT_EQ(channelOf(set, 0).lrgb, 0u);
}

TEST_F(KeyedCalibFile, HasNoTonesButItsOwn) {
    const CalibSet set = load(keyed("CHANNEL = 1\n"));
    EXPECT_EQ(tonesOf(set, 0), Tones{});
    EXPECT_EQ(channelOf(set, 0).tones[1].x, 0);
}

TEST_F(KeyedCalibFile, SortsItsTones) {
    const CalibSet set = load(keyed("CHANNEL = 1\n", "TONE_000 = 200,1\nTONE_001 = 0,2\nTONE_002 = 100.5,3\n"));
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 2}, {100.5f, 3}, {200, 1}}));
}

TEST_F(KeyedCalibFile, ASecondToneOfTheSameXReplacesTheFirst) {
    const CalibSet set = load(keyed("CHANNEL = 1\n", "TONE_000 = 5,1\nTONE_001 = 9,2\nTONE_002 = 5,3\n"));
    EXPECT_EQ(tonesOf(set, 0), (Tones{{5, 3}, {9, 2}}));
}

TEST_F(KeyedCalibFile, EveryToneKeyIsOptional) {
    const CalibSet set = load(keyed("CHANNEL = 1\n", "TONE_003 = 5,1\nTONE_255 = 9,2\nTONE_256 = 10,2\n"));
    EXPECT_EQ(tonesOf(set, 0), (Tones{{5, 1}, {9, 2}}));
}

TEST_F(KeyedCalibFile, BlanksAroundTheCommaDoNoHarm) {
    const CalibSet set = load(keyed("CHANNEL = 1\n", "TONE_000 =  5 , 1.5 \nTONE_001 = 6\t,\t2\n"));
    EXPECT_EQ(tonesOf(set, 0), (Tones{{5, 1.5f}, {6, 2}}));
}

TEST_F(KeyedCalibFile, TheSeparatorOfATonesNumbersIsAComma) {
    const CalibSet set = load(keyed("CHANNEL = 1\n", "TONE_000 = 5 1\nTONE_001 = 6\n"));
    EXPECT_EQ(tonesOf(set, 0), (Tones{{5, 0}, {6, 0}}));
}

TEST_F(KeyedCalibFile, NumbersAreNeverInfiniteOrNan) {
    const CalibSet set = load(keyed("CHANNEL = 1\n", "TONE_000 = nan,inf\nTONE_001 = 1e39,-1e400\nTONE_002 = 1,1e-400\n"));
    constexpr float kMax = std::numeric_limits<float>::max();
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {1, 0}, {kMax, -kMax}}));
}

TEST_F(KeyedCalibFile, ColoursAreRedGreenBlueFromTheLowByte) {
    EXPECT_EQ(channelOf(load(keyed("CHANNEL = 1\n", "LRGB = 1,2,3\n")), 0).lrgb, 0x030201u);
    EXPECT_EQ(channelOf(load(keyed("CHANNEL = 1\n", "LRGB = 300, -5, 255\n")), 0).lrgb, 0xFF00FFu);
    EXPECT_EQ(channelOf(load(keyed("CHANNEL = 1\n", "LRGB = 9\n")), 0).lrgb, 9u);
}

TEST_F(KeyedCalibFile, UnusableFormatsBecomeTheDefault) {
    const auto format = [&](const std::string& text) {
        return std::string(load(keyed("CHANNEL = 1\nFORMAT_X = " + text + "\n"))->formatX);
    };
    EXPECT_EQ(format("%.2f"), "%.2f");
    EXPECT_EQ(format("%-+08.3e"), "%.0f");  // does not fit its field
    EXPECT_EQ(format("%+7.3e"), "%+7.3e");
    for (const char* bad : {"%s", "%n%n%n", "%.1f mm", "%.1f%%", "%x", "%", "", "f"})
        EXPECT_EQ(format(bad), "%.0f") << bad;
}

TEST_F(KeyedCalibFile, ChannelsWithoutDirectoryKeepTheirDefaults) {
    const CalibSet set = load(keyed("CHANNEL = 3\n", "NAME = a\n"));
    EXPECT_STREQ(channelOf(set, 0).name, "a");
    EXPECT_TRUE(std::string(channelOf(set, 2).name).ends_with('3'));
}

TEST_F(KeyedCalibFile, MayBeginWithTheMarkOfAUtf8Editor) {
    EXPECT_NE(load("\xef\xbb\xbf" + keyed("CHANNEL = 1\n")), nullptr);
}

TEST_F(KeyedCalibFile, LongTextsAreCut) {
    const CalibSet set = load(keyed("CHANNEL = 1\nTITLE = " + std::string(10000, 'x') + "\n",
                                    "NAME = " + std::string(10000, 'y') + "\n"));
    EXPECT_EQ(std::string(set->title), std::string(127, 'x'));
    EXPECT_EQ(std::string(channelOf(set, 0).name), std::string(31, 'y'));
}

// Loading the plain form

TEST_F(PlainCalibFile, HoldsEverything) {
    const CalibSet set = load("TITLE   = Press 3\nDESC    = after service\nCHANNEL = 2\nRANGE   = 100\n"
                              "LIMIT   = 200\nCTYPE   = 2\nFORMAT_X= %.1f\nFORMAT_Y= %.2f\n"
                              "NAME 0  = Cyan\nLRGB 0  = 1,2,3\nTONE 0  = 0,0\nTONE 0  = 100,95.5\n"
                              "NAME 1  = Magenta\nTONE 1  = 0, 0\n");
    ASSERT_NE(set, nullptr);
    EXPECT_STREQ(set->title, "Press 3");
    EXPECT_STREQ(set->desc, "after service");
    EXPECT_EQ(set->range, 100);
    EXPECT_EQ(set->limit, 200);
    EXPECT_EQ(set->ctype, 2);
    EXPECT_STREQ(set->formatX, "%.1f");
    EXPECT_STREQ(set->formatY, "%.2f");
    EXPECT_STREQ(channelOf(set, 0).name, "Cyan");
    EXPECT_EQ(channelOf(set, 0).lrgb, 0x030201u);
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {100, 95.5f}}));
    EXPECT_STREQ(channelOf(set, 1).name, "Magenta");
    EXPECT_EQ(tonesOf(set, 1), (Tones{{0, 0}}));
    EXPECT_EQ(set->path, folder_.path("set.clb"));
}

TEST_F(PlainCalibFile, BlanksSeparateTheNumbersOfATone) {
    const CalibSet set = load("CHANNEL = 1\nTONE 0  = 5 1.5\nTONE 0  = 6   2\nTONE 0  = 7 , 3\n");
    EXPECT_EQ(tonesOf(set, 0), (Tones{{5, 1.5f}, {6, 2}, {7, 3}}));
}

TEST_F(PlainCalibFile, TonesKeepTheOrderOfTheFile) {
    const CalibSet set = load("CHANNEL = 1\nTONE 0  = 200,1\nTONE 0  = 0,2\nTONE 0  = 200,3\n");
    EXPECT_EQ(tonesOf(set, 0), (Tones{{200, 1}, {0, 2}, {200, 3}}));
}

TEST_F(PlainCalibFile, ZeroRangeAndLimitAreAsAbsent) {
    const CalibSet none = load("CHANNEL = 1\n");
    EXPECT_EQ(none->range, 255);
    EXPECT_EQ(none->limit, 255);
    const CalibSet range = load("CHANNEL = 1\nRANGE   = 100\nLIMIT   = 0\n");
    EXPECT_EQ(range->range, 100);
    EXPECT_EQ(range->limit, 100);
}

TEST_F(PlainCalibFile, SizesMayStandAfterTheChannels) {
    const CalibSet set = load("TONE 0  = 1,2\nNAME 0  = a\nRANGE   = 9\nCHANNEL = 1\n");
    EXPECT_EQ(set->range, 9);
    EXPECT_STREQ(channelOf(set, 0).name, "a");
    EXPECT_EQ(tonesOf(set, 0), (Tones{{1, 2}}));
}

TEST_F(PlainCalibFile, ChannelsBeyondTheCountAreIgnored) {
    const CalibSet set = load("CHANNEL = 2\nTONE 2  = 1,2\nNAME 16 = x\nLRGB -1 = 1,2,3\nTONE 99999999999 = 1\n");
    EXPECT_EQ(tonesOf(set, 0), Tones{});
    EXPECT_EQ(tonesOf(set, 1), Tones{});
}

TEST_F(PlainCalibFile, TwoFiguresOfAChannelFitBeforeTheValue) {
    const CalibSet set = load("CHANNEL = 16\nNAME 15 = x\nTONE 15 = 1,2\nTONE 15=3,4\n");
    EXPECT_STREQ(channelOf(set, 15).name, "x");
    EXPECT_EQ(tonesOf(set, 15), (Tones{{1, 2}, {3, 4}}));
}

TEST_F(PlainCalibFile, AFullChannelIgnoresFurtherTonesAndColours) {
    std::string text = "CHANNEL = 1\nLRGB 0  = 1,2,3\n";
    for (int j = 0; j < 300; ++j) text += "TONE 0  = " + std::to_string(j) + ",1\n";
    const CalibSet set = load(text + "LRGB 0  = 4,5,6\nNAME 0  = still named\n");
    EXPECT_EQ(tonesOf(set, 0).size(), 256u);
    EXPECT_EQ(tonesOf(set, 0).back().first, 255);
    EXPECT_EQ(channelOf(set, 0).lrgb, 0x030201u);
    EXPECT_STREQ(channelOf(set, 0).name, "still named");
}

TEST_F(PlainCalibFile, LinesAreCutAtTheirSemicolon) {
    const CalibSet set = load("CHANNEL = 1;7\n;CHANNEL = 9\nTITLE   = a;b\nTONE 0  = 1;,2\n");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->channelCount, 1);
    EXPECT_STREQ(set->title, "a");
    EXPECT_EQ(tonesOf(set, 0), (Tones{{1, 0}}));
}

TEST_F(PlainCalibFile, KeysMayBeInAnyCaseAndFillTheirEightCharacters) {
    const CalibSet set = load("channel = 1\nRange   =9\nLIMIT = 7\nTITLE = x\n");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->range, 9);
    EXPECT_EQ(set->limit, 9);  // "LIMIT = " is not the key
    EXPECT_STREQ(set->title, "");
}

TEST_F(PlainCalibFile, ShortLinesHaveNoValue) {
    const CalibSet set = load("CHANNEL = 1\nTONE 0\nNAME \nLRGB 0\nTONE 0=\n");
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {0, 0}}));
    EXPECT_STREQ(channelOf(set, 0).name, "");
}

TEST_F(PlainCalibFile, UnusableFormatsBecomeTheDefault) {
    EXPECT_STREQ(load("CHANNEL = 1\nFORMAT_X= %s%n\n")->formatX, "%.0f");
    EXPECT_STREQ(load("CHANNEL = 1\nFORMAT_Y= %d\n")->formatY, "%.0f");
}

TEST_F(PlainCalibFile, LinesOfTenThousandCharactersAreCut) {
    const CalibSet set = load("TITLE   = " + std::string(10000, 'x') + "\nCHANNEL = 1\n");
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(std::string(set->title), std::string(127, 'x'));
}

TEST_F(PlainCalibFile, IsSavedInTheKeyedForm) {
    const CalibSet set = load("CHANNEL = 1\nTONE 0  = 0,0\nTONE 0  = 255,250\n");
    EXPECT_TRUE(saved(set).starts_with("<CALIB>\r\n"));
    const CalibSet again(jKoCalibLoadCurve(set->path));
    EXPECT_EQ(tonesOf(again, 0), (Tones{{0, 0}, {255, 250}}));
}
