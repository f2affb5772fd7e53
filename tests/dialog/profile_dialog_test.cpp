// The CMYK profile dialog in its real window: files, texts and the frame around its pages.
#include "tests/dialog/profile.h"
#include "tests/dialog/language.h"

#include <gtest/gtest.h>

#include <commctrl.h>
#include <commdlg.h>

#include <cstring>

#include "resources/dialog_ids.h"
#include "tests/dialog/layout.h"
#include "tests/dialog/lifetime.h"

using namespace ko::test;

namespace {

constexpr int kMessageText = 0xffff;

// Shift-JIS of 無題 and 表.
constexpr char kUntitled[] = "\x96\xb3\x91\xe8", kTable[] = "\x95\x5c";

Outcome edit(std::string_view path, const std::function<void(const DialogWindow&)>& drive,
             HWND owner = nullptr) {
    return openDialog(jKoCmykProfileDlg, path, drive, owner);
}

void answerWith(const DialogWindow& dialog, const std::string& path) {
    dialog.asked().chooseFile(path);
    dialog.waitForQuiet();
}

std::wstring folderShown(const DialogWindow& fileDialog) {
    wchar_t folder[MAX_PATH] = {};
    ::SendMessageW(fileDialog.handle(), CDM_GETFOLDERPATH, MAX_PATH, reinterpret_cast<LPARAM>(folder));
    return folder;
}

TEST(ProfileDialog, OpensOnANewProfileWithItsTwoTabs) {
    const Outcome outcome = edit("", [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), profileCaption(""));
        EXPECT_EQ(dialog.text(IDC_TITLE), L"無題");
        EXPECT_EQ(dialog.text(IDC_COMMENT), L"");
        EXPECT_EQ(::SendMessageW(dialog.item(IDC_PAGES), TCM_GETITEMCOUNT, 0, 0), 2);
        const std::wstring titles[] = {shown(L"ﾄｰﾝｶｰﾌﾞ"), shown(L"ｶﾗｰｺﾚｸｼｮﾝ")};
        for (int tab = 0; tab < 2; ++tab) {
            wchar_t text[40] = {};
            TCITEMW item{};
            item.mask = TCIF_TEXT;
            item.pszText = text;
            item.cchTextMax = 40;
            ::SendMessageW(dialog.item(IDC_PAGES), TCM_GETITEMW, static_cast<WPARAM>(tab),
                           reinterpret_cast<LPARAM>(&item));
            EXPECT_EQ(std::wstring(item.pszText), titles[tab]);
        }
        EXPECT_NE(pageOf(dialog).item(IDC_GRAPH), nullptr);
    });
    EXPECT_EQ(outcome.result, 0);
}

TEST(ProfileDialog, ShowsTheFileThatItOpens) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path, kTable, "first\r\nsecond");
    edit(path, [&](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), profileCaption(path));
        EXPECT_EQ(dialog.text(IDC_TITLE), L"表");
        EXPECT_EQ(dialog.text(IDC_COMMENT), L"first\r\nsecond");
        const DialogWindow page = pageOf(dialog);
        for (int step = 0; step < 32; ++step) page.key(IDC_GRAPH, VK_RIGHT);
        EXPECT_EQ(page.text(IDC_PERCENT_C), L"63");  // 160
        EXPECT_EQ(page.text(IDC_PERCENT_M), L"50");
    });
}

TEST(ProfileDialog, AMissingFileIsToldAndNoDialogShown) {
    const TempFolder folder;
    const std::string path = folder.path("missing.icc");
    const Outcome outcome = edit(path, [](const DialogWindow& message) {
        EXPECT_EQ(message.caption(), shown(L"ﾌﾟﾛﾌｧｲﾙｴﾗｰ"));
        EXPECT_EQ(message.text(kMessageText), shown(L"ﾌﾟﾛﾌｧｲﾙが見つかりません。"));
        EXPECT_EQ(message.item(IDC_PAGES), nullptr);
        ::SendMessageW(message.handle(), WM_CLOSE, 0, 0);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, path);
}

TEST(ProfileDialog, NameAndCommentAreSavedWithTheFile) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const Outcome outcome = edit(path, [](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L" 表 1 ", IDOK);
        EXPECT_EQ(dialog.text(IDC_TITLE), L"表 1");
        dialog.enter(IDC_COMMENT, L"一行目\r二行目", IDOK);
        EXPECT_EQ(dialog.text(IDC_COMMENT), L"一行目\r\n二行目");
        dialog.click(IDC_SAVE);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, path);
    const Profile saved = loadedLink(path);
    EXPECT_STREQ(saved->name, "\x95\x5c 1");
    EXPECT_STREQ(saved->comment, "\x88\xea\x8d\x73\x96\xda\r\n\x93\xf1\x8d\x73\x96\xda");
    EXPECT_EQ(saved->grid[1000], 0x12345678u);
    EXPECT_EQ(saved->curveFlags[0][32], 1);
    EXPECT_EQ(saved->curveValues[5][16], 40);
}

TEST(ProfileDialog, CharactersThatShiftJisLacksBecomeQuestionMarks) {
    edit("", [](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"a\x263a\xe9z", IDOK);
        EXPECT_EQ(dialog.text(IDC_TITLE), L"a??z");
    });
}

TEST(ProfileDialog, ACommentOf499BytesIsSavedAndReadBack) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    std::string comment = "line\r\n";
    while (comment.size() < 498) comment += kTable;
    comment += "x";
    writeLink(path, "n", comment.c_str());
    edit(path, [](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"other", IDC_COMMENT);
        dialog.focus(IDOK);
        dialog.click(IDC_SAVE);
    });
    EXPECT_EQ(loadedLink(path)->comment, comment);
}

TEST(ProfileDialog, NewAsksFirstAndThenForgetsTheFile) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path, "press", "comment");
    const Outcome outcome = edit(path, [&](const DialogWindow& dialog) {
        const DialogWindow page = pageOf(dialog);
        for (int step = 0; step < 32; ++step) page.key(IDC_GRAPH, VK_RIGHT);
        dialog.press(IDC_NEW);
        const DialogWindow question = dialog.asked();
        EXPECT_EQ(question.caption(), shown(L"ﾌﾟﾛﾌｧｲﾙ"));
        EXPECT_EQ(question.text(kMessageText), shown(L"初期化します。いいですか？"));
        question.press(IDNO);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_TITLE), L"press");
        EXPECT_EQ(page.text(IDC_PERCENT_C), L"63");
        dialog.press(IDC_NEW);
        dialog.asked().press(IDYES);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.caption(), profileCaption("") + L" *");
        EXPECT_EQ(dialog.text(IDC_TITLE), L"無題");
        EXPECT_EQ(dialog.text(IDC_COMMENT), L"");
        EXPECT_EQ(page.text(IDC_PERCENT_C), L"50");
        dialog.press(IDC_SAVE);  // has no file now, so it asks
        dialog.asked().press(IDCANCEL);
        dialog.waitForQuiet();
    });
    EXPECT_EQ(outcome.path, "");
    EXPECT_STREQ(loadedLink(path)->name, "press");
}

TEST(ProfileDialog, SaveAsWritesANewFileWithTheExtension) {
    const TempFolder folder;
    const Outcome outcome = edit(folder.path(""), [&](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), profileCaption(""));
        dialog.enter(IDC_TITLE, L"new", IDOK);
        dialog.press(IDC_SAVE_AS);
        const DialogWindow ask = dialog.asked();
        EXPECT_EQ(folderShown(ask), wide(folder.folder().string()));
        answerWith(dialog, "fresh");
        EXPECT_EQ(dialog.caption(), profileCaption(folder.path("fresh.icc")));
        dialog.enter(IDC_TITLE, L"newer", IDOK);
        dialog.click(IDC_SAVE);  // asks no more
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, folder.path("fresh.icc"));
    EXPECT_STREQ(loadedLink(folder.path("fresh.icc"))->name, "newer");
}

TEST(ProfileDialog, SaveWithoutAFileStartsFromTheRootFolder) {
    const TempFolder folder;
    edit(folder.path(""), [&](const DialogWindow& dialog) {
        dialog.press(IDC_SAVE);
        const DialogWindow ask = dialog.asked();
        EXPECT_LE(folderShown(ask).size(), 3u) << "not a root";
        EXPECT_EQ(ask.text(0x470) + L"\n", shownKinds(L"ICCﾌﾟﾛﾌｧｲﾙ (*.ICC)|*.icc|"));
        answerWith(dialog, folder.path("chosen.ICC"));
        EXPECT_EQ(dialog.caption(), profileCaption(folder.path("chosen.ICC")));
    });
    EXPECT_TRUE(exists(folder.path("chosen.ICC")));
}

TEST(ProfileDialog, ATableIsSavedAsAProfileBesideIt) {
    const TempFolder folder;
    const std::string path = folder.path("table.lut");
    writeFile(path, Bytes(972 + 4 * 100, 0));
    const Outcome outcome = edit(path, [&](const DialogWindow& dialog) {
        dialog.click(IDC_SAVE);
        EXPECT_EQ(dialog.caption(), profileCaption(path + ".icc"));
    });
    EXPECT_EQ(outcome.path, path + ".icc");
    EXPECT_EQ(readFile(path).size(), 972u + 400u);
    EXPECT_EQ(loadedLink(path + ".icc")->grid[0], 0u);
}

TEST(ProfileDialog, OkSavesAndReturns1) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const Outcome outcome = edit(path, [](const DialogWindow& dialog) {
        dialog.type(IDC_TITLE, L"typed");  // the field keeps the focus
        dialog.leave(IDOK);
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.path, path);
    EXPECT_STREQ(loadedLink(path)->name, "typed");
}

TEST(ProfileDialog, OkWithoutAFileAsksForOneAndStaysOpenWithoutIt) {
    const TempFolder folder;
    Outcome outcome = edit("", [&](const DialogWindow& dialog) {
        dialog.press(IDOK);
        dialog.asked().press(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_TRUE(dialog.isOpen());
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, "");
    outcome = edit("", [&](const DialogWindow& dialog) {
        dialog.press(IDOK);
        dialog.asked().chooseFile(folder.path("ok"));
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.path, folder.path("ok.icc"));
    EXPECT_STREQ(loadedLink(folder.path("ok.icc"))->name, kUntitled);
}

TEST(ProfileDialog, CancelLeavesTheFileAsItWas) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const Bytes before = readFile(path);
    const Outcome outcome = edit(path, [](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"other", IDOK);
        dialog.leave(IDCANCEL);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, path);
    EXPECT_EQ(readFile(path), before);
}

TEST(ProfileDialog, CancelAfterASaveReportsTheFile) {
    const TempFolder folder;
    const Outcome outcome = edit("", [&](const DialogWindow& dialog) {
        dialog.press(IDC_SAVE_AS);
        answerWith(dialog, folder.path("kept.icc"));
        dialog.leave(IDCANCEL);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, folder.path("kept.icc"));
}

TEST(ProfileDialog, AFileThatCannotBeWrittenStaysAsItWas) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const Bytes before = readFile(path);
    HANDLE reader = INVALID_HANDLE_VALUE;
    const Outcome outcome = edit(path, [&](const DialogWindow& dialog) {
        reader = ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                               0, nullptr);
        ASSERT_NE(reader, INVALID_HANDLE_VALUE);
        dialog.enter(IDC_TITLE, L"other", IDOK);
        dialog.press(IDC_SAVE);
        const DialogWindow problem = dialog.asked();
        EXPECT_NE(problem.text(kMessageText).find(wide(path)), std::wstring::npos);
        EXPECT_EQ(problem.item(IDNO), nullptr);  // nothing is closing: nothing to discard
        problem.press(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_TITLE), L"other");
        dialog.leave(IDCANCEL);
    });
    ::CloseHandle(reader);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(readFile(path), before);
}

TEST(ProfileDialog, ReopensWhereItWasClosed) {
    const auto place = [](const DialogWindow& dialog) {
        RECT area;
        ::GetWindowRect(dialog.handle(), &area);
        return area;
    };
    for (const POINT corner : {POINT{31, 47}, POINT{60, 20}}) {
        edit("", [&](const DialogWindow& dialog) {
            ::SetWindowPos(dialog.handle(), nullptr, corner.x, corner.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            dialog.leave(IDCANCEL);
        });
        edit("", [&](const DialogWindow& dialog) {
            EXPECT_EQ(place(dialog).left, corner.x);
            EXPECT_EQ(place(dialog).top, corner.y);
        });
    }
}

TEST(ProfileDialog, ReturnInAFieldTakesItOverAndLeavesTheFileAlone) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    edit(path, [&](const DialogWindow& dialog) {
        dialog.type(IDC_TITLE, L" by key ");
        dialog.pressKey(IDC_TITLE, VK_RETURN);
        EXPECT_TRUE(eventually([&] { return dialog.text(IDC_TITLE) == L"by key"; }));
        EXPECT_TRUE(dialog.isOpen());
    });
    EXPECT_STREQ(loadedLink(path)->name, "press");
}

TEST(ProfileDialog, EscapeOverChangesAsksAndStaysWhenThatIsChosen) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const Outcome outcome = edit(path, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"mine", IDOK);
        EXPECT_TRUE(dialog.caption().ends_with(L" *"));
        dialog.pressKey(IDC_TITLE, VK_ESCAPE);
        dialog.asked().press(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_TITLE), L"mine");
        dialog.pressKey(IDC_TITLE, VK_ESCAPE);
        dialog.asked().press(IDYES);  // saves
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_STREQ(loadedLink(path)->name, "mine");
}

// A press profile would be overwritten by a link that prints nothing.
TEST(ProfileDialog, APressProfileIsRefusedAndStaysAsItIs) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    const std::string content = readText(testData("CGATS001Compat-v2-micro.icc"));
    writeFile(path, content);
    const Outcome outcome = edit(path, [&](const DialogWindow& message) {
        const std::wstring text = message.text(kMessageText);
        EXPECT_NE(text.find(wide(path)), text.npos);
        EXPECT_NE(text.find(L"CMYK"), text.npos);
        EXPECT_NE(text.find(L"Lab"), text.npos);
        EXPECT_EQ(message.item(IDC_PAGES), nullptr);
        ::SendMessageW(message.handle(), WM_CLOSE, 0, 0);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(readText(path), content);
}

TEST(ProfileDialog, AWriteProtectedFileIsSaidToBeSo) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    ASSERT_TRUE(::SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
    const Outcome outcome = edit(path, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"mine", IDOK);
        dialog.press(IDOK);
        const DialogWindow problem = dialog.asked();
        const std::wstring text = problem.text(kMessageText);
        EXPECT_NE(text.find(shown(L"書き込み禁止か、ｱｸｾｽ権限がありません。")), text.npos);
        problem.press(IDNO);  // discards
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    ::SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_STREQ(loadedLink(path)->name, "press");
}

TEST(ProfileDialog, OkDoesNotCloseOverAProfileThatCannotBeSaved) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const Outcome outcome = edit(path, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"mine", IDOK);
        const HANDLE other = ::CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                           0, nullptr);
        ASSERT_NE(other, INVALID_HANDLE_VALUE);
        dialog.press(IDOK);
        const DialogWindow problem = dialog.asked();
        EXPECT_NE(problem.text(kMessageText).find(wide(path)), std::wstring::npos);
        problem.press(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_TRUE(dialog.isOpen());
        dialog.press(IDOK);
        const DialogWindow again = dialog.asked();
        ::CloseHandle(other);
        again.press(IDRETRY);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_STREQ(loadedLink(path)->name, "mine");
}

TEST(ProfileDialog, ReturnInTheCommentBeginsALine) {
    const HWND owner = newOwner();
    edit("", [&](const DialogWindow& dialog) {
        dialog.type(IDC_COMMENT, L"a");
        ::SendMessageW(dialog.item(IDC_COMMENT), EM_SETSEL, 1, 1);
        ::PostMessageW(dialog.item(IDC_COMMENT), WM_KEYDOWN, VK_RETURN, 0x1c0001);
        waitForPosted(owner);
        ::PostMessageW(dialog.item(IDC_COMMENT), WM_CHAR, 'b', 0);
        waitForPosted(owner);
        EXPECT_EQ(dialog.text(IDC_COMMENT), L"a\r\nb");
    }, owner);
    ::DestroyWindow(owner);
}

// What ends in unusual ways.

TEST(ProfileDialogLifetime, ClosingTheWindowCancels) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const Outcome outcome = edit(path, [](const DialogWindow& dialog) {
        ::SendMessageW(pageOf(dialog).handle(), WM_CLOSE, 0, 0);  // of a page alone: nothing
        EXPECT_TRUE(dialog.isOpen());
        ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, path);
}

TEST(ProfileDialogLifetime, AnOwnerThatIsDestroyedTakesTheDialogWithIt) {
    const HWND owner = newOwner();
    ASSERT_NE(owner, nullptr);
    const Outcome outcome = edit("", [&](const DialogWindow& dialog) {
        const DialogWindow page = pageOf(dialog);
        page.drag(page.point(0, 64, 0), page.point(0, 64, 100));
        postDestruction(owner);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    }, owner);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_FALSE(::IsWindow(owner));
}

TEST(ProfileDialogLifetime, AnOwnerThatIsDestroyedUnderAQuestionTakesBothWithIt) {
    const HWND owner = newOwner();
    ASSERT_NE(owner, nullptr);
    const Outcome outcome = edit("", [&](const DialogWindow& dialog) {
        dialog.press(IDC_NEW);
        const DialogWindow question = dialog.asked();
        postDestruction(owner);
        EXPECT_TRUE(eventually([&] { return !question.isOpen() && !dialog.isOpen(); }));
    }, owner);
    EXPECT_EQ(outcome.result, 0);
}

TEST(ProfileDialogLifetime, APageThatIsDestroyedLeavesTheFrameWorking) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const HWND owner = newOwner();
    const Outcome outcome = edit(path, [&](const DialogWindow& dialog) {
        const HWND page = pageOf(dialog).handle();
        postCall(owner, [page] { ::DestroyWindow(page); });
        EXPECT_TRUE(eventually([&] { return !::IsWindow(page); }));
        choosePage(dialog, kCorrectionPage);
        choosePage(dialog, kTonePage);
        dialog.press(IDC_NEW);
        dialog.asked().press(IDYES);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_TITLE), L"無題");
    }, owner);
    EXPECT_EQ(outcome.result, 0);
    ::DestroyWindow(owner);
}

TEST(ProfileDialogLifetime, ASecondOpeningFromTheMessageLoopDoesNotDisturbTheFirst) {
    const TempFolder folder;
    const std::string path = folder.path("outer.icc");
    writeLink(path);
    writeLink(folder.path("inner.icc"));
    char inner[260] = {};
    folder.path("inner.icc").copy(inner, 259);
    const HWND owner = newOwner();
    const Outcome outcome = edit(path, [&](const DialogWindow& dialog) {
        pageOf(dialog).enter(IDC_PERCENT_K, L"30");
        postCall(owner, [&] { jKoCmykProfileDlg(owner, inner); });
        HWND second = nullptr;
        ASSERT_TRUE(eventually([&] {
            second = ::GetLastActivePopup(owner);
            return second != owner && second != dialog.handle() && ::IsWindowVisible(second);
        }));
        const DialogWindow other(second);
        EXPECT_EQ(pageOf(other).text(IDC_PERCENT_K), L"0");
        pageOf(other).enter(IDC_PERCENT_K, L"60");
        other.leave(IDOK);
        EXPECT_TRUE(eventually([&] { return !other.isOpen(); }));
        EXPECT_EQ(pageOf(dialog).text(IDC_PERCENT_K), L"30");
        dialog.leave(IDOK);
    }, owner);
    ::DestroyWindow(owner);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(loadedLink(path)->curveValues[3][0], 77);
    EXPECT_EQ(loadedLink(inner)->curveValues[3][0], 153);
}

TEST(ProfileDialogLifetime, TenThousandPastedCharactersAreCutOrClampedInEveryField) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    for (const wchar_t character : {L'9', L'漢', L'\x263a', L'\n'}) {
        writeLink(path);
        const std::wstring text(10000, character);
        onClipboard(text);
        edit(path, [&](const DialogWindow& dialog) {
            const DialogWindow page = pageOf(dialog);
            const auto paste = [&](const DialogWindow& window, int field, size_t limit) {
                const HWND control = window.item(field);
                window.focus(field);
                ::SendMessageW(control, EM_SETSEL, 0, -1);
                ::SendMessageW(control, WM_PASTE, 0, 0);
                EXPECT_LE(window.text(field).size(), limit) << field;
                dialog.focus(IDOK);
                // Without the control's limit, as another program may set it.
                ::SendMessageW(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
                window.focus(field);
                dialog.focus(IDOK);
                EXPECT_LE(window.text(field).size(), limit) << field;
            };
            paste(dialog, IDC_TITLE, 63);
            paste(dialog, IDC_COMMENT, 2 * 499);
            for (const int field : {IDC_PERCENT_C, IDC_PERCENT_M, IDC_PERCENT_Y, IDC_PERCENT_K})
                paste(page, field, 10);
            EXPECT_EQ(page.text(IDC_PERCENT_K), character == L'9' ? L"100" : L"0");
            dialog.click(IDC_SAVE);
        });
        const Profile saved = loadedLink(path);
        EXPECT_LT(std::strlen(saved->name), sizeof saved->name);
        EXPECT_LT(std::strlen(saved->comment), sizeof saved->comment);
        EXPECT_EQ(saved->curveValues[3][0], character == L'9' ? 255 : 0);
    }
}

TEST(ProfileDialogLifetime, TwoHundredOpeningsLeaveNothingBehind) {
    const auto useAndClose = [] {
        edit("", [](const DialogWindow& dialog) {
            const DialogWindow page = pageOf(dialog);
            page.drag(page.point(0, 64, 0), page.point(0, 64, 100));
            ::RedrawWindow(dialog.handle(), nullptr, nullptr,
                           RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
            choosePage(dialog, kCorrectionPage);
            dialog.leave(IDCANCEL);
        });
    };
    useAndClose();  // what is made once
    const unsigned objects = drawingObjects(), places = windows();
    for (int time = 0; time < 200; ++time) useAndClose();
    EXPECT_LT(drawingObjects(), objects + 100);
    EXPECT_LT(windows(), places + 100);
}

}  // namespace
