#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "cli/errors.h"
#include "cli/system.h"
#include "cli/text.h"

namespace ko::cli::system {
namespace {

constexpr UINT kShiftJis = 932;

std::wstring toWide(UINT codePage, std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(static_cast<size_t>(MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string toUtf8(const std::wstring& wide) {
    const int size = static_cast<int>(wide.size());
    std::string text(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
    return text;
}

std::optional<std::string> toCodePage(UINT codePage, const std::string& utf8) {
    const std::wstring wide = toWide(CP_UTF8, utf8);
    const int size = static_cast<int>(wide.size());
    std::string text(wide.size() * 4, '\0');
    BOOL replaced = FALSE;
    const bool isUtf8 = codePage == CP_UTF8 || (codePage == CP_ACP && GetACP() == CP_UTF8);
    const int length = WideCharToMultiByte(codePage, isUtf8 ? 0 : WC_NO_BEST_FIT_CHARS, wide.data(),
                                           size, text.data(), static_cast<int>(text.size()), nullptr,
                                           isUtf8 ? nullptr : &replaced);
    if (replaced || (length == 0 && size > 0)) return std::nullopt;
    text.resize(static_cast<size_t>(length));
    return text;
}

UINT gFormerOutputPage;
void restoreOutputPage() { SetConsoleOutputCP(gFormerOutputPage); }

}  // namespace

std::vector<std::string> arguments(int argc, char** argv) {
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> wide(
        CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
    if (!wide) return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(toUtf8(wide.get()[i]));
    return arguments;
}

void prepareStreams() {
    for (FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    // A buffer of its own, so that what is said needs no memory and a line goes out in one piece.
    static char err[4096];
    std::setvbuf(stderr, err, _IOFBF, sizeof err);
    DWORD mode;
    if (GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) ||
        GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode)) {
        gFormerOutputPage = GetConsoleOutputCP();
        if (SetConsoleOutputCP(CP_UTF8)) std::atexit(restoreOutputPage);
    }
}

std::optional<std::string> libraryPath(const std::string& path) { return toCodePage(CP_ACP, path); }

std::string fromLibraryPath(std::string_view bytes) { return toUtf8(toWide(CP_ACP, bytes)); }

// The file system's own short name; volumes may have none.
OtherName::OtherName(const std::string& path) {
    const std::wstring wide = toWide(CP_UTF8, path);
    std::wstring name(GetShortPathNameW(wide.c_str(), nullptr, 0), L'\0');
    if (name.empty()) return;
    name.resize(GetShortPathNameW(wide.c_str(), name.data(), static_cast<DWORD>(name.size())));
    path_ = libraryPath(toUtf8(name)).value_or("");
}

OtherName::~OtherName() {}

Writing::Writing(const std::string& path) {
    if (const auto own = libraryPath(path)) {
        path_ = *own;
        return;
    }
    wanted_ = path;
    const std::filesystem::path folder = toPath(path).parent_path();
    // As files on their way out are called, so that a save removes what a killed run has left.
    char name[40];
    std::snprintf(name, sizeof name, "~kolink-%lx-0.tmp", GetCurrentProcessId());
    if (const auto beside = libraryPath(fromPath(folder / name))) path_ = *beside;
    else if (const OtherName other(fromPath(folder)); !other.path().empty()) path_ = other.path() + '\\' + name;
}

bool Writing::finish() const {
    if (wanted_.empty()) return true;
    const std::wstring from = toWide(CP_ACP, path_), to = toWide(CP_UTF8, wanted_);
    if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
    const DWORD error = GetLastError();
    DeleteFileW(from.c_str());
    SetLastError(error);
    return false;
}

size_t readSome(std::span<char> buffer) {
    const int got = _read(_fileno(stdin), buffer.data(), static_cast<unsigned>(buffer.size()));
    if (got < 0) throw Failure("standard input cannot be read");
    return static_cast<size_t>(got);
}

bool isTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

std::optional<std::string> toShiftJis(const std::string& utf8) {
    return isWellFormed(utf8) ? toCodePage(kShiftJis, utf8) : std::nullopt;
}

std::string fromShiftJis(std::string_view bytes) { return toUtf8(toWide(kShiftJis, bytes)); }

std::string errorText(uint32_t number) {
    wchar_t text[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, number, 0, text, 512, nullptr);
    std::string words = toUtf8(std::wstring(text, length));
    words.erase(words.find_last_not_of(" \r\n.") + 1);
    return words.empty() ? "error " + std::to_string(number) : words;
}

std::string streamErrorText() { return std::strerror(errno); }

bool isOfTheMachine(uint32_t number) {
    return isShortMemory(number) || number == ERROR_TOO_MANY_OPEN_FILES || number == ERROR_CRC ||
           number == ERROR_IO_DEVICE || number == ERROR_SHARING_VIOLATION ||
           number == ERROR_OPERATION_ABORTED;
}

bool isShortMemory(uint32_t number) {
    return number == ERROR_NOT_ENOUGH_MEMORY || number == ERROR_OUTOFMEMORY;
}

std::string_view programOf(uint32_t process, std::span<char> buffer) noexcept {
    const HANDLE handle = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process);
    if (!handle) return {};
    auto size = static_cast<DWORD>(buffer.size());
    const bool known = QueryFullProcessImageNameA(handle, 0, buffer.data(), &size);
    CloseHandle(handle);
    if (!known) return {};
    const std::string_view path(buffer.data(), size);
    return path.substr(path.rfind('\\') + 1);
}

std::optional<std::string> libraryFile() { return std::nullopt; }

namespace {

// The handler has a thread of its own: the lock keeps it from ending the process in the moment
// when something begins to be made.
CRITICAL_SECTION gLock;
int gMaking = 0;
std::atomic<int> gNoted = 0;

[[noreturn]] void endFor(int signal) noexcept {
    std::fputs("kolink: interrupted\n", stderr);
    std::fflush(stderr);
    std::_Exit(128 + signal);
}

BOOL WINAPI onControl(DWORD event) {
    const bool fromKeyboard = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    const int signal = fromKeyboard ? SIGINT : SIGTERM;
    EnterCriticalSection(&gLock);
    if (gMaking == 0) endFor(signal);
    gNoted = signal;
    LeaveCriticalSection(&gLock);
    // After the return from any other event the system ends the process.
    if (!fromKeyboard) Sleep(INFINITE);
    return TRUE;
}

}  // namespace

void catchInterruptions() noexcept {
    InitializeCriticalSection(&gLock);
    SetConsoleCtrlHandler(onControl, TRUE);
}

int interruption() noexcept { return gNoted; }

Making::Making() noexcept {
    EnterCriticalSection(&gLock);
    ++gMaking;
    LeaveCriticalSection(&gLock);
}

Making::~Making() {
    EnterCriticalSection(&gLock);
    const bool ends = --gMaking == 0 && gNoted != 0;
    LeaveCriticalSection(&gLock);
    if (ends) endFor(gNoted);
}

}  // namespace ko::cli::system
