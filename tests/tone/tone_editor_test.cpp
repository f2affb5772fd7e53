// The model of the tone dialogs: what a press, a drag, a typed percentage and a button do.
#include "tone/dialog/tone_editor.h"

#include <gtest/gtest.h>

#include <tuple>

#include "resources/texts.h"
#include "tests/support/answers.h"
#include "tests/support/files.h"

namespace ko::tone {
namespace {

using dialog::Point;
using dialog::Size;
using test::Answers;

// A plot of 256 x 255 pixels: a grid step of 16 levels is 16 pixels wide, a level one pixel high.
constexpr Size kGraph = {279, 278};

struct Editing {
    explicit Editing(const ToneEditorKind& kind, std::string_view path = "")
        : curve(createToneCurve(kind.channels)) {
        copyText(curve->path, path);
        settings.curves = curve.get();
        editor.emplace(kind, *curve, kind.channels == 6 ? &settings : nullptr);
    }
    int32_t value(int32_t channel, int32_t x) const { return editor->level(channel, x); }
    bool marked(int32_t channel, int32_t x) const { return editor->isControlPoint(channel, x); }
    Point at(int32_t channel, int32_t index) const { return editor->pointAt(kGraph, channel, index); }
    void set(int32_t channel, int32_t index, int32_t level) {
        const auto x = static_cast<size_t>(editor->gridLevel(index));
        valuesOf(*curve, channel)[x] = static_cast<int16_t>(level);
    }
    // Takes hold of a point and pulls it to a level.
    void drag(int32_t channel, int32_t index, int32_t level) {
        const Point from = at(channel, index);
        ASSERT_TRUE(editor->press(kGraph, from));
        editor->move(kGraph, {from.x, 10 + 255 - level});
    }

    OwnedCurve curve;
    DccSettings settings{};
    std::optional<ToneEditor> editor;
};

TEST(ToneEditor, OpensWithTheInksSelectedAndTheFirstPositionChosen) {
    const Editing dcc(kDccEditor);
    EXPECT_EQ(dcc.editor->selection(), 0x0fu);  // GCR and UCR have buttons of their own
    EXPECT_EQ(dcc.editor->selectedIndex(), 0);
    EXPECT_FALSE(dcc.editor->isDragging());
    EXPECT_EQ(Editing(kBkcEditor).editor->selection(), 1u);
}

TEST(ToneEditor, HasSeventeenPositionsOrSixtyFive) {
    const Editing tnc(kCmykEditor), bkc(kBkcEditor);
    EXPECT_EQ(tnc.editor->gridLevel(1), 16);
    EXPECT_EQ(tnc.editor->gridLevel(16), 255);
    EXPECT_EQ(bkc.editor->gridLevel(1), 4);
    EXPECT_EQ(bkc.editor->gridLevel(64), 255);
}

TEST(ToneEditor, APointIsHitWithinFourPixelsOnBothAxes) {
    for (const auto& [dx, dy, hit] : {std::tuple{3, 3, true}, {4, 0, false}, {0, 4, false}}) {
        Editing tnc(kCmykEditor);
        const Point point = tnc.at(0, 8);
        EXPECT_EQ(tnc.editor->press(kGraph, {point.x + dx, point.y + dy}), hit) << dx << ' ' << dy;
    }
}

TEST(ToneEditor, ABlackCorrectionPointIsHitWithinThreePixelsAcross) {
    for (const auto& [dx, hit] : {std::pair{2, true}, {3, false}}) {
        Editing bkc(kBkcEditor);
        // Far from its neighbours, which stand four pixels away on the identity.
        bkc.editor->leaveField(0, "0");
        bkc.set(0, 20, 255);
        const Point point = bkc.at(0, 20);
        EXPECT_EQ(bkc.editor->press(kGraph, {point.x + dx, point.y}), hit) << dx;
    }
}

TEST(ToneEditor, APressOnTheOutermostPixelsIsIgnored) {
    Editing tnc(kCmykEditor);
    EXPECT_FALSE(dialog::isInsideGraph(kGraph, {0, 100}));
    EXPECT_FALSE(dialog::isInsideGraph(kGraph, {100, 0}));
    EXPECT_FALSE(dialog::isInsideGraph(kGraph, {278, 100}));
    EXPECT_TRUE(dialog::isInsideGraph(kGraph, {277, 276}));
    EXPECT_FALSE(tnc.editor->press({20, 20}, {19, 19}));
}

TEST(ToneEditor, DraggingSetsTheLevelOfEverySelectedChannelAndMarksIt) {
    Editing tnc(kCmykEditor);
    tnc.drag(0, 8, 200);
    for (int32_t channel = 0; channel < 4; ++channel) {
        EXPECT_EQ(tnc.value(channel, 128), 200);
        EXPECT_TRUE(tnc.marked(channel, 128));
    }
    EXPECT_EQ(tnc.value(0, 64), 113);  // the spline follows at once
    tnc.editor->release();
    EXPECT_FALSE(tnc.editor->move(kGraph, {138, 100}));
}

TEST(ToneEditor, AnInkButtonLeavesTheOthersAlone) {
    Editing tnc(kCmykEditor);
    tnc.editor->select(1u << 2);
    tnc.drag(2, 8, 200);
    EXPECT_EQ(tnc.value(2, 128), 200);
    EXPECT_EQ(tnc.value(0, 128), 128);
}

TEST(ToneEditor, ADragBeyondThePlotStopsAtItsEdges) {
    Editing tnc(kCmykEditor);
    tnc.drag(0, 8, 128);
    tnc.editor->move(kGraph, {138, -500});
    EXPECT_EQ(tnc.value(0, 128), 255);
    tnc.editor->move(kGraph, {138, 5000});
    EXPECT_EQ(tnc.value(0, 128), 0);
}

TEST(ToneEditor, TheContrastDragScalesTheGridFromTheSavedCurve) {
    Editing tnc(kCmykEditor);
    tnc.drag(0, 8, 200);
    tnc.editor->release();
    tnc.editor->setContrast(true);
    tnc.drag(0, 16, 100);
    tnc.editor->move(kGraph, {266, 10 + 255 - 51});  // from the curve as it was, not from 100
    EXPECT_EQ(tnc.value(0, 255), 51);
    EXPECT_EQ(tnc.value(0, 128), 200 * 51 / 255);
    EXPECT_TRUE(tnc.marked(0, 128));
    EXPECT_FALSE(tnc.marked(0, 64));  // flags stay as they were
}

TEST(ToneEditor, TheContrastDragLeavesACurveThatEndsAtZero) {
    Editing tnc(kCmykEditor);
    tnc.drag(0, 16, 0);
    tnc.editor->release();
    tnc.editor->setContrast(true);
    tnc.drag(0, 16, 200);
    EXPECT_EQ(tnc.value(0, 255), 0);
}

TEST(ToneEditor, TheBlackCorrectionContrastScalesPointsBetweenThePositionsToo) {
    Editing bkc(kBkcEditor);
    flagsOf(*bkc.curve, 0)[130] = 1;  // a file may mark any level
    valuesOf(*bkc.curve, 0)[130] = 200;
    bkc.editor->setContrast(true);
    bkc.drag(0, 64, 51);
    EXPECT_EQ(bkc.value(0, 130), 200 * 51 / 255);
}

TEST(ToneEditor, ARightClickDuringADragRestoresTheCurve) {
    Editing tnc(kCmykEditor);
    tnc.drag(0, 4, 20);
    tnc.editor->release();
    const std::vector<int16_t> before(tnc.curve->table, tnc.curve->table + 4 * 512);
    tnc.drag(0, 8, 200);
    EXPECT_TRUE(tnc.editor->pressRight(kGraph, {50, 50}));
    EXPECT_EQ(std::vector<int16_t>(tnc.curve->table, tnc.curve->table + 4 * 512), before);
    EXPECT_FALSE(tnc.editor->isDragging());
}

TEST(ToneEditor, ARightClickRemovesAnInnerPoint) {
    Editing tnc(kCmykEditor);
    tnc.drag(0, 8, 200);
    tnc.editor->release();
    EXPECT_TRUE(tnc.editor->pressRight(kGraph, tnc.at(0, 8)));
    EXPECT_FALSE(tnc.marked(0, 128));
    EXPECT_EQ(tnc.value(0, 128), 128);
}

TEST(ToneEditor, ARightClickCannotRemoveAnEndPoint) {
    Editing tnc(kCmykEditor);
    for (const int32_t index : {0, 16}) tnc.editor->pressRight(kGraph, tnc.at(0, index));
    EXPECT_TRUE(tnc.marked(0, 0));
    EXPECT_TRUE(tnc.marked(0, 255));
}

TEST(ToneEditor, TypingFiftyPercentStores128) {
    Editing tnc(kCmykEditor);
    tnc.editor->stepIndex(3);
    tnc.editor->leaveField(1, "50");
    EXPECT_EQ(tnc.value(1, 48), 128);
    EXPECT_TRUE(tnc.marked(1, 48));
    EXPECT_EQ(tnc.editor->fieldText(1), "50");
}

TEST(ToneEditor, ATypedValueIsClampedHoweverLargeAndJunkIsZero) {
    Editing tnc(kCmykEditor);
    tnc.editor->stepIndex(3);
    for (const auto& [text, value] : {std::pair<std::string, int>{"300", 255}, {"-4", 0}, {"abc", 0},
                                      {std::string(10000, '9'), 255}, {"1e300", 255}, {" 20 %", 51}}) {
        tnc.editor->leaveField(0, text);
        EXPECT_EQ(tnc.value(0, 48), value) << text.substr(0, 20);
    }
}

TEST(ToneEditor, AnEmptyFieldRemovesAnInnerPoint) {
    Editing tnc(kCmykEditor);
    tnc.editor->stepIndex(3);
    tnc.editor->leaveField(0, "50");
    tnc.editor->leaveField(0, "");
    EXPECT_FALSE(tnc.marked(0, 48));
    EXPECT_EQ(tnc.value(0, 48), 48);
}

TEST(ToneEditor, AnEmptyFieldDoesNotRemoveAnEndPoint) {
    Editing tnc(kCmykEditor);
    tnc.editor->leaveField(0, "");
    tnc.editor->stepIndex(16);
    tnc.editor->leaveField(0, "");
    EXPECT_TRUE(tnc.marked(0, 0));
    EXPECT_TRUE(tnc.marked(0, 255));
}

TEST(ToneEditor, ShowsTheInputOfTheSelectedPositionInPercent) {
    Editing tnc(kCmykEditor);
    EXPECT_EQ(tnc.editor->inputText(), "0 %");
    tnc.editor->stepIndex(8);
    EXPECT_EQ(tnc.editor->inputText(), "50 %");
    tnc.editor->stepIndex(100);
    EXPECT_EQ(tnc.editor->inputText(), "100 %");
}

TEST(ToneEditor, TheKeyboardMovesAndUnmarksTheSelectedPosition) {
    Editing tnc(kCmykEditor);
    tnc.editor->stepIndex(8);
    tnc.editor->stepLevel(5);
    EXPECT_EQ(tnc.value(3, 128), 133);
    EXPECT_TRUE(tnc.editor->unmark());
    EXPECT_EQ(tnc.value(3, 128), 128);
    tnc.editor->stepIndex(-100);
    EXPECT_FALSE(tnc.editor->unmark());  // an end point
}

TEST(ToneEditor, ResetKeepsTitleAndPath) {
    Editing tnc(kCmykEditor, "curves/a.tnc");
    tnc.editor->leaveTitle("press 3");
    tnc.drag(0, 8, 200);
    tnc.editor->reset();
    EXPECT_EQ(tnc.value(0, 128), 128);
    EXPECT_FALSE(tnc.marked(0, 128));
    EXPECT_EQ(tnc.editor->title(), "press 3");
    EXPECT_EQ(tnc.editor->path(), "curves/a.tnc");
}

TEST(ToneEditor, NewAsksFirst) {
    Editing tnc(kCmykEditor, "curves/a.tnc");
    tnc.editor->leaveField(0, "50");
    Answers answers;
    answers.yes = false;
    EXPECT_FALSE(tnc.editor->startNew(answers));
    EXPECT_EQ(answers.questions, 1);
    EXPECT_EQ(tnc.value(0, 0), 128);
    answers.yes = true;
    EXPECT_TRUE(tnc.editor->startNew(answers));
    EXPECT_EQ(tnc.value(0, 0), 0);
    EXPECT_STREQ(tnc.curve->path, "");
    tnc.editor->save(answers);  // no file any more, so it asks for a name
    EXPECT_EQ(answers.saves, 1);
}

TEST(ToneEditor, AnotherFileTakesThePlaceOfThisOneAndIsTakenBackWithIt) {
    const test::TempFolder folder;
    Answers answers;
    Editing other(kCmykEditor);
    other.editor->leaveField(0, "40");
    answers.path = folder.path("other.tnc");
    ASSERT_TRUE(other.editor->save(answers));
    Editing tnc(kCmykEditor, "curves/a.tnc");
    EXPECT_EQ(tnc.editor->open(folder.path("other.tnc"), answers), std::nullopt);
    EXPECT_EQ(answers.unsavedAsked, 0);
    EXPECT_EQ(tnc.value(0, 0), 102);
    EXPECT_EQ(tnc.editor->path(), folder.path("other.tnc"));
    EXPECT_FALSE(tnc.editor->isChanged());
    EXPECT_TRUE(tnc.editor->undo());
    EXPECT_EQ(tnc.value(0, 0), 0);
    EXPECT_EQ(tnc.editor->path(), "curves/a.tnc");
}

TEST(ToneEditor, AnotherFileIsNotOpenedOverChangesThatThePersonStaysWith) {
    const test::TempFolder folder;
    Answers answers;
    Editing other(kBkcEditor);
    answers.path = folder.path("other.bkc");
    ASSERT_TRUE(other.editor->save(answers));
    Editing bkc(kBkcEditor, "curves/a.bkc");
    bkc.editor->leaveField(0, "50");
    answers.unsaved = dialog::Unsaved::stay;
    EXPECT_EQ(bkc.editor->open(folder.path("other.bkc"), answers), std::nullopt);
    EXPECT_EQ(answers.unsavedAsked, 1);
    EXPECT_EQ(bkc.value(0, 0), 128);
    EXPECT_EQ(bkc.editor->path(), "curves/a.bkc");
}

TEST(ToneEditor, AFileOfAnotherKindIsNotOpenedAndTheReasonIsSaid) {
    const test::TempFolder folder;
    test::writeFile(folder.path("notes.bkc"), "text");
    Editing bkc(kBkcEditor, "curves/a.bkc");
    Answers answers;
    EXPECT_EQ(bkc.editor->open(folder.path("notes.bkc"), answers), Problem{texts::kNoBlackCurve});
    EXPECT_EQ(bkc.editor->open(folder.path("none.bkc"), answers), Problem{texts::kFileMissing});
    EXPECT_EQ(bkc.editor->path(), "curves/a.bkc");
    EXPECT_FALSE(bkc.editor->canUndo());
}

TEST(ToneEditor, AFolderMeansANewFileSavedIntoIt) {
    const test::TempFolder folder;
    const std::string separator(1, platform::kSeparator);
    Editing tnc(kCmykEditor, folder.folder().string() + separator);
    EXPECT_STREQ(tnc.curve->path, "");
    Answers answers;
    answers.path = folder.path("new");
    tnc.editor->save(answers);
    EXPECT_EQ(answers.startedFrom, folder.folder().string() + separator);
    EXPECT_TRUE(test::exists(folder.path("new.tnc")));  // the extension is added
    tnc.editor->save(answers);
    EXPECT_EQ(answers.saves, 1);  // it has a file now
}

TEST(ToneEditor, SaveAsKeepsAnExtensionInCapitalsAndDoesNothingWhenCancelled) {
    const test::TempFolder folder;
    Editing bkc(kBkcEditor);
    Answers answers;
    bkc.editor->saveAs(answers);
    EXPECT_TRUE(std::filesystem::is_empty(folder.folder()));
    answers.path = folder.path("K.BKC");
    bkc.editor->saveAs(answers);
    EXPECT_TRUE(test::exists(folder.path("K.BKC")));
    EXPECT_EQ(std::string_view(bkc.curve->path), folder.path("K.BKC"));
}

TEST(ToneEditor, AFailedSaveAsIsSilentAndStaysWithoutAFile) {
    const test::TempFolder folder;
    Editing tnc(kCmykEditor);
    Answers answers;
    answers.path = folder.path("missing/a.tnc");
    tnc.editor->saveAs(answers);
    tnc.editor->save(answers);
    EXPECT_EQ(answers.saves, 2);
}

TEST(ToneEditor, DccSettingsAreReadAsIntegers) {
    Editing dcc(kDccEditor);
    dcc.editor->leaveSetting(DccField::dpiX, "600");
    dcc.editor->leaveSetting(DccField::totalInk, "12.9 x");
    dcc.editor->leaveSetting(DccField::lightInk, "");
    EXPECT_EQ(dcc.settings.DPIX, 600);
    EXPECT_EQ(dcc.settings.WINK, 12);
    EXPECT_EQ(dcc.settings.LCLM, 0);
    EXPECT_EQ(dcc.editor->settingText(DccField::dpiX), "600");
}

TEST(ToneEditor, ADccIsSavedWithItsSettings) {
    const test::TempFolder folder;
    Editing dcc(kDccEditor);
    dcc.editor->leaveSetting(DccField::dpiX, "600");
    dcc.editor->leaveSetting(DccField::dpiY, "600");
    dcc.editor->leaveTitle("printer");
    Answers answers;
    answers.path = folder.path("p.dcc");
    dcc.editor->saveAs(answers);
    const std::string text = test::readText(folder.path("p.dcc"));
    EXPECT_NE(text.find("DEV    = printer;"), std::string::npos);
    EXPECT_NE(text.find("DPI    = 600;"), std::string::npos);
}

TEST(ToneEditor, ALongTitleIsCutAtAWholeCharacter) {
    Editing tnc(kCmykEditor);
    std::string text(62, 'a');
    text += "\x83\x5c";  // one character of two bytes
    tnc.editor->leaveTitle(text);
    EXPECT_EQ(tnc.editor->title(), std::string(62, 'a'));
}

TEST(ToneEditor, APointIsAsEasyToHitOnAFinerScreen) {
    for (const auto& [dpi, away, hit] : {std::tuple{96, 4, false}, {192, 7, true}, {192, 8, false}}) {
        Editing tnc(kCmykEditor);
        tnc.editor->setResolution(dpi);
        tnc.set(0, 8, 255);  // far from the line of the others
        tnc.editor->select(1);
        const Point point = tnc.at(0, 8);
        EXPECT_EQ(tnc.editor->isOnPoint(kGraph, {point.x + away, point.y}), hit) << dpi;
        EXPECT_EQ(tnc.editor->press(kGraph, {point.x + away, point.y}), hit) << dpi;
    }
}

TEST(ToneEditor, TheCurveAsItWasOpenedStaysInSight) {
    Editing bkc(kBkcEditor);
    const auto opened = bkc.editor->openedCurve(kGraph, 0, 0).line;
    EXPECT_EQ(opened.size(), 256u);
    EXPECT_EQ(opened.front(), bkc.at(0, 0));
    bkc.drag(0, 32, 250);
    bkc.editor->release();
    EXPECT_NE(bkc.editor->curveOf(kGraph, 0, 0).line, opened);
    EXPECT_EQ(bkc.editor->openedCurve(kGraph, 0, 0).line, opened);
}

TEST(ToneEditor, WhatStandsUnderTheCursorIsRead) {
    Editing tnc(kCmykEditor);
    const auto reading = tnc.editor->readingAt(kGraph, {10 + 64, 10 + 255 - 191});
    ASSERT_TRUE(reading.has_value());
    EXPECT_EQ(reading->input, "25 %");
    EXPECT_EQ(reading->output, "75 %");
    const Point point = tnc.at(0, 8);  // beside a point it is the point that is read
    EXPECT_EQ(tnc.editor->readingAt(kGraph, {point.x + 3, point.y - 3})->output, "50 %");
    EXPECT_FALSE(tnc.editor->readingAt(kGraph, {0, 0}).has_value());
}

TEST(ToneEditor, ACurveThatFallsIsNoticed) {
    Editing tnc(kCmykEditor);
    EXPECT_FALSE(tnc.editor->falls());
    tnc.drag(1, 4, 200);
    tnc.editor->release();
    EXPECT_FALSE(tnc.editor->falls());
    tnc.drag(1, 8, 100);
    tnc.editor->release();
    EXPECT_TRUE(tnc.editor->falls());
    tnc.editor->undo();
    EXPECT_FALSE(tnc.editor->falls());
}

TEST(ToneEditor, TheKeysOfTheLastPointHonourTheContrastBox) {
    Editing tnc(kCmykEditor), bare(kCmykEditor);
    for (Editing* const editing : {&tnc, &bare}) {
        editing->editor->setContrast(editing == &tnc);
        editing->editor->stepIndex(8);
        editing->editor->markSelected();
        editing->editor->chooseEnd(true);
        editing->editor->stepLevel(-55);
        EXPECT_EQ(editing->value(0, 255), 200);
    }
    EXPECT_EQ(tnc.value(0, 128), 128 * 200 / 255);  // the whole curve is scaled
    EXPECT_EQ(bare.value(0, 128), 128);
}

TEST(ToneEditor, InsertKeepsAPositionAsItIs) {
    Editing tnc(kCmykEditor);
    tnc.editor->stepIndex(4);
    EXPECT_TRUE(tnc.editor->markSelected());
    EXPECT_TRUE(tnc.marked(0, 64));
    EXPECT_EQ(tnc.value(0, 64), 64);
    EXPECT_TRUE(tnc.editor->undo());
    EXPECT_FALSE(tnc.marked(0, 64));
}

}  // namespace
}  // namespace ko::tone
