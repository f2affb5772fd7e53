#include "tests/dialog/host.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ko::test {
namespace {

struct MainWindow {
    DWORD process;
    HWND found;
};

BOOL CALLBACK consider(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<MainWindow*>(parameter);
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    if (process != search.process || !::IsWindowVisible(window) || !::GetMenu(window)) return TRUE;
    search.found = window;
    return FALSE;
}

std::wstring hostPath() {
    wchar_t path[MAX_PATH];
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring own(path);
    return own.substr(0, own.rfind(L'\\') + 1) + L"host_win32.exe";
}

}  // namespace

HostProgram::HostProgram() {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    std::wstring line = L'"' + hostPath() + L'"';
    if (!::CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                          &process_))
        throw std::runtime_error("the host does not start");
    MainWindow search{process_.dwProcessId, nullptr};
    const bool shown = eventually([&] {
        ::EnumWindows(consider, reinterpret_cast<LPARAM>(&search));
        return search.found != nullptr;
    });
    if (!shown) {
        ::TerminateProcess(process_.hProcess, 3);
        throw std::runtime_error("the host shows no window");
    }
    window_ = DialogWindow(search.found);
}

HostProgram::~HostProgram() {
    ::TerminateProcess(process_.hProcess, 3);
    ::WaitForSingleObject(process_.hProcess, 20000);
    ::CloseHandle(process_.hThread);
    ::CloseHandle(process_.hProcess);
}

void HostProgram::order(int command) const {
    if (!::SendMessageTimeoutW(window_.handle(), WM_COMMAND, static_cast<WPARAM>(command), 0,
                               SMTO_NORMAL, 5000, nullptr))
        throw std::runtime_error("the command opened something");
}

DialogWindow HostProgram::open(int command) const {
    ::PostMessageW(window_.handle(), WM_COMMAND, static_cast<WPARAM>(command), 0);
    return window_.asked();
}

DialogWindow HostProgram::open(int command, const std::string& file) const {
    const DialogWindow question = open(command);
    question.chooseFile(file);
    if (!eventually([&] { return !question.isOpen(); }))
        throw std::runtime_error("the file dialog stays open");
    return window_.asked();
}

void HostProgram::waitUntilClosed() const { window_.waitForQuiet(); }

std::wstring HostProgram::lastCall() const {
    std::wstring calls = window_.text(IDC_CALLS);
    while (!calls.empty() && (calls.back() == L'\n' || calls.back() == L'\r')) calls.pop_back();
    return calls.substr(calls.rfind(L'\n') + 1);
}

int HostProgram::close() {
    ::PostMessageW(window_.handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(::WaitForSingleObject(process_.hProcess, 20000), WAIT_OBJECT_0) << "it does not end";
    DWORD code = STILL_ACTIVE;
    ::GetExitCodeProcess(process_.hProcess, &code);
    return static_cast<int>(code);
}

}  // namespace ko::test
