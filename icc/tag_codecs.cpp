// Decoding and encoding of the element types, and the table of tags that use them.
#include "icc/tag_codecs.h"

#include "icc/lut_block.h"

namespace ko::icc {
namespace {

constexpr uint64_t kTypeSize = 8;  // of type signature and reserved bytes

// Decoding

uint32_t countAt(const Element& element, uint64_t at) noexcept {
    return element.numbersAt(at).u32();
}

constexpr size_t kPage = 4096;

// Into a block of zeros. Pages that hold zeros alone are left as they are, so that the holes of a
// file take no memory here either.
void copyThinly(std::span<const uint8_t> from, uint8_t* to) noexcept {
    for (size_t at = 0; at < from.size(); at += kPage) {
        const auto page = from.subspan(at, std::min(kPage, from.size() - at));
        const bool zero = page[0] == 0 && std::memcmp(&page[0], &page[0] + 1, page.size() - 1) == 0;
        if (!zero) std::memcpy(to + at, page.data(), page.size());
    }
}

// 16-bit entries of a table of that many bytes, into a block of zeros.
void copyEntries(std::span<const uint8_t> from, bool reversed, uint8_t* to) noexcept {
    copyThinly(from, to);
    if (!reversed) return;
    const size_t whole = from.size() + from.size() % 2;  // the byte beyond is zero
    for (size_t at = 0; at < whole; at += kPage) {
        const size_t size = std::min(kPage, whole - at);
        const auto held = from.subspan(at, std::min(size, from.size() - at));
        const bool zero = held[0] == 0 && std::memcmp(&held[0], &held[0] + 1, held.size() - 1) == 0;
        if (!zero) IccReverseBytes(to + at, to + at, 2, size / 2);
    }
}

std::optional<uint64_t> claimXyz(const Element& element) noexcept {
    if (!element.hasType("XYZ ")) return std::nullopt;
    return kTypeSize + 12;
}

Block<void> decodeXyz(const Element& element) noexcept {
    Block<float> xyz = allocateBlock<float>(3 * sizeof(float));
    if (!xyz) return nullptr;
    ByteReader in = element.numbersAt(kTypeSize);
    for (int at = 0; at < 3; ++at) xyz.get()[at] = IccFixedToFloat(in.s32());
    return Block<void>(xyz.release());
}

std::optional<uint64_t> claimCurve(const Element& element) noexcept {
    if (!element.hasType("curv")) return std::nullopt;
    return kTypeSize + 4 + uint64_t{countAt(element, kTypeSize)} * 2;
}

Block<void> decodeCurve(const Element& element) noexcept {
    const uint32_t count = countAt(element, kTypeSize);
    const uint64_t size = uint64_t{count} * 2;
    // Room for the whole record, which has one entry, also when the curve has none.
    Block<IccCurve> curve = allocateZeroBlock<IccCurve>(sizeof(IccCurve) + size);
    if (!curve) return nullptr;
    curve->count = count;
    copyEntries(element.held(kTypeSize + 4, size), element.bigEndian(),
                reinterpret_cast<uint8_t*>(curve->entries));
    return Block<void>(curve.release());
}

// The text as stored, with a terminating NUL behind it in case the file has none.
Block<void> decodeString(const Element& element, uint64_t at, uint32_t length) noexcept {
    Block<uint8_t> text = allocateZeroBlock<uint8_t>(uint64_t{length} + 1);
    if (text) copyThinly(element.held(at, length), text.get());
    return Block<void>(text.release());
}

std::optional<uint64_t> claimDescription(const Element& element) noexcept {
    const uint32_t length = countAt(element, kTypeSize);
    if (!element.hasType("desc") || length == 0) return std::nullopt;
    return kTypeSize + 4 + uint64_t{length};
}

Block<void> decodeDescription(const Element& element) noexcept {
    return decodeString(element, kTypeSize + 4, countAt(element, kTypeSize));
}

std::optional<uint64_t> claimText(const Element& element) noexcept {
    if (!element.hasType("text") || element.size() < kTypeSize) return std::nullopt;
    return element.size();
}

Block<void> decodeText(const Element& element) noexcept {
    return decodeString(element, kTypeSize, element.size() - static_cast<uint32_t>(kTypeSize));
}

// What stands before a LUT's tables.
struct LutHead {
    LutShape shape{};
    float matrix[9];
    uint64_t tablesAt;
};

std::optional<LutHead> lutHeadOf(const Element& element) noexcept {
    const bool narrow = element.hasType("mft1");
    if (!narrow && !element.hasType("mft2")) return std::nullopt;
    ByteReader in = element.numbersAt(kTypeSize);
    LutHead head;
    LutShape& shape = head.shape;
    shape.inputChannels = in.u8();
    shape.outputChannels = in.u8();
    shape.gridPoints = in.u8();
    shape.precision = narrow ? 1 : 2;
    in.skip(1);
    for (float& coefficient : head.matrix) coefficient = IccFixedToFloat(in.s32());
    shape.inputEntries = narrow ? 256 : in.u16();
    shape.outputEntries = narrow ? 256 : in.u16();
    head.tablesAt = narrow ? 48 : 52;
    return head;
}

std::optional<uint64_t> claimLut(const Element& element) noexcept {
    const auto head = lutHeadOf(element);
    if (!head) return std::nullopt;
    const uint64_t size = sizesOf(head->shape).tables();
    return size > UINT64_MAX - head->tablesAt ? UINT64_MAX : head->tablesAt + size;
}

Block<void> decodeLut(const Element& element) noexcept {
    const auto head = lutHeadOf(element);
    if (!head) return nullptr;
    Block<IccLut> lut = layOutLut(head->shape);
    if (!lut) return nullptr;
    std::memcpy(lut->matrix, head->matrix, sizeof head->matrix);
    // The three parts stand in the file as they do in the block.
    copyEntries(element.held(head->tablesAt, sizesOf(head->shape).tables()),
                head->shape.precision == 2 && element.bigEndian(),
                static_cast<uint8_t*>(lut->inputTables));
    return Block<void>(lut.release());
}

// Encoding

uint32_t inOrder(uint32_t value, bool bigEndian) noexcept {
    return bigEndian ? value : reverse32(value);
}

std::optional<uint64_t> encodeXyz(const void* data, bool bigEndian, FileParts& file) {
    float xyz[3];
    std::memcpy(xyz, data, sizeof xyz);
    ByteWriter out(file.bytes());
    out.append("XYZ ");
    out.zeros(4);
    for (const float value : xyz)
        out.u32(inOrder(static_cast<uint32_t>(IccFloatToFixed(value)), bigEndian));
    return 20;
}

std::optional<uint64_t> encodeDescription(const void* data, bool, FileParts& file) {
    const std::string_view text = static_cast<const char*>(data);
    ByteWriter out(file.bytes());
    out.append("desc");
    out.zeros(4);
    out.u32(static_cast<uint32_t>(text.size() + 1));
    out.append(text);
    out.zeros(1);
    // Empty Unicode, ScriptCode and Macintosh descriptions.
    out.zeros(4 + 4 + 2 + 1 + 67);
    return 12 + uint64_t{text.size()} + 1 + 78;
}

std::optional<uint64_t> encodeText(const void* data, bool, FileParts& file) {
    const std::string_view text = static_cast<const char*>(data);
    ByteWriter out(file.bytes());
    out.append("text");
    out.zeros(4);
    out.append(text);
    out.zeros(1);
    return kTypeSize + text.size() + 1;
}

// Readers of these files see a sequence of length 10, two bytes short of its count field. It has
// always been so and stays so.
std::optional<uint64_t> encodeSequence(const void*, bool, FileParts& file) {
    ByteWriter out(file.bytes());
    out.append("pseq");
    out.zeros(4 + 4);
    return 10;
}

// Small ones are copied; a grid that is written as it is stays where it is.
void appendEntries(const void* table, uint64_t size, uint8_t precision, bool reversed,
                   FileParts& file) {
    if (size == 0) return;
    const std::span from(static_cast<const uint8_t*>(table), static_cast<size_t>(size));
    const bool swaps = reversed && precision > 1;
    if (!swaps && size > kPage) return file.borrow(from);
    std::vector<uint8_t>& bytes = file.bytes();
    const size_t start = bytes.size();
    bytes.insert(bytes.end(), from.begin(), from.end());
    if (swaps) IccReverseBytes(&bytes[start], &bytes[start], precision, size / precision);
}

std::optional<uint64_t> encodeLut(const void* data, bool bigEndian, FileParts& file) {
    IccLut lut;
    std::memcpy(&lut, data, sizeof lut);
    const LutSizes sizes = sizesOf(shapeOf(lut));
    // Directory offsets have 32 bits. A record whose tables pass them, or that has none, lies.
    if (sizes.tables() > UINT32_MAX || (sizes.inputTables > 0 && !lut.inputTables) ||
        (sizes.clut > 0 && !lut.clut) || (sizes.outputTables > 0 && !lut.outputTables))
        return std::nullopt;

    const uint64_t start = file.size();
    ByteWriter out(file.bytes());
    if (lut.precision == 1) out.append("mft1");
    else if (lut.precision == 2) out.append("mft2");
    else out.zeros(4);  // no type; the rest keeps its place
    out.zeros(4);
    out.u8(static_cast<uint8_t>(lut.inputChannels));
    out.u8(static_cast<uint8_t>(lut.outputChannels));
    out.u8(static_cast<uint8_t>(lut.gridPoints));
    out.u8(0);
    for (const float coefficient : lut.matrix) out.s32(IccFloatToFixed(coefficient));
    if (lut.precision == 2) {
        out.u16(static_cast<uint16_t>(lut.inputEntries));
        out.u16(static_cast<uint16_t>(lut.outputEntries));
    }
    // Curves are big-endian in any file; the grid follows the file's byte order.
    appendEntries(lut.inputTables, sizes.inputTables, lut.precision, true, file);
    appendEntries(lut.clut, sizes.clut, lut.precision, bigEndian && lut.precision == 2, file);
    appendEntries(lut.outputTables, sizes.outputTables, lut.precision, true, file);
    return file.size() - start;
}

// In the order in which profiles list them. kTRC is left out on purpose: hosts rely on null
// for it.
constexpr TagCodec kTagCodecs[] = {
    {fourcc("A2B0"), claimLut, decodeLut, encodeLut, kAllWriters, 2},
    {fourcc("A2B1"), claimLut, decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("A2B2"), claimLut, decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("B2A0"), claimLut, decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("B2A1"), claimLut, decodeLut, encodeLut, kFullWriters, 1},
    {fourcc("B2A2"), claimLut, decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("gamt"), claimLut, decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("cprt"), claimText, decodeText, encodeText, kAllWriters, 0},
    {fourcc("desc"), claimDescription, decodeDescription, encodeDescription, kAllWriters, 0},
    {fourcc("wtpt"), claimXyz, decodeXyz, encodeXyz, kFullWriters, 0},
    {fourcc("bkpt"), claimXyz, decodeXyz, encodeXyz, kFullWriters, 0},
    {fourcc("rXYZ"), claimXyz, decodeXyz, nullptr, kNoWriter, 0},
    {fourcc("gXYZ"), claimXyz, decodeXyz, nullptr, kNoWriter, 0},
    {fourcc("bXYZ"), claimXyz, decodeXyz, nullptr, kNoWriter, 0},
    {fourcc("rTRC"), claimCurve, decodeCurve, nullptr, kNoWriter, 0},
    {fourcc("gTRC"), claimCurve, decodeCurve, nullptr, kNoWriter, 0},
    {fourcc("bTRC"), claimCurve, decodeCurve, nullptr, kNoWriter, 0},
    {fourcc("pseq"), nullptr, nullptr, encodeSequence, kLinkWriter, 0},
};

}  // namespace

void FileParts::borrow(std::span<const uint8_t> part) {
    borrowed_.push_back(part);
    before_ += own_.back().size() + part.size();
    own_.emplace_back();
}

std::vector<std::span<const uint8_t>> FileParts::parts() const {
    std::vector<std::span<const uint8_t>> all;
    for (size_t at = 0; at < own_.size(); ++at) {
        all.emplace_back(own_[at]);
        if (at < borrowed_.size()) all.push_back(borrowed_[at]);
    }
    return all;
}

std::span<const TagCodec> tagCodecs() noexcept { return kTagCodecs; }

const TagCodec* findCodec(uint32_t signature) noexcept {
    for (const TagCodec& codec : kTagCodecs)
        if (codec.signature == signature) return &codec;
    return nullptr;
}

}  // namespace ko::icc
