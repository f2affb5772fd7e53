// The calibration editor, opened through its exported function and used like a person would, in
// the language that the system has.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <random>
#include <set>

#include "kolink/calib_dialog.h"
#include "tests/calib/sets.h"
#include "tests/dialog/language.h"
#include "tests/dialog/layout.h"
#include "tests/dialog/lifetime.h"

using namespace ko::test;

namespace {

constexpr int kMessageText = 0xffff;
constexpr int kFilterBox = 0x470;  // of the system's file dialog
using Drive = std::function<void(const DialogWindow&)>;

// What the dialog says, in the order of its controls.
struct Words {
    std::vector<std::wstring> labels, buttons;
    std::wstring all, channels, captionStart, captionEnd, question, filter, firstChannel;
    bool yearLast;
};

const Words& words() {
    static const Words japanese = {
        {L"タイトル(&T)：", L"出力", L"入力", L"作成日：", L"用途：", L"チャンネル：", L"チャンネル(&H)：",
         L"設定値(&V)：", L"→"},
        {L"基準点の編集", L"相対編集(&R)", L"追加・変更(&D)", L"カーブを初期化する(&I)", L"新規作成(&N)",
         L"上書き保存(&S)", L"名前を付けて保存(&A)", L"OK", L"ｷｬﾝｾﾙ"},
        L"全チャンネル", L"3 チャンネル", L"ink編集 - [", L"]", L"初期化します。いいですか？",
        L"ｷｬﾘﾌﾞﾚｰｼｮﾝﾌｧｲﾙ (*.clb)", L"チャンネル 1", false};
    static const Words english = {
        {L"&Title:", L"Output", L"Input", L"Created:", L"Use:", L"Channels:", L"C&hannel:", L"&Values:",
         L"→"},
        {L"Edit reference points", L"&Relative editing", L"A&dd / Change", L"&Initialize curve", L"&New",
         L"&Save", L"Save &As...", L"OK", L"Cancel"},
        L"All channels", L"3 channels", L"Edit ink - [", L"]", L"Everything is reset. Is that all right?",
        L"Calibration file (*.clb)", L"Channel 1", true};
    static const Words chinese = {
        {L"标题(&T)：", L"输出", L"输入", L"创建日期：", L"用途：", L"通道：", L"通道(&H)：", L"设定值(&V)：",
         L"→"},
        {L"编辑基准点", L"相对编辑(&R)", L"添加／更改(&D)", L"初始化曲线(&I)", L"新建(&N)", L"保存(&S)",
         L"另存为(&A)...", L"确定", L"取消"},
        L"全通道", L"3 通道", L"编辑 ink - [", L"]", L"要进行初始化吗？", L"校准文件 (*.clb)", L"通道 1",
        false};
    return language() == "ja" ? japanese : language() == "zh" ? chinese : english;
}

int32_t edit(const CalibSet& set, const Drive& drive, HWND owner = nullptr) {
    ::SetCursorPos(0, 0);  // what the pointer says on its own is then outside every graph
    int32_t result = -1;
    openDialog([&] { result = jKoCalibEditCurveDlg(owner, set.get()); },
               [&](const DialogWindow& dialog) {
                   drive(dialog);
                   // Cancel would offer to take the changes back; OK leaves them in the set.
                   if (dialog.isOpen()) dialog.leave(IDOK);
               });
    return result;
}

CalibSet inkSet(int32_t channels = 3, int32_t range = 255, int32_t limit = 255) {
    CalibSet set = newSet(channels, range, limit);
    std::strcpy(set->desc, "ink");
    return set;
}

// What saving the set would write.
std::string fileOf(const CalibSet& set) {
    const TempFolder folder;
    const std::string path(set->path);
    const std::string copy = folder.path("expected.clb");
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), copy.c_str()), 1);
    std::strcpy(set->path, path.c_str());
    return readText(copy);
}

std::vector<std::wstring> entries(const DialogWindow& dialog) {
    const HWND list = dialog.item(IDC_CHANNEL);
    std::vector<std::wstring> texts;
    for (LRESULT at = 0; at < ::SendMessageW(list, CB_GETCOUNT, 0, 0); ++at) {
        wchar_t text[200] = {};
        ::SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(text));
        texts.emplace_back(text);
    }
    return texts;
}

// With the keyboard: the choice of another entry is told to the dialog as from a person.
void choose(const DialogWindow& dialog, int entry) {
    dialog.focus(IDC_CHANNEL);
    dialog.key(IDC_CHANNEL, VK_HOME);
    for (int step = 0; step < entry; ++step) dialog.key(IDC_CHANNEL, VK_DOWN);
    EXPECT_EQ(::SendMessageW(dialog.item(IDC_CHANNEL), CB_GETCURSEL, 0, 0), entry);
}

POINT plot(const DialogWindow& dialog) {
    RECT area;
    ::GetClientRect(dialog.item(IDC_GRAPH), &area);
    return {area.right - 23, area.bottom - 23};
}
POINT place(const DialogWindow& dialog, const CalibSet& set, double x, double y) {
    const POINT size = plot(dialog);
    return {static_cast<int>(10 + x * size.x / set->range),
            static_cast<int>(10 + size.y - y * size.y / set->limit)};
}
float valueAt(const DialogWindow& dialog, const CalibSet& set, int row) {
    const double height = plot(dialog).y;
    return static_cast<float>(set->limit * (height - row + 10) / height);
}

// Texts

TEST(CalibDialog, SpeaksTheLanguageOfTheUser) {
    edit(inkSet(), [](const DialogWindow& dialog) {
        std::vector<std::wstring> labels, buttons;
        for (const HWND control : controlsOf(dialog.handle())) {
            const bool ownText = ::GetDlgCtrlID(control) == kMessageText ||
                                 ::GetDlgCtrlID(control) == -1 ||
                                 ::GetDlgCtrlID(control) == IDC_INPUT_LABEL;
            if (classOf(control) == L"Static" && ownText) labels.push_back(textOf(control));
            if (classOf(control) == L"Button") buttons.push_back(textOf(control));
        }
        EXPECT_EQ(labels, words().labels);
        EXPECT_EQ(buttons, words().buttons);
        EXPECT_EQ(dialog.text(IDC_CHANNEL_COUNT), words().channels);
        EXPECT_EQ(dialog.text(IDC_USE), L"ink");
        EXPECT_EQ(dialog.text(IDC_DATE), L"-");
    });
}

TEST(CalibDialog, ListsAllChannelsFirstAndThenEachByItsName) {
    const CalibSet set = inkSet();
    jKoCalibSetToneName(set.get(), 1, "\x83\x56\x83\x41\x83\x93", 0);  // Shift-JIS
    jKoCalibSetToneName(set.get(), 2, "A & B", 0);
    edit(set, [](const DialogWindow& dialog) {
        EXPECT_EQ(entries(dialog), (std::vector<std::wstring>{words().all, words().firstChannel,
                                                              L"シアン", L"A & B"}));
        EXPECT_EQ(dialog.text(IDC_CHANNEL), words().all);
    });
}

TEST(CalibDialog, TheCaptionNamesTheDescriptionAndTheBareFile) {
    const CalibSet set = inkSet();
    edit(set, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), words().captionStart + words().captionEnd);
    });
    const TempFolder folder;
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), folder.path("press 3 %s.clb").c_str()), 1);
    edit(set, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), words().captionStart + L"press 3 %s.clb" + words().captionEnd);
    });
}

TEST(CalibDialog, ADescriptionInJapaneseIsReadableInEveryLanguage) {
    const CalibSet set = inkSet();
    jKoCalibSetTitle(set.get(), "\x88\xf3\x8d\xfc\x8b\x40 3", "\x83\x43\x83\x93\x83\x4e");
    edit(set, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_TITLE), L"印刷機 3");
        EXPECT_EQ(dialog.text(IDC_USE), L"インク");
        EXPECT_NE(dialog.caption().find(L"インク"), std::wstring::npos);
        dialog.focus(IDC_TITLE);
        dialog.focus(IDC_GRAPH);
    });
    EXPECT_STREQ(set->title, "\x88\xf3\x8d\xfc\x8b\x40 3");  // left as it was
}

TEST(CalibDialog, TheDateIsYearFirstButLastInEnglish) {
    const TempFolder folder;
    const CalibSet set = inkSet();
    const std::string path = folder.path("a.clb");
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), path.c_str()), 1);
    const SYSTEMTIME local = {2024, 5, 0, 6, 12, 0, 0, 0};
    SYSTEMTIME universal{};
    FILETIME time{};
    ASSERT_TRUE(::TzSpecificLocalTimeToSystemTime(nullptr, &local, &universal));
    ASSERT_TRUE(::SystemTimeToFileTime(&universal, &time));
    const HANDLE file = ::CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(::SetFileTime(file, nullptr, nullptr, &time));
    ::CloseHandle(file);
    edit(set, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_DATE), words().yearLast ? L"05/06/2024" : L"2024/05/06");
    });
}

TEST(CalibDialog, ATypedTitleIsStoredAsItReadsBack) {
    const std::wstring title = language() == "zh" ? L"三号机 编辑点" : L"印刷機 表";
    const CalibSet set = inkSet();
    edit(set, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"  " + title + L" ");
        EXPECT_EQ(dialog.text(IDC_TITLE), title);
    });
    EXPECT_STREQ(set->title, language() == "zh"
                                 ? "\xc8\xfd\xba\xc5\xbb\xfa \xb1\xe0\xbc\xad\xb5\xe3"  // GB2312
                                 : "\x88\xf3\x8d\xfc\x8b\x40 \x95\x5c");                // Shift-JIS
    edit(set, [&](const DialogWindow& dialog) { EXPECT_EQ(dialog.text(IDC_TITLE), title); });
}

// The graph

TEST(CalibDialog, DraggingWithAllChannelsWritesTheSamePairIntoEach) {
    const CalibSet set = inkSet();
    give(set, 1, {{0, 0}, {100, 60}, {255, 255}});
    edit(set, [&](const DialogWindow& dialog) {
        const POINT from = place(dialog, set, 100, 60);
        const POINT to = {from.x, place(dialog, set, 100, 200).y};
        dialog.drag(from, to);
        dialog.drop(to);
        dialog.mouse(WM_MOUSEMOVE, from);  // not held any more
        const float y = valueAt(dialog, set, to.y);
        for (int32_t channel = 0; channel < 3; ++channel)
            EXPECT_EQ(tonesOf(set, channel), (Tones{{0, 0}, {100, y}, {255, 255}})) << channel;
        EXPECT_EQ(dialog.text(IDC_VALUE_X), L"100");
    });
}

TEST(CalibDialog, AChosenChannelIsEditedAlone) {
    const CalibSet set = inkSet();
    edit(set, [&](const DialogWindow& dialog) {
        choose(dialog, 2);
        const POINT at = place(dialog, set, 127, 127);
        dialog.drag(at, {at.x, 60});
        dialog.drop(at);
        EXPECT_EQ(tonesOf(set, 1),
                  (Tones{{0, 0}, {127, valueAt(dialog, set, 60)}, {255, 255}}));
    });
    for (const int32_t other : {0, 2}) EXPECT_EQ(tonesOf(set, other).size(), 2u);
}

TEST(CalibDialog, TheCurveOffers21SamplesForARangeOf100Otherwise17) {
    for (const auto& [range, samples] : {std::pair{100, 21u}, {255, 17u}}) {
        const CalibSet set = inkSet(1, range, range);
        edit(set, [&](const DialogWindow& dialog) {
            std::set<float> places;
            for (int column = 9; column <= plot(dialog).x + 12; ++column) {
                jKoCalibInitCurve(set.get());
                const double x = (column - 10.0) * range / plot(dialog).x;
                const POINT at = {column, place(dialog, set, x, x).y};
                dialog.mouse(WM_LBUTTONDOWN, at);
                dialog.drop(at);
                for (const auto& [tone, y] : tonesOf(set, 0)) places.insert(tone);
            }
            EXPECT_EQ(places.size(), samples);
        });
    }
}

TEST(CalibDialog, ARightClickRemovesAnInnerToneButNoEnd) {
    const CalibSet set = inkSet(2);
    for (const int32_t channel : {0, 1}) give(set, channel, {{0, 5}, {100, 60}, {255, 240}});
    edit(set, [&](const DialogWindow& dialog) {
        for (const auto& [x, y] : {std::pair{0, 5}, {255, 240}}) {
            dialog.mouse(WM_RBUTTONDOWN, place(dialog, set, x, y));
            EXPECT_EQ(tonesOf(set, 0).size(), 3u) << x;
        }
        dialog.mouse(WM_RBUTTONDOWN, place(dialog, set, 100, 60));
    });
    for (const int32_t channel : {0, 1}) EXPECT_EQ(tonesOf(set, channel).size(), 2u);
}

TEST(CalibDialog, RelativeEditingScalesTheCurveByItsEnd) {
    const CalibSet set = inkSet(1);
    give(set, 0, {{0, 10}, {128, 100}, {255, 200}});
    edit(set, [&](const DialogWindow& dialog) {
        dialog.click(IDC_RELATIVE);
        EXPECT_TRUE(dialog.isChecked(IDC_RELATIVE));
        const POINT from = place(dialog, set, 255, 200);
        const POINT to = {from.x, place(dialog, set, 255, 100).y};
        dialog.drag(from, to);
        dialog.drop(to);
        const int end = static_cast<int>(valueAt(dialog, set, to.y));
        EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 10},
                                          {128, static_cast<float>(100 * (end / 200.0))},
                                          {255, static_cast<float>(end)}}));
        EXPECT_EQ(dialog.text(IDC_VALUE_Y), std::to_wstring(end));
    });
}

TEST(CalibDialog, TheKeyboardChoosesMovesAndRemovesTones) {
    const CalibSet set = inkSet(1);
    give(set, 0, {{0, 0}, {100, 60}, {255, 255}});
    edit(set, [&](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_VALUE_X), L"0");
        dialog.key(IDC_GRAPH, VK_RIGHT);
        EXPECT_EQ(dialog.text(IDC_VALUE_X), L"100");
        for (int step = 0; step < 5; ++step) dialog.key(IDC_GRAPH, VK_UP);
        dialog.key(IDC_GRAPH, VK_DOWN);
        EXPECT_EQ(dialog.text(IDC_VALUE_Y), L"64");
        EXPECT_EQ(tonesOf(set, 0)[1].second, 64.0f);
        dialog.key(IDC_GRAPH, VK_DELETE);
        EXPECT_EQ(tonesOf(set, 0).size(), 2u);
        dialog.key(IDC_GRAPH, VK_LEFT);
        dialog.key(IDC_GRAPH, VK_DELETE);
        EXPECT_EQ(tonesOf(set, 0).size(), 2u);
    });
}

// The fields and buttons

TEST(CalibDialog, Typing300WithARangeOf255Shows255) {
    edit(inkSet(), [](const DialogWindow& dialog) {
        dialog.enter(IDC_VALUE_X, L"300");
        EXPECT_EQ(dialog.text(IDC_VALUE_X), L"255");
        dialog.enter(IDC_VALUE_Y, L"-3");
        EXPECT_EQ(dialog.text(IDC_VALUE_Y), L"0");
    });
}

TEST(CalibDialog, TheFieldsAreWrittenInTheSetsFormats) {
    const CalibSet set = inkSet(1, 100, 50);
    std::strcpy(set->formatX, "%.1f");
    std::strcpy(set->formatY, "%6.2f");
    edit(set, [](const DialogWindow& dialog) {
        dialog.enter(IDC_VALUE_X, L"12.34");
        EXPECT_EQ(dialog.text(IDC_VALUE_X), L"12.3");
        dialog.enter(IDC_VALUE_Y, L"60");
        EXPECT_EQ(dialog.text(IDC_VALUE_Y), L" 50.00");
    });
}

TEST(CalibDialog, AddStoresTheTypedPairAndChangesItAgain) {
    const CalibSet set = inkSet(2);
    edit(set, [&](const DialogWindow& dialog) {
        dialog.type(IDC_VALUE_X, L"100");
        dialog.type(IDC_VALUE_Y, L"60");
        dialog.click(IDC_ADD);
        for (const int32_t channel : {0, 1})
            EXPECT_EQ(tonesOf(set, channel), (Tones{{0, 0}, {100, 60}, {255, 255}}));
        choose(dialog, 1);
        dialog.type(IDC_VALUE_Y, L"70");
        dialog.click(IDC_ADD);
    });
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {100, 70}, {255, 255}}));
    EXPECT_EQ(tonesOf(set, 1), (Tones{{0, 0}, {100, 60}, {255, 255}}));
}

TEST(CalibDialog, ANumberOutOfRangeIsSaidWhereItIsLimited) {
    const CalibSet set = inkSet();
    edit(set, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_VALUE_X, L"300");
        EXPECT_EQ(dialog.text(IDC_VALUE_X), L"255");
        EXPECT_EQ(dialog.text(IDC_STATUS), shown(L"0 ～ 255 に制限しました。"));
        dialog.enter(IDC_VALUE_X, L"\uff14\uff10");
        EXPECT_EQ(dialog.text(IDC_VALUE_X), L"40");
        EXPECT_EQ(dialog.text(IDC_STATUS), L"");
        dialog.enter(IDC_VALUE_Y, L"much");
        EXPECT_EQ(dialog.text(IDC_STATUS), shown(L"数値ではありません。"));
    });
}

TEST(CalibDialog, InitialisingNeedsNoConfirmation) {
    const CalibSet set = inkSet(2);
    give(set, 1, {{0, 9}, {100, 60}, {255, 9}});
    edit(set, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"press 3");
        choose(dialog, 1);
        dialog.click(IDC_RESET);
        EXPECT_EQ(dialog.text(IDC_TITLE), L"press 3");
    });
    EXPECT_EQ(tonesOf(set, 1), (Tones{{0, 0}, {255, 255}}));
}

TEST(CalibDialog, NewAsksFirstAndThenForgetsTheFile) {
    const TempFolder folder;
    const CalibSet set = inkSet(1);
    give(set, 0, {{0, 9}, {255, 9}});
    jKoCalibSetTitle(set.get(), "press 3", nullptr);
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), folder.path("a.clb").c_str()), 1);
    edit(set, [&](const DialogWindow& dialog) {
        dialog.press(IDC_NEW);
        const DialogWindow question = dialog.asked();
        EXPECT_EQ(question.caption(), L"ink");
        EXPECT_EQ(question.text(kMessageText), words().question);
        question.press(IDNO);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_TITLE), L"press 3");
        EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 9}, {255, 9}}));
        dialog.press(IDC_NEW);
        dialog.asked().press(IDYES);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_TITLE), L"");
        EXPECT_EQ(dialog.text(IDC_DATE), L"-");
        EXPECT_EQ(dialog.caption(), words().captionStart + words().captionEnd + L" *");
        EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {255, 255}}));
        dialog.press(IDC_SAVE);  // has no file now, so it asks
        dialog.asked().press(IDCANCEL);
        dialog.waitForQuiet();
    });
}

TEST(CalibDialog, CancelOffersToTakeTheChangesBack) {
    const CalibSet set = inkSet();
    const Tones before = tonesOf(set, 0);
    const int32_t result = edit(set, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_VALUE_X, L"100");
        dialog.enter(IDC_VALUE_Y, L"20");
        dialog.click(IDC_ADD);
        EXPECT_NE(tonesOf(set, 0), before);
        dialog.pressKey(IDC_GRAPH, VK_ESCAPE);
        dialog.asked().press(IDCANCEL);  // stays
        dialog.waitForQuiet();
        EXPECT_NE(tonesOf(set, 0), before);
        dialog.pressKey(IDC_GRAPH, VK_ESCAPE);
        dialog.asked().press(IDNO);  // takes them back
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(tonesOf(set, 0), before);
}

TEST(CalibDialog, AnInitialisedCurveComesBackWithCtrlZ) {
    const CalibSet set = inkSet();
    edit(set, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_VALUE_X, L"100");
        dialog.enter(IDC_VALUE_Y, L"20");
        dialog.click(IDC_ADD);
        const Tones edited = tonesOf(set, 0);
        dialog.click(IDC_RESET);
        EXPECT_NE(tonesOf(set, 0), edited);
        dialog.pressControlAnd(IDC_GRAPH, 'Z');
        EXPECT_TRUE(eventually([&] { return tonesOf(set, 0) == edited; }));
    });
}

// Saving

TEST(CalibDialog, SavesTheEditedSetToItsFile) {
    const TempFolder folder;
    const CalibSet set = inkSet(2);
    const std::string path = folder.path("a.clb");
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), path.c_str()), 1);
    const std::string before = readText(path);
    const int32_t result = edit(set, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"press 3");
        dialog.type(IDC_VALUE_X, L"100");
        dialog.type(IDC_VALUE_Y, L"60");
        dialog.click(IDC_ADD);
        dialog.click(IDC_SAVE);
        dialog.leave(IDOK);
    });
    EXPECT_EQ(result, 1);
    EXPECT_NE(readText(path), before);
    EXPECT_EQ(readText(path), fileOf(set));
    EXPECT_NE(readText(path).find("TONE_001 = 100,60\r\n"), std::string::npos);
    EXPECT_NE(readText(path).find("TITLE = press 3\r\n"), std::string::npos);
}

TEST(CalibDialog, SaveAsTakesTheNameFromTheFileDialogAndAddsTheExtension) {
    const TempFolder folder;
    const CalibSet set = inkSet(1);
    (folder.folder().string() + "\\").copy(set->path, sizeof set->path - 1);
    const int32_t result = edit(set, [&](const DialogWindow& dialog) {
        dialog.press(IDC_SAVE);  // a folder is no file
        const DialogWindow ask = dialog.asked();
        EXPECT_EQ(ask.text(kFilterBox), words().filter);
        ask.chooseFile("new");
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.caption(), words().captionStart + L"new.clb" + words().captionEnd);
        EXPECT_NE(dialog.text(IDC_DATE), L"-");
        dialog.click(IDC_SAVE);  // has its file now
        dialog.press(IDC_SAVE_AS);
        dialog.asked().chooseFile("BIG.CLB");
        dialog.waitForQuiet();
        dialog.leave(IDOK);
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(readText(folder.path("new.clb")), fileOf(set));
    EXPECT_EQ(std::string_view(set->path), folder.path("BIG.CLB"));
    EXPECT_TRUE(exists(folder.path("BIG.CLB")));
}

TEST(CalibDialog, CancellingTheFileDialogChangesNothing) {
    const CalibSet set = inkSet(1);
    edit(set, [&](const DialogWindow& dialog) {
        dialog.press(IDC_SAVE_AS);
        dialog.asked().press(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.caption(), words().captionStart + words().captionEnd);
    });
    EXPECT_STREQ(set->path, "");
}

TEST(CalibDialog, AFileThatCannotBeWrittenStaysAsItWas) {
    const TempFolder folder;
    const CalibSet set = inkSet(1);
    const std::string path = folder.path("a.clb");
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), path.c_str()), 1);
    const std::string before = readText(path);
    const HANDLE reader = ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    edit(set, [&](const DialogWindow& dialog) {
        dialog.enter(IDC_TITLE, L"other");
        dialog.press(IDC_SAVE);
        const DialogWindow problem = dialog.asked();
        EXPECT_NE(problem.text(0xffff).find(wide(path)), std::wstring::npos);
        problem.press(IDCANCEL);
        dialog.waitForQuiet();
        dialog.leave(IDOK);
    });
    ::CloseHandle(reader);
    EXPECT_EQ(readText(path), before);
    EXPECT_STREQ(set->title, "other");
}

TEST(CalibDialog, CancelOffersToTakeTheEditsBack) {
    for (const int answer : {IDYES, IDNO}) {  // keep them, take them back
        const CalibSet set = inkSet(1);
        const int32_t result = edit(set, [&](const DialogWindow& dialog) {
            dialog.type(IDC_VALUE_X, L"100");
            dialog.type(IDC_VALUE_Y, L"60");
            dialog.click(IDC_ADD);
            dialog.press(IDCANCEL);
            dialog.asked().press(IDCANCEL);  // back to editing
            dialog.waitForQuiet();
            dialog.press(IDCANCEL);
            dialog.asked().press(answer);
            EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
        });
        EXPECT_EQ(result, 0);
        const Tones kept = {{0, 0}, {100, 60}, {255, 255}}, before = {{0, 0}, {255, 255}};
        EXPECT_EQ(tonesOf(set, 0), answer == IDYES ? kept : before);
    }
}

TEST(CalibDialog, ALetterTypedOnTheGraphInitialisesNothing) {
    const CalibSet set = inkSet(1);
    edit(set, [&](const DialogWindow& dialog) {
        dialog.type(IDC_VALUE_X, L"100");
        dialog.type(IDC_VALUE_Y, L"60");
        dialog.click(IDC_ADD);
        dialog.focus(IDC_GRAPH);
        ::PostMessageW(dialog.item(IDC_GRAPH), WM_CHAR, 'i', 0);
        ::PostMessageW(dialog.item(IDC_GRAPH), WM_KEYDOWN, VK_RIGHT, 0);
        EXPECT_TRUE(eventually([&] { return dialog.text(IDC_VALUE_X) == L"255"; }));
        EXPECT_EQ(tonesOf(set, 0).size(), 3u);
    });
}

TEST(CalibDialog, ReturnSavesAndEscapeCancels) {
    const TempFolder folder;
    const CalibSet set = inkSet(1);
    const std::string path = folder.path("a.clb");
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), path.c_str()), 1);
    const int32_t result = edit(set, [&](const DialogWindow& dialog) {
        dialog.type(IDC_TITLE, L"typed");
        ::PostMessageW(dialog.item(IDC_TITLE), WM_KEYDOWN, VK_RETURN, 0);
        EXPECT_TRUE(eventually([&] { return std::string_view(set->title) == "typed"; }));
        dialog.caption();  // answered when the saving is over
        EXPECT_NE(readText(path).find("TITLE = typed\r\n"), std::string::npos);
        dialog.pressKey(IDC_VALUE_X, VK_ESCAPE);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(result, 0);
}

// Whatever the host gives

TEST(CalibDialog, WithoutASetNothingIsShown) {
    EXPECT_EQ(jKoCalibEditCurveDlg(nullptr, nullptr), 0);
}

TEST(CalibDialog, OddSetsAreShownAndEditedWithoutHarm) {
    for (const auto& [range, limit] : {std::pair{0, 0}, {-255, -255}, {0x7fffffff, 1}, {1, 0x7fffffff}}) {
        const CalibSet set = inkSet(2, range, limit);
        give(set, 1, {{-5, 300}, {0, 0}, {1e30f, -1e30f}});
        const int32_t result = edit(set, [&](const DialogWindow& dialog) {
            for (const int entry : {0, 2, 1}) {
                choose(dialog, entry);
                for (const POINT at : {POINT{10, 10}, {60, 100}, {plot(dialog).x + 10, 10}}) {
                    dialog.drag(at, {at.x, 50});
                    dialog.drop(at);
                    dialog.mouse(WM_RBUTTONDOWN, at);
                }
                for (const WPARAM key : {VK_RIGHT, VK_UP, VK_DOWN, VK_DELETE, VK_LEFT})
                    dialog.key(IDC_GRAPH, key);
                dialog.enter(IDC_VALUE_X, L"1");
                dialog.click(IDC_ADD);
                pictureOf(dialog);
            }
            dialog.leave(IDOK);
        });
        EXPECT_EQ(result, 1) << range;
    }
}

TEST(CalibDialog, MessagesInAnyOrderDoNoHarm) {
    // The graph is ours and gets everything; the system's controls get what a person can cause.
    constexpr UINT kInput[] = {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_MOUSEMOVE, WM_RBUTTONDOWN,
                               WM_KEYDOWN,     WM_KEYUP,     WM_CHAR};
    constexpr UINT kAll[] = {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_MOUSEMOVE,  WM_RBUTTONDOWN, WM_LBUTTONDBLCLK,
                             WM_KEYDOWN,     WM_KEYUP,     WM_CHAR,       WM_SETFOCUS,    WM_KILLFOCUS,
                             WM_PAINT,       WM_SIZE,      WM_ERASEBKGND, WM_ENABLE,      WM_TIMER,
                             WM_HSCROLL,     WM_VSCROLL,   WM_CANCELMODE, WM_CAPTURECHANGED};
    constexpr int kControls[] = {IDC_TITLE,    IDC_VALUE_X, IDC_VALUE_Y, IDC_CHANNEL,
                                 IDC_RELATIVE, IDC_ADD,     IDC_RESET};
    for (uint32_t seed = 1; seed <= 8; ++seed) {
        const CalibSet set = inkSet(3, seed % 2 ? 255 : 100, seed % 3 ? 255 : 0);
        std::minstd_rand random(seed);
        const int32_t result = edit(set, [&](const DialogWindow& dialog) {
            const auto any = [&](auto& choices) { return choices[random() % std::size(choices)]; };
            for (int message = 0; message < 300; ++message) {
                const bool toGraph = random() % 2 != 0;
                const int control = toGraph ? IDC_GRAPH : any(kControls);
                const UINT what = toGraph ? any(kAll) : any(kInput);
                const auto x = static_cast<WORD>(random() % 400), y = static_cast<WORD>(random() % 400);
                DWORD_PTR answer = 0;
                ASSERT_TRUE(::SendMessageTimeoutW(dialog.item(control), what, random() % 64,
                                                  MAKELPARAM(x, y), SMTO_NORMAL, 20000, &answer))
                    << seed << ' ' << message;
                if (message % 16 == 0) {
                    const int asks[] = {IDC_ADD, IDC_RESET, IDC_RELATIVE, IDC_CHANNEL, IDC_TITLE};
                    const int notifications[] = {BN_CLICKED, CBN_SELCHANGE, EN_KILLFOCUS, EN_CHANGE};
                    const WPARAM told = MAKEWPARAM(any(asks), any(notifications));
                    ::SendMessageTimeoutW(dialog.handle(), WM_COMMAND, told, 0, SMTO_NORMAL, 20000, &answer);
                }
            }
            ::EnableWindow(dialog.item(IDC_GRAPH), TRUE);
            dialog.leave(IDOK);
        });
        EXPECT_EQ(result, 1) << seed;
        for (int32_t channel = 0; channel < 3; ++channel) {
            EXPECT_GE(tonesOf(set, channel).size(), 2u);
            for (const auto& [x, y] : tonesOf(set, channel)) EXPECT_TRUE(x >= 0 && x <= static_cast<float>(set->range));
        }
    }
}

TEST(CalibDialog, SixteenFullChannelsAreDragged) {
    const CalibSet set = inkSet(16);
    for (int32_t channel = 0; channel < 16; ++channel) {
        Tones tones;
        for (int x = 0; x < 256; ++x) tones.emplace_back(static_cast<float>(x), static_cast<float>((x + channel) / 2));
        give(set, channel, tones);
    }
    edit(set, [&](const DialogWindow& dialog) {
        EXPECT_EQ(entries(dialog).size(), 17u);
        const POINT at = place(dialog, set, 128, 64);
        dialog.drag(at, {at.x, 30});
        for (int row = 30; row < 100; row += 10) dialog.mouse(WM_MOUSEMOVE, {at.x, row});
        dialog.drop(at);
        pictureOf(dialog);
        EXPECT_EQ(tonesOf(set, 15).size(), 256u);
    });
}

TEST(CalibDialog, TenThousandPastedCharactersAreCutOrClampedInEveryField) {
    for (const wchar_t character : {L'9', L'漢', L'\x263a'}) {
        const std::wstring text(10000, character);
        onClipboard(text);
        const CalibSet set = inkSet(1);
        edit(set, [&](const DialogWindow& dialog) {
            for (const int field : {IDC_TITLE, IDC_VALUE_X, IDC_VALUE_Y}) {
                dialog.focus(field);
                ::SendMessageW(dialog.item(field), EM_SETSEL, 0, -1);
                ::SendMessageW(dialog.item(field), WM_PASTE, 0, 0);
                const auto pasted = dialog.text(field).size();
                EXPECT_GT(pasted, 0u);
                EXPECT_LE(pasted, field == IDC_TITLE ? 127u : 10u);
                dialog.focus(IDC_GRAPH);
                // Without the control's limit, as another program may set it.
                dialog.focus(field);
                ::SendMessageW(dialog.item(field), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
                dialog.focus(IDC_GRAPH);
                EXPECT_LE(dialog.text(field).size(), 127u);
            }
            EXPECT_EQ(dialog.text(IDC_VALUE_X), character == L'9' ? L"255" : L"0");
            EXPECT_EQ(dialog.text(IDC_VALUE_Y), character == L'9' ? L"255" : L"0");
            dialog.click(IDC_ADD);
        });
        EXPECT_LE(std::strlen(set->title), 127u);
        EXPECT_GE(std::strlen(set->title), 126u);
    }
}

// How it looks

CalibSet inkCurves() {
    CalibSet set = newSet(4);
    jKoCalibSetTitle(set.get(), "Press 3", "ink");
    struct Ink { const char* name; uint32_t colour; float middle; };
    const Ink inks[] = {{"Cyan", 0xffff00, 96}, {"Magenta", 0xff00ff, 150}, {"Yellow", 0x00ffff, 118}, {"Black", 0, 84}};
    for (int32_t channel = 0; channel < 4; ++channel) {
        jKoCalibSetToneName(set.get(), channel, inks[channel].name, inks[channel].colour);
        jKoCalibSetToneValue(set.get(), channel, 127, inks[channel].middle);
        jKoCalibSetToneValue(set.get(), channel, 191, inks[channel].middle + 70);
    }
    return set;
}

TEST(CalibDialog, LooksAsItShould) {
    const TempFolder folder;
    const CalibSet set = inkCurves();
    EXPECT_EQ(jKoCalibSaveCurve(set.get(), folder.path("press 3.clb").c_str()), 1);
    edit(set, [&](const DialogWindow& dialog) {
        expectALook(dialog);
        const RECT graph = placeOf(dialog.item(IDC_GRAPH), dialog.handle());
        EXPECT_EQ(graph.right - graph.left, graph.bottom - graph.top);
        EXPECT_GT(graph.right - graph.left, 200);
        EXPECT_EQ(placeOf(dialog.item(IDC_STRIP_OUTPUT), dialog.handle()).bottom, graph.bottom);
        EXPECT_EQ(placeOf(dialog.item(IDC_STRIP_INPUT), dialog.handle()).right, graph.right);
        dialog.key(IDC_GRAPH, VK_RIGHT);
        const Picture picture = pictureOf(dialog);
        for (const uint32_t colour : {0x00ffffu, 0xff00ffu, 0xffff00u})  // as a bitmap has it
            EXPECT_GT(picture.count(colour), 50) << std::hex << colour;
        keepPicture(picture, language() == "ja" ? "calibration" : "calibration-" + language());
        choose(dialog, 2);
        keepPicture(pictureOf(dialog), "calibration-one-" + language());
    });
}

TEST(CalibDialog, AChannelThatIsNotChosenHasNoPoints) {
    const CalibSet set = inkCurves();
    edit(set, [&](const DialogWindow& dialog) {
        const int all = pictureOf(dialog).count(0xff00ff);
        choose(dialog, 1);
        const int line = pictureOf(dialog).count(0xff00ff);
        EXPECT_LT(line, all);
        EXPECT_GT(line, 50);
    });
}

// Its life

TEST(CalibDialogLifetime, TwoHundredOpeningsLeaveNothingBehind) {
    const CalibSet set = inkSet();
    const auto use = [&] {
        edit(set, [&](const DialogWindow& dialog) {
            dialog.drag(place(dialog, set, 127, 127), place(dialog, set, 127, 100));
            dialog.drop(place(dialog, set, 127, 100));
            choose(dialog, 2);
            ::RedrawWindow(dialog.handle(), nullptr, nullptr,
                           RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
            dialog.leave(IDCANCEL);
        });
    };
    use();  // what is made once
    const unsigned objects = drawingObjects(), places = windows();
    for (int time = 0; time < 200; ++time) use();
    EXPECT_LT(drawingObjects(), objects + 40);
    EXPECT_LT(windows(), places + 40);
}

TEST(CalibDialogLifetime, ClosingTheWindowCancels) {
    const CalibSet set = inkSet();
    const int32_t result = edit(set, [](const DialogWindow& dialog) {
        ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(result, 0);
}

TEST(CalibDialogLifetime, AnOwnerThatIsDestroyedTakesTheDialogWithIt) {
    const CalibSet set = inkSet();
    const HWND owner = newOwner();
    ASSERT_NE(owner, nullptr);
    const int32_t result = edit(
        set,
        [&](const DialogWindow& dialog) {
            dialog.drag(place(dialog, set, 127, 127), place(dialog, set, 127, 100));
            postDestruction(owner);
            EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
        },
        owner);
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(::IsWindow(owner));
    EXPECT_EQ(tonesOf(set, 0).size(), 3u);
}

TEST(CalibDialogLifetime, ASecondOpeningFromTheMessageLoopDoesNotDisturbTheFirst) {
    const CalibSet set = inkSet(1), inner = inkSet(2, 100, 100);
    const HWND owner = newOwner();
    const int32_t result = edit(
        set,
        [&](const DialogWindow& dialog) {
            dialog.enter(IDC_VALUE_X, L"30");
            postCall(owner, [&] { jKoCalibEditCurveDlg(owner, inner.get()); });
            HWND second = nullptr;
            ASSERT_TRUE(eventually([&] {
                second = ::GetLastActivePopup(owner);
                return second != owner && second != dialog.handle() && ::IsWindowVisible(second);
            }));
            const DialogWindow other(second);
            EXPECT_EQ(other.text(IDC_VALUE_X), L"0");
            other.enter(IDC_VALUE_X, L"300");
            EXPECT_EQ(other.text(IDC_VALUE_X), L"100");
            other.click(IDC_ADD);
            other.leave(IDOK);
            EXPECT_TRUE(eventually([&] { return !other.isOpen(); }));
            EXPECT_EQ(dialog.text(IDC_VALUE_X), L"30");
            dialog.click(IDC_ADD);
            dialog.leave(IDOK);
        },
        owner);
    ::DestroyWindow(owner);
    EXPECT_EQ(result, 1);
    EXPECT_EQ(tonesOf(set, 0), (Tones{{0, 0}, {30, 0}, {255, 255}}));
    EXPECT_EQ(tonesOf(inner, 1), (Tones{{0, 0}, {100, 0}}));
}

}  // namespace
