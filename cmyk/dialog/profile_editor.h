// The model behind the CMYK profile dialog's frame: name, comment and file of one profile. What
// its pages edit, they edit in the record themselves. It has no window.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "cmyk/cmyk.h"
#include "frame/dialog/document.h"
#include "frame/text.h"

namespace ko::cmyk {

class ProfileEditor final : public dialog::Document {
public:
    // Edits the profile in place. Its path is where it was loaded from; an empty one, or a folder
    // that ends in a separator, means a new profile for that folder.
    explicit ProfileEditor(CmykProfile& profile);

    std::string_view path() const noexcept { return textIn(profile_.path); }  // for the caption
    std::string_view name() const noexcept { return textIn(profile_.name); }
    // Every line ends with CR LF, however the record's own do.
    std::string comment() const;

    // Fields that lost the focus, in Shift-JIS; cut at a whole character. A comment that is still
    // the one shown keeps its own line ends. One that the file would read back as something else
    // gets an empty line before it.
    void leaveName(std::string_view name);
    void leaveComment(std::string_view comment);

    // True when the person agreed: the pages have to show the new profile.
    bool startNew(dialog::EditorHost& host);
    // Another profile in place of this one, once the person agrees to leave its changes: a step
    // like any other. Why it cannot be opened; opened: whether it was.
    std::optional<Problem> open(const std::string& path, dialog::EditorHost& host, bool& opened);

    dialog::History& steps() noexcept { return history(); }  // for the pages
    struct Texts {
        std::string name, comment;
        bool operator==(const Texts&) const = default;
    };
    Texts capture() const { return {std::string(name()), std::string(textIn(profile_.comment))}; }
    void restore(const Texts& texts);

private:
    std::string_view questionCaption() const noexcept override;
    std::string currentPath() const override { return std::string(path()); }
    const char* fileFilter() const noexcept override;
    const char* fileExtension() const noexcept override;
    bool extendsItsName() const noexcept override { return true; }
    std::string startOfSave() const override;  // the root folder
    std::string startOfSaveAs() const override;
    std::optional<Problem> write(const std::string& path) override;

    void exchangeWith(std::shared_ptr<CmykProfile> other, bool hasFileNow);

    CmykProfile& profile_;
    std::string workingFolder_;
};

}  // namespace ko::cmyk
