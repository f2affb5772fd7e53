// Combining through ICC profiles: number forms, connection spaces, white points. Expected nodes
// come from the exported evaluator and the formulas written out here once more. White points
// and matrices are multiples of 1/64, which a file holds exactly.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/cmyk/combine_support.h"

using namespace ko::test;
using testing::ElementsAre;

namespace {

int32_t limited(double value, int32_t maximum) {
    return value <= 0 ? 0 : value >= maximum ? maximum : static_cast<int32_t>(value);
}

struct Pair {
    MadeLut a2b, b2a;
    uint32_t sourceSpace, destinationSpace;
    White white = kD50;

    // One node as the two profiles make it.
    Colour expected(Colour cmyk) {
        const bool narrowSource = a2b.spec().precision == 1;
        const bool narrowDestination = b2a.spec().precision == 1;
        const int32_t maximum = narrowDestination ? 255 : 65535;
        Colour w = cmyk;
        if (!narrowSource)
            for (int32_t& v : w) v *= 256;
        jIccLutColor(a2b.get(), w.data());
        if (sourceSpace == destinationSpace) {
            if (!narrowSource && narrowDestination)
                for (int32_t& v : w) v /= 256;
            if (narrowSource && !narrowDestination)
                for (int32_t& v : w) v *= 256;
        } else {
            const double point[3] = {white[0] * 100.0, white[1] * 100.0, white[2] * 100.0};
            double colour[3];
            if (sourceSpace == signature("XYZ ")) {
                for (int32_t i = 0; i < 3; ++i)
                    colour[i] = w[i] * 100.0 / (narrowSource ? 128 : 32768);
                jIccXYZtoLab(colour, point);
                w[0] = limited(colour[0] * (narrowDestination ? 255 : 65280) / 100, maximum);
                for (int32_t i = 1; i < 3; ++i) {
                    const int32_t level = static_cast<int32_t>(colour[i] + 128);
                    w[i] = limited(narrowDestination ? level : level * 256, maximum);
                }
            } else {
                colour[0] = 100.0 * w[0] / (narrowSource ? 255 : 65280);
                for (int32_t i = 1; i < 3; ++i)
                    colour[i] = (narrowSource ? w[i] : w[i] / 256.0) - 128;
                jIccLabtoXYZ(colour, point);
                for (int32_t i = 0; i < 3; ++i)
                    w[i] = limited(colour[i] * (narrowDestination ? 128 : 32768) / 100, maximum);
            }
        }
        for (int32_t i = 0; i < 3; ++i) w[i] = std::clamp(w[i], 0, maximum);
        jIccLutColor(b2a.get(), w.data());
        if (!narrowDestination)
            for (int32_t& v : w) v /= 256;
        return w;
    }

    void write(const TempFolder& folder, CmsLinkSettings& settings,
               std::vector<std::pair<uint32_t, White>> whites) {
        jIccLutSetup(a2b.get());
        jIccLutSetup(b2a.get());
        IccFile{.connection = sourceSpace, .luts = {{signature("A2B1"), &a2b}}, .whites = whites}.write(
            folder.path("source.icc"));
        IccFile{.connection = destinationSpace, .luts = {{signature("B2A1"), &b2a}}}.write(
            folder.path("printer.icc"));
        setPath(settings.sourcePath, folder.path("source.icc"));
        setPath(settings.destinationPath, folder.path("printer.icc"));
        settings.intent = 1;
    }

    void check(std::vector<std::pair<uint32_t, White>> whites) {
        const TempFolder folder;
        CmsLinkSettings settings = emptySettings();
        write(folder, settings, std::move(whites));
        const Combined result = combine(settings);
        ASSERT_TRUE(result);
        for (int32_t n = 0; n < KOLINK_CMYK_NODES; n += 211) {
            const Colour node{levelOf(n / 35937), levelOf(n / 1089 % 33), levelOf(n / 33 % 33),
                              levelOf(n % 33)};
            const Colour inks = expected(node);
            ASSERT_THAT(unpack(result->grid[n]),
                        ElementsAre(inks[0] & 255, inks[1] & 255, inks[2] & 255, inks[3] & 255))
                << n;
        }
    }
};

Pair pairOf(int32_t sourcePrecision, int32_t destinationPrecision, uint32_t sourceSpace,
            uint32_t destinationSpace) {
    return Pair{MadeLut({4, 3, 5, sourcePrecision}), MadeLut({3, 4, 9, destinationPrecision}),
                sourceSpace, destinationSpace};
}
constexpr uint32_t kLab = signature("Lab "), kXyz = signature("XYZ ");

}  // namespace

TEST(IccCombination, PassesTheSameConnectionSpaceOn) {
    for (int32_t source : {1, 2})
        for (int32_t destination : {1, 2}) {
            Pair pair = pairOf(source, destination, kLab, kLab);
            pair.a2b.wild(1), pair.b2a.wild(2);
            pair.check({});
        }
}

TEST(IccCombination, PassesXyzOnWhenBothProfilesConnectThroughIt) {
    Pair pair = pairOf(2, 1, kXyz, kXyz);
    pair.a2b.wild(3), pair.b2a.wild(4);
    pair.check({{signature("wtpt"), White{0.5f, 0.5f, 0.5f}}});
}

TEST(IccCombination, TurnsXyzOfTheSourceIntoLab) {
    for (int32_t source : {1, 2})
        for (int32_t destination : {1, 2}) {
            Pair pair = pairOf(source, destination, kXyz, kLab);
            pair.a2b.wild(5), pair.b2a.wild(6);
            pair.white = {0.6875f, 0.75f, 0.59375f};
            pair.check({{signature("wtpt"), pair.white}});
        }
}

TEST(IccCombination, TurnsLabOfTheSourceIntoXyz) {
    for (int32_t source : {1, 2})
        for (int32_t destination : {1, 2}) {
            Pair pair = pairOf(source, destination, kLab, kXyz);
            pair.a2b.wild(7), pair.b2a.wild(8);
            pair.white = {0.90625f, 1.0f, 0.703125f};
            pair.check({{signature("wtpt"), pair.white}});
        }
}

TEST(IccCombination, TakesASourceWithoutWhitePointRelativeToD50) {
    Pair pair = pairOf(2, 2, kXyz, kLab);
    pair.a2b.wild(9), pair.b2a.wild(10);
    pair.check({});
}

TEST(IccCombination, TakesTheFirstOfTwoWhitePoints) {
    const TempFolder folder;
    Pair pair = pairOf(2, 2, kXyz, kLab);
    pair.a2b.wild(11), pair.b2a.wild(12);
    CmsLinkSettings settings = emptySettings();
    pair.white = {0.6875f, 0.75f, 0.59375f};
    pair.write(folder, settings, {{signature("wtpt"), pair.white}, {signature("bkpt"), {0.3f, 0.3f, 0.3f}}});
    const Combined once = combine(settings);
    Bytes bytes = readFile(settings.sourcePath);
    for (size_t i = 132; i < 132 + 12 * 3; i += 12)
        if (std::memcmp(&bytes[i], "bkpt", 4) == 0) std::memcpy(&bytes[i], "wtpt", 4);
    writeFile(settings.sourcePath, bytes);
    const Combined twice = combine(settings);
    ASSERT_TRUE(once && twice);
    EXPECT_EQ(std::memcmp(once->grid, twice->grid, sizeof once->grid), 0);
}

TEST(IccCombination, TakesAnUnknownDestinationSpaceForTheOtherOfTheTwo) {
    Pair pair = pairOf(2, 1, kLab, signature("Luv "));
    pair.a2b.wild(13), pair.b2a.wild(14);
    pair.check({{signature("wtpt"), kD50}});
}

TEST(IccCombination, SurvivesAWhitePointOfZero) {
    for (uint32_t space : {kLab, kXyz}) {
        const TempFolder folder;
        Pair pair = pairOf(2, 1, space, space == kLab ? kXyz : kLab);
        pair.a2b.wild(15), pair.b2a.wild(16);
        CmsLinkSettings settings = emptySettings();
        pair.write(folder, settings, {{signature("wtpt"), White{0, 0, 0}}});
        EXPECT_TRUE(combine(settings));
    }
}

TEST(IccCombination, TakesTablesOfOtherChannelCounts) {
    // Channels that a table does not give keep the value before it.
    for (int32_t channels = 1; channels <= 4; ++channels) {
        Pair pair{MadeLut({channels, 5 - channels, 3, 2}), MadeLut({5 - channels, channels, 3, 1}),
                  kLab, kLab};
        pair.a2b.wild(17), pair.b2a.wild(18);
        pair.check({});
    }
}

TEST(IccCombination, TakesAMatrixOfTheDestinationTable) {
    Pair pair = pairOf(2, 1, kXyz, kXyz);
    pair.a2b.wild(19), pair.b2a.wild(20);
    const float matrix[9] = {3.125f, -1.5f, -0.5f, -1.0f, 1.875f, 0.0625f, 0.125f, -0.25f, 1.125f};
    for (int32_t i = 0; i < 9; ++i) pair.b2a->matrix[i] = matrix[i];
    pair.check({});
}

TEST(IccCombination, TakesTheBaseProfileBeforeTheConversion) {
    const TempFolder folder;
    Pair pair = pairOf(2, 1, kLab, kLab);
    pair.a2b.wild(21), pair.b2a.wild(22);
    CmsLinkSettings settings = emptySettings();
    pair.write(folder, settings, {});
    const Combined base(jKoCmykCreateProfile());
    for (size_t n = 0; n < KOLINK_CMYK_NODES; ++n)
        base->grid[n] = static_cast<uint32_t>(n * 2654435761u);
    jKoCmykSaveProfile(base.get(), folder.path("base.icc").c_str());
    setPath(settings.basePath, folder.path("base.icc"));
    const Combined result = combine(settings);
    ASSERT_TRUE(result);
    for (int32_t n = 0; n < KOLINK_CMYK_NODES; n += 211) {
        const Colour inks = pair.expected(unpack(base->grid[n]));
        ASSERT_THAT(unpack(result->grid[n]), ElementsAre(inks[0], inks[1], inks[2], inks[3])) << n;
    }
}
