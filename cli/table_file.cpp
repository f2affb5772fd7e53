#include "cli/table_file.h"

#include <algorithm>

#include "cli/errors.h"
#include "cli/icc_input.h"
#include "quality/file_check.h"
#include "table/table.h"
#include "table/text.h"

namespace ko::cli {
namespace {

constexpr size_t kMostWarnings = 20;

bool hasDigit(std::string_view line) {
    return std::any_of(line.begin(), line.end(), [](char c) { return c >= '0' && c <= '9'; });
}

struct Form {
    table::FileForm file = table::FileForm::neither;
    size_t numbers = 0;  // on the first data line with a digit
    bool isText() const { return file == table::FileForm::text; }
};

Form formOf(const InputFile& file) {
    LineReader lines(file.text());
    Form form{table::formOf(lines)};
    if (!form.isText()) return form;
    for (std::string_view line; lines.next(line);) {
        line = table::countedPart(line);
        if (!hasDigit(line)) continue;
        for (table::Numbers numbers(line); !numbers.next().text.empty();) ++form.numbers;
        break;
    }
    return form;
}

}  // namespace

bool isTable(const InputFile& file) {
    const Form form = formOf(file);
    return form.isText() || (form.file == table::FileForm::binary && (file.size == sizeof(CmykLut) || file.size == sizeof(RgbLut)));
}

Table loadTable(const InputFile& file, std::optional<ColourSpace> space) {
    const Form form = formOf(file);
    if (form.file == table::FileForm::neither) failOn(file.path, "is no table: it has neither a line #begindata nor binary content");
    if (!space) {
        if (form.isText() && form.numbers == 0) failOn(file.path, "holds no line of numbers behind #begindata");
        const bool cmyk = form.isText() ? form.numbers >= 7 : file.size > sizeof(RgbLut);
        space = cmyk ? ColourSpace::cmyk : ColourSpace::rgb;
        const uint64_t whole = cmyk ? sizeof(CmykLut) : sizeof(RgbLut);
        if (!form.isText() && file.size != whole)
            failOn(file.path, "is no table: a binary one has " + grouped(sizeof(RgbLut)) + " bytes (RGB) or " +
                                  grouped(sizeof(CmykLut)) + " (CMYK), this file " + grouped(file.size));
    }
    Table table;
    table.isText = form.isText();
    bool loaded = false;
    if (*space == ColourSpace::cmyk) {
        table.cmyk = orShortOfMemory(table::create<CmykLut>());
        loaded = table::read(*table.cmyk, file.text());
    } else {
        table.rgb = orShortOfMemory(table::create<RgbLut>());
        loaded = table::read(*table.rgb, file.text());
    }
    if (!loaded) failOn(file.path, "cannot be loaded as a table");
    return table;
}

TableReport checkTableText(const InputFile& file, const Table& table) {
    const quality::TableFaults found = quality::checkTable(
        file.text(), table.cmyk ? quality::TableSpace::cmyk : quality::TableSpace::rgb);
    TableReport report;
    report.nodes = table.cmyk ? KOLINK_CMYK_LUT_NODES : KOLINK_RGB_LUT_NODES;
    report.lines = found.lines;
    report.nodesGiven = found.nodesGiven;
    for (const quality::Fault& fault : found.faults) {
        if (report.warnings.size() == kMostWarnings) break;
        report.warnings.push_back("line " + std::to_string(fault.line) + ": " + printable(fault.text));
    }
    report.moreWarnings = found.found - report.warnings.size();
    return report;
}

}  // namespace ko::cli
