// What Windows alone has: cursors, resources, the mutex by its name.
#include <gtest/gtest.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <filesystem>
#include <thread>

#include "frame/file.h"
#include "frame/state.h"
#include "tests/support/files.h"

namespace ko {
namespace {

using platform::WaitCursor;

HCURSOR systemCursor(int number) { return ::LoadCursorA(nullptr, MAKEINTRESOURCEA(number)); }
constexpr int kArrow = 32512, kWait = 32514;

TEST(WaitCursor, OfTheSystemIsTheHourglass) {
    const WaitCursor cursor(WaitCursor::Source::system);
    EXPECT_NE(::GetCursor(), nullptr);
    EXPECT_EQ(::GetCursor(), systemCursor(kWait));
}

// The library carries no cursor, and so the pointer disappears.
TEST(WaitCursor, OfTheLibraryIsNone) {
    ::SetCursor(systemCursor(kArrow));
    const WaitCursor cursor(WaitCursor::Source::library);
    EXPECT_EQ(::GetCursor(), nullptr);
}

TEST(WaitCursor, GivesThePreviousOneBack) {
    for (const auto source : {WaitCursor::Source::library, WaitCursor::Source::system}) {
        ::SetCursor(systemCursor(kArrow));
        { const WaitCursor cursor(source); }
        EXPECT_EQ(::GetCursor(), systemCursor(kArrow));
    }
}

class Resources {
public:
    explicit Resources(HMODULE module) : module_(module) {}
    bool has(const char* name, WORD type) const {
        return ::FindResourceA(module_, name, MAKEINTRESOURCEA(type)) != nullptr;
    }

private:
    HMODULE module_;
};
constexpr WORD kHtml = 23, kVersion = 16;

TEST(Resources, OfTheLibraryAreTheTablesAndItsVersion) {
    const HMODULE library = ::LoadLibraryExA(KO_TEST_LIBRARY, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(library, nullptr);
    const Resources resources(library);
    EXPECT_TRUE(resources.has("TEXT_JAPANESE", kHtml));
    EXPECT_TRUE(resources.has("TEXT_ENGLISH", kHtml));
    EXPECT_TRUE(resources.has("TEXT_CHINESE", kHtml));
    EXPECT_TRUE(resources.has(MAKEINTRESOURCEA(1), kVersion));
    ::FreeLibrary(library);
}

TEST(Resources, OfAProgramHaveNoVersionOfTheLibrary) {
    const Resources resources(static_cast<HMODULE>(platform::moduleHandle()));
    EXPECT_TRUE(resources.has("TEXT_ENGLISH", kHtml));
    EXPECT_FALSE(resources.has(MAKEINTRESOURCEA(1), kVersion));
}

TEST(NamedMutex, HasItsNameInTheSystem) {
    attach();
    const HANDLE mutex = ::OpenMutexA(MUTEX_ALL_ACCESS, FALSE, "_KOLINK_MUTEX");
    EXPECT_NE(mutex, nullptr);
    ::CloseHandle(mutex);
    detach();
}

TEST(NamedMutex, ThatWasNeverCreatedIsNotOpened) {
    EXPECT_EQ(platform::openNamedMutex("_KOLINK_TEST_NEVER"), nullptr);
}

// The wait ends when the thread that holds the mutex has died with it.
TEST(NamedMutex, ThatWasAbandonedIsTakenLikeAFreeOne) {
    constexpr char kName[] = "_KOLINK_TEST_ABANDONED";
    platform::NamedMutex* const kept = platform::createNamedMutex(kName);
    ASSERT_NE(kept, nullptr);
    std::thread dying([&] {
        platform::NamedMutex* const mutex = platform::openNamedMutex(kName);
        if (mutex) platform::lock(*mutex, nullptr);
        platform::closeNamedMutex(mutex);  // the handle goes, the ownership stays
    });
    dying.join();
    platform::NamedMutex* const next = platform::openNamedMutex(kName);
    ASSERT_NE(next, nullptr);
    EXPECT_TRUE(platform::lock(*next, nullptr));
    platform::unlockAndClose(next);
    platform::closeNamedMutex(kept);
}

// Where nobody shares it, the file itself is in the way, and counts as one that may not be replaced.
TEST(FileReplacing, LeavesAFileThatAnotherProgramHolds) {
    const test::TempFolder folder;
    const std::string path = folder.path("a");
    test::writeFile(path, "old");
    const HANDLE held = ::CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    ::SetLastError(0);
    EXPECT_EQ(replaceWhole(path.c_str(), kProfileFiles, "new"), SaveResult::notCreated);
    EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    ::CloseHandle(held);
    EXPECT_EQ(test::readText(path), "old");
    for (const auto& entry : std::filesystem::directory_iterator(folder.folder()))
        EXPECT_EQ(entry.path().filename(), L"a");
    EXPECT_EQ(replaceWhole(path.c_str(), kProfileFiles, "new"), SaveResult::written);
}

TEST(FilesMatching, NamesThatTheCodePageCannotSayComeInTheirShortForm) {
    const test::TempFolder folder;
    test::writeFile(folder.path("plain.icc"), "plain");
    // Thai is on none of the code pages that are in use here.
    std::filesystem::copy_file(folder.folder() / "plain.icc", folder.folder() / L"\u0e01\u0e02.icc");
    const auto names = platform::filesMatching(folder.path("*.icc").c_str());
    ASSERT_EQ(names.size(), 2u);
    for (const std::string& name : names) EXPECT_EQ(test::readText(folder.path(name)), "plain") << name;
}

TEST(SamePath, IgnoresTheCaseOfTheCodePagesLetters) {
    EXPECT_TRUE(platform::samePath("C:\\Colour\\a.ICC", "c:\\colour\\A.icc"));
    EXPECT_FALSE(platform::samePath("a.icc", "a.icm"));
    EXPECT_FALSE(platform::samePath("a.icc", "a.ic"));
    if (::GetACP() == 1252) {
        EXPECT_TRUE(platform::samePath("\xc9.icc", "\xe9.icc"));  // an acute E
    }
    if (::GetACP() == 932) {
        EXPECT_TRUE(platform::samePath("\x82\x60", "\x82\x81"));  // a wide A
    }
}

}  // namespace
}  // namespace ko
