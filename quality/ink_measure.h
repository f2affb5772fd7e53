// Inks: which stay alone, what black becomes, and how much ink there is.
#pragma once

#include <string>
#include <vector>

#include "quality/colour_measure.h"
#include "quality/subject.h"

namespace ko::quality {

// All 256 levels of some inks together.
struct PureRamp {
    const char* inks;          // "C", "CM"; "" is white
    double foreign = 0;        // 0..1, the most of an ink that does not belong there
    int impureLevels = 0;      // levels with any
    double foreignByLevels = 0;  // the same as the library reads the table, in 8 or 16 bits
    bool readByLevels = false;   // whether the library reads such a table
    bool pure() const noexcept { return foreign == 0 && foreignByLevels == 0; }
};

// From CMYK to CMYK: white, C, M, Y, K, CM, CY, MY; from others white alone.
struct PurityReport {
    std::vector<PureRamp> ramps;
    const PureRamp* ramp(const char* inks) const noexcept;  // null: there is none
    bool white() const noexcept;
    bool black() const noexcept;
    bool primaries() const noexcept;    // C, M and Y
    bool secondaries() const noexcept;  // primaries, and two of them
};
// bytes: the link's file.
PurityReport measurePurity(const Subject& subject, std::span<const uint8_t> bytes);

struct BlackPoint {
    double level = 0;  // of K, 0..1
    Colour out{};
    double wantedLightness = 0, lightness = 0, difference = 0;  // with profiles
};
struct GreyPoint {
    Colour in{}, out{};
    Triple wanted{}, printed{};
};
struct BlackReport {
    // From CMYK to CMYK:
    std::vector<BlackPoint> ramp;  // of K alone, 0 to 100 % by 10
    Spread difference;             // of all 256 levels, CIEDE2000
    double step = 0;               // 0..1: the most an ink moves from pure K to K with 3, 2, 2 %, beyond those
    double stepAt = 0;             // that K
    // With profiles: what is neutral to the source, light to dark
    std::vector<GreyPoint> greys;
    double cast = 0;          // the most a*, b* of a grey is off
    double blackStart = -1;   // L* of the first grey with K; below 0: none has any
    bool hasRamp = false;
};
BlackReport measureBlack(const Subject& subject);

struct InkReport {
    double most = 0;  // of a node or a colour of the set, 1 is one full ink
    Colour mostAt{};
    double mean = 0, sourceMean = 0;  // over the set; the source's where that is CMYK
    Colour means{}, sourceMeans{};
    Colour peaks{};                   // of each ink
    double saving() const noexcept {  // of the source's ink, 0..1; below 0: more is used
        return sourceMean > 0 ? 1 - mean / sourceMean : 0;
    }
};
InkReport measureInk(const Subject& subject);

}  // namespace ko::quality
