#include "quality/element_check.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "frame/bytes.h"
#include "precise/profile.h"

namespace ko::quality {
namespace {

using precise::signatureText;

// Types by version: what stands under a tag in version 2, and what in version 4. 0 ends a list.
struct TagTypes {
    uint32_t tag;
    std::array<uint32_t, 4> version2, version4;
};
constexpr uint32_t kText = fourcc("text"), kDesc = fourcc("desc"), kMluc = fourcc("mluc"),
                   kXyz = fourcc("XYZ "), kCurve = fourcc("curv"), kPara = fourcc("para"),
                   kLut8 = fourcc("mft1"), kLut16 = fourcc("mft2"), kLutAB = fourcc("mAB "),
                   kLutBA = fourcc("mBA "), kSequence = fourcc("pseq"), kMatrix = fourcc("sf32"),
                   kSignature = fourcc("sig ");
constexpr TagTypes kTagTypes[] = {
    {fourcc("A2B0"), {kLut8, kLut16}, {kLut8, kLut16, kLutAB}},
    {fourcc("A2B1"), {kLut8, kLut16}, {kLut8, kLut16, kLutAB}},
    {fourcc("A2B2"), {kLut8, kLut16}, {kLut8, kLut16, kLutAB}},
    {fourcc("B2A0"), {kLut8, kLut16}, {kLut8, kLut16, kLutBA}},
    {fourcc("B2A1"), {kLut8, kLut16}, {kLut8, kLut16, kLutBA}},
    {fourcc("B2A2"), {kLut8, kLut16}, {kLut8, kLut16, kLutBA}},
    {fourcc("gamt"), {kLut8, kLut16}, {kLut8, kLut16, kLutBA}},
    {fourcc("pre0"), {kLut8, kLut16}, {kLut8, kLut16, kLutBA}},
    {fourcc("pre1"), {kLut8, kLut16}, {kLut8, kLut16, kLutBA}},
    {fourcc("pre2"), {kLut8, kLut16}, {kLut8, kLut16, kLutBA}},
    {fourcc("rTRC"), {kCurve}, {kCurve, kPara}},
    {fourcc("gTRC"), {kCurve}, {kCurve, kPara}},
    {fourcc("bTRC"), {kCurve}, {kCurve, kPara}},
    {fourcc("kTRC"), {kCurve}, {kCurve, kPara}},
    {fourcc("rXYZ"), {kXyz}, {kXyz}},
    {fourcc("gXYZ"), {kXyz}, {kXyz}},
    {fourcc("bXYZ"), {kXyz}, {kXyz}},
    {fourcc("wtpt"), {kXyz}, {kXyz}},
    {fourcc("bkpt"), {kXyz}, {kXyz}},
    {fourcc("lumi"), {kXyz}, {kXyz}},
    {fourcc("desc"), {kDesc}, {kMluc}},
    {fourcc("dmnd"), {kDesc}, {kMluc}},
    {fourcc("dmdd"), {kDesc}, {kMluc}},
    {fourcc("vued"), {kDesc}, {kMluc}},
    {fourcc("scrd"), {kDesc}, {kDesc}},
    {fourcc("cprt"), {kText}, {kMluc}},
    {fourcc("targ"), {kText}, {kText}},
    {fourcc("chad"), {kMatrix}, {kMatrix}},
    {fourcc("tech"), {kSignature}, {kSignature}},
    {fourcc("pseq"), {kSequence}, {kSequence}},
    {fourcc("calt"), {fourcc("dtim")}, {fourcc("dtim")}},
    {fourcc("meas"), {fourcc("meas")}, {fourcc("meas")}},
    {fourcc("view"), {fourcc("view")}, {fourcc("view")}},
    {fourcc("chrm"), {fourcc("chrm")}, {fourcc("chrm")}},
    {fourcc("ncl2"), {fourcc("ncl2")}, {fourcc("ncl2")}},
    {fourcc("clrt"), {fourcc("clrt")}, {fourcc("clrt")}},
    {fourcc("clot"), {fourcc("clrt")}, {fourcc("clrt")}},
    {fourcc("clro"), {fourcc("clro")}, {fourcc("clro")}},
};

constexpr uint32_t kMostEntries = 4096;  // of a table's curves

int channelsOf(uint32_t space) {
    for (uint32_t count = 5; count <= 15; ++count) {  // 5CLR to FCLR
        const uint32_t digit = count < 10 ? '0' + count : 'A' + count - 10;
        if (space == (digit << 24 | (fourcc("0CLR") & 0xffffff))) return static_cast<int>(count);
    }
    return precise::channelsOf(space);
}

class ElementCheck {
public:
    ElementCheck(const ElementContext& context, uint32_t tag, std::span<const uint8_t> element, uint64_t offset,
                 std::vector<Fault>& faults)
        : context_(context), tag_(tag), element_(element), offset_(offset), faults_(faults) {}

    void run() {
        const uint32_t type = wordAt(0);
        // Profiles of named colours have no tables; what stands there is their maker's own.
        if (context_.deviceClass == fourcc("nmcl") && isTable()) return;
        if (!isAllowed(type)) return;
        if (wordAt(4) != 0)
            add(Level::warning, "type-reserved", 4, "the four bytes behind the type are not zero", "write zeros");
        switch (type) {
            case kText: checkText(); break;
            case kDesc: checkDescription(8, true); break;
            case kMluc: checkLocalized(0, element_.size()); break;
            case kXyz: checkXyz(); break;
            case kCurve: checkCurve(0, true); break;
            case kPara: checkParametric(0); break;
            case kLut8: case kLut16: checkOldTable(type == kLut16 ? 2 : 1); break;
            case kLutAB: case kLutBA: checkNewTable(type == kLutAB); break;
            case kSequence: checkSequence(); break;
            case kMatrix:
                if (element_.size() < 8 + 36)
                    add(Level::error, "matrix-size", 8, "has fewer than nine numbers", "have the profile made anew");
                break;
            default: break;
        }
    }

private:
    void add(Level level, const char* rule, uint64_t at, std::string text, const char* remedy) {
        faults_.push_back({level, rule, tag_, offset_ + at, std::move(text), remedy});
    }
    // Bytes from there on, none beyond the end; places are 64 bits until they are known to fit.
    std::span<const uint8_t> from(uint64_t at) const {
        return at <= element_.size() ? element_.subspan(static_cast<size_t>(at)) : std::span<const uint8_t>();
    }
    // A number that the end cuts is 0: no fault quotes half of one.
    uint32_t wordAt(uint64_t at) const { return fits(at, 4) ? ByteReader(from(at)).u32() : 0; }
    uint32_t shortAt(uint64_t at) const { return fits(at, 2) ? ByteReader(from(at)).u16() : 0u; }
    uint32_t byteAt(uint64_t at) const { return ByteReader(from(at)).u8(); }
    bool fits(uint64_t at, uint64_t size) const { return at <= element_.size() && size <= element_.size() - at; }

    // False, with the fault, when the type does not go with the tag.
    bool isAllowed(uint32_t type) {
        for (const TagTypes& known : kTagTypes) {
            if (known.tag != tag_) continue;
            const auto holds = [&](const std::array<uint32_t, 4>& types) {
                return type != 0 && std::find(types.begin(), types.end(), type) != types.end();
            };
            const bool now = holds(context_.version == 4 ? known.version4 : known.version2);
            if (now) return true;
            const bool other = holds(context_.version == 4 ? known.version2 : known.version4);
            add(Level::error, other ? "type-version" : "type", 0,
                "holds the type " + signatureText(type) +
                    (other ? ", which is not one of version " + std::to_string(context_.version)
                           : ", which does not go with it"),
                other ? "write the version whose types the profile has" : "have the profile made anew");
            return other;
        }
        return true;
    }

    void checkText() {
        const auto text = element_.subspan(8);
        const auto end = std::find(text.begin(), text.end(), uint8_t{0});
        if (end == text.end())
            add(Level::error, "text-end", 8, "the text does not end with a zero byte", "end it with one");
        if (std::any_of(text.begin(), end, [](uint8_t byte) { return byte > 127; }))
            add(Level::warning, "text-ascii", 8, "the text has characters that are not ASCII", "write it in ASCII");
    }

    // textDescriptionType from its first count on. Returns where it ends.
    uint64_t checkDescription(uint64_t at, bool last) {
        const uint64_t start = at;
        if (!fits(at, 4)) return broken(start);
        const uint64_t length = wordAt(at);
        at += 4;
        if (!fits(at, length)) return broken(start);
        const auto ascii = from(at).first(static_cast<size_t>(length));
        if (length == 0 || ascii.back() != 0)
            add(length == 0 ? Level::warning : Level::error, "text-end", at,
                "the ASCII text does not end with a zero byte", "count and write the zero byte");
        if (std::any_of(ascii.begin(), ascii.end(), [](uint8_t byte) { return byte > 127; }))
            add(Level::warning, "text-ascii", at, "the ASCII text has characters that are not ASCII",
                "put them into the Unicode text");
        at += length;
        // Many makers leave out what is empty.
        if (!fits(at, 8) || !fits(at + 8, uint64_t{2} * wordAt(at + 4)))
            return last ? shortened(at) : broken(start);
        const uint64_t units = wordAt(at + 4);
        at += 8;
        if (units > 0 && shortAt(at + 2 * (units - 1)) != 0)
            add(Level::warning, "text-end", at, "the Unicode text does not end with a zero", "count and write the zero");
        at += 2 * units;
        if (!fits(at, 70)) return last ? shortened(at) : broken(start);
        if (byteAt(at + 2) > 67)
            add(Level::error, "description", at + 2, "the Macintosh text claims more than 67 bytes", "write its length");
        return at + 70;
    }
    uint64_t broken(uint64_t at) {
        add(Level::error, "description", at, "the description does not fit into its bytes", "have it written anew");
        return element_.size() + 1;
    }
    uint64_t shortened(uint64_t at) {
        add(Level::warning, "description", at, "the description leaves out its Unicode or Macintosh part",
            "write the empty parts");
        return element_.size();
    }

    // multiLocalizedUnicodeType. Returns where it ends.
    uint64_t checkLocalized(uint64_t start, uint64_t end) {
        if (!fits(start, 16) || end < start + 16) return brokenTexts(start);
        const uint64_t count = wordAt(start + 8), width = wordAt(start + 12);
        if (width != 12) {
            add(Level::error, "texts", start + 12, "a record has " + std::to_string(width) + " bytes instead of 12",
                "have the text written anew");
            return element_.size() + 1;
        }
        if (count == 0) {
            add(Level::error, "texts", start + 8, "there is no text in any language", "write one");
            return start + 16;
        }
        if (!fits(start + 16, count * 12)) return brokenTexts(start);
        uint64_t reached = start + 16 + count * 12;
        for (uint64_t at = 0; at < count; ++at) {
            const uint64_t record = start + 16 + at * 12, length = wordAt(record + 4), offset = wordAt(record + 8);
            if (!fits(start + offset, length) || offset < 16 + count * 12) return brokenTexts(record);
            if (length % 2 != 0)
                add(Level::error, "texts", record + 4, "a text in UTF-16 has an odd number of bytes", "write its length");
            reached = std::max(reached, start + offset + length);
        }
        return reached;
    }
    uint64_t brokenTexts(uint64_t at) {
        add(Level::error, "texts", at, "a text does not fit into its bytes", "have the text written anew");
        return element_.size() + 1;
    }

    void checkXyz() {
        if (element_.size() < 20) {
            add(Level::error, "xyz-size", 8, "has fewer than three numbers", "have the profile made anew");
            return;
        }
        const auto part = [&](size_t at) { return static_cast<int32_t>(wordAt(8 + 4 * at)) / 65536.0; };
        if (tag_ != fourcc("wtpt")) return;
        for (size_t at = 0; at < 3; ++at)
            if (!(part(at) > 0) || part(at) > 2) {
                add(Level::error, "white", 8, "the media white is no white: " + std::to_string(static_cast<int>(part(0) * 1000)) +
                        ", " + std::to_string(static_cast<int>(part(1) * 1000)) + ", " +
                        std::to_string(static_cast<int>(part(2) * 1000)) + " thousandths",
                    "write the paper's XYZ under D50, its Y near 1");
                return;
            }
    }

    // Returns where the curve ends; beyond the element when it does not fit.
    uint64_t checkCurve(uint64_t start, bool alone) {
        const uint64_t count = wordAt(start + 8);
        if (!fits(start, 12) || !fits(start + 12, count * 2)) {
            add(Level::error, "curve-size", start, "a curve claims " + std::to_string(count) +
                                                       " entries, which do not fit", "have the profile made anew");
            return element_.size() + 1;
        }
        if (count > 1) {
            bool falls = false, rises = false;
            for (uint64_t at = 1; at < count; ++at) {
                const uint32_t before = shortAt(start + 12 + 2 * (at - 1)), here = shortAt(start + 12 + 2 * at);
                falls |= here < before;
                rises |= here > before;
            }
            if (alone && !rises)
                add(Level::warning, "curve-flat", start + 12, "the curve never rises", "have the profile made anew");
            else if (alone && falls)
                add(Level::note, "curve-turns", start + 12, "the curve falls in places", "smooth the measurements");
        }
        return start + 12 + count * 2;
    }
    uint64_t checkParametric(uint64_t start) {
        constexpr uint64_t kNumbers[] = {1, 3, 4, 5, 7};
        const uint32_t form = shortAt(start + 8);
        if (!fits(start, 12) || form > 4) {
            add(Level::error, "curve-form", start + 8, "there is no parametric curve of form " + std::to_string(form),
                "have the profile made anew");
            return element_.size() + 1;
        }
        if (!fits(start + 12, kNumbers[form] * 4)) {
            add(Level::error, "curve-size", start, "a parametric curve lacks parameters", "have the profile made anew");
            return element_.size() + 1;
        }
        return start + 12 + kNumbers[form] * 4;
    }

    // What goes in and comes out of this tag; 0: not known.
    int inputs() const { return channelsOf(isForward() ? context_.space : context_.connection); }
    int outputs() const {
        if (tag_ == fourcc("gamt")) return 1;
        return channelsOf(isForward() ? context_.connection : context_.space);
    }
    bool isForward() const { return tag_ >> 8 == fourcc("0A2B") % (1u << 24); }
    bool isTable() const {
        return tag_ == fourcc("gamt") || isForward() || tag_ >> 8 == fourcc("0B2A") % (1u << 24);
    }

    bool checkChannels(int in, int out) {
        if (!isTable()) return in > 0 && out > 0;
        const int wantedIn = inputs(), wantedOut = outputs();
        if ((wantedIn != 0 && in != wantedIn) || (wantedOut != 0 && out != wantedOut) || in < 1 || out < 1) {
            add(Level::error, "channels", 8, "leads from " + std::to_string(in) + " to " + std::to_string(out) +
                                                 " channels where " + std::to_string(wantedIn) + " to " +
                                                 std::to_string(wantedOut) + " are needed",
                "have the profile made anew");
            return false;
        }
        return true;
    }

    void checkOldTable(uint64_t width) {
        const uint64_t head = width == 2 ? 52 : 48;
        if (!fits(0, head)) {
            add(Level::error, "table-size", 8, "the table is cut short", "get the whole file again");
            return;
        }
        const uint64_t in = element_[8], out = element_[9], points = element_[10];
        if (!checkChannels(static_cast<int>(in), static_cast<int>(out))) return;
        if (points < 2) {
            add(Level::error, "grid", 10, "the grid has " + std::to_string(points) + " points an axis, fewer than 2",
                "have the profile made anew");
            return;
        }
        bool identity = true;
        for (size_t at = 0; at < 9; ++at) {
            const int64_t off = int64_t{static_cast<int32_t>(wordAt(12 + 4 * at))} - (at % 4 == 0 ? 0x10000 : 0);
            identity = identity && off <= 1 && off >= -1;
        }
        const bool fromXyz = !isForward() && context_.connection == fourcc("XYZ ");
        if (!identity && !fromXyz)
            add(Level::error, "matrix", 12, "the matrix is not the identity, though nothing comes in as XYZ",
                "write the identity");
        const uint64_t inputEntries = width == 2 ? shortAt(48) : 256, outputEntries = width == 2 ? shortAt(50) : 256;
        if (inputEntries < 2 || outputEntries < 2 || inputEntries > kMostEntries || outputEntries > kMostEntries) {
            add(Level::error, "table-entries", 48, "curves have " + std::to_string(inputEntries) + " and " +
                                                       std::to_string(outputEntries) + " entries where 2 to 4096 are allowed",
                "have the profile made anew");
            return;
        }
        checkTableSize(head + width * in * inputEntries, in, points, out, width, width * out * outputEntries);
    }
    void checkTableSize(uint64_t before, uint64_t in, uint64_t points, uint64_t out, uint64_t width, uint64_t after) {
        uint64_t nodes = 1;
        for (uint64_t axis = 0; axis < in && nodes < (uint64_t{1} << 40); ++axis) nodes *= points;
        const uint64_t size = before + nodes * out * width + after;
        if (size > element_.size())
            add(Level::error, "table-size", 0, "the table needs " + std::to_string(size) + " bytes and has " +
                                                   std::to_string(element_.size()), "get the whole file again");
        else if (size + 3 < element_.size())
            add(Level::warning, "table-size", 0, "the table needs " + std::to_string(size) + " bytes and has " +
                                                     std::to_string(element_.size()), "write its length into the directory");
    }

    void checkNewTable(bool fromDevice) {
        if (!fits(0, 32)) {
            add(Level::error, "table-size", 8, "the table is cut short", "get the whole file again");
            return;
        }
        const uint64_t in = element_[8], out = element_[9];
        if (!checkChannels(static_cast<int>(in), static_cast<int>(out))) return;
        const uint64_t b = wordAt(12), matrix = wordAt(16), m = wordAt(20), grid = wordAt(24), a = wordAt(28);
        for (const uint64_t part : {b, matrix, m, grid, a})
            if (part != 0 && (part % 4 != 0 || part < 32 || part >= element_.size())) {
                add(Level::error, "table-parts", 12, "a part of the table begins at " + std::to_string(part) +
                                                         ", where it cannot be", "have the profile made anew");
                return;
            }
        const uint64_t deviceSide = fromDevice ? in : out, other = fromDevice ? out : in;
        if (b == 0)
            add(Level::error, "table-parts", 12, "the B curves are missing", "have the profile made anew");
        if ((matrix != 0) != (m != 0))
            add(Level::error, "table-parts", 16, "of matrix and M curves only one is there", "have the profile made anew");
        if ((grid != 0) != (a != 0))
            add(Level::error, "table-parts", 24, "of grid and A curves only one is there", "have the profile made anew");
        if (grid == 0 && in != out)
            add(Level::error, "table-parts", 24, "there is no grid, though the channels differ", "have the profile made anew");
        checkCurves(b, other);
        if (matrix != 0 && !fits(matrix, 48))
            add(Level::error, "table-size", matrix, "the matrix does not fit", "get the whole file again");
        if (m != 0) checkCurves(m, other);
        if (grid != 0) checkGrid(grid, in, out);
        if (a != 0) checkCurves(a, deviceSide);
    }
    void checkCurves(uint64_t at, uint64_t count) {
        if (at == 0) return;
        for (uint64_t curve = 0; curve < count; ++curve) {
            const uint32_t type = wordAt(at);
            uint64_t end = element_.size() + 1;
            if (type == kCurve) end = checkCurve(at, false);
            else if (type == kPara) end = checkParametric(at);
            else add(Level::error, "curve-type", at, "where a curve should be is the type " + signatureText(type),
                     "have the profile made anew");
            if (end > element_.size()) return;
            at = (end + 3) / 4 * 4;
        }
    }
    void checkGrid(uint64_t at, uint64_t in, uint64_t out) {
        if (!fits(at, 20)) {
            add(Level::error, "table-size", at, "the grid does not fit", "get the whole file again");
            return;
        }
        uint64_t nodes = 1;
        for (uint64_t axis = 0; axis < std::min<uint64_t>(in, 16); ++axis) {
            const uint64_t points = byteAt(at + axis);
            if (points < 2) {
                add(Level::error, "grid", at + axis, "an axis of the grid has " + std::to_string(points) +
                                                         " points, fewer than 2", "have the profile made anew");
                return;
            }
            if (nodes < (uint64_t{1} << 40)) nodes *= points;
        }
        const uint64_t width = byteAt(at + 16);
        if (width != 1 && width != 2)
            add(Level::error, "grid", at + 16, "values of " + std::to_string(width) + " bytes are not known",
                "have the profile made anew");
        else if (!fits(at + 20, nodes * out * width))
            add(Level::error, "table-size", at, "the grid needs " + std::to_string(nodes * out * width) +
                                                    " bytes, which are not there", "get the whole file again");
    }

    void checkSequence() {
        if (!fits(0, 12)) {
            add(Level::error, "sequence", 8, "the sequence has no count", "have the link made anew");
            return;
        }
        const uint64_t count = wordAt(8);
        uint64_t at = 12;
        for (uint64_t profile = 0; profile < count; ++profile) {
            if (!fits(at, 20)) return brokenSequence(at);
            at += 20;
            for (int text = 0; text < 2; ++text) {
                const uint32_t type = fits(at, 8) ? wordAt(at) : 0;
                if (type != (context_.version == 4 ? kMluc : kDesc)) return brokenSequence(at);
                const size_t before = faults_.size();
                at = type == kDesc ? checkDescription(at + 8, false) : checkLocalized(at, element_.size());
                if (faults_.size() > before && at > element_.size()) return;
                if (type == kMluc) at = (at + 3) / 4 * 4;
            }
        }
    }
    void brokenSequence(uint64_t at) {
        add(Level::error, "sequence", at, "the sequence of profiles does not fit into its bytes",
            "have the link made anew");
    }

    const ElementContext& context_;
    uint32_t tag_;
    std::span<const uint8_t> element_;
    uint64_t offset_;
    std::vector<Fault>& faults_;
};

}  // namespace

void checkElement(const ElementContext& context, uint32_t tag, std::span<const uint8_t> element, uint64_t offset,
                  std::vector<Fault>& faults) {
    ElementCheck(context, tag, element, offset, faults).run();
}

}  // namespace ko::quality
