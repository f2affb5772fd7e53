// The file guard, across threads and processes.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include "frame/file.h"
#include "frame/path.h"
#include "frame/state.h"
#include "tests/frame/code_page.h"
#include "tests/support/files.h"

namespace ko {
namespace {

using test::TempFolder;

constexpr int kThreads = 4;
constexpr uint32_t kRounds = 60;
constexpr size_t kBlock = 4096;
constexpr size_t kBlocks = 12;

struct Findings {
    std::atomic<int> torn = 0, whole = 0, refused = 0;
};

// Writes the file in small pieces, each full of one byte, in place, or reads it whole and looks for
// a second byte in it. Every thread does both by turns.
void work(const std::string& path, uint32_t seed, Findings& findings) {
    std::mt19937 random(seed);
    for (uint32_t round = 0; round < kRounds; ++round) {
        const FileGuard guard;
        if (random() % 2 == 0) {
            const std::string block(kBlock, static_cast<char>('a' + random() % 26));
            std::ofstream file(path, std::ios::binary);
            if (!file) ++findings.refused;
            for (size_t at = 0; file && at < kBlocks; ++at) {
                file.write(block.data(), static_cast<std::streamsize>(block.size())).flush();
                if (at % 4 == 0) std::this_thread::yield();
            }
        } else {
            const FileReading reading = readWhole(path.c_str(), kCurveFiles);
            if (!reading) continue;  // not yet written
            const auto bytes = reading.file.bytes();
            const bool same = std::all_of(bytes.begin(), bytes.end(),
                                          [&](uint8_t byte) { return byte == bytes[0]; });
            ++(same && bytes.size() == kBlock * kBlocks ? findings.whole : findings.torn);
        }
    }
}

void workInThreads(const std::string& path, uint32_t seed) {
    Findings findings;
    std::vector<std::thread> threads;
    for (uint32_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] { work(path, seed + thread, findings); });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(findings.torn, 0);
    EXPECT_EQ(findings.refused, 0);
    EXPECT_GT(findings.whole, 0);
}

// The argument that makes this program the second process; what follows it is the folder.
constexpr char kSecondProcess[] = "--ko-second-process=";

std::string secondProcessFolder() {
    for (const std::string& argument : testing::internal::GetArgvs())
        if (argument.starts_with(kSecondProcess)) return argument.substr(sizeof kSecondProcess - 1);
    return {};
}

bool waitFor(const std::string& path) {
    for (int tries = 0; tries < 6000; ++tries) {
        if (test::exists(path)) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

TEST(FileGuardSecondProcess, ReadsAndWritesTheSameFile) {
    const std::string folder = secondProcessFolder();
    if (folder.empty()) GTEST_SKIP() << "runs when the test beside it starts this program again";
    attach();
    test::writeFile(joinPath(folder, "ready"), "x");
    workInThreads(joinPath(folder, "shared"), 200);
    detach();
}

TEST(FileGuard, NoReaderInTwoProcessesSeesAHalfWrittenFile) {
    if (!secondProcessFolder().empty()) GTEST_SKIP() << "this is the second process";
    attach();
    const TempFolder folder;
    // The environment has no say in where the processes meet.
    std::string command = test::onWindows() ? "" : "XDG_RUNTIME_DIR=\"" + folder.folder().string() + "\" ";
    command += "\"" + std::string(processState().modulePath) +
                          "\" --gtest_filter=FileGuardSecondProcess.* \"" + kSecondProcess +
                          folder.folder().string() + "\" > \"" + folder.path("output") + "\"";
    if (test::onWindows()) command = "\"" + command + "\"";  // its shell takes the outer pair away
    int status = -1;
    std::thread second([&] { status = std::system(command.c_str()); });
    EXPECT_TRUE(waitFor(folder.path("ready")));
    workInThreads(folder.path("shared"), 100);
    second.join();
    EXPECT_EQ(status, 0) << test::readText(folder.path("output"));
    EXPECT_NE(test::readText(folder.path("output")).find("[  PASSED  ] 1 test"), std::string::npos)
        << test::readText(folder.path("output"));
    detach();
}

TEST(FileGuard, ThreadThatHoldsItMayTakeItAgain) {
    attach();
    {
        const FileGuard outer;
        const FileGuard inner;
    }
    std::atomic<bool> taken = false;  // and it was given back as often as it was taken
    std::thread other([&] {
        const FileGuard guard;
        taken = true;
    });
    other.join();
    EXPECT_TRUE(taken);
    detach();
}

TEST(FileGuard, KeepsOtherThreadsOutUntilTheOuterOneEnds) {
    attach();
    std::atomic<bool> entered = false;
    std::thread other;
    {
        const FileGuard outer;
        { const FileGuard inner; }
        std::atomic<bool> started = false;
        other = std::thread([&] {
            started = true;
            const FileGuard guard;
            entered = true;
        });
        while (!started) std::this_thread::yield();
        for (int turn = 0; turn < 100; ++turn) std::this_thread::yield();
        EXPECT_FALSE(entered);
    }
    other.join();
    EXPECT_TRUE(entered);
    detach();
}

}  // namespace
}  // namespace ko
