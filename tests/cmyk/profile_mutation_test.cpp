// Damaged files of every kind that a CMYK profile is loaded from. Nothing may crash, hang or
// leave a text without its end; what loads says 1, what does not touches nothing.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/cmyk/support.h"

namespace ko::test {
namespace {

struct CmykDamage : testing::Test {
    TempFolder folder;
    OwnedProfile profile{jKoCmykCreateProfile()};

    void loadAs(const std::string& path, const Bytes& bytes) {
        writeFile(path, bytes);
        const int32_t result = jKoCmykLoadProfile(profile.get(), path.c_str());
        ASSERT_TRUE(result == 0 || result == 1);
        if (result == 1) { ASSERT_EQ(profile->path, path); }
        ASSERT_EQ(profile->name[63], '\0');
        ASSERT_EQ(profile->comment[499], '\0');
    }
    Bytes marked() const {
        std::string text = "_KOLINK_10J\nNAME: Test\n";
        for (int line = 0; line < 4; ++line) text += "CTRL: 10001\n";
        for (int line = 0; line < 4; ++line) text += "CTL2: 10001\n";
        return descriptionElement(text + "comment\nmore");
    }
};

TEST_F(CmykDamage, LutTables) {
    const Bytes seed = lutFile("Press", "Comment", std::vector<uint32_t>(40, 0x01020304));
    forEachTruncation(seed, 150, [&](const Bytes& bytes) { loadAs(folder.path("t.lut"), bytes); });
    for (uint32_t variant = 0; variant < 500; ++variant) loadAs(folder.path("t.lut"), mutated(seed, variant));
}

TEST_F(CmykDamage, AmtTables) {
    const Bytes seed = amtFile("Press", "Comment", std::vector<uint32_t>(40, 0x01020304));
    forEachTruncation(seed, 150, [&](const Bytes& bytes) { loadAs(folder.path("t.amt"), bytes); });
    for (uint32_t variant = 0; variant < 500; ++variant) loadAs(folder.path("t.amt"), mutated(seed, variant));
}

TEST_F(CmykDamage, IccProfilesWithoutAGrid) {
    const Bytes seed = iccFile({{"desc", marked()}, {"cprt", Bytes{'t', 'e', 'x', 't', 0, 0, 0, 0, 'c', 0}}});
    forEachTruncation(seed, 400, [&](const Bytes& bytes) { loadAs(folder.path("p.icc"), bytes); });
    for (uint32_t variant = 0; variant < 3000; ++variant) loadAs(folder.path("p.icc"), mutated(seed, variant));
}

// Every load with a table evaluates a million nodes, so there are few here; the curves, which
// need no evaluation, have their thousands among the tests of the engine.
TEST_F(CmykDamage, IccProfilesWithATable) {
    Bytes grid33 = lutHeader(1, 4, 4, 33);
    for (int channel = 0; channel < 4; ++channel) appendRamp8(grid33);
    const Bytes small16 = smallLut16(5, 7, [](int, int e) { return static_cast<uint32_t>(e) * 9000; });
    for (const Bytes& lut : {smallLut8(), grid33, small16}) {
        const Bytes seed = iccFile({{"desc", marked()}, {"A2B0", lut}});
        forEachTruncation(seed, 5, [&](const Bytes& bytes) { loadAs(folder.path("p.icc"), bytes); });
        for (uint32_t variant = 0; variant < 8; ++variant) loadAs(folder.path("p.icc"), mutated(seed, variant));
    }
}

TEST_F(CmykDamage, LutChannelCountsAndGridPointsThatLie) {
    for (const size_t field : {8, 9, 10})
        for (const int value : {0, 5, 33, 255}) {
            Bytes lut = smallLut8();
            lut[field] = static_cast<uint8_t>(value);
            if (field == 10 && value == 255) lut[8] = 15;  // 255^15 passes 64 bits
            loadAs(folder.path("p.icc"), iccFile({{"A2B0", lut}}));
        }
}

TEST_F(CmykDamage, LutEntryCountsThatLie) {
    for (const size_t field : {48, 50})
        for (const int value : {0, 255}) {
            Bytes lut = smallLut16(5, 7, [](int, int) { return 9u; });
            lut[field] = lut[field + 1] = static_cast<uint8_t>(value);
            loadAs(folder.path("p.icc"), iccFile({{"A2B0", lut}}));
        }
}

}  // namespace
}  // namespace ko::test
