// The view of the page that corrects colours locally.
#include "cmyk/dialog/profile_dialog.h"

#include <commctrl.h>

#include <algorithm>
#include <array>

#include "cmyk/dialog/colour_correction.h"
#include "frame/dialog/surface_win.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::cmyk {
namespace {

using namespace dialog;

struct InkControls {
    int picked, pickedSpin, current, changed, changedSpin;
};
constexpr InkControls kInks[] = {
    {IDC_CUBE_C, IDC_CUBE_SPIN_C, IDC_CUBE_CURRENT_C, IDC_CUBE_CHANGED_C, IDC_CUBE_CHANGED_SPIN_C},
    {IDC_CUBE_M, IDC_CUBE_SPIN_M, IDC_CUBE_CURRENT_M, IDC_CUBE_CHANGED_M, IDC_CUBE_CHANGED_SPIN_M},
    {IDC_CUBE_Y, IDC_CUBE_SPIN_Y, IDC_CUBE_CURRENT_Y, IDC_CUBE_CHANGED_Y, IDC_CUBE_CHANGED_SPIN_Y},
    {IDC_CUBE_K, IDC_CUBE_SPIN_K, IDC_CUBE_CURRENT_K, IDC_CUBE_CHANGED_K, IDC_CUBE_CHANGED_SPIN_K},
};

struct SurfaceControl {
    int control;
    Surface surface;
};
constexpr SurfaceControl kSurfaces[] = {
    {IDC_CUBE_AREA, Surface::area},
    {IDC_CUBE_SATURATION_BAR, Surface::saturationBar},
    {IDC_CUBE_HUE_BAR, Surface::hueBar},
    {IDC_CUBE_LIGHTNESS, Surface::lightness},
    {IDC_CUBE_LIGHTNESS_BAR, Surface::lightnessBar},
    {IDC_CUBE_BLACK, Surface::black},
    {IDC_CUBE_BLACK_BAR, Surface::blackBar},
};
constexpr int kSwatches[] = {IDC_CUBE_BEFORE, IDC_CUBE_AFTER};

constexpr COLORREF kPaper = RGB(255, 255, 255), kInk = RGB(0, 0, 0), kBorder = RGB(128, 128, 128),
                   kStrength = RGB(120, 160, 215);
constexpr int kBigStep = 10;  // Page Up and Down move by this many steps

// Cells stretched over a control.
void paintCells(HDC dc, Size size, const Cells& cells) {
    if (cells.pixels.empty()) return;
    BITMAPINFO form{};
    form.bmiHeader = {sizeof form.bmiHeader, cells.width, -cells.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    ::SetStretchBltMode(dc, COLORONCOLOR);
    ::StretchDIBits(dc, 0, 0, size.width, size.height, 0, 0, cells.width, cells.height,
                    cells.pixels.data(), &form, DIB_RGB_COLORS, SRCCOPY);
}

// A light line on a dark one: it is seen on every colour.
void paintOutline(HDC dc, const std::vector<Line>& lines, int light, int dark) {
    for (const auto& [colour, width] : {std::pair{kInk, dark}, {kPaper, light}})
        for (const Line& line : lines)
            jLine(dc, line.from.x, line.from.y, line.to.x, line.to.y, colour, width);
}

// Light and dark by turns, for the same reason.
void paintDashes(HDC dc, const std::vector<Line>& lines) {
    const int dash = scaled(dc, 3), width = scaled(dc, 1);
    for (const Line& line : lines) {
        const bool across = line.from.y == line.to.y;
        const int first = across ? line.from.x : line.from.y, last = across ? line.to.x : line.to.y;
        for (int at = first; at <= last; at += dash) {
            const int end = std::min(at + dash, last + 1);
            const RECT part = across ? RECT{at, line.from.y, end, line.from.y + width}
                                     : RECT{line.from.x, at, line.from.x + width, end};
            jRectangle(dc, kRectangleFill, part.left, part.top, part.right, part.bottom,
                       (at - first) / dash % 2 == 0 ? kPaper : kInk, 0);
        }
    }
}

class CorrectionPage final : public ChildDialog, public SurfaceEvents {
public:
    CorrectionPage(CmykProfile& profile, ColourDisplay display)
        : model_(profile), display_(display) {}
    ~CorrectionPage() override { destroy(); }

private:
    void opened() override {
        for (const SurfaceControl& each : kSurfaces) attachSurface(window(), each.control, *this);
        for (const int swatch : kSwatches) attachSurface(window(), swatch, *this);
        for (const InkControls& ink : kInks)
            for (const auto& [edit, spin] : {std::pair{ink.picked, ink.pickedSpin},
                                             {ink.changed, ink.changedSpin}}) {
                limit(edit);
                ::SendMessageW(item(spin), UDM_SETBUDDY, reinterpret_cast<WPARAM>(item(edit)), 0);
            }
        limit(IDC_CUBE_SATURATION);
        limit(IDC_CUBE_HUE);
        showUnits();
        showAll();
    }

    void limit(int edit) { ::SendMessageW(item(edit), EM_SETLIMITTEXT, 4, 0); }

    bool command(int control, int notification) override {
        switch (notification) {
            case EN_CHANGE: return !showing_ && typed(control);
            case EN_KILLFOCUS: return leave(control);
            case BN_CLICKED: leaveFocusedField(); return press(control);
            default: return false;
        }
    }

    // What is typed into these fields counts at once; their texts are put right when they are left.
    bool typed(int field) {
        const std::string text = asciiOf(window(), field);
        if (field == IDC_CUBE_SATURATION) model_.setSaturationReach(text);
        if (field == IDC_CUBE_HUE) model_.setHueReach(text);
        for (int32_t ink = 0; ink < 4; ++ink)
            if (field == kInks[ink].changed) model_.setChanged(ink, text);
        showAll(field);
        return true;
    }

    bool leave(int field) {
        for (int32_t ink = 0; ink < 4; ++ink)
            if (field == kInks[ink].picked) model_.pick(ink, asciiOf(window(), field));
        showAll();
        return true;
    }

    bool press(int button) {
        switch (button) {
            case IDC_CUBE_256:
                model_.setLevels256(isChecked(window(), IDC_CUBE_256));
                showUnits();
                break;
            case IDC_CUBE_CHANGE: return change(), true;
            case IDC_CUBE_UNDO:
                model_.undo();
                recolour();
                break;
            case IDC_CUBE_INITIALISE:
                model_.reread();
                recolour();
                break;
            default: return false;
        }
        showAll();
        return true;
    }

    void change() {
        const int32_t count = model_.change();
        recolour();
        showAll();
        showMessage(::GetAncestor(window(), GA_ROOT), wideText(texts::kProfileCaption),
                    wideText(ColourCorrection::changedText(count)), MB_OK | MB_ICONINFORMATION);
    }

    INT_PTR message(UINT message, WPARAM, LPARAM lParam) override {
        if (message != WM_NOTIFY) return FALSE;
        const auto& note = *reinterpret_cast<const NMHDR*>(lParam);
        if (note.code != static_cast<UINT>(UDN_DELTAPOS)) return FALSE;
        const int by = reinterpret_cast<const NMUPDOWN*>(lParam)->iDelta;
        for (int32_t ink = 0; ink < 4; ++ink) {
            if (note.hwndFrom == item(kInks[ink].pickedSpin)) {
                leave(kInks[ink].picked);
                model_.stepPicked(ink, by);
            } else if (note.hwndFrom == item(kInks[ink].changedSpin)) {
                model_.stepChanged(ink, by);
            }
        }
        showAll();
        ::SetWindowLongPtrW(window(), DWLP_MSGRESULT, TRUE);  // the position is set already
        return TRUE;
    }

    void showUnits() {
        const bool levels = model_.levels256();
        setText(window(), IDC_CUBE_SCALE, levels ? texts::kPixelValue : texts::kDotPercent);
        for (const InkControls& ink : kInks)
            for (const int spin : {ink.pickedSpin, ink.changedSpin})
                ::SendMessageW(item(spin), UDM_SETRANGE32, 0, levels ? 255 : 100);
    }

    // Everything but the text of the field that is being typed into.
    void showAll(int typing = 0) {
        showing_ = true;
        const auto show = [&](int control, const std::string& text) {
            if (control != typing) setText(window(), control, text);
        };
        for (size_t at = 0; at < 4; ++at) {
            const InkControls& ink = kInks[at];
            const int32_t picked = model_.picked()[at], changed = model_.changed()[at];
            show(ink.picked, model_.shown(picked));
            show(ink.current, model_.shown(model_.current()[at]));
            show(ink.changed, model_.shown(changed));
            ::SendMessageW(item(ink.pickedSpin), UDM_SETPOS32, 0, model_.shownValue(picked));
            ::SendMessageW(item(ink.changedSpin), UDM_SETPOS32, 0, model_.shownValue(changed));
        }
        show(IDC_CUBE_SATURATION, std::to_string(model_.saturationReach()));
        show(IDC_CUBE_HUE, std::to_string(model_.hueReach()));
        show(IDC_CUBE_RANGE, model_.rangeText());
        show(IDC_CUBE_BLACK_SPAN, model_.blackText());
        show(IDC_CUBE_LIGHTNESS_SPAN, model_.lightnessText());
        show(IDC_CUBE_COUNT, model_.countText());
        showing_ = false;
        enableUndo();
        for (const SurfaceControl& each : kSurfaces)
            ::InvalidateRect(item(each.control), nullptr, FALSE);
        for (const int swatch : kSwatches) ::InvalidateRect(item(swatch), nullptr, FALSE);
    }

    void enableUndo() {
        const HWND button = item(IDC_CUBE_UNDO);
        // A disabled control would keep the focus, and with it the keyboard.
        if (!model_.canUndo() && ::GetFocus() == button)
            ::SendMessageW(::GetAncestor(window(), GA_ROOT), WM_NEXTDLGCTL,
                           reinterpret_cast<WPARAM>(item(IDC_CUBE_CHANGE)), TRUE);
        ::EnableWindow(button, model_.canUndo());
    }

    void recolour() { areaShown_.reset(); }

    // The picture of the area holds until another lightness or black is picked or the grid changes.
    const Cells& area() {
        const std::array<int32_t, 2> wanted = {model_.place().lightness, model_.picked()[3]};
        if (areaShown_ != wanted) {
            area_ = model_.areaCells(display_);
            areaShown_ = wanted;
        }
        return area_;
    }

    void paintSurface(HWND control, HDC dc, Size size, bool hasFocus) override {
        const int id = ::GetDlgCtrlID(control);
        if (id == IDC_CUBE_BEFORE || id == IDC_CUBE_AFTER) {
            const Cmyk& colour = id == IDC_CUBE_BEFORE ? model_.current() : model_.changed();
            return jRectangle(dc, kRectangleBoth, 0, 0, size.width, size.height,
                              ColourCorrection::displayed(colour, display_), kBorder);
        }
        for (const SurfaceControl& each : kSurfaces) {
            if (each.control != id) continue;
            switch (each.surface) {
                case Surface::area: paintArea(dc, size); break;
                case Surface::lightness:
                case Surface::black: paintScale(dc, size, each.surface); break;
                default: paintBar(dc, size, each.surface); break;
            }
        }
        jRectangle(dc, kRectangleFrame, 0, 0, size.width, size.height, 0, kBorder);
        if (hasFocus) {
            const RECT inside{1, 1, size.width - 1, size.height - 1};
            ::DrawFocusRect(dc, &inside);
        }
    }

    void paintArea(HDC dc, Size size) {
        paintCells(dc, size, area());
        paintDashes(dc, model_.outline(size, true));
        paintOutline(dc, model_.outline(size, false), scaled(dc, 1), scaled(dc, 1) * 3);
        paintColourMark(dc, model_.marker(size));
    }

    // A line across a scale or a bar at the picked colour.
    void paintMark(HDC dc, Size size, Surface surface, bool across, int light, int dark) {
        const int at = model_.markerOn(surface, across ? size.width : size.height);
        const Line line = across ? Line{{at, 0}, {at, size.height}} : Line{{0, at}, {size.width, at}};
        paintOutline(dc, {line}, light, dark);
    }

    void paintScale(HDC dc, Size size, Surface scale) {
        paintCells(dc, size, model_.scaleCells(scale, display_));
        paintMark(dc, size, scale, scale == Surface::black, scaled(dc, 1), scaled(dc, 1) * 3);
    }

    // How much of the change each place gets: from the side of the scale that the bar belongs to.
    void paintBar(HDC dc, Size size, Surface bar) {
        const bool across = bar == Surface::hueBar || bar == Surface::blackBar;
        const int length = across ? size.width : size.height, depth = across ? size.height : size.width;
        jRectangle(dc, kRectangleFill, 0, 0, size.width, size.height, kPaper, 0);
        const HBRUSH brush = ::CreateSolidBrush(kStrength);
        for (int at = 0; at < length; ++at) {
            const int deep = (depth - 2) * model_.strengthOn(bar, length, at) / 255;
            const RECT area = across ? RECT{at, 0, at + 1, deep}
                              : bar == Surface::saturationBar
                                  ? RECT{size.width - deep, at, size.width, at + 1}
                                  : RECT{0, at, deep, at + 1};
            if (deep > 0) ::FillRect(dc, &area, brush);
        }
        ::DeleteObject(brush);
        const int mark = model_.markerOn(bar, length), thin = scaled(dc, 1);
        if (across) jLine(dc, mark, 0, mark, size.height, kInk, thin);
        else jLine(dc, 0, mark, size.width, mark, kInk, thin);
    }

    static const SurfaceControl* surfaceOf(HWND control) {
        for (const SurfaceControl& each : kSurfaces)
            if (each.control == ::GetDlgCtrlID(control)) return &each;
        return nullptr;
    }

    void surfacePressed(HWND control, Size size, Point at) override {
        const SurfaceControl* const pressed = surfaceOf(control);
        if (pressed && model_.press(pressed->surface, size, at)) showAll();
    }
    void surfaceDragged(HWND control, Size size, Point at) override {
        if (surfaceOf(control) && model_.move(size, at)) showAll();
    }

    bool surfaceKey(HWND control, Size, WPARAM key) override {
        const SurfaceControl* const surface = surfaceOf(control);
        if (!surface) return false;
        const bool shift = ::GetKeyState(VK_SHIFT) < 0;
        const auto step = [&](Key direction, int times = 1) {
            bool changed = false;
            while (times-- > 0) changed = model_.step(surface->surface, direction, shift) || changed;
            if (changed) showAll();
            return true;
        };
        switch (key) {
            case VK_LEFT: return step(Key::left);
            case VK_RIGHT: return step(Key::right);
            case VK_UP: return step(Key::up);
            case VK_DOWN: return step(Key::down);
            case VK_PRIOR: return step(Key::up, kBigStep);
            case VK_NEXT: return step(Key::down, kBigStep);
            case VK_DELETE: return step(Key::clear);
            default: return false;
        }
    }

    ColourCorrection model_;
    ColourDisplay display_;
    bool showing_ = false;
    Cells area_;
    std::optional<std::array<int32_t, 2>> areaShown_;  // lightness and black of the area's picture
};

}  // namespace

Page makeCubePage(CmykProfile& profile, ColourDisplay display) {
    registerSurfaceClass();
    return std::make_unique<CorrectionPage>(profile, display);
}

}  // namespace ko::cmyk
