// Dialogs that end in unusual ways, texts of any length, and what is left behind.
#include <gtest/gtest.h>

#include "tests/dialog/lifetime.h"

using namespace ko::test;

namespace {

void useAndClose(const ToneDialogKind& kind) {
    openDialog(kind.edit, "", [&](const DialogWindow& dialog) {
        dialog.drag(dialog.point(0, kind.last, 0), dialog.point(0, kind.last, 100));
        ::RedrawWindow(dialog.handle(), nullptr, nullptr,
                       RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        dialog.leave(IDCANCEL);
    });
}

TEST(DialogLifetime, TwoHundredOpeningsLeaveNothingBehind) {
    for (const ToneDialogKind* kind : kToneDialogs) useAndClose(*kind);  // what is made once
    const unsigned objects = drawingObjects(), places = windows();
    for (int time = 0; time < 200; ++time) useAndClose(*kToneDialogs[time % 3]);
    EXPECT_LT(drawingObjects(), objects + 40);  // one object an opening of one kind is 66
    EXPECT_LT(windows(), places + 40);
}

TEST(DialogLifetime, ClosingTheWindowCancels) {
    const TempFolder folder;
    for (const ToneDialogKind* kind : kToneDialogs) {
        const std::string path = freshFile(*kind, folder, kind->name);
        const Outcome outcome = openDialog(kind->edit, path, [](const DialogWindow& dialog) {
            ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
            EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
        });
        EXPECT_EQ(outcome.result, 0);
        EXPECT_EQ(outcome.path, path);
    }
}

TEST(DialogLifetime, AnOwnerThatIsDestroyedTakesTheDialogWithIt) {
    for (const ToneDialogKind* kind : kToneDialogs) {
        const HWND owner = newOwner();
        ASSERT_NE(owner, nullptr);
        const Outcome outcome = openDialog(
            kind->edit, "",
            [&](const DialogWindow& dialog) {
                dialog.drag(dialog.point(0, kind->last, 0), dialog.point(0, kind->last, 100));
                postDestruction(owner);
                EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
            },
            owner);
        EXPECT_EQ(outcome.result, 0);
        EXPECT_FALSE(::IsWindow(owner));
    }
}

TEST(DialogLifetime, ASecondOpeningFromTheMessageLoopDoesNotDisturbTheFirst) {
    const TempFolder folder;
    for (const ToneDialogKind* kind : kToneDialogs) {
        const HWND owner = newOwner();
        char inner[260] = {};
        freshFile(*kind, folder, std::string("inner") + kind->extension).copy(inner, 259);
        const std::string path = freshFile(*kind, folder, std::string("outer") + kind->extension);
        const Outcome outcome = openDialog(
            kind->edit, path,
            [&](const DialogWindow& dialog) {
                dialog.enter(IDC_PERCENT_K, L"30");
                postCall(owner, [&, edit = kind->edit] { edit(owner, inner); });
                HWND second = nullptr;
                ASSERT_TRUE(eventually([&] {
                    second = ::GetLastActivePopup(owner);
                    return second != owner && second != dialog.handle() &&
                           ::IsWindowVisible(second);
                }));
                const DialogWindow other(second);
                EXPECT_EQ(other.text(IDC_PERCENT_K), L"0");
                other.enter(IDC_PERCENT_K, L"60");
                other.click(IDC_SAVE);
                other.leave(IDOK);
                EXPECT_TRUE(eventually([&] { return !other.isOpen(); }));
                EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"30");
                dialog.click(IDC_SAVE);
                dialog.leave(IDOK);
            },
            owner);
        ::DestroyWindow(owner);
        EXPECT_EQ(outcome.result, 1);
        const int32_t black = kind->channels == 1 ? 0 : 3;
        EXPECT_EQ(loaded(*kind, path).value(black, 0), 77);
        EXPECT_EQ(loaded(*kind, inner).value(black, 0), 153);
    }
}

TEST(DialogLifetime, TenThousandPastedCharactersAreCutOrClampedInEveryField) {
    const TempFolder folder;
    for (const wchar_t character : {L'9', L'漢', L'\x263a'}) {
        const std::wstring text(10000, character);
        onClipboard(text);
        for (const ToneDialogKind* kind : kToneDialogs) {
            SCOPED_TRACE(kind->name);
            const std::string path = freshFile(*kind, folder, "curve");
            openDialog(kind->edit, path, [&](const DialogWindow& dialog) {
                for (const int field :
                     {IDC_TITLE, IDC_PERCENT_C, IDC_PERCENT_M, IDC_PERCENT_Y, IDC_PERCENT_K,
                      IDC_PERCENT_GCR, IDC_PERCENT_UCR, IDC_DPI_X, IDC_DPI_Y, IDC_TOTAL_INK,
                      IDC_LIGHT_INK}) {
                    const HWND window = dialog.item(field);
                    if (!window) continue;
                    dialog.focus(field);
                    ::SendMessageW(window, EM_SETSEL, 0, -1);
                    ::SendMessageW(window, WM_PASTE, 0, 0);
                    const auto pasted = dialog.text(field).size();
                    EXPECT_GT(pasted, 0u);
                    EXPECT_LE(pasted, 63u);
                    dialog.focus(IDC_GRAPH);
                    // Without the control's limit, as another program may set it.
                    ::SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
                    dialog.focus(field);
                    dialog.focus(IDC_GRAPH);
                    EXPECT_LE(dialog.text(field).size(), 63u);
                }
                EXPECT_EQ(dialog.text(IDC_PERCENT_K), character == L'9' ? L"100" : L"0");
                if (dialog.item(IDC_DPI_X)) {
                    EXPECT_EQ(dialog.text(IDC_DPI_X), character == L'9' ? L"2147483647" : L"0");
                }
                dialog.click(IDC_SAVE);
            });
            const CurveFile saved = loaded(*kind, path);
            EXPECT_LE(saved.title.size(), 63u);
            EXPECT_EQ(saved.value(kind->channels == 1 ? 0 : 3, 0), character == L'9' ? 255 : 0);
        }
    }
}

}  // namespace
