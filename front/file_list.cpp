// The ICC profiles of a folder.
#include <algorithm>
#include <cstring>
#include <new>

#include "frame/ascii.h"
#include "frame/path.h"
#include "frame/text.h"
#include "front/front.h"
#include "icc/icc.h"

namespace ko::front {
namespace {

// By name without regard to ASCII case, so that a list is the same on every platform and file
// system; names that differ in case alone by their bytes.
bool isBefore(const std::string& a, const std::string& b) noexcept {
    const int order = compareIgnoringCase(a, b);
    return order != 0 ? order < 0 : a < b;
}

// A filter shorter than four characters is filled with blanks, as signatures are.
uint32_t signatureOf(const char* text) noexcept {
    uint32_t signature = 0;
    bool ended = false;
    for (int at = 0; at < 4; ++at) {
        ended = ended || text[at] == '\0';
        signature = signature << 8 | static_cast<uint8_t>(ended ? ' ' : text[at]);
    }
    return signature;
}

// A file whose header cannot be read is listed with every colour space. Throws std::bad_alloc where
// that is for want of memory.
bool passes(const std::string& path, const char* colourSpace) {
    if (!colourSpace) return true;
    const icc::ProfilePtr profile = icc::loadHeader(path.c_str());
    if (!profile && platform::lastErrorIs(platform::Cause::shortMemory)) throw std::bad_alloc();
    return !profile || profile->header.colourSpace == signatureOf(colourSpace);
}

}  // namespace

int32_t loadIccFileList(char* list, int32_t maxCount, const char* colourSpace) {
    if (!list || maxCount < 1) return 0;
    const Path pattern(list);
    if (!pattern) return 0;
    const std::string_view folder = folderOf(pattern.c_str());
    std::vector<std::string> names = platform::filesMatching(pattern.c_str());
    std::sort(names.begin(), names.end(), isBefore);
    int32_t count = 0;
    for (const std::string& name : names) {
        const std::string path = joinPath(folder, name);
        if (path.size() >= KOLINK_PATH_SIZE || !passes(path, colourSpace)) continue;
        std::memcpy(list + static_cast<size_t>(count) * KOLINK_PATH_SIZE, path.c_str(),
                    path.size() + 1);
        if (++count == maxCount) break;
    }
    return count;
}

}  // namespace ko::front
