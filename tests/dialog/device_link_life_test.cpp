// The device-link dialog under messages in any order: endings, reentry, its procedure in a host's
// hands, what is left behind.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <random>

#include "kolink/cmyk_profile.h"
#include "tests/dialog/device_link.h"
#include "tests/dialog/language.h"
#include "tests/dialog/lifetime.h"

using namespace ko::test;

namespace {

CmsLinkSettings settingsFor(const std::string& output) {
    CmsLinkSettings settings = writingTo(output);
    settings.whiteMode = 2;
    return settings;
}

bool unchanged(const CmsLinkSettings& a, const CmsLinkSettings& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(DeviceLinkLifetime, ClosingTheWindowCancels) {
    CmsLinkSettings settings = settingsFor("");
    const CmsLinkSettings before = settings;
    EXPECT_EQ(editLink(settings,
                   [](const DialogWindow& dialog) {
                       dialog.enter(IDC_LINK_BASE, L"changed", IDCANCEL);
                       ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
                       EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
                   }),
              0);
    EXPECT_TRUE(unchanged(settings, before));
}

TEST(DeviceLinkLifetime, AnOwnerThatIsDestroyedTakesTheDialogWithIt) {
    const HWND owner = newOwner();
    CmsLinkSettings settings = settingsFor("");
    const CmsLinkSettings before = settings;
    EXPECT_EQ(editLink(
                  settings,
                  [&](const DialogWindow& dialog) {
                      dialog.type(IDC_LINK_BASE, L"changed");
                      postDestruction(owner);
                      EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
                  },
                  owner),
              0);
    EXPECT_FALSE(::IsWindow(owner));
    EXPECT_TRUE(unchanged(settings, before));
}

TEST(DeviceLinkLifetime, AnOwnerMayGoWhileTheDialogHasSomethingOpen) {
    const TempFolder folder;
    // What Create says, the file dialog, the colour dialog.
    for (const int button : {IDOK, IDC_LINK_BROWSE_BASE, IDC_LINK_SWATCH}) {
        const HWND owner = newOwner();
        CmsLinkSettings settings = settingsFor(folder.path("made.icc"));
        const CmsLinkSettings before = settings;
        EXPECT_EQ(editLink(
                      settings,
                      [&](const DialogWindow& dialog) {
                          dialog.press(button);
                          const DialogWindow open = dialog.asked();
                          postDestruction(owner);
                          EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
                          EXPECT_TRUE(eventually([&] { return !open.isOpen(); }));
                      },
                      owner),
                  0)
            << button;
        EXPECT_TRUE(unchanged(settings, before)) << button;
    }
}

TEST(DeviceLinkLifetime, ASecondOpeningFromTheMessageLoopDoesNotDisturbTheFirst) {
    const TempFolder folder;
    const HWND owner = newOwner();
    CmsLinkSettings outer = settingsFor(folder.path("outer.icc"));
    CmsLinkSettings inner = settingsFor(folder.path("inner.icc"));
    inner.paperC = 50;
    int32_t innerResult = -1;
    EXPECT_EQ(editLink(
                  outer,
                  [&](const DialogWindow& dialog) {
                      dialog.enter(IDC_LINK_AMOUNT, L"30", IDCANCEL);
                      postCall(owner, [&] { innerResult = jCmsDeviceLinkDlg(owner, &inner); });
                      HWND second = nullptr;
                      ASSERT_TRUE(eventually([&] {
                          second = ::GetLastActivePopup(owner);
                          return second != owner && second != dialog.handle() &&
                                 ::IsWindowVisible(second);
                      }));
                      const DialogWindow other(second);
                      EXPECT_EQ(other.text(IDC_LINK_AMOUNT), L"78");
                      other.enter(IDC_LINK_AMOUNT, L"60", IDCANCEL);
                      other.press(IDOK);
                      other.asked().press(IDOK);
                      EXPECT_TRUE(eventually([&] { return !other.isOpen(); }));
                      EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"30");
                      dialog.press(IDOK);
                      dialog.asked().press(IDOK);
                      EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
                  },
                  owner),
              1);
    ::DestroyWindow(owner);
    EXPECT_EQ(innerResult, 1);
    EXPECT_EQ(outer.limit, 76);
    EXPECT_EQ(inner.limit, 153);
    EXPECT_TRUE(exists(folder.path("inner.icc")));
    EXPECT_TRUE(exists(folder.path("outer.icc")));
}

TEST(DeviceLinkLifetime, ASecondPressOfCreateWaitsForNoSecondBuild) {
    const HWND owner = newOwner();
    CmsLinkSettings settings = settingsFor("");  // nothing can be written, so the dialog stays
    editLink(
        settings,
        [&](const DialogWindow& dialog) {
            postCall(owner, [&] {
                for (int time = 0; time < 3; ++time) {
                    ::PostMessageW(dialog.handle(), WM_COMMAND, IDOK, 0);
                    ::PostMessageW(dialog.item(IDOK), BM_CLICK, 0, 0);
                }
            });
            const DialogWindow message = dialog.asked();
            ::SendMessageW(message.handle(), WM_NULL, 0, 0);
            message.press(IDOK);
            dialog.waitForQuiet();  // fails when another message has opened
            EXPECT_TRUE(dialog.isOpen());
        },
        owner);
    ::DestroyWindow(owner);
}

std::atomic<int> received, marks;
LRESULT CALLBACK countInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    received += message == WM_KEYDOWN || message == WM_LBUTTONDOWN;
    marks += message == WM_APP;
    return ::DefWindowProcW(window, message, wParam, lParam);
}

TEST(DeviceLinkLifetime, KeysAndClicksThatWaitedForTheBuildAreForgotten) {
    received = marks = 0;
    WNDCLASSW description{};
    description.lpfnWndProc = countInput;
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.lpszClassName = L"DialogTestsReceiver";
    ::RegisterClassW(&description);
    const HWND receiver = ::CreateWindowExW(0, description.lpszClassName, L"", 0, 0, 0, 1, 1,
                                            nullptr, nullptr, description.hInstance, nullptr);
    const HWND owner = newOwner();
    const auto pressThen = [&](int command) {
        CmsLinkSettings settings = settingsFor("");
        editLink(
            settings,
            [&](const DialogWindow& dialog) {
                postCall(owner, [&] {
                    ::PostMessageW(dialog.handle(), WM_COMMAND, static_cast<WPARAM>(command), 0);
                    ::PostMessageW(receiver, WM_KEYDOWN, VK_RETURN, 0);
                    ::PostMessageW(receiver, WM_LBUTTONDOWN, 0, 0);
                });
                if (command == IDOK) dialog.asked().press(IDOK);
                dialog.waitForQuiet();
                // Behind whatever still waits.
                const int before = marks;
                ::PostMessageW(receiver, WM_APP, 0, 0);
                EXPECT_TRUE(eventually([&] { return marks > before; }));
            },
            owner);
    };
    pressThen(IDC_LINK_SHOW_PAPER);  // nothing waits: both arrive
    EXPECT_EQ(received, 2);
    pressThen(IDOK);
    EXPECT_EQ(received, 2);
    ::DestroyWindow(owner);
    ::DestroyWindow(receiver);
}

// Looks at the dialog when the message that tells of the build is being made: nothing that the
// build has covered with its work could have been painted since.
HWND watched;
int unpainted, windowsMade;
LRESULT CALLBACK whenAWindowIsMade(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_CREATEWND) {
        ++windowsMade;
        for (HWND at = ::GetWindow(watched, GW_CHILD); at; at = ::GetWindow(at, GW_HWNDNEXT))
            unpainted += ::GetUpdateRect(at, nullptr, FALSE) != FALSE;
        unpainted += ::GetUpdateRect(watched, nullptr, FALSE) != FALSE;
    }
    return ::CallNextHookEx(nullptr, code, wParam, lParam);
}

TEST(DeviceLinkLifetime, TheDialogIsPaintedWhileTheLinkIsBuilt) {
    const HWND owner = newOwner();
    CmsLinkSettings settings = settingsFor("");
    editLink(
        settings,
        [&](const DialogWindow& dialog) {
            watched = dialog.handle();
            unpainted = windowsMade = 0;
            HHOOK hook = nullptr;
            postCall(owner, [&] {
                ::RedrawWindow(watched, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
                hook = ::SetWindowsHookExW(WH_CBT, whenAWindowIsMade, nullptr,
                                           ::GetCurrentThreadId());
                ::SendMessageW(watched, WM_COMMAND, IDOK, 0);
            });
            EXPECT_EQ(closeMessage(dialog), kNotWritten);
            dialog.waitForQuiet();
            EXPECT_TRUE(::UnhookWindowsHookEx(hook));
        },
        owner);
    ::DestroyWindow(owner);
    EXPECT_GT(windowsMade, 0);
    EXPECT_EQ(unpainted, 0);
}

TEST(DeviceLinkLifetime, CommandsDuringAMessageAreIgnored) {
    const TempFolder folder;
    const HWND owner = newOwner();
    CmsLinkSettings settings = settingsFor(folder.path("made.icc"));
    EXPECT_EQ(editLink(
                  settings,
                  [&](const DialogWindow& dialog) {
                      dialog.press(IDOK);
                      const DialogWindow message = dialog.asked();
                      for (const int command : {IDC_LINK_SATURATION, IDC_LINK_BROWSE_BASE,
                                                IDC_LINK_SWATCH, IDOK, IDCANCEL})
                          ::SendMessageW(dialog.handle(), WM_COMMAND,
                                         static_cast<WPARAM>(command), 0);
                      ::SendMessageW(dialog.handle(), WM_CLOSE, 0, 0);
                      message.press(IDOK);
                      EXPECT_TRUE(eventually([&] { return !dialog.isOpen(); }));
                  },
                  owner),
              1);
    EXPECT_EQ(settings.intent, 0);
    ::DestroyWindow(owner);
}

TEST(DeviceLinkLifetime, TheCursorIsTheOneFromBeforeTheBuild) {
    CmsLinkSettings settings = settingsFor("");
    const HCURSOR before = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32515));  // a cross
    for (const std::string& source : {std::string(), testData("CGATS001Compat-v2-micro.icc")}) {
        source.copy(settings.sourcePath, 259);
        ::SetCursor(before);
        CmykProfile* const made = jKoCmykCombineProfile(&settings);
        EXPECT_EQ(::GetCursor(), before);
        EXPECT_EQ(jKoCmykReleaseProfile(made), 1);
    }
}

TEST(DeviceLinkLifetime, MessagesInAnyOrderDoNoHarm) {
    CmsLinkSettings settings = settingsFor("");  // nothing can be written, so the dialog stays
    constexpr int kCommands[] = {IDOK, IDC_LINK_SHOW_PAPER, IDC_LINK_BASE, IDC_LINK_BROWSE_BASE,
                                 IDC_LINK_OUTPUT, IDC_LINK_SATURATION, IDC_LINK_WHITE_GIVEN,
                                 IDC_LINK_WHITE_NO_INK, IDC_LINK_SWATCH, IDC_LINK_AMOUNT, 0, 9999};
    constexpr UINT kMessages[] = {WM_COMMAND, WM_COMMAND, WM_COMMAND, WM_INITDIALOG, WM_DRAWITEM,
                                  WM_CTLCOLOREDIT, WM_DROPFILES, WM_PAINT, WM_SETFOCUS,
                                  WM_KILLFOCUS, WM_ENABLE, WM_TIMER, WM_NOTIFY, WM_USER + 1};
    for (uint32_t seed = 1; seed <= 3; ++seed) {
        std::mt19937 random(seed);
        editLink(settings, [&](const DialogWindow& dialog) {
            for (int step = 0; step < 300 && dialog.isOpen(); ++step) {
                const UINT message = kMessages[random() % std::size(kMessages)];
                const WORD command =
                    static_cast<WORD>(kCommands[random() % std::size(kCommands)]);
                const WORD notification = static_cast<WORD>(random() % 3 ? 0 : random() & 0x7ff);
                const WPARAM parameter =
                    message == WM_COMMAND ? MAKEWPARAM(command, notification) : 0;
                ::PostMessageW(dialog.handle(), message, parameter, 0);
                // The dialog goes on as soon as what this opened has been cancelled.
                ASSERT_TRUE(eventually([&] {
                    if (!dialog.isOpen()) return true;
                    ::SendMessageW(dialog.handle(), WM_NULL, 0, 0);
                    const HWND open = ::GetLastActivePopup(dialog.handle());
                    if (!open || open == dialog.handle())
                        return ::IsWindowEnabled(dialog.handle()) != FALSE;
                    ::PostMessageW(open, WM_COMMAND, IDCANCEL, 0);
                    ::PostMessageW(open, WM_COMMAND, IDOK, 0);
                    return false;
                })) << seed << ' ' << step;
            }
            EXPECT_TRUE(dialog.isOpen());
        });
    }
}

TEST(DeviceLinkLifetime, TwoHundredOpeningsLeaveNothingBehind) {
    const auto use = [] {
        CmsLinkSettings settings = settingsFor("");
        editLink(settings, [](const DialogWindow& dialog) {
            dialog.enter(IDC_LINK_BASE, L"\x0e01", IDCANCEL);  // refused, in red
            dialog.click(IDC_LINK_WHITE_NO_INK);
            dialog.click(IDC_LINK_WHITE_GIVEN);
            ::RedrawWindow(dialog.handle(), nullptr, nullptr,
                           RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
            dialog.click(IDCANCEL);
        });
    };
    use();
    const unsigned objects = drawingObjects(), places = windows();
    for (int time = 0; time < 200; ++time) use();
    EXPECT_LT(drawingObjects(), objects + 40);
    EXPECT_LT(windows(), places + 40);
}

TEST(DeviceLinkLifetime, TenThousandPastedCharactersAreRefusedOrClampedInEveryField) {
    CmsLinkSettings settings = settingsFor("");
    for (const wchar_t character : {L'9', L'漢', L'\x263a', L'\0'}) {
        const std::wstring text(10000, character ? character : L' ');
        onClipboard(text);
        editLink(settings, [&](const DialogWindow& dialog) {
            for (const int field : {IDC_LINK_BASE, IDC_LINK_SOURCE, IDC_LINK_DESTINATION,
                                    IDC_LINK_BLACK, IDC_LINK_OUTPUT, IDC_LINK_AMOUNT}) {
                const size_t limit = field == IDC_LINK_AMOUNT ? 3 : 1000;
                dialog.focus(field);
                ::SendMessageW(dialog.item(field), EM_SETSEL, 0, -1);
                ::SendMessageW(dialog.item(field), WM_PASTE, 0, 0);
                EXPECT_LE(dialog.text(field).size(), limit);
                dialog.focus(IDCANCEL);
                // Without the control's limit, as another program may set it.
                ::SendMessageW(dialog.item(field), WM_SETTEXT, 0,
                               reinterpret_cast<LPARAM>(text.c_str()));
                dialog.focus(field);
                dialog.focus(IDCANCEL);
            }
            EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), character == L'9' ? L"400" : L"0");
            // As it was typed, to be put right; of blanks alone no path is left.
            for (const int field : kLinkEdits)
                EXPECT_EQ(dialog.text(field), character ? text : std::wstring());
        });
    }
}

// The procedure as a host runs it.
HMODULE library() { return ::GetModuleHandleW(L"KoLink.dll"); }

TEST(DeviceLinkProcedure, AHostMayRunItWithTheLibrarysTemplate) {
    const TempFolder folder;
    // Its plain name, on 32 bits as well.
    const auto procedure = reinterpret_cast<DLGPROC>(
        reinterpret_cast<void*>(::GetProcAddress(library(), "jCmsDeviceLinkDlgProc")));
    ASSERT_NE(procedure, nullptr);
    for (const bool wideCall : {false, true}) {
        CmsLinkSettings settings = settingsFor(folder.path("made.icc"));
        INT_PTR result = -7;
        const auto parameter = reinterpret_cast<LPARAM>(&settings);
        openDialog(
            [&] {
                result = wideCall ? ::DialogBoxParamW(library(), L"CMSLINKDLG", nullptr,
                                                      jCmsDeviceLinkDlgProc, parameter)
                                  : ::DialogBoxParamA(library(), "CMSLINKDLG", nullptr, procedure,
                                                      parameter);
            },
            [&](const DialogWindow& dialog) {
                if (wideCall || ::GetACP() == 932) {
                    EXPECT_EQ(dialog.caption(), shown(L"ﾃﾞﾊﾞｲｽﾘﾝｸ"));
                }
                dialog.enter(IDC_LINK_AMOUNT, L"50", IDCANCEL);
                EXPECT_EQ(settings.limit, 200);  // written at the end, not before
                EXPECT_EQ(create(dialog), kMade);
            });
        EXPECT_EQ(result, 1);
        EXPECT_EQ(settings.limit, 127);
    }
}

TEST(DeviceLinkProcedure, CancelInAHostsHandsLeavesTheRecord) {
    CmsLinkSettings settings = settingsFor("");
    const CmsLinkSettings before = settings;
    INT_PTR result = -7;
    openDialog(
        [&] {
            result = ::DialogBoxParamW(library(), L"CMSLINKDLG", nullptr, jCmsDeviceLinkDlgProc,
                                       reinterpret_cast<LPARAM>(&settings));
        },
        [&](const DialogWindow& dialog) {
            dialog.enter(IDC_LINK_AMOUNT, L"50", IDCANCEL);
            dialog.click(IDCANCEL);
        });
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(unchanged(settings, before));
}

TEST(DeviceLinkProcedure, WithoutARecordItBeginsWithFreshSettings) {
    const TempFolder folder;
    INT_PTR result = -7;
    openDialog(
        [&] {
            result = ::DialogBoxParamW(library(), L"CMSLINKDLG", nullptr, jCmsDeviceLinkDlgProc, 0);
        },
        [&](const DialogWindow& dialog) {
            EXPECT_EQ(dialog.text(IDC_LINK_AMOUNT), L"78");
            dialog.enter(IDC_LINK_OUTPUT, wide(folder.path("made.icc")), IDCANCEL);
            EXPECT_EQ(create(dialog), kMade);
        });
    EXPECT_EQ(result, 1);
    EXPECT_TRUE(exists(folder.path("made.icc")));
}

TEST(DeviceLinkProcedure, AModelessDialogThatIsDestroyedLeavesNothingBehind) {
    CmsLinkSettings settings = settingsFor("");
    const unsigned places = windows();
    for (int time = 0; time < 100; ++time) {
        const HWND dialog = ::CreateDialogParamW(library(), L"CMSLINKDLG", nullptr,
                                                 jCmsDeviceLinkDlgProc,
                                                 reinterpret_cast<LPARAM>(&settings));
        ASSERT_NE(dialog, nullptr);
        ::SetDlgItemTextW(dialog, IDC_LINK_BASE, L"changed");
        ::DestroyWindow(dialog);
        EXPECT_EQ(jCmsDeviceLinkDlgProc(dialog, WM_COMMAND, IDOK, 0), FALSE);
    }
    EXPECT_LT(windows(), places + 40);
    EXPECT_STREQ(settings.basePath, "");
}

TEST(DeviceLinkProcedure, AnswersFalseForWindowsThatAreNotItsDialog) {
    CmsLinkSettings settings = settingsFor("");
    const HWND owner = newOwner();
    const HWND other = ::CreateWindowExW(0, L"#32770", L"", WS_POPUP, 0, 0, 10, 10, owner, nullptr,
                                         nullptr, nullptr);
    ::SetWindowLongPtrW(other, DWLP_USER, 0x1234);  // another program's data
    for (const HWND window : {HWND{}, owner, other, ::GetDesktopWindow(),
                              reinterpret_cast<HWND>(0x7ffffffc)})
        for (const UINT message : {UINT{WM_COMMAND}, UINT{WM_PAINT}, UINT{WM_DRAWITEM},
                                   UINT{WM_CTLCOLOREDIT}, UINT{WM_NCDESTROY}, UINT{WM_CLOSE},
                                   UINT{WM_INITDIALOG}})
            for (const WPARAM command : {IDOK, IDCANCEL, IDC_LINK_SWATCH, IDC_LINK_SHOW_PAPER})
                EXPECT_EQ(jCmsDeviceLinkDlgProc(window, message, command,
                                                message == WM_INITDIALOG
                                                    ? reinterpret_cast<LPARAM>(&settings)
                                                    : 0),
                          FALSE)
                    << window << ' ' << message;
    ::DestroyWindow(owner);
}

INT_PTR CALLBACK keepEverything(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

TEST(DeviceLinkProcedure, BeforeItsFirstMessageAndAfterItsLastItDoesNothing) {
    const HWND dialog =
        ::CreateDialogParamW(library(), L"CMSLINKDLG", nullptr, keepEverything, 0);
    ASSERT_NE(dialog, nullptr);
    for (const WPARAM command : {IDOK, IDCANCEL, IDC_LINK_BROWSE_BASE, IDC_LINK_SHOW_PAPER})
        EXPECT_EQ(jCmsDeviceLinkDlgProc(dialog, WM_COMMAND, command, 0), FALSE);
    CmsLinkSettings settings = settingsFor("");
    EXPECT_EQ(jCmsDeviceLinkDlgProc(dialog, WM_INITDIALOG, 0, reinterpret_cast<LPARAM>(&settings)),
              TRUE);
    // A second one changes nothing.
    EXPECT_EQ(jCmsDeviceLinkDlgProc(dialog, WM_INITDIALOG, 0, 0), FALSE);
    EXPECT_EQ(jCmsDeviceLinkDlgProc(dialog, WM_NCDESTROY, 0, 0), FALSE);
    EXPECT_EQ(jCmsDeviceLinkDlgProc(dialog, WM_COMMAND, IDOK, 0), FALSE);
    ::DestroyWindow(dialog);
}

}  // namespace
