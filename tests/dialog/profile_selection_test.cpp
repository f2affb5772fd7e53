// The profile-setting dialog, driven in its real window. Each test loads a copy of the library
// with a settings file of its own, so that the product folder is the test's alone.
#include "kolink/profile_selection_dialog.h"

#include <gmock/gmock.h>

#include <cstring>

#include "tests/dialog/layout.h"
#include "tests/dialog/lifetime.h"
#include "tests/support/profiles.h"

using namespace ko::test;
using testing::Each;
using testing::ElementsAre;
using Texts = std::vector<std::wstring>;

namespace {

// What a language shows.
struct Words {
    const wchar_t *caption, *notSet, *intentLabel, *cancel;
    Texts intents;
};
Words words() {
    if (language() == "ja")
        return {L"ﾌﾟﾛﾌｧｲﾙ設定", L"未設定", L"ｲﾝﾃﾝﾄ(&I)：", L"ｷｬﾝｾﾙ",
                {L"視覚的", L"相対的色彩", L"彩度", L"絶対的色彩"}};
    if (language() == "zh")
        return {L"配置文件设置", L"无", L"意图(&I)：", L"取消",
                {L"可感知", L"相对比色", L"饱和度", L"绝对比色"}};
    return {L"Profile setting", L"None", L"&Intent:", L"Cancel",
            {L"Perceptual", L"Relative", L"Saturation", L"Absolute"}};
}

std::filesystem::path loadedLibrary() {
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(::GetModuleHandleW(L"KoLink.dll"), path, MAX_PATH);
    return path;
}

// A folder with a library of its own and the profiles that it offers.
struct Home {
    Home() {
        std::filesystem::create_directories(home.folder() / "ini");
        std::filesystem::create_directories(home.folder() / "profiles");
        writeFile(home.path("ini/KoLink.ini"), "<INI>\r\n    KO_FOLDER = .\\profiles\r\n</INI>\r\n");
        std::filesystem::copy_file(loadedLibrary(), home.folder() / "KoLink.dll");
    }
    ~Home() {
        if (library) ::FreeLibrary(library);
    }
    Home(const Home&) = delete;
    std::string path(const std::string& name) const {
        return (home.folder() / "profiles" / name).string();
    }
    void add(const std::string& name, std::string_view colourSpace) const {
        writeFile(path(name), profileBytes({}, profileHeader("mntr", colourSpace)));
    }
    void addThree() const {
        add("screen.icc", "RGB ");
        add("wide.icm", "RGB ");
        add("press.icc", "CMYK");
    }
    int32_t call(HWND owner, ProfileSelection* selection) {
        if (!library) library = ::LoadLibraryW((home.folder() / "KoLink.dll").c_str());
        using Function = int32_t (*)(HWND, ProfileSelection*);
        const auto function = reinterpret_cast<Function>(
            reinterpret_cast<void*>(::GetProcAddress(library, "jColorProfileSelectDlg")));
        return function ? function(owner, selection) : -1;
    }
    int32_t open(ProfileSelection* selection, const std::function<void(const DialogWindow&)>& drive,
                 HWND owner = nullptr) {
        int32_t result = -1;
        openDialog([&] { result = call(owner, selection); }, drive);
        return result;
    }
    TempFolder home;
    HMODULE library = nullptr;
};

class ProfileSelectionDialog : public testing::Test, protected Home {};

Texts entriesOf(const DialogWindow& dialog, int list) {
    const HWND window = dialog.item(list);
    Texts entries(static_cast<size_t>(::SendMessageW(window, CB_GETCOUNT, 0, 0)));
    for (size_t at = 0; at < entries.size(); ++at) {
        wchar_t text[300] = {};
        ::SendMessageW(window, CB_GETLBTEXT, at, reinterpret_cast<LPARAM>(text));
        entries[at] = text;
    }
    return entries;
}

int chosenIn(const DialogWindow& dialog, int list) {
    return static_cast<int>(::SendMessageW(dialog.item(list), CB_GETCURSEL, 0, 0));
}

// As from the keyboard: from the first entry down.
void choose(const DialogWindow& dialog, int list, int entry) {
    dialog.key(list, VK_HOME);
    for (int at = 0; at < entry; ++at) dialog.key(list, VK_DOWN);
    EXPECT_EQ(chosenIn(dialog, list), entry);
}

ProfileSelection recordOf(const std::string& rgb, const std::string& cmyk, int32_t intent) {
    ProfileSelection record;
    std::memset(&record, 0x5a, sizeof record);  // what is behind the texts must not matter
    std::strcpy(record.rgbPath, rgb.c_str());
    std::strcpy(record.cmykPath, cmyk.c_str());
    record.intent = intent;
    return record;
}

TEST_F(ProfileSelectionDialog, ShowsItsTextsInTheUsersLanguage) {
    addThree();
    ProfileSelection record{};
    open(&record, [](const DialogWindow& dialog) {
        const Words shown = words();
        EXPECT_EQ(dialog.caption(), shown.caption);
        EXPECT_EQ(entriesOf(dialog, IDC_SELECT_INTENT), shown.intents);
        EXPECT_EQ(entriesOf(dialog, IDC_SELECT_RGB), (Texts{shown.notSet, L"screen.icc", L"wide.icm"}));
        EXPECT_EQ(entriesOf(dialog, IDC_SELECT_CMYK), (Texts{shown.notSet, L"press.icc"}));
        EXPECT_EQ(textOf(::GetWindow(dialog.item(IDC_SELECT_INTENT), GW_HWNDPREV)), shown.intentLabel);
        EXPECT_EQ(dialog.text(IDCANCEL), shown.cancel);
    });
}

TEST_F(ProfileSelectionDialog, OpensOnTheRecord) {
    addThree();
    ProfileSelection record = recordOf(path("WIDE.icm"), path("press.icc"), 3);
    open(&record, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_SELECT_RGB), L"wide.icm");
        EXPECT_EQ(dialog.text(IDC_SELECT_CMYK), L"press.icc");
        EXPECT_EQ(dialog.text(IDC_SELECT_INTENT), words().intents[3]);
    });
}

TEST_F(ProfileSelectionDialog, OkReturnsWhatWasChosen) {
    addThree();
    ProfileSelection record = recordOf(path("screen.icc"), path("press.icc"), 0);
    const int32_t result = open(&record, [](const DialogWindow& dialog) {
        choose(dialog, IDC_SELECT_RGB, 2);
        choose(dialog, IDC_SELECT_CMYK, 0);
        choose(dialog, IDC_SELECT_INTENT, 1);
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(record.rgbPath, path("wide.icm"));
    EXPECT_EQ(record.cmykPath[0], '\0');
    EXPECT_EQ(record.intent, 1);
}

TEST_F(ProfileSelectionDialog, CancelLeavesTheRecordUnchanged) {
    addThree();
    for (const bool byWindow : {false, true}) {
        ProfileSelection record = recordOf("C:\\gone\\away.icc", path("press.icc"), 9);
        const ProfileSelection before = record;
        const int32_t result = open(&record, [&](const DialogWindow& dialog) {
            EXPECT_EQ(chosenIn(dialog, IDC_SELECT_RGB), 0);  // cleared on the dialog's copy
            EXPECT_EQ(chosenIn(dialog, IDC_SELECT_INTENT), 0);
            choose(dialog, IDC_SELECT_RGB, 1);
            choose(dialog, IDC_SELECT_INTENT, 2);
            if (byWindow) ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
            else dialog.click(IDCANCEL);
            EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
        });
        EXPECT_EQ(result, 0);
        EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
    }
}

TEST_F(ProfileSelectionDialog, APathThatIsNotOfferedIsClearedByOk) {
    addThree();
    ProfileSelection record = recordOf("C:\\gone\\away.icc", path("screen.icc"), -7);
    const int32_t result = open(&record, [](const DialogWindow& dialog) {
        EXPECT_EQ(chosenIn(dialog, IDC_SELECT_CMYK), 0);  // an RGB profile
        EXPECT_EQ(chosenIn(dialog, IDC_SELECT_INTENT), 0);
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(record.rgbPath[0], '\0');
    EXPECT_EQ(record.cmykPath[0], '\0');
    EXPECT_EQ(record.intent, 0);
}

TEST_F(ProfileSelectionDialog, AnIntentOfThreeIsAbsoluteAndStaysIt) {
    ProfileSelection record = recordOf("", "", 3);
    open(&record, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.text(IDC_SELECT_INTENT), words().intents[3]);
        dialog.click(IDOK);
    });
    EXPECT_EQ(record.intent, 3);
}

TEST_F(ProfileSelectionDialog, UnreadableProfilesAreInBothListsAndForeignFilesInNone) {
    addThree();
    writeFile(path("broken.icc"), "not a profile");
    writeFile(path("grey.icc"), profileBytes({}, profileHeader("mntr", "GRAY")));
    writeFile(path("notes.txt"), "text");
    std::filesystem::create_directory(home.folder() / "profiles" / "folder.icc");
    ProfileSelection record{};
    open(&record, [](const DialogWindow& dialog) {
        const std::wstring none = words().notSet;
        EXPECT_THAT(entriesOf(dialog, IDC_SELECT_RGB),
                    ElementsAre(none, L"broken.icc", L"screen.icc", L"wide.icm"));
        EXPECT_THAT(entriesOf(dialog, IDC_SELECT_CMYK), ElementsAre(none, L"broken.icc", L"press.icc"));
    });
}

TEST_F(ProfileSelectionDialog, AFolderOfTwoThousandProfilesListsTheFirstFiveHundred) {
    const Bytes rgb = profileBytes({}, profileHeader("mntr", "RGB "));
    for (int at = 0; at < 1000; ++at) {
        writeFile(path("a" + std::to_string(1000 + at) + ".icm"), rgb);
        writeFile(path("b" + std::to_string(1000 + at) + ".icc"), rgb);
    }
    ProfileSelection record = recordOf(path("b1500.icc"), "", 0);
    open(&record, [](const DialogWindow& dialog) {
        const Texts entries = entriesOf(dialog, IDC_SELECT_RGB);
        ASSERT_EQ(entries.size(), 501u);
        EXPECT_EQ(entries[1], L"b1000.icc");
        EXPECT_EQ(entries[500], L"b1499.icc");
        EXPECT_EQ(chosenIn(dialog, IDC_SELECT_RGB), 0);  // the record's is the 501st
        EXPECT_EQ(entriesOf(dialog, IDC_SELECT_CMYK).size(), 1u);
    });
}

TEST_F(ProfileSelectionDialog, AnEmptyFolderOffersNothingToSet) {
    ProfileSelection record = recordOf(path("screen.icc"), "", 0);
    const int32_t result = open(&record, [](const DialogWindow& dialog) {
        EXPECT_THAT(entriesOf(dialog, IDC_SELECT_RGB), ElementsAre(words().notSet));
        EXPECT_THAT(entriesOf(dialog, IDC_SELECT_CMYK), ElementsAre(words().notSet));
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(record.rgbPath[0], '\0');
}

TEST_F(ProfileSelectionDialog, NoRecordIsRefusedAtOnce) {
    EXPECT_EQ(call(nullptr, nullptr), 0);
}

TEST_F(ProfileSelectionDialog, NamesOfTheUsersLanguageAreShownAsTheyAre) {
    // A name that the code page can say, and one that it cannot.
    const std::wstring own = language() == "ja"   ? L"表示ソ.icc"
                             : language() == "zh" ? L"显示.icc"
                                                  : L"\u00e9cran.icc";
    const std::wstring other = language() == "en" ? L"\u8868.icc" : L"\u0e01.icc";
    const Bytes bytes = profileBytes({}, profileHeader("mntr", "RGB "));
    const std::filesystem::path folder = home.folder() / "profiles";
    add("a.icc", "RGB ");
    std::filesystem::copy_file(folder / "a.icc", folder / own);
    std::filesystem::copy_file(folder / "a.icc", folder / other);
    ProfileSelection record{};
    const int32_t result = open(&record, [&](const DialogWindow& dialog) {
        const Texts entries = entriesOf(dialog, IDC_SELECT_RGB);
        EXPECT_THAT(entries, testing::Contains(own));
        EXPECT_THAT(entries, Each(testing::Not(testing::HasSubstr(L"?"))));
        EXPECT_EQ(entriesOf(dialog, IDC_SELECT_CMYK).size(), 1u);  // all of them can be read
        for (int at = 0; at < static_cast<int>(entries.size()); ++at)
            if (entries[static_cast<size_t>(at)] == own) choose(dialog, IDC_SELECT_RGB, at);
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(wide(record.rgbPath), (folder / own).wstring());
}

LONG textWidth(HWND control, const std::wstring& text) {
    const HDC dc = ::GetDC(control);
    const HGDIOBJ before = ::SelectObject(
        dc, reinterpret_cast<HGDIOBJ>(::SendMessageW(control, WM_GETFONT, 0, 0)));
    SIZE size{};
    ::GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    ::SelectObject(dc, before);
    ::ReleaseDC(control, dc);
    return size.cx;
}

TEST_F(ProfileSelectionDialog, AFileFromAnywhereCanBeBrowsedForAndOneOfAnotherKindIsRefused) {
    addThree();
    const TempFolder elsewhere;
    const std::string press = elsewhere.path("elsewhere.icc");
    writeFile(press, profileBytes({}, profileHeader("prtr", "CMYK")));
    ProfileSelection record{};
    EXPECT_EQ(open(&record,
                   [&](const DialogWindow& dialog) {
                       dialog.press(IDC_SELECT_BROWSE_RGB);
                       const DialogWindow files = dialog.asked();
                       files.chooseFile(press);
                       EXPECT_TRUE(eventually([&] { return !files.isOpen(); }));
                       const DialogWindow refused = dialog.asked();
                       EXPECT_NE(refused.text(0xffff).find(L"CMYK"), std::wstring::npos);
                       refused.press(IDOK);
                       dialog.waitForQuiet();
                       EXPECT_EQ(entriesOf(dialog, IDC_SELECT_RGB).size(), 3u);
                       dialog.press(IDC_SELECT_BROWSE_CMYK);
                       dialog.asked().chooseFile(press);
                       dialog.waitForQuiet();
                       EXPECT_THAT(entriesOf(dialog, IDC_SELECT_CMYK),
                                   ElementsAre(words().notSet, L"press.icc", L"elsewhere.icc"));
                       EXPECT_EQ(chosenIn(dialog, IDC_SELECT_CMYK), 2);
                       dialog.leave(IDOK);
                   }),
              1);
    EXPECT_STRCASEEQ(record.cmykPath, press.c_str());
    EXPECT_STREQ(record.rgbPath, "");
}

TEST_F(ProfileSelectionDialog, TheOpenedListIsAsWideAsItsLongestName) {
    const std::string name = std::string(100, 'W') + ".icc";
    add(name, "RGB ");
    ProfileSelection record{};
    open(&record, [&](const DialogWindow& dialog) {
        const HWND list = dialog.item(IDC_SELECT_RGB);
        const LRESULT widest = ::GetSystemMetrics(SM_CXSCREEN);
        const LRESULT dropped = ::SendMessageW(list, CB_GETDROPPEDWIDTH, 0, 0);
        EXPECT_GT(dropped, std::min<LRESULT>(textWidth(list, wide(name)), widest - 1));
        EXPECT_LE(dropped, widest);
        RECT closed;
        ::GetWindowRect(dialog.item(IDC_SELECT_CMYK), &closed);
        EXPECT_EQ(::SendMessageW(dialog.item(IDC_SELECT_CMYK), CB_GETDROPPEDWIDTH, 0, 0),
                  closed.right - closed.left);
    });
}

void useAndClose(const DialogWindow& dialog) {
    choose(dialog, IDC_SELECT_RGB, 1);
    dialog.click(IDCANCEL);
}

TEST_F(ProfileSelectionDialog, TwoHundredOpeningsLeaveNothingBehind) {
    addThree();
    ProfileSelection record{};
    open(&record, useAndClose);
    const unsigned objects = drawingObjects(), places = windows();
    for (int time = 0; time < 200; ++time) open(&record, useAndClose);
    EXPECT_LT(drawingObjects(), objects + 40);
    EXPECT_LT(windows(), places + 40);
}

TEST_F(ProfileSelectionDialog, AnOwnerThatIsDestroyedTakesTheDialogWithIt) {
    addThree();
    const HWND owner = newOwner();
    ASSERT_NE(owner, nullptr);
    ProfileSelection record = recordOf(path("screen.icc"), "", 5);
    const ProfileSelection before = record;
    const int32_t result = open(
        &record,
        [&](const DialogWindow& dialog) {
            choose(dialog, IDC_SELECT_RGB, 2);
            postDestruction(owner);
            EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
        },
        owner);
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(::IsWindow(owner));
    EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0);
}

TEST_F(ProfileSelectionDialog, ASecondOpeningFromTheMessageLoopDoesNotDisturbTheFirst) {
    addThree();
    const HWND owner = newOwner();
    ProfileSelection first = recordOf("", "", 0), second = recordOf("", "", 1);
    int32_t inner = -1;
    const int32_t outer = open(
        &first,
        [&](const DialogWindow& dialog) {
            choose(dialog, IDC_SELECT_RGB, 1);
            postCall(owner, [&] { inner = call(owner, &second); });
            HWND opened = nullptr;
            ASSERT_TRUE(eventually([&] {
                opened = ::GetLastActivePopup(owner);
                return opened != owner && opened != dialog.handle() && ::IsWindowVisible(opened);
            }));
            const DialogWindow other(opened);
            EXPECT_EQ(chosenIn(other, IDC_SELECT_RGB), 0);
            choose(other, IDC_SELECT_RGB, 2);
            other.click(IDOK);
            EXPECT_TRUE(eventually([&] { return !other.isOpen(); }));
            EXPECT_EQ(chosenIn(dialog, IDC_SELECT_RGB), 1);
            dialog.click(IDOK);
        },
        owner);
    ::DestroyWindow(owner);
    EXPECT_EQ(inner, 1);
    EXPECT_EQ(outer, 1);
    EXPECT_EQ(first.rgbPath, path("screen.icc"));
    EXPECT_EQ(second.rgbPath, path("wide.icm"));
}

// How much wider than the closed list the longest of its entries is; below 0 when it fits.
LONG excessOf(const DialogWindow& dialog, int list) {
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    ::GetComboBoxInfo(dialog.item(list), &parts);
    LONG longest = 0;
    for (const std::wstring& entry : entriesOf(dialog, list))
        longest = std::max(longest, textWidth(dialog.item(list), entry));
    return longest - (parts.rcItem.right - parts.rcItem.left);
}

TEST(DialogLayout, OfTheProfileSettingIsRightInEveryLanguage) {
    Home home;
    for (const char* name : {"Wide gamut.icc", "Office screen.icc", "Scanner.icm"}) home.add(name, "RGB ");
    home.add("Newsprint.icc", "CMYK");
    writeFile(home.path("Coated paper 39L.icc"),
              profileBytes({{"desc", descriptionElement("Coated, 330 % ink")}}));
    ProfileSelection record =
        recordOf(home.path("Office screen.icc"), home.path("Coated paper 39L.icc"), 1);
    home.open(&record, [](const DialogWindow& dialog) {
        expectALook(dialog);
        for (const int list : {IDC_SELECT_RGB, IDC_SELECT_CMYK, IDC_SELECT_INTENT})
            EXPECT_LE(excessOf(dialog, list), 0) << list;
        keepPicture(pictureOf(dialog), "profile-selection-" + language());
    });
}

}  // namespace
