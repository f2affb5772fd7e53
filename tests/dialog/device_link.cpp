#include "tests/dialog/device_link.h"
#include "tests/dialog/language.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/dialog/profile.h"

namespace ko::test {

CmsLinkSettings writingTo(const std::string& output) {
    CmsLinkSettings settings;
    jCmsInitCms(&settings);
    output.copy(settings.outputPath, sizeof settings.outputPath - 1);
    return settings;
}

CmsLinkSettings onPaper(int32_t c, int32_t m, int32_t y, int32_t k) {
    CmsLinkSettings settings = writingTo("");
    settings.whiteMode = 2;
    settings.paperC = c;
    settings.paperM = m;
    settings.paperY = y;
    settings.paperK = k;
    return settings;
}

int32_t editLink(CmsLinkSettings& settings, const Drive& drive, HWND owner) {
    int32_t result = -1;
    openDialog([&] { result = jCmsDeviceLinkDlg(owner, &settings); }, drive);
    return result;
}

int32_t lookAtLink(CmsLinkSettings settings, const Drive& drive) {
    return editLink(settings, drive);
}

// Answers questions with Yes on the way; without the reason that follows an empty line.
std::wstring closeMessage(const DialogWindow& dialog) {
    constexpr int kMessageText = 0xffff;
    DialogWindow message = dialog.asked();
    while (message.item(IDYES)) {
        message.press(IDYES);
        if (!eventually([&] { return !message.isOpen(); })) break;
        message = dialog.asked();
    }
    EXPECT_EQ(message.caption(), shown(L"ﾃﾞﾊﾞｲｽﾘﾝｸ"));
    const std::wstring text = message.text(kMessageText);
    message.press(IDOK);
    return text.substr(0, text.find(L"\n\n"));
}

std::wstring create(const DialogWindow& dialog) {
    dialog.press(IDOK);
    const std::wstring text = closeMessage(dialog);
    if (text != kMade) dialog.waitForQuiet();
    else EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
    return text;
}

void expectTheLinkOf(const CmsLinkSettings& settings, const std::string& path) {
    const Profile expected(jKoCmykCombineProfile(&settings));
    ASSERT_NE(expected, nullptr);
    const Profile written = loadedLink(path);
    EXPECT_EQ(std::memcmp(written->grid, expected->grid, sizeof expected->grid), 0);
}

}  // namespace ko::test
