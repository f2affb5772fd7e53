#include "frame/dialog/editor_win.h"

#include <shellapi.h>

#include <iterator>
#include <string_view>

#include "frame/dialog/text_win.h"
#include "resources/dialog_ids.h"
#include "resources/texts.h"

namespace ko::dialog {
namespace {
constexpr int kDropped = 100;  // a command without a control
}

void EditorDialog::addFileButtons() {
    add({
        {.id = IDOK, .press = [this] { accept(); }},
        {.id = IDCANCEL, .press = [this] { cancel(); }},
        {.id = IDC_SAVE, .press = [this] { (void)document_.save(host_); }},
        {.id = IDC_SAVE_AS, .press = [this] { (void)document_.saveAs(host_); }},
    });
}

void EditorDialog::setCaption(const std::wstring& caption) const {
    const std::wstring marked = document_.isChanged() ? caption + L" *" : caption;
    wchar_t now[1024];
    const int length = ::GetWindowTextW(window(), now, static_cast<int>(std::size(now)));
    if (std::wstring_view(now, static_cast<size_t>(length)) != marked)  // it would flicker
        ::SetWindowTextW(window(), marked.c_str());
}

void EditorDialog::accept() {
    if (document_.mayClose(host_)) end(1);
}

void EditorDialog::cancel() {
    if (document_.mayClose(host_)) end(0);
}

void EditorDialog::stepped(bool done) {
    if (!done) return;
    stepTaken();
    show();
}

INT_PTR EditorDialog::message(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_DROPFILES) return ModalDialog::message(message, wParam, lParam);
    const auto files = reinterpret_cast<HDROP>(wParam);
    wchar_t name[1024];
    const bool named = ::DragQueryFileW(files, 0, name, std::size(name)) != 0;
    ::DragFinish(files);
    // As a press of a button: nothing else is done meanwhile.
    if (named) dropped_ = name;
    if (named) ::SendMessageW(window(), WM_COMMAND, MAKEWPARAM(kDropped, BN_CLICKED), 0);
    return TRUE;
}

void EditorDialog::acceptDroppedFiles() {
    ::DragAcceptFiles(window(), TRUE);
    add({{.id = kDropped, .press = [this] { drop(dropped_); }}});
}

void EditorDialog::drop(const std::wstring& file) {
    NamedPath named = namedPath(file);
    if (named.path) named.problem = openFile(*named.path);
    if (named.problem)
        showMessage(window(), wideTranslated(texts::kProfileErrorCaption),
                    wideProblem(file, *named.problem), MB_OK | MB_ICONEXCLAMATION);
    stepTaken();
    show();
}

bool EditorDialog::shortcut(const MSG& key) {
    const bool control = ::GetKeyState(VK_CONTROL) < 0 && ::GetKeyState(VK_MENU) >= 0;
    if (control && isIdle() && (key.wParam == 'Z' || key.wParam == 'Y')) {
        // What has been typed into a field and not left yet is the field's own to take back.
        if (isFieldInUse(key.hwnd)) return false;
        const bool redo = key.wParam == 'Y' || ::GetKeyState(VK_SHIFT) < 0;
        stepped(redo ? document_.redo() : document_.undo());
        return true;
    }
    return ModalDialog::shortcut(key);
}

}  // namespace ko::dialog
