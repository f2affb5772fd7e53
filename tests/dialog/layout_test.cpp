// How the dialogs look: texts and controls have room, the graph is square. KOLINK_PICTURES names a
// folder that takes a picture of each dialog.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "resources/dialog_ids.h"
#include "tests/dialog/driver.h"

using namespace ko::test;

namespace {

std::vector<HWND> controlsOf(HWND dialog) {
    std::vector<HWND> controls;
    for (HWND at = ::GetWindow(dialog, GW_CHILD); at; at = ::GetWindow(at, GW_HWNDNEXT))
        controls.push_back(at);
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

SIZE needed(HWND control, const std::wstring& text) {
    const HDC dc = ::GetDC(control);
    const auto font = reinterpret_cast<HGDIOBJ>(::SendMessageW(control, WM_GETFONT, 0, 0));
    const HGDIOBJ before = ::SelectObject(dc, font);
    RECT area{};
    ::DrawTextW(dc, text.c_str(), -1, &area, DT_CALCRECT | DT_SINGLELINE);
    const int dpi = ::GetDeviceCaps(dc, LOGPIXELSX);
    ::SelectObject(dc, before);
    ::ReleaseDC(control, dc);
    SIZE size{area.right, area.bottom};
    if (classOf(control) == L"Button") {
        const LONG type = ::GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK;
        // The box and its distance, or the edges of a push button.
        size.cx += (type == BS_AUTOCHECKBOX || type == BS_AUTORADIOBUTTON ? 17 : 8) * dpi / 96;
    }
    return size;
}

void inEach(const std::function<void(const ToneDialogKind&, const DialogWindow&)>& check) {
    for (const ToneDialogKind* kind : kToneDialogs)
        openDialog(kind->edit, "", [&](const DialogWindow& dialog) {
            SCOPED_TRACE(kind->name);
            check(*kind, dialog);
        });
}

TEST(DialogLayout, EveryTextFitsItsControl) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) {
        int texts = 0;
        for (const HWND control : controlsOf(dialog.handle())) {
            if (classOf(control) == L"KoLinkGraph") continue;
            const LONG style = ::GetWindowLongW(control, GWL_STYLE);
            if (classOf(control) == L"Static" && (style & SS_TYPEMASK) == SS_OWNERDRAW) continue;
            std::wstring text = textOf(control);
            // The widest that a value can be.
            if (text == L"0 %") text = L"100 %";
            if (text == L"0" && classOf(control) == L"Edit") text = L"100";
            RECT client;
            ::GetClientRect(control, &client);
            const SIZE size = needed(control, text);
            EXPECT_LE(size.cx, client.right) << ::GetDlgCtrlID(control) << ' ' << texts;
            EXPECT_LE(size.cy, client.bottom) << ::GetDlgCtrlID(control) << ' ' << texts;
            ++texts;
        }
        EXPECT_GT(texts, 10);
    });
}

TEST(DialogLayout, NoControlCoversAnotherOrLeavesTheDialog) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) {
        RECT client;
        ::GetClientRect(dialog.handle(), &client);
        const auto controls = controlsOf(dialog.handle());
        for (size_t a = 0; a < controls.size(); ++a) {
            const RECT first = placeOf(controls[a], dialog.handle());
            EXPECT_TRUE(first.left >= 0 && first.top >= 0 && first.right <= client.right &&
                        first.bottom <= client.bottom)
                << ::GetDlgCtrlID(controls[a]);
            for (size_t b = a + 1; b < controls.size(); ++b) {
                const RECT second = placeOf(controls[b], dialog.handle());
                RECT both;
                EXPECT_FALSE(::IntersectRect(&both, &first, &second))
                    << ::GetDlgCtrlID(controls[a]) << ' ' << ::GetDlgCtrlID(controls[b]);
            }
        }
    });
}

TEST(DialogLayout, TheGraphIsSquareAndTheStripsFollowIt) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) {
        const RECT graph = placeOf(dialog.item(IDC_GRAPH), dialog.handle());
        const RECT output = placeOf(dialog.item(IDC_STRIP_OUTPUT), dialog.handle());
        const RECT input = placeOf(dialog.item(IDC_STRIP_INPUT), dialog.handle());
        EXPECT_EQ(graph.right - graph.left, graph.bottom - graph.top);
        EXPECT_GT(graph.right - graph.left, 200);
        EXPECT_EQ(output.bottom, graph.bottom);
        EXPECT_EQ(input.right, graph.right);
        EXPECT_GE(input.top, graph.bottom);
    });
}

TEST(DialogLayout, EveryControlHasANameOfItsOwnOrALabelBeforeIt) {
    inEach([](const ToneDialogKind&, const DialogWindow& dialog) {
        HWND before = nullptr;
        for (const HWND control : controlsOf(dialog.handle())) {
            const bool label = before && classOf(before) == L"Static" && !textOf(before).empty();
            EXPECT_TRUE(classOf(control) == L"Edit" ? label : !textOf(control).empty())
                << ::GetDlgCtrlID(control);
            before = control;
        }
    });
}

// The dialog as it stands on the screen, as a bitmap file.
std::vector<uint32_t> pixelsOf(HWND dialog, int& width, int& height) {
    RECT area;
    ::GetWindowRect(dialog, &area);
    width = area.right - area.left;
    height = area.bottom - area.top;
    BITMAPINFO form{};
    form.bmiHeader = {sizeof form.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC screen = ::GetDC(nullptr), memory = ::CreateCompatibleDC(screen);
    const HBITMAP bitmap = ::CreateDIBSection(screen, &form, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = ::SelectObject(memory, bitmap);
    ::BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY);
    ::GdiFlush();
    const auto* const first = static_cast<const uint32_t*>(bits);
    std::vector<uint32_t> pixels(first, first + static_cast<size_t>(width) * static_cast<size_t>(height));
    ::SelectObject(memory, before);
    ::DeleteObject(bitmap);
    ::DeleteDC(memory);
    ::ReleaseDC(nullptr, screen);
    return pixels;
}

void writeBitmap(const std::string& path, const std::vector<uint32_t>& pixels, int width, int height) {
    const auto size = static_cast<DWORD>(pixels.size() * 4);
    BITMAPFILEHEADER file{};
    file.bfType = 0x4d42;
    file.bfOffBits = sizeof file + sizeof(BITMAPINFOHEADER);
    file.bfSize = file.bfOffBits + size;
    const BITMAPINFOHEADER form{sizeof form, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    ASSERT_NE(out, nullptr) << path;
    std::fwrite(&file, sizeof file, 1, out);
    std::fwrite(&form, sizeof form, 1, out);
    std::fwrite(pixels.data(), 4, pixels.size(), out);
    std::fclose(out);
}

TEST(DialogLayout, TheGraphShowsTheCurveOfEachChannelInItsColour) {
    inEach([](const ToneDialogKind& kind, const DialogWindow& dialog) {
        const int fields[] = {IDC_PERCENT_C, IDC_PERCENT_M, IDC_PERCENT_Y};
        for (int step = 0; step < kind.last / 2; ++step) dialog.key(IDC_GRAPH, VK_RIGHT);
        for (int channel = 0; channel < 3 && kind.channels > 1; ++channel)
            dialog.enter(fields[channel], std::to_wstring(65 + 8 * channel));
        dialog.enter(IDC_PERCENT_K, L"40");
        ::RedrawWindow(dialog.handle(), nullptr, nullptr,
                       RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        int width = 0, height = 0;
        const auto pixels = pixelsOf(dialog.handle(), width, height);
        const auto shown = [&](uint32_t colour) {  // as a bitmap has it: red, green, blue
            int count = 0;
            for (const uint32_t pixel : pixels) count += (pixel & 0xffffff) == colour;
            return count > 50;
        };
        for (const uint32_t colour : {0x008c8cu, 0xdc00dcu, 0x969600u})
            EXPECT_EQ(shown(colour), kind.channels > 1) << std::hex << colour;
        if (const char* const folder = std::getenv("KOLINK_PICTURES"))
            writeBitmap(std::string(folder) + "/" + kind.name + ".bmp", pixels, width, height);
    });
}

}  // namespace
