// The view of the page that corrects colours locally.
#include "cmyk/dialog/profile_dialog.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <utility>

#include "cmyk/dialog/colour_correction.h"
#include "frame/dialog/ask_win.h"
#include "frame/dialog/surface_win.h"
#include "frame/dialog/text_win.h"
#include "frame/state.h"
#include "frame/text.h"
#include "quality/difference.h"
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

constexpr COLORREF kInk = RGB(0, 0, 0), kStrength = RGB(120, 160, 215);
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
            drawLine(dc, line.from, line.to, colour, width);
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
            fillArea(dc, part, (at - first) / dash % 2 == 0 ? kPaper : kInk);
        }
    }
}

class CorrectionPage final : public ProfilePage, public SurfaceEvents {
public:
    CorrectionPage(CmykProfile& profile, History& history, PageFrame& frame, ColourDisplay display,
                   ColourLab lab)
        : profile_(profile), model_(profile, history), frame_(frame), display_(display),
          lab_(std::move(lab)) {}
    ~CorrectionPage() override { destroy(); }

private:
    void opened() override {
        for (const InkControls& ink : kInks)
            for (const auto& [edit, spin] : {std::pair{ink.picked, ink.pickedSpin},
                                             {ink.changed, ink.changedSpin}}) {
                limit(edit);
                ::SendMessageW(item(spin), UDM_SETBUDDY, reinterpret_cast<WPARAM>(item(edit)), 0);
            }
        limit(IDC_CUBE_SATURATION);
        limit(IDC_CUBE_HUE);
        for (int32_t ink = 0; ink < 4; ++ink) addInk(ink, kInks[ink]);
        addRange();
        addSurfaces();
        addButtons();
        addMade();
    }

    void limit(int edit) { ::SendMessageW(item(edit), EM_SETLIMITTEXT, 4, 0); }
    std::string textIn(int field) const { return numberOf(window(), field); }

    void addInk(int32_t ink, const InkControls& controls) {
        add({
            {.id = controls.picked,
             .show = [=, this] { setText(window(), controls.picked, model_.shown(pickedOf(ink))); },
             .leave = [=, this] { model_.pick(ink, textIn(controls.picked)); }},
            {.id = controls.pickedSpin,
             .show = [=, this] { showSpin(controls.pickedSpin, pickedOf(ink)); },
             .step =
                 [=, this](int by) {
                     model_.pick(ink, textIn(controls.picked));
                     model_.stepPicked(ink, by);
                 }},
            {.id = controls.current,
             .show =
                 [=, this] { setText(window(), controls.current, model_.shown(currentOf(ink))); }},
            // What is typed here counts at once; the text is put right when the field is left.
            {.id = controls.changed,
             .show =
                 [=, this] { setText(window(), controls.changed, model_.shown(changedOf(ink))); },
             .leave = [] {},
             .type = [=, this] { model_.setChanged(ink, textIn(controls.changed)); }},
            {.id = controls.changedSpin,
             .show = [=, this] { showSpin(controls.changedSpin, changedOf(ink)); },
             .step = [=, this](int by) { model_.stepChanged(ink, by); }},
        });
    }
    int32_t pickedOf(int32_t ink) const { return model_.picked()[static_cast<size_t>(ink)]; }
    int32_t currentOf(int32_t ink) const { return model_.current()[static_cast<size_t>(ink)]; }
    int32_t changedOf(int32_t ink) const { return model_.changed()[static_cast<size_t>(ink)]; }

    void showSpin(int spin, int32_t level) {
        ::SendMessageW(item(spin), UDM_SETRANGE32, 0, model_.levels256() ? 255 : 100);
        ::SendMessageW(item(spin), UDM_SETPOS32, 0, model_.shownValue(level));
    }

    void addRange() {
        const auto label = [this](int control, std::string (ColourCorrection::*text)() const) {
            add({{.id = control,
                  .show = [=, this] { setText(window(), control,
                                           wideText((model_.*text)(), userEncoding())); }}});
        };
        label(IDC_CUBE_RANGE, &ColourCorrection::rangeText);
        label(IDC_CUBE_BLACK_SPAN, &ColourCorrection::blackText);
        label(IDC_CUBE_LIGHTNESS_SPAN, &ColourCorrection::lightnessText);
        label(IDC_CUBE_COUNT, &ColourCorrection::countText);
        const auto reach = [this](int field, int32_t (ColourCorrection::*get)() const noexcept,
                                  void (ColourCorrection::*set)(std::string_view)) {
            add({{.id = field,
                  .show = [=, this] { setText(window(), field, std::to_string((model_.*get)())); },
                  .leave = [] {},
                  .type = [=, this] { (model_.*set)(textIn(field)); }}});
        };
        reach(IDC_CUBE_SATURATION, &ColourCorrection::saturationReach,
              &ColourCorrection::setSaturationReach);
        reach(IDC_CUBE_HUE, &ColourCorrection::hueReach, &ColourCorrection::setHueReach);
    }

    void addSurfaces() {
        const auto surface = [this](int control) {
            attachSurface(window(), control, *this);
            add({{.id = control,
                  .show = [=, this] { ::InvalidateRect(item(control), nullptr, FALSE); }}});
        };
        for (const SurfaceControl& each : kSurfaces) surface(each.control);
        for (const int swatch : kSwatches) surface(swatch);
    }

    void addButtons() {
        add({
            {.id = IDC_CUBE_SCALE,
             .show =
                 [this] {
                     setText(window(), IDC_CUBE_SCALE,
                             wideTranslated(model_.levels256() ? texts::kPixelValue
                                                               : texts::kDotPercent));
                 }},
            {.id = IDC_CUBE_256,
             .press = [this] { model_.setLevels256(isChecked(window(), IDC_CUBE_256)); }},
            {.id = IDC_STATUS, .show = [this] { showStatus(); }},
            {.id = IDC_CUBE_CHANGE, .press = [this] { change(); }},
            {.id = IDC_CUBE_UNDO,
             .show = [this] { enableUndo(); },
             .press = [this] { frame_.undo(); }},
            {.id = IDC_CUBE_INITIALISE, .press = [this] { reread(); }},
        });
    }

    void addMade() {
        add({
            {.id = IDC_CUBE_DIFFERENCE, .show = [this] { showLab(); }},
            {.id = IDC_CUBE_FILE,
             .show =
                 [this] {
                     ::CheckDlgButton(window(), IDC_CUBE_FILE,
                                      model_.showsFile() ? BST_CHECKED : BST_UNCHECKED);
                 },
             .press = [this] { toggleFile(); }},
            {.id = IDC_CUBE_MADE, .show = [this] { showMade(); }},
            {.id = IDC_CUBE_TAKE_OUT, .press = [this] { takeOut(); }},
        });
    }

    static std::wstring labText(const Lab& lab) {
        std::wstring text;
        for (const double part : lab)
            text += (text.empty() ? L"" : L" ") + tenthsText(part);
        return text;
    }
    static std::wstring tenthsText(double value) {
        const auto tenths = static_cast<int32_t>(value < 0 ? value * 10 - 0.5 : value * 10 + 0.5);
        const int32_t size = std::abs(tenths);
        return (tenths < 0 ? L"-" : L"") + std::to_wstring(size / 10) + L"." +
               std::to_wstring(size % 10);
    }

    // What the swatches are in print, where the current links say how that looks.
    void showLab() {
        const auto before = lab_ ? lab_(model_.onPaper(model_.current())) : std::nullopt;
        const auto after = lab_ ? lab_(model_.onPaper(model_.changed())) : std::nullopt;
        setText(window(), IDC_CUBE_BEFORE_LAB, before ? labText(*before) : L"");
        setText(window(), IDC_CUBE_AFTER_LAB, after ? labText(*after) : L"");
        setText(window(), IDC_CUBE_DIFFERENCE,
                before && after
                    ? L"Lab, \x0394" L"E00 " + tenthsText(quality::difference2000(*before, *after))
                    : L"");
    }

    // The file as it is now; a profile that has none began as one that changes nothing.
    void toggleFile() {
        recolour();
        if (model_.showsFile()) return model_.showInstead(nullptr);
        std::shared_ptr<CmykProfile> file(createProfile().release(), BlockDeleter());
        if (!file || (*profile_.path && !loadProfile(*file, profile_.path))) return;
        model_.showInstead(std::move(file));
    }

    void showMade() {
        std::vector<std::wstring> entries;
        for (size_t at = 0; at < model_.made().size(); ++at)
            entries.push_back(wideText(model_.madeText(at)));
        const bool any = !entries.empty();
        if (!any) entries.push_back(wideTranslated(texts::kNoChanges));
        if (entries != made_) {
            const HWND list = item(IDC_CUBE_MADE);
            ::SendMessageW(list, CB_RESETCONTENT, 0, 0);
            for (const std::wstring& entry : entries)
                ::SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.c_str()));
            ::SendMessageW(list, CB_SETCURSEL, entries.size() - 1, 0);
            made_ = std::move(entries);
        }
        enable(IDC_CUBE_TAKE_OUT, any);
    }

    void takeOut() {
        const LRESULT chosen = ::SendMessageW(item(IDC_CUBE_MADE), CB_GETCURSEL, 0, 0);
        if (chosen < 0) return;
        changedNodes_.reset();
        model_.takeOut(static_cast<size_t>(chosen));
        recolour();
    }

    void change() {
        changedNodes_ = model_.change();
        recolour();
    }

    void reread() {
        model_.reread();
        recolour();
    }
    // What was limited, or how many nodes the last change has changed: no box has to be closed.
    void showStatus() {
        if (changedNodes_ && !model_.notice())
            setText(window(), IDC_STATUS,
                    wideText(ColourCorrection::changedText(*changedNodes_), userEncoding()));
        else
            showNotice(window(), model_.notice());
    }

    void startAgain() override {
        changedNodes_.reset();
        model_.forgetMade();
        model_.showInstead(nullptr);
        reread();
        show();
    }
    void profileChanged() override {
        changedNodes_.reset();
        model_.showInstead(nullptr);
        model_.profileChanged();
        recolour();
        show();
    }
    void shown() override { frame_.pageHasEdited(); }

    void enableUndo() { enable(IDC_CUBE_UNDO, model_.canUndo()); }
    void enable(int control, bool on) {
        const HWND button = item(control);
        // A disabled control would keep the focus, and with it the keyboard.
        if (!on && ::GetFocus() == button)
            ::SendMessageW(::GetAncestor(window(), GA_ROOT), WM_NEXTDLGCTL,
                           reinterpret_cast<WPARAM>(item(IDC_CUBE_CHANGE)), TRUE);
        ::EnableWindow(button, on);
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
            fillArea(dc, {0, 0, size.width, size.height},
                     model_.displayed(colour, display_));
            return drawFrame(dc, {0, 0, size.width, size.height}, kBorder);
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
        drawFrame(dc, {0, 0, size.width, size.height}, kBorder);
        if (hasFocus) drawFocus(dc, size, 1);
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
        fillArea(dc, {0, 0, size.width, size.height}, kPaper);
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
        if (across) drawLine(dc, {mark, 0}, {mark, size.height}, kInk, thin);
        else drawLine(dc, {0, mark}, {size.width, mark}, kInk, thin);
    }

    static const SurfaceControl* surfaceOf(HWND control) {
        for (const SurfaceControl& each : kSurfaces)
            if (each.control == ::GetDlgCtrlID(control)) return &each;
        return nullptr;
    }

    void surfacePressed(HWND control, Size size, Point at) override {
        const SurfaceControl* const pressed = surfaceOf(control);
        if (pressed && model_.press(pressed->surface, size, at)) show();
    }
    void surfaceMoved(HWND control, Size size, Point at, bool held) override {
        if (held && surfaceOf(control) && model_.move(size, at)) show();
    }

    bool surfaceKey(HWND control, Size, WPARAM key) override {
        const SurfaceControl* const surface = surfaceOf(control);
        if (!surface) return false;
        const bool shift = ::GetKeyState(VK_SHIFT) < 0;
        const auto step = [&](Key direction, int times = 1) {
            bool changed = false;
            while (times-- > 0) changed = model_.step(surface->surface, direction, shift) || changed;
            if (changed) show();
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

    CmykProfile& profile_;
    ColourCorrection model_;
    PageFrame& frame_;
    ColourDisplay display_;
    ColourLab lab_;
    std::vector<std::wstring> made_;  // as the list has them
    Cells area_;
    std::optional<int32_t> changedNodes_;
    std::optional<std::array<int32_t, 2>> areaShown_;  // lightness and black of the area's picture
};

}  // namespace

Page makeCubePage(CmykProfile& profile, dialog::History& history, PageFrame& frame,
                  ColourDisplay display, ColourLab lab) {
    registerSurfaceClass();
    return std::make_unique<CorrectionPage>(profile, history, frame, display, std::move(lab));
}

}  // namespace ko::cmyk
