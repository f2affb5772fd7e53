// Every tag of a profile: decoding, every byte of what was decoded, encoding.
#include "icc/tag_codecs.h"

namespace {

constexpr uint64_t kTolerance = 1 << 16;  // quick enough for many runs

volatile uint8_t sink;

void readBytes(const void* bytes, uint64_t size) {
    uint8_t sum = 0;
    for (uint64_t at = 0; at < size; ++at) sum ^= static_cast<const uint8_t*>(bytes)[at];
    sink = sum;
}

bool isLut(uint32_t signature) {
    return signature == ko::fourcc("gamt") || (signature >> 16 == 0x4132) ||
           (signature >> 16 == 0x4232);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span bytes(data, size);
    const auto profile = ko::icc::parseHeader(bytes, kTolerance);
    if (!profile) return 0;
    for (const auto& codec : ko::icc::tagCodecs()) {
        const auto block = ko::icc::decodeTag(*profile, bytes, codec.signature, kTolerance);
        if (!block) continue;
        if (isLut(codec.signature)) {
            const auto& lut = *static_cast<const IccLut*>(block.get());
            const uint64_t tables = ko::icc::sizesOf(ko::icc::shapeOf(lut)).tables();
            readBytes(lut.inputTables, tables);
        }
        if (!codec.encode) continue;
        ko::icc::FileParts file;
        (void)codec.encode(block.get(), profile->swapBytes == 1, file);
        for (const auto part : file.parts()) readBytes(part.data(), part.size());
    }
    return 0;
}
