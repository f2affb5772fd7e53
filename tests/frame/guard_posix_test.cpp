// The file guard and killed, forked and stopped processes.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "frame/file.h"
#include "tests/support/files.h"

namespace ko {
namespace {

std::atomic<uint32_t> seenHolder;
std::atomic<uint32_t> longestWait;

bool giveUpAtOnce(uint32_t waited, uint32_t holder) noexcept {
    seenHolder = holder;
    longestWait = waited;
    return false;
}

bool waitAMinute(uint32_t waited, uint32_t) noexcept { return waited < 60000; }

class GuardWaiting : public testing::Test {
protected:
    ~GuardWaiting() override { setGuardWait(nullptr); }
};

// A child that holds the guard until its pipe is closed.
class Holder {
public:
    template <class Before>
    explicit Holder(Before before) {
        int ready[2], stay[2];
        if (::pipe(ready) != 0 || ::pipe(stay) != 0) std::abort();
        child_ = ::fork();
        if (child_ == 0) {
            ::close(stay[1]);
            {
                const FileGuard guard;
                before();
                char byte = 1;
                if (::write(ready[1], &byte, 1) == 1) (void)!::read(stay[0], &byte, 1);
            }
            ::_exit(0);
        }
        char byte;
        (void)!::read(ready[0], &byte, 1);
        for (const int end : {ready[0], ready[1], stay[0]}) ::close(end);
        end_ = stay[1];
    }
    ~Holder() {
        ::close(end_);
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }
    pid_t process() const { return child_; }
    void kill() {
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
    }

private:
    pid_t child_;
    int end_;
};

TEST_F(GuardWaiting, TellsWhoHoldsTheGuardAndMayGiveUp) {
    const Holder holder([] {});
    setGuardWait(giveUpAtOnce);
    {
        const FileGuard guard;
        EXPECT_TRUE(guard.refused());
    }
    EXPECT_EQ(seenHolder, static_cast<uint32_t>(holder.process()));
}

TEST_F(GuardWaiting, ThatGaveUpReadsAndWritesNothing) {
    const test::TempFolder folder;
    test::writeFile(folder.path("a"), "old");
    const Holder holder([] {});
    setGuardWait(giveUpAtOnce);
    const FileReading reading = readWhole(folder.path("a").c_str(), kProfileFiles);
    EXPECT_EQ(reading.result, ReadResult::failed);
    EXPECT_EQ(errno, EINTR);
    errno = 0;
    EXPECT_EQ(replaceWhole(folder.path("a").c_str(), kProfileFiles, "new"), SaveResult::failed);
    EXPECT_EQ(errno, EINTR);
    EXPECT_EQ(test::readText(folder.path("a")), "old");
}

TEST_F(GuardWaiting, EndsWhenTheHolderIsKilled) {
    Holder holder([] {});
    setGuardWait(waitAMinute);
    std::atomic<bool> refused = true;
    std::thread waiting([&] {
        const FileGuard guard;
        refused = guard.refused();
    });
    holder.kill();
    waiting.join();
    EXPECT_FALSE(refused);
}

// The child that was forked while its parent held the guard lives on.
TEST_F(GuardWaiting, EndsWhenTheHolderIsKilledThoughItsChildLives) {
    static pid_t* const grandchild = static_cast<pid_t*>(std::calloc(1, sizeof(pid_t)));
    int channel[2];
    ASSERT_EQ(::pipe(channel), 0);
    Holder holder([&] {
        pid_t child = ::fork();
        if (child == 0) {
            ::pause();
            ::_exit(0);
        }
        (void)!::write(channel[1], &child, sizeof child);
    });
    ASSERT_EQ(::read(channel[0], grandchild, sizeof *grandchild),
              static_cast<ssize_t>(sizeof *grandchild));
    holder.kill();
    setGuardWait([](uint32_t waited, uint32_t) noexcept { return waited < 10000; });
    {
        const FileGuard guard;
        EXPECT_FALSE(guard.refused());
    }
    ::kill(*grandchild, SIGKILL);
    ::close(channel[0]);
    ::close(channel[1]);
}

TEST_F(GuardWaiting, OfAForkedChildIsForItsParent) {
    const FileGuard guard;
    const pid_t child = ::fork();
    if (child == 0) {
        setGuardWait(giveUpAtOnce);
        const FileGuard mine;
        ::_exit(mine.refused() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the child took the guard that its parent holds";
}

TEST(FileGuardPlace, IsAFolderOfTheUsersOwn) {
    { const FileGuard guard; }
    const std::string folder = "/tmp/.kolink-" + std::to_string(::geteuid());
    struct stat status;
    if (::lstat(folder.c_str(), &status) != 0) GTEST_SKIP() << "somebody else has that name";
    if (status.st_uid != ::geteuid()) GTEST_SKIP() << "somebody else has that name";
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_EQ(status.st_mode & 0777, 0700u);
}

// Reasons that are not the file's fault are told apart from a damaged file.
TEST(FileReading, WithoutAFreeHandleSaysSo) {
    const test::TempFolder folder;
    test::writeFile(folder.path("a"), "hello");
    std::vector<int> handles;
    for (int handle; (handle = ::dup(0)) >= 0 || errno != EMFILE;) {
        if (handle < 0) break;
        handles.push_back(handle);
        if (handles.size() > 100000) break;  // as many as one likes
    }
    const bool none = ::dup(0) < 0;
    errno = 0;
    const ReadResult result = readWhole(folder.path("a").c_str(), kProfileFiles).result;
    const int error = errno;
    for (const int handle : handles) ::close(handle);
    if (!none) GTEST_SKIP() << "there are more handles than one test wants";
    EXPECT_EQ(result, ReadResult::notOpened);
    EXPECT_EQ(error, EMFILE);
}

// The system's own files often claim a page and hold a few bytes.
TEST(FileReading, ThatEndsBeforeTheSizeIsAFailure) {
    const char* const path = "/sys/kernel/uevent_seqnum";
    struct stat status;
    if (::stat(path, &status) != 0 || status.st_size < 100) GTEST_SKIP() << "no such file here";
    errno = 0;
    EXPECT_EQ(readWhole(path, kCurveFiles).result, ReadResult::failed);
    EXPECT_EQ(errno, EIO);
}

TEST(FileReading, OfAHugeFileTakesNoMemory) {
    const test::TempFolder folder;
    test::writeFile(folder.path("a"), "");
    ASSERT_EQ(::truncate(folder.path("a").c_str(), off_t{12} << 30), 0);
    EXPECT_EQ(readWhole(folder.path("a").c_str(), kProfileFiles).result, ReadResult::failed);
    EXPECT_EQ(errno, EFBIG);
}

}  // namespace
}  // namespace ko
