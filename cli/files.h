// Files on their way in and out: what is wrong with one, what kind it is, and outputs that appear
// whole or not at all.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kolink.h"

namespace ko::cli {

enum class FileKind { icc, cmykTable, amatchTable, blackCurve, cmykToneCurve, dcc, calibration, foreign };

// An input file that exists, is a file, can be opened and is not empty.
struct InputFile {
    std::string path;         // as the user gave it
    std::string libraryPath;  // as the library takes it
    uint64_t size = 0;
    FileKind kind = FileKind::foreign;
};

// Looks at the file and tells its kind: tables and curves by their extension, as the library
// does, ICC profiles by their signature. Fails with a line that names what is wrong.
InputFile openInput(const std::string& path);

// Up to size bytes from offset.
std::vector<uint8_t> readBytes(const InputFile& file, uint64_t offset, size_t size);

// Whether a text file has a line that begins like this (case ignored).
bool hasLineBeginning(const InputFile& file, std::string_view beginning);

// The path for the library; fails when it is too long or the system's code page cannot hold it.
std::string toLibraryPath(const std::string& path);
void copyToField(char (&field)[KOLINK_PATH_SIZE], const std::string& libraryPath);

constexpr uint64_t kTableBytes = uint64_t{KOLINK_CMYK_NODES} * 4;
constexpr uint64_t tableHeaderBytes(FileKind kind) { return kind == FileKind::cmykTable ? 972 : 256; }

// A folder of our own with a name that nothing else has, removed with what is in it.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::filesystem::path& parent);  // "" is the current one
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    std::string file(std::string_view name) const;

private:
    std::filesystem::path folder_;
};

// An output file: written beside its place, in a folder of its own, then moved there in one step.
class OutputFile {
public:
    // Refuses a path that cannot be written to, and one that is an input file, however spelt.
    OutputFile(const std::string& path, std::span<const std::string> inputs);
    const std::string& temporary() const { return temporary_; }
    // A further file for the time of the work, removed at the end.
    std::string beside(std::string_view name) const { return scratch_.file(name); }
    void commit();

private:
    std::string path_;
    std::filesystem::path target_;  // where a symbolic link leads
    ScratchFolder scratch_;
    std::string temporary_;
};

// From here on Ctrl-C ends the work before the output takes its place, not in the middle.
void deferInterruption();

// Standard output, checked at the end: writing to a full or closed one fails.
void writeOut(std::string_view text);
void finishOut();

// Writes text to a file as above, or to standard output for "-".
void writeText(const std::string& path, std::string_view text, std::span<const std::string> inputs);

}  // namespace ko::cli
