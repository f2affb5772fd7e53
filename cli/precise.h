// The precise engine as the tool uses it: its objects, and its failures in the tool's words.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/link_choices.h"
#include "kolink/precise.h"

namespace ko::cli {

struct PreciseRelease {
    void operator()(KoPreciseProfile* profile) const { koPreciseReleaseProfile(profile); }
    void operator()(KoPreciseTransform* transform) const { koPreciseReleaseTransform(transform); }
    void operator()(KoPreciseLink* link) const { koPreciseReleaseLink(link); }
};
using PreciseTransform = std::unique_ptr<KoPreciseTransform, PreciseRelease>;
using PreciseLink = std::unique_ptr<KoPreciseLink, PreciseRelease>;

// An ICC profile of any version, read from the file's bytes.
class PreciseProfile {
public:
    explicit PreciseProfile(InputFile file);

    const std::string& path() const { return file_.path; }
    const InputFile& file() const { return file_; }
    const KoPreciseProfile* handle() const { return profile_.get(); }
    const KoPreciseProfileInfo& info() const { return *info_; }
    std::string tables() const;  // "A2B0, B2A1", or "no table"

private:
    InputFile file_;
    std::unique_ptr<KoPreciseProfile, PreciseRelease> profile_;
    std::unique_ptr<KoPreciseProfileInfo> info_;
};

// Throws for a failure that the engine told: with the path of the part that it names.
[[noreturn]] void failFor(const KoPreciseError& error, const PreciseProfile* source,
                          const PreciseProfile* destination, const PreciseProfile* base);

// The profiles of a link, opened and judged.
class PrecisePair {
public:
    PrecisePair(const LinkChoices& choices, InputFile source, InputFile destination);

    PreciseLink make(int bits, int gridPoints) const;  // 0 grid points: as chosen
    PreciseTransform transform() const;                // without a link's blacks and limits
    const PreciseProfile& source() const { return source_; }
    const PreciseProfile& destination() const { return destination_; }
    bool sameFile() const;
    std::vector<std::string> files() const;
    // Lines "key: value" for what the engine does not know of: files, paper, version.
    std::string provenance(bool withPlaces) const;

private:
    const LinkChoices& choices_;
    PreciseProfile source_, destination_;
    std::optional<PreciseProfile> base_;
    KoPreciseOptions options_;
    std::vector<std::string> further_;  // files beside the two
};

// Conversion through a device link as a file has it.
PreciseTransform linkTransform(const PreciseProfile& link);

std::string hex(const uint8_t (&id)[16]);

// What a link of the library says of itself: the lines "key: value" of its provenance; empty when
// it has none.
std::string provenanceOf(const IccInput& link);

// Whether the grid's nodes stand at 0, 8 ... 248, 255, as the library has them in links of its own,
// and not evenly, as ICC readers take them.
bool hasLibraryNodes(const IccInput& link);

// A link or table of the library as an ICC link that every reader reads as the library does: 16
// bits, with the way from levels to nodes in its input tables.
std::vector<uint8_t> asIccLink(const CmykProfile& profile);

}  // namespace ko::cli
