// The colour-correction page in its real window: what is picked, changed, taken back and saved.
#include "kolink/profile_dialog.h"

#include <gtest/gtest.h>

#include <windows.h>
// Needs the one above.
#include <commctrl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>

#include "cmyk/dialog/colour_place.h"
#include "tests/cmyk/correction_reference.h"
#include "tests/dialog/layout.h"
#include "tests/dialog/language.h"
#include "tests/dialog/lifetime.h"
#include "tests/support/owned.h"

using namespace ko::test;
using ko::cmyk::levelsAt;
using ko::cmyk::Levels;

namespace {

constexpr int kMessageText = 0xffff;
constexpr int kPicked[] = {IDC_CUBE_C, IDC_CUBE_M, IDC_CUBE_Y, IDC_CUBE_K};
constexpr int kCurrent[] = {IDC_CUBE_CURRENT_C, IDC_CUBE_CURRENT_M, IDC_CUBE_CURRENT_Y,
                            IDC_CUBE_CURRENT_K};
constexpr int kChanged[] = {IDC_CUBE_CHANGED_C, IDC_CUBE_CHANGED_M, IDC_CUBE_CHANGED_Y,
                            IDC_CUBE_CHANGED_K};
constexpr int kSurfaces[] = {IDC_CUBE_AREA,      IDC_CUBE_SATURATION_BAR, IDC_CUBE_HUE_BAR,
                             IDC_CUBE_LIGHTNESS, IDC_CUBE_LIGHTNESS_BAR,  IDC_CUBE_BLACK,
                             IDC_CUBE_BLACK_BAR};

using Profile = OwnedCmykProfile;

// Opens the tab of the page; the page as a window of its own.
DialogWindow correctionPage(const DialogWindow& dialog) {
    RECT tab;
    ::SendMessageW(dialog.item(IDC_PAGES), TCM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&tab));
    const POINT at{(tab.left + tab.right) / 2, (tab.top + tab.bottom) / 2};
    dialog.mouse(WM_LBUTTONDOWN, at, IDC_PAGES);
    dialog.drop(at, IDC_PAGES);
    for (HWND child = ::GetWindow(dialog.handle(), GW_CHILD); child;
         child = ::GetWindow(child, GW_HWNDNEXT))
        if (::GetDlgItem(child, IDC_CUBE_AREA) && ::IsWindowVisible(child))
            return DialogWindow(child);
    throw std::runtime_error("the page is not shown");
}

using Drive = std::function<void(const DialogWindow& dialog, const DialogWindow& page)>;

Outcome onPage(std::string_view path, const Drive& drive) {
    return openDialog(jKoCmykProfileDlg, path, [&](const DialogWindow& dialog) {
        drive(dialog, correctionPage(dialog));
    });
}

// A profile in a file, its grid noise where wanted.
std::string profileFile(const TempFolder& folder, std::string_view name, uint32_t seed = 0) {
    const Profile profile(jKoCmykCreateProfile());
    std::mt19937 random(seed);
    if (seed != 0)
        for (uint32_t& word : profile->grid) word = static_cast<uint32_t>(random());
    std::string path = folder.path(name);
    EXPECT_EQ(jKoCmykSaveProfile(profile.get(), path.c_str()), 1);
    return path;
}

Profile profileIn(const std::string& path) {
    Profile profile(jKoCmykCreateProfile());
    EXPECT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 1);
    return profile;
}

bool sameGrid(const CmykProfile& a, const CmykProfile& b) {
    return std::equal(a.grid, a.grid + KOLINK_CMYK_NODES, b.grid);
}

void enter(const DialogWindow& page, int field, int value) {
    page.enter(field, std::to_wstring(value), IDC_CUBE_AREA);
}

void pickLevels(const DialogWindow& page, const std::array<int, 4>& levels) {
    if (!page.isChecked(IDC_CUBE_256)) page.click(IDC_CUBE_256);
    for (size_t ink = 0; ink < 4; ++ink) enter(page, kPicked[ink], levels[ink]);
}

std::wstring textsOf(const DialogWindow& page, const int (&controls)[4]) {
    std::wstring texts;
    for (const int control : controls) texts += page.text(control) + L' ';
    return texts;
}

std::wstring textsOf(const Levels& cmy, int black) {
    std::wstring texts;
    for (const int level : cmy) texts += std::to_wstring(level) + L' ';
    return texts + std::to_wstring(black) + L' ';
}

SIZE sizeOf(const DialogWindow& page, int control) {
    RECT area;
    ::GetClientRect(page.item(control), &area);
    return {area.right, area.bottom};
}

// The system's own cursor goes along: it tells of itself when a control takes hold of the mouse.
void dragTo(const DialogWindow& page, int control, POINT from, POINT to) {
    POINT screen = to;
    ::ClientToScreen(page.item(control), &screen);
    ::SetCursorPos(screen.x, screen.y);
    page.drag(from, to, control);
}

void clickAt(const DialogWindow& page, int control, POINT at) {
    dragTo(page, control, at, at);
    page.drop(at, control);
}

std::vector<int> numbersIn(const std::wstring& text) {
    constexpr wchar_t kDigits[] = L"0123456789";
    std::vector<int> numbers;
    for (size_t at = 0; (at = text.find_first_of(kDigits, at)) != text.npos;
         at = std::min(text.find_first_not_of(kDigits, at), text.size()))
        numbers.push_back(std::stoi(text.substr(at)));
    return numbers;
}
int numberIn(const std::wstring& text) {
    const std::vector<int> numbers = numbersIn(text);
    return numbers.empty() ? -1 : numbers[0];
}

// Presses Change: the number of nodes that it says in the window, without a box to close.
int change(const DialogWindow& dialog, const DialogWindow& page) {
    page.click(IDC_CUBE_CHANGE);
    EXPECT_TRUE(::IsWindowEnabled(dialog.handle()));
    const std::wstring text = page.text(IDC_STATUS);
    const int count = numberIn(text);
    EXPECT_EQ(text, shown(std::to_wstring(count) + L" 格子点 変更しました。"));
    return count;
}

TEST(CorrectionPage, OpensInPercentWithNoSpanSpecifiedAndNothingToUndo) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        EXPECT_EQ(page.text(IDC_CUBE_SCALE), shown(L"網点 %"));
        EXPECT_FALSE(page.isChecked(IDC_CUBE_256));
        EXPECT_EQ(textsOf(page, kPicked), L"75 25 25 0 ");
        EXPECT_EQ(textsOf(page, kCurrent), L"75 25 25 0 ");
        EXPECT_EQ(textsOf(page, kChanged), L"75 25 25 0 ");
        EXPECT_EQ(page.text(IDC_CUBE_BLACK_SPAN), shown(L"指定なし"));
        EXPECT_EQ(page.text(IDC_CUBE_LIGHTNESS_SPAN), shown(L"指定なし"));
        EXPECT_EQ(page.text(IDC_CUBE_SATURATION), L"30");
        EXPECT_EQ(page.text(IDC_CUBE_HUE), L"30");
        EXPECT_EQ(page.text(IDC_CUBE_RANGE), shown(L"彩度 20 ～ 80 %") + shown(L"、色相 150 ～ 210 度"));
        EXPECT_FALSE(::IsWindowEnabled(page.item(IDC_CUBE_UNDO)));
    });
}

TEST(CorrectionPage, AChangeIsCountedBeforeReportedAndSavedByTheFrame) {
    const TempFolder folder;
    const std::string path = profileFile(folder, "profile.icc", 3);
    const Profile expected = profileIn(path);
    const Outcome outcome = onPage(path, [&](const DialogWindow& dialog, const DialogWindow& page) {
        pickLevels(page, {200, 80, 60, 24});
        enter(page, IDC_CUBE_SATURATION, 35);
        enter(page, IDC_CUBE_HUE, 50);
        std::array<int, 4> delta{};
        const std::array<int, 4> wanted = {20, 200, 99, 0};
        for (size_t ink = 0; ink < 4; ++ink) {
            enter(page, kChanged[ink], wanted[ink]);
            delta[ink] = wanted[ink] - numberIn(page.text(kCurrent[ink]));
        }
        const int announced = numberIn(page.text(IDC_CUBE_COUNT));
        const int count = referenceChange(expected->grid, {200, 80, 60, 24}, delta,
                                          {50, 70, 0, 200, 0, 100});
        EXPECT_EQ(announced, count);
        EXPECT_EQ(change(dialog, page), count);
        dialog.leave(IDOK);
    });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_TRUE(sameGrid(*profileIn(path), *expected));
}

TEST(CorrectionPage, SpansDraggedOnTheBarsLimitTheChange) {
    const TempFolder folder;
    const std::string path = profileFile(folder, "profile.icc");
    const Profile expected = profileIn(path);
    onPage(path, [&](const DialogWindow& dialog, const DialogWindow& page) {
        pickLevels(page, {20, 200, 180, 0});  // the range wraps at red
        const SIZE lightness = sizeOf(page, IDC_CUBE_LIGHTNESS_BAR);
        dragTo(page, IDC_CUBE_LIGHTNESS_BAR, {2, 1}, {2, lightness.cy / 4});
        page.drop({2, lightness.cy / 4}, IDC_CUBE_LIGHTNESS_BAR);
        dragTo(page, IDC_CUBE_LIGHTNESS_BAR, {2, lightness.cy - 2}, {2, lightness.cy * 3 / 4});
        page.drop({2, lightness.cy * 3 / 4}, IDC_CUBE_LIGHTNESS_BAR);
        const SIZE black = sizeOf(page, IDC_CUBE_BLACK_BAR);
        dragTo(page, IDC_CUBE_BLACK_BAR, {black.cx - 2, 2}, {black.cx / 2, 2});
        page.drop({black.cx / 2, 2}, IDC_CUBE_BLACK_BAR);
        const std::vector<int> lightnesses = numbersIn(page.text(IDC_CUBE_LIGHTNESS_SPAN));
        ASSERT_EQ(lightnesses.size(), 2u);
        EXPECT_NEAR(lightnesses[0], 25, 2);
        EXPECT_NEAR(lightnesses[1], 75, 2);
        const std::vector<int> blacks = numbersIn(page.text(IDC_CUBE_BLACK_SPAN));
        ASSERT_EQ(blacks.size(), 2u);
        EXPECT_EQ(blacks[0], 0);
        EXPECT_NEAR(blacks[1], 50, 1);
        enter(page, kChanged[1], 150);
        const int count = referenceChange(expected->grid, {20, 200, 180, 0}, {0, -50, 0, 0},
                                          {30, 60, 200 - 2 * lightnesses[1],
                                           200 - 2 * lightnesses[0], 0, blacks[1]});
        EXPECT_EQ(change(dialog, page), count);
        dialog.click(IDC_SAVE);
        // Delete takes a span back.
        page.key(IDC_CUBE_LIGHTNESS_BAR, VK_DELETE);
        page.key(IDC_CUBE_BLACK_BAR, VK_DELETE);
        EXPECT_EQ(page.text(IDC_CUBE_LIGHTNESS_SPAN), shown(L"指定なし"));
        EXPECT_EQ(page.text(IDC_CUBE_BLACK_SPAN), shown(L"指定なし"));
    });
    EXPECT_TRUE(sameGrid(*profileIn(path), *expected));
}

TEST(CorrectionPage, AChangeCanBeUndoneOnce) {
    const TempFolder folder;
    const std::string path = profileFile(folder, "profile.icc", 4);
    const Profile before = profileIn(path);
    onPage(path, [&](const DialogWindow& dialog, const DialogWindow& page) {
        const std::wstring current = textsOf(page, kCurrent);
        enter(page, kChanged[0], 100);
        enter(page, kChanged[3], 100);
        change(dialog, page);
        EXPECT_NE(textsOf(page, kCurrent), current);
        EXPECT_TRUE(::IsWindowEnabled(page.item(IDC_CUBE_UNDO)));
        page.focus(IDC_CUBE_UNDO);
        page.click(IDC_CUBE_UNDO);
        EXPECT_EQ(textsOf(page, kCurrent), current);
        EXPECT_FALSE(::IsWindowEnabled(page.item(IDC_CUBE_UNDO)));
        dialog.click(IDC_SAVE);
    });
    EXPECT_TRUE(sameGrid(*profileIn(path), *before));
}

TEST(CorrectionPage, APressInTheAreaPicksTheColourThere) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        page.click(IDC_CUBE_256);
        const SIZE area = sizeOf(page, IDC_CUBE_AREA);
        const POINT at{area.cx / 3, area.cy / 4};
        clickAt(page, IDC_CUBE_AREA, at);
        const Levels cmy = levelsAt({static_cast<int>(at.x * 359 / (area.cx - 1)),
                                     200 - static_cast<int>(at.y * 200 / (area.cy - 1)), 100});
        EXPECT_EQ(textsOf(page, kPicked), textsOf(cmy, 0));
        EXPECT_EQ(textsOf(page, kCurrent), textsOf(cmy, 0));
        EXPECT_EQ(textsOf(page, kChanged), textsOf(cmy, 0));
    });
}

TEST(CorrectionPage, ADragPicksAlongTheWayAlsoBeyondTheArea) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        page.click(IDC_CUBE_256);
        dragTo(page, IDC_CUBE_AREA, {40, 40}, {-3000, -3000});
        EXPECT_EQ(textsOf(page, kPicked), L"0 255 255 0 ");
        dragTo(page, IDC_CUBE_AREA, {40, 40}, {40, 3000});
        EXPECT_EQ(textsOf(page, kPicked), L"128 128 128 0 ");
        page.drop({40, 3000}, IDC_CUBE_AREA);
        page.mouse(WM_MOUSEMOVE, {9, 9}, IDC_CUBE_AREA);  // let go
        EXPECT_EQ(textsOf(page, kPicked), L"128 128 128 0 ");
    });
}

TEST(CorrectionPage, TheScalesPickLightnessAndBlack) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        page.click(IDC_CUBE_256);
        clickAt(page, IDC_CUBE_LIGHTNESS, {3, 0});
        EXPECT_EQ(textsOf(page, kPicked), L"0 0 0 0 ");
        clickAt(page, IDC_CUBE_LIGHTNESS, {3, sizeOf(page, IDC_CUBE_LIGHTNESS).cy - 1});
        clickAt(page, IDC_CUBE_BLACK, {sizeOf(page, IDC_CUBE_BLACK).cx - 1, 3});
        EXPECT_EQ(textsOf(page, kPicked), L"255 255 255 255 ");
    });
}

TEST(CorrectionPage, TheBarsOfHueAndSaturationSetTheReaches) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        const SIZE hue = sizeOf(page, IDC_CUBE_HUE_BAR);
        clickAt(page, IDC_CUBE_HUE_BAR, {hue.cx * 3 / 4, 2});
        EXPECT_NEAR(numberIn(page.text(IDC_CUBE_HUE)), 90, 2);
        clickAt(page, IDC_CUBE_SATURATION_BAR, {2, 0});
        EXPECT_EQ(page.text(IDC_CUBE_SATURATION), L"50");
    });
}

TEST(CorrectionPage, TheCountFollowsWhatIsTypedAtOnce) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        const int before = numberIn(page.text(IDC_CUBE_COUNT));
        page.type(IDC_CUBE_HUE, L"180");
        EXPECT_GT(numberIn(page.text(IDC_CUBE_COUNT)), before);
        EXPECT_EQ(page.text(IDC_CUBE_RANGE), shown(L"彩度 20 ～ 80 %") + shown(L"、色相すべて"));
        page.type(IDC_CUBE_SATURATION, L"0");
        EXPECT_LT(numberIn(page.text(IDC_CUBE_COUNT)), before);
        page.enter(IDC_CUBE_HUE, L"999", IDC_CUBE_AREA);
        EXPECT_EQ(page.text(IDC_CUBE_HUE), L"180");
        page.enter(IDC_CUBE_HUE, L"", IDC_CUBE_AREA);
        EXPECT_EQ(page.text(IDC_CUBE_HUE), L"0");
    });
}

TEST(CorrectionPage, The256LevelModeShowsLevels) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        const int spins[] = {IDC_CUBE_SPIN_C, IDC_CUBE_CHANGED_SPIN_K};
        for (const int limit : {255, 100, 255}) {
            page.click(IDC_CUBE_256);
            EXPECT_EQ(page.text(IDC_CUBE_SCALE), limit == 255 ? shown(L"ﾋﾟｸｾﾙ値") : shown(L"網点 %"));
            const wchar_t* const texts = limit == 255 ? L"192 65 65 0 " : L"75 25 25 0 ";
            EXPECT_EQ(textsOf(page, kPicked), texts);
            EXPECT_EQ(textsOf(page, kCurrent), texts);
            EXPECT_EQ(textsOf(page, kChanged), texts);
            for (const int spin : spins)
                EXPECT_EQ(::SendMessageW(page.item(spin), UDM_GETRANGE, 0, 0), MAKELRESULT(limit, 0));
        }
    });
}

TEST(CorrectionPage, SpinsAndArrowKeysStepTheFields) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        const SIZE size = sizeOf(page, IDC_CUBE_CHANGED_SPIN_C);
        EXPECT_GT(size.cy, 10);
        clickAt(page, IDC_CUBE_CHANGED_SPIN_C, {size.cx / 2, size.cy / 4});
        EXPECT_EQ(textsOf(page, kChanged), L"76 25 25 0 ");
        clickAt(page, IDC_CUBE_CHANGED_SPIN_K, {size.cx / 2, size.cy * 3 / 4});
        EXPECT_EQ(textsOf(page, kChanged), L"76 25 25 0 ");  // and not below 0
        page.key(kChanged[1], VK_UP);
        EXPECT_EQ(textsOf(page, kChanged), L"76 26 25 0 ");
        EXPECT_EQ(textsOf(page, kPicked), L"75 25 25 0 ");
        clickAt(page, IDC_CUBE_SPIN_K, {size.cx / 2, size.cy / 4});
        EXPECT_EQ(textsOf(page, kPicked), L"75 25 25 1 ");
        EXPECT_EQ(textsOf(page, kChanged), L"75 25 25 1 ");  // a new pick starts afresh
        page.type(kPicked[3], L"70");
        clickAt(page, IDC_CUBE_SPIN_K, {size.cx / 2, size.cy / 4});  // from what is typed
        EXPECT_EQ(page.text(kPicked[3]), L"71");
    });
}

TEST(CorrectionPage, TheKeyboardReachesEverySurface) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        page.click(IDC_CUBE_256);
        for (const int surface : kSurfaces)
            EXPECT_TRUE(::GetWindowLongW(page.item(surface), GWL_STYLE) & WS_TABSTOP) << surface;
        page.key(IDC_CUBE_AREA, VK_RIGHT);
        page.key(IDC_CUBE_AREA, VK_PRIOR);
        EXPECT_EQ(textsOf(page, kPicked), textsOf(levelsAt({181, 110, 100}), 0));
        page.key(IDC_CUBE_LIGHTNESS, VK_UP);
        EXPECT_EQ(textsOf(page, kPicked), textsOf(levelsAt({181, 110, 99}), 0));
        page.key(IDC_CUBE_BLACK, VK_RIGHT);
        EXPECT_EQ(page.text(kPicked[3]), L"1");
        page.key(IDC_CUBE_HUE_BAR, VK_LEFT);
        EXPECT_EQ(page.text(IDC_CUBE_HUE), L"29");
        page.key(IDC_CUBE_SATURATION_BAR, VK_NEXT);
        EXPECT_EQ(page.text(IDC_CUBE_SATURATION), L"20");
        page.key(IDC_CUBE_LIGHTNESS_BAR, VK_DOWN);
        EXPECT_EQ(page.text(IDC_CUBE_LIGHTNESS_SPAN), shown(L"L: 0 % ～ 99 %"));
        page.key(IDC_CUBE_BLACK_BAR, VK_LEFT);
        EXPECT_EQ(page.text(IDC_CUBE_BLACK_SPAN), shown(L"K: 0 % ～ 99 %"));
    });
}

TEST(CorrectionPage, InitialiseRedrawsThePageAndKeepsTheUndo) {
    onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
        const std::wstring picked = textsOf(page, kPicked), range = page.text(IDC_CUBE_RANGE);
        pickLevels(page, {1, 2, 3, 4});
        enter(page, IDC_CUBE_HUE, 99);
        page.key(IDC_CUBE_BLACK_BAR, VK_LEFT);
        enter(page, kChanged[0], 77);
        change(dialog, page);
        page.click(IDC_CUBE_INITIALISE);
        page.click(IDC_CUBE_256);
        EXPECT_EQ(textsOf(page, kPicked), picked);
        EXPECT_EQ(page.text(IDC_CUBE_RANGE), range);
        EXPECT_EQ(page.text(IDC_CUBE_BLACK_SPAN), shown(L"指定なし"));
        EXPECT_TRUE(::IsWindowEnabled(page.item(IDC_CUBE_UNDO)));
    });
}

TEST(CorrectionPage, ANewProfileStartsThePageAgainAndIsTakenBack) {
    onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
        enter(page, kChanged[0], 100);
        change(dialog, page);
        EXPECT_NE(page.text(kCurrent[0]), L"75");
        dialog.press(IDC_NEW);
        dialog.asked().press(IDYES);
        dialog.waitForQuiet();
        EXPECT_EQ(textsOf(page, kCurrent), L"75 25 25 0 ");
        page.click(IDC_CUBE_UNDO);
        EXPECT_NE(page.text(kCurrent[0]), L"75");
    });
}

TEST(CorrectionPage, ANumberOutOfRangeIsSaidWhereItIsLimited) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        page.enter(kPicked[0], L"130", IDC_CUBE_AREA);
        EXPECT_EQ(page.text(kPicked[0]), L"100");
        EXPECT_EQ(page.text(IDC_STATUS), shown(L"0 ～ 100 に制限しました。"));
        page.enter(kPicked[0], L"\uff14\uff10", IDC_CUBE_AREA);  // full-width digits
        EXPECT_EQ(page.text(kPicked[0]), L"40");
        EXPECT_EQ(page.text(IDC_STATUS), L"");
        page.enter(IDC_CUBE_HUE, L"200", IDC_CUBE_AREA);
        EXPECT_EQ(page.text(IDC_CUBE_HUE), L"180");
        EXPECT_EQ(page.text(IDC_STATUS), shown(L"0 ～ 180 に制限しました。"));
    });
}

TEST(CorrectionPage, AnAccessKeyOfChangeTakesTheFieldThatIsBeingTyped) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        page.type(kPicked[3], L"40");
        page.click(IDC_CUBE_CHANGE);  // the focus stays in the field
        EXPECT_EQ(page.text(kCurrent[3]), L"40");
    });
}

// A profile that prints one colour everywhere: what the area shows is that colour.
TEST(CorrectionPage, TheAreaAndTheSwatchesShowWhatTheProfilePrints) {
    const TempFolder folder;
    const std::string path = folder.path("one.icc");
    const Profile profile(jKoCmykCreateProfile());
    std::fill_n(profile->grid, KOLINK_CMYK_NODES, 0x285a0a14u);
    jKoCmykSaveProfile(profile.get(), path.c_str());
    const uint32_t rgb = jColorCMYKtoRGB(0x28, 0x5a, 0x0a, 0x14);
    const uint32_t colour = (rgb & 255) << 16 | (rgb & 0xff00) | (rgb >> 16 & 255);
    onPage(path, [&](const DialogWindow& dialog, const DialogWindow& page) {
        const SIZE area = sizeOf(page, IDC_CUBE_AREA), swatch = sizeOf(page, IDC_CUBE_BEFORE);
        const int shown = pictureOf(dialog).count(colour);
        EXPECT_GT(shown, area.cx * area.cy * 8 / 10 + 2 * swatch.cx * swatch.cy * 9 / 10);
        pickLevels(page, {100, 90, 80, 70});
        EXPECT_EQ(textsOf(page, kCurrent), L"40 90 10 20 ");
        // Another changed value shows in its swatch; after the change the area has it as well.
        enter(page, kChanged[0], 200);
        EXPECT_LT(pictureOf(dialog).count(colour), shown - swatch.cx * swatch.cy * 8 / 10);
        EXPECT_GT(pictureOf(dialog).count(colour), area.cx * area.cy * 8 / 10);
        enter(page, IDC_CUBE_HUE, 180);
        enter(page, IDC_CUBE_SATURATION, 100);
        change(dialog, page);
        EXPECT_LT(pictureOf(dialog).count(colour), area.cx * area.cy / 2);
    });
}

TEST(CorrectionPage, EachChangeMadeCanBeTakenOutAndThatCanBeTakenBack) {
    const TempFolder folder;
    const std::string path = profileFile(folder, "profile.icc", 5);
    const Profile expected = profileIn(path);
    const auto chosen = [](const DialogWindow& page) {
        return ::SendMessageW(page.item(IDC_CUBE_MADE), CB_GETCOUNT, 0, 0);
    };
    onPage(path, [&](const DialogWindow& dialog, const DialogWindow& page) {
        EXPECT_FALSE(::IsWindowEnabled(page.item(IDC_CUBE_TAKE_OUT)));
        pickLevels(page, {200, 80, 60, 24});
        enter(page, kChanged[0], 255);
        change(dialog, page);
        pickLevels(page, {60, 200, 80, 24});
        const int now = numberIn(page.text(kCurrent[1]));
        const int wanted = now > 128 ? now - 40 : now + 40;
        enter(page, kChanged[1], wanted);
        referenceChange(expected->grid, {60, 200, 80, 24}, {0, wanted - now, 0, 0},
                        {30, 60, 0, 200, 0, 100});
        change(dialog, page);
        EXPECT_EQ(chosen(page), 2);
        page.key(IDC_CUBE_MADE, VK_HOME);
        page.click(IDC_CUBE_TAKE_OUT);
        EXPECT_EQ(chosen(page), 1);
        page.click(IDC_CUBE_UNDO);
        EXPECT_EQ(chosen(page), 2);
        page.key(IDC_CUBE_MADE, VK_HOME);
        page.click(IDC_CUBE_TAKE_OUT);
        dialog.leave(IDOK);
    });
    EXPECT_TRUE(sameGrid(*profileIn(path), *expected));
}

TEST(CorrectionPage, TheFileCanBeLookedAtInPlaceOfWhatIsEdited) {
    const TempFolder folder;
    const std::string path = folder.path("one.icc");
    const Profile profile(jKoCmykCreateProfile());
    std::fill_n(profile->grid, KOLINK_CMYK_NODES, 0x285a0a14u);
    jKoCmykSaveProfile(profile.get(), path.c_str());
    const uint32_t rgb = jColorCMYKtoRGB(0x28, 0x5a, 0x0a, 0x14);
    const uint32_t colour = (rgb & 255) << 16 | (rgb & 0xff00) | (rgb >> 16 & 255);
    onPage(path, [&](const DialogWindow& dialog, const DialogWindow& page) {
        const SIZE area = sizeOf(page, IDC_CUBE_AREA);
        pickLevels(page, {100, 90, 80, 70});
        enter(page, kChanged[0], 200);
        enter(page, IDC_CUBE_HUE, 180);
        enter(page, IDC_CUBE_SATURATION, 100);
        change(dialog, page);
        const int edited = pictureOf(dialog).count(colour);
        page.click(IDC_CUBE_FILE);
        EXPECT_GT(pictureOf(dialog).count(colour), area.cx * area.cy * 8 / 10);
        page.click(IDC_CUBE_FILE);
        EXPECT_EQ(pictureOf(dialog).count(colour), edited);
        page.click(IDC_CUBE_FILE);
        page.click(IDC_CUBE_UNDO);  // what is edited is looked at again
        EXPECT_FALSE(page.isChecked(IDC_CUBE_FILE));
    });
}

constexpr char kPressProfile[] = "Z:\\usr\\share\\color\\icc\\ghostscript\\default_cmyk.icc";

TEST(CorrectionPage, TheSwatchesAreMeasuredThroughTheCurrentLinks) {
    onPage("", [](const DialogWindow&, const DialogWindow& page) {
        EXPECT_EQ(page.text(IDC_CUBE_BEFORE_LAB), L"");
        EXPECT_EQ(page.text(IDC_CUBE_DIFFERENCE), L"");
    });
    ASSERT_EQ(jColorSetupProfile(testData("sRGB-v2-magic.icc").c_str(),
                                 kPressProfile, 0), 1);
    onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
        EXPECT_EQ(page.text(IDC_CUBE_BEFORE_LAB), page.text(IDC_CUBE_AFTER_LAB));
        EXPECT_EQ(page.text(IDC_CUBE_DIFFERENCE), L"Lab, \x0394" L"E00 0.0");
        enter(page, kChanged[0], 40);
        EXPECT_NE(page.text(IDC_CUBE_BEFORE_LAB), page.text(IDC_CUBE_AFTER_LAB));
        EXPECT_NE(page.text(IDC_CUBE_DIFFERENCE), L"Lab, \x0394" L"E00 0.0");
        for (const int text : {IDC_CUBE_BEFORE_LAB, IDC_CUBE_AFTER_LAB, IDC_CUBE_DIFFERENCE})
            expectTextFits(page.item(text));
        change(dialog, page);
        keepPicture(pictureOf(dialog), "profile-correction-lab");
    });
    jColorEndProfile();
}

TEST(CorrectionPage, LooksRight) {
    onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
        expectALook(page);
        expectALook(dialog);
        keepPicture(pictureOf(dialog), "profile-correction");
        page.click(IDC_CUBE_256);
        pickLevels(page, {128, 255, 255, 100});
        enter(page, IDC_CUBE_HUE, 100);
        clickAt(page, IDC_CUBE_LIGHTNESS_BAR, {2, 3});
        page.key(IDC_CUBE_LIGHTNESS_BAR, VK_DELETE);
        page.key(IDC_CUBE_BLACK_BAR, VK_PRIOR);
        page.key(IDC_CUBE_LIGHTNESS_BAR, VK_UP);
        for (const int edit : kChanged) enter(page, edit, 255);
        EXPECT_EQ(page.text(IDC_CUBE_LIGHTNESS_SPAN), shown(L"L: 0 % ～ 100 %"));
        expectALook(page);
        enter(page, IDC_CUBE_HUE, 180);
        enter(page, IDC_CUBE_SATURATION, 100);
        expectALook(page);
    });
}

TEST(CorrectionPage, NoAccessKeyOfFrameAndPageIsUsedTwice) {
    onPage("", [](const DialogWindow& dialog, const DialogWindow&) {
        std::wstring keys;
        for (const HWND control : controlsOf(dialog.handle())) {
            const std::wstring text = ko::test::textOf(control);
            const size_t at = text.find(L'&');
            if (classOf(control) == L"Edit" || at == std::wstring::npos) continue;
            EXPECT_EQ(keys.find(text[at + 1]), std::wstring::npos) << static_cast<char>(text[at + 1]);
            keys += text[at + 1];
        }
        EXPECT_EQ(keys.size(), 18u);
    });
}

// A colour with a range, spans and a changed value.
void arrange(const DialogWindow& page, const std::array<int, 4>& levels) {
    pickLevels(page, levels);
    page.click(IDC_CUBE_256);
    enter(page, IDC_CUBE_HUE, 40);
    enter(page, IDC_CUBE_SATURATION, 35);
    const SIZE bar = sizeOf(page, IDC_CUBE_LIGHTNESS_BAR), black = sizeOf(page, IDC_CUBE_BLACK_BAR);
    clickAt(page, IDC_CUBE_LIGHTNESS_BAR, {2, bar.cy / 4});
    clickAt(page, IDC_CUBE_LIGHTNESS_BAR, {2, bar.cy * 7 / 10});
    clickAt(page, IDC_CUBE_BLACK_BAR, {black.cx / 3, 2});
    enter(page, kChanged[2], 45);
}

TEST(CorrectionPage, ARangeWithSpansLooksRight) {
    onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
        arrange(page, {180, 40, 150, 26});
        keepPicture(pictureOf(dialog), "profile-correction-range");
        expectALook(page);
    });
}

TEST(CorrectionPage, ARangeOverTheEdgeLooksRight) {
    onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
        arrange(page, {20, 190, 200, 26});
        keepPicture(pictureOf(dialog), "profile-correction-edge");
        expectALook(page);
    });
}

TEST(CorrectionPageLifetime, TwoHundredOpeningsLeaveNothingBehind) {
    const auto useAndClose = [] {
        onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
            dragTo(page, IDC_CUBE_AREA, {20, 20}, {60, 30});
            ::RedrawWindow(dialog.handle(), nullptr, nullptr,
                           RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
            dialog.leave(IDCANCEL);
        });
    };
    for (int time = 0; time < 3; ++time) useAndClose();  // what is made once
    const unsigned objects = drawingObjects(), places = windows();
    for (int time = 0; time < 200; ++time) useAndClose();
    EXPECT_LT(drawingObjects(), objects + 100);  // one object an opening is 200
    EXPECT_LT(windows(), places + 100);
}

TEST(CorrectionPageLifetime, ClosingTheWindowDuringADragCancels) {
    const Outcome outcome = onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
        dragTo(page, IDC_CUBE_AREA, {20, 20}, {60, 30});
        ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(outcome.result, 0);
}

TEST(CorrectionPageLifetime, AnOwnerThatIsDestroyedTakesThePageWithItAlsoUnderTheMessage) {
    for (const bool message : {false, true}) {
        const HWND owner = newOwner();
        ASSERT_NE(owner, nullptr);
        const Outcome outcome = openDialog(
            jKoCmykProfileDlg, "",
            [&](const DialogWindow& dialog) {
                correctionPage(dialog);
                if (message) {
                    dialog.press(IDC_NEW);
                    dialog.asked();
                }
                postDestruction(owner);
                EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
            },
            owner);
        EXPECT_EQ(outcome.result, 0);
    }
}

TEST(CorrectionPageLifetime, ASecondOpeningFromTheMessageLoopDoesNotDisturbTheFirst) {
    const TempFolder folder;
    const std::string path = profileFile(folder, "outer.icc");
    char inner[260] = {};
    profileFile(folder, "inner.icc").copy(inner, 259);
    const HWND owner = newOwner();
    openDialog(
        jKoCmykProfileDlg, path,
        [&](const DialogWindow& dialog) {
            const DialogWindow page = correctionPage(dialog);
            enter(page, kPicked[3], 30);
            postCall(owner, [&] { jKoCmykProfileDlg(owner, inner); });
            HWND second = nullptr;
            ASSERT_TRUE(eventually([&] {
                second = ::GetLastActivePopup(owner);
                return second != owner && second != dialog.handle() && ::IsWindowVisible(second);
            }));
            const DialogWindow other(second);
            const DialogWindow otherPage = correctionPage(other);
            EXPECT_EQ(otherPage.text(kPicked[3]), L"0");
            enter(otherPage, kPicked[3], 60);
            enter(otherPage, kChanged[0], 0);
            change(other, otherPage);
            other.leave(IDOK);
            EXPECT_TRUE(eventually([&] { return !other.isOpen(); }));
            EXPECT_EQ(page.text(kPicked[3]), L"30");
            dialog.click(IDC_SAVE);
            dialog.leave(IDOK);
        },
        owner);
    ::DestroyWindow(owner);
    const Profile untouched(jKoCmykCreateProfile());
    EXPECT_TRUE(sameGrid(*profileIn(path), *untouched));
    EXPECT_FALSE(sameGrid(*profileIn(inner), *untouched));
}

TEST(CorrectionPageLifetime, TenThousandPastedCharactersAreCutOrClampedInEveryField) {
    for (const wchar_t character : {L'9', L'漢', L'\x263a', L'-'}) {
        const std::wstring text(10000, character);
        onClipboard(text);
        onPage("", [&](const DialogWindow&, const DialogWindow& page) {
            std::vector<std::pair<int, int>> fields = {{IDC_CUBE_SATURATION, 100}, {IDC_CUBE_HUE, 180}};
            for (const int field : kPicked) fields.emplace_back(field, 100);
            for (const int field : kChanged) fields.emplace_back(field, 100);
            for (const auto& [field, most] : fields) {
                const HWND window = page.item(field);
                page.focus(field);
                ::SendMessageW(window, EM_SETSEL, 0, -1);
                ::SendMessageW(window, WM_PASTE, 0, 0);
                EXPECT_LE(page.text(field).size(), 4u);
                ::SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
                page.focus(IDC_CUBE_AREA);
                EXPECT_EQ(page.text(field), std::to_wstring(character == L'9' ? most : 0)) << field;
            }
        });
    }
}

TEST(CorrectionPageLifetime, MessagesInAnyOrderDoNoHarm) {
    onPage("", [](const DialogWindow& dialog, const DialogWindow& page) {
        std::mt19937 random(17);
        const UINT mouse[] = {WM_MOUSEMOVE,   WM_LBUTTONUP,     WM_LBUTTONDOWN,  WM_LBUTTONDBLCLK,
                              WM_RBUTTONDOWN, WM_CAPTURECHANGED, WM_CANCELMODE,   WM_KILLFOCUS,
                              WM_KEYDOWN,     WM_KEYUP,          WM_CHAR,         WM_ENABLE};
        for (int time = 0; time < 2000; ++time) {
            const HWND surface = page.item(kSurfaces[random() % 7]);
            const UINT message = mouse[random() % 12];
            const LPARAM at = MAKELPARAM(random() % 65536, random() % 65536);
            ::SendMessageW(surface, message, message == WM_KEYDOWN ? 0x20 + random() % 16 : 1,
                           message == WM_CAPTURECHANGED ? 0 : at);
        }
        for (int control = 1000; control < 1200; ++control) {
            for (const int note : {BN_CLICKED, EN_CHANGE, EN_KILLFOCUS, 77})
                ::SendMessageW(page.handle(), WM_COMMAND, MAKEWPARAM(control, note), 0);
        }
        pickLevels(page, {10, 20, 30, 40});
        EXPECT_EQ(textsOf(page, kCurrent), L"10 20 30 40 ");
        dialog.leave(IDCANCEL);
    });
}

}  // namespace
