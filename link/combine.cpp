// Building a link from a pair of ICC profiles with the library's own evaluator.
#include <algorithm>

#include "frame/arithmetic.h"
#include "frame/platform.h"
#include "link/icc_pair.h"
#include "link/link.h"
#include "link/preservation.h"

namespace ko::link {
namespace {

// By hand against the medium's white, on the scale of 100; a and b are cut to whole levels.
void bridgeCmyk(const IccPair& pair, int32_t* values) noexcept {
    double colour[3];
    if (pair.bridge == Bridge::xyzToLab) {
        for (size_t i = 0; i < 3; ++i) colour[i] = values[i] * 100.0 / 32768;
        icc::xyzToLab(colour, pair.white);
        values[0] = truncateToInt32(colour[0] * 65280 / 100);
        values[1] = wrapMultiply(truncateToInt32(colour[1] + 128), 256);
        values[2] = wrapMultiply(truncateToInt32(colour[2] + 128), 256);
    } else if (pair.bridge == Bridge::labToXyz) {
        colour[0] = 100.0 * values[0] / 65280;
        colour[1] = values[1] / 256.0 - 128;
        colour[2] = values[2] / 256.0 - 128;
        icc::labToXyz(colour, pair.white);
        for (size_t i = 0; i < 3; ++i) values[i] = truncateToInt32(colour[i] * 32768 / 100);
    }
}

// With the encodings of the profile format against the header's illuminant. The two builders
// differ here on purpose.
void bridgeRgb(const IccPair& pair, int32_t* values) noexcept {
    if (pair.bridge == Bridge::none) return;
    double colour[3] = {static_cast<double>(values[0]), static_cast<double>(values[1]),
                        static_cast<double>(values[2])};
    if (pair.bridge == Bridge::xyzToLab) {
        icc::xyzDecode(colour, 2);
        icc::xyzToLab(colour, pair.white);
        icc::labEncode(colour, 2);
    } else {
        icc::labDecode(colour, 2);
        icc::labToXyz(colour, pair.white);
        icc::xyzEncode(colour, 2);
    }
    for (size_t i = 0; i < 3; ++i) values[i] = truncateToInt32(colour[i]);
}

void toDestination(const IccPair& pair, int32_t* values) noexcept {
    for (size_t i = 0; i < 3; ++i) values[i] = clampTo(values[i], 0, 65535);
    pair.destinationLut.evaluate(values);
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
        pair->sourceLut.evaluate(values);
        bridgeCmyk(*pair, values);
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
        if (pair->sourceLut) pair->sourceLut.evaluate(values);
        else pair->matrix->toXyz16(values);
        bridgeRgb(*pair, values);
        toDestination(*pair, values);
        preserve(settings.preservation, inks, values);
    });
    return link;
}

}  // namespace ko::link
