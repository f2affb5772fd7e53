// Colours between two ICC profiles, in the number forms that their LUTs take.
#include "cmyk/combine_icc.h"

namespace ko::cmyk {

void convertThroughIcc(const IccPair& pair, Cmyk& cmyk) noexcept {
    if (pair.source.precision == 2)
        for (int32_t& value : cmyk) value *= 256;
    icc::lutColor(pair.source, cmyk.data());
    pair.crossing.cross(cmyk);
    icc::lutColor(pair.destination, cmyk.data());
    if (pair.destination.precision == 2)
        for (int32_t& value : cmyk) value /= 256;
}

}  // namespace ko::cmyk
