// Files on their way in and out: what is wrong with one, what kind it is, and the two doors, as
// the tool goes through them.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/errors.h"
#include "cli/system.h"
#include "frame/file.h"
#include "kolink.h"

namespace ko::cli {

enum class FileType { icc, cmykTable, amatchTable, blackCurve, cmykToneCurve, dcc, calibration, foreign };

// An input file that exists, is a file, can be opened and is not empty.
struct InputFile {
    std::string path;         // as the user gave it
    uint64_t size = 0;
    FileType type = FileType::foreign;
    std::span<const uint8_t> bytes;            // all of it, of one moment; see lookAt
    std::shared_ptr<const FileBytes> owner{};  // of the bytes

    std::string_view text() const {
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
};

// Reads the file, once, and tells its type: tables and curves by their extension, as the library
// does, ICC profiles by their signature. Fails with a line that names what is wrong.
InputFile openInput(const std::string& path);
// The same with the first bytes alone, for files that others read.
InputFile lookAt(const std::string& path);

// The same for bytes that are no file yet but will be; they outlive what is returned.
InputFile inMemory(const std::string& path, std::span<const uint8_t> bytes);

// Whether a text file has a line that begins like this (case ignored).
bool hasLineBeginning(const InputFile& file, std::string_view beginning);

// The path for the library; fails when it is too long or the system's code page cannot hold it.
std::string toLibraryPath(const std::string& path);
// The same for a file that is there, which has another, shorter name where its own does not do.
class LibraryName {
public:
    explicit LibraryName(const std::string& path);
    const std::string& path() const { return other_ ? other_->path() : path_; }

private:
    std::string path_;
    std::unique_ptr<system::OtherName> other_;
};
// Whether a path ends like this, case ignored.
bool endsWith(std::string_view path, std::string_view ending);
void copyToField(char (&field)[KOLINK_PATH_SIZE], const std::string& libraryPath);

// Bytes of a whole .lut or .amt file.
uint64_t wholeTableBytes(FileType type);

// What a function made, or the failure for want of memory that its null stands for.
template <class Pointer>
Pointer orShortOfMemory(Pointer pointer) {
    if (!pointer) throw std::bad_alloc();
    return pointer;
}

// Runs a call that keeps the reason of a failure where the system has it, so that the reason that
// is found there afterwards is the call's own.
template <class Call>
auto reasoned(Call&& call) {
    platform::setLastError(uint32_t{0});
    return call();
}
// "FILE: WHAT: REASON" with the reason that is there, if any; short memory is short memory.
[[noreturn]] void failWithReason(std::string_view path, const std::string& what);
// Throws for a reason that is not the file's: short memory, too many open files, a disk that does
// not read. What else keeps a file from being used is told in the caller's words.
void throwIfNotItsFault(std::string_view path);

// Fails for a path that cannot be written to, and for one that is an input file, however spelt.
void checkOutput(const std::string& path, std::span<const std::string> inputs);

// Writes a file that checkOutput has let pass: the new file or the old one, whole. save goes
// through the door and tells whether the file is written.
template <class Save>
void writeThrough(const std::string& path, Save&& save) {
    const system::Making making;
    if (reasoned(save)) return;
    if (const int signal = system::interruption()) throw Interrupted{signal};
    failWithReason(path, "cannot be written");
}
// Whether the path means standard output: "-", and its name on systems that have one. Such a path
// passes checkOutput.
bool isStandardOutput(std::string_view path);
// Bytes, which a terminal is spared.
void writeFile(const std::string& path, std::string_view bytes);

// Standard output, checked at the end: writing to a full or closed one fails.
void writeOut(std::string_view text);
void finishOut();

// Writes text to a file as above, or to standard output.
void writeText(const std::string& path, std::string_view text, std::span<const std::string> inputs);

}  // namespace ko::cli
