// A link as the bytes of an ICC device link.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "frame/bytes.h"
#include "precise/link.h"

namespace ko::precise {

struct LinkFileOptions {
    std::string name;         // UTF-8; empty: from the profiles' names
    std::string editName;     // Shift-JIS, for the editing data
    std::string editComment;  // Shift-JIS
    std::string provenance;   // UTF-8, behind the engine's own lines
    int64_t date = 0;         // seconds since 1970 UTC
    bool editable = false;    // editing data in the description: 33 points, 8 bits, CMYK to CMYK
};

// A file whose table stays where the link has it.
struct LinkFileParts {
    std::vector<uint8_t> around;  // what stands before the table and behind it
    size_t tableAt = 0;           // in around; the end of what stands before
    std::span<const uint8_t> table;

    size_t size() const noexcept { return around.size() + table.size(); }
    std::array<std::span<const uint8_t>, 3> inOrder() const noexcept {
        const std::span<const uint8_t> all = around;
        return {all.first(tableAt), table, all.subspan(tableAt)};
    }
};

// Nothing in the file, with the problem set, when the options do not fit the link, which the parts
// must not outlive.
LinkFileParts linkFileParts(const Link& link, const LinkFileOptions& options, Problem& problem);
std::vector<uint8_t> linkFile(const Link& link, const LinkFileOptions& options, Problem& problem);

// textDescriptionType of version 2: ASCII, Unicode and Macintosh texts. readable may be empty.
void putDescription(ByteWriter& out, const std::string& ascii, const std::string& readable);

// What the options of a link are called in its provenance, one line each.
std::string provenanceOf(const Link& link);

}  // namespace ko::precise
