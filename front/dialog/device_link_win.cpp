// The view of the device-link dialog: turns messages into commands of the model and shows what it
// says. Hosts may run the procedure themselves, so that an object is tied to its window by a
// property and lives as long as the window or a message that is being handled.
#include "front/dialog/device_link_win.h"

#include <shellapi.h>

#include <memory>

#include "frame/boundary.h"
#include "frame/dialog/ask_win.h"
#include "frame/dialog/dialog_win.h"
#include "frame/dialog/drawing_win.h"
#include "frame/dialog/text_win.h"
#include "front/dialog/colour_pick_win.h"
#include "front/dialog/device_link.h"
#include "front/dialog/link_result_win.h"
#include "front/front.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::front {
namespace {

using namespace dialog;

constexpr COLORREF kRefused = RGB(200, 0, 0), kUsable = RGB(0, 110, 0);
constexpr WPARAM kTypedPath = 1000;
constexpr wchar_t kProperty[] = L"KoLinkDeviceLink";

struct PathControls {
    LinkPath which;
    int edit, browse, fact;  // 0: it has none
};
constexpr PathControls kPaths[] = {
    {LinkPath::base, IDC_LINK_BASE, IDC_LINK_BROWSE_BASE, IDC_LINK_FACT_BASE},
    {LinkPath::source, IDC_LINK_SOURCE, IDC_LINK_BROWSE_SOURCE, IDC_LINK_FACT_SOURCE},
    {LinkPath::destination, IDC_LINK_DESTINATION, IDC_LINK_BROWSE_DESTINATION,
     IDC_LINK_FACT_DESTINATION},
    {LinkPath::black, IDC_LINK_BLACK, IDC_LINK_BROWSE_BLACK, IDC_LINK_FACT_BLACK},
    {LinkPath::output, IDC_LINK_OUTPUT, IDC_LINK_BROWSE_OUTPUT, 0},
};

struct Radio {
    int control;
    bool (DeviceLinkModel::*is)(int32_t) const noexcept;
    void (DeviceLinkModel::*choose)(int32_t);
    int32_t number;
};
using Model = DeviceLinkModel;
constexpr Radio kRadios[] = {
    {IDC_LINK_PERCEPTUAL, &Model::intentIs, &Model::chooseIntent, 0},
    {IDC_LINK_RELATIVE, &Model::intentIs, &Model::chooseIntent, 1},
    {IDC_LINK_SATURATION, &Model::intentIs, &Model::chooseIntent, 2},
    {IDC_LINK_KEEP_NONE, &Model::preservationIs, &Model::choosePreservation, 0},
    {IDC_LINK_KEEP_PRIMARIES, &Model::preservationIs, &Model::choosePreservation, 1},
    {IDC_LINK_KEEP_SECONDARIES, &Model::preservationIs, &Model::choosePreservation, 2},
    {IDC_LINK_WHITE_PROFILE, &Model::whiteModeIs, &Model::chooseWhiteMode, 0},
    {IDC_LINK_WHITE_NO_INK, &Model::whiteModeIs, &Model::chooseWhiteMode, 1},
    {IDC_LINK_WHITE_GIVEN, &Model::whiteModeIs, &Model::chooseWhiteMode, 2},
};

constexpr int kPaperControls[] = {IDC_LINK_SWATCH, IDC_LINK_AMOUNT_LABEL, IDC_LINK_AMOUNT,
                                  IDC_LINK_AMOUNT_UNIT};

// Keys and clicks that came while the thread was busy would answer a message that nobody has seen.
void forgetInput() noexcept {
    MSG message;
    while (::PeekMessageW(&message, nullptr, WM_KEYFIRST, WM_KEYLAST, PM_REMOVE)) {}
    while (::PeekMessageW(&message, nullptr, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE)) {}
}

class DeviceLinkDialog final : public Dialog, public DeviceLinkHost {
public:
    static INT_PTR open(HWND window, CmsLinkSettings* record);
    static std::shared_ptr<DeviceLinkDialog> of(HWND window) noexcept;
    INT_PTR told(UINT message, WPARAM wParam, LPARAM lParam);

    DeviceLinkDialog(HWND window, CmsLinkSettings* record, const CmsLinkSettings& settings)
        : record_(record), model_(settings) {
        attach(window);
    }

private:
    using Holder = std::shared_ptr<DeviceLinkDialog>;

    std::optional<TypedPath> choosePath(LinkPath which, Choice choice, std::string_view initial,
                                        std::string_view filter) override;
    uint32_t pickColour(uint32_t cmyk) override { return front::pickColour(window(), cmyk); }
    void tell(std::string_view text, Icon icon) override;
    void showResult(const cmyk::LinkResult& result) override;
    void tellProblem(std::string_view text, const cmyk::LinkProblem& problem) override;
    bool ask(std::string_view question, std::string_view path) override;
    void showStatus();

    INT_PTR started(bool) noexcept override { return TRUE; }
    void opened() override;
    void closing() override;
    void shown() override;
    INT_PTR message(UINT message, WPARAM wParam, LPARAM lParam) override;
    void create();
    void leavePath(const PathControls& path);
    void leaveAmount();
    void drop(HDROP files);
    void takeFields();
    void showPath(const PathControls& path);
    void enablePaper();
    void paperChanged() noexcept { ::PostMessageW(window(), WM_COMMAND, IDC_LINK_SHOW_PAPER, 0); }
    void showPaper() noexcept;
    bool drawItem(const DRAWITEMSTRUCT& drawing) override;
    INT_PTR colourOf(HDC dc, int control) const;
    INT_PTR colourOfFact(HDC dc, int control) const;
    void showFact(const PathControls& path);

    CmsLinkSettings* record_;
    DeviceLinkModel model_;
    std::unique_ptr<ChildDialog> result_;  // when a link was made
    static RememberedPlace place_;
};

RememberedPlace DeviceLinkDialog::place_;

std::shared_ptr<DeviceLinkDialog> DeviceLinkDialog::of(HWND window) noexcept {
    // Of this thread, or the property could be another process's.
    if (!window || ::GetWindowThreadProcessId(window, nullptr) != ::GetCurrentThreadId())
        return nullptr;
    auto* const holder = static_cast<Holder*>(::GetPropW(window, kProperty));
    return holder ? *holder : nullptr;
}

INT_PTR DeviceLinkDialog::open(HWND window, CmsLinkSettings* record) {
    const auto has = [&](int control) { return ::GetDlgItem(window, control) != nullptr; };
    if (!window || ::GetWindowThreadProcessId(window, nullptr) != ::GetCurrentThreadId() ||
        !has(IDC_LINK_BASE) || !has(IDC_LINK_SWATCH) || of(window))
        return FALSE;
    CmsLinkSettings settings;
    initSettings(settings);
    if (record) settings = *record;
    auto holder = std::make_unique<Holder>(
        std::make_shared<DeviceLinkDialog>(window, record, settings));
    if (!::SetPropW(window, kProperty, holder.get())) return FALSE;
    const auto& dialog = *holder.release();
    dialog->opened();
    dialog->show();
    return TRUE;
}

INT_PTR DeviceLinkDialog::told(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NOTIFY) return FALSE;  // from none of its controls
    if (message != WM_NCDESTROY) return receive(message, wParam, lParam);
    delete static_cast<Holder*>(::RemovePropW(window(), kProperty));
    attach(nullptr);
    return FALSE;
}

INT_PTR DeviceLinkDialog::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CTLCOLOREDIT:
            return colourOf(reinterpret_cast<HDC>(wParam),
                            ::GetDlgCtrlID(reinterpret_cast<HWND>(lParam)));
        case WM_CTLCOLORSTATIC:
            return colourOfFact(reinterpret_cast<HDC>(wParam),
                                ::GetDlgCtrlID(reinterpret_cast<HWND>(lParam)));
        case WM_DROPFILES:
            if (isIdle()) drop(reinterpret_cast<HDROP>(wParam));
            ::DragFinish(reinterpret_cast<HDROP>(wParam));
            return TRUE;
        case WM_PAINT: paperChanged(); return FALSE;
        default: return FALSE;
    }
}

void DeviceLinkDialog::opened() {
    translateTexts(window());
    centreFields(window());
    for (const PathControls& path : kPaths) {
        // Longer than any path that is taken, so that none is cut unseen.
        ::SendMessageW(item(path.edit), EM_SETLIMITTEXT, kTypedPath, 0);
        add({{.id = path.edit,
              .show = [=, this] { showPath(path); },
              .leave = [=, this] { leavePath(path); }},
             {.id = path.browse, .press = [=, this] { model_.browse(path.which, *this); }}});
    }
    ::SendMessageW(item(IDC_LINK_AMOUNT), EM_SETLIMITTEXT, 3, 0);
    for (const Radio& radio : kRadios) {
        ::CheckDlgButton(window(), radio.control,
                         (model_.*radio.is)(radio.number) ? BST_CHECKED : BST_UNCHECKED);
        add({{.id = radio.control,
              .press =
                  [=, this] {
                      (model_.*radio.choose)(radio.number);
                      paperChanged();
                  }}});
    }
    add({
        {.id = IDC_LINK_AMOUNT,
         .show = [this] { setText(window(), IDC_LINK_AMOUNT, model_.amountText()); },
         .leave = [this] { leaveAmount(); }},
        {.id = IDC_LINK_SWATCH,
         .press =
             [this] {
                 if (model_.pickPaperColour(*this) && window()) paperChanged();
             }},
        {.id = IDC_LINK_SHOW_PAPER, .order = [this] { showPaper(); }},
        {.id = IDOK, .press = [this] { create(); }},
        {.id = IDCANCEL, .press = [this] { end(0); }},
    });
    ::DragAcceptFiles(window(), TRUE);
    if (!place_.known) place_.remember(window());
    place_.apply(window());
}

void DeviceLinkDialog::create() {
    takeFields();
    // What the making covers with its work stands painted behind it.
    ::RedrawWindow(window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const bool made = model_.create(*this);
    if (!window()) return;  // its owner was destroyed under the message
    if (made) {
        if (record_) *record_ = model_.settings();
        return end(1);
    }
    for (const PathControls& path : kPaths)
        if (model_.failedField() == path.which)
            ::SendMessageW(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(item(path.edit)), TRUE);
}

void DeviceLinkDialog::closing() {
    // The result may have moved the window up; its place is the one from before.
    if (!result_) place_.remember(window());
    record_ = nullptr;
}

void DeviceLinkDialog::leavePath(const PathControls& path) {
    const std::wstring typed = textOf(window(), path.edit);
    if (typed != widePath(model_.path(path.which)) || model_.isRefused(path.which))
        model_.leavePath(path.which, systemPath(typed));
}

// A file that is dropped on a path's field.
void DeviceLinkDialog::drop(HDROP files) {
    wchar_t name[1024];
    POINT at;
    if (!::DragQueryFileW(files, 0, name, std::size(name)) || !::DragQueryPoint(files, &at)) return;
    ::ClientToScreen(window(), &at);
    for (const PathControls& path : kPaths) {
        RECT field;
        ::GetWindowRect(item(path.edit), &field);
        if (!::PtInRect(&field, at)) continue;
        setText(window(), path.edit, std::wstring_view(name));
        model_.leavePath(path.which, systemPath(name));
        show();
    }
}

// Percent is coarser than the setting, so that a field which nobody touched leaves it as it is.
void DeviceLinkDialog::leaveAmount() {
    const std::string typed = numberOf(window(), IDC_LINK_AMOUNT);
    const HWND edit = item(IDC_LINK_AMOUNT);
    if (!::SendMessageW(edit, EM_GETMODIFY, 0, 0) && typed == model_.amountText()) return;
    model_.leaveAmount(typed);
    ::SendMessageW(edit, EM_SETMODIFY, FALSE, 0);
}

// The default button and access keys press a button while a field has the focus, and other
// programs fill fields without it.
void DeviceLinkDialog::takeFields() {
    for (const PathControls& path : kPaths) leavePath(path);
    leaveAmount();
}

void DeviceLinkDialog::showPath(const PathControls& path) {
    if (!model_.isRefused(path.which))
        setText(window(), path.edit, widePath(model_.path(path.which)));
    ::InvalidateRect(item(path.edit), nullptr, FALSE);
    if (path.fact) showFact(path);
}

void DeviceLinkDialog::showFact(const PathControls& path) {
    std::wstring text;
    if (const auto& fact = model_.fact(path.which)) {
        text = wideRecordText(fact->description);
        const auto put = [&](const std::wstring& part) {
            if (!part.empty()) text += (text.empty() ? L"" : L" - ") + part;
        };
        if (*fact->kind) put(wideTranslated(fact->kind));
        put(wideText(fact->conversion));
        if (fact->problem) text = wideProblem(*fact->problem);
    }
    setText(window(), path.fact, text);
    ::InvalidateRect(item(path.fact), nullptr, TRUE);
}

INT_PTR DeviceLinkDialog::colourOfFact(HDC dc, int control) const {
    for (const PathControls& path : kPaths) {
        if (path.fact != control || !model_.fact(path.which)) continue;
        ::SetTextColor(dc, model_.fact(path.which)->problem ? kRefused : kUsable);
        ::SetBkColor(dc, ::GetSysColor(COLOR_BTNFACE));
        return reinterpret_cast<INT_PTR>(::GetSysColorBrush(COLOR_BTNFACE));
    }
    return FALSE;
}

// Why a path is refused, in words beside the colour.
void DeviceLinkDialog::showStatus() {
    const auto refused = model_.firstRefused();
    showNotice(window(), refused ? model_.refusal(*refused) : model_.amountNotice());
}

void DeviceLinkDialog::shown() {
    enablePaper();
    showStatus();
}

void DeviceLinkDialog::enablePaper() {
    for (const int control : kPaperControls)
        if ((::IsWindowEnabled(item(control)) != FALSE) != model_.hasPaperColour())
            ::EnableWindow(item(control), model_.hasPaperColour());
}

void DeviceLinkDialog::showPaper() noexcept {
    enablePaper();
    ::InvalidateRect(item(IDC_LINK_SWATCH), nullptr, FALSE);
}

bool DeviceLinkDialog::drawItem(const DRAWITEMSTRUCT& drawing) {
    if (drawing.CtlID != IDC_LINK_SWATCH) return false;
    const Canvas canvas(drawing.hDC, drawing.rcItem);
    const Size size = canvas.size();
    const COLORREF colour = model_.swatch().value_or(::GetSysColor(COLOR_BTNFACE));
    const RECT whole{0, 0, size.width, size.height};
    fillArea(canvas.dc(), whole, colour);
    drawFrame(canvas.dc(), whole, ::GetSysColor(COLOR_BTNSHADOW));
    if (drawing.itemState & ODS_FOCUS) drawFocus(canvas.dc(), size, 2);
    return true;
}

INT_PTR DeviceLinkDialog::colourOf(HDC dc, int control) const {
    for (const PathControls& path : kPaths) {
        if (path.edit != control || !model_.isRefused(path.which)) continue;
        ::SetTextColor(dc, kRefused);
        ::SetBkColor(dc, ::GetSysColor(COLOR_WINDOW));
        return reinterpret_cast<INT_PTR>(::GetSysColorBrush(COLOR_WINDOW));
    }
    return FALSE;
}

std::optional<TypedPath> DeviceLinkDialog::choosePath(LinkPath which, Choice choice,
                                                      std::string_view initial,
                                                      std::string_view filter) {
    const auto file =
        chooseFile(window(), choice == Choice::fileToSave ? FileChoice::save : FileChoice::open,
                   initial, wideTranslated(filter));
    if (!file) return std::nullopt;
    for (const PathControls& path : kPaths)
        if (path.which == which) setText(window(), path.edit, *file);  // shown even if refused
    return systemPath(*file);
}

void DeviceLinkDialog::tell(std::string_view text, Icon icon) {
    forgetInput();
    const auto message = result_ ? showMessageAbove : showMessage;
    message(window(), wideTranslated(texts::kLinkCaption), wideTranslated(text),
            MB_OK | (icon == Icon::information ? MB_ICONINFORMATION : MB_ICONEXCLAMATION));
}

// The dialog closes over its message of success: until that is answered the result is there.
void DeviceLinkDialog::showResult(const cmyk::LinkResult& result) {
    place_.remember(window());
    result_ = showLinkResult(window(), result);
    if (result_)
        ::RedrawWindow(window(), nullptr, nullptr,
                       RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
}

void DeviceLinkDialog::tellProblem(std::string_view text, const cmyk::LinkProblem& problem) {
    forgetInput();
    std::wstring whole = wideTranslated(text) + L"\n\n";
    std::wstring shown = widePath(problem.path);
    for (const PathControls& path : kPaths)  // as it stands in the field, also when it is refused
        if (path.which == problem.field && shown.empty()) shown = textOf(window(), path.edit);
    whole += shown.empty() ? wideProblem(problem.problem) : wideProblem(shown, problem.problem);
    showMessage(window(), wideTranslated(texts::kLinkCaption), whole, MB_OK | MB_ICONEXCLAMATION);
}

bool DeviceLinkDialog::ask(std::string_view question, std::string_view path) {
    return showMessage(window(), wideTranslated(texts::kLinkCaption),
                       filled(wideTranslated(question), {widePath(path)}),
                       MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
}

}  // namespace

INT_PTR deviceLinkMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    // An exception must not pass through the system's frames: a dialog that cannot open ends, a
    // message that cannot be handled is left alone.
    if (message == WM_INITDIALOG)
        return atBoundary<INT_PTR>(FALSE, [&] {
            try {
                return DeviceLinkDialog::open(window, reinterpret_cast<CmsLinkSettings*>(lParam));
            } catch (...) {
                ::EndDialog(window, -1);
                throw;
            }
        });
    const auto dialog = DeviceLinkDialog::of(window);  // held while the message is handled
    if (!dialog) return FALSE;
    return atBoundary<INT_PTR>(FALSE, [&] { return dialog->told(message, wParam, lParam); });
}

}  // namespace ko::front
