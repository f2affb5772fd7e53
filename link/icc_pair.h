// The two ICC profiles behind a link, ready to be sampled.
#pragma once

#include <optional>

#include "icc/pair.h"
#include "kolink/link_settings.h"

namespace ko::link {

// The light of an RGB profile without a LUT: three curves, three colorants.
struct MatrixSource {
    struct Curve {
        const IccCurve* curve;
        double gamma;  // of a curve of one entry
    };
    Curve curves[3];
    double colorants[3][3];  // X, Y, Z of R, G, B

    static std::optional<MatrixSource> of(icc::ProfileFile& file);
    void toXyz16(int32_t* values) const noexcept;  // 16-bit device levels in, encoded XYZ out
};

struct IccPair {
    icc::ProfilePtr source, destination;
    icc::ReadyLut sourceLut, destinationLut;
    std::optional<MatrixSource> matrix;  // where an RGB source has no LUT
    icc::Crossing crossing;  // on the 16-bit scale; of an RGB source white is as its header has it
};

// The profiles of the settings, ready for a source of that colour space ("RGB " or "CMYK"); empty
// when anything that the conversion needs is missing. Throws std::bad_alloc.
[[nodiscard]] std::optional<IccPair> openPair(const CmsLinkSettings& settings,
                                              uint32_t colourSpace);

}  // namespace ko::link
