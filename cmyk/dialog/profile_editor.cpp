#include "cmyk/dialog/profile_editor.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "cmyk/description.h"
#include "cmyk/link_check.h"
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
    setHasFile(!fileNameOf(path).empty());
    if (!hasFile()) copyText(profile_.path, "");
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

void ProfileEditor::restore(const Texts& texts) {
    copyText(profile_.name, texts.name);
    copyText(profile_.comment, texts.comment);
}

void ProfileEditor::leaveName(std::string_view name) {
    Texts before = capture();
    std::string line(name);  // a pasted line end would split it in the file
    std::replace_if(line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    copyText(profile_.name, line);
    correctTyped(profile_.name);
    dialog::addStep(history(), *this, std::move(before));
}

void ProfileEditor::leaveComment(std::string_view comment) {
    Texts before = capture();
    if (comment != this->comment()) copyText(profile_.comment, comment);
    correctTyped(profile_.comment);
    copyText(profile_.comment, asPlainText(textIn(profile_.comment)));
    dialog::addStep(history(), *this, std::move(before));
}

namespace {
// Byte by byte: a profile is too large for a third one on the stack.
void exchange(CmykProfile& a, CmykProfile& b) noexcept {
    auto* const bytes = reinterpret_cast<std::byte*>(&a);
    std::swap_ranges(bytes, bytes + sizeof a, reinterpret_cast<std::byte*>(&b));
}
}  // namespace

bool ProfileEditor::startNew(dialog::EditorHost& host) {
    if (!host.ask(texts::kProfileCaption, texts::kResetQuestion)) return false;
    // The step back keeps the whole profile, its file included.
    auto other = std::shared_ptr<CmykProfile>(createProfile().release(), BlockDeleter());
    if (!other) return false;  // no memory: nothing has happened
    exchangeWith(std::move(other), false);
    return true;
}

std::optional<Problem> ProfileEditor::open(const std::string& path, dialog::EditorHost& host,
                                           bool& opened) {
    opened = false;
    // A profile of another kind would be overwritten by a link that prints nothing.
    if (auto problem = whyNoLink(path.c_str())) return problem;
    if (!mayClose(host)) return std::nullopt;
    auto other = std::shared_ptr<CmykProfile>(createProfile().release(), BlockDeleter());
    if (!other || !loadProfile(*other, path.c_str())) return fileProblem(platform::lastError());
    (void)copyPath(other->path, path.c_str());
    exchangeWith(std::move(other), true);
    workingFolder_ = folderOf(path);
    history().markSaved();
    opened = true;
    return std::nullopt;
}

void ProfileEditor::exchangeWith(std::shared_ptr<CmykProfile> other, bool hasFileNow) {
    exchange(profile_, *other);
    const bool had = hasFile();
    setHasFile(hasFileNow);
    history().add([this, other, has = had]() mutable {
        exchange(profile_, *other);
        const bool now = hasFile();
        setHasFile(has);
        has = now;
    });
}

std::string_view ProfileEditor::questionCaption() const noexcept { return texts::kProfileCaption; }
const char* ProfileEditor::fileFilter() const noexcept { return texts::kProfileFilter; }
const char* ProfileEditor::fileExtension() const noexcept { return kExtension; }

std::string ProfileEditor::startOfSave() const { return {platform::kSeparator}; }

std::string ProfileEditor::startOfSaveAs() const {
    return workingFolder_.empty() ? startOfSave() : joinPath(workingFolder_, "");
}

// A save counts as done also when the file could not be created; the system's reason tells.
std::optional<Problem> ProfileEditor::write(const std::string& path) {
    const std::string before(this->path());
    platform::setLastError(0);
    const bool saved = saveProfile(profile_, path.c_str());
    const uint32_t error = platform::lastError();
    if (saved && error == 0) return std::nullopt;
    (void)copyPath(profile_.path, before.c_str());  // no file has the other one
    return fileProblem(error);
}

}  // namespace ko::cmyk
