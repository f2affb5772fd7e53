// Writing profile files. A file is put together in memory, around the grids that are there
// already, before the old one is touched.
#include "frame/file.h"
#include "frame/text.h"
#include "icc/header_order.h"
#include "icc/tag_codecs.h"

namespace ko::icc {
namespace {

constexpr size_t kDirectoryAt = sizeof(IccHeader) + 4;
constexpr size_t kSlotSize = 12;

void putBigEndian(std::vector<uint8_t>& bytes, size_t at, uint32_t value) {
    value = reverse32(value);
    std::memcpy(&bytes[at], &value, sizeof value);
}

uint32_t aliasesOf(const IccTagEntry& tag, Writers writer) noexcept {
    const TagCodec* const codec = findCodec(tag.signature);
    return codec && writer == kDeviceWriter ? codec->deviceAliases : 0;
}

// Bound tags that the writer skips count as well; their slots stay empty, at the end.
uint64_t countSlots(const IccProfile& profile, Writers writer) noexcept {
    uint64_t count = 0;
    for (const IccTagEntry& tag : tagsOf(profile))
        if (tag.data) count += 1 + aliasesOf(tag, writer);
    return count;
}

// The whole file; false when a tag cannot be written or the file would pass 4 GiB.
bool assemble(const IccProfile& profile, Writers writer, uint64_t slots, FileParts& file) {
    IccHeader header = profile.header;
    const bool bigEndian = profile.swapBytes == 1;
    if (bigEndian) reverseHeader(header);
    std::vector<uint8_t>& head = file.head();
    head.resize(sizeof header);
    std::memcpy(head.data(), &header, sizeof header);
    ByteWriter out(head);
    out.u32(static_cast<uint32_t>(slots));
    out.zeros(static_cast<size_t>(slots * kSlotSize));

    size_t slot = kDirectoryAt;
    for (const IccTagEntry& tag : tagsOf(profile)) {
        const TagCodec* const codec = findCodec(tag.signature);
        if (!tag.data || !codec || !(codec->writers & writer)) continue;
        const uint64_t start = file.size();  // a multiple of 4, as everything before it is
        const auto length = codec->encode(tag.data, bigEndian, file);
        if (!length) return false;
        file.alignTo4();
        if (file.size() > UINT32_MAX) return false;
        for (uint32_t alias = 0; alias <= aliasesOf(tag, writer); ++alias, slot += kSlotSize) {
            putBigEndian(head, slot, tag.signature + alias);
            putBigEndian(head, slot + 4, static_cast<uint32_t>(start));
            putBigEndian(head, slot + 8, static_cast<uint32_t>(*length));
        }
    }
    putBigEndian(head, 0, static_cast<uint32_t>(file.size()));
    return true;
}

bool isCount(uint64_t slots) noexcept { return slots != 0 && slots * kSlotSize <= UINT32_MAX; }

bool save(IccProfile* profile, const Path& path, Writers writer) {
    if (!profile) return platform::failFor(platform::Cause::wrongArgument);
    if (!path) return false;
    path.copyTo(profile->path);
    const uint64_t slots = countSlots(*profile, writer);
    FileParts file;
    if (!isCount(slots) || !assemble(*profile, writer, slots, file))
        return platform::failFor(platform::Cause::wrongArgument);
    // A file that cannot be created counts as written: hosts have never seen a 0 for it.
    return replaceWhole(path.c_str(), kProfileFiles, file.parts()) != SaveResult::failed;
}

}  // namespace

bool saveProfile(IccProfile* profile, const Path& path) {
    return save(profile, path, kProfileWriter);
}

bool saveDeviceProfile(IccProfile* profile, const Path& path) {
    return save(profile, path, kDeviceWriter);
}

std::optional<std::vector<uint8_t>> encodeLinkProfile(const IccProfile& profile) {
    const uint64_t slots = countSlots(profile, kLinkWriter);
    FileParts file;
    if (!isCount(slots) || !assemble(profile, kLinkWriter, slots, file)) return std::nullopt;
    std::vector<uint8_t> bytes;
    bytes.reserve(static_cast<size_t>(file.size()));
    for (const auto part : file.parts()) bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

bool saveLinkProfile(IccProfile* profile, const Path& path) {
    return save(profile, path, kLinkWriter);
}

}  // namespace ko::icc
