// kolink plot: curves and ramps of a file as a picture.
#include <memory>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/plot.h"
#include "cli/table_file.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink plot proof.icc -o proof.svg\n"
    "  kolink plot press.bkc -o - > press.svg\n"
    "\n"
    "The picture opens in any browser. For a link it shows the eight curves and what becomes\n"
    "of ramps of C, M, Y, K, C+M, C+Y, M+Y and grey: whether black stays black is seen at once.\n";

std::string picture(const std::string& path) {
    const InputFile file = openInput(path);
    switch (file.type) {
        case FileType::icc: return plotIcc(file);
        case FileType::cmykTable:
        case FileType::amatchTable: return plotTable(file);
        case FileType::blackCurve:
        case FileType::cmykToneCurve:
        case FileType::dcc: return plotTone(file);
        case FileType::calibration: return plotCalib(file);
        case FileType::foreign: break;
    }
    if (isTable(file)) return plotColourTable(file);
    failOn(path, "is no ICC file and no colour table, and its extension is none of .lut, .amt, .bkc, .tnc, .dcc, .clb");
}

}  // namespace

void addPlotCommand(Command& app) {
    struct Options {
        std::string file, output;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("plot", "Draw a file's curves and ramps as an SVG picture");
    command.examples(kExamples);
    command.option("file", options->file, "An ICC profile, a table, a .lut, .amt, .bkc, .tnc, .dcc or .clb file")
        .called("FILE").required();
    command.option("-o,--output", options->output, "The picture to write, - for standard output")
        .called("FILE").required();
    command.does([options] {
        const std::string inputs[] = {options->file};
        writeText(options->output, picture(options->file), inputs);
    });
}

}  // namespace ko::cli
