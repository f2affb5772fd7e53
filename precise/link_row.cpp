#include "precise/link_row.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace ko::precise {
namespace {

// Where a level stands on its axis: the offset of its cell and the way into it in 255ths.
struct Place {
    uint32_t offset;
    int32_t rest;
};

// Weights are 255ths of 255ths, so that sums are whole numbers below 2^24, which a float holds;
// and 255 * 255 is odd, so that none lies between two levels.
// The places of all levels of an axis, whose nodes are stride bytes apart.
void placeLevels(Place (&places)[256], uint32_t last, uint32_t stride) noexcept {
    uint32_t offset = 0;
    int32_t rest = 0;
    for (int level = 0; level < 255; ++level) {
        places[level] = {offset, rest};
        rest += static_cast<int32_t>(last);
        for (; rest >= 255; rest -= 255) offset += stride;
    }
    places[255] = {(last - 1) * stride, 255};
}

template <int inputs, int outputs>
void convert(const ByteGrid& grid, const uint8_t* in, uint8_t* out, size_t count) noexcept {
    constexpr int kFirst = inputs == 4 ? 1 : 0, kAxes = inputs - kFirst;
    Place places[inputs][256];
    uint32_t strides[inputs];
    uint32_t stride = outputs;
    const auto last = static_cast<uint32_t>(grid.points - 1);
    for (int axis = inputs - 1; axis >= 0; --axis) {
        strides[axis] = stride;
        placeLevels(places[axis], last, stride);
        stride *= last + 1;
    }
    for (; count > 0; --count, in += inputs, out += outputs) {
        const uint8_t* low = grid.nodes;
        std::pair<int32_t, uint32_t> steps[3] = {};  // the rest and the stride of an axis
        for (int axis = 0; axis < inputs; ++axis) {
            const Place& place = places[axis][in[axis]];
            low += place.offset;
            if (axis >= kFirst) steps[axis - kFirst] = {place.rest, strides[axis]};
        }
        const auto order = [&](int a, int b) {
            if (steps[b].first > steps[a].first) std::swap(steps[a], steps[b]);
        };
        if (kAxes > 1) order(0, 1);
        if (kAxes > 2) {
            order(1, 2);
            order(0, 1);
        }
        float sums[outputs] = {};
        for (int half = 0; half <= kFirst; ++half) {
            int32_t weight = 255;
            const uint8_t* corner = low;
            if (kFirst == 1) {
                const int32_t rest = places[0][in[0]].rest;
                weight = half == 1 ? rest : 255 - rest;
                if (weight == 0) continue;
                if (half == 1) corner += strides[0];
            }
            int32_t before = 255;
            for (int at = 0; at <= kAxes; ++at) {
                const int32_t next = at < kAxes ? steps[at].first : 0;
                const auto share = static_cast<float>(weight * (before - next));
                for (int ch = 0; ch < outputs; ++ch) sums[ch] += share * static_cast<float>(corner[ch]);
                before = next;
                if (at < kAxes) corner += steps[at].second;
            }
        }
        for (int ch = 0; ch < outputs; ++ch)
            out[ch] = static_cast<uint8_t>((static_cast<uint32_t>(sums[ch]) + 32512) / 65025);
    }
}

inline __m128i nodeAt(const uint8_t* node) noexcept {
    int32_t word;
    std::memcpy(&word, node, sizeof word);
    return _mm_cvtsi32_si128(word);
}

// A tetrahedron of nodes of four bytes, by weights that add up to 255: two corners a step.
inline __m128 tetrahedron(const uint8_t* low, const uint32_t (&corners)[3], __m128i first,
                          __m128i second) noexcept {
    const __m128i zero = _mm_setzero_si128();
    const __m128i a = _mm_unpacklo_epi8(nodeAt(low), nodeAt(low + corners[0]));
    const __m128i b = _mm_unpacklo_epi8(nodeAt(low + corners[1]), nodeAt(low + corners[2]));
    return _mm_cvtepi32_ps(_mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(a, zero), first),
                                         _mm_madd_epi16(_mm_unpacklo_epi8(b, zero), second)));
}

// The same sums as above for the links that pictures go through, four channels at a time.
void convertCmyk(const ByteGrid& grid, const uint8_t* in, uint8_t* out, size_t count) noexcept {
    Place places[4][256];
    uint32_t strides[4];
    uint32_t stride = 4;
    const auto last = static_cast<uint32_t>(grid.points - 1);
    for (int axis = 3; axis >= 0; --axis) {
        strides[axis] = stride;
        placeLevels(places[axis], last, stride);
        stride *= last + 1;
    }
    const __m128 half = _mm_set1_ps(32512), whole = _mm_set1_ps(65025);
    for (; count > 0; --count, in += 4, out += 4) {
        const Place &c = places[0][in[0]], &m = places[1][in[1]], &y = places[2][in[2]],
                    &k = places[3][in[3]];
        const uint8_t* const low = grid.nodes + c.offset + m.offset + y.offset + k.offset;
        // Axes by their rests, the largest first; equal ones weigh nothing between them.
        const auto step = [&](const Place& place, int axis) {
            return uint64_t{static_cast<uint32_t>(place.rest)} << 32 | strides[axis];
        };
        const uint64_t a = step(m, 1), b = step(y, 2), d = step(k, 3);
        const uint64_t above = std::max(a, b), below = std::min(a, b);
        const uint64_t rest = std::min(above, d);
        const uint64_t largest = std::max(above, d), middle = std::max(below, rest),
                       least = std::min(below, rest);
        const auto corner1 = static_cast<uint32_t>(largest);
        const auto corner2 = corner1 + static_cast<uint32_t>(middle);
        const uint32_t corners[3] = {corner1, corner2, corner2 + static_cast<uint32_t>(least)};
        const auto r1 = static_cast<int32_t>(largest >> 32), r2 = static_cast<int32_t>(middle >> 32),
                   r3 = static_cast<int32_t>(least >> 32);
        const __m128i first = _mm_set1_epi32((r1 - r2) << 16 | (255 - r1));
        const __m128i second = _mm_set1_epi32(r3 << 16 | (r2 - r3));
        const __m128 lower = tetrahedron(low, corners, first, second);
        const __m128 upper = tetrahedron(low + strides[0], corners, first, second);
        const __m128 share = _mm_set1_ps(static_cast<float>(c.rest));
        const __m128 sum = _mm_add_ps(_mm_mul_ps(lower, _mm_sub_ps(_mm_set1_ps(255), share)),
                                      _mm_mul_ps(upper, share));
        // Floats below 256 are 2^-16 apart at most, which is less than 1 / 65025: none is rounded up
        // to a whole number.
        const __m128i levels = _mm_cvttps_epi32(_mm_div_ps(_mm_add_ps(sum, half), whole));
        const __m128i words = _mm_packs_epi32(levels, levels);
        const int32_t word = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        std::memcpy(out, &word, sizeof word);
    }
}

template <int outputs>
void convert(const ByteGrid& grid, const uint8_t* in, uint8_t* out, size_t count) noexcept {
    switch (grid.inputs) {
        case 1: return convert<1, outputs>(grid, in, out, count);
        case 2: return convert<2, outputs>(grid, in, out, count);
        case 3: return convert<3, outputs>(grid, in, out, count);
        default: return convert<4, outputs>(grid, in, out, count);
    }
}

}  // namespace

std::optional<ByteGrid> plainGrid(const Profile& link) noexcept {
    constexpr size_t kHeader = 48, kEntries = 256;
    const auto element = link.tag(fourcc("A2B0"));
    if (!link.isLink() || element.size() < kHeader) return std::nullopt;
    for (const uint32_t space : {link.header().space, link.header().connection})
        if (space != fourcc("CMYK") && space != fourcc("RGB ") && space != fourcc("GRAY"))
            return std::nullopt;
    ByteReader in(element);
    if (in.u32() != fourcc("mft1")) return std::nullopt;
    const ByteGrid grid = {nullptr, element[8], element[9], element[10]};
    if (!hasRows(grid) || grid.inputs != channelsOf(link.header().space) ||
        grid.outputs != channelsOf(link.header().connection))
        return std::nullopt;
    const auto inputs = static_cast<size_t>(grid.inputs), outputs = static_cast<size_t>(grid.outputs);
    uint64_t size = outputs;
    for (int axis = 0; axis < grid.inputs; ++axis) size *= static_cast<uint64_t>(grid.points);
    if (size > element.size() || element.size() - size < kHeader + (inputs + outputs) * kEntries)
        return std::nullopt;
    const auto nodes = element.subspan(kHeader + inputs * kEntries);
    const auto areLines = [](std::span<const uint8_t> tables) {
        for (size_t at = 0; at < tables.size(); ++at)
            if (tables[at] != at % kEntries) return false;
        return true;
    };
    if (!areLines(element.subspan(kHeader, inputs * kEntries)) ||
        !areLines(nodes.subspan(static_cast<size_t>(size), outputs * kEntries)))
        return std::nullopt;
    return ByteGrid{nodes.data(), grid.inputs, grid.outputs, grid.points};
}

void convertRow8(const ByteGrid& grid, const uint8_t* in, uint8_t* out, size_t count) noexcept {
    if (grid.inputs == 4 && grid.outputs == 4) convertCmyk(grid, in, out, count);
    else if (grid.outputs == 3) convert<3>(grid, in, out, count);
    else convert<4>(grid, in, out, count);
}

}  // namespace ko::precise
