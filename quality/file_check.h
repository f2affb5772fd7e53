// What is wrong with a file, where, and how to mend it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ko::quality {

enum class Level : uint8_t { error, warning, note };

struct Fault {
    Level level = Level::error;
    const char* rule = "";  // a word for programs, "tag-overlap"
    uint32_t tag = 0;       // 0: of the header or the directory
    uint64_t offset = 0;    // in the file
    std::string text;       // what is wrong, without a full stop
    const char* remedy = "";
    uint64_t line = 0;      // of a text file, from 1; 0: of the whole file, or it is no text
};

// An ICC profile of any kind, held against ICC.1 of its version (2.0 to 2.4, 4.0 to 4.4). Faults
// come in the order of the file; of a file that is no profile at all the first one only.
// Every count is bounded by the bytes that are there.
std::vector<Fault> checkIcc(std::span<const uint8_t> bytes);

// A copy with what can be mended without a guess: the size, the order and places of the tags,
// padding, reserved bytes, the sequence of a link's profiles, the ID. Empty where the directory
// itself cannot be trusted. The other tags keep their bytes; those that shared them go on doing so.
std::vector<uint8_t> mendIcc(std::span<const uint8_t> bytes);

// What the profile dialog would lose of a device link that it opens and saves again, in one note;
// nothing of a profile that is no link, or that cannot be read.
std::optional<Fault> lostInDialogs(std::span<const uint8_t> link);

// The other files of the product. Every one of them loads as something, so these say where that
// differs from what the file seems to say.
enum class FileForm : uint8_t { lut, amt, blackCurve, toneCurve, printer, calibration, settings, table };
std::vector<Fault> checkFile(FileForm form, std::span<const uint8_t> bytes);

// A text table, and how much of it is given.
enum class TableSpace : uint8_t { cmyk, rgb };
struct TableFaults {
    std::vector<Fault> faults;
    size_t found = 0;       // all that are, while faults has the first ones
    size_t lines = 0;       // behind "#begindata"
    size_t nodesGiven = 0;  // different nodes with a line
};
TableFaults checkTable(std::string_view text, TableSpace space);

}  // namespace ko::quality
