#include <fcntl.h>
#include <iconv.h>
#include <unistd.h>

#include <cstring>

#include "cli/system.h"
#include "cli/text.h"

namespace ko::cli::system {
namespace {

class Converter {
public:
    Converter(const char* to, const char* from) : handle_(::iconv_open(to, from)) {}
    ~Converter() {
        if (*this) ::iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    explicit operator bool() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

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
}

std::optional<std::string> libraryPath(const std::string& path) { return path; }

std::string fromLibraryPath(std::string_view bytes) { return std::string(bytes); }

bool isTerminal(std::FILE* stream) { return ::isatty(::fileno(stream)) != 0; }

std::optional<std::string> toShiftJis(const std::string& utf8) {
    Converter converter("CP932", "UTF-8");
    if (!converter) return std::nullopt;
    std::string_view rest = utf8;
    std::string out = converter.convert(rest);
    if (!rest.empty()) return std::nullopt;
    return out;
}

std::string fromShiftJis(std::string_view bytes) {
    Converter converter("UTF-8", "CP932");
    if (!converter) return wellFormed(bytes);
    std::string out;
    while (!bytes.empty()) {
        out += converter.convert(bytes);
        if (bytes.empty()) break;
        out += "\xef\xbf\xbd";
        bytes.remove_prefix(1);
    }
    return out;
}

std::string errorText(int number) { return std::strerror(number); }

}  // namespace ko::cli::system
