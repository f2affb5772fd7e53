// Device links: what is asked for, the table that comes out, and colours through it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "precise/profile.h"

namespace ko::precise {

enum class Method : int32_t { inverted = 0, tables = 1 };
enum class Black : int32_t { automatic = 0, plane, match, keep, none, curve };
enum class Preserve : int32_t { none = 0, primaries, secondaries, duplex, triplex };
enum class White : int32_t { clean = 0, profile, paper };
enum class Nodes : int32_t { even = 0, library = 1 };

constexpr double kLimitOfProfile = -1, kNoLimit = -2;

struct LinkOptions {
    Method method = Method::inverted;
    Intent intent = Intent::relative;
    bool compensateBlack = false;
    Black black = Black::automatic;
    Preserve preserve = Preserve::none;
    White white = White::clean;
    int bits = 8;
    int gridPoints = 0;
    Nodes nodes = Nodes::even;
    double clip = 0;                    // percent
    double inkLimit = kLimitOfProfile;  // percent, or one of the two above
    double saveInk = 0;                 // 0..100
    double saveInkAbove = 70;           // L*
    Colour paper{};                     // 0..1
    double paperFade = 200.0 / 255;     // of total ink, 1 is one full ink
    std::array<uint8_t, 256> blackCurve{};
};

struct LinkReport {
    double inkLimit = 4;  // 1 is one full ink
    double meanInk = 0, tablesInk = 0;  // of about nine nodes of each axis
    double savedInk = 0;                // mean of all nodes, by saveInk
    uint64_t nodes = 0, reached = 0, movedBlack = 0, limited = 0;
    bool inverted = false;
    Black black = Black::none;
};

class Link {
public:
    int inputs = 0, outputs = 0, gridPoints = 0, bits = 8;
    Nodes nodes = Nodes::even;
    uint32_t sourceSpace = 0, destinationSpace = 0;
    Intent intent = Intent::relative;
    LinkOptions options;
    LinkReport report;
    std::vector<uint8_t> table;  // nodes in file order; 16-bit values with the high byte first
    // What a file's pseq needs of the profiles.
    struct Origin {
        uint32_t manufacturer = 0, model = 0;
        uint64_t attributes = 0;
        std::string name;
        std::array<uint8_t, 16> id{};
    };
    std::vector<Origin> origins;  // source, destination

    // The grid position 0..1 of an input level 0..1: the identity, or with nodes for the library
    // the way there.
    double position(double level) const noexcept;
    // The input level 0..1 at which node i stands.
    double level(int i) const noexcept;

    // By the tetrahedra of ICC readers; double, not rounded.
    Colour at(const Colour& in) const noexcept;
};

// base: null, or a device link from CMYK to CMYK. part says which file a problem is in, as in
// KoPreciseError.
std::unique_ptr<Link> makeLink(const Profile& source, const Profile& destination,
                               const Profile* base, const LinkOptions& options, Problem& problem,
                               int32_t& part);

// The highest total that a CMYK profile's inverse table of the intent asks for, 1 is one full
// ink; 4 without such a table.
double totalOfTables(const Profile& profile, Intent intent);

}  // namespace ko::precise
