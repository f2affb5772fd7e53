// The profile object: defaults, tag binding, release; byte order and fixed-point helpers.
#include <algorithm>
#include <cstring>
#include <limits>

#include "frame/arithmetic.h"
#include "frame/platform.h"
#include "icc/icc.h"

namespace ko::icc {

ProfilePtr create(uint32_t flags) noexcept {
    ProfilePtr profile(allocateBlock<IccProfile>(sizeof(IccProfile)).release());
    if (!profile) return nullptr;
    *profile = IccProfile{};
    profile->swapBytes = 1;

    const bool printer = (flags & kCreatePrinter) != 0;
    const bool otherMaker = (flags & kCreateOtherMaker) != 0;
    IccHeader& header = profile->header;
    header.cmmType = otherMaker ? fourcc("ZVQR") : fourcc("Lino");
    header.version = 0x02100000;
    header.deviceClass = printer ? fourcc("prtr") : fourcc("link");
    header.colourSpace = fourcc("CMYK");
    header.connectionSpace = printer ? fourcc("Lab ") : fourcc("CMYK");
    const platform::DateTime now = platform::localTime();
    const uint16_t dateTime[] = {now.year, now.month, now.day, now.hour, now.minute, now.second};
    std::copy(std::begin(dateTime), std::end(dateTime), header.dateTime);
    header.magic = fourcc("acsp");
    header.platform = fourcc("MSFT");
    header.manufacturer = header.model = otherMaker ? fourcc("ZEVO") : fourcc("none");
    header.illuminant[0] = 0x0000f6d6;  // D50
    header.illuminant[1] = 0x00010000;
    header.illuminant[2] = 0x0000d32d;
    header.creator = otherMaker ? fourcc("ZEVO") : 0;
    return profile;
}

bool release(IccProfile* profile) noexcept {
    if (!profile) return false;
    for (const IccTagEntry& tag : tagsOf(*profile)) jMemFree(tag.data);
    jMemFree(profile->tags);
    jMemFree(profile);
    return true;
}

std::span<IccTagEntry> tagsOf(const IccProfile& profile) noexcept {
    if (!profile.tags || profile.tagCount < 1) return {};
    return {profile.tags, static_cast<size_t>(profile.tagCount)};
}

IccTagEntry* findTag(const IccProfile& profile, uint32_t signature) noexcept {
    for (IccTagEntry& tag : tagsOf(profile))
        if (tag.signature == signature) return &tag;
    return nullptr;
}

bool bindTag(IccProfile* profile, uint32_t signature, void* data) noexcept {
    if (!profile) return false;
    if (IccTagEntry* tag = findTag(*profile, signature)) {
        if (tag->data != data) jMemFree(tag->data);
        tag->data = data;
        return true;
    }
    const std::span<IccTagEntry> old = tagsOf(*profile);
    if (old.size() >= static_cast<size_t>(std::numeric_limits<int32_t>::max())) return false;
    Block<IccTagEntry> grown =
        allocateBlock<IccTagEntry>((uint64_t{old.size()} + 1) * sizeof(IccTagEntry));
    if (!grown) return false;
    std::copy(old.begin(), old.end(), grown.get());
    grown.get()[old.size()] = {signature, 0, 0, data};
    jMemFree(profile->tags);
    profile->tags = grown.release();
    profile->tagCount = static_cast<int32_t>(old.size() + 1);
    return true;
}

bool unbindTag(IccProfile* profile, uint32_t signature) noexcept {
    if (!profile) return false;
    IccTagEntry* const tag = findTag(*profile, signature);
    if (!tag) return true;
    // The data goes first, also when the smaller table cannot be had.
    jMemFree(tag->data);
    tag->data = nullptr;
    const std::span<IccTagEntry> old = tagsOf(*profile);
    Block<IccTagEntry> smaller;
    if (old.size() > 1) {
        smaller = allocateBlock<IccTagEntry>((uint64_t{old.size()} - 1) * sizeof(IccTagEntry));
        if (!smaller) return false;
        const auto removed = old.begin() + (tag - old.data());
        std::copy(removed + 1, old.end(), std::copy(old.begin(), removed, smaller.get()));
    }
    jMemFree(profile->tags);
    profile->tags = smaller.release();
    profile->tagCount = static_cast<int32_t>(old.size() - 1);
    return true;
}

uint64_t IccReverseBytes(void* dst, const void* src, uint32_t elementSize,
                         uint64_t count) noexcept {
    if (!dst || !src || elementSize == 0 || count == 0) return 0;
    auto* to = static_cast<uint8_t*>(dst);
    const auto* from = static_cast<const uint8_t*>(src);
    const uint64_t size = elementSize * count;
    if (elementSize == 2) {  // whole grids pass here; the blocks may be unaligned
        for (uint64_t at = 0; at < size; at += 2) {
            uint16_t element;
            std::memcpy(&element, from + at, 2);
            element = reverse16(element);
            std::memcpy(to + at, &element, 2);
        }
    } else if (to == from) {
        for (uint64_t at = 0; at < size; at += elementSize)
            std::reverse(to + at, to + at + elementSize);
    } else {
        for (uint64_t at = 0; at < size; at += elementSize)
            std::reverse_copy(from + at, from + at + elementSize, to + at);
    }
    return size;
}

float IccFixedToFloat(int32_t value) noexcept {
    return static_cast<float>(value * (1.0 / 65536));
}

int32_t IccFloatToFixed(float value) noexcept {
    const float scaled = value * 65536.0f;  // rounded to single precision, then double
    return truncateToInt32(scaled >= 0 ? scaled + 0.5 : scaled - 0.5);
}

}  // namespace ko::icc
