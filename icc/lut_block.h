// Private to the folder: LUT blocks whose tables somebody is about to fill.
#pragma once

#include "icc/icc.h"

namespace ko::icc {

// As makeLut, but the matrix is zero and the tables hold whatever the memory held.
[[nodiscard]] Block<IccLut> layOutLut(const LutShape& shape) noexcept;

}  // namespace ko::icc
