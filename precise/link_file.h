// A link as the bytes of an ICC device link.
#pragma once

#include <cstdint>
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

// An empty vector, with the problem set, when the options do not fit the link.
std::vector<uint8_t> linkFile(const Link& link, const LinkFileOptions& options, Problem& problem);

// textDescriptionType of version 2: ASCII, Unicode and Macintosh texts. readable may be empty.
void putDescription(ByteWriter& out, const std::string& ascii, const std::string& readable);

// What the options of a link are called in its provenance, one line each.
std::string provenanceOf(const Link& link);

}  // namespace ko::precise
