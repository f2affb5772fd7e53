// The ICC profiles of a folder.
#include <gtest/gtest.h>

#include <cstring>

#include "kolink/colour.h"
#include "tests/support/files.h"
#include "tests/support/profiles.h"

namespace {
using ko::test::Bytes;
using ko::test::TempFolder;
using ko::test::writeFile;
using Names = std::vector<std::string>;

class FileList : public testing::Test {
protected:
    void addProfile(const std::string& name, std::string_view colourSpace) const {
        writeFile(folder.path(name),
                  ko::test::profileBytes({}, ko::test::profileHeader("mntr", colourSpace)));
    }
    // Paths relative to the folder.
    Names list(const std::string& pattern, const char* colourSpace, int32_t maxCount = 10) const {
        std::vector<char> slots(static_cast<size_t>(maxCount) * KOLINK_PATH_SIZE, '\x55');
        std::strcpy(slots.data(), folder.path(pattern).c_str());
        const int32_t count = jColorLoadIccFileList(slots.data(), maxCount, colourSpace);
        EXPECT_LE(count, maxCount);
        Names names;
        for (int32_t at = 0; at < count; ++at) {
            const std::filesystem::path path(&slots[static_cast<size_t>(at) * KOLINK_PATH_SIZE]);
            EXPECT_EQ(path.parent_path(), folder.folder());
            EXPECT_TRUE(std::filesystem::exists(path));
            names.push_back(path.filename().string());
        }
        return names;
    }
    TempFolder folder;
};

TEST_F(FileList, HoldsTheFullPathsOfTheMatchingFilesSortedByName) {
    for (const char* name : {"b.icc", "c.icc", "A.icc", "d.icm"}) addProfile(name, "RGB ");
    EXPECT_EQ(list("*.icc", nullptr), (Names{"A.icc", "b.icc", "c.icc"}));
}

TEST_F(FileList, IgnoresTheCaseOfNames) {
    addProfile("upper.ICC", "RGB ");
    EXPECT_EQ(list("*.icc", nullptr), Names{"upper.ICC"});
    EXPECT_EQ(list("UP*.icc", nullptr), Names{"upper.ICC"});
}

TEST_F(FileList, TakesStarsAndQuestionMarks) {
    for (const char* name : {"press1.icc", "press22.icc", "press3.icc", "other.icc"})
        addProfile(name, "CMYK");
    EXPECT_EQ(list("press?.icc", nullptr), (Names{"press1.icc", "press3.icc"}));
    EXPECT_EQ(list("p*s*.i*", nullptr), (Names{"press1.icc", "press22.icc", "press3.icc"}));
    EXPECT_EQ(list("*", nullptr).size(), 4u);
    EXPECT_EQ(list("*.*", nullptr).size(), 4u);
    EXPECT_EQ(list("other.icc", nullptr), Names{"other.icc"});
    EXPECT_EQ(list("nothing*", nullptr), Names{});
}

TEST_F(FileList, SkipsFolders) {
    std::filesystem::create_directory(folder.folder() / "folder.icc");
    addProfile("file.icc", "RGB ");
    EXPECT_EQ(list("*.icc", nullptr), Names{"file.icc"});
    EXPECT_EQ(list("*.icc", "RGB "), Names{"file.icc"});
}

TEST_F(FileList, HoldsOnlyProfilesOfTheColourSpaceWithAFilter) {
    addProfile("monitor.icc", "RGB ");
    addProfile("press.icc", "CMYK");
    addProfile("scale.icc", "GRAY");
    EXPECT_EQ(list("*.icc", "RGB "), Names{"monitor.icc"});
    EXPECT_EQ(list("*.icc", "CMYK"), Names{"press.icc"});
    EXPECT_EQ(list("*.icc", nullptr).size(), 3u);
}

TEST_F(FileList, FillsAShortFilterWithBlanks) {
    addProfile("monitor.icc", "RGB ");
    addProfile("press.icc", "CMYK");
    EXPECT_EQ(list("*.icc", "RGB"), Names{"monitor.icc"});
    EXPECT_EQ(list("*.icc", ""), Names{});
}

TEST_F(FileList, HoldsAFileWithoutReadableHeaderWithEveryFilter) {
    writeFile(folder.path("broken.icc"), "not a profile");
    writeFile(folder.path("empty.icc"), "");
    EXPECT_EQ(list("*.icc", "RGB "), (Names{"broken.icc", "empty.icc"}));
    EXPECT_EQ(list("*.icc", "CMYK"), (Names{"broken.icc", "empty.icc"}));
}

TEST_F(FileList, StopsAtItsCapacityWithTheFirstNames) {
    for (int i = 0; i < 20; ++i)
        addProfile(std::string(1, static_cast<char>('a' + i)) + ".icc", "RGB ");
    EXPECT_EQ(list("*.icc", "RGB ", 3), (Names{"a.icc", "b.icc", "c.icc"}));
    EXPECT_EQ(list("*.icc", "RGB ", 20).size(), 20u);
}

// Hosts list .icm files into the slots that .icc files left free.
TEST_F(FileList, FillsOnlyTheSlotsItIsGiven) {
    addProfile("a.icc", "RGB ");
    addProfile("b.icc", "RGB ");
    char slots[3][KOLINK_PATH_SIZE];
    std::memset(slots, 0x55, sizeof slots);
    std::strcpy(slots[0], folder.path("*.icc").c_str());
    EXPECT_EQ(jColorLoadIccFileList(slots[0], 2, "RGB "), 2);
    for (const char character : slots[2]) EXPECT_EQ(character, 0x55);
}

TEST_F(FileList, WritesNothingWithACapacityBelow1) {
    addProfile("a.icc", "RGB ");
    for (const int32_t capacity : {0, -1, INT32_MIN}) {
        char slot[KOLINK_PATH_SIZE];
        const std::string pattern = folder.path("*.icc");
        std::strcpy(slot, pattern.c_str());
        EXPECT_EQ(jColorLoadIccFileList(slot, capacity, nullptr), 0);
        EXPECT_EQ(slot, pattern);
    }
}

TEST_F(FileList, SkipsPathsThatDoNotFitASlot) {
    addProfile("a.icc", "RGB ");
    const size_t room = KOLINK_PATH_SIZE - 1 - folder.path("").size();
    if (room > 250)
        GTEST_SKIP() << "the temporary folder is too short for a name that does not fit";
    const std::string fits = std::string(room - 4, 'x') + ".icc",
                      tooLong = std::string(room - 3, 'y') + ".icc";
    addProfile(fits, "RGB ");
    std::error_code ignored;
    std::filesystem::copy_file(folder.folder() / "a.icc", folder.folder() / tooLong, ignored);
    EXPECT_EQ(list("*.icc", nullptr), (Names{"a.icc", fits}));
    EXPECT_EQ(list("*.icc", "RGB "), (Names{"a.icc", fits}));
}

TEST_F(FileList, IsEmptyForAFolderThatIsNotThere) {
    EXPECT_EQ(list("none/*.icc", nullptr), Names{});
}

TEST_F(FileList, RefusesAPatternThatFillsItsSlotWithoutAnEnd) {
    char slot[KOLINK_PATH_SIZE];
    std::memset(slot, 'a', sizeof slot);
    EXPECT_EQ(jColorLoadIccFileList(slot, 1, nullptr), 0);
    EXPECT_EQ(jColorLoadIccFileList(nullptr, 1, nullptr), 0);
}

TEST_F(FileList, HoldsAThousandOfTwoThousandProfiles) {
    for (int i = 0; i < 2000; ++i)
        addProfile("p" + std::to_string(i) + ".icc", i % 2 ? "RGB " : "CMYK");
    EXPECT_EQ(list("*.icc", "CMYK", 2000).size(), 1000u);
}

}  // namespace
