// The node loop by rows: nodes that differ in K alone share what C, M and Y decide.
#include "cmyk/combine_fast.h"

#include <algorithm>
#include <optional>

#include "icc/lut_fast.h"

namespace ko::cmyk {
namespace {

constexpr size_t kRow = kGridPoints;
using Row = std::array<Cmyk, kRow>;

// The default profile changes nothing: (16 v + 8) / 16 is v.
bool isIdentity(const NodeChain& chain) noexcept {
    if (!chain.base()) return true;
    for (const auto& curve : chain.curves())
        for (int32_t x = 0; x < 256; ++x)
            if (curve[x] != x) return false;
    const uint32_t* word = chain.base()->grid;
    bool same = true;
    grid::forEachNode<4>(kGridPoints,
                         [&](const Cmyk& node) { same &= *word++ == identityWord(node); });
    return same;
}

// convertThroughIcc for many colours.
class FastPair {
public:
    explicit FastPair(const IccPair& pair)
        : pair_(pair), source_(pair.source), destination_(pair.destination) {}

    void convert(Cmyk* colours, size_t count) const noexcept {
        if (pair_.source.precision == 2)
            for (size_t i = 0; i < count; ++i)
                for (int32_t& value : colours[i]) value *= 256;
        source_.colours(colours, count);
        connectAll(colours, count);
        destination_.colours(colours, count);
        if (pair_.destination.precision == 2)
            for (size_t i = 0; i < count; ++i)
                for (int32_t& value : colours[i]) value /= 256;
    }

private:
    // Within one connection space values are within their scale already.
    void connectAll(Cmyk* colours, size_t count) const noexcept {
        const int32_t from = pair_.crossing.from, to = pair_.crossing.to;
        if (pair_.crossing.bridge != icc::Bridge::none) {
            for (size_t i = 0; i < count; ++i) pair_.crossing.cross(colours[i]);
        } else if (from == 2 && to == 1) {
            for (size_t i = 0; i < count; ++i)
                for (int32_t& value : colours[i]) value /= 256;
        } else if (from == 1 && to == 2) {
            for (size_t i = 0; i < count; ++i)
                for (int32_t& value : colours[i]) value *= 256;
        }
    }

    const IccPair& pair_;
    icc::FastLut source_, destination_;
};

}  // namespace

void combineNodesFast(const NodeChain& chain, const Conversion& conversion,
                      CmykProfile& result) {
    const bool identity = isIdentity(chain);
    std::optional<FastPair> fast;
    if (conversion) fast.emplace(*conversion);
    const auto convert = [&conversion](Cmyk& cmyk) {
        if (conversion) convertThroughIcc(*conversion, cmyk);
    };

    uint32_t* word = result.grid;
    Cmyk node;
    Row row;
    for (node[0] = 0; node[0] < kGridPoints; ++node[0]) {
        for (node[1] = 0; node[1] < kGridPoints; ++node[1]) {
            for (node[2] = 0; node[2] < kGridPoints; ++node[2], word += kRow) {
                const int32_t c = nodeValue(node[0]), m = nodeValue(node[1]),
                              y = nodeValue(node[2]);
                // Where the tint, white or black may have a say, node by node. The tint ends at
                // a coverage, so that the nodes without it are the end of the row.
                int32_t first = 0;
                while (first < kGridPoints && chain.addsTint(c + m + y + nodeValue(first))) ++first;
                if (c + m + y == 0) first = kGridPoints;
                for (node[3] = 0; node[3] < first; ++node[3])
                    word[node[3]] = combineNode(chain, node, convert);

                const auto rest = static_cast<size_t>(kGridPoints - first);
                for (size_t i = 0; i < rest; ++i) {
                    row[i] = {c, m, y, nodeValue(first + static_cast<int32_t>(i))};
                    if (!identity) chain.throughBase(row[i]);
                }
                if (fast) fast->convert(row.data(), rest);
                if (first == 0) {  // preservation treats nodes without K
                    node[3] = 0;
                    chain.preserve(node, row[0]);
                }
                for (size_t i = 0; i < rest; ++i)
                    word[first + static_cast<int32_t>(i)] =
                        packCmyk(row[i][0], row[i][1], row[i][2], row[i][3]);
            }
        }
    }
}

}  // namespace ko::cmyk
