// The example host in its real windows: its menu opens every dialog, and it shows what came back.
#include <gmock/gmock.h>

#include "kolink.h"
#include "tests/dialog/host.h"
#include "tests/dialog/layout.h"

using namespace ko::test;
using testing::StartsWith;

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
        EXPECT_EQ(dialog.caption(), editing.kind.caption + wide(path) + L"]");
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

TEST(Host, KeepsWhatIsOpenWhenAnotherCommandComes) {
    HostProgram host;
    const DialogWindow dialog = host.open(IDM_PICK);
    host.choose(IDM_TNC_NEW);
    host.choose(IDM_EXIT);
    ::PostMessageW(host.window().handle(), WM_CLOSE, 0, 0);
    dialog.enter(IDC_PICK_K, L"100", IDC_PICK_M);  // the messages before are handled by then
    EXPECT_TRUE(dialog.isOpen());
    dialog.press(IDOK);
    host.waitUntilClosed();
    EXPECT_EQ(host.window().text(IDC_CALLS), L"jColorPickDlg = 0x000000ff\r\n");
    EXPECT_EQ(host.close(), 0);
}

}  // namespace
