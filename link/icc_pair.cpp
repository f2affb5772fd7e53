#include "link/icc_pair.h"

#include "frame/arithmetic.h"
#include "icc/power.h"

namespace ko::link {
namespace {

constexpr uint32_t kRgb = fourcc("RGB ");

// Evaluating a table of another shape would mix up channels.
icc::ReadyLut readyLut(IccLut* lut, int32_t inputs, int32_t outputs) {
    if (!lut || lut->inputChannels != inputs || lut->outputChannels != outputs) return {};
    return icc::ReadyLut(*lut);
}

icc::White headerIlluminant(const IccProfile& source) noexcept {
    icc::White white;
    for (size_t i = 0; i < 3; ++i) white[i] = source.header.illuminant[i] / 65536.0;
    return white;
}

}  // namespace

std::optional<MatrixSource> MatrixSource::of(icc::ProfileFile& file) {
    constexpr uint32_t kCurves[3] = {fourcc("rTRC"), fourcc("gTRC"), fourcc("bTRC")};
    constexpr uint32_t kColorants[3] = {fourcc("rXYZ"), fourcc("gXYZ"), fourcc("bXYZ")};
    MatrixSource matrix{};
    for (size_t channel = 0; channel < 3; ++channel) {
        const auto* curve = icc::loadData<IccCurve>(file, kCurves[channel]);
        const auto* xyz = icc::loadData<float>(file, kColorants[channel]);
        if (!curve || !xyz) return std::nullopt;
        matrix.curves[channel] = {curve, curve->count == 1 ? curve->entries[0] / 256.0 : 1.0};
        for (size_t i = 0; i < 3; ++i) matrix.colorants[channel][i] = static_cast<double>(xyz[i]);
    }
    return matrix;
}

void MatrixSource::toXyz16(int32_t* values) const noexcept {
    int32_t light[3];
    for (size_t channel = 0; channel < 3; ++channel) {
        light[channel] = values[channel] / 256;
        const auto& [curve, gamma] = curves[channel];
        if (curve->count == 1)
            light[channel] = truncateToInt32(icc::power(light[channel] / 255.0, gamma) * 255);
        else icc::trcColor(curve, &light[channel]);  // an empty one changes nothing
    }
    double xyz[3];
    for (size_t i = 0; i < 3; ++i)
        xyz[i] =
            (colorants[0][i] * light[0] + colorants[1][i] * light[1] + colorants[2][i] * light[2]) /
            255;
    icc::xyzEncode(xyz, 2);
    for (size_t i = 0; i < 3; ++i) values[i] = truncateToInt32(xyz[i]);
}

std::optional<IccPair> openPair(const CmsLinkSettings& settings, uint32_t colourSpace) {
    const Path source(settings.sourcePath), destination(settings.destinationPath);
    if (source.empty() || destination.empty()) return {};
    auto open = icc::openPair(source, destination, colourSpace, settings.intent);
    if (!open) return {};

    IccPair pair;
    const bool rgb = colourSpace == kRgb;
    pair.sourceLut = readyLut(open->sourceLut(settings.intent), rgb ? 3 : 4, 3);
    if (!pair.sourceLut && rgb) pair.matrix = MatrixSource::of(open->source);
    if (!pair.sourceLut && !pair.matrix) return {};
    pair.destinationLut = readyLut(open->destinationLut(settings.intent), 3, 4);
    if (!pair.destinationLut) return {};

    pair.crossing = {.bridge = open->bridge, .overflow = icc::Overflow::wraps};
    if (rgb) pair.crossing.white = headerIlluminant(*open->source.profile);
    else if (open->bridge != icc::Bridge::none)
        pair.crossing.white = icc::mediaWhite(open->source, icc::kUsualD50);
    pair.source = std::move(open->source.profile);
    pair.destination = std::move(open->destination.profile);
    return pair;
}

}  // namespace ko::link
