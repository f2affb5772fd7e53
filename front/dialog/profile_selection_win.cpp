// The view of the profile-setting dialog.
#include "front/dialog/profile_selection_win.h"

#include <algorithm>

#include "frame/dialog/dialog_win.h"
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

constexpr int kLists[] = {IDC_SELECT_RGB, IDC_SELECT_CMYK, IDC_SELECT_INTENT};

class SelectionDialog final : public ModalDialog {
public:
    explicit SelectionDialog(ProfileSelectionModel& model)
        : ModalDialog(Return::pressesDefault), model_(model) {}

private:
    void opened() override {
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
        DropDownWidth width(item(list));
        addEntry(list, wideTranslated(texts::kNotSet));
        for (int32_t profile = 0; profile < model_.profileCount(profiles); ++profile) {
            const std::wstring name = widePath(model_.fileName(profiles, profile));
            addEntry(list, name);
            width.add(name);
        }
        chooseEntry(list, model_.chosenEntry(profiles));
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
