// Reading profile files: header and directory first, tags on demand.
#include <bit>

#include "frame/text.h"
#include "icc/header_order.h"
#include "icc/tag_codecs.h"

namespace ko::icc {

// "Host order" is the order of the files of little-endian machines.
static_assert(std::endian::native == std::endian::little);

void reverseHeader(IccHeader& header) noexcept {
    const auto reverseIn = [](void* field, uint32_t elementSize, uint64_t count) {
        IccReverseBytes(field, field, elementSize, count);
    };
    auto* const bytes = reinterpret_cast<uint8_t*>(&header);
    reverseIn(bytes, 4, 6);        // size to connection space
    reverseIn(bytes + 24, 2, 6);   // date and time
    reverseIn(bytes + 36, 4, 12);  // magic to creator
}

namespace {

constexpr uint64_t kEntrySize = 12;

// The tag directory; false when it cannot be had.
bool readDirectory(ByteSource& source, IccProfile& profile) noexcept {
    const ByteOrder order = profile.swapBytes ? ByteOrder::bigEndian : ByteOrder::littleEndian;
    uint8_t bytes[256 * kEntrySize];
    source.read(sizeof(IccHeader), {bytes, 4});
    const int32_t count = ByteReader({bytes, 4}, order).s32();
    if (count == 0) return true;
    uint64_t position = sizeof(IccHeader) + 4;
    if (count < 0 || !source.mayHold(position, count * kEntrySize)) return false;

    Block<IccTagEntry> tags = allocateBlock<IccTagEntry>(count * uint64_t{sizeof(IccTagEntry)});
    if (!tags) return false;
    for (int32_t at = 0; at < count;) {
        const int32_t end = std::min(count, at + 256);
        const std::span chunk(bytes, static_cast<size_t>(end - at) * kEntrySize);
        source.read(position, chunk);
        position += chunk.size();
        for (ByteReader in(chunk, order); at < end; ++at) {
            const uint32_t signature = in.u32(), offset = in.u32(), size = in.u32();
            tags.get()[at] = {signature, offset, size, nullptr};
        }
    }
    profile.tags = tags.release();
    profile.tagCount = count;
    return true;
}

ProfilePtr readProfile(ByteSource& source) noexcept {
    if (source.size() < sizeof(IccHeader)) return nullptr;
    ProfilePtr profile(allocateBlock<IccProfile>(sizeof(IccProfile)).release());
    if (!profile) return nullptr;
    *profile = IccProfile{};
    uint8_t bytes[sizeof(IccHeader)];
    source.read(0, bytes);
    std::memcpy(&profile->header, bytes, sizeof bytes);
    if (std::memcmp(bytes + 36, "acsp", 4) == 0) {
        profile->swapBytes = 1;
        reverseHeader(profile->header);
    }
    return readDirectory(source, *profile) ? std::move(profile) : nullptr;
}

Block<void> readTag(ByteSource& source, const IccProfile& profile,
                    const IccTagEntry& tag) noexcept {
    const TagCodec* const codec = findCodec(tag.signature);
    if (!codec || !codec->decode) return nullptr;
    return codec->decode(Element(source, tag, profile.swapBytes == 1));
}

bool isReadable(uint32_t signature) noexcept {
    const TagCodec* const codec = findCodec(signature);
    return codec && codec->decode;
}

}  // namespace

ProfilePtr loadHeader(const char* path) {
    char checkedPath[KOLINK_PATH_SIZE] = {};
    if (!copyPath(checkedPath, path)) return nullptr;
    const FileGuard guard;
    File file = File::openForReading(checkedPath, Sharing::none);
    if (!file) return nullptr;
    FileSource source(file);
    ProfilePtr profile = readProfile(source);
    if (profile) std::memcpy(profile->path, checkedPath, sizeof checkedPath);
    return profile;
}

void* loadTag(IccProfile& profile, uint32_t signature) {
    if (!isReadable(signature)) return nullptr;
    const IccTagEntry* const tag = findTag(profile, signature);
    if (!tag) return nullptr;
    const FileGuard guard;
    File file = File::openForReading(profile.path, Sharing::none);
    if (!file) return nullptr;
    FileSource source(file);
    Block<void> block = readTag(source, profile, *tag);
    void* const data = block.get();
    return bindBlock(profile, signature, std::move(block)) ? data : nullptr;
}

void loadAllTags(IccProfile& profile) {
    const FileGuard guard;
    File file = File::openForReading(profile.path, Sharing::none);
    if (!file) return;
    FileSource source(file);
    uint32_t seen = 0;  // a bit a codec: only the first entry of a signature counts
    static_assert(sizeof seen * 8 >= 18);
    const auto codecs = tagCodecs();
    for (const IccTagEntry& tag : tagsOf(profile)) {
        const TagCodec* const codec = findCodec(tag.signature);
        if (!codec || !codec->decode) continue;
        const uint32_t bit = 1u << (codec - codecs.data());
        if (seen & bit) continue;
        seen |= bit;
        // Binding to an entry that is there moves nothing, so the loop goes on safely.
        (void)bindBlock(profile, tag.signature, readTag(source, profile, tag));
    }
}

ProfilePtr parseHeader(std::span<const uint8_t> bytes, uint64_t claimTolerance) noexcept {
    MemorySource source(bytes, claimTolerance);
    return readProfile(source);
}

Block<void> decodeTag(const IccProfile& profile, std::span<const uint8_t> bytes,
                      uint32_t signature, uint64_t claimTolerance) noexcept {
    const IccTagEntry* const tag = findTag(profile, signature);
    if (!tag) return nullptr;
    MemorySource source(bytes, claimTolerance);
    return readTag(source, profile, *tag);
}

}  // namespace ko::icc
