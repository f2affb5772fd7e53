// The chain that makes one node of a combined profile, and the plain loop over all nodes. The
// colour conversion in its middle is the caller's.
#pragma once

#include "cmyk/convert.h"
#include "kolink/link_settings.h"

namespace ko::cmyk {

// What the settings say about nodes. Holds the base profile and the black-correction table, not
// copies of them.
class NodeChain {
public:
    // base: null for the identity. black: the 256 values of a black-correction curve, or null.
    NodeChain(const CmsLinkSettings& settings, const CmykProfile* base,
              const int16_t* black) noexcept;

    // Paper tint, white, black. False: the node is finished, no profile has a say in it.
    bool prepare(Cmyk& cmyk) const noexcept;
    // Input curves, grid and output curves of the base profile; 0..255 in and out.
    void throughBase(Cmyk& cmyk) const noexcept;
    // Keeps pure inks pure. Tests the node, not what the tint made of it.
    void preserve(const Cmyk& node, Cmyk& cmyk) const noexcept;

    bool addsTint(int32_t coverage) const noexcept { return tints_ && coverage < limit_; }
    const int16_t* black() const noexcept { return black_; }
    int32_t preservation() const noexcept { return preservation_; }
    const WorkingCurves& curves() const noexcept { return curves_; }  // of a base
    const CmykProfile* base() const noexcept { return base_; }

private:
    const CmykProfile* base_;
    const int16_t* black_;
    bool tints_, keepsWhite_;
    int32_t paper_[4];
    int32_t limit_, preservation_;
    WorkingCurves curves_;
};

// One node: convert(cmyk) is called in place unless the node is finished before it.
template <class Convert>
uint32_t combineNode(const NodeChain& chain, const Cmyk& node, Convert&& convert) {
    Cmyk cmyk;
    for (int32_t i = 0; i < 4; ++i) cmyk[i] = nodeValue(node[i]);
    if (chain.prepare(cmyk)) {
        chain.throughBase(cmyk);
        convert(cmyk);
    }
    chain.preserve(node, cmyk);
    return packCmyk(cmyk[0], cmyk[1], cmyk[2], cmyk[3]);
}

// Every node in grid order, K fastest.
template <class Convert>
void combineNodes(const NodeChain& chain, Convert&& convert, CmykProfile& result) {
    uint32_t* word = result.grid;
    grid::forEachNode<4>(kGridPoints, [&](const Cmyk& node) {
        *word++ = combineNode(chain, node, convert);
    });
}

}  // namespace ko::cmyk
