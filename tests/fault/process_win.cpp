#include <windows.h>

#include <process.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "tests/fault/process.h"

namespace ko::fault {
namespace {

constexpr int kOutOfTime = 124;
std::string programPath, folderOfProgram;
std::atomic<ULONGLONG> deadline = 0;

std::string inQuotes(const std::string& text) { return '"' + text + '"'; }

void watch() {
    for (;; ::Sleep(500)) {
        const ULONGLONG end = deadline;
        if (end != 0 && ::GetTickCount64() > end)
            ::TerminateProcess(::GetCurrentProcess(), kOutOfTime);
    }
}

}  // namespace

void rememberProgram(const char*, const char* folder) {
    char path[MAX_PATH];
    if (::GetModuleFileNameA(nullptr, path, sizeof path) == 0) std::exit(2);
    programPath = path;
    folderOfProgram = std::filesystem::absolute(folder).string();
    ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
}

ChildEnd runAgain(const std::vector<std::string>& arguments) {
    std::vector<std::string> all = {"fault_tests", inQuotes(folderOfProgram)};
    for (const std::string& argument : arguments) all.push_back(inQuotes(argument));
    std::vector<const char*> argv;
    for (const std::string& argument : all) argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    const intptr_t status = ::_spawnv(_P_WAIT, programPath.c_str(), argv.data());
    if (status == 0) return ChildEnd::normal;
    return status == kOutOfTime ? ChildEnd::outOfTime : ChildEnd::crashed;
}

void limitTime(unsigned seconds) {
    static std::thread watcher = [] {
        std::thread made(watch);
        made.detach();
        return made;
    }();
    deadline = seconds == 0 ? 0 : ::GetTickCount64() + seconds * 1000ull;
}

}  // namespace ko::fault
