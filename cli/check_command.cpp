// kolink check: what is wrong with files, where, and how to mend it.
#include <memory>
#include <vector>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/quality_report.h"
#include "cli/report.h"
#include "cli/text.h"
#include "precise/profile.h"
#include "quality/file_check.h"

namespace ko::cli {
namespace {

using quality::Fault;
using quality::Level;

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink check *.icc\n"
    "  kolink check --json proof.icc | jq '.files[].faults'\n"
    "  kolink check old.icc --fix mended.icc\n"
    "\n"
    "The exit status is 1 when a file has an error; warnings and notes are told only.\n";

struct Checked {
    std::string path;
    std::vector<Fault> faults;
    bool sound() const {
        for (const Fault& fault : faults)
            if (fault.level == Level::error) return false;
        return true;
    }
};

Checked check(const std::string& path) {
    const InputFile file = openInput(path);
    if (file.type != FileType::icc && file.type != FileType::foreign)
        failOn(path, "is not an ICC file");
    return {path, quality::checkIcc(file.bytes)};
}

Json asJson(const std::vector<Checked>& all) {
    Json json;
    json["check"] = "kolink-check-1";
    json["files"] = Json::array();
    for (const Checked& one : all) {
        Json file;
        file["file"] = one.path;
        file["sound"] = one.sound();
        file["faults"] = Json::array();
        for (const Fault& fault : one.faults) file["faults"].push_back(faultJson(fault));
        json["files"].push_back(std::move(file));
    }
    return json;
}

// "proof.icc: error: A2B0 at 372: TEXT; REMEDY [RULE]"
std::string asLines(const std::vector<Checked>& all) {
    std::string text;
    for (const Checked& one : all) {
        size_t counts[3] = {};
        for (const Fault& fault : one.faults) {
            ++counts[static_cast<size_t>(fault.level)];
            text += printable(one.path) + ": " + levelName(fault.level) + ": " +
                    (fault.tag ? precise::signatureText(fault.tag) + " at " : "at ") + std::to_string(fault.offset) +
                    ": " + printable(fault.text) + "; " + fault.remedy + " [" + fault.rule + "]\n";
        }
        const auto count = [](size_t number, const char* what) {
            return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s");
        };
        text += printable(one.path) + ": " +
                (one.faults.empty() ? "nothing is wrong"
                                    : count(counts[0], "error") + ", " + count(counts[1], "warning") + ", " +
                                          count(counts[2], "note")) + '\n';
    }
    return text;
}

void fix(const std::string& path, const std::string& output) {
    const InputFile file = openInput(path);
    const std::string inputs[] = {path};
    checkOutput(output, inputs);
    const std::vector<uint8_t> mended = quality::mendIcc(file.bytes);
    if (mended.empty()) failOn(path, "cannot be mended: its directory does not lead to its tags");
    writeFile(output, {reinterpret_cast<const char*>(mended.data()), mended.size()});
}

}  // namespace

void addCheckCommand(Command& app) {
    struct Options {
        std::vector<std::string> files;
        std::optional<std::string> fix;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("check", "Say what is wrong with ICC files, where, and how to mend it");
    command.examples(kExamples);
    command.option("files", options->files, "ICC profiles and device links").called("FILE...").required();
    command.flag("--json", options->json, "JSON for programs");
    command.option("--fix", options->fix,
                   "Write a copy of the one file with size, places, padding and ID mended, and judge that")
        .called("OUT");
    command.does([options] {
        if (options->fix && options->files.size() != 1) throw UsageFailure("--fix: mends one file at a time");
        std::vector<Checked> all;
        if (options->fix) {
            fix(options->files.front(), *options->fix);
            all.push_back(check(*options->fix));
        } else {
            for (const std::string& path : options->files) all.push_back(check(path));
        }
        writeOut(options->json ? toJson(asJson(all)) : asLines(all));
        for (const Checked& one : all)
            if (!one.sound()) throw Found();
    });
}

}  // namespace ko::cli
