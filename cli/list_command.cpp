// kolink list: the ICC profiles of a folder.
#include <cstring>
#include <memory>
#include <vector>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/report.h"
#include "cli/system.h"
#include "front/front.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink list /usr/share/color/icc\n"
    "  kolink list profiles --space CMYK --json\n";

constexpr int32_t kMost = 20000;  // 5 MB of names

// The files of one kind, as the selection dialog of the library lists them.
void listInto(std::vector<std::string>& paths, const std::string& folder, const char* pattern,
              const char* space) {
    std::vector<char> slots(static_cast<size_t>(kMost) * KOLINK_PATH_SIZE);
    const std::string search = toLibraryPath(fromPath(toPath(folder) / pattern));
    std::memcpy(slots.data(), search.c_str(), search.size() + 1);
    const int32_t count = reasoned([&] { return front::loadIccFileList(slots.data(), kMost, space); });
    throwIfNotItsFault(folder);
    for (int32_t at = 0; at < count; ++at)
        paths.emplace_back(&slots[static_cast<size_t>(at) * KOLINK_PATH_SIZE]);
}

}  // namespace

void addListCommand(Command& app) {
    struct Options {
        std::string folder, space;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("list", "List the ICC profiles of a folder");
    command.examples(kExamples);
    command.option("folder", options->folder, "The folder").called("FOLDER").required();
    command.option("--space", options->space, "Only profiles of this colour space")
        .oneOf({"RGB", "CMYK"});
    command.flag("--json", options->json, "For programs");
    command.does([options] {
        std::error_code error;
        if (!std::filesystem::is_directory(toPath(options->folder), error))
            failOn(options->folder, std::filesystem::exists(toPath(options->folder), error)
                                        ? "is not a folder" : "not found");
        const char* space = options->space == "RGB" ? "RGB " : options->space == "CMYK" ? "CMYK" : nullptr;
        std::vector<std::string> paths;
        for (const char* pattern : {"*.icc", "*.icm"}) listInto(paths, options->folder, pattern, space);
        Json list = Json::array();
        std::string text;
        for (const std::string& path : paths) {
            const auto profile = reasoned([&] { return icc::loadHeader(path.c_str()); });
            if (!profile) throwIfNotItsFault(system::fromLibraryPath(path));
            const bool isIcc = profile && profile->header.magic == fourcc("acsp");
            const std::string colours = isIcc ? signatureText(profile->header.colourSpace) : "unreadable";
            if (!isIcc && space) continue;  // the library lists these under every space
            Json entry;
            entry["path"] = wellFormed(system::fromLibraryPath(path));
            entry["colourSpace"] = isIcc ? Json(colours) : Json(nullptr);
            list.push_back(entry);
            text += colours + std::string(colours.size() < 10 ? 11 - colours.size() : 1, ' ') + printable(system::fromLibraryPath(path)) + '\n';
        }
        writeOut(options->json ? toJson(list) : text);
    });
}

}  // namespace ko::cli
