// Loading a CMYK profile: the choice of reader by extension, and the raw table files.
#include "cmyk/load.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/file.h"
#include "frame/path.h"
#include "frame/text.h"

namespace ko::cmyk {

// The words of a table file are the record's own.
static_assert(std::endian::native == std::endian::little);

void readTable(CmykProfile& profile, std::span<const uint8_t> file,
               const TableForm& form) noexcept {
    const auto header = file.first(std::min(form.headerSize, file.size()));
    const auto grid = file.subspan(header.size());
    if (!grid.empty())
        std::memcpy(profile.grid, grid.data(), std::min(grid.size(), sizeof profile.grid));

    const std::string_view text(reinterpret_cast<const char*>(header.data()), header.size());
    copyText(profile.name, text);
    copyText(profile.comment, text.substr(std::min(form.commentOffset, text.size())));
    // Input curves belong to the table that is replaced; the output curves are kept on purpose.
    for (int32_t curve = 0; curve < 4; ++curve) resetCurve(profile, curve);
}

namespace {

int32_t loadTable(CmykProfile& profile, const char* path, const TableForm& form) noexcept {
    char checked[KOLINK_PATH_SIZE];
    if (!copyPath(checked, path)) return 0;
    const FileReading reading =
        readWhole(checked, kTableFiles, form.headerSize + sizeof profile.grid);
    if (!reading) return 0;
    readTable(profile, reading.file.bytes(), form);
    return copyPath(profile.path, checked) ? 1 : 0;
}

}  // namespace

int32_t loadLutable(CmykProfile& profile, const char* path) noexcept {
    return loadTable(profile, path, kLutForm);
}

int32_t loadLutableAmatch(CmykProfile& profile, const char* path) noexcept {
    return loadTable(profile, path, kAmtForm);
}

int32_t loadProfile(CmykProfile& profile, const char* path) {
    if (hasExtension(path, ".lut")) return loadLutable(profile, path);
    if (hasExtension(path, ".amt")) return loadLutableAmatch(profile, path);
    return loadIccProfile(profile, path);
}

}  // namespace ko::cmyk
