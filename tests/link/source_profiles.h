// ICC profiles for the link builders, made as bytes, and their colours by the exported evaluator.
#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kolink.h"
#include "tests/link/links.h"
#include "tests/support/files.h"
#include "tests/support/profiles.h"

namespace ko::test {

using Colour = std::array<int32_t, 4>;

inline Bytes randomLut(uint8_t inputs, uint8_t outputs, uint32_t seed, bool wide = true,
                       uint8_t gridPoints = 5) {
    LutElement lut;
    lut.inputs = inputs;
    lut.outputs = outputs;
    lut.gridPoints = gridPoints;
    lut.wide = wide;
    lut.seed = seed;
    return lut.bytes();
}

// A press in both directions, every intent with tables of its own.
inline Bytes pressProfile(std::string_view connectionSpace = "Lab ", bool wide = true,
                          std::vector<Tag> more = {}) {
    std::vector<Tag> tags = {
        {"A2B0", randomLut(4, 3, 1, wide)}, {"A2B1", randomLut(4, 3, 2, wide)},
        {"A2B2", randomLut(4, 3, 3, wide)}, {"B2A0", randomLut(3, 4, 4, wide)},
        {"B2A1", randomLut(3, 4, 5, wide)}, {"B2A2", randomLut(3, 4, 6, wide)}};
    for (Tag& tag : more) tags.push_back(std::move(tag));
    return profileBytes(tags, profileHeader("prtr", "CMYK", connectionSpace));
}

inline CmsLinkSettings settingsFor(const std::string& source, const std::string& destination) {
    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    std::strncpy(settings.sourcePath, source.c_str(), KOLINK_PATH_SIZE - 1);
    std::strncpy(settings.destinationPath, destination.c_str(), KOLINK_PATH_SIZE - 1);
    return settings;
}

// A LUT of a profile file, ready; its colours on 16 bits.
class FileLut {
public:
    FileLut(const std::string& path, const char (&tag)[5])
        : profile_(jIccLoadHeader(path.c_str())),
          lut_(static_cast<IccLut*>(jIccLoadTag(profile_.get(), signature(tag)))) {
        if (jIccLutSetup(lut_) != 1) std::abort();
    }
    ~FileLut() { jIccLutClose(lut_); }
    Colour operator()(Colour colour) const {
        jIccLutColor16(lut_, colour.data());
        return colour;
    }

private:
    ProfileHandle profile_;
    IccLut* lut_;
};

inline Colour nodeOf(const LinkProfile& link, size_t node) {
    const uint16_t* values = link.grid + node * 4;
    return {values[0], values[1], values[2], values[3]};
}
inline size_t cmykNode(int c, int m, int y, int k) {
    return static_cast<size_t>(((c * 17 + m) * 17 + y) * 17 + k);
}
inline size_t rgbNode(int r, int g, int b) { return static_cast<size_t>((r * 17 + g) * 17 + b); }

// What goes into the source at a node: index * 65280 / 16 a channel.
inline Colour inputOf(const LinkProfile& link, size_t node) {
    Colour input{};
    for (int32_t axis = link.inputChannels - 1; axis >= 0; --axis, node /= 17)
        input[static_cast<size_t>(axis)] = static_cast<int32_t>(node % 17) * 4080;
    return input;
}

// From connection-space values to what a node holds.
inline Colour printed(const FileLut& destination, Colour pcs) {
    for (size_t i = 0; i < 3; ++i) pcs[i] = std::clamp(pcs[i], 0, 65535);
    Colour inks = destination(pcs);
    for (int32_t& ink : inks) ink /= 16;
    return inks;
}

}  // namespace ko::test
