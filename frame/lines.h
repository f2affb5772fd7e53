// Lines of text files.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace ko {

// Lines of a text in memory. LF, CR LF and CR end a line.
class LineReader {
public:
    explicit LineReader(std::string_view text) noexcept : rest_(text) {}
    // The next line without its end, cut to line.size() - 1 bytes and NUL-terminated; what is
    // beyond is dropped up to the line end. False at the end of the text.
    bool next(std::span<char> line) noexcept;
    // The next line itself, without its end.
    bool next(std::string_view& line) noexcept;

private:
    std::string_view rest_;
};

// Collects lines; every one ends with CR LF.
class LineWriter {
public:
    void put(std::string_view line) { text_.append(line).append("\r\n"); }
    const std::string& text() const noexcept { return text_; }

private:
    std::string text_;
};

}  // namespace ko
