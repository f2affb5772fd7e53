// The CMYK profile dialog in its real window.
#include <gtest/gtest.h>

#include "kolink/profile_dialog.h"
#include "resources/dialog_ids.h"
#include "tests/dialog/layout.h"

#include <commctrl.h>

using namespace ko::test;

namespace {

TEST(ProfileDialog, OpensOnANewProfileWithItsTwoTabs) {
    openDialog(jKoCmykProfileDlg, "", [](const DialogWindow& dialog) {
        EXPECT_EQ(dialog.caption(), L"ﾌﾟﾛﾌｧｲﾙ編集 - []");
        EXPECT_EQ(dialog.text(IDC_TITLE), L"無題");
        EXPECT_EQ(::SendMessageW(dialog.item(IDC_PAGES), TCM_GETITEMCOUNT, 0, 0), 2);
        keepPicture(pictureOf(dialog), "profile-tone");
    });
}

}  // namespace
