// The view of the colour pick dialog.
#include "front/dialog/colour_pick_win.h"

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "frame/dialog/surface_win.h"
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
constexpr COLORREF kBorder = RGB(128, 128, 128);
constexpr int kPage = 10;  // Page Up and Down move by this many times a small step

void frameWhole(HDC dc, Size size) {
    jRectangle(dc, kRectangleFrame, 0, 0, size.width, size.height, 0, kBorder);
}

// A triangle whose tip stands at the position; its foot stays within the strip.
void paintMark(HDC dc, Size size, int32_t at, bool upright) {
    const COLORREF ground = ::GetSysColor(COLOR_BTNFACE), ink = ::GetSysColor(COLOR_BTNTEXT);
    jRectangle(dc, kRectangleFill, 0, 0, size.width, size.height, ground, 0);
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
        showUnits();
        showAll();
    }

    bool command(int control, int notification) override {
        if (notification == EN_KILLFOCUS) return leave(control);
        if (notification != BN_CLICKED) return false;
        // A default or an access key presses a button while a field still has the focus.
        leaveFocusedField();
        switch (control) {
            case IDOK: end(1); return true;
            case IDCANCEL: end(0); return true;
            case IDC_PICK_256:
                pick_.show256Levels(isChecked(window(), IDC_PICK_256));
                showUnits();
                showAll();
                return true;
            default: return false;
        }
    }

    // Turns the typed text of one of the fields into its ink.
    bool leave(int control) {
        for (const InkControls& ink : kInks)
            if (ink.edit == control) {
                const bool touched = ::SendMessageW(item(control), EM_GETMODIFY, 0, 0) != 0;
                pick_.leaveField(ink.ink, asciiOf(window(), control), touched);
                ::SendMessageW(item(control), EM_SETMODIFY, FALSE, 0);
                showAll();
                return true;
            }
        return false;
    }

    INT_PTR message(UINT message, WPARAM, LPARAM lParam) override {
        const auto* const note = message == WM_NOTIFY ? reinterpret_cast<const NMHDR*>(lParam) : nullptr;
        if (!note || note->code != static_cast<UINT>(UDN_DELTAPOS)) return FALSE;
        for (const InkControls& ink : kInks)
            if (note->hwndFrom == item(ink.spin)) {
                leave(ink.edit);
                pick_.stepInk(ink.ink, reinterpret_cast<const NMUPDOWN*>(note)->iDelta);
                showAll();
                ::SetWindowLongPtrW(window(), DWLP_MSGRESULT, TRUE);  // the position is set already
                return TRUE;
            }
        return FALSE;
    }

    void showUnits() {
        const bool levels = pick_.shows256Levels();
        setText(window(), IDC_PICK_SCALE, levels ? texts::kPixelValue : texts::kDotPercent);
        for (const InkControls& ink : kInks) {
            setText(window(), ink.unit, levels ? L"" : L"%");
            ::SendMessageW(item(ink.spin), UDM_SETRANGE32, 0, pick_.greatestValue());
        }
    }

    void showAll() {
        for (const InkControls& ink : kInks) {
            setText(window(), ink.edit, pick_.fieldText(ink.ink));
            ::SendMessageW(item(ink.spin), UDM_SETPOS32, 0, pick_.shownValue(ink.ink));
        }
        for (const int surface : kSurfaces) ::InvalidateRect(item(surface), nullptr, FALSE);
    }

    void paintSurface(HWND surface, HDC dc, Size size, bool hasFocus) override {
        switch (::GetDlgCtrlID(surface)) {
            case IDC_PICK_FIELD: paintField(dc, size); break;
            case IDC_PICK_LIGHTNESS:
                for (int y = 0; y < size.height; ++y)
                    jRectangle(dc, kRectangleFill, 0, y, size.width, y + 1,
                               pick_.lightnessColour(size.height, y), 0);
                frameWhole(dc, size);
                break;
            case IDC_PICK_LIGHTNESS_MARK:
                paintMark(dc, size, pick_.lightnessMark(size.height), true);
                break;
            case IDC_PICK_BLACK:
                for (int step = 0; step < kGreySteps; ++step) {
                    const int grey = greyOfStep(step);
                    jRectangle(dc, kRectangleFill, size.width * step / kGreySteps, 0,
                               size.width * (step + 1) / kGreySteps, size.height,
                               RGB(grey, grey, grey), 0);
                }
                frameWhole(dc, size);
                break;
            case IDC_PICK_BLACK_MARK:
                paintMark(dc, size, pick_.blackMark(size.width), false);
                break;
            default:
                jRectangle(dc, kRectangleBoth, 0, 0, size.width, size.height, pick_.swatch(), kBorder);
                break;
        }
        if (hasFocus) {
            const RECT inside{1, 1, size.width - 1, size.height - 1};
            ::DrawFocusRect(dc, &inside);
        }
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
        surfaceDragged(surface, size, at);
    }

    void surfaceDragged(HWND surface, Size size, Point at) override {
        switch (::GetDlgCtrlID(surface)) {
            case IDC_PICK_FIELD: pick_.clickField(size, at); break;
            case IDC_PICK_LIGHTNESS:
            case IDC_PICK_LIGHTNESS_MARK: pick_.clickLightness(size.height, at.y); break;
            case IDC_PICK_BLACK:
            case IDC_PICK_BLACK_MARK: pick_.clickBlack(size.width, at.x); break;
            default: return;
        }
        showAll();
    }

    bool surfaceKey(HWND surface, Size size, WPARAM key) override {
        const int control = ::GetDlgCtrlID(surface);
        const bool handled = control == IDC_PICK_FIELD       ? fieldKey(size, key)
                             : control == IDC_PICK_LIGHTNESS ? lightnessKey(size.height, key)
                             : control == IDC_PICK_BLACK     ? blackKey(key)
                                                             : false;
        if (handled) showAll();
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
