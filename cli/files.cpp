#include "cli/files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>

#include "cli/errors.h"
#include "cli/system.h"
#include "cmyk/load.h"
#include "frame/ascii.h"
#include "frame/lines.h"
#include "frame/path.h"
#include "frame/text.h"

namespace ko::cli {
namespace fs = std::filesystem;
namespace {

struct TypeName {
    std::string_view extension;
    FileType type;
    const FileKind& kind;
};
constexpr TypeName kTypes[] = {
    {".lut", FileType::cmykTable, kTableFiles},      {".amt", FileType::amatchTable, kTableFiles},
    {".bkc", FileType::blackCurve, kCurveFiles},     {".tnc", FileType::cmykToneCurve, kCurveFiles},
    {".dcc", FileType::dcc, kCurveFiles},            {".clb", FileType::calibration, kCalibrationFiles},
};

const TypeName* typeByExtension(const std::string& path) {
    for (const TypeName& known : kTypes)
        if (endsWith(path, known.extension)) return &known;
    return nullptr;
}

bool isIcc(std::span<const uint8_t> bytes) {
    return bytes.size() >= sizeof(IccHeader) && std::memcmp(&bytes[36], "acsp", 4) == 0;
}

InputFile read(const std::string& path, uint64_t wanted) {
    if (path.empty()) throw UsageFailure("the path of an input file is empty");
    const fs::path place = toPath(path);
    std::error_code error;
    const fs::file_status status = fs::status(place, error);
    if (status.type() == fs::file_type::not_found) failOn(path, "not found");
    if (fs::is_directory(status)) failOn(path, "is a folder, not a file");
    if (fs::exists(status) && !fs::is_regular_file(status)) failOn(path, "is not a regular file");

    InputFile input{path, 0, FileType::foreign, {}};
    const TypeName* const known = typeByExtension(path);
    const auto name = system::libraryPath(path);
    std::optional<LibraryName> other;
    if (!name) other.emplace(path);
    const FileKind& kind = known ? known->kind : kProfileFiles;
    FileReading reading = reasoned([&] { return readWhole((name ? *name : other->path()).c_str(), kind, wanted); });
    if (!reading) failWithReason(path, "cannot be read");
    input.size = reading.file.fileSize();
    if (input.size == 0) failOn(path, "is empty");
    input.owner = std::make_shared<const FileBytes>(std::move(reading.file));
    input.bytes = input.owner->bytes();
    if (known) input.type = known->type;
    else if (isIcc(input.bytes)) input.type = FileType::icc;
    return input;
}

}  // namespace

InputFile openInput(const std::string& path) { return read(path, UINT64_MAX); }
InputFile lookAt(const std::string& path) { return read(path, sizeof(IccHeader)); }

InputFile inMemory(const std::string& path, std::span<const uint8_t> bytes) {
    return {path, bytes.size(), isIcc(bytes) ? FileType::icc : FileType::foreign, bytes};
}

std::string toLibraryPath(const std::string& path) {
    const auto bytes = system::libraryPath(path);
    if (!bytes) failOn(path, "the name has characters that the system's code page lacks");
    if (bytes->size() >= KOLINK_PATH_SIZE)
        failOn(path, "the path is longer than " + std::to_string(KOLINK_PATH_SIZE - 1) + " bytes");
    return *bytes;
}

LibraryName::LibraryName(const std::string& path) {
    const auto bytes = system::libraryPath(path);
    if (bytes && bytes->size() < KOLINK_PATH_SIZE) {
        path_ = *bytes;
        return;
    }
    other_ = std::make_unique<system::OtherName>(path);
    if (other_->path().empty()) (void)toLibraryPath(path);
    if (other_->path().empty() || other_->path().size() >= KOLINK_PATH_SIZE)
        failOn(path, "has no name that the library can take");
}

bool endsWith(std::string_view path, std::string_view ending) {
    if (path.size() < ending.size()) return false;
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(ending.begin(), ending.end(), path.end() - static_cast<std::ptrdiff_t>(ending.size()),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

void copyToField(char (&field)[KOLINK_PATH_SIZE], const std::string& libraryPath) {
    (void)copyPath(field, libraryPath.c_str());  // toLibraryPath has seen that it fits
}

uint64_t wholeTableBytes(FileType type) {
    const auto& form = type == FileType::cmykTable ? cmyk::kLutForm : cmyk::kAmtForm;
    return form.headerSize + sizeof CmykProfile::grid;
}

bool hasLineBeginning(const InputFile& file, std::string_view beginning) {
    LineReader lines(file.text());
    for (std::string_view line; lines.next(line);)
        if (startsIgnoringCase(line, beginning)) return true;
    return false;
}

void failWithReason(std::string_view path, const std::string& what) {
    const uint32_t error = platform::lastError();
    if (system::isShortMemory(error)) throw std::bad_alloc();
    if (error == 0) failOn(path, what);
    failOn(path, what + ": " + system::errorText(error));
}

void throwIfNotItsFault(std::string_view path) {
    const uint32_t error = platform::lastError();
    if (system::isShortMemory(error)) throw std::bad_alloc();
    if (system::isOfTheMachine(error)) failWithReason(path, "cannot be read");
}

void checkOutput(const std::string& path, std::span<const std::string> inputs) {
    if (path.empty()) throw UsageFailure("the output path is empty");
    if (isStandardOutput(path)) return;
    const fs::path target = toPath(path);
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (fs::is_directory(status) || !target.has_filename()) failOn(path, "is a folder; give the name of a file");
    if (fs::exists(status)) {
        if (!fs::is_regular_file(status)) failOn(path, "is not a regular file and cannot be replaced");
        for (const std::string& input : inputs)
            if (fs::equivalent(target, toPath(input), error))
                failOn(path, "is the input file " + printable(input) + " and is not overwritten");
        if ((status.permissions() & fs::perms::owner_write) == fs::perms::none)
            failOn(path, "is write-protected");
    }
    const fs::path parent = target.parent_path();
    if (!parent.empty() && !fs::is_directory(parent, error))
        failOn(path, "the folder " + printable(fromPath(parent)) +
                         (fs::exists(parent, error) ? " is not a folder" : " does not exist"));
}

bool isStandardOutput(std::string_view path) { return path == "-" || path == "/dev/stdout"; }

void writeFile(const std::string& path, std::string_view bytes) {
    if (isStandardOutput(path)) {
        if (system::isTerminal(stdout))
            throw UsageFailure("standard output is a terminal, which cannot show such a file");
        return writeOut(bytes);
    }
    const system::Writing place(path);
    writeThrough(path, [&] {
        // Nobody else reads what the tool writes while holding the guard.
        constexpr FileKind kAnyFile = {UINT64_MAX, false, true};
        return replaceWhole(place.path().c_str(), kAnyFile, bytes) == SaveResult::written && place.finish();
    });
}

void writeOut(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        throw Failure("standard output cannot be written: " + system::streamErrorText());
}

void finishOut() {
    if (std::fflush(stdout) != 0)
        throw Failure("standard output cannot be written: " + system::streamErrorText());
}

void writeText(const std::string& path, std::string_view text, std::span<const std::string> inputs) {
    if (isStandardOutput(path)) return writeOut(text);
    checkOutput(path, inputs);
    writeFile(path, text);
}

}  // namespace ko::cli
