// The paths of the device-link dialog: typed, chosen, dropped, in every code page.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "tests/dialog/device_link.h"
#include "tests/dialog/drop.h"
#include "tests/dialog/language.h"
#include "tests/dialog/layout.h"

using namespace ko::test;

namespace {

std::wstring named(const wchar_t* name) { return std::wstring(L"Z:\\missing\\") + name; }

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
    const std::wstring icc = L"ICCﾌﾟﾛﾌｧｲﾙ (*.icc, *.icm)|*.icc;*.icm|";
    const std::wstring kinds[] = {
        shownKinds(icc + L"LUTﾌｧｲﾙ (*.LUT)|*.lut|"), shownKinds(icc + L"NQPﾌｧｲﾙ (*.nqp)|*.nqp|"),
        shownKinds(icc + L"DCCﾌｧｲﾙ (*.dcc)|*.dcc|"), shownKinds(L"BKCﾌｧｲﾙ (*.bkc)|*.bkc|"),
        shownKinds(icc)};
    const char* const names[] = {"a.lut", "b.nqp", "c.dcc", "d.bkc", "e.icc"};
    for (const char* const name : names) writeFile(folder.path(name), "content");
    lookAtLink(writingTo(""), [&](const DialogWindow& dialog) {
        for (size_t at = 0; at < 4; ++at) {
            dialog.press(kLinkBrowse[at]);
            const DialogWindow ask = dialog.asked();
            EXPECT_EQ(offered(ask), kinds[at]) << at;
            ask.chooseFile(folder.path(names[at]));
            dialog.waitForQuiet();
            EXPECT_EQ(dialog.text(kLinkEdits[at]), wide(folder.path(names[at])));
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
    lookAtLink(writingTo(""), [&](const DialogWindow& dialog) {
        for (size_t at = 0; at < 5; ++at) {
            dialog.enter(kLinkEdits[at], wide(folder.path("first.icc")), IDCANCEL);
            dialog.press(kLinkBrowse[at]);
            const DialogWindow ask = dialog.asked();
            const HWND name = ask.item(0x480) ? ask.item(0x480) : ask.item(0x47c);
            wchar_t text[300] = {};
            ::SendMessageW(name, WM_GETTEXT, 300, reinterpret_cast<LPARAM>(text));
            EXPECT_EQ(std::wstring(text), L"first.icc");
            ask.press(IDCANCEL);
            dialog.waitForQuiet();
            EXPECT_EQ(dialog.text(kLinkEdits[at]), wide(folder.path("first.icc")));
        }
    });
}

TEST(DeviceLinkDialog, BrowsingOffersTheKindOfTheFieldsFileFirst) {
    constexpr int kFilterBox = 0x470;
    lookAtLink(writingTo(""), [&](const DialogWindow& dialog) {
        for (const auto& [name, kind] : {std::pair{L"Z:\\a.LUT", 1}, {L"Z:\\a.icm", 0}, {L"", 0}}) {
            dialog.enter(IDC_LINK_BASE, name, IDCANCEL);
            dialog.press(IDC_LINK_BROWSE_BASE);
            const DialogWindow ask = dialog.asked();
            EXPECT_EQ(::SendMessageW(ask.item(kFilterBox), CB_GETCURSEL, 0, 0), kind) << name;
            ask.press(IDCANCEL);
            dialog.waitForQuiet();
        }
    });
}

TEST(DeviceLinkDialog, BrowsingOpensAlsoWhereTheFieldHoldsNoName) {
    lookAtLink(writingTo(""), [&](const DialogWindow& dialog) {
        for (const wchar_t* const odd : {L"a<>|?*.icc", L"\\", L"...", L"::::"}) {
            dialog.enter(IDC_LINK_BASE, odd, IDCANCEL);
            dialog.press(IDC_LINK_BROWSE_BASE);
            dialog.asked().press(IDCANCEL);
            dialog.waitForQuiet();
            EXPECT_EQ(dialog.text(IDC_LINK_BASE), odd);
        }
    });
}

TEST(DeviceLinkDialog, APathThatTheCodePageCannotNameTurnsRedAndKeepsTheLinkFromBeingMade) {
    const TempFolder folder;
    const std::wstring thai = L"Z:\\\x0e01\x0e02.icc";  // in none of the code pages
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    std::strcpy(settings.basePath, "before.icc");
    EXPECT_EQ(editLink(settings,
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
    CmsLinkSettings settings = writingTo("");
    lookAtLink(settings, [](const DialogWindow& dialog) {
        for (const int field : kLinkEdits)
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
    CmsLinkSettings settings = writingTo("");
    EXPECT_EQ(editLink(settings,
                   [&](const DialogWindow& dialog) {
                       dialog.enter(IDC_LINK_OUTPUT, output, IDCANCEL);
                       EXPECT_EQ(dialog.text(IDC_LINK_OUTPUT), output);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    const std::wstring written = output + L".icc";
    EXPECT_EQ(wide(settings.outputPath), written);
    EXPECT_NE(::GetFileAttributesW(written.c_str()), INVALID_FILE_ATTRIBUTES);
    lookAtLink(settings, [&](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_LINK_OUTPUT), written);
    });
}

TEST(DeviceLinkDialog, AFileDroppedOnAFieldIsItsPath) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo("");
    EXPECT_EQ(editLink(settings,
                   [&](const DialogWindow& dialog) {
                       const auto middleOf = [&](int control) {
                           const RECT place = placeOf(dialog.item(control), dialog.handle());
                           return POINT{(place.left + place.right) / 2,
                                        (place.top + place.bottom) / 2};
                       };
                       for (const int field : kLinkEdits) {
                           const std::wstring own = named(L"file") + std::to_wstring(field);
                           drop(dialog, middleOf(field), {own, named(L"second")});
                           for (const int other : kLinkEdits)
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
    lookAtLink(writingTo(""), [](const DialogWindow& dialog) {
        for (const int field : kLinkEdits) {
            dialog.enter(field, L"  a b.icc  ", IDCANCEL);
            EXPECT_EQ(dialog.text(field), L"a b.icc");
            dialog.enter(field, L"\"a b.icc\"", IDCANCEL);
            EXPECT_EQ(dialog.text(field), L"a b.icc");
        }
    });
}

TEST(DeviceLinkDialog, UnderEachPathStandsWhatItsFileIsOrWhyItCannotBeUsed) {
    constexpr uint32_t kGreen = 0x006e00;
    lookAtLink(writingTo(""), [&](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_LINK_FACT_SOURCE), L"");
        dialog.enter(IDC_LINK_SOURCE, wide(kDebian), IDCANCEL);
        const std::wstring fact = dialog.text(IDC_LINK_FACT_SOURCE);
        EXPECT_NE(fact.find(shown(L"出力ﾌﾟﾛﾌｧｲﾙ") + L" - CMYK - Lab, A2B0"), fact.npos);
        EXPECT_GT(pictureOf(dialog).count(kGreen), 5);
        dialog.enter(IDC_LINK_BASE, wide(kDebian), IDCANCEL);  // no link
        const std::wstring reason = dialog.text(IDC_LINK_FACT_BASE);
        EXPECT_NE(reason.find(L"CMYK"), reason.npos);
        EXPECT_NE(reason.find(L"Lab"), reason.npos);
        EXPECT_GT(pictureOf(dialog).count(0xc80000), 5);
        keepPicture(pictureOf(dialog), "device-link-facts-" + language());
        dialog.enter(IDC_LINK_BASE, L"", IDCANCEL);
        EXPECT_EQ(dialog.text(IDC_LINK_FACT_BASE), L"");
        EXPECT_EQ(pictureOf(dialog).count(0xc80000), 0);
    });
}

// Letters in red, also where they are so fine that no pixel is wholly of their colour.
int countReddish(const Picture& picture) {
    return static_cast<int>(
        std::count_if(picture.pixels.begin(), picture.pixels.end(), [](uint32_t pixel) {
            const int red = pixel >> 16 & 255, green = pixel >> 8 & 255;
            return red - green > 60;
        }));
}

TEST(DeviceLinkDialog, APathOf260BytesIsRefusedInWordsAndNothingIsWrittenElsewhere) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("before.icc"));
    EXPECT_EQ(editLink(settings,
                   [&](const DialogWindow& dialog) {
                       // Half of its characters take two bytes, where the code page has them.
                       const wchar_t character = ::GetACP() == 1252 ? L'\xe9' : L'\x8868';
                       const size_t bytes = ::GetACP() == 1252 ? 1 : 2;
                       const std::wstring start = wide(folder.path("a"));
                       const auto pathOf = [&](size_t whole) {
                           return start + std::wstring((whole - start.size()) / bytes, character) +
                                  std::wstring((whole - start.size()) % bytes, L'b');
                       };
                       for (const int field : kLinkEdits) {
                           dialog.enter(field, pathOf(260), IDCANCEL);
                           EXPECT_EQ(dialog.text(field), pathOf(260));
                           EXPECT_EQ(dialog.text(IDC_STATUS),
                                     shown(L"ﾊﾟｽが259ﾊﾞｲﾄを超えています。"));
                           EXPECT_GT(countReddish(pictureOf(dialog)), 5);
                           EXPECT_EQ(create(dialog),
                                     field == IDC_LINK_OUTPUT ? kNotWritten : kNotMade);
                           EXPECT_EQ(dialog.focused(), field);
                           dialog.enter(field, pathOf(259), IDCANCEL);
                           EXPECT_EQ(dialog.text(field), pathOf(259));
                           EXPECT_EQ(dialog.text(IDC_STATUS), L"");
                           if (field == IDC_LINK_OUTPUT) {  // under the others: no such file
                               EXPECT_EQ(countReddish(pictureOf(dialog)), 0);
                           }
                           dialog.enter(field, L"", IDCANCEL);
                       }
                       // Nor one that is too long with its extension.
                       dialog.enter(IDC_LINK_OUTPUT, pathOf(256), IDCANCEL);
                       EXPECT_EQ(create(dialog), kNotWritten);
                       EXPECT_TRUE(std::filesystem::is_empty(folder.folder()));
                   }),
              0);
}

}  // namespace
