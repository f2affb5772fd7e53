#include "tests/dialog/profile.h"

#include <gtest/gtest.h>

#include <commctrl.h>

#include <algorithm>
#include <stdexcept>

#include "resources/dialog_ids.h"
#include "tests/dialog/language.h"

namespace ko::test {

void writeLink(const std::string& path, const char* name, const char* comment) {
    const Profile profile(jKoCmykCreateProfile());
    ASSERT_NE(profile, nullptr);
    std::string_view(name).copy(profile->name, sizeof profile->name - 1);
    std::string_view(comment).copy(profile->comment, sizeof profile->comment - 1);
    profile->name[std::min(std::string_view(name).size(), sizeof profile->name - 1)] = '\0';
    profile->curveValues[0][32] = 160;
    profile->curveFlags[0][32] = 1;
    profile->curveValues[5][16] = 40;
    profile->curveFlags[5][16] = 1;
    profile->grid[1000] = 0x12345678;
    ASSERT_EQ(jKoCmykSaveProfile(profile.get(), path.c_str()), 1);
    ASSERT_TRUE(exists(path));
}

Profile loadedLink(const std::string& path) {
    Profile profile(jKoCmykCreateProfile());
    EXPECT_EQ(jKoCmykLoadProfile(profile.get(), path.c_str()), 1) << path;
    return profile;
}

void choosePage(const DialogWindow& dialog, int page) {
    // As a click on the tab: the control itself tells the dialog.
    RECT tab{};
    ::SendMessageW(dialog.item(IDC_PAGES), TCM_GETITEMRECT, static_cast<WPARAM>(page),
                   reinterpret_cast<LPARAM>(&tab));
    const POINT middle{(tab.left + tab.right) / 2, (tab.top + tab.bottom) / 2};
    dialog.mouse(WM_LBUTTONDOWN, middle, IDC_PAGES);
    dialog.mouse(WM_LBUTTONUP, middle, IDC_PAGES);
    EXPECT_EQ(::SendMessageW(dialog.item(IDC_PAGES), TCM_GETCURSEL, 0, 0), page);
}

DialogWindow pageOf(const DialogWindow& dialog) {
    HWND page = nullptr;
    while ((page = ::FindWindowExW(dialog.handle(), page, L"#32770", nullptr)))
        if (::IsWindowVisible(page)) return DialogWindow(page);
    throw std::runtime_error("no page is shown");
}

std::wstring profileCaption(const std::string& path) {
    return shown(L"ﾌﾟﾛﾌｧｲﾙ編集 - [") + wide(path) + L"]";
}

}  // namespace ko::test
