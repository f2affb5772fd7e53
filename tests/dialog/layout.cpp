#include "tests/dialog/layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>

#include "tests/dialog/language.h"

namespace ko::test {
namespace {

LONG styleOf(HWND control) { return ::GetWindowLongW(control, GWL_STYLE); }
LONG buttonType(HWND control) { return styleOf(control) & BS_TYPEMASK; }

bool isPage(HWND control) { return classOf(control) == L"#32770"; }
bool isFrame(HWND control) {  // what stands around others
    return isPage(control) || classOf(control) == L"SysTabControl32" ||
           (classOf(control) == L"Button" && buttonType(control) == BS_GROUPBOX);
}
bool isSpin(HWND control) { return classOf(control) == L"msctls_updown32"; }
bool isOwnPicture(HWND control) {
    return classOf(control).starts_with(L"KoLink") ||
           (classOf(control) == L"Static" && (styleOf(control) & SS_TYPEMASK) == SS_OWNERDRAW) ||
           (classOf(control) == L"Button" && buttonType(control) == BS_OWNERDRAW);
}

void collect(HWND parent, std::vector<HWND>& controls) {
    for (HWND at = ::GetWindow(parent, GW_CHILD); at; at = ::GetWindow(at, GW_HWNDNEXT)) {
        if (!(styleOf(at) & WS_VISIBLE)) continue;
        controls.push_back(at);
        if (isPage(at)) collect(at, controls);
    }
}

SIZE needed(HWND control, const std::wstring& text) {
    const HDC dc = ::GetDC(control);
    const auto font = reinterpret_cast<HGDIOBJ>(::SendMessageW(control, WM_GETFONT, 0, 0));
    const HGDIOBJ before = ::SelectObject(dc, font);
    RECT area{};
    ::DrawTextW(dc, text.c_str(), -1, &area, DT_CALCRECT);
    const int dpi = ::GetDeviceCaps(dc, LOGPIXELSX);
    ::SelectObject(dc, before);
    ::ReleaseDC(control, dc);
    SIZE size{area.right, area.bottom};
    if (classOf(control) == L"Button") {
        // The box and its distance, or the edges of a push button.
        const LONG type = buttonType(control);
        size.cx += (type == BS_AUTOCHECKBOX || type == BS_AUTORADIOBUTTON ? 17 : 8) * dpi / 96;
    }
    return size;
}

// The line that says what was limited or refused is empty until then; its texts may wrap.
bool isNotice(HWND control) { return ::GetDlgCtrlID(control) == IDC_STATUS; }
// So are the lines that say what a file is; they end in dots where they have to.
bool isFact(HWND control) {
    const int id = ::GetDlgCtrlID(control);
    if (id >= IDC_CUBE_BEFORE_LAB && id <= IDC_CUBE_DIFFERENCE) return true;  // empty without links
    return id >= IDC_LINK_FACT_BASE && id <= IDC_LINK_FACT_BLACK;
}
struct Notice {
    const wchar_t* text;
    int where;  // a control of the dialogs that say it; 0: all of them
};
constexpr Notice kNotices[] = {{L"数値ではありません。", 0},
                               {L"0 % ～ 100 % に制限しました。", 0},
                               {L"0 ～ 255 の範囲外です。", 0},
                               {L"ﾊﾟｽが259ﾊﾞｲﾄを超えています。", IDC_LINK_SWATCH},
                               {L"ｼｽﾃﾑのｺｰﾄﾞﾍﾟｰｼﾞにない文字が名前にあります。", IDC_LINK_SWATCH},
                               {L"35937 格子点 変更しました。", IDC_CUBE_CHANGED_SPIN_C}};

// The longest that such a line can say against a file.
constexpr const wchar_t* kReasons[] = {
    L"CMYKからLabへのﾌﾟﾛﾌｧｲﾙです。ここにはCMYKからCMYKへのﾃﾞﾊﾞｲｽﾘﾝｸが必要です。",
    L"ﾃﾞﾊﾞｲｽﾘﾝｸです。ここにはLabかXYZにつながるﾌﾟﾛﾌｧｲﾙが必要です。",
    L"CMYKにつながるﾌﾟﾛﾌｧｲﾙです。LabかXYZにつながるものが必要です。",
    L"ﾀｸﾞA2B0は4ﾁｬﾝﾈﾙから3ﾁｬﾝﾈﾙへの変換です。4から4への変換が必要です。"};

void expectNoticesFit(HWND control) {
    RECT client;
    ::GetClientRect(control, &client);
    const HDC dc = ::GetDC(control);
    const auto font = reinterpret_cast<HGDIOBJ>(::SendMessageW(control, WM_GETFONT, 0, 0));
    const HGDIOBJ before = ::SelectObject(dc, font);
    for (const Notice& notice : kNotices) {
        if (notice.where && !::GetDlgItem(::GetParent(control), notice.where)) continue;
        RECT area{0, 0, client.right, 0};
        ::DrawTextW(dc, shown(notice.text).c_str(), -1, &area, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
        EXPECT_LE(area.right, client.right) << "notice " << (&notice - kNotices);
        EXPECT_LE(area.bottom, client.bottom) << "notice " << (&notice - kNotices);
    }
    ::SelectObject(dc, before);
    ::ReleaseDC(control, dc);
}

std::wstring widest(std::wstring text, HWND control) {
    if (text == L"0 %") return L"100 %";
    if (text == L"0" && classOf(control) == L"Edit") return L"100";
    return text;
}

}  // namespace

std::vector<HWND> controlsOf(HWND dialog) {
    std::vector<HWND> controls;
    collect(dialog, controls);
    return controls;
}

RECT placeOf(HWND control, HWND dialog) {
    RECT area;
    ::GetWindowRect(control, &area);
    ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

std::wstring textOf(HWND control) {
    wchar_t text[300] = {};
    ::SendMessageW(control, WM_GETTEXT, 300, reinterpret_cast<LPARAM>(text));
    return text;
}

std::wstring classOf(HWND control) {
    wchar_t name[32] = {};
    ::GetClassNameW(control, name, 32);
    return name;
}

void expectTextFits(HWND control) {
    RECT client;
    ::GetClientRect(control, &client);
    const SIZE size = needed(control, textOf(control));
    EXPECT_LE(size.cx, client.right) << ::GetDlgCtrlID(control);
    EXPECT_LE(size.cy, client.bottom) << ::GetDlgCtrlID(control);
}

void expectTextsFit(const DialogWindow& dialog) {
    int texts = 0;
    for (const HWND control : controlsOf(dialog.handle())) {
        const bool isList = classOf(control) == L"ComboBox" || classOf(control) == L"ListBox";
        const RECT place = placeOf(control, dialog.handle());
        const bool isLong = classOf(control) == L"Edit" &&  // scrolls
                            ((styleOf(control) & WS_VSCROLL) != 0 ||
                             ((styleOf(control) & ES_AUTOHSCROLL) != 0 && place.right - place.left > 100));
        if (isOwnPicture(control) || isFrame(control) || isSpin(control) || isList || isLong) continue;
        RECT client;
        ::GetClientRect(control, &client);
        if (isFact(control)) {
            const bool ofFile = ::GetDlgCtrlID(control) < IDC_CUBE_BEFORE_LAB;
            for (const wchar_t* const reason : kReasons)
                if (ofFile)
                    EXPECT_LE(needed(control, shown(reason)).cx, client.right)
                        << shown(reason).size();
            continue;
        }
        if (isNotice(control)) {
            expectNoticesFit(control);
            continue;
        }
        const SIZE size = needed(control, widest(textOf(control), control));
        EXPECT_LE(size.cx, client.right) << ::GetDlgCtrlID(control) << " at " << texts;
        EXPECT_LE(size.cy, client.bottom) << ::GetDlgCtrlID(control) << " at " << texts;
        ++texts;
    }
    EXPECT_GT(texts, 4);
}

void expectNothingIsCovered(const DialogWindow& dialog) {
    RECT client;
    ::GetClientRect(dialog.handle(), &client);
    const auto controls = controlsOf(dialog.handle());
    for (size_t a = 0; a < controls.size(); ++a) {
        const RECT first = placeOf(controls[a], dialog.handle());
        EXPECT_TRUE(first.left >= 0 && first.top >= 0 && first.right <= client.right &&
                    first.bottom <= client.bottom)
            << ::GetDlgCtrlID(controls[a]);
        for (size_t b = a + 1; b < controls.size(); ++b) {
            // A spin control stands within the edge of its field.
            if (isFrame(controls[a]) || isFrame(controls[b]) || isSpin(controls[b])) continue;
            const RECT second = placeOf(controls[b], dialog.handle());
            RECT both;
            EXPECT_FALSE(::IntersectRect(&both, &first, &second))
                << ::GetDlgCtrlID(controls[a]) << ' ' << ::GetDlgCtrlID(controls[b]);
        }
    }
}

namespace {
// As a screen reader finds it: a field and a list have the label before them, shown or hidden.
std::wstring nameOf(HWND control) {
    if (classOf(control) != L"Edit" && classOf(control) != L"ComboBox") return textOf(control);
    const HWND before = ::GetWindow(control, GW_HWNDPREV);
    return before && classOf(before) == L"Static" ? textOf(before) : std::wstring();
}
bool hasALetter(const std::wstring& name) {
    return std::any_of(name.begin(), name.end(), [](wchar_t c) { return ::IsCharAlphaW(c); });
}
}  // namespace

void expectEveryControlHasAName(const DialogWindow& dialog) {
    std::set<std::wstring> ofFields;
    for (const HWND control : controlsOf(dialog.handle())) {
        if (isFrame(control) || isSpin(control) || isNotice(control) || isFact(control))
            continue;
        const std::wstring name = nameOf(control);
        EXPECT_FALSE(name.empty()) << ::GetDlgCtrlID(control);
        if (classOf(control) != L"Edit" && classOf(control) != L"ComboBox") continue;
        EXPECT_TRUE(hasALetter(name)) << ::GetDlgCtrlID(control);  // more than an arrow or a unit
        EXPECT_TRUE(ofFields.insert(name).second) << ::GetDlgCtrlID(control) << " has another's";
    }
}

void expectEveryLetterHasAGlyph(const DialogWindow& dialog) {
    for (const HWND control : controlsOf(dialog.handle())) {
        if (classOf(control) != L"Static" && classOf(control) != L"Button") continue;
        std::wstring text = textOf(control);
        std::erase(text, L'\n');  // of several lines
        std::vector<WORD> glyphs(text.size() + 1);
        const HDC dc = ::GetDC(control);
        const auto font = reinterpret_cast<HGDIOBJ>(::SendMessageW(control, WM_GETFONT, 0, 0));
        const HGDIOBJ before = ::SelectObject(dc, font);
        ::GetGlyphIndicesW(dc, text.c_str(), static_cast<int>(text.size()), glyphs.data(),
                           GGI_MARK_NONEXISTING_GLYPHS);
        ::SelectObject(dc, before);
        ::ReleaseDC(control, dc);
        EXPECT_EQ(std::count(glyphs.begin(), glyphs.end(), 0xffff), 0) << ::GetDlgCtrlID(control);
    }
}

void expectALook(const DialogWindow& dialog) {
    expectEveryLetterHasAGlyph(dialog);
    expectTextsFit(dialog);
    expectNothingIsCovered(dialog);
    expectEveryControlHasAName(dialog);
}

int Picture::count(uint32_t colour) const {
    return static_cast<int>(std::count_if(pixels.begin(), pixels.end(), [&](uint32_t pixel) {
        return (pixel & 0xffffff) == colour;
    }));
}

namespace {
Picture onTheScreen(const DialogWindow& dialog) {
    RECT area;
    ::GetWindowRect(dialog.handle(), &area);
    Picture picture;
    picture.width = area.right - area.left;
    picture.height = area.bottom - area.top;
    BITMAPINFO form{};
    form.bmiHeader = {sizeof form.bmiHeader, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC screen = ::GetDC(nullptr), memory = ::CreateCompatibleDC(screen);
    const HBITMAP bitmap = ::CreateDIBSection(screen, &form, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = ::SelectObject(memory, bitmap);
    ::BitBlt(memory, 0, 0, picture.width, picture.height, screen, area.left, area.top, SRCCOPY);
    ::GdiFlush();
    const auto* const first = static_cast<const uint32_t*>(bits);
    picture.pixels.assign(first, first + static_cast<size_t>(picture.width) *
                                             static_cast<size_t>(picture.height));
    ::SelectObject(memory, before);
    ::DeleteObject(bitmap);
    ::DeleteDC(memory);
    ::ReleaseDC(nullptr, screen);
    return picture;
}
}  // namespace

Picture pictureOf(const DialogWindow& dialog) {
    ::RedrawWindow(dialog.handle(), nullptr, nullptr,
                   RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    // What is painted reaches the screen a little later.
    Picture picture = onTheScreen(dialog);
    EXPECT_TRUE(eventually([&] {
        ::Sleep(60);
        Picture now = onTheScreen(dialog);
        std::swap(picture, now);
        return picture.pixels == now.pixels;
    }));
    return picture;
}

void keepPicture(const Picture& picture, const std::string& name) {
    const char* const folder = std::getenv("KOLINK_PICTURES");
    if (!folder) return;
    const std::string path = std::string(folder) + "/" + name + ".bmp";
    const auto size = static_cast<DWORD>(picture.pixels.size() * 4);
    BITMAPFILEHEADER file{};
    file.bfType = 0x4d42;
    file.bfOffBits = sizeof file + sizeof(BITMAPINFOHEADER);
    file.bfSize = file.bfOffBits + size;
    const BITMAPINFOHEADER form{sizeof form, picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    ASSERT_NE(out, nullptr) << path;
    std::fwrite(&file, sizeof file, 1, out);
    std::fwrite(&form, sizeof form, 1, out);
    std::fwrite(picture.pixels.data(), 4, picture.pixels.size(), out);
    std::fclose(out);
}

std::string language() {
    switch (PRIMARYLANGID(::GetUserDefaultUILanguage())) {
        case LANG_JAPANESE: return "ja";
        case LANG_CHINESE: return "zh";
        default: return "en";
    }
}

}  // namespace ko::test
