// Conversions through the current links.
#include <gtest/gtest.h>

#include <thread>

#include "kolink/colour.h"
#include "tests/link/source_profiles.h"

namespace {
using namespace ko::test;

class CurrentLinks : public testing::Test {
protected:
    CurrentLinks() {
        writeFile(press, pressProfile());
        writeFile(monitor, readFile(testData("sRGB-v2-magic.icc")));
    }
    ~CurrentLinks() override { jColorEndProfile(); }
    TempFolder folder;
    const std::string press = folder.path("press.icc"), monitor = folder.path("monitor.icc");
    LinkHolder rgbToCmyk(int32_t intent) const {
        CmsLinkSettings settings = settingsFor(monitor, press);
        settings.intent = intent;
        return LinkHolder(jKoLinkCombineIcmRgbProfile(&settings));
    }
    LinkHolder cmykToRgb(int32_t intent) const {
        CmsLinkSettings settings = settingsFor(press, monitor);
        settings.intent = intent;
        return LinkHolder(jKoLinkCombineIcmCmykProfile(&settings));
    }
};

uint32_t packed(const Colour& values) {
    return static_cast<uint32_t>(values[0] / 16) << 24 |
           static_cast<uint32_t>(values[1] / 16) << 16 |
           static_cast<uint32_t>(values[2] / 16) << 8 | static_cast<uint32_t>(values[3] / 16);
}

TEST_F(CurrentLinks, ConvertRgbThroughTheLinkOfTheProfilesAndTheIntent) {
    for (const int32_t intent : {0, 1}) {
        ASSERT_EQ(jColorSetupProfile(monitor.c_str(), press.c_str(), intent), 1);
        const LinkHolder link = rgbToCmyk(intent);
        for (int32_t r = 0; r < 256; r += 15)
            for (int32_t g = 0; g < 256; g += 31) {
                Colour values = {r, g, 77, 0};
                jKoLinkCOLtoCMYK16(link.get(), values.data());
                ASSERT_EQ(jColorRGBtoCMYK(r, g, 77), packed(values));
            }
    }
}

TEST_F(CurrentLinks, ConvertCmykThroughTheOtherOneAndPackItsFirstThreeOutputs) {
    ASSERT_EQ(jColorSetupProfile(monitor.c_str(), press.c_str(), 2), 1);
    const LinkHolder link = cmykToRgb(2);
    for (int32_t c = 0; c < 256; c += 15)
        for (int32_t k = 0; k < 256; k += 31) {
            Colour values = {c, 5, 200, k};
            jKoLinkCOLtoCMYK16(link.get(), values.data());
            const uint32_t light =
                static_cast<uint32_t>(values[0] / 16 | values[1] / 16 << 8 | values[2] / 16 << 16);
            ASSERT_EQ(jColorCMYKtoRGB(c, 5, 200, k), light);
            ASSERT_EQ(jColorCMYKtoGRAY(c, 5, 200, k),
                      jColorRGBtoGRAY(values[0] / 16, values[1] / 16, values[2] / 16));
        }
}

TEST_F(CurrentLinks, ClampTheirInputs) {
    ASSERT_EQ(jColorSetupProfile(monitor.c_str(), press.c_str(), 0), 1);
    EXPECT_EQ(jColorRGBtoCMYK(-1, 256, INT32_MAX), jColorRGBtoCMYK(0, 255, 255));
    EXPECT_EQ(jColorCMYKtoRGB(-1, 256, INT32_MAX, INT32_MIN), jColorCMYKtoRGB(0, 255, 255, 0));
}

TEST_F(CurrentLinks, AreGoneAfterEnd) {
    const uint32_t builtinInks = jColorRGBtoCMYK(10, 20, 30),
                   builtinLight = jColorCMYKtoRGB(10, 20, 30, 40);
    ASSERT_EQ(jColorSetupProfile(monitor.c_str(), press.c_str(), 0), 1);
    EXPECT_NE(jColorRGBtoCMYK(10, 20, 30), builtinInks);
    EXPECT_NE(jColorCMYKtoRGB(10, 20, 30, 40), builtinLight);
    jColorEndProfile();
    EXPECT_EQ(jColorRGBtoCMYK(10, 20, 30), builtinInks);
    EXPECT_EQ(jColorCMYKtoRGB(10, 20, 30, 40), builtinLight);
    jColorEndProfile();  // once more does no harm
}

TEST_F(CurrentLinks, AreNoneInEitherDirectionWhenAProfileIsMissing) {
    const uint32_t builtinInks = jColorRGBtoCMYK(10, 20, 30),
                   builtinLight = jColorCMYKtoRGB(10, 20, 30, 40);
    const std::string none = folder.path("none.icc");
    const std::string longPath(KOLINK_PATH_SIZE, 'x');
    for (const auto& [rgb, cmyk] : {std::pair{none.c_str(), press.c_str()},
                                    {monitor.c_str(), none.c_str()},
                                    {"", press.c_str()},
                                    {static_cast<const char*>(nullptr), press.c_str()},
                                    {monitor.c_str(), static_cast<const char*>(nullptr)},
                                    {longPath.c_str(), press.c_str()}}) {
        ASSERT_EQ(jColorSetupProfile(monitor.c_str(), press.c_str(), 0), 1);
        EXPECT_EQ(jColorSetupProfile(rgb, cmyk, 0), 0);
        EXPECT_EQ(jColorRGBtoCMYK(10, 20, 30), builtinInks);
        EXPECT_EQ(jColorCMYKtoRGB(10, 20, 30, 40), builtinLight);
    }
}

// A profile that only reads ink gives one link of the two.
TEST_F(CurrentLinks, AreNoneInEitherDirectionWhenOnlyOneCanBeBuilt) {
    const uint32_t builtinInks = jColorRGBtoCMYK(10, 20, 30),
                   builtinLight = jColorCMYKtoRGB(10, 20, 30, 40);
    const std::string reading = folder.path("reading.icc");
    writeFile(reading, readFile(testData("CGATS001Compat-v2-micro.icc")));
    const CmsLinkSettings settings = settingsFor(reading, monitor);
    ASSERT_TRUE(LinkHolder(jKoLinkCombineIcmCmykProfile(&settings)));
    EXPECT_EQ(jColorSetupProfile(monitor.c_str(), reading.c_str(), 0), 0);
    EXPECT_EQ(jColorRGBtoCMYK(10, 20, 30), builtinInks);
    EXPECT_EQ(jColorCMYKtoRGB(10, 20, 30, 40), builtinLight);
}

TEST_F(CurrentLinks, AreNoneForAnIntentOutside0To3) {
    EXPECT_EQ(jColorSetupProfile(monitor.c_str(), press.c_str(), 4), 0);
    EXPECT_EQ(jColorSetupProfile(monitor.c_str(), press.c_str(), -1), 0);
}

TEST_F(CurrentLinks, ConvertRowsLikeSingleColours) {
    ASSERT_EQ(jColorSetupProfile(monitor.c_str(), press.c_str(), 1), 1);
    const auto input = randomLevels(12000, 4);
    std::vector<uint8_t> inks(16000), light(9000);
    jColorRGBtoCMYKRow(input.data(), 4000, inks.data());
    jColorCMYKtoRGBRow(input.data(), 3000, light.data());
    for (size_t pixel = 0; pixel < 4000; ++pixel) {
        const uint8_t *in = &input[pixel * 3], *out = &inks[pixel * 4];
        const uint32_t word = static_cast<uint32_t>(out[0]) << 24 |
                              static_cast<uint32_t>(out[1]) << 16 |
                              static_cast<uint32_t>(out[2]) << 8 | out[3];
        ASSERT_EQ(word, jColorRGBtoCMYK(in[0], in[1], in[2])) << pixel;
    }
    for (size_t pixel = 0; pixel < 3000; ++pixel) {
        const uint8_t *in = &input[pixel * 4], *out = &light[pixel * 3];
        const uint32_t word =
            out[0] | static_cast<uint32_t>(out[1]) << 8 | static_cast<uint32_t>(out[2]) << 16;
        ASSERT_EQ(word, jColorCMYKtoRGB(in[0], in[1], in[2], in[3])) << pixel;
    }
}

TEST(FrontRowsFromSeveralThreads, ThroughTheCurrentLinksEqualTheOnesOfOneThread) {
    const TempFolder folder;
    writeFile(folder.path("press.icc"), pressProfile());
    writeFile(folder.path("monitor.icc"), readFile(testData("sRGB-v2-magic.icc")));
    ASSERT_EQ(
        jColorSetupProfile(folder.path("monitor.icc").c_str(), folder.path("press.icc").c_str(), 1),
        1);
    const auto input = randomLevels(12000, 5);
    const auto convert = [&] {
        std::vector<uint8_t> output(16000 + 9000);
        jColorRGBtoCMYKRow(input.data(), 4000, output.data());
        jColorCMYKtoRGBRow(input.data(), 3000, output.data() + 16000);
        return output;
    };
    const auto expected = convert();
    std::vector<std::vector<uint8_t>> outputs(4);
    std::vector<std::thread> threads;
    for (auto& output : outputs) threads.emplace_back([&] { output = convert(); });
    for (std::thread& thread : threads) thread.join();
    jColorEndProfile();
    for (const auto& output : outputs) EXPECT_EQ(output, expected);
}

}  // namespace
