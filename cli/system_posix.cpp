#include <fcntl.h>
#include <iconv.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>

#include "cli/errors.h"
#include "cli/system.h"
#include "cli/text.h"

namespace ko::cli::system {
namespace {

class Converter {
public:
    // Without its table a text would silently become another one. Short memory shows here as well,
    // and the system does not always call it that.
    Converter(const char* to, const char* from) : handle_(::iconv_open(to, from)) {
        if (handle_ != reinterpret_cast<iconv_t>(-1)) return;
        if (errno == ENOMEM) throw std::bad_alloc();
        throw Failure("the system's table for Shift-JIS text cannot be loaded: " +
                      std::string(std::strerror(errno)));
    }
    ~Converter() { ::iconv_close(handle_); }
    Converter(const Converter&) = delete;

    // Converts the beginning of text that can be converted and takes it off.
    std::string convert(std::string_view& text) {
        std::string out(text.size() * 4 + 16, '\0');
        char* from = const_cast<char*>(text.data());  // iconv does not write there
        size_t left = text.size();
        char* to = out.data();
        size_t room = out.size();
        ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        ::iconv(handle_, &from, &left, &to, &room);
        text.remove_prefix(text.size() - left);
        out.resize(out.size() - room);
        return out;
    }

private:
    iconv_t handle_;
};

}  // namespace

std::vector<std::string> arguments(int argc, char** argv) {
    return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc);
}

void prepareStreams() {
    // An unusable substitute: reading from standard output's side fails, writing to it as well.
    static constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_RDONLY};
    for (int stream = 0; stream < 3; ++stream)
        if (::fcntl(stream, F_GETFD) < 0) (void)!::open("/dev/null", kModes[stream]);
    // Buffers of their own, so that what is said needs no memory; a line goes out in one piece.
    static char out[size_t{1} << 16], err[4096];
    std::setvbuf(stdout, out, isTerminal(stdout) ? _IOLBF : _IOFBF, sizeof out);
    std::setvbuf(stderr, err, _IOLBF, sizeof err);
}

std::optional<std::string> libraryPath(const std::string& path) { return path; }

std::string fromLibraryPath(std::string_view bytes) { return std::string(bytes); }

namespace {

// Removes the other names that killed runs have left: folders of such a name whose process is gone.
// What is another user's, or holds anything else, stays.
void removeOtherNames() {
    namespace fs = std::filesystem;
    std::error_code error;
    for (fs::directory_iterator at("/tmp", fs::directory_options::skip_permission_denied, error), end;
         !error && at != end; at.increment(error)) {
        const std::string name = at->path().filename().string();
        if (!name.starts_with("kolink-")) continue;
        pid_t process = 0;
        const char* const last = name.data() + name.size();
        const auto read = std::from_chars(name.data() + 7, last, process);
        if (read.ec != std::errc() || read.ptr == last || *read.ptr != '-' || last - read.ptr != 7) continue;
        if (process <= 0 || ::kill(process, 0) == 0 || errno != ESRCH) continue;
        std::error_code ignored;
        for (const auto& link : fs::directory_iterator(at->path(), ignored))
            if (link.is_symlink(ignored) && link.path().stem() == "file") fs::remove(link.path(), ignored);
        fs::remove(at->path(), ignored);
    }
}

}  // namespace

// A symbolic link with the file's extension, in a folder of its own.
OtherName::OtherName(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path whole = fs::absolute(path, error);
    removeOtherNames();
    char folder[48];
    std::snprintf(folder, sizeof folder, "/tmp/kolink-%ld-XXXXXX", static_cast<long>(::getpid()));
    if (error || !::mkdtemp(folder)) return;
    std::string name = std::string(folder) + "/file" + whole.extension().string();
    if (::symlink(whole.c_str(), name.c_str()) == 0) path_ = std::move(name);
    else ::rmdir(folder);
}

OtherName::~OtherName() {
    if (path_.empty()) return;
    ::unlink(path_.c_str());
    ::rmdir(path_.substr(0, path_.rfind('/')).c_str());
}

Writing::Writing(const std::string& path) : path_(path) {}

bool Writing::finish() const { return true; }

size_t readSome(std::span<char> buffer) {
    for (;;) {
        const ssize_t got = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (got >= 0) return static_cast<size_t>(got);
        if (errno != EINTR) throw Failure("standard input cannot be read");
    }
}

bool isTerminal(std::FILE* stream) { return ::isatty(::fileno(stream)) != 0; }

std::optional<std::string> toShiftJis(const std::string& utf8) {
    Converter converter("CP932", "UTF-8");
    std::string_view rest = utf8;
    std::string out = converter.convert(rest);
    if (!rest.empty()) return std::nullopt;
    return out;
}

std::string fromShiftJis(std::string_view bytes) {
    Converter converter("UTF-8", "CP932");
    std::string out;
    while (!bytes.empty()) {
        out += converter.convert(bytes);
        if (bytes.empty()) break;
        out += "\xef\xbf\xbd";
        bytes.remove_prefix(1);
    }
    return out;
}

std::string errorText(uint32_t number) { return std::strerror(static_cast<int>(number)); }

std::string streamErrorText() { return std::strerror(errno); }

bool isShortMemory(uint32_t number) { return number == ENOMEM; }

bool isOfTheMachine(uint32_t number) {
    return number == EIO || number == EMFILE || number == ENFILE || number == ENOMEM || number == EINTR;
}

std::string_view programOf(uint32_t process, std::span<char> buffer) noexcept {
    char path[32];
    std::snprintf(path, sizeof path, "/proc/%lu/comm", static_cast<unsigned long>(process));
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return {};
    const ssize_t size = ::read(file, buffer.data(), buffer.size());
    ::close(file);
    const std::string_view name(buffer.data(), size > 0 ? static_cast<size_t>(size) : 0);
    return name.substr(0, name.find('\n'));
}

std::optional<std::string> libraryFile() {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    if (error) return std::nullopt;
    for (const char* place : {"libkolink.so.1", "../lib/libkolink.so.1",
                              "../lib/" KO_LIBRARY_ARCHITECTURE "/libkolink.so.1"}) {
        const auto file = (folder / place).lexically_normal();
        if (std::filesystem::is_regular_file(file, error)) return file.string();
    }
    return std::nullopt;
}

namespace {

volatile std::sig_atomic_t gMaking = 0, gNoted = 0;

[[noreturn]] void endFor(int signal) noexcept {
    static constexpr char kLine[] = "kolink: interrupted\n";
    (void)!::write(STDERR_FILENO, kLine, sizeof kLine - 1);
    ::_exit(128 + signal);
}

// The program has one thread, so that this one is where the work was.
extern "C" void onSignal(int signal) {
    if (gMaking == 0) endFor(signal);
    gNoted = signal;
}

}  // namespace

void catchInterruptions() noexcept {
    static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
    struct sigaction action = {};
    action.sa_handler = onSignal;
    for (const int signal : kSignals) sigaddset(&action.sa_mask, signal);
    for (const int signal : kSignals) {
        struct sigaction old;
        // What the caller has ignored, as nohup does, stays so.
        if (::sigaction(signal, nullptr, &old) == 0 && old.sa_handler != SIG_IGN)
            ::sigaction(signal, &action, nullptr);
    }
}

int interruption() noexcept { return gNoted; }

Making::Making() noexcept { gMaking = gMaking + 1; }

Making::~Making() {
    gMaking = gMaking - 1;
    if (gMaking == 0 && gNoted != 0) endFor(gNoted);
}

}  // namespace ko::cli::system
