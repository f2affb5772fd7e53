#include "link/icc_pair.h"

#include <new>

#include "frame/arithmetic.h"
#include "frame/text.h"
#include "icc/power.h"

namespace ko::link {
namespace {

constexpr uint32_t kRgb = fourcc("RGB "), kCmyk = fourcc("CMYK");
constexpr uint32_t kLab = fourcc("Lab "), kXyz = fourcc("XYZ ");
constexpr double kD50[3] = {0.9642, 1.0, 0.8249};

icc::ProfileFile open(std::span<const char, KOLINK_PATH_SIZE> path) {
    if (textIn(path).size() < path.size()) return icc::openProfile(path.data());
    platform::setLastError(platform::Cause::nameTooLong);
    return {};
}

// The data of a tag; null when it is absent. Throws when memory is short.
template <class T>
T* load(icc::ProfileFile& file, uint32_t signature) {
    const icc::TagResult result = icc::loadTag(file, signature);
    if (result == icc::TagResult::shortMemory) throw std::bad_alloc();
    if (result == icc::TagResult::absent) return nullptr;
    return static_cast<T*>(icc::findTag(*file.profile, signature)->data);
}

// The source's medium, on the scale of 100.
void mediaWhite(icc::ProfileFile& source, double (&white)[3]) {
    const auto* const measured = load<float>(source, fourcc("wtpt"));
    for (size_t i = 0; i < 3; ++i)
        white[i] = (measured ? static_cast<double>(measured[i]) : kD50[i]) * 100;
}

void headerIlluminant(const IccProfile& source, double (&white)[3]) noexcept {
    for (size_t i = 0; i < 3; ++i) white[i] = source.header.illuminant[i] / 65536.0;
}

Bridge bridgeBetween(const IccProfile& source, const IccProfile& destination) noexcept {
    const uint32_t from = source.header.connectionSpace;
    if (from == destination.header.connectionSpace) return Bridge::none;
    return from == kXyz ? Bridge::xyzToLab : Bridge::labToXyz;
}

}  // namespace

ReadyLut::ReadyLut(icc::ProfileFile& file, uint32_t signature, int32_t inputs, int32_t outputs) {
    auto* const lut = load<IccLut>(file, signature);
    // Evaluating a table of another shape would mix up channels.
    if (!lut || lut->inputChannels != inputs || lut->outputChannels != outputs) return;
    if (!icc::isSupportedLut(*lut)) return;
    if (icc::lutSetup(lut) != 1) throw std::bad_alloc();  // nothing else keeps it from being ready
    lut_ = lut;
}

void ReadyLut::evaluate(int32_t* values) const noexcept { icc::lutColor16(*lut_, values); }

std::optional<MatrixSource> MatrixSource::of(icc::ProfileFile& file) {
    constexpr uint32_t kCurves[3] = {fourcc("rTRC"), fourcc("gTRC"), fourcc("bTRC")};
    constexpr uint32_t kColorants[3] = {fourcc("rXYZ"), fourcc("gXYZ"), fourcc("bXYZ")};
    MatrixSource matrix{};
    for (size_t channel = 0; channel < 3; ++channel) {
        const auto* curve = load<IccCurve>(file, kCurves[channel]);
        const auto* xyz = load<float>(file, kColorants[channel]);
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
    constexpr uint32_t kToPcs[3] = {fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")};
    constexpr uint32_t kFromPcs[3] = {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")};
    if (textIn(settings.sourcePath).empty() || textIn(settings.destinationPath).empty()) return {};

    icc::ProfileFile source = open(settings.sourcePath);
    if (!source || source.profile->header.colourSpace != colourSpace) return {};
    const uint32_t connection = source.profile->header.connectionSpace;
    if (connection != kLab && connection != kXyz) return {};
    // Only the source's connection space is held to be Lab or XYZ.
    icc::ProfileFile destination = open(settings.destinationPath);
    if (!destination || destination.profile->header.colourSpace != kCmyk) return {};
    if (settings.intent < 0 || settings.intent > 2) return {};  // there are no tables for others

    IccPair pair;
    const int32_t channels = colourSpace == kRgb ? 3 : 4;
    pair.sourceLut = ReadyLut(source, kToPcs[settings.intent], channels, 3);
    if (!pair.sourceLut && colourSpace == kRgb) pair.matrix = MatrixSource::of(source);
    if (!pair.sourceLut && !pair.matrix) return {};
    pair.destinationLut = ReadyLut(destination, kFromPcs[settings.intent], 3, 4);
    if (!pair.destinationLut) return {};

    pair.bridge = bridgeBetween(*source.profile, *destination.profile);
    if (colourSpace == kRgb) headerIlluminant(*source.profile, pair.white);
    else if (pair.bridge != Bridge::none) mediaWhite(source, pair.white);
    pair.source = std::move(source.profile);
    pair.destination = std::move(destination.profile);
    return pair;
}

}  // namespace ko::link
