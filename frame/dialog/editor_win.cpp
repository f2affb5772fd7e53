#include "frame/dialog/editor_win.h"

#include <iterator>
#include <string_view>

#include "resources/dialog_ids.h"

namespace ko::dialog {

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
