// Tone curve files through the exported functions.
#include "tests/tone/curves.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstring>
#include <string>

#include "tests/support/files.h"

using namespace ko::test;

namespace {

constexpr char kUntitled[] = "\x96\xB3\x91\xE8";
constexpr char kFreshFields[] =
    "   0, +16, +32, +48, +64, +80, +96,+112,+128,+144,+160,+176,+192,+208,+224,+240, 255;";

std::string joined(std::initializer_list<std::string> lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    return text;
}

std::string freshLine(const std::string& prefix) { return prefix + kFreshFields; }

class ToneFile : public ::testing::Test {
protected:
    std::string write(std::string_view text) {
        const std::string path = folder_.path("curve.txt");
        writeFile(path, text);
        return path;
    }
    Curve bkc(std::string_view text) {
        Curve curve = newCurve(1);
        EXPECT_EQ(jKoToneLoadBkcCurve(curve.get(), write(text).c_str()), 1);
        return curve;
    }
    Curve tnc(std::string_view text) {
        Curve curve = newCurve(4);
        EXPECT_EQ(jKoToneLoadCmykToneCurve(curve.get(), write(text).c_str()), 1);
        return curve;
    }
    Curve dccCurve(std::string_view text) {
        Curve curve = newCurve(6);
        EXPECT_EQ(jKoToneLoadDccCurve(curve.get(), write(text).c_str()), 1);
        return curve;
    }
    void load(Dcc& dcc, std::string_view text) {
        EXPECT_EQ(jKoToneLoadDcc(&dcc.settings, write(text).c_str()), 1);
    }
    std::string savedDcc(Dcc& dcc) {
        const std::string path = folder_.path("saved.dcc");
        EXPECT_EQ(jKoToneSaveDcc(&dcc.settings, path.c_str()), 1);
        return readText(path);
    }

    TempFolder folder_;
};

using BkcFile = ToneFile;
using TncFile = ToneFile;
using DccFile = ToneFile;

}  // namespace

// Saving

TEST_F(TncFile, OfAFreshCurveIsFourLinesWithSignsBetweenTheEnds) {
    const Curve curve = newCurve(4);
    const std::string path = folder_.path("fresh.tnc");
    ASSERT_EQ(jKoToneSaveCmykToneCurve(curve.get(), path.c_str()), 1);
    EXPECT_EQ(readText(path), joined({freshLine("TONE c = "), freshLine("TONE m = "),
                                      freshLine("TONE y = "), freshLine("TONE k = ")}));
}

TEST_F(TncFile, RoundTripsWhenEveryValueIsASplineResult) {
    const Curve curve = newCurve(4);
    mark(curve, 0, 128, 200);
    mark(curve, 1, 48, 20);
    mark(curve, 1, 208, 180);
    mark(curve, 3, 16, 40);
    jKoToneEncodeToneCurve(curve.get(), 1, 255);
    const std::string first = folder_.path("a.tnc"), second = folder_.path("b.tnc");
    ASSERT_EQ(jKoToneSaveCmykToneCurve(curve.get(), first.c_str()), 1);

    const Curve loaded = newCurve(4);
    ASSERT_EQ(jKoToneLoadCmykToneCurve(loaded.get(), first.c_str()), 1);
    EXPECT_EQ(tableOf(loaded), tableOf(curve));
    ASSERT_EQ(jKoToneSaveCmykToneCurve(loaded.get(), second.c_str()), 1);
    EXPECT_EQ(readText(second), readText(first));
}

TEST_F(TncFile, IsSavedFromTheFirstFourOfSixChannels) {
    const Curve curve = newCurve(6);
    const std::string path = folder_.path("six.tnc");
    EXPECT_EQ(jKoToneSaveCmykToneCurve(curve.get(), path.c_str()), 1);
    EXPECT_EQ(std::ranges::count(readText(path), '\n'), 4);
}

TEST_F(TncFile, CarriesControlPointsOfTheGridLevelsOnly) {
    const Curve curve = newCurve(4);
    mark(curve, 0, 100, 200);  // not a multiple of 16
    jKoToneEncodeToneCurve(curve.get(), 1, 255);
    const std::string path = folder_.path("off.tnc");
    jKoToneSaveCmykToneCurve(curve.get(), path.c_str());
    const Curve loaded = newCurve(4);
    jKoToneLoadCmykToneCurve(loaded.get(), path.c_str());
    EXPECT_EQ(valueOf(loaded, 0, 100), 100);
}

TEST_F(BkcFile, HoldsAHeaderTheTitleAndOneLineAPoint) {
    const Curve curve = newCurve(1);
    std::strcpy(curve->title, "Press 3");
    mark(curve, 0, 100, 7);
    const std::string path = folder_.path("a.bkc"), rule(48, '-');
    ASSERT_EQ(jKoToneSaveBkcCurve(curve.get(), path.c_str()), 1);
    EXPECT_EQ(readText(path),
              joined({rule, "  TONE CURVE file ver2.0", rule, "TITLE  = Press 3", "TONE   =   0,  0",
                      "TONE   = 100,  7", "TONE   = 255,255"}));
}

TEST_F(BkcFile, RoundTrips) {
    const Curve curve = newCurve(1);
    std::strcpy(curve->title, "Press 3");
    mark(curve, 0, 99, 140);
    jKoToneEncodeToneCurve(curve.get(), 1, 255);
    const std::string path = folder_.path("a.bkc");
    ASSERT_EQ(jKoToneSaveBkcCurve(curve.get(), path.c_str()), 1);
    const Curve loaded = newCurve(1);
    ASSERT_EQ(jKoToneLoadBkcCurve(loaded.get(), path.c_str()), 1);
    EXPECT_EQ(tableOf(loaded), tableOf(curve));
    EXPECT_STREQ(loaded->title, "Press 3");
}

TEST_F(DccFile, HoldsSettingsAndSixCurves) {
    Dcc dcc;
    dcc.settings = {720, 1440, 200, 33, dcc.curves.get()};
    std::strcpy(dcc.curves->title, "Printer X");
    EXPECT_EQ(savedDcc(dcc),
              joined({"DEV    = Printer X;", "DPIX   = 720;", "DPIY   = 1440;", "WINK   = 200;",
                      "LCLM   = 33;", freshLine("TONE c = "), freshLine("TONE m = "),
                      freshLine("TONE y = "), freshLine("TONE k = "), freshLine("GCR    = "),
                      freshLine("UCR    = ")}));
}

TEST_F(DccFile, HasOneResolutionLineWhenBothAreEqual) {
    Dcc dcc;
    dcc.settings.DPIX = dcc.settings.DPIY = 600;
    const std::string text = savedDcc(dcc);
    EXPECT_NE(text.find("DPI    = 600;\r\n"), std::string::npos);
    EXPECT_EQ(text.find("DPIX"), std::string::npos);
    EXPECT_EQ(text.find("DPIY"), std::string::npos);
}

TEST_F(DccFile, RoundTrips) {
    Dcc dcc;
    dcc.settings = {720, 1440, 200, 33, dcc.curves.get()};
    std::strcpy(dcc.curves->title, "Printer X");
    mark(dcc.curves, 4, 128, 60);
    mark(dcc.curves, 5, 160, 90);
    jKoToneEncodeToneCurve(dcc.curves.get(), 1, 255);
    const std::string text = savedDcc(dcc);
    Dcc loaded;
    load(loaded, text);
    EXPECT_EQ(tableOf(loaded.curves), tableOf(dcc.curves));
    EXPECT_EQ(loaded.settings.DPIX, 720);
    EXPECT_EQ(loaded.settings.DPIY, 1440);
    EXPECT_EQ(loaded.settings.WINK, 200);
    EXPECT_EQ(loaded.settings.LCLM, 33);
    EXPECT_STREQ(loaded.curves->title, "Printer X");
    EXPECT_EQ(savedDcc(loaded), text);
}

TEST_F(ToneFile, SavingKeepsThePath) {
    const Curve curve = newCurve(6);
    const std::string bkcPath = folder_.path("a.bkc"), tncPath = folder_.path("a.tnc");
    jKoToneSaveBkcCurve(curve.get(), bkcPath.c_str());
    EXPECT_EQ(curve->path, bkcPath);
    jKoToneSaveCmykToneCurve(curve.get(), tncPath.c_str());
    EXPECT_EQ(curve->path, tncPath);
}

TEST_F(ToneFile, SavingReplacesALongerFile) {
    const std::string path = write(std::string(100000, 'x'));
    const Curve curve = newCurve(4);
    ASSERT_EQ(jKoToneSaveCmykToneCurve(curve.get(), path.c_str()), 1);
    EXPECT_EQ(readText(path).find('x'), std::string::npos);
}

TEST_F(ToneFile, SavingWhereNoFileCanBeIsReportedAndLeavesTheRecord) {
    Dcc dcc;
    std::strcpy(dcc.curves->path, "before");
    const std::string path = folder_.path("missing/curve.txt");
    EXPECT_EQ(jKoToneSaveBkcCurve(dcc.curves.get(), path.c_str()), 0);
    EXPECT_EQ(jKoToneSaveCmykToneCurve(dcc.curves.get(), path.c_str()), 0);
    EXPECT_EQ(jKoToneSaveDcc(&dcc.settings, path.c_str()), 0);
    EXPECT_STREQ(dcc.curves->path, "before");
}

TEST_F(ToneFile, SavingTooFewChannelsIsReportedAndMakesNoFile) {
    const Curve three = newCurve(3), none = newCurve(0), five = newCurve(5);
    DccSettings settings{600, 600, 1, 1, five.get()}, empty{600, 600, 1, 1, nullptr};
    const std::string path = folder_.path("none");
    EXPECT_EQ(jKoToneSaveBkcCurve(none.get(), path.c_str()), 0);
    EXPECT_EQ(jKoToneSaveCmykToneCurve(three.get(), path.c_str()), 0);
    EXPECT_EQ(jKoToneSaveDcc(&settings, path.c_str()), 0);
    EXPECT_EQ(jKoToneSaveDcc(&empty, path.c_str()), 0);
    EXPECT_FALSE(exists(path));
}

TEST_F(ToneFile, PathsThatAreNullOrTooLongAreRefused) {
    Dcc dcc;
    const std::string path(260, 'x');
    for (const char* bad : {path.c_str(), static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(jKoToneSaveBkcCurve(dcc.curves.get(), bad), 0);
        EXPECT_EQ(jKoToneSaveCmykToneCurve(dcc.curves.get(), bad), 0);
        EXPECT_EQ(jKoToneSaveDcc(&dcc.settings, bad), 0);
        EXPECT_EQ(jKoToneLoadBkcCurve(dcc.curves.get(), bad), 0);
        EXPECT_EQ(jKoToneLoadDccCurve(dcc.curves.get(), bad), 0);
        EXPECT_EQ(jKoToneLoadDcc(&dcc.settings, bad), 0);
    }
}

TEST_F(ToneFile, NullRecordsAreRefused) {
    const std::string path = write("");
    EXPECT_EQ(jKoToneLoadBkcCurve(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoToneLoadCmykToneCurve(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoToneLoadDccCurve(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoToneLoadDcc(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoToneSaveBkcCurve(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoToneSaveCmykToneCurve(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoToneSaveDcc(nullptr, path.c_str()), 0);
}

TEST_F(ToneFile, ATitleWithoutTerminatorIsSavedToItsEnd) {
    const Curve curve = newCurve(1);
    std::fill(std::begin(curve->title), std::end(curve->title), 't');
    const std::string path = folder_.path("a.bkc");
    jKoToneSaveBkcCurve(curve.get(), path.c_str());
    EXPECT_NE(readText(path).find("TITLE  = " + std::string(64, 't') + "\r\n"), std::string::npos);
}

// Loading: what all readers share

TEST_F(ToneFile, LoadingKeepsThePath) {
    const std::string path = write("");
    const Curve curve = newCurve(6);
    jKoToneLoadBkcCurve(curve.get(), path.c_str());
    EXPECT_EQ(curve->path, path);
    Dcc dcc;
    jKoToneLoadDcc(&dcc.settings, path.c_str());
    EXPECT_EQ(dcc.curves->path, path);
}

TEST_F(ToneFile, LoadsAgainFromTheCurvesOwnPath) {
    const Curve curve = bkc("TONE   = 100, 30\n");
    EXPECT_EQ(jKoToneLoadBkcCurve(curve.get(), curve->path), 1);
    EXPECT_EQ(valueOf(curve, 0, 100), 30);
}

TEST_F(ToneFile, LoadingResetsFirst) {
    const std::string path = write("");
    const Curve curve = newCurve(1);
    std::strcpy(curve->title, "old");
    mark(curve, 0, 100, 3);
    EXPECT_EQ(jKoToneLoadBkcCurve(curve.get(), path.c_str()), 1);
    EXPECT_STREQ(curve->title, kUntitled);
    EXPECT_EQ(tableOf(curve), tableOf(newCurve(1)));
}

TEST_F(ToneFile, AMissingFileLeavesTheCurveReset) {
    const std::string path = folder_.path("missing");
    const Curve curve = newCurve(4);
    std::strcpy(curve->title, "old");
    mark(curve, 0, 100, 3);
    EXPECT_EQ(jKoToneLoadCmykToneCurve(curve.get(), path.c_str()), 0);
    EXPECT_STREQ(curve->title, kUntitled);
    EXPECT_STREQ(curve->path, "");
    EXPECT_EQ(tableOf(curve), tableOf(newCurve(4)));
}

TEST_F(ToneFile, AFolderIsNotRead) {
    const std::string path = folder_.folder().string();
    Dcc dcc;
    EXPECT_EQ(jKoToneLoadBkcCurve(dcc.curves.get(), path.c_str()), 0);
    EXPECT_EQ(jKoToneLoadDccCurve(dcc.curves.get(), path.c_str()), 0);
    EXPECT_EQ(jKoToneLoadDcc(&dcc.settings, path.c_str()), 0);
    EXPECT_EQ(jKoToneLoadCmykToneCurve(newCurve(4).get(), path.c_str()), 0);
}

TEST_F(ToneFile, TheWrongChannelCountIsRefusedAndNothingTouched) {
    const std::string path = write("TONE c = 9\nTONE   = 1,2\n");
    const auto untouched = [&](int32_t channels, int32_t (*loader)(ToneCurve*, const char*)) {
        const Curve curve = newCurve(channels);
        std::strcpy(curve->title, "old");
        const auto before = tableOf(curve);
        return loader(curve.get(), path.c_str()) == 0 && std::strcmp(curve->title, "old") == 0 &&
               tableOf(curve) == before;
    };
    EXPECT_TRUE(untouched(0, jKoToneLoadBkcCurve));
    EXPECT_TRUE(untouched(3, jKoToneLoadCmykToneCurve));
    EXPECT_TRUE(untouched(5, jKoToneLoadDccCurve));
}

TEST_F(TncFile, IsNotLoadedIntoSixChannels) {
    const std::string path = write("TONE c = 9\n");
    const Curve curve = newCurve(6);
    std::strcpy(curve->title, "old");
    EXPECT_EQ(jKoToneLoadCmykToneCurve(curve.get(), path.c_str()), 0);
    EXPECT_STREQ(curve->title, "old");
}

TEST_F(DccFile, NeedsSixChannelsAndCurves) {
    const std::string path = write("DPI    = 600;\n");
    DccSettings empty{1, 2, 3, 4, nullptr};
    EXPECT_EQ(jKoToneLoadDcc(&empty, path.c_str()), 0);
    const Curve five = newCurve(5);
    DccSettings settings{1, 2, 3, 4, five.get()};
    EXPECT_EQ(jKoToneLoadDcc(&settings, path.c_str()), 0);
    EXPECT_EQ(settings.DPIX, 1);
}

TEST_F(ToneFile, LinesMayEndInAnyWay) {
    for (const char* text : {"TITLE  = a\nTONE   = 9,8\n", "TITLE  = a\r\nTONE   = 9,8\r\n",
                             "TITLE  = a\nTONE   = 9,8"}) {
        const Curve curve = bkc(text);
        EXPECT_STREQ(curve->title, "a");
        EXPECT_EQ(valueOf(curve, 0, 9), 8);
    }
}

TEST_F(ToneFile, KeysMayBeInAnyCase) {
    EXPECT_STREQ(bkc("title  = a\n")->title, "a");
    EXPECT_EQ(valueOf(bkc("Tone   = 9,8\n"), 0, 9), 8);
    EXPECT_EQ(valueOf(tnc("tone C = 8\n"), 0, 0), 8);
    Dcc dcc;
    load(dcc, "dpi    = 7\ngcr    = 5\n");
    EXPECT_EQ(dcc.settings.DPIX, 7);
    EXPECT_EQ(valueOf(dcc.curves, 4, 0), 5);
}

TEST_F(ToneFile, LinesThatMatchNothingAreSkipped) {
    const Curve curve = bkc("----\n  TONE CURVE file ver2.0\n TONE   = 9,8\nTONE = 9,8\nTONEX  = 9,8\n"
                            "TITLE\nTO\n\n;TONE   = 9,8\n");
    EXPECT_EQ(tableOf(curve), tableOf(newCurve(1)));
    EXPECT_STREQ(curve->title, kUntitled);
}

TEST_F(ToneFile, WhatGoesBeyondTheLineBufferIsDropped) {
    // 255 bytes count; the point behind them is neither in this line nor a line of its own.
    const std::string line = "TONE   = 9" + std::string(245, ' ') + ",8";
    const Curve curve = bkc(line + "\nTONE   = 20,30\n");
    EXPECT_EQ(valueOf(curve, 0, 9), 0);
    EXPECT_EQ(flagOf(curve, 0, 9), 1);
    EXPECT_EQ(valueOf(curve, 0, 20), 30);
}

TEST_F(ToneFile, LinesOfTenThousandCharactersAreCut) {
    const Curve curve = bkc("TITLE  = " + std::string(10000, 'x') + "\nTONE   = 20,30\n");
    EXPECT_STREQ(curve->title, std::string(63, 'x').c_str());
    EXPECT_EQ(valueOf(curve, 0, 20), 30);
}

TEST_F(ToneFile, ANulByteEndsItsLine) {
    const std::string text("TONE   = 20,30\0,40\nTITLE  = a\0b\nTONE   = 40,50\n", 47);
    const Curve curve = bkc(text);
    EXPECT_EQ(valueOf(curve, 0, 20), 30);
    EXPECT_STREQ(curve->title, "a");
    EXPECT_EQ(valueOf(curve, 0, 40), 50);
}

TEST_F(ToneFile, TitlesAreCutAtAWholeCharacter) {
    // 62 letters and a character of two bytes: it would end beyond the field.
    const std::string letters(62, 'x');
    EXPECT_STREQ(bkc("TITLE  = " + letters + "\x95\x5C\n")->title, letters.c_str());
    EXPECT_STREQ(bkc("TITLE  = " + letters.substr(1) + "\x95\x5C\n")->title,
                 (letters.substr(1) + "\x95\x5C").c_str());
    Dcc dcc;
    load(dcc, "DEV    = " + letters + "\x95\x5C;\n");
    EXPECT_STREQ(dcc.curves->title, letters.c_str());
}

TEST_F(ToneFile, NumbersAreReadToTheirFirstOddCharacter) {
    EXPECT_EQ(valueOf(bkc("TONE   = 20,30x9\n"), 0, 20), 30);
    EXPECT_EQ(valueOf(bkc("TONE   = 20,x30\n"), 0, 20), 0);
    EXPECT_EQ(valueOf(bkc("TONE   = 20,\t30\n"), 0, 20), 30);
    EXPECT_EQ(valueOf(bkc("TONE   = 20,+30\n"), 0, 20), 30);
    EXPECT_EQ(valueOf(bkc("TONE   = 20,--30\n"), 0, 20), 0);
    EXPECT_EQ(valueOf(bkc("TONE   = 20\n"), 0, 20), 0);
}

TEST_F(ToneFile, NumbersThatAreTooLargeStayLarge) {
    for (const char* number : {"32768", "65536", "4294967296", "99999999999999999999999"}) {
        EXPECT_EQ(valueOf(bkc(std::string("TONE   = 20,") + number), 0, 20), 255) << number;
        EXPECT_EQ(valueOf(dccCurve(std::string("TONE c = ") + number), 0, 0), 4080) << number;
        EXPECT_EQ(valueOf(bkc(std::string("TONE   = 20,-") + number), 0, 20), 0) << number;
    }
    Dcc dcc;
    load(dcc, "WINK   = 99999999999\nLCLM   = -99999999999\nDPIX   = -2147483648\nDPIY   = 2147483648\n");
    EXPECT_EQ(dcc.settings.WINK, 2147483647);
    EXPECT_EQ(dcc.settings.LCLM, -2147483647 - 1);
    EXPECT_EQ(dcc.settings.DPIX, -2147483647 - 1);
    EXPECT_EQ(dcc.settings.DPIY, 2147483647);
}

// Black correction

TEST_F(BkcFile, WithoutToneLinesKeepsItsEndPoints) {
    const Curve curve = bkc("TITLE  = none\n");
    EXPECT_EQ(flagOf(curve, 0, 0), 1);
    EXPECT_EQ(flagOf(curve, 0, 255), 1);
    EXPECT_EQ(valueOf(curve, 0, 0), 0);
    EXPECT_EQ(valueOf(curve, 0, 255), 255);
    EXPECT_EQ(valueOf(curve, 0, 77), 77);
}

TEST_F(BkcFile, IsEncodedWithTheSpline) {
    const Curve curve = bkc("TONE   = 128,200\n");
    EXPECT_EQ(valueOf(curve, 0, 64), 113);
    EXPECT_EQ(valueOf(curve, 0, 200), 242);
}

TEST_F(BkcFile, IgnoresPointsOutsideTheLevels) {
    const Curve curve = bkc("TONE   = -1,9\nTONE   = 256,9\nTONE   = 99999999999,9\n");
    EXPECT_EQ(tableOf(curve), tableOf(newCurve(1)));
}

TEST_F(BkcFile, TakesBlanksAndEqualsSignsBetweenTheNumbers) {
    EXPECT_EQ(valueOf(bkc("TONE  128 200\n"), 0, 128), 200);
    EXPECT_EQ(valueOf(bkc("TONE  ==,128==,,200\n"), 0, 128), 200);
}

TEST_F(BkcFile, CutsALineAtItsSemicolon) {
    const Curve curve = bkc("TITLE  = a;b\nTONE   = 20;,30\n;TITLE  = c\n");
    EXPECT_STREQ(curve->title, "a");
    EXPECT_EQ(valueOf(curve, 0, 20), 0);
}

TEST_F(BkcFile, TakesTheLastOfTwoLinesForOneLevel) {
    EXPECT_EQ(valueOf(bkc("TONE   = 20,30\nTONE   = 20,40\n"), 0, 20), 40);
}

TEST_F(BkcFile, LoadsIntoTheFirstOfSeveralChannels) {
    const Curve curve = newCurve(4);
    EXPECT_EQ(jKoToneLoadBkcCurve(curve.get(), write("TONE   = 20,30\n").c_str()), 1);
    EXPECT_EQ(valueOf(curve, 0, 20), 30);
    EXPECT_EQ(valueOf(curve, 1, 20), 20);
}

TEST_F(BkcFile, DoesNotReadCurveLines) {
    EXPECT_EQ(tableOf(bkc("TONE c = 9,9\nTONE k = 9,9\n")), tableOf(newCurve(1)));
}

TEST_F(BkcFile, KeepsItsTitleWhole) {
    EXPECT_STREQ(bkc("TITLE  =  a = b, c \n")->title, "a = b, c ");
    EXPECT_STREQ(bkc("TITLE  = \n")->title, "");
}

// CMYK tone curves

TEST_F(TncFile, MissingFieldsAreControlPointsOfValueZero) {
    const Curve curve = tnc("TONE m =    5, +20\n");
    EXPECT_EQ(flagOf(curve, 1, 0), 1);
    EXPECT_EQ(valueOf(curve, 1, 0), 5);
    EXPECT_EQ(flagOf(curve, 1, 16), 0);
    for (int32_t x = 32; x <= 240; x += 16) {
        EXPECT_EQ(flagOf(curve, 1, x), 1) << x;
        EXPECT_EQ(valueOf(curve, 1, x), 0) << x;
    }
    EXPECT_EQ(flagOf(curve, 1, 255), 1);
    EXPECT_EQ(valueOf(curve, 1, 255), 0);
}

TEST_F(TncFile, AnEmptyCurveLineFallsToZero) {
    const Curve curve = tnc("TONE c = \n");
    for (int32_t x = 0; x < 256; ++x) EXPECT_EQ(valueOf(curve, 0, x), 0);
}

TEST_F(TncFile, APlusMarksAComputedValue) {
    const Curve curve = tnc(std::string("TONE c = ") + kFreshFields + "\n");
    for (int32_t x = 0; x < 256; ++x) EXPECT_EQ(flagOf(curve, 0, x), x == 0 || x == 255) << x;
}

TEST_F(TncFile, ComputedValuesAreComputedAnew) {
    const Curve curve = tnc("TONE c = 0,+99,+99,+99,+99,+99,+99,+99,+99,+99,+99,+99,+99,+99,+99,+99,255;\n");
    EXPECT_EQ(tableOf(curve), tableOf(newCurve(4)));
}

TEST_F(TncFile, DoesNotCutALineAtItsSemicolon) {
    EXPECT_EQ(valueOf(tnc("TONE c = 7;,40\n"), 0, 16), 40);
}

TEST_F(TncFile, FieldsBeyondTheSeventeenthAreIgnored) {
    const Curve curve = tnc("TONE k = 0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,200,201\n");
    EXPECT_EQ(valueOf(curve, 3, 240), 15);
    EXPECT_EQ(valueOf(curve, 3, 255), 16);
}

TEST_F(TncFile, AnEmptyFieldIsSteppedOverLikeItsComma) {
    EXPECT_EQ(valueOf(tnc("TONE c = 7,,40\n"), 0, 16), 40);
}

TEST_F(TncFile, HasNoTitle) { EXPECT_STREQ(tnc("TITLE  = a\nDEV    = b\n")->title, kUntitled); }

TEST_F(TncFile, DoesNotReadGcrAndUcr) {
    EXPECT_EQ(tableOf(tnc("GCR    = 9\nUCR    = 9\n")), tableOf(newCurve(4)));
}

// DCC settings

TEST_F(DccFile, FieldsThatAreNotMentionedKeepTheirValues) {
    Dcc dcc;
    dcc.settings = {1, 2, 3, 4, dcc.curves.get()};
    load(dcc, "WINK   = 250;\n");
    EXPECT_EQ(dcc.settings.DPIX, 1);
    EXPECT_EQ(dcc.settings.DPIY, 2);
    EXPECT_EQ(dcc.settings.WINK, 250);
    EXPECT_EQ(dcc.settings.LCLM, 4);
}

TEST_F(DccFile, DpiSetsBothResolutions) {
    Dcc dcc;
    load(dcc, "DPI    = 600;\n");
    EXPECT_EQ(dcc.settings.DPIX, 600);
    EXPECT_EQ(dcc.settings.DPIY, 600);
    load(dcc, "DPIX   = 300;\nDPIY   = 1200;\n");
    EXPECT_EQ(dcc.settings.DPIX, 300);
    EXPECT_EQ(dcc.settings.DPIY, 1200);
}

TEST_F(DccFile, DevIsTheTitleAndKeepsItsCommas) {
    Dcc dcc;
    load(dcc, "DEV    = ,Printer, large;ignored\n");
    EXPECT_STREQ(dcc.curves->title, ",Printer, large");
}

TEST_F(DccFile, SettingsDoNotSkipCommas) {
    Dcc dcc;
    load(dcc, "WINK   = ,250;\n");
    EXPECT_EQ(dcc.settings.WINK, 0);
}

TEST_F(DccFile, CutsALineAtItsSemicolonWhenEdited) {
    Dcc dcc;
    load(dcc, "TONE c = 7;,40\n");
    EXPECT_EQ(flagOf(dcc.curves, 0, 16), 1);
    EXPECT_EQ(valueOf(dcc.curves, 0, 16), 0);
}

TEST_F(DccFile, IsNotCutAtASemicolonForConversion) {
    EXPECT_EQ(valueOf(dccCurve("TONE c = 7;,40\n"), 0, 16), 640);
}

TEST_F(DccFile, HoldsSixteenTimesItsNumbersForConversion) {
    const Curve curve = dccCurve(joined({freshLine("TONE c = "), freshLine("TONE m = "),
                                         freshLine("TONE y = "), freshLine("TONE k = "),
                                         freshLine("GCR    = "), freshLine("UCR    = ")}));
    for (int32_t channel = 0; channel < 6; ++channel) {
        EXPECT_EQ(valueOf(curve, channel, 255), 4080);
        EXPECT_EQ(valueOf(curve, channel, 0), 0);
        EXPECT_EQ(valueOf(curve, channel, 100), 1600);
    }
    int32_t cmyk[4];
    EXPECT_EQ(jKoToneRGBtoCMYK16(curve.get(), 0, 0, 0, cmyk), 1);
    EXPECT_EQ(cmyk[0], 0);
    EXPECT_EQ(cmyk[3], 4080);
}

TEST_F(DccFile, ForConversionReadsNoSettings) {
    EXPECT_STREQ(dccCurve("DEV    = Printer;\n")->title, kUntitled);
}

TEST_F(DccFile, ALineItDoesNotMentionStaysTheIdentityOfTheEditor) {
    // The reset gives 0 and 255, not 4080: a file without a channel's line has next to no ink there.
    const Curve curve = dccCurve(freshLine("TONE c = "));
    EXPECT_EQ(valueOf(curve, 0, 255), 4080);
    EXPECT_EQ(valueOf(curve, 1, 255), 255);
}

TEST_F(DccFile, WithMoreThanSixChannelsLoadsTheFirstSix) {
    const Curve curve = newCurve(8);
    EXPECT_EQ(jKoToneLoadDccCurve(curve.get(), write("UCR    = 9\n").c_str()), 1);
    EXPECT_EQ(valueOf(curve, 5, 0), 144);
    EXPECT_EQ(valueOf(curve, 6, 77), 77);
}
