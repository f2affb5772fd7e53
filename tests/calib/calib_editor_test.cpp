// The model of the calibration editor: what a press, a drag, a typed pair and a button do.
#include "calib/dialog/calib_editor.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <optional>
#include <tuple>

#include "resources/texts.h"
#include "tests/support/answers.h"
#include "tests/support/files.h"

namespace ko::calib {
namespace {

using dialog::Point;
using dialog::Size;
using test::Answers;
using Tones = std::vector<std::pair<float, float>>;

// A plot of 256 x 255 pixels: with a limit of 255 a unit of y is one pixel.
constexpr Size kGraph = {279, 278};
constexpr int32_t kAll = CalibEditor::kAllChannels;

struct Editing {
    explicit Editing(int32_t channelCount, int32_t range = 255, int32_t limit = 255,
                     std::string_view path = "")
        : set(createCurve(channelCount, range, limit)) {
        copyText(set->path, path);
        open();
    }
    CalibEditor& open() { return editor.emplace(*set); }
    CalibChannel& channel(int32_t index) { return channelsOf(*set)[static_cast<size_t>(index)]; }
    Tones tones(int32_t index) {
        Tones all;
        for (const CalibTone& tone : tonesOf(channel(index))) all.emplace_back(tone.x, tone.y);
        return all;
    }
    // Puts tones into a channel as they stand.
    void give(int32_t index, const Tones& tones) {
        channel(index).toneCount = 0;
        for (const auto& [x, y] : tones) channel(index).tones[channel(index).toneCount++] = {x, y};
    }
    Point at(float x, float y) const { return editor->place(kGraph, {x, y}); }
    bool press(float x, float y) { return editor->press(kGraph, at(x, y)); }
    bool moveTo(int32_t row) { return editor->move(kGraph, {100, row}); }

    Block<CalibCurveSet> set;
    std::optional<CalibEditor> editor;
};

// Opening

TEST(CalibEditor, OpensWithAllChannelsSelected) {
    const Editing editing(3);
    EXPECT_EQ(editing.editor->selectedChannel(), kAll);
    for (int32_t channel = 0; channel < 3; ++channel) EXPECT_TRUE(editing.editor->covers(channel));
    EXPECT_FALSE(editing.editor->isDragging());
    EXPECT_FALSE(editing.editor->isRelative());
}

TEST(CalibEditor, APathThatEndsInASeparatorIsClearedAndNewFilesGoIntoThatFolder) {
    const std::string folder = std::string("sets") + platform::kSeparator;
    Editing editing(1, 255, 255, folder);
    EXPECT_STREQ(editing.set->path, "");
    EXPECT_EQ(editing.editor->fileName(), "");
    Answers answers;
    editing.editor->save(answers);
    EXPECT_EQ(answers.saves, 1);
    EXPECT_EQ(answers.startedFrom, folder);
}

TEST(CalibEditor, ShowsTheBareNameOfItsFile) {
    const std::string path = std::string("sets") + platform::kSeparator + "press 3.clb";
    const Editing editing(1, 255, 255, path);
    EXPECT_EQ(editing.editor->fileName(), "press 3.clb");
    EXPECT_EQ(std::string_view(editing.set->path), path);
}

TEST(CalibEditor, ShowsTheFirstTonesPairAtFirst) {
    Editing editing(2);
    editing.give(0, {{5, 20}, {255, 200}});
    editing.open();
    EXPECT_EQ(editing.editor->xText(), "0");  // of the second channel
    editing.editor->selectChannel(0);
    EXPECT_EQ(editing.editor->xText(), "5");
    EXPECT_EQ(editing.editor->yText(), "20");
}

// The graph

TEST(CalibEditor, ATonesPlaceIsTruncatedAsAWhole) {
    const Editing editing(1);
    EXPECT_EQ(editing.at(0, 0), (Point{10, 265}));
    EXPECT_EQ(editing.at(255, 255), (Point{266, 10}));
    EXPECT_EQ(editing.at(128, 128), (Point{138, 137}));  // 10 + 128.50
    // 10 + 100 - 50.19 is 59.80
    EXPECT_EQ(editing.editor->place({123, 123}, {0, 128}), (Point{10, 59}));
}

TEST(CalibEditor, APlaceFollowsRangeAndLimit) {
    const Editing editing(1, 100, 200);
    EXPECT_EQ(editing.at(50, 50), (Point{138, 201}));  // 10 + 256 / 2, 265 - 63.75
}

TEST(CalibEditor, ARangeOf100OffersTwentyOneSamplesOthersSeventeen) {
    for (const auto& [range, last, second] : {std::tuple{100, 20, 5.0f}, {255, 16, 15.0f}, {99, 16, 6.0f}}) {
        const Editing editing(1, range, range);
        EXPECT_EQ(editing.editor->lastSample(), last);
        EXPECT_EQ(editing.editor->sample(0, 1).x, second) << range;
        EXPECT_EQ(editing.editor->sample(0, last).x, static_cast<float>(range));
    }
}

TEST(CalibEditor, EverySampleCanBeTakenHoldOf) {
    for (const int32_t range : {100, 255}) {
        const int32_t last = range == 100 ? 20 : 16;
        for (int32_t index = 0; index <= last; ++index) {
            Editing editing(1, range, range);
            const CalibTone tone = editing.editor->sample(0, index);
            ASSERT_TRUE(editing.press(tone.x, tone.y)) << range << ' ' << index;
            EXPECT_EQ(editing.tones(0).size(), index == 0 || index == last ? 2u : 3u) << index;
            EXPECT_EQ(editing.editor->point().x, tone.x);
        }
    }
}

TEST(CalibEditor, ASamplesValueIsTruncatedToAWholeNumber) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {255, 128}});
    const CalibTone tone = editing.editor->sample(0, 8);
    EXPECT_EQ(tone.x, 127.0f);  // 255 * 8 / 16 is 127.5
    EXPECT_EQ(tone.y, 63.0f);   // 127 * 128 / 255 is 63.7
    EXPECT_TRUE(editing.press(tone.x, tone.y));
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {127, 63}, {255, 128}}));
}

TEST(CalibEditor, BetweenTheSamplesNothingIsTakenHoldOf) {
    Editing editing(1);
    EXPECT_FALSE(editing.press(135, 135));  // 8 pixels from the one at 127 and from the one at 143
    EXPECT_EQ(editing.tones(0).size(), 2u);
}

TEST(CalibEditor, ATonesReachIsUnderFourPixelsOnBothAxes) {
    for (const auto& [dx, dy, hit] : {std::tuple{3, 3, true}, {-3, -3, true}, {4, 0, false},
                                      {0, 4, false}, {-4, 0, false}, {0, -4, false}}) {
        Editing editing(1);
        editing.give(0, {{0, 0}, {135, 30}, {255, 0}});
        const Point tone = editing.at(135, 30);
        // No sample is that near: the curve rises steeply on both sides.
        EXPECT_EQ(editing.editor->press(kGraph, {tone.x + dx, tone.y + dy}), hit) << dx << ' ' << dy;
    }
}

TEST(CalibEditor, ATonesReachComesBeforeTheSamples) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {129, 128}, {255, 255}});
    EXPECT_TRUE(editing.press(127, 127));  // where a sample stands, two pixels from the tone
    EXPECT_EQ(editing.editor->point().x, 129.0f);
    EXPECT_EQ(editing.tones(0).size(), 3u);
}

TEST(CalibEditor, PressesCountFromNinePixelsInside) {
    Editing editing(1);
    editing.give(0, {{0, 255}, {255, 0}});
    const Point last = {kGraph.width - 11, kGraph.height - 11};
    EXPECT_FALSE(editing.editor->press(kGraph, {8, 10}));
    EXPECT_FALSE(editing.editor->press(kGraph, {10, 8}));
    EXPECT_TRUE(editing.editor->press(kGraph, {9, 9}));
    editing.editor->release();
    EXPECT_FALSE(editing.editor->press(kGraph, {last.x + 1, last.y}));
    EXPECT_FALSE(editing.editor->press(kGraph, {last.x, last.y + 1}));
    EXPECT_TRUE(editing.editor->press(kGraph, last));
}

TEST(CalibEditor, OfTonesOnTopOfEachOtherTheLastChannelsIsTaken) {
    Editing editing(3);
    editing.give(0, {{0, 0}, {100, 60}, {255, 255}});
    editing.give(1, {{0, 0}, {101, 61}, {255, 255}});
    EXPECT_TRUE(editing.press(100, 60));
    EXPECT_EQ(editing.editor->point().x, 101.0f);
    EXPECT_EQ(editing.editor->point().y, 61.0f);
}

TEST(CalibEditor, OfSamplesOnTopOfEachOtherTheFirstChannelsIsTaken) {
    Editing editing(2);
    editing.give(0, {{0, 0}, {255, 254}});
    const CalibTone tone = editing.editor->sample(0, 8);  // 126.5, truncated
    EXPECT_TRUE(editing.press(tone.x, tone.y));
    EXPECT_EQ(editing.editor->point().y, 126.0f);
}

TEST(CalibEditor, TheGraphShowsTheCoveredChannelsAboveTheOthersAndWithPoints) {
    Editing editing(3);
    for (int32_t channel = 0; channel < 3; ++channel)
        editing.channel(channel).lrgb = 0xff000010u + static_cast<uint32_t>(channel);
    editing.editor->selectChannel(0);
    const dialog::GraphPicture picture = editing.editor->picture(kGraph);
    ASSERT_EQ(picture.curves.size(), 3u);
    EXPECT_EQ(picture.curves[0].colour, 0x11u);
    EXPECT_TRUE(picture.curves[0].controlPoints.empty());
    EXPECT_EQ(picture.curves[2].colour, 0x10u);
    EXPECT_EQ(picture.curves[2].controlPoints.size(), 2u);
    EXPECT_EQ(picture.curves[2].computedPoints.size(), 17u);
    EXPECT_EQ(picture.curves[2].line.size(), 257u);
    EXPECT_EQ(picture.curves[2].line.back(), (Point{266, 10}));
}

TEST(CalibEditor, TheLineEndsWhereTheTonesDo) {
    Editing editing(1);
    editing.give(0, {{51, 0}, {204, 255}});
    const auto line = editing.editor->picture(kGraph).curves[0].line;
    EXPECT_EQ(line.front().x, 10 + 52);  // the first column past 51.2
    EXPECT_EQ(line.back().x, 10 + 204);  // the last before 204.8
}

// Dragging

TEST(CalibEditor, TakingHoldWithAllChannelsCopiesTheToneIntoEach) {
    Editing editing(3);
    editing.give(1, {{0, 0}, {100, 60}, {255, 255}});
    EXPECT_TRUE(editing.press(100, 60));
    for (int32_t channel = 0; channel < 3; ++channel)
        EXPECT_EQ(editing.tones(channel), (Tones{{0, 0}, {100, 60}, {255, 255}})) << channel;
}

TEST(CalibEditor, DraggingWithAllChannelsWritesTheSamePairIntoEach) {
    Editing editing(3);
    editing.give(1, {{0, 0}, {100, 60}, {255, 255}});
    EXPECT_TRUE(editing.press(100, 60));
    EXPECT_TRUE(editing.moveTo(100));
    for (int32_t channel = 0; channel < 3; ++channel)  // 255 * (255 - 100 + 10) / 255
        EXPECT_EQ(editing.tones(channel), (Tones{{0, 0}, {100, 165}, {255, 255}})) << channel;
}

TEST(CalibEditor, AChannelAloneLeavesTheOthersAsTheyAre) {
    Editing editing(3);
    editing.editor->selectChannel(1);
    EXPECT_TRUE(editing.press(127, 127));
    editing.moveTo(100);
    EXPECT_EQ(editing.tones(1), (Tones{{0, 0}, {127, 165}, {255, 255}}));
    for (const int32_t other : {0, 2}) EXPECT_EQ(editing.tones(other).size(), 2u);
}

TEST(CalibEditor, APointMovesUpAndDownOnly) {
    Editing editing(1);
    EXPECT_TRUE(editing.press(127, 127));
    EXPECT_TRUE(editing.editor->move(kGraph, {220, 65}));
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {127, 200}, {255, 255}}));
    EXPECT_EQ(editing.editor->xText(), "127");
    EXPECT_EQ(editing.editor->yText(), "200");
}

TEST(CalibEditor, ADraggedValueKeepsItsFraction) {
    Editing editing(1, 255, 100);
    editing.give(0, {{0, 0}, {127, 50}, {255, 100}});
    EXPECT_TRUE(editing.press(127, 50));
    editing.moveTo(100);  // 100 * 165 / 255
    EXPECT_EQ(editing.tones(0)[1].second, 64.70588235294117f);
    EXPECT_EQ(editing.editor->yText(), "65");
}

TEST(CalibEditor, ADragStopsAtTheEdgesOfThePlot) {
    Editing editing(1);
    EXPECT_TRUE(editing.press(127, 127));
    editing.moveTo(9);  // a pixel above the plot
    EXPECT_EQ(editing.tones(0)[1].second, 255.0f);
    editing.moveTo(267);  // two below it
    EXPECT_EQ(editing.tones(0)[1].second, 0.0f);
}

TEST(CalibEditor, MovesBeyondTheEdgesDoNotCount) {
    Editing editing(1);
    EXPECT_TRUE(editing.press(127, 127));
    EXPECT_FALSE(editing.moveTo(8));
    EXPECT_FALSE(editing.moveTo(268));
    EXPECT_FALSE(editing.editor->move(kGraph, {8, 100}));
    EXPECT_FALSE(editing.editor->move(kGraph, {269, 100}));
    EXPECT_EQ(editing.tones(0)[1].second, 127.0f);
    EXPECT_TRUE(editing.editor->isDragging());
}

TEST(CalibEditor, ReleasingEndsTheDragAndKeepsTheEdit) {
    Editing editing(1);
    EXPECT_TRUE(editing.press(127, 127));
    editing.moveTo(65);
    editing.editor->release();
    EXPECT_FALSE(editing.moveTo(100));
    EXPECT_EQ(editing.tones(0)[1].second, 200.0f);
}

TEST(CalibEditor, APressDuringADragChangesNothing) {
    Editing editing(1);
    EXPECT_TRUE(editing.press(127, 127));
    EXPECT_FALSE(editing.press(255, 255));
    EXPECT_EQ(editing.editor->point().x, 127.0f);
}

// Relative editing

TEST(CalibEditor, RelativeEditingOfTheEndScalesAllButTheFirstTone) {
    Editing editing(2);
    editing.give(0, {{0, 10}, {128, 100}, {255, 200}});
    editing.give(1, {{0, 20}, {64, 50}, {255, 200}});
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(255, 200));
    editing.moveTo(165);  // 100
    EXPECT_EQ(editing.tones(0), (Tones{{0, 10}, {128, 50}, {255, 100}}));
    EXPECT_EQ(editing.tones(1), (Tones{{0, 20}, {64, 25}, {255, 100}}));
    EXPECT_EQ(editing.editor->yText(), "100");
}

TEST(CalibEditor, RelativeEditingGoesOnFromTheCurrentValues) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {128, 100}, {255, 200}});
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(255, 200));
    editing.moveTo(165);
    editing.moveTo(15);  // 250
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {128, 125}, {255, 250}}));
}

TEST(CalibEditor, RelativeEditingTruncatesTheNewEnd) {
    Editing editing(1, 255, 100);
    editing.give(0, {{0, 0}, {128, 50}, {255, 100}});
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(255, 100));
    editing.moveTo(100);  // 64.7
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {128, 32}, {255, 64}}));
}

TEST(CalibEditor, RelativeEditingDoesNotClamp) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {128, 200}, {255, 100}});
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(255, 100));
    editing.moveTo(10);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {128, 510}, {255, 255}}));
}

TEST(CalibEditor, RelativeEditingTakesTheEndByItsWholeNumber) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {128, 100}, {255.5f, 200}});  // as a plain file may have it
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(255.5f, 200));
    editing.moveTo(165);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {128, 50}, {255.5f, 100}}));
}

TEST(CalibEditor, RelativeEditingOfAnotherToneMovesItAlone) {
    Editing editing(1);
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(127, 127));
    editing.moveTo(65);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {127, 200}, {255, 255}}));
}

TEST(CalibEditor, WithoutRelativeEditingTheEndMovesAlone) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {128, 100}, {255, 200}});
    EXPECT_TRUE(editing.press(255, 200));
    editing.moveTo(165);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {128, 100}, {255, 100}}));
}

TEST(CalibEditor, ACurveThatRelativeEditingTookToZeroComesBack) {
    Editing editing(1);
    editing.give(0, {{0, 10}, {128, 100}, {255, 200}});
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(255, 200));
    editing.moveTo(266);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 10}, {128, 0}, {255, 0}}));
    editing.moveTo(266);
    editing.moveTo(165);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 10}, {128, 50}, {255, 100}}));
}

TEST(CalibEditor, ACurveThatWasAtZeroStaysThere) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {128, 100}, {255, 0}});
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(255, 0));
    editing.moveTo(165);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {128, 100}, {255, 0}}));
}

TEST(CalibEditor, ACurveEditedAfterItWasTakenToZeroDoesNotComeBack) {
    Editing editing(1);
    editing.give(0, {{0, 10}, {128, 100}, {255, 200}});
    editing.editor->setRelative(true);
    EXPECT_TRUE(editing.press(255, 200));
    editing.moveTo(266);
    editing.editor->release();
    setToneValue(*editing.set, 0, 128, 40);
    EXPECT_TRUE(editing.press(255, 0));
    editing.moveTo(165);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 10}, {128, 40}, {255, 0}}));
}

// Removing

TEST(CalibEditor, ARightClickRemovesTheToneOfEveryCoveredChannel) {
    Editing editing(3);
    for (const int32_t channel : {0, 2}) editing.give(channel, {{0, 0}, {100, 60}, {255, 255}});
    editing.give(1, {{0, 0}, {102, 61}, {200, 60}, {255, 255}});
    EXPECT_TRUE(editing.editor->pressRight(kGraph, editing.at(100, 60)));
    EXPECT_EQ(editing.tones(0).size(), 2u);
    EXPECT_EQ(editing.tones(1), (Tones{{0, 0}, {200, 60}, {255, 255}}));
    EXPECT_EQ(editing.tones(2).size(), 2u);
}

TEST(CalibEditor, ARightClickOnTheFirstOrTheLastToneRemovesNothing) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {2, 2}, {100, 60}, {254, 254}, {255, 255}});
    EXPECT_FALSE(editing.editor->pressRight(kGraph, editing.at(0, 0)));  // the first one found
    EXPECT_EQ(editing.tones(0).size(), 5u);
    editing.give(0, {{0, 0}, {100, 60}, {255, 255}});
    EXPECT_FALSE(editing.editor->pressRight(kGraph, editing.at(255, 255)));
    EXPECT_EQ(editing.tones(0).size(), 3u);
}

TEST(CalibEditor, ARightClickDuringADragDoesNothing) {
    Editing editing(1);
    EXPECT_TRUE(editing.press(127, 127));
    EXPECT_FALSE(editing.editor->pressRight(kGraph, editing.at(127, 127)));
    EXPECT_EQ(editing.tones(0).size(), 3u);
    EXPECT_TRUE(editing.editor->isDragging());
}

TEST(CalibEditor, ARightClickNearTheEdgesDoesNotCount) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {1, 255}, {255, 255}});
    EXPECT_FALSE(editing.editor->pressRight(kGraph, {11, 8}));
    EXPECT_TRUE(editing.editor->pressRight(kGraph, {11, 9}));
}

// Typing

TEST(CalibEditor, ANumberBeyondTheRangeShowsTheRange) {
    Editing editing(1);
    editing.editor->leaveX("300");
    editing.editor->leaveY("1e300");
    EXPECT_EQ(editing.editor->xText(), "255");
    EXPECT_EQ(editing.editor->yText(), "255");
}

TEST(CalibEditor, ANegativeNumberShowsZeroAndSoDoesWhatIsNone) {
    Editing editing(1);
    for (const char* text : {"-5", "", "abc", "NaN", "inf", "\xff\xfe"}) {
        editing.editor->leaveX("7");
        editing.editor->leaveX(text);
        EXPECT_EQ(editing.editor->xText(), "0") << text;
    }
}

TEST(CalibEditor, TheFieldsAreClampedAndWrittenEachByItsOwn) {
    Editing editing(1, 100, 50);
    std::strcpy(editing.set->formatX, "%.1f");
    std::strcpy(editing.set->formatY, "%.3f");
    editing.editor->leaveX("60.26");
    editing.editor->leaveY("60.26");
    EXPECT_EQ(editing.editor->xText(), "60.3");
    EXPECT_EQ(editing.editor->yText(), "50.000");
}

TEST(CalibEditor, TenCharactersOfAFieldAreRead) {
    Editing editing(1, std::numeric_limits<int32_t>::max(), 255);
    editing.editor->leaveX("12345678901");
    EXPECT_EQ(editing.editor->xText(), "1234567890");
    editing.editor->leaveX(std::string(100000, '9'));
    EXPECT_EQ(editing.editor->xText(), "2147483647");
}

TEST(CalibEditor, AFieldThatIsLeftAsItWasShownStays) {
    Editing editing(1);
    std::strcpy(editing.set->formatX, "%015.0f");
    editing.editor->leaveX("12");
    editing.editor->leaveX("000000000000012");
    EXPECT_EQ(editing.editor->xText(), "000000000000012");
    EXPECT_TRUE(editing.editor->add());
    EXPECT_EQ(editing.tones(0)[1].first, 12.0f);
}

TEST(CalibEditor, AFormatThatCannotBeUsedCountsAsWholeNumbers) {
    Editing editing(1);
    std::memcpy(editing.set->formatX, "%s%n%s%n", 8);
    editing.editor->leaveX("12.6");
    EXPECT_EQ(editing.editor->xText(), "13");
}

TEST(CalibEditor, AddStoresThePairIntoEveryCoveredChannel) {
    Editing editing(2);
    editing.editor->leaveX("100");
    editing.editor->leaveY("60");
    EXPECT_TRUE(editing.editor->add());
    for (const int32_t channel : {0, 1})
        EXPECT_EQ(editing.tones(channel), (Tones{{0, 0}, {100, 60}, {255, 255}}));
    editing.editor->selectChannel(1);
    editing.editor->leaveY("70");
    EXPECT_TRUE(editing.editor->add());
    EXPECT_EQ(editing.tones(0)[1].second, 60.0f);
    EXPECT_EQ(editing.tones(1)[1].second, 70.0f);
}

TEST(CalibEditor, TypedNumbersAreNoPercentages) {
    Editing editing(1);
    editing.editor->leaveX("50");
    editing.editor->leaveY("50");
    editing.editor->add();
    EXPECT_EQ(editing.tones(0)[1], (std::pair{50.0f, 50.0f}));
}

TEST(CalibEditor, AFullChannelRefusesANewToneButTakesANewValue) {
    Editing editing(1);
    editing.channel(0).toneCount = 256;
    for (int32_t index = 0; index < 256; ++index)
        editing.channel(0).tones[index] = {static_cast<float>(index), 1};
    editing.editor->leaveX("12.5");
    std::strcpy(editing.set->formatX, "%.1f");
    editing.editor->leaveX("12.5 ");
    EXPECT_FALSE(editing.editor->add());
    editing.editor->leaveX("12");
    editing.editor->leaveY("99");
    EXPECT_TRUE(editing.editor->add());
    EXPECT_EQ(editing.tones(0)[12], (std::pair{12.0f, 99.0f}));
}

TEST(CalibEditor, ATitleIsTrimmedAndCutAtAWholeCharacter) {
    Editing editing(1);
    editing.editor->leaveTitle("  press 3 ");
    EXPECT_EQ(editing.editor->title(), "press 3");
    editing.editor->leaveTitle(std::string(126, 'a') + "\x83\x5c");
    EXPECT_EQ(editing.editor->title(), std::string(126, 'a'));
    editing.editor->leaveTitle(std::string(10000, 'b'));
    EXPECT_EQ(editing.editor->title(), std::string(127, 'b'));
}

TEST(CalibEditor, AChineseTitleIsCutAtAWholeCharacterToo) {
    Editing editing(1);
    std::string text = "a";
    for (int i = 0; i < 80; ++i) text += "\xb5\xe3";
    editing.editor->leaveTitle(text, Encoding::gb2312);
    EXPECT_EQ(editing.editor->title(), text.substr(0, 127));
    editing.editor->leaveTitle(text.substr(1), Encoding::gb2312);
    EXPECT_EQ(editing.editor->title(), text.substr(1, 126));
}

// From the keyboard

TEST(CalibEditor, TheKeyboardGoesFromToneToToneOfTheCoveredChannels) {
    Editing editing(3);
    editing.give(0, {{0, 0}, {100, 60}, {255, 255}});
    editing.give(1, {{0, 0}, {50, 90}, {255, 255}});
    std::vector<float> places = {editing.editor->point().x};
    while (editing.editor->stepTone(1)) places.push_back(editing.editor->point().x);
    EXPECT_EQ(places, (std::vector<float>{0, 50, 100, 255}));
    editing.editor->selectChannel(0);
    EXPECT_TRUE(editing.editor->stepTone(-1));
    EXPECT_EQ(editing.editor->point().x, 100.0f);
    EXPECT_EQ(editing.editor->yText(), "60");
}

TEST(CalibEditor, TheKeyboardMovesAToneInEveryCoveredChannel) {
    Editing editing(2);
    editing.give(0, {{0, 0}, {100, 60}, {255, 255}});
    editing.editor->stepTone(1);
    EXPECT_TRUE(editing.editor->stepValue(3));
    for (const int32_t channel : {0, 1}) EXPECT_EQ(editing.tones(channel)[1], (std::pair{100.0f, 63.0f}));
    editing.editor->stepValue(-1000);
    EXPECT_EQ(editing.tones(0)[1].second, 0.0f);
    editing.editor->stepValue(1000);
    EXPECT_EQ(editing.tones(0)[1].second, 255.0f);
}

TEST(CalibEditor, TheKeyboardsStepsFollowTheScale) {
    Editing fine(1, 255, 4), coarse(1, 255, 4095);
    for (Editing* editing : {&fine, &coarse}) {
        editing->give(0, {{0, 0}, {255, 2}});
        editing->editor->stepTone(1);
        editing->editor->stepValue(1);
    }
    EXPECT_EQ(fine.tones(0)[1].second, 2.04f);
    EXPECT_EQ(coarse.tones(0)[1].second, 18.0f);
}

TEST(CalibEditor, TheKeyboardScalesRelativelyAtTheEnd) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {128, 100}, {255, 200}});
    editing.editor->setRelative(true);
    while (editing.editor->stepTone(1)) {}
    editing.editor->stepValue(-100);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {128, 50}, {255, 100}}));
}

TEST(CalibEditor, DeleteRemovesTheToneButNoEnd) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {100, 60}, {255, 255}});
    EXPECT_FALSE(editing.editor->removeTone());
    editing.editor->stepTone(1);
    EXPECT_TRUE(editing.editor->removeTone());
    EXPECT_EQ(editing.tones(0).size(), 2u);
    EXPECT_EQ(editing.editor->point().x, 0.0f);  // the nearest that is left
    while (editing.editor->stepTone(1)) {}
    EXPECT_FALSE(editing.editor->removeTone());
}

// Starting over and saving

TEST(CalibEditor, InitialisingTakesEveryChannelBackAndKeepsTitleAndFile) {
    Editing editing(2, 255, 255, "a.clb");
    editing.editor->leaveTitle("press 3");
    editing.editor->selectChannel(0);
    editing.give(1, {{0, 7}, {255, 9}});
    editing.editor->initialise();
    for (const int32_t channel : {0, 1}) EXPECT_EQ(editing.tones(channel), (Tones{{0, 0}, {255, 255}}));
    EXPECT_EQ(editing.editor->title(), "press 3");
    EXPECT_EQ(editing.editor->fileName(), "a.clb");
}

TEST(CalibEditor, NewAsksInTheNameOfTheDescriptionAndDoesNothingOnNo) {
    Editing editing(1, 255, 255, "a.clb");
    copyText(editing.set->desc, "ink");
    editing.editor->leaveTitle("press 3");
    editing.give(0, {{0, 7}, {255, 9}});
    Answers answers;
    answers.yes = false;
    EXPECT_FALSE(editing.editor->startNew(answers));
    EXPECT_EQ(answers.caption, "ink");
    EXPECT_EQ(answers.asked, texts::kResetQuestion);
    EXPECT_EQ(editing.tones(0), (Tones{{0, 7}, {255, 9}}));
    EXPECT_EQ(editing.editor->title(), "press 3");
    EXPECT_EQ(editing.editor->fileName(), "a.clb");
}

TEST(CalibEditor, NewEmptiesTheTitleAndForgetsTheFileButNotTheDescription) {
    Editing editing(1, 255, 255, "a.clb");
    copyText(editing.set->desc, "ink");
    editing.editor->leaveTitle("press 3");
    editing.give(0, {{0, 7}, {255, 9}});
    Answers answers;
    EXPECT_TRUE(editing.editor->startNew(answers));
    EXPECT_EQ(editing.tones(0), (Tones{{0, 0}, {255, 255}}));
    EXPECT_EQ(editing.editor->title(), "");
    EXPECT_EQ(editing.editor->description(), "ink");
    EXPECT_EQ(editing.editor->fileName(), "");
    EXPECT_EQ(editing.editor->dateText(false), "");
    editing.editor->save(answers);
    EXPECT_EQ(answers.saves, 1);  // asks for a name now
}

TEST(CalibEditor, SavesToItsFile) {
    const test::TempFolder folder;
    Editing editing(1, 255, 255, folder.path("a.clb"));
    editing.give(0, {{0, 7}, {255, 9}});
    Answers answers;
    editing.editor->save(answers);
    EXPECT_EQ(answers.saves, 0);
    const auto loaded = loadCurve(folder.path("a.clb").c_str());
    ASSERT_TRUE(loaded);
    EXPECT_EQ(channelsOf(*loaded)[0].tones[0].y, 7.0f);
}

TEST(CalibEditor, SaveAsAddsTheExtensionAndGoesOnInThatFolder) {
    const test::TempFolder folder;
    Editing editing(1);
    Answers answers;
    answers.path = folder.path("b.tnc");
    editing.editor->saveAs(answers);
    EXPECT_TRUE(std::string_view(texts::kClbFilter).ends_with(" (*.clb)|*.clb|"));
    EXPECT_EQ(answers.filter, texts::kClbFilter);
    EXPECT_EQ(answers.startedFrom, "");
    EXPECT_EQ(editing.editor->fileName(), "b.tnc.clb");
    EXPECT_EQ(std::string_view(editing.set->path), folder.path("b.tnc.clb"));
    EXPECT_TRUE(test::exists(folder.path("b.tnc.clb")));
    editing.editor->save(answers);
    EXPECT_EQ(answers.saves, 1);
    editing.editor->saveAs(answers);
    EXPECT_EQ(answers.startedFrom, folder.folder().string() + platform::kSeparator);
}

TEST(CalibEditor, SaveAsKeepsAnExtensionInCapitals) {
    const test::TempFolder folder;
    Editing editing(1);
    Answers answers;
    answers.path = folder.path("B.CLB");
    editing.editor->saveAs(answers);
    EXPECT_TRUE(test::exists(folder.path("B.CLB")));
    EXPECT_EQ(editing.editor->fileName(), "B.CLB");
}

TEST(CalibEditor, SaveAsDoesNothingWhenCancelled) {
    Editing editing(1, 255, 255, "a.clb");
    Answers answers;
    editing.editor->saveAs(answers);
    EXPECT_EQ(editing.editor->fileName(), "a.clb");
}

TEST(CalibEditor, AFailedSaveIsToldWithItsFileAndAnotherNameIsAskedForAgain) {
    const test::TempFolder folder;
    Editing editing(1);
    Answers answers;
    answers.path = folder.path("missing/a.clb");
    editing.editor->saveAs(answers);
    EXPECT_EQ(answers.notSavedPath, folder.path("missing/a.clb"));
    EXPECT_TRUE(answers.reason.has_value());
    EXPECT_EQ(editing.editor->fileName(), "");
    EXPECT_FALSE(editing.editor->save(answers));
    EXPECT_EQ(answers.saves, 2);
    EXPECT_TRUE(std::filesystem::is_empty(folder.folder()));
}

TEST(CalibEditor, CancellingTakesEveryChangeBackWhenThatIsChosen) {
    Editing editing(2);
    Answers answers;
    editing.editor->leaveX("128");
    editing.editor->leaveY("200");
    editing.editor->add();
    editing.editor->leaveTitle("mine");
    editing.editor->initialise();
    answers.unsaved = dialog::Unsaved::stay;
    EXPECT_FALSE(editing.editor->mayCancel(answers));
    EXPECT_EQ(editing.editor->title(), "mine");
    answers.unsaved = dialog::Unsaved::discard;
    EXPECT_TRUE(editing.editor->mayCancel(answers));
    EXPECT_EQ(editing.editor->title(), "");
}

TEST(CalibEditor, InitialisingIsTakenBackLikeAnyOtherStep) {
    Editing editing(2);
    editing.editor->leaveX("128");
    editing.editor->leaveY("200");
    editing.editor->add();
    const auto before = editing.editor->capture();
    editing.editor->initialise();
    EXPECT_FALSE(editing.editor->capture() == before);
    EXPECT_TRUE(editing.editor->undo());
    EXPECT_TRUE(editing.editor->capture() == before);
    EXPECT_TRUE(editing.editor->redo());
    EXPECT_FALSE(editing.editor->capture() == before);
}

TEST(CalibEditor, ANameThatIsTooLongWithItsExtensionChangesNothing) {
    Editing editing(1, 255, 255, "a.clb");
    Answers answers;
    answers.path = std::string(257, 'n');
    editing.editor->saveAs(answers);
    EXPECT_EQ(editing.editor->fileName(), "a.clb");
    answers.yes = true;
    editing.editor->startNew(answers);
    editing.editor->saveAs(answers);
    EXPECT_EQ(editing.editor->fileName(), "");
}

TEST(CalibEditor, TheDateIsTheFilesAndItsOrderTheLanguages) {
    const test::TempFolder folder;
    const std::string path = folder.path("a.clb");
    test::writeFile(path, "CHANNEL = 1\n");
    using namespace std::chrono;
    const sys_seconds noon = sys_days(year(2024) / May / 6) + 12h;
    std::filesystem::last_write_time(folder.folder() / "a.clb", file_clock::from_sys(noon));
    const Editing editing(1, 255, 255, path);
    EXPECT_EQ(editing.editor->dateText(false), "2024/05/06");
    EXPECT_EQ(editing.editor->dateText(true), "05/06/2024");
}

TEST(CalibEditor, AFileThatIsNotThereHasNoDate) {
    const test::TempFolder folder;
    const Editing editing(1, 255, 255, folder.path("none.clb"));
    EXPECT_EQ(editing.editor->dateText(false), "");
}

// Odd sets

// Uses everything the editor offers, all over the graph.
void useAll(CalibEditor& editor, Size graph) {
    Answers answers;
    for (int32_t channel = kAll; channel <= editor.channelCount(); ++channel) {
        editor.selectChannel(channel);
        for (const bool relative : {false, true}) {
            editor.setRelative(relative);
            for (int32_t y = 9; y < graph.height; y += 25)
                for (int32_t x = 9; x < graph.width; x += 25) {
                    editor.press(graph, {x, y});
                    editor.move(graph, {x, graph.height - y});
                    editor.release();
                    editor.pressRight(graph, {x, y});
                }
            for (int step = 0; step < 300; ++step) editor.stepTone(step < 150 ? 1 : -1);
            for (const int32_t by : {1, -1, 1000000}) editor.stepValue(by);
            editor.removeTone();
        }
        for (const char* text : {"1", "-1", "1e38", "x"}) {
            editor.leaveX(text);
            editor.leaveY(text);
            editor.add();
        }
        editor.picture(graph);
    }
    editor.startNew(answers);
    editor.picture(graph);
}

TEST(CalibEditor, OddRangesAndLimitsAreEditedWithoutHarm) {
    constexpr int32_t kOdd[] = {0, -1, 1, -255, std::numeric_limits<int32_t>::min(),
                                std::numeric_limits<int32_t>::max()};
    for (const int32_t range : kOdd)
        for (const int32_t limit : kOdd) {
            Editing editing(2, range, limit);
            editing.set->ctype = limit == 1 ? 2 : 1;
            useAll(*editing.editor, kGraph);
            useAll(editing.open(), kGraph);
        }
}

TEST(CalibEditor, ARangeOrALimitOf0PutsEveryToneOnTheAxis) {
    const Editing editing(1, 0, 0);
    EXPECT_EQ(editing.at(0, 0), (Point{10, 265}));
    EXPECT_EQ(editing.at(100, 100), (Point{10, 265}));
    EXPECT_TRUE(editing.editor->picture(kGraph).curves[0].line.empty());
}

TEST(CalibEditor, TonesThatAreNoNumbersAreEditedWithoutHarm) {
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    constexpr float kMax = std::numeric_limits<float>::max();
    const float nan = std::nanf("");
    for (const Tones& tones : {Tones{{nan, nan}, {nan, nan}}, Tones{{0, nan}, {100, 50}, {255, nan}},
                               Tones{{nan, 0}, {100, 50}, {255, 255}},
                               Tones{{-kInfinite, kInfinite}, {100, kMax}, {kInfinite, -kInfinite}},
                               Tones{{0, 0}, {128, kMax}, {255, 1e-38f}}, Tones{{255, 3}, {10, 2}, {10, 1}, {0, 0}},
                               Tones{}, Tones{{100, 100}}}) {
        Editing editing(2);
        editing.give(0, tones);
        useAll(editing.open(), kGraph);
    }
}

TEST(CalibEditor, CountsBeyondTheRecordAreTakenAsItHolds) {
    for (const int32_t tones : {-5, 0, 1, 257, std::numeric_limits<int32_t>::max()})
        for (const int32_t channels : {-1, 0, 16, 17, std::numeric_limits<int32_t>::max()}) {
            Editing editing(16);
            editing.set->channelCount = channels;
            for (int32_t channel = 0; channel < 16; ++channel) (&editing.set->channels[0])[channel].toneCount = tones;
            EXPECT_EQ(editing.open().channelCount(), channels < 1 ? 0 : 16);
            useAll(*editing.editor, {103, 103});
        }
}

TEST(CalibEditor, AGraphWithoutRoomIsHarmless) {
    for (const Size size : {Size{0, 0}, {23, 23}, {20, 300}, {300, 20}, {1, 1}}) {
        Editing editing(1);
        useAll(*editing.editor, size);
    }
}

TEST(CalibEditor, TextsThatLackTheirEndAreReadToTheFieldsEnd) {
    Editing editing(1);
    std::memset(editing.set->title, 'a', sizeof editing.set->title);
    std::memset(editing.set->desc, 'b', sizeof editing.set->desc);
    std::memset(editing.set->path, 'c', sizeof editing.set->path);
    std::memset(editing.channel(0).name, 'd', sizeof editing.channel(0).name);
    CalibEditor& editor = editing.open();
    EXPECT_EQ(editor.title().size(), 128u);
    EXPECT_EQ(editor.description().size(), 128u);
    EXPECT_EQ(editor.channelName(0).size(), 32u);
    EXPECT_EQ(editor.fileName(), "");
    EXPECT_EQ(editor.dateText(false), "");
    Answers answers;
    editor.save(answers);
    EXPECT_EQ(answers.saves, 1);
}

TEST(CalibEditor, AToneIsAsEasyToHitOnAFinerScreen) {
    for (const auto& [dpi, away, hit] : {std::tuple{96, 4, false}, {192, 7, true}, {192, 8, false}}) {
        Editing editing(1);
        editing.give(0, {{0, 0}, {100, 200}, {255, 255}});
        editing.open().setResolution(dpi);
        const Point tone = editing.at(100, 200);
        EXPECT_EQ(editing.editor->isOnTone(kGraph, {tone.x - away, tone.y}), hit) << dpi;
    }
}

TEST(CalibEditor, WhatStandsUnderTheCursorIsReadInTheSetsNumbers) {
    Editing editing(1, 100, 100);
    editing.give(0, {{0, 0}, {50, 20}, {100, 100}});
    editing.open();
    const Point tone = editing.at(50, 20);
    EXPECT_EQ(std::atof(editing.editor->readingAt(kGraph, {tone.x + 2, tone.y})->input.c_str()), 50);
    EXPECT_EQ(std::atof(editing.editor->readingAt(kGraph, {tone.x + 2, tone.y})->output.c_str()), 20);
    EXPECT_FALSE(editing.editor->readingAt(kGraph, {0, 0}).has_value());
    const dialog::GraphPicture picture = editing.editor->picture(kGraph);
    EXPECT_EQ(picture.inputs[2], "50");
    EXPECT_EQ(picture.outputs[4], "100");
}

TEST(CalibEditor, TheCurveAsItWasOpenedStaysInSight) {
    Editing editing(1);
    editing.give(0, {{0, 0}, {255, 255}});
    editing.open();
    const auto opened = editing.editor->picture(kGraph).opened.at(0).line;
    EXPECT_FALSE(opened.empty());
    editing.editor->leaveX("100");
    editing.editor->leaveY("20");
    EXPECT_TRUE(editing.editor->add());
    EXPECT_EQ(editing.editor->picture(kGraph).opened.at(0).line, opened);
    EXPECT_NE(editing.editor->picture(kGraph).curves.at(0).line, opened);
}

TEST(CalibEditor, ACurveThatFallsIsNoticed) {
    Editing editing(2);
    EXPECT_FALSE(editing.editor->falls());
    editing.give(1, {{0, 0}, {100, 90}, {150, 80}, {255, 255}});
    EXPECT_TRUE(editing.editor->falls());
    editing.editor->selectChannel(0);  // the other one is not edited
    EXPECT_FALSE(editing.editor->falls());
}

TEST(CalibEditor, HomeAndEndChooseTheFirstAndTheLastTone) {
    Editing editing(1);
    EXPECT_TRUE(editing.editor->chooseEnd(true));
    EXPECT_EQ(editing.editor->xText(), editing.editor->yText());
    EXPECT_EQ(editing.editor->point().x, 255.0f);
    EXPECT_TRUE(editing.editor->chooseEnd(false));
    EXPECT_EQ(editing.editor->point().x, 0.0f);
}

}  // namespace
}  // namespace ko::calib
