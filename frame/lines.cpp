#include "frame/lines.h"

#include <algorithm>
#include <cstring>

#include "frame/encoding.h"

namespace ko {

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
    if (length >= line.size()) length = wholeCharacters(text.substr(0, line.size() - 1));
    if (length > 0) std::memcpy(line.data(), text.data(), length);
    line[length] = '\0';
    return true;
}

}  // namespace ko
