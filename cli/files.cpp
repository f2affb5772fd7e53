#include "cli/files.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>

#include "cli/errors.h"
#include "cli/system.h"

namespace ko::cli {
namespace fs = std::filesystem;
namespace {

std::string reason(const std::error_code& error) { return system::errorText(error.default_error_condition().value()); }

volatile std::sig_atomic_t gInterrupted = 0;
extern "C" void noteInterruption(int) { gInterrupted = 1; }

std::string lowerExtension(const std::string& path) {
    std::string extension = fromPath(toPath(path).extension());
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension;
}

FileKind kindOf(const std::string& path, std::span<const uint8_t> beginning) {
    static constexpr std::pair<std::string_view, FileKind> kByExtension[] = {
        {".lut", FileKind::cmykTable},      {".amt", FileKind::amatchTable},
        {".bkc", FileKind::blackCurve},     {".tnc", FileKind::cmykToneCurve},
        {".dcc", FileKind::dcc},            {".clb", FileKind::calibration},
    };
    const std::string extension = lowerExtension(path);
    for (const auto& [known, kind] : kByExtension)
        if (extension == known) return kind;
    const bool isIcc = beginning.size() >= 128 && std::memcmp(&beginning[36], "acsp", 4) == 0;
    return isIcc ? FileKind::icc : FileKind::foreign;
}

// Where the output will be: a symbolic link stays and its target is replaced.
fs::path targetOf(const std::string& path) {
    fs::path target = toPath(path);
    std::error_code error;
    for (int hops = 0; hops < 40 && fs::is_symlink(target, error); ++hops) {
        const fs::path next = fs::read_symlink(target, error);
        if (error) break;
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target;
}

fs::path checkedTarget(const std::string& path, std::span<const std::string> inputs) {
    if (path.empty()) throw UsageFailure("the output path is empty");
    const fs::path target = targetOf(path);
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
    return target;
}

}  // namespace

std::string toLibraryPath(const std::string& path) {
    const auto bytes = system::libraryPath(path);
    if (!bytes) failOn(path, "the name has characters that the system's code page lacks");
    if (bytes->size() >= KOLINK_PATH_SIZE)
        failOn(path, "the path is longer than " + std::to_string(KOLINK_PATH_SIZE - 1) + " bytes");
    return *bytes;
}

void copyToField(char (&field)[KOLINK_PATH_SIZE], const std::string& libraryPath) {
    std::memset(field, 0, sizeof field);
    std::memcpy(field, libraryPath.data(), std::min(libraryPath.size(), sizeof field - 1));
}

InputFile openInput(const std::string& path) {
    if (path.empty()) throw UsageFailure("the path of an input file is empty");
    const fs::path file = toPath(path);
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found) failOn(path, "not found");
    if (error) failOn(path, "cannot be read: " + reason(error));
    if (fs::is_directory(status)) failOn(path, "is a folder, not a file");
    if (!fs::is_regular_file(status)) failOn(path, "is not a regular file");

    InputFile input{path, toLibraryPath(path)};
    input.size = fs::file_size(file, error);
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (error || !stream)
        failOn(path, "cannot be read: " + (error ? reason(error) : system::errorText(errno)));
    if (input.size == 0) failOn(path, "is empty");
    uint8_t beginning[128];
    stream.read(reinterpret_cast<char*>(beginning), sizeof beginning);
    input.kind = kindOf(path, std::span(beginning, static_cast<size_t>(stream.gcount())));
    return input;
}

std::vector<uint8_t> readBytes(const InputFile& file, uint64_t offset, size_t size) {
    std::vector<uint8_t> bytes;
    if (offset >= file.size) return bytes;
    bytes.resize(static_cast<size_t>(std::min<uint64_t>(size, file.size - offset)));
    std::ifstream stream(toPath(file.path), std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(offset));
    stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<size_t>(std::max<std::streamsize>(0, stream.gcount())));
    return bytes;
}

bool hasLineBeginning(const InputFile& file, std::string_view beginning) {
    // Curve files are a few kilobytes; what comes after the first mebibyte is not looked at.
    const std::vector<uint8_t> bytes = readBytes(file, 0, size_t{1} << 20);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const auto sameLetter = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    for (size_t at = 0; at + beginning.size() <= text.size();) {
        if (std::equal(beginning.begin(), beginning.end(), text.begin() + at, sameLetter)) return true;
        at = text.find_first_of("\r\n", at);
        if (at == std::string_view::npos) break;
        ++at;
    }
    return false;
}

ScratchFolder::ScratchFolder(const fs::path& parent) {
    std::error_code error;
    std::random_device random;
    static constexpr char kDigits[] = "0123456789abcdefghijklmnopqrstuv";
    const fs::path place = parent.empty() ? fs::path(".") : parent;
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string name = ".kolink-";
        for (int i = 0; i < 8; ++i) name += kDigits[random() % 32];
        const fs::path folder = place / name;
        if (fs::create_directory(folder, error)) {  // only one process can make it
            folder_ = folder;
            return;
        }
        if (error) failOn(fromPath(place), "cannot be written to: " + reason(error));
    }
    failOn(fromPath(place), "no temporary folder can be made in it");
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    if (!folder_.empty()) fs::remove_all(folder_, ignored);
}

std::string ScratchFolder::file(std::string_view name) const { return fromPath(folder_ / toPath(name)); }

OutputFile::OutputFile(const std::string& path, std::span<const std::string> inputs)
    : path_(path),
      target_(checkedTarget(path, inputs)),
      scratch_(target_.parent_path()),
      temporary_(scratch_.file("new")) {}

void OutputFile::commit() {
    if (gInterrupted) throw Interrupted();
    std::error_code error;
    fs::rename(toPath(temporary_), target_, error);
    if (error) failOn(path_, "cannot be written: " + reason(error));
}

void deferInterruption() {
    for (const int signal : {SIGINT, SIGTERM})
        if (std::signal(signal, noteInterruption) == SIG_IGN) std::signal(signal, SIG_IGN);
}

void writeOut(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        throw Failure("standard output cannot be written: " + system::errorText(errno));
}

void finishOut() {
    if (std::fflush(stdout) != 0)
        throw Failure("standard output cannot be written: " + system::errorText(errno));
}

void writeText(const std::string& path, std::string_view text, std::span<const std::string> inputs) {
    if (path == "-") return writeOut(text);
    deferInterruption();
    OutputFile output(path, inputs);
    {
        std::ofstream stream(toPath(output.temporary()), std::ios::binary);
        stream.write(text.data(), static_cast<std::streamsize>(text.size()));
        stream.close();
        if (!stream) failOn(path, "cannot be written whole; is the disk full?");
    }
    output.commit();
}

}  // namespace ko::cli
