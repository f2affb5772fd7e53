// LUT evaluation through the exported functions.
#include <gmock/gmock.h>

#include <array>
#include <limits>

#include "kolink/memory.h"
#include "tests/icc/lut_builder.h"

using ko::test::LutSpec;
using ko::test::MadeLut;
using testing::ElementsAre;

namespace {

constexpr int32_t kRowSlots = 8;

using Colour = std::array<int32_t, 4>;

Colour colour(const IccLut* lut, Colour values) {
    jIccLutColor(lut, values.data());
    return values;
}
Colour colour16(const IccLut* lut, Colour values) {
    jIccLutColor16(lut, values.data());
    return values;
}
int32_t slot(MadeLut& lut, int32_t row, int32_t slot) {
    int32_t value;
    std::memcpy(&value, static_cast<const uint8_t*>(lut->workTable) + (row * kRowSlots + slot) * 4, 4);
    return value;
}
// One input, one output, two grid points 0 and the maximum, identity curves.
MadeLut& makeRamp(MadeLut& lut) { return lut.identity(); }
constexpr LutSpec kRamp8{1, 1, 2, 1, 256, 256};
constexpr LutSpec kRamp16{1, 1, 2, 2, 256, 256};

}  // namespace

TEST(IccLutSetup, RefusesNoLut) { EXPECT_EQ(jIccLutSetup(nullptr), 0); }

TEST(IccLutSetup, CopiesTheCurvesOfAnEightBitTableRowByRow) {
    MadeLut lut({4, 4, 2, 1});
    lut.wild(1);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    const auto* in = static_cast<const uint8_t*>(lut->inputTables);
    const auto* out = static_cast<const uint8_t*>(lut->outputTables);
    for (int32_t r = 0; r < 256; ++r) {
        for (int32_t i = 0; i < 4; ++i) {
            ASSERT_EQ(slot(lut, r, i), in[i * 256 + r]);
            ASSERT_EQ(slot(lut, r, 4 + i), out[i * 256 + r]);
        }
    }
}

TEST(IccLutSetup, RepeatsTheLastRowOnceMore) {
    MadeLut narrow({2, 2, 2, 1}), wide({2, 2, 2, 2});
    narrow.wild(2), wide.wild(3);
    ASSERT_EQ(jIccLutSetup(narrow.get()), 1);
    ASSERT_EQ(jIccLutSetup(wide.get()), 1);
    for (int32_t i = 0; i < kRowSlots; ++i) {
        EXPECT_EQ(slot(narrow, 256, i), slot(narrow, 255, i));
        EXPECT_EQ(slot(wide, 16384, i), slot(wide, 16383, i));
    }
}

TEST(IccLutSetup, PlacesEntryJOf4096AtRowJTimes16383Over4095) {
    MadeLut lut({1, 1, 2, 2, 4096, 4096});
    lut.wild(4);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    for (int32_t j = 0; j < 4096; ++j) {
        uint16_t entry;
        std::memcpy(&entry, static_cast<const uint8_t*>(lut->inputTables) + j * 2, 2);
        ASSERT_EQ(slot(lut, j * 16383 / 4095, 0), entry) << j;
    }
}

TEST(IccLutSetup, FillsRowsOnTheStraightLineBetweenTheNearestEntries) {
    MadeLut lut({1, 1, 2, 2, 4096, 4096});
    lut.wild(5);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    for (int32_t j = 0; j + 1 < 4096; ++j) {
        const int32_t p = j * 16383 / 4095, q = (j + 1) * 16383 / 4095;
        ASSERT_TRUE(q - p == 4 || q - p == 5) << "three or four rows lie between";
        const int32_t low = slot(lut, p, 4), high = slot(lut, q, 4);
        for (int32_t r = p + 1; r < q; ++r)
            ASSERT_EQ(slot(lut, r, 4), low + (high - low) * (r - p) / (q - p)) << r;
    }
}

TEST(IccLutSetup, DividesAFallingLineTowardZero) {
    MadeLut lut({1, 1, 2, 2, 2, 2});
    lut.setInput(0, 0, 10), lut.setInput(0, 1, 0);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    EXPECT_EQ(slot(lut, 1, 0), 10) << "-10 / 16383 is 0, not -1";
    EXPECT_EQ(slot(lut, 1639, 0), 9);
    EXPECT_EQ(slot(lut, 16383, 0), 0);
}

TEST(IccLutSetup, KeepsTheLastOfSeveralEntriesOfOneRow) {
    constexpr int32_t kEntries = 3 * 16384;
    MadeLut lut({1, 1, 2, 2, kEntries, 2});
    for (int32_t j = 0; j < kEntries; ++j) lut.setInput(0, j, j & 0xffff);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    int32_t last = 0;
    for (int32_t j = 0; j < kEntries; ++j)
        if (static_cast<int32_t>(int64_t{j} * 16383 / (kEntries - 1)) == 7000) last = j & 0xffff;
    EXPECT_EQ(slot(lut, 7000, 0), last);
}

TEST(IccLutSetup, TakesACurveOfOneEntryAsAConstant) {
    MadeLut lut({1, 1, 2, 2, 1, 1});
    lut.setInput(0, 0, 4711), lut.setOutput(0, 0, 815);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    for (int32_t r : {0, 1, 8000, 16384}) {
        EXPECT_EQ(slot(lut, r, 0), 4711);
        EXPECT_EQ(slot(lut, r, 4), 815);
    }
}

TEST(IccLutSetup, TakesACurveWithoutEntriesAsTheIdentity) {
    MadeLut lut({1, 1, 2, 2, 0, 0});
    lut.identityGrid();
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    for (int32_t v : {0, 4, 20000, 65532}) {
        EXPECT_NEAR(colour(lut.get(), {v})[0], v, 6);
        EXPECT_NEAR(colour16(lut.get(), {v})[0], v, 3);
    }
    EXPECT_EQ(colour(lut.get(), {65535})[0], 65535);
}

TEST(IccLutSetup, LeavesSlotsWithoutAChannelZero) {
    MadeLut lut({1, 1, 2, 2});
    lut.wild(6);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    for (int32_t r : {0, 5000, 16384})
        for (int32_t i : {1, 2, 3, 5, 6, 7}) EXPECT_EQ(slot(lut, r, i), 0);
}

TEST(IccLutSetup, ReadsSixteenBitEntriesAtOddAddresses) {
    MadeLut even({3, 3, 5, 2}), odd({3, 3, 5, 2, 256, 256, 1});
    even.wild(7), odd.wild(7);
    ASSERT_EQ(jIccLutSetup(even.get()), 1);
    ASSERT_EQ(jIccLutSetup(odd.get()), 1);
    EXPECT_EQ(colour(even.get(), {100, 40000, 65535}), colour(odd.get(), {100, 40000, 65535}));
    EXPECT_EQ(colour16(even.get(), {100, 40000, 65535}), colour16(odd.get(), {100, 40000, 65535}));
}

TEST(IccLutSetup, RefusesChannelCountsOutside1To4) {
    for (int32_t channels : {-1, 0, 5, 15, 255, std::numeric_limits<int32_t>::max()}) {
        MadeLut inputs(kRamp8), outputs(kRamp8);
        makeRamp(inputs)->inputChannels = channels;
        makeRamp(outputs)->outputChannels = channels;
        EXPECT_EQ(jIccLutSetup(inputs.get()), 0) << channels;
        EXPECT_EQ(jIccLutSetup(outputs.get()), 0) << channels;
        EXPECT_EQ(inputs.workTable(), nullptr);
    }
}

TEST(IccLutSetup, RefusesAGridThatHasNoCellsOrMoreThanItsScale) {
    for (int32_t gridPoints : {std::numeric_limits<int32_t>::min(), -1, 0, 1, 257, 65536,
                               std::numeric_limits<int32_t>::max()}) {
        MadeLut lut(kRamp8);
        makeRamp(lut)->gridPoints = gridPoints;
        EXPECT_EQ(jIccLutSetup(lut.get()), 0) << gridPoints;
    }
    MadeLut all({1, 1, 256, 1});
    EXPECT_EQ(jIccLutSetup(all.identity().get()), 1);
    EXPECT_EQ(colour(all.get(), {77})[0], 77);
}

TEST(IccLutSetup, RefusesAGridThatPassesTheAddressSpace) {
    MadeLut lut(kRamp16);
    makeRamp(lut)->gridPoints = 65536;
    lut->inputChannels = lut->outputChannels = 4;
    EXPECT_EQ(jIccLutSetup(lut.get()), 0);
}

TEST(IccLutSetup, RefusesOtherPrecisionsEntryCountsAndMissingTables) {
    const auto refuses = [](const LutSpec& spec, auto change) {
        MadeLut lut(spec);
        change(*makeRamp(lut).get());
        return jIccLutSetup(lut.get()) == 0 && lut->workTable == nullptr;
    };
    EXPECT_TRUE(refuses(kRamp16, [](IccLut& lut) { lut.precision = 0; }));
    EXPECT_TRUE(refuses(kRamp16, [](IccLut& lut) { lut.precision = 4; }));
    EXPECT_TRUE(refuses(kRamp8, [](IccLut& lut) { lut.inputEntries = 255; }));
    EXPECT_TRUE(refuses(kRamp8, [](IccLut& lut) { lut.outputEntries = 0; }));
    EXPECT_TRUE(refuses(kRamp16, [](IccLut& lut) { lut.inputEntries = -1; }));
    EXPECT_TRUE(refuses(kRamp16, [](IccLut& lut) { lut.outputEntries = -2; }));
    EXPECT_TRUE(refuses(kRamp16, [](IccLut& lut) { lut.inputTables = nullptr; }));
    EXPECT_TRUE(refuses(kRamp16, [](IccLut& lut) { lut.clut = nullptr; }));
    EXPECT_TRUE(refuses(kRamp16, [](IccLut& lut) { lut.outputTables = nullptr; }));
}

TEST(IccLutSetup, CalledTwiceKeepsOneWorkTable) {
    MadeLut lut(kRamp16);  // the leak check of the sanitized build watches the first table
    ASSERT_EQ(jIccLutSetup(makeRamp(lut).get()), 1);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    EXPECT_EQ(jIccLutClose(lut.get()), 1);
    EXPECT_EQ(jIccLutClose(lut.get()), 0);
}

TEST(IccLutSetup, DoesNotFreeWhatARecordHeldBeforeItsFirstSetUp) {
    MadeLut lut(kRamp16);
    int32_t notOurs = 0;
    makeRamp(lut)->workTable = &notOurs;
    EXPECT_EQ(jIccLutSetup(lut.get()), 1);
    EXPECT_NE(lut.workTable(), &notOurs);
}

TEST(IccLutSetup, LeavesTheWorkTableOfACopiedRecordToItsOwner) {
    MadeLut lut(kRamp16);
    ASSERT_EQ(jIccLutSetup(makeRamp(lut).get()), 1);
    IccLut copy = *lut.get();
    ASSERT_EQ(jIccLutSetup(&copy), 1);
    EXPECT_NE(static_cast<void*>(copy.workTable), lut.workTable());
    EXPECT_EQ(colour(lut.get(), {65535})[0], 65535);
    EXPECT_EQ(jIccLutClose(&copy), 1);
}

TEST(IccLutSetup, LeavesNoWorkTableWhenTheSecondCallRefuses) {
    MadeLut lut(kRamp16);
    ASSERT_EQ(jIccLutSetup(makeRamp(lut).get()), 1);
    lut->outputChannels = 5;
    EXPECT_EQ(jIccLutSetup(lut.get()), 0);
    EXPECT_EQ(lut.workTable(), nullptr);
    EXPECT_EQ(jIccLutClose(lut.get()), 0);
}

TEST(IccLutClose, ReturnsZeroWhenThereIsNoWorkTable) {
    MadeLut lut(kRamp8);
    EXPECT_EQ(jIccLutClose(makeRamp(lut).get()), 0);
    EXPECT_EQ(jIccLutClose(nullptr), 0);
}

TEST(IccLutClose, FreesTheWorkTableOnce) {
    MadeLut lut(kRamp8);
    ASSERT_EQ(jIccLutSetup(makeRamp(lut).get()), 1);
    EXPECT_EQ(jIccLutClose(lut.get()), 1);
    EXPECT_EQ(lut.workTable(), nullptr);
    EXPECT_EQ(jIccLutClose(lut.get()), 0);
}

TEST(IccLutColor, WithoutAWorkTableLeavesTheValuesAndReturnsZero) {
    MadeLut lut(kRamp8);
    Colour values{1, 2, 3, 4};
    EXPECT_EQ(jIccLutColor(makeRamp(lut).get(), values.data()), 0);
    EXPECT_EQ(jIccLutColor16(lut.get(), values.data()), 0);
    EXPECT_EQ(jIccLutColor(nullptr, values.data()), 0);
    EXPECT_EQ(jIccLutColor16(nullptr, values.data()), 0);
    EXPECT_THAT(values, ElementsAre(1, 2, 3, 4));
}

TEST(IccLutColor, ReturnsTheNumberOfOutputChannelsAndChangesNoMore) {
    for (int32_t inputs = 1; inputs <= 4; ++inputs) {
        for (int32_t outputs = 1; outputs <= 4; ++outputs) {
            MadeLut lut({inputs, outputs, 3, 2});
            ASSERT_EQ(jIccLutSetup(lut.wild(11).get()), 1);
            Colour values{50001, 50002, 50003, 50004};
            EXPECT_EQ(jIccLutColor(lut.get(), values.data()), outputs);
            for (int32_t k = outputs; k < 4; ++k) EXPECT_EQ(values[k], 50001 + k);
            EXPECT_EQ(jIccLutColor16(lut.get(), values.data()), outputs);
            for (int32_t k = outputs; k < 4; ++k) EXPECT_EQ(values[k], 50001 + k);
        }
    }
}

TEST(IccLutColor, KeepsTheIdentityOnAnEightBitTable) {
    for (int32_t inputs = 1; inputs <= 4; ++inputs) {
        MadeLut lut({inputs, inputs, 18, 1});  // 255 / 17 is whole: no rounding of nodes
        ASSERT_EQ(jIccLutSetup(lut.identity().get()), 1);
        for (int32_t v = 0; v < 256; ++v) {
            const Colour result = colour(lut.get(), {v, 255 - v, v / 2, 255 - v / 2});
            EXPECT_EQ(result[0], v) << inputs;
            EXPECT_TRUE(inputs < 4 || result[3] == 255 - v / 2);
        }
    }
}

TEST(IccLutColor, LooksCurvesUpWithoutInterpolation) {
    MadeLut lut({1, 1, 2, 2, 16384, 16384});
    lut.identity();
    lut.setInput(0, 100, 30000);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    const int32_t at100 = slot(lut, 30000 / 4, 4);
    for (int32_t v = 400; v < 404; ++v) EXPECT_EQ(colour(lut.get(), {v})[0], at100);
    EXPECT_NE(colour(lut.get(), {404})[0], at100);
    EXPECT_NE(colour(lut.get(), {399})[0], at100);
}

TEST(IccLutColor, UsesTheLastCellAtTheTopOfTheScale) {
    for (int32_t precision : {1, 2}) {
        for (int32_t inputs = 1; inputs <= 4; ++inputs) {
            MadeLut lut({inputs, 1, 9, precision});
            lut.identityCurves();
            lut.setNode(lut.nodes() - 1, 0, 200);
            for (int32_t e = 0; e < 256; ++e) lut.setOutput(0, e, e);
            ASSERT_EQ(jIccLutSetup(lut.get()), 1);
            const int32_t top = lut.maximum();
            const int32_t expected = precision == 1 ? 200 : slot(lut, 200 / 4, 4);
            EXPECT_EQ(colour(lut.get(), {top, top, top, top})[0], expected);
        }
    }
}

TEST(IccLutColor, TakesValuesOutsideTheScaleAsItsEnds) {
    for (int32_t precision : {1, 2}) {
        for (int32_t inputs = 1; inputs <= 4; ++inputs) {
            MadeLut lut({inputs, 4, 5, precision});
            ASSERT_EQ(jIccLutSetup(lut.wild(8).get()), 1);
            const int32_t top = lut.maximum();
            const auto lowest = std::numeric_limits<int32_t>::min();
            const auto highest = std::numeric_limits<int32_t>::max();
            EXPECT_EQ(colour(lut.get(), {lowest, highest, -1, top + 1}),
                      colour(lut.get(), {0, top, 0, top}));
        }
    }
}

TEST(IccLutColor, SumsInDoubleBeforeItsOneDivision) {
    // Four 16-bit inputs: entry times weight passes 2^53, so that the order of the sum shows.
    MadeLut lut({4, 1, 2, 2, 16384, 16384});
    lut.identityCurves();
    const int32_t entries[16] = {65535, 1, 65533, 3, 65531, 5, 65529, 7,
                                 65527, 9, 65525, 11, 65523, 13, 65521, 15};
    for (size_t node = 0; node < 16; ++node) lut.setNode(node, 0, entries[node]);
    for (int32_t e = 0; e < 16384; ++e) lut.setOutput(0, e, e);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    const Colour values{4444, 55555, 33333, 12344};
    int32_t v[4];
    for (int32_t i = 0; i < 4; ++i) v[i] = slot(lut, values[i] / 4, i);
    double sum = 0;
    for (int32_t corner = 0; corner < 16; ++corner) {
        double weight = corner & 8 ? v[0] : 65535 - v[0];
        weight = weight * (corner & 4 ? v[1] : 65535 - v[1]);
        weight = weight * (corner & 2 ? v[2] : 65535 - v[2]);
        weight = weight * (corner & 1 ? v[3] : 65535 - v[3]);
        sum = sum + entries[corner] * weight;
    }
    const double volume = 65535.0 * 65535.0 * 65535.0 * 65535.0;
    EXPECT_EQ(colour(lut.get(), values)[0], static_cast<int32_t>(sum / volume) / 4);
}

TEST(IccLutColor, TruncatesBetweenNodes) {
    MadeLut lut({1, 1, 2, 1});
    lut.identityCurves();
    lut.setNode(0, 0, 10), lut.setNode(1, 0, 11);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    EXPECT_EQ(colour(lut.get(), {254})[0], 10);
    EXPECT_EQ(colour(lut.get(), {255})[0], 11);
}

TEST(IccLutColor, BlendsFourInputsOverSixteenCorners) {
    MadeLut lut({4, 1, 2, 1});
    lut.identityCurves();
    for (size_t node = 0; node < 16; ++node) lut.setNode(node, 0, static_cast<int32_t>(node * 17));
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    // Bits of the node number weigh 136, 68, 34, 17: channel 0 is the slowest.
    EXPECT_EQ(colour(lut.get(), {255, 0, 0, 0})[0], 136);
    EXPECT_EQ(colour(lut.get(), {0, 255, 0, 0})[0], 68);
    EXPECT_EQ(colour(lut.get(), {0, 0, 255, 0})[0], 34);
    EXPECT_EQ(colour(lut.get(), {0, 0, 0, 255})[0], 17);
    EXPECT_EQ(colour(lut.get(), {51, 102, 153, 204})[0],
              (136 * 51 + 68 * 102 + 34 * 153 + 17 * 204) / 255);
}

TEST(IccLutColor, CutsThreeInputsIntoSixTetrahedra) {
    // Corners 1 (third axis), 2, 4 carry odd values, so that each path of axes shows.
    MadeLut lut({3, 1, 2, 1});
    lut.identityCurves();
    const int32_t corner[8] = {0, 40, 90, 130, 20, 200, 110, 255};
    for (size_t node = 0; node < 8; ++node) lut.setNode(node, 0, corner[node]);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    const auto expected = [&](float a, float b, float c, int32_t first, int32_t second) {
        const double fa = a, fb = b, fc = c;
        return static_cast<int32_t>(corner[0] * (1 - fa) + corner[first] * (fa - fb) +
                                    corner[second] * (fb - fc) + corner[7] * fc);
    };
    const float high = 200 / 255.0f, middle = 120 / 255.0f, low = 30 / 255.0f;
    EXPECT_EQ(colour(lut.get(), {200, 120, 30})[0], expected(high, middle, low, 4, 6));
    EXPECT_EQ(colour(lut.get(), {200, 30, 120})[0], expected(high, middle, low, 4, 5));
    EXPECT_EQ(colour(lut.get(), {120, 200, 30})[0], expected(high, middle, low, 2, 6));
    EXPECT_EQ(colour(lut.get(), {30, 200, 120})[0], expected(high, middle, low, 2, 3));
    EXPECT_EQ(colour(lut.get(), {120, 30, 200})[0], expected(high, middle, low, 1, 5));
    EXPECT_EQ(colour(lut.get(), {30, 120, 200})[0], expected(high, middle, low, 1, 3));
}

TEST(IccLutColor, TakesFractionsOfThreeInputsInSinglePrecision) {
    // 1/255 in single precision is a little above: 255 of it reaches 1 where double would not.
    MadeLut lut({3, 1, 2, 1});
    lut.identityCurves();
    for (size_t node = 0; node < 8; ++node) lut.setNode(node, 0, node & 4 ? 255 : 0);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    for (int32_t v = 0; v < 256; ++v) {
        const double f = static_cast<float>(v) / 255.0f;
        EXPECT_EQ(colour(lut.get(), {v, 0, 0})[0], static_cast<int32_t>(255 * f)) << v;
    }
}

TEST(IccLutColor, AppliesTheMatrixWithThreeInputsOnly) {
    const float swap[9] = {0, 1, 0, 1, 0, 0, 0, 0, 1};
    MadeLut three({3, 3, 18, 1}), four({4, 4, 18, 1});
    std::memcpy(three.identity()->matrix, swap, sizeof swap);
    std::memcpy(four.identity()->matrix, swap, sizeof swap);
    ASSERT_EQ(jIccLutSetup(three.get()), 1);
    ASSERT_EQ(jIccLutSetup(four.get()), 1);
    EXPECT_THAT(colour(three.get(), {10, 20, 30, 9}), ElementsAre(20, 10, 30, 9));
    EXPECT_THAT(colour(four.get(), {10, 20, 30, 40}), ElementsAre(10, 20, 30, 40));
    EXPECT_THAT(colour16(three.get(), {2570, 5140, 7710, 9}), ElementsAre(5120, 2560, 7680, 9));
}

TEST(IccLutColor, TruncatesWhatTheMatrixGivesTowardZero) {
    MadeLut lut({3, 3, 18, 1});
    lut.identity()->matrix[0] = 0.999f;
    lut->matrix[4] = 1.999f;
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    EXPECT_THAT(colour(lut.get(), {100, 50, 30, 0}), ElementsAre(99, 99, 30, 0));
}

TEST(IccLutColor, SurvivesAnyMatrix) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (float entry : {infinity, -infinity, nan, 3e38f, -3e38f, -1.0f}) {
        MadeLut lut({3, 4, 5, 2});
        lut.wild(9);
        for (int32_t i = 0; i < 9; ++i) lut->matrix[i] = entry;
        ASSERT_EQ(jIccLutSetup(lut.get()), 1);
        for (int32_t value : colour(lut.get(), {65535, 1, 700, 0})) {
            EXPECT_GE(value, 0);
            EXPECT_LE(value, 65535);
        }
        for (int32_t value : colour16(lut.get(), {65535, 1, 700, 0})) EXPECT_GE(value, 0);
    }
}

TEST(IccLutColor16, ReadsRow128For0x8000) {
    MadeLut lut({1, 1, 2, 1});
    lut.identityCurves();
    lut.setNode(1, 0, 255);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    // 128 * 256 = 32768 before the grid; half of 255 * 256 after it; the output curve keeps it.
    const double width = 65535 * 0.0625, distance = 32768 * 0.0625;
    EXPECT_EQ(colour16(lut.get(), {0x8000})[0],
              static_cast<int32_t>(255 * 256.0 * distance / width));
}

TEST(IccLutColor16, InterpolatesCurvesOfEightBitTables) {
    MadeLut lut({1, 1, 2, 1});
    lut.identityCurves();
    lut.setInput(0, 10, 50), lut.setInput(0, 11, 20);
    lut.setNode(1, 0, 255);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    const int32_t v = 50 * 256 + (20 - 50) * 77;
    EXPECT_EQ(colour16(lut.get(), {10 * 256 + 77})[0],
              static_cast<int32_t>(65280.0 * (v * 0.0625) / (65535 * 0.0625)));
}

TEST(IccLutColor16, InterpolatesCurvesOfSixteenBitTablesInQuarters) {
    MadeLut lut({1, 1, 2, 2, 16384, 16384});
    lut.identityCurves();
    lut.setInput(0, 10, 1001), lut.setInput(0, 11, 1000);
    lut.setNode(1, 0, 65535);
    for (int32_t e = 0; e < 16384; ++e) lut.setOutput(0, e, e * 4 > 65535 ? 65535 : e * 4);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    EXPECT_EQ(colour16(lut.get(), {40})[0], 1001);
    EXPECT_EQ(colour16(lut.get(), {41})[0], 1000) << "1000.75 is truncated";
    EXPECT_EQ(colour16(lut.get(), {43})[0], 1000);
}

TEST(IccLutColor16, MapsTheTopmostInputsToTheLastSample) {
    for (int32_t precision : {1, 2}) {
        MadeLut lut({1, 1, 2, precision});
        ASSERT_EQ(jIccLutSetup(lut.identity().get()), 1);
        const int32_t last = precision == 1 ? 255 * 256 : 65535;
        const int32_t step = precision == 1 ? 256 : 4;
        const int32_t top = colour16(lut.get(), {65536 - step})[0];
        for (int32_t v = 65536 - step; v < 65536; ++v) EXPECT_EQ(colour16(lut.get(), {v})[0], top);
        EXPECT_LE(top, last);
    }
}

TEST(IccLutColor16, UsesTheLastCellAtTheTopOfTheScale) {
    for (int32_t inputs = 1; inputs <= 4; ++inputs) {
        MadeLut lut({inputs, 1, 9, 2});
        lut.identityCurves();
        lut.setNode(lut.nodes() - 1, 0, 60000);
        ASSERT_EQ(jIccLutSetup(lut.get()), 1);
        const int32_t row = 60000 / 4;
        EXPECT_NEAR(colour16(lut.get(), {65535, 65535, 65535, 65535})[0], slot(lut, row, 4), 1);
    }
}

TEST(IccLutColor16, BlendsThreeInputsOverEightCorners) {
    MadeLut lut({3, 1, 2, 2});
    lut.identityCurves();
    for (size_t node = 0; node < 8; ++node) lut.setNode(node, 0, node == 7 ? 65535 : 0);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    // Trilinear: half of each axis is an eighth; tetrahedra would give a half.
    EXPECT_NEAR(colour16(lut.get(), {32768, 32768, 32768})[0], 8192, 16);
    EXPECT_NEAR(colour(lut.get(), {32768, 32768, 32768})[0], 32768, 260);
}

TEST(IccLutColor16, DividesEveryCornerByTheVolume) {
    MadeLut lut({2, 1, 2, 2});
    lut.identityCurves();
    const int32_t entries[4] = {65535, 13, 4711, 60001};
    for (size_t node = 0; node < 4; ++node) lut.setNode(node, 0, entries[node]);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    for (int32_t v = 1; v < 65536; v += 997) {
        const double w = 65535 * 0.0625;
        const auto curve = [&](int32_t value, int32_t i) {
            const int32_t low = slot(lut, value / 4, i), high = slot(lut, value / 4 + 1, i);
            return static_cast<int32_t>((high - low) * (value % 4) * 0.25 + low);
        };
        const double d0 = curve(v, 0) * 0.0625, d1 = curve(65535 - v, 1) * 0.0625;
        double sum = 0;
        sum = sum + entries[0] * ((w - d0) * (w - d1)) / (w * w);
        sum = sum + entries[1] * ((w - d0) * d1) / (w * w);
        sum = sum + entries[2] * (d0 * (w - d1)) / (w * w);
        sum = sum + entries[3] * (d0 * d1) / (w * w);
        const int32_t blended = static_cast<int32_t>(sum);
        const int32_t low = slot(lut, blended / 4, 4), high = slot(lut, blended / 4 + 1, 4);
        ASSERT_EQ(colour16(lut.get(), {v, 65535 - v})[0],
                  static_cast<int32_t>((high - low) * (blended % 4) * 0.25 + low))
            << v;
    }
}

TEST(IccLutColor16, ExtendsTheFirstStepBelowZero) {
    MadeLut lut({1, 1, 2, 1});
    lut.identityCurves();
    for (int32_t e = 0; e < 256; ++e) lut.setInput(0, e, e == 0 ? 100 : 50);
    lut.setNode(1, 0, 255);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    const auto grid = [](int32_t v) { return static_cast<int32_t>(65280.0 * (v * 0.0625) / (65535 * 0.0625)); };
    EXPECT_EQ(colour16(lut.get(), {-10})[0], grid(100 * 256 + 50 * 10));
    EXPECT_EQ(colour16(lut.get(), {-255})[0], grid(100 * 256 + 50 * 255));
    EXPECT_EQ(colour16(lut.get(), {-100000})[0], grid(100 * 256 + 50 * 255)) << "the range ends";
}

TEST(IccLutColor16, LimitsWhatGoesIntoTheGridToItsScale) {
    MadeLut lut({1, 1, 2, 1});
    lut.identityCurves();
    lut.setInput(0, 0, 255), lut.setInput(0, 1, 0);  // -255 would reach 255 * 511
    lut.setNode(1, 0, 255);
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    EXPECT_EQ(colour16(lut.get(), {-255})[0], 65280);
    lut.setInput(0, 0, 0), lut.setInput(0, 1, 255);  // and here it would fall below 0
    ASSERT_EQ(jIccLutSetup(lut.get()), 1);
    EXPECT_EQ(colour16(lut.get(), {-255})[0], 0);
}

TEST(IccLutColor16, NeverPassesTheTopOfTheScale) {
    // Where every node is at the top, rounding can only stay there or fall one below.
    for (int32_t precision : {1, 2}) {
        for (int32_t inputs = 1; inputs <= 4; ++inputs) {
            MadeLut lut({inputs, 1, 9, precision, 256, 256});
            lut.identityCurves().flatGrid(lut.maximum());
            for (int32_t e = 0; e < 256; ++e) lut.setOutput(0, e, lut.maximum() - e / 255);
            ASSERT_EQ(jIccLutSetup(lut.get()), 1);
            const int32_t top16 = precision == 1 ? 65280 : 65535;
            const int32_t last = (lut.maximum() - 1) * (precision == 1 ? 256 : 1);
            for (int32_t v = 1; v < 65536; v += 1357) {
                const int32_t result = colour16(lut.get(), {v, 65535 - v, v / 2, v / 3})[0];
                EXPECT_GE(result, last) << v;
                EXPECT_LE(result, top16) << v;
                const int32_t own = precision == 1 ? v / 256 : v;
                EXPECT_GE(colour(lut.get(), {own, own / 2, own / 3, own / 5})[0],
                          lut.maximum() - 1);
            }
        }
    }
}

TEST(IccLutColor16, SurvivesEveryInput) {
    for (int32_t precision : {1, 2}) {
        for (int32_t inputs = 1; inputs <= 4; ++inputs) {
            MadeLut lut({inputs, 4, 3, precision});
            ASSERT_EQ(jIccLutSetup(lut.wild(10).get()), 1);
            for (int32_t v : {std::numeric_limits<int32_t>::min(), -65536, -256, -4, -1, 65536,
                              70000, std::numeric_limits<int32_t>::max()}) {
                for (int32_t value : colour16(lut.get(), {v, v, v, v})) {
                    EXPECT_GE(value, 0);
                    EXPECT_LE(value, 65535);
                }
            }
        }
    }
}

// A host may write into a record that it has made ready.
TEST(IccLutColor, LeavesAColourAloneWhenTheGridHasLostItsCells) {
    for (const int32_t inputs : {3, 4}) {
        MadeLut lut({.inputs = inputs, .outputs = 3});
        ASSERT_EQ(jIccLutSetup(lut.get()), 1);
        for (const int32_t points : {1, 0, -1, INT32_MIN}) {
            lut.get()->gridPoints = points;
            int32_t values[4] = {10, 20, 30, 40};
            EXPECT_EQ(jIccLutColor(lut.get(), values), 0) << points;
            EXPECT_EQ(jIccLutColor16(lut.get(), values), 0) << points;
            EXPECT_EQ(values[1], 20);
        }
    }
}
