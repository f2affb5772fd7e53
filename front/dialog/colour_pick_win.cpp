// The view of the colour pick dialog.
#include "front/dialog/colour_pick_win.h"

#include <algorithm>
#include <utility>

#include "frame/dialog/ask_win.h"
#include "frame/dialog/dialog_win.h"
#include "frame/dialog/surface_win.h"
#include "frame/dialog/text_win.h"
#include "front/dialog/colour_pick.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::front {
namespace {

using namespace dialog;

struct InkControls {
    Ink ink;
    int edit, spin, unit;
};
constexpr InkControls kInks[] = {
    {Ink::c, IDC_PICK_C, IDC_PICK_SPIN_C, IDC_PICK_UNIT_C},
    {Ink::m, IDC_PICK_M, IDC_PICK_SPIN_M, IDC_PICK_UNIT_M},
    {Ink::y, IDC_PICK_Y, IDC_PICK_SPIN_Y, IDC_PICK_UNIT_Y},
    {Ink::k, IDC_PICK_K, IDC_PICK_SPIN_K, IDC_PICK_UNIT_K},
};
constexpr int kSurfaces[] = {IDC_PICK_FIELD, IDC_PICK_LIGHTNESS, IDC_PICK_LIGHTNESS_MARK,
                             IDC_PICK_BLACK, IDC_PICK_BLACK_MARK, IDC_PICK_SWATCH};
constexpr int kPage = 10;  // Page Up and Down move by this many times a small step

void frameWhole(HDC dc, Size size) { drawFrame(dc, {0, 0, size.width, size.height}, kBorder); }

// A triangle whose tip stands at the position; its foot stays within the strip.
void paintMark(HDC dc, Size size, int32_t at, bool upright) {
    const COLORREF ground = ::GetSysColor(COLOR_BTNFACE), ink = ::GetSysColor(COLOR_BTNTEXT);
    fillArea(dc, {0, 0, size.width, size.height}, ground);
    const int length = upright ? size.height : size.width;
    const int height = std::min<int>(scaled(dc, 8), (upright ? size.width : size.height) - 1);
    const int low = std::max<int>(0, at - height / 2), high = std::min<int>(length - 1, at + height / 2);
    POINT corners[] = {{at, 0}, {low, height}, {high, height}};
    if (upright)
        for (POINT& corner : corners) std::swap(corner.x, corner.y);
    const HGDIOBJ pen = ::SelectObject(dc, ::GetStockObject(DC_PEN));
    const HGDIOBJ brush = ::SelectObject(dc, ::GetStockObject(DC_BRUSH));
    ::SetDCPenColor(dc, ink);
    ::SetDCBrushColor(dc, ink);
    ::Polygon(dc, corners, 3);
    ::SelectObject(dc, brush);
    ::SelectObject(dc, pen);
}

class PickDialog final : public ModalDialog, public SurfaceEvents {
public:
    explicit PickDialog(ColourPick& pick) : pick_(pick) {}

private:
    void opened() override {
        for (const int surface : kSurfaces) attachSurface(window(), surface, *this);
        for (const InkControls& ink : kInks) {
            ::SendMessageW(item(ink.edit), EM_SETLIMITTEXT, 4, 0);
            ::SendMessageW(item(ink.spin), UDM_SETBUDDY, reinterpret_cast<WPARAM>(item(ink.edit)), 0);
        }
        addControls();
    }

    void addControls() {
        for (const InkControls& ink : kInks)
            add({{.id = ink.edit,
                  .show = [=, this] { showInk(ink); },
                  .leave = [=, this] { leave(ink); }},
                 {.id = ink.spin, .step = [=, this](int by) { step(ink, by); }}});
        for (const int surface : kSurfaces)
            add({{.id = surface,
                  .show = [=, this] { ::InvalidateRect(item(surface), nullptr, FALSE); }}});
        add({
            {.id = IDC_STATUS, .show = [this] { showNotice(window(), pick_.notice()); }},
            {.id = IDC_PICK_SCALE, .show = [this] { showScale(); }},
            {.id = IDC_PICK_256,
             .press = [this] { pick_.show256Levels(isChecked(window(), IDC_PICK_256)); }},
            {.id = IDOK, .press = [this] { end(1); }},
            {.id = IDCANCEL, .press = [this] { end(0); }},
        });
    }

    void leave(const InkControls& ink) {
        const bool touched = ::SendMessageW(item(ink.edit), EM_GETMODIFY, 0, 0) != 0;
        pick_.leaveField(ink.ink, numberOf(window(), ink.edit), touched);
        ::SendMessageW(item(ink.edit), EM_SETMODIFY, FALSE, 0);
    }

    void step(const InkControls& ink, int by) {
        leave(ink);
        pick_.stepInk(ink.ink, by);
    }

    void showInk(const InkControls& ink) {
        setText(window(), ink.edit, pick_.fieldText(ink.ink));
        setText(window(), ink.unit, pick_.shows256Levels() ? L"" : L"%");
        ::SendMessageW(item(ink.spin), UDM_SETRANGE32, 0, pick_.greatestValue());
        ::SendMessageW(item(ink.spin), UDM_SETPOS32, 0, pick_.shownValue(ink.ink));
    }

    void showScale() {
        setText(window(), IDC_PICK_SCALE,
                wideTranslated(pick_.shows256Levels() ? texts::kPixelValue : texts::kDotPercent));
    }

    void paintSurface(HWND surface, HDC dc, Size size, bool hasFocus) override {
        switch (::GetDlgCtrlID(surface)) {
            case IDC_PICK_FIELD: paintField(dc, size); break;
            case IDC_PICK_LIGHTNESS:
                for (int y = 0; y < size.height; ++y)
                    fillArea(dc, {0, y, size.width, y + 1}, pick_.lightnessColour(size.height, y));
                frameWhole(dc, size);
                break;
            case IDC_PICK_LIGHTNESS_MARK:
                paintMark(dc, size, pick_.lightnessMark(size.height), true);
                break;
            case IDC_PICK_BLACK:
                for (int step = 0; step < kGreySteps; ++step) {
                    const int grey = greyOfStep(step);
                    fillArea(dc, {size.width * step / kGreySteps, 0,
                                  size.width * (step + 1) / kGreySteps, size.height},
                             RGB(grey, grey, grey));
                }
                frameWhole(dc, size);
                break;
            case IDC_PICK_BLACK_MARK:
                paintMark(dc, size, pick_.blackMark(size.width), false);
                break;
            default:
                fillArea(dc, {0, 0, size.width, size.height}, pick_.swatch());
                frameWhole(dc, size);
                break;
        }
        if (hasFocus) drawFocus(dc, size, 1);
    }

    void paintField(HDC dc, Size size) {
        const Size inner{size.width - 2, size.height - 2};
        if (picture_.empty() || inner != pictureSize_) {
            picture_ = fieldPicture(inner);
            pictureSize_ = inner;
        }
        if (picture_.empty()) return;
        BITMAPINFO form{};
        form.bmiHeader = {sizeof form.bmiHeader, inner.width, -inner.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        ::SetDIBitsToDevice(dc, 1, 1, static_cast<DWORD>(inner.width), static_cast<DWORD>(inner.height),
                            0, 0, 0, static_cast<UINT>(inner.height), picture_.data(), &form,
                            DIB_RGB_COLORS);
        if (const auto mark = pick_.fieldMark(size)) paintColourMark(dc, *mark);
        frameWhole(dc, size);
    }

    void surfacePressed(HWND surface, Size size, Point at) override {
        const int control = ::GetDlgCtrlID(surface);
        // The marks belong to the strips beside them.
        if (control == IDC_PICK_LIGHTNESS_MARK) ::SetFocus(item(IDC_PICK_LIGHTNESS));
        if (control == IDC_PICK_BLACK_MARK) ::SetFocus(item(IDC_PICK_BLACK));
        surfaceMoved(surface, size, at, true);
    }

    void surfaceMoved(HWND surface, Size size, Point at, bool held) override {
        if (!held) return;
        switch (::GetDlgCtrlID(surface)) {
            case IDC_PICK_FIELD: pick_.clickField(size, at); break;
            case IDC_PICK_LIGHTNESS:
            case IDC_PICK_LIGHTNESS_MARK: pick_.clickLightness(size.height, at.y); break;
            case IDC_PICK_BLACK:
            case IDC_PICK_BLACK_MARK: pick_.clickBlack(size.width, at.x); break;
            default: return;
        }
        show();
    }

    bool surfaceKey(HWND surface, Size size, WPARAM key) override {
        const int control = ::GetDlgCtrlID(surface);
        const bool handled = control == IDC_PICK_FIELD       ? fieldKey(size, key)
                             : control == IDC_PICK_LIGHTNESS ? lightnessKey(size.height, key)
                             : control == IDC_PICK_BLACK     ? blackKey(key)
                                                             : false;
        if (handled) show();
        return handled;
    }

    bool fieldKey(Size size, WPARAM key) {
        switch (key) {
            case VK_LEFT: pick_.stepField(size, -1, 0); return true;
            case VK_RIGHT: pick_.stepField(size, 1, 0); return true;
            case VK_UP: pick_.stepField(size, 0, -1); return true;
            case VK_DOWN: pick_.stepField(size, 0, 1); return true;
            case VK_HOME: pick_.stepField(size, -kHueColumns, 0); return true;
            case VK_END: pick_.stepField(size, kHueColumns, 0); return true;
            case VK_PRIOR: pick_.stepField(size, 0, -kPage); return true;
            case VK_NEXT: pick_.stepField(size, 0, kPage); return true;
            default: return false;
        }
    }

    bool lightnessKey(int32_t height, WPARAM key) {
        switch (key) {
            case VK_UP: pick_.stepLightness(height, -1); return true;
            case VK_DOWN: pick_.stepLightness(height, 1); return true;
            case VK_PRIOR: pick_.stepLightness(height, -kPage); return true;
            case VK_NEXT: pick_.stepLightness(height, kPage); return true;
            case VK_HOME: pick_.clickLightness(height, 0); return true;
            case VK_END: pick_.clickLightness(height, height); return true;
            default: return false;
        }
    }

    bool blackKey(WPARAM key) {
        switch (key) {
            case VK_LEFT:
            case VK_DOWN: pick_.stepInk(Ink::k, -1); return true;
            case VK_RIGHT:
            case VK_UP: pick_.stepInk(Ink::k, 1); return true;
            case VK_PRIOR: pick_.stepInk(Ink::k, -kPage); return true;
            case VK_NEXT: pick_.stepInk(Ink::k, kPage); return true;
            case VK_HOME: pick_.stepInk(Ink::k, -255); return true;
            case VK_END: pick_.stepInk(Ink::k, 255); return true;
            default: return false;
        }
    }

    ColourPick& pick_;
    std::vector<uint32_t> picture_;  // of the field, made anew for another size alone
    Size pictureSize_{0, 0};
};

}  // namespace

uint32_t pickColour(HWND owner, uint32_t cmyk) {
    registerTabsAndSpins();
    registerSurfaceClass();
    ColourPick pick(cmyk);
    return PickDialog(pick).run(owner, L"COLORPICKDLG") == 1 ? pick.packed() : cmyk;
}

}  // namespace ko::front
