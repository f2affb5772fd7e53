#include "cli/table_file.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "cli/errors.h"
#include "cli/icc_input.h"
#include "table/table.h"
#include "table/text.h"

namespace ko::cli {
namespace {

constexpr size_t kMostWarnings = 20;

bool hasDigit(std::string_view line) {
    return std::any_of(line.begin(), line.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool isWholeNumber(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    int32_t value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
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
    const size_t inputs = table.cmyk ? 4 : 3, wanted = 2 * inputs;
    TableReport report;
    report.nodes = table.cmyk ? KOLINK_CMYK_LUT_NODES : KOLINK_RGB_LUT_NODES;
    std::set<size_t> given;
    size_t number = 0;
    bool data = false;
    const auto warn = [&](const std::string& what) {
        if (report.warnings.size() < kMostWarnings)
            report.warnings.push_back("line " + std::to_string(number) + ": " + what);
        else ++report.moreWarnings;
    };
    LineReader lines(file.text());
    for (std::string_view line; lines.next(line);) {
        ++number;
        if (!data) {
            data = table::isStart(line);
            continue;
        }
        ++report.lines;
        if (line.size() >= table::kLineSize)
            warn("is longer than " + std::to_string(table::kLineSize - 1) + " bytes; the rest is not read");
        line = table::countedPart(line);
        if (!hasDigit(line)) {
            warn("holds no number and sets the node of all zeros to 0");
            given.insert(0);
            continue;
        }
        table::Numbers numbers(line);
        size_t count = 0;
        size_t node = 0;
        bool inside = true;
        for (size_t at = 0;; ++at) {
            const auto [value, text] = numbers.next();
            if (!text.empty()) ++count;
            if (at >= wanted) {
                if (text.empty()) break;
                continue;
            }
            if (!text.empty() && !isWholeNumber(text)) warn("'" + printable(text) + "' is not a whole number");
            if (value < 0 || value > 255)
                warn(at < inputs ? "a level is outside 0..255; the line is not used"
                                 : "an output is outside 0..255; it is taken modulo 256");
            else if (at < inputs && value != 255 && value % 16 != 0)
                warn("level " + std::to_string(value) + " is between grid points");
            if (at >= inputs) continue;
            const auto index = table::indexOf(value);
            inside = inside && index;
            if (index) node = node * table::kGridPoints + *index;
        }
        if (count != wanted)
            warn("has " + std::to_string(count) + " numbers instead of " + std::to_string(wanted));
        if (inside && !given.insert(node).second) warn("gives a node again; the last line counts");
    }
    report.nodesGiven = given.size();
    return report;
}

}  // namespace ko::cli
