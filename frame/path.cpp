#include "frame/path.h"

#include <algorithm>
#include <iterator>

#include "frame/ascii.h"
#include "frame/text.h"

namespace ko {
namespace {

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

}  // namespace

Path::Path(const char* path) noexcept : usable_(copyPath(text_, path)) {}

void Path::copyTo(char (&field)[platform::kPathSize]) const noexcept {
    std::copy(std::begin(text_), std::end(text_), field);
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

bool hasExtension(std::string_view path, std::string_view extension) noexcept {
    return sameIgnoringCase(extensionOf(path), extension);
}

std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && fileNameOf(path).size() != 0) path += platform::kSeparator;
    return path.append(name);
}

}  // namespace ko
