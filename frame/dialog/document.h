// A file that is edited: its steps back and forth, its saving, and every way out on which work
// could be lost. Whose file it is, the heirs know. It has no window.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/dialog/history.h"
#include "frame/dialog/host.h"

namespace ko::dialog {

class Document {
public:
    virtual ~Document() = default;
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    bool isChanged() const noexcept { return history_.isChanged(); }
    bool canUndo() const noexcept { return history_.canUndo(); }
    bool canRedo() const noexcept { return history_.canRedo(); }
    bool undo() { return !isBusy() && history_.undo(); }
    bool redo() { return !isBusy() && history_.redo(); }

    // False when the file does not hold what was edited.
    bool save(EditorHost& host) { return saved(host, false); }
    bool saveAs(EditorHost& host) { return savedAs(host, false); }
    // The dialog is to close: whether it may.
    bool saveAndClose(EditorHost& host) { return saved(host, true); }
    bool mayClose(EditorHost& host);

protected:
    Document() = default;
    bool hasFile() const noexcept { return hasFile_; }
    void setHasFile(bool has) noexcept { hasFile_ = has; }
    History& history() noexcept { return history_; }

private:
    virtual bool isBusy() const noexcept { return false; }  // in the midst of a drag
    virtual std::string_view questionCaption() const noexcept = 0;
    virtual std::string currentPath() const = 0;
    virtual const char* fileFilter() const noexcept = 0;
    virtual const char* fileExtension() const noexcept = 0;
    // Whether its own file is saved with the extension behind a name that lacks it.
    virtual bool extendsItsName() const noexcept { return false; }
    virtual std::string startOfSave() const = 0;    // where save asks for a first name
    virtual std::string startOfSaveAs() const = 0;
    // Writes everything to the path, which becomes the document's; nothing: it holds it all.
    virtual std::optional<Problem> write(const std::string& path) = 0;

    bool saved(EditorHost& host, bool closing);
    bool savedAs(EditorHost& host, bool closing);
    bool savedUnder(EditorHost& host, const std::string& start, bool closing);
    bool savedTo(EditorHost& host, const std::string& path, bool closing);

    History history_;
    bool hasFile_ = false;
};

}  // namespace ko::dialog
