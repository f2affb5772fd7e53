#include "frame/text.h"

#include <algorithm>
#include <cstring>

namespace ko {
namespace {

constexpr bool isShiftJisLead(uint8_t byte) noexcept {
    return (byte >= 0x81 && byte <= 0x9f) || (byte >= 0xe0 && byte <= 0xfc);
}

constexpr bool isLead(char character, Encoding encoding) noexcept {
    const auto byte = static_cast<uint8_t>(character);
    return encoding == Encoding::shiftJis ? isShiftJisLead(byte) : byte >= 0x81 && byte <= 0xfe;
}

// Bytes of the first character of a text that is not empty: 1 or 2.
size_t lengthOfFirst(std::string_view text, Encoding encoding) noexcept {
    return text.size() > 1 && isLead(text[0], encoding) ? 2 : 1;
}

constexpr char lower(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
}

// The part may lie in the field itself.
void copyPart(std::span<char> field, std::string_view part) noexcept {
    if (!part.empty()) std::memmove(field.data(), part.data(), part.size());  // null is not copied
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(part.size()), field.end(), '\0');
}

// Where the folder part ends and where the file name begins, the separators between them.
struct PathSplit {
    size_t folderEnd = 0;
    size_t nameStart = 0;
};

PathSplit splitPath(std::string_view path) noexcept {
    PathSplit split;
    size_t root = 0;  // what a folder never loses: "C:\", "/", the two of "\\server"
    for (size_t at = 0; at < path.size();) {
        const size_t length = platform::characterLength(path.substr(at));
        if (length == 1 && platform::isSeparator(path[at])) {
            if (at == root) root = at + 1;
            if (at != split.nameStart || split.nameStart == 0) split.folderEnd = at;
            split.nameStart = at + 1;
        } else if (length == 1 && at == 1 && platform::isDriveMark(path[at])) {
            root = split.folderEnd = split.nameStart = at + 1;
        }
        at += length;
    }
    split.folderEnd = std::max(split.folderEnd, root);
    return split;
}

// Where a text that was cut must end so that no half of a character is left.
size_t endOfWholeCharacters(std::string_view text,
                            Encoding encoding = Encoding::shiftJis) noexcept {
    size_t at = 0;
    while (at < text.size()) {
        const size_t length = isLead(text[at], encoding) ? 2 : 1;
        if (at + length > text.size()) break;
        at += length;
    }
    return at;
}

}  // namespace

bool couldBeGb2312(std::string_view text) noexcept {
    const auto isBetween = [](char character, int low, int high) {
        const auto byte = static_cast<uint8_t>(character);
        return byte >= low && byte <= high;
    };
    for (size_t at = 0; at < text.size(); ++at) {
        if (isBetween(text[at], 0, 0x7f)) continue;
        if (!isBetween(text[at], 0xa1, 0xf7) || ++at == text.size() ||
            !isBetween(text[at], 0xa1, 0xfe))
            return false;
    }
    return true;
}

size_t shiftJisLength(std::string_view text) noexcept {
    return lengthOfFirst(text, Encoding::shiftJis);
}

size_t wholeCharacters(std::string_view text, size_t limit, Encoding encoding) noexcept {
    size_t at = 0;
    while (at < text.size()) {
        const size_t length = lengthOfFirst(text.substr(at), encoding);
        if (at + length > limit) break;
        at += length;
    }
    return at;
}

void copyText(std::span<char> field, std::string_view text, Encoding encoding) noexcept {
    if (field.empty()) return;
    text = text.substr(0, text.find('\0'));
    text = text.substr(0, wholeCharacters(text, field.size() - 1, encoding));
    copyPart(field, text);
}

std::string_view textIn(std::span<const char> field) noexcept {
    const auto end = std::find(field.begin(), field.end(), '\0');
    return {field.data(), static_cast<size_t>(end - field.begin())};
}

bool copyPath(std::span<char> field, const char* path) noexcept {
    if (!path) return platform::failFor(platform::Cause::wrongArgument);
    const size_t length = strnlen(path, field.size());
    if (length >= field.size()) return platform::failFor(platform::Cause::nameTooLong);
    std::memmove(field.data(), path, length);
    field[length] = '\0';
    return true;
}

std::string_view folderOf(std::string_view path) noexcept {
    return path.substr(0, splitPath(path).folderEnd);
}

std::string_view fileNameOf(std::string_view path) noexcept {
    return path.substr(splitPath(path).nameStart);
}

std::string_view extensionOf(std::string_view path) noexcept {
    const std::string_view name = fileNameOf(path);
    size_t dot = name.npos;
    for (size_t at = 0; at < name.size(); at += platform::characterLength(name.substr(at)))
        if (name[at] == '.') dot = at;
    return dot == name.npos ? std::string_view() : name.substr(dot);
}

bool hasExtension(const char* path, std::string_view extension) noexcept {
    if (!path) return false;
    const std::string_view found = extensionOf(path);
    return std::equal(found.begin(), found.end(), extension.begin(), extension.end(),
                      [](char a, char b) { return lower(a) == lower(b); });
}

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && fileNameOf(path).size() != 0) path += platform::kSeparator;
    return path.append(name);
}

void jFilesSplitPath(std::string_view path, std::span<char> folder,
                     std::span<char> name) noexcept {
    const auto give = [](std::span<char> field, std::string_view part) {
        if (field.empty()) return;
        // A part of a path that were cut would name another file.
        copyPart(field, part.size() < field.size() ? part : std::string_view());
    };
    give(folder, folderOf(path));
    give(name, fileNameOf(path));
}

bool jFilesGetFileTime(const char* path, platform::DateTime& time) noexcept {
    return path && platform::fileTime(path, time);
}

namespace {
std::string_view withoutBlanks(std::string_view text) noexcept {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}
}  // namespace

void jStrCorrect(std::span<char> text, Encoding encoding) noexcept {
    if (text.empty()) return;
    std::string_view kept = textIn(text);
    if (kept.size() == text.size()) kept.remove_suffix(1);  // room for the terminator
    kept = kept.substr(0, endOfWholeCharacters(kept, encoding));
    copyPart(text, withoutBlanks(kept));
}

void copyTypedPath(std::span<char> field, std::string_view typed) noexcept {
    if (field.empty()) return;
    typed = withoutBlanks(typed.substr(0, typed.find('\0')));
    if (typed.size() >= 2 && typed.front() == '"' && typed.back() == '"')
        typed = withoutBlanks(typed.substr(1, typed.size() - 2));
    size_t end = 0;
    while (end < typed.size()) {
        const size_t length = platform::characterLength(typed.substr(end));
        if (end + length >= field.size()) break;
        end += length;
    }
    copyPart(field, withoutBlanks(typed.substr(0, end)));
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

bool LineReader::next(std::string_view& line) noexcept {
    if (rest_.empty()) return false;
    const auto end = std::find_if(rest_.begin(), rest_.end(),
                                  [](char c) { return c == '\n' || c == '\r'; });
    line = rest_.substr(0, static_cast<size_t>(end - rest_.begin()));
    rest_.remove_prefix(line.size());
    if (rest_.starts_with("\r\n")) rest_.remove_prefix(2);
    else if (!rest_.empty()) rest_.remove_prefix(1);
    return true;
}

bool LineReader::next(std::span<char> line) noexcept {
    std::string_view text;
    if (!next(text)) return false;
    if (line.empty()) return true;
    size_t length = text.size();
    if (length >= line.size()) {
        length = endOfWholeCharacters(text.substr(0, line.size() - 1));
    }
    if (length > 0) std::memcpy(line.data(), text.data(), length);
    line[length] = '\0';
    return true;
}

}  // namespace ko
