// What differs between the three tone dialogs, in their real windows.
#include <gtest/gtest.h>

#include "resources/dialog_ids.h"
#include "tests/dialog/driver.h"
#include "tests/dialog/language.h"

using namespace ko::test;

namespace {

constexpr int kFilterBox = 0x470;  // of the system's file dialog
using Drive = std::function<void(const DialogWindow&)>;

void inEach(const std::function<void(const ToneDialogKind&, const DialogWindow&)>& check) {
    for (const ToneDialogKind* kind : kToneDialogs)
        openDialog(kind->edit, "", [&](const DialogWindow& dialog) {
            SCOPED_TRACE(kind->name);
            check(*kind, dialog);
        });
}

// Drives a dialog on a new file; what it has saved at the end.
CurveFile edited(const ToneDialogKind& kind, const Drive& drive) {
    const TempFolder folder;
    const std::string path = freshFile(kind, folder, "curve");
    openDialog(kind.edit, path, [&](const DialogWindow& dialog) {
        drive(dialog);
        dialog.click(IDC_SAVE);
    });
    return loaded(kind, path);
}

bool takesHold(const DialogWindow& dialog, POINT at) {
    dialog.drag(at, {at.x, 5});  // to the top
    const bool held = dialog.text(IDC_PERCENT_K) == L"100";
    dialog.mouse(WM_RBUTTONDOWN, at);  // undone
    dialog.drop(at);
    return held;
}

TEST(ToneDialogDifferences, ButtonsAreThoseOfTheChannels) {
    inEach([](const ToneDialogKind& kind, const DialogWindow& dialog) {
        for (const int button : {IDC_ALL_INKS, IDC_INK_C, IDC_INK_M, IDC_INK_Y, IDC_INK_K})
            EXPECT_EQ(dialog.item(button) != nullptr, kind.channels > 1) << button;
        for (const int button : {IDC_INK_GCR, IDC_INK_UCR})
            EXPECT_EQ(dialog.item(button) != nullptr, kind.channels == 6) << button;
        if (kind.channels > 1) {
            EXPECT_TRUE(dialog.isChecked(IDC_ALL_INKS));
        }
    });
}

TEST(ToneDialogDifferences, ValueFieldsAreThoseOfTheChannels) {
    inEach([](const ToneDialogKind& kind, const DialogWindow& dialog) {
        EXPECT_NE(dialog.item(IDC_PERCENT_K), nullptr);
        EXPECT_NE(dialog.item(IDC_INPUT_K), nullptr);
        for (const int field : {IDC_PERCENT_C, IDC_PERCENT_M, IDC_PERCENT_Y})
            EXPECT_EQ(dialog.item(field) != nullptr, kind.channels > 1) << field;
        for (const int field : {IDC_PERCENT_GCR, IDC_PERCENT_UCR})
            EXPECT_EQ(dialog.item(field) != nullptr, kind.channels == 6) << field;
    });
}

TEST(ToneDialogDifferences, AnInkButtonSelectsItsChannelAlone) {
    const int buttons[] = {IDC_INK_C, IDC_INK_M, IDC_INK_Y, IDC_INK_K, IDC_INK_GCR, IDC_INK_UCR};
    for (const ToneDialogKind* kind : {&kTnc, &kDcc})
        for (int32_t chosen = 0; chosen < kind->channels; ++chosen) {
            const CurveFile saved = edited(*kind, [&](const DialogWindow& dialog) {
                dialog.click(buttons[chosen]);
                EXPECT_TRUE(dialog.isChecked(buttons[chosen]));
                EXPECT_FALSE(dialog.isChecked(IDC_ALL_INKS));
                dialog.drag(dialog.point(8, 16, 128), dialog.point(8, 16, 255));
                dialog.drop(dialog.point(8, 16, 255));
            });
            for (int32_t channel = 0; channel < kind->channels; ++channel)
                EXPECT_EQ(saved.value(channel, 128), channel == chosen ? 255 : 128)
                    << kind->name << ' ' << chosen << ' ' << channel;
        }
}

TEST(ToneDialogDifferences, AllInksOfDccAreCmykWithoutGcrAndUcr) {
    const CurveFile saved = edited(kDcc, [](const DialogWindow& dialog) {
        dialog.click(IDC_INK_GCR);
        dialog.click(IDC_ALL_INKS);
        dialog.drag(dialog.point(8, 16, 128), dialog.point(8, 16, 255));
        dialog.drop(dialog.point(8, 16, 255));
    });
    for (int32_t channel = 0; channel < 6; ++channel)
        EXPECT_EQ(saved.value(channel, 128), channel < 4 ? 255 : 128) << channel;
}

TEST(ToneDialogDifferences, BlackCorrectionHas65PositionsTheOthers17) {
    const CurveFile bkc = edited(kBkc, [](const DialogWindow& dialog) {
        for (int index = 0; index < 3; ++index) dialog.key(IDC_GRAPH, VK_RIGHT);
        dialog.enter(IDC_PERCENT_K, L"20");
    });
    EXPECT_TRUE(bkc.marked(0, 12));
    const CurveFile tnc = edited(kTnc, [](const DialogWindow& dialog) {
        for (int index = 0; index < 3; ++index) dialog.key(IDC_GRAPH, VK_RIGHT);
        dialog.enter(IDC_PERCENT_C, L"20");
        for (int index = 0; index < 60; ++index) dialog.key(IDC_GRAPH, VK_RIGHT);
        EXPECT_EQ(dialog.text(IDC_INPUT_C), L"100 %");
    });
    EXPECT_TRUE(tnc.marked(0, 48));
}

TEST(ToneDialogDifferences, APointIsHitUnderFourPixelsAcrossUnderThreeInBlackCorrection) {
    inEach([](const ToneDialogKind& kind, const DialogWindow& dialog) {
        // The last point stands alone on its right side.
        const POINT end = dialog.point(kind.last, kind.last, 255);
        dialog.drag(end, dialog.point(kind.last, kind.last, 100));
        dialog.drop(end);
        const POINT at = dialog.point(
            kind.last, kind.last, dialog.levelAt(dialog.point(kind.last, kind.last, 100).y));
        const int across = kind.last == 64 ? 3 : 4;
        EXPECT_TRUE(takesHold(dialog, {at.x + across - 1, at.y}));
        EXPECT_FALSE(takesHold(dialog, {at.x + across, at.y}));
        EXPECT_TRUE(takesHold(dialog, {at.x, at.y + 3}));
        EXPECT_FALSE(takesHold(dialog, {at.x, at.y + 4}));
    });
}

TEST(ToneDialogDifferences, TheContrastDragScalesEveryLevelOfBlackCorrection) {
    const TempFolder folder;
    const std::string path = folder.path("curve.bkc");
    writeFile(path, "TONE   = 0,0\nTONE   = 130,200\nTONE   = 255,255\n");
    openDialog(kBkc.edit, path, [&](const DialogWindow& dialog) {
        dialog.click(IDC_CONTRAST);
        const POINT to = dialog.point(64, 64, 128);
        dialog.drag(dialog.point(64, 64, 255), to);
        dialog.drop(to);
        dialog.click(IDC_SAVE);
        const int32_t level = dialog.levelAt(to.y);
        // Level 130 lies between two grid positions.
        EXPECT_EQ(loaded(kBkc, path).value(0, 130), 200 * level / 255);
        EXPECT_EQ(loaded(kBkc, path).value(0, 255), level);
    });
}

TEST(ToneDialogDifferences, TheContrastDragScalesTheGridOfTheOthersAndLeavesTheFlags) {
    for (const ToneDialogKind* kind : {&kTnc, &kDcc}) {
        int32_t level = 0;
        const CurveFile saved = edited(*kind, [&](const DialogWindow& dialog) {
            for (int index = 0; index < 8; ++index) dialog.key(IDC_GRAPH, VK_RIGHT);
            dialog.enter(IDC_PERCENT_M, L"80");  // 204
            dialog.click(IDC_CONTRAST);
            const POINT to = dialog.point(16, 16, 128);
            dialog.drag(dialog.point(16, 16, 255), to);
            dialog.drop(to);
            level = dialog.levelAt(to.y);
        });
        EXPECT_EQ(saved.value(1, 128), 204 * level / 255) << kind->name;
        EXPECT_EQ(saved.value(1, 255), level) << kind->name;
        EXPECT_TRUE(saved.marked(1, 128));
        EXPECT_FALSE(saved.marked(1, 64));
    }
}

TEST(ToneDialogDifferences, BlackCorrectionSavesItsTitle) {
    const CurveFile saved = edited(
        kBkc, [](const DialogWindow& dialog) { dialog.enter(IDC_TITLE, L"印刷機 3"); });
    EXPECT_EQ(saved.title, "\x88\xf3\x8d\xfc\x8b\x40 3");  // Shift-JIS
}

TEST(ToneDialogDifferences, DccSavesThePrinterAndItsSettings) {
    const CurveFile saved = edited(kDcc, [](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"printer");
        dialog.enter(IDC_DPI_X, L"600");
        dialog.enter(IDC_DPI_Y, L"300x");
        dialog.enter(IDC_TOTAL_INK, L" 240.9");
        dialog.enter(IDC_LIGHT_INK, L"-3");
        EXPECT_EQ(dialog.text(IDC_TOTAL_INK), L"240");
        dialog.enter(IDC_DPI_Y, L"");
        EXPECT_EQ(dialog.text(IDC_DPI_Y), L"0");
        dialog.enter(IDC_DPI_Y, L"300x");
    });
    EXPECT_EQ(saved.title, "printer");
    EXPECT_EQ(saved.dpiX, 600);
    EXPECT_EQ(saved.dpiY, 300);
    EXPECT_EQ(saved.totalInk, 240);
    EXPECT_EQ(saved.lightInk, -3);
}

TEST(ToneDialogDifferences, DccWithoutAFileBeginsWithSettingsOf0) {
    openDialog(kDcc.edit, "", [](const DialogWindow& dialog) {
        for (const int field : {IDC_DPI_X, IDC_DPI_Y, IDC_TOTAL_INK, IDC_LIGHT_INK})
            EXPECT_EQ(dialog.text(field), L"0");
    });
}

TEST(ToneDialogDifferences, TheFileDialogOffersTheKindOfFile) {
    inEach([](const ToneDialogKind& kind, const DialogWindow& dialog) {
        dialog.press(IDC_SAVE_AS);
        const DialogWindow ask = dialog.asked();
        EXPECT_EQ(ask.text(kFilterBox) + L"\n", shownKinds(kind.filter));
        ask.press(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.caption(), shown(kind.caption) + L"]");
    });
}

TEST(ToneDialogDifferences, ResetTakesEveryChannelBack) {
    for (const ToneDialogKind* kind : {&kTnc, &kDcc}) {
        const int fields[] = {IDC_PERCENT_C, IDC_PERCENT_M,   IDC_PERCENT_Y,
                              IDC_PERCENT_K, IDC_PERCENT_GCR, IDC_PERCENT_UCR};
        const CurveFile saved = edited(*kind, [&](const DialogWindow& dialog) {
            dialog.key(IDC_GRAPH, VK_RIGHT);
            for (int32_t channel = 0; channel < kind->channels; ++channel)
                dialog.enter(fields[channel], L"70");
            dialog.click(IDC_RESET);
        });
        for (int32_t channel = 0; channel < kind->channels; ++channel) {
            EXPECT_EQ(saved.value(channel, 16), 16) << kind->name << channel;
            EXPECT_FALSE(saved.marked(channel, 16)) << kind->name << channel;
        }
    }
}

}  // namespace
