// Combining through the plug-in, which the tests build themselves and put into the product
// folder: without a settings file that is the library's own folder.
#include <gmock/gmock.h>

#if defined(_WIN32)
#  include <windows.h>
#endif

#include "tests/cmyk/combine_support.h"
#include "tests/support/library_folder.h"

using namespace ko::test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

// The plug-in, or one that lacks an entry point, in the product folder while this lives.
class Installed {
public:
    explicit Installed(const std::string& variant = "whole")
        : place_(libraryFolder() / ("LutRead" KO_PLUGIN_SUFFIX)) {
        const std::filesystem::path from =
            std::filesystem::path(KO_PLUGIN_FOLDER) / variant / ("LutRead" KO_PLUGIN_SUFFIX);
        std::filesystem::copy_file(from, place_, std::filesystem::copy_options::overwrite_existing);
    }
    ~Installed() {
        std::error_code ignored;
        std::filesystem::remove(place_, ignored);
    }

private:
    std::filesystem::path place_;
};

struct Foreign {
    TempFolder folder;
    CmsLinkSettings settings = emptySettings();
    std::string table = folder.path("table.nqp");
    Foreign() {
        writeFile(table, "anything");
        setPath(settings.sourcePath, table);
    }
    std::string log() const { return readText(table + ".log"); }
    std::string writeDcc() {
        DccSettings dcc{600, 600, 255, 50, jKoToneCreateToneCurve(6)};
        for (int32_t channel = 0; channel < 6; ++channel) {
            dcc.curves->table[channel * 512 + 128] = 1;
            dcc.curves->table[channel * 512 + 256 + 128] = static_cast<int16_t>(90 + 7 * channel);
        }
        const std::string path = folder.path("printer.dcc");
        jKoToneSaveDcc(&dcc, path.c_str());
        jKoToneReleaseToneCurve(dcc.curves);
        return path;
    }
};

}  // namespace

TEST(PluginCombination, FailsWithoutAPlugIn) {
    Foreign foreign;
    EXPECT_FALSE(combine(foreign.settings));
}

TEST(PluginCombination, FailsWhenAnEntryPointIsMissing) {
    for (const char* lacking : {"LutOpen", "LutClose", "GetLutInfo", "ConvertToRgb"}) {
        const Installed plugin(lacking);
        Foreign foreign;
        EXPECT_FALSE(combine(foreign.settings)) << lacking;
        EXPECT_FALSE(exists(foreign.table + ".log")) << "nothing was opened, nothing is closed";
    }
}

TEST(PluginCombination, FailsWithoutClosingWhenTheTableIsRefused) {
    const Installed plugin;
    Foreign foreign;
    foreign.table = foreign.folder.path("refused.nqp");
    setPath(foreign.settings.sourcePath, foreign.table);
    EXPECT_FALSE(combine(foreign.settings));
    EXPECT_FALSE(exists(foreign.table + ".log"));
}

TEST(PluginCombination, ClosesTheTableWhenTheBlackFileDoesNotLoad) {
    const Installed plugin;
    Foreign foreign;
    setPath(foreign.settings.blackPath, foreign.folder.path("missing.bkc"));
    EXPECT_FALSE(combine(foreign.settings));
    EXPECT_THAT(foreign.log(), HasSubstr("opened 1 converted 0 "));
}

TEST(PluginCombination, ConvertsEveryNodeOnceFromFourBytesInARow) {
    const Installed plugin;
    Foreign foreign;
    ASSERT_TRUE(combine(foreign.settings));
    EXPECT_EQ(foreign.log(), "opened 1 converted 1185921 scattered 0 asked 0 pointer 0\n");
}

TEST(PluginCombination, DoesNotAskForNodesThatAreFinishedBefore) {
    const Installed plugin;
    Foreign foreign;
    writeFile(foreign.folder.path("black.bkc"), "TONE   =   0,  0\r\nTONE   = 255,255\r\n");
    setPath(foreign.settings.blackPath, foreign.folder.path("black.bkc"));
    ASSERT_TRUE(combine(foreign.settings));
    EXPECT_THAT(foreign.log(), HasSubstr("converted 1185888 "));
}

TEST(PluginCombination, LoadsThePlugInAnewForEveryCall) {
    const Installed plugin;
    Foreign foreign;
    ASSERT_TRUE(combine(foreign.settings));
    ASSERT_TRUE(combine(foreign.settings));
    EXPECT_EQ(foreign.log(), "opened 1 converted 1185921 scattered 0 asked 0 pointer 0\n"
                             "opened 1 converted 1185921 scattered 0 asked 0 pointer 0\n");
}

#if defined(_WIN32)
TEST(PluginCombination, GivesThePointerBackWhenThePlugInIsClosed) {
    const Installed plugin;
    Foreign foreign;
    const HCURSOR arrow = ::LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));
    ASSERT_NE(arrow, nullptr);
    ::SetCursor(arrow);
    ASSERT_TRUE(combine(foreign.settings));
    EXPECT_THAT(foreign.log(), HasSubstr(" pointer 0\n"));
    EXPECT_EQ(::GetCursor(), arrow);
}
#endif

TEST(PluginCombination, MakesInksFromTheColourWithTheDccCurve) {
    const Installed plugin;
    Foreign foreign;
    const std::string dcc = foreign.writeDcc();
    setPath(foreign.settings.destinationPath, dcc);
    const Combined result = combine(foreign.settings);
    ASSERT_TRUE(result);
    ToneCurve* curve = jKoToneCreateToneCurve(6);
    ASSERT_EQ(jKoToneLoadDccCurve(curve, dcc.c_str()), 1);
    for (int32_t n = 0; n < KOLINK_CMYK_NODES; n += 211) {
        const int32_t c = levelOf(n / 35937), m = levelOf(n / 1089 % 33);
        const int32_t y = levelOf(n / 33 % 33), k = levelOf(n % 33);
        int32_t inks[4];
        jKoToneRGBtoCMYK16(curve, static_cast<uint8_t>((255 - c) * (255 - k) / 255),
                           static_cast<uint8_t>((255 - m) * (255 - k) / 255),
                           static_cast<uint8_t>((255 - y) * (255 - k) / 255), inks);
        for (int32_t& ink : inks) ink = (ink + 8) / 16;
        ASSERT_THAT(unpack(result->grid[n]),
                    ElementsAre(inks[0] & 255, inks[1] & 255, inks[2] & 255, inks[3] & 255))
            << n;
    }
    jKoToneReleaseToneCurve(curve);
}

TEST(PluginCombination, UsesADefaultDccCurveWithoutADestination) {
    const Installed plugin;
    Foreign foreign;
    const Combined result = combine(foreign.settings);
    ASSERT_TRUE(result);
    ToneCurve* curve = jKoToneCreateToneCurve(6);
    int32_t inks[4];
    jKoToneRGBtoCMYK16(curve, 255, 255 - 80, 255, inks);
    for (int32_t& ink : inks) ink = (ink + 8) / 16;
    EXPECT_THAT(at(result, 0, 10, 0, 0), ElementsAre(inks[0], inks[1], inks[2], inks[3]));
    jKoToneReleaseToneCurve(curve);
}

TEST(PluginCombination, FeedsThePlugInWithTheBaseProfilesResult) {
    const Installed plugin;
    Foreign foreign;
    const Combined base(jKoCmykCreateProfile());
    for (uint32_t& word : base->grid) word = 0x10203040;
    jKoCmykSaveProfile(base.get(), foreign.folder.path("base.icc").c_str());
    setPath(foreign.settings.basePath, foreign.folder.path("base.icc"));
    const Combined result = combine(foreign.settings);
    ASSERT_TRUE(result);
    ToneCurve* curve = jKoToneCreateToneCurve(6);
    int32_t inks[4];
    const auto level = [](int32_t ink) {
        return static_cast<uint8_t>((255 - ink) * (255 - 0x40) / 255);
    };
    jKoToneRGBtoCMYK16(curve, level(0x10), level(0x20), level(0x30), inks);
    for (int32_t& ink : inks) ink = (ink + 8) / 16;
    for (int32_t i : {0, 7, 32})
        EXPECT_THAT(at(result, i, 2, i, 5), ElementsAre(inks[0], inks[1], inks[2], inks[3]));
    jKoToneReleaseToneCurve(curve);
}
