// The two ICC profiles behind a link, their LUTs ready, and the way between their connection
// spaces.
#pragma once

#include <optional>
#include <utility>

#include "icc/icc.h"
#include "kolink/link_settings.h"

namespace ko::link {

// A LUT tag that is ready to be evaluated; closed before its profile goes.
class ReadyLut {
public:
    ReadyLut() = default;
    ReadyLut(icc::ProfileFile& file, uint32_t signature, int32_t inputs, int32_t outputs);
    ReadyLut(ReadyLut&& other) noexcept : lut_(std::exchange(other.lut_, nullptr)) {}
    ReadyLut& operator=(ReadyLut&& other) noexcept {
        std::swap(lut_, other.lut_);
        return *this;
    }
    ~ReadyLut() {
        if (lut_) icc::lutClose(lut_);
    }
    explicit operator bool() const noexcept { return lut_ != nullptr; }
    void evaluate(int32_t* values) const noexcept;  // 16 bits a channel, in place

private:
    IccLut* lut_ = nullptr;
};

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

enum class Bridge { none, xyzToLab, labToXyz };

struct IccPair {
    icc::ProfilePtr source, destination;
    ReadyLut sourceLut, destinationLut;
    std::optional<MatrixSource> matrix;
    Bridge bridge = Bridge::none;
    double white[3] = {};  // what the builder bridges against
};

// The profiles of the settings, ready for a source of that colour space ("RGB " or "CMYK"); empty
// when anything that the conversion needs is missing. Throws std::bad_alloc.
[[nodiscard]] std::optional<IccPair> openPair(const CmsLinkSettings& settings,
                                              uint32_t colourSpace);

}  // namespace ko::link
