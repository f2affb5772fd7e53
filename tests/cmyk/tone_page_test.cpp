// The model of the profile dialog's tone-curve page.
#include "cmyk/dialog/tone_page.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/cmyk/support.h"
#include "tone/tone.h"

namespace ko::cmyk {
namespace {

using dialog::Point;
using dialog::Size;

// A plot of 256 x 255 pixels: a point is four pixels from the next, a level one pixel high.
constexpr Size kGraph = {279, 278};

struct Editing {
    explicit Editing(CurveSet start = CurveSet::input) : set(start) {}
    int32_t value(int32_t channel, int32_t point) const { return page.level(channel, point); }
    bool marked(int32_t channel, int32_t point) const { return page.isControlPoint(channel, point); }
    Point at(int32_t channel, int32_t point) const { return page.pointAt(kGraph, channel, point); }
    Point rowOf(int32_t level) const { return {100, 10 + 255 - level}; }
    // Takes hold of a point and pulls it to a level.
    void drag(int32_t channel, int32_t point, int32_t level) {
        ASSERT_TRUE(page.press(kGraph, at(channel, point)));
        page.move(kGraph, rowOf(level));
    }
    void choose(int32_t point) { page.stepIndex(point - page.selectedIndex()); }
    void type(int32_t channel, int32_t point, const char* percent) {
        choose(point);
        page.leaveField(channel, percent);
    }

    test::OwnedProfile profile{createProfile().release()};
    CurveSet set;
    dialog::History history;
    TonePage page{*profile, history, set};
};

TEST(TonePage, OpensWithAllInksAndPoint0Chosen) {
    const Editing editing;
    EXPECT_EQ(editing.page.selection(), 15u);
    EXPECT_EQ(editing.page.selectedIndex(), 0);
    EXPECT_EQ(editing.page.inputText(), "0 %");
    EXPECT_FALSE(editing.page.isDragging());
    EXPECT_FALSE(editing.page.contrast());
}

TEST(TonePage, TypingAPercentageStoresTheNearestLevelAndMarksThePoint) {
    Editing editing;
    editing.type(1, 10, "50");
    EXPECT_EQ(editing.value(1, 10), 128);
    EXPECT_TRUE(editing.marked(1, 10));
    EXPECT_EQ(editing.value(0, 10), 40);  // one channel alone
    EXPECT_FALSE(editing.marked(0, 10));
    EXPECT_EQ(editing.page.fieldText(1), "50");
    EXPECT_EQ(editing.page.inputText(), "16 %");  // 40 of 255
}

TEST(TonePage, TypedNumbersOfAnySizeAreLimited) {
    Editing editing;
    for (const auto& [typed, level] :
         {std::pair{"-5", 0}, {"101", 255}, {"99999999999999999999", 255}, {"-1e300", 0}, {"x", 0}}) {
        editing.type(2, 20, typed);
        EXPECT_EQ(editing.value(2, 20), level) << typed;
    }
}

TEST(TonePage, AnEmptyFieldUnmarksThePoint) {
    Editing editing;
    editing.type(0, 32, "80");
    EXPECT_EQ(editing.value(0, 32), 204);
    editing.type(0, 32, "");
    EXPECT_FALSE(editing.marked(0, 32));
    EXPECT_EQ(editing.value(0, 32), 128);  // back on the line
}

TEST(TonePage, AnEmptyFieldLeavesTheEnds) {
    Editing editing;
    for (const int32_t end : {0, 64}) {
        editing.type(3, end, "");
        EXPECT_TRUE(editing.marked(3, end));
        EXPECT_EQ(editing.value(3, end), end == 0 ? 0 : 255);
    }
}

TEST(TonePage, UnmarkedPointsFollowTheSplineThroughTheMarkedOnes) {
    Editing editing;
    editing.type(0, 32, "78");  // 199
    const TonePoint points[] = {{0, 0}, {128, 199}, {255, 255}};
    for (int32_t point = 0; point < kCurvePoints; ++point)
        EXPECT_EQ(editing.value(0, point), clampTo(tone::splineTone(points, curveLevel(point)), 0, 255))
            << point;
}

TEST(TonePage, ASplineThatLeavesTheScaleIsCutAtItsEnds) {
    Editing editing;
    editing.type(0, 30, "0");
    editing.type(0, 31, "100");
    const TonePoint points[] = {{0, 0}, {120, 0}, {124, 255}, {255, 255}};
    ASSERT_LT(tone::splineTone(points, 100), 0);
    EXPECT_EQ(editing.value(0, 25), 0);
    ASSERT_GT(tone::splineTone(points, 160), 255);
    EXPECT_EQ(editing.value(0, 40), 255);
}

TEST(TonePage, ControlPointsKeepTheirValueWhenACurveIsEvaluated) {
    Editing editing;
    editing.profile->curveFlags[0][5] = 1;
    editing.profile->curveValues[0][5] = 77;
    editing.type(0, 40, "60");
    EXPECT_EQ(editing.value(0, 5), 77);
}

TEST(TonePage, CurvesThatAreNotTouchedKeepValuesThatNoSplineGives) {
    Editing editing;
    // As after loading a profile of another program: values from its table, two control points.
    for (int32_t point = 1; point < 64; ++point) editing.profile->curveValues[1][point] = 9;
    editing.type(0, 40, "60");
    EXPECT_EQ(editing.value(1, 20), 9);
    editing.page.select(1u << 3);
    editing.drag(3, 10, 100);
    EXPECT_EQ(editing.value(1, 20), 9);
}

TEST(TonePage, TheInputSetIsCurves0To3AndTheOutputSet4To7) {
    for (const CurveSet set : {CurveSet::input, CurveSet::output}) {
        Editing editing(set);
        editing.type(2, 16, "100");
        EXPECT_EQ(editing.profile->curveValues[2][16], set == CurveSet::input ? 255 : 64);
        EXPECT_EQ(editing.profile->curveValues[6][16], set == CurveSet::input ? 64 : 255);
    }
}

TEST(TonePage, TheChoiceOfTheSetOutlivesThePage) {
    Editing editing;
    editing.page.chooseSet(CurveSet::output);
    EXPECT_EQ(TonePage(*editing.profile, editing.history, editing.set).curveSet(), CurveSet::output);
}

TEST(TonePage, EveryStepOfAHundredCanBeTakenBackAndCarriedOutAgain) {
    Editing editing;
    const TonePage::State before = editing.page.capture();
    for (int step = 0; step < 100; ++step) editing.page.stepLevel(1);
    const TonePage::State after = editing.page.capture();
    for (int step = 0; step < 100; ++step) EXPECT_TRUE(editing.history.undo());
    EXPECT_EQ(editing.page.capture(), before);
    EXPECT_FALSE(editing.history.isChanged());
    while (editing.history.redo()) {}
    EXPECT_EQ(editing.page.capture(), after);
}

TEST(TonePage, AResetIsTakenBackLikeAnyOtherStep) {
    Editing editing;
    editing.page.stepLevel(30);
    const TonePage::State before = editing.page.capture();
    editing.page.reset();
    EXPECT_NE(editing.page.capture(), before);
    EXPECT_TRUE(editing.history.undo());
    EXPECT_EQ(editing.page.capture(), before);
}

TEST(TonePage, AChoiceOnAnotherPageLeavesThisOneAlone) {
    Editing editing;
    TonePage(*editing.profile, editing.history, editing.set).chooseSet(CurveSet::output);
    EXPECT_EQ(editing.page.curveSet(), CurveSet::input);
    editing.type(0, 10, "100");
    EXPECT_EQ(editing.profile->curveValues[0][10], 255);
}

TEST(TonePage, ChoosingASetEndsADragAndKeepsThePoint) {
    Editing editing;
    editing.drag(0, 10, 99);
    editing.page.chooseSet(CurveSet::output);
    EXPECT_FALSE(editing.page.isDragging());
    EXPECT_FALSE(editing.page.move(kGraph, editing.rowOf(200)));
    EXPECT_EQ(editing.profile->curveValues[0][10], 99);
    EXPECT_EQ(editing.profile->curveValues[4][10], 40);
    EXPECT_EQ(editing.page.selectedIndex(), 10);
}

TEST(TonePage, ResetStraightensTheCurvesOfTheChosenSetAlone) {
    Editing editing;
    for (auto& values : editing.profile->curveValues) std::memset(values, 7, sizeof values);
    for (auto& flags : editing.profile->curveFlags) std::memset(flags, 1, sizeof flags);
    editing.page.chooseSet(CurveSet::output);
    editing.page.reset();
    for (int32_t curve = 0; curve < kCurves; ++curve)
        for (int32_t point = 0; point < kCurvePoints; ++point) {
            const bool end = point == 0 || point == 64;
            EXPECT_EQ(editing.profile->curveFlags[curve][point], curve < 4 || end) << curve << ' ' << point;
            EXPECT_EQ(editing.profile->curveValues[curve][point], curve < 4 ? 7 : curveLevel(point))
                << curve << ' ' << point;
        }
}

TEST(TonePage, APressTakesHoldOfAPointOfASelectedChannel) {
    Editing editing;
    editing.type(1, 20, "90");
    editing.page.select(1u << 1);
    EXPECT_FALSE(editing.page.press(kGraph, editing.at(0, 20)));  // on cyan, which is not selected
    EXPECT_FALSE(editing.page.isDragging());
    EXPECT_TRUE(editing.page.press(kGraph, editing.at(1, 20)));
    EXPECT_EQ(editing.page.selectedIndex(), 20);
    EXPECT_TRUE(editing.page.isDragging());
}

TEST(TonePage, APressTakesHoldOfAPointThatIsNoControlPointYet) {
    Editing editing;
    ASSERT_TRUE(editing.page.press(kGraph, editing.at(0, 13)));
    EXPECT_EQ(editing.page.selectedIndex(), 13);
    EXPECT_FALSE(editing.marked(0, 13));  // only moving marks it
}

TEST(TonePage, APointIsHitUnderThreePixelsAcrossAndFourDown) {
    for (const auto& [dx, dy, hit] :
         {std::tuple{2, 0, true}, {3, 0, false}, {0, 3, true}, {0, 4, false}}) {
        Editing editing;
        editing.type(0, 64, "0");  // far from all others
        editing.page.select(1);
        editing.profile->curveValues[0][30] = 200;
        const Point point = editing.at(0, 30);
        EXPECT_EQ(editing.page.press(kGraph, {point.x + dx, point.y + dy}), hit) << dx << ' ' << dy;
    }
}

TEST(TonePage, APressOutsideTheGraphOrOnNoPointDoesNothing) {
    Editing editing;
    // So small that its points lie on the pixels that do not count.
    EXPECT_FALSE(editing.page.press({24, 24}, {23, 10}));
    EXPECT_FALSE(editing.page.press({24, 24}, {10, 0}));
    EXPECT_FALSE(editing.page.press(kGraph, {100, 20}));
    EXPECT_FALSE(editing.page.press({0, 0}, {0, 0}));
    EXPECT_FALSE(editing.page.isDragging());
}

TEST(TonePage, DraggingSetsTheLevelUnderTheCursorInEverySelectedChannel) {
    Editing editing;
    editing.page.select(1u << 0 | 1u << 2);
    editing.drag(0, 32, 200);
    for (int32_t channel = 0; channel < 4; ++channel) {
        const bool selected = channel == 0 || channel == 2;
        EXPECT_EQ(editing.value(channel, 32), selected ? 200 : 128) << channel;
        EXPECT_EQ(editing.marked(channel, 32), selected) << channel;
    }
    EXPECT_EQ(editing.value(0, 16), 113);  // the spline follows at once
}

TEST(TonePage, TheLevelOfARowIsTruncatedAndLimited) {
    Editing editing;
    ASSERT_TRUE(editing.page.press({279, 200}, editing.page.pointAt({279, 200}, 0, 32)));
    for (const int32_t row : {-32768, -1, 0, 10, 11, 50, 123, 186, 187, 199, 32767}) {
        editing.page.move({279, 200}, {0, row});
        const int32_t level = ((200 - 23) - row + 10) * 255 / (200 - 23);
        EXPECT_EQ(editing.value(0, 32), level < 0 ? 0 : level > 255 ? 255 : level) << row;
    }
}

TEST(TonePage, ReleasingKeepsTheDrag) {
    Editing editing;
    editing.drag(0, 32, 200);
    editing.page.release();
    EXPECT_FALSE(editing.page.isDragging());
    EXPECT_FALSE(editing.page.move(kGraph, editing.rowOf(10)));
    EXPECT_EQ(editing.value(0, 32), 200);
}

TEST(TonePage, TheContrastDragScalesTheWholeCurveFromItsCopy) {
    Editing editing;
    editing.type(0, 32, "80");  // 204
    const int32_t quarter = editing.value(0, 16);
    editing.page.setContrast(true);
    editing.drag(0, 64, 100);
    editing.page.move(kGraph, editing.rowOf(128));  // from the copy, not from the first move
    EXPECT_EQ(editing.value(0, 64), 128);
    EXPECT_EQ(editing.value(0, 32), 204 * 128 / 255);
    const TonePoint points[] = {{0, 0}, {128, 204 * 128 / 255}, {255, 128}};
    EXPECT_EQ(editing.value(0, 16), tone::splineTone(points, 64));
    EXPECT_NE(editing.value(0, 16), quarter);
    EXPECT_FALSE(editing.marked(0, 16));  // flags stay
    EXPECT_TRUE(editing.marked(0, 32));
}

TEST(TonePage, TheContrastDragDoesNothingWhileTheCopysEndIs0) {
    Editing editing;
    editing.page.select(1);
    editing.type(0, 64, "0");
    editing.type(0, 32, "40");
    const int32_t before = editing.value(0, 20);
    editing.page.setContrast(true);
    editing.drag(0, 64, 200);
    EXPECT_EQ(editing.value(0, 64), 0);
    EXPECT_EQ(editing.value(0, 20), before);
}

TEST(TonePage, ContrastConcernsTheLastPointAlone) {
    Editing editing;
    editing.page.setContrast(true);
    editing.drag(0, 63, 100);
    EXPECT_EQ(editing.value(0, 63), 100);
    EXPECT_EQ(editing.value(0, 64), 255);
}

TEST(TonePage, WithoutContrastTheLastPointMovesAlone) {
    Editing editing;
    editing.type(0, 32, "80");
    editing.page.select(1);
    editing.drag(0, 64, 100);
    EXPECT_EQ(editing.value(0, 32), 204);
    EXPECT_EQ(editing.value(0, 64), 100);
}

TEST(TonePage, TheRightButtonTakesADragBack) {
    Editing editing;
    editing.type(1, 40, "90");
    const auto curves = [&] {
        std::vector<std::pair<int32_t, bool>> points;
        for (int32_t channel = 0; channel < 4; ++channel)
            for (int32_t point = 0; point < kCurvePoints; ++point)
                points.emplace_back(editing.value(channel, point), editing.marked(channel, point));
        return points;
    };
    const auto before = curves();
    editing.drag(0, 32, 20);
    editing.page.move(kGraph, editing.rowOf(250));
    EXPECT_TRUE(editing.page.pressRight(kGraph, {5, 5}));
    EXPECT_FALSE(editing.page.isDragging());
    EXPECT_EQ(curves(), before);
}

TEST(TonePage, TheRightButtonTakesBackTheSelectedChannelsAlone) {
    Editing editing;
    editing.drag(0, 32, 200);
    editing.page.select(1u << 3);  // from the keyboard, while the button is down
    editing.page.pressRight(kGraph, {5, 5});
    EXPECT_EQ(editing.value(3, 32), 128);
    EXPECT_EQ(editing.value(0, 32), 200);
}

TEST(TonePage, TheRightButtonUnmarksAnInnerPoint) {
    Editing editing;
    editing.drag(0, 32, 200);
    editing.page.release();
    EXPECT_TRUE(editing.page.pressRight(kGraph, editing.at(0, 32)));
    for (int32_t channel = 0; channel < 4; ++channel) {
        EXPECT_FALSE(editing.marked(channel, 32));
        EXPECT_EQ(editing.value(channel, 32), 128);
    }
}

TEST(TonePage, TheRightButtonLeavesTheEndsAndChannelsThatAreNotSelected) {
    Editing editing;
    EXPECT_FALSE(editing.page.pressRight(kGraph, editing.at(0, 0)));
    EXPECT_FALSE(editing.page.pressRight(kGraph, editing.at(0, 64)));
    EXPECT_TRUE(editing.marked(0, 0));
    EXPECT_TRUE(editing.marked(0, 64));
    editing.drag(0, 32, 200);
    editing.page.release();
    editing.page.select(1);
    editing.page.pressRight(kGraph, editing.at(0, 32));
    EXPECT_FALSE(editing.marked(0, 32));
    EXPECT_TRUE(editing.marked(1, 32));
}

TEST(TonePage, ARightPressOnAPointThatIsNotMarkedLeavesTheCurveAsItIs) {
    Editing editing;
    for (int32_t point = 1; point < 64; ++point) editing.profile->curveValues[0][point] = 50;
    EXPECT_FALSE(editing.page.pressRight(kGraph, editing.at(0, 20)));
    EXPECT_EQ(editing.value(0, 20), 50);
}

TEST(TonePage, TheKeyboardMovesThePointAndUnmarksIt) {
    Editing editing;
    editing.choose(20);
    EXPECT_TRUE(editing.page.stepLevel(1));
    EXPECT_EQ(editing.value(0, 20), 81);
    EXPECT_TRUE(editing.marked(3, 20));
    EXPECT_TRUE(editing.page.unmark());
    EXPECT_EQ(editing.value(0, 20), 80);
    EXPECT_FALSE(editing.page.unmark());
    editing.choose(0);
    EXPECT_FALSE(editing.page.unmark());
    EXPECT_FALSE(editing.page.stepIndex(-1));
}

TEST(TonePage, ShowsPointsOfSelectedChannelsOnly) {
    Editing editing;
    editing.page.select(1);
    EXPECT_EQ(editing.page.curveOf(kGraph, 0, 0).controlPoints.size(), 2u);
    EXPECT_EQ(editing.page.curveOf(kGraph, 0, 0).computedPoints.size(), 63u);
    EXPECT_EQ(editing.page.curveOf(kGraph, 1, 0).controlPoints.size(), 0u);
    EXPECT_EQ(editing.page.curveOf(kGraph, 1, 0).line.size(), 65u);
    EXPECT_EQ(editing.page.curveOf(kGraph, 1, 0).line[64], (Point{266, 10}));
}

TEST(TonePage, BothSetsKeepTheCurvesAsTheyWereOpened) {
    Editing editing;
    const auto opened = editing.page.openedCurve(kGraph, 0, 0).line;
    EXPECT_FALSE(opened.empty());
    editing.drag(0, 32, 250);
    editing.page.release();
    EXPECT_EQ(editing.page.openedCurve(kGraph, 0, 0).line, opened);
    editing.page.chooseSet(CurveSet::output);
    EXPECT_FALSE(editing.page.openedCurve(kGraph, 3, 0).line.empty());
}

}  // namespace
}  // namespace ko::cmyk
