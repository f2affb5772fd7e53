// Reading profile files: header and directory first, tags on demand; or all from one reading.
#include <bit>

#include "frame/file.h"
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
constexpr uint64_t kEntriesAt = sizeof(IccHeader) + 4;

// How much of what was claimed so far lies beyond the file's end. All claims of a file together
// may pass it by the tolerance.
class Claims {
public:
    Claims(uint64_t fileSize, uint64_t tolerance) noexcept
        : fileSize_(fileSize), tolerance_(tolerance), left_(tolerance) {}

    // Whether a claim can be believed; one that can counts.
    bool admit(uint64_t offset, uint64_t size) noexcept {
        if (!isBelievableClaim(offset, size, fileSize_, tolerance_)) return false;
        const uint64_t end = offset + size;
        const uint64_t beyond = end > fileSize_ ? std::min(size, end - fileSize_) : 0;
        if (beyond > left_) return false;
        left_ -= beyond;
        return true;
    }

private:
    uint64_t fileSize_, tolerance_, left_;
};

ByteOrder orderOf(const IccProfile& profile) noexcept {
    return profile.swapBytes == 1 ? ByteOrder::bigEndian : ByteOrder::littleEndian;
}

std::span<const uint8_t> from(std::span<const uint8_t> bytes, uint64_t at) noexcept {
    return at < bytes.size() ? bytes.subspan(static_cast<size_t>(at))
                             : std::span<const uint8_t>();
}

// 0 when the file ends before it.
int32_t tagCountOf(const IccProfile& profile, std::span<const uint8_t> bytes) noexcept {
    return ByteReader(from(bytes, sizeof(IccHeader)), orderOf(profile)).s32();
}

// The tag directory; false when it cannot be had. The file has no more bytes than these, or at
// least the whole directory is among them.
bool readDirectory(std::span<const uint8_t> bytes, Claims claims, IccProfile& profile) noexcept {
    const int32_t count = tagCountOf(profile, bytes);
    if (count == 0) return true;
    if (count < 0 || !claims.admit(kEntriesAt, count * kEntrySize))
        return platform::failFor(platform::Cause::damaged);
    // Entries that the file does not have stay zero.
    Block<IccTagEntry> tags =
        allocateZeroBlock<IccTagEntry>(count * uint64_t{sizeof(IccTagEntry)});
    if (!tags) return false;
    ByteReader in(from(bytes, kEntriesAt), orderOf(profile));
    for (int32_t at = 0; at < count && in.remaining() > 0; ++at) {
        IccTagEntry& tag = tags.get()[at];
        tag.signature = in.u32();
        tag.offset = in.u32();
        tag.size = in.u32();
    }
    profile.tags = tags.release();
    profile.tagCount = count;
    return true;
}

// The header alone; null when the file is too short for one or memory is.
ProfilePtr readHeader(std::span<const uint8_t> bytes) noexcept {
    if (bytes.size() < sizeof(IccHeader)) {
        platform::setLastError(platform::Cause::damaged);
        return nullptr;
    }
    ProfilePtr profile(allocateBlock<IccProfile>(sizeof(IccProfile)).release());
    if (!profile) return nullptr;
    *profile = IccProfile{};
    std::memcpy(&profile->header, bytes.data(), sizeof(IccHeader));
    if (std::memcmp(bytes.data() + 36, "acsp", 4) == 0) {
        profile->swapBytes = 1;
        reverseHeader(profile->header);
    }
    return profile;
}

// Whether the claim of a tag can be believed beside those of the tags before it in the directory.
bool isBelievable(const IccProfile& profile, std::span<const uint8_t> bytes,
                  const IccTagEntry& wanted, uint64_t tolerance) noexcept {
    Claims claims(bytes.size(), tolerance);
    const auto tags = tagsOf(profile);
    (void)claims.admit(kEntriesAt, tags.size() * kEntrySize);
    uint32_t seen = 0;  // a bit a codec: only the first entry of a signature counts
    static_assert(sizeof seen * 8 >= 18);
    for (const IccTagEntry& tag : tags) {
        const TagCodec* const codec = findCodec(tag.signature);
        if (!codec || !codec->decode) continue;
        const uint32_t bit = 1u << (codec - tagCodecs().data());
        if (seen & bit) continue;
        seen |= bit;
        const auto claim = codec->claim(Element(bytes, tag, profile.swapBytes == 1));
        const bool admitted = claim && claims.admit(tag.offset, *claim);
        if (&tag == &wanted) return admitted;
    }
    return false;
}

Decoded readTag(const IccProfile& profile, std::span<const uint8_t> bytes, uint32_t signature,
                uint64_t tolerance) noexcept {
    const TagCodec* const codec = findCodec(signature);
    const IccTagEntry* const tag = findTag(profile, signature);
    if (!codec || !codec->decode || !tag) return {nullptr, TagResult::absent};
    if (!isBelievable(profile, bytes, *tag, tolerance)) return {nullptr, TagResult::absent};
    Block<void> data = codec->decode(Element(bytes, *tag, profile.swapBytes == 1));
    const auto result = data ? TagResult::loaded : TagResult::shortMemory;
    return {std::move(data), result};
}

void* bindDecoded(IccProfile& profile, uint32_t signature, Decoded decoded) noexcept {
    if (decoded.result == TagResult::absent) platform::setLastError(platform::Cause::damaged);
    void* const data = decoded.data.get();
    return bindBlock(profile, signature, std::move(decoded.data)) ? data : nullptr;
}

}  // namespace

ProfilePtr loadHeader(const Path& path) {
    // The directories of real profiles end well before that.
    constexpr uint64_t kBeginning = uint64_t{64} << 10;
    for (uint64_t wanted = kBeginning;;) {
        const FileReading reading = readWhole(path, kProfileFiles, wanted);
        if (!reading) return nullptr;
        const auto bytes = reading.file.bytes();
        ProfilePtr profile = readHeader(bytes);
        if (!profile) return nullptr;
        const auto count = static_cast<uint64_t>(std::max(0, tagCountOf(*profile, bytes)));
        const uint64_t needed = kEntriesAt + count * kEntrySize;
        if (bytes.size() < std::min(needed, reading.file.fileSize())) {
            wanted = needed;  // the directory is read with its header again
            continue;
        }
        const Claims claims(reading.file.fileSize(), kClaimTolerance);
        if (!readDirectory(bytes, claims, *profile)) return nullptr;
        path.copyTo(profile->path);
        return profile;
    }
}

void* loadTag(IccProfile& profile, uint32_t signature) {
    const TagCodec* const codec = findCodec(signature);
    if (!codec || !codec->decode || !findTag(profile, signature)) {
        platform::setLastError(platform::Cause::wrongArgument);
        return nullptr;
    }
    const FileReading reading = readWhole(profile.path, kProfileFiles);
    if (!reading) return nullptr;
    return bindDecoded(profile, signature,
                       readTag(profile, reading.file.bytes(), signature, kClaimTolerance));
}

ProfileFile openProfile(const Path& path) {
    ProfileFile opened;
    FileReading reading = readWhole(path, kProfileFiles);
    if (!reading) return opened;
    opened.profile = parseHeader(reading.file.bytes());
    if (!opened.profile) return opened;
    path.copyTo(opened.profile->path);
    opened.bytes = std::move(reading.file);
    return opened;
}

TagResult loadTag(ProfileFile& file, uint32_t signature) noexcept {
    Decoded decoded = decodeTag(*file.profile, file.bytes.bytes(), signature);
    if (decoded.result != TagResult::loaded) return decoded.result;
    return bindBlock(*file.profile, signature, std::move(decoded.data)) ? TagResult::loaded
                                                                        : TagResult::shortMemory;
}

ProfilePtr parseHeader(std::span<const uint8_t> bytes, uint64_t claimTolerance) noexcept {
    ProfilePtr profile = readHeader(bytes);
    if (!profile || !readDirectory(bytes, Claims(bytes.size(), claimTolerance), *profile))
        return nullptr;
    return profile;
}

Decoded decodeTag(const IccProfile& profile, std::span<const uint8_t> bytes, uint32_t signature,
                  uint64_t claimTolerance) noexcept {
    return readTag(profile, bytes, signature, claimTolerance);
}

}  // namespace ko::icc
