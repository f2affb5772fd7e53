// Saving a CMYK profile as an ICC device link.
#include "cmyk/save.h"

#include <cstring>

#include "cmyk/description.h"
#include "frame/bytes.h"
#include "frame/text.h"
#include "tone/tone.h"

namespace ko::cmyk {
namespace {

constexpr char kCopyright[] = "The owner of the profile holds the copyright.";

bool bindText(IccProfile& link, uint32_t signature, std::string_view text) {
    auto block = allocateBlock<char>(text.size() + 1);
    if (!block) return false;
    std::memcpy(block.get(), text.data(), text.size());
    block.get()[text.size()] = '\0';
    return icc::bindBlock(link, signature, std::move(block));
}

bool bindEmptySequence(IccProfile& link) {
    auto block = allocateBlock<uint32_t>(sizeof(uint32_t));
    if (!block) return false;
    *block = 0;
    return icc::bindBlock(link, fourcc("pseq"), std::move(block));
}

// A result below 0 becomes 255 like one above it: the comparison is unsigned. Combining clamps
// such a result to 0; the two differ on purpose.
void writeCurve(uint8_t* table, const CmykProfile& profile, int32_t curve) noexcept {
    const ControlPoints control = controlPoints(profile, curve);
    const std::span points(control.points.data(), static_cast<size_t>(control.count));
    for (int32_t level = 0; level < 256; ++level) {
        const auto value = static_cast<uint32_t>(tone::splineTone(points, level));
        table[level] = static_cast<uint8_t>(value > 255 ? 255 : value);
    }
}

bool bindLut(IccProfile& link, const CmykProfile& profile) {
    auto lut = makeLinkLut(profile);
    return lut && icc::bindBlock(link, fourcc("A2B0"), std::move(lut));
}

}  // namespace

Block<IccLut> makeLinkLut(const CmykProfile& profile) noexcept {
    auto lut = icc::makeLut({.inputChannels = 4,
                             .outputChannels = 4,
                             .gridPoints = kGridPoints,
                             .precision = 1});
    if (!lut) return nullptr;
    auto* const inputs = static_cast<uint8_t*>(lut->inputTables);
    auto* const outputs = static_cast<uint8_t*>(lut->outputTables);
    for (int32_t channel = 0; channel < 4; ++channel) {
        writeCurve(inputs + 256 * channel, profile, channel);
        writeCurve(outputs + 256 * channel, profile, 4 + channel);
    }
    auto* node = static_cast<uint8_t*>(lut->clut);
    for (const uint32_t word : profile.grid) {
        const uint32_t bytes = icc::revLong(word);  // C, M, Y, K
        std::memcpy(node, &bytes, sizeof bytes);
        node += sizeof bytes;
    }
    return lut;
}

bool fillLink(IccProfile& link, const CmykProfile& profile) {
    return bindText(link, fourcc("cprt"), kCopyright) &&
           bindText(link, fourcc("desc"), buildDescription(profile)) && bindEmptySequence(link) &&
           bindLut(link, profile);
}

bool saveInto(icc::ProfilePtr link, const CmykProfile& profile, const Path& path) {
    if (!link) return true;  // kept: without memory for the object a save counts as done
    // A link that lacks a tag is not written: it would replace a good one.
    return fillLink(*link, profile) && icc::saveLinkProfile(link.get(), path);
}

bool saveProfile(CmykProfile& profile, const Path& path) {
    if (!path) return false;
    // Also after a failure; and nothing may fail between the saving and it.
    struct PathKeeper {
        CmykProfile& profile;
        const Path& path;
        ~PathKeeper() { path.copyTo(profile.path); }
    } const keeper{profile, path};
    return saveInto(icc::create(icc::kCreateLink), profile, path);
}

}  // namespace ko::cmyk
