// CMYK and RGB table files as the tool meets them: which of the two a file is, and what is odd
// about its text.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/conversion.h"
#include "cli/files.h"
#include "frame/block.h"

namespace ko::cli {

struct Table {
    Block<CmykLut> cmyk;  // one of the two
    Block<RgbLut> rgb;
    bool isText = false;
};

bool isTable(const InputFile& file);  // by its content

// Tells by the size of a binary file, and by the numbers on the first line of a text, unless the
// space is given. Fails with a clear line when it is no table.
Table loadTable(const InputFile& file, std::optional<ColourSpace> space);

// What a person who made the text would want to know, a line each with its number.
struct TableReport {
    size_t lines = 0;           // behind "#begindata"
    size_t nodesGiven = 0;      // different nodes with a line
    size_t nodes = 0;           // of the whole table
    std::vector<std::string> warnings;
    size_t moreWarnings = 0;    // beyond those listed
};
TableReport checkTableText(const InputFile& file, const Table& table);

}  // namespace ko::cli
