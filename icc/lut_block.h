// Private to the folder: LUT blocks whose tables somebody is about to fill.
#pragma once

#include "icc/icc.h"

namespace ko::icc {

// As makeLut, but the matrix is zero.
[[nodiscard]] Block<IccLut> layOutLut(const LutShape& shape) noexcept;

}  // namespace ko::icc
