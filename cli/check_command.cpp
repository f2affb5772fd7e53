// kolink check: what is wrong with files, where, and how to mend it.
#include <memory>
#include <optional>
#include <vector>

#include "calib/calib.h"
#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/quality_report.h"
#include "cli/report.h"
#include "cli/table_file.h"
#include "cli/text.h"
#include "frame/settings.h"
#include "precise/profile.h"
#include "quality/file_check.h"
#include "tone/tone.h"

namespace ko::cli {
namespace {

using quality::Fault;
using quality::FileForm;
using quality::Level;

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink check *.icc\n"
    "  kolink check --json proof.icc | jq '.files[].faults'\n"
    "  kolink check old.icc --fix mended.icc\n"
    "  kolink check press.bkc printer.dcc press.clb table.lut\n"
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

// Which rules a file is held against; nothing: those of ICC profiles.
std::optional<FileForm> formOf(const InputFile& file) {
    switch (file.type) {
        case FileType::cmykTable: return FileForm::lut;
        case FileType::amatchTable: return FileForm::amt;
        case FileType::blackCurve: return FileForm::blackCurve;
        case FileType::cmykToneCurve: return FileForm::toneCurve;
        case FileType::dcc: return FileForm::printer;
        case FileType::calibration: return FileForm::calibration;
        case FileType::icc: return std::nullopt;
        case FileType::foreign: break;
    }
    if (endsWith(file.path, ".icc") || endsWith(file.path, ".icm")) return std::nullopt;
    if (endsWith(file.path, ".ini") || file.text().starts_with('<')) return FileForm::settings;
    if (isTable(file)) return FileForm::table;
    return std::nullopt;
}

Checked check(const InputFile& file, std::optional<FileForm> form) {
    if (form) return {file.path, quality::checkFile(*form, file.bytes)};
    Checked checked{file.path, quality::checkIcc(file.bytes)};
    if (const auto lost = quality::lostInDialogs(file.bytes)) checked.faults.push_back(*lost);
    return checked;
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

std::string placeOf(const Fault& fault) {
    if (fault.line > 0) return "line " + std::to_string(fault.line);
    return (fault.tag ? precise::signatureText(fault.tag) + " at " : "at ") + std::to_string(fault.offset);
}

// "proof.icc: error: A2B0 at 372: TEXT; REMEDY [RULE]"
std::string asLines(const std::vector<Checked>& all) {
    std::string text;
    for (const Checked& one : all) {
        size_t counts[3] = {};
        for (const Fault& fault : one.faults) {
            ++counts[static_cast<size_t>(fault.level)];
            text += printable(one.path) + ": " + levelName(fault.level) + ": " +
                    placeOf(fault) + ": " + printable(fault.text) + "; " + fault.remedy + " [" + fault.rule + "]\n";
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

// What the library reads of a file, as the library writes it: then every reader sees the same.
// What only a person can judge stays.
void rewrite(const InputFile& file, FileForm form, const std::string& output) {
    for (const Fault& fault : quality::checkFile(form, file.bytes))
        if (fault.level == Level::error)
            failOn(file.path, "cannot be mended: " + (fault.line ? placeOf(fault) + ": " : "") + printable(fault.text));
    const std::string path = toLibraryPath(output);
    const auto save = [&](auto&& written) { writeThrough(output, [&] { return written(); }); };
    const auto curve = [&](int channels) { return orShortOfMemory(tone::createToneCurve(channels)); };
    switch (form) {
        case FileForm::lut:
        case FileForm::amt:
            return writeFile(output, file.text().substr(0, static_cast<size_t>(wholeTableBytes(file.type))));
        case FileForm::blackCurve: {
            const auto black = curve(1);
            tone::readBkcCurve(*black, file.text());
            return save([&] { return jKoToneSaveBkcCurve(black.get(), path.c_str()) == 1; });
        }
        case FileForm::toneCurve: {
            const auto tones = curve(4);
            tone::readCmykToneCurve(*tones, file.text());
            return save([&] { return jKoToneSaveCmykToneCurve(tones.get(), path.c_str()) == 1; });
        }
        case FileForm::printer: {
            const auto tones = curve(6);
            DccSettings settings{};
            settings.curves = tones.get();
            tone::readDcc(settings, file.text());
            return save([&] { return jKoToneSaveDcc(&settings, path.c_str()) == 1; });
        }
        case FileForm::calibration: {
            const auto set = orShortOfMemory(calib::readCurve(file.text(), ""));
            return save([&] { return jKoCalibSaveCurve(set.get(), path.c_str()) == 1; });
        }
        case FileForm::settings: return writeFile(output, SettingsTree::parse(file.text()).text());
        case FileForm::table: {
            const Table table = loadTable(file, std::nullopt);
            return save([&] {
                return (table.cmyk ? jKoCmykSaveCmykLut(table.cmyk.get(), path.c_str())
                                   : jKoRgbSaveRgbLut(table.rgb.get(), path.c_str())) == 1;
            });
        }
    }
}

// The copy is judged as what the file is, however it is named.
Checked fix(const std::string& path, const std::string& output) {
    const InputFile file = openInput(path);
    const std::string inputs[] = {path};
    checkOutput(output, inputs);
    const auto form = formOf(file);
    if (form) {
        if (isStandardOutput(output)) throw UsageFailure("--fix: only ICC files go to standard output; name a file");
        rewrite(file, *form, output);
        return check(openInput(output), form);
    }
    const std::vector<uint8_t> mended = quality::mendIcc(file.bytes);
    if (mended.empty()) failOn(path, "cannot be mended: its directory does not lead to its tags");
    writeFile(output, {reinterpret_cast<const char*>(mended.data()), mended.size()});
    return check(isStandardOutput(output) ? inMemory(output, mended) : openInput(output), form);
}

}  // namespace

void addCheckCommand(Command& app) {
    struct Options {
        std::vector<std::string> files;
        std::optional<std::string> fix;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("check", "Say what is wrong with files, where, and how to mend it");
    command.examples(kExamples);
    command.option("files", options->files, "ICC profiles, device links, tables, curves, calibrations, settings").called("FILE...").required();
    command.flag("--json", options->json, "JSON for programs");
    command.option("--fix", options->fix,
                   "Write a copy of the one file with what can be mended without a guess, and judge that")
        .called("OUT");
    command.does([options] {
        if (options->fix && options->files.size() != 1) throw UsageFailure("--fix: mends one file at a time");
        std::vector<Checked> all;
        if (options->fix) all.push_back(fix(options->files.front(), *options->fix));
        else
            for (const std::string& path : options->files) {
                const InputFile file = openInput(path);
                all.push_back(check(file, formOf(file)));
            }
        // Standard output holds one thing: the mended file, or what is wrong.
        if (!options->fix || !isStandardOutput(*options->fix))
            writeOut(options->json ? toJson(asJson(all)) : asLines(all));
        for (const Checked& one : all)
            if (!one.sound()) throw Found();
    });
}

}  // namespace ko::cli
