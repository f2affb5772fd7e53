// The colour conversion of a combination through two ICC profiles: source LUT, connection space,
// destination LUT. The plain version, one colour at a time.
#pragma once

#include <optional>

#include "cmyk/convert.h"
#include "icc/pair.h"

namespace ko::cmyk {

struct IccPair {
    IccPair(const IccLut& sourceLut, const IccLut& destinationLut, icc::Bridge bridge,
            const icc::White& white = icc::kProfileD50) noexcept
        : source(sourceLut),
          destination(destinationLut),
          crossing{bridge, source.precision, destination.precision, icc::Overflow::saturates,
                   white} {}

    const IccLut& source;  // both set up
    const IccLut& destination;
    icc::Crossing crossing;
};

// What a combination does between the base profile and preservation.
using Conversion = std::optional<IccPair>;
inline constexpr std::nullopt_t kNoConversion = std::nullopt;

// 0..255 in and out.
void convertThroughIcc(const IccPair& pair, Cmyk& cmyk) noexcept;

}  // namespace ko::cmyk
