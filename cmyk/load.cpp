// Loading a CMYK profile: the choice of reader by extension, and the raw table files.
#include "cmyk/load.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/text.h"

namespace ko::cmyk {

// The grid of a table file is read straight into the record.
static_assert(std::endian::native == std::endian::little);

void readTable(CmykProfile& profile, File& file, const TableForm& form) noexcept {
    std::array<uint8_t, kLutForm.headerSize> buffer = {};  // the larger of the two forms
    const auto header = std::span(buffer).first(form.headerSize);
    (void)file.read(header);  // what is missing stays zero
    const std::span<uint8_t> grid(reinterpret_cast<uint8_t*>(profile.grid), sizeof profile.grid);
    const size_t filled = file.read(grid);
    std::ranges::fill(grid.subspan(filled), uint8_t{0});

    const std::string_view text(reinterpret_cast<const char*>(header.data()), header.size());
    copyText(profile.name, text);
    copyText(profile.comment, text.substr(form.commentOffset));
    // Input curves belong to the table that is replaced; the output curves are kept on purpose.
    for (int32_t curve = 0; curve < 4; ++curve) resetCurve(profile, curve);
}

namespace {

int32_t loadTable(CmykProfile& profile, const char* path, const TableForm& form) noexcept {
    if (!path || strnlen(path, sizeof profile.path) >= sizeof profile.path) return 0;
    const FileGuard guard;
    File file = File::openForReading(path, Sharing::reading);
    if (!file) return 0;
    readTable(profile, file, form);
    return copyPath(profile.path, path) ? 1 : 0;
}

}  // namespace

int32_t loadLutable(CmykProfile& profile, const char* path) noexcept {
    return loadTable(profile, path, kLutForm);
}

int32_t loadLutableAmatch(CmykProfile& profile, const char* path) noexcept {
    return loadTable(profile, path, kAmtForm);
}

int32_t loadProfile(CmykProfile& profile, const char* path) {
    if (!path || strnlen(path, sizeof profile.path) >= sizeof profile.path) return 0;
    if (hasExtension(path, ".lut")) return loadLutable(profile, path);
    if (hasExtension(path, ".amt")) return loadLutableAmatch(profile, path);
    return loadIccProfile(profile, path);
}

}  // namespace ko::cmyk
