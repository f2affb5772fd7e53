// Colours between two ICC profiles, in the number forms that their LUTs take.
#include "cmyk/combine_icc.h"

#include <algorithm>

#include "frame/arithmetic.h"

namespace ko::cmyk {
namespace {

void changePrecision(const IccPair& pair, Cmyk& values) noexcept {
    if (pair.source->precision == pair.destination->precision) return;
    for (int32_t& value : values) {
        if (pair.destination->precision == 1) {
            value /= 256;
        } else {
            value = wrapMultiply(value, 256);
        }
    }
}

// Whole levels first, then the 16-bit scale.
int32_t times256(int32_t level) noexcept {
    return static_cast<int32_t>(std::clamp<int64_t>(int64_t{level} * 256, 0, 65535));
}

void xyzToLab(const IccPair& pair, Cmyk& values) noexcept {
    const double scale = pair.source->precision == 1 ? 1 / 128.0 : 1 / 32768.0;
    double colour[3];
    for (int32_t i = 0; i < 3; ++i) colour[i] = values[i] * 100.0 * scale;
    icc::xyzToLab(colour, pair.white);
    const int32_t a = truncateToInt32(colour[1] + 128), b = truncateToInt32(colour[2] + 128);
    if (pair.destination->precision == 1) {
        values[0] = truncateToInt32(colour[0] * 255 / 100);
        values[1] = a;
        values[2] = b;
    } else {
        values[0] = truncateToInt32(colour[0] * 65280 / 100);
        values[1] = times256(a);
        values[2] = times256(b);
    }
}

void labToXyz(const IccPair& pair, Cmyk& values) noexcept {
    double colour[3];
    if (pair.source->precision == 1) {
        colour[0] = 100.0 * values[0] / 255;
        colour[1] = values[1] - 128.0;
        colour[2] = values[2] - 128.0;
    } else {
        colour[0] = 100.0 * values[0] / 65280;
        colour[1] = values[1] / 256.0 - 128;
        colour[2] = values[2] / 256.0 - 128;
    }
    icc::labToXyz(colour, pair.white);
    const double scale = pair.destination->precision == 1 ? 128 : 32768;
    for (int32_t i = 0; i < 3; ++i) values[i] = truncateToInt32(colour[i] * scale / 100);
}

}  // namespace

void connect(const IccPair& pair, Cmyk& values) noexcept {
    switch (pair.connection) {
        case Connection::same: changePrecision(pair, values); break;
        case Connection::xyzToLab: xyzToLab(pair, values); break;
        case Connection::labToXyz: labToXyz(pair, values); break;
    }
    const int32_t maximum = icc::lutMaximum(pair.destination->precision);
    for (int32_t i = 0; i < 3; ++i) values[i] = clampTo(values[i], 0, maximum);
}

void convertThroughIcc(const IccPair& pair, Cmyk& cmyk) noexcept {
    if (!pair.source) return;
    if (pair.source->precision == 2)
        for (int32_t& value : cmyk) value *= 256;
    icc::lutColor(*pair.source, cmyk.data());
    connect(pair, cmyk);
    icc::lutColor(*pair.destination, cmyk.data());
    if (pair.destination->precision == 2)
        for (int32_t& value : cmyk) value /= 256;
}

}  // namespace ko::cmyk
