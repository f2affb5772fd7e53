// The chain of a combination, node by node: any settings, any base and black curve, any pair of
// LUTs. The whole grid takes too long for many runs; nodes do not know of each other.
#include <cstdlib>

#include "cmyk/combine_chain.h"
#include "cmyk/combine_icc.h"
#include "fuzz/lut_shape.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace ko::cmyk;
    static const auto base = createProfile();
    if (!base) return 0;
    Shape shape(data, size);
    CmsLinkSettings settings{};
    for (int32_t* field : {&settings.intent, &settings.preservation, &settings.whiteMode,
                           &settings.paperC, &settings.paperM, &settings.paperY, &settings.paperK,
                           &settings.limit}) {
        const int32_t small = shape.byte();
        *field = small == 255 ? static_cast<int32_t>(shape.word()) : small % 4 ? small % 4 : small;
    }
    int16_t black[256];
    const bool hasBlack = shape.byte() % 2 != 0;
    for (int16_t& value : black) value = static_cast<int16_t>(shape.byte() << 8 | shape.byte());
    for (int curve = 0; curve < kCurves; ++curve) {
        const int32_t point = shape.between(0, 64);
        base->curveFlags[curve][point] = shape.byte() % 2;
        base->curveValues[curve][point] = shape.byte();
    }
    Cmyk nodes[24];
    for (Cmyk& node : nodes)
        for (int32_t& index : node) index = shape.byte() % 3 ? shape.between(0, 32) : 0;
    for (const Cmyk& node : nodes)
        base->grid[((node[0] * 33 + node[1]) * 33 + node[2]) * 33 + node[3]] = shape.word();

    const auto source = lutFrom(shape, 4, 3);
    const auto destination = lutFrom(shape, 3, 4);
    if (!source || !destination) return 0;
    const auto bridge = static_cast<ko::icc::Bridge>(shape.between(0, 2));
    if (!ko::icc::lutSetup(source.get())) return 0;
    if (ko::icc::lutSetup(destination.get())) {
        const IccPair pair(*source, *destination, bridge);
        const NodeChain chain(settings, base.get(), hasBlack ? black : nullptr);
        for (const Cmyk& node : nodes) {
            const auto convert = [&](Cmyk& cmyk) { convertThroughIcc(pair, cmyk); };
            const uint32_t once = combineNode(chain, node, convert);
            if (combineNode(chain, node, convert) != once) std::abort();
        }
        ko::icc::lutClose(destination.get());
    }
    ko::icc::lutClose(source.get());
    return 0;
}
