// The view of the CMYK profile dialog: the frame with name, comment, files and the tabs.
#include <array>
#include <stdexcept>

#include "cmyk/dialog/profile_dialog.h"
#include "cmyk/dialog/profile_editor.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::cmyk {
namespace {

using namespace dialog;

RememberedPlace rememberedPlace;  // of the one profile dialog

class ProfileDialog final : public ModalDialog {
public:
    ProfileDialog(CmykProfile& profile, ColourDisplay display)
        : editor_(profile),
          pages_{{{makeTonePage(profile), L"PROFILETONEDLG", texts::kTonePage, IDC_RESET},
                  {makeCubePage(profile, display), L"PROFILECUBEDLG", texts::kCorrectionPage,
                   kRedrawCorrection}}} {}

private:
    struct Tab {
        Page page;
        const wchar_t* templateName;
        const char* title;
        int startAgain;  // the button that stands for a new profile
    };
    static constexpr int kRedrawCorrection = 1033;

    void opened() override {
        rememberedPlace.apply(window());
        ::SendMessageW(item(IDC_TITLE), EM_SETLIMITTEXT, KOLINK_NAME_SIZE - 1, 0);
        ::SendMessageW(item(IDC_COMMENT), EM_SETLIMITTEXT, KOLINK_COMMENT_SIZE - 1, 0);
        const RECT area = pageArea();
        for (size_t at = 0; at < pages_.size(); ++at) {
            std::wstring title = wideText(pages_[at].title);
            TCITEMW tab{};
            tab.mask = TCIF_TEXT;
            tab.pszText = title.data();
            ::SendMessageW(item(IDC_PAGES), TCM_INSERTITEMW, at, reinterpret_cast<LPARAM>(&tab));
            if (!pages_[at].page->create(window(), pages_[at].templateName))
                throw std::runtime_error("a page cannot be opened");
            takeTabBackground(pages_[at].page->window());
            pages_[at].page->place(area, item(IDC_COMMENT));
        }
        showPage(0);
        showAll();
    }

    // As large as the tabs less 10 across and 30 down (at 96 dpi): below the tabs' own row and
    // within their edge.
    RECT pageArea() const {
        RECT tabs;
        ::GetWindowRect(item(IDC_PAGES), &tabs);
        ::MapWindowPoints(nullptr, window(), reinterpret_cast<POINT*>(&tabs), 2);
        const HDC dc = ::GetDC(window());
        const int across = scaled(dc, 10), down = scaled(dc, 30), edge = across / 2;
        ::ReleaseDC(window(), dc);
        return {tabs.left + edge, tabs.top + down - edge, tabs.right - across + edge,
                tabs.bottom - edge};
    }

    void showPage(size_t shown) {
        for (size_t at = 0; at < pages_.size(); ++at) {
            if (at == shown) continue;
            // A focus on a page that goes would be lost.
            if (::IsChild(pages_[at].page->window(), ::GetFocus())) ::SetFocus(item(IDC_PAGES));
            pages_[at].page->show(false);
        }
        if (shown < pages_.size()) pages_[shown].page->show(true);
    }

    void closing() override {
        rememberedPlace.remember(window());
        for (const Tab& tab : pages_) tab.page->destroy();
    }

    INT_PTR message(UINT message, WPARAM, LPARAM lParam) override {
        if (message != WM_NOTIFY) return FALSE;
        const auto& told = *reinterpret_cast<const NMHDR*>(lParam);
        if (told.idFrom != IDC_PAGES || told.code != TCN_SELCHANGE) return FALSE;
        showPage(static_cast<size_t>(::SendMessageW(item(IDC_PAGES), TCM_GETCURSEL, 0, 0)));
        return TRUE;
    }

    bool command(int control, int notification) override {
        if (notification == EN_KILLFOCUS) return leave(control);
        if (notification != BN_CLICKED) return false;
        leaveFocusedField();
        return press(control);
    }

    bool press(int button) {
        WindowHost host(window());
        switch (button) {
            case IDOK:
                editor_.save(host);
                end(1);
                return true;
            case IDCANCEL: end(0); return true;
            case IDC_SAVE: editor_.save(host); break;
            case IDC_SAVE_AS: editor_.saveAs(host); break;
            case IDC_NEW:
                if (editor_.startNew(host)) startPagesAgain();
                break;
            default: return false;
        }
        showAll();
        return true;
    }

    void startPagesAgain() {
        for (const Tab& tab : pages_)
            ::SendMessageW(tab.page->window(), WM_COMMAND, MAKEWPARAM(tab.startAgain, BN_CLICKED),
                           reinterpret_cast<LPARAM>(tab.page->item(tab.startAgain)));
    }

    bool leave(int field) {
        if (field == IDC_TITLE) editor_.leaveName(shiftJisText(textOf(window(), field)));
        if (field == IDC_COMMENT) editor_.leaveComment(shiftJisText(textOf(window(), field)));
        showAll();
        return true;
    }

    void showAll() {
        const std::wstring caption = filled(texts::kProfileEditCaption, widePath(editor_.path()));
        ::SetWindowTextW(window(), caption.c_str());
        setText(window(), IDC_TITLE, editor_.name());
        setText(window(), IDC_COMMENT, editor_.comment());
    }

    ProfileEditor editor_;
    std::array<Tab, 2> pages_;
};

}  // namespace

int32_t editProfile(HWND owner, char* path, ColourDisplay display) {
    if (!path) return 0;
    const Block<CmykProfile> profile = createProfile();
    if (!profile) return 0;
    if (!fileNameOf(path).empty() && !loadProfile(*profile, path)) {
        showMessage(owner, wideText(texts::kProfileErrorCaption), wideText(texts::kProfileMissing),
                    MB_OK | MB_ICONEXCLAMATION);
        return 0;
    }
    if (!copyPath(profile->path, path)) return 0;
    registerGraphClass();
    registerTabsAndSpins();
    const INT_PTR result = ProfileDialog(*profile, display).run(owner, L"PROFILEDLG");
    (void)copyPath(std::span(path, KOLINK_PATH_SIZE), profile->path);
    return result == 1;
}

}  // namespace ko::cmyk
