// The quick spline beside the plain one: the same bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

#include "tone/tone.h"

namespace {

using Points = std::vector<TonePoint>;

void expectSame(const Points& points, const std::vector<int32_t>& levels) {
    ko::tone::SplineSweep sweep(points);
    for (const int32_t x : levels) ASSERT_EQ(sweep.at(x), ko::tone::splineTone(points, x)) << x;
}

std::vector<int32_t> levelsFrom(int32_t first, int32_t last) {
    std::vector<int32_t> levels;
    for (int32_t x = first; x <= last; ++x) levels.push_back(x);
    return levels;
}

}  // namespace

TEST(SplineSweep, EqualsThePlainSplineForEveryNumberOfPoints) {
    std::mt19937 random(1);
    for (uint32_t count = 0; count <= 256; ++count) {
        Points points;
        for (int32_t x = 0; x < 256; ++x)
            if (random() % 256 < count) points.push_back({x, static_cast<int32_t>(random() % 4081)});
        expectSame(points, levelsFrom(-2, 258));
    }
}

TEST(SplineSweep, EqualsThePlainSplineWhereTheCubicTurnsBack) {
    // The last segment is one level wide: its x falls at first.
    expectSame({{0, 0}, {254, 9}, {255, 255}}, levelsFrom(0, 255));
    expectSame({{-255, 0}, {-128, 9}, {-1, 200}, {0, 255}}, levelsFrom(-255, 0));
}

TEST(SplineSweep, EqualsThePlainSplineForPointsOfAnySizeAndOrder) {
    std::mt19937 random(5);
    constexpr int32_t kExtremes[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, 255, INT_MAX - 1, INT_MAX};
    const auto number = [&] {
        return random() % 2 ? kExtremes[random() % 8] : static_cast<int32_t>(random());
    };
    for (int round = 0; round < 4000; ++round) {
        Points points(random() % 8);
        for (TonePoint& point : points) point = {number(), number()};
        std::vector<int32_t> levels(6);
        for (int32_t& level : levels) level = number();
        std::sort(levels.begin(), levels.end());
        expectSame(points, levels);
    }
}

TEST(SplineSweep, MayLeaveLevelsOutAndAskTwice) {
    expectSame({{0, 10}, {60, 80}, {61, 20}, {200, 230}, {255, 240}},
               {-5, 0, 0, 30, 60, 60, 61, 61, 150, 255, 255, 300});
}
