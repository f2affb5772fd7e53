// What the tests of the device-link dialog share.
#pragma once

#include <functional>
#include <string>

#include "kolink/device_link_dialog.h"
#include "tests/dialog/driver.h"
#include "tests/dialog/language.h"

namespace ko::test {

constexpr char kDebian[] = "Z:\\usr\\share\\color\\icc\\ghostscript\\default_cmyk.icc";
inline const std::wstring kNotMade =
    shown(L"ﾌﾟﾛﾌｧｲﾙ作成に失敗しました。\nﾊﾟﾗﾒｰﾀを確かめてください。");
inline const std::wstring kNotWritten =
    shown(L"ﾌﾟﾛﾌｧｲﾙ書き込みに失敗しました。\n作成ﾌﾟﾛﾌｧｲﾙﾊﾟｽを確かめてください。");
inline const std::wstring kMade = shown(L"ﾌﾟﾛﾌｧｲﾙを作成しました。");

constexpr int kLinkEdits[] = {IDC_LINK_BASE, IDC_LINK_SOURCE, IDC_LINK_DESTINATION, IDC_LINK_BLACK,
                              IDC_LINK_OUTPUT};
constexpr int kLinkBrowse[] = {IDC_LINK_BROWSE_BASE, IDC_LINK_BROWSE_SOURCE,
                               IDC_LINK_BROWSE_DESTINATION, IDC_LINK_BROWSE_BLACK,
                               IDC_LINK_BROWSE_OUTPUT};

CmsLinkSettings writingTo(const std::string& output);  // else as jCmsInitCms makes them
CmsLinkSettings onPaper(int32_t c, int32_t m, int32_t y, int32_t k);

using Drive = std::function<void(const DialogWindow&)>;
int32_t editLink(CmsLinkSettings& settings, const Drive& drive, HWND owner = nullptr);
int32_t lookAtLink(CmsLinkSettings settings, const Drive& drive);

std::wstring closeMessage(const DialogWindow& dialog);  // the text of the message it has opened
// Presses Create and answers what it says; the dialog has gone after a success.
std::wstring create(const DialogWindow& dialog);

// The file holds what the library makes of the settings without the dialog.
void expectTheLinkOf(const CmsLinkSettings& settings, const std::string& path);

}  // namespace ko::test
