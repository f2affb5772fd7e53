// Links of the library, finished: what it writes for others to read is put right. The table and
// the editing data stay as they are.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/files.h"
#include "kolink/cmyk_profile.h"

namespace ko::cli {

// What a link's sequence says of a profile that colours go through.
struct SequenceEntry {
    uint32_t manufacturer = 0, model = 0, attributes[2] = {};
    std::string name;
    std::string id;  // as hexadecimal digits; empty for what is no ICC profile
};
SequenceEntry sequenceEntry(const InputFile& file);

struct Finish {
    uint32_t intent = 0;
    std::string name;                     // that foreign programs show
    std::vector<SequenceEntry> sequence;  // at least one
    std::string provenance;               // lines "key: value"
};

// link: a file as jKoCmykSaveProfile writes it, of this profile.
std::vector<uint8_t> finished(std::span<const uint8_t> link, const CmykProfile& profile, const Finish& finish);

}  // namespace ko::cli
