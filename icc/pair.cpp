#include "icc/pair.h"

#include <algorithm>
#include <new>

#include "frame/arithmetic.h"

namespace ko::icc {
namespace {

constexpr uint32_t kLab = fourcc("Lab "), kXyz = fourcc("XYZ "), kCmyk = fourcc("CMYK");
constexpr uint32_t kToConnection[] = {fourcc("A2B0"), fourcc("A2B1"), fourcc("A2B2")};
constexpr uint32_t kFromConnection[] = {fourcc("B2A0"), fourcc("B2A1"), fourcc("B2A2")};

// a or b as a whole level on the 16-bit scale.
int32_t times256(int32_t level, Overflow overflow) noexcept {
    if (overflow == Overflow::wraps) return wrapMultiply(level, 256);
    return static_cast<int32_t>(std::clamp<int64_t>(int64_t{level} * 256, 0, 65535));
}

// By hand, with Y 100: L is scaled, a and b are cut to whole levels first.
void crossToLab(const Crossing& crossing, std::span<int32_t, 4> values) noexcept {
    double colour[3];
    for (size_t i = 0; i < 3; ++i)
        colour[i] = values[i] * 100.0 / (crossing.from == 1 ? 128 : 32768);
    xyzToLab(colour, crossing.white.data());
    values[0] = truncateToInt32(colour[0] * (crossing.to == 1 ? 255 : 65280) / 100);
    for (size_t i = 1; i < 3; ++i) {
        const int32_t level = truncateToInt32(colour[i] + 128);
        values[i] = crossing.to == 1 ? level : times256(level, crossing.overflow);
    }
}

void crossToXyz(const Crossing& crossing, std::span<int32_t, 4> values) noexcept {
    double colour[3] = {100.0 * values[0] / (crossing.from == 1 ? 255 : 65280)};
    for (size_t i = 1; i < 3; ++i)
        colour[i] = (crossing.from == 1 ? values[i] : values[i] / 256.0) - 128;
    labToXyz(colour, crossing.white.data());
    for (size_t i = 0; i < 3; ++i)
        values[i] = truncateToInt32(colour[i] * (crossing.to == 1 ? 128 : 32768) / 100);
}

}  // namespace

ReadyLut::ReadyLut(IccLut& lut) {
    if (!isSupportedLut(lut)) return;
    if (!lutSetup(&lut)) throw std::bad_alloc();  // nothing else keeps it from being ready
    lut_ = &lut;
}

void* loadData(ProfileFile& file, uint32_t signature) {
    const TagResult result = loadTag(file, signature);
    if (result == TagResult::shortMemory) throw std::bad_alloc();
    return result == TagResult::loaded ? findTag(*file.profile, signature)->data : nullptr;
}

IccLut* OpenPair::sourceLut(int32_t intent) {
    return loadData<IccLut>(source, kToConnection[intent]);
}

IccLut* OpenPair::destinationLut(int32_t intent) {
    return loadData<IccLut>(destination, kFromConnection[intent]);
}

std::optional<OpenPair> openPair(const Path& source, const Path& destination,
                                 uint32_t sourceSpace, int32_t intent) {
    OpenPair pair{openProfile(source), {}, Bridge::none};
    if (!pair.source || pair.source.profile->header.colourSpace != sourceSpace) return {};
    const uint32_t from = pair.source.profile->header.connectionSpace;
    if (from != kLab && from != kXyz) return {};
    pair.destination = openProfile(destination);
    if (!pair.destination || pair.destination.profile->header.colourSpace != kCmyk) return {};
    if (intent < 0 || intent > 2) return {};
    if (pair.destination.profile->header.connectionSpace != from)
        pair.bridge = from == kXyz ? Bridge::xyzToLab : Bridge::labToXyz;
    return pair;
}

White mediaWhite(ProfileFile& file, const White& fallback) {
    const auto* const measured = loadData<float>(file, fourcc("wtpt"));
    if (!measured) return fallback;
    return {measured[0] * 100.0, measured[1] * 100.0, measured[2] * 100.0};
}

void Crossing::cross(std::span<int32_t, 4> values) const noexcept {
    if (bridge == Bridge::xyzToLab) crossToLab(*this, values);
    else if (bridge == Bridge::labToXyz) crossToXyz(*this, values);
    else if (from == 2 && to == 1) for (int32_t& value : values) value /= 256;
    else if (from == 1 && to == 2) for (int32_t& value : values) value = wrapMultiply(value, 256);
    for (int32_t& value : values.first<3>()) value = clampTo(value, 0, lutMaximum(to));
}

}  // namespace ko::icc
