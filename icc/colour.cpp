// Colour-space arithmetic: XYZ, L*a*b* and their ICC version 2 encodings, tone curves.
#include "frame/arithmetic.h"
#include "icc/icc.h"
#include "icc/power.h"

namespace ko::icc {
namespace {

constexpr double kSixteenth = 0.13793103448275862;  // 16/116

// Strict: 0.008856 itself is on the line.
double toLabScale(double t) noexcept {
    return t > 0.008856 ? powerOfThird(t) : 7.787 * t + kSixteenth;
}

// 0.2069 is a little above the cube root of 0.008856 and stays so: saved Lab tables depend on
// it. The two directions therefore do not meet exactly at the knee.
double fromLabScale(double f) noexcept {
    return f > 0.2069 ? cube(f) : (f - kSixteenth) / 7.787;
}

constexpr bool isByteForm(int32_t bits) noexcept { return bits == 8 || bits == 1; }

// NaN passes; no table holds it.
double encoded(double value, int32_t bits) noexcept {
    if (value < 0) value = 0;
    if (value > 65535) value = 65535;
    return isByteForm(bits) ? value * 0.00390625 : value;
}

}  // namespace

void xyzToLab(double* colour, const double* white) noexcept {
    const double fx = toLabScale(colour[0] / white[0]);
    const double fy = toLabScale(colour[1] / white[1]);
    const double fz = toLabScale(colour[2] / white[2]);
    colour[0] = 116 * fy - 16;
    colour[1] = 500 * (fx - fy);
    colour[2] = 200 * (fy - fz);
}

void labToXyz(double* colour, const double* white) noexcept {
    const double fy = (colour[0] + 16) / 116;
    const double fx = fy + colour[1] / 500;
    const double fz = fy - colour[2] / 200;
    colour[0] = white[0] * fromLabScale(fx);
    colour[1] = white[1] * fromLabScale(fy);
    colour[2] = white[2] * fromLabScale(fz);
}

void labEncode(double* colour, int32_t bits) noexcept {
    colour[0] = encoded(colour[0] * 65280 / 100, bits);
    colour[1] = encoded((colour[1] + 128) * 256, bits);
    colour[2] = encoded((colour[2] + 128) * 256, bits);
}

void labDecode(double* colour, int32_t bits) noexcept {
    if (isByteForm(bits))
        for (int at = 0; at < 3; ++at) colour[at] *= 256;
    colour[0] = colour[0] * 100 / 65280;
    colour[1] = colour[1] / 256 - 128;
    colour[2] = colour[2] / 256 - 128;
}

void xyzEncode(double* colour, int32_t bits) noexcept {
    for (int at = 0; at < 3; ++at) colour[at] = encoded(colour[at] * (128 * 256), bits);
}

void xyzDecode(double* colour, int32_t bits) noexcept {
    for (int at = 0; at < 3; ++at) {
        if (isByteForm(bits)) colour[at] *= 256;
        colour[at] *= 1.0 / 128;
        colour[at] *= 1.0 / 256;
    }
}

// The position is a float; the blend is double, truncated, then divided by 256.
void trcColor(const IccCurve* curve, int32_t* value) noexcept {
    if (curve->count == 0) return;
    const uint16_t* const entries = curve->entries;
    const int64_t last = int64_t{curve->count} - 1;
    const int64_t level = clampTo(*value, 0, 255);
    const auto position = static_cast<float>(static_cast<double>(last * level) / 255.0);
    const auto index = static_cast<int64_t>(position);
    if (index >= last) {
        *value = entries[last] >> 8;
        return;
    }
    const double above = static_cast<double>(position) - static_cast<double>(index);
    const double below = static_cast<double>(index + 1) - static_cast<double>(position);
    *value = static_cast<int32_t>(above * entries[index + 1] + below * entries[index]) / 256;
}

}  // namespace ko::icc
