#include "frame/settings.h"

#include <algorithm>
#include <new>

#include "frame/ascii.h"
#include "frame/encoding.h"
#include "frame/file.h"
#include "frame/path.h"

namespace ko {
namespace {

constexpr bool isBlank(char character) noexcept { return character == ' ' || character == '\t'; }

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

// A backslash that is a character, not the second half of one in Shift-JIS.
size_t findBackslash(std::string_view text) noexcept {
    for (size_t at = 0; at < text.size(); at += shiftJisLength(text.substr(at)))
        if (text[at] == '\\') return at;
    return text.npos;
}

// Names stand alone in a line or before its '=', so that they may not hold what ends them there.
bool isDirectoryName(std::string_view name) noexcept {
    return !name.empty() && name == trimmed(name) && name.front() != '/' &&
           findBackslash(name) == name.npos &&
           name.find_first_of(std::string_view("<>\r\n\0", 5)) == name.npos;
}

bool isKeyName(std::string_view name) noexcept {
    return !name.empty() && name == trimmed(name) && name.front() != '<' &&
           !name.starts_with(kByteOrderMark) &&
           name.find_first_of(std::string_view("=\r\n\0", 4)) == name.npos;
}

// Takes the first line off text, without its end: LF, CR LF or CR.
std::string_view takeLine(std::string_view& text) noexcept {
    const size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, end);
    const bool pair = text.substr(end, 2) == "\r\n";
    text.remove_prefix(std::min(text.size(), end + (pair ? 2 : 1)));
    return line;
}

// Takes the first name off a path such as "\CALIB\CURVE_00"; empty at its end.
std::string_view takeName(std::string_view& path) noexcept {
    while (!path.empty() && path.front() == '\\') path.remove_prefix(1);
    const std::string_view name = path.substr(0, findBackslash(path));
    path.remove_prefix(name.size());
    return name;
}

// Closes the innermost directory of that name and what was left open inside it; the end of
// nothing is skipped.
void close(std::vector<SettingsTree::Directory*>& open, std::string_view name) {
    for (size_t at = open.size() - 1; at > 0; --at)
        if (sameIgnoringCase(open[at]->name, name)) return open.resize(at);
}

void write(const SettingsTree::Directory& directory, size_t depth, std::string& text) {
    for (const auto& key : directory.keys)
        text.append(depth * 4, ' ').append(key.name).append(" = ").append(key.value).append("\r\n");
    for (const auto& inner : directory.directories) {
        text.append(depth * 4, ' ').append("<").append(inner.name).append(">\r\n");
        write(inner, depth + 1, text);
        text.append(depth * 4, ' ').append("</").append(inner.name).append(">\r\n");
    }
}

}  // namespace

bool NameLess::operator()(std::string_view a, std::string_view b) const noexcept {
    return compareIgnoringCase(a, b) < 0;
}

const SettingsTree::Key* SettingsTree::Directory::findKey(std::string_view key) const noexcept {
    const auto found = keyIndex_.find(key);
    return found == keyIndex_.end() ? nullptr : &keys[found->second];
}

const SettingsTree::Directory* SettingsTree::Directory::find(
    std::string_view directory) const noexcept {
    const auto found = directoryIndex_.find(directory);
    return found == directoryIndex_.end() ? nullptr : &directories[found->second];
}

// The directory of that name in parent, made if need be; null when the tree is full.
SettingsTree::Directory* SettingsTree::enter(Directory& parent, std::string_view name) {
    const auto found = parent.directoryIndex_.find(name);
    if (found != parent.directoryIndex_.end()) return &parent.directories[found->second];
    if (entries_ >= kMaxEntries) return nullptr;
    ++entries_;
    parent.directoryIndex_.emplace(name, parent.directories.size());
    parent.directories.emplace_back().name = name;
    return &parent.directories.back();
}

bool SettingsTree::put(Directory& directory, std::string_view name, std::string_view value) {
    const auto found = directory.keyIndex_.find(name);
    if (found != directory.keyIndex_.end()) {
        directory.keys[found->second].value = value;
        return true;
    }
    if (entries_ >= kMaxEntries) return false;
    ++entries_;
    directory.keyIndex_.emplace(name, directory.keys.size());
    directory.keys.push_back({std::string(name), std::string(value)});
    return true;
}

SettingsTree SettingsTree::parse(std::string_view text) {
    SettingsTree tree;
    // Editors that save in UTF-8 may put their mark in front.
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    std::vector<Directory*> open{&tree.root_};
    size_t tooDeep = 0;  // directories left out; their keys must not fall into the one around them
    while (!text.empty()) {
        const std::string_view raw = takeLine(text);
        if (raw.find('\0') != raw.npos) continue;
        const std::string_view line = trimmed(raw);
        if (line.size() > 2 && line.front() == '<' && line.back() == '>') {
            const bool closes = line[1] == '/';
            const std::string_view name = line.substr(closes ? 2 : 1, line.size() - (closes ? 3 : 2));
            if (!isDirectoryName(name)) continue;
            if (closes && tooDeep > 0) {
                --tooDeep;
            } else if (closes) {
                close(open, name);
            } else if (tooDeep > 0 || open.size() > kMaxDepth) {
                ++tooDeep;
            } else {
                Directory* inner = tree.enter(*open.back(), name);
                if (!inner) break;
                open.push_back(inner);
            }
            continue;
        }
        const size_t equals = raw.find('=');
        if (equals == raw.npos || tooDeep > 0) continue;
        const std::string_view key = trimmed(raw.substr(0, equals));
        if (!isKeyName(key)) continue;
        // One blank belongs to the sign; further ones are the value's own.
        std::string_view value = raw.substr(equals + 1);
        if (!value.empty() && isBlank(value.front())) value.remove_prefix(1);
        if (!tree.put(*open.back(), key, value)) break;
    }
    return tree;
}

std::string SettingsTree::text() const {
    std::string text;
    write(root_, 0, text);
    return text;
}

const SettingsTree::Directory* SettingsTree::find(std::string_view path) const noexcept {
    const Directory* directory = &root_;
    while (directory) {
        const std::string_view name = takeName(path);
        if (name.empty()) break;
        directory = directory->find(name);
    }
    return directory;
}

bool SettingsTree::set(std::string_view path, std::string_view key, std::string_view value) {
    if (!isKeyName(key)) return false;
    size_t depth = 0;
    for (std::string_view rest = path, name; !(name = takeName(rest)).empty(); ++depth)
        if (!isDirectoryName(name) || depth == kMaxDepth) return false;
    Directory* directory = &root_;
    for (std::string_view name; directory && !(name = takeName(path)).empty();)
        directory = enter(*directory, name);
    if (!directory) return false;
    std::string line(value);
    std::replace_if(line.begin(), line.end(),
                    [](char c) { return c == '\r' || c == '\n' || c == '\0'; }, ' ');
    return put(*directory, key, line);
}

std::optional<SettingsFile> SettingsFile::open(const char* path) {
    const FileReading reading = readWhole(path, kSettingsFiles);
    if (!reading) return std::nullopt;
    return fromText(path, reading.file.text());
}

std::optional<SettingsFile> SettingsFile::fromText(const char* path, std::string_view text) {
    if (text.size() > SettingsTree::kMaxFileSize) {
        platform::setLastError(platform::Cause::tooLarge);
        return std::nullopt;
    }
    SettingsFile settings(path);
    settings.tree_ = SettingsTree::parse(text);
    return settings;
}

std::optional<SettingsFile> SettingsFile::startAfresh(const char* path) {
    if (!path || fileNameOf(path).empty()) {
        platform::setLastError(platform::Cause::wrongArgument);
        return std::nullopt;
    }
    return SettingsFile(path);
}

const std::string* SettingsFile::value(std::string_view key) const noexcept {
    const auto* directory = tree_.find(directory_);
    const auto* found = directory ? directory->findKey(key) : nullptr;
    return found ? &found->value : nullptr;
}

bool SettingsFile::save() const noexcept try {
    const std::string text = tree_.text();
    if (text.size() > SettingsTree::kMaxFileSize) {  // it could not be read again
        platform::setLastError(platform::Cause::tooLarge);
        return false;
    }
    return replaceWhole(path_.c_str(), kSettingsFiles, text) == SaveResult::written;
} catch (const std::bad_alloc&) {
    platform::setLastError(platform::Cause::shortMemory);
    return false;
}

}  // namespace ko
