// The parts of a path, read character by character in the system's code page.
#pragma once

#include <string>
#include <string_view>

namespace ko {

std::string_view folderOf(std::string_view path) noexcept;     // without a trailing separator
std::string_view fileNameOf(std::string_view path) noexcept;   // with the extension
std::string_view extensionOf(std::string_view path) noexcept;  // with the dot; empty when none
bool hasExtension(const char* path, std::string_view extension) noexcept;  // ASCII case ignored
std::string joinPath(std::string_view folder, std::string_view name);

}  // namespace ko
