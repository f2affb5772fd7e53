// The view of the CMYK profile dialog: the frame with name, comment, files and the tabs.

#include <array>
#include <stdexcept>
#include <utility>

#include "cmyk/dialog/profile_dialog.h"
#include "cmyk/dialog/profile_editor.h"
#include "cmyk/link_check.h"
#include "frame/dialog/drawing_win.h"
#include "frame/dialog/editor_win.h"
#include "frame/dialog/surface_win.h"
#include "frame/dialog/text_win.h"
#include "frame/path.h"
#include "frame/text.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::cmyk {
namespace {

using namespace dialog;

RememberedPlace rememberedPlace;  // of the one profile dialog

class ProfileDialog final : public EditorDialog, public PageFrame {
public:
    ProfileDialog(CmykProfile& profile, ColourDisplay display, ColourLab lab)
        : EditorDialog(editor_), editor_(profile),
          pages_{{{makeTonePage(profile, editor_.steps(), *this), L"PROFILETONEDLG",
                   texts::kTonePage},
                  {makeCubePage(profile, editor_.steps(), *this, display, std::move(lab)),
                   L"PROFILECUBEDLG", texts::kCorrectionPage}}} {}

private:
    struct Tab {
        Page page;
        const wchar_t* templateName;
        const char* title;
    };

    void opened() override {
        rememberedPlace.apply(window());
        ::SendMessageW(item(IDC_TITLE), EM_SETLIMITTEXT, KOLINK_NAME_SIZE - 1, 0);
        ::SendMessageW(item(IDC_COMMENT), EM_SETLIMITTEXT, KOLINK_COMMENT_SIZE - 1, 0);
        const RECT area = pageArea();
        for (size_t at = 0; at < pages_.size(); ++at) {
            std::wstring title = wideTranslated(pages_[at].title);
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
        addControls();
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
            pages_[at].page->setVisible(false);
        }
        if (shown < pages_.size()) pages_[shown].page->setVisible(true);
    }

    void closing() override {
        rememberedPlace.remember(window());
        for (const Tab& tab : pages_) tab.page->destroy();
    }

    void addControls() {
        add({
            {.id = IDC_TITLE,
             .show = [this] { setText(window(), IDC_TITLE, editor_.name()); },
             .leave = [this] { editor_.leaveName(shiftJisText(textOf(window(), IDC_TITLE))); }},
            {.id = IDC_COMMENT,
             .show = [this] { setText(window(), IDC_COMMENT, editor_.comment()); },
             .leave = [this] { editor_.leaveComment(shiftJisText(textOf(window(), IDC_COMMENT))); }},
            {.id = IDC_PAGES, .press = [this] { showPage(chosenPage()); }},
            {.id = IDC_NEW, .press = [this] { startNew(); }},
        });
        addFileButtons();
        acceptDroppedFiles();
    }

    size_t chosenPage() const {
        return static_cast<size_t>(::SendMessageW(item(IDC_PAGES), TCM_GETCURSEL, 0, 0));
    }

    void startNew() {
        if (!editor_.startNew(host())) return;
        for (const Tab& tab : pages_) tab.page->startAgain();
    }

    std::optional<Problem> openFile(const std::string& path) override {
        bool opened = false;
        auto problem = editor_.open(path, host(), opened);
        if (opened)
            for (const Tab& tab : pages_) tab.page->startAgain();
        return problem;
    }

    void shown() override {
        setCaption(
            filled(wideTranslated(texts::kProfileEditCaption), {widePath(editor_.path())}));
    }

    void accept() override {  // saves, so that it need not ask
        if (editor_.saveAndClose(host())) end(1);
    }

    void stepTaken() override {
        for (const Tab& tab : pages_) tab.page->profileChanged();
    }
    void pageHasEdited() override { shown(); }
    void undo() override { undoStep(); }

    bool shortcut(const MSG& key) override {
        if (key.wParam != VK_TAB || ::GetKeyState(VK_CONTROL) >= 0) return EditorDialog::shortcut(key);
        const size_t next = (chosenPage() + 1) % pages_.size();
        ::SendMessageW(item(IDC_PAGES), TCM_SETCURSEL, next, 0);
        showPage(next);
        return true;
    }

    ProfileEditor editor_;
    std::array<Tab, 2> pages_;
};

}  // namespace

bool editProfile(HWND owner, char* path, ColourDisplay display, ColourLab lab) {
    if (!path) return false;
    const Block<CmykProfile> profile = createProfile();
    if (!profile) return false;
    if (!fileNameOf(path).empty()) {
        // A profile of another kind would be overwritten by a link that prints nothing.
        const auto problem = whyNoLink(path);
        if (problem || !loadProfile(*profile, path)) {
            const bool missing = !problem || *problem == Problem{texts::kFileMissing} ||
                                 *problem == Problem{texts::kFolderMissing};
            showMessage(owner, wideTranslated(texts::kProfileErrorCaption),
                        missing ? wideTranslated(texts::kProfileMissing)
                                : wideProblem(widePath(path), *problem),
                        MB_OK | MB_ICONEXCLAMATION);
            return false;
        }
    }
    if (!copyPath(profile->path, path)) return false;
    registerSurfaceClass();
    registerTabsAndSpins();
    const INT_PTR result =
        ProfileDialog(*profile, display, std::move(lab)).run(owner, L"PROFILEDLG");
    (void)copyPath(std::span(path, KOLINK_PATH_SIZE), profile->path);
    return result == 1;
}

}  // namespace ko::cmyk
