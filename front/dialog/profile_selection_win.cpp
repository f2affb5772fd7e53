// The view of the profile-setting dialog.
#include "front/dialog/profile_selection_win.h"

#include <algorithm>

#include "frame/dialog/ask_win.h"
#include "frame/dialog/dialog_win.h"
#include "frame/dialog/drawing_win.h"
#include "frame/dialog/text_win.h"
#include "frame/state.h"
#include "front/dialog/profile_selection.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::front {
namespace {

using namespace dialog;

// As wide as the longest entry needs, as far as the screen is; the closed list stays as it is.
class DropDownWidth {
public:
    explicit DropDownWidth(HWND list) : list_(list), dc_(::GetDC(list)) {
        const auto font = reinterpret_cast<HGDIOBJ>(::SendMessageW(list, WM_GETFONT, 0, 0));
        previous_ = ::SelectObject(dc_, font);
    }
    ~DropDownWidth() {
        const int edges = ::GetSystemMetrics(SM_CXVSCROLL) + 6 * ::GetSystemMetrics(SM_CXEDGE);
        const int width = std::min(longest_ + edges, ::GetSystemMetrics(SM_CXSCREEN));
        ::SendMessageW(list_, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(width), 0);
        ::SelectObject(dc_, previous_);
        ::ReleaseDC(list_, dc_);
    }
    DropDownWidth(const DropDownWidth&) = delete;
    DropDownWidth& operator=(const DropDownWidth&) = delete;

    void add(const std::wstring& text) {
        SIZE size{};
        ::GetTextExtentPoint32W(dc_, text.c_str(), static_cast<int>(text.size()), &size);
        longest_ = std::max<int>(longest_, size.cx);
    }

private:
    HWND list_;
    HDC dc_;
    HGDIOBJ previous_ = nullptr;
    int longest_ = 0;
};

constexpr COLORREF kUnreadable = RGB(200, 0, 0), kDescription = RGB(0, 110, 0);
constexpr int kLists[] = {IDC_SELECT_RGB, IDC_SELECT_CMYK, IDC_SELECT_INTENT};

class SelectionDialog final : public ModalDialog {
public:
    explicit SelectionDialog(ProfileSelectionModel& model)
        : ModalDialog(Return::pressesDefault), model_(model) {}

private:
    void opened() override {
        for (const int list : {IDC_SELECT_RGB, IDC_SELECT_CMYK}) setEntryHeight(list);
        add({{.id = IDC_SELECT_BROWSE_RGB,
              .press = [this] { browse(IDC_SELECT_RGB, ProfileList::rgb); }},
             {.id = IDC_SELECT_BROWSE_CMYK,
              .press = [this] { browse(IDC_SELECT_CMYK, ProfileList::cmyk); }}});
        for (const int list : kLists) add({{.id = list, .press = [=, this] { take(list); }}});
        add({{.id = IDOK, .press = [this] { accept(); }},
             {.id = IDCANCEL, .press = [this] { end(0); }}});
        fill(IDC_SELECT_RGB, ProfileList::rgb);
        fill(IDC_SELECT_CMYK, ProfileList::cmyk);
        for (const char* const intent : texts::kIntents)
            addEntry(IDC_SELECT_INTENT, wideTranslated(intent));
        chooseEntry(IDC_SELECT_INTENT, model_.record().intent);
    }

    void addEntry(int list, const std::wstring& text) {
        ::SendMessageW(item(list), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    void chooseEntry(int list, int32_t entry) {
        ::SendMessageW(item(list), CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
    }
    int32_t entryOf(int list) const {
        return static_cast<int32_t>(::SendMessageW(item(list), CB_GETCURSEL, 0, 0));
    }

    void fill(int list, ProfileList profiles) {
        ::SendMessageW(item(list), CB_RESETCONTENT, 0, 0);
        DropDownWidth width(item(list));
        addEntry(list, wideTranslated(texts::kNotSet));
        for (int32_t profile = 0; profile < model_.profileCount(profiles); ++profile) {
            const std::wstring name = widePath(model_.fileName(profiles, profile));
            addEntry(list, name);
            width.add(name);
        }
        chooseEntry(list, model_.chosenEntry(profiles));
    }

    // As the system makes those of a list that it draws itself.
    void setEntryHeight(int list) {
        const LRESULT shown = ::SendMessageW(item(IDC_SELECT_INTENT), CB_GETITEMHEIGHT,
                                             static_cast<WPARAM>(-1), 0);
        const LRESULT entry = ::SendMessageW(item(IDC_SELECT_INTENT), CB_GETITEMHEIGHT, 0, 0);
        ::SendMessageW(item(list), CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), shown);
        ::SendMessageW(item(list), CB_SETITEMHEIGHT, 0, entry);
    }

    // The file's name, and beside it what the profile says of itself, or why it cannot be read.
    bool drawItem(const DRAWITEMSTRUCT& drawing) override {
        const bool isRgb = drawing.CtlID == IDC_SELECT_RGB;
        if (!isRgb && drawing.CtlID != IDC_SELECT_CMYK) return false;
        const ProfileList list = isRgb ? ProfileList::rgb : ProfileList::cmyk;
        const HDC dc = drawing.hDC;
        const bool chosen = (drawing.itemState & ODS_SELECTED) != 0;
        RECT area = drawing.rcItem;
        fillArea(dc, area, ::GetSysColor(chosen ? COLOR_HIGHLIGHT : COLOR_WINDOW));
        const auto entry = static_cast<int32_t>(drawing.itemID);
        if (entry < 0 || entry > model_.profileCount(list)) return true;
        ::SetBkMode(dc, TRANSPARENT);
        area.left += scaled(dc, 2);
        const auto put = [&](const std::wstring& text, COLORREF colour) {
            ::SetTextColor(dc, ::GetSysColor(COLOR_HIGHLIGHTTEXT));
            if (!chosen) ::SetTextColor(dc, colour);
            ::DrawTextW(dc, text.c_str(), -1, &area,
                        DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
            SIZE size{};
            ::GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
            area.left = std::min(area.right, area.left + size.cx + scaled(dc, 12));
        };
        if (entry == 0) {
            put(wideTranslated(texts::kNotSet), ::GetSysColor(COLOR_WINDOWTEXT));
        } else {
            put(widePath(model_.fileName(list, entry - 1)), ::GetSysColor(COLOR_WINDOWTEXT));
            const ProfileWords& words = model_.wordsOf(list, entry - 1);
            put(words.problem ? wideProblem(*words.problem) : wideRecordText(words.description),
                words.problem ? kUnreadable : kDescription);
        }
        if (drawing.itemState & ODS_FOCUS) ::DrawFocusRect(dc, &drawing.rcItem);
        return true;
    }

    void browse(int list, ProfileList profiles) {
        const auto& record = model_.record();
        const std::string now = profiles == ProfileList::rgb ? record.rgbPath : record.cmykPath;
        const auto chosen = chooseFile(window(), FileChoice::open, now,
                                       wideTranslated(texts::kLinkOutputFilter));
        if (!chosen || !window()) return;
        NamedPath named = namedPath(*chosen);
        if (named.path) named.problem = model_.addProfile(profiles, *named.path);
        if (named.problem)
            showMessage(window(), wideTranslated(texts::kProfileErrorCaption),
                        wideProblem(*chosen, *named.problem), MB_OK | MB_ICONEXCLAMATION);
        else
            fill(list, profiles);
    }

    // What a list shows is what counts, also when its opened part was escaped from.
    void accept() {
        for (const int list : kLists) take(list);
        end(1);
    }

    void take(int list) {
        switch (list) {
            case IDC_SELECT_RGB: model_.chooseEntry(ProfileList::rgb, entryOf(list)); break;
            case IDC_SELECT_CMYK: model_.chooseEntry(ProfileList::cmyk, entryOf(list)); break;
            case IDC_SELECT_INTENT: model_.chooseIntent(entryOf(list)); break;
            default: break;
        }
    }

    ProfileSelectionModel& model_;
};

}  // namespace

bool selectProfiles(HWND owner, ProfileSelection& selection) {
    ProfileSelectionModel model(selection, processState().productFolder);
    const std::wstring name = wideTranslated(texts::kSelectionTemplate);
    if (SelectionDialog(model).run(owner, name.c_str()) != 1) return false;
    selection = model.record();
    return true;
}

}  // namespace ko::front
