// Settings and small ICC files for the tests of combining.
#pragma once

#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kolink.h"
#include "tests/icc/lut_builder.h"
#include "tests/support/files.h"

namespace ko::test {

struct ReleaseProfile {
    void operator()(CmykProfile* profile) const { jKoCmykReleaseProfile(profile); }
};
using Combined = std::unique_ptr<CmykProfile, ReleaseProfile>;
using Colour = std::array<int32_t, 4>;

inline size_t nodeAt(int32_t c, int32_t m, int32_t y, int32_t k) {
    return static_cast<size_t>(((c * 33 + m) * 33 + y) * 33 + k);
}
inline int32_t levelOf(int32_t index) { return index == 32 ? 255 : 8 * index; }
inline Colour unpack(uint32_t word) {
    return {static_cast<int32_t>(word >> 24), static_cast<int32_t>(word >> 16 & 255),
            static_cast<int32_t>(word >> 8 & 255), static_cast<int32_t>(word & 255)};
}
inline Colour at(const Combined& profile, int32_t c, int32_t m, int32_t y, int32_t k) {
    return unpack(profile->grid[nodeAt(c, m, y, k)]);
}

inline CmsLinkSettings emptySettings() {
    CmsLinkSettings settings;
    std::memset(&settings, 0, sizeof settings);
    settings.limit = 200;
    return settings;
}
inline void setPath(char (&field)[KOLINK_PATH_SIZE], const std::string& path) {
    std::strncpy(field, path.c_str(), sizeof field - 1);
}
inline Combined combine(const CmsLinkSettings& settings) {
    return Combined(jKoCmykCombineProfile(&settings));
}
inline Combined combineIcc(const CmsLinkSettings& settings) {
    return Combined(jKoCmykCombineIccProfile(&settings));
}

constexpr uint32_t sig(const char (&text)[5]) {
    return static_cast<uint32_t>(text[0]) << 24 | static_cast<uint32_t>(text[1]) << 16 |
           static_cast<uint32_t>(text[2]) << 8 | static_cast<uint32_t>(text[3]);
}

// A LUT in a block of its own, as a profile takes it over.
inline IccLut* boundCopy(MadeLut& lut) {
    const auto* from = reinterpret_cast<const uint8_t*>(lut.get());
    const auto width = static_cast<size_t>(lut.spec().precision);
    const size_t input = width * lut.spec().inputs * lut.spec().inputEntries;
    const size_t grid = width * lut.nodes() * lut.spec().outputs;
    const size_t output = width * lut.spec().outputs * lut.spec().outputEntries;
    const size_t size = sizeof(IccLut) + input + grid + output;
    auto* block = static_cast<uint8_t*>(jMemAlloc(static_cast<uint32_t>(size)));
    std::memcpy(block, from, size);
    auto* copy = reinterpret_cast<IccLut*>(block);
    copy->inputTables = block + sizeof(IccLut);
    copy->clut = block + sizeof(IccLut) + input;
    copy->outputTables = block + sizeof(IccLut) + input + grid;
    copy->workTable = nullptr;
    return copy;
}

using White = std::array<float, 3>;
constexpr White kD50{0.9642028808f, 1.0f, 0.8249053955f};

struct IccFile {
    uint32_t space = sig("CMYK"), connection = sig("Lab ");
    std::vector<std::pair<uint32_t, MadeLut*>> luts = {};
    std::vector<std::pair<uint32_t, White>> whites = {};

    void write(const std::string& path) const {
        IccProfile* profile = jIccCreate(2);
        profile->header.colourSpace = space;
        profile->header.connectionSpace = connection;
        for (const auto& [signature, lut] : luts) jIccBindTag(profile, signature, boundCopy(*lut));
        for (const auto& [signature, white] : whites) {
            void* block = jMemAlloc(sizeof white);
            std::memcpy(block, white.data(), sizeof white);
            jIccBindTag(profile, signature, block);
        }
        if (luts.empty() && whites.empty()) {
            auto* text = static_cast<char*>(jMemAlloc(1));
            *text = '\0';
            jIccBindTag(profile, sig("cprt"), text);
        }
        jIccSaveProfile(profile, path.c_str());
        jIccRelease(profile);
    }
};

}  // namespace ko::test
