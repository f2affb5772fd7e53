// Damaged ICC files as sources and destinations of links: a link comes out whole or not at all.
#include <gtest/gtest.h>

#include "tests/link/source_profiles.h"

namespace {
using namespace ko::test;

using Builder = LinkProfile* (*)(const CmsLinkSettings*);

void expectWholeOrNone(Builder build, const CmsLinkSettings& settings) {
    const LinkHolder link(build(&settings));
    if (!link) return;
    for (size_t i = 0; i < gridSize(*link); ++i) ASSERT_LE(link->grid[i], 4095);
}

class DamagedLinkSource : public testing::Test {
protected:
    DamagedLinkSource() {
        writeFile(folder.path("press.icc"), press);
        writeFile(folder.path("scanner.icc"), scanner);
        writeFile(folder.path("monitor.icc"), monitor);
    }
    CmsLinkSettings from(const Bytes& source, const char* destination) const {
        writeFile(folder.path("damaged.icc"), source);
        return settingsFor(folder.path("damaged.icc"), folder.path(destination));
    }
    CmsLinkSettings to(const char* source, const Bytes& destination) const {
        writeFile(folder.path("damaged.icc"), destination);
        return settingsFor(folder.path(source), folder.path("damaged.icc"));
    }
    TempFolder folder;
    const Bytes press = profileBytes({{"wtpt", xyzElement(0xe000, 0xf000, 0xa000)},
                                      {"A2B0", randomLut(4, 3, 1, false, 2)},
                                      {"B2A0", randomLut(3, 4, 2, true, 3)}});
    const Bytes scanner = profileBytes({{"A2B0", randomLut(3, 3, 3, true, 2)}},
                                       profileHeader("scnr", "RGB ", "XYZ "));
    const Bytes monitor = readFile(testData("sRGB-v2-magic.icc"));
};

TEST_F(DamagedLinkSource, GivesAWholeRgbLinkOrNone) {
    for (uint32_t seed = 0; seed < 400; ++seed) {
        expectWholeOrNone(jKoLinkCombineRgbProfile, from(mutated(scanner, seed), "press.icc"));
        expectWholeOrNone(jKoLinkCombineRgbProfile, from(mutated(monitor, seed), "press.icc"));
        expectWholeOrNone(jKoLinkCombineRgbProfile, to("scanner.icc", mutated(press, seed)));
    }
}

TEST_F(DamagedLinkSource, GivesAWholeCmykLinkOrNone) {
    for (uint32_t seed = 0; seed < 15; ++seed) {
        expectWholeOrNone(jKoLinkCombineCmykProfile, from(mutated(press, seed), "press.icc"));
        expectWholeOrNone(jKoLinkCombineCmykProfile, to("press.icc", mutated(press, seed)));
    }
}

TEST_F(DamagedLinkSource, GivesAWholeLinkOrNoneThroughTheSystem) {
    for (uint32_t seed = 0; seed < 60; ++seed) {
        expectWholeOrNone(jKoLinkCombineIcmRgbProfile, from(mutated(monitor, seed), "press.icc"));
        expectWholeOrNone(jKoLinkCombineIcmRgbProfile, to("monitor.icc", mutated(press, seed)));
    }
}

TEST_F(DamagedLinkSource, CutShortGivesAWholeLinkOrNone) {
    forEachTruncation(scanner, 40, [&](const Bytes& bytes) {
        expectWholeOrNone(jKoLinkCombineRgbProfile, from(bytes, "press.icc"));
    });
    forEachTruncation(press, 40, [&](const Bytes& bytes) {
        expectWholeOrNone(jKoLinkCombineRgbProfile, to("scanner.icc", bytes));
        expectWholeOrNone(jKoLinkCombineIcmRgbProfile, to("monitor.icc", bytes));
    });
}

// The matrix of a table and the colorants of a monitor may hold any number.
TEST_F(DamagedLinkSource, WithExtremeNumbersGivesAWholeLink) {
    for (const uint32_t extreme : {0x7fffffffu, 0x80000000u, 0xffffffffu, 0u}) {
        Bytes lut = randomLut(3, 3, 3, true, 2);
        for (size_t at = 12; at < 48; at += 4) put32(lut, at, extreme);
        const Bytes source = profileBytes({{"A2B0", lut}}, profileHeader("scnr", "RGB ", "XYZ "));
        expectWholeOrNone(jKoLinkCombineRgbProfile, from(source, "press.icc"));
        const Bytes curve = curveElement({65535}), colorant = xyzElement(extreme, extreme, extreme);
        Bytes header = profileHeader("mntr", "RGB ", "XYZ ");
        for (size_t at = 68; at < 80; at += 4) put32(header, at, extreme);
        const Bytes matrix = profileBytes({{"rXYZ", colorant},
                                           {"gXYZ", colorant},
                                           {"bXYZ", colorant},
                                           {"rTRC", curve},
                                           {"gTRC", curve},
                                           {"bTRC", curve}},
                                          header);
        const CmsLinkSettings settings = from(matrix, "press.icc");
        EXPECT_TRUE(LinkHolder(jKoLinkCombineRgbProfile(&settings)));
        expectWholeOrNone(jKoLinkCombineRgbProfile, settings);
    }
}

}  // namespace
