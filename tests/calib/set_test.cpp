// The calibration curve set: making, editing and reading it.
#include "tests/calib/sets.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

using namespace ko::test;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// The cubic of one segment as it is stated, written down once more: inner points in double.
float statedSpline(const Tones& p, float x) {
    const size_t n = p.size();
    size_t k = 1;
    while (!(p[k].first >= x)) ++k;
    const auto px = [&](size_t i) { return static_cast<double>(p[i].first); };
    const auto py = [&](size_t i) { return static_cast<double>(p[i].second); };
    const double dx = px(k) - px(k - 1);
    double c1x, c1y, c2x, c2y;
    if (k == 1) {
        c2x = px(1) + (px(0) - px(1)) * 0.25;
        c2y = py(1) + ((py(0) - py(2)) * dx / (px(2) - px(0))) * 0.25;
        c1x = (px(0) + c2x) * 0.5;
        c1y = (py(0) + c2y) * 0.5;
    } else if (k == n - 1) {
        c1x = px(n - 2) + dx * 0.25;
        c1y = py(n - 2) + ((py(n - 1) - py(n - 3)) * dx / (px(n - 1) - px(n - 3))) * 0.25;
        c2x = (px(n - 1) + c1x) * 0.5;
        c2y = (py(n - 1) + c1y) * 0.5;
    } else {
        c1x = px(k - 1) + dx * 0.25;
        c1y = py(k - 1) + ((py(k) - py(k - 2)) * dx / (px(k) - px(k - 2))) * 0.25;
        c2x = px(k) + (px(k - 1) - px(k)) * 0.25;
        c2y = py(k) + ((py(k - 1) - py(k + 1)) * dx / (px(k + 1) - px(k - 1))) * 0.25;
    }
    float lastX = p[k - 1].first, lastY = p[k - 1].second;
    for (int i = 0; i <= 256; ++i) {
        const float t = static_cast<float>(i) / 256.0f, u = 1.0f - t, w = 1.0f - 2.0f * t;
        const auto f = [&](double a, double m, double q, double b) {
            return static_cast<float>(a * u * u * w + 4 * m * u * u * t + 4 * q * u * t * t - b * t * t * w);
        };
        const float xt = f(px(k - 1), c1x, c2x, px(k)), yt = f(py(k - 1), c1y, c2y, py(k));
        if (xt >= x) {
            if (xt == lastX) return yt;
            return static_cast<float>(lastY + (static_cast<double>(x) - lastX) *
                                                  (static_cast<double>(yt) - lastY) /
                                                  (static_cast<double>(xt) - lastX));
        }
        lastX = xt;
        lastY = yt;
    }
    return p[k].second;
}

}  // namespace

TEST(CalibSet, OfThreeChannelsHasNamesIdentityTonesAndReadsOneHundredAtOneHundred) {
    const CalibSet set = newSet(3);
    ASSERT_NE(set, nullptr);
    for (int32_t channel = 0; channel < 3; ++channel) {
        const std::string name = channelOf(set, channel).name;
        EXPECT_TRUE(name.ends_with(' ' + std::to_string(channel + 1))) << name;
        EXPECT_EQ(name.find('%'), name.npos);
        EXPECT_GT(name.size(), 2u);
        EXPECT_EQ(tonesOf(set, channel), (Tones{{0, 0}, {255, 255}}));
        EXPECT_EQ(channelOf(set, channel).lrgb, 0u);
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), channel, 100), 100);
    }
}

TEST(CalibSet, IsPlainWhenFresh) {
    const CalibSet set = newSet(1, 100, 4000);
    EXPECT_STREQ(set->title, "");
    EXPECT_STREQ(set->desc, "");
    EXPECT_STREQ(set->path, "");
    EXPECT_EQ(set->ctype, 1);
    EXPECT_STREQ(set->formatX, "%.0f");
    EXPECT_STREQ(set->formatY, "%.0f");
    int32_t count = 0, range = 0, limit = 0;
    EXPECT_EQ(jKoCalibGetCurveInfo(set.get(), &count, &range, &limit), 1);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(range, 100);
    EXPECT_EQ(limit, 4000);
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {100, 100}}));
    EXPECT_EQ(channelOf(set, 0).tones[2].x, 0);
    EXPECT_EQ(channelOf(set, 0).tones[255].y, 0);
}

TEST(CalibSet, IsNotMadeOfNoneOrSeventeenChannels) {
    for (const int32_t count : {INT_MIN, -1, 0, 17, INT_MAX}) EXPECT_EQ(newSet(count), nullptr) << count;
    EXPECT_NE(newSet(16), nullptr);
}

TEST(CalibSet, TakesRangeAndLimitAsGiven) {
    const CalibSet set = newSet(1, 0, -5);
    EXPECT_EQ(set->range, 0);
    EXPECT_EQ(set->limit, -5);
    EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 0), 0);
}

TEST(CalibSet, InitBringsTheIdentityBack) {
    const CalibSet set = newSet(2, 100, 255);
    jKoCalibSetToneValue(set.get(), 1, 50, 80);
    jKoCalibSetTitle(set.get(), "kept", nullptr);
    EXPECT_EQ(jKoCalibInitCurve(set.get()), 1);
    EXPECT_EQ(tonesOf(set, 1), (Tones{{0, 0}, {100, 100}}));
    EXPECT_EQ(channelOf(set, 1).tones[2].x, 0);
    EXPECT_STREQ(set->title, "kept");
}

TEST(CalibSet, ANullSetFailsEverywhere) {
    uint32_t lrgb = 7;
    char text[260] = "kept";
    EXPECT_EQ(jKoCalibReleaseCurve(nullptr), 0);
    EXPECT_EQ(jKoCalibInitCurve(nullptr), 0);
    EXPECT_EQ(jKoCalibGetCurveInfo(nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(jKoCalibGetToneValue(nullptr, 0, 0), 0.0f);
    EXPECT_EQ(jKoCalibSetToneValue(nullptr, 0, 0, 0), 0);
    EXPECT_EQ(jKoCalibDeleteToneValue(nullptr, 0, 0), 0);
    EXPECT_EQ(jKoCalibSetTitle(nullptr, "", ""), 0);
    EXPECT_EQ(jKoCalibGetTitle(nullptr, text, text), 0);
    EXPECT_EQ(jKoCalibSetToneName(nullptr, 0, "", 0), 0);
    EXPECT_EQ(jKoCalibGetToneName(nullptr, 0, text, &lrgb), 0);
    EXPECT_EQ(jKoCalibGetPath(nullptr, text), 0);
    EXPECT_EQ(jKoCalibSaveCurve(nullptr, "x"), 0);
    EXPECT_EQ(lrgb, 7u);
    EXPECT_STREQ(text, "kept");
}

TEST(CalibSet, AChannelThatIsNotThereFailsEverywhere) {
    const CalibSet set = newSet(3);
    uint32_t lrgb = 7;
    for (const int32_t channel : {INT_MIN, -1, 3, 16, INT_MAX}) {
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), channel, 100), 0.0f);
        EXPECT_EQ(jKoCalibSetToneValue(set.get(), channel, 100, 1), 0);
        EXPECT_EQ(jKoCalibDeleteToneValue(set.get(), channel, 100), 0);
        EXPECT_EQ(jKoCalibSetToneName(set.get(), channel, "x", 1), 0);
        EXPECT_EQ(jKoCalibGetToneName(set.get(), channel, nullptr, &lrgb), 0);
    }
    EXPECT_EQ(lrgb, 7u);
}

TEST(CalibSet, EveryOutputIsOptional) {
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibGetCurveInfo(set.get(), nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(jKoCalibGetTitle(set.get(), nullptr, nullptr), 1);
    EXPECT_EQ(jKoCalibSetTitle(set.get(), nullptr, nullptr), 1);
    EXPECT_EQ(jKoCalibGetToneName(set.get(), 0, nullptr, nullptr), 1);
    EXPECT_EQ(jKoCalibGetPath(set.get(), nullptr), 1);
}

TEST(CalibSet, KeepsTitleAndDescriptionApart) {
    const CalibSet set = newSet(1);
    jKoCalibSetTitle(set.get(), "title", nullptr);
    jKoCalibSetTitle(set.get(), nullptr, "description");
    char title[128], desc[128];
    EXPECT_EQ(jKoCalibGetTitle(set.get(), title, desc), 1);
    EXPECT_STREQ(title, "title");
    EXPECT_STREQ(desc, "description");
}

TEST(CalibSet, CutsTextsAtAWholeCharacter) {
    const CalibSet set = newSet(1);
    jKoCalibSetTitle(set.get(), (std::string(126, 'x') + "\x95\x5C").c_str(), nullptr);
    EXPECT_STREQ(set->title, std::string(126, 'x').c_str());
    jKoCalibSetToneName(set.get(), 0, (std::string(29, 'x') + "\x95\x5C").c_str(), 0);
    EXPECT_STREQ(channelOf(set, 0).name, (std::string(29, 'x') + "\x95\x5C").c_str());
}

TEST(CalibSet, StoresTheColourAlwaysAndTheNameWhenGiven) {
    const CalibSet set = newSet(2);
    EXPECT_EQ(jKoCalibSetToneName(set.get(), 1, "Cyan", 0x00FF8040), 1);
    EXPECT_EQ(jKoCalibSetToneName(set.get(), 1, nullptr, 0x00010203), 1);
    char name[32];
    uint32_t lrgb = 0;
    EXPECT_EQ(jKoCalibGetToneName(set.get(), 1, name, &lrgb), 1);
    EXPECT_STREQ(name, "Cyan");
    EXPECT_EQ(lrgb, 0x00010203u);
}

TEST(CalibSet, GivesItsPath) {
    const CalibSet set = newSet(1);
    std::strcpy(set->path, "folder/file.clb");
    char path[260];
    EXPECT_EQ(jKoCalibGetPath(set.get(), path), 1);
    EXPECT_STREQ(path, "folder/file.clb");
}

TEST(CalibSet, TextsWithoutTerminatorAreEndedInTheCopy) {
    const CalibSet set = newSet(1);
    std::memset(set->title, 't', sizeof set->title);
    std::memset(channelOf(set, 0).name, 'n', sizeof channelOf(set, 0).name);
    std::memset(set->path, 'p', sizeof set->path);
    char title[128], name[32], path[260];
    jKoCalibGetTitle(set.get(), title, nullptr);
    jKoCalibGetToneName(set.get(), 0, name, nullptr);
    jKoCalibGetPath(set.get(), path);
    EXPECT_EQ(std::string(title), std::string(127, 't'));
    EXPECT_EQ(std::string(name), std::string(31, 'n'));
    EXPECT_STREQ(path, "");
}

// Storing tones

TEST(CalibTones, AYAboveTheLimitIsStoredAsTheLimit) {
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 128, 300), 1);
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {128, 255}, {255, 255}}));
}

TEST(CalibTones, AYBelowZeroIsStoredAsZero) {
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 128, -1), 1);
    EXPECT_EQ(tonesOf(set, 0)[1].second, 0);
}

TEST(CalibTones, AnExistingXGetsTheNewYAndTheCountStays) {
    const CalibSet set = newSet(1);
    jKoCalibSetToneValue(set.get(), 0, 128, 100);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 128, 90), 1);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 0, 5), 1);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 255, 250), 1);
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 5}, {128, 90}, {255, 250}}));
}

TEST(CalibTones, AreInsertedBeforeTheFirstGreaterX) {
    const CalibSet set = newSet(1);
    for (const float x : {200.0f, 50.0f, 100.5f, 100.25f}) jKoCalibSetToneValue(set.get(), 0, x, x);
    EXPECT_EQ(tonesOf(set, 0),
              (Tones{{0, 0}, {50, 50}, {100.25f, 100.25f}, {100.5f, 100.5f}, {200, 200}, {255, 255}}));
}

TEST(CalibTones, AnEqualXIsFoundInTheWholeListBeforeInserting) {
    const CalibSet set = newSet(1);
    give(set, 0, {{0, 0}, {200, 1}, {100, 2}, {255, 3}});
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 100, 9), 1);
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {200, 1}, {100, 9}, {255, 3}}));
}

TEST(CalibTones, XOutsideTheRangeIsRefused) {
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, -0.5f, 1), 0);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 255.5f, 1), 0);
    EXPECT_EQ(tonesOf(set, 0).size(), 2u);
}

TEST(CalibTones, AnInfiniteYIsLimitedAsAnyOther) {
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 10, kInfinity), 1);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 20, -kInfinity), 1);
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {10, 255}, {20, 0}, {255, 255}}));
}

TEST(CalibTones, NanAndAnInfiniteXAreRefused) {
    const CalibSet set = newSet(1);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 1, kNan), 0);
    for (const float bad : {kNan, kInfinity, -kInfinity}) {
        EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, bad, 1), 0);
        EXPECT_EQ(jKoCalibDeleteToneValue(set.get(), 0, bad), 0);
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, bad), 0.0f);
    }
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {255, 255}}));
}

TEST(CalibTones, A257thIsRefusedButAnExistingOneStillReplaced) {
    const CalibSet set = newSet(1);
    for (int x = 1; x < 255; ++x)
        ASSERT_EQ(jKoCalibSetToneValue(set.get(), 0, static_cast<float>(x), 1), 1);
    ASSERT_EQ(tonesOf(set, 0).size(), 256u);
    const Tones before = tonesOf(set, 0);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 0.5f, 1), 0);
    EXPECT_EQ(tonesOf(set, 0), before);
    EXPECT_EQ(jKoCalibSetToneValue(set.get(), 0, 7, 99), 1);
    EXPECT_EQ(tonesOf(set, 0)[7].second, 99);
}

TEST(CalibTones, BelongToOneChannelEach) {
    const CalibSet set = newSet(16);
    jKoCalibSetToneValue(set.get(), 15, 128, 7);
    for (int32_t channel = 0; channel < 15; ++channel) EXPECT_EQ(tonesOf(set, channel).size(), 2u);
    EXPECT_EQ(tonesOf(set, 15).size(), 3u);
}

// Deleting tones

TEST(CalibTones, TheEndTonesAreNeverDeleted) {
    const CalibSet set = newSet(1);
    jKoCalibSetToneValue(set.get(), 0, 128, 100);
    EXPECT_EQ(jKoCalibDeleteToneValue(set.get(), 0, 0), 0);
    EXPECT_EQ(jKoCalibDeleteToneValue(set.get(), 0, 255), 0);
    EXPECT_EQ(tonesOf(set, 0).size(), 3u);
}

TEST(CalibTones, AnInnerToneIsDeletedAndItsPlaceZeroed) {
    const CalibSet set = newSet(1);
    jKoCalibSetToneValue(set.get(), 0, 50, 60);
    jKoCalibSetToneValue(set.get(), 0, 128, 100);
    EXPECT_EQ(jKoCalibDeleteToneValue(set.get(), 0, 50), 1);
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {128, 100}, {255, 255}}));
    EXPECT_EQ(channelOf(set, 0).tones[3].x, 0);
    EXPECT_EQ(channelOf(set, 0).tones[3].y, 0);
}

TEST(CalibTones, NothingIsDeletedWithoutAnEqualX) {
    const CalibSet set = newSet(1);
    jKoCalibSetToneValue(set.get(), 0, 50, 60);
    EXPECT_EQ(jKoCalibDeleteToneValue(set.get(), 0, 50.5f), 0);
    EXPECT_EQ(tonesOf(set, 0).size(), 3u);
}

TEST(CalibTones, OfTwoNoneIsDeleted) {
    const CalibSet set = newSet(1);
    give(set, 0, {{5, 5}, {5, 6}});
    EXPECT_EQ(jKoCalibDeleteToneValue(set.get(), 0, 5), 0);
    give(set, 0, {});
    EXPECT_EQ(jKoCalibDeleteToneValue(set.get(), 0, 0), 0);
}

// Reading values

TEST(CalibValue, IsZeroOutsideTheTones) {
    const CalibSet set = newSet(1);
    give(set, 0, {{16, 50}, {100, 60}, {240, 70}});
    for (const int32_t ctype : {1, 2}) {
        set->ctype = ctype;
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 15.9f), 0.0f);
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 240.1f), 0.0f);
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 16), 50);
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 240), 70);
    }
}

TEST(CalibValue, IsZeroForLessThanTwoTones) {
    const CalibSet set = newSet(1);
    for (const int32_t ctype : {1, 2}) {
        set->ctype = ctype;
        give(set, 0, {{5, 5}});
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 5), 0);
        give(set, 0, {});
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 0), 0);
    }
}

TEST(CalibValue, LiesOnTheStraightLineForCtypeTwo) {
    const CalibSet set = newSet(1);
    set->ctype = 2;
    jKoCalibSetToneValue(set.get(), 0, 100, 50);
    EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 50), 25);
    EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 100), 50);
    EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 33), 16.5f);
    EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 200),
              static_cast<float>(50.0 + 205.0 * 100.0 / 155.0));
}

TEST(CalibValue, OfTwoTonesIsAStraightLineUnderTheSplineAsWell) {
    const CalibSet set = newSet(1, 100, 255);
    give(set, 0, {{0, 10}, {100, 200}});
    EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 33), static_cast<float>(10.0 + 33.0 * 190.0 / 100.0));
}

TEST(CalibValue, IsTheStatedCubicForSortedTones) {
    std::mt19937 random(19);
    for (int round = 0; round < 200; ++round) {
        const CalibSet set = newSet(1, 1000, 100000);
        Tones tones;
        float x = 0;
        for (auto count = 3 + random() % 20; count > 0; --count) {
            tones.emplace_back(x, static_cast<float>(random() % 2550) / 7.0f);
            x += 0.1f + static_cast<float>(random() % 400) / 9.0f;
        }
        give(set, 0, tones);
        for (int sample = 0; sample < 40; ++sample) {
            const float at = tones.back().first * static_cast<float>(random() % 1001) / 1000.0f;
            const float stated = std::max(0.0f, statedSpline(tones, at));
            ASSERT_EQ(jKoCalibGetToneValue(set.get(), 0, at), stated) << round << ' ' << at;
        }
    }
}

TEST(CalibValue, GoesThroughItsTones) {
    const CalibSet set = newSet(1);
    give(set, 0, {{0, 3}, {60, 80}, {61, 90}, {200, 130}, {255, 250}});
    for (const auto& [x, y] : tonesOf(set, 0)) EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, x), y);
}

TEST(CalibValue, IsStraightBetweenTwoSamplesOfTheSpline) {
    // Between the samples of a parabola the values lie on one line: the second differences vanish.
    const CalibSet set = newSet(1, 256, 100000);
    give(set, 0, {{0, 0}, {64, 4096}, {128, 16384}, {192, 36864}, {256, 65536}});
    // Inner segment 64..128: 256 samples, four a unit; within one step values rise evenly.
    const float a = jKoCalibGetToneValue(set.get(), 0, 100.0f);
    const float b = jKoCalibGetToneValue(set.get(), 0, 100.0625f);
    const float c = jKoCalibGetToneValue(set.get(), 0, 100.125f);
    EXPECT_EQ(c - b, b - a);
}

TEST(CalibValue, IsClampedToZeroAndTheLimit) {
    const CalibSet set = newSet(1, 255, 200);
    give(set, 0, {{0, -50}, {255, 400}});
    for (const int32_t ctype : {1, 2}) {
        set->ctype = ctype;
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 0), 0);
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 255), 200);
    }
}

TEST(CalibValue, ADivisionByZeroGivesTheLaterTonesY) {
    const CalibSet set = newSet(1);
    give(set, 0, {{5, 7}, {5, 9}});
    for (const int32_t ctype : {1, 2}) {
        set->ctype = ctype;
        EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 5), 9);
    }
    set->ctype = 1;
    give(set, 0, {{0, 10}, {50, 20}, {0, 30}, {100, 40}});  // the first chord runs from 0 to 0
    EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 25), 20);
    set->ctype = 2;
    give(set, 0, {{5, 7}, {5, 9}, {80, 11}});
    EXPECT_EQ(jKoCalibGetToneValue(set.get(), 0, 5), 9);
}

TEST(CalibValue, IsFiniteForTonesOfAnySizeAndOrder) {
    std::mt19937 random(23);
    constexpr float kMax = std::numeric_limits<float>::max();
    constexpr float kExtremes[] = {-kMax, kMax, 0, -0.0f, 1, std::numeric_limits<float>::denorm_min(),
                                   std::numeric_limits<float>::min(), 255};
    const auto number = [&] {
        return random() % 2 ? kExtremes[random() % 8] : static_cast<float>(random() % 256);
    };
    const CalibSet set = newSet(1, 255, INT_MAX);
    for (int round = 0; round < 20000; ++round) {
        Tones tones(random() % 7);
        for (auto& [x, y] : tones) x = number(), y = number();
        give(set, 0, tones);
        set->ctype = static_cast<int32_t>(random() % 2);
        const float value = jKoCalibGetToneValue(set.get(), 0, number());
        ASSERT_TRUE(value >= 0 && value <= 2147483648.0f) << value;
    }
}

TEST(CalibValue, SurvivesCountsThatLie) {
    const CalibSet set = newSet(2);
    for (const int32_t count : {INT_MIN, -1, 257, INT_MAX}) {
        channelOf(set, 1).toneCount = count;
        EXPECT_TRUE(std::isfinite(jKoCalibGetToneValue(set.get(), 1, 100)));
        if (count > 0) {
            EXPECT_EQ(jKoCalibSetToneValue(set.get(), 1, 99.5f, 1), 0);
        }
    }
}
