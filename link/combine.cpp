// Building a link from a pair of ICC profiles with the library's own evaluator.
#include <algorithm>

#include "frame/arithmetic.h"
#include "frame/platform.h"
#include "link/icc_pair.h"
#include "link/link.h"
#include "link/preservation.h"

namespace ko::link {
namespace {

// With the encodings of the profile format against the header's illuminant. The two builders
// differ here on purpose: the other one crosses by hand against the medium's white.
void bridgeRgb(const IccPair& pair, int32_t* values) noexcept {
    if (pair.crossing.bridge == icc::Bridge::none) return;
    double colour[3] = {static_cast<double>(values[0]), static_cast<double>(values[1]),
                        static_cast<double>(values[2])};
    if (pair.crossing.bridge == icc::Bridge::xyzToLab) {
        icc::xyzDecode(colour, 2);
        icc::xyzToLab(colour, pair.crossing.white.data());
        icc::labEncode(colour, 2);
    } else {
        icc::labDecode(colour, 2);
        icc::labToXyz(colour, pair.crossing.white.data());
        icc::xyzEncode(colour, 2);
    }
    for (size_t i = 0; i < 3; ++i) values[i] = truncateToInt32(colour[i]);
}

void toDestination(const IccPair& pair, int32_t* values) noexcept {
    for (size_t i = 0; i < 3; ++i) values[i] = clampTo(values[i], 0, 65535);
    icc::lutColor16(*pair.destinationLut, values);
    for (size_t k = 0; k < 4; ++k) values[k] /= 16;
}

// convert turns the indices of a node into its four values.
template <size_t kChannels, class Convert>
void fillGrid(LinkProfile& link, Convert convert) {
    uint16_t* node = link.grid;
    grid::forEachNode<kChannels>(kGridPoints, [&](const Indices<kChannels>& indices) {
        int32_t values[4] = {};
        convert(indices, values);
        for (size_t k = 0; k < 4; ++k) *node++ = static_cast<uint16_t>(values[k]);
    });
}

}  // namespace

Link combineCmykProfile(const CmsLinkSettings& settings) {
    Link link = createProfile(4, kGridPoints);
    if (!link) return nullptr;
    const std::optional<IccPair> pair = openPair(settings, fourcc("CMYK"));
    if (!pair) return nullptr;
    const platform::WaitCursor cursor(platform::WaitCursor::Source::system);
    fillGrid<4>(*link, [&](const Indices<4>& indices, int32_t (&values)[4]) {
        const uint32_t inks = inksOf(indices);
        if (settings.whiteMode == 1 && inks == 0) return;  // white gets no ink
        for (size_t i = 0; i < 4; ++i) values[i] = sourceLevel(indices[i]);
        icc::lutColor16(*pair->sourceLut, values);
        pair->crossing.cross(values);
        toDestination(*pair, values);
        preserve(settings.preservation, inks, values);
    });
    return link;
}

Link combineRgbProfile(const CmsLinkSettings& settings) {
    Link link = createProfile(3, kGridPoints);
    if (!link) return nullptr;
    const std::optional<IccPair> pair = openPair(settings, fourcc("RGB "));
    if (!pair) return nullptr;
    const platform::WaitCursor cursor(platform::WaitCursor::Source::system);
    fillGrid<3>(*link, [&](const Indices<3>& indices, int32_t (&values)[4]) {
        const uint32_t inks = inksOf(indices);
        if (settings.whiteMode == 1 && inks == 0) return;
        for (size_t i = 0; i < 3; ++i) values[i] = sourceLevel(indices[i]);
        if (pair->sourceLut) icc::lutColor16(*pair->sourceLut, values);
        else pair->matrix->toXyz16(values);
        bridgeRgb(*pair, values);
        toDestination(*pair, values);
        preserve(settings.preservation, inks, values);
    });
    return link;
}

}  // namespace ko::link
