#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

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
    DWORD mode;
    if (GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) ||
        GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode)) {
        gFormerOutputPage = GetConsoleOutputCP();
        if (SetConsoleOutputCP(CP_UTF8)) std::atexit(restoreOutputPage);
    }
}

std::optional<std::string> libraryPath(const std::string& path) { return toCodePage(CP_ACP, path); }

std::string fromLibraryPath(std::string_view bytes) { return toUtf8(toWide(CP_ACP, bytes)); }

bool isTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

std::optional<std::string> toShiftJis(const std::string& utf8) {
    return isWellFormed(utf8) ? toCodePage(kShiftJis, utf8) : std::nullopt;
}

std::string fromShiftJis(std::string_view bytes) { return toUtf8(toWide(kShiftJis, bytes)); }

std::string errorText(int number) { return std::strerror(number); }

}  // namespace ko::cli::system
