// The node loop of an ICC combination, a row of nodes at a time. Gives the same grid as the plain
// loop, bit by bit.
#pragma once

#include "cmyk/combine_chain.h"
#include "cmyk/combine_icc.h"

namespace ko::cmyk {

// Throws std::bad_alloc.
void combineNodesFast(const NodeChain& chain, const Conversion& conversion, CmykProfile& result);

}  // namespace ko::cmyk
