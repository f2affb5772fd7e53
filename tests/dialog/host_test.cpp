// The example host in its real windows: its menu opens every dialog, and it shows what came back.
#include <gmock/gmock.h>

#include "kolink.h"
#include "tests/calib/sets.h"
#include "tests/dialog/device_link.h"
#include "tests/dialog/host.h"
#include "tests/dialog/language.h"
#include "tests/dialog/layout.h"
#include "tests/dialog/profile.h"

using namespace ko::test;
using testing::HasSubstr;

namespace {

std::wstring result(const wchar_t* function, int value, const std::string& path) {
    return std::wstring(function) + L" = " + std::to_wstring(value) + L"  " + wide(path);
}

TEST(Host, OpensAndClosesByItself) {
    HostProgram host;
    EXPECT_EQ(host.window().caption(), L"KoLink host");
    EXPECT_EQ(host.close(), 0);
}

TEST(Host, LooksRight) {
    const HostProgram host;
    expectALook(host.window());
    keepPicture(pictureOf(host.window()), "host");
}

struct Editing {
    const ToneDialogKind& kind;
    int open, create;
    const wchar_t* function;
};
const Editing kEditing[] = {
    {kTnc, IDM_TNC_OPEN, IDM_TNC_NEW, L"jKoToneCmykToneCurveDlg"},
    {kBkc, IDM_BKC_OPEN, IDM_BKC_NEW, L"jKoToneBkcCurveDlg"},
    {kDcc, IDM_DCC_OPEN, IDM_DCC_NEW, L"jKoToneDccDlg"},
};

TEST(Host, EditsToneFiles) {
    const TempFolder folder;
    const HostProgram host;
    for (const Editing& editing : kEditing) {
        const std::string path =
            freshFile(editing.kind, folder, std::string("curve") + editing.kind.extension);
        const DialogWindow dialog = host.open(editing.open, path);
        EXPECT_EQ(dialog.caption(), shown(editing.kind.caption) + wide(path) + L"]");
        dialog.press(IDOK);
        host.waitUntilClosed();
        EXPECT_EQ(host.lastCall(), result(editing.function, 1, path));
    }
}

TEST(Host, ShowsThePathOfANewFile) {
    const TempFolder folder;
    const HostProgram host;
    for (const Editing& editing : kEditing) {
        const std::string path = folder.path(std::string("new") + editing.kind.extension);
        const DialogWindow dialog = host.open(editing.create);
        dialog.press(IDC_SAVE);
        dialog.asked().chooseFile(path);
        dialog.waitForQuiet();
        dialog.press(IDCANCEL);
        host.waitUntilClosed();
        EXPECT_EQ(host.lastCall(), result(editing.function, 0, path));
        EXPECT_TRUE(exists(path));
    }
}

TEST(Host, ShowsTheColourPicked) {
    const HostProgram host;
    const DialogWindow dialog = host.open(IDM_PICK);
    dialog.enter(IDC_PICK_C, L"100", IDC_PICK_M);
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), L"jColorPickDlg = 0xff000000");
    EXPECT_EQ(host.window().text(IDC_COLOUR), L"C 255  M 0  Y 0  K 0");
    const uint32_t shown = jColorCMYKtoRGB(255, 0, 0, 0);
    EXPECT_GT(pictureOf(host.window())
                  .count((shown & 255) << 16 | (shown & 0xff00) | (shown >> 16 & 255)),
              1000);
}

TEST(Host, EditsACalibrationFile) {
    const TempFolder folder;
    const std::string path = folder.path("inks.clb");
    const CalibSet set = newSet(4);
    ASSERT_EQ(jKoCalibSaveCurve(set.get(), path.c_str()), 1);
    const HostProgram host;
    const DialogWindow dialog = host.open(IDM_CALIB_OPEN, path);
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), result(L"jKoCalibEditCurveDlg", 1, path));
}

TEST(Host, AsksForTheFileOfANewCalibration) {
    const TempFolder folder;
    const std::string path = folder.path("new.clb");
    const HostProgram host;
    const DialogWindow dialog = host.open(IDM_CALIB_NEW);
    dialog.press(IDC_SAVE);
    dialog.asked().chooseFile(path);
    dialog.waitForQuiet();
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), result(L"jKoCalibEditCurveDlg", 1, path));
    EXPECT_TRUE(exists(path));
}

TEST(Host, ConvertsThroughAProfileThatWasEdited) {
    const TempFolder folder;
    const std::string path = folder.path("press.icc");
    writeLink(path);
    const HostProgram host;
    const DialogWindow dialog = host.open(IDM_PROFILE_OPEN, path);
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), result(L"jKoCmykProfileDlg", 1, path));
    EXPECT_EQ(host.window().text(IDC_LINK_PATH), wide(path));

    // An input curve takes 128 to 160, an output curve 64 to 40; the rest is as it was.
    host.window().type(IDC_IN_C, L"128");
    host.window().type(IDC_IN_M, L"64");
    host.window().type(IDC_IN_K, L"255");
    host.window().click(IDC_CONVERT);
    EXPECT_EQ(host.window().text(IDC_OUT), L"C 160.0 M 40.0 Y 0.0 K 255.0");
}

TEST(Host, ConvertsThroughTheLinkThatWasMade) {
    const TempFolder folder;
    const std::string path = folder.path("link.icc");
    const HostProgram host;
    const DialogWindow dialog = host.open(IDM_LINK);
    dialog.enter(IDC_LINK_OUTPUT, wide(path), IDC_LINK_BASE);
    dialog.press(IDOK);
    EXPECT_EQ(closeMessage(dialog), kMade);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), result(L"jCmsDeviceLinkDlg", 1, path));
    EXPECT_THAT(host.window().text(IDC_SETTINGS), HasSubstr(L"output: " + wide(path)));
    host.window().type(IDC_IN_M, L"999");  // more than a level
    host.window().type(IDC_IN_K, L"40");
    host.window().click(IDC_CONVERT);
    EXPECT_EQ(host.window().text(IDC_IN_M), L"255");
    EXPECT_EQ(host.window().text(IDC_OUT), L"C 0.0 M 255.0 Y 0.0 K 40.0");
}

TEST(Host, ForgetsTheSettingsOfALink) {
    const HostProgram host;
    const std::wstring fresh = host.window().text(IDC_SETTINGS);
    EXPECT_THAT(fresh, HasSubstr(L"limit: 200"));
    const TempFolder folder;
    const DialogWindow dialog = host.open(IDM_LINK);
    dialog.enter(IDC_LINK_OUTPUT, wide(folder.path("link.icc")), IDC_LINK_BASE);
    dialog.press(IDOK);
    EXPECT_EQ(closeMessage(dialog), kMade);
    host.waitUntilClosed();
    EXPECT_NE(host.window().text(IDC_SETTINGS), fresh);
    host.order(IDM_LINK_RESET);
    EXPECT_EQ(host.window().text(IDC_SETTINGS), fresh);
}

TEST(Host, SaysThatAFileIsNoLink) {
    const TempFolder folder;
    const std::string path = folder.path("text.icc");
    writeFile(path, "no profile");
    const HostProgram host;
    host.open(IDM_LINK_OPEN).chooseFile(path);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), L"no CMYK link: " + wide(path));
    host.window().click(IDC_CONVERT);
    EXPECT_EQ(host.window().text(IDC_OUT), L"no link");
}

TEST(Host, ShowsTheProfilesChosen) {
    const HostProgram host;
    const DialogWindow dialog = host.open(IDM_SELECT);
    ::SendMessageW(dialog.item(IDC_SELECT_INTENT), CB_SETCURSEL, 1, 0);
    ::SendMessageW(dialog.handle(), WM_COMMAND, MAKEWPARAM(IDC_SELECT_INTENT, CBN_SELCHANGE),
                   reinterpret_cast<LPARAM>(dialog.item(IDC_SELECT_INTENT)));
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.lastCall(), L"jColorProfileSelectDlg = 1");
    EXPECT_THAT(host.window().text(IDC_SETTINGS), HasSubstr(L"CMYK: -\r\n  intent: 1"));
}

TEST(Host, KeepsWhatIsOpenWhenAnotherCommandComes) {
    HostProgram host;
    const DialogWindow dialog = host.open(IDM_PICK);
    host.order(IDM_TNC_NEW);
    host.order(IDM_EXIT);
    ::SendMessageW(host.window().handle(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(dialog.isOpen());
    dialog.enter(IDC_PICK_K, L"100", IDC_PICK_M);
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.window().text(IDC_CALLS), L"jColorPickDlg = 0x000000ff\r\n");
    EXPECT_EQ(host.close(), 0);
}

}  // namespace
