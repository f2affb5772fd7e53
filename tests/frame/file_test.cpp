#include "frame/file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "frame/lines.h"
#include "frame/path.h"
#include "tests/frame/code_page.h"
#include "tests/support/files.h"

namespace ko {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using test::writeFile;

std::vector<std::string> linesOf(const std::string& text, size_t size) {
    LineReader reader(text);
    std::vector<char> buffer(size);
    std::vector<std::string> lines;
    while (reader.next(buffer)) lines.emplace_back(buffer.data());
    return lines;
}

// Whether a file was replaced by the text.
bool saved(const std::string& path, std::string_view text) {
    return replaceWhole(path.c_str(), kColourTableFiles, text) == SaveResult::written;
}

size_t entriesOf(const TempFolder& folder) {
    size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder.folder())) ++entries;
    return entries;
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

TEST(Lines, AreWrittenWithCrLf) {
    LineWriter writer;
    writer.put("a");
    writer.put("");
    EXPECT_EQ(writer.text(), "a\r\n\r\n");
}

TEST(FileReading, ReadsNoFolderAndNothingMissing) {
    const TempFolder folder;
    const auto resultOf = [](const char* path) { return readWhole(path, kCurveFiles).result; };
    EXPECT_EQ(resultOf(folder.folder().string().c_str()), ReadResult::notOpened);
    EXPECT_EQ(resultOf(folder.path("missing").c_str()), ReadResult::notOpened);
    EXPECT_EQ(resultOf(""), ReadResult::notOpened);
    EXPECT_EQ(resultOf(nullptr), ReadResult::notOpened);
}

TEST(FileReading, GivesWhatIsThere) {
    const TempFolder folder;
    writeFile(folder.path("a"), "hello");
    const FileReading reading = readWhole(folder.path("a").c_str(), kProfileFiles);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading.file.text(), "hello");
    EXPECT_EQ(reading.file.fileSize(), 5u);
}

TEST(FileReading, GivesTheBeginningAloneWhenNoMoreIsWanted) {
    const TempFolder folder;
    writeFile(folder.path("a"), "hello");
    const FileReading reading = readWhole(folder.path("a").c_str(), kProfileFiles, 2);
    ASSERT_TRUE(reading);
    EXPECT_EQ(reading.file.text(), "he");
    EXPECT_EQ(reading.file.fileSize(), 5u);
}

TEST(FileReading, GivesAnEmptyFile) {
    const TempFolder folder;
    writeFile(folder.path("a"), "");
    const FileReading reading = readWhole(folder.path("a").c_str(), kProfileFiles);
    ASSERT_TRUE(reading);
    EXPECT_TRUE(reading.file.bytes().empty());
}

TEST(FileReading, RefusesAFileThatIsTooLargeForItsKind) {
    const TempFolder folder;
    writeFile(folder.path("a"), "hello");
    EXPECT_TRUE(readWhole(folder.path("a").c_str(), {5, false, true}));
    EXPECT_EQ(readWhole(folder.path("a").c_str(), {4, false, true}).result, ReadResult::failed);
    EXPECT_NE(platform::lastError(), 0u);
}

TEST(FileReading, GivesALargeFileWithHolesWhole) {
    const TempFolder folder;
    constexpr size_t kSize = (size_t{20} << 20) + 77;  // beyond what is read in one go
    std::string expected(kSize, '\0');
    writeFile(folder.path("a"), "");
    fs::resize_file(folder.path("a"), kSize);
    {
        std::fstream file(folder.path("a"), std::ios::in | std::ios::out | std::ios::binary);
        for (const size_t at : {size_t{0}, size_t{65535}, size_t{9} << 20, kSize - 3}) {
            file.seekp(static_cast<std::streamoff>(at));
            file.write("abc", 3);
            expected.replace(at, 3, "abc");
        }
    }
    const FileReading reading = readWhole(folder.path("a").c_str(), kProfileFiles);
    ASSERT_TRUE(reading);
    EXPECT_TRUE(reading.file.text() == expected);
}

TEST(FileReading, LeavesTheReasonOfEarlierFailuresAlone) {
    const TempFolder folder;
    writeFile(folder.path("a"), "hello");
    platform::setLastError(77);
    ASSERT_TRUE(readWhole(folder.path("a").c_str(), kProfileFiles));
    EXPECT_EQ(platform::lastError(), 77u);
}

TEST(FileReading, SaysWhyItFailed) {
    const TempFolder folder;
    platform::setLastError(0);
    EXPECT_FALSE(readWhole(folder.path("missing").c_str(), kProfileFiles));
    EXPECT_EQ(platform::lastError(), 2u);  // ENOENT and ERROR_FILE_NOT_FOUND alike
}

TEST(FileReplacing, PutsTheNewFileInPlace) {
    const TempFolder folder;
    EXPECT_TRUE(saved(folder.path("a"), "first"));
    EXPECT_EQ(test::readText(folder.path("a")), "first");
    EXPECT_TRUE(saved(folder.path("a"), "new"));
    EXPECT_EQ(test::readText(folder.path("a")), "new");
    EXPECT_EQ(entriesOf(folder), 1u);
}

TEST(FileReplacing, WritesPartsOneBehindTheOther) {
    const TempFolder folder;
    const test::Bytes a = {1, 2}, b = {3};
    const std::span<const uint8_t> parts[] = {a, {}, b};
    EXPECT_EQ(replaceWhole(folder.path("a").c_str(), kProfileFiles, parts), SaveResult::written);
    EXPECT_EQ(test::readFile(folder.path("a")), (test::Bytes{1, 2, 3}));
}

TEST(FileReplacing, LeavesNothingElseBehind) {
    const TempFolder folder;
    EXPECT_TRUE(saved(folder.path("a"), "new"));
    fs::create_directory(folder.folder() / "b");
    const auto resultOf = [&](std::string_view name) {
        return replaceWhole(folder.path(name).c_str(), kProfileFiles, "new");
    };
    EXPECT_EQ(resultOf("b"), SaveResult::notCreated);
    EXPECT_EQ(resultOf("missing/a"), SaveResult::notCreated);
    EXPECT_EQ(replaceWhole("", kProfileFiles, "new"), SaveResult::notCreated);
    EXPECT_EQ(replaceWhole(nullptr, kProfileFiles, "new"), SaveResult::notCreated);
    EXPECT_EQ(entriesOf(folder), 2u);  // a and b
}

TEST(FileReplacing, ThatIsNotFinishedChangesNothing) {
    const TempFolder folder;
    writeFile(folder.path("a"), "old");
    {
        NewFile file(folder.path("a").c_str(), false);
        ASSERT_TRUE(file);
        EXPECT_TRUE(file.write(std::string_view("new")));
        EXPECT_EQ(test::readText(folder.path("a")), "old");
        EXPECT_EQ(entriesOf(folder), 2u);
    }
    EXPECT_EQ(test::readText(folder.path("a")), "old");
    EXPECT_EQ(entriesOf(folder), 1u);
}

TEST(FileReplacing, LeavesAWriteProtectedFile) {
    const TempFolder folder;
    writeFile(folder.path("a"), "old");
    fs::permissions(folder.path("a"), fs::perms::owner_read);
    platform::setLastError(0);
    EXPECT_EQ(replaceWhole(folder.path("a").c_str(), kProfileFiles, "new"),
              SaveResult::notCreated);
    EXPECT_NE(platform::lastError(), 0u);
    EXPECT_EQ(test::readText(folder.path("a")), "old");
    fs::permissions(folder.path("a"), fs::perms::owner_all);
    EXPECT_EQ(entriesOf(folder), 1u);
}

TEST(FileReplacing, KeepsWhoMayReadTheFile) {
    if (test::onWindows()) GTEST_SKIP() << "the folder decides there";
    const TempFolder folder;
    writeFile(folder.path("a"), "old");
    for (const auto mode : {fs::perms(0600), fs::perms(0644), fs::perms(0620)}) {
        fs::permissions(folder.path("a"), mode);
        EXPECT_TRUE(saved(folder.path("a"), "new"));
        EXPECT_EQ(fs::status(folder.path("a")).permissions(), mode);
    }
}

TEST(FileReplacing, KeepsTheLinkThatLeadsToTheFile) {
    if (test::onWindows()) GTEST_SKIP() << "links need a privilege there";
    const TempFolder folder;
    fs::create_directory(folder.folder() / "there");
    writeFile(folder.path("there/a"), "old");
    fs::create_symlink("there/b", folder.folder() / "link");
    fs::create_symlink("a", folder.folder() / "there" / "b");
    EXPECT_TRUE(saved(folder.path("link"), "new"));
    EXPECT_EQ(test::readText(folder.path("there/a")), "new");
    EXPECT_TRUE(fs::is_symlink(folder.path("link")));
    EXPECT_TRUE(fs::is_symlink(folder.path("there/b")));

    fs::create_symlink("there/none", folder.folder() / "dangling");
    EXPECT_TRUE(saved(folder.path("dangling"), "made"));
    EXPECT_EQ(test::readText(folder.path("there/none")), "made");

    fs::create_symlink("circle", folder.folder() / "circle");
    EXPECT_FALSE(saved(folder.path("circle"), "new"));
}

TEST(FileReplacing, WritesADeviceInPlace) {
    EXPECT_TRUE(saved(test::onWindows() ? "NUL" : "/dev/null", "new"));
    if (!test::onWindows()) {
        EXPECT_TRUE(fs::is_character_file("/dev/null"));
    }
}

TEST(FileReplacing, ToldOfAFullDeviceSaysSo) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "there is no such device";
    platform::setLastError(0);
    EXPECT_EQ(replaceWhole("/dev/full", kProfileFiles, "new"), SaveResult::failed);
    EXPECT_EQ(platform::lastError(), static_cast<uint32_t>(ENOSPC));
}

TEST(FileReplacing, RemovesWhatAKilledProcessLeft) {
    const TempFolder folder;
    writeFile(folder.path("~kolink-ffffff-12-0.tmp"), "left over");
    writeFile(folder.path("~kolink-readme.tmp"), "somebody's");
    writeFile(folder.path("~ko.tmp"), "somebody's");
    EXPECT_TRUE(saved(folder.path("a"), "new"));
    EXPECT_FALSE(test::exists(folder.path("~kolink-ffffff-12-0.tmp")));
    EXPECT_TRUE(test::exists(folder.path("~kolink-readme.tmp")));
    EXPECT_TRUE(test::exists(folder.path("~ko.tmp")));
}

TEST(FileReplacing, LeavesWhatOthersAreMaking) {
    const TempFolder folder;
    NewFile slow(folder.path("a").c_str(), false);
    ASSERT_TRUE(slow);
    EXPECT_TRUE(slow.write(std::string_view("slow")));
    EXPECT_TRUE(saved(folder.path("b"), "quick"));
    EXPECT_EQ(slow.finish(), SaveResult::written);
    EXPECT_EQ(test::readText(folder.path("a")), "slow");
    EXPECT_EQ(entriesOf(folder), 2u);
}

TEST(FileTime, IsTheLocalTimeOfTheLastChange) {
    const TempFolder folder;
    writeFile(folder.path("a"), "x");
    platform::DateTime time{}, now = platform::localTime();
    ASSERT_TRUE(platform::fileTime(folder.path("a").c_str(), time));
    // Within two days: whatever the hour is, a wrong field or zone would be further away.
    const auto days = [](const platform::DateTime& t) { return t.year * 372 + t.month * 31 + t.day; };
    EXPECT_LE(std::abs(days(now) - days(time)), 5);
    EXPECT_LT(time.hour, 24);
    EXPECT_LT(time.minute, 60);
}

TEST(FileTime, OfNothingIsRefused) {
    const TempFolder folder;
    platform::DateTime time{1, 2, 3, 4, 5, 6};
    EXPECT_FALSE(platform::fileTime(folder.path("missing").c_str(), time));
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
        EXPECT_TRUE(saved(path, "inside"));
        EXPECT_TRUE(fs::exists(folder.folder() / fs::path(name) / fs::path(name + u8".txt")));
        EXPECT_TRUE(readWhole(path.c_str(), kCurveFiles));
    }
}

TEST(CodePage, SameBytesAreAFolderAndAFileOn1252) {
    if (!test::onWindows() || test::onCodePage932()) GTEST_SKIP() << "on 1252 alone";
    for (const auto& awkward : test::kAwkward) {
        const TempFolder folder;
        fs::create_directory(folder.folder() / fs::path(awkward.firstOn1252));
        const std::string path = joinPath(folder.folder().string(), awkward.shiftJis) + "a.txt";
        EXPECT_EQ(fileNameOf(path), "a.txt");
        EXPECT_TRUE(saved(path, "inside"));
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
        EXPECT_TRUE(saved(path, "inside"));
        EXPECT_EQ(test::readText(path), "inside");
    }
}

}  // namespace
}  // namespace ko
