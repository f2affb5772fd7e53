#include "quality/sequence_mend.h"

#include <algorithm>
#include <optional>

#include "frame/bytes.h"
#include "precise/link_file.h"

namespace ko::quality {
namespace {

constexpr uint64_t kFixed = 20;  // what stands before a profile's two texts

class Sequence {
public:
    Sequence(std::span<const uint8_t> element, uint32_t version) : element_(element), version_(version) {}

    std::vector<uint8_t> mended() {
        std::vector<uint8_t> bytes;
        ByteWriter out(bytes);
        out.u32(fourcc("pseq"));
        out.u32(0);
        out.u32(0);
        const uint64_t claimed = wordAt(8);
        uint32_t count = 0;
        uint64_t at = 12;
        for (; count < claimed && fits(at, kFixed); ++count) {
            std::vector<uint8_t> profile(element_.begin() + static_cast<std::ptrdiff_t>(at),
                                         element_.begin() + static_cast<std::ptrdiff_t>(at + kFixed));
            at += kFixed;
            if (!takeText(at, false, profile) || !takeText(at, true, profile)) break;
            out.append(std::span<const uint8_t>(profile));
        }
        if (count == 0) return {};
        for (size_t byte = 0; byte < 4; ++byte) bytes[8 + byte] = static_cast<uint8_t>(count >> (24 - 8 * byte));
        return bytes;
    }

private:
    bool fits(uint64_t at, uint64_t size) const { return at <= element_.size() && size <= element_.size() - at; }
    uint32_t wordAt(uint64_t at) const {
        return fits(at, 4) ? ByteReader(element_.subspan(static_cast<size_t>(at))).u32() : 0;
    }
    uint32_t textType() const { return version_ == 4 ? fourcc("mluc") : fourcc("desc"); }

    // Whether what follows a text begins here: the second text, or the next profile, or the end.
    bool follows(uint64_t at, bool second) const {
        if (!fits(at, 0)) return false;
        if (!second) return wordAt(at) == textType();
        return element_.size() - at < 4 || wordAt(at + kFixed) == textType();
    }

    bool takeText(uint64_t& at, bool second, std::vector<uint8_t>& profile) {
        if (wordAt(at) != textType()) return false;
        return version_ == 4 ? takeLocalized(at, profile) : takeDescription(at, second, profile);
    }

    // Makers leave out the parts of a description that are empty; what follows tells which.
    bool takeDescription(uint64_t& at, bool second, std::vector<uint8_t>& profile) {
        const uint64_t length = wordAt(at + 8), text = at + 12;
        if (!fits(text, length)) return false;
        const uint64_t ascii = text + length, unicode = ascii + 8 + uint64_t{2} * wordAt(ascii + 4);
        const auto isNext = [&](uint64_t end) { return follows(end, second); };
        const bool whole = fits(unicode, 70) && isNext(unicode + 70);
        std::optional<uint64_t> end;
        for (const uint64_t place : {unicode + 70, unicode + 3, unicode, ascii})
            if (!end && isNext(place)) end = place;
        if (!end) return false;
        const auto bytes = element_.subspan(static_cast<size_t>(text), static_cast<size_t>(length));
        const bool sound = whole && length > 0 && bytes.back() == 0 && element_[static_cast<size_t>(unicode) + 2] <= 67 &&
                           std::ranges::none_of(bytes, [](uint8_t byte) { return byte > 127; });
        if (sound) {
            profile.insert(profile.end(), element_.begin() + static_cast<std::ptrdiff_t>(at),
                           element_.begin() + static_cast<std::ptrdiff_t>(*end));
        } else {
            std::string kept(bytes.begin(), std::ranges::find(bytes, uint8_t{0}));
            std::ranges::replace_if(kept, [](char c) { return c < 32 || c > 126; }, '?');
            ByteWriter out(profile);
            precise::putDescription(out, kept, "");
        }
        at = *end;
        return true;
    }

    bool takeLocalized(uint64_t& at, std::vector<uint8_t>& profile) const {
        const uint64_t count = wordAt(at + 8);
        if (wordAt(at + 12) != 12 || count == 0 || !fits(at + 16, count * 12)) return false;
        uint64_t end = at + 16 + count * 12;
        for (uint64_t record = at + 16; record < at + 16 + count * 12; record += 12) {
            const uint64_t length = wordAt(record + 4), offset = wordAt(record + 8);
            if (length % 2 != 0 || offset < 16 + count * 12 || !fits(at + offset, length)) return false;
            end = std::max(end, at + offset + length);
        }
        const uint64_t padded = (end + 3) / 4 * 4;
        profile.insert(profile.end(), element_.begin() + static_cast<std::ptrdiff_t>(at),
                       element_.begin() + static_cast<std::ptrdiff_t>(end));
        profile.resize(profile.size() + static_cast<size_t>(padded - end));
        at = padded;
        return true;
    }

    std::span<const uint8_t> element_;
    uint32_t version_;
};

}  // namespace

std::vector<uint8_t> mendSequence(std::span<const uint8_t> element, uint32_t version) {
    return Sequence(element, version).mended();
}

}  // namespace ko::quality
