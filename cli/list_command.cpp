// kolink list: the ICC profiles of a folder.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/precise.h"
#include "cli/report.h"
#include "cli/system.h"
#include "front/front.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink list /usr/share/color/icc --recursive\n"
    "  kolink list profiles --space CMYK --json\n"
    "\n"
    "A line is the colour space, the class, the version, the path and the description.\n";

constexpr int32_t kMost = 20000;  // 5 MB of names

// The files of one kind, as the selection dialog of the library lists them.
void listInto(std::vector<std::string>& paths, const std::string& folder, const char* pattern) {
    std::vector<char> slots(static_cast<size_t>(kMost) * KOLINK_PATH_SIZE);
    const std::string search = toLibraryPath(fromPath(toPath(folder) / pattern));
    std::memcpy(slots.data(), search.c_str(), search.size() + 1);
    const int32_t count = reasoned([&] { return front::loadIccFileList(slots.data(), kMost, nullptr); });
    throwIfNotItsFault(folder);
    for (int32_t at = 0; at < count; ++at)
        paths.emplace_back(system::fromLibraryPath(&slots[static_cast<size_t>(at) * KOLINK_PATH_SIZE]));
}

// The folder and, in the order of their names, those below it. Symbolic links are not followed, so
// that none is met twice; a folder that may not be read is left out.
std::vector<std::string> foldersOf(const std::string& folder, bool recursive) {
    namespace fs = std::filesystem;
    std::vector<std::string> folders = {folder};
    if (!recursive) return folders;
    std::error_code error;
    for (fs::recursive_directory_iterator at(toPath(folder), fs::directory_options::skip_permission_denied, error), end;
         !error && at != end; at.increment(error)) {
        std::error_code ignored;
        if (at->is_directory(ignored) && !at->is_symlink(ignored)) folders.push_back(fromPath(at->path()));
    }
    if (error) failOn(folder, "cannot be listed: " + error.message());
    std::sort(folders.begin() + 1, folders.end());
    return folders;
}

const char* className(uint32_t deviceClass) {
    switch (deviceClass) {
        case fourcc("scnr"): return "input";
        case fourcc("mntr"): return "display";
        case fourcc("prtr"): return "output";
        case fourcc("link"): return "link";
        case fourcc("spac"): return "space";
        case fourcc("abst"): return "abstract";
        case fourcc("nmcl"): return "named";
        default: return "other";
    }
}

std::string versionText(uint32_t version) {
    return std::to_string(version >> 24) + '.' + std::to_string(version >> 20 & 15);
}

// What foreign lists show; empty for a profile that cannot say it.
std::string descriptionOf(const InputFile& file) {
    try {
        return PreciseProfile(file).info().name;
    } catch (const Failure&) {
        // it cannot be evaluated, but may have a name
    }
    IccInput profile(file);
    const auto* const text = profile.tag<const char>(fourcc("desc"));
    return text ? fromForeignText(text) : std::string();
}

struct Listed {
    std::string path, space, deviceClass, version, description;  // no space: unreadable
};

std::optional<Listed> listed(const std::string& path, const std::string& space) {
    Listed entry{path, {}, {}, {}, {}};
    const InputFile file = lookAt(path);
    if (file.type == FileType::icc) {
        const IccHeader header = IccInput(file).header();
        entry.space = signatureText(header.colourSpace);
        if (!space.empty() && entry.space != space) return std::nullopt;
        entry.deviceClass = className(header.deviceClass);
        entry.version = versionText(header.version);
        entry.description = descriptionOf(openInput(path));
    } else if (!space.empty()) {
        return std::nullopt;
    }
    return entry;
}

std::string padded(std::string text, size_t width) {
    return text + std::string(text.size() < width ? width - text.size() : 0, ' ') + ' ';
}

}  // namespace

void addListCommand(Command& app) {
    struct Options {
        std::string folder, space;
        bool recursive = false, json = false;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("list", "List the ICC profiles of a folder");
    command.examples(kExamples);
    command.option("folder", options->folder, "The folder").called("FOLDER").required();
    command.option("--space", options->space, "Only profiles of this colour space")
        .oneOf({"RGB", "CMYK", "GRAY"});
    command.flag("-r,--recursive", options->recursive, "The folders below it as well");
    command.flag("--json", options->json, "For programs");
    command.does([options] {
        std::error_code error;
        if (!std::filesystem::is_directory(toPath(options->folder), error))
            failOn(options->folder, std::filesystem::exists(toPath(options->folder), error)
                                        ? "is not a folder" : "not found");
        std::vector<Listed> all;
        for (const std::string& folder : foldersOf(options->folder, options->recursive)) {
            std::vector<std::string> paths;
            for (const char* pattern : {"*.icc", "*.icm"}) listInto(paths, folder, pattern);
            for (const std::string& path : paths)
                if (auto entry = listed(path, options->space)) all.push_back(std::move(*entry));
        }
        Json list = Json::array();
        std::string text;
        for (const Listed& one : all) {
            const bool isIcc = !one.space.empty();
            const auto known = [&](const std::string& value) { return isIcc ? Json(wellFormed(value)) : Json(nullptr); };
            Json entry;
            entry["path"] = wellFormed(one.path);
            entry["colourSpace"] = known(one.space);
            entry["class"] = known(one.deviceClass);
            entry["version"] = known(one.version);
            entry["description"] = known(one.description);
            list.push_back(entry);
            text += padded(isIcc ? one.space : "unreadable", 10) + padded(one.deviceClass, 8) + padded(one.version, 4) +
                    printable(one.path) + (one.description.empty() ? "" : "  " + printable(one.description)) + '\n';
        }
        writeOut(options->json ? toJson(list) : text);
    });
}

}  // namespace ko::cli
