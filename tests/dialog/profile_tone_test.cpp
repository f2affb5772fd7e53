// The tone-curve page of the CMYK profile dialog in its real window, and how both pages look.
#include "tests/dialog/profile.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <filesystem>

#include "resources/dialog_ids.h"
#include "tests/dialog/layout.h"
#include "tests/dialog/lifetime.h"

using namespace ko::test;

namespace {

void onPage(const std::function<void(const DialogWindow&, const DialogWindow&)>& drive) {
    const HWND owner = newOwner();
    openDialog(jKoCmykProfileDlg, "", [&](const DialogWindow& dialog) {
        pageOf(dialog).click(IDC_CURVES_INPUT);  // whatever was chosen before
        drive(dialog, pageOf(dialog));
    }, owner);
    ::DestroyWindow(owner);
}

// Drives the page on a link; what it has saved at the end.
Profile edited(const std::function<void(const DialogWindow&, const DialogWindow&)>& drive) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    openDialog(jKoCmykProfileDlg, path, [&](const DialogWindow& dialog) {
        pageOf(dialog).click(IDC_CURVES_INPUT);
        drive(dialog, pageOf(dialog));
        dialog.click(IDC_SAVE);
    });
    return loadedLink(path);
}

void moveTo(const DialogWindow& page, int point) {
    for (int step = 0; step < 64; ++step) page.key(IDC_GRAPH, VK_LEFT);
    for (int step = 0; step < point; ++step) page.key(IDC_GRAPH, VK_RIGHT);
}

TEST(ProfileTonePage, OpensWithAllInksOnPoint0) {
    onPage([](const DialogWindow&, const DialogWindow& page) {
        EXPECT_TRUE(page.isChecked(IDC_ALL_INKS));
        EXPECT_TRUE(page.isChecked(IDC_CURVES_INPUT));
        EXPECT_FALSE(page.isChecked(IDC_CONTRAST));
        for (const int label : {IDC_INPUT_C, IDC_INPUT_M, IDC_INPUT_Y, IDC_INPUT_K})
            EXPECT_EQ(page.text(label), L"0 %");
        for (const int field : {IDC_PERCENT_C, IDC_PERCENT_M, IDC_PERCENT_Y, IDC_PERCENT_K})
            EXPECT_EQ(page.text(field), L"0");
    });
}

TEST(ProfileTonePage, ATypedPercentageIsSavedAsAControlPoint) {
    const Profile saved = edited([](const DialogWindow&, const DialogWindow& page) {
        moveTo(page, 20);
        page.enter(IDC_PERCENT_M, L"50");
        EXPECT_EQ(page.text(IDC_PERCENT_M), L"50");
        EXPECT_EQ(page.text(IDC_INPUT_M), L"31 %");
    });
    EXPECT_EQ(saved->curveValues[1][20], 128);
    EXPECT_EQ(saved->curveFlags[1][20], 1);
    EXPECT_EQ(saved->curveFlags[0][20], 0);
}

TEST(ProfileTonePage, AFieldThatIsOnlyPassedLeavesThePointAlone) {
    const Profile saved = edited([](const DialogWindow& dialog, const DialogWindow& page) {
        moveTo(page, 33);
        for (const int field : {IDC_PERCENT_C, IDC_PERCENT_M, IDC_PERCENT_Y, IDC_PERCENT_K})
            page.focus(field);
        page.focus(IDC_GRAPH);
        dialog.focus(IDC_TITLE);
    });
    for (int curve = 0; curve < 4; ++curve) EXPECT_EQ(saved->curveFlags[curve][33], 0) << curve;
    EXPECT_EQ(saved->curveValues[1][33], 132);  // 52 % would be 133
}

TEST(ProfileTonePage, AnEmptiedFieldUnmarksThePoint) {
    const Profile saved = edited([](const DialogWindow&, const DialogWindow& page) {
        moveTo(page, 32);
        EXPECT_EQ(page.text(IDC_PERCENT_C), L"63");
        page.enter(IDC_PERCENT_C, L"");
        EXPECT_EQ(page.text(IDC_PERCENT_C), L"50");
    });
    EXPECT_EQ(saved->curveFlags[0][32], 0);
    EXPECT_EQ(saved->curveValues[0][32], 128);
}

TEST(ProfileTonePage, APointIsDraggedWithTheMouse) {
    int level = 0;
    const Profile saved = edited([&](const DialogWindow&, const DialogWindow& page) {
        page.click(IDC_INK_K);
        const POINT to = page.point(40, 64, 220);
        page.drag(page.point(40, 64, 160), to);
        page.drop(to);
        level = page.levelAt(to.y);
        page.mouse(WM_MOUSEMOVE, page.point(40, 64, 10));  // let go: nothing
    });
    EXPECT_EQ(saved->curveValues[3][40], level);
    EXPECT_EQ(saved->curveFlags[3][40], 1);
    EXPECT_EQ(saved->curveFlags[2][40], 0);
}

TEST(ProfileTonePage, ARightClickTakesADragBack) {
    const Profile saved = edited([](const DialogWindow&, const DialogWindow& page) {
        page.drag(page.point(40, 64, 160), page.point(40, 64, 250));
        page.mouse(WM_RBUTTONDOWN, {1, 1});
        page.drop({1, 1});
    });
    for (int curve = 0; curve < 4; ++curve) EXPECT_EQ(saved->curveFlags[curve][40], 0) << curve;
    EXPECT_EQ(saved->curveValues[1][40], 160);
}

TEST(ProfileTonePage, ARightClickOnAPointRemovesIt) {
    const Profile saved = edited([](const DialogWindow&, const DialogWindow& page) {
        page.mouse(WM_RBUTTONDOWN, page.point(32, 64, 160));
    });
    EXPECT_EQ(saved->curveFlags[0][32], 0);
}

TEST(ProfileTonePage, TheContrastDragScalesTheWholeCurve) {
    int level = 0;
    const Profile saved = edited([&](const DialogWindow&, const DialogWindow& page) {
        page.click(IDC_INK_C);
        page.click(IDC_CONTRAST);
        const POINT to = page.point(64, 64, 128);
        page.drag(page.point(64, 64, 255), to);
        page.drop(to);
        level = page.levelAt(to.y);
    });
    EXPECT_EQ(saved->curveValues[0][64], level);
    EXPECT_EQ(saved->curveValues[0][32], 160 * level / 255);
    EXPECT_EQ(saved->curveFlags[0][16], 0);
}

TEST(ProfileTonePage, TheOutputSetIsEditedBesideTheInputSet) {
    const Profile saved = edited([](const DialogWindow&, const DialogWindow& page) {
        page.click(IDC_CURVES_OUTPUT);
        moveTo(page, 16);
        EXPECT_EQ(page.text(IDC_PERCENT_M), L"16");  // 40
        page.enter(IDC_PERCENT_Y, L"10");
        page.click(IDC_CURVES_INPUT);
        EXPECT_EQ(page.text(IDC_PERCENT_Y), L"25");
    });
    EXPECT_EQ(saved->curveValues[6][16], 26);
    EXPECT_EQ(saved->curveValues[2][16], 64);
}

TEST(ProfileTonePage, TheSetIsRemembered) {
    onPage([](const DialogWindow&, const DialogWindow& page) { page.click(IDC_CURVES_OUTPUT); });
    openDialog(jKoCmykProfileDlg, "", [](const DialogWindow& dialog) {
        EXPECT_TRUE(pageOf(dialog).isChecked(IDC_CURVES_OUTPUT));
        EXPECT_FALSE(pageOf(dialog).isChecked(IDC_CURVES_INPUT));
    });
    onPage([](const DialogWindow&, const DialogWindow&) {});
}

TEST(ProfileTonePage, ResetStraightensTheShownSetAlone) {
    const Profile saved = edited([](const DialogWindow&, const DialogWindow& page) {
        page.click(IDC_RESET);
    });
    EXPECT_EQ(saved->curveFlags[0][32], 0);
    EXPECT_EQ(saved->curveValues[0][32], 128);
    EXPECT_EQ(saved->curveFlags[5][16], 1);
}

TEST(ProfileTonePage, AnInkButtonSelectsItsChannelAlone) {
    const int buttons[] = {IDC_INK_C, IDC_INK_M, IDC_INK_Y, IDC_INK_K};
    for (int chosen = 0; chosen < 4; ++chosen) {
        const Profile saved = edited([&](const DialogWindow&, const DialogWindow& page) {
            page.click(buttons[chosen]);
            EXPECT_FALSE(page.isChecked(IDC_ALL_INKS));
            moveTo(page, 50);
            page.key(IDC_GRAPH, VK_UP);
        });
        for (int curve = 0; curve < 4; ++curve)
            EXPECT_EQ(saved->curveFlags[curve][50], curve == chosen) << chosen << ' ' << curve;
    }
}

TEST(ProfileTonePage, ReturnInAFieldTakesItOverAndKeepsTheDialogOpen) {
    onPage([](const DialogWindow& dialog, const DialogWindow& page) {
        page.type(IDC_PERCENT_Y, L"20.4");
        page.pressKey(IDC_PERCENT_Y, VK_RETURN);
        EXPECT_TRUE(eventually([&] { return page.text(IDC_PERCENT_Y) == L"20"; }));
        EXPECT_TRUE(dialog.isOpen());
    });
}

TEST(ProfileTonePage, ReturnOnItsButtonPressesThatButton) {
    onPage([](const DialogWindow& dialog, const DialogWindow& page) {
        page.enter(IDC_PERCENT_K, L"90");
        page.pressKey(IDC_RESET, VK_RETURN);
        EXPECT_TRUE(eventually([&] { return page.text(IDC_PERCENT_K) == L"0"; }));
        EXPECT_TRUE(dialog.isOpen());
    });
}

// The keyboard: what holds the focus, by walking through the dialog as a person does.

void postKey(const DialogWindow& dialog, WPARAM key) {
    ::PostMessageW(dialog.focusedWindow(), WM_KEYDOWN, key, 0);
    ::PostMessageW(dialog.focusedWindow(), WM_KEYUP, key, 0);
    waitForPosted(::GetWindow(dialog.handle(), GW_OWNER));
}

std::vector<int> tabStops(const DialogWindow& dialog) {
    std::vector<int> stops;
    const HWND start = dialog.focusedWindow();
    do {
        stops.push_back(dialog.focused());
        postKey(dialog, VK_TAB);
    } while (dialog.focusedWindow() != start && stops.size() < 40);
    return stops;
}

TEST(ProfileTonePage, TheTabKeyWalksThroughThePageThatIsShown) {
    onPage([](const DialogWindow& dialog, const DialogWindow&) {
        dialog.focus(IDC_TITLE);
        EXPECT_EQ(tabStops(dialog),
                  (std::vector{IDC_TITLE, IDC_COMMENT, IDC_GRAPH, IDC_CURVES_INPUT, IDC_ALL_INKS,
                               IDC_PERCENT_C, IDC_PERCENT_M, IDC_PERCENT_Y, IDC_PERCENT_K,
                               IDC_CONTRAST, IDC_RESET, IDC_PAGES, IDC_NEW, IDC_SAVE, IDC_SAVE_AS,
                               IDOK, IDCANCEL}));
    });
}

TEST(ProfileTonePage, TheArrowsWalkThroughAGroupOfThePage) {
    onPage([](const DialogWindow& dialog, const DialogWindow& page) {
        page.focus(IDC_ALL_INKS);
        postKey(dialog, VK_DOWN);
        EXPECT_EQ(dialog.focusedWindow(), page.item(IDC_INK_C));
        EXPECT_TRUE(page.isChecked(IDC_INK_C));
        postKey(dialog, VK_UP);
        postKey(dialog, VK_UP);
        EXPECT_TRUE(page.isChecked(IDC_INK_K));
        EXPECT_TRUE(page.isChecked(IDC_CURVES_INPUT));
    });
}

void postAccessKey(const DialogWindow& dialog, wchar_t key) {
    ::PostMessageW(dialog.focusedWindow(), WM_SYSCHAR, static_cast<WPARAM>(key), 1 << 29);
    waitForPosted(::GetWindow(dialog.handle(), GW_OWNER));
}

TEST(ProfileTonePage, AccessKeysReachThePageThatIsShown) {
    onPage([](const DialogWindow& dialog, const DialogWindow& page) {
        dialog.focus(IDC_TITLE);
        postAccessKey(dialog, L'm');
        EXPECT_TRUE(page.isChecked(IDC_INK_M));
        postAccessKey(dialog, L'u');
        EXPECT_TRUE(page.isChecked(IDC_CURVES_OUTPUT));
        postAccessKey(dialog, L'i');
        postAccessKey(dialog, L't');  // from the page to the frame
        EXPECT_EQ(dialog.focusedWindow(), dialog.item(IDC_COMMENT));
    });
}

TEST(ProfileTonePage, APageThatGoesDoesNotKeepTheFocus) {
    onPage([](const DialogWindow& dialog, const DialogWindow& page) {
        page.type(IDC_PERCENT_K, L"40");
        // Without a click, which would bring the focus to the tabs.
        ::SendMessageW(dialog.item(IDC_PAGES), TCM_SETCURFOCUS, kCorrectionPage, 0);
        EXPECT_EQ(dialog.focusedWindow(), dialog.item(IDC_PAGES));
        EXPECT_FALSE(::IsWindowVisible(page.handle()));
        EXPECT_NE(pageOf(dialog).handle(), page.handle());
        choosePage(dialog, kTonePage);
        EXPECT_EQ(pageOf(dialog).handle(), page.handle());
        EXPECT_EQ(page.text(IDC_PERCENT_K), L"40");
    });
}

TEST(ProfileTonePage, ThePagesAreTheTabsLessTenAcrossAndThirtyDown) {
    onPage([](const DialogWindow& dialog, const DialogWindow&) {
        const HDC screen = ::GetDC(nullptr);
        const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
        ::ReleaseDC(nullptr, screen);
        const RECT tabs = placeOf(dialog.item(IDC_PAGES), dialog.handle());
        for (const int page : {kTonePage, kCorrectionPage}) {
            choosePage(dialog, page);
            const RECT area = placeOf(pageOf(dialog).handle(), dialog.handle());
            EXPECT_EQ(area.right - area.left, tabs.right - tabs.left - 10 * dpi / 96);
            EXPECT_EQ(area.bottom - area.top, tabs.bottom - tabs.top - 30 * dpi / 96);
        }
    });
}

TEST(ProfileTonePage, LooksAsItShould) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path, "\x88\xf3\x8d\xfc\x8b\x40 3", "coated\r\n150 lpi");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.folder());  // a short caption
    openDialog(jKoCmykProfileDlg, "press.icc", [](const DialogWindow& dialog) {
        const DialogWindow page = pageOf(dialog);
        page.click(IDC_CURVES_INPUT);
        moveTo(page, 32);
        page.enter(IDC_PERCENT_M, L"40");
        page.enter(IDC_PERCENT_Y, L"30");
        page.enter(IDC_PERCENT_K, L"55");
        expectALook(dialog);
        RECT graph;
        ::GetWindowRect(page.item(IDC_GRAPH), &graph);
        EXPECT_EQ(graph.right - graph.left, graph.bottom - graph.top);
        const Picture picture = pictureOf(dialog);
        for (const uint32_t colour : {0x008c8cu, 0xdc00dcu, 0x969600u})
            EXPECT_GT(picture.count(colour), 50) << std::hex << colour;
        keepPicture(picture, "profile-tone-" + language());
    });
    std::filesystem::current_path(before);
}

}  // namespace
