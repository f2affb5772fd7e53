// Curves and grid from damaged LUTs, without a file between.
#include <gtest/gtest.h>

#include "cmyk/load.h"
#include "icc/icc.h"
#include "tests/cmyk/support.h"

namespace ko::test {
namespace {

TEST(CmykLut, CurvesOfAnyShapeStayInsideTheBlock) {
    const auto profile = cmyk::createProfile();
    for (int32_t inputs = 0; inputs <= 5; ++inputs)
        for (int32_t outputs = 0; outputs <= 5; ++outputs)
            for (const int32_t precision : {1, 2})
                for (const int32_t inputEntries : {0, 1, 2, 3, 255, 256, 257, 4096})
                    for (const int32_t outputEntries : {0, 1, 2, 256, 4096}) {
                        const auto lut = icc::makeLut({inputs, outputs, 1, precision, inputEntries, outputEntries});
                        ASSERT_NE(lut, nullptr);
                        cmyk::takeCurves(*profile, *lut);
                    }
}

TEST(CmykLut, CurvesOfDamagedTablesStayInsideTheBlock) {
    const auto profile = cmyk::createProfile();
    const Bytes lut = smallLut16(5, 7, [](int, int e) { return static_cast<uint32_t>(e) * 9000; });
    const auto source = icc::parseHeader(iccFile({{"A2B0", lut}}));
    ASSERT_NE(source, nullptr);
    for (uint32_t variant = 0; variant < 3000; ++variant) {
        Bytes bytes = iccFile({{"A2B0", mutated(lut, variant)}});
        const auto data = icc::decodeTag(*source, bytes, 0x41324230);
        if (data) cmyk::takeCurves(*profile, *static_cast<const IccLut*>(data.get()));
    }
}

TEST(CmykLut, GridOfAnyShapeStaysInsideTheBlock) {
    const auto profile = cmyk::createProfile();
    for (const int32_t inputs : {0, 1, 2, 3})
        for (const int32_t outputs : {0, 1, 3, 4, 15}) {
            const auto lut = icc::makeLut({inputs, outputs, 33, 1});
            ASSERT_NE(lut, nullptr);
            profile->grid[KOLINK_CMYK_NODES - 1] = 5;
            cmyk::takeGrid(*profile, *lut);
            EXPECT_EQ(profile->grid[KOLINK_CMYK_NODES - 1], 0u) << inputs << ' ' << outputs;
        }
}

}  // namespace
}  // namespace ko::test
