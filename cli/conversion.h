// A colour conversion chosen on the command line: links, profiles, tables, the built-in tables.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/files.h"

namespace ko::cli {

class Command;

enum class ColourSpace { rgb, cmyk, grey };

constexpr int channelsOf(ColourSpace space) {
    return space == ColourSpace::cmyk ? 4 : space == ColourSpace::rgb ? 3 : 1;
}
const char* nameOf(ColourSpace space);

// Levels 0..255 in; out on the 16-scale, 0..4080, channelsOf(output) values a pixel.
class Conversion {
public:
    virtual ~Conversion() = default;
    virtual void convert(const uint8_t* input, int32_t pixels, uint16_t* output) = 0;

    ColourSpace input = ColourSpace::cmyk;
    ColourSpace output = ColourSpace::cmyk;
    std::vector<std::string> files;     // that it was read from
    std::optional<InputFile> destinationProfile;  // that its output colours belong to
};

// The options --link, --table, --builtin, --source, --destination, --engine, --intent,
// --preserve, --white, --grey of a command, and the conversion that they mean.
class ConversionOptions {
public:
    void addTo(Command& command);
    // inputHint: the space of the colours, where that is known and the options leave it open.
    std::unique_ptr<Conversion> make(std::optional<ColourSpace> inputHint) const;

private:
    std::unique_ptr<Conversion> makeColour(std::optional<ColourSpace> inputHint) const;

    std::optional<std::string> link_, table_, source_, destination_, engine_, intent_, preserve_,
        white_;
    bool builtin_ = false;
    bool grey_ = false;
};

}  // namespace ko::cli
