// A colour conversion chosen on the command line: profiles, links, tables, the built-in tables.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/files.h"
#include "cli/link_choices.h"

namespace ko::cli {

class Command;

// Others are the spaces of profiles that have no name here, by their channels.
enum class ColourSpace { rgb, cmyk, grey, lab, xyz, two, three, four };

constexpr int channelsOf(ColourSpace space) {
    switch (space) {
        case ColourSpace::grey: return 1;
        case ColourSpace::two: return 2;
        case ColourSpace::cmyk:
        case ColourSpace::four: return 4;
        default: return 3;
    }
}
// Lab and XYZ have numbers of their own, and no levels.
constexpr bool hasLevels(ColourSpace space) { return space != ColourSpace::lab && space != ColourSpace::xyz; }
const char* nameOf(ColourSpace space);

// Rows of colours, channelsOf(input) values each in, channelsOf(output) out, close together. Levels
// are rounded to the nearest one; floats are 0..1, or Lab's and XYZ's own numbers.
class Conversion {
public:
    virtual ~Conversion() = default;
    virtual void convert8(const uint8_t* in, size_t count, uint8_t* out) = 0;
    virtual void convert16(const uint16_t* in, size_t count, uint16_t* out) = 0;
    virtual void convertFloats(const float* in, size_t count, float* out) = 0;

    ColourSpace input = ColourSpace::cmyk;
    ColourSpace output = ColourSpace::cmyk;
    bool givesInk = false;                        // grey as an amount of ink, 0 for white
    std::vector<std::string> files;               // that it was read from
    std::optional<InputFile> sourceProfile, destinationProfile;  // that its colours belong to
};

// What a command knows of the colours that it will convert.
struct ConversionNeeds {
    std::optional<ColourSpace> input;   // where the options leave it open
    std::optional<InputFile> embedded;  // the profile of a picture
    bool isFine = false;                // more than 256 levels in or out
    bool isLong = false;                // so many colours that a link pays wherever it can be made
};

// The options --link, --table, --builtin, --source, --destination, --grey of a command with those
// of a link, and the conversion that they mean.
class ConversionOptions {
public:
    void addTo(Command& command);
    std::unique_ptr<Conversion> make(const ConversionNeeds& needs) const;
    void requireWay() const;  // fails where the options name no way to convert, or two
    // Whether the numbers of a colour tell what it is, and there have to be three or four.
    bool takesLevelsOfThreeOrFour() const { return builtin_ || (ways() == 0 && grey_); }
    bool hasSource() const { return choices_.source.has_value(); }

private:
    int ways() const;
    std::unique_ptr<Conversion> makeColour(const ConversionNeeds& needs) const;
    std::unique_ptr<Conversion> makePair(const ConversionNeeds& needs) const;

    LinkChoices choices_;
    std::optional<std::string> link_, table_;
    bool builtin_ = false;
    bool grey_ = false;
};

}  // namespace ko::cli
