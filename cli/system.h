// What differs between the systems: arguments, streams, code pages. system_posix.cpp and
// system_win.cpp implement it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ko::cli::system {

// The command line in UTF-8, the program's name left out.
std::vector<std::string> arguments(int argc, char** argv);

// Standard streams that carry bytes as they are. A stream that the caller closed stays unusable,
// so that no file opened later is taken for it.
void prepareStreams();

// A path in the form that the library takes: the system's bytes, the ANSI code page on Windows.
// Empty when that code page cannot express it.
std::optional<std::string> libraryPath(const std::string& path);
// The way back.
std::string fromLibraryPath(std::string_view bytes);

// Another name of a file that is there, short and in the code page, for as long as this lives.
class OtherName {
public:
    explicit OtherName(const std::string& path);
    ~OtherName();
    OtherName(const OtherName&) = delete;
    const std::string& path() const { return path_; }  // empty: it cannot have one

private:
    std::string path_;
};

// The name under which a file is written: its own, or one beside it that the code page can express
// and that finish moves to its own.
class Writing {
public:
    explicit Writing(const std::string& path);
    const std::string& path() const { return path_; }
    bool finish() const;

private:
    std::string path_, wanted_;
};

bool isTerminal(std::FILE* stream);

// Bytes of standard input as they come: waits for the first ones alone. 0 at the end; fails when it
// cannot be read.
size_t readSome(std::span<char> buffer);

// Shift-JIS (code page 932), the library's text. Empty when a character has no place in it.
std::optional<std::string> toShiftJis(const std::string& utf8);
// Bytes that are no Shift-JIS become U+FFFD.
std::string fromShiftJis(std::string_view bytes);

// The system's words for an error number of platform::lastError, without a line end.
std::string errorText(uint32_t number);
bool isShortMemory(uint32_t number);
// Whether it is the machine that stands in the way and not what the file holds.
bool isOfTheMachine(uint32_t number);
std::string streamErrorText();  // of the C library's streams

// A process's program, or nothing where that cannot be known; into the buffer, without memory.
std::string_view programOf(uint32_t process, std::span<char> buffer) noexcept;

// The shared library, where it stands as an installation has it, so that its folder is the
// product folder of the tool as well. Empty: the tool's own file counts.
std::optional<std::string> libraryFile();

// Ctrl-C and the signals that ask a process to end. While nothing is being made they end it at
// once with 128 + the signal. While something is, they are noted, and the end of the making ends
// the process; who makes something for long looks at interruption() meanwhile.
void catchInterruptions() noexcept;
int interruption() noexcept;  // the signal that was noted, or 0

class Making {
public:
    Making() noexcept;
    ~Making();
    Making(const Making&) = delete;
    Making& operator=(const Making&) = delete;
};

}  // namespace ko::cli::system
