// A Windows host: its menu opens every dialog of the library, and its window shows what came back.
//
// Two things that any host of modal dialogs has to mind. While a dialog is open its own message
// loop runs, so that commands and WM_CLOSE still arrive here: they are refused until it is closed.
// And the owner's window may be destroyed meanwhile: what the host knows lives in WinMain, not with
// the window, and no control is touched once the window has gone.
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <commdlg.h>
#include <shellapi.h>

#include <algorithm>
#include <cstring>
#include <string>

#include <kolink.h>
#include <kolink/calib_dialog.h>
#include <kolink/colour_pick_dialog.h>
#include <kolink/device_link_dialog.h>
#include <kolink/profile_dialog.h>
#include <kolink/profile_selection_dialog.h>
#include <kolink/tone_dialog.h>

#include "host_ids.h"

namespace {

#ifndef HOST_TITLE
#define HOST_TITLE L"KoLink host"
#endif

using Path = char[KOLINK_PATH_SIZE];  // in the system's code page, as the library takes them

constexpr uint32_t kLink = 0x6c696e6b, kCmyk = 0x434d594b;  // ICC signatures

// A saved link that colours are converted through: its input curves, its grid, its output curves.
class Link {
public:
    Link() = default;
    ~Link() { jKoCmykReleaseProfile(profile_); }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    bool load(const char* path) {
        jKoCmykReleaseProfile(profile_);
        profile_ = isLink(path) ? jKoCmykCreateProfile() : nullptr;
        if (profile_ && jKoCmykLoadProfile(profile_, path))
            return jKoCmykMakeCurveTables(profile_, &curves_) == 1;
        jKoCmykReleaseProfile(profile_);
        profile_ = nullptr;
        return false;
    }
    bool isLoaded() const { return profile_ != nullptr; }
    void convert(int32_t (&inks)[4]) const {  // levels 0 to 255 in, 16 times that out
        uint8_t in[4];
        uint16_t out[4];
        std::copy(inks, inks + 4, in);
        jKoCmykLinkCMYKtoCMYK16Row(profile_, &curves_, in, 1, out);
        std::copy(out, out + 4, inks);
    }

private:
    static bool isLink(const char* path) {
        IccProfile* const header = jIccLoadHeader(path);
        const bool result = header && header->header.deviceClass == kLink &&
                            header->header.colourSpace == kCmyk &&
                            header->header.connectionSpace == kCmyk;
        if (header) jIccRelease(header);
        return result;
    }
    CmykProfile* profile_ = nullptr;
    CmykCurveTables curves_ = {};  // of the profile
};

struct Host {
    HWND window = nullptr;  // null before it is made and after it is gone
    bool isCalling = false;  // a dialog is open
    uint32_t colour = 0;     // C in the highest byte, then M, Y, K
    CmsLinkSettings settings;
    ProfileSelection selection = {};
    Link link;
    Path linkPath = {};
};

// While one lives, a dialog of the library or of the system is open.
class Calling {
public:
    explicit Calling(Host& host) : host_(host) { host_.isCalling = true; }
    ~Calling() { host_.isCalling = false; }
    Calling(const Calling&) = delete;

private:
    Host& host_;
};

std::wstring wide(const char* path) {
    const int size = MultiByteToWideChar(CP_ACP, 0, path, -1, nullptr, 0);
    if (size <= 1) return {};
    std::wstring result(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, path, -1, &result[0], size);
    result.pop_back();
    return result;
}

// False when the system's code page has no such name, or it is too long for the library.
bool toPath(const wchar_t* name, Path& path) {
    BOOL replaced = FALSE;
    const int size = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name, -1, path,
                                         static_cast<int>(sizeof path), nullptr, &replaced);
    if (size > 0 && !replaced) return true;
    path[0] = '\0';
    return false;
}

void say(Host& host, const std::wstring& line) {
    if (!host.window) return;
    const HWND calls = GetDlgItem(host.window, IDC_CALLS);
    if (GetWindowTextLengthW(calls) > 20000) SetWindowTextW(calls, L"");
    SendMessageW(calls, EM_SETSEL, 0x7fffffff, 0x7fffffff);
    SendMessageW(calls, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>((line + L"\r\n").c_str()));
}

void showColour(Host& host) {
    if (!host.window) return;
    const uint32_t colour = host.colour;
    wchar_t text[80];
    wsprintfW(text, L"C %d  M %d  Y %d  K %d", colour >> 24, colour >> 16 & 255,
              colour >> 8 & 255, colour & 255);
    SetDlgItemTextW(host.window, IDC_COLOUR, text);
    InvalidateRect(GetDlgItem(host.window, IDC_SWATCH), nullptr, FALSE);
}

void showSettings(Host& host) {
    if (!host.window) return;
    const CmsLinkSettings& link = host.settings;
    const ProfileSelection& selection = host.selection;
    std::wstring text = L"Device link";
    const auto path = [&](const wchar_t* name, const char* value) {
        text += std::wstring(L"\r\n  ") + name + L": " + (value[0] ? wide(value) : L"-");
    };
    const auto number = [&](const wchar_t* name, int32_t value) {
        text += std::wstring(L"\r\n  ") + name + L": " + std::to_wstring(value);
    };
    path(L"base", link.basePath);
    path(L"source", link.sourcePath);
    path(L"destination", link.destinationPath);
    path(L"black", link.blackPath);
    path(L"output", link.outputPath);
    number(L"intent", link.intent);
    number(L"preservation", link.preservation);
    number(L"white mode", link.whiteMode);
    const int32_t paper[4] = {link.paperC, link.paperM, link.paperY, link.paperK};
    text += L"\r\n  paper:";
    for (int ink = 0; ink < 4; ++ink)
        text += std::wstring(L" ") + L"CMYK"[ink] + L' ' + std::to_wstring(paper[ink]);
    number(L"limit", link.limit);
    text += L"\r\nProfiles";
    path(L"RGB", selection.rgbPath);
    path(L"CMYK", selection.cmykPath);
    number(L"intent", selection.intent);
    SetDlgItemTextW(host.window, IDC_SETTINGS, text.c_str());
}

void loadLink(Host& host, const char* path) {
    const bool loaded = host.link.load(path);
    lstrcpynA(host.linkPath, loaded ? path : "", sizeof host.linkPath);
    if (!loaded) say(host, L"no CMYK link: " + wide(path));
    if (!host.window) return;
    SetDlgItemTextW(host.window, IDC_LINK_PATH, wide(host.linkPath).c_str());
    SetDlgItemTextW(host.window, IDC_OUT, L"");
}

void convert(Host& host) {
    if (!host.link.isLoaded()) {
        SetDlgItemTextW(host.window, IDC_OUT, L"no link");
        return;
    }
    int32_t values[4];
    for (int ink = 0; ink < 4; ++ink) {
        const UINT level = std::min(GetDlgItemInt(host.window, IDC_IN_C + ink, nullptr, FALSE), 255u);
        SetDlgItemInt(host.window, IDC_IN_C + ink, level, FALSE);
        values[ink] = static_cast<int32_t>(level);
    }
    host.link.convert(values);
    std::wstring text;
    for (int ink = 0; ink < 4; ++ink) {
        const int tenths = (values[ink] * 10 + 8) / 16;
        wchar_t part[40];
        wsprintfW(part, L"%s%c %d.%d", ink ? L" " : L"", L"CMYK"[ink], tenths / 10, tenths % 10);
        text += part;
    }
    SetDlgItemTextW(host.window, IDC_OUT, text.c_str());
}

bool chooseFile(Host& host, const wchar_t* filter, Path& path) {
    wchar_t name[KOLINK_PATH_SIZE] = L"";
    OPENFILENAMEW open = {};
    open.lStructSize = sizeof open;
    open.hwndOwner = host.window;
    open.lpstrFilter = filter;
    open.lpstrFile = name;
    open.nMaxFile = KOLINK_PATH_SIZE;
    open.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_EXPLORER;
    if (!GetOpenFileNameW(&open)) return false;
    if (toPath(name, path)) return true;
    say(host, std::wstring(L"the system's code page cannot name ") + name);
    return false;
}

// New files go to the current folder: a path that ends in a backslash names one.
void newFilePath(Path& path) {
    wchar_t folder[KOLINK_PATH_SIZE];
    const DWORD length = GetCurrentDirectoryW(KOLINK_PATH_SIZE - 1, folder);
    if (length == 0 || length >= KOLINK_PATH_SIZE - 1) folder[0] = L'\0';
    else if (folder[length - 1] != L'\\') lstrcatW(folder, L"\\");
    toPath(folder, path);
}

// The calibration editor takes a set, not a path; this is what a host does around it.
int32_t editCalibration(HWND owner, char* path) {
    const size_t length = std::strlen(path);
    const bool isNew = length == 0 || path[length - 1] == '\\';
    CalibCurveSet* const set = isNew ? jKoCalibCreateCurve(4, 255, 255) : jKoCalibLoadCurve(path);
    if (!set) return 0;
    if (isNew) lstrcpynA(set->path, path, KOLINK_PATH_SIZE);
    const int32_t result = jKoCalibEditCurveDlg(owner, set);
    lstrcpynA(path, set->path, KOLINK_PATH_SIZE);
    jKoCalibReleaseCurve(set);
    return result;
}

struct Editor {
    UINT open, create;  // commands
    const wchar_t* function;
    int32_t (*edit)(HWND, char*);
    const wchar_t* filter;
};
constexpr Editor kEditors[] = {
    {IDM_TNC_OPEN, IDM_TNC_NEW, L"jKoToneCmykToneCurveDlg", jKoToneCmykToneCurveDlg,
     L"CMYK tone curves (*.tnc)\0*.tnc\0"},
    {IDM_BKC_OPEN, IDM_BKC_NEW, L"jKoToneBkcCurveDlg", jKoToneBkcCurveDlg,
     L"Black correction (*.bkc)\0*.bkc\0"},
    {IDM_DCC_OPEN, IDM_DCC_NEW, L"jKoToneDccDlg", jKoToneDccDlg, L"DCC settings (*.dcc)\0*.dcc\0"},
    {IDM_CALIB_OPEN, IDM_CALIB_NEW, L"jKoCalibEditCurveDlg", editCalibration,
     L"Calibration sets (*.clb)\0*.clb\0"},
    {IDM_PROFILE_OPEN, IDM_PROFILE_NEW, L"jKoCmykProfileDlg", jKoCmykProfileDlg,
     L"CMYK profiles (*.icc;*.icm;*.lut;*.amt)\0*.icc;*.icm;*.lut;*.amt\0"},
};

std::wstring came(const wchar_t* function, int32_t result) {
    return std::wstring(function) + L" = " + std::to_wstring(result);
}

void edit(Host& host, const Editor& editor, bool isNew) {
    Path path = {};
    if (isNew) newFilePath(path);
    else if (!chooseFile(host, editor.filter, path)) return;
    const int32_t result = editor.edit(host.window, path);
    say(host, came(editor.function, result) + L"  " + wide(path));
    if (editor.edit == jKoCmykProfileDlg && result == 1 && path[0]) loadLink(host, path);
}

// The file that the program was started with, a double click's, in the editor for its kind.
constexpr UINT kOpenGiven = WM_APP;
void openGiven(Host& host) {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    if (!words) return;
    Path path = {};
    if (count > 1 && !toPath(words[1], path))
        say(host, std::wstring(L"the system's code page cannot name ") + words[1]);
    LocalFree(words);
    const char* const extension = std::strrchr(path, '.');
    if (!extension) return;
    for (const Editor& editor : kEditors) {
        // The filter's pattern follows its name: "*.icc;*.icm".
        const std::wstring pattern = editor.filter + lstrlenW(editor.filter) + 1;
        std::wstring wanted = wide(extension);
        CharLowerW(&wanted[0]);
        if ((pattern + L';').find(L'*' + wanted + L';') == std::wstring::npos) continue;
        say(host, came(editor.function, editor.edit(host.window, path)) + L"  " + wide(path));
        return;
    }
    say(host, L"no editor for " + wide(path));
}

void pickColour(Host& host) {
    host.colour = jColorPickDlg(host.window, host.colour);
    wchar_t text[40];
    wsprintfW(text, L"jColorPickDlg = 0x%08x", host.colour);
    say(host, text);
    showColour(host);
}

// The profiles chosen become those that the dialogs show colours through.
void selectProfiles(Host& host) {
    ProfileSelection& selection = host.selection;
    const int32_t result = jColorProfileSelectDlg(host.window, &selection);
    say(host, came(L"jColorProfileSelectDlg", result));
    if (result != 1) return;
    jColorEndProfile();
    if (selection.rgbPath[0] && selection.cmykPath[0])
        say(host, came(L"jColorSetupProfile", jColorSetupProfile(selection.rgbPath,
                                                                 selection.cmykPath,
                                                                 selection.intent)));
    showSettings(host);
    showColour(host);
}

void makeLink(Host& host) {
    const int32_t result = jCmsDeviceLinkDlg(host.window, &host.settings);
    say(host, came(L"jCmsDeviceLinkDlg", result) + L"  " + wide(host.settings.outputPath));
    showSettings(host);
    if (result == 1) loadLink(host, host.settings.outputPath);
}

void openLink(Host& host) {
    Path path;
    if (chooseFile(host, L"Device links (*.icc)\0*.icc\0", path)) loadLink(host, path);
}

void command(Host& host, UINT id) {
    if (host.isCalling) return;
    const Calling calling(host);
    for (const Editor& editor : kEditors)
        if (id == editor.open || id == editor.create) edit(host, editor, id == editor.create);
    switch (id) {
        case IDM_PICK: pickColour(host); break;
        case IDM_SELECT: selectProfiles(host); break;
        case IDM_LINK: makeLink(host); break;
        case IDM_LINK_RESET:
            jCmsInitCms(&host.settings);
            showSettings(host);
            break;
        case IDM_LINK_OPEN: openLink(host); break;
        case IDC_CONVERT: convert(host); break;
        case IDM_EXIT: DestroyWindow(host.window); break;
        default: break;
    }
}

void paintSwatch(const Host& host, const DRAWITEMSTRUCT& item) {
    const uint32_t colour = host.colour;
    const HBRUSH brush = CreateSolidBrush(jColorCMYKtoRGB(
        colour >> 24, colour >> 16 & 255, colour >> 8 & 255, colour & 255));
    FillRect(item.hDC, &item.rcItem, brush);
    DeleteObject(brush);
}

void opened(Host& host) {
    SetWindowTextW(host.window, HOST_TITLE);
    for (int ink = 0; ink < 4; ++ink) {
        SendDlgItemMessageW(host.window, IDC_IN_C + ink, EM_SETLIMITTEXT, 3, 0);
        SetDlgItemInt(host.window, IDC_IN_C + ink, 0, FALSE);
    }
    showColour(host);
    showSettings(host);
}

INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<Host*>(lParam)->window = window;
        opened(*reinterpret_cast<Host*>(lParam));
        return TRUE;
    }
    Host* const host = reinterpret_cast<Host*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!host) return FALSE;
    switch (message) {
        case WM_COMMAND:
            if (HIWORD(wParam) <= 1) command(*host, LOWORD(wParam));  // menu, button, accelerator
            return TRUE;
        case kOpenGiven:
            if (!host->isCalling) {
                const Calling calling(*host);
                openGiven(*host);
            }
            return TRUE;
        case WM_DRAWITEM:
            paintSwatch(*host, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            return TRUE;
        case WM_CLOSE:
            command(*host, IDM_EXIT);
            return TRUE;
        case WM_DESTROY:
            host->window = nullptr;
            PostQuitMessage(0);
            return TRUE;
        default:
            return FALSE;
    }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int show) {
    Host host;
    jCmsInitCms(&host.settings);
    const HWND window = CreateDialogParamW(instance, MAKEINTRESOURCEW(IDR_HOST), nullptr, procedure,
                                           reinterpret_cast<LPARAM>(&host));
    if (!window) return 1;
    ShowWindow(window, show);
    PostMessageW(window, kOpenGiven, 0, 0);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (host.window && IsDialogMessageW(host.window, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    jColorEndProfile();
    return 0;
}
