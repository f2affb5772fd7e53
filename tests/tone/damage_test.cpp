// Damaged tone curve files: they load as something, and within the record.
#include <gtest/gtest.h>

#include "tests/support/files.h"
#include "tests/tone/curves.h"

using namespace ko::test;

namespace {

Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

const Bytes& goodBkc() {
    static const Bytes bytes = bytesOf(
        "------------------------------------------------\r\n  TONE CURVE file ver2.0\r\n"
        "------------------------------------------------\r\nTITLE  = Press\x95\x5C 3\r\n"
        "TONE   =   0,  0\r\nTONE   =  16, 10\r\nTONE   = 128,140\r\nTONE   = 255,250\r\n");
    return bytes;
}

const Bytes& goodDcc() {
    static const Bytes bytes = [] {
        std::string text = "DEV    = Printer X;\r\nDPIX   = 720;\r\nDPIY   = 1440;\r\nWINK   = 200;\r\n"
                           "LCLM   = 33;\r\n";
        for (const char* key : {"TONE c", "TONE m", "TONE y", "TONE k", "GCR   ", "UCR   "})
            text.append(key) += " =    0, +16,  40, +48, +64, +80, +96,+112, 140,+144,+160,+176,"
                                "+192,+208,+224,+240, 255;\r\n";
        return bytesOf(text);
    }();
    return bytes;
}

// All readers on one file; every value they leave is in its range and every title ends.
void loadAll(const std::string& path) {
    const auto check = [](const Curve& curve, int maxValue) {
        for (int32_t channel = 0; channel < curve->channelCount; ++channel)
            for (int32_t x = 0; x < 256; ++x) {
                ASSERT_GE(valueOf(curve, channel, x), 0);
                ASSERT_LE(valueOf(curve, channel, x), maxValue);
                ASSERT_TRUE(flagOf(curve, channel, x) == 0 || flagOf(curve, channel, x) == 1);
            }
        ASSERT_EQ(curve->title[63], '\0');
    };
    const Curve one = newCurve(1), four = newCurve(4), six = newCurve(6);
    Dcc dcc;
    ASSERT_EQ(jKoToneLoadBkcCurve(one.get(), path.c_str()), 1);
    ASSERT_EQ(jKoToneLoadCmykToneCurve(four.get(), path.c_str()), 1);
    ASSERT_EQ(jKoToneLoadDccCurve(six.get(), path.c_str()), 1);
    ASSERT_EQ(jKoToneLoadDcc(&dcc.settings, path.c_str()), 1);
    check(one, 255);
    check(four, 255);
    check(six, 4080);
    check(dcc.curves, 255);
}

void mutate(const Bytes& good, uint32_t seeds) {
    const TempFolder folder;
    const std::string path = folder.path("damaged");
    for (uint32_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE(seed);
        writeFile(path, mutated(good, seed));
        loadAll(path);
        if (testing::Test::HasFatalFailure()) return;
    }
}

}  // namespace

TEST(DamagedToneFile, LoadsWhereverItIsCut) {
    const TempFolder folder;
    const std::string path = folder.path("cut");
    for (const Bytes* good : {&goodBkc(), &goodDcc()})
        forEachTruncation(*good, good->size(), [&](const Bytes& bytes) {
            writeFile(path, bytes);
            loadAll(path);
        });
}

TEST(DamagedToneFile, LoadsWhenABlackCorrectionIsDamaged) { mutate(goodBkc(), 2000); }
TEST(DamagedToneFile, LoadsWhenCurveLinesAreDamaged) { mutate(goodDcc(), 2000); }
