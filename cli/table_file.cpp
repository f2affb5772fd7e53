#include "cli/table_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <set>

#include "cli/errors.h"

namespace ko::cli {
namespace {

constexpr size_t kLineBytes = 511;  // as many of a line count
constexpr size_t kMostWarnings = 20;

bool isControl(char c) {
    return (c >= 1 && c <= 8) || (c >= 14 && c <= 31);
}

bool isBeginData(std::string line) {
    for (char& c : line) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c);
    return line == "#begindata";
}

bool readLine(std::istream& in, std::string& line) {
    line.clear();
    if (!std::getline(in, line)) return false;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

bool hasDigit(const std::string& line) {
    return std::any_of(line.begin(), line.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The line's tokens between tabs, blanks and commas.
std::vector<std::string> tokensOf(const std::string& line) {
    std::vector<std::string> tokens(1);
    for (const char c : line) {
        if (c != '\t' && c != ' ' && c != ',') tokens.back() += c;
        else if (!tokens.back().empty()) tokens.emplace_back();
    }
    if (tokens.back().empty()) tokens.pop_back();
    return tokens;
}

struct Form {
    bool isTable = false, isText = false;
    size_t numbers = 0;  // on the first data line with a digit
};

Form formOf(const InputFile& file) {
    std::ifstream in(toPath(file.path), std::ios::binary);
    Form form;
    for (std::string line; readLine(in, line);) {
        if (std::any_of(line.begin(), line.end(), isControl)) {
            form.isTable = true;
            return form;
        }
        if (!isBeginData(line)) continue;
        form.isTable = form.isText = true;
        while (readLine(in, line))
            if (hasDigit(line)) {
                form.numbers = tokensOf(line).size();
                break;
            }
        return form;
    }
    return form;
}

}  // namespace

bool isTable(const InputFile& file) {
    const Form form = formOf(file);
    return form.isText || (form.isTable && (file.size == sizeof(CmykLut) || file.size == sizeof(RgbLut)));
}

Table loadTable(const InputFile& file, std::optional<ColourSpace> space) {
    const Form form = formOf(file);
    if (!form.isTable) failOn(file.path, "is no table: it has neither a line #begindata nor binary content");
    if (!space) {
        if (form.isText && form.numbers == 0) failOn(file.path, "holds no line of numbers behind #begindata");
        const bool cmyk = form.isText ? form.numbers >= 7 : file.size > sizeof(RgbLut);
        space = cmyk ? ColourSpace::cmyk : ColourSpace::rgb;
        const uint64_t whole = cmyk ? sizeof(CmykLut) : sizeof(RgbLut);
        if (!form.isText && file.size != whole)
            failOn(file.path, "is no table: a binary one has " + grouped(sizeof(RgbLut)) + " bytes (RGB) or " +
                                  grouped(sizeof(CmykLut)) + " (CMYK), this file " + grouped(file.size));
    }
    Table table;
    table.isText = form.isText;
    int32_t loaded = 0;
    if (*space == ColourSpace::cmyk) {
        table.cmyk.reset(jKoCmykCreateCmykLut());
        loaded = jKoCmykLoadCmykLut(table.cmyk.get(), file.libraryPath.c_str());
    } else {
        table.rgb.reset(jKoRgbCreateRgbLut());
        loaded = jKoRgbLoadRgbLut(table.rgb.get(), file.libraryPath.c_str());
    }
    if (loaded != 1) failOn(file.path, "cannot be loaded as a table");
    return table;
}

TableReport checkTableText(const InputFile& file, const Table& table) {
    const size_t inputs = table.cmyk ? 4 : 3, wanted = 2 * inputs;
    TableReport report;
    report.nodes = table.cmyk ? KOLINK_CMYK_LUT_NODES : KOLINK_RGB_LUT_NODES;
    std::set<uint32_t> given;
    size_t number = 0;
    bool data = false;
    const auto warn = [&](const std::string& what) {
        if (report.warnings.size() < kMostWarnings)
            report.warnings.push_back("line " + std::to_string(number) + ": " + what);
        else ++report.moreWarnings;
    };
    std::ifstream in(toPath(file.path), std::ios::binary);
    for (std::string line; readLine(in, line);) {
        ++number;
        if (!data) {
            data = isBeginData(line);
            continue;
        }
        ++report.lines;
        if (line.size() > kLineBytes) {
            warn("is longer than " + std::to_string(kLineBytes) + " bytes; the rest is not read");
            line.resize(kLineBytes);
        }
        if (!hasDigit(line)) {
            warn("holds no number and sets the node of all zeros to 0");
            given.insert(0);
            continue;
        }
        const auto tokens = tokensOf(line);
        if (tokens.size() != wanted)
            warn("has " + std::to_string(tokens.size()) + " numbers instead of " + std::to_string(wanted));
        uint32_t node = 0;
        bool inside = true;
        for (size_t at = 0; at < wanted; ++at) {
            int32_t value = 0;
            if (at < tokens.size()) {
                const std::string& token = tokens[at];
                const char* const begin = token.data() + (token[0] == '+' ? 1 : 0);
                const char* const end = token.data() + token.size();
                const auto read = std::from_chars(begin, end, value);
                if (read.ec != std::errc() || read.ptr != end) warn("'" + printable(token) + "' is not a whole number");
            }
            if (value < 0 || value > 255) {
                warn(at < inputs ? "a level is outside 0..255; the line is not used"
                                 : "an output is outside 0..255; it is taken modulo 256");
                inside = inside && at >= inputs;
            } else if (at < inputs) {
                if (value != 255 && value % 16 != 0) warn("level " + std::to_string(value) + " is between grid points");
                node = node * 17 + static_cast<uint32_t>((value + value / 255) / 16);
            }
        }
        if (inside && !given.insert(node).second) warn("gives a node again; the last line counts");
    }
    report.nodesGiven = given.size();
    return report;
}

}  // namespace ko::cli
