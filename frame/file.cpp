#include "frame/file.h"

#include <atomic>

#include "frame/text.h"

namespace ko {

bool replaceWhole(const std::string& path, std::string_view bytes) {
    static std::atomic<unsigned> count = 0;
    const std::string_view folder = folderOf(path);
    for (int attempt = 0; attempt < 100; ++attempt) {  // other processes use such names too
        const std::string beside = joinPath(folder, "~ko" + std::to_string(count++ % 1000) + ".tmp");
        bool written = false;
        {
            File file = File::createNew(beside.c_str());
            if (!file) continue;
            written = file.write(bytes) && file.flush();
        }
        if (written && platform::replaceFile(beside.c_str(), path.c_str())) return true;
        platform::deleteFile(beside.c_str());
        return false;
    }
    return false;
}

}  // namespace ko
