// Replacing files where others own them, or their folder. What a user may not do is done in a
// child process that becomes another one, which takes the superuser.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "frame/file.h"
#include "tests/support/files.h"

namespace ko {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;

constexpr uid_t kOther = 65534;

struct stat statusOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status;
}

void makeOld(const std::string& path, mode_t mode) {
    test::writeFile(path, "old");
    EXPECT_EQ(::chmod(path.c_str(), mode), 0);
}

SaveResult save(const char* path) { return replaceWhole(path, kColourTableFiles, "new"); }

struct Saving {
    SaveResult result;
    int reason;
};
// By another user, for whom the folder is the current one: what is above it is not asked.
Saving saveAsAnother(const TempFolder& folder, const char* name) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (::chdir(folder.folder().c_str()) != 0 || ::setgid(kOther) != 0 || ::setuid(kOther) != 0)
            ::_exit(255);
        errno = 0;
        const auto result = static_cast<int>(save(name));
        ::_exit(errno < 64 ? result * 64 + errno : 255);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 255);
    return {static_cast<SaveResult>(WEXITSTATUS(status) / 64), WEXITSTATUS(status) % 64};
}

size_t entriesOf(const TempFolder& folder) {
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder.folder()), {}));
}

TEST(FileReplacing, KeepsTheMode) {
    const TempFolder folder;
    for (const mode_t mode : {0600u, 0640u, 0664u, 0777u, 0606u}) {
        makeOld(folder.path("a"), mode);
        EXPECT_EQ(save(folder.path("a").c_str()), SaveResult::written);
        EXPECT_EQ(statusOf(folder.path("a")).st_mode & 07777, mode);
    }
}

TEST(FileReplacing, MakesANewFileAsTheUsersMaskSays) {
    const TempFolder folder;
    const mode_t before = ::umask(027);
    EXPECT_EQ(save(folder.path("a").c_str()), SaveResult::written);
    ::umask(before);
    EXPECT_EQ(statusOf(folder.path("a")).st_mode & 07777, 0640u);
}

class FileOfAnother : public testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "this takes the superuser";
        makeOld(path, 0666);
    }
    void setFolder(mode_t mode) const { EXPECT_EQ(::chmod(folder.folder().c_str(), mode), 0); }
    const TempFolder folder;
    const std::string path = folder.path("a");
};

TEST_F(FileOfAnother, KeepsItsOwnerAndGroupWherePossible) {
    ASSERT_EQ(::chown(path.c_str(), kOther, kOther - 1), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0664), 0);
    EXPECT_EQ(save(path.c_str()), SaveResult::written);
    const struct stat status = statusOf(path);
    EXPECT_EQ(status.st_uid, kOther);
    EXPECT_EQ(status.st_gid, kOther - 1);
    EXPECT_EQ(status.st_mode & 07777, 0664u);
}

TEST_F(FileOfAnother, GivesItsGroupsRightsToNobodyElse) {
    setFolder(0777);
    EXPECT_EQ(saveAsAnother(folder, "a").result, SaveResult::written);
    const struct stat status = statusOf(path);
    EXPECT_EQ(status.st_uid, kOther);
    EXPECT_EQ(status.st_mode & 07777, 0606u);
    EXPECT_EQ(test::readText(path), "new");
}

TEST_F(FileOfAnother, IsWrittenInPlaceWhereTheFolderKeepsWhatBelongsToOthers) {
    setFolder(01777);
    const ino_t file = statusOf(path).st_ino;
    EXPECT_EQ(saveAsAnother(folder, "a").result, SaveResult::written);
    EXPECT_EQ(test::readText(path), "new");
    EXPECT_EQ(statusOf(path).st_ino, file);
    EXPECT_EQ(statusOf(path).st_uid, 0u);
    EXPECT_EQ(entriesOf(folder), 1u);
}

TEST_F(FileOfAnother, IsWrittenInPlaceWhereTheFolderTakesNoOther) {
    setFolder(0555);
    const ino_t file = statusOf(path).st_ino;
    EXPECT_EQ(saveAsAnother(folder, "a").result, SaveResult::written);
    EXPECT_EQ(test::readText(path), "new");
    EXPECT_EQ(statusOf(path).st_ino, file);

    const Saving fresh = saveAsAnother(folder, "b");
    EXPECT_EQ(fresh.result, SaveResult::notCreated);
    EXPECT_EQ(fresh.reason, EACCES);
    EXPECT_EQ(entriesOf(folder), 1u);
}

TEST_F(FileOfAnother, ThatMayNotBeWrittenStaysInAFolderThatMay) {
    setFolder(0777);
    ASSERT_EQ(::chmod(path.c_str(), 0644), 0);
    const Saving saving = saveAsAnother(folder, "a");
    EXPECT_EQ(saving.result, SaveResult::notCreated);
    EXPECT_EQ(saving.reason, EACCES);
    EXPECT_EQ(test::readText(path), "old");
    EXPECT_EQ(entriesOf(folder), 1u);
}

}  // namespace
}  // namespace ko
