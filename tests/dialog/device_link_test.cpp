// The device-link dialog, driven in its real window.
#include "kolink/device_link_dialog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "kolink/cmyk_profile.h"
#include "kolink/icc_file.h"
#include "tests/dialog/layout.h"
#include "tests/dialog/lifetime.h"

#include <shlobj.h>

using namespace ko::test;

namespace {

constexpr char kDebian[] = "Z:\\usr\\share\\color\\icc\\ghostscript\\default_cmyk.icc";
constexpr wchar_t kNotMade[] = L"ﾌﾟﾛﾌｧｲﾙ作成に失敗しました。\nﾊﾟﾗﾒｰﾀを確かめてください。";
constexpr wchar_t kNotWritten[] =
    L"ﾌﾟﾛﾌｧｲﾙ書き込みに失敗しました。\n作成ﾌﾟﾛﾌｧｲﾙﾊﾟｽを確かめてください。";
constexpr wchar_t kMade[] = L"ﾌﾟﾛﾌｧｲﾙを作成しました。";
constexpr int kMessageText = 0xffff;

constexpr int kEdits[] = {IDC_LINK_BASE, IDC_LINK_SOURCE, IDC_LINK_DESTINATION, IDC_LINK_BLACK,
                          IDC_LINK_OUTPUT};
constexpr int kBrowse[] = {IDC_LINK_BROWSE_BASE, IDC_LINK_BROWSE_SOURCE,
                           IDC_LINK_BROWSE_DESTINATION, IDC_LINK_BROWSE_BLACK,
                           IDC_LINK_BROWSE_OUTPUT};
constexpr int kIntents[] = {IDC_LINK_PERCEPTUAL, IDC_LINK_RELATIVE, IDC_LINK_SATURATION};
constexpr int kKeeps[] = {IDC_LINK_KEEP_NONE, IDC_LINK_KEEP_PRIMARIES, IDC_LINK_KEEP_SECONDARIES};
constexpr int kWhites[] = {IDC_LINK_WHITE_PROFILE, IDC_LINK_WHITE_NO_INK, IDC_LINK_WHITE_GIVEN};
constexpr int kPaper[] = {IDC_LINK_SWATCH, IDC_LINK_AMOUNT_LABEL, IDC_LINK_AMOUNT,
                          IDC_LINK_AMOUNT_UNIT};

using Drive = std::function<void(const DialogWindow&)>;

CmsLinkSettings newSettings() {
    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    return settings;
}

CmsLinkSettings writingTo(const std::string& output) {
    CmsLinkSettings settings = newSettings();
    output.copy(settings.outputPath, sizeof settings.outputPath - 1);
    return settings;
}

CmsLinkSettings onPaper(int32_t c, int32_t m, int32_t y, int32_t k) {
    CmsLinkSettings settings = newSettings();
    settings.whiteMode = 2;
    settings.paperC = c;
    settings.paperM = m;
    settings.paperY = y;
    settings.paperK = k;
    return settings;
}

int32_t edit(CmsLinkSettings& settings, const Drive& drive, HWND owner = nullptr) {
    int32_t result = -1;
    openDialog([&] { result = jCmsDeviceLinkDlg(owner, &settings); }, drive);
    return result;
}
int32_t look(CmsLinkSettings settings, const Drive& drive) { return edit(settings, drive); }

std::wstring closeMessage(const DialogWindow& dialog) {
    const DialogWindow message = dialog.asked();
    EXPECT_EQ(message.caption(), L"ﾃﾞﾊﾞｲｽﾘﾝｸ");
    const std::wstring text = message.text(kMessageText);
    message.press(IDOK);
    return text;
}

// Presses Create and answers what it says; the dialog has gone after a success.
std::wstring create(const DialogWindow& dialog) {
    dialog.press(IDOK);
    const std::wstring text = closeMessage(dialog);
    if (text == kMade)
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    else
        dialog.waitForQuiet();
    return text;
}

std::wstring named(const wchar_t* name) { return std::wstring(L"Z:\\missing\\") + name; }

// What the library makes of the same settings without the dialog.
void expectTheLinkOf(const CmsLinkSettings& settings, const std::string& path) {
    const std::unique_ptr<CmykProfile, int32_t (*)(CmykProfile*)> expected(
        jKoCmykCombineProfile(&settings), jKoCmykReleaseProfile);
    const std::unique_ptr<CmykProfile, int32_t (*)(CmykProfile*)> written(jKoCmykCreateProfile(),
                                                                          jKoCmykReleaseProfile);
    ASSERT_NE(expected, nullptr);
    ASSERT_EQ(jKoCmykLoadProfile(written.get(), path.c_str()), 1) << path;
    EXPECT_EQ(std::memcmp(written->grid, expected->grid, sizeof expected->grid), 0);
}

uint32_t swatchOf(const DialogWindow& dialog) {  // 0x00RRGGBB, in the middle
    RECT window, swatch;
    ::GetWindowRect(dialog.handle(), &window);
    ::GetWindowRect(dialog.item(IDC_LINK_SWATCH), &swatch);
    const Picture picture = pictureOf(dialog);
    const int x = (swatch.left + swatch.right) / 2 - window.left;
    const int y = (swatch.top + swatch.bottom) / 2 - window.top;
    return picture.pixels[static_cast<size_t>(y * picture.width + x)] & 0xffffff;
}

uint32_t buttonFace() {
    const COLORREF colour = ::GetSysColor(COLOR_BTNFACE);
    return static_cast<uint32_t>(GetRValue(colour)) << 16 |
           static_cast<uint32_t>(GetGValue(colour)) << 8 | GetBValue(colour);
}

TEST(DeviceLinkDialog, ShowsTheRecord) {
    CmsLinkSettings settings = onPaper(0, 0, 0, 0);
    char* const paths[] = {settings.basePath, settings.sourcePath, settings.destinationPath,
                           settings.blackPath, settings.outputPath};
    for (size_t at = 0; at < 5; ++at)
        ("Z:\\folder\\file" + std::to_string(at)).copy(paths[at], 259);
    settings.intent = 1;
    settings.preservation = 2;
    look(settings, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), L"ﾃﾞﾊﾞｲｽﾘﾝｸ");
        for (size_t at = 0; at < 5; ++at)
            EXPECT_EQ(dialog.text(kEdits[at]), L"Z:\\folder\\file" + std::to_wstring(at));
        for (int number = 0; number < 3; ++number) {
            EXPECT_EQ(dialog.isChecked(kIntents[number]), number == 1);
            EXPECT_EQ(dialog.isChecked(kKeeps[number]), number == 2);
            EXPECT_EQ(dialog.isChecked(kWhites[number]), number == 2);
        }
        EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"78");  // 200 of 255
        EXPECT_EQ(dialog.text(IDOK), L"作成(&C)");
        EXPECT_EQ(dialog.text(IDCANCEL), L"ｷｬﾝｾﾙ");
        for (const int browse : kBrowse) EXPECT_EQ(dialog.text(browse), L"参照");
    });
}

TEST(DeviceLinkDialog, CancelLeavesEveryByteOfTheRecord) {
    CmsLinkSettings settings;
    std::memset(&settings, 'x', sizeof settings);
    settings.whiteMode = 2;
    const CmsLinkSettings before = settings;
    const int32_t result = edit(settings, [](const DialogWindow& dialog) {
        for (const int field : kEdits) dialog.enter(field, L"changed", IDCANCEL);
        dialog.enter(IDC_LINK_AMOUNT, L"12", IDCANCEL);
        dialog.click(IDC_LINK_SATURATION);
        dialog.click(IDC_LINK_KEEP_NONE);
        dialog.click(IDC_LINK_WHITE_NO_INK);
        dialog.click(IDCANCEL);
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(std::memcmp(&settings, &before, sizeof settings), 0);
}

TEST(DeviceLinkDialog, WithoutARecordThereIsNoDialog) {
    EXPECT_EQ(jCmsDeviceLinkDlg(nullptr, nullptr), 0);
}

TEST(DeviceLinkDialog, EveryRadioSetsItsField) {
    const TempFolder folder;
    for (int number = 0; number < 3; ++number) {
        CmsLinkSettings settings = writingTo(folder.path("made.icc"));
        settings.intent = settings.preservation = settings.whiteMode = (number + 1) % 3;
        EXPECT_EQ(edit(settings,
                       [&](const DialogWindow& dialog) {
                           dialog.click(kIntents[number]);
                           dialog.click(kKeeps[number]);
                           dialog.click(kWhites[number]);
                           for (int other = 0; other < 3; ++other)
                               EXPECT_EQ(dialog.isChecked(kIntents[other]), other == number);
                           EXPECT_EQ(create(dialog), kMade);
                       }),
                  1);
        EXPECT_EQ(settings.intent, number);
        EXPECT_EQ(settings.preservation, number);
        EXPECT_EQ(settings.whiteMode, number);
    }
}

TEST(DeviceLinkDialog, NumbersThatAreNotOfferedCheckNothingAndStay) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    settings.intent = 3;
    settings.preservation = -1;
    settings.whiteMode = 7;
    EXPECT_EQ(edit(settings,
                   [](const DialogWindow& dialog) {
                       for (int number = 0; number < 3; ++number)
                           for (const int radio : {kIntents[number], kKeeps[number], kWhites[number]})
                               EXPECT_FALSE(dialog.isChecked(radio)) << radio;
                       for (const int control : kPaper)
                           EXPECT_FALSE(::IsWindowEnabled(dialog.item(control)));
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.intent, 3);
    EXPECT_EQ(settings.preservation, -1);
    EXPECT_EQ(settings.whiteMode, 7);
}

TEST(DeviceLinkDialog, AnAmountTypedAs500IsStoredAs1020AndShownAs400UntilReopened) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    settings.whiteMode = 2;
    EXPECT_EQ(edit(settings,
                   [](const DialogWindow& dialog) {
                       dialog.enter(IDC_LINK_AMOUNT, L"500", IDCANCEL);
                       EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"400");
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.limit, 1020);
    look(settings, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"100");
    });
}

TEST(DeviceLinkDialog, AnAmountThatNobodyEditsIsKeptAsItIs) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    settings.whiteMode = 2;
    settings.limit = 1019;
    edit(settings, [](const DialogWindow& dialog) {
        dialog.focus(IDC_LINK_AMOUNT);
        dialog.focus(IDC_LINK_OUTPUT);
        EXPECT_EQ(create(dialog), kMade);
    });
    EXPECT_EQ(settings.limit, 1019);
    edit(settings, [](const DialogWindow& dialog) {
        dialog.enter(IDC_LINK_AMOUNT, L"100", IDC_LINK_OUTPUT);  // what it shows, but typed
        EXPECT_EQ(create(dialog), kMade);
    });
    EXPECT_EQ(settings.limit, 255);
}

TEST(DeviceLinkDialog, TheAmountTakesThreeDigitsAndNothingElse) {
    look(onPaper(0, 0, 0, 0), [](const DialogWindow& dialog) {
        dialog.type(IDC_LINK_AMOUNT, L"1a2-3456");
        EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"123");
        dialog.enter(IDC_LINK_AMOUNT, L"", IDCANCEL);
        EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"0");
    });
}

TEST(DeviceLinkDialog, SwatchAndAmountAreThereForAGivenColourAlone) {
    look(onPaper(0, 0, 0, 0), [](const DialogWindow& dialog) {
        for (const int white : {IDC_LINK_WHITE_GIVEN, IDC_LINK_WHITE_PROFILE, IDC_LINK_WHITE_GIVEN,
                                IDC_LINK_WHITE_NO_INK}) {
            dialog.click(white);
            for (const int control : kPaper)
                EXPECT_EQ(::IsWindowEnabled(dialog.item(control)) != FALSE,
                          white == IDC_LINK_WHITE_GIVEN)
                    << control << ' ' << white;
        }
    });
}

TEST(DeviceLinkDialog, TheSwatchShowsTheGivenColourAndOtherwiseTheButtonFace) {
    look(onPaper(10, 20, 30, 40), [](const DialogWindow& dialog) {
        EXPECT_EQ(swatchOf(dialog), 0xcdc3b9u);
        dialog.click(IDC_LINK_WHITE_NO_INK);
        EXPECT_EQ(swatchOf(dialog), buttonFace());
        dialog.click(IDC_LINK_WHITE_GIVEN);
        EXPECT_EQ(swatchOf(dialog), 0xcdc3b9u);
        dialog.click(IDC_LINK_WHITE_PROFILE);
        EXPECT_EQ(swatchOf(dialog), buttonFace());
    });
    look(onPaper(255, 100, 0, 200), [](const DialogWindow& dialog) {
        EXPECT_EQ(swatchOf(dialog), 0x000037u);
    });
}

TEST(DeviceLinkDialog, ThePostedCommandPaintsTheSwatchAnew) {
    look(onPaper(10, 20, 30, 40), [](const DialogWindow& dialog) {
        const HWND swatch = dialog.item(IDC_LINK_SWATCH);
        ::UpdateWindow(swatch);
        const HDC dc = ::GetDC(swatch);
        const RECT all{0, 0, 1000, 1000};
        ::FillRect(dc, &all, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
        ::PostMessageW(dialog.handle(), WM_COMMAND, IDC_LINK_SHOW_PAPER, 0);
        EXPECT_TRUE(eventually([&] { return ::GetPixel(dc, 8, 8) == RGB(205, 195, 185); }));
        ::ReleaseDC(swatch, dc);
    });
}

TEST(DeviceLinkDialog, AClickOnTheSwatchPicksThePaperColour) {
    const TempFolder folder;
    CmsLinkSettings settings = onPaper(0, 0, 0, 255);
    folder.path("made.icc").copy(settings.outputPath, 259);
    EXPECT_EQ(edit(settings,
                   [](const DialogWindow& dialog) {
                       dialog.press(IDC_LINK_SWATCH);
                       const DialogWindow pick = dialog.asked();
                       EXPECT_EQ(pick.text(IDC_PICK_K), L"100");
                       pick.enter(IDC_PICK_K, L"0", IDC_PICK_C);
                       pick.enter(IDC_PICK_Y, L"20", IDC_PICK_C);
                       pick.click(IDOK);
                       dialog.waitForQuiet();
                       EXPECT_EQ(swatchOf(dialog), 0xffffccu);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.paperC, 0);
    EXPECT_EQ(settings.paperM, 0);
    EXPECT_EQ(settings.paperY, 51);
    EXPECT_EQ(settings.paperK, 0);
    expectTheLinkOf(settings, folder.path("made.icc"));
}

TEST(DeviceLinkDialog, CancelInTheColourDialogKeepsThePaperColour) {
    look(onPaper(10, 20, 30, 40), [](const DialogWindow& dialog) {
        dialog.press(IDC_LINK_SWATCH);
        const DialogWindow pick = dialog.asked();
        pick.enter(IDC_PICK_K, L"100", IDC_PICK_C);
        pick.click(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_EQ(swatchOf(dialog), 0xcdc3b9u);
    });
}

TEST(DeviceLinkDialog, AClickOnTheSwatchDoesNothingWithoutAGivenColour) {
    look(newSettings(), [](const DialogWindow& dialog) {
        dialog.click(IDC_LINK_SWATCH);
        ::SendMessageW(dialog.handle(), WM_COMMAND, IDC_LINK_SWATCH,
                       reinterpret_cast<LPARAM>(dialog.item(IDC_LINK_SWATCH)));
        EXPECT_TRUE(::IsWindowEnabled(dialog.handle()));
    });
}

// The kinds of files that the file dialog offers, one a line.
std::wstring offered(const DialogWindow& ask) {
    constexpr int kFilterBox = 0x470;
    const HWND box = ask.item(kFilterBox);
    std::wstring kinds;
    const auto count = ::SendMessageW(box, CB_GETCOUNT, 0, 0);
    for (LRESULT at = 0; at < count; ++at) {
        wchar_t text[200] = {};
        ::SendMessageW(box, CB_GETLBTEXT, static_cast<WPARAM>(at), reinterpret_cast<LPARAM>(text));
        kinds += std::wstring(text) + L'\n';
    }
    return kinds;
}

TEST(DeviceLinkDialog, EachBrowseButtonOffersItsFilesAndShowsTheChosenOne) {
    const TempFolder folder;
    const std::wstring icc = L"ICCﾌﾟﾛﾌｧｲﾙ (*.icc, *.icm)\n";
    const std::wstring kinds[] = {icc + L"LUTﾌｧｲﾙ (*.LUT)\n", icc + L"NQPﾌｧｲﾙ (*.nqp)\n",
                                  icc + L"DCCﾌｧｲﾙ (*.dcc)\n", L"LUTﾌｧｲﾙ (*.bkc)\n", icc};
    const char* const names[] = {"a.lut", "b.nqp", "c.dcc", "d.bkc", "e.icc"};
    for (const char* const name : names) writeFile(folder.path(name), "content");
    look(newSettings(), [&](const DialogWindow& dialog) {
        for (size_t at = 0; at < 4; ++at) {
            dialog.press(kBrowse[at]);
            const DialogWindow ask = dialog.asked();
            EXPECT_EQ(offered(ask), kinds[at]) << at;
            ask.chooseFile(folder.path(names[at]));
            dialog.waitForQuiet();
            EXPECT_EQ(dialog.text(kEdits[at]), wide(folder.path(names[at])));
        }
        dialog.press(IDC_LINK_BROWSE_OUTPUT);
        const DialogWindow ask = dialog.asked();
        EXPECT_EQ(offered(ask), kinds[4]);
        ask.chooseFile(folder.path("new"));
        dialog.waitForQuiet();
        EXPECT_EQ(dialog.text(IDC_LINK_OUTPUT), wide(folder.path("new.icc")));
    });
}

TEST(DeviceLinkDialog, BrowsingBeginsWithTheFieldsFileAndItsCancelKeepsIt) {
    const TempFolder folder;
    writeFile(folder.path("first.icc"), "content");
    look(newSettings(), [&](const DialogWindow& dialog) {
        for (size_t at = 0; at < 5; ++at) {
            dialog.enter(kEdits[at], wide(folder.path("first.icc")), IDCANCEL);
            dialog.press(kBrowse[at]);
            const DialogWindow ask = dialog.asked();
            const HWND name = ask.item(0x480) ? ask.item(0x480) : ask.item(0x47c);
            wchar_t text[300] = {};
            ::SendMessageW(name, WM_GETTEXT, 300, reinterpret_cast<LPARAM>(text));
            EXPECT_EQ(std::wstring(text), L"first.icc");
            ask.press(IDCANCEL);
            dialog.waitForQuiet();
            EXPECT_EQ(dialog.text(kEdits[at]), wide(folder.path("first.icc")));
        }
    });
}

TEST(DeviceLinkDialog, BrowsingOpensAlsoWhereTheFieldHoldsNoName) {
    look(newSettings(), [&](const DialogWindow& dialog) {
        for (const wchar_t* const odd : {L"a<>|?*.icc", L"\\", L"...", L"::::"}) {
            dialog.enter(IDC_LINK_BASE, odd, IDCANCEL);
            dialog.press(IDC_LINK_BROWSE_BASE);
            dialog.asked().press(IDCANCEL);
            dialog.waitForQuiet();
            EXPECT_EQ(dialog.text(IDC_LINK_BASE), odd);
        }
    });
}

TEST(DeviceLinkDialog, CreateWritesTheLinkAndReturnsTheSettingsItWasMadeWith) {
    const TempFolder folder;
    CmsLinkSettings settings = newSettings();
    settings.intent = 2;
    const std::string micro = testData("CGATS001Compat-v2-micro.icc");
    const std::string output = folder.path("made.icc");
    EXPECT_EQ(edit(settings,
                   [&](const DialogWindow& dialog) {
                       dialog.enter(IDC_LINK_SOURCE, wide(micro), IDCANCEL);
                       dialog.enter(IDC_LINK_DESTINATION, wide(kDebian), IDCANCEL);
                       dialog.enter(IDC_LINK_OUTPUT, wide(output), IDCANCEL);
                       EXPECT_EQ(create(dialog), kNotMade);  // the source has no saturation table
                       dialog.click(IDC_LINK_PERCEPTUAL);
                       dialog.click(IDC_LINK_KEEP_SECONDARIES);
                       dialog.click(IDC_LINK_WHITE_NO_INK);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    CmsLinkSettings expected = writingTo(output);
    micro.copy(expected.sourcePath, 259);
    std::strcpy(expected.destinationPath, kDebian);
    expected.preservation = 2;
    expected.whiteMode = 1;
    EXPECT_EQ(std::memcmp(&settings, &expected, sizeof settings), 0);
    expectTheLinkOf(expected, output);
}

TEST(DeviceLinkDialog, ReturnCreatesWithTheFieldThatHasTheFocus) {
    const TempFolder folder;
    CmsLinkSettings settings = newSettings();
    EXPECT_EQ(edit(settings,
                   [&](const DialogWindow& dialog) {
                       dialog.type(IDC_LINK_OUTPUT, wide(folder.path("made.icc")));
                       ::PostMessageW(dialog.item(IDC_LINK_OUTPUT), WM_KEYDOWN, VK_RETURN, 0);
                       EXPECT_EQ(closeMessage(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.outputPath, folder.path("made.icc"));
    EXPECT_TRUE(exists(folder.path("made.icc")));
}

TEST(DeviceLinkDialog, WhatCannotBeMadeIsToldAndTheDialogStaysOpenForCorrection) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    EXPECT_EQ(edit(settings,
                   [&](const DialogWindow& dialog) {
                       for (const int field : {IDC_LINK_BASE, IDC_LINK_SOURCE, IDC_LINK_BLACK}) {
                           dialog.enter(field, named(L"profile.icc"), IDCANCEL);
                           dialog.enter(IDC_LINK_DESTINATION, named(L"p.icc"), IDCANCEL);
                           EXPECT_EQ(create(dialog), kNotMade);
                           EXPECT_FALSE(exists(folder.path("made.icc")));
                           dialog.enter(field, L"", IDCANCEL);
                       }
                       dialog.enter(IDC_LINK_DESTINATION, L"", IDCANCEL);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_TRUE(exists(folder.path("made.icc")));
}

TEST(DeviceLinkDialog, WhatCannotBeWrittenIsToldAndTheDialogStaysOpenForCorrection) {
    const TempFolder folder;
    CmsLinkSettings settings = newSettings();
    EXPECT_EQ(edit(settings,
                   [&](const DialogWindow& dialog) {
                       EXPECT_EQ(create(dialog), kNotWritten);  // no path at all
                       dialog.enter(IDC_LINK_OUTPUT, named(L"made.icc"), IDCANCEL);
                       EXPECT_EQ(create(dialog), kNotWritten);
                       dialog.enter(IDC_LINK_OUTPUT, wide(folder.path("made.icc")), IDCANCEL);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.outputPath, folder.path("made.icc"));
}

TEST(DeviceLinkDialog, ALinkThatAnotherProgramHoldsIsNotTakenForTheNewOne) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    edit(settings, [](const DialogWindow& dialog) { EXPECT_EQ(create(dialog), kMade); });
    const Bytes before = readFile(folder.path("made.icc"));
    const HANDLE held = ::CreateFileA(folder.path("made.icc").c_str(), GENERIC_READ,
                                      FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    settings.whiteMode = 2;
    settings.paperC = 99;
    EXPECT_EQ(edit(settings,
                   [](const DialogWindow& dialog) { EXPECT_EQ(create(dialog), kNotWritten); }),
              0);
    ::CloseHandle(held);
    EXPECT_EQ(readFile(folder.path("made.icc")), before);
}

TEST(DeviceLinkDialog, APathThatTheCodePageCannotNameTurnsRedAndKeepsTheLinkFromBeingMade) {
    const TempFolder folder;
    const std::wstring thai = L"Z:\\\x0e01\x0e02.icc";  // in none of the code pages
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    std::strcpy(settings.basePath, "before.icc");
    EXPECT_EQ(edit(settings,
                   [&](const DialogWindow& dialog) {
                       dialog.enter(IDC_LINK_BASE, thai, IDCANCEL);
                       EXPECT_EQ(dialog.text(IDC_LINK_BASE), thai);
                       EXPECT_GT(pictureOf(dialog).count(0xc80000), 5);
                       EXPECT_EQ(create(dialog), kNotMade);
                       EXPECT_FALSE(exists(folder.path("made.icc")));
                       dialog.enter(IDC_LINK_BASE, L"", IDCANCEL);
                       EXPECT_EQ(pictureOf(dialog).count(0xc80000), 0);
                       dialog.enter(IDC_LINK_OUTPUT, thai, IDCANCEL);
                       EXPECT_EQ(create(dialog), kNotWritten);
                       EXPECT_FALSE(exists(folder.path("made.icc")));
                       dialog.enter(IDC_LINK_OUTPUT, wide(folder.path("other.icc")), IDCANCEL);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_STREQ(settings.basePath, "");
    EXPECT_EQ(settings.outputPath, folder.path("other.icc"));
}

TEST(DeviceLinkDialog, NoQuestionMarkEverStandsForACharacterThatIsMissing) {
    CmsLinkSettings settings = newSettings();
    look(settings, [](const DialogWindow& dialog) {
        for (const int field : kEdits)
            for (const wchar_t character : {L'\x0e01', L'\x4e00', L'\xe9', L'\x2116', L'\x30a2'}) {
                const std::wstring path = std::wstring(L"Z:\\") + character + L".icc";
                dialog.enter(field, path, IDCANCEL);
                EXPECT_EQ(dialog.text(field), path);
            }
    });
}

TEST(DeviceLinkDialog, ALinkInAFolderNamedInTheSystemsLanguageIsWrittenAndShown) {
    const TempFolder folder;
    const std::wstring local = ::GetACP() == 932   ? L"色表"
                               : ::GetACP() == 936 ? L"颜色"
                                                   : L"couleur-é";
    const std::wstring inside = wide(folder.path("")) + local;
    ASSERT_TRUE(::CreateDirectoryW(inside.c_str(), nullptr));
    const std::wstring output = inside + L"\\" + local;
    CmsLinkSettings settings = newSettings();
    EXPECT_EQ(edit(settings,
                   [&](const DialogWindow& dialog) {
                       dialog.enter(IDC_LINK_OUTPUT, output, IDCANCEL);
                       EXPECT_EQ(dialog.text(IDC_LINK_OUTPUT), output);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(wide(settings.outputPath), output);
    EXPECT_NE(::GetFileAttributesW(output.c_str()), INVALID_FILE_ATTRIBUTES);
    look(settings, [&](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_LINK_OUTPUT), output);
    });
}

// As the system hands over what was dropped at a place of the dialog.
void drop(const DialogWindow& dialog, POINT at, const std::vector<std::wstring>& files) {
    std::wstring names;
    for (const std::wstring& file : files) names += file + L'\0';
    names += L'\0';
    const HGLOBAL block =
        ::GlobalAlloc(GMEM_MOVEABLE, sizeof(DROPFILES) + names.size() * sizeof(wchar_t));
    auto* const head = static_cast<DROPFILES*>(::GlobalLock(block));
    *head = {sizeof(DROPFILES), at, FALSE, TRUE};
    names.copy(reinterpret_cast<wchar_t*>(head + 1), names.size());
    ::GlobalUnlock(block);
    ::SendMessageW(dialog.handle(), WM_DROPFILES, reinterpret_cast<WPARAM>(block), 0);
}

TEST(DeviceLinkDialog, AFileDroppedOnAFieldIsItsPath) {
    const TempFolder folder;
    CmsLinkSettings settings = newSettings();
    EXPECT_EQ(edit(settings,
                   [&](const DialogWindow& dialog) {
                       const auto middleOf = [&](int control) {
                           const RECT place = placeOf(dialog.item(control), dialog.handle());
                           return POINT{(place.left + place.right) / 2,
                                        (place.top + place.bottom) / 2};
                       };
                       for (const int field : kEdits) {
                           const std::wstring own = named(L"file") + std::to_wstring(field);
                           drop(dialog, middleOf(field), {own, named(L"second")});
                           for (const int other : kEdits)
                               EXPECT_EQ(dialog.text(other) == own, other == field);
                           drop(dialog, middleOf(field), {});
                           EXPECT_EQ(dialog.text(field), own);
                           dialog.enter(field, L"", IDCANCEL);
                       }
                       drop(dialog, middleOf(IDC_LINK_RELATIVE), {named(L"nowhere")});
                       drop(dialog, {-5, 100000}, {named(L"nowhere")});
                       drop(dialog, middleOf(IDC_LINK_BASE), {std::wstring(3000, L'x')});
                       drop(dialog, middleOf(IDC_LINK_BASE), {L"Z:\\\x0e01.icc"});
                       EXPECT_EQ(create(dialog), kNotMade);
                       dialog.enter(IDC_LINK_BASE, L"", IDCANCEL);
                       drop(dialog, middleOf(IDC_LINK_OUTPUT), {wide(folder.path("made.icc"))});
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.outputPath, folder.path("made.icc"));
}

TEST(DeviceLinkDialog, BlanksAndQuotationMarksAroundAPathGo) {
    look(newSettings(), [](const DialogWindow& dialog) {
        for (const int field : kEdits) {
            dialog.enter(field, L"  a b.icc  ", IDCANCEL);
            EXPECT_EQ(dialog.text(field), L"a b.icc");
            dialog.enter(field, L"\"a b.icc\"", IDCANCEL);
            EXPECT_EQ(dialog.text(field), L"a b.icc");
        }
    });
}

TEST(DeviceLinkDialog, PathsOf260BytesAreCutAtAWholeCharacter) {
    look(newSettings(), [](const DialogWindow& dialog) {
        const wchar_t character = ::GetACP() == 1252 ? L'\xe9' : L'\x4e00';
        const size_t bytes = ::GetACP() == 1252 ? 1 : 2;
        for (const int field : kEdits) {
            const std::wstring text = L"a" + std::wstring(400, character);
            ::SendMessageW(dialog.item(field), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
            dialog.focus(field);
            dialog.focus(IDCANCEL);
            EXPECT_EQ(dialog.text(field), L"a" + std::wstring(258 / bytes, character));
        }
    });
}

TEST(DeviceLinkDialog, ItOpensWhereItWasClosedLast) {
    const TempFolder folder;
    RECT place{};
    const auto closeAt = [&](int x, int y, const Drive& close) {
        CmsLinkSettings settings = writingTo(folder.path("made.icc"));
        edit(settings, [&](const DialogWindow& dialog) {
            ::SetWindowPos(dialog.handle(), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            ::GetWindowRect(dialog.handle(), &place);
            close(dialog);
        });
    };
    const auto expectThere = [&] {
        look(newSettings(), [&](const DialogWindow& dialog) {
            RECT now;
            ::GetWindowRect(dialog.handle(), &now);
            EXPECT_TRUE(::EqualRect(&now, &place)) << now.left << ' ' << now.top;
        });
    };
    closeAt(60, 70, [](const DialogWindow& dialog) { dialog.click(IDCANCEL); });
    expectThere();
    closeAt(90, 20, [](const DialogWindow& dialog) { EXPECT_EQ(create(dialog), kMade); });
    expectThere();
    closeAt(30, 40, [](const DialogWindow& dialog) {
        ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    expectThere();
    closeAt(20000, 40, [](const DialogWindow& dialog) { dialog.click(IDCANCEL); });
    look(newSettings(), [&](const DialogWindow& dialog) {  // no screen shows that place
        EXPECT_NE(::MonitorFromWindow(dialog.handle(), MONITOR_DEFAULTTONULL), nullptr);
        dialog.click(IDCANCEL);
    });
}

TEST(DeviceLinkLayout, TextsFitNothingIsCoveredAndEveryControlHasAName) {
    CmsLinkSettings settings = onPaper(0, 0, 0, 0);
    settings.limit = 255;
    look(settings, [](const DialogWindow& dialog) { expectALook(dialog); });
}

TEST(DeviceLinkLayout, TheMarginsAreEvenAndFieldsStandInLine) {
    look(newSettings(), [](const DialogWindow& dialog) {
        RECT client;
        ::GetClientRect(dialog.handle(), &client);
        const auto place = [&](int control) { return placeOf(dialog.item(control), dialog.handle()); };
        for (size_t at = 1; at < 4; ++at) {
            EXPECT_EQ(place(kEdits[at]).left, place(kEdits[0]).left);
            EXPECT_EQ(place(kBrowse[at]).right, place(kBrowse[0]).right);
        }
        EXPECT_EQ(place(IDCANCEL).right, place(kBrowse[0]).right);
        EXPECT_NEAR(client.right - place(IDCANCEL).right, client.bottom - place(IDCANCEL).bottom, 6);
    });
}

TEST(DeviceLinkLayout, IsKeptAsAPicture) {
    CmsLinkSettings settings = onPaper(0, 8, 26, 5);
    std::strcpy(settings.sourcePath, "C:\\profiles\\newspaper.icc");
    std::strcpy(settings.destinationPath, "C:\\profiles\\printer.icc");
    std::strcpy(settings.blackPath, "C:\\profiles\\newspaper.bkc");
    std::strcpy(settings.outputPath, "C:\\profiles\\newspaper-link.icc");
    settings.intent = 1;
    settings.preservation = 1;
    look(settings, [](const DialogWindow& dialog) {
        keepPicture(pictureOf(dialog), "device-link");
        dialog.click(IDC_LINK_WHITE_NO_INK);
        keepPicture(pictureOf(dialog), "device-link-white");
    });
}

}  // namespace
