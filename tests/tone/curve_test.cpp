// The tone curve record, its interpolation and the colours through it.
#include "tests/tone/curves.h"

#include <gtest/gtest.h>

#include <array>
#include <algorithm>
#include <climits>
#include <cstring>
#include <random>

using namespace ko::test;

namespace {

using Points = std::vector<TonePoint>;

int32_t spline(const Points& points, int32_t x) {
    return jKoToneGetSplineTone(points.data(), static_cast<int32_t>(points.size()), x);
}
int32_t linear(const Points& points, int32_t x) {
    return jKoToneGetLinerTone(points.data(), static_cast<int32_t>(points.size()), x);
}

// A straight transcription of the two steps of a segment, in integers scaled by 2^23, where every
// quantity of the cubic is exact.
int32_t exactCubic(const Points& p, size_t k, int32_t x) {
    const int32_t dx = p[k].x - p[k - 1].x;
    TonePoint c1, c2;
    const auto left = [&] {
        c1 = {p[k - 1].x + dx / 4,
              p[k - 1].y + (p[k].y - p[k - 2].y) * dx / (p[k].x - p[k - 2].x) / 4};
    };
    const auto right = [&] {
        c2 = {p[k].x + (p[k - 1].x - p[k].x) / 4,
              p[k].y + (p[k - 1].y - p[k + 1].y) * dx / (p[k + 1].x - p[k - 1].x) / 4};
    };
    if (k == 1) {
        right();
        c1 = {(p[0].x + c2.x) / 2, (p[0].y + c2.y) / 2};
    } else if (k == p.size() - 1) {
        left();
        c2 = {(p[k].x + c1.x) / 2, (p[k].y + c1.y) / 2};
    } else {
        left();
        right();
    }
    const auto cubic = [](int64_t a, int64_t m, int64_t n, int64_t b, int64_t t) {
        const int64_t u = 256 - t, w = 256 - 2 * t;
        return a * u * u * w + 4 * m * u * u * t + 4 * n * u * t * t - b * t * t * w;
    };
    int64_t t = 0;
    constexpr double kScale = 1.0 / (1 << 24);
    const auto rounded = [&](int64_t value) { return static_cast<float>(static_cast<double>(value) * kScale); };
    while (t < 256 && rounded(cubic(p[k - 1].x, c1.x, c2.x, p[k].x, t)) < static_cast<float>(x)) ++t;
    return static_cast<int32_t>(rounded(cubic(p[k - 1].y, c1.y, c2.y, p[k].y, t)) + 0.5);
}

}  // namespace

TEST(ToneCurve, IsTheIdentityWhenFreshWhateverItsChannelCount) {
    for (const int32_t channels : {1, 2, 3, 4, 6, 16}) {
        const Curve curve = newCurve(channels);
        ASSERT_NE(curve, nullptr);
        for (int32_t channel = 0; channel < channels; ++channel)
            for (int32_t x = 0; x < 256; ++x) {
                ASSERT_EQ(valueOf(curve, channel, x), x);
                ASSERT_EQ(flagOf(curve, channel, x), x == 0 || x == 255);
            }
    }
}

TEST(ToneCurve, IsUntitledAndWithoutPathWhenFresh) {
    const Curve curve = newCurve(1);
    EXPECT_STREQ(curve->title, "\x96\xB3\x91\xE8");
    EXPECT_STREQ(curve->path, "");
    EXPECT_EQ(curve->channelCount, 1);
}

TEST(ToneCurve, OfNoChannelsHasStringsOnly) {
    const Curve curve = newCurve(0);
    ASSERT_NE(curve, nullptr);
    curve->path[0] = 'x';
    EXPECT_EQ(jKoToneInitToneCurve(curve.get()), 1);
    EXPECT_STREQ(curve->path, "");
}

TEST(ToneCurve, InitSetsTheStringsAloneWhenTheChannelCountIsBelowOne) {
    const Curve curve = newCurve(1);
    curve->channelCount = -1;
    valueOf(curve, 0, 7) = 99;
    std::strcpy(curve->title, "x");
    EXPECT_EQ(jKoToneInitToneCurve(curve.get()), 1);
    EXPECT_STREQ(curve->title, "\x96\xB3\x91\xE8");
    EXPECT_EQ(valueOf(curve, 0, 7), 99);
}

TEST(ToneCurve, IsNotMadeOfANegativeOrHugeChannelCount) {
    EXPECT_EQ(jKoToneCreateToneCurve(-1), nullptr);
    EXPECT_EQ(jKoToneCreateToneCurve(1025), nullptr);
    EXPECT_EQ(jKoToneCreateToneCurve(INT_MAX), nullptr);
    EXPECT_EQ(jKoToneCreateToneCurve(INT_MIN), nullptr);
}

TEST(ToneCurve, ReleaseTakesNullAndSaysSo) { EXPECT_EQ(jKoToneReleaseToneCurve(nullptr), 0); }

TEST(ToneCurve, ReleaseSaysOneForACurve) {
    EXPECT_EQ(jKoToneReleaseToneCurve(jKoToneCreateToneCurve(4)), 1);
}

TEST(ToneCurve, ReleaseTakesACurveWithoutTable) {
    ToneCurve* curve = jKoToneCreateToneCurve(1);
    jMemFree(curve->table);
    curve->table = nullptr;
    EXPECT_EQ(jKoToneReleaseToneCurve(curve), 1);
}

TEST(ToneCurve, CallsWithoutATableAreHarmless) {
    ToneCurve curve{};
    curve.channelCount = 6;
    int32_t cmyk[4] = {1, 2, 3, 4};
    EXPECT_EQ(jKoToneInitToneCurve(&curve), 1);
    EXPECT_EQ(jKoToneEncodeToneCurve(&curve, 1, 255), 1);
    EXPECT_EQ(jKoToneRGBtoCMYK16(&curve, 0, 0, 0, cmyk), 0);
    EXPECT_EQ(cmyk[0], 1);
}

TEST(ToneCurve, CallsWithoutACurveAreHarmless) {
    int32_t cmyk[4] = {};
    EXPECT_EQ(jKoToneInitToneCurve(nullptr), 1);
    EXPECT_EQ(jKoToneEncodeToneCurve(nullptr, 1, 255), 1);
    EXPECT_EQ(jKoToneCMYKtoCMYK(nullptr, cmyk), 0);
    EXPECT_EQ(jKoToneRGBtoCMYK16(nullptr, 0, 0, 0, cmyk), 0);
}

TEST(Spline, OfThreePointsGivesTheKnownValues) {
    const Points points = {{0, 0}, {128, 200}, {255, 255}};
    EXPECT_EQ(spline(points, 0), 0);
    EXPECT_EQ(spline(points, 64), 113);
    EXPECT_EQ(spline(points, 128), 200);
    EXPECT_EQ(spline(points, 200), 242);
    EXPECT_EQ(spline(points, 255), 255);
}

TEST(Spline, OfTwoPointsIsAStraightLine) {
    const Points points = {{0, 10}, {255, 200}};
    for (int32_t x = 0; x < 256; ++x) EXPECT_EQ(spline(points, x), linear(points, x)) << x;
    EXPECT_EQ(spline(points, 128), static_cast<int32_t>(190 * 128 / 255.0 + 10.5));
}

TEST(Spline, OfTwoPointsPrefersTheNearestValueHalvesUp) {
    const Points points = {{0, 0}, {4, 2}};
    EXPECT_EQ(spline(points, 1), 1);  // 0.5
    EXPECT_EQ(spline(points, 3), 2);  // 1.5
}

TEST(Spline, RoundsANegativeResultTowardZero) {
    const Points points = {{0, 0}, {4, -7}};
    EXPECT_EQ(spline(points, 1), -1);  // -1.75 + 0.5
    EXPECT_EQ(spline(points, 2), -3);  // -3.5 + 0.5
    EXPECT_EQ(linear(points, 1), -1);
}

TEST(Spline, OfNoneOrOnePointIsZeroEverywhere) {
    const TonePoint point{10, 20};
    for (const int32_t x : {INT_MIN, -1, 0, 10, 255, INT_MAX})
        for (const int32_t count : {INT_MIN, -1, 0, 1}) {
            EXPECT_EQ(jKoToneGetSplineTone(&point, count, x), 0);
            EXPECT_EQ(jKoToneGetLinerTone(&point, count, x), 0);
        }
}

TEST(Spline, IsZeroOutsideThePoints) {
    const Points points = {{16, 50}, {100, 60}, {240, 70}};
    for (const int32_t x : {INT_MIN, -1, 0, 15, 241, 255, INT_MAX}) {
        EXPECT_EQ(spline(points, x), 0);
        EXPECT_EQ(linear(points, x), 0);
    }
    EXPECT_EQ(spline(points, 16), 50);
    EXPECT_EQ(spline(points, 240), 70);
}

TEST(Spline, GoesThroughItsFirstPointExactly) {
    const Points points = {{3, 17}, {90, 211}, {170, 40}, {251, 99}};
    EXPECT_EQ(spline(points, 3), 17);
}

TEST(Spline, IsTheStatedCubicForAnyUsualPoints) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        Points points;
        const auto density = 2 + random() % 60;
        for (int32_t x = 0; x < 256; ++x)
            if (random() % density == 0) points.push_back({x, static_cast<int32_t>(random() % 4081)});
        if (points.size() < 3) continue;
        size_t k = 1;
        for (int32_t x = points.front().x; x <= points.back().x; ++x) {
            while (x > points[k].x) ++k;
            ASSERT_EQ(spline(points, x), exactCubic(points, k, x)) << "round " << round << " x " << x;
        }
    }
}

TEST(Spline, ChangesAtMostFourSegmentsWithOnePoint) {
    Points points;
    for (int32_t x = 0; x <= 240; x += 16) points.push_back({x, x});
    const Points before = points;
    points[8].y += 30;  // at 128: the segments from 96 to 160 may move
    for (int32_t x = 0; x <= 240; ++x)
        if (x <= 96 || x >= 160) {
            EXPECT_EQ(spline(points, x), spline(before, x)) << x;
        }
    EXPECT_NE(spline(points, 110), spline(before, 110));
    EXPECT_NE(spline(points, 150), spline(before, 150));
}

TEST(Spline, ReadsItsPointsOnly) {
    Points points = {{0, 0}, {100, 90}, {255, 255}};
    const Points before = points;
    (void)spline(points, 50);
    EXPECT_EQ(std::memcmp(points.data(), before.data(), sizeof(TonePoint) * points.size()), 0);
}

TEST(Spline, GivesSomeResultForPointsThatShareAnX) {
    EXPECT_EQ(spline({{5, 7}, {5, 9}}, 5), 7);
    EXPECT_EQ(linear({{5, 7}, {5, 9}}, 5), 7);
    EXPECT_EQ(spline({{5, 7}, {5, 9}, {5, 11}}, 5), 7);
    EXPECT_EQ(spline({{0, 0}, {128, 50}, {128, 90}, {255, 255}}, 128), 50);
    EXPECT_EQ(linear({{0, 0}, {128, 50}, {128, 90}, {255, 255}}, 128), 50);
}

TEST(Spline, GivesSomeResultForPointsOfAnySizeAndOrder) {
    std::mt19937 random(11);
    constexpr int32_t kExtremes[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, 255, INT_MAX - 1, INT_MAX};
    const auto number = [&] {
        return random() % 2 ? kExtremes[random() % 8] : static_cast<int32_t>(random());
    };
    for (int round = 0; round < 20000; ++round) {
        Points points(random() % 8);
        for (TonePoint& point : points) point = {number(), number()};
        const int32_t x = number();
        (void)spline(points, x);
        (void)linear(points, x);
    }
    EXPECT_EQ(linear({{INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}}, INT_MAX), INT_MAX);  // saturates
}

TEST(Linear, IsTheStraightLineOfTheSegment) {
    const Points points = {{0, 0}, {100, 50}, {200, 250}};
    EXPECT_EQ(linear(points, 50), 25);
    EXPECT_EQ(linear(points, 100), 50);
    EXPECT_EQ(linear(points, 150), 150);
    EXPECT_EQ(linear(points, 199), 248);
    EXPECT_EQ(linear(points, 200), 250);
}

TEST(Encode, KeepsFlagsAndControlValues) {
    const Curve curve = newCurve(1);
    mark(curve, 0, 128, 200);
    EXPECT_EQ(jKoToneEncodeToneCurve(curve.get(), 1, 255), 1);
    EXPECT_EQ(valueOf(curve, 0, 0), 0);
    EXPECT_EQ(valueOf(curve, 0, 64), 113);
    EXPECT_EQ(valueOf(curve, 0, 128), 200);
    EXPECT_EQ(valueOf(curve, 0, 200), 242);
    EXPECT_EQ(valueOf(curve, 0, 255), 255);
    for (int32_t x = 0; x < 256; ++x) EXPECT_EQ(flagOf(curve, 0, x), x == 0 || x == 128 || x == 255);
}

TEST(Encode, OfAFreshCurveIsTheIdentity) {
    for (const int32_t mode : {0, 1, 2}) {
        const Curve curve = newCurve(4);
        const auto before = tableOf(curve);
        jKoToneEncodeToneCurve(curve.get(), mode, 255);
        EXPECT_EQ(tableOf(curve), before) << mode;
    }
}

TEST(Encode, LeavesZeroOutsideTheOutermostControlPoints) {
    for (const int32_t mode : {0, 1}) {
        const Curve curve = newCurve(1);
        flagOf(curve, 0, 0) = flagOf(curve, 0, 255) = 0;
        mark(curve, 0, 16, 100);
        mark(curve, 0, 240, 200);
        jKoToneEncodeToneCurve(curve.get(), mode, 255);
        for (int32_t x = 0; x < 256; ++x)
            if (x < 16 || x > 240) {
                EXPECT_EQ(valueOf(curve, 0, x), 0) << x;
            } else {
                EXPECT_GE(valueOf(curve, 0, x), 100) << x;
            }
    }
}

TEST(Encode, UsesStraightLinesForAnyModeButOne) {
    for (const int32_t mode : {0, 2, -1}) {
        const Curve curve = newCurve(1);
        mark(curve, 0, 128, 200);
        jKoToneEncodeToneCurve(curve.get(), mode, 255);
        EXPECT_EQ(valueOf(curve, 0, 64), 100) << mode;
    }
}

TEST(Encode, ClampsToZeroAndTheLargestValue) {
    const Curve curve = newCurve(1);
    mark(curve, 0, 64, -300);
    mark(curve, 0, 192, 4000);
    jKoToneEncodeToneCurve(curve.get(), 1, 1000);
    EXPECT_EQ(valueOf(curve, 0, 64), 0);
    EXPECT_EQ(valueOf(curve, 0, 192), 1000);
}

TEST(Encode, TakesAnyNonZeroFlagForAControlPoint) {
    const Curve curve = newCurve(1);
    mark(curve, 0, 128, 200);
    flagOf(curve, 0, 128) = -7;
    jKoToneEncodeToneCurve(curve.get(), 1, 255);
    EXPECT_EQ(valueOf(curve, 0, 64), 113);
}

TEST(Encode, TreatsEachChannelByItself) {
    const Curve curve = newCurve(4);
    mark(curve, 2, 128, 200);
    jKoToneEncodeToneCurve(curve.get(), 1, 255);
    for (const int32_t channel : {0, 1, 3}) EXPECT_EQ(valueOf(curve, channel, 64), 64);
    EXPECT_EQ(valueOf(curve, 2, 64), 113);
}

TEST(Encode, WithNoControlPointGivesZeros) {
    const Curve curve = newCurve(1);
    flagOf(curve, 0, 0) = flagOf(curve, 0, 255) = 0;
    jKoToneEncodeToneCurve(curve.get(), 1, 255);
    for (int32_t x = 0; x < 256; ++x) EXPECT_EQ(valueOf(curve, 0, x), 0);
}

TEST(Encode, IsTheSplineOfTheGatheredPointsForAnyFlags) {
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        const Curve curve = newCurve(1);
        const auto density = 1 + random() % 40;
        Points points;
        for (int32_t x = 0; x < 256; ++x) {
            flagOf(curve, 0, x) = random() % density == 0;
            valueOf(curve, 0, x) = static_cast<int16_t>(random() % (round % 2 ? 65536 : 256));
            if (flagOf(curve, 0, x)) points.push_back({x, valueOf(curve, 0, x)});
        }
        jKoToneEncodeToneCurve(curve.get(), 1, 4080);
        for (int32_t x = 0; x < 256; ++x)
            ASSERT_EQ(valueOf(curve, 0, x), std::clamp(spline(points, x), 0, 4080)) << round << ' ' << x;
    }
}

TEST(CmykThroughACurve, LooksUpEachChannel) {
    const Curve curve = newCurve(4);
    for (int32_t channel = 0; channel < 4; ++channel) valueOf(curve, channel, 100) = static_cast<int16_t>(channel + 1);
    int32_t cmyk[4] = {100, 100, 100, 100};
    EXPECT_EQ(jKoToneCMYKtoCMYK(curve.get(), cmyk), 1);
    for (int32_t channel = 0; channel < 4; ++channel) EXPECT_EQ(cmyk[channel], channel + 1);
}

TEST(CmykThroughACurve, TakesLevelsOutsideAsTheNearest) {
    const Curve curve = newCurve(4);
    int32_t cmyk[4] = {INT_MIN, -1, 256, INT_MAX};
    EXPECT_EQ(jKoToneCMYKtoCMYK(curve.get(), cmyk), 1);
    EXPECT_EQ(cmyk[0], 0);
    EXPECT_EQ(cmyk[1], 0);
    EXPECT_EQ(cmyk[2], 255);
    EXPECT_EQ(cmyk[3], 255);
}

TEST(CmykThroughACurve, RefusesACurveOfSixChannels) {
    for (const int32_t channels : {1, 3, 5, 6}) {
        const Curve curve = newCurve(channels);
        int32_t cmyk[4] = {9, 8, 7, 6};
        EXPECT_EQ(jKoToneCMYKtoCMYK(curve.get(), cmyk), 0);
        EXPECT_EQ(cmyk[0], 9);
        EXPECT_EQ(cmyk[3], 6);
    }
}

TEST(RgbThroughDcc, RefusesACurveOfFourChannels) {
    const Curve curve = newCurve(4);
    int32_t cmyk[4] = {9, 8, 7, 6};
    EXPECT_EQ(jKoToneRGBtoCMYK16(curve.get(), 1, 2, 3, cmyk), 0);
    EXPECT_EQ(cmyk[0], 9);
    EXPECT_EQ(cmyk[3], 6);
}

TEST(RgbThroughDcc, LooksUpEveryChannelAtZeroForWhite) {
    const Curve curve = newCurve(6);
    for (int32_t channel = 0; channel < 4; ++channel)
        valueOf(curve, channel, 0) = static_cast<int16_t>(100 + channel);
    int32_t cmyk[4] = {};
    EXPECT_EQ(jKoToneRGBtoCMYK16(curve.get(), 255, 255, 255, cmyk), 1);
    for (int32_t channel = 0; channel < 4; ++channel) EXPECT_EQ(cmyk[channel], 100 + channel);
}

TEST(RgbThroughDcc, TakesUcrOutAndPutsGcrIn) {
    const Curve curve = newCurve(6);
    valueOf(curve, 4, 40) = 16 * 30;       // black for a grey component of 40
    valueOf(curve, 5, 40) = 16 * 35 + 15;  // the division truncates
    int32_t cmyk[4] = {};
    EXPECT_EQ(jKoToneRGBtoCMYK16(curve.get(), 255 - 40, 255 - 60, 255 - 200, cmyk), 1);
    EXPECT_EQ(cmyk[0], 5);
    EXPECT_EQ(cmyk[1], 25);
    EXPECT_EQ(cmyk[2], 165);
    EXPECT_EQ(cmyk[3], 30);
}

TEST(RgbThroughDcc, RaisesAnInkToZeroWhenMoreIsTakenOutThanThereIs) {
    const Curve curve = newCurve(6);
    valueOf(curve, 5, 40) = 16 * 50;
    int32_t cmyk[4] = {};
    jKoToneRGBtoCMYK16(curve.get(), 255 - 40, 255 - 60, 255 - 200, cmyk);
    EXPECT_EQ(cmyk[0], 0);
    EXPECT_EQ(cmyk[1], 10);
}

TEST(RgbThroughDcc, StaysInTheTableWhateverGcrAndUcrHold) {
    for (const int value : {-32768, -4081, -16, 4096, 32767}) {
        const Curve curve = newCurve(6);
        for (int32_t x = 0; x < 256; ++x)
            valueOf(curve, 4, x) = valueOf(curve, 5, x) = static_cast<int16_t>(value);
        int32_t cmyk[4] = {-1, -1, -1, -1};
        EXPECT_EQ(jKoToneRGBtoCMYK16(curve.get(), 0, 128, 255, cmyk), 1);
        for (const int32_t ink : cmyk) EXPECT_TRUE(ink >= 0 && ink <= 255);
        EXPECT_EQ(cmyk[3], value < 0 ? 0 : 255);
    }
}

TEST(RgbThroughDcc, WorksWithMoreThanSixChannels) {
    const Curve curve = newCurve(8);
    int32_t cmyk[4] = {};
    EXPECT_EQ(jKoToneRGBtoCMYK16(curve.get(), 0, 0, 0, cmyk), 1);
}
