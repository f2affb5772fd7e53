// Settings and small ICC files for the tests of combining.
#pragma once

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/icc/lut_builder.h"
#include "tests/support/files.h"
#include "tests/support/profiles.h"

namespace ko::test {

using Combined = OwnedCmykProfile;
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

// A LUT in a block of its own, as a profile takes it over.
inline IccLut* boundCopy(MadeLut& lut) {
    const LutSpec& spec = lut.spec();
    IccLut* const copy = hostLut(spec.inputs, spec.outputs, spec.gridPoints,
                                 static_cast<uint8_t>(spec.precision), spec.inputEntries,
                                 spec.outputEntries);
    std::ranges::copy(lut->matrix, copy->matrix);
    const auto* const tables = static_cast<const uint8_t*>(lut->inputTables);
    const auto* const end = static_cast<const uint8_t*>(lut->outputTables) +
                            spec.precision * spec.outputs * spec.outputEntries;
    std::copy(tables, end, static_cast<uint8_t*>(copy->inputTables));
    return copy;
}

using White = std::array<float, 3>;
constexpr White kD50{0.9642028808f, 1.0f, 0.8249053955f};

struct IccFile {
    uint32_t space = signature("CMYK"), connection = signature("Lab ");
    std::vector<std::pair<uint32_t, MadeLut*>> luts = {};
    std::vector<std::pair<uint32_t, White>> whites = {};

    void write(const std::string& path) const {
        IccProfile* profile = jIccCreate(2);
        profile->header.colourSpace = space;
        profile->header.connectionSpace = connection;
        for (const auto& [tag, lut] : luts) jIccBindTag(profile, tag, boundCopy(*lut));
        for (const auto& [tag, white] : whites)
            jIccBindTag(profile, tag, hostBlock(white.data(), sizeof white));
        if (luts.empty() && whites.empty())
            jIccBindTag(profile, signature("cprt"), hostText(""));
        jIccSaveProfile(profile, path.c_str());
        jIccRelease(profile);
    }
};

}  // namespace ko::test
