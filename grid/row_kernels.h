// Private to the folder: the fast rows, written once for every vector dialect (lanes_*.h). Each
// gives the bits of its plain kernel.
//
// A group of pixels is one to a lane. What depends on levels alone, where the cell is and what its
// corners weigh, is worked out for all of them; nodes are then read pixel by pixel, and the four
// lanes of a half are the pixel's outputs.
//
// Multilinear. Sums of whole numbers, in 32 bits. The quotient is estimated in float, a little too
// high: sums below 2^24 are exact floats, the factor is 2^-21 too large and three roundings of
// 2^-24 do not undo that, and results of at most 4080 grow by less than 1/200. The estimate is then
// the quotient truncated or the number above; the sign of its remainder tells which.
//
// Tetrahedral over words: the sum over 240ths is exact. It is divided by 15 as a float, after 1/2
// is added to it: then it lies 1/30 from any whole number, and is off by less than 1/2000.
//
// Tetrahedral over shorts. The plain kernel's fractions are floats, n/15 rounded or n/16. Its sum
// is exact, so that it is the sum of whole 240ths and what roundings did. Those change it by less
// than 1/240: each is at most 56/15 of 2^-27, and twice that of 65535 is below 1/240. Truncated it
// is therefore (sum - 1)/240 where they lower it, and sum/240 otherwise. They are whole numbers of
// 2^-27/15, so that a second sum has their sign. Results above 4080 are limited; up to there a
// float with 1/2 added to the sum before the division is exact enough, as above.
#pragma once

#include "grid/row_table.h"

namespace ko::grid {
namespace {

template <class V>
using Int = typename V::Int;
template <class V>
using Float = typename V::Float;

template <int kByte, class V>
Int<V> byteOf(Int<V> a) noexcept {
    if constexpr (kByte == 0) return V::both(a, V::of32(255));
    else if constexpr (kByte == 3) return V::template right32<24>(a);
    else return V::both(V::template right32<8 * kByte>(a), V::of32(255));
}
constexpr uint32_t fourTimes(uint32_t byte) noexcept { return byte * 0x01010101; }

// The lower word of each lane twice; two words side by side.
template <class V>
Int<V> twice(Int<V> a) noexcept { return V::either(a, V::template left32<16>(a)); }
template <class V>
Int<V> pairOf(Int<V> low, Int<V> high) noexcept {
    return V::either(low, V::template left32<16>(high));
}

// Cells and weights of four axes (or three and a byte that is none), a byte each. Cells are
// 2^kBits levels wide; one cell of each axis is one level narrower.
template <class V, int kBits>
struct Axes {
    Int<V> index, lower, upper;
    Int<V> width() const noexcept { return V::add8(lower, upper); }
};
template <class V, int kBits>
Axes<V, kBits> steppedAxes(Int<V> levels) noexcept {  // the last cell is the narrow one
    constexpr uint32_t kWidth = 1 << kBits, kLast = 255 >> kBits;
    Axes<V, kBits> axes;
    axes.index = V::both(V::template right32<kBits>(levels), V::of32(fourTimes(kLast)));
    axes.upper = V::both(levels, V::of32(fourTimes(kWidth - 1)));
    const Int<V> narrow = V::equal8(axes.index, V::of32(fourTimes(kLast)));  // -1
    axes.lower = V::add8(V::subtract8(V::of32(fourTimes(kWidth)), axes.upper), narrow);
    return axes;
}
template <class V>
Axes<V, 4> evenAxes(Int<V> levels) noexcept {  // 17 points: the first, others begin a level early
    const Int<V> all15 = V::of32(fourTimes(15));
    Axes<V, 4> axes;
    axes.index = V::both(V::template right32<4>(levels), all15);
    const Int<V> within = V::both(levels, all15);
    const Int<V> narrow = V::equal8(axes.index, V::zero());
    axes.lower = V::subtract8(all15, within);
    axes.upper = V::add8(V::add8(within, V::of32(fourTimes(1))), narrow);
    return axes;
}

// The node of four axes' lower corner, and the volume of their cell.
template <class V>
Int<V> nodeOfFour(Int<V> index, uint32_t points) noexcept {
    const Int<V> pairs = V::productSums8(index, V::of32((points | 1 << 8) * 0x10001));
    return V::productSums16(pairs, V::of32(points * points | 1 << 16));
}
template <class V>
Int<V> volumeOfFour(Int<V> width) noexcept {
    const Int<V> low = V::of32(0x00ff00ff);
    const Int<V> pairs =
        V::multiply16(V::both(width, low), V::both(V::template right32<8>(width), low));
    return V::productSums16(V::both(pairs, V::of32(0xffff)), V::template right32<16>(pairs));
}

constexpr float kHigher = 1 + 0x1p-21f;

// An estimate of dividend / volume that is right or one too high.
template <class V>
Int<V> corrected(Int<V> estimate, Int<V> dividend, Int<V> volume) noexcept {
    const Int<V> remainder = V::subtract32(dividend, V::multiply32(estimate, volume));
    return V::add32(estimate, V::signs32(remainder));
}

__m128i lower64(const void* at) noexcept {
    return _mm_loadl_epi64(static_cast<const __m128i*>(at));
}
__m128i word(uint32_t value) noexcept { return _mm_cvtsi32_si128(static_cast<int32_t>(value)); }

template <class V, uint32_t kPoints>
struct WordsOfFour {
    static constexpr size_t kChannels = 4, kOutputs = 4;
    using Node = uint32_t;
    static constexpr size_t kY = kPoints, kM = kY * kPoints, kC = kM * kPoints;

    Int<V> y, c0k0, c0k1, c1k0, c1k1, volume;
    Float<V> inverse;
    uint32_t base[V::kPixels];

    explicit WordsOfFour(Int<V> pixels) noexcept {
        const auto axes = steppedAxes<V, kPoints == 33 ? 3 : 4>(pixels);
        V::store(base, nodeOfFour<V>(axes.index, kPoints));
        y = twice<V>(V::either(byteOf<2, V>(axes.lower),
                               V::template left32<8>(byteOf<2, V>(axes.upper))));
        const Int<V> m = pairOf<V>(byteOf<1, V>(axes.lower), byteOf<1, V>(axes.upper));
        const auto weights = [m](Int<V> c, Int<V> k) noexcept {
            return V::multiply16(m, twice<V>(V::multiply16(c, k)));
        };
        const Int<V> c0 = byteOf<0, V>(axes.lower), c1 = byteOf<0, V>(axes.upper);
        const Int<V> k0 = byteOf<3, V>(axes.lower), k1 = byteOf<3, V>(axes.upper);
        c0k0 = weights(c0, k0), c0k1 = weights(c0, k1);
        c1k0 = weights(c1, k0), c1k1 = weights(c1, k1);
        volume = volumeOfFour<V>(axes.width());
        inverse = V::divide(V::ofFloat(16 * kHigher), V::toFloat(volume));
    }

    template <int kLane>
    Int<V> outputs(const Node* nodes) const noexcept {
        // Two neighbours along the last axis at each place, both bytes of a pair along Y.
        const auto plane = [&](size_t offset) noexcept {
            const Int<V> bytes = V::gather([&](int32_t half) noexcept {
                const Node* const node = nodes + base[kLane + 4 * half] + offset;
                return _mm_unpacklo_epi8(lower64(node), lower64(node + kY));
            });
            return V::productSums8(bytes, V::template everywhere<kLane>(y));
        };
        const auto cube = [&](size_t offset, Int<V> k0, Int<V> k1) noexcept {
            const Int<V> m0 = plane(offset), m1 = plane(offset + kM);
            return V::add32(
                V::productSums16(V::zipLow16(m0, m1), V::template everywhere<kLane>(k0)),
                V::productSums16(V::zipHigh16(m0, m1), V::template everywhere<kLane>(k1)));
        };
        const Int<V> sum = V::add32(cube(0, c0k0, c0k1), cube(kC, c1k0, c1k1));
        const Int<V> estimate =
            V::toInt(V::multiply(V::toFloat(sum), V::template everywhere<kLane>(inverse)));
        return V::turned(corrected<V>(estimate, V::template left32<4>(sum),
                                      V::template everywhere<kLane>(volume)));
    }
    static Int<V> limited(Int<V> words) noexcept { return words; }
};
template <class V>
using WordsOfFour17 = WordsOfFour<V, 17>;
template <class V>
using WordsOfFour33 = WordsOfFour<V, 33>;

// Nodes are moved down by 2^15 to be signed words; their sums, times volume, then fit 32 bits with
// a sign. They are floats to 2^-24: a quotient of at most 2^16 in all is off by less than 1/100,
// and 1/64 is added to it.
template <class V>
struct ShortsOfFour {
    static constexpr size_t kChannels = 4, kOutputs = 4;
    using Node = uint16_t;
    static constexpr size_t kY = 17 * 4, kM = kY * 17, kC = kM * 17;

    Int<V> c0, c1, m0k0, m0k1, m1k0, m1k1, volume;
    Float<V> inverse;
    uint32_t base[V::kPixels];

    explicit ShortsOfFour(Int<V> pixels) noexcept {
        const auto axes = evenAxes<V>(pixels);
        V::store(base, V::template left32<2>(nodeOfFour<V>(axes.index, 17)));
        c0 = byteOf<0, V>(axes.lower), c1 = byteOf<0, V>(axes.upper);
        const Int<V> y = pairOf<V>(byteOf<2, V>(axes.lower), byteOf<2, V>(axes.upper));
        const auto weights = [y](Int<V> m, Int<V> k) noexcept {  // at most 16^3
            return V::multiply16(y, twice<V>(V::multiply16(m, k)));
        };
        const Int<V> m0 = byteOf<1, V>(axes.lower), m1 = byteOf<1, V>(axes.upper);
        const Int<V> k0 = byteOf<3, V>(axes.lower), k1 = byteOf<3, V>(axes.upper);
        m0k0 = weights(m0, k0), m0k1 = weights(m0, k1);
        m1k0 = weights(m1, k0), m1k1 = weights(m1, k1);
        volume = volumeOfFour<V>(axes.width());
        inverse = V::divide(V::ofFloat(1), V::toFloat(volume));
    }

    template <int kLane>
    Int<V> outputs(const Node* nodes) const noexcept {
        const Int<V> bias = V::of32(0x80008000);
        const auto line = [&](size_t offset) noexcept {  // two neighbours along the last axis
            return V::gather([&](int32_t half) noexcept {
                return _mm_loadu_si128(reinterpret_cast<const __m128i*>(
                    nodes + base[kLane + 4 * half] + offset));
            });
        };
        const auto plane = [&](size_t offset, Int<V> k0, Int<V> k1) noexcept {
            const Int<V> y0 = line(offset), y1 = line(offset + kY);
            return V::add32(V::productSums16(V::differ(V::zipLow16(y0, y1), bias),
                                             V::template everywhere<kLane>(k0)),
                            V::productSums16(V::differ(V::zipHigh16(y0, y1), bias),
                                             V::template everywhere<kLane>(k1)));
        };
        const auto cube = [&](size_t offset, Int<V> weight) noexcept {
            const Int<V> sum =
                V::add32(plane(offset, m0k0, m0k1), plane(offset + kM, m1k0, m1k1));
            return V::multiply32(sum, V::template everywhere<kLane>(weight));
        };
        const Int<V> sum = V::add32(cube(0, c0), cube(kC, c1));
        const Int<V> estimate = V::toInt(
            V::add(V::multiply(V::toFloat(sum), V::template everywhere<kLane>(inverse)),
                   V::ofFloat(32768 + 1.0f / 64)));
        const Int<V> moved = V::subtract32(estimate, V::of32(32768));
        return V::add32(corrected<V>(moved, sum, V::template everywhere<kLane>(volume)),
                        V::of32(32768));
    }
    static Int<V> limited(Int<V> words) noexcept { return V::limit16(words, 4080); }
};

// The lower corner of three axes of 17 points and the two corners on the way to the upper one; and
// what they weigh, in 240ths.
template <class V>
struct Tetrahedron {
    static constexpr uint32_t kStrides[3] = {17 * 17, 17, 1};
    static constexpr uint32_t kUpper = kStrides[0] + kStrides[1] + kStrides[2];

    Int<V> base, largest, middle, smallest;  // fractions, 7 bits of the caller's, 16 of the stride

    // fraction(level, index) gives 240ths << 7 | the caller's; levels of the same fraction agree
    // on those.
    template <class Fraction>
    Tetrahedron(Int<V> pixels, Fraction fraction) noexcept {
        const auto axis = [&](Int<V> level, uint32_t stride, Int<V>& packed) noexcept {
            const Int<V> index = V::template right32<4>(level);
            packed = V::either(V::template left32<16>(fraction(level, index)), V::of32(stride));
            return V::productSums16(index, V::of32(stride));
        };
        base = axis(byteOf<0, V>(pixels), kStrides[0], largest);
        base = V::add32(base, axis(byteOf<1, V>(pixels), kStrides[1], middle));
        base = V::add32(base, axis(byteOf<2, V>(pixels), kStrides[2], smallest));
        V::sort32(largest, middle);
        V::sort32(middle, smallest);
        V::sort32(largest, middle);
    }
    Int<V> second() const noexcept { return V::add32(base, strideOf(largest)); }
    Int<V> third() const noexcept {
        return V::subtract32(V::add32(base, V::of32(kUpper)), strideOf(smallest));
    }
    Int<V> lowerWeights() const noexcept {
        return pairOf<V>(V::subtract32(V::of32(240), fractionOf(largest)),
                         V::subtract32(fractionOf(largest), fractionOf(middle)));
    }
    Int<V> upperWeights() const noexcept {
        return pairOf<V>(V::subtract32(fractionOf(middle), fractionOf(smallest)),
                         fractionOf(smallest));
    }

    static Int<V> fractionOf(Int<V> packed) noexcept { return V::template right32<23>(packed); }
    static Int<V> ownOf(Int<V> packed) noexcept {
        return V::both(V::template right32<16>(packed), V::of32(127));
    }
    static Int<V> strideOf(Int<V> packed) noexcept { return V::both(packed, V::of32(0xffff)); }
};

template <class V>
struct ShortsOfThree {
    static constexpr size_t kChannels = 3, kOutputs = 4;
    using Node = uint16_t;

    Int<V> lowerWeights, upperWeights, lowerRoundings, upperRoundings;
    uint32_t base[V::kPixels], second[V::kPixels], third[V::kPixels];

    explicit ShortsOfThree(Int<V> pixels) noexcept {
        using Corners = Tetrahedron<V>;
        const Corners corners(pixels, [](Int<V> level, Int<V> index) noexcept {
            // n/16 is 15 n of 240, and cells but the first begin a level early. n/15 is 16 n.
            const Int<V> within = V::both(level, V::of32(15));
            const Int<V> first = V::equal32(index, V::zero());
            const Int<V> fraction =
                V::add32(V::add32(times15(within), V::of32(15)),
                         V::both(first, V::subtract32(within, V::of32(15))));
            // n/15 as a float is too large by (15 p - 8 n)/15 of 2^-27, where p is the power of
            // two in n.
            const Int<V> exponent = V::of32(0x7f800000);
            const Int<V> power = V::toInt(V::fromBits(V::both(
                V::bitsOf(V::toFloat(within)), exponent)));
            const Int<V> rounding = V::subtract32(times15(power), V::template left32<3>(within));
            return V::either(V::template left32<7>(fraction), V::both(first, rounding));
        });
        V::store(base, V::template left32<2>(corners.base));
        V::store(second, V::template left32<2>(corners.second()));
        V::store(third, V::template left32<2>(corners.third()));
        lowerWeights = corners.lowerWeights();
        upperWeights = corners.upperWeights();
        const Int<V> a = Corners::ownOf(corners.largest), b = Corners::ownOf(corners.middle),
                     c = Corners::ownOf(corners.smallest);
        const auto signedPair = [](Int<V> low, Int<V> high) noexcept {
            return pairOf<V>(V::both(low, V::of32(0xffff)), high);
        };
        lowerRoundings = signedPair(V::subtract32(V::zero(), a), V::subtract32(a, b));
        upperRoundings = signedPair(V::subtract32(b, c), c);
    }

    template <int kLane>
    Int<V> outputs(const Node* nodes) const noexcept {
        const Int<V> bias = V::of32(0x80008000);
        const Int<V> lower = V::differ(bias, V::gather([&](int32_t half) noexcept {
            const size_t pixel = static_cast<size_t>(kLane + 4 * half);
            return _mm_unpacklo_epi16(lower64(nodes + base[pixel]), lower64(nodes + second[pixel]));
        }));
        const Int<V> upper = V::differ(bias, V::gather([&](int32_t half) noexcept {
            const size_t pixel = static_cast<size_t>(kLane + 4 * half);
            return _mm_unpacklo_epi16(lower64(nodes + third[pixel]),
                                      lower64(nodes + base[pixel] + 4 * Tetrahedron<V>::kUpper));
        }));
        const auto sumOf = [&](Int<V> low, Int<V> high) noexcept {
            return V::add32(V::productSums16(lower, V::template everywhere<kLane>(low)),
                            V::productSums16(upper, V::template everywhere<kLane>(high)));
        };
        // The roundings of all four corners add up to nothing, and so does the bias.
        const Int<V> down = V::signs32(sumOf(lowerRoundings, upperRoundings));
        const Int<V> sum = V::add32(V::add32(sumOf(lowerWeights, upperWeights), down),
                                    V::of32(240 * 32768));
        return V::toInt(V::multiply(V::add(V::toFloat(sum), V::ofFloat(0.5f)),
                                    V::ofFloat(1.0f / 240)));
    }
    static Int<V> limited(Int<V> words) noexcept { return V::limit16(words, 4080); }

private:
    static Int<V> times15(Int<V> a) noexcept {
        return V::subtract32(V::template left32<4>(a), a);
    }
};

template <class V>
struct WordsOfThree {
    static constexpr size_t kChannels = 3, kOutputs = 3;
    using Node = uint32_t;

    Int<V> lowerWeights, upperWeights;
    uint32_t base[V::kPixels], second[V::kPixels], third[V::kPixels];

    explicit WordsOfThree(Int<V> pixels) noexcept {
        const Tetrahedron<V> corners(pixels, [](Int<V> level, Int<V> index) noexcept {
            // n/16 is 15 n of 240; in the last cell n/15 is 16 n.
            const Int<V> all15 = V::of32(15);
            const Int<V> within = V::both(level, all15);
            const Int<V> last = V::both(V::equal32(index, all15), within);
            return V::template left32<7>(
                V::add32(V::subtract32(V::template left32<4>(within), within), last));
        });
        V::store(base, corners.base);
        V::store(second, corners.second());
        V::store(third, corners.third());
        lowerWeights = corners.lowerWeights();
        upperWeights = corners.upperWeights();
    }

    template <int kLane>
    Int<V> outputs(const Node* nodes) const noexcept {
        const Int<V> bytes = V::gather([&](int32_t half) noexcept {
            const size_t pixel = static_cast<size_t>(kLane + 4 * half);
            const Node* const node = nodes + base[pixel];
            return _mm_unpacklo_epi64(
                _mm_unpacklo_epi8(word(*node), word(nodes[second[pixel]])),
                _mm_unpacklo_epi8(word(nodes[third[pixel]]), word(node[Tetrahedron<V>::kUpper])));
        });
        const Int<V> sum =
            V::add32(V::productSums16(V::zipLow8(bytes, V::zero()),
                                      V::template everywhere<kLane>(lowerWeights)),
                     V::productSums16(V::zipHigh8(bytes, V::zero()),
                                      V::template everywhere<kLane>(upperWeights)));
        return V::toInt(V::multiply(V::add(V::toFloat(sum), V::ofFloat(0.5f)),
                                    V::ofFloat(1.0f / 15)));
    }
    static Int<V> limited(Int<V> words) noexcept { return words; }
};

template <class V, bool kDimmed>
struct AnyBytesOfThree {
    static constexpr size_t kChannels = kDimmed ? 4 : 3, kOutputs = kDimmed ? 3 : 4;
    using Node = uint8_t[4];
    static constexpr uint32_t kPoints = 9;

    Int<V> y, z0, z1, volume, light;
    Float<V> inverse;
    uint32_t base[V::kPixels];

    explicit AnyBytesOfThree(Int<V> pixels) noexcept {
        const auto axes = steppedAxes<V, 5>(pixels);
        V::store(base, V::productSums16(
                           V::productSums8(axes.index, V::of32(kPoints | 1 << 8 | 1 << 16)),
                           V::of32(kPoints | 1 << 16)));
        y = twice<V>(V::either(byteOf<1, V>(axes.lower),
                               V::template left32<8>(byteOf<1, V>(axes.upper))));
        const Int<V> x = pairOf<V>(byteOf<0, V>(axes.lower), byteOf<0, V>(axes.upper));
        z0 = V::multiply16(x, twice<V>(byteOf<2, V>(axes.lower)));
        z1 = V::multiply16(x, twice<V>(byteOf<2, V>(axes.upper)));
        const Int<V> width = axes.width();
        volume = V::productSums16(V::multiply16(byteOf<0, V>(width), byteOf<1, V>(width)),
                                  byteOf<2, V>(width));
        inverse = V::divide(V::ofFloat(kHigher), V::toFloat(volume));
        light = V::subtract32(V::of32(255), byteOf<3, V>(pixels));
    }

    template <int kLane>
    Int<V> outputs(const Node* nodes) const noexcept {
        const auto plane = [&](size_t offset) noexcept {
            const Int<V> bytes = V::gather([&](int32_t half) noexcept {
                const Node* const node = nodes + base[kLane + 4 * half] + offset;
                return _mm_unpacklo_epi8(lower64(node), lower64(node + kPoints));
            });
            return V::productSums8(bytes, V::template everywhere<kLane>(y));
        };
        const Int<V> x0 = plane(0), x1 = plane(kPoints * kPoints);
        const Int<V> sum = V::add32(
            V::productSums16(V::zipLow16(x0, x1), V::template everywhere<kLane>(z0)),
            V::productSums16(V::zipHigh16(x0, x1), V::template everywhere<kLane>(z1)));
        const Int<V> estimate =
            V::toInt(V::multiply(V::toFloat(sum), V::template everywhere<kLane>(inverse)));
        const Int<V> result =
            corrected<V>(estimate, sum, V::template everywhere<kLane>(volume));
        if constexpr (!kDimmed) return result;
        // Products are at most 255 * 255; n / 255 is (n + 1 + n / 256) / 256 for all of them.
        const Int<V> product = V::multiply16(result, V::template everywhere<kLane>(light));
        return V::template right32<8>(V::add32(V::add32(product, V::of32(1)),
                                               V::template right32<8>(product)));
    }
    static Int<V> limited(Int<V> words) noexcept { return words; }
};
template <class V>
using BytesOfThree = AnyBytesOfThree<V, false>;
template <class V>
using DimmedBytesOfThree = AnyBytesOfThree<V, true>;

template <size_t kChannels>
uint32_t pixelAt(const uint8_t* input) noexcept {
    uint32_t pixel = 0;
    for (size_t byte = 0; byte < kChannels; ++byte)
        pixel |= static_cast<uint32_t>(input[byte]) << 8 * byte;
    return pixel;
}

// The results of a group, two pixels a half in each register, as values of a row. Where a pixel has
// three, four are written, and the next pixel takes the fourth back.
template <class V, size_t kOutputs>
void storeGroup(Int<V> pixels01, Int<V> pixels23, uint16_t* output) noexcept {
    for (int32_t half = 0; half < V::kHalves; ++half) {
        const __m128i parts[2] = {V::half(pixels01, half), V::half(pixels23, half)};
        for (const __m128i part : parts) {
            auto* const to = reinterpret_cast<__m128i*>(output);
            if constexpr (kOutputs == 4) {
                _mm_storeu_si128(to, part);
            } else {
                _mm_storel_epi64(to, part);
                _mm_storel_epi64(reinterpret_cast<__m128i*>(output + kOutputs),
                                 _mm_unpackhi_epi64(part, part));
            }
            output += 2 * kOutputs;
        }
    }
}
template <class V, size_t kOutputs>
void storeGroup(Int<V> pixels01, Int<V> pixels23, uint8_t* output) noexcept {
    uint32_t bytes[V::kPixels];
    V::store(bytes, V::narrow16(pixels01, pixels23));
    if constexpr (kOutputs == 4) {
        __builtin_memcpy(output, bytes, sizeof bytes);
    } else {
        for (const uint32_t pixel : bytes) {
            __builtin_memcpy(output, &pixel, sizeof pixel);
            output += kOutputs;
        }
    }
}
template <size_t kOutputs>
void storeOne(__m128i words, uint16_t* output) noexcept {
    uint16_t values[4];
    _mm_storel_epi64(reinterpret_cast<__m128i*>(values), words);
    __builtin_memcpy(output, values, kOutputs * sizeof *output);
}
template <size_t kOutputs>
void storeOne(__m128i words, uint8_t* output) noexcept {
    const int32_t bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
    __builtin_memcpy(output, &bytes, kOutputs);
}

// A pixel by itself; its results twice, as words.
template <class Lone, class V>
__m128i onePixel(const typename Lone::Node* nodes, uint32_t pixel) noexcept {
    const Int<V> result = Lone(V::first(pixel)).template outputs<0>(nodes);
    return Lone::limited(V::narrow32(result, result));
}

template <template <class> class Kind, class V, class Value>
void rowOf(const typename Kind<V>::Node* nodes, const uint8_t* input, int32_t pixels,
           Value* output) noexcept {
    using Group = Kind<V>;
    using Lone = Kind<typename V::Single>;
    constexpr size_t kChannels = Group::kChannels, kOutputs = Group::kOutputs;
    constexpr int32_t kAfter = kOutputs == 3 ? 1 : 0;  // room for the fourth value

    uint64_t known = UINT64_MAX;  // the pixel that sameWords belongs to
    __m128i sameWords{};
    const auto one = [&](uint32_t pixel) noexcept {
        if (pixel != known) {
            sameWords = onePixel<Lone, typename V::Single>(nodes, pixel);
            known = pixel;
        }
    };
    for (; pixels >= V::kPixels + kAfter; pixels -= V::kPixels) {
        Int<V> group;
        if constexpr (kChannels == 4) group = V::fourBytes(input);
        else group = V::threeBytes(input);
        const auto pixel = static_cast<uint32_t>(_mm_cvtsi128_si32(V::half(group, 0)));
        if (V::allAre(pixel, group)) {
            one(pixel);
            const Int<V> same = V::gather([&](int32_t) noexcept { return sameWords; });
            storeGroup<V, kOutputs>(same, same, output);
        } else {
            const Group kernel(group);
            const Int<V> pixels01 = V::narrow32(kernel.template outputs<0>(nodes),
                                                kernel.template outputs<1>(nodes));
            const Int<V> pixels23 = V::narrow32(kernel.template outputs<2>(nodes),
                                                kernel.template outputs<3>(nodes));
            storeGroup<V, kOutputs>(Group::limited(pixels01), Group::limited(pixels23), output);
        }
        input += V::kPixels * kChannels;
        output += V::kPixels * kOutputs;
    }
    for (; pixels > 0; --pixels, input += kChannels, output += kOutputs) {
        one(pixelAt<kChannels>(input));
        storeOne<kOutputs>(sameWords, output);
    }
}

template <template <class> class Kind, class V>
uint64_t oneOf(const typename Kind<V>::Node* nodes, uint32_t pixel) noexcept {
    uint64_t words;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(&words), onePixel<Kind<V>, V>(nodes, pixel));
    return words;
}

template <template <class> class Kind, class V, class Value>
constexpr Kernel<typename Kind<V>::Node, Value> kernelOf() noexcept {
    return {rowOf<Kind, V, Value>, oneOf<Kind, typename V::Single>};
}

template <class V>
constexpr Rows rowsIn(const char* name) noexcept {
    return {name,
            kernelOf<ShortsOfThree, V, uint16_t>(),
            kernelOf<ShortsOfFour, V, uint16_t>(),
            kernelOf<WordsOfFour17, V, uint16_t>(),
            kernelOf<WordsOfFour33, V, uint16_t>(),
            kernelOf<WordsOfThree, V, uint16_t>(),
            kernelOf<BytesOfThree, V, uint8_t>(),
            kernelOf<DimmedBytesOfThree, V, uint8_t>()};
}

}  // namespace
}  // namespace ko::grid
