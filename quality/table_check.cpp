// Tables that are no profiles: raw ones of 33 points, and those of 17 points in text or binary.
#include <algorithm>
#include <set>

#include "cmyk/load.h"
#include "frame/bytes.h"
#include "kolink/colour_table.h"
#include "quality/text_check.h"
#include "quality/text_faults.h"
#include "table/table.h"
#include "table/text.h"

namespace ko::quality {
namespace {

bool hasDigit(std::string_view line) {
    return std::ranges::any_of(line, [](char c) { return c >= '0' && c <= '9'; });
}

std::string_view textOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// A text of a header's field: up to its first NUL.
void checkField(std::vector<Fault>& faults, std::span<const uint8_t> field, uint64_t offset, size_t most,
                const char* what) {
    const auto end = std::ranges::find(field, uint8_t{0});
    const auto length = static_cast<size_t>(end - field.begin());
    if (end == field.end())
        faults.push_back({Level::warning, "text-end", 0, offset, std::string(what) + " does not end with a zero byte",
                          "end it with one", 0});
    else if (length > most)
        faults.push_back({Level::warning, "text-length", 0, offset, std::string(what) + " has " + std::to_string(length) +
                              " bytes; it is cut to " + std::to_string(most), "shorten it", 0});
}

std::vector<Fault> checkRaw(std::span<const uint8_t> bytes, const cmyk::TableForm& form) {
    std::vector<Fault> faults;
    constexpr uint64_t kGrid = sizeof CmykProfile::grid;
    const uint64_t whole = form.headerSize + kGrid;
    const auto header = bytes.first(std::min(form.headerSize, bytes.size()));
    checkField(faults, header.first(std::min(form.commentOffset, header.size())), 0, KOLINK_NAME_SIZE - 1, "the name");
    if (header.size() > form.commentOffset)
        checkField(faults, header.subspan(form.commentOffset), form.commentOffset, 499, "the comment");
    if (bytes.size() < whole) {
        faults.push_back({Level::error, "length", 0, bytes.size(), "the file has " + std::to_string(bytes.size()) + " of " +
                              std::to_string(whole) + " bytes; nodes that it lacks are white",
                          "get the whole file again", 0});
        return faults;
    }
    const auto grid = bytes.subspan(form.headerSize);
    // The first node is white; its bytes are K, Y, M, C.
    if (std::ranges::any_of(grid.first(4), [](uint8_t ink) { return ink != 0; }))
        faults.push_back({Level::note, "white", 0, form.headerSize, "white has ink: C, M, Y, K " + std::to_string(grid[3]) + ", " +
                              std::to_string(grid[2]) + ", " + std::to_string(grid[1]) + ", " + std::to_string(grid[0]) + " of 255",
                          "nothing, when a paper tint is meant", 0});
    if (std::ranges::all_of(grid.first(static_cast<size_t>(kGrid)), [](uint8_t ink) { return ink == 0; }))
        faults.push_back({Level::error, "empty", 0, form.headerSize, "every node is white", "get the file again", 0});
    if (bytes.size() > whole)
        faults.push_back({Level::warning, "length", 0, whole, std::to_string(bytes.size() - whole) +
                              " bytes behind the grid are not read", "leave them out (--fix)", 0});
    return faults;
}

std::vector<Fault> checkColourTable(std::string_view text) {
    LineReader lines(text);
    TextFaults whole(text);
    const table::FileForm form = table::formOf(lines);
    if (form == table::FileForm::neither) {
        whole.addWhole(Level::error, "no-table", "there is neither a line #begindata nor binary content", "get the file again");
        return whole.take();
    }
    if (form == table::FileForm::binary) {
        if (text.size() != sizeof(CmykLut) && text.size() != sizeof(RgbLut))
            whole.addWhole(Level::error, "length", "a binary table has " + std::to_string(sizeof(RgbLut)) + " bytes (RGB) or " +
                               std::to_string(sizeof(CmykLut)) + " (CMYK), this file " + std::to_string(text.size()),
                           "get the whole file again");
        return whole.take();
    }
    size_t numbers = 0;  // on the first line with any
    for (std::string_view line; lines.next(line) && numbers == 0;)
        if (hasDigit(table::countedPart(line)))
            for (table::Numbers of(table::countedPart(line)); !of.next().text.empty();) ++numbers;
    if (numbers == 0) {
        whole.addWhole(Level::error, "no-table", "there is no line of numbers behind #begindata", "get the file again");
        return whole.take();
    }
    const TableSpace space = numbers >= 7 ? TableSpace::cmyk : TableSpace::rgb;
    TableFaults table = checkTable(text, space);
    const size_t nodes = space == TableSpace::cmyk ? KOLINK_CMYK_LUT_NODES : KOLINK_RGB_LUT_NODES;
    if (table.nodesGiven < nodes)
        table.faults.push_back({Level::warning, "nodes", 0, 0, std::to_string(nodes - table.nodesGiven) + " of " +
                                    std::to_string(nodes) + " nodes are not given; they stay what they were",
                                "write a line for each (--fix writes the identity)", 0});
    return table.faults;
}

}  // namespace

TableFaults checkTable(std::string_view text, TableSpace space) {
    const size_t inputs = space == TableSpace::cmyk ? 4 : 3, wanted = 2 * inputs;
    TableFaults report;
    TextFaults faults(text);
    std::set<size_t> given;
    bool data = false;
    for (std::string_view line; faults.next(line);) {
        if (!data) {
            data = table::isStart(line);
            continue;
        }
        ++report.lines;
        if (line.size() >= table::kLineSize)
            faults.add(Level::warning, "line-length", "is longer than " + std::to_string(table::kLineSize - 1) +
                           " bytes; the rest is not read", "shorten it");
        line = table::countedPart(line);
        if (!hasDigit(line)) {
            faults.add(Level::warning, "line-unknown", "holds no number and sets the node of all zeros to 0",
                       "take the line out");
            given.insert(0);
            continue;
        }
        table::Numbers numbers(line);
        size_t count = 0;
        size_t node = 0;
        bool inside = true;
        for (size_t at = 0;; ++at) {
            const auto [value, number] = numbers.next();
            if (!number.empty()) ++count;
            if (at >= wanted) {
                if (number.empty()) break;
                continue;
            }
            if (!number.empty() && !isWholeNumber(number))
                faults.add(Level::error, "number", quoted(number) + " is not a whole number", "write a whole number");
            if (value < 0 || value > 255) {
                if (at < inputs)
                    faults.add(Level::error, "level", "a level is outside 0..255; the line is not used",
                               "write a level of the grid");
                else
                    faults.add(Level::error, "value", "an output is outside 0..255; it is taken modulo 256",
                               "write an output that is inside");
            } else if (at < inputs && value != 255 && value % 16 != 0) {
                faults.add(Level::warning, "level-between", "level " + std::to_string(value) + " is between grid points",
                           "write a level of the grid: 0, 16 ... 240, 255");
            }
            if (at >= inputs) continue;
            const auto index = table::indexOf(value);
            inside = inside && index;
            if (index) node = node * table::kGridPoints + *index;
        }
        if (count != wanted)
            faults.add(Level::error, "numbers", "has " + std::to_string(count) + " numbers instead of " + std::to_string(wanted),
                       "write all of them");
        if (inside && !given.insert(node).second)
            faults.add(Level::warning, "node-twice", "gives a node again; the last line counts", "take one of them out");
    }
    report.nodesGiven = given.size();
    report.found = faults.count();
    report.faults = faults.take();
    return report;
}

std::vector<Fault> checkFile(FileForm form, std::span<const uint8_t> bytes) {
    switch (form) {
        case FileForm::lut: return checkRaw(bytes, cmyk::kLutForm);
        case FileForm::amt: return checkRaw(bytes, cmyk::kAmtForm);
        case FileForm::blackCurve: return checkBlackCurve(textOf(bytes));
        case FileForm::toneCurve: return checkGridCurves(textOf(bytes), false);
        case FileForm::printer: return checkGridCurves(textOf(bytes), true);
        case FileForm::calibration: return checkCalibration(textOf(bytes));
        case FileForm::settings: return checkSettings(textOf(bytes));
        case FileForm::table: return checkColourTable(textOf(bytes));
    }
    return {};
}

}  // namespace ko::quality
