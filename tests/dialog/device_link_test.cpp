// The device-link dialog in its real window: what it shows, its radios and its paper colour.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/dialog/device_link.h"
#include "tests/dialog/language.h"
#include "tests/dialog/layout.h"

using namespace ko::test;

namespace {

constexpr int kIntents[] = {IDC_LINK_PERCEPTUAL, IDC_LINK_RELATIVE, IDC_LINK_SATURATION};
constexpr int kKeeps[] = {IDC_LINK_KEEP_NONE, IDC_LINK_KEEP_PRIMARIES, IDC_LINK_KEEP_SECONDARIES};
constexpr int kWhites[] = {IDC_LINK_WHITE_PROFILE, IDC_LINK_WHITE_NO_INK, IDC_LINK_WHITE_GIVEN};
constexpr int kPaper[] = {IDC_LINK_SWATCH, IDC_LINK_AMOUNT_LABEL, IDC_LINK_AMOUNT,
                          IDC_LINK_AMOUNT_UNIT};

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
    lookAtLink(settings, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), shown(L"ﾃﾞﾊﾞｲｽﾘﾝｸ"));
        for (size_t at = 0; at < 5; ++at)
            EXPECT_EQ(dialog.text(kLinkEdits[at]), L"Z:\\folder\\file" + std::to_wstring(at));
        for (int number = 0; number < 3; ++number) {
            EXPECT_EQ(dialog.isChecked(kIntents[number]), number == 1);
            EXPECT_EQ(dialog.isChecked(kKeeps[number]), number == 2);
            EXPECT_EQ(dialog.isChecked(kWhites[number]), number == 2);
        }
        EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"78");  // 200 of 255
        EXPECT_EQ(dialog.text(IDOK), shown(L"作成(&C)"));
        EXPECT_EQ(dialog.text(IDCANCEL), shown(L"ｷｬﾝｾﾙ"));
        // Each has a name and an access key of its own.
        for (size_t at = 0; at < std::size(kLinkBrowse); ++at)
            EXPECT_EQ(dialog.text(kLinkBrowse[at]),
                      shown(L"参照(&" + std::to_wstring(at + 1) + L")"));
    });
}

TEST(DeviceLinkDialog, CancelLeavesEveryByteOfTheRecord) {
    CmsLinkSettings settings;
    std::memset(&settings, 'x', sizeof settings);
    settings.whiteMode = 2;
    const CmsLinkSettings before = settings;
    const int32_t result = editLink(settings, [](const DialogWindow& dialog) {
        for (const int field : kLinkEdits) dialog.enter(field, L"changed", IDCANCEL);
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
        EXPECT_EQ(editLink(settings,
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
    EXPECT_EQ(editLink(settings,
                   [](const DialogWindow& dialog) {
                       for (int number = 0; number < 3; ++number)
                           for (const auto& radios : {kIntents, kKeeps, kWhites})
                               EXPECT_FALSE(dialog.isChecked(radios[number])) << number;
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
    EXPECT_EQ(editLink(settings,
                   [](const DialogWindow& dialog) {
                       dialog.enter(IDC_LINK_AMOUNT, L"500", IDCANCEL);
                       EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"400");
                       EXPECT_EQ(dialog.text(IDC_STATUS), shown(L"0 % ～ 400 % に制限しました。"));
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.limit, 1020);
    lookAtLink(settings, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"100");
    });
}

TEST(DeviceLinkDialog, AnAmountThatNobodyEditsIsKeptAsItIs) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    settings.whiteMode = 2;
    settings.limit = 1019;
    editLink(settings, [](const DialogWindow& dialog) {
        dialog.focus(IDC_LINK_AMOUNT);
        dialog.focus(IDC_LINK_OUTPUT);
        EXPECT_EQ(create(dialog), kMade);
    });
    EXPECT_EQ(settings.limit, 1019);
    editLink(settings, [](const DialogWindow& dialog) {
        dialog.enter(IDC_LINK_AMOUNT, L"100", IDC_LINK_OUTPUT);  // what it shows, but typed
        EXPECT_EQ(create(dialog), kMade);
    });
    EXPECT_EQ(settings.limit, 255);
}

TEST(DeviceLinkDialog, TheAmountTakesThreeDigitsAndNothingElse) {
    lookAtLink(onPaper(0, 0, 0, 0), [](const DialogWindow& dialog) {
        dialog.type(IDC_LINK_AMOUNT, L"1a2-3456");
        EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"123");
        dialog.enter(IDC_LINK_AMOUNT, L"", IDCANCEL);
        EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"0");
    });
}

TEST(DeviceLinkDialog, SwatchAndAmountAreThereForAGivenColourAlone) {
    lookAtLink(onPaper(0, 0, 0, 0), [](const DialogWindow& dialog) {
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
    lookAtLink(onPaper(10, 20, 30, 40), [](const DialogWindow& dialog) {
        EXPECT_EQ(swatchOf(dialog), 0xcdc3b9u);
        dialog.click(IDC_LINK_WHITE_NO_INK);
        EXPECT_EQ(swatchOf(dialog), buttonFace());
        dialog.click(IDC_LINK_WHITE_GIVEN);
        EXPECT_EQ(swatchOf(dialog), 0xcdc3b9u);
        dialog.click(IDC_LINK_WHITE_PROFILE);
        EXPECT_EQ(swatchOf(dialog), buttonFace());
    });
    lookAtLink(onPaper(255, 100, 0, 200), [](const DialogWindow& dialog) {
        EXPECT_EQ(swatchOf(dialog), 0x000037u);
    });
}

TEST(DeviceLinkDialog, ThePostedCommandPaintsTheSwatchAnew) {
    lookAtLink(onPaper(10, 20, 30, 40), [](const DialogWindow& dialog) {
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
    EXPECT_EQ(editLink(settings,
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
    lookAtLink(onPaper(10, 20, 30, 40), [](const DialogWindow& dialog) {
        dialog.press(IDC_LINK_SWATCH);
        const DialogWindow pick = dialog.asked();
        pick.enter(IDC_PICK_K, L"100", IDC_PICK_C);
        pick.click(IDCANCEL);
        dialog.waitForQuiet();
        EXPECT_EQ(swatchOf(dialog), 0xcdc3b9u);
    });
}

TEST(DeviceLinkDialog, AClickOnTheSwatchDoesNothingWithoutAGivenColour) {
    lookAtLink(writingTo(""), [](const DialogWindow& dialog) {
        dialog.click(IDC_LINK_SWATCH);
        ::SendMessageW(dialog.handle(), WM_COMMAND, IDC_LINK_SWATCH,
                       reinterpret_cast<LPARAM>(dialog.item(IDC_LINK_SWATCH)));
        EXPECT_TRUE(::IsWindowEnabled(dialog.handle()));
    });
}

TEST(DeviceLinkDialog, ItOpensWhereItWasClosedLast) {
    const TempFolder folder;
    RECT place{};
    const auto closeAt = [&](int x, int y, const Drive& close) {
        CmsLinkSettings settings = writingTo(folder.path("made.icc"));
        editLink(settings, [&](const DialogWindow& dialog) {
            ::SetWindowPos(dialog.handle(), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
            ::GetWindowRect(dialog.handle(), &place);
            close(dialog);
        });
    };
    const auto expectThere = [&] {
        lookAtLink(writingTo(""), [&](const DialogWindow& dialog) {
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
    lookAtLink(writingTo(""), [&](const DialogWindow& dialog) {  // no screen shows that place
        EXPECT_NE(::MonitorFromWindow(dialog.handle(), MONITOR_DEFAULTTONULL), nullptr);
        dialog.click(IDCANCEL);
    });
}

TEST(DeviceLinkLayout, TextsFitNothingIsCoveredAndEveryControlHasAName) {
    CmsLinkSettings settings = onPaper(0, 0, 0, 0);
    settings.limit = 255;
    lookAtLink(settings, [](const DialogWindow& dialog) { expectALook(dialog); });
}

TEST(DeviceLinkLayout, TheMarginsAreEvenAndFieldsStandInLine) {
    lookAtLink(writingTo(""), [](const DialogWindow& dialog) {
        RECT client;
        ::GetClientRect(dialog.handle(), &client);
        const auto place = [&](int control) {
            return placeOf(dialog.item(control), dialog.handle());
        };
        for (size_t at = 1; at < 4; ++at) {
            EXPECT_EQ(place(kLinkEdits[at]).left, place(kLinkEdits[0]).left);
            EXPECT_EQ(place(kLinkBrowse[at]).right, place(kLinkBrowse[0]).right);
        }
        EXPECT_EQ(place(IDCANCEL).right, place(kLinkBrowse[0]).right);
        const RECT cancel = place(IDCANCEL);
        EXPECT_NEAR(client.right - cancel.right, client.bottom - cancel.bottom, 6);
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
    lookAtLink(settings, [](const DialogWindow& dialog) {
        keepPicture(pictureOf(dialog), "device-link");
        dialog.click(IDC_LINK_WHITE_NO_INK);
        keepPicture(pictureOf(dialog), "device-link-white");
    });
}

}  // namespace
