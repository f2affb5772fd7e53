#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "precise/forward.h"
#include "precise/profile.h"
#include "precise/transform.h"
#include "tests/precise/press.h"

namespace ko::test {
namespace {

using namespace precise;

Bytes parametric(int form, std::initializer_list<double> parameters) {
    Bytes contents;
    append16(contents, static_cast<uint32_t>(form));
    append16(contents, 0);
    for (const double p : parameters)
        append32(contents, static_cast<uint32_t>(static_cast<int32_t>(p * 65536)));
    return element("para", contents);
}

Curve curveOf(const Bytes& bytes) {
    ByteReader in(bytes);
    size_t taken = 0;
    auto curve = parseCurve(in, taken);
    EXPECT_TRUE(curve);
    EXPECT_EQ(taken, bytes.size());
    return curve.value_or(Curve());
}

TEST(PreciseCurve, EveryParametricFormHasItsFormulaAndItsInverse) {
    struct Case {
        Bytes bytes;
        double x, y;
    };
    const Case cases[] = {
        {parametric(0, {2}), 0.5, 0.25},
        {parametric(1, {2, 1, 0.5}), 0.25, 0.5625},
        {parametric(2, {2, 1, 0.5, 0.125}), 0.25, 0.6875},
        {parametric(3, {2, 0.75, 0.25, 0.5, 0.25}), 0.5, 0.390625},
        {parametric(3, {2, 0.75, 0.25, 0.5, 0.25}), 0.125, 0.0625},
        {parametric(4, {2, 0.75, 0.25, 0.5, 0.25, 0.125, 0.0625}), 0.5, 0.515625},
        {parametric(4, {2, 0.75, 0.25, 0.5, 0.25, 0.125, 0.0625}), 0.125, 0.125},
    };
    for (const Case& one : cases) {
        const Curve curve = curveOf(one.bytes);
        EXPECT_NEAR(curve.at(one.x), one.y, 1e-12);
        EXPECT_NEAR(curve.inverse(one.y), one.x, 1e-12);
        EXPECT_NEAR(curve.slope(one.x), (curve.at(one.x + 1e-5) - curve.at(one.x)) * 1e5, 1e-6);
    }
}

TEST(PreciseCurve, ASampledCurveBlendsItsEntriesAndStaysWithinThem) {
    const Curve curve = curveOf(curveElement({0, 65535 / 5, 65535}));
    EXPECT_NEAR(curve.at(0.25), 0.1, 1e-12);
    EXPECT_NEAR(curve.at(0.75), 0.6, 1e-12);
    EXPECT_EQ(curve.at(7), 1);
    EXPECT_EQ(curve.at(-7), 0);
    EXPECT_NEAR(curve.inverse(0.6), 0.75, 1e-12);
}

TEST(PreciseProfile, RefusesWhatIsNoProfile) {
    Problem problem;
    EXPECT_EQ(Profile::parse(Bytes(200), problem), nullptr);
    EXPECT_EQ(problem.code, Trouble::profile);
    EXPECT_EQ(problem.text, "is not an ICC profile");
}

TEST(PreciseProfile, SaysWhichTablesAreThereWhenTheIntentsAreMissing) {
    const auto profile = parsed(profileBytes({{"B2A2", LutElement{.inputs = 3, .outputs = 4}.bytes()}}));
    Problem problem;
    EXPECT_FALSE(profile->fromConnection(Intent::relative, problem));
    EXPECT_EQ(problem.code, Trouble::tables);
    EXPECT_EQ(problem.text, "lacks the table B2A1; it has B2A2");
}

TEST(PreciseProfile, ReadsAnEnglishTextOfSeveral) {
    Bytes contents;
    append32(contents, 2);
    append32(contents, 12);
    append(contents, "deDE");
    append32(contents, 2);
    append32(contents, 40);
    append(contents, "enUS");
    append32(contents, 4);
    append32(contents, 42);
    append16(contents, 'D');
    append16(contents, 0xe9);
    append16(contents, 'K');
    EXPECT_EQ(parsed(profileBytes({{"desc", element("mluc", contents)}}))->description(), "\u00e9K");
}

// mAB of version 4: A curves, a grid with its own number of points an axis, M curves, matrix,
// B curves; each part may be missing.
Bytes newTable(bool withGrid, bool withMatrix) {
    Bytes bytes = element("mAB ");
    for (const int value : {3, 3, 0, 0}) bytes.push_back(static_cast<uint8_t>(value));
    const Bytes gamma = parametric(0, {2});
    const Bytes curves = [&] {
        Bytes three;
        for (int ch = 0; ch < 3; ++ch) three.insert(three.end(), gamma.begin(), gamma.end());
        return three;
    }();
    Bytes matrix;
    for (int at = 0; at < 9; ++at) append32(matrix, at % 4 == 0 ? 0x8000 : 0);
    for (int at = 0; at < 3; ++at) append32(matrix, 0x4000);
    Bytes grid;
    for (int axis = 0; axis < 16; ++axis)
        grid.push_back(static_cast<uint8_t>(axis < 3 ? axis + 2 : 0));
    for (const int value : {2, 0, 0, 0}) grid.push_back(static_cast<uint8_t>(value));
    for (uint32_t a = 0; a < 2; ++a)
        for (uint32_t b = 0; b < 3; ++b)
            for (uint32_t c = 0; c < 4; ++c) {
                append16(grid, a * 65535);
                append16(grid, b * 65535 / 2);
                append16(grid, c * 65535 / 3);
            }
    const auto b = uint32_t{32}, m = b + static_cast<uint32_t>(curves.size()),
               mCurves = m + static_cast<uint32_t>(matrix.size()),
               clut = mCurves + static_cast<uint32_t>(curves.size()),
               a = clut + static_cast<uint32_t>(grid.size());
    append32(bytes, b);
    append32(bytes, withMatrix ? m : 0);
    append32(bytes, withMatrix ? mCurves : 0);
    append32(bytes, withGrid ? clut : 0);
    append32(bytes, withGrid ? a : 0);
    for (const Bytes* part : std::initializer_list<const Bytes*>{&curves, &matrix, &curves, &grid,
                                                                 &curves})
        bytes.insert(bytes.end(), part->begin(), part->end());
    return bytes;
}

TEST(PreciseTable, TheNewTablesPartsComeInOrderAndMayBeMissing) {
    Problem problem;
    const Colour in = {0.6, 0.7, 0.8, 0};
    const auto at = [&](bool grid, bool matrix) {
        const auto pipeline = parseTable(newTable(grid, matrix), 3, 3, problem);
        EXPECT_TRUE(pipeline) << problem.text;
        return pipeline ? pipeline->at(in) : Colour{};
    };
    for (size_t ch = 0; ch < 3; ++ch) {
        const double x = in[ch], square = x * x;
        EXPECT_NEAR(at(false, false)[ch], square, 1e-12);
        EXPECT_NEAR(at(true, false)[ch], square * square, 2e-5);  // the grid's own rounding
        const double offset = 0.5 * square + 0.25;
        EXPECT_NEAR(at(false, true)[ch], offset * offset, 1e-12);
        const double all = 0.5 * square * square + 0.25;
        EXPECT_NEAR(at(true, true)[ch], all * all, 2e-5);
    }
}

TEST(PreciseProfile, TablesOfMultiProcessElementsGiveWayToTheOthersOfTheIntent) {
    Problem problem;
    const auto header = profileHeader("mntr", "RGB ", "Lab ");
    const std::vector<Tag> tags = {{"A2B0", newTable(true, true)}};
    std::vector<Tag> more = tags;
    for (const char* signature : {"D2B0", "D2B1", "B2D0", "B2D1"})
        more.push_back({signature, element("mpet")});
    const auto plain = Profile::parse(profileBytes(tags, header), problem);
    const auto both = Profile::parse(profileBytes(more, header), problem);
    ASSERT_TRUE(plain && both) << problem.text;
    const Colour in = {0.3, 0.6, 0.9, 0};
    EXPECT_EQ(both->toConnection(Intent::relative, problem)->at(in),
              plain->toConnection(Intent::relative, problem)->at(in));
    EXPECT_FALSE(both->fromConnection(Intent::relative, problem));
}

TEST(PreciseTable, AGridThatClaimsMoreThanTheFileHoldsIsRefused) {
    Problem problem;
    Bytes bytes = LutElement{.inputs = 3, .outputs = 3, .gridPoints = 5}.bytes();
    bytes[10] = 255;
    EXPECT_FALSE(parseTable(bytes, 3, 3, problem));
    EXPECT_EQ(problem.code, Trouble::profile);
}

// The same pipeline behind a step that keeps colours as they are, so that nothing is quick.
Evaluator plain(Pipeline pipeline) {
    Pipeline slow = std::move(pipeline);
    Stage curves;
    curves.curves.assign(3, Curve::parametric(3, {1, 1, 0, 1, 0}));
    slow.add(std::move(curves));
    return Evaluator(std::move(slow));
}

TEST(PreciseEvaluator, TheQuickWayAgreesWithThePipelineInValuesSlopesAndKeptPlaces) {
    const auto press = parsed(pressProfileBytes({.gain = 0.21}));
    Problem problem;
    auto pipeline = makeToLab(*press, Intent::relative, problem);
    ASSERT_TRUE(pipeline) << problem.text;
    const Evaluator quick(*pipeline), slow = plain(*pipeline);
    ASSERT_TRUE(quick.isQuick() && quick.hasPlaces());
    ASSERT_FALSE(slow.isQuick());
    std::mt19937 random(5);
    std::vector<float> slab;
    for (int n = 0; n < 2000; ++n) {
        Colour in;
        std::array<Evaluator::Place, kMostChannels> places;
        for (size_t i = 0; i < 4; ++i) {
            in[i] = static_cast<double>(random()) / 4294967296;
            if (n % 8 == 0 && random() % 2 == 0) in[i] = static_cast<double>(random() % 2);
            places[i] = quick.placeOf(i, in[i]);
        }
        const Slopes a = quick.slopesAt(in), b = slow.slopesAt(in);
        const Colour value = quick.at(in);
        quick.slabAt(places[0], slab);
        const Colour inSlab = quick.inSlab(slab, places);
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(inSlab[i], value[i], 1e-4);
            EXPECT_NEAR(value[i], b.value[i], 1e-3);
            EXPECT_NEAR(a.value[i], b.value[i], 1e-3);
            // Between cells either's slopes are right.
            for (size_t j = 0; j < 4 && n % 8 != 0; ++j)
                EXPECT_NEAR(a.slopes[j][i], b.slopes[j][i], 0.02) << n;
        }
    }
    for (const double wild : {-3.0, 7.0, std::nan("")})
        EXPECT_EQ(quick.at({wild, 0, 0, 0}), quick.at({wild > 0 ? 1.0 : 0.0, 0, 0, 0}));
}

void useAll(const Bytes& bytes) {
    Problem problem;
    const auto profile = Profile::parse(bytes, problem);
    if (!profile) return;
    (void)profile->mediaWhite();
    for (int intent = 0; intent < 4; ++intent)
        for (const bool to : {true, false}) {
            Problem here;
            auto pipeline = to ? profile->toConnection(static_cast<Intent>(intent), here)
                               : profile->fromConnection(static_cast<Intent>(intent), here);
            EXPECT_NE(!pipeline, here.code == Trouble::none);
            if (!pipeline) continue;
            const Evaluator evaluator(std::move(*pipeline));
            (void)evaluator.at({0.3, 0.99, 1, 0});
            (void)evaluator.slopesAt({0.3, 0.99, 1, 0});
        }
}

TEST(PreciseDamagedProfile, IsReadOrRefusedWhateverTheBytes) {
    const Bytes good = profileBytes({{"desc", descriptionElement("text")},
                                     {"wtpt", xyzElement(0xf6d6, 0x10000, 0xd32d)},
                                     {"A2B0", newTable(true, true)},
                                     {"A2B1", LutElement{.inputs = 3, .outputs = 3}.bytes()},
                                     {"B2A0", LutElement{.inputs = 3, .outputs = 3, .wide = true}.bytes()},
                                     {"rTRC", parametric(4, {2, 1, 0, 1, 0, 0, 0})},
                                     {"gTRC", curveElement({0, 65535})},
                                     {"bTRC", curveElement({512})}},
                                    profileHeader("mntr", "RGB ", "Lab "));
    useAll(good);
    forEachTruncation(good, 120, useAll);
    std::mt19937 random(11);
    for (int variant = 0; variant < 1500; ++variant) {
        useAll(mutated(good, static_cast<uint32_t>(random())));
    }
}

}  // namespace
}  // namespace ko::test
