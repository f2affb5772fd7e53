// LUTs of any shape: the prepared evaluator gives what the plain one gives, and no result leaves
// its scale.
#include <cstdlib>

#include "fuzz/lut_shape.h"
#include "icc/lut_fast.h"

namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Shape shape(data, size);
    const int32_t inputs = shape.between(1, 4), outputs = shape.between(1, 4);
    constexpr size_t kColours = 40;
    ko::icc::FastLut::Colour colours[kColours];
    for (auto& colour : colours) {
        const bool wild = shape.byte() % 8 == 0;
        for (int32_t& value : colour)
            value = static_cast<int32_t>(wild ? shape.word() : shape.word() & 0xffff);
    }
    const auto lut = lutFrom(shape, inputs, outputs);
    if (!lut || !ko::icc::lutSetup(lut.get())) return 0;
    const int32_t top = ko::icc::lutMaximum(lut->precision);
    const ko::icc::FastLut fast(*lut);
    ko::icc::FastLut::Colour quick[kColours];
    std::copy(std::begin(colours), std::end(colours), quick);
    fast.colours(quick, kColours);
    for (size_t at = 0; at < kColours; ++at) {
        auto plain = colours[at], wide = colours[at];
        require(ko::icc::lutColor(*lut, plain.data()) == outputs);
        require(plain == quick[at]);
        require(ko::icc::lutColor16(*lut, wide.data()) == outputs);
        for (int32_t output = 0; output < outputs; ++output) {
            require(plain[output] >= 0 && plain[output] <= top);
            require(wide[output] >= 0 && wide[output] <= 65535);
        }
    }
    ko::icc::lutClose(lut.get());
    return 0;
}
