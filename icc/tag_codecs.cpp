// Decoding and encoding of the element types, and the table of tags that use them.
#include "icc/tag_codecs.h"

#include "icc/lut_block.h"

namespace ko::icc {
namespace {

constexpr uint64_t kTypeSize = 8;  // of type signature and reserved bytes

// Decoding

Block<void> decodeXyz(const Element& element) noexcept {
    if (!element.hasType("XYZ ")) return nullptr;
    uint8_t bytes[12];
    element.read(kTypeSize, bytes);
    Block<float> xyz = allocateBlock<float>(3 * sizeof(float));
    if (!xyz) return nullptr;
    ByteReader in(bytes, element.order());
    for (int at = 0; at < 3; ++at) xyz.get()[at] = IccFixedToFloat(in.s32());
    return Block<void>(xyz.release());
}

uint32_t countAt(const Element& element, uint64_t at) noexcept {
    uint8_t bytes[4];
    element.read(at, bytes);
    return ByteReader(bytes, element.order()).u32();
}

Block<void> decodeCurve(const Element& element) noexcept {
    if (!element.hasType("curv")) return nullptr;
    const uint32_t count = countAt(element, kTypeSize);
    const uint64_t size = uint64_t{count} * 2;
    if (!element.mayHold(kTypeSize + 4, size)) return nullptr;
    // Room for the whole record, which has one entry, also when the curve has none.
    Block<IccCurve> curve = allocateBlock<IccCurve>(sizeof(IccCurve) + size);
    if (!curve) return nullptr;
    *curve = IccCurve{count, {0}};
    const std::span entries(reinterpret_cast<uint8_t*>(curve->entries), static_cast<size_t>(size));
    element.read(kTypeSize + 4, entries);
    if (element.bigEndian()) IccReverseBytes(entries.data(), entries.data(), 2, count);
    return Block<void>(curve.release());
}

// The text as stored, with a terminating NUL behind it in case the file has none.
Block<void> decodeString(const Element& element, uint64_t at, uint32_t length) noexcept {
    if (!element.mayHold(at, length)) return nullptr;
    Block<uint8_t> text = allocateBlock<uint8_t>(uint64_t{length} + 1);
    if (!text) return nullptr;
    element.read(at, {text.get(), length});
    text.get()[length] = 0;
    return Block<void>(text.release());
}

Block<void> decodeDescription(const Element& element) noexcept {
    if (!element.hasType("desc")) return nullptr;
    const uint32_t length = countAt(element, kTypeSize);
    return length == 0 ? nullptr : decodeString(element, kTypeSize + 4, length);
}

Block<void> decodeText(const Element& element) noexcept {
    if (!element.hasType("text") || element.size() < kTypeSize) return nullptr;
    return decodeString(element, kTypeSize, element.size() - static_cast<uint32_t>(kTypeSize));
}

Block<void> decodeLut(const Element& element) noexcept {
    const bool narrow = element.hasType("mft1");
    if (!narrow && !element.hasType("mft2")) return nullptr;
    uint8_t bytes[52 - kTypeSize];
    element.read(kTypeSize, bytes);
    ByteReader in(bytes, element.order());
    LutShape shape{};
    shape.inputChannels = in.u8();
    shape.outputChannels = in.u8();
    shape.gridPoints = in.u8();
    shape.precision = narrow ? 1 : 2;
    in.skip(1);
    float matrix[9];
    for (float& coefficient : matrix) coefficient = IccFixedToFloat(in.s32());
    shape.inputEntries = narrow ? 256 : in.u16();
    shape.outputEntries = narrow ? 256 : in.u16();

    const uint64_t tablesAt = narrow ? 48 : 52;
    const uint64_t size = sizesOf(shape).tables();
    if (!element.mayHold(tablesAt, size)) return nullptr;
    Block<IccLut> lut = layOutLut(shape);
    if (!lut) return nullptr;
    std::memcpy(lut->matrix, matrix, sizeof matrix);
    // The three parts stand in the file as they do in the block.
    const std::span tables(static_cast<uint8_t*>(lut->inputTables), static_cast<size_t>(size));
    element.read(tablesAt, tables);
    if (!narrow && element.bigEndian())
        IccReverseBytes(tables.data(), tables.data(), 2, size / 2);
    return Block<void>(lut.release());
}

// Encoding

uint32_t inOrder(uint32_t value, bool bigEndian) noexcept {
    return bigEndian ? value : reverse32(value);
}

std::optional<uint64_t> encodeXyz(const void* data, bool bigEndian, std::vector<uint8_t>& bytes) {
    float xyz[3];
    std::memcpy(xyz, data, sizeof xyz);
    ByteWriter out(bytes);
    out.append("XYZ ");
    out.zeros(4);
    for (const float value : xyz)
        out.u32(inOrder(static_cast<uint32_t>(IccFloatToFixed(value)), bigEndian));
    return 20;
}

std::optional<uint64_t> encodeDescription(const void* data, bool, std::vector<uint8_t>& bytes) {
    const std::string_view text = static_cast<const char*>(data);
    ByteWriter out(bytes);
    out.append("desc");
    out.zeros(4);
    out.u32(static_cast<uint32_t>(text.size() + 1));
    out.append(text);
    out.zeros(1);
    // Empty Unicode, ScriptCode and Macintosh descriptions.
    out.zeros(4 + 4 + 2 + 1 + 67);
    return 12 + uint64_t{text.size()} + 1 + 78;
}

std::optional<uint64_t> encodeText(const void* data, bool, std::vector<uint8_t>& bytes) {
    const std::string_view text = static_cast<const char*>(data);
    ByteWriter out(bytes);
    out.append("text");
    out.zeros(4);
    out.append(text);
    out.zeros(1);
    return kTypeSize + text.size() + 1;
}

// Readers of these files see a sequence of length 10, two bytes short of its count field. It has
// always been so and stays so.
std::optional<uint64_t> encodeSequence(const void*, bool, std::vector<uint8_t>& bytes) {
    ByteWriter out(bytes);
    out.append("pseq");
    out.zeros(4 + 4);
    return 10;
}

void appendEntries(const void* table, uint64_t size, uint8_t precision, bool reversed,
                   std::vector<uint8_t>& bytes) {
    if (size == 0) return;
    const size_t start = bytes.size();
    const auto* const from = static_cast<const uint8_t*>(table);
    bytes.insert(bytes.end(), from, from + size);
    if (reversed && precision > 1)
        IccReverseBytes(&bytes[start], &bytes[start], precision, size / precision);
}

std::optional<uint64_t> encodeLut(const void* data, bool bigEndian, std::vector<uint8_t>& bytes) {
    IccLut lut;
    std::memcpy(&lut, data, sizeof lut);
    const LutSizes sizes = sizesOf(shapeOf(lut));
    // Directory offsets have 32 bits. A record whose tables pass them, or that has none, lies.
    if (sizes.tables() > UINT32_MAX || (sizes.inputTables > 0 && !lut.inputTables) ||
        (sizes.clut > 0 && !lut.clut) || (sizes.outputTables > 0 && !lut.outputTables))
        return std::nullopt;

    const size_t start = bytes.size();
    bytes.reserve(start + 56 + static_cast<size_t>(sizes.tables()));
    ByteWriter out(bytes);
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
    appendEntries(lut.inputTables, sizes.inputTables, lut.precision, true, bytes);
    appendEntries(lut.clut, sizes.clut, lut.precision, bigEndian && lut.precision == 2, bytes);
    appendEntries(lut.outputTables, sizes.outputTables, lut.precision, true, bytes);
    return bytes.size() - start;
}

// In the order in which profiles list them. kTRC is left out on purpose: hosts rely on null
// for it.
constexpr TagCodec kTagCodecs[] = {
    {fourcc("A2B0"), decodeLut, encodeLut, kAllWriters, 2},
    {fourcc("A2B1"), decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("A2B2"), decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("B2A0"), decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("B2A1"), decodeLut, encodeLut, kFullWriters, 1},
    {fourcc("B2A2"), decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("gamt"), decodeLut, encodeLut, kFullWriters, 0},
    {fourcc("cprt"), decodeText, encodeText, kAllWriters, 0},
    {fourcc("desc"), decodeDescription, encodeDescription, kAllWriters, 0},
    {fourcc("wtpt"), decodeXyz, encodeXyz, kFullWriters, 0},
    {fourcc("bkpt"), decodeXyz, encodeXyz, kFullWriters, 0},
    {fourcc("rXYZ"), decodeXyz, nullptr, kNoWriter, 0},
    {fourcc("gXYZ"), decodeXyz, nullptr, kNoWriter, 0},
    {fourcc("bXYZ"), decodeXyz, nullptr, kNoWriter, 0},
    {fourcc("rTRC"), decodeCurve, nullptr, kNoWriter, 0},
    {fourcc("gTRC"), decodeCurve, nullptr, kNoWriter, 0},
    {fourcc("bTRC"), decodeCurve, nullptr, kNoWriter, 0},
    {fourcc("pseq"), nullptr, encodeSequence, kLinkWriter, 0},
};

}  // namespace

std::span<const TagCodec> tagCodecs() noexcept { return kTagCodecs; }

const TagCodec* findCodec(uint32_t signature) noexcept {
    for (const TagCodec& codec : kTagCodecs)
        if (codec.signature == signature) return &codec;
    return nullptr;
}

}  // namespace ko::icc
