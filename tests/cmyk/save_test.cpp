// Saving as a device link, and loading it again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/cmyk/support.h"

namespace ko::test {
namespace {

struct CmykSave : testing::Test {
    TempFolder folder;
    OwnedProfile profile{jKoCmykCreateProfile()};
    std::string path = folder.path("link.icc");

    void save() { ASSERT_EQ(jKoCmykSaveProfile(profile.get(), path.c_str()), 1); }

    // The element of a tag in the file, and its place in the directory.
    Bytes element(std::string_view signature, int* place = nullptr) {
        const Bytes file = readFile(path);
        const auto u32 = [&](size_t at) {
            return static_cast<uint32_t>(file.at(at)) << 24 | file.at(at + 1) << 16 | file.at(at + 2) << 8 | file.at(at + 3);
        };
        for (uint32_t entry = 0; entry < u32(128); ++entry) {
            const size_t at = 132 + 12 * entry;
            if (std::string(file.begin() + at, file.begin() + at + 4) != signature) continue;
            if (place) *place = static_cast<int>(entry);
            return Bytes(file.begin() + u32(at + 4), file.begin() + u32(at + 4) + u32(at + 8));
        }
        return {};
    }
    std::string description() {
        const Bytes bytes = element("desc");
        return std::string(reinterpret_cast<const char*>(bytes.data()) + 12);
    }
};

constexpr size_t kInputTables = 48, kGrid = 48 + 1024, kOutputTables = kGrid + 4 * KOLINK_CMYK_NODES;

TEST_F(CmykSave, WritesFourTagsInOrder) {
    save();
    int place = -1;
    for (const auto& [signature, expected] : {std::pair{"cprt", 0}, {"desc", 1}, {"pseq", 2}, {"A2B0", 3}}) {
        EXPECT_FALSE(element(signature, &place).empty()) << signature;
        EXPECT_EQ(place, expected) << signature;
    }
    EXPECT_EQ(readFile(path)[131], 4);
}

TEST_F(CmykSave, WritesALinkFromCmykToCmyk) {
    save();
    const Bytes file = readFile(path);
    EXPECT_EQ(std::string(file.begin() + 12, file.begin() + 24), "linkCMYKCMYK");
}

TEST_F(CmykSave, WritesAnEightBitTableOf33PointsWithTheIdentityMatrix) {
    save();
    const Bytes lut = element("A2B0");
    EXPECT_EQ(Bytes(lut.begin(), lut.begin() + 48), lutHeader(1, 4, 4, 33));
    EXPECT_EQ(lut.size(), kOutputTables + 1024);
}

TEST_F(CmykSave, DefaultRecordHasIdentityTables) {
    save();
    const Bytes lut = element("A2B0");
    for (size_t channel = 0; channel < 4; ++channel)
        for (size_t x = 0; x < 256; ++x) {
            ASSERT_EQ(lut[kInputTables + 256 * channel + x], x);
            ASSERT_EQ(lut[kOutputTables + 256 * channel + x], x);
        }
}

TEST_F(CmykSave, DefaultRecordHoldsEveryNodesOwnLevels) {
    save();
    const Bytes lut = element("A2B0");
    for (uint32_t node = 0; node < KOLINK_CMYK_NODES; ++node) {
        const uint32_t k = node % 33, y = node / 33 % 33, m = node / 1089 % 33, c = node / 35937;
        const uint8_t* bytes = lut.data() + kGrid + 4 * node;
        ASSERT_TRUE(bytes[0] == gridLevel(c) && bytes[1] == gridLevel(m) && bytes[2] == gridLevel(y) && bytes[3] == gridLevel(k)) << node;
    }
}

TEST_F(CmykSave, TablesAreTheSplineThroughTheFlaggedPoints) {
    const TonePoint points[] = {{0, 10}, {40, 90}, {200, 180}, {255, 250}};
    for (const int curve : {1, 6}) {
        profile->curveFlags[curve][10] = profile->curveFlags[curve][50] = 1;
        profile->curveValues[curve][0] = 10;
        profile->curveValues[curve][10] = 90;
        profile->curveValues[curve][50] = 180;
        profile->curveValues[curve][64] = 250;
    }
    save();
    const Bytes lut = element("A2B0");
    for (int x = 0; x < 256; ++x) {
        const int32_t value = jKoToneGetSplineTone(points, 4, x);
        ASSERT_EQ(lut[kInputTables + 256 + static_cast<size_t>(x)], value);
        ASSERT_EQ(lut[kOutputTables + 512 + static_cast<size_t>(x)], value);
    }
}

TEST_F(CmykSave, ValuesWithoutAFlagDoNotMatter) {
    std::memset(profile->curveValues[0] + 1, 200, 63);
    save();
    EXPECT_EQ(element("A2B0")[kInputTables + 100], 100);
}

TEST_F(CmykSave, SplineThatFallsBelowZeroGives255) {
    // A steep fall to a flat foot makes the curve undershoot behind it.
    profile->curveFlags[0][16] = profile->curveFlags[0][32] = 1;
    profile->curveValues[0][0] = 255;
    profile->curveValues[0][16] = 0;
    profile->curveValues[0][32] = 0;
    profile->curveValues[0][64] = 0;
    const TonePoint points[] = {{0, 255}, {64, 0}, {128, 0}, {255, 0}};
    save();
    const Bytes lut = element("A2B0");
    int below = 0;
    for (int x = 0; x < 256; ++x) {
        const int32_t value = jKoToneGetSplineTone(points, 4, x);
        below += value < 0;
        ASSERT_EQ(lut[kInputTables + static_cast<size_t>(x)], value < 0 || value > 255 ? 255 : value) << x;
    }
    EXPECT_GT(below, 10);
}

TEST_F(CmykSave, SplineThatRisesAbove255Gives255) {
    profile->curveFlags[5][16] = profile->curveFlags[5][32] = 1;
    profile->curveValues[5][0] = 0;
    profile->curveValues[5][16] = 255;
    profile->curveValues[5][32] = 255;
    save();
    EXPECT_EQ(element("A2B0")[kOutputTables + 256 + 80], 255);
}

TEST_F(CmykSave, CurveWithoutAnyFlagBecomesATableOfZeros) {
    std::memset(profile->curveFlags[2], 0, 65);
    save();
    const Bytes lut = element("A2B0");
    for (size_t x = 0; x < 256; ++x) ASSERT_EQ(lut[kInputTables + 512 + x], 0);
    EXPECT_EQ(lut[kInputTables + 256 + 9], 9);
}

TEST_F(CmykSave, DescriptionIsMarkerNameFlagsAndComment) {
    std::strcpy(profile->name, "Test");
    std::strcpy(profile->comment, "first\nsecond");
    profile->curveFlags[1][1] = 1;
    profile->curveFlags[7][63] = 1;
    save();
    const std::string ends = "1" + std::string(63, '0') + "1\n";
    std::string second = ends, last = ends;
    second[1] = last[63] = '1';
    EXPECT_EQ(description(), "_KOLINK_10J\nNAME: Test\nCTRL: " + ends + "CTRL: " + second + "CTRL: " + ends +
                                 "CTRL: " + ends + "CTL2: " + ends + "CTL2: " + ends + "CTL2: " + ends +
                                 "CTL2: " + last + "first\nsecond");
}

TEST_F(CmykSave, LastControlLineEndsWithALineFeedWithoutACommentToo) {
    save();
    EXPECT_TRUE(description().ends_with("01\n"));
}

TEST_F(CmykSave, LongestNameAndCommentAreWrittenWhole) {
    std::memset(profile->name, 'n', 63);
    std::memset(profile->comment, 'c', 499);
    profile->name[63] = profile->comment[499] = '\0';
    std::memset(profile->curveFlags, 255, sizeof profile->curveFlags);
    save();
    const std::string text = description();
    EXPECT_NE(text.find("NAME: " + std::string(63, 'n') + "\n"), std::string::npos);
    EXPECT_TRUE(text.ends_with("\n" + std::string(499, 'c')));
}

TEST_F(CmykSave, TextsWithoutTerminatorEndWithTheirFields) {
    std::memset(profile->name, 'n', sizeof profile->name);
    std::memset(profile->comment, 'c', sizeof profile->comment);
    save();
    EXPECT_NE(description().find("NAME: " + std::string(64, 'n') + "\n"), std::string::npos);
    EXPECT_TRUE(description().ends_with("\n" + std::string(500, 'c')));
}

TEST_F(CmykSave, SequenceIsEmpty) {
    save();
    EXPECT_EQ(element("pseq"), (Bytes{'p', 's', 'e', 'q', 0, 0, 0, 0, 0, 0}));
}

TEST_F(CmykSave, LoadingBackGivesNameFlagsCommentPointsAndGrid) {
    std::strcpy(profile->name, "\x95\x5C press");  // its second byte is a backslash
    std::strcpy(profile->comment, "two\nlines\n");
    std::mt19937 random(11);
    for (auto& node : profile->grid) node = static_cast<uint32_t>(random());
    for (int curve = 0; curve < 8; ++curve) {
        int level = 0;
        for (int point = 0; point < 65; ++point) {
            level = std::min(255, level + static_cast<int>(random() % 8));
            profile->curveFlags[curve][point] = point % 4 == curve % 4 || point == 0 || point == 64;
            profile->curveValues[curve][point] = static_cast<uint8_t>(level);
        }
    }
    save();
    const OwnedProfile back(jKoCmykCreateProfile());
    ASSERT_EQ(jKoCmykLoadProfile(back.get(), path.c_str()), 1);
    EXPECT_STREQ(back->name, profile->name);
    EXPECT_STREQ(back->comment, profile->comment);
    EXPECT_TRUE(sameGrid(*back, *profile));
    EXPECT_EQ(std::memcmp(back->curveFlags, profile->curveFlags, sizeof back->curveFlags), 0);
    for (int curve = 0; curve < 8; ++curve)
        for (int point = 0; point < 65; ++point)
            if (profile->curveFlags[curve][point]) {
                ASSERT_EQ(back->curveValues[curve][point], profile->curveValues[curve][point]) << curve << ' ' << point;
            }
}

TEST_F(CmykSave, LoadingBackClearsAnOldComment) {
    save();
    const OwnedProfile back(jKoCmykCreateProfile());
    std::strcpy(back->comment, "old");
    ASSERT_EQ(jKoCmykLoadProfile(back.get(), path.c_str()), 1);
    EXPECT_STREQ(back->comment, "");
}

TEST_F(CmykSave, SavedTwiceGivesTheSameBytesBesideTheDate) {
    save();
    const Bytes first = readFile(path);
    save();
    const Bytes second = readFile(path);
    ASSERT_EQ(first.size(), second.size());
    EXPECT_TRUE(std::equal(first.begin() + 36, first.end(), second.begin() + 36));
}

TEST_F(CmykSave, StoresThePath) {
    save();
    EXPECT_EQ(profile->path, path);
}

TEST_F(CmykSave, SavesUnderItsOwnPathField) {
    save();
    EXPECT_EQ(jKoCmykSaveProfile(profile.get(), profile->path), 1);
    EXPECT_EQ(profile->path, path);
}

TEST_F(CmykSave, FileThatCannotBeCreatedCountsAsSavedAndThePathIsStored) {
    const std::string nowhere = folder.path("no-folder/link.icc");
    EXPECT_EQ(jKoCmykSaveProfile(profile.get(), nowhere.c_str()), 1);
    EXPECT_FALSE(exists(nowhere));
    EXPECT_EQ(profile->path, nowhere);
}

TEST_F(CmykSave, PathLongerThanItsFieldGivesZeroAndWritesNothing) {
    std::string longPath = folder.path("");
    while (longPath.size() < 260) longPath += "./";
    EXPECT_EQ(jKoCmykSaveProfile(profile.get(), (longPath + "x.icc").c_str()), 0);
    EXPECT_FALSE(exists(folder.path("x.icc")));
    EXPECT_STREQ(profile->path, "");
}

TEST_F(CmykSave, NullArgumentsGiveZero) {
    EXPECT_EQ(jKoCmykSaveProfile(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoCmykSaveProfile(profile.get(), nullptr), 0);
}

}  // namespace
}  // namespace ko::test
