#include "frame/dialog/document.h"

#include "frame/path.h"
#include "frame/platform.h"

namespace ko::dialog {

bool Document::mayClose(EditorHost& host) {
    if (!isChanged()) return true;
    switch (host.askUnsaved(questionCaption())) {
        case Unsaved::save: return saved(host, true);
        case Unsaved::discard: return true;
        case Unsaved::stay: break;
    }
    return false;
}

bool Document::saved(EditorHost& host, bool closing) {
    if (!hasFile_) return savedUnder(host, startOfSave(), closing);
    std::string path = currentPath();
    if (extendsItsName() && !hasExtension(path.c_str(), fileExtension())) {
        path += fileExtension();  // another file, which may be there already
        platform::DateTime time;
        if (platform::fileTime(path.c_str(), time) && !host.askReplace(path)) return false;
    }
    return savedTo(host, path, closing);
}

bool Document::savedAs(EditorHost& host, bool closing) {
    return savedUnder(host, startOfSaveAs(), closing);
}

bool Document::savedUnder(EditorHost& host, const std::string& start, bool closing) {
    auto path = host.chooseSavePath(start, fileFilter());
    if (!path) return false;
    if (!hasExtension(path->c_str(), fileExtension())) *path += fileExtension();
    return savedTo(host, *path, closing);
}

bool Document::savedTo(EditorHost& host, const std::string& path, bool closing) {
    while (const auto problem = write(path)) {
        switch (host.tellNotSaved(questionCaption(), path, *problem, closing)) {
            case NotSaved::again: break;
            case NotSaved::saveAs: return savedAs(host, closing);
            case NotSaved::discard: return closing;
            case NotSaved::stay: return false;
        }
    }
    hasFile_ = true;
    history_.markSaved();
    return true;
}

}  // namespace ko::dialog
