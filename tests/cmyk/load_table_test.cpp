// The raw tables .lut and .amt.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "tests/cmyk/support.h"

namespace ko::test {
namespace {

struct CmykTable : testing::Test {
    TempFolder folder;
    OwnedProfile profile{jKoCmykCreateProfile()};

    std::string file(std::string_view name, const Bytes& bytes) {
        const std::string path = folder.path(name);
        writeFile(path, bytes);
        return path;
    }
    int32_t loadLut(const Bytes& bytes) {
        return jKoCmykLoadProfile(profile.get(), file("table.lut", bytes).c_str());
    }
};

TEST_F(CmykTable, LutNameStandsAtTheStart) {
    ASSERT_EQ(loadLut(lutFile("Press A", "Coated", {})), 1);
    EXPECT_STREQ(profile->name, "Press A");
}

TEST_F(CmykTable, LutCommentStandsAt472) {
    ASSERT_EQ(loadLut(lutFile("Press A", "Coated\nsecond line", {})), 1);
    EXPECT_STREQ(profile->comment, "Coated\nsecond line");
}

TEST_F(CmykTable, AmtCommentStandsAt64) {
    const auto path = file("table.amt", amtFile("Press B", "Uncoated", {}));
    ASSERT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 1);
    EXPECT_STREQ(profile->name, "Press B");
    EXPECT_STREQ(profile->comment, "Uncoated");
}

TEST_F(CmykTable, LutGridStartsAt972AsLittleEndianWords) {
    ASSERT_EQ(loadLut(lutFile("", "", {0x11223344, 0x55667788})), 1);
    EXPECT_EQ(profile->grid[0], 0x11223344u);
    EXPECT_EQ(profile->grid[1], 0x55667788u);
}

TEST_F(CmykTable, AmtGridStartsAt256AsLittleEndianWords) {
    const auto path = file("table.amt", amtFile("", "", {0x11223344, 0x55667788}));
    ASSERT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 1);
    EXPECT_EQ(profile->grid[0], 0x11223344u);
    EXPECT_EQ(profile->grid[1], 0x55667788u);
}

TEST_F(CmykTable, FillsEveryNode) {
    std::vector<uint32_t> words(KOLINK_CMYK_NODES);
    for (uint32_t at = 0; at < words.size(); ++at) words[at] = at * 2654435761u;
    ASSERT_EQ(loadLut(lutFile("", "", words)), 1);
    EXPECT_EQ(std::memcmp(profile->grid, words.data(), sizeof profile->grid), 0);
}

TEST_F(CmykTable, BytesBehindTheGridAreIgnored) {
    std::vector<uint32_t> words(KOLINK_CMYK_NODES + 5, 7);
    ASSERT_EQ(loadLut(lutFile("", "", words)), 1);
    EXPECT_EQ(profile->grid[KOLINK_CMYK_NODES - 1], 7u);
}

TEST_F(CmykTable, ExtensionInCapitalsIsReadAsATable) {
    const auto path = file("TABLE.LUT", lutFile("Capitals", "", {9}));
    ASSERT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 1);
    EXPECT_STREQ(profile->name, "Capitals");
    EXPECT_EQ(profile->grid[0], 9u);
}

TEST_F(CmykTable, AmtExtensionInCapitalsIsReadAsATable) {
    const auto path = file("TABLE.AMT", amtFile("Capitals", "", {9}));
    ASSERT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 1);
    EXPECT_EQ(profile->grid[0], 9u);
}

TEST_F(CmykTable, TheReadersThemselvesTakeAnyExtension) {
    const auto lut = file("a.bin", lutFile("lut", "", {1})), amt = file("b.bin", amtFile("amt", "", {2}));
    EXPECT_EQ(jKoCmykLoadLutable(profile.get(), lut.c_str()), 1);
    EXPECT_EQ(profile->grid[0], 1u);
    EXPECT_EQ(jKoCmykLoadLutableAmatch(profile.get(), amt.c_str()), 1);
    EXPECT_EQ(profile->grid[0], 2u);
}

TEST_F(CmykTable, ReplacesInputCurvesByTheIdentity) {
    for (int curve = 0; curve < 4; ++curve) {
        std::memset(profile->curveValues[curve], 99, 65);
        std::memset(profile->curveFlags[curve], 1, 65);
    }
    ASSERT_EQ(loadLut(lutFile("", "", {})), 1);
    for (int curve = 0; curve < 4; ++curve)
        for (int point = 0; point < 65; ++point) {
            ASSERT_EQ(profile->curveValues[curve][point], curveLevelOf(point));
            ASSERT_EQ(profile->curveFlags[curve][point], point == 0 || point == 64);
        }
}

TEST_F(CmykTable, LeavesEditedOutputCurvesAsTheyWere) {
    for (int curve = 4; curve < 8; ++curve) {
        std::memset(profile->curveValues[curve], 90 + curve, 65);
        std::memset(profile->curveFlags[curve], 1, 65);
    }
    ASSERT_EQ(loadLut(lutFile("", "", {})), 1);
    for (int curve = 4; curve < 8; ++curve)
        for (int point = 0; point < 65; ++point) {
            ASSERT_EQ(profile->curveValues[curve][point], 90 + curve);
            ASSERT_EQ(profile->curveFlags[curve][point], 1);
        }
}

TEST_F(CmykTable, StoresThePath) {
    const auto path = file("table.lut", lutFile("", "", {}));
    ASSERT_EQ(jKoCmykLoadLutable(profile.get(), path.c_str()), 1);
    EXPECT_EQ(profile->path, path);
}

TEST_F(CmykTable, LoadsFromItsOwnPathField) {
    const auto path = file("table.lut", lutFile("Again", "", {}));
    std::strcpy(profile->path, path.c_str());
    ASSERT_EQ(jKoCmykLoadProfile(profile.get(), profile->path), 1);
    EXPECT_EQ(profile->path, path);
    EXPECT_STREQ(profile->name, "Again");
}

TEST_F(CmykTable, MissingFileGivesZeroAndTouchesNothing) {
    const OwnedProfile before(jKoCmykCreateProfile());
    for (const char* name : {"none.lut", "none.amt"}) {
        EXPECT_EQ(jKoCmykLoadProfile(profile.get(), folder.path(name).c_str()), 0);
        EXPECT_EQ(std::memcmp(profile.get(), before.get(), sizeof(CmykProfile)), 0);
    }
}

TEST_F(CmykTable, FolderGivesZero) {
    const auto path = folder.path("folder.lut");
    std::filesystem::create_directory(path);
    EXPECT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 0);
}

TEST_F(CmykTable, NullPathGivesZero) {
    EXPECT_EQ(jKoCmykLoadProfile(profile.get(), nullptr), 0);
    EXPECT_EQ(jKoCmykLoadLutable(profile.get(), nullptr), 0);
    EXPECT_EQ(jKoCmykLoadLutableAmatch(profile.get(), nullptr), 0);
}

TEST_F(CmykTable, NullProfileGivesZero) {
    const auto path = file("table.lut", lutFile("", "", {}));
    EXPECT_EQ(jKoCmykLoadProfile(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoCmykLoadLutable(nullptr, path.c_str()), 0);
    EXPECT_EQ(jKoCmykLoadLutableAmatch(nullptr, path.c_str()), 0);
}

TEST_F(CmykTable, PathLongerThanItsFieldGivesZeroAndTouchesNothing) {
    // Short for the file system: only its repeated "./" make it long.
    std::string path = folder.path("");
    while (path.size() < 260) path += "./";
    writeFile(folder.path("t.lut"), lutFile("long", "", {}));
    path += "t.lut";
    EXPECT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 0);
    EXPECT_EQ(jKoCmykLoadLutable(profile.get(), path.c_str()), 0);
    EXPECT_STREQ(profile->path, "");
}

TEST_F(CmykTable, NameWithoutTerminatorIsCutToItsField) {
    ASSERT_EQ(loadLut(lutFile(std::string(200, 'n'), "c", {})), 1);
    EXPECT_EQ(profile->name, std::string(63, 'n'));
    EXPECT_STREQ(profile->path, folder.path("table.lut").c_str());
}

TEST_F(CmykTable, NameIsCutAtAWholeCharacter) {
    std::string name = "x";
    for (int at = 0; at < 40; ++at) name += "\x96\xB3";
    ASSERT_EQ(loadLut(lutFile(name, "", {})), 1);
    EXPECT_EQ(profile->name, name.substr(0, 63));
    ASSERT_EQ(loadLut(lutFile(name.substr(1), "", {})), 1);
    EXPECT_EQ(profile->name, name.substr(1, 62));
}

TEST_F(CmykTable, CommentThatFillsItsPartOfTheHeaderIsCutToItsField) {
    Bytes bytes = lutFile("n", std::string(500, 'c'), {0x64646464});
    ASSERT_EQ(loadLut(bytes), 1);
    EXPECT_EQ(profile->comment, std::string(499, 'c'));
}

TEST_F(CmykTable, AmtCommentEndsWithTheHeader) {
    const auto path = file("table.amt", amtFile("n", std::string(192, 'c'), {0x64646464}));
    ASSERT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 1);
    EXPECT_EQ(profile->comment, std::string(192, 'c'));
}

TEST_F(CmykTable, EmptyFileGivesEmptyTextsAndLeavesTheGrid) {
    const OwnedProfile fresh(jKoCmykCreateProfile());
    ASSERT_EQ(loadLut({}), 1);
    EXPECT_STREQ(profile->name, "");
    EXPECT_STREQ(profile->comment, "");
    EXPECT_EQ(std::memcmp(profile->grid, fresh->grid, sizeof fresh->grid), 0);
}

TEST_F(CmykTable, TruncatedGridIsReadAsFarAsItGoesAndTheRestStays) {
    profile->grid[1] = profile->grid[2] = 0xa1b2c3d4;
    Bytes bytes = lutFile("", "", {0x01020304, 0x05060708});
    bytes.pop_back();
    ASSERT_EQ(loadLut(bytes), 1);
    EXPECT_EQ(profile->grid[0], 0x01020304u);
    EXPECT_EQ(profile->grid[1], 0xa1060708u);
    EXPECT_EQ(profile->grid[2], 0xa1b2c3d4u);
    const OwnedProfile fresh(jKoCmykCreateProfile());
    EXPECT_EQ(std::memcmp(profile->grid + 3, fresh->grid + 3, sizeof fresh->grid - 12), 0);
}

}  // namespace
}  // namespace ko::test
