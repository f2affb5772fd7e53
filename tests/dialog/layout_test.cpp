// How the tone dialogs look. KOLINK_PICTURES names a folder that takes a picture of each.
#include <gtest/gtest.h>

#include "tests/dialog/layout.h"

using namespace ko::test;

namespace {

void inEach(const std::function<void(const ToneDialogKind&, const DialogWindow&)>& check) {
    for (const ToneDialogKind* kind : kToneDialogs)
        openDialog(kind->edit, "", [&](const DialogWindow& dialog) {
            SCOPED_TRACE(kind->name);
            check(*kind, dialog);
        });
}

TEST(DialogLayout, EveryTextFitsItsControl) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) { expectTextsFit(dialog); });
}

TEST(DialogLayout, NoControlCoversAnotherOrLeavesTheDialog) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) { expectNothingIsCovered(dialog); });
}

TEST(DialogLayout, EveryLetterHasAGlyph) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) { expectEveryLetterHasAGlyph(dialog); });
}

TEST(DialogLayout, TheGraphIsSquareAndTheStripsFollowIt) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) {
        const RECT graph = placeOf(dialog.item(IDC_GRAPH), dialog.handle());
        const RECT output = placeOf(dialog.item(IDC_STRIP_OUTPUT), dialog.handle());
        const RECT input = placeOf(dialog.item(IDC_STRIP_INPUT), dialog.handle());
        EXPECT_EQ(graph.right - graph.left, graph.bottom - graph.top);
        EXPECT_GT(graph.right - graph.left, 200);
        EXPECT_EQ(output.bottom, graph.bottom);
        EXPECT_EQ(input.right, graph.right);
        EXPECT_GE(input.top, graph.bottom);
    });
}

TEST(DialogLayout, EveryControlHasANameOfItsOwnOrALabelBeforeIt) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) { expectEveryControlHasAName(dialog); });
}

TEST(DialogLayout, TheGraphShowsTheCurveOfEachChannelInItsColour) {
    inEach([](const ToneDialogKind& kind, const DialogWindow& dialog) {
        const int fields[] = {IDC_PERCENT_C, IDC_PERCENT_M, IDC_PERCENT_Y};
        for (int step = 0; step < kind.last / 2; ++step) dialog.key(IDC_GRAPH, VK_RIGHT);
        for (int channel = 0; channel < 3 && kind.channels > 1; ++channel)
            dialog.enter(fields[channel], std::to_wstring(65 + 8 * channel));
        dialog.enter(IDC_PERCENT_K, L"40");
        const Picture picture = pictureOf(dialog);
        for (const uint32_t colour : {0x008c8cu, 0xdc00dcu, 0x969600u})
            EXPECT_EQ(picture.count(colour) > 50, kind.channels > 1) << std::hex << colour;
        keepPicture(picture, kind.name);
    });
}

}  // namespace
