// The bridge between two profiles, where combinations and links differ.
#include "icc/pair.h"

#include <gtest/gtest.h>

namespace {
using namespace ko::icc;

// Far from every grey: b is some 500 levels above the scale.
constexpr int32_t kBright[4] = {32768, 32768, 0, 7};

std::array<int32_t, 4> crossed(const Crossing& crossing, const int32_t (&from)[4] = kBright) {
    std::array<int32_t, 4> values;
    std::copy(std::begin(from), std::end(from), values.begin());
    crossing.cross(values);
    return values;
}

TEST(Crossing, EndsAtTheScaleWhicheverWayItOverflows) {
    for (const auto overflow : {Overflow::saturates, Overflow::wraps})
        for (const int32_t value : crossed({.bridge = Bridge::xyzToLab, .overflow = overflow})) {
            EXPECT_GE(value, 0);
            EXPECT_LE(value, 65535);
        }
}

TEST(Crossing, SaturatesOrWrapsWhatNoWholeLevelHolds) {
    // A white of almost nothing makes a and b of billions, which times 256 pass 32 bits.
    Crossing crossing{.bridge = Bridge::xyzToLab, .white = {1e-20, 1e-20, 1e-20}};
    EXPECT_EQ(crossed(crossing)[2], 65535);
    crossing.overflow = Overflow::wraps;
    EXPECT_EQ(crossed(crossing)[2], 0);
}

TEST(Crossing, LeavesTheFourthValueToAChangeOfPrecisionAlone) {
    EXPECT_EQ(crossed({.bridge = Bridge::xyzToLab})[3], 7);
    EXPECT_EQ(crossed({.bridge = Bridge::labToXyz})[3], 7);
    EXPECT_EQ(crossed({.from = 1, .to = 2}, {1, 2, 255, 7}), (std::array{256, 512, 65280, 1792}));
    EXPECT_EQ(crossed({.from = 2, .to = 1}, {256, 513, 65535, 1792}), (std::array{1, 2, 255, 7}));
}

TEST(Crossing, TakesTheWhiteOfTheMediumToItsLightness) {
    const int32_t white[4] = {31595, 32768, 27030, 0};
    const auto lab = crossed({.bridge = Bridge::xyzToLab, .white = kUsualD50}, white);
    EXPECT_EQ(lab[0], 65280);
    EXPECT_NE(crossed({.bridge = Bridge::xyzToLab, .white = {50, 50, 50}}, white)[0], 65280);
}

TEST(ReadyLut, IsNoneForAShapeThatCannotBeEvaluated) {
    auto lut = makeLut({.inputChannels = 3, .outputChannels = 4, .gridPoints = 1, .precision = 1});
    ASSERT_TRUE(lut);
    EXPECT_FALSE(ReadyLut(*lut));
    EXPECT_EQ(lut->workTable, nullptr);
}

TEST(ReadyLut, ClosesWhatItSetUp) {
    auto lut = makeLut({.inputChannels = 3, .outputChannels = 4, .gridPoints = 2, .precision = 1});
    ASSERT_TRUE(lut);
    {
        ReadyLut first(*lut);
        ASSERT_TRUE(first);
        const ReadyLut second = std::move(first);
        EXPECT_FALSE(first);
        EXPECT_NE(lut->workTable, nullptr);
    }
    EXPECT_EQ(lut->workTable, nullptr);
}

}  // namespace
