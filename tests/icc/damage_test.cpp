// Damaged files through the exported functions: whatever loads can be used and saved.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/profiles.h"

namespace ko::test {
namespace {

// Loads every tag, sends a colour through what is a LUT, and saves what was loaded.
int useProfile(const std::string& path, const std::string& copy) {
    const ProfileHandle profile(jIccLoadHeader(path.c_str()));
    if (!profile) return 0;
    int loaded = 0;
    for (const uint32_t tag : kLoadableTags) {
        void* const data = jIccLoadTag(profile.get(), tag);
        if (!data) continue;
        ++loaded;
        const char last = static_cast<char>(tag);
        if (tag == signature("gamt") || last == '0' || last == '1' || last == '2') {
            auto* const lut = static_cast<IccLut*>(data);
            int32_t values[4] = {10, 200, 30000, 255};
            if (jIccLutSetup(lut)) jIccLutColor16(lut, values);
            jIccLutClose(lut);
        } else if (last == 'C') {
            int32_t value = 77;
            jIccTrcColor(static_cast<IccCurve*>(data), &value);
        }
    }
    jIccSaveDeviceProfile(profile.get(), copy.c_str());
    return loaded;
}

Bytes goodProfile() {
    return profileBytes({{"desc", descriptionElement("description")},
                         {"cprt", textElement("copyright")},
                         {"wtpt", xyzElement(0xf6d6, 0x10000, 0xd32d)},
                         {"rTRC", curveElement({0, 100, 65535})},
                         {"A2B0", LutElement{.inputs = 3, .outputs = 1}.bytes()},
                         {"B2A0", LutElement{.inputs = 1, .outputs = 4, .gridPoints = 5,
                                             .wide = true, .inputEntries = 9,
                                             .outputEntries = 4}.bytes()}});
}

TEST(IccDamagedFile, EveryTruncationIsReadAsFarAsItGoes) {
    const TempFolder folder;
    const std::string path = folder.path("cut.icc"), copy = folder.path("copy.icc");
    int most = 0;
    forEachTruncation(goodProfile(), 150, [&](const Bytes& bytes) {
        writeFile(path, bytes);
        most = std::max(most, useProfile(path, copy));
    });
    EXPECT_EQ(most, 6);
}

TEST(IccDamagedFile, AThousandVariantsAreReadOrRefused) {
    const TempFolder folder;
    const std::string path = folder.path("bad.icc"), copy = folder.path("copy.icc");
    const Bytes good = goodProfile();
    int complete = 0;
    for (uint32_t seed = 0; seed < 1000; ++seed) {
        writeFile(path, mutated(good, seed));
        complete += useProfile(path, copy) == 6;
    }
    EXPECT_GT(complete, 0);
    EXPECT_LT(complete, 1000);
}

}  // namespace
}  // namespace ko::test
