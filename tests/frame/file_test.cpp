#include "frame/file.h"

#include <gtest/gtest.h>

#include <cstring>

#include "frame/text.h"
#include "tests/frame/code_page.h"
#include "tests/support/files.h"

namespace ko {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using test::writeFile;

std::vector<std::string> linesOf(const std::string& text, size_t size) {
    const TempFolder folder;
    writeFile(folder.path("lines"), text);
    File file = File::openForReading(folder.path("lines").c_str(), Sharing::reading);
    LineReader reader(file);
    std::vector<char> buffer(size);
    std::vector<std::string> lines;
    while (jFilesGets(reader, buffer)) lines.emplace_back(buffer.data());
    return lines;
}

TEST(Lines, EndWithLfOrCrLf) {
    EXPECT_EQ(linesOf("a\nb\r\nc\rd", 256), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST(Lines, MayBeEmpty) {
    EXPECT_EQ(linesOf("\n\r\n\r", 256), (std::vector<std::string>{"", "", ""}));
    EXPECT_EQ(linesOf("", 256), std::vector<std::string>{});
}

TEST(Lines, BeyondTheBufferAreDroppedUpToTheLineEnd) {
    EXPECT_EQ(linesOf("abcdef\r\ngh\n", 5), (std::vector<std::string>{"abcd", "gh"}));
    EXPECT_EQ(linesOf("abcd\nef", 5), (std::vector<std::string>{"abcd", "ef"}));
    const std::string longLine(10000, 'x');
    EXPECT_EQ(linesOf(longLine + "\ny", 256), (std::vector<std::string>{longLine.substr(0, 255), "y"}));
}

TEST(Lines, AreCutAtAWholeCharacter) {
    EXPECT_EQ(linesOf("ab\x95\x5c z", 4), std::vector<std::string>{"ab"});
    EXPECT_EQ(linesOf("ab\x95\x5c", 5), std::vector<std::string>{"ab\x95\x5c"});
}

TEST(Lines, EndAcrossTheReadersOwnBuffer) {
    const std::string first(4095, 'x');
    EXPECT_EQ(linesOf(first + "\r\ny", 8000), (std::vector<std::string>{first, "y"}));
}

TEST(Lines, AreWrittenWithCrLf) {
    LineWriter writer;
    jFilesPuts(writer, "a");
    jFilesPuts(writer, "");
    EXPECT_EQ(writer.text(), "a\r\n\r\n");
}

TEST(FileReading, OpensNoFolderAndNothingMissing) {
    const TempFolder folder;
    EXPECT_FALSE(File::openForReading(folder.folder().string().c_str(), Sharing::reading));
    EXPECT_FALSE(File::openForReading(folder.path("missing").c_str(), Sharing::none));
    EXPECT_FALSE(File::openForReading("", Sharing::none));
    EXPECT_FALSE(File::openForReading(nullptr, Sharing::none));
}

TEST(FileReading, GivesWhatIsThere) {
    const TempFolder folder;
    writeFile(folder.path("a"), "hello");
    File file = File::openForReading(folder.path("a").c_str(), Sharing::none);
    ASSERT_TRUE(file);
    EXPECT_EQ(file.size(), 5u);
    uint8_t bytes[8] = {};
    EXPECT_TRUE(file.seek(1));
    EXPECT_EQ(file.read(bytes), 4u);
    EXPECT_EQ(std::memcmp(bytes, "ello", 4), 0);
    EXPECT_FALSE(file.seek(uint64_t{1} << 63));
}

TEST(FileWriting, TruncatesWhatIsThere) {
    const TempFolder folder;
    writeFile(folder.path("a"), "hello");
    {
        File file = File::create(folder.path("a").c_str());
        ASSERT_TRUE(file);
        EXPECT_TRUE(file.write(std::string_view("x")));
    }
    EXPECT_EQ(test::readText(folder.path("a")), "x");
}

TEST(FileReplacing, PutsTheNewFileInPlace) {
    const TempFolder folder;
    writeFile(folder.path("a"), "old");
    EXPECT_TRUE(replaceWhole(folder.path("a"), "new"));
    EXPECT_EQ(test::readText(folder.path("a")), "new");
}

TEST(FileReplacing, LeavesNothingElseBehind) {
    const TempFolder folder;
    EXPECT_TRUE(replaceWhole(folder.path("a"), "new"));
    fs::create_directory(folder.folder() / "b");
    EXPECT_FALSE(replaceWhole(folder.path("b"), "new"));
    EXPECT_FALSE(replaceWhole(folder.path("missing/a"), "new"));
    size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder.folder())) ++entries;
    EXPECT_EQ(entries, 2u);  // a and b
}

TEST(FileReplacing, KeepsWhoMayReadTheFile) {
    if (test::onWindows()) GTEST_SKIP() << "the folder decides there";
    const TempFolder folder;
    writeFile(folder.path("a"), "old");
    constexpr auto kOwner = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(folder.path("a"), kOwner);
    EXPECT_TRUE(replaceWhole(folder.path("a"), "new"));
    EXPECT_EQ(fs::status(folder.path("a")).permissions(), kOwner);
}

TEST(FileReplacing, StepsAroundNamesThatAreTaken) {
    const TempFolder folder;
    for (int number = 0; number < 1000; number += 2)
        writeFile(folder.path("~ko" + std::to_string(number) + ".tmp"), "left over");
    EXPECT_TRUE(replaceWhole(folder.path("a"), "new"));
    EXPECT_EQ(test::readText(folder.path("a")), "new");
}

TEST(FileTime, IsTheLocalTimeOfTheLastChange) {
    const TempFolder folder;
    writeFile(folder.path("a"), "x");
    platform::DateTime time{}, now = platform::localTime();
    ASSERT_TRUE(jFilesGetFileTime(folder.path("a").c_str(), time));
    // Within two days: whatever the hour is, a wrong field or zone would be further away.
    const auto days = [](const platform::DateTime& t) { return t.year * 372 + t.month * 31 + t.day; };
    EXPECT_LE(std::abs(days(now) - days(time)), 5);
    EXPECT_LT(time.hour, 24);
    EXPECT_LT(time.minute, 60);
}

TEST(FileTime, OfNothingIsRefused) {
    const TempFolder folder;
    platform::DateTime time{1, 2, 3, 4, 5, 6};
    EXPECT_FALSE(jFilesGetFileTime(folder.path("missing").c_str(), time));
    EXPECT_FALSE(jFilesGetFileTime(nullptr, time));
    EXPECT_EQ(time.year, 1);
}

TEST(FullPath, ResolvesDotsWithoutTheFileBeingThere) {
    char whole[platform::kPathSize];
    ASSERT_TRUE(platform::fullPath(test::native("/app/bin/./../data").c_str(), whole));
    const std::string_view found = whole;
    EXPECT_TRUE(found.ends_with(test::native("/app/data"))) << whole;
    EXPECT_FALSE(found.ends_with(test::native("bin/data"))) << whole;
}

TEST(FullPath, ThatIsTooLongIsRefused) {
    char whole[platform::kPathSize];
    EXPECT_FALSE(platform::fullPath(test::native("/" + std::string(300, 'x')).c_str(), whole));
}

TEST(Claims, AreBelievedUpTo64MiBPastTheEnd) {
    EXPECT_TRUE(isBelievableClaim(100, 50, 120));
    EXPECT_TRUE(isBelievableClaim(0, kClaimTolerance, 0));
    EXPECT_FALSE(isBelievableClaim(1, kClaimTolerance, 0));
    EXPECT_FALSE(isBelievableClaim(0, uint64_t{1} << 33, uint64_t{1} << 40));
    EXPECT_FALSE(isBelievableClaim(UINT64_MAX, 2, 0));
}

// Names that stand for themselves whatever the code page: on Windows with another one than the
// Japanese they cannot be written in a path of bytes at all.
TEST(CodePage, FilesAndFoldersWithAwkwardNamesAreFound) {
    for (const auto& awkward : test::kAwkward) {
        const TempFolder folder;
        const std::u8string name(awkward.name);
        const std::string bytes = test::onWindows() ? std::string(awkward.shiftJis)
                                                    : std::string(name.begin(), name.end());
        if (test::onWindows() && !test::onCodePage932()) continue;
        fs::create_directory(folder.folder() / fs::path(name));
        const std::string path =
            joinPath(joinPath(folder.folder().string(), bytes), bytes + ".txt");
        EXPECT_TRUE(replaceWhole(path, "inside"));
        EXPECT_TRUE(fs::exists(folder.folder() / fs::path(name) / fs::path(name + u8".txt")));
        File file = File::openForReading(path.c_str(), Sharing::reading);
        EXPECT_TRUE(file);
    }
}

TEST(CodePage, SameBytesAreAFolderAndAFileOn1252) {
    if (!test::onWindows() || test::onCodePage932()) GTEST_SKIP() << "on 1252 alone";
    for (const auto& awkward : test::kAwkward) {
        const TempFolder folder;
        fs::create_directory(folder.folder() / fs::path(awkward.firstOn1252));
        const std::string path = joinPath(folder.folder().string(), awkward.shiftJis) + "a.txt";
        EXPECT_EQ(fileNameOf(path), "a.txt");
        EXPECT_TRUE(replaceWhole(path, "inside"));
        EXPECT_TRUE(fs::exists(folder.folder() / fs::path(awkward.firstOn1252) / "a.txt"));
    }
}

// On Linux the bytes of another system's code page are a name like any other.
TEST(CodePage, ShiftJisBytesAreANameOnPosix) {
    if (test::onWindows()) GTEST_SKIP() << "the code page decides there";
    for (const auto& awkward : test::kAwkward) {
        const TempFolder folder;
        fs::create_directory(folder.folder() / awkward.shiftJis);
        const std::string path = folder.path(std::string(awkward.shiftJis) + "/a");
        EXPECT_TRUE(replaceWhole(path, "inside"));
        EXPECT_EQ(test::readText(path), "inside");
    }
}

}  // namespace
}  // namespace ko
