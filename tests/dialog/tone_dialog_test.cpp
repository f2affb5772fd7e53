// The three tone dialogs, opened through their exported functions and used like a person would.
#include <gtest/gtest.h>

#include <filesystem>

#include "resources/dialog_ids.h"
#include "tests/dialog/drop.h"
#include "tests/dialog/driver.h"
#include "tests/dialog/language.h"

using namespace ko::test;

namespace {

constexpr int kMessageText = 0xffff;

std::wstring captionWith(const ToneDialogKind& kind, const std::string& path) {
    return shown(kind.caption) + wide(path) + L"]";
}

// Answers the file dialog that a button has opened.
void answerWith(const DialogWindow& dialog, std::string_view name) {
    dialog.asked().chooseFile(name);
    dialog.waitForQuiet();
}

class ToneDialogs : public ::testing::TestWithParam<const ToneDialogKind*> {
protected:
    const ToneDialogKind& kind() const { return *GetParam(); }
    Outcome open(std::string_view path, const std::function<void(const DialogWindow&)>& drive) {
        return openDialog(kind().edit, path, drive);
    }
    std::string file(std::string_view name) const { return folder_.path(name) + kind().extension; }
    std::string fresh(std::string_view name) const {
        return freshFile(kind(), folder_, std::string(name) + kind().extension);
    }
    static void moveTo(const DialogWindow& dialog, int32_t index) {
        for (int32_t step = 0; step < index; ++step) dialog.key(IDC_GRAPH, VK_RIGHT);
    }
    TempFolder folder_;
};
INSTANTIATE_TEST_SUITE_P(Kinds, ToneDialogs, ::testing::ValuesIn(kToneDialogs),
                         [](const auto& instance) { return instance.param->name; });

TEST_P(ToneDialogs, AFolderOpensAnIdentityCurveAndSaveThenAsksForANameInThatFolder) {
    const Outcome outcome = open(folder_.folder().string() + "\\", [&](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), captionWith(kind(), ""));
        EXPECT_EQ(dialog.text(IDC_TITLE), L"無題");
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"0");
        dialog.press(IDC_SAVE);
        answerWith(dialog, "new");
        EXPECT_EQ(dialog.caption(), captionWith(kind(), file("new")));
        dialog.leave(IDOK);
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.path, file("new"));
    EXPECT_EQ(readText(file("new")), readText(fresh("expected")));
}

TEST_P(ToneDialogs, Typing50InAPercentageFieldStores128) {
    const std::string path = fresh("curve");
    const Outcome outcome = open(path, [&](const DialogWindow& dialog) {
        moveTo(dialog, 3);
        dialog.enter(IDC_PERCENT_K, L"50");
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"50");
        EXPECT_EQ(dialog.text(IDC_INPUT_K), kind().last == 64 ? L"5 %" : L"19 %");
        dialog.click(IDC_SAVE);
        dialog.leave(IDOK);
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.path, path);
    const int32_t black = kind().channels == 1 ? 0 : 3, x = kind().last == 64 ? 12 : 48;
    const CurveFile saved = loaded(kind(), path);
    EXPECT_EQ(saved.value(black, x), 128);
    EXPECT_TRUE(saved.marked(black, x));
}

TEST_P(ToneDialogs, ClearingTheFieldOfAnEndPointDoesNotRemoveIt) {
    const std::string path = fresh("curve");
    open(path, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_PERCENT_K, L"20");
        dialog.enter(IDC_PERCENT_K, L"");
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"20");
        moveTo(dialog, kind().last);
        dialog.enter(IDC_PERCENT_K, L"80");
        dialog.enter(IDC_PERCENT_K, L"");
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"80");
        dialog.click(IDC_SAVE);
    });
    const int32_t black = kind().channels == 1 ? 0 : 3;
    const CurveFile saved = loaded(kind(), path);
    EXPECT_EQ(saved.value(black, 0), 51);
    EXPECT_EQ(saved.value(black, 255), 204);
}

TEST_P(ToneDialogs, ClearingTheFieldOfAnInnerPointRemovesIt) {
    const std::string path = fresh("curve");
    const std::string before = readText(path);
    open(path, [&](const DialogWindow& dialog) {
        moveTo(dialog, 3);
        dialog.enter(IDC_PERCENT_K, L"50");
        dialog.click(IDC_SAVE);
        EXPECT_NE(readText(path), before);
        dialog.enter(IDC_PERCENT_K, L"");
        dialog.click(IDC_SAVE);
    });
    EXPECT_EQ(readText(path), before);
}

TEST_P(ToneDialogs, ARightClickDuringADragRestoresTheCurveAsItWasBefore) {
    const std::string path = fresh("curve");
    open(path, [&](const DialogWindow& dialog) {
        const int32_t last = kind().last;
        dialog.drag(dialog.point(last, last, 255), dialog.point(last, last, 128));
        dialog.drop(dialog.point(last, last, 128));
        dialog.click(IDC_SAVE);
        const std::string before = readText(path);
        const int32_t level = dialog.levelAt(dialog.point(last, last, 128).y);
        dialog.drag(dialog.point(last, last, level), dialog.point(last, last, 30));
        EXPECT_NE(dialog.text(IDC_PERCENT_K), L"50");
        dialog.mouse(WM_RBUTTONDOWN, dialog.point(last, last, 30));
        dialog.drop(dialog.point(last, last, 30));
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"50");
        dialog.click(IDC_SAVE);
        EXPECT_EQ(readText(path), before);
    });
}

TEST_P(ToneDialogs, CancelAfterASaveReturns0ButThePathOfTheSavedFile) {
    const Outcome outcome = open("", [&](const DialogWindow& dialog) {
        dialog.press(IDC_SAVE_AS);
        answerWith(dialog, file("kept"));
        dialog.leave(IDCANCEL);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, file("kept"));
    EXPECT_TRUE(exists(file("kept")));
}

TEST_P(ToneDialogs, ADragMovesThePointAndMarksIt) {
    const std::string path = fresh("curve");
    open(path, [&](const DialogWindow& dialog) {
        const int32_t last = kind().last, middle = last / 2;
        const POINT to = dialog.point(middle, last, 200);
        dialog.drag(dialog.point(middle, last, 128), to);
        dialog.drop(to);
        dialog.mouse(WM_MOUSEMOVE, dialog.point(middle, last, 20));  // not held any more
        dialog.click(IDC_SAVE);
        const CurveFile saved = loaded(kind(), path);
        const int32_t inks = kind().channels == 1 ? 1 : 4;  // GCR and UCR are not selected
        for (int32_t channel = 0; channel < kind().channels; ++channel) {
            const bool moved = channel < inks;
            EXPECT_EQ(saved.value(channel, 128), moved ? dialog.levelAt(to.y) : 128) << channel;
            EXPECT_EQ(saved.marked(channel, 128), moved) << channel;
        }
        dialog.mouse(WM_RBUTTONDOWN, to);  // takes the point away again
        dialog.click(IDC_SAVE);
        EXPECT_EQ(readText(path), readText(fresh("expected")));
    });
}

TEST_P(ToneDialogs, AMissingFileIsToldAndNoDialogShown) {
    const std::string path = file("missing");
    const Outcome outcome = open(path, [&](const DialogWindow& message) {
        EXPECT_EQ(message.caption(), shown(L"ﾌﾟﾛﾌｧｲﾙｴﾗｰ"));
        EXPECT_EQ(message.text(kMessageText), shown(kind().missingFile) + wide(path) + L"]");
        EXPECT_EQ(message.item(IDC_GRAPH), nullptr);
        EXPECT_NE(message.item(IDOK) ? message.item(IDOK) : message.item(IDCANCEL), nullptr);
        ::SendMessageW(message.handle(), WM_CLOSE, 0, 0);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.path, path);
}

TEST_P(ToneDialogs, NewAsksFirstAndThenForgetsTheFile) {
    const std::string path = fresh("curve");
    const Outcome outcome = open(path, [&](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), captionWith(kind(), path));
        dialog.enter(IDC_PERCENT_K, L"50");
        dialog.press(IDC_NEW);
        const DialogWindow question = dialog.asked();
        EXPECT_EQ(question.caption(), shown(L"ﾌﾟﾛﾌｧｲﾙ"));
        EXPECT_EQ(question.text(kMessageText), shown(L"初期化します。いいですか？"));
        question.press(IDNO);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"50");
        EXPECT_EQ(dialog.caption(), captionWith(kind(), path) + L" *");
        dialog.press(IDC_NEW);
        dialog.asked().press(IDYES);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"0");
        EXPECT_EQ(dialog.text(IDC_TITLE), L"無題");
        EXPECT_EQ(dialog.caption(), captionWith(kind(), "") + L" *");
        dialog.press(IDC_SAVE);  // has no file now, so it asks
        dialog.asked().press(IDCANCEL);
        dialog.waitForQuiet();
        dialog.leave(IDOK);
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.path, "");
}

TEST_P(ToneDialogs, AFileThatIsNotReplacedKeepsItsContent) {
    const std::string path = file("other");
    writeFile(path, "theirs");
    open("", [&](const DialogWindow& dialog) {
        dialog.press(IDC_SAVE_AS);
        const DialogWindow ask = dialog.asked();
        ask.chooseFile(path);
        ask.asked().press(IDNO);
        ask.waitForQuiet();
        ask.press(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.caption(), captionWith(kind(), ""));
    });
    EXPECT_EQ(readText(path), "theirs");
}

TEST_P(ToneDialogs, AFileThatIsDroppedIsOpenedAndOneOfAnotherKindIsRefused) {
    const std::string path = fresh("dropped"), notes = file("notes");
    open(path, [](const DialogWindow& dialog) {
        dialog.enter(IDC_PERCENT_K, L"50");
        dialog.press(IDC_SAVE);
        dialog.waitForQuiet();
    });
    writeFile(notes, "text");
    const Outcome outcome = open("", [&](const DialogWindow& dialog) {
        drop(dialog, {5, 5}, {wide(notes)}, true);
        const DialogWindow refused = dialog.asked();
        EXPECT_NE(refused.text(kMessageText).find(wide(notes)), std::wstring::npos);
        refused.press(IDOK);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.caption(), captionWith(kind(), ""));
        drop(dialog, {5, 5}, {wide(path)});
        EXPECT_EQ(dialog.caption(), captionWith(kind(), path));
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"50");
        dialog.leave(IDOK);
    });
    EXPECT_EQ(outcome.path, path);
}

TEST_P(ToneDialogs, AFileThatCannotBeWrittenStaysAsItWasAndTheWorkIsKept) {
    const std::string path = fresh("curve");
    const std::string before = readText(path);
    const HANDLE reader = ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    const Outcome outcome = open(path, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_PERCENT_K, L"50");
        dialog.press(IDC_SAVE);
        const DialogWindow problem = dialog.asked();
        EXPECT_NE(problem.text(kMessageText).find(wide(path)), std::wstring::npos);
        problem.press(IDC_SAVE_AS);
        EXPECT_TRUE(eventually([&] { return !problem.isOpen(); }));
        answerWith(dialog, file("other"));
        EXPECT_EQ(dialog.caption(), captionWith(kind(), file("other")));
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"50");
        dialog.leave(IDOK);
    });
    ::CloseHandle(reader);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.path, file("other"));
    EXPECT_EQ(readText(path), before);
    EXPECT_EQ(loaded(kind(), file("other")).value(kind().channels == 1 ? 0 : 3, 0), 128);
}

TEST_P(ToneDialogs, AFileThatAnotherProgramHoldsIsSaidToBeInUse) {
    const std::string path = fresh("curve");
    const std::string before = readText(path);
    const HANDLE other = ::CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                       OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(other, INVALID_HANDLE_VALUE);
    const Outcome outcome = open(path, [&](const DialogWindow& message) {
        EXPECT_EQ(message.item(IDC_GRAPH), nullptr);
        const std::wstring text = message.text(kMessageText);
        EXPECT_NE(text.find(wide(path)), text.npos);
        EXPECT_NE(text.find(shown(L"別のﾌﾟﾛｸﾞﾗﾑが使用中です。")), text.npos);
        ::SendMessageW(message.handle(), WM_CLOSE, 0, 0);
    });
    ::CloseHandle(other);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(readText(path), before);
}

TEST_P(ToneDialogs, AWriteProtectedFileIsSaidToBeSoAndTheWorkCanBeSavedElsewhere) {
    const std::string path = fresh("curve");
    const std::string before = readText(path);
    ASSERT_TRUE(::SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
    const Outcome outcome = open(path, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_PERCENT_K, L"50");
        dialog.press(IDOK);
        const DialogWindow question = dialog.asked();
        question.press(IDYES);  // save the changes
        EXPECT_TRUE(eventually([&] { return !question.isOpen(); }));
        const DialogWindow problem = dialog.asked();
        const std::wstring text = problem.text(kMessageText);
        EXPECT_NE(text.find(wide(path)), text.npos);
        EXPECT_NE(text.find(shown(L"書き込み禁止か、ｱｸｾｽ権限がありません。")), text.npos);
        problem.press(IDC_SAVE_AS);
        EXPECT_TRUE(eventually([&] { return !problem.isOpen(); }));
        dialog.asked().chooseFile(file("other"));
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    ::SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.path, file("other"));
    EXPECT_EQ(readText(path), before);
    EXPECT_EQ(loaded(kind(), file("other")).value(kind().channels == 1 ? 0 : 3, 0), 128);
}

TEST_P(ToneDialogs, ClosingOverChangesAsksWhetherToSaveThem) {
    const std::string path = fresh("curve");
    const Outcome outcome = open(path, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_PERCENT_K, L"50");
        EXPECT_EQ(dialog.caption(), captionWith(kind(), path) + L" *");
        for (const int button : {IDOK, IDCANCEL}) {
            dialog.press(button);
            dialog.asked().press(IDCANCEL);  // back to editing
            dialog.waitForQuiet();
            EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"50");
        }
        ::PostMessageW(dialog.handle(), WM_CLOSE, 0, 0);
        dialog.asked().press(IDYES);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(loaded(kind(), path).value(kind().channels == 1 ? 0 : 3, 0), 128);
}

TEST_P(ToneDialogs, AProfileIsNoCurveFile) {
    const std::string path = file("profile");
    const std::string content = readText(testData("CGATS001Compat-v2-micro.icc"));
    writeFile(path, content);
    const Outcome outcome = open(path, [&](const DialogWindow& message) {
        EXPECT_EQ(message.item(IDC_GRAPH), nullptr);
        EXPECT_NE(message.text(kMessageText).find(wide(path)), std::wstring::npos);
        ::SendMessageW(message.handle(), WM_CLOSE, 0, 0);
    });
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(readText(path), content);
}

TEST_P(ToneDialogs, FullWidthDigitsAreDigitsAndACommaIsADecimalMark) {
    open(fresh("curve"), [&](const DialogWindow& dialog) {
        dialog.enter(IDC_PERCENT_K, L"\uff15\uff10");
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"50");
        dialog.enter(IDC_PERCENT_K, L"12,8");
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"13");
        EXPECT_EQ(dialog.text(IDC_STATUS), L"");
        dialog.enter(IDC_PERCENT_K, L"130");
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"100");
        EXPECT_EQ(dialog.text(IDC_STATUS), shown(L"0 % ～ 100 % に制限しました。"));
    });
}

TEST_P(ToneDialogs, CtrlZTakesTheResetBackAndCtrlYCarriesItOutAgain) {
    open(fresh("curve"), [&](const DialogWindow& dialog) {
        dialog.enter(IDC_PERCENT_K, L"50");
        dialog.click(IDC_RESET);
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"0");
        dialog.pressControlAnd(IDC_GRAPH, 'Z');
        EXPECT_TRUE(eventually([&] { return dialog.text(IDC_PERCENT_K) == L"50"; }));
        dialog.pressControlAnd(IDC_GRAPH, 'Y');
        EXPECT_TRUE(eventually([&] { return dialog.text(IDC_PERCENT_K) == L"0"; }));
    });
}

TEST_P(ToneDialogs, ALetterTypedOnTheGraphIsNoAccessKey) {
    open(fresh("curve"), [&](const DialogWindow& dialog) {
        dialog.enter(IDC_PERCENT_K, L"50");
        dialog.focus(IDC_GRAPH);
        ::PostMessageW(dialog.item(IDC_GRAPH), WM_CHAR, 'r', 0);  // of the button that resets
        ::PostMessageW(dialog.item(IDC_GRAPH), WM_KEYDOWN, VK_RIGHT, 0);
        EXPECT_TRUE(eventually([&] { return dialog.text(IDC_INPUT_K) != L"0 %"; }));
        dialog.key(IDC_GRAPH, VK_LEFT);
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), L"50");
    });
}

TEST_P(ToneDialogs, AnExtensionInCapitalsIsNotAddedAgain) {
    std::string capitals = kind().extension;
    for (char& letter : capitals)
        if (letter != '.') letter = static_cast<char>(letter - 'a' + 'A');
    const std::string path = folder_.path("BIG") + capitals;
    const Outcome outcome = open("", [&](const DialogWindow& dialog) {
        dialog.press(IDC_SAVE_AS);
        answerWith(dialog, path);
    });
    EXPECT_EQ(outcome.path, path);
    EXPECT_TRUE(exists(path));
}

TEST_P(ToneDialogs, ResetKeepsTitleAndPath) {
    const std::string path = fresh("curve");
    open(path, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"press 3");
        moveTo(dialog, 2);
        dialog.enter(IDC_PERCENT_K, L"90");
        dialog.click(IDC_RESET);
        EXPECT_EQ(dialog.text(IDC_TITLE), L"press 3");
        EXPECT_EQ(dialog.caption(), captionWith(kind(), path) + L" *");
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), kind().last == 64 ? L"3" : L"13");
        dialog.click(IDC_SAVE);
    });
    EXPECT_EQ(loaded(kind(), path).table, loaded(kind(), fresh("expected")).table);
}

TEST_P(ToneDialogs, ReturnInAFieldTakesItOverAndNeverClosesTheDialog) {
    open(fresh("curve"), [&](const DialogWindow& dialog) {
        dialog.pressKey(IDC_GRAPH, VK_RETURN);
        dialog.pressKey(IDC_GRAPH, VK_RIGHT);
        EXPECT_TRUE(eventually([&] { return dialog.text(IDC_INPUT_K) != L"0 %"; }));
        dialog.type(IDC_PERCENT_K, L"050");
        dialog.pressKey(IDC_PERCENT_K, VK_RETURN);
        EXPECT_TRUE(eventually([&] { return dialog.text(IDC_PERCENT_K) == L"50"; }));
        EXPECT_TRUE(dialog.isOpen());
    });
}

TEST_P(ToneDialogs, ReturnOnTheButtonPressesOk) {
    const Outcome outcome = open(fresh("curve"), [&](const DialogWindow& dialog) {
        dialog.pressKey(IDOK, VK_RETURN);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(outcome.result, 1);
}

TEST_P(ToneDialogs, EscapeCancels) {
    const Outcome outcome = open(fresh("curve"), [&](const DialogWindow& dialog) {
        dialog.pressKey(IDC_PERCENT_K, VK_ESCAPE);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(outcome.result, 0);
}

TEST_P(ToneDialogs, TheArrowsMoveAPointAndDeleteUnmarksIt) {
    const std::string path = fresh("curve");
    open(path, [&](const DialogWindow& dialog) {
        moveTo(dialog, 4);
        const std::wstring before = dialog.text(IDC_PERCENT_K);
        for (int step = 0; step < 20; ++step) dialog.key(IDC_GRAPH, VK_UP);
        EXPECT_NE(dialog.text(IDC_PERCENT_K), before);
        dialog.key(IDC_GRAPH, VK_DELETE);
        EXPECT_EQ(dialog.text(IDC_PERCENT_K), before);
        dialog.click(IDC_SAVE);
    });
    EXPECT_EQ(readText(path), readText(fresh("expected")));
}

}  // namespace
