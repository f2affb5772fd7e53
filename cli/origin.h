// The profiles that a link was made from: how the link says where they are, and how they are found
// again.
#pragma once

#include <string>

#include "quality/subject.h"

namespace ko::cli {

// The lines of a link's provenance for one of its files, of a side "source" or "destination".
// Bytes that are not ASCII, and the percent sign, become %XX: the provenance is ASCII. With its
// place the whole path stands there as well.
std::string originLines(const std::string& side, const std::string& path, bool withPlace);

struct Origin {
    enum class State { found, untold, gone, changed };
    State state = State::untold;
    std::string path;  // where it is; of one that is not found, what the link calls it
    bool found() const { return state == State::found; }
};

// Where it was, beside the link, or in the current folder: an ICC profile with the ID that the link
// tells. changed: at one of them lies another file.
Origin originOf(const quality::LinkFacts& facts, const std::string& link, const std::string& side);

}  // namespace ko::cli
