#include "precise/link_row.h"

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
template <int inputs, int outputs>
void convert(const ByteGrid& grid, const uint8_t* in, uint8_t* out, size_t count) noexcept {
    constexpr int kFirst = inputs == 4 ? 1 : 0, kAxes = inputs - kFirst;
    Place places[inputs][256];
    uint32_t strides[inputs];
    uint32_t stride = outputs;
    const auto last = static_cast<uint32_t>(grid.points - 1);
    for (int axis = inputs - 1; axis >= 0; --axis) {
        strides[axis] = stride;
        for (uint32_t level = 0; level < 256; ++level) {
            const uint32_t at = level * last;
            const uint32_t cell = level == 255 ? last - 1 : at / 255;
            places[axis][level] = {cell * stride, static_cast<int32_t>(at - cell * 255)};
        }
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
    if (grid.outputs == 3) convert<3>(grid, in, out, count);
    else convert<4>(grid, in, out, count);
}

}  // namespace ko::precise
