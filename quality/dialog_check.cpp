// What of a device link the profile dialog keeps: the table in 33 points and 8 bits, curves at
// their 65 points, and its own texts.
#include <algorithm>

#include "cmyk/description.h"
#include "frame/bytes.h"
#include "precise/profile.h"
#include "quality/file_check.h"

namespace ko::quality {
namespace {

constexpr size_t kHeader = 128;
constexpr uint32_t kMostTags = 1000;
constexpr uint32_t kKept[] = {fourcc("A2B0"), fourcc("desc"), fourcc("cprt"), fourcc("pseq")};

uint32_t wordAt(std::span<const uint8_t> bytes, uint64_t at) {
    return ByteReader(bytes.subspan(static_cast<size_t>(std::min<uint64_t>(at, bytes.size())))).u32();
}

}  // namespace

std::optional<Fault> lostInDialogs(std::span<const uint8_t> link) {
    if (link.size() < kHeader + 4 || wordAt(link, 36) != fourcc("acsp") || wordAt(link, 12) != fourcc("link"))
        return std::nullopt;
    Fault fault{Level::note, "dialogs", 0, 0, "", "keep a copy, and make the link again where that matters", 0};
    if (wordAt(link, 16) != fourcc("CMYK") || wordAt(link, 20) != fourcc("CMYK")) {
        fault.text = "the profile dialog opens links from CMYK to CMYK alone";
        return fault;
    }
    std::string lost;
    const auto lose = [&](const std::string& what) { lost += (lost.empty() ? "" : ", ") + what; };
    bool editable = false;
    std::string others;
    const uint32_t count = std::min(wordAt(link, kHeader), kMostTags);
    for (uint32_t at = 0; at < count; ++at) {
        const uint64_t entry = kHeader + 4 + uint64_t{12} * at;
        const uint32_t tag = wordAt(link, entry), offset = wordAt(link, entry + 4), size = wordAt(link, entry + 8);
        if (offset > link.size() || size > link.size() - offset || size < 12) continue;
        const auto element = link.subspan(offset, size);
        if (tag == fourcc("desc")) {
            const std::string_view text(reinterpret_cast<const char*>(element.data()) + 12, element.size() - 12);
            editable = wordAt(element, 0) == fourcc("desc") && cmyk::holdsEditingData(text);
        } else if (tag == fourcc("pseq")) {
            if (wordAt(element, 8) > 0) lose("the names of its profiles (pseq)");
        } else if (tag == fourcc("A2B0")) {
            const uint32_t type = wordAt(element, 0);
            if (type != fourcc("mft1") && type != fourcc("mft2")) {
                fault.text = "the profile dialog does not read tables of type " + precise::signatureText(type);
                return fault;
            }
            if (type == fourcc("mft2")) lose("what is finer than 8 bits");
            if (element[10] != 33) lose("its grid of " + std::to_string(element[10]) + " points, which become 33");
        } else if (std::ranges::find(kKept, tag) == std::end(kKept)) {
            others += (others.empty() ? "" : ", ") + precise::signatureText(tag);
        }
    }
    if (!others.empty()) lose((others.size() > 4 ? "the tags " : "the tag ") + others);
    if (wordAt(link, 64) != 0) lose("its rendering intent");
    if (!editable) lose("its description");
    if (lost.empty()) return std::nullopt;
    fault.text = "saved by the profile dialog it loses " + lost;
    return fault;
}

}  // namespace ko::quality
