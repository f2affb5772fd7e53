// The colour pick dialog, driven in its real window.
#include "kolink.h"
#include "kolink/colour_pick_dialog.h"

#include <gtest/gtest.h>

#include <windows.h>
// Needs the one above.
#include <commctrl.h>

#include "tests/dialog/layout.h"
#include "tests/dialog/language.h"
#include "tests/dialog/lifetime.h"

using namespace ko::test;

namespace {

constexpr int kEdits[] = {IDC_PICK_C, IDC_PICK_M, IDC_PICK_Y, IDC_PICK_K};
constexpr int kSpins[] = {IDC_PICK_SPIN_C, IDC_PICK_SPIN_M, IDC_PICK_SPIN_Y, IDC_PICK_SPIN_K};
constexpr int kUnits[] = {IDC_PICK_UNIT_C, IDC_PICK_UNIT_M, IDC_PICK_UNIT_Y, IDC_PICK_UNIT_K};

uint32_t pick(uint32_t cmyk, const std::function<void(const DialogWindow&)>& drive,
              HWND owner = nullptr) {
    uint32_t result = 0;
    openDialog([&] { result = jColorPickDlg(owner, cmyk); }, drive);
    return result;
}

SIZE sizeOf(const DialogWindow& dialog, int control) {
    RECT area;
    ::GetClientRect(dialog.item(control), &area);
    return {area.right, area.bottom};
}

// All of it is handled before the system tells, on its own, where the pointer really is; and a
// window is painted only when everything else has been handled.
void mouse(const DialogWindow& dialog, int control,
           std::initializer_list<std::pair<UINT, POINT>> messages) {
    const HWND window = dialog.item(control);
    for (const auto& [message, at] : messages)
        ::PostMessageW(window, message, 0, MAKELPARAM(at.x, at.y));
    ::InvalidateRect(window, nullptr, FALSE);
    EXPECT_TRUE(eventually([&] { return !::GetUpdateRect(window, nullptr, FALSE); }));
}

void clickAt(const DialogWindow& dialog, int control, POINT at) {
    mouse(dialog, control, {{WM_LBUTTONDOWN, at}, {WM_LBUTTONUP, at}});
}

void drag(const DialogWindow& dialog, int control, POINT from, POINT to) {
    mouse(dialog, control, {{WM_LBUTTONDOWN, from}, {WM_MOUSEMOVE, to}, {WM_LBUTTONUP, to}});
}

int packed(int c, int m, int y, int k) {
    return static_cast<int>(static_cast<uint32_t>(c) << 24 | static_cast<uint32_t>(m) << 16 |
                            static_cast<uint32_t>(y) << 8 | static_cast<uint32_t>(k));
}

std::wstring textsOf(const DialogWindow& dialog) {
    std::wstring texts;
    for (const int edit : kEdits) texts += dialog.text(edit) + L' ';
    return texts;
}

TEST(ColourPickDialog, OpensWithTheColourGivenInPercent) {
    pick(0x0080ff33, [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), shown(L"ｶﾗｰ選択"));
        EXPECT_EQ(textsOf(dialog), L"0 50 100 20 ");
        EXPECT_EQ(dialog.text(IDC_PICK_SCALE), shown(L"網点 %"));
        for (const int unit : kUnits) EXPECT_EQ(dialog.text(unit), L"%");
        EXPECT_FALSE(dialog.isChecked(IDC_PICK_256));
    });
}

TEST(ColourPickDialog, CancelReturnsTheColourGiven) {
    const uint32_t result = pick(0x12345678, [](const DialogWindow& dialog) {
        dialog.enter(IDC_PICK_C, L"100", IDC_PICK_M);
        clickAt(dialog, IDC_PICK_FIELD, {20, 20});
        dialog.click(IDCANCEL);
    });
    EXPECT_EQ(result, 0x12345678u);
}

TEST(ColourPickDialog, OkReturnsTheColourUntouchedToTheLevel) {
    const uint32_t result = pick(0x7f01fe33, [](const DialogWindow& dialog) {
        for (const int edit : kEdits) dialog.focus(edit);  // 127 is shown as 50 %
        dialog.focus(IDOK);
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 0x7f01fe33u);
}

TEST(ColourPickDialog, ATypedHundredPercentIsFullInk) {
    const uint32_t result = pick(0, [](const DialogWindow& dialog) {
        dialog.enter(IDC_PICK_M, L"100", IDC_PICK_Y);
        dialog.enter(IDC_PICK_K, L"50", IDC_PICK_Y);
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 0x00ff0080u);
}

TEST(ColourPickDialog, ATypedThreeHundredOf256LevelsIsFullInk) {
    const uint32_t result = pick(0, [](const DialogWindow& dialog) {
        dialog.click(IDC_PICK_256);
        dialog.enter(IDC_PICK_M, L"300", IDC_PICK_Y);
        EXPECT_EQ(dialog.text(IDC_PICK_M), L"255");
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 0x00ff0000u);
}

TEST(ColourPickDialog, ReturnTakesTheFieldThatIsBeingTyped) {
    const uint32_t result = pick(0, [](const DialogWindow& dialog) {
        dialog.type(IDC_PICK_Y, L"040");
        ::PostMessageW(dialog.item(IDC_PICK_Y), WM_KEYDOWN, VK_RETURN, 0);
        EXPECT_TRUE(eventually([&] { return dialog.text(IDC_PICK_Y) == L"40"; }));
        EXPECT_TRUE(dialog.isOpen());
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 0x00006600u);
}

TEST(ColourPickDialog, ANumberOutOfRangeIsSaidWhereItIsLimited) {
    pick(0, [](const DialogWindow& dialog) {
        dialog.enter(IDC_PICK_C, L"130", IDC_PICK_M);
        EXPECT_EQ(dialog.text(IDC_PICK_C), L"100");
        EXPECT_EQ(dialog.text(IDC_STATUS), shown(L"0 ～ 100 に制限しました。"));
        dialog.enter(IDC_PICK_C, L"\uff14\uff10", IDC_PICK_M);  // full-width digits
        EXPECT_EQ(dialog.text(IDC_PICK_C), L"40");
        EXPECT_EQ(dialog.text(IDC_STATUS), L"");
    });
}

TEST(ColourPickDialog, AnAccessKeyTakesTheFieldThatIsBeingTyped) {
    pick(0, [](const DialogWindow& dialog) {
        dialog.type(IDC_PICK_Y, L"40");
        // As the access key of the box does it: the field keeps the focus until it is told.
        ::CheckDlgButton(dialog.handle(), IDC_PICK_256, BST_CHECKED);
        ::SendMessageW(dialog.handle(), WM_COMMAND, MAKEWPARAM(IDC_PICK_256, BN_CLICKED),
                       reinterpret_cast<LPARAM>(dialog.item(IDC_PICK_256)));
        EXPECT_EQ(dialog.text(IDC_PICK_Y), L"102");
    });
}

TEST(ColourPickDialog, TheBoxChangesUnitsFieldsAndSpinRanges) {
    pick(0x80ff0033, [](const DialogWindow& dialog) {
        for (const int limit : {255, 100, 255}) {
            dialog.click(IDC_PICK_256);
            EXPECT_EQ(textsOf(dialog), limit == 255 ? L"128 255 0 51 " : L"50 100 0 20 ");
            EXPECT_EQ(dialog.text(IDC_PICK_SCALE), limit == 255 ? shown(L"ﾋﾟｸｾﾙ値") : shown(L"網点 %"));
            for (const int unit : kUnits) EXPECT_EQ(dialog.text(unit), limit == 255 ? L"" : L"%");
            for (const int spin : kSpins)
                EXPECT_EQ(::SendMessageW(dialog.item(spin), UDM_GETRANGE, 0, 0), MAKELRESULT(limit, 0));
        }
    });
}

TEST(ColourPickDialog, TheSpinControlsStepOneUnit) {
    const uint32_t result = pick(0, [](const DialogWindow& dialog) {
        for (const int spin : kSpins) {
            const SIZE size = sizeOf(dialog, spin);
            EXPECT_GT(size.cy, 10);
            clickAt(dialog, spin, {size.cx / 2, size.cy / 4});
            clickAt(dialog, spin, {size.cx / 2, size.cy / 4});
            clickAt(dialog, spin, {size.cx / 2, size.cy * 3 / 4});
        }
        EXPECT_EQ(textsOf(dialog), L"1 1 1 1 ");
        clickAt(dialog, IDC_PICK_SPIN_K, {5, sizeOf(dialog, IDC_PICK_SPIN_K).cy * 3 / 4});
        clickAt(dialog, IDC_PICK_SPIN_K, {5, sizeOf(dialog, IDC_PICK_SPIN_K).cy * 3 / 4});
        EXPECT_EQ(dialog.text(IDC_PICK_K), L"0");  // and not below
        dialog.key(IDC_PICK_C, VK_UP);             // arrow keys of a field do the same
        EXPECT_EQ(dialog.text(IDC_PICK_C), L"2");
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 0x05030300u);
}

TEST(ColourPickDialog, ASpinStepGoesOnFromWhatIsTyped) {
    pick(0, [](const DialogWindow& dialog) {
        dialog.type(IDC_PICK_M, L"70");
        const SIZE size = sizeOf(dialog, IDC_PICK_SPIN_M);
        clickAt(dialog, IDC_PICK_SPIN_M, {size.cx / 2, size.cy / 4});
        EXPECT_EQ(dialog.text(IDC_PICK_M), L"71");
    });
}

TEST(ColourPickDialog, AClickInTheFieldPicksItsHueAndSaturation) {
    SIZE size{};
    POINT at{};
    const uint32_t result = pick(0, [&](const DialogWindow& dialog) {
        size = sizeOf(dialog, IDC_PICK_FIELD);
        at = {size.cx / 2, size.cy / 4};
        clickAt(dialog, IDC_PICK_FIELD, at);
        dialog.click(IDOK);
    });
    const int column = at.x * 120 / size.cx, up = size.cy - at.y;
    ASSERT_TRUE(column == 59 || column == 60) << column;
    const int green = 255, blue = column == 60 ? 255 : 228, red = 0;
    EXPECT_EQ(static_cast<int>(result),
              packed(255 - ((red - 127) * up / size.cy + 127), 255 - ((green - 127) * up / size.cy + 127),
                     255 - ((blue - 127) * up / size.cy + 127), 0));
}

TEST(ColourPickDialog, AClickInTheMiddleOfTheLightnessStripGivesTheBaseColour) {
    for (const int control : {IDC_PICK_LIGHTNESS, IDC_PICK_LIGHTNESS_MARK}) {
        const uint32_t result = pick(0x00000021, [&](const DialogWindow& dialog) {
            clickAt(dialog, IDC_PICK_FIELD, {0, 0});  // the full red
            const SIZE size = sizeOf(dialog, control);
            EXPECT_EQ(size.cy, sizeOf(dialog, IDC_PICK_LIGHTNESS).cy);
            clickAt(dialog, control, {2, size.cy / 4});
            EXPECT_NE(dialog.text(IDC_PICK_M), L"100");
            clickAt(dialog, control, {2, size.cy / 2});
            EXPECT_EQ(textsOf(dialog), L"0 100 100 13 ");
            dialog.click(IDOK);
        });
        EXPECT_EQ(result, 0x00ffff21u);
    }
}

TEST(ColourPickDialog, AClickInTheBlackStripSetsBlack) {
    for (const int control : {IDC_PICK_BLACK, IDC_PICK_BLACK_MARK}) {
        LONG width = 0;
        const uint32_t result = pick(0x11223344, [&](const DialogWindow& dialog) {
            width = sizeOf(dialog, control).cx;
            EXPECT_EQ(width, sizeOf(dialog, IDC_PICK_BLACK).cx);
            clickAt(dialog, control, {100, 3});
            dialog.click(IDOK);
        });
        EXPECT_EQ(result, 0x11223300u + static_cast<uint32_t>(100 * 255 / width));
    }
}

TEST(ColourPickDialog, DraggingGoesOnBeyondTheEdges) {
    const uint32_t result = pick(0, [](const DialogWindow& dialog) {
        drag(dialog, IDC_PICK_BLACK, {10, 3}, {5000, -5000});
        EXPECT_EQ(dialog.text(IDC_PICK_K), L"100");
        drag(dialog, IDC_PICK_BLACK, {10, 3}, {-5000, 5000});
        EXPECT_EQ(dialog.text(IDC_PICK_K), L"0");
        drag(dialog, IDC_PICK_FIELD, {20, 20}, {-30, -30});
        EXPECT_EQ(textsOf(dialog), L"0 100 100 0 ");
        drag(dialog, IDC_PICK_LIGHTNESS, {5, 20}, {5, 5000});
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 0xffffff00u);
}

TEST(ColourPickDialog, TheCursorAloneChangesNothing) {
    const uint32_t result = pick(0x11223344, [](const DialogWindow& dialog) {
        for (const int control : {IDC_PICK_FIELD, IDC_PICK_LIGHTNESS, IDC_PICK_BLACK}) {
            mouse(dialog, control, {{WM_MOUSEMOVE, {9, 9}}, {WM_LBUTTONUP, {9, 9}}});
        }
        clickAt(dialog, IDC_PICK_SWATCH, {9, 9});
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 0x11223344u);
}

TEST(ColourPickDialog, TheKeyboardReachesFieldAndStrips) {
    const uint32_t result = pick(0, [](const DialogWindow& dialog) {
        for (const int control : {IDC_PICK_FIELD, IDC_PICK_LIGHTNESS, IDC_PICK_BLACK})
            EXPECT_TRUE(::GetWindowLongW(dialog.item(control), GWL_STYLE) & WS_TABSTOP);
        dialog.key(IDC_PICK_FIELD, VK_HOME);
        for (int step = 0; step < 7; ++step) dialog.key(IDC_PICK_FIELD, VK_PRIOR);
        EXPECT_EQ(textsOf(dialog), L"0 100 100 0 ");
        dialog.key(IDC_PICK_FIELD, VK_RIGHT);  // column 1: hues 41, 1 and 81
        dialog.key(IDC_PICK_BLACK, VK_RIGHT);
        dialog.key(IDC_PICK_BLACK, VK_RIGHT);
        dialog.key(IDC_PICK_BLACK, VK_LEFT);
        EXPECT_EQ(dialog.text(IDC_PICK_K), L"1");
        dialog.key(IDC_PICK_LIGHTNESS, VK_END);
        EXPECT_EQ(dialog.text(IDC_PICK_C), L"100");
        dialog.key(IDC_PICK_LIGHTNESS, VK_HOME);
        EXPECT_EQ(textsOf(dialog), L"0 0 0 1 ");
        dialog.click(IDOK);
    });
    EXPECT_EQ(result, 0x00000003u);
}

TEST(DialogLayout, OfTheColourPickIsRightInBothUnits) {
    pick(0xffffffff, [](const DialogWindow& dialog) {
        expectALook(dialog);
        dialog.click(IDC_PICK_256);
        EXPECT_EQ(textsOf(dialog), L"255 255 255 255 ");
        expectTextsFit(dialog);
        expectNothingIsCovered(dialog);
    });
}

TEST(DialogLayout, OfTheColourPickHasItsStripsBesideTheField) {
    pick(0, [](const DialogWindow& dialog) {
        const auto place = [&](int control) { return placeOf(dialog.item(control), dialog.handle()); };
        const RECT field = place(IDC_PICK_FIELD), lightness = place(IDC_PICK_LIGHTNESS),
                   black = place(IDC_PICK_BLACK);
        EXPECT_GE(field.right - field.left, 242);  // two pixels a column, two a row
        EXPECT_GE(field.bottom - field.top, 130);
        EXPECT_EQ(lightness.top, field.top);
        EXPECT_EQ(lightness.bottom, field.bottom);
        EXPECT_EQ(black.right, field.right);
        EXPECT_EQ(place(IDC_PICK_LIGHTNESS_MARK).top, lightness.top);
        EXPECT_EQ(place(IDC_PICK_BLACK_MARK).left, black.left);
    });
}

TEST(DialogLayout, OfTheColourPickShowsWhereItsColourIs) {
    pick(0x0a141e05, [](const DialogWindow& dialog) {
        clickAt(dialog, IDC_PICK_FIELD, {sizeOf(dialog, IDC_PICK_FIELD).cx * 3 / 4,
                                         sizeOf(dialog, IDC_PICK_FIELD).cy / 3});
        clickAt(dialog, IDC_PICK_LIGHTNESS, {3, sizeOf(dialog, IDC_PICK_LIGHTNESS).cy / 3});
        dialog.enter(IDC_PICK_K, L"5", IDC_PICK_FIELD);
        const Picture picture = pictureOf(dialog);
        RECT window, mark;
        ::GetWindowRect(dialog.handle(), &window);
        ::GetWindowRect(dialog.item(IDC_PICK_LIGHTNESS_MARK), &mark);
        const auto black = [&](LONG y) {  // at the tip of the marker
            const auto at = static_cast<size_t>(y - window.top) * static_cast<size_t>(picture.width) +
                            static_cast<size_t>(mark.left - window.left);
            return (picture.pixels[at] & 0xffffff) == 0;
        };
        EXPECT_TRUE(black(mark.top + (mark.bottom - mark.top) / 3));
        EXPECT_FALSE(black(mark.top + (mark.bottom - mark.top) / 2));
        keepPicture(picture, "colour-pick");
    });
}

TEST(ColourPickDialog, TheSwatchShowsTheColour) {
    pick(0x0a141e05, [](const DialogWindow& dialog) {
        const SIZE size = sizeOf(dialog, IDC_PICK_SWATCH);
        const uint32_t word = jColorCMYKtoRGB(0x0a, 0x14, 0x1e, 0x05);
        const uint32_t colour = (word & 255) << 16 | (word & 0xff00) | (word >> 16 & 255);
        EXPECT_GE(pictureOf(dialog).count(colour), (size.cx - 2) * (size.cy - 2));
        dialog.enter(IDC_PICK_K, L"100", IDC_PICK_M);
        EXPECT_LT(pictureOf(dialog).count(colour), size.cx);  // a row of the lightness strip at most
    });
}

TEST(ColourPickDialog, TheFieldShowsEveryHue) {
    pick(0, [](const DialogWindow& dialog) {
        const Picture picture = pictureOf(dialog);
        for (const uint32_t colour : {0xfd0202u, 0x02fd02u, 0x0202fdu, 0x7f7f7fu})
            EXPECT_GT(picture.count(colour), 2) << std::hex << colour;
    });
}

void useAndClose() {
    pick(0, [](const DialogWindow& dialog) {
        drag(dialog, IDC_PICK_FIELD, {10, 10}, {50, 50});
        ::RedrawWindow(dialog.handle(), nullptr, nullptr,
                       RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        dialog.click(IDCANCEL);
    });
}

TEST(ColourPickDialog, TwoHundredOpeningsLeaveNothingBehind) {
    useAndClose();
    const unsigned objects = drawingObjects(), places = windows();
    for (int time = 0; time < 200; ++time) useAndClose();
    EXPECT_LT(drawingObjects(), objects + 40);
    EXPECT_LT(windows(), places + 40);
}

TEST(ColourPickDialog, ClosingTheWindowCancels) {
    const uint32_t result = pick(0x12345678, [](const DialogWindow& dialog) {
        dialog.type(IDC_PICK_C, L"99");
        ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
        EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    });
    EXPECT_EQ(result, 0x12345678u);
}

TEST(ColourPickDialog, AnOwnerThatIsDestroyedTakesTheDialogWithIt) {
    const HWND owner = newOwner();
    ASSERT_NE(owner, nullptr);
    const uint32_t result = pick(
        0x12345678,
        [&](const DialogWindow& dialog) {
            drag(dialog, IDC_PICK_FIELD, {10, 10}, {50, 50});
            postDestruction(owner);
            EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
        },
        owner);
    EXPECT_EQ(result, 0x12345678u);
    EXPECT_FALSE(::IsWindow(owner));
}

TEST(ColourPickDialog, ASecondOpeningFromTheMessageLoopDoesNotDisturbTheFirst) {
    const HWND owner = newOwner();
    uint32_t inner = 0;
    const uint32_t outer = pick(
        0x10000000,
        [&](const DialogWindow& dialog) {
            dialog.enter(IDC_PICK_K, L"30", IDC_PICK_M);
            postCall(owner, [&] { inner = jColorPickDlg(owner, 0x00200000); });
            HWND second = nullptr;
            ASSERT_TRUE(eventually([&] {
                second = ::GetLastActivePopup(owner);
                return second != owner && second != dialog.handle() && ::IsWindowVisible(second);
            }));
            const DialogWindow other(second);
            EXPECT_EQ(other.text(IDC_PICK_K), L"0");
            other.enter(IDC_PICK_K, L"60", IDC_PICK_M);
            other.click(IDOK);
            EXPECT_TRUE(eventually([&] { return !other.isOpen(); }));
            EXPECT_EQ(dialog.text(IDC_PICK_K), L"30");
            dialog.click(IDOK);
        },
        owner);
    ::DestroyWindow(owner);
    EXPECT_EQ(outer, 0x1000004du);
    EXPECT_EQ(inner, 0x00200099u);
}

TEST(ColourPickDialog, TenThousandPastedCharactersAreCutAndClamped) {
    for (const wchar_t character : {L'9', L'漢', L'\x263a'}) {
        const std::wstring text(10000, character);
        onClipboard(text);
        pick(0, [&](const DialogWindow& dialog) {
            for (const int edit : kEdits) {
                dialog.focus(edit);
                ::SendMessageW(dialog.item(edit), EM_SETSEL, 0, -1);
                ::SendMessageW(dialog.item(edit), WM_PASTE, 0, 0);
                EXPECT_EQ(dialog.text(edit), text.substr(0, 4));
                dialog.focus(IDC_PICK_FIELD);
                EXPECT_EQ(dialog.text(edit), character == L'9' ? L"100" : L"0");
                // Without the control's limit, as another program may set it.
                ::SendMessageW(dialog.item(edit), WM_SETTEXT, 0,
                               reinterpret_cast<LPARAM>(text.c_str()));
                dialog.focus(edit);
                dialog.focus(IDC_PICK_FIELD);
                EXPECT_EQ(dialog.text(edit), character == L'9' ? L"100" : L"0");
            }
        });
    }
}

}  // namespace
