// A dialog that edits a file: its caption marks changes that no file holds, Ctrl+Z and Ctrl+Y go
// through its steps, and nothing closes it over unsaved work without a question.
#pragma once

#include <optional>
#include <string>

#include "frame/dialog/ask_win.h"
#include "frame/dialog/dialog_win.h"
#include "frame/dialog/document.h"

namespace ko::dialog {

class EditorDialog : public ModalDialog {
protected:
    explicit EditorDialog(Document& document, Return onReturn = Return::takesField) noexcept
        : ModalDialog(onReturn), document_(document) {}

    EditorHost& host() noexcept { return host_; }
    void addFileButtons();  // save and save as, OK and Cancel
    void acceptDroppedFiles();
    void setCaption(const std::wstring& caption) const;
    void undoStep() { stepped(document_.undo()); }
    bool shortcut(const MSG& key) override;

private:
    virtual void accept();  // OK
    virtual void cancel();  // also Escape and the close box
    virtual void stepTaken() {}  // back or forth; the controls are shown after it
    // A file that was dropped on the dialog, to be opened in place of its own; why it cannot be.
    virtual std::optional<Problem> openFile(const std::string&) { return std::nullopt; }
    void stepped(bool done);
    void drop(const std::wstring& file);
    INT_PTR message(UINT message, WPARAM wParam, LPARAM lParam) override;

    Document& document_;
    WindowHost host_{*this};
    std::wstring dropped_;  // the file that is being opened
};

}  // namespace ko::dialog
