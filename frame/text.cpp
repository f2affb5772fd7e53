#include "frame/text.h"

#include <algorithm>
#include <cstring>

namespace ko {
namespace {

constexpr bool isShiftJisLead(uint8_t byte) noexcept {
    return (byte >= 0x81 && byte <= 0x9f) || (byte >= 0xe0 && byte <= 0xfc);
}

constexpr char lower(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
}

// Where the file name begins: behind the last separator, or a drive's colon.
size_t nameStart(std::string_view path) noexcept {
    const std::string text(path);  // characterLength needs the terminator
    size_t start = 0;
    for (size_t at = 0; at < text.size();) {
        const size_t length = platform::characterLength(text.c_str() + at);
        const bool drive = at == 1 && text[at] == ':' && platform::isSeparator('\\');
        if (length == 1 && (platform::isSeparator(text[at]) || drive)) start = at + 1;
        at += length;
    }
    return std::min(start, path.size());
}

}  // namespace

size_t wholeCharacters(std::string_view text, size_t limit) noexcept {
    size_t at = 0;
    while (at < text.size()) {
        const bool pair =
            isShiftJisLead(static_cast<uint8_t>(text[at])) && at + 1 < text.size();
        const size_t length = pair ? 2 : 1;
        if (at + length > limit) break;
        at += length;
    }
    return at;
}

void copyText(std::span<char> field, std::string_view text) noexcept {
    if (field.empty()) return;
    text = text.substr(0, text.find('\0'));
    text = text.substr(0, wholeCharacters(text, field.size() - 1));
    // The text may lie in the field itself.
    std::memmove(field.data(), text.data(), text.size());
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(text.size()), field.end(), '\0');
}

std::string_view textIn(std::span<const char> field) noexcept {
    const auto end = std::find(field.begin(), field.end(), '\0');
    return {field.data(), static_cast<size_t>(end - field.begin())};
}

bool copyPath(std::span<char> field, const char* path) noexcept {
    if (!path) return false;
    const size_t length = strnlen(path, field.size());
    if (length >= field.size()) return false;
    std::memmove(field.data(), path, length);
    field[length] = '\0';
    return true;
}

std::string_view folderOf(std::string_view path) noexcept {
    size_t end = nameStart(path);
    // The separator goes, but a root keeps its own, and a drive its colon.
    const bool separated = end > 0 && platform::isSeparator(path[end - 1]);
    const bool root = end == 1 || (end == 3 && path[1] == ':');
    if (separated && !root) --end;
    return path.substr(0, end);
}

std::string_view fileNameOf(std::string_view path) noexcept {
    return path.substr(nameStart(path));
}

std::string_view extensionOf(std::string_view path) noexcept {
    const std::string name(fileNameOf(path));
    size_t dot = std::string::npos;
    for (size_t at = 0; at < name.size(); at += platform::characterLength(name.c_str() + at))
        if (name[at] == '.') dot = at;
    if (dot == std::string::npos) return {};
    return path.substr(path.size() - (name.size() - dot));
}

bool hasExtension(const char* path, std::string_view extension) noexcept {
    const std::string_view found = extensionOf(path);
    return std::equal(found.begin(), found.end(), extension.begin(), extension.end(),
                      [](char a, char b) { return lower(a) == lower(b); });
}

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && fileNameOf(path).size() != 0) path += platform::kSeparator;
    return path.append(name);
}

int jStrCmpNI(const char* a, const char* b, size_t n) noexcept {
    for (size_t at = 0; at < n; ++at) {
        const auto x = static_cast<uint8_t>(lower(a[at]));
        const auto y = static_cast<uint8_t>(lower(b[at]));
        if (x != y) return x < y ? -1 : 1;
        if (x == 0) return 0;
    }
    return 0;
}

bool LineReader::fill() noexcept {
    begin_ = 0;
    end_ = file_.read({reinterpret_cast<uint8_t*>(buffer_), sizeof buffer_});
    return end_ > 0;
}

bool LineReader::next(std::span<char> line) noexcept {
    size_t length = 0;
    bool any = false;
    while (begin_ < end_ || fill()) {
        any = true;
        const char character = buffer_[begin_++];
        if (character == '\n') break;
        if (character == '\r') {
            if ((begin_ < end_ || fill()) && buffer_[begin_] == '\n') ++begin_;
            break;
        }
        if (length + 1 < line.size()) line[length++] = character;
    }
    if (!line.empty()) line[length] = '\0';
    return any;
}

}  // namespace ko
