#include <algorithm>
#include <map>

#include "frame/bytes.h"
#include "precise/profile.h"
#include "quality/element_check.h"
#include "quality/file_check.h"
#include "quality/sequence_mend.h"

namespace ko::quality {
namespace {

using precise::signatureText;

constexpr size_t kHeader = 128;
constexpr uint32_t kMostTags = 1000;
constexpr uint64_t kMostLooks = 16;  // at a byte, in the mean
constexpr uint32_t kSpaces[] = {
    fourcc("XYZ "), fourcc("Lab "), fourcc("Luv "), fourcc("YCbr"), fourcc("Yxy "), fourcc("RGB "),
    fourcc("GRAY"), fourcc("HSV "), fourcc("HLS "), fourcc("CMYK"), fourcc("CMY "), fourcc("1CLR"),
    fourcc("2CLR"), fourcc("3CLR"), fourcc("4CLR"), fourcc("5CLR"), fourcc("6CLR"), fourcc("7CLR"),
    fourcc("8CLR"), fourcc("9CLR"), fourcc("ACLR"), fourcc("BCLR"), fourcc("CCLR"), fourcc("DCLR"),
    fourcc("ECLR"), fourcc("FCLR")};
constexpr uint32_t kClasses[] = {fourcc("scnr"), fourcc("mntr"), fourcc("prtr"), fourcc("link"),
                                 fourcc("spac"), fourcc("abst"), fourcc("nmcl")};
constexpr uint32_t kPlatforms[] = {0, fourcc("APPL"), fourcc("MSFT"), fourcc("SGI "), fourcc("SUNW"),
                                   fourcc("TGNT")};

template <size_t count>
bool isOneOf(uint32_t value, const uint32_t (&values)[count]) {
    return std::find(std::begin(values), std::end(values), value) != std::end(values);
}

uint32_t wordAt(std::span<const uint8_t> bytes, size_t at) {
    return ByteReader(bytes.subspan(std::min(at, bytes.size()))).u32();
}

class IccCheck {
public:
    explicit IccCheck(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    std::vector<Fault> run() {
        if (bytes_.size() < kHeader + 4) {
            add(Level::error, "length", 0, "the file has " + std::to_string(bytes_.size()) +
                                               " bytes, fewer than a header and a directory",
                "get the file again");
            return std::move(faults_);
        }
        if (wordAt(bytes_, 36) != fourcc("acsp")) {
            add(Level::error, "signature", 36, "the word acsp is missing, so this is no ICC profile",
                "get the file again");
            return std::move(faults_);
        }
        checkHeader();
        if (!checkDirectory()) return std::move(faults_);
        checkRequired();
        checkElements();
        return std::move(faults_);
    }

private:
    struct Tag {
        uint32_t signature, offset, size;
        size_t entry;  // where the directory has it
        bool usable;
    };

    void add(Level level, const char* rule, uint64_t offset, std::string text, const char* remedy,
             uint32_t tag = 0) {
        faults_.push_back({level, rule, tag, offset, std::move(text), remedy});
    }

    void checkHeader() {
        const uint32_t size = wordAt(bytes_, 0);
        if (size > bytes_.size())
            add(Level::error, "size", 0, "the header says " + std::to_string(size) + " bytes, the file has " +
                                             std::to_string(bytes_.size()) + ": its end is missing",
                "get the whole file again");
        else if (size < bytes_.size())
            add(Level::error, "size", 0, "the header says " + std::to_string(size) + " bytes, the file has " +
                                             std::to_string(bytes_.size()),
                "write the file's length there (--fix)");
        version_ = wordAt(bytes_, 8);
        const uint32_t major = version_ >> 24;
        if (major != 2 && major != 4)
            add(Level::error, "version", 8, "version " + std::to_string(major) + " is neither 2 nor 4",
                "write the version whose rules the profile keeps");
        else if ((version_ >> 20 & 15) > (major == 2 ? 4u : 4u))
            add(Level::warning, "version", 9, "there is no version " + std::to_string(major) + '.' +
                                                  std::to_string(version_ >> 20 & 15),
                "write the version whose rules the profile keeps");
        if ((version_ & 0xffff) != 0)
            add(Level::warning, "version-reserved", 10, "the two bytes behind the version are not zero",
                "write zeros (--fix)");
        if (major == 4 && size % 4 != 0)
            add(Level::error, "size-multiple", 0, "the size is no multiple of 4",
                "pad the last tag with zeros (--fix)");
        class_ = wordAt(bytes_, 12);
        if (!isOneOf(class_, kClasses))
            add(Level::error, "class", 12, "there is no profile class " + signatureText(class_),
                "write one of scnr, mntr, prtr, link, spac, abst, nmcl");
        space_ = wordAt(bytes_, 16);
        if (!isOneOf(space_, kSpaces))
            add(Level::error, "colour-space", 16, "there is no colour space " + signatureText(space_),
                "write the signature of the device's space");
        connection_ = wordAt(bytes_, 20);
        const bool connects = connection_ == fourcc("Lab ") || connection_ == fourcc("XYZ ");
        if (class_ == fourcc("link") ? !isOneOf(connection_, kSpaces) : !connects)
            add(Level::error, "connection-space", 20,
                signatureText(connection_) + (class_ == fourcc("link") ? " is no colour space"
                                                                       : " is no connection space"),
                class_ == fourcc("link") ? "write the signature of the second device's space"
                                         : "write Lab or XYZ, whichever the tables use");
        checkDate();
        if (!isOneOf(wordAt(bytes_, 40), kPlatforms))
            add(Level::warning, "platform", 40, "there is no platform " + signatureText(wordAt(bytes_, 40)),
                "write zero, or a platform of ICC.1");
        if ((wordAt(bytes_, 44) & 0xfffc) != 0)
            add(Level::warning, "flags", 44, "reserved flags are set", "clear bits 2 to 15 of the flags");
        if ((wordAt(bytes_, 60) & 0xfffffff0) != 0)
            add(Level::warning, "attributes", 60, "reserved device attributes are set",
                "clear bits 4 to 31 of the attributes");
        if (wordAt(bytes_, 64) > 3)
            add(Level::error, "intent", 64, "there is no rendering intent " + std::to_string(wordAt(bytes_, 64)),
                "write 0, 1, 2 or 3");
        checkIlluminant();
        size_t reserved = major == 4 ? 100 : 84;
        while (reserved < kHeader && bytes_[reserved] == 0) ++reserved;
        // Profiles of version 2 may have an ID, where version 4 has it.
        if (reserved < kHeader && (major == 4 || reserved >= 100))
            add(Level::warning, "header-reserved", reserved, "reserved bytes of the header are not zero",
                "write zeros (--fix)");
        if (major == 4) checkId();
    }

    void checkDate() {
        ByteReader in(bytes_.subspan(24));
        const unsigned year = in.u16(), month = in.u16(), day = in.u16(), hour = in.u16(), minute = in.u16(),
                       second = in.u16();
        const bool sound = year >= 1900 && year < 3000 && month >= 1 && month <= 12 && day >= 1 && day <= 31 &&
                           hour < 24 && minute < 60 && second < 60;
        if (!sound)
            add(Level::warning, "date", 24, "the date of creation is no date", "write when the profile was made, in UTC");
    }

    void checkIlluminant() {
        constexpr int64_t kD50[] = {0xf6d6, 0x10000, 0xd32d};
        int64_t off = 0;
        for (size_t at = 0; at < 3; ++at) {
            const int64_t value = static_cast<int32_t>(wordAt(bytes_, 68 + 4 * at));
            off = std::max(off, value > kD50[at] ? value - kD50[at] : kD50[at] - value);
        }
        if (off == 0) return;
        add(off > 655 ? Level::error : Level::warning, "illuminant", 68,
            off > 655 ? "the illuminant is not D50" : "the illuminant is D50 but for its rounding",
            "write 0.9642, 1, 0.8249 (0000f6d6 00010000 0000d32d)");
    }

    void checkId() {
        const auto id = bytes_.subspan(84, 16);
        if (std::all_of(id.begin(), id.end(), [](uint8_t byte) { return byte == 0; })) {
            add(Level::note, "id-missing", 84, "the profile has no ID", "compute it (--fix)");
            return;
        }
        if (!std::ranges::equal(precise::profileId(bytes_), id))
            add(Level::error, "id", 84, "the profile's ID is not that of its bytes: they have been changed since",
                "compute it anew (--fix)");
    }

    bool checkDirectory() {  // whether there is one
        const uint32_t count = wordAt(bytes_, kHeader);
        const uint64_t end = kHeader + 4 + uint64_t{12} * count;
        if (count == 0) add(Level::error, "tag-count", kHeader, "the directory is empty", "get the file again");
        if (count > kMostTags || end > bytes_.size()) {
            add(Level::error, "tag-count", kHeader, "the directory claims " + std::to_string(count) +
                                                        " tags, which do not fit into the file",
                "get the file again");
            return false;
        }
        std::map<uint32_t, size_t> seen;
        for (uint32_t at = 0; at < count; ++at) {
            const size_t entry = kHeader + 4 + 12 * size_t{at};
            Tag tag = {wordAt(bytes_, entry), wordAt(bytes_, entry + 4), wordAt(bytes_, entry + 8), entry, false};
            const uint64_t tagEnd = uint64_t{tag.offset} + tag.size;
            if (!seen.emplace(tag.signature, tags_.size()).second)
                add(Level::error, "tag-twice", entry, "the directory has " + signatureText(tag.signature) + " twice",
                    "remove the one that is not wanted", tag.signature);
            if (tagEnd > bytes_.size())
                add(Level::error, "tag-bounds", entry, "ends at " + std::to_string(tagEnd) + ", beyond the file",
                    "get the whole file again", tag.signature);
            else if (tag.offset < end)
                add(Level::error, "tag-bounds", entry, "begins at " + std::to_string(tag.offset) +
                                                           ", inside the header or the directory",
                    "write the place where the tag is", tag.signature);
            else if (tag.size < 8)
                add(Level::error, "tag-size", entry, "has " + std::to_string(tag.size) +
                                                         " bytes, fewer than a type needs",
                    "write the tag's length", tag.signature);
            else tag.usable = true;
            if (tag.usable && tag.offset % 4 != 0)
                add(Level::error, "tag-place", entry, "does not begin at a multiple of 4",
                    "move it there (--fix)", tag.signature);
            tags_.push_back(tag);
        }
        checkPlaces(end);
        return count > 0;
    }

    // Tags may share all of their bytes, not some of them; between them are at most three zeros.
    void checkPlaces(uint64_t start) {
        std::vector<const Tag*> order;
        for (const Tag& tag : tags_)
            if (tag.usable) order.push_back(&tag);
        std::stable_sort(order.begin(), order.end(), [](const Tag* a, const Tag* b) {
            return a->offset < b->offset || (a->offset == b->offset && a->size < b->size);
        });
        uint64_t reached = start;
        const Tag* before = nullptr;
        for (const Tag* tag : order) {
            const uint64_t end = uint64_t{tag->offset} + tag->size;
            if (before && tag->offset == before->offset && tag->size == before->size) continue;
            if (before && tag->offset < reached) {
                add(Level::error, "tag-overlap", tag->entry, "overlaps " + signatureText(before->signature),
                    "give each its own bytes, or both all of them", tag->signature);
            } else {
                checkGap(reached, tag->offset, tag->signature);
            }
            if (end > reached) {
                reached = end;
                before = tag;
            }
        }
        if (!order.empty()) checkGap(reached, std::min<uint64_t>(bytes_.size(), wordAt(bytes_, 0)), 0);
    }
    void checkGap(uint64_t from, uint64_t to, uint32_t before) {
        if (to <= from) return;
        if (to - from > 3)
            add(Level::note, "unused", from, std::to_string(to - from) + " bytes belong to no tag",
                "leave them out (--fix)", before);
        else if (std::any_of(bytes_.begin() + static_cast<ptrdiff_t>(from), bytes_.begin() + static_cast<ptrdiff_t>(to),
                             [](uint8_t byte) { return byte != 0; }))
            add(Level::warning, "padding", from, "the padding between tags is not zero", "write zeros (--fix)", before);
    }

    const Tag* find(uint32_t signature) const {
        for (const Tag& tag : tags_)
            if (tag.signature == signature) return &tag;
        return nullptr;
    }
    bool hasAll(std::initializer_list<uint32_t> signatures) const {
        return std::all_of(signatures.begin(), signatures.end(), [&](uint32_t tag) { return find(tag); });
    }
    void require(Level level, std::initializer_list<uint32_t> signatures, const char* why) {
        for (const uint32_t signature : signatures)
            if (!find(signature))
                add(level, "tag-missing", kHeader, "the tag " + signatureText(signature) + " is missing, " + why,
                    "add it, or have the profile made anew", signature);
    }

    void checkRequired() {
        require(Level::error, {fourcc("desc"), fourcc("cprt")}, "which every profile has");
        if (class_ == fourcc("link")) {
            require(Level::error, {fourcc("A2B0"), fourcc("pseq")}, "which every device link has");
            return;
        }
        require(Level::error, {fourcc("wtpt")}, "which every profile but a link has");
        if (class_ == fourcc("abst")) require(Level::error, {fourcc("A2B0")}, "which every abstract profile has");
        if (class_ == fourcc("nmcl")) require(Level::error, {fourcc("ncl2")}, "which holds the named colours");
        if (class_ == fourcc("spac"))
            require(Level::error, {fourcc("A2B0"), fourcc("B2A0")}, "which every colour-space profile has");
        const bool matrix = space_ == fourcc("RGB ") &&
                            hasAll({fourcc("rXYZ"), fourcc("gXYZ"), fourcc("bXYZ"), fourcc("rTRC"),
                                    fourcc("gTRC"), fourcc("bTRC")});
        const bool shaper = matrix || (space_ == fourcc("GRAY") && find(fourcc("kTRC")));
        const bool device = class_ == fourcc("scnr") || class_ == fourcc("mntr") || class_ == fourcc("prtr");
        if (device && !shaper && !find(fourcc("A2B0")))
            add(Level::error, "no-conversion", kHeader, "there is neither a whole matrix with curves nor a table A2B0",
                "have the profile made anew");
        if (class_ == fourcc("prtr") && !shaper && find(fourcc("A2B0")))
            require(Level::warning, {fourcc("A2B1"), fourcc("A2B2"), fourcc("B2A0"), fourcc("B2A1"),
                                     fourcc("B2A2"), fourcc("gamt")},
                    "which an output profile with tables has");
        if (version_ >> 24 == 4 && class_ == fourcc("mntr") && device)
            require(Level::warning, {fourcc("chad")}, "which says how the white was adapted");
    }

    void checkElements() {
        const ElementContext context = {version_ >> 24, class_, space_, connection_};
        // Tags that share bytes are looked at one by one; a hostile directory shares them often.
        uint64_t rest = kMostLooks * uint64_t{bytes_.size()};
        for (const Tag& tag : tags_) {
            if (!tag.usable || tag.size > rest) continue;
            rest -= tag.size;
            checkElement(context, tag.signature, bytes_.subspan(tag.offset, tag.size), tag.offset, faults_);
        }
    }

    std::span<const uint8_t> bytes_;
    std::vector<Fault> faults_;
    std::vector<Tag> tags_;
    uint32_t version_ = 0, class_ = 0, space_ = 0, connection_ = 0;
};

}  // namespace

std::vector<Fault> checkIcc(std::span<const uint8_t> bytes) { return IccCheck(bytes).run(); }

namespace {

// A sequence of profiles in place of one that is wrong, or that a link lacks; empty: it may stay.
std::vector<uint8_t> sequenceFor(std::span<const uint8_t> bytes, std::span<const uint8_t> element) {
    const ElementContext context = {wordAt(bytes, 8) >> 24, wordAt(bytes, 12), wordAt(bytes, 16), wordAt(bytes, 20)};
    const auto faultsOf = [&](std::span<const uint8_t> of) {
        std::vector<Fault> faults;
        checkElement(context, fourcc("pseq"), of, 0, faults);
        return faults.size();
    };
    if (element.size() < 12 || wordAt(element, 0) != fourcc("pseq") || faultsOf(element) == 0) return {};
    auto mended = mendSequence(element, context.version);
    if (!mended.empty() && faultsOf(mended) > 0) mended.clear();
    return mended;
}

// Of no profile, as the library writes it: a link whose profiles nobody knows.
std::vector<uint8_t> emptySequence() {
    std::vector<uint8_t> bytes;
    ByteWriter out(bytes);
    for (const uint32_t word : {fourcc("pseq"), 0u, 0u}) out.u32(word);
    return bytes;
}

}  // namespace

std::vector<uint8_t> mendIcc(std::span<const uint8_t> bytes) {
    const uint32_t count = wordAt(bytes, kHeader);
    const uint64_t start = kHeader + 4 + uint64_t{12} * count;
    if (bytes.size() < kHeader + 4 || wordAt(bytes, 36) != fourcc("acsp") || count == 0 || count > kMostTags ||
        start > bytes.size())
        return {};
    struct Part {
        uint32_t signature, offset, size;
    };
    std::vector<Part> parts;
    bool hasSequence = false;
    std::vector<uint8_t> sequence;  // one that is new
    for (uint32_t at = 0; at < count; ++at) {
        const size_t entry = kHeader + 4 + 12 * size_t{at};
        const Part part = {wordAt(bytes, entry), wordAt(bytes, entry + 4), wordAt(bytes, entry + 8)};
        if (part.offset < start || uint64_t{part.offset} + part.size > bytes.size()) return {};
        if (part.signature == fourcc("pseq") && !hasSequence) {
            hasSequence = true;
            sequence = sequenceFor(bytes, bytes.subspan(part.offset, part.size));
        }
        parts.push_back(part);
    }
    const bool lacksSequence = wordAt(bytes, 12) == fourcc("link") && !hasSequence && count < kMostTags;
    if (lacksSequence) {
        sequence = emptySequence();
        parts.push_back({fourcc("pseq"), 0, 0});
    }
    std::vector<uint8_t> mended(bytes.begin(), bytes.begin() + kHeader + 4);
    mended.resize(kHeader + 4 + 12 * parts.size());
    const auto put = [&](size_t at, uint32_t word) {
        for (size_t byte = 0; byte < 4; ++byte) mended[at + byte] = static_cast<uint8_t>(word >> (24 - 8 * byte));
    };
    const auto add = [&](std::span<const uint8_t> element) {
        const auto place = static_cast<uint32_t>(mended.size());
        mended.insert(mended.end(), element.begin(), element.end());
        mended.resize((mended.size() + 3) / 4 * 4);
        return place;
    };
    put(kHeader, static_cast<uint32_t>(parts.size()));
    const uint64_t most = bytes.size() + 4 * uint64_t{count} + 16 + sequence.size();
    std::map<std::pair<uint32_t, uint32_t>, uint32_t> placed;
    size_t entry = kHeader + 4;
    for (const auto& [signature, offset, size] : parts) {
        uint32_t place = 0, length = size;
        if (signature == fourcc("pseq") && !sequence.empty()) {
            place = add(sequence);
            length = static_cast<uint32_t>(sequence.size());
            sequence.clear();  // of two the first one counts
        } else {
            const auto [known, isNew] = placed.emplace(std::pair(offset, size), uint32_t{0});
            // Entries that overlap could claim the file many times over.
            if (isNew && mended.size() + uint64_t{size} > most) return {};
            if (isNew) known->second = add(bytes.subspan(offset, size));
            place = known->second;
        }
        for (const uint32_t word : {signature, place, length}) {
            put(entry, word);
            entry += 4;
        }
    }
    put(0, static_cast<uint32_t>(mended.size()));
    mended[10] = mended[11] = 0;
    const bool version4 = mended[8] == 4;
    const bool hasId = std::any_of(mended.begin() + 84, mended.begin() + 100, [](uint8_t byte) { return byte != 0; });
    std::fill(mended.begin() + 100, mended.begin() + 128, uint8_t{0});
    if (version4 || hasId) {
        const auto id = precise::profileId(mended);
        std::copy(id.begin(), id.end(), mended.begin() + 84);
    }
    return mended;
}

}  // namespace ko::quality
