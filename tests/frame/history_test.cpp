// The steps of an editing, and numbers as people type them.
#include "frame/dialog/history.h"

#include <gtest/gtest.h>

#include "frame/dialog/typed.h"
#include "frame/scan.h"

namespace ko::dialog {
namespace {

// A number that is edited.
struct Number {
    int capture() const { return value; }
    void restore(int other) { value = other; }
    void set(int other) {
        const int before = std::exchange(value, other);
        addStep(history, *this, before);
    }
    int value = 0;
    History history;
};

TEST(History, AHundredStepsAreTakenBackAndCarriedOutAgain) {
    Number number;
    for (int step = 1; step <= 100; ++step) number.set(step);
    for (int step = 99; step >= 0; --step) {
        EXPECT_TRUE(number.history.undo());
        EXPECT_EQ(number.value, step);
    }
    EXPECT_FALSE(number.history.undo());
    while (number.history.redo()) {}
    EXPECT_EQ(number.value, 100);
}

TEST(History, AnEditThatChangesNothingIsNoStep) {
    Number number;
    number.set(0);
    EXPECT_FALSE(number.history.canUndo());
    EXPECT_FALSE(number.history.isChanged());
}

TEST(History, AnEditAfterAStepBackForgetsTheWayForward) {
    Number number;
    number.set(1);
    number.history.undo();
    number.set(2);
    EXPECT_FALSE(number.history.redo());
    EXPECT_EQ(number.value, 2);
}

TEST(History, WhatWasSavedIsNoChangeAndEveryWayFromItIsOne) {
    Number number;
    number.set(1);
    EXPECT_TRUE(number.history.isChanged());
    number.history.markSaved();
    EXPECT_FALSE(number.history.isChanged());
    number.history.undo();
    EXPECT_TRUE(number.history.isChanged());
    number.history.redo();
    EXPECT_FALSE(number.history.isChanged());
    number.history.undo();
    number.set(2);  // there is no way back to what was saved
    EXPECT_TRUE(number.history.isChanged());
    number.history.undo();
    EXPECT_TRUE(number.history.isChanged());
}

TEST(TypedNumber, FullWidthDigitsAreDigits) {
    EXPECT_EQ(typedNumber(std::u16string_view(u"\uff11\uff12\uff0e\uff15")), "12.5");
    EXPECT_EQ(typedNumber(std::u16string_view(u"\uff0d\uff13\u3000%")), "-3 %");
    EXPECT_EQ(typedNumber(std::u16string_view(u"\u4e00")), "?");
}

TEST(TypedNumber, ACommaIsADecimalMark) {
    EXPECT_EQ(typedRealIn("12,5"), 12.5);
    EXPECT_EQ(typedIntegerIn("12,5"), 13);
    EXPECT_EQ(typedIntegerIn("12,4"), 12);
    EXPECT_EQ(typedIntegerIn("12"), 12);
}

TEST(TypedNumber, TheWholeTextHasToBeANumber) {
    for (const char* const number : {"1", "-1", "+1", " 12,5 ", ".5", "5.", "50 %"})
        EXPECT_TRUE(isTypedNumber(number)) << number;
    for (const char* const other : {"", " ", "a", "1a", "%", ".", "1,2,3", "--1"})
        EXPECT_FALSE(isTypedNumber(other)) << other;
}

}  // namespace
}  // namespace ko::dialog
