// The parts of a path, read character by character in the system's code page.
#pragma once

#include <string>
#include <string_view>

#include "frame/platform.h"

namespace ko {

// A path that fits a record's field, checked where it comes in. One that is null or too long is
// none: the doors of frame/file.h refuse it, and platform::lastError has the reason.
class Path {
public:
    Path(const char* path) noexcept;  // also the field of a record that is changed meanwhile
    explicit operator bool() const noexcept { return usable_; }
    bool empty() const noexcept { return usable_ && text_[0] == '\0'; }
    const char* c_str() const noexcept { return text_; }
    void copyTo(char (&field)[platform::kPathSize]) const noexcept;  // the rest zeroed

private:
    char text_[platform::kPathSize] = {};
    bool usable_;
};

std::string_view folderOf(std::string_view path) noexcept;     // without a trailing separator
std::string_view fileNameOf(std::string_view path) noexcept;   // with the extension
std::string_view extensionOf(std::string_view path) noexcept;  // with the dot; empty when none
bool hasExtension(std::string_view path, std::string_view extension) noexcept;  // in any case
std::string joinPath(std::string_view folder, std::string_view name);

}  // namespace ko
