// Text in fixed fields, paths, and lines of text files.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "frame/platform.h"

namespace ko {

// Texts of records are Shift-JIS, but where the user's language is Chinese: what the Chinese
// table gave, and what a Chinese user typed, is GB2312 (or GBK, which contains it).
enum class Encoding { shiftJis, gb2312 };

// Whether text is plain GB2312 throughout. Kana and kanji in Shift-JIS are not: their first bytes
// lie below GB2312's.
bool couldBeGb2312(std::string_view text) noexcept;

// Bytes of the first Shift-JIS character of a text that is not empty: 1 or 2.
size_t shiftJisLength(std::string_view text) noexcept;

// Length of the longest beginning of text that has at most limit bytes and ends at a whole
// character.
size_t wholeCharacters(std::string_view text, size_t limit,
                       Encoding encoding = Encoding::shiftJis) noexcept;

// Copies text into a field: up to the first NUL, cut at a whole character, the rest of the field
// zeroed.
void copyText(std::span<char> field, std::string_view text,
              Encoding encoding = Encoding::shiftJis) noexcept;

// The text in a field of a record that may lack its terminator.
std::string_view textIn(std::span<const char> field) noexcept;

// Copies a path whole into a field; false, the field untouched and platform::lastError set, when
// path is null or too long. A path that were cut would name another file.
[[nodiscard]] bool copyPath(std::span<char> field, const char* path) noexcept;

// The parts of a path, read character by character in the system's code page.
std::string_view folderOf(std::string_view path) noexcept;     // without a trailing separator
std::string_view fileNameOf(std::string_view path) noexcept;   // with the extension
std::string_view extensionOf(std::string_view path) noexcept;  // with the dot; empty when none
bool hasExtension(const char* path, std::string_view extension) noexcept;  // ASCII case ignored
std::string joinPath(std::string_view folder, std::string_view name);

// The same under the names that the dialogs' descriptions use. An output that is not wanted is
// empty; one that the part does not fit into becomes the empty text.
void jFilesSplitPath(std::string_view path, std::span<char> folder, std::span<char> name) noexcept;
// The file's last change in local time; false, the time untouched, when there is no such file.
[[nodiscard]] bool jFilesGetFileTime(const char* path, platform::DateTime& time) noexcept;

// Corrects what was typed into a dialog's field: blanks at both ends go, and half a character that
// the field's size left at its end.
void jStrCorrect(std::span<char> text, Encoding encoding = Encoding::shiftJis) noexcept;
// The same for a path of any length, whose characters are those of the system's code page, into
// its field. Quotation marks around one that was copied from elsewhere go as well.
void copyTypedPath(std::span<char> field, std::string_view typed) noexcept;

// Compares at most n characters without regard to ASCII case; 0 when equal.
int jStrCmpNI(const char* a, const char* b, size_t n) noexcept;

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
// The name that the file formats' descriptions use.
inline bool jFilesGets(LineReader& lines, std::span<char> line) noexcept { return lines.next(line); }

// Collects lines; every one ends with CR LF.
class LineWriter {
public:
    void put(std::string_view line) { text_.append(line).append("\r\n"); }
    const std::string& text() const noexcept { return text_; }

private:
    std::string text_;
};
inline void jFilesPuts(LineWriter& lines, std::string_view line) { lines.put(line); }

}  // namespace ko
