// Damaged calibration files: they load as something or as null.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/calib/sets.h"
#include "tests/support/files.h"

using namespace ko::test;

namespace {

Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

Bytes goodPlain() {
    return bytesOf("TITLE   = Press\x95\x5C\r\nDESC    = after service\r\nCHANNEL = 3\r\nRANGE   = 100\r\n"
                   "LIMIT   = 200\r\nCTYPE   = 1\r\nFORMAT_X= %.1f\r\nFORMAT_Y= %+6.2e\r\n"
                   "NAME 0  = Cyan\r\nLRGB 0  = 1,2,3\r\nTONE 0  = 0,0\r\nTONE 0  = 50,61.5\r\n"
                   "TONE 0  = 100,95.5\r\nNAME 2  = Yellow\r\nTONE 2  = 0, 0\r\nTONE 2  = 1e2,2E+2\r\n");
}

Bytes goodKeyed() {
    return bytesOf("<CALIB>\r\n    TITLE = Press\x95\x5C\r\n    DESC = after service\r\n    CHANNEL = 2\r\n"
                   "    RANGE = 100\r\n    LIMIT = 200\r\n    CTYPE = 1\r\n    FORMAT_X = %.1f\r\n"
                   "    FORMAT_Y = %+6.2e\r\n    <CURVE_00>\r\n        NAME = Cyan\r\n        LRGB = 1,2,3\r\n"
                   "        TONE_000 = 0.0,0\r\n        TONE_001 = 50,61.5\r\n        TONE_002 = 100,95\r\n"
                   "    </CURVE_00>\r\n    <CURVE_01>\r\n        TONE_000 = 0,0\r\n"
                   "        TONE_255 = 1e2,2E+2\r\n    </CURVE_01>\r\n</CALIB>\r\n");
}

// Whatever loads can be read and edited.
void check(const CalibSet& set) {
    ASSERT_TRUE(set->channelCount >= 1 && set->channelCount <= 16);
    ASSERT_NE(std::memchr(set->title, 0, sizeof set->title), nullptr);
    ASSERT_NE(std::memchr(set->formatX, 0, sizeof set->formatX), nullptr);
    for (int32_t channel = 0; channel < set->channelCount; ++channel) {
        const CalibChannel& found = channelOf(set, channel);
        ASSERT_TRUE(found.toneCount >= 0 && found.toneCount <= 256);
        for (const auto& [x, y] : tonesOf(set, channel)) ASSERT_TRUE(std::isfinite(x) && std::isfinite(y));
        for (const float x : {0.0f, 33.3f, 100.0f}) {
            const float value = jKoCalibGetToneValue(set.get(), channel, x);
            ASSERT_TRUE(value >= 0) << value;
        }
        (void)jKoCalibSetToneValue(set.get(), channel, 60, 61);
        (void)jKoCalibDeleteToneValue(set.get(), channel, 50);
    }
}

// It can be saved, and what was saved loads again.
void checkSaving(const CalibSet& set, const std::string& copy) {
    ASSERT_EQ(jKoCalibSaveCurve(set.get(), copy.c_str()), 1);
    const CalibSet again(jKoCalibLoadCurve(copy.c_str()));
    ASSERT_NE(again, nullptr);
    ASSERT_EQ(again->channelCount, set->channelCount);
}

void damage(const Bytes& good, uint32_t seeds) {
    const TempFolder folder;
    const std::string path = folder.path("damaged.clb"), copy = folder.path("copy.clb");
    forEachTruncation(good, good.size(), [&](const Bytes& bytes) {
        writeFile(path, bytes);
        if (const CalibSet set(jKoCalibLoadCurve(path.c_str())); set) check(set);
    });
    for (uint32_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE(seed);
        writeFile(path, mutated(good, seed));
        const CalibSet set(jKoCalibLoadCurve(path.c_str()));
        if (!set) continue;
        check(set);
        if (seed % 32 == 0) checkSaving(set, copy);  // each waits for the disk
        if (testing::Test::HasFatalFailure()) return;
    }
}

}  // namespace

TEST(DamagedCalibFile, OfThePlainFormLoadsAsSomethingOrNull) { damage(goodPlain(), 2000); }
TEST(DamagedCalibFile, OfTheKeyedFormLoadsAsSomethingOrNull) { damage(goodKeyed(), 2000); }
