// The prepared LUT gives what the plain evaluator gives, bit by bit, for every kind of table.
#include <gmock/gmock.h>

#include <limits>

#include "icc/lut_fast.h"
#include "tests/icc/lut_builder.h"

using ko::icc::FastLut;
using ko::test::LutSpec;
using ko::test::MadeLut;

namespace {

struct EngineLut : MadeLut {
    explicit EngineLut(const LutSpec& spec) : MadeLut(spec, ko::icc::lutClose) {}
};

int32_t below(std::mt19937& random, int32_t limit) {
    return static_cast<int32_t>((uint64_t{static_cast<uint32_t>(random())} *
                                 static_cast<uint32_t>(limit)) >> 32);
}

// Runs that differ in the last channel, single colours, ends of the scale and beyond them.
std::vector<FastLut::Colour> sampleColours(int32_t maximum, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<FastLut::Colour> colours;
    const auto any = [&] { return below(random, maximum + 1); };
    for (int32_t run = 0; run < 40; ++run) {
        FastLut::Colour colour{any(), any(), any(), 0};
        if (run % 4 == 0) colour[static_cast<size_t>(run / 4 % 3)] = 0;
        if (run % 4 == 1) colour[static_cast<size_t>(run / 4 % 3)] = maximum;
        const int32_t step = maximum == 255 ? 1 : 256;
        for (int32_t k = 0; k < 33; ++k) {
            colour[3] = run % 2 ? (8 * k - k / 32) * step : any();
            colours.push_back(colour);
        }
    }
    for (int32_t i = 0; i < 500; ++i) colours.push_back({any(), any(), any(), any()});
    const int32_t odd[] = {0, 1, maximum - 1, maximum, maximum + 1, -1, -300,
                           std::numeric_limits<int32_t>::min(),
                           std::numeric_limits<int32_t>::max()};
    for (int32_t i = 0; i < 200; ++i)
        colours.push_back({odd[below(random, 9)], odd[below(random, 9)], odd[below(random, 9)],
                           odd[below(random, 9)]});
    return colours;
}

void expectSame(MadeLut& lut, uint32_t seed) {
    ASSERT_TRUE(ko::icc::lutSetup(lut.get()));
    const auto colours = sampleColours(lut.maximum(), seed);
    auto fast = colours;
    FastLut(*lut.get()).colours(fast.data(), fast.size());
    for (size_t i = 0; i < colours.size(); ++i) {
        auto plain = colours[i];
        ko::icc::lutColor(*lut.get(), plain.data());
        ASSERT_EQ(fast[i], plain) << "colour " << i << ": " << colours[i][0] << ", "
                                  << colours[i][1] << ", " << colours[i][2] << ", "
                                  << colours[i][3];
    }
}

std::vector<LutSpec> everyShape() {
    std::vector<LutSpec> shapes;
    for (int32_t precision : {1, 2})
        for (int32_t inputs = 1; inputs <= 4; ++inputs)
            for (int32_t outputs = 1; outputs <= 4; ++outputs)
                for (int32_t gridPoints : {2, 3, 5, 9, 17, 33}) {
                    if (inputs == 4 && gridPoints > 9 && outputs != 3) continue;
                    if (inputs == 4 && gridPoints > 17 && precision == 1) continue;
                    shapes.push_back({inputs, outputs, gridPoints, precision});
                }
    return shapes;
}
std::string nameOf(const LutSpec& s) {
    return std::to_string(s.inputs) + " to " + std::to_string(s.outputs) + ", " +
           std::to_string(s.gridPoints) + " points, " + std::to_string(s.precision) + " bytes";
}

}  // namespace

TEST(FastLut, EqualsThePlainOneOnWildTables) {
    uint32_t seed = 1;
    for (const LutSpec& shape : everyShape()) {
        SCOPED_TRACE(nameOf(shape));
        EngineLut lut(shape);
        expectSame(lut.wild(seed), seed);
        seed += 2;
        if (HasFatalFailure()) return;
    }
}

TEST(FastLut, EqualsThePlainOneOnStraightCurves) {
    uint32_t seed = 1001;
    for (const LutSpec& shape : everyShape()) {
        SCOPED_TRACE(nameOf(shape));
        EngineLut lut(shape);
        expectSame(lut.identityCurves().wildGrid(seed), seed);
        seed += 2;
        if (HasFatalFailure()) return;
    }
}

TEST(FastLut, EqualsThePlainOneWhereResultsAreWholeNumbers) {
    for (const LutSpec& shape : everyShape()) {
        SCOPED_TRACE(nameOf(shape));
        EngineLut lut(shape);
        expectSame(lut.identity(), 7);
        for (int32_t value : {0, 1, 77, lut.maximum() - 1, lut.maximum()}) {
            lut.flatGrid(value);
            expectSame(lut, 8);
        }
        if (HasFatalFailure()) return;
    }
}

TEST(FastLut, EqualsThePlainOneOnGridsOfFewLevels) {
    // Steps of one level or none make results that lie close to whole numbers.
    for (const LutSpec& shape : everyShape()) {
        if (shape.inputs < 3) continue;
        SCOPED_TRACE(nameOf(shape));
        EngineLut lut(shape);
        lut.identityCurves();
        std::mt19937 random(9);
        for (size_t node = 0; node < lut.nodes(); ++node)
            for (int32_t k = 0; k < shape.outputs; ++k) lut.setNode(node, k, 100 + below(random, 2));
        expectSame(lut, 9);
        if (HasFatalFailure()) return;
    }
}

TEST(FastLut, EqualsThePlainOneThroughMatrices) {
    const float matrices[][9] = {{2, -1, 0.25f, -0.5f, 1.5f, 0, 0.1f, 0.2f, 0.7f},
                                 {0, 1, 0, 0, 0, 1, 1, 0, 0},
                                 {-1, 0, 0, 0, -1, 0, 0, 0, -1},
                                 {3e38f, 3e38f, 3e38f, -3e38f, -3e38f, -3e38f, 0, 0, 0},
                                 {std::numeric_limits<float>::quiet_NaN(), 0, 0, 0, 1, 0, 0, 0, 1}};
    for (int32_t precision : {1, 2})
        for (int32_t outputs = 1; outputs <= 4; ++outputs)
            for (const auto& matrix : matrices) {
                EngineLut lut({3, outputs, 5, precision});
                lut.wild(10);
                for (int32_t i = 0; i < 9; ++i) lut->matrix[i] = matrix[i];
                expectSame(lut, 11);
            }
}

TEST(FastLut, EqualsThePlainOneOnTablesAtOddAddresses) {
    for (int32_t inputs : {3, 4}) {
        EngineLut lut({inputs, 3, 5, 2, 256, 256, 1});
        expectSame(lut.wild(12), 12);
    }
}

TEST(FastLut, EqualsThePlainOneOnLargeAndUnusualGrids) {
    for (const LutSpec& shape :
         {LutSpec{3, 3, 65, 2}, LutSpec{3, 1, 130, 2}, LutSpec{4, 1, 45, 1}, LutSpec{4, 1, 66, 1},
          LutSpec{4, 2, 7, 2}, LutSpec{3, 4, 256, 1}, LutSpec{4, 4, 4, 2, 4096, 7}}) {
        SCOPED_TRACE(nameOf(shape));
        EngineLut lut(shape);
        expectSame(lut.wild(13), 13);
    }
}

TEST(FastLut, LeavesValuesAloneBeyondTheOutputs) {
    EngineLut lut({4, 2, 3, 2});
    ASSERT_TRUE(ko::icc::lutSetup(lut.wild(14).get()));
    FastLut::Colour colours[40];
    for (int32_t i = 0; i < 40; ++i) colours[i] = {1, 2, 3, i * 1000};
    FastLut(*lut.get()).colours(colours, 40);
    for (int32_t i = 0; i < 40; ++i) {
        EXPECT_EQ(colours[i][2], 3);
        EXPECT_EQ(colours[i][3], i * 1000);
    }
}
