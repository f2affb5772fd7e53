// kolink table: CMYK and RGB table files shown, converted between their forms, and checked.
#include <algorithm>
#include <memory>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/errors.h"
#include "cli/files.h"
#include "cli/table_file.h"
#include "frame/lines.h"
#include "frame/text.h"
#include "table/table.h"
#include "table/text.h"

namespace ko::cli {
namespace {

constexpr char kExamples[] =
    "Examples:\n"
    "  kolink table show press.txt\n"
    "  kolink table convert press.txt --to binary -o press.bin\n"
    "  kolink table check press.txt\n";

std::optional<ColourSpace> spaceOption(const std::string& word) {
    if (word.empty()) return std::nullopt;
    return word == "CMYK" ? ColourSpace::cmyk : ColourSpace::rgb;
}

std::span<const uint32_t> nodesOf(const Table& table) {
    if (table.cmyk) return table.cmyk->nodes;
    return table.rgb->nodes;
}

void show(const InputFile& file, const Table& table) {
    const auto nodes = nodesOf(table);
    const bool isCmyk = table.cmyk != nullptr;
    Table plain;
    if (isCmyk) plain.cmyk = orShortOfMemory(table::create<CmykLut>());
    else plain.rgb = orShortOfMemory(table::create<RgbLut>());
    const auto plainNodes = nodesOf(plain);
    size_t changed = 0;
    for (size_t at = 0; at < nodes.size(); ++at) changed += nodes[at] != plainNodes[at];
    std::string text = "file:     " + printable(file.path) + '\n';
    text += std::string("table:    ") + (isCmyk ? "CMYK to CMYK" : "RGB to RGB") + ", 17 grid points\n";
    text += std::string("form:     ") + (table.isText ? "text" : "binary") + '\n';
    text += "nodes:    " + grouped(nodes.size()) + ", " + grouped(changed) + " of them not the identity\n";
    const auto outputs = [&](uint32_t word) {
        std::string values;
        for (int at = 0; at < (isCmyk ? 4 : 3); ++at)
            values += (at ? ", " : "") + std::to_string(word >> (isCmyk ? 24 - 8 * at : 8 * at) & 255);
        return values;
    };
    text += std::string(isCmyk ? "no ink:   " : "black:    ") + outputs(nodes.front()) + '\n';
    text += std::string(isCmyk ? "all inks: " : "white:    ") + outputs(nodes.back()) + '\n';
    writeOut(text);
}

void convert(const Table& table, const std::string& form, const std::string& output,
             const std::string& input) {
    const std::string inputs[] = {input};
    checkOutput(output, inputs);
    if (form == "text") {
        return writeText(output, table.cmyk ? table::text(*table.cmyk) : table::text(*table.rgb), inputs);
    }
    std::string bytes;
    for (const uint32_t word : nodesOf(table))
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(word >> shift);
    // Read again, a table is binary by a byte that text does not have in its first line.
    LineReader lines(bytes);
    if (table::formOf(lines) != table::FileForm::binary)
        failOn(output, "this table cannot be told from text in the binary form; keep it as text");
    writeFile(output, bytes);
}

int check(const InputFile& file, const Table& table) {
    if (!table.isText) {
        writeOut(printable(file.path) + ": a binary table, whole\n");
        return 0;
    }
    const TableReport report = checkTableText(file, table);
    std::string text;
    for (const std::string& warning : report.warnings) text += printable(file.path) + ": " + warning + '\n';
    if (report.moreWarnings) text += printable(file.path) + ": and " + grouped(report.moreWarnings) + " more\n";
    text += printable(file.path) + ": " + grouped(report.nodesGiven) + " of " + grouped(report.nodes) +
            " nodes are given" + (report.nodesGiven < report.nodes ? "; the others stay the identity" : "") + '\n';
    writeOut(text);
    return report.warnings.empty() && report.nodesGiven == report.nodes ? 0 : 1;
}

}  // namespace

void addTableCommand(Command& app) {
    struct Options {
        std::string file, output, form, space;
    };
    const auto options = std::make_shared<Options>();
    Command command = app.command("table", "Show, convert and check CMYK and RGB table files");
    command.examples(kExamples);
    command.needsCommand();
    const auto add = [&](const char* name, const char* description) {
        Command sub = command.command(name, description);
        sub.option("file", options->file, "A table file").called("FILE").required();
        sub.option("--space", options->space, "Which of the two tables it is, where that is in doubt")
            .oneOf({"RGB", "CMYK"});
        return sub;
    };
    const auto load = [options](const InputFile& file) { return loadTable(file, spaceOption(options->space)); };
    add("show", "Say what a table holds").does([=] {
        const InputFile file = openInput(options->file);
        show(file, load(file));
    });
    Command converting = add("convert", "Write a table in the other form");
    converting.option("--to", options->form, "The form to write")
        .oneOf({"text", "binary"}).required();
    converting.option("-o,--output", options->output, "The file to write").called("FILE").required();
    converting.does([=] {
        const InputFile file = openInput(options->file);
        convert(load(file), options->form, options->output, options->file);
    });
    add("check", "Look for lines that do not mean what they seem to; exit status 1 if there are any")
        .does([=] {
            const InputFile file = openInput(options->file);
            if (check(file, load(file)) != 0) throw Found();
        });
}

}  // namespace ko::cli
