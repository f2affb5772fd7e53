// Device links: the record, its lookups and its builders.
#pragma once

#include <cstdint>
#include <span>

#include "frame/block.h"
#include "grid/cell.h"
#include "kolink/link.h"

namespace ko::link {

constexpr int32_t kGridPoints = 17;  // of every link that a builder makes

// The 16-bit level of a node that a builder gives to the source: 0, 4080, ... 65280.
constexpr int32_t sourceLevel(int32_t index) noexcept {
    return grid::evenLevel(index, kGridPoints, 65280);
}

struct LinkDeleter {
    void operator()(LinkProfile* link) const noexcept;
};
using Link = std::unique_ptr<LinkProfile, LinkDeleter>;

// Null for other than 3 or 4 channels and 2 to 256 points, a grid over 256 MiB, short memory.
[[nodiscard]] Link createProfile(int32_t inputChannels, int32_t gridPoints) noexcept;

// The number of nodes; 0 when the record cannot be looked up (no grid, odd gridPoints).
uint64_t nodeCount(const LinkProfile& link) noexcept;

// One colour in place, 8-bit levels in (clamped), 0..4080 out. convert3 takes three whatever the
// record says.
void convert(const LinkProfile& link, int32_t* values) noexcept;
void convert3(const LinkProfile& link, int32_t* values) noexcept;

// Rows of interleaved pixels: 3 or 4 bytes in, 4 values out. Bit for bit like one by one.
void convertRow(const LinkProfile& link, const uint8_t* input, int32_t pixels,
                uint16_t* output) noexcept;

// The builders: source and destination profile and intent of the settings, 17 points. Null when
// a file does not load, a profile does not fit, the intent is not supported, or memory is short.
// Through the library's own evaluator, to CMYK:
[[nodiscard]] Link combineCmykProfile(const CmsLinkSettings& settings);
[[nodiscard]] Link combineRgbProfile(const CmsLinkSettings& settings);
// Through the system's colour management, to CMYK or RGB:
[[nodiscard]] Link combineIcmRgbProfile(const CmsLinkSettings& settings);
[[nodiscard]] Link combineIcmCmykProfile(const CmsLinkSettings& settings);

}  // namespace ko::link
