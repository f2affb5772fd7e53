// Loading a CMYK profile: the choice of reader by extension, and the raw table files.
#include "cmyk/load.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/file.h"
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

bool loadTable(CmykProfile& profile, const Path& path, const TableForm& form) noexcept {
    const FileReading reading =
        readWhole(path, kTableFiles, form.headerSize + sizeof profile.grid);
    if (!reading) return false;
    readTable(profile, reading.file.bytes(), form);
    path.copyTo(profile.path);
    return true;
}

}  // namespace

bool loadLutable(CmykProfile& profile, const Path& path) noexcept {
    return loadTable(profile, path, kLutForm);
}

bool loadLutableAmatch(CmykProfile& profile, const Path& path) noexcept {
    return loadTable(profile, path, kAmtForm);
}

bool loadProfile(CmykProfile& profile, const Path& path) {
    if (hasExtension(path.c_str(), ".lut")) return loadLutable(profile, path);
    if (hasExtension(path.c_str(), ".amt")) return loadLutableAmatch(profile, path);
    return loadIccProfile(profile, path);
}

}  // namespace ko::cmyk
