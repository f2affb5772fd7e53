#include "cmyk/dialog/profile_editor.h"

#include <algorithm>

#include "cmyk/description.h"
#include "frame/path.h"
#include "frame/text.h"
#include "resources/texts.h"

namespace ko::cmyk {
namespace {

constexpr const char* kExtension = ".icc";

}  // namespace

ProfileEditor::ProfileEditor(CmykProfile& profile) : profile_(profile) {
    const std::string path(textIn(profile.path));
    workingFolder_ = folderOf(path);
    hasFile_ = !fileNameOf(path).empty();
    if (!hasFile_) copyText(profile_.path, "");
}

std::string ProfileEditor::comment() const {
    std::string shown;
    char before = '\0';
    for (const char character : textIn(profile_.comment)) {
        if (character == '\n' && before != '\r') shown += '\r';
        shown += before = character;
    }
    return shown;
}

void ProfileEditor::leaveName(std::string_view name) {
    std::string line(name);  // a pasted line end would split it in the file
    std::replace_if(line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    copyText(profile_.name, line);
    correctTyped(profile_.name);
}

void ProfileEditor::leaveComment(std::string_view comment) {
    if (comment != this->comment()) copyText(profile_.comment, comment);
    correctTyped(profile_.comment);
    copyText(profile_.comment, asPlainText(textIn(profile_.comment)));
}

bool ProfileEditor::startNew(dialog::EditorHost& host) {
    if (!host.ask(texts::kProfileCaption, texts::kResetQuestion)) return false;
    initProfile(profile_);
    hasFile_ = false;
    return true;
}

void ProfileEditor::save(dialog::EditorHost& host) {
    if (hasFile_) saveTo(std::string(path()));
    else askAndSave(host, {platform::kSeparator});
}

void ProfileEditor::saveAs(dialog::EditorHost& host) {
    const bool nowhere = workingFolder_.empty();
    askAndSave(host, nowhere ? std::string{platform::kSeparator} : joinPath(workingFolder_, ""));
}

void ProfileEditor::askAndSave(dialog::EditorHost& host, const std::string& start) {
    if (auto path = host.chooseSavePath(start, texts::kProfileFilter)) saveTo(std::move(*path));
}

// A failed save is silent. A path that became too long is refused and leaves everything as it was.
void ProfileEditor::saveTo(std::string path) {
    if (!hasExtension(path.c_str(), kExtension)) path += kExtension;
    (void)saveProfile(profile_, path.c_str());
    hasFile_ = !this->path().empty();
}

}  // namespace ko::cmyk
