// Links from RGB to CMYK by the library's own evaluator.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/link/source_profiles.h"

namespace {
using namespace ko::test;

LinkHolder build(const CmsLinkSettings& settings) {
    return LinkHolder(jKoLinkCombineRgbProfile(&settings));
}

// A monitor: three curves, three colorants.
std::vector<Tag> monitorTags(const Bytes& curve) {
    return {{"rXYZ", xyzElement(0x6fa2, 0x38f5, 0x0390)},
            {"gXYZ", xyzElement(0x6299, 0xb785, 0x18da)},
            {"bXYZ", xyzElement(0x24a0, 0x0f84, 0xb6cf)},
            {"rTRC", curve},
            {"gTRC", curve},
            {"bTRC", curve}};
}
Bytes monitor(const std::vector<Tag>& tags, std::string_view connectionSpace = "XYZ ") {
    return profileBytes(tags, profileHeader("mntr", "RGB ", connectionSpace));
}

class RgbLink : public testing::Test {
protected:
    std::string add(const char* name, const Bytes& bytes) const {
        writeFile(folder.path(name), bytes);
        return folder.path(name);
    }
    template <class Convert>
    static void expectNodes(const LinkProfile* link, Convert convert) {
        ASSERT_TRUE(link);
        for (size_t node = 0; node < 4913; ++node)
            ASSERT_EQ(nodeOf(*link, node), convert(inputOf(*link, node))) << node;
    }
    TempFolder folder;
    const std::string lab = add("lab.icc", pressProfile("Lab "));
    const std::string xyz = add("xyz.icc", pressProfile("XYZ "));
    const std::string rgbLab =
        add("rgblab.icc", profileBytes({{"A2B0", randomLut(3, 3, 11)},
                                        {"A2B1", randomLut(3, 3, 12)},
                                        {"A2B2", randomLut(3, 3, 13)}},
                                       profileHeader("scnr", "RGB ", "Lab ")));
    const std::string rgbXyz = add(
        "rgbxyz.icc",
        profileBytes({{"A2B0", randomLut(3, 3, 11)}, {"wtpt", xyzElement(0x8000, 0x8000, 0x8000)}},
                     profileHeader("scnr", "RGB ", "XYZ ")));
};

Colour truncated(const double (&colour)[3]) {
    return {static_cast<int32_t>(colour[0]), static_cast<int32_t>(colour[1]),
            static_cast<int32_t>(colour[2]), 0};
}
constexpr double kHeaderWhite[3] = {0xf6d6 / 65536.0, 1.0, 0xd32d / 65536.0};

TEST_F(RgbLink, HasSeventeenPointsThreeChannelsAndOtherwiseTheFieldsOfANewOne) {
    const LinkHolder link = build(settingsFor(rgbLab, lab));
    ASSERT_TRUE(link);
    const LinkHolder fresh(jKoLinkCreateProfile(3, 17));
    EXPECT_EQ(std::memcmp(link.get(), fresh.get(), offsetof(LinkProfile, grid)), 0);
}

TEST_F(RgbLink, OfProfilesWithOneConnectionSpaceGoesThroughTheirTablesAlone) {
    const FileLut source(rgbLab, "A2B0"), destination(lab, "B2A0");
    expectNodes(build(settingsFor(rgbLab, lab)).get(),
                [&](const Colour& input) { return printed(destination, source(input)); });
}

TEST_F(RgbLink, TakesTheTablesOfItsIntent) {
    CmsLinkSettings settings = settingsFor(rgbLab, lab);
    settings.intent = 2;
    const FileLut source(rgbLab, "A2B2"), destination(lab, "B2A2");
    expectNodes(build(settings).get(),
                [&](const Colour& input) { return printed(destination, source(input)); });
}

TEST_F(RgbLink, FailsForAnIntentOf3AndMore) {
    for (const std::string& source :
         {rgbLab, add("monitor.icc", monitor(monitorTags(curveElement({563}))))}) {
        CmsLinkSettings settings = settingsFor(source, lab);
        for (const int32_t intent : {3, 4, INT32_MAX, -1, INT32_MIN}) {
            settings.intent = intent;
            EXPECT_FALSE(build(settings)) << intent;
        }
    }
}

TEST_F(RgbLink, BridgesXyzToLabInTheFormatsEncodingsAgainstTheHeadersIlluminant) {
    const FileLut source(rgbXyz, "A2B0"), destination(lab, "B2A0");
    expectNodes(build(settingsFor(rgbXyz, lab)).get(), [&](const Colour& input) {
        const Colour pcs = source(input);
        double colour[3] = {static_cast<double>(pcs[0]), static_cast<double>(pcs[1]),
                            static_cast<double>(pcs[2])};
        jIccXYZDecode(colour, 2);
        jIccXYZtoLab(colour, kHeaderWhite);
        jIccLabEncode(colour, 2);
        return printed(destination, truncated(colour));
    });
}

TEST_F(RgbLink, BridgesLabToXyzInTheFormatsEncodingsAgainstTheHeadersIlluminant) {
    const FileLut source(rgbLab, "A2B0"), destination(xyz, "B2A0");
    expectNodes(build(settingsFor(rgbLab, xyz)).get(), [&](const Colour& input) {
        const Colour pcs = source(input);
        double colour[3] = {static_cast<double>(pcs[0]), static_cast<double>(pcs[1]),
                            static_cast<double>(pcs[2])};
        jIccLabDecode(colour, 2);
        jIccLabtoXYZ(colour, kHeaderWhite);
        jIccXYZEncode(colour, 2);
        return printed(destination, truncated(colour));
    });
}

Colour matrixXyz(const std::array<int32_t, 3>& light) {
    const auto fixed = [](uint32_t value) {
        return static_cast<double>(static_cast<float>(value / 65536.0));
    };
    const double colorants[3][3] = {{fixed(0x6fa2), fixed(0x38f5), fixed(0x0390)},
                                    {fixed(0x6299), fixed(0xb785), fixed(0x18da)},
                                    {fixed(0x24a0), fixed(0x0f84), fixed(0xb6cf)}};
    double colour[3];
    for (size_t i = 0; i < 3; ++i)
        colour[i] =
            (colorants[0][i] * light[0] + colorants[1][i] * light[1] + colorants[2][i] * light[2]) /
            255;
    jIccXYZEncode(colour, 2);
    return truncated(colour);
}

// 0, 15, 31, ... 255
std::array<int32_t, 3> eightBits(const Colour& input) {
    return {input[0] / 256, input[1] / 256, input[2] / 256};
}

TEST_F(RgbLink, LeavesLightAsItIsWithAnEmptyCurve) {
    const std::string source = add("linear.icc", monitor(monitorTags(curveElement({}))));
    const FileLut destination(xyz, "B2A0");
    expectNodes(build(settingsFor(source, xyz)).get(), [&](const Colour& input) {
        return printed(destination, matrixXyz(eightBits(input)));
    });
}

TEST_F(RgbLink, RaisesLightToTheGammaOfAOneEntryCurve) {
    for (const uint16_t entry :
         {uint16_t{256}, uint16_t{512}, uint16_t{128}}) {  // 1, 2, 1/2: exact by hand
        const std::string source = add("gamma.icc", monitor(monitorTags(curveElement({entry}))));
        const FileLut destination(xyz, "B2A0");
        expectNodes(build(settingsFor(source, xyz)).get(), [&](const Colour& input) {
            std::array<int32_t, 3> light = eightBits(input);
            for (int32_t& value : light) {
                const double t = value / 255.0;
                value = static_cast<int32_t>((entry == 256   ? t
                                              : entry == 512 ? t * t
                                                             : std::sqrt(t)) *
                                             255);
            }
            return printed(destination, matrixXyz(light));
        });
    }
}

TEST_F(RgbLink, TakesAGammaOf563For2Point19921875) {
    const std::string source = add("gamma.icc", monitor(monitorTags(curveElement({563}))));
    const FileLut destination(xyz, "B2A0");
    expectNodes(build(settingsFor(source, xyz)).get(), [&](const Colour& input) {
        std::array<int32_t, 3> light = eightBits(input);
        for (int32_t& value : light)
            value = static_cast<int32_t>(std::pow(value / 255.0, 2.19921875) * 255);
        return printed(destination, matrixXyz(light));
    });
}

TEST_F(RgbLink, SendsLightThroughASampledCurve) {
    std::vector<uint16_t> entries;
    for (int i = 0; i < 100; ++i) entries.push_back(static_cast<uint16_t>(i * i * 6));
    std::vector<uint32_t> block = {100};
    block.resize(1 + 50);
    std::memcpy(&block[1], entries.data(), 200);
    const std::string source = add("curve.icc", monitor(monitorTags(curveElement(entries))));
    const FileLut destination(xyz, "B2A0");
    expectNodes(build(settingsFor(source, xyz)).get(), [&](const Colour& input) {
        std::array<int32_t, 3> light = eightBits(input);
        for (int32_t& value : light)
            jIccTrcColor(reinterpret_cast<const IccCurve*>(block.data()), &value);
        return printed(destination, matrixXyz(light));
    });
}

TEST_F(RgbLink, BridgesTheMatrixToALabDestination) {
    const std::string source = add("linear.icc", monitor(monitorTags(curveElement({}))));
    const FileLut destination(lab, "B2A0");
    expectNodes(build(settingsFor(source, lab)).get(), [&](const Colour& input) {
        const Colour pcs = matrixXyz(eightBits(input));
        double colour[3] = {static_cast<double>(pcs[0]), static_cast<double>(pcs[1]),
                            static_cast<double>(pcs[2])};
        jIccXYZDecode(colour, 2);
        jIccXYZtoLab(colour, kHeaderWhite);
        jIccLabEncode(colour, 2);
        return printed(destination, truncated(colour));
    });
}

TEST_F(RgbLink, PrefersATableToTheCurves) {
    std::vector<Tag> tags = monitorTags(curveElement({}));
    tags.push_back({"A2B0", randomLut(3, 3, 11)});
    const std::string both = add("both.icc", monitor(tags));
    const FileLut source(both, "A2B0"), destination(xyz, "B2A0");
    expectNodes(build(settingsFor(both, xyz)).get(),
                [&](const Colour& input) { return printed(destination, source(input)); });
}

TEST_F(RgbLink, TakesTheCurvesWhenTheTableIsOfAnotherIntentOrCannotBeEvaluated) {
    const LinkHolder expected =
        build(settingsFor(add("linear.icc", monitor(monitorTags(curveElement({})))), xyz));
    for (const Tag& table :
         {Tag{"A2B1", randomLut(3, 3, 11)}, Tag{"A2B0", randomLut(3, 3, 11, true, 1)},
          Tag{"A2B0", randomLut(4, 3, 11)}}) {
        std::vector<Tag> tags = monitorTags(curveElement({}));
        tags.push_back(table);
        const LinkHolder link = build(settingsFor(add("both.icc", monitor(tags)), xyz));
        ASSERT_TRUE(link);
        EXPECT_EQ(std::memcmp(expected->grid, link->grid, 4913 * 8), 0);
    }
}

TEST_F(RgbLink, FailsForAMatrixSourceThatLacksACurveOrAColorant) {
    for (size_t missing = 0; missing < 6; ++missing) {
        std::vector<Tag> tags = monitorTags(curveElement({563}));
        tags.erase(tags.begin() + static_cast<std::ptrdiff_t>(missing));
        EXPECT_FALSE(build(settingsFor(add("part.icc", monitor(tags)), lab))) << missing;
    }
}

TEST_F(RgbLink, FailsForWrongColourSpacesAndASourceConnectionSpaceThatIsNeitherLabNorXyz) {
    EXPECT_FALSE(build(settingsFor(lab, lab)));
    EXPECT_FALSE(build(settingsFor(rgbLab, rgbLab)));
    EXPECT_FALSE(
        build(settingsFor(add("odd.icc", monitor(monitorTags(curveElement({})), "RGB ")), lab)));
}

TEST_F(RgbLink, AcceptsADestinationWhoseConnectionSpaceIsNeitherLabNorXyz) {
    EXPECT_TRUE(build(settingsFor(rgbLab, add("odd.icc", pressProfile("Luv ")))));
}

TEST_F(RgbLink, FailsForAnEmptyPathANullRecordAndFilesThatAreNotThere) {
    EXPECT_EQ(jKoLinkCombineRgbProfile(nullptr), nullptr);
    EXPECT_FALSE(build(settingsFor("", lab)));
    EXPECT_FALSE(build(settingsFor(rgbLab, "")));
    EXPECT_FALSE(build(settingsFor(folder.path("none.icc"), lab)));
    EXPECT_FALSE(build(settingsFor(rgbLab, folder.path("none.icc"))));
}

TEST_F(RgbLink, GivesWhiteNoInkWithWhiteMode1) {
    CmsLinkSettings settings = settingsFor(rgbLab, lab);
    const LinkHolder converted = build(settings);
    ASSERT_NE(nodeOf(*converted, 4912), Colour{});
    settings.whiteMode = 1;
    const LinkHolder clean = build(settings);
    EXPECT_EQ(nodeOf(*clean, rgbNode(16, 16, 16)), Colour{});
    for (size_t node = 0; node < 4912; ++node)
        ASSERT_EQ(nodeOf(*clean, node), nodeOf(*converted, node));
}

Colour only(Colour colour, std::string_view kept) {
    for (size_t k = 0; k < 4; ++k)
        if (kept.find("CMYK"[k]) == std::string_view::npos) colour[k] = 0;
    return colour;
}

TEST_F(RgbLink, KeepsLightsThatLackOneColourSingleInkWithPreservation1) {
    CmsLinkSettings settings = settingsFor(rgbLab, lab);
    const LinkHolder plain = build(settings);
    settings.preservation = 1;
    const LinkHolder link = build(settings);
    for (int i = 0; i < 16; ++i) {
        for (const auto& [node, inks] : {std::pair{rgbNode(i, 16, 16), "C"},
                                         {rgbNode(16, i, 16), "M"},
                                         {rgbNode(16, 16, i), "Y"}})
            EXPECT_EQ(nodeOf(*link, node), only(nodeOf(*plain, node), inks)) << inks << i;
        for (const size_t node :
             {rgbNode(16, i, i), rgbNode(i, 16, 0), rgbNode(i, 15, 16), rgbNode(i, i, i)})
            EXPECT_EQ(nodeOf(*link, node), nodeOf(*plain, node)) << node;
    }
    EXPECT_EQ(nodeOf(*link, 4912), nodeOf(*plain, 4912));
}

TEST_F(RgbLink, KeepsLightsThatLackTwoColoursToTwoInksWithPreservation2) {
    CmsLinkSettings settings = settingsFor(rgbLab, lab);
    const LinkHolder plain = build(settings);
    settings.preservation = 2;
    const LinkHolder link = build(settings);
    for (int i = 0; i < 16; ++i) {
        const int j = 15 - i;
        for (const auto& [node, inks] : {std::pair{rgbNode(i, 16, 16), "C"},
                                         {rgbNode(16, i, 16), "M"},
                                         {rgbNode(16, 16, i), "Y"},
                                         {rgbNode(16, i, j), "MY"},
                                         {rgbNode(i, 16, j), "CY"},
                                         {rgbNode(i, j, 16), "CM"}})
            EXPECT_EQ(nodeOf(*link, node), only(nodeOf(*plain, node), inks)) << inks << i;
        EXPECT_EQ(nodeOf(*link, rgbNode(i, i, i)), nodeOf(*plain, rgbNode(i, i, i)));
    }
}

TEST_F(RgbLink, FullRedIsATwoInkColour) {
    CmsLinkSettings settings = settingsFor(rgbLab, lab);
    const Colour red = nodeOf(*build(settings), rgbNode(16, 0, 0));
    settings.preservation = 1;
    EXPECT_EQ(nodeOf(*build(settings), rgbNode(16, 0, 0)), red);
    settings.preservation = 2;
    EXPECT_EQ(nodeOf(*build(settings), rgbNode(16, 0, 0)), only(red, "MY"));
}

}  // namespace
