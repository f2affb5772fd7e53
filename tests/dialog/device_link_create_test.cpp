// The Create button of the device-link dialog: what it writes, and what it says when it cannot.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/dialog/device_link.h"
#include "tests/dialog/layout.h"

using namespace ko::test;

namespace {

std::wstring named(const wchar_t* name) { return std::wstring(L"Z:\\missing\\") + name; }

TEST(DeviceLinkDialog, CreateWritesTheLinkAndReturnsTheSettingsItWasMadeWith) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo("");
    settings.intent = 2;
    const std::string micro = testData("CGATS001Compat-v2-micro.icc");
    const std::string output = folder.path("made.icc");
    EXPECT_EQ(editLink(settings,
                   [&](const DialogWindow& dialog) {
                       dialog.enter(IDC_LINK_SOURCE, wide(micro), IDCANCEL);
                       dialog.enter(IDC_LINK_DESTINATION, wide(kDebian), IDCANCEL);
                       dialog.enter(IDC_LINK_OUTPUT, wide(output), IDCANCEL);
                       EXPECT_EQ(create(dialog), kNotMade);  // the source has no saturation table
                       dialog.click(IDC_LINK_PERCEPTUAL);
                       dialog.click(IDC_LINK_KEEP_SECONDARIES);
                       dialog.click(IDC_LINK_WHITE_NO_INK);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    CmsLinkSettings expected = writingTo(output);
    micro.copy(expected.sourcePath, 259);
    std::strcpy(expected.destinationPath, kDebian);
    expected.preservation = 2;
    expected.whiteMode = 1;
    EXPECT_EQ(std::memcmp(&settings, &expected, sizeof settings), 0);
    expectTheLinkOf(expected, output);
}

TEST(DeviceLinkDialog, ReturnCreatesWithTheFieldThatHasTheFocus) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo("");
    EXPECT_EQ(editLink(settings,
                   [&](const DialogWindow& dialog) {
                       dialog.type(IDC_LINK_OUTPUT, wide(folder.path("made.icc")));
                       ::PostMessageW(dialog.item(IDC_LINK_OUTPUT), WM_KEYDOWN, VK_RETURN, 0);
                       EXPECT_EQ(closeMessage(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.outputPath, folder.path("made.icc"));
    EXPECT_TRUE(exists(folder.path("made.icc")));
}

TEST(DeviceLinkDialog, WhatCannotBeMadeIsToldAndTheDialogStaysOpenForCorrection) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    EXPECT_EQ(editLink(settings,
                   [&](const DialogWindow& dialog) {
                       for (const int field : {IDC_LINK_BASE, IDC_LINK_SOURCE, IDC_LINK_BLACK}) {
                           dialog.enter(field, named(L"profile.icc"), IDCANCEL);
                           dialog.enter(IDC_LINK_DESTINATION, named(L"p.icc"), IDCANCEL);
                           EXPECT_EQ(create(dialog), kNotMade);
                           EXPECT_FALSE(exists(folder.path("made.icc")));
                           dialog.enter(field, L"", IDCANCEL);
                       }
                       dialog.enter(IDC_LINK_DESTINATION, L"", IDCANCEL);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_TRUE(exists(folder.path("made.icc")));
}

TEST(DeviceLinkDialog, WhatCannotBeWrittenIsToldAndTheDialogStaysOpenForCorrection) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo("");
    EXPECT_EQ(editLink(settings,
                   [&](const DialogWindow& dialog) {
                       EXPECT_EQ(create(dialog), kNotWritten);  // no path at all
                       dialog.enter(IDC_LINK_OUTPUT, named(L"made.icc"), IDCANCEL);
                       EXPECT_EQ(create(dialog), kNotWritten);
                       dialog.enter(IDC_LINK_OUTPUT, wide(folder.path("made.icc")), IDCANCEL);
                       EXPECT_EQ(create(dialog), kMade);
                   }),
              1);
    EXPECT_EQ(settings.outputPath, folder.path("made.icc"));
}

TEST(DeviceLinkDialog, ALinkThatAnotherProgramHoldsIsNotTakenForTheNewOne) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    editLink(settings, [](const DialogWindow& dialog) { EXPECT_EQ(create(dialog), kMade); });
    const Bytes before = readFile(folder.path("made.icc"));
    const HANDLE held = ::CreateFileA(folder.path("made.icc").c_str(), GENERIC_READ,
                                      FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    settings.whiteMode = 2;
    settings.paperC = 99;
    EXPECT_EQ(editLink(settings,
                   [](const DialogWindow& dialog) { EXPECT_EQ(create(dialog), kNotWritten); }),
              0);
    ::CloseHandle(held);
    EXPECT_EQ(readFile(folder.path("made.icc")), before);
}

TEST(DeviceLinkDialogLook, WhatTheLinkDoesStandsBelowUntilTheMessageOfSuccessIsAnswered) {
    const TempFolder folder;
    CmsLinkSettings settings = writingTo(folder.path("made.icc"));
    const std::string press = folder.path("press.icc");
    writeFile(press, readFile(testData("CGATS001Compat-v2-micro.icc")));
    EXPECT_EQ(editLink(settings,
                  [&](const DialogWindow& dialog) {
                      dialog.enter(IDC_LINK_SOURCE, wide(press), IDCANCEL);
                      dialog.enter(IDC_LINK_DESTINATION, wide(kDebian), IDCANCEL);
                      RECT before;
                      ::GetWindowRect(dialog.handle(), &before);
                      dialog.press(IDOK);
                      const DialogWindow message = dialog.asked();
                      RECT after, told, ramps;
                      ::GetWindowRect(dialog.handle(), &after);
                      ::GetWindowRect(message.handle(), &told);
                      EXPECT_GT(after.bottom - after.top, before.bottom - before.top);
                      HWND page = nullptr;
                      for (const HWND control : controlsOf(dialog.handle()))
                          if (classOf(control) == L"#32770") page = control;
                      ASSERT_NE(page, nullptr);
                      const DialogWindow result(page);
                      EXPECT_NE(result.text(IDC_LINK_COLOURS).find(L"C 100"), std::wstring::npos);
                      EXPECT_NE(result.text(IDC_LINK_TOTALS).find(L'%'), std::wstring::npos);
                      ::GetWindowRect(result.item(IDC_LINK_RAMPS), &ramps);
                      EXPECT_LE(told.bottom, ramps.top);  // the message leaves them to be seen
                      EXPECT_LE(after.bottom, ::GetSystemMetrics(SM_CYSCREEN));
                      expectEveryLetterHasAGlyph(result);
                      expectNothingIsCovered(dialog);
                      for (const int text :
                           {IDC_LINK_COLOURS, IDC_LINK_MORE_COLOURS, IDC_LINK_TOTALS})
                          expectTextFits(result.item(text));
                      for (const uint32_t ink : {0x0a97d9u, 0xd81b7du, 0xe0ac00u})
                          EXPECT_TRUE(eventually([&] { return pictureOf(dialog).count(ink) > 100; }))
                              << std::hex << ink;
                      keepPicture(pictureOf(dialog), "link-result");
                      EXPECT_EQ(closeMessage(dialog), kMade);
                      EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
                  }),
              1);
}

}  // namespace
