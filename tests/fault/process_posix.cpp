#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "tests/fault/process.h"

namespace ko::fault {
namespace {
std::string folderOfProgram;
}

void rememberProgram(const char*, const char* folder) {
    folderOfProgram = std::filesystem::absolute(folder).string();
    const rlimit none{};
    ::setrlimit(RLIMIT_CORE, &none);
}

ChildEnd runAgain(const std::vector<std::string>& arguments) {
    std::vector<char*> argv = {const_cast<char*>("fault_tests"), folderOfProgram.data()};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    pid_t child;
    int status;
    if (::posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, argv.data(), environ) != 0)
        std::exit(2);
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {}
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return ChildEnd::normal;
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM ? ChildEnd::outOfTime
                                                             : ChildEnd::crashed;
}

void limitTime(unsigned seconds) { ::alarm(seconds); }

}  // namespace ko::fault
