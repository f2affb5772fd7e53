#include "frame/problem.h"

#include "frame/file.h"
#include "resources/texts.h"

namespace ko {

Problem fileProblem(uint32_t systemError) {
    if (systemError == 0) return {texts::kNoFile};
    switch (platform::faultOf(systemError)) {
        case platform::FileFault::missing: return {texts::kFileMissing};
        case platform::FileFault::noFolder: return {texts::kFolderMissing};
        case platform::FileFault::inUse: return {texts::kFileInUse};
        case platform::FileFault::denied: return {texts::kFileDenied};
        case platform::FileFault::diskFull: return {texts::kDiskFull};
        case platform::FileFault::badName: return {texts::kNameUnusable};
        case platform::FileFault::other: break;
    }
    return {texts::kFileFault, {std::to_string(systemError)}};
}

std::optional<Problem> whyUnreadable(const char* path) {
    platform::setLastError(0);
    if (readWhole(path, kProfileFiles, 1)) return std::nullopt;
    return fileProblem(platform::lastError());
}

}  // namespace ko
